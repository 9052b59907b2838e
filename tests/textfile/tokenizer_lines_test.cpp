// How the tokenizer reads lines: counting, line ends, over-long lines and failing streams.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "orvo/textfile/tokenizer.h"
#include "temp_dir.h"
#include "tokenizer_test_support.h"

namespace orvo {
namespace {

using test::ParseAll;
using test::ParseResult;
using test::Texts;
using Strings = std::vector<std::string>;

std::vector<std::uint32_t> Lines(const ParseResult& r) {
    std::vector<std::uint32_t> lines;
    for (const test::SeenToken& token : r.tokens)
        lines.push_back(token.line);
    return lines;
}

TEST(TokenizerLines, CountsLinesIncludingEmptyAndCommentLines) {
    ParseResult r = ParseAll("A\n\n; note\nB C\n   \nD");
    EXPECT_EQ(Texts(r), (Strings{"A", "B", "C", "D"}));
    EXPECT_EQ(Lines(r), (std::vector<std::uint32_t>{1, 4, 4, 6}));
    // The last line has no line feed and is still read; the failed read after it counts.
    EXPECT_EQ(r.final.GetLine(), 7u);
    EXPECT_EQ(r.final.GetStatus(), ParserStatusEOF);
}

TEST(TokenizerLines, CarriageReturnBeforeLineFeedBelongsToTheLineEnd) {
    ParseResult crlf = ParseAll("PHOTOID {\r\n  12 \"a.tif\"\r\n}\r\nSCALE 1.5\r\n");
    ParseResult lf = ParseAll("PHOTOID {\n  12 \"a.tif\"\n}\nSCALE 1.5\n");
    EXPECT_EQ(Texts(crlf), Texts(lf));
    EXPECT_EQ(Lines(crlf), Lines(lf));
    EXPECT_EQ(Lines(crlf), (std::vector<std::uint32_t>{1, 1, 2, 2, 3, 4, 4}));
    EXPECT_EQ(crlf.final.GetLine(), lf.final.GetLine());
    EXPECT_EQ(crlf.tokens[0].text, "PHOTOID");
    EXPECT_EQ(crlf.tokens[6].dvalue, 1.5);
}

TEST(TokenizerLines, LoneCarriageReturnIsAnOrdinaryCharacter) {
    ParseResult r = ParseAll("A\rB 1\r");
    EXPECT_EQ(Texts(r), (Strings{"A\rB", "1\r"}));
    EXPECT_EQ(r.tokens[0].type, TokenKeyword);
    EXPECT_EQ(r.tokens[1].type, TokenInt);
    EXPECT_EQ(r.tokens[1].ivalue, 1);
    EXPECT_EQ(r.final.GetLine(), 2u);
}

TEST(TokenizerLines, ALineOfTheMaximumLengthIsRead) {
    const std::string longest(OvParser::kMaxLineLength, 'a');
    ParseResult r = ParseAll(longest + "\nB\n");
    ASSERT_EQ(r.tokens.size(), 2u);
    EXPECT_EQ(r.tokens[0].text, longest);
    EXPECT_EQ(r.tokens[1].text, "B");
    EXPECT_EQ(r.tokens[1].line, 2u);
    EXPECT_TRUE(r.errors.empty());

    // The carriage return of a CR LF line end does not count against the length.
    r = ParseAll(longest + "\r\nB\r\n");
    EXPECT_EQ(Texts(r), (Strings{longest, "B"}));
    EXPECT_TRUE(r.errors.empty());

    // Nor does a missing line feed at the end of the input.
    r = ParseAll(longest);
    EXPECT_EQ(Texts(r), (Strings{longest}));
    EXPECT_TRUE(r.errors.empty());
}

TEST(TokenizerLines, ALongerLineEndsParsingWithAStreamError) {
    // The part that fit is still tokenised; then the failed stream stops everything.
    const std::string tooLong = "KEY " + std::string(OvParser::kLineBufferSize - 4, '7');
    ASSERT_EQ(tooLong.size(), OvParser::kLineBufferSize);
    ParseResult r = ParseAll(tooLong + "\nNEXT\n");
    ASSERT_EQ(r.tokens.size(), 2u);
    EXPECT_EQ(r.tokens[0].text, "KEY");
    EXPECT_EQ(r.tokens[1].text.size(), OvParser::kMaxLineLength - 4);
    ASSERT_EQ(r.errors.size(), 1u);
    EXPECT_EQ(r.errors[0].status, ParserErrorStream);
    EXPECT_EQ(r.errors[0].line, 1u);
    EXPECT_EQ(r.final.GetStatus(), ParserErrorStream);

    // The error stays: asking again throws again.
    OvParser parser;
    std::istringstream in(std::string(20000, 'x'));
    parser.ParseForToken(in);
    EXPECT_EQ(std::string(parser.GetToken().text), std::string(OvParser::kMaxLineLength, 'x'));
    EXPECT_THROW(parser.ParseForToken(in), OvParserStatus);
    EXPECT_THROW(parser.ParseForToken(in), OvParserStatus);
    EXPECT_EQ(parser.GetStatus().GetStatus(), ParserErrorStream);
}

TEST(TokenizerLines, AStreamThatCannotBeReadIsAStreamError) {
    test::TempDir dir;
    std::ifstream missing(dir.file("no-such-file.txt"));
    OvParser parser;
    try {
        parser.ParseForToken(missing);
        FAIL() << "no error raised";
    } catch (const OvParserStatus& status) {
        EXPECT_EQ(status.GetStatus(), ParserErrorStream);
        EXPECT_EQ(status.GetLine(), 0u);
        EXPECT_EQ(status.GetTokenCount(), 0u);
    }

    std::istringstream bad("A B");
    bad.setstate(std::ios::badbit);
    EXPECT_THROW(parser.ParseForToken(bad), OvParserStatus);
}

TEST(TokenizerLines, ReadsAFileFromDisk) {
    test::TempDir dir;
    const std::string name = dir.file("photo.txt");
    test::WriteWholeFile(name, "PHOTOID {   1 \"img.tif\"}\r\nSCALE 0.25\r\n");
    std::ifstream in(name, std::ios::binary);
    OvParser parser;
    std::vector<std::string> texts;
    for (parser.ParseForToken(in); parser.GetToken().GetType() != TokenEOF;
         parser.ParseForToken(in)) {
        texts.push_back(parser.GetToken().text);
    }
    EXPECT_EQ(texts, (Strings{"PHOTOID", " ", "1", "img.tif", " ", "SCALE", "0.25"}));
    EXPECT_EQ(parser.GetStatus().GetLine(), 3u);
    EXPECT_EQ(parser.GetStatus().GetTokenCount(), 7u);
}

TEST(TokenizerLines, ANulByteEndsTheLinesText) {
    const std::string text("A\0B C\nD\n", 8);
    ParseResult r = ParseAll(text);
    EXPECT_EQ(Texts(r), (Strings{"A", "D"}));
    EXPECT_EQ(r.tokens[1].line, 2u);
}

TEST(TokenizerLines, ANulCharacterFlaggedAsSeparatorStillEndsTheLine) {
    // Even a table that gives NUL a meaning cannot make the scanner run past the line.
    OvParser parser;
    parser.GetChLookup().SetFlags(static_cast<unsigned char>(0), 0xFFFFFFFFu);
    ParseResult r = ParseAll("A \n\"x\nB", parser);
    EXPECT_EQ(Texts(r), (Strings{"A", "B"}));
    ASSERT_EQ(r.errors.size(), 1u);
    EXPECT_EQ(r.errors[0].status, ParserErrorUnterminatedString);
}

TEST(TokenizerLines, ErrorsCarryTheLineAndTokenCountWhereTheyHappened) {
    ParseResult r = ParseAll("A B\nC 4x\n\"open\nD");
    ASSERT_EQ(r.errors.size(), 2u);
    EXPECT_EQ(r.errors[0].status, ParserErrorInvalidNumber);
    EXPECT_EQ(r.errors[0].line, 2u);
    EXPECT_EQ(r.errors[0].count, 3u);
    EXPECT_EQ(r.errors[1].status, ParserErrorUnterminatedString);
    EXPECT_EQ(r.errors[1].line, 3u);
    EXPECT_EQ(r.errors[1].count, 3u);
    EXPECT_EQ(Texts(r), (Strings{"A", "B", "C", "D"}));
    EXPECT_EQ(r.final.GetTokenCount(), 4u);
}

}  // namespace
}  // namespace orvo
