// Regions, positions and polygons read back from block files, through the block-file reader
// and through the tokenizer directly, and written-then-read round trips.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "orvo/geom2d/polygon.h"
#include "orvo/geom2d/position.h"
#include "orvo/geom2d/region.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/tokenizer.h"
#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

// Reads `text` with the three geometry records bound to their keywords and a trailing integer
// that shows whether the reader went on after the blocks.
struct BoundRecords {
    OvRegion region;
    OvPosition position;
    OvPolygon polygon;
    int after = 0;
    int errors = 0;

    explicit BoundRecords(OVPolygonMode mode = OvPolygonMode2D) : polygon(mode) {}

    void Read(const std::string& text) {
        std::istringstream in(text);
        OvReader reader(in, "geometry");
        reader.RegisterObject(OvReaderObject("REGION", Link(&region, &OvRegion::ReadHdl)));
        reader.RegisterObject(OvReaderObject("POSITION", Link(&position, &OvPosition::ReadHdl)));
        reader.RegisterObject(OvReaderObject("POLYGON", Link(&polygon, &OvPolygon::ReadHdl)));
        reader.RegisterObject(OvReaderObject("AFTER", &after));
        reader.DoProcess(false);
        errors = reader.GetReadErrorCount();
    }
};

void ExpectEdges(const OvRegion& r, double left, double bottom, double right, double top) {
    EXPECT_EQ(r.Left(), left);
    EXPECT_EQ(r.Bottom(), bottom);
    EXPECT_EQ(r.Right(), right);
    EXPECT_EQ(r.Top(), top);
}

void ExpectPoint(const OvPoint* p, unsigned id, double x, double y, double z) {
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->GetId(), id);
    EXPECT_EQ(p->GetX(), x);
    EXPECT_EQ(p->GetY(), y);
    EXPECT_EQ(p->GetZ(), z);
}

TEST(GeometryReadTest, RegionAndPositionBlocks) {
    BoundRecords records;
    records.Read("REGION {   1.5  -2  10  20 }\nPOSITION { 3 4.25 }\nAFTER 7\n");
    ExpectEdges(records.region, 1.5, -2, 10, 20);
    EXPECT_EQ(records.position.GetX(), 3);
    EXPECT_EQ(records.position.GetY(), 4.25);
    EXPECT_EQ(records.after, 7);
    EXPECT_EQ(records.errors, 0);
}

TEST(GeometryReadTest, RegionIsTakenAsWrittenNotSorted) {
    BoundRecords records;
    records.Read("REGION { 10 20 0 5 }");
    ExpectEdges(records.region, 10, 20, 0, 5);
}

TEST(GeometryReadTest, ShortBlocksLeaveTheRecordsAndReadingGoesOn) {
    BoundRecords records;
    records.region.Set(1, 2, 3, 4);
    records.position.SetX(9);
    records.Read("REGION { 5 6 7 }\nPOSITION { 8 }\nAFTER 3\n");
    ExpectEdges(records.region, 1, 2, 3, 4);
    EXPECT_EQ(records.position.GetX(), 9);
    EXPECT_EQ(records.after, 3);
    EXPECT_EQ(records.errors, 0);
}

TEST(GeometryReadTest, EndOfInputInsideARegionKeepsIt) {
    BoundRecords records;
    records.region.Set(1, 2, 3, 4);
    records.Read("REGION { 5 6 7");
    ExpectEdges(records.region, 1, 2, 3, 4);
    EXPECT_EQ(records.errors, 0);
}

