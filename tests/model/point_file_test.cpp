// Point files read through the block reader: round trips, files with errors, point blocks
// inside block files.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>

#include "orvo/model/point_list.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/tokenizer.h"
#include "orvo/textfile/writer.h"
#include "temp_dir.h"

namespace orvo {
namespace {

using Table = TOvFormatTable<eOvPointRWMask>;
using test::TempDir;
using test::WriteWholeFile;

Table MakeTable(std::initializer_list<std::uint32_t> codes) {
    Table table;
    for (std::uint32_t code : codes)
        table.AddEntry(static_cast<eOvPointRWMask>(code));
    return table;
}

OvPoint* NewPoint(unsigned id, double x, double y, double z) {
    return new OvPoint(id, x, y, z, 0);
}

class PointFileTest : public ::testing::Test {
protected:
    void SetUp() override { OvWriterReset(); }
    void TearDown() override { OvWriterReset(); }
};

TEST_F(PointFileTest, RoundTripOfEveryStoredColumn) {
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
    TempDir dir;
    const String name(dir.file("round.txt").c_str());
    ASSERT_EQ(list.WriteFile(name), 1);

    OvPointList read;
    EXPECT_EQ(read.ReadFile(name, table), 2);
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

TEST_F(PointFileTest, ReadFileAppendsAndCounts) {
    TempDir dir;
    const std::string name = dir.file("p.txt");
    WriteWholeFile(name, "; measured points\n1 10.5 20.5\r\n2 11 21 ! second\n\n3 12 22");
    OvPointList list;
    list.Add(NewPoint(100, 0, 0, 0));
    EXPECT_EQ(list.ReadFile(String(name.c_str()), MakeTable({1, 7, 8})), 4);
    EXPECT_EQ(list.GetMask().Size(), 3);
    EXPECT_EQ(list.Last()->GetId(), 3u);
    EXPECT_EQ(list.Last()->GetY(), 22.0);

    OvPointList constructed(String(name.c_str()), MakeTable({1, 7, 8}));
    EXPECT_EQ(constructed.Count(), 3);
    EXPECT_EQ(constructed.First()->GetX(), 10.5);
}

TEST_F(PointFileTest, ReadFileOfMissingOrDamagedFiles) {
    TempDir dir;
    OvPointList list;
    EXPECT_EQ(list.ReadFile(String(dir.file("none.txt").c_str()), MakeTable({1, 7})), 0);

    // A tokenizer error ends the read. It is raised while advancing past the last column of
    // the record before it, so that record is not added either.
    const std::string name = dir.file("bad.txt");
    WriteWholeFile(name, "1 2\n3 4\n5x 6\n7 8\n");
    EXPECT_EQ(list.ReadFile(String(name.c_str()), MakeTable({1, 7})), 1);
    WriteWholeFile(name, "1 2\n\"open string\n3 4\n");
    OvPointList other;
    EXPECT_EQ(other.ReadFile(String(name.c_str()), MakeTable({1, 7})), 0);
}

TEST_F(PointFileTest, PointBlockInsideABlockFile) {
    TempDir dir;
    const std::string name = dir.file("project.txt");
    WriteWholeFile(name, "POINTS {\n  1 1.5 2.5\n  2 3.5 4.5\n}\nAFTER 17\n");
    OvPointList list(MakeTable({1, 7, 8}));
    int after = 0;
    OvReader reader(String(name.c_str()));
    OvReaderObject points("POINTS", Link(&list, &OvPointList::ReadHdl));
    OvReaderObject afterValue("AFTER", &after);
    reader.RegisterObject(points);
    reader.RegisterObject(afterValue);
    reader.DoProcess(false);
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(list.Last()->GetY(), 4.5);
    EXPECT_EQ(after, 17);
    EXPECT_EQ(reader.GetReadErrorCount(), 0);
}

TEST_F(PointFileTest, ClosingBraceAtTheTopLevelOfAPointFile) {
    // The "}" ends the data for one call of the handler; the reader steps over it and hands the
    // following records to the handler again.
    TempDir dir;
    const std::string name = dir.file("braces.txt");
    WriteWholeFile(name, "1 1 1\n2 2 }\n3 3 3\n");
    OvPointList list;
    EXPECT_EQ(list.ReadFile(String(name.c_str()), MakeTable({1, 7, 8})), 2);
    EXPECT_EQ(list.First()->GetId(), 1u);
    EXPECT_EQ(list.Last()->GetId(), 3u);
}

TEST_F(PointFileTest, RecordReadThroughAReaderObject) {
    // A record handler of another block (as a reseau cross is read) reads one point through
    // its reader object and sees the end of the data as status 7.
    TempDir dir;
    const std::string name = dir.file("cross.txt");
    WriteWholeFile(name, "CROSS { 4 1.5 2.5 3 }\n");

    struct CrossReader : LinkHdl {
        std::int32_t Read(void* arg) {
            auto* object = static_cast<OvReaderObject*>(arg);
            EXPECT_EQ(point.Read(object, MakeTable({1, 7, 8, 3})), 1);
            try {
                point.Read(object, MakeTable({1}));
            } catch (const OvParserStatus& status) {
                endStatus = static_cast<std::uint32_t>(status.GetStatus());
            }
            return 1;
        }
        OvPoint point;
        std::uint32_t endStatus = 0;
    } cross;
    OvReader reader(String(name.c_str()));
    reader.RegisterObject(OvReaderObject("CROSS", Link(&cross, &CrossReader::Read)));
    reader.DoProcess(false);
    EXPECT_EQ(cross.point.GetId(), 4u);
    EXPECT_EQ(cross.point.GetY(), 2.5);
    EXPECT_EQ(cross.point.GetControlFlags(), 3);
    EXPECT_EQ(cross.endStatus, kOvParserStatusEndOfData);
    EXPECT_EQ(reader.GetReadErrorCount(), 0);
}

TEST_F(PointFileTest, UnregisteredReaderObjectReadsNothing) {
    OvPointList list(MakeTable({1}));
    OvReaderObject loose;
    EXPECT_EQ(list.Read(&loose), 1);
    EXPECT_EQ(list.Count(), 0);
}

}  // namespace
}  // namespace orvo
