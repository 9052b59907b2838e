// Inputs of hostile size through the tokenizer, the block reader and the settings files: a text
// without line ends, blocks nested a hundred thousand deep, strings longer than a String can
// hold. Reading must stay within bounded memory and time and end with a clear error, never a
// crash. (scripts/hostile_inputs.sh runs the full-size versions: 2 GB, a million blocks.)
#include <gtest/gtest.h>

#include <cstdint>
#include <istream>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "orvo/textfile/profile.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/tokenizer.h"
#include "temp_dir.h"

namespace orvo {
namespace {

// An input of `total` bytes made of `pattern` repeated, produced on the fly, that counts how
// much of it was taken: a file of any size without the disk or the memory it would need.
class RepeatingInput : public std::streambuf {
public:
    RepeatingInput(std::string pattern, std::uint64_t total)
        : chunk_(MakeChunk(pattern)), total_(total) {}

    std::uint64_t Delivered() const {
        return delivered_ - static_cast<std::uint64_t>(egptr() - gptr());
    }

protected:
    int_type underflow() override {
        if (delivered_ >= total_) return traits_type::eof();
        const std::uint64_t left = total_ - delivered_;
        const std::size_t size =
            left < chunk_.size() ? static_cast<std::size_t>(left) : chunk_.size();
        char* begin = chunk_.data();
        setg(begin, begin, begin + size);
        delivered_ += size;
        return traits_type::to_int_type(*begin);
    }

private:
    static std::string MakeChunk(const std::string& pattern) {
        std::string chunk;
        while (chunk.size() < 65536)
            chunk += pattern;
        return chunk;
    }