TEST(GeometryReadTest, PolygonWithTheModesColumns) {
    BoundRecords plain(OvPolygonMode2D);
    plain.Read("POLYGON {\n 0 0\n 10 0\n 10 10\n 0 10\n}\nAFTER 1\n");
    EXPECT_EQ(plain.polygon.Count(), 4);
    EXPECT_EQ(plain.polygon.Area(), 100);
    EXPECT_EQ(plain.polygon.GetMax().GetX(), 10);
    EXPECT_EQ(plain.after, 1);

    BoundRecords withIds(OvPolygonMode2DId);
    withIds.Read("POLYGON { 7 0 0 8 4 0 9 0 3 }");
    ASSERT_EQ(withIds.polygon.Count(), 3);
    const OvPoint* p = withIds.polygon.First();
    ExpectPoint(p, 7, 0, 0, 0);
    ExpectPoint(p->Next(), 8, 4, 0, 0);
    ExpectPoint(p->Next()->Next(), 9, 0, 3, 0);

    BoundRecords solid(OvPolygonMode3DId);
    solid.Read("POLYGON { 1 0 0 -1 2 1 1 1.5 3 2 0 2 }");
    ASSERT_EQ(solid.polygon.Count(), 3);
    ExpectPoint(solid.polygon.First()->Next(), 2, 1, 1, 1.5);
    EXPECT_EQ(solid.polygon.GetMin().GetZ(), -1);
    EXPECT_EQ(solid.polygon.GetMax().GetZ(), 2);
}

TEST(GeometryReadTest, TwoPolygonPointsMakeTheRectangle) {
    BoundRecords records(OvPolygonMode2DId);
    records.Read("POLYGON { 5 4 1 6 0 3 }");
    ASSERT_EQ(records.polygon.Count(), 4);
    const OvPoint* p = records.polygon.First();
    ExpectPoint(p, 1, 0, 1, 0);
    ExpectPoint(p->Next(), 2, 4, 1, 0);
    ExpectPoint(p->Next()->Next(), 3, 4, 3, 0);
    ExpectPoint(p->Next()->Next()->Next(), 4, 0, 3, 0);
}

TEST(GeometryReadTest, IncompletePolygonRecordIsDropped) {
    BoundRecords records(OvPolygonMode2D);
    records.Read("POLYGON { 0 0 4 0 4 3 9 }\nAFTER 2\n");
    EXPECT_EQ(records.polygon.Count(), 3);
    EXPECT_EQ(records.after, 2);
    EXPECT_EQ(records.errors, 0);
}

TEST(GeometryReadTest, ReadingReplacesThePolygon) {
    BoundRecords records(OvPolygonMode2D);
    records.polygon.AddPoint(OvPoint(0, -50, -50, 0, 0));
    records.Read("POLYGON { 0 0 4 0 4 3 }\nPOLYGON { 1 1 2 2 }");
    // The second block's two points make the rectangle; nothing of the first block is left.
    EXPECT_EQ(records.polygon.Count(), 4);
    EXPECT_EQ(records.polygon.GetMin().GetX(), 1);
    EXPECT_EQ(records.polygon.GetMax().GetY(), 2);

    records.Read("POLYGON { }");
    EXPECT_EQ(records.polygon.Count(), 0);
    EXPECT_EQ(records.polygon.GetMax().GetX(), 0);
}

// Found by fuzzing: a keyword without its "{" hands the handler the numbers that follow, and a
// second block of two points used to leave a box that did not hold the first block's points.
TEST(GeometryReadTest, BoxHoldsThePointsAfterRepeatedBlocks) {
    BoundRecords records(OvPolygonMode2D);
    records.Read(
        "DIGIREGION { 0 0 10 20 }\nPOLYGON \n 0{\n00\n   10 0\n 14}\nPOLYGON {\n00\n   10 0\n"
        " 100 1\327\365\337\317\337\316\317\365}\n");
    const OvPolygon& polygon = records.polygon;
    for (const OvPoint* p = polygon.First(); p != nullptr; p = p->Next()) {
        EXPECT_LE(polygon.GetMin().GetX(), p->GetX());
        EXPECT_LE(p->GetX(), polygon.GetMax().GetX());
        EXPECT_LE(polygon.GetMin().GetY(), p->GetY());
        EXPECT_LE(p->GetY(), polygon.GetMax().GetY());
    }
}

TEST(GeometryReadTest, ThroughTheTokenizerDirectly) {
    std::istringstream in("1 2 3 4 } 5 6 } 0 0 1 0 1 1 }");
    OvParser parser;
    parser.ParseForToken(in);

    OvRegion region;
    EXPECT_EQ(region.Read(parser, in), 1);
    ExpectEdges(region, 1, 2, 3, 4);
    EXPECT_EQ(parser.GetToken().GetType(), TokenBlockEnd);

    parser.ParseForToken(in);
    OvPosition position;
    position.Read(parser, in);
    EXPECT_EQ(position.GetX(), 5);
    EXPECT_EQ(position.GetY(), 6);
    EXPECT_EQ(parser.GetToken().GetType(), TokenBlockEnd);

    parser.ParseForToken(in);
    OvPolygon triangle(OvPolygonMode2D);
    triangle.Read(parser, in);
    EXPECT_EQ(triangle.Count(), 3);
    EXPECT_EQ(triangle.Area(), 0.5);
    EXPECT_EQ(parser.GetToken().GetType(), TokenBlockEnd);
}

