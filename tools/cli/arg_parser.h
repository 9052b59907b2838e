// A small command-line argument parser for the subcommands of the tool.
//
// Each command declares its options and positional arguments, parses its argument list and
// reads the values back by name. The rules are those of the common command-line tools:
//
//   --name VALUE, --name=VALUE   an option with a value (the next word is taken whatever it is)
//   -n VALUE, -nVALUE            the same with a one-letter name
//   --flag, -f                   a flag; one-letter flags bundle: -vv counts twice
//   --                           everything after it is a positional argument
//   -                            a positional argument (by convention: standard input)
//
// An option given twice keeps the last value (use `Values` for options meant to repeat).
// "--help" and "-h" are always known: they end the parse successfully and `HelpRequested`
// tells the command to print `PrintHelp` and stop, whatever else is missing.
#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace orvo::cli {

class ArgParser {
public:
    /// `usageName` is what the usage line starts with, e.g. "orvo fit"; `summary` is the
    /// paragraph that the help prints under the usage line.
    ArgParser(std::string usageName, std::string summary);

    /// A flag (no value). `shortName` 0 means no one-letter form.
    ArgParser& Flag(const std::string& longName, char shortName, const std::string& help);
    /// An option with a value; `valueName` is shown in the help ("FILE"). `fallback` is what
    /// `Value` gives when the option is absent (shown in the help when not empty).
    ArgParser& Option(const std::string& longName, char shortName, const std::string& valueName,
                      const std::string& help, const std::string& fallback = "");
    /// An option whose value must be one of `choices` (compared exactly).
    ArgParser& Choice(const std::string& longName, const std::string& valueName,
                      const std::vector<std::string>& choices, const std::string& help,
                      const std::string& fallback);
    /// A positional argument. Declare the required ones first, then the optional ones, and at
    /// most one repeating argument last (`repeating` with `required` means one or more).
    ArgParser& Positional(const std::string& name, const std::string& help, bool required = true,
                          bool repeating = false);
    /// A closing paragraph of the help text (examples, notes).
    ArgParser& Epilog(const std::string& text);

    /// Parses the arguments. False on an error, whose text `Error` then gives (e.g.
    /// "unknown option '--frob'"). A parser can be used for one parse only.
    bool Parse(const std::vector<std::string>& args);
    const std::string& Error() const { return error_; }
    bool HelpRequested() const { return help_; }

    /// Whether the flag or option was given (at least once).
    bool Has(const std::string& longName) const { return Count(longName) > 0; }
    /// How often the flag or option was given.
    int Count(const std::string& longName) const;
    /// The last value of the option, or its fallback when it was not given.
    std::string Value(const std::string& longName) const;
    /// Every value of the option, in the order given.
    std::vector<std::string> Values(const std::string& longName) const;
    /// The words of a positional argument: none (an optional one that was not given), one, or
    /// several (a repeating one).
    std::vector<std::string> Positionals(const std::string& name) const;
    /// The single word of a positional argument, or `fallback` when it was not given.
    std::string PositionalOr(const std::string& name, const std::string& fallback) const;

    /// "usage: orvo fit [options] MEASURED CONTROL".
    std::string Usage() const;
    /// The usage line, the summary, the arguments and options with their help, the epilog.
    void PrintHelp(std::ostream& out) const;

private:
    struct OptionSpec {
        std::string longName;
        char shortName = 0;
        std::string valueName;  // empty for a flag
        std::string help;
        std::string fallback;
        std::vector<std::string> choices;
        std::vector<std::string> values;  // one entry per occurrence ("" for a flag)
    };
    struct PositionalSpec {
        std::string name;
        std::string help;
        bool required = true;
        bool repeating = false;
        std::vector<std::string> words;
    };

    OptionSpec* FindLong(const std::string& name);
    OptionSpec* FindShort(char name);
    const OptionSpec* FindLong(const std::string& name) const;
    const PositionalSpec* FindPositional(const std::string& name) const;
    bool Fail(const std::string& text);
    bool Store(OptionSpec& option, const std::string& shown, const std::string& value);
    bool ParseLong(const std::vector<std::string>& args, std::size_t& i);
    bool ParseShort(const std::vector<std::string>& args, std::size_t& i);
    bool AssignPositionals(const std::vector<std::string>& words);

    std::string usageName_;
    std::string summary_;
    std::string epilog_;
    std::vector<OptionSpec> options_;
    std::vector<PositionalSpec> positionals_;
    std::string error_;
    bool help_ = false;
};

// -- strict number parsing for option values ----------------------------------------------------

/// The whole text as an unsigned 32-bit number (decimal digits only), or nothing.
std::optional<unsigned> ParseUnsigned(const std::string& text);
/// The whole text as a signed 32-bit number, or nothing.
std::optional<int> ParseInt(const std::string& text);
/// The whole text as a finite double (C locale), or nothing.
std::optional<double> ParseDouble(const std::string& text);
/// A comma-separated list of unsigned numbers ("3,7,12"), or nothing when any part is not one.
std::optional<std::vector<unsigned>> ParseUnsignedList(const std::string& text);

}  // namespace orvo::cli
