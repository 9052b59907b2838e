// Damaged point files: whatever the damage, reading keeps the complete records read before it,
// collects the error where the reader counts one, and never crashes. The reader's own rules
// decide what counts: the end of the input inside a block ends the read quietly, and a token of
// the wrong kind that stops the read is reported to the parser-error handler but not left in the
// error list when it is the last error.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "orvo/model/point_list.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"
#include "temp_dir.h"

namespace orvo {
namespace {

using Table = TOvFormatTable<eOvPointRWMask>;
using test::TempDir;
using test::WriteWholeFile;

Table ObjectColumns() {
    Table table;
    for (std::uint32_t code : {1u, 7u, 8u, 9u})
        table.AddEntry(static_cast<eOvPointRWMask>(code));
    return table;
}

// Reads a block file holding "POINTS { <records> }" (or whatever text is given) through a
// reader, so that its collected errors can be looked at. The parser-error handler records the
// status of every error as it is met and lets the reader stop there.
struct BlockRead : LinkHdl {
    OvPointList list{ObjectColumns()};
    int errors = 0;
    int after = 0;
    std::vector<int> handled;  // statuses passed to the parser-error handler

    std::int32_t OnParserError(void* readerPointer) {
        const OvReader* reader = static_cast<const OvReader*>(readerPointer);
        handled.push_back(static_cast<int>(reader->GetReaderErrorList().Last()->GetStatus()));
        return 0;
    }

