// Point records: exact written bytes, whole files written, reading column by column from the
// tokenizer, the end of the data and damaged input.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <locale>
#include <sstream>
#include <string>
#include <vector>

#include "orvo/model/point_list.h"
#include "orvo/textfile/tokenizer.h"
#include "orvo/textfile/writer.h"
#include "temp_dir.h"

namespace orvo {
namespace {

using Table = TOvFormatTable<eOvPointRWMask>;
using test::ReadWholeFile;
using test::TempDir;
using test::WriteWholeFile;

Table MakeTable(std::initializer_list<std::uint32_t> codes) {
    Table table;
    for (std::uint32_t code : codes)
        table.AddEntry(static_cast<eOvPointRWMask>(code));
    return table;
}

// A blank, then the text right-aligned in a field of the given width.
std::string Field(const std::string& text, std::size_t width) {
    return " " + std::string(width > text.size() ? width - text.size() : 0, ' ') + text;
}

std::string Written(const OvPoint& p, const Table& table) {
    std::ostringstream out;
    p.Write(out, table);
    return out.str();
}

std::string Written(const OvPointList& list) {
    std::ostringstream out;
    list.Write(out);
    return out.str();
}

// Reads the text with the list's mask through a tokenizer positioned at its first token.
void ReadText(OvPointList& list, const std::string& text) {
    std::istringstream in(text);
    OvParser parser;
    parser.ParseForToken(in);
    EXPECT_EQ(list.Read(parser, in), 1);
}

OvPoint* NewPoint(unsigned id, double x, double y, double z) {
    return new OvPoint(id, x, y, z, 0);
}

class PointRecordIo : public ::testing::Test {
protected:
    void SetUp() override { OvWriterReset(); }
    void TearDown() override { OvWriterReset(); }
};

// -- writing ------------------------------------------------------------------------------------

TEST_F(PointRecordIo, IdAndCoordinatesLiteral) {
    OvPoint p(12, 1.5, -2.25, 1e15, 0);
    const std::string expected = std::string(9, ' ') + "12" + std::string(19, ' ') + "1.5" +
                                 std::string(17, ' ') + "-2.25" + std::string(6, ' ') +
                                 "1000000000000000";
    EXPECT_EQ(Written(p, MakeTable({1, 7, 8, 9})), expected);
}

TEST_F(PointRecordIo, SixteenSignificantDigits) {
    OvPoint p(1, 1.0 / 3.0, 2.0 / 3.0, 123456789.123456789, 0);
    EXPECT_EQ(Written(p, MakeTable({7, 8, 9})), Field("0.3333333333333333", 21) +
                                                    Field("0.6666666666666666", 21) +
                                                    Field("123456789.1234568", 21));
    // The precision stays set on the stream afterwards.
    std::ostringstream out;
    p.Write(out, MakeTable({1}));
    EXPECT_EQ(out.precision(), 16);
    EXPECT_EQ(Written(OvPoint(1, 1e16, 1e-5, -0.0, 0), MakeTable({7, 8, 9})),
              Field("1e+16", 21) + Field("1e-05", 21) + Field("-0", 21));
}

TEST_F(PointRecordIo, EveryColumnWritten) {
    OvPoint p(4000000000u, 1.25, 2.5, 3.75, 6);
    p.SetName("P17");
    p.SetPhotoId(21);
    p.SetCameraId(3);
    p.SetD(0, 3.0);
    p.SetD(1, 4.0);
    p.SetD(2, 12.0);
    p.SetR(0, -0.5);
    p.SetR(1, 0.125);
    p.SetR(2, 1e-7);
    const Table table = MakeTable({1,  2,  3,  4,  5,  6,   7,   8,   9,   10,  11,  12,
                                   13, 14, 15, 16, 17, 105, 106, 107, 115, 116, 117, 999});
    const std::string expected =
        Field("4000000000", 10) + Field(" 23", 4) + Field("6", 4) + Field("P17", 10) +
        Field("21", 10) + Field("3", 10) + Field("1.25", 21) + Field("2.5", 21) +
        Field("3.75", 21) + Field("3", 24) + Field("4", 24) + Field("12", 24) +
        Field("13", 24) /* sqrt(9 + 16 + 144) */ + Field("-0.5", 24) + Field("0.125", 24) +
        Field("1e-07", 24) + Field("3", 24) + Field("4", 24) + Field("12", 24) + Field("-0.5", 24) +
        Field("0.125", 24) + Field("1e-07", 24);
    EXPECT_EQ(Written(p, table), expected);
}

TEST_F(PointRecordIo, ZeroEndsTheFormatAndUnknownCodesWriteNothing) {
    OvPoint p(5, 1.0, 2.0, 3.0, 0);
    Table table = MakeTable({18, 1, 17, 200, 0, 7});
    EXPECT_EQ(Written(p, table), Field("5", 10));
    EXPECT_EQ(Written(p, Table()), "");
}

TEST_F(PointRecordIo, ListLinesWithoutTrailingLineEnd) {
    OvPointList list(MakeTable({1, 7, 8}));
    EXPECT_EQ(Written(list), "");
    list.Add(NewPoint(1, 0.5, 1.0, 0.0));
    list.Add(NewPoint(2, 2.0, -3.0, 0.0));
    list.Add(NewPoint(3, 4.0, 5.0, 0.0));
    EXPECT_EQ(Written(list), Field("1", 10) + Field("0.5", 21) + Field("1", 21) + "\n" +
                                 Field("2", 10) + Field("2", 21) + Field("-3", 21) + "\n" +
                                 Field("3", 10) + Field("4", 21) + Field("5", 21));
}

TEST_F(PointRecordIo, WriteFileBytesAndReplacement) {
    TempDir dir;
    const std::string name = dir.file("points.txt");
    WriteWholeFile(name, "old content that is longer than the new one\n\n\n\n\n\n\n\n");
    OvPointList list;
    list.Add(NewPoint(7, 1.5, 2.5, 3.5));
    list.Add(NewPoint(8, -1.0, 0.0, 1e15));
    EXPECT_EQ(list.WriteFile(String(name.c_str()), MakeTable({1, 7, 8, 9})), 1);
    EXPECT_EQ(list.GetMask().Size(), 4);  // the mask was set
    EXPECT_EQ(ReadWholeFile(name), Field("7", 10) + Field("1.5", 21) + Field("2.5", 21) +
                                       Field("3.5", 21) + "\n" + Field("8", 10) + Field("-1", 21) +
                                       Field("0", 21) + Field("1000000000000000", 21));
    // No temporary file is left behind.
    int entries = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(dir.path())) {
        ++entries;
    }
    EXPECT_EQ(entries, 1);
}

TEST_F(PointRecordIo, WriteFileStartsAtIndentationZero) {
    // A caller in the middle of a block of another file does not indent the point file.
    std::ostringstream elsewhere;
    elsewhere << OvTabPlus << OvTabPlus;
    OvPointList list(MakeTable({1}));
    list.Add(NewPoint(1, 0, 0, 0));
    list.Add(NewPoint(2, 0, 0, 0));
    EXPECT_EQ(Written(list), Field("1", 10) + "\n        " + Field("2", 10));
    TempDir dir;
    const std::string name = dir.file("points.txt");
    list.WriteFile(String(name.c_str()));
    EXPECT_EQ(ReadWholeFile(name), Field("1", 10) + "\n" + Field("2", 10));
}

TEST_F(PointRecordIo, WriteFileReturnsOneWhenTheFileCannotBeWritten) {
    TempDir dir;
    const std::string name = dir.file("missing/dir/points.txt");
    OvPointList list(MakeTable({1}));
    list.Add(NewPoint(1, 0, 0, 0));
    EXPECT_EQ(list.WriteFile(String(name.c_str())), 1);
    EXPECT_FALSE(std::filesystem::exists(name));
}

// A host locale that writes numbers with a decimal comma and digit grouping.
struct CommaNumbers : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST_F(PointRecordIo, WriteFileIgnoresTheHostLocale) {
    TempDir dir;
    const std::string name = dir.file("points.txt");
    OvPointList list(MakeTable({1, 7}));
    list.Add(NewPoint(123456, 1234567.5, 0, 0));
    const std::locale saved =
        std::locale::global(std::locale(std::locale::classic(), new CommaNumbers));
    list.WriteFile(String(name.c_str()));
    std::locale::global(saved);
    EXPECT_EQ(ReadWholeFile(name), Field("123456", 10) + Field("1234567.5", 21));
}

// -- reading ------------------------------------------------------------------------------------

TEST_F(PointRecordIo, ReadColumnsInTableOrder) {
    OvPointList list(MakeTable({3, 1, 5, 6, 9, 8, 7, 10, 11, 12, 14, 15, 16}));
    ReadText(list, "5 17 2 3 -1.5 2 3.25 0.1 0.2 0.3 -4 -5 -6\n");
    ASSERT_EQ(list.Count(), 1);
    const OvPoint* p = list.First();
    EXPECT_EQ(p->GetControlFlags(), 5);
    EXPECT_EQ(p->GetId(), 17u);
    EXPECT_EQ(p->GetPhotoId(), 2u);
    EXPECT_EQ(p->GetCameraId(), 3u);
    EXPECT_EQ(p->GetZ(), -1.5);
    EXPECT_EQ(p->GetY(), 2.0);
    EXPECT_EQ(p->GetX(), 3.25);
    EXPECT_EQ(p->GetD(0), 0.1);
    EXPECT_EQ(p->GetD(2), 0.3);
    EXPECT_EQ(p->GetR(0), -4.0);
    EXPECT_EQ(p->GetR(2), -6.0);
}

TEST_F(PointRecordIo, ControlCodeColumns) {
    // Code 2 reads the digits, code 3 the flags as they stand.
    OvPointList list(MakeTable({1, 2}));
    ReadText(list, "1 13\n2 123\n3 0\n4 7");
    ASSERT_EQ(list.Count(), 4);
    EXPECT_EQ(list.Find(1, 0)->GetControlFlags(), 5);
    EXPECT_EQ(list.Find(2, 0)->GetControlFlags(), 7);
    EXPECT_EQ(list.Find(3, 0)->GetControlFlags(), 0);
    EXPECT_EQ(list.Find(4, 0)->GetControlFlags(), 0);
    OvPointList plain(MakeTable({1, 3}));
    ReadText(plain, "1 13\n2 65537");
    EXPECT_EQ(plain.Find(1, 0)->GetControlFlags(), 13);
    EXPECT_EQ(plain.Find(2, 0)->GetControlFlags(), 1);  // kept to 16 bits
}

TEST_F(PointRecordIo, SkippedAndDiscardedColumns) {
    // 17 skips a token of any kind; 4 and 13 read a number and drop it.
    OvPointList list(MakeTable({1, 17, 4, 13, 7}));
    ReadText(list, "1 \"any text\" 99 5.5 2.5\n2 word 98 4 3.5\n");
    ASSERT_EQ(list.Count(), 2);
    EXPECT_EQ(list.First()->GetX(), 2.5);
    EXPECT_EQ(list.Last()->GetX(), 3.5);
    EXPECT_EQ(list.Last()->GetD(0), 0.0);
}

TEST_F(PointRecordIo, NumericColumnsTakeIntegerAndFloatOnly) {
    OvPointList list(MakeTable({1, 7, 8, 9, 10}));
    ReadText(list, "1 \"s\" keyword 12 1.5e2\n2 - { 3 -7\n");
    ASSERT_EQ(list.Count(), 2);
    EXPECT_EQ(list.First()->GetX(), 0.0);
    EXPECT_EQ(list.First()->GetY(), 0.0);
    EXPECT_EQ(list.First()->GetZ(), 12.0);
    EXPECT_EQ(list.First()->GetD(0), 150.0);
    EXPECT_EQ(list.Last()->GetX(), 0.0);  // "-" is neither
    EXPECT_EQ(list.Last()->GetY(), 0.0);  // nor is "{"
    EXPECT_EQ(list.Last()->GetZ(), 3.0);
}

TEST_F(PointRecordIo, ResidualColumnsConsumeNothing) {
    OvPointList written(MakeTable({1, 115, 7}));
    OvPoint* p = NewPoint(1, 2.0, 0, 0);
    p->SetR(0, 5.0);
    written.Add(p);
    const std::string text = Written(written);
    EXPECT_EQ(text, Field("1", 10) + Field("5", 24) + Field("2", 21));

    // Read back with the same format the columns shift: x takes the residual's value, and the
    // coordinate starts a second record, which the end of the text leaves incomplete.
    OvPointList read(MakeTable({1, 115, 7}));
    ReadText(read, text);
    ASSERT_EQ(read.Count(), 1);
    EXPECT_EQ(read.First()->GetX(), 5.0);
    EXPECT_EQ(read.First()->GetR(0), 0.0);
}

TEST_F(PointRecordIo, LengthColumnIsConsumedAndDropped) {
    OvPointList written(MakeTable({1, 10, 11, 12, 13, 7}));
    OvPoint* p = NewPoint(4, 9.5, 0, 0);
    p->SetD(0, 1.0);
    p->SetD(1, 2.0);
    p->SetD(2, 2.0);
    written.Add(p);
    const std::string text = Written(written);
    EXPECT_NE(text.find(Field("3", 24) + Field("9.5", 21)), std::string::npos);
    OvPointList read(written.GetMask());
    ReadText(read, text);
    ASSERT_EQ(read.Count(), 1);
    EXPECT_EQ(read.First()->GetX(), 9.5);
    EXPECT_EQ(read.First()->GetD(2), 2.0);
}

TEST_F(PointRecordIo, RoundTripThroughText) {
    const Table table = MakeTable({1, 2, 5, 6, 7, 8, 9, 10, 11, 12, 14, 15, 16});
    OvPointList list(table);
    const double values[][9] = {
        {1e15, -0.0, 0.1, 1e-300, -2.5e-7, 123456789.125, 1e16, -1e22, 0.5},
        {0.0, 9007199254740992.0, -1234.5678, 3.0, 4.0, 5.0, 1.0 / 1024, 2.5e-308, -7e100},
    };
    for (int i = 0; i < 2; ++i) {
        OvPoint* p = new OvPoint(i == 0 ? 4000000000u : 2, values[i][0], values[i][1], values[i][2],
                                 static_cast<short>(i == 0 ? 5 : 2));
        p->SetPhotoId(i == 0 ? 2147483648u : 1);
        p->SetCameraId(77);
        for (int k = 0; k < 3; ++k) {
            p->SetD(k, values[i][3 + k]);
            p->SetR(k, values[i][6 + k]);
        }
        list.Add(p);
    }
    OvPointList read(table);
    ReadText(read, Written(list));
    EXPECT_EQ(read.Count(), 2);
    const OvPoint* a = list.First();
    const OvPoint* b = read.First();
    for (; a != nullptr && b != nullptr; a = a->Next(), b = b->Next()) {
        EXPECT_EQ(b->GetId(), a->GetId());
        EXPECT_EQ(b->GetControlFlags(), a->GetControlFlags());
        EXPECT_EQ(b->GetPhotoId(), a->GetPhotoId());
        EXPECT_EQ(b->GetCameraId(), a->GetCameraId());
        const double av[9] = {a->GetX(),  a->GetY(),  a->GetZ(),  a->GetD(0), a->GetD(1),
                              a->GetD(2), a->GetR(0), a->GetR(1), a->GetR(2)};
        const double bv[9] = {b->GetX(),  b->GetY(),  b->GetZ(),  b->GetD(0), b->GetD(1),
                              b->GetD(2), b->GetR(0), b->GetR(1), b->GetR(2)};
        for (int k = 0; k < 9; ++k) {
            EXPECT_EQ(bv[k], av[k]) << "value " << k << " of point " << a->GetId();
            EXPECT_EQ(std::signbit(bv[k]), std::signbit(av[k])) << k;
        }
    }
    EXPECT_EQ(b, nullptr);
}

// -- files through the block reader -------------------------------------------------------------

TEST_F(PointRecordIo, BigIntegerTokens) {
    OvPointList list(MakeTable({1, 5, 7, 8}));
    ReadText(list, "99999999999 -1 12345678901234567 -9007199254740993\n");
    ASSERT_EQ(list.Count(), 1);
    const OvPoint* p = list.First();
    EXPECT_EQ(p->GetId(), 0xFFFFFFFFu);       // clamped to the unsigned range
    EXPECT_EQ(p->GetPhotoId(), 0xFFFFFFFFu);  // -1 as a 32-bit word
    EXPECT_EQ(p->GetX(), 12345678901234567.0);
    EXPECT_EQ(p->GetY(), -9007199254740993.0);
}

// -- the end of the data ------------------------------------------------------------------------

TEST_F(PointRecordIo, BlockEndStopsAndStaysCurrent) {
    OvPointList list(MakeTable({1, 7, 8}));
    std::istringstream in("1 2 3\n4 5 6 }\nNEXT");
    OvParser parser;
    parser.ParseForToken(in);
    EXPECT_EQ(list.Read(parser, in), 1);
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(parser.GetToken().GetType(), TokenBlockEnd);
    parser.ParseForToken(in);
    EXPECT_EQ(parser.GetToken().GetType(), TokenKeyword);
}

TEST_F(PointRecordIo, BlockEndInsideARecordDropsIt) {
    OvPointList list(MakeTable({1, 7, 8}));
    std::istringstream in("1 2 3 4 5}");
    OvParser parser;
    parser.ParseForToken(in);
    EXPECT_EQ(list.Read(parser, in), 1);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(parser.GetToken().GetType(), TokenBlockEnd);
}

TEST_F(PointRecordIo, RecordReadRaisesEndOfData) {
    OvPoint p;
    std::istringstream in("7 }");
    OvParser parser;
    parser.ParseForToken(in);
    try {
        p.Read(parser, in, MakeTable({1, 7}));
        FAIL() << "no end of data";
    } catch (const OvParserStatus& status) {
        EXPECT_EQ(static_cast<std::uint32_t>(status.GetStatus()), kOvParserStatusEndOfData);
    }
    EXPECT_EQ(p.GetId(), 7u);
    // The tokenizer itself is not left in an error state.
    EXPECT_EQ(parser.GetStatus().GetStatus(), ParserStatusOK);
}

TEST_F(PointRecordIo, TruncatedInputAddsOnlyCompleteRecords) {
    OvPointList list(MakeTable({1, 7, 8, 9}));
    ReadText(list, "1 1 1 1\n2 2 2");
    EXPECT_EQ(list.Count(), 1);
    OvPointList numbersOnly(MakeTable({7, 8, 9}));
    ReadText(numbersOnly, "1 2 3 4");
    EXPECT_EQ(numbersOnly.Count(), 1);
    OvPointList none(MakeTable({1, 7}));
    ReadText(none, "");
    EXPECT_EQ(none.Count(), 0);
}

TEST_F(PointRecordIo, FormatsThatConsumeNothingStop) {
    OvPointList empty;
    ReadText(empty, "1 2 3");
    EXPECT_EQ(empty.Count(), 0);
    OvPointList residualsOnly(MakeTable({115, 116, 200}));
    ReadText(residualsOnly, "1 2 3");
    EXPECT_EQ(residualsOnly.Count(), 0);
}

TEST_F(PointRecordIo, IntegerColumnRejectsOtherTokens) {
    OvPointList list(MakeTable({1, 7}));
    std::istringstream in("1 2\n2.5 3\n");
    OvParser parser;
    parser.ParseForToken(in);
    try {
        list.Read(parser, in);
        FAIL() << "no error raised";
    } catch (const OvParserStatus& status) {
        EXPECT_EQ(status.GetStatus(), ParserErrorNotSpecifiedToken);
        EXPECT_EQ(status.GetLine(), 2u);
    }
    EXPECT_EQ(list.Count(), 1);
}

}  // namespace
}  // namespace orvo