    std::string chunk_;
    std::uint64_t total_;
    std::uint64_t delivered_ = 0;
};

class GoOn : public LinkHdl {
public:
    std::int32_t Always(void*) { return 1; }
};

// Binds "B" to itself at every depth.
class Nesting : public LinkHdl {
public:
    std::int32_t OnBlock(void* arg) {
        auto* block = static_cast<OvReaderObject*>(arg);
        ++blocks;
        block->RegisterObject(OvReaderObject("B", Link(this, &Nesting::OnBlock)));
        block->DoProcess();
        return 1;
    }
    long blocks = 0;
};

TEST(HostileInput, EndlessLineStopsTheTokenizerAfterOneLineBuffer) {
    // A gigantic input without a line end: the tokenizer takes one line buffer's worth, reports
    // a stream error and reads no further, however large the rest is.
    RepeatingInput source("abcdefghij", std::uint64_t{1} << 40);
    std::istream in(&source);
    OvParser parser;
    parser.ParseForToken(in);
    EXPECT_EQ(parser.GetToken().GetType(), TokenKeyword);
    EXPECT_EQ(std::string(parser.GetToken().text).size(), OvParser::kMaxLineLength);
    try {
        parser.ParseForToken(in);
        ADD_FAILURE() << "a line without end must end in a stream error";
    } catch (const OvParserStatus& status) {
        EXPECT_EQ(status.GetStatus(), ParserErrorStream);
        EXPECT_EQ(status.GetLine(), 1U);
    }
    EXPECT_LE(source.Delivered(), 2 * OvParser::kLineBufferSize);
}

TEST(HostileInput, EndlessLineEndsTheReaderWithOneError) {
    // ("}" is left out: at the top level it simply ends the read.)
    for (const char* pattern : {"x", "1234567890", "\"", "{", " ", "\t;"}) {
        RepeatingInput source(pattern, std::uint64_t{1} << 40);
        std::istream in(&source);
        OvReader reader(in, String("endless.txt"));
        GoOn goOn;
        int value = 0;
        reader.RegisterObject(OvReaderObject("x", &value));
        // Even a reader told to go on after every error stops: a failed stream stays failed.
        reader.SetParserErrorHdl(Link(&goOn, &GoOn::Always));
        reader.DoProcess(false);
        ASSERT_GE(reader.GetReadErrorCount(), 1) << pattern;
        EXPECT_EQ(reader.GetReaderErrorList().Last()->GetStatus(), ParserErrorStream) << pattern;
        EXPECT_LE(source.Delivered(), 2 * OvParser::kLineBufferSize) << pattern;
    }
}

TEST(HostileInput, DeeplyNestedUnknownBlocksAreSkippedAsOneError) {
    constexpr int kDepth = 100000;
    std::string text;
    for (int i = 0; i < kDepth; ++i)
        text += "U {\n";
    for (int i = 0; i < kDepth; ++i)
        text += "}\n";
    text += "X 5\n";
    std::istringstream in(text);
    OvReader reader(in, String("nested.txt"));
    int x = 0;
    reader.RegisterObject(OvReaderObject("X", &x));
    reader.DoProcess(false);
    EXPECT_EQ(x, 5);
    ASSERT_EQ(reader.GetReadErrorCount(), 1);
    EXPECT_EQ(reader.GetReaderErrorList().First()->GetLine(), 1U);
}

TEST(HostileInput, DeeplyNestedKnownBlocksStopAtTheDepthLimit) {
    // A handler that takes its own keyword at every depth would recurse once per level; past
    // the reader's depth limit the blocks are skipped instead, so the stack stays small.
    constexpr int kDepth = 100000;
    std::string text;
    for (int i = 0; i < kDepth; ++i)
        text += "B {\n";
    for (int i = 0; i < kDepth; ++i)
        text += "}\n";
    text += "X 7\n";
    std::istringstream in(text);
    OvReader reader(in, String("nested.txt"));
    Nesting nesting;
    int x = 0;
    reader.RegisterObject(OvReaderObject("B", Link(&nesting, &Nesting::OnBlock)));
    reader.RegisterObject(OvReaderObject("X", &x));
    reader.DoProcess(false);
    EXPECT_EQ(nesting.blocks, OvReader::kMaxBlockDepth);
    EXPECT_EQ(x, 7);
    EXPECT_EQ(reader.GetReadErrorCount(), 1);
    EXPECT_EQ(reader.GetScopeDepth(), 1);
}

TEST(HostileInput, UnclosedNestingEndsAtTheEndOfTheInput) {
    for (const char* pattern : {"B {\n", "U {\n", "{\n", "{{{{{{{{\n"}) {
        RepeatingInput source(pattern, 50000);
        std::istream in(&source);
        OvReader reader(in, String("unclosed.txt"));
        Nesting nesting;
        GoOn goOn;
        reader.RegisterObject(OvReaderObject("B", Link(&nesting, &Nesting::OnBlock)));
        reader.SetParserErrorHdl(Link(&goOn, &GoOn::Always));
        reader.DoProcess(false);
        EXPECT_EQ(source.Delivered(), 50000U) << pattern;
        EXPECT_EQ(reader.GetScopeDepth(), 1) << pattern;
        EXPECT_LE(nesting.blocks, OvReader::kMaxBlockDepth) << pattern;
    }
}

TEST(HostileInput, StringLongerThanALineIsAStreamErrorAndLeavesTheTarget) {
    // The line is cut at the line buffer's end, so the string has no closing quote there: an
    // unterminated string, then the stream error that ends the read.
    const std::string text = "NAME \"" + std::string(70000, 's') + "\"\nCOUNT 3\n";
    std::istringstream in(text);
    OvReader reader(in, String("long.txt"));
    String name("unchanged");
    int count = 0;
    GoOn goOn;
    reader.RegisterObject(OvReaderObject("NAME", &name));
    reader.RegisterObject(OvReaderObject("COUNT", &count));
    reader.SetParserErrorHdl(Link(&goOn, &GoOn::Always));
    reader.DoProcess(false);
    EXPECT_STREQ(name.chars(), "unchanged");
    EXPECT_EQ(count, 0);
    std::vector<eOvParserStatus> statuses;
    for (const OvReaderError* e = reader.GetReaderErrorList().First(); e != nullptr;
         e = e->Next()) {
        statuses.push_back(e->GetStatus());
        EXPECT_EQ(e->GetLine(), 1U);
    }
    EXPECT_EQ(statuses,
              (std::vector<eOvParserStatus>{ParserErrorUnterminatedString, ParserErrorStream}));
}

TEST(HostileInput, LongestStringThatFitsALineIsRead) {
    const std::size_t room = OvParser::kMaxLineLength - std::string("NAME \"\"").size();
    const std::string value(room, 'q');
    std::istringstream in("NAME \"" + value + "\"\n");
    OvReader reader(in, String("long.txt"));
    String name;
    reader.RegisterObject(OvReaderObject("NAME", &name));
    reader.DoProcess(false);
    EXPECT_EQ(reader.GetReadErrorCount(), 0);
    EXPECT_EQ(std::string(name.chars()), value);
}

TEST(HostileInput, SettingsValueOfSeventyThousandCharacters) {
    test::TempDir dir;
    const std::string file = dir.file("long.ini");
    const std::string value(70000, 'v');
    ASSERT_EQ(OvWritePrivateProfile("Long", "Value", value.c_str(), file.c_str()), 1);
    EXPECT_EQ(test::ReadWholeFile(file), "[Long]\nValue=" + value + "\n");

    // A line is read in pieces: the key's piece holds the start of the value.
    std::vector<char> result(value.size() + 2);
    const int length = OvGetPrivateProfile("Long", "Value", result.data(),
                                           static_cast<int>(result.size()), "", file.c_str());
    EXPECT_EQ(length, static_cast<int>(kOvProfileLineLength - std::string("Value=").size()));
    EXPECT_EQ(std::string(result.data()), value.substr(0, static_cast<std::size_t>(length)));

    // Rewriting another key keeps the long line whole.
    ASSERT_EQ(OvWritePrivateProfile("Long", "Other", "1", file.c_str()), 1);
    EXPECT_EQ(test::ReadWholeFile(file), "[Long]\nValue=" + value + "\nOther=1\n");
}

}  // namespace
}  // namespace orvo
