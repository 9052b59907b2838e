#include "arg_parser.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <utility>

namespace orvo::cli {

namespace {

// Help texts start in this column; a longer option text puts its help on the next line.
constexpr std::size_t kHelpColumn = 26;

void PrintEntry(std::ostream& out, const std::string& left, const std::string& help) {
    out << "  " << left;
    if (left.size() + 2 + 2 > kHelpColumn) {
        out << "\n" << std::string(kHelpColumn, ' ');
    } else {
        out << std::string(kHelpColumn - 2 - left.size(), ' ');
    }
    // Help texts may hold line breaks; continuation lines are indented to the help column.
    for (char c : help) {
        out << c;
        if (c == '\n') out << std::string(kHelpColumn, ' ');
    }
    out << "\n";
}

std::string JoinChoices(const std::vector<std::string>& choices) {
    std::string text;
    for (const std::string& choice : choices) {
        if (!text.empty()) text += ", ";
        text += choice;
    }
    return text;
}

}  // namespace

ArgParser::ArgParser(std::string usageName, std::string summary)
    : usageName_(std::move(usageName)), summary_(std::move(summary)) {
    Flag("help", 'h', "show this help and exit");
}

ArgParser& ArgParser::Flag(const std::string& longName, char shortName, const std::string& help) {
    OptionSpec option;
    option.longName = longName;
    option.shortName = shortName;
    option.help = help;
    options_.push_back(std::move(option));
    return *this;
}

ArgParser& ArgParser::Option(const std::string& longName, char shortName,
                             const std::string& valueName, const std::string& help,
                             const std::string& fallback) {
    OptionSpec option;
    option.longName = longName;
    option.shortName = shortName;
    option.valueName = valueName;
    option.help = help;
    option.fallback = fallback;
    options_.push_back(std::move(option));
    return *this;
}

ArgParser& ArgParser::Choice(const std::string& longName, const std::string& valueName,
                             const std::vector<std::string>& choices, const std::string& help,
                             const std::string& fallback) {
    Option(longName, 0, valueName, help, fallback);
    options_.back().choices = choices;
    return *this;
}

ArgParser& ArgParser::Positional(const std::string& name, const std::string& help, bool required,
                                 bool repeating) {
    PositionalSpec positional;
    positional.name = name;
    positional.help = help;
    positional.required = required;
    positional.repeating = repeating;
    positionals_.push_back(std::move(positional));
    return *this;
}

ArgParser& ArgParser::Epilog(const std::string& text) {
    epilog_ = text;
    return *this;
}

ArgParser::OptionSpec* ArgParser::FindLong(const std::string& name) {
    for (OptionSpec& option : options_) {
        if (option.longName == name) return &option;
    }
    return nullptr;
}

const ArgParser::OptionSpec* ArgParser::FindLong(const std::string& name) const {
    for (const OptionSpec& option : options_) {
        if (option.longName == name) return &option;
    }
    return nullptr;
}

ArgParser::OptionSpec* ArgParser::FindShort(char name) {
    for (OptionSpec& option : options_) {
        if (option.shortName != 0 && option.shortName == name) return &option;
    }
    return nullptr;
}

const ArgParser::PositionalSpec* ArgParser::FindPositional(const std::string& name) const {
    for (const PositionalSpec& positional : positionals_) {
        if (positional.name == name) return &positional;
    }
    return nullptr;
}

bool ArgParser::Fail(const std::string& text) {
    if (error_.empty()) error_ = text;
    return false;
}

bool ArgParser::Store(OptionSpec& option, const std::string& shown, const std::string& value) {
    if (!option.choices.empty()) {
        bool known = false;
        for (const std::string& choice : option.choices)
            known = known || choice == value;
        if (!known) {
            return Fail("invalid value '" + value + "' for " + shown + " (choose from " +
                        JoinChoices(option.choices) + ")");
        }
    }
    option.values.push_back(value);
    if (option.longName == "help") help_ = true;
    return true;
}

bool ArgParser::ParseLong(const std::vector<std::string>& args, std::size_t& i) {
    const std::string& word = args[i];
    const std::size_t equals = word.find('=');
    const std::string name =
        word.substr(2, equals == std::string::npos ? std::string::npos : equals - 2);
    OptionSpec* option = FindLong(name);
    if (option == nullptr) return Fail("unknown option '--" + name + "'");
    const std::string shown = "'--" + name + "'";
    if (option->valueName.empty()) {
        if (equals != std::string::npos) return Fail("option " + shown + " takes no value");
        return Store(*option, shown, "");
    }
    if (equals != std::string::npos) return Store(*option, shown, word.substr(equals + 1));
    if (i + 1 >= args.size()) return Fail("option " + shown + " needs a value");
    return Store(*option, shown, args[++i]);
}

bool ArgParser::ParseShort(const std::vector<std::string>& args, std::size_t& i) {
    const std::string& word = args[i];
    for (std::size_t k = 1; k < word.size(); ++k) {
        OptionSpec* option = FindShort(word[k]);
        const std::string shown = std::string("'-") + word[k] + "'";
        if (option == nullptr) return Fail("unknown option " + shown);
        if (option->valueName.empty()) {
            if (!Store(*option, shown, "")) return false;
            continue;
        }
        // A one-letter option with a value takes the rest of the word, or the next word.
        if (k + 1 < word.size()) return Store(*option, shown, word.substr(k + 1));
        if (i + 1 >= args.size()) return Fail("option " + shown + " needs a value");
        return Store(*option, shown, args[++i]);
    }
    return true;
}

bool ArgParser::AssignPositionals(const std::vector<std::string>& words) {
    std::size_t required = 0;
    for (const PositionalSpec& positional : positionals_) {
        if (positional.required) ++required;
    }
    std::size_t next = 0;
    std::size_t optionalRoom = words.size() > required ? words.size() - required : 0;
    for (PositionalSpec& positional : positionals_) {
        if (positional.repeating) {
            // The repeating argument, declared last, takes the rest.
            while (next < words.size())
                positional.words.push_back(words[next++]);
            if (positional.required && positional.words.empty())
                return Fail("missing argument " + positional.name);
            continue;
        }
        if (positional.required) {
            if (next >= words.size()) return Fail("missing argument " + positional.name);
            positional.words.push_back(words[next++]);
        } else if (optionalRoom > 0 && next < words.size()) {
            positional.words.push_back(words[next++]);
            --optionalRoom;
        }
    }
    if (next < words.size()) return Fail("unexpected argument '" + words[next] + "'");
    return true;
}

bool ArgParser::Parse(const std::vector<std::string>& args) {
    std::vector<std::string> words;
    bool optionsEnded = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& word = args[i];
        bool ok = true;
        if (optionsEnded || word == "-" || word.empty() || word[0] != '-') {
            words.push_back(word);
        } else if (word == "--") {
            optionsEnded = true;
        } else if (word.rfind("--", 0) == 0) {
            ok = ParseLong(args, i);
        } else {
            ok = ParseShort(args, i);
        }
        if (help_) return true;  // help wins over everything else on the line
        if (!ok) return false;
    }
    return AssignPositionals(words);
}

