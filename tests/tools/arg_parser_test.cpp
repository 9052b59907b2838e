// The argument parser of the tool's commands.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "cli/arg_parser.h"

namespace {

using orvo::cli::ArgParser;

ArgParser FitLike() {
    ArgParser parser("orvo fit", "Fit things.");
    parser.Positional("MEASURED", "measured points")
        .Positional("CONTROL", "control points")
        .Choice("type", "TYPE", {"auto", "affin"}, "the type", "auto")
        .Option("write", 'w', "FILE", "output")
        .Option("check", 0, "IDS", "check points")
        .Flag("json", 0, "json")
        .Flag("verbose", 'v', "more")
        .Flag("quiet", 'q', "less");
    return parser;
}

TEST(ArgParser, OptionsInEveryFormAndPositionalsInOrder) {
    ArgParser parser = FitLike();
    ASSERT_TRUE(parser.Parse({"-vv", "a.imo", "--type=affin", "--write", "out.txt", "b.coo",
                              "--json", "-q", "--check", "-5"}))
        << parser.Error();
    EXPECT_FALSE(parser.HelpRequested());
    EXPECT_EQ(parser.PositionalOr("MEASURED", ""), "a.imo");
    EXPECT_EQ(parser.PositionalOr("CONTROL", ""), "b.coo");
    EXPECT_EQ(parser.Value("type"), "affin");
    EXPECT_EQ(parser.Value("write"), "out.txt");
    EXPECT_EQ(parser.Value("check"), "-5");  // a value is taken whatever it looks like
    EXPECT_EQ(parser.Count("verbose"), 2);
    EXPECT_TRUE(parser.Has("json"));
    EXPECT_TRUE(parser.Has("quiet"));
}

TEST(ArgParser, FallbacksShortValuesAndTheEndOfOptions) {
    ArgParser parser = FitLike();
    ASSERT_TRUE(parser.Parse({"-wfile.txt", "--", "-a.imo", "-"})) << parser.Error();
    EXPECT_EQ(parser.Value("type"), "auto");
    EXPECT_FALSE(parser.Has("type"));
    EXPECT_EQ(parser.Value("write"), "file.txt");
    EXPECT_EQ(parser.Value("check"), "");
    EXPECT_EQ(parser.PositionalOr("MEASURED", ""), "-a.imo");
    EXPECT_EQ(parser.PositionalOr("CONTROL", ""), "-");

    ArgParser twice = FitLike();
    ASSERT_TRUE(twice.Parse({"a", "b", "--write", "1", "--write=2"}));
    EXPECT_EQ(twice.Value("write"), "2");
    EXPECT_EQ(twice.Values("write"), (std::vector<std::string>{"1", "2"}));
}

TEST(ArgParser, ErrorsSayWhatIsWrong) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"a"}, "missing argument CONTROL"},
        {{}, "missing argument MEASURED"},
        {{"a", "b", "c"}, "unexpected argument 'c'"},
        {{"a", "b", "--frob"}, "unknown option '--frob'"},
        {{"a", "b", "-x"}, "unknown option '-x'"},
        {{"a", "b", "--write"}, "option '--write' needs a value"},
        {{"a", "b", "-w"}, "option '-w' needs a value"},
        {{"a", "b", "--json=1"}, "option '--json' takes no value"},
        {{"a", "b", "--type", "projective"},
         "invalid value 'projective' for '--type' (choose from auto, affin)"},
    };
    for (const auto& [args, error] : cases) {
        ArgParser parser = FitLike();
        EXPECT_FALSE(parser.Parse(args)) << error;
        EXPECT_EQ(parser.Error(), error);
    }
}

TEST(ArgParser, HelpWinsOverMissingArguments) {
    ArgParser parser = FitLike();
    EXPECT_TRUE(parser.Parse({"--frob", "-h"}) == false);  // the error came first
    ArgParser helped = FitLike();
    EXPECT_TRUE(helped.Parse({"-h", "--frob"}));
    EXPECT_TRUE(helped.HelpRequested());
}

TEST(ArgParser, OptionalAndRepeatingPositionals) {
    ArgParser parser("orvo convert", "x");
    parser.Positional("PROJECT", "p").Positional("POINTS", "q", false);
    ASSERT_TRUE(parser.Parse({"a.pro"}));
    EXPECT_TRUE(parser.Positionals("POINTS").empty());
    EXPECT_EQ(parser.PositionalOr("POINTS", "-"), "-");

    ArgParser files("orvo check", "x");
    files.Positional("FILE", "f", true, true);
    ASSERT_TRUE(files.Parse({"a", "b", "c"}));
    EXPECT_EQ(files.Positionals("FILE"), (std::vector<std::string>{"a", "b", "c"}));
    ArgParser none("orvo check", "x");
    none.Positional("FILE", "f", true, true);
    EXPECT_FALSE(none.Parse({}));
    EXPECT_EQ(none.Error(), "missing argument FILE");
}

TEST(ArgParser, HelpTextShowsUsageArgumentsAndOptions) {
    ArgParser parser = FitLike();
    parser.Epilog("examples:\n  orvo fit a b\n");
    std::ostringstream out;
    parser.PrintHelp(out);
    const std::string help = out.str();
    EXPECT_EQ(parser.Usage(), "usage: orvo fit [options] MEASURED CONTROL");
    EXPECT_EQ(help.rfind("usage: orvo fit [options] MEASURED CONTROL\n\nFit things.\n", 0), 0u);
    EXPECT_NE(help.find("\narguments:\n  MEASURED                measured points\n"),
              std::string::npos)
        << help;
    EXPECT_NE(help.find("  -w, --write FILE        output\n"), std::string::npos) << help;
    EXPECT_NE(help.find("      --type TYPE         the type\n"
                        "                          (auto, affin) [default: auto]\n"),
              std::string::npos)
        << help;
    EXPECT_TRUE(help.ends_with("\nexamples:\n  orvo fit a b\n")) << help;
}

TEST(ArgParser, StrictNumbers) {
    using orvo::cli::ParseDouble;
    using orvo::cli::ParseInt;
    using orvo::cli::ParseUnsigned;
    using orvo::cli::ParseUnsignedList;
    EXPECT_EQ(ParseUnsigned("42"), 42u);
    EXPECT_EQ(ParseUnsigned("4294967295"), 4294967295u);
    EXPECT_FALSE(ParseUnsigned("4294967296"));
    EXPECT_FALSE(ParseUnsigned("-1"));
    EXPECT_FALSE(ParseUnsigned("+1"));
    EXPECT_FALSE(ParseUnsigned("1x"));
    EXPECT_FALSE(ParseUnsigned(""));
    EXPECT_EQ(ParseInt("-7"), -7);
    EXPECT_EQ(ParseInt("+7"), 7);
    EXPECT_FALSE(ParseInt("+"));
    EXPECT_EQ(ParseDouble("2.5e3"), 2500.0);
    EXPECT_EQ(ParseDouble("-0.125"), -0.125);
    EXPECT_FALSE(ParseDouble("inf"));
    EXPECT_FALSE(ParseDouble("1e999"));
    EXPECT_FALSE(ParseDouble("1.5 "));
    EXPECT_EQ(ParseUnsignedList("3,7,12"), (std::vector<unsigned>{3, 7, 12}));
    EXPECT_FALSE(ParseUnsignedList("3,,7"));
    EXPECT_FALSE(ParseUnsignedList(""));
}

}  // namespace
