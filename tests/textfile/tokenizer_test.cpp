// Token kinds, values and texts as the tokenizer cuts them.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "orvo/textfile/tokenizer.h"
#include "tokenizer_test_support.h"

namespace orvo {
namespace {

using test::ParseAll;
using test::ParseResult;
using test::Texts;
using test::Types;
using Kinds = std::vector<eOvTokentype>;
using Strings = std::vector<std::string>;

TEST(Tokenizer, CutsEveryKindOfToken) {
    ParseResult r = ParseAll("PHOTOID 12 -3 +4 1.5 \"a b\" { } - .\n");
    EXPECT_EQ(Types(r), (Kinds{TokenKeyword, TokenInt, TokenInt, TokenInt, TokenFloat, TokenString,
                               TokenBlockBegin, TokenBlockEnd, TokenOther, TokenOther}));
    EXPECT_EQ(Texts(r), (Strings{"PHOTOID", "12", "-3", "+4", "1.5", "a b", " ", " ", "-", "."}));
    EXPECT_EQ(r.tokens[1].ivalue, 12);
    EXPECT_EQ(r.tokens[2].ivalue, -3);
    EXPECT_EQ(r.tokens[3].ivalue, 4);
    EXPECT_EQ(r.tokens[4].dvalue, 1.5);
    EXPECT_TRUE(r.errors.empty());
    EXPECT_EQ(r.final.GetStatus(), ParserStatusEOF);
    EXPECT_EQ(r.final.GetTokenCount(), 10u);
}

TEST(Tokenizer, GetNumberGivesTheValueOfNumbersOnly) {
    ParseResult r = ParseAll("7 2.25 KEY \"9\" { } -");
    ASSERT_EQ(r.tokens.size(), 7u);
    EXPECT_EQ(r.tokens[0].number, 7.0);
    EXPECT_EQ(r.tokens[1].number, 2.25);
    for (std::size_t i = 2; i < r.tokens.size(); ++i)
        EXPECT_EQ(r.tokens[i].number, 0.0) << i;
}

TEST(Tokenizer, ClassifiesNumbersWordsAndInvalidNumbers) {
    struct Case {
        const char* text;
        eOvTokentype type;
        double number;
    };
    const Case cases[] = {
        {"1.5e-3", TokenFloat, 1.5e-3}, {"2E5", TokenFloat, 2e5},         {"1e", TokenFloat, 1.0},
        {"1E+5", TokenFloat, 1e5},      {"-2.5e-3", TokenFloat, -2.5e-3}, {".5", TokenFloat, 0.5},
        {"-.5", TokenFloat, -0.5},      {"1.2.3", TokenFloat, 1.2},       {"1e5e", TokenFloat, 1e5},
        {"5-3", TokenInt, 5.0},         {"--5", TokenInt, 0.0},           {"e5", TokenKeyword, 0.0},
        {"ABC_1", TokenKeyword, 0.0},   {"x1.5", TokenKeyword, 0.0},      {"-", TokenOther, 0.0},
        {"+", TokenOther, 0.0},         {".", TokenOther, 0.0},           {"#$%", TokenOther, 0.0},
        {"e", TokenKeyword, 0.0},
    };
    for (const Case& c : cases) {
        ParseResult r = ParseAll(c.text);
        ASSERT_EQ(r.tokens.size(), 1u) << c.text;
        EXPECT_EQ(r.tokens[0].type, c.type) << c.text;
        EXPECT_EQ(r.tokens[0].number, c.number) << c.text;
        EXPECT_EQ(r.tokens[0].text, c.text) << c.text;
        EXPECT_TRUE(r.errors.empty()) << c.text;
    }
}

TEST(Tokenizer, LettersInATokenThatStartsOtherwiseAreAnInvalidNumber) {
    for (const char* text : {"_X", "3D", "12abc", "-e5", "1.5x", "0x1A"}) {
        ParseResult r = ParseAll(std::string("A ") + text + " B\n");
        ASSERT_EQ(r.errors.size(), 1u) << text;
        EXPECT_EQ(r.errors[0].status, ParserErrorInvalidNumber) << text;
        EXPECT_EQ(r.errors[0].line, 1u);
        EXPECT_EQ(r.errors[0].count, 1u) << "the invalid token is not counted";
        // Scanning goes on behind the invalid token.
        EXPECT_EQ(Texts(r), (Strings{"A", "B"})) << text;
    }
}

TEST(Tokenizer, InvalidNumberLeavesTheOffendingTextInTheToken) {
    OvParser parser;
    std::istringstream in("12abc");
    try {
        parser.ParseForToken(in);
        FAIL() << "no error raised";
    } catch (const OvParserStatus& status) {
        EXPECT_EQ(status.GetStatus(), ParserErrorInvalidNumber);
    }
    EXPECT_STREQ(parser.GetToken().text, "12abc");
    EXPECT_EQ(parser.GetStatus().GetStatus(), ParserErrorInvalidNumber);
}

TEST(Tokenizer, BracesAreTokensWherever) {
    ParseResult r = ParseAll("KEY{A{1}}\n");
    EXPECT_EQ(Types(r), (Kinds{TokenKeyword, TokenBlockBegin, TokenKeyword, TokenBlockBegin,
                               TokenInt, TokenBlockEnd, TokenBlockEnd}));
    EXPECT_EQ(r.tokens[0].text, "KEY");
    EXPECT_EQ(r.tokens[2].text, "A");
    EXPECT_EQ(r.tokens[4].ivalue, 1);
}

TEST(Tokenizer, TokenBeforeAClosingBraceKeepsTheRestOfTheLineInItsText) {
    ParseResult r = ParseAll("12} 13 1.5}x\n");
    EXPECT_EQ(Types(r),
              (Kinds{TokenInt, TokenBlockEnd, TokenInt, TokenFloat, TokenBlockEnd, TokenKeyword}));
    // The text runs on; kind and value are those of the part before the brace.
    EXPECT_EQ(r.tokens[0].text, "12} 13 1.5}x");
    EXPECT_EQ(r.tokens[0].ivalue, 12);
    EXPECT_EQ(r.tokens[3].text, "1.5}x");
    EXPECT_EQ(r.tokens[3].dvalue, 1.5);
    EXPECT_EQ(r.tokens[5].text, "x");
}

TEST(Tokenizer, StringsHaveNoEscapesAndMayBeEmpty) {
    ParseResult r = ParseAll("\"\" \"a;b!{}\" \"x\"\"y\"\n");
    EXPECT_EQ(Types(r), (Kinds{TokenString, TokenString, TokenString, TokenString}));
    EXPECT_EQ(Texts(r), (Strings{"", "a;b!{}", "x", "y"}));

    // A backslash is an ordinary character: the string ends at the next quote.
    r = ParseAll("\"a\\\"b\"\n");
    ASSERT_EQ(r.tokens.size(), 2u);
    EXPECT_EQ(r.tokens[0].type, TokenString);
    EXPECT_EQ(r.tokens[0].text, "a\\");
    EXPECT_EQ(r.tokens[1].text, "b");
    ASSERT_EQ(r.errors.size(), 1u);  // the last quote opens a string that never closes
    EXPECT_EQ(r.errors[0].status, ParserErrorUnterminatedString);
}

TEST(Tokenizer, QuoteDirectlyAfterATokenStartsAString) {
    ParseResult r = ParseAll("NAME\"file.tif\"12\n");
    EXPECT_EQ(Types(r), (Kinds{TokenKeyword, TokenString, TokenInt}));
    EXPECT_EQ(Texts(r), (Strings{"NAME", "file.tif", "12"}));
}

TEST(Tokenizer, UnterminatedStringDropsTheRestOfTheLine) {
    ParseResult r = ParseAll("A \"open string 12\nB\n");
    ASSERT_EQ(r.errors.size(), 1u);
    EXPECT_EQ(r.errors[0].status, ParserErrorUnterminatedString);
    EXPECT_EQ(r.errors[0].line, 1u);
    EXPECT_EQ(Texts(r), (Strings{"A", "B"}));
    EXPECT_EQ(r.tokens[1].line, 2u);

    OvParser parser;
    std::istringstream in("\"abc");
    EXPECT_THROW(parser.ParseForToken(in), OvParserStatus);
    EXPECT_EQ(parser.GetToken().GetType(), TokenString);
    EXPECT_STREQ(parser.GetToken().text, "abc");
    EXPECT_EQ(parser.GetStatus().GetStatus(), ParserErrorUnterminatedString);
}

TEST(Tokenizer, CommentsRunToTheEndOfTheLine) {
    ParseResult r = ParseAll(
        "; a whole comment line 1 2 3\n"
        "   ! another one\n"
        "A;comment\n"
        "B!comment\n"
        "C 1 ; trailing \"quote\n");
    EXPECT_EQ(Texts(r), (Strings{"A", "B", "C", "1"}));
    EXPECT_EQ(r.tokens[0].line, 3u);
    EXPECT_EQ(r.tokens[3].line, 5u);
    EXPECT_TRUE(r.errors.empty());
}

TEST(Tokenizer, TabsSeparateLikeBlanks) {
    ParseResult r = ParseAll("\tA\t\t1\t \t2.5\t");
    EXPECT_EQ(Texts(r), (Strings{"A", "1", "2.5"}));
}

TEST(Tokenizer, IntegersBeyond32BitsKeepTheirValueForNumbers) {
    struct Case {
        const char* text;
        std::int32_t ivalue;
        double number;
    };
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
    const Case cases[] = {
        {"2147483647", kMax, 2147483647.0},
        {"-2147483648", kMin, -2147483648.0},
        {"2147483648", kMax, 2147483648.0},
        {"-2147483649", kMin, -2147483649.0},
        {"1000000000000000", kMax, 1e15},
        {"9007199254740993", kMax, 9007199254740992.0},  // 2^53 + 1 rounds to even
        {"18446744073709551616", kMax, std::ldexp(1.0, 64)},
        {"-18446744073709551616", kMin, -std::ldexp(1.0, 64)},
        {"100000000000000000000000000000", kMax, 1e29},
        {"000000000000000000000000000042", 42, 42.0},
    };
    for (const Case& c : cases) {
        ParseResult r = ParseAll(c.text);
        ASSERT_EQ(r.tokens.size(), 1u) << c.text;
        EXPECT_EQ(r.tokens[0].type, TokenInt) << c.text;
        EXPECT_EQ(r.tokens[0].ivalue, c.ivalue) << c.text;
        EXPECT_EQ(r.tokens[0].number, c.number) << c.text;
    }
}

TEST(Tokenizer, NegativeZeroKeepsItsSign) {
    ParseResult r = ParseAll("-0 -0.0");
    ASSERT_EQ(r.tokens.size(), 2u);
    EXPECT_EQ(r.tokens[0].type, TokenInt);
    EXPECT_EQ(r.tokens[0].ivalue, 0);
    EXPECT_TRUE(std::signbit(r.tokens[0].number));
    EXPECT_TRUE(std::signbit(r.tokens[1].number));
}

TEST(Tokenizer, ExponentsAtTheEdgesOfTheDoubleRange) {
    ParseResult r = ParseAll("1e308 1e400 -1e400 1e-400 4.9e-324");
    ASSERT_EQ(r.tokens.size(), 5u);
    EXPECT_EQ(r.tokens[0].dvalue, 1e308);
    EXPECT_EQ(r.tokens[1].dvalue, std::numeric_limits<double>::infinity());
    EXPECT_EQ(r.tokens[2].dvalue, -std::numeric_limits<double>::infinity());
    EXPECT_EQ(r.tokens[3].dvalue, 0.0);
    EXPECT_EQ(r.tokens[4].dvalue, std::numeric_limits<double>::denorm_min());
}

TEST(Tokenizer, CheckedRequestsThrowOnTheWrongKind) {
    OvParser parser;
    std::istringstream in("KEY 12 2.5 \"s\"");

    parser.ParseForToken(in);
    EXPECT_EQ(parser.GetToken(TokenKeyword).text, std::string("KEY"));
    try {
        parser.GetTokenString();  // a bare keyword is no string
        FAIL() << "no error raised";
    } catch (const OvParserStatus& status) {
        EXPECT_EQ(status.GetStatus(), ParserErrorNotSpecifiedToken);
        EXPECT_EQ(status.GetLine(), 1u);
        EXPECT_EQ(status.GetTokenCount(), 1u);
    }
    EXPECT_EQ(parser.GetStatus().GetStatus(), ParserErrorNotSpecifiedToken);
    EXPECT_THROW(parser.GetTokenNumber(), OvParserStatus);

    parser.ParseForToken(in);
    EXPECT_EQ(parser.GetTokenInt(), 12);
    EXPECT_EQ(parser.GetTokenNumber(), 12.0);
    EXPECT_THROW(parser.GetTokenFloat(), OvParserStatus);

    parser.ParseForToken(in);
    EXPECT_EQ(parser.GetTokenFloat(), 2.5);
    EXPECT_EQ(parser.GetTokenNumber(), 2.5);
    EXPECT_THROW(parser.GetTokenInt(), OvParserStatus);

    parser.ParseForToken(in);
    EXPECT_STREQ(parser.GetTokenString(), "s");
    EXPECT_THROW(parser.GetTokenNumber(), OvParserStatus);
}

TEST(Tokenizer, EmptyInputGivesEndOfFileOnLineOne) {
    OvParser parser;
    std::istringstream in("");
    parser.ParseForToken(in);
    EXPECT_EQ(parser.GetToken().GetType(), TokenEOF);
    EXPECT_STREQ(parser.GetToken().text, " ");
    EXPECT_EQ(parser.GetStatus().GetStatus(), ParserStatusEOF);
    EXPECT_EQ(parser.GetStatus().GetLine(), 1u);
    EXPECT_EQ(parser.GetStatus().GetTokenCount(), 0u);
    try {
        parser.GetToken(TokenInt);
        FAIL() << "no error raised";
    } catch (const OvParserStatus& status) {
        EXPECT_EQ(status.GetStatus(), ParserStatusEOF);
    }
    // A number request at the end is a wrong kind, not the end.
    try {
        parser.GetToken(TokenNumber);
        FAIL() << "no error raised";
    } catch (const OvParserStatus& status) {
        EXPECT_EQ(status.GetStatus(), ParserErrorNotSpecifiedToken);
    }
}

TEST(Tokenizer, EndOfFileStaysOnceReached) {
    OvParser parser;
    std::istringstream in("A\n");
    parser.ParseForToken(in);
    parser.ParseForToken(in);
    EXPECT_EQ(parser.GetToken().GetType(), TokenEOF);
    EXPECT_EQ(parser.GetStatus().GetLine(), 2u);  // the failed read counts
    std::istringstream more("B C\n");             // even a fresh stream changes nothing
    parser.ParseForToken(more);
    EXPECT_EQ(parser.GetToken().GetType(), TokenEOF);
    EXPECT_EQ(parser.GetStatus().GetTokenCount(), 1u);
}

TEST(Tokenizer, SkipNextParseDeliversTheTokenAgain) {
    OvParser parser;
    std::istringstream in("A B");
    parser.Advance(in);
    EXPECT_STREQ(parser.GetToken().text, "A");
    EXPECT_TRUE(parser.SkipNextParse(true));
    EXPECT_TRUE(parser.IsSkipNextParse());
    parser.Advance(in);
    EXPECT_FALSE(parser.IsSkipNextParse());
    EXPECT_STREQ(parser.GetToken().text, "A");
    EXPECT_EQ(parser.GetStatus().GetTokenCount(), 1u);
    parser.Advance(in);
    EXPECT_STREQ(parser.GetToken().text, "B");
    EXPECT_FALSE(parser.SkipNextParse(false));
}

TEST(Tokenizer, SkipLineDropsTheRestOfTheLine) {
    OvParser parser;
    std::istringstream in("A B;x\nC\n");
    parser.ParseForToken(in);
    parser.ParseForToken(in);
    EXPECT_STREQ(parser.GetToken().text, "B");  // the ";" after it is saved for later
    parser.SkipLine();
    parser.ParseForToken(in);
    EXPECT_STREQ(parser.GetToken().text, "C");
    EXPECT_EQ(parser.GetStatus().GetLine(), 2u);
}

TEST(Tokenizer, DecimalCommaMakesFloats) {
    OvParser parser;
    parser.SetDecPoint(',');
    EXPECT_EQ(parser.GetDecPoint(), ',');
    ParseResult r = ParseAll("1,5 -0,25e2 1.5\n", parser);
    ASSERT_EQ(r.tokens.size(), 3u);
    EXPECT_EQ(r.tokens[0].type, TokenFloat);
    EXPECT_EQ(r.tokens[0].dvalue, 1.5);
    EXPECT_EQ(r.tokens[0].text, "1.5");  // written as "." into the text
    EXPECT_EQ(r.tokens[1].dvalue, -25.0);
    // The point is no decimal point any more: an integer whose number agrees with its value.
    EXPECT_EQ(r.tokens[2].type, TokenInt);
    EXPECT_EQ(r.tokens[2].ivalue, 1);
    EXPECT_EQ(r.tokens[2].number, 1.0);
}

TEST(Tokenizer, DecimalPointLosesSeparatorAndCommentMeaning) {
    OvParser parser;
    parser.SetTokenseperator(',', true);
    parser.SetDecPoint(',');
    EXPECT_EQ(parser.GetChLookup().GetFlags(','), 0u);
    parser.SetCommentChar('#', true);
    parser.SetDecPoint('#');
    EXPECT_EQ(parser.GetChLookup().GetFlags('#'), 0u);
}

TEST(Tokenizer, CommentAndSeparatorCharactersCanBeChanged) {
    OvParser parser;
    parser.SetCommentChar('#', true);
    parser.SetCommentChar(';', false);
    parser.SetTokenseperator(',', true);
    ParseResult r = ParseAll("1,2 ; 3 # 4\n", parser);
    EXPECT_EQ(Texts(r), (Strings{"1", "2", ";", "3"}));
    EXPECT_EQ(r.tokens[2].type, TokenOther);

    // Turning a comment character into a separator takes its comment meaning away, and back.
    OvParser other;
    other.SetTokenseperator('!', true);
    EXPECT_EQ(other.GetChLookup().GetFlags('!'), static_cast<std::uint32_t>(ChSeparator));
    other.SetCommentChar('!', true);
    EXPECT_EQ(other.GetChLookup().GetFlags('!'), static_cast<std::uint32_t>(ChComment));
    other.SetTokenseperator(' ', false);
    EXPECT_EQ(Texts(ParseAll("A!x\nB C", other)), (Strings{"A", "B C"}));
}

TEST(Tokenizer, CopiesContinueIndependently) {
    OvParser original;
    std::istringstream in("A B C\nD\n");
    original.ParseForToken(in);
    original.ParseForToken(in);
    auto copy = std::make_unique<OvParser>(original);
    EXPECT_STREQ(copy->GetToken().text, "B");
    EXPECT_NE(copy->GetToken().text, original.GetToken().text);  // points into its own buffer
    EXPECT_EQ(copy->GetStatus().GetTokenCount(), 2u);

    std::istringstream rest("D\n");  // the copy reads its next line from another stream
    copy->ParseForToken(rest);
    EXPECT_STREQ(copy->GetToken().text, "C");
    copy->ParseForToken(rest);
    EXPECT_STREQ(copy->GetToken().text, "D");
    original.ParseForToken(in);
    EXPECT_STREQ(original.GetToken().text, "C");

    OvParser assigned;
    assigned = original;
    original = OvParser();  // the assigned one must not point into the original
    EXPECT_STREQ(assigned.GetToken().text, "C");
    assigned.ParseForToken(in);
    EXPECT_STREQ(assigned.GetToken().text, "D");
}

TEST(Tokenizer, StatusTexts) {
    EXPECT_STREQ(GetOvParserStatusText(ParserStatusOK), "ParserStatusOK");
    EXPECT_STREQ(GetOvParserStatusText(ParserStatusEOF), "ParserStatusEOF");
    EXPECT_STREQ(GetOvParserStatusText(ParserErrorStream), "ParserErrorStream");
    EXPECT_STREQ(GetOvParserStatusText(ParserErrorUnterminatedString),
                 "ParserErrorUnterminatedString");
    EXPECT_STREQ(GetOvParserStatusText(ParserErrorInvalidNumber), "ParserErrorInvalidNumber");
    EXPECT_STREQ(GetOvParserStatusText(ParserErrorNotSpecifiedToken),
                 "ParserErrorNotSpecifiedToken");
    EXPECT_STREQ(GetOvParserStatusText(static_cast<eOvParserStatus>(6)), "ParserStatus??");
    EXPECT_STREQ(GetOvParserStatusText(static_cast<eOvParserStatus>(7)), "ParserStatus??");
    EXPECT_STREQ(GetOvParserStatusText(static_cast<eOvParserStatus>(0xFFFFFFFFu)),
                 "ParserStatus??");
    EXPECT_STREQ(OvParserStatus(3, 4, ParserErrorStream).GetStatusText(), "ParserErrorStream");
    EXPECT_STREQ(GetOvTokentypeName(TokenBlockBegin), "TokenBlockBegin");
    EXPECT_STREQ(GetOvTokentypeName(static_cast<eOvTokentype>(-1)), "Token??");
}

TEST(Tokenizer, CharacterTableSetsAndClearsBits) {
    OvChLookup table;
    EXPECT_EQ(table.GetFlags('a'), 0u);
    table.SetFlags("ab", 1);
    table.SetFlags('a', 4);
    EXPECT_EQ(table.GetFlags('a'), 5u);
    EXPECT_EQ(table.GetFlags('b'), 1u);
    table.ClearFlags("ab", 1);
    EXPECT_EQ(table.GetFlags('a'), 4u);
    EXPECT_EQ(table.GetFlags('b'), 0u);
    table.SetFlags(0xFF, 16);
    EXPECT_EQ(table.GetFlags(0xFF), 16u);
    table.ClearFlags(0xFF, 16);
    EXPECT_EQ(table.GetFlags(0xFF), 0u);

    const OvParser parser;
    const OvChLookup& defaults = parser.GetChLookup();
    EXPECT_EQ(defaults.GetFlags(' '), 1u);
    EXPECT_EQ(defaults.GetFlags('\t'), 1u);
    EXPECT_EQ(defaults.GetFlags('\n'), 1u);
    EXPECT_EQ(defaults.GetFlags(';'), 2u);
    EXPECT_EQ(defaults.GetFlags('!'), 2u);
    EXPECT_EQ(defaults.GetFlags('"'), 4u);
    EXPECT_EQ(defaults.GetFlags('{'), 8u);
    EXPECT_EQ(defaults.GetFlags('}'), 16u);
    EXPECT_EQ(defaults.GetFlags('\r'), 0u);
    EXPECT_EQ(defaults.GetFlags(','), 0u);
}

}  // namespace
}  // namespace orvo
