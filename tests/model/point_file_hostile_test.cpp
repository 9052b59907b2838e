// Point files of hostile size and shape: many points, a file without line ends, a record longer
// than a line may be. (scripts/hostile_inputs.sh runs the full-size version: ten million points.)
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <streambuf>
#include <string>

#include "orvo/model/point_list.h"
#include "orvo/textfile/tokenizer.h"
#include "orvo/textfile/writer.h"
#include "temp_dir.h"

namespace orvo {
namespace {

using Table = TOvFormatTable<eOvPointRWMask>;
using test::TempDir;

Table MakeTable(std::initializer_list<std::uint32_t> codes) {
    Table table;
    for (std::uint32_t code : codes)
        table.AddEntry(static_cast<eOvPointRWMask>(code));
    return table;
}

// `pattern` repeated to `total` bytes, made on the fly; counts what the reader took.
class RepeatingInput : public std::streambuf {
public:
    RepeatingInput(const std::string& pattern, std::uint64_t total) : total_(total) {
        while (chunk_.size() < 65536)
            chunk_ += pattern;
    }
    std::uint64_t Delivered() const {
        return delivered_ - static_cast<std::uint64_t>(egptr() - gptr());
    }

protected:
    int_type underflow() override {
        if (delivered_ >= total_) return traits_type::eof();
        const std::uint64_t left = total_ - delivered_;
        const std::size_t size =
            left < chunk_.size() ? static_cast<std::size_t>(left) : chunk_.size();
        setg(chunk_.data(), chunk_.data(), chunk_.data() + size);
        delivered_ += size;
        return traits_type::to_int_type(chunk_[0]);
    }

private:
    std::string chunk_;
    std::uint64_t total_;
    std::uint64_t delivered_ = 0;
};

class PointFileHostileTest : public ::testing::Test {
protected:
    void SetUp() override { OvWriterReset(); }
    void TearDown() override { OvWriterReset(); }
};

TEST_F(PointFileHostileTest, ThirtyThousandPointsRoundTrip) {
    constexpr unsigned kPoints = 30000;
    const Table table = MakeTable({1, 7, 8, 9});
    OvPointList list(table);
    for (unsigned id = 1; id <= kPoints; ++id) {
        list.Add(new OvPoint(id, id * 0.125, -1.0625 * id + 0.1, 1000.0 / id, 0));
    }
    TempDir dir;
    const String name(dir.file("many.coo").c_str());
    ASSERT_EQ(list.WriteFile(name), 1);

    OvPointList read;
    ASSERT_EQ(read.ReadFile(name, table), static_cast<int>(kPoints));
    // Coordinates are written with 16 significant digits, so each reads back as that text.
    auto asWritten = [](double value) {
        char text[40];
        std::snprintf(text, sizeof text, "%.16g", value);
        return std::strtod(text, nullptr);
    };
    unsigned id = 1;
    for (const OvPoint* p = read.First(); p != nullptr; p = p->Next(), ++id) {
        ASSERT_EQ(p->GetId(), id);
        ASSERT_EQ(p->GetX(), asWritten(id * 0.125));
        ASSERT_EQ(p->GetY(), asWritten(-1.0625 * id + 0.1));
        ASSERT_EQ(p->GetZ(), asWritten(1000.0 / id));
    }
    EXPECT_EQ(id, kPoints + 1);
}

TEST_F(PointFileHostileTest, EndlessLineOfRecordsEndsWithAStreamError) {
    // Records without any line end: the points of the first line buffer are read, then the
    // tokenizer's stream error ends the read; the rest of the input is never touched.
    RepeatingInput source("12 2.5 3.5 4.5 ", std::uint64_t{1} << 40);
    std::istream in(&source);
    OvParser parser;
    OvPointList list(MakeTable({1, 7, 8, 9}));
    try {
        parser.ParseForToken(in);
        list.Read(parser, in);
        ADD_FAILURE() << "an endless line must end in a stream error";
    } catch (const OvParserStatus& status) {
        EXPECT_EQ(status.GetStatus(), ParserErrorStream);
    }
    // 15 characters a record: the line buffer holds 567 of them and a piece of the next.
    EXPECT_EQ(list.Count(), static_cast<int>(OvParser::kMaxLineLength / 15));
    EXPECT_LE(source.Delivered(), 2 * OvParser::kLineBufferSize);
    for (const OvPoint* p = list.First(); p != nullptr; p = p->Next()) {
        ASSERT_EQ(p->GetId(), 12U);
        ASSERT_EQ(p->GetZ(), 4.5);
    }
}

TEST_F(PointFileHostileTest, FileWithoutLineEndsReadsOnlyItsFirstLineBuffer) {
    TempDir dir;
    const std::string path = dir.file("oneline.coo");
    // 17 characters a record: the line buffer ends inside a record, which is not kept.
    const std::string record = "7 1.25 2.5 3.755 ";
    std::string text;
    text.reserve(4 << 20);
    while (text.size() < (4U << 20))
        text += record;
    test::WriteWholeFile(path, text);

    OvPointList list;
    EXPECT_EQ(list.ReadFile(String(path.c_str()), MakeTable({1, 7, 8, 9})),
              static_cast<int>(OvParser::kMaxLineLength / 17));
}

TEST_F(PointFileHostileTest, NameLongerThanAStringHoldsIsWrittenCutAndNotReadBack) {
    const Table table = MakeTable({1, 4, 7});
    OvPointList list(table);
    auto* point = new OvPoint(3, 1.5, 0, 0, 0);
    point->SetName(String(std::string(70000, 'n').c_str()));
    list.Add(point);
    list.Add(new OvPoint(4, 2.5, 0, 0, 0));
    TempDir dir;
    const String name(dir.file("longname.coo").c_str());
    ASSERT_EQ(list.WriteFile(name), 1);
    const std::string written = test::ReadWholeFile(name.chars());
    // id (10 wide), the name cut to what a String holds, x.
    EXPECT_EQ(written.find(std::string(String::kMaxLength, 'n')), 12U);
    EXPECT_EQ(written.find(std::string(String::kMaxLength + 1, 'n')), std::string::npos);

    // The line is longer than the tokenizer takes: the read stops with a stream error, quietly,
    // and keeps nothing of the over-long record.
    OvPointList read;
    EXPECT_EQ(read.ReadFile(name, table), 0);
}

}  // namespace
}  // namespace orvo