    explicit BlockRead(const std::string& text) {
        TempDir dir;
        const std::string name = dir.file("project.txt");
        WriteWholeFile(name, text);
        OvReader reader(String(name.c_str()));
        OvReaderObject points("POINTS", Link(&list, &OvPointList::ReadHdl));
        OvReaderObject afterValue("AFTER", &after);
        reader.RegisterObject(points);
        reader.RegisterObject(afterValue);
        reader.SetParserErrorHdl(Link(this, &BlockRead::OnParserError));
        reader.DoProcess(false);
        errors = reader.GetReadErrorCount();
    }
};

int ReadPointFile(const std::string& text, OvPointList& list) {
    TempDir dir;
    const std::string name = dir.file("points.txt");
    WriteWholeFile(name, text);
    return list.ReadFile(String(name.c_str()), ObjectColumns());
}

void ExpectPoint(const OvPoint* p, unsigned id, double x, double y, double z) {
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->GetId(), id);
    EXPECT_EQ(p->GetX(), x);
    EXPECT_EQ(p->GetY(), y);
    EXPECT_EQ(p->GetZ(), z);
}

TEST(PointFileBadInputTest, TruncatedRecordIsDropped) {
    OvPointList list;
    EXPECT_EQ(ReadPointFile("1 1.5 2.5 3.5\n2 4 5 6\n3 7 8", list), 2);
    ExpectPoint(list.Last(), 2, 4, 5, 6);

    // In a block the truncated record ends at the "}", which is no error.
    const BlockRead block("POINTS {\n 1 1 2 3\n 2 4 5\n}\nAFTER 5\n");
    EXPECT_EQ(block.list.Count(), 1);
    EXPECT_EQ(block.errors, 0);
    EXPECT_EQ(block.after, 5);
}

TEST(PointFileBadInputTest, LettersWhereNumbersBelong) {
    // A coordinate column reads 0.0 from a word and goes on.
    OvPointList list;
    EXPECT_EQ(ReadPointFile("1 1 2 3\n2 abc 5 6\n3 7 8 9\n", list), 3);
    ExpectPoint(list.First()->Next(), 2, 0, 5, 6);
    ExpectPoint(list.Last(), 3, 7, 8, 9);

    // The id column wants an integer: a word there raises the tokenizer's wrong-kind error
    // (status 5), which stops the read; the records before it stay. Being the last error, it
    // is taken out of the error list again when the read ends.
    const BlockRead block("POINTS {\n 1 1 2 3\n 2 4 5 6\n x3 7 8 9\n 4 1 1 1\n}\nAFTER 5\n");
    EXPECT_EQ(block.list.Count(), 2);
    ExpectPoint(block.list.Last(), 2, 4, 5, 6);
    EXPECT_EQ(block.handled, std::vector<int>{ParserErrorNotSpecifiedToken});
    EXPECT_EQ(block.errors, 0);

    OvPointList top;
    EXPECT_EQ(ReadPointFile("1 1 2 3\nabc 4 5 6\n", top), 1);
    ExpectPoint(top.First(), 1, 1, 2, 3);
}

TEST(PointFileBadInputTest, MissingClosingBrace) {
    // The end of the input inside a block ends the read without an error; every complete
    // record is kept, an incomplete last one is not.
    const BlockRead block("POINTS {\n 1 1 2 3\n 2 4 5 6\n 3 7 8 9\n 4 1");
    EXPECT_EQ(block.list.Count(), 3);
    ExpectPoint(block.list.Last(), 3, 7, 8, 9);
    EXPECT_EQ(block.errors, 0);
    EXPECT_TRUE(block.handled.empty());
}

// Every point of a list read from the numbers 1, 2, 3, ... in records of four: id k with x, y, z
// the three numbers after it. A record cut short or shifted would break the pattern.
void ExpectConsecutiveRecords(const OvPointList& list) {
    unsigned id = 1;
    for (const OvPoint* p = list.First(); p != nullptr; p = p->Next(), ++id) {
        const double first = 4.0 * (id - 1);
        ExpectPoint(p, id, first + 1, first + 2, first + 3);
    }
}

TEST(PointFileBadInputTest, AMillionColumnsOnOneLine) {
    // 10^6 numbers on one line. A line holds at most 8511 characters: the numbers within them
    // are read, then the overlong line is a stream error (status 2), collected by the reader,
    // which ends the read. The records are all whole.
    std::string line;
    line.reserve(8000000);
    for (int i = 0; i < 1000000; ++i) {
        line += std::to_string(i % 4 == 0 ? i / 4 + 1 : i);
        line += ' ';
    }
    OvPointList list;
    const int count = ReadPointFile(line, list);
    EXPECT_GT(count, 400);
    EXPECT_LT(count, 8511 / 8);
    ExpectConsecutiveRecords(list);

    const BlockRead block("POINTS {\n" + line + "\n}\nAFTER 5\n");
    EXPECT_EQ(block.list.Count(), count);
    ExpectConsecutiveRecords(block.list);
    EXPECT_EQ(block.errors, 1);
    EXPECT_EQ(block.handled, std::vector<int>{ParserErrorStream});
    EXPECT_EQ(block.after, 0);  // nothing after the error is read
}

TEST(PointFileBadInputTest, HugeTokensAndBinaryNoise) {
    // A 100,000-digit number makes its line too long: the record before it stays.
    OvPointList digits;
    const std::string longNumber(100000, '7');
    EXPECT_EQ(ReadPointFile("1 1 2 3\n2 " + longNumber + " 5 6\n3 7 8 9\n", digits), 1);
    ExpectPoint(digits.First(), 1, 1, 2, 3);

    // A number too large for a double, and one too small, in a line of normal length.
    OvPointList extremes;
    EXPECT_EQ(ReadPointFile("1 " + std::string(400, '9') + " 1e-400 3\n", extremes), 1);
    EXPECT_EQ(extremes.First()->GetZ(), 3.0);

    // Binary noise: a tokenizer error in it is raised while stepping past the last column of
    // the record before it, so that record goes too; the ones before it stay.
    std::string noise = "1 1 2 3\n2 4 5 6\n";
    for (int i = 0; i < 4096; ++i)
        noise += static_cast<char>((i * 37 + 11) & 0xFF);
    OvPointList list;
    EXPECT_GE(ReadPointFile(noise, list), 1);
    ExpectPoint(list.First(), 1, 1, 2, 3);
}

}  // namespace
}  // namespace orvo