int ArgParser::Count(const std::string& longName) const {
    const OptionSpec* option = FindLong(longName);
    return option != nullptr ? static_cast<int>(option->values.size()) : 0;
}

std::string ArgParser::Value(const std::string& longName) const {
    const OptionSpec* option = FindLong(longName);
    if (option == nullptr) return "";
    return option->values.empty() ? option->fallback : option->values.back();
}

std::vector<std::string> ArgParser::Values(const std::string& longName) const {
    const OptionSpec* option = FindLong(longName);
    return option != nullptr ? option->values : std::vector<std::string>{};
}

std::vector<std::string> ArgParser::Positionals(const std::string& name) const {
    const PositionalSpec* positional = FindPositional(name);
    return positional != nullptr ? positional->words : std::vector<std::string>{};
}

std::string ArgParser::PositionalOr(const std::string& name, const std::string& fallback) const {
    const PositionalSpec* positional = FindPositional(name);
    if (positional == nullptr || positional->words.empty()) return fallback;
    return positional->words.front();
}

std::string ArgParser::Usage() const {
    std::string text = "usage: " + usageName_ + " [options]";
    for (const PositionalSpec& positional : positionals_) {
        std::string shown = positional.name + (positional.repeating ? "..." : "");
        text += positional.required ? " " + shown : " [" + shown + "]";
    }
    return text;
}

void ArgParser::PrintHelp(std::ostream& out) const {
    out << Usage() << "\n\n" << summary_ << "\n";
    if (!positionals_.empty()) {
        out << "\narguments:\n";
        for (const PositionalSpec& positional : positionals_) {
            PrintEntry(out, positional.name + (positional.repeating ? "..." : ""), positional.help);
        }
    }
    out << "\noptions:\n";
    for (const OptionSpec& option : options_) {
        std::string left = option.shortName != 0 ? std::string("-") + option.shortName + ", "
                                                 : std::string("    ");
        left += "--" + option.longName;
        if (!option.valueName.empty()) left += " " + option.valueName;
        std::string help = option.help;
        if (!option.choices.empty()) help += "\n(" + JoinChoices(option.choices) + ")";
        if (!option.fallback.empty()) help += " [default: " + option.fallback + "]";
        PrintEntry(out, left, help);
    }
    if (!epilog_.empty()) out << "\n" << epilog_;
    if (!epilog_.empty() && epilog_.back() != '\n') out << "\n";
}

// -- numbers -------------------------------------------------------------------------------------

std::optional<unsigned> ParseUnsigned(const std::string& text) {
    if (text.empty() || text[0] < '0' || text[0] > '9') return std::nullopt;
    std::uint32_t value = 0;
    const char* end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, value);
    if (ec != std::errc() || ptr != end) return std::nullopt;
    return value;
}

std::optional<int> ParseInt(const std::string& text) {
    if (text.empty()) return std::nullopt;
    std::int32_t value = 0;
    const char* begin = text.data() + (text[0] == '+' ? 1 : 0);
    const char* end = text.data() + text.size();
    if (begin == end) return std::nullopt;
    const auto [ptr, ec] = std::from_chars(begin, end, value);
    if (ec != std::errc() || ptr != end) return std::nullopt;
    return value;
}

std::optional<double> ParseDouble(const std::string& text) {
    if (text.empty()) return std::nullopt;
    double value = 0.0;
    const char* begin = text.data() + (text[0] == '+' ? 1 : 0);
    const char* end = text.data() + text.size();
    if (begin == end) return std::nullopt;
    const auto [ptr, ec] = std::from_chars(begin, end, value);
    if (ec != std::errc() || ptr != end || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::optional<std::vector<unsigned>> ParseUnsignedList(const std::string& text) {
    std::vector<unsigned> values;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t comma = text.find(',', start);
        const std::string part =
            text.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
        const std::optional<unsigned> value = ParseUnsigned(part);
        if (!value) return std::nullopt;
        values.push_back(*value);
        if (comma == std::string::npos) break;
        start = comma + 1;
    }
    return values;
}

}  // namespace orvo::cli
