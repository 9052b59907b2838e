#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "cli_run.h"
#include "temp_dir.h"

namespace {

using TokensRun = orvo::test::CliResult;

TokensRun RunTokens(std::vector<std::string> args) {
    args.insert(args.begin(), "tokens");
    return orvo::test::RunOrvo(args);
}

TEST(TokensCommand, ListsLineKindAndText) {
    orvo::test::TempDir dir;
    const std::string name = dir.file("photo.txt");
    orvo::test::WriteWholeFile(name,
                               "; a photo\r\n"
                               "PHOTOID {   7 \"a b.tif\"}\r\n"
                               "SCALE 0.25 +3 12}\r\n"
                               "BIG 3000000000\n");
    TokensRun run = RunTokens({name});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out,
              "     2  TokenKeyword     PHOTOID\n"
              "     2  TokenBlockBegin  {\n"
              "     2  TokenInt         7\n"
              "     2  TokenString      \"a b.tif\"\n"
              "     2  TokenBlockEnd    }\n"
              "     3  TokenKeyword     SCALE\n"
              "     3  TokenFloat       0.25\n"
              "     3  TokenInt         +3  = 3\n"
              "     3  TokenInt         12}  = 12\n"
              "     3  TokenBlockEnd    }\n"
              "     4  TokenKeyword     BIG\n"
              "     4  TokenInt         3000000000  = 2147483647 (as number 3e+09)\n"
              "     5  TokenEOF\n"
              "12 tokens, 0 errors\n");
}

TEST(TokensCommand, ReportsErrorsInPlaceAndFails) {
    orvo::test::TempDir dir;
    const std::string name = dir.file("bad.txt");
    orvo::test::WriteWholeFile(name, "A 3D B\n\"open\tend\nC 1.5e2\n");
    TokensRun run = RunTokens({name});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.out,
              "     1  TokenKeyword     A\n"
              "     1  error            ParserErrorInvalidNumber: 3D\n"
              "     1  TokenKeyword     B\n"
              "     2  error            ParserErrorUnterminatedString: \"open\\tend\n"
              "     3  TokenKeyword     C\n"
              "     3  TokenFloat       1.5e2  = 150\n"
              "     4  TokenEOF\n"
              "4 tokens, 2 errors\n");
}

TEST(TokensCommand, StopsAtAStreamError) {
    orvo::test::TempDir dir;
    const std::string name = dir.file("long.txt");
    orvo::test::WriteWholeFile(name, "A\n" + std::string(9000, 'x') + "\nB\n");
    TokensRun run = RunTokens({name});
    EXPECT_EQ(run.code, 1);
    const std::string tail = "     2  error            ParserErrorStream\n2 tokens, 1 error\n";
    ASSERT_GE(run.out.size(), tail.size());
    EXPECT_EQ(run.out.substr(run.out.size() - tail.size()), tail);
    EXPECT_EQ(run.out.find("TokenKeyword     B"), std::string::npos);
}

TEST(TokensCommand, UsageAndMissingFile) {
    TokensRun none = RunTokens({});
    EXPECT_EQ(none.code, 2);
    EXPECT_EQ(none.err,
              "orvo tokens: missing argument FILE\n"
              "usage: orvo tokens [options] FILE\n"
              "Try 'orvo tokens --help' for more information.\n");
    EXPECT_EQ(RunTokens({"a", "b"}).code, 2);

    orvo::test::TempDir dir;
    TokensRun missing = RunTokens({dir.file("absent.txt")});
    EXPECT_EQ(missing.code, 1);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "orvo tokens: " + dir.file("absent.txt") + ": cannot open file\n");
}

TEST(TokensCommand, TheBundledExampleReadsWithoutErrors) {
    TokensRun run = RunTokens({orvo::test::ExampleFile("chapel.pro")});
    EXPECT_EQ(run.code, 0) << run.out;
    EXPECT_EQ(run.err, "");
    EXPECT_NE(run.out.find("TokenKeyword     PHOTOID"), std::string::npos);
    EXPECT_EQ(run.out.find("  error  "), std::string::npos);
    EXPECT_NE(run.out.find(" tokens, 0 errors\n"), std::string::npos);
}

}  // namespace