// Writes each record in its block the way the project files hold them and reads the file back.
std::string WriteRecords(const OvRegion& region, const OvPosition& position,
                         const OvPolygon& polygon) {
    OvWriterReset();
    std::ostringstream out;
    out << s12 << "REGION" << w4 << "{";
    region.Write(out);
    out << "}" << Ovendl;
    out << s12 << "POSITION" << w4 << "{";
    position.Write(out);
    out << "}" << Ovendl;
    out << "POLYGON" << Ovendl << OvBeginBlockNL;
    polygon.Write(out);
    out << OvEndBlockNL << Ovendl;
    out << s12 << "AFTER" << w4 << 5 << Ovendl;
    return out.str();
}

TEST(GeometryRoundTripTest, WrittenRecordsReadBackUnchanged) {
    const OvRegion region(OvPoint(0, -123456.789, 1.0 / 3.0, 0, 0), OvPoint(0, 1e-7, 1e15, 0, 0));
    const OvPosition position(2.0 / 3.0, -0.0625);
    OvPolygon polygon(OvPolygonMode3DId);
    polygon.AddPoint(OvPoint(11, 0.1, 0.2, 0.3, 0));
    polygon.AddPoint(OvPoint(12, -5, 1e-300, 7.25, 0));
    polygon.AddPoint(OvPoint(40000, 123456789.125, -1, 0, 0));

    const std::string text = WriteRecords(region, position, polygon);
    BoundRecords records(OvPolygonMode3DId);
    records.Read(text);

    EXPECT_EQ(records.errors, 0) << text;
    EXPECT_EQ(records.after, 5) << text;
    EXPECT_TRUE(records.region == region) << text;
    EXPECT_EQ(records.position.GetX(), position.GetX());
    EXPECT_EQ(records.position.GetY(), position.GetY());
    ASSERT_EQ(records.polygon.Count(), 3) << text;
    const OvPoint* read = records.polygon.First();
    for (const OvPoint* p = polygon.First(); p != nullptr; p = p->Next(), read = read->Next()) {
        ExpectPoint(read, p->GetId(), p->GetX(), p->GetY(), p->GetZ());
    }
    EXPECT_EQ(records.polygon.GetMin().GetY(), -1);
    EXPECT_EQ(records.polygon.GetMax().GetX(), 123456789.125);
}

TEST(GeometryRoundTripTest, WrittenBlockLayout) {
    OvPolygon polygon(OvPolygonMode2D);
    polygon.AddPoint(OvPoint(0, 1, 2, 0, 0));
    polygon.AddPoint(OvPoint(0, 3, 4, 0, 0));
    polygon.AddPoint(OvPoint(0, 5, 6, 0, 0));
    // Keywords left-aligned in 12, then a blank and "{" right-aligned in 4; each coordinate a
    // blank and a right-aligned field of 21; block entries indented by four blanks.
    const std::string pad20(20, ' ');
    const std::string expected = "REGION" + std::string(6 + 1 + 3, ' ') + "{" + pad20 + " 0" +
                                 pad20 + " 0" + pad20 + " 2" + pad20 + " 1" + "}\n" + "POSITION" +
                                 std::string(4 + 1 + 3, ' ') + "{" + pad20 + "-3" + pad20 + " 9" +
                                 "}\n" + "POLYGON\n{\n    " + pad20 + " 1" + pad20 + " 2\n    " +
                                 pad20 + " 3" + pad20 + " 4\n    " + pad20 + " 5" + pad20 +
                                 " 6\n}\n" + "AFTER" + std::string(7 + 1 + 3, ' ') + "5\n";
    EXPECT_EQ(WriteRecords(OvRegion(0, 0, 2, 1), OvPosition(-3, 9), polygon), expected);
}

}  // namespace
}  // namespace orvo
