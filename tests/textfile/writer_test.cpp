// Exact bytes written by the block-file manipulators.
#include <gtest/gtest.h>

#include <sstream>
#include <streambuf>
#include <string>

#include "orvo/foundation/string.h"
#include "orvo/textfile/tokenizer.h"
#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

class WriterTest : public ::testing::Test {
protected:
    void SetUp() override { OvWriterReset(); }
    void TearDown() override { OvWriterReset(); }
    std::ostringstream out;
};

std::string Blanks(int n) {
    return std::string(static_cast<std::size_t>(n), ' ');
}

TEST_F(WriterTest, EndBlockAtLevelZeroStaysAtZero) {
    out << OvEndBlock;
    EXPECT_EQ(out.str(), "}");
    EXPECT_EQ(OvWriterLevel(), 0);
    out << OvTabMinus << OvEndBlockNL;
    EXPECT_EQ(OvWriterLevel(), 0);
    EXPECT_EQ(out.str(), "}\n}");
}

TEST_F(WriterTest, EndlIndentsByFourBlanksPerLevel) {
    out << OvTabPlus << OvTabPlus << Ovendl;
    EXPECT_EQ(out.str(), "\n" + Blanks(8));
    EXPECT_EQ(OvWriterLevel(), 2);
    out << OvTabMinus << Ovendl;
    EXPECT_EQ(out.str(), "\n" + Blanks(8) + "\n" + Blanks(4));
}

TEST_F(WriterTest, BlockWithNewlinesAtLevelZero) {
    out << OvBeginBlockNL << OvEndBlockNL;
    EXPECT_EQ(out.str(), "{\n    \n}");
    EXPECT_EQ(OvWriterLevel(), 0);
}

TEST_F(WriterTest, NestedBlocksIndentEntriesAndCloseOneLevelLess) {
    out << "OUTER " << OvBeginBlockNL << "a 1" << Ovendl << "INNER " << OvBeginBlockNL << "b 2"
        << OvEndBlockNL << OvEndBlockNL << Ovendl;
    EXPECT_EQ(out.str(),
              "OUTER {\n"
              "    a 1\n"
              "    INNER {\n"
              "        b 2\n"
              "    }\n"
              "}\n");
    EXPECT_EQ(OvWriterLevel(), 0);
}

TEST_F(WriterTest, InlineBlocksAndComments) {
    out << OvBeginBlock << "x" << OvEndBlock << OvComment << "note";
    EXPECT_EQ(out.str(), "{x}; note");
    EXPECT_EQ(OvWriterLevel(), 0);
    out << OvBeginBlock;
    EXPECT_EQ(OvWriterLevel(), 1);
    OvWriterReset();
    EXPECT_EQ(OvWriterLevel(), 0);
}

TEST_F(WriterTest, LevelIsSharedByAllStreams) {
    std::ostringstream other;
    out << OvBeginBlock;
    other << Ovendl;
    EXPECT_EQ(other.str(), "\n    ");
}

TEST_F(WriterTest, FieldWidthsAreOneBlankPlusARightAlignedField) {
    const struct {
        std::ostream& (*manip)(std::ostream&);
        int width;
    } widths[] = {{w4, 4}, {w6, 8}, {w8, 10}, {w12, 16}, {w14, 18}, {w16, 21}, {w19, 24}};
    for (const auto& w : widths) {
        std::ostringstream line;
        line << w.manip << 42;
        EXPECT_EQ(line.str(), " " + Blanks(w.width - 2) + "42") << "width " << w.width;
    }
}

TEST_F(WriterTest, WidthAppliesToTheFirstItemOnly) {
    out << w8 << 12 << 34 << w4 << '"' << "text" << '"';
    EXPECT_EQ(out.str(), " " + Blanks(8) + "1234" + " " + Blanks(3) + "\"text\"");
}

TEST_F(WriterTest, KeywordsAreLeftAlignedInTwelve) {
    const String comment("text");
    out << s12 << "COMMENT" << w4 << '"' << comment << '"' << Ovendl;
    out << s12 << String("STATE") << w4 << 3 << Ovendl;
    out << s12 << "ALONGKEYWORDX" << w4 << -1;
    EXPECT_EQ(out.str(), "COMMENT" + Blanks(5) + " " + Blanks(3) + "\"text\"\n" + "STATE" +
                             Blanks(7) + " " + Blanks(3) + "3\n" + "ALONGKEYWORDX" + " " +
                             Blanks(2) + "-1");
}

TEST_F(WriterTest, NumbersKeepTheStreamPrecision) {
    out.precision(8);
    out << w14 << 1.0 / 3.0 << w12 << -2.5;
    EXPECT_EQ(out.str(), " " + Blanks(8) + "0.33333333" + " " + Blanks(12) + "-2.5");
}

// Counts flushes so Ovendl's flush can be observed.
class CountingBuffer : public std::stringbuf {
public:
    int syncs = 0;

protected:
    int sync() override {
        ++syncs;
        return std::stringbuf::sync();
    }
};

TEST_F(WriterTest, EndlFlushesBeforeIndenting) {
    CountingBuffer buffer;
    std::ostream stream(&buffer);
    stream << "a" << Ovendl << "b" << Ovendl;
    EXPECT_EQ(buffer.syncs, 2);
    EXPECT_EQ(buffer.str(), "a\nb\n");
}

// A text put between double quotes must come back from the tokenizer as one string on one line:
// quotes, line ends and NULs cannot stand in it.
TEST(QuotableText, ComesBackAsOneStringToken) {
    const char text[] = "say \"hi\"\nline\r2\0end";
    const std::string raw(text, sizeof text - 1);
    const String quotable = OvQuotableText(String(raw.data(), static_cast<int>(raw.size())));
    EXPECT_EQ(std::string(quotable.chars(), static_cast<std::size_t>(quotable.length())),
              "say 'hi' line 2 end");

    std::istringstream in("\"" + std::string(quotable.chars()) + "\" 7\n");
    OvParser parser;
    parser.ParseForToken(in);
    EXPECT_STREQ(parser.GetTokenString(), "say 'hi' line 2 end");
    parser.ParseForToken(in);
    EXPECT_EQ(parser.GetTokenInt(), 7);
}

TEST(QuotableText, LongTextsAreCutToFitALine) {
    const String longText(std::string(9000, 'x').c_str());
    EXPECT_EQ(OvQuotableText(longText).length(), kOvMaxQuotedText);
    EXPECT_EQ(OvQuotableText(longText, 80).length(), 80);
    EXPECT_EQ(OvQuotableText(longText, -5).length(), 0);
    EXPECT_EQ(OvQuotableText(String("short"), 80).length(), 5);
    // The longest quotable text, with a keyword before it, still fits the tokenizer's line.
    std::istringstream in("COMMENT  \"" + std::string(OvQuotableText(longText).chars()) + "\"\n");
    OvParser parser;
    parser.ParseForToken(in);
    parser.ParseForToken(in);
    EXPECT_EQ(std::string(parser.GetTokenString()).size(),
              static_cast<std::size_t>(kOvMaxQuotedText));
}

}  // namespace
}  // namespace orvo
