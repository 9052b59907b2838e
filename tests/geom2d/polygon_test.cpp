#include "orvo/geom2d/polygon.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

OvPoint P(double x, double y, double z = 0.0) {
    return OvPoint(0, x, y, z, 0);
}

OvPolygon Ring(const std::vector<OvPoint>& points, OVPolygonMode mode = OvPolygonMode2D) {
    OvPolygon polygon(mode);
    for (const OvPoint& p : points)
        polygon.AddPoint(p);
    return polygon;
}

OvPolygon Square10(OVPolygonMode mode = OvPolygonMode2D) {
    return Ring({P(0, 0), P(10, 0), P(10, 10), P(0, 10)}, mode);
}

void ExpectXYZ(const OvPoint& p, double x, double y, double z) {
    EXPECT_EQ(p.GetX(), x);
    EXPECT_EQ(p.GetY(), y);
    EXPECT_EQ(p.GetZ(), z);
}

std::string Field(const std::string& text, std::size_t width) {
    return " " + std::string(width - text.size(), ' ') + text;
}

TEST(PolygonBoxTest, FirstPointSetsTheBoxLaterOnesWiden) {
    OvPolygon polygon(OvPolygonMode3D);
    polygon.AddPoint(P(5, 5, 5));
    // The box does not keep the origin of the empty polygon.
    ExpectXYZ(polygon.GetMin(), 5, 5, 5);
    ExpectXYZ(polygon.GetMax(), 5, 5, 5);
    polygon.AddPoint(P(1, 7, 2));
    polygon.AddPoint(P(3, -1, 9));
    ExpectXYZ(polygon.GetMin(), 1, -1, 2);
    ExpectXYZ(polygon.GetMax(), 5, 7, 9);
    EXPECT_EQ(polygon.Width(), 4);
    EXPECT_EQ(polygon.Height(), 8);
    EXPECT_EQ(polygon.Deep(), 7);
    EXPECT_EQ(polygon.Count(), 3);
    ExpectXYZ(*polygon.First(), 5, 5, 5);

    const OvRegion box = polygon.GetRegion();
    EXPECT_EQ(box.Left(), 1);
    EXPECT_EQ(box.Bottom(), -1);
    EXPECT_EQ(box.Right(), 5);
    EXPECT_EQ(box.Top(), 7);
}

TEST(PolygonBoxTest, UpdateMinMaxRecomputesOrKeepsTheOldBox) {
    OvPolygon polygon = Ring({P(0, 0), P(4, 4)});
    polygon.GetPointList().First()->SetX(-3);
    polygon.UpdateMinMax();
    ExpectXYZ(polygon.GetMin(), -3, 0, 0);
    ExpectXYZ(polygon.GetMax(), 4, 4, 0);

    polygon.GetPointList().Destroy();
    polygon.UpdateMinMax();
    ExpectXYZ(polygon.GetMin(), -3, 0, 0);
    ExpectXYZ(polygon.GetMax(), 4, 4, 0);
}

TEST(PolygonConstructionTest, RectangleThroughTwoPoints) {
    const OvPolygon polygon(P(4, 1, 3), P(0, 5, -2), OvPolygonMode3D);
    EXPECT_EQ(polygon.GetMode(), OvPolygonMode3D);
    ExpectXYZ(polygon.GetMin(), 0, 1, -2);
    ExpectXYZ(polygon.GetMax(), 4, 5, 3);
    ASSERT_EQ(polygon.Count(), 4);
    const double expected[4][2] = {{0, 1}, {4, 1}, {4, 5}, {0, 5}};
    unsigned id = 1;
    int i = 0;
    for (const OvPoint* p = polygon.First(); p != nullptr; p = p->Next(), ++i, ++id) {
        ExpectXYZ(*p, expected[i][0], expected[i][1], 0);
        EXPECT_EQ(p->GetId(), id);
    }
}

TEST(PolygonConstructionTest, FromRegionListAndCopy) {
    const OvPolygon fromRegion(OvRegion(2, 3, 6, 9));
    EXPECT_EQ(fromRegion.GetMode(), OvPolygonMode2D);
    EXPECT_EQ(fromRegion.Count(), 4);
    EXPECT_EQ(fromRegion.Area(), 24);

    OvPointList list;
    list.Add(P(1, 1));
    list.Add(P(2, 3));
    list.Add(P(0, 2));
    const OvPolygon fromList(&list, OvPolygonMode2DId);
    EXPECT_EQ(fromList.GetMode(), OvPolygonMode2DId);
    EXPECT_EQ(fromList.Count(), 3);
    ExpectXYZ(fromList.GetMin(), 0, 1, 0);
    ExpectXYZ(fromList.GetMax(), 2, 3, 0);

    const OvPolygon fromNull(static_cast<const OvPointList*>(nullptr), OvPolygonMode2D);
    EXPECT_EQ(fromNull.Count(), 0);

    OvPolygon copy(fromList);
    EXPECT_EQ(copy.GetMode(), OvPolygonMode2DId);
    EXPECT_EQ(copy.Count(), 3);
    ExpectXYZ(copy.GetMax(), 2, 3, 0);
    EXPECT_NE(copy.First(), fromList.First());

    OvPolygon assigned;
    assigned = fromRegion;
    EXPECT_EQ(assigned.Count(), 4);
    ExpectXYZ(assigned.GetMax(), 6, 9, 0);

    OvPolygon polygon;
    EXPECT_FALSE(polygon.AddPoint(static_cast<const OvPointList*>(nullptr)));
    EXPECT_TRUE(polygon.AddPoint(&list));
    EXPECT_EQ(polygon.Count(), 3);
}

TEST(PolygonBoxTest, IsInBoxBoundsAreInclusive) {
    const OvPolygon square = Square10();
    EXPECT_TRUE(square.IsInBox(P(0, 0)));
    EXPECT_TRUE(square.IsInBox(P(10, 10)));
    EXPECT_TRUE(square.IsInBox(P(10, 3)));
    EXPECT_TRUE(square.IsInBox(P(5, 5, 1e9)));  // z does not count in 2D
    EXPECT_FALSE(square.IsInBox(P(std::nextafter(10.0, 11.0), 5)));
    EXPECT_FALSE(square.IsInBox(P(5, -1e-300)));
}

TEST(PolygonBoxTest, IsInBoxChecksZFor3DModesOnly) {
    const OvPolygon box = Ring({P(0, 0, 0), P(10, 10, 4)}, OvPolygonMode3DId);
    EXPECT_TRUE(box.IsInBox(P(5, 5, 4)));
    EXPECT_TRUE(box.IsInBox(P(0, 10, 0)));
    EXPECT_FALSE(box.IsInBox(P(5, 5, 4.5)));
    EXPECT_FALSE(box.IsInBox(P(5, 5, -0.1)));
}

TEST(PolygonBoxTest, ModesOutsideTheTableAcceptNothing) {
    for (std::int32_t value : {4, 7, -1}) {
        const OvPolygon polygon = Square10(static_cast<OVPolygonMode>(value));
        EXPECT_FALSE(polygon.IsInBox(P(5, 5))) << value;
        EXPECT_FALSE(polygon.Overlap(P(5, 5))) << value;
    }
}

TEST(PolygonOverlapTest, InsideAndOutside) {
    const OvPolygon square = Square10();
    EXPECT_TRUE(square.Overlap(P(5, 5)));
    EXPECT_TRUE(square.Overlap(P(0.5, 9.5)));
    EXPECT_FALSE(square.Overlap(P(11, 5)));
    EXPECT_FALSE(square.Overlap(static_cast<const OvPoint*>(nullptr)));
    const OvPoint center = P(3, 7);
    EXPECT_TRUE(square.Overlap(&center));

    // A triangle: inside its box but outside the triangle.
    const OvPolygon triangle = Ring({P(0, 0), P(10, 0), P(0, 10)});
    EXPECT_TRUE(triangle.Overlap(P(2, 2)));
    EXPECT_FALSE(triangle.Overlap(P(9, 9)));
}

TEST(PolygonOverlapTest, BoundaryPointsFollowTheCrossingCount) {
    const OvPolygon square = Square10();
    // On the right edge the test segment meets that edge only: inside.
    EXPECT_TRUE(square.Overlap(P(10, 5)));
    // On the left edge it meets the left and the right edge: two crossings, outside.
    EXPECT_FALSE(square.Overlap(P(0, 5)));
    // On the bottom edge it runs along the bottom and meets the right edge's end point: the
    // bottom edge, the right edge; two, outside. The same on the top edge.
    EXPECT_FALSE(square.Overlap(P(5, 0)));
    EXPECT_FALSE(square.Overlap(P(5, 10)));
}

TEST(PolygonOverlapTest, SegmentThroughAVertexCountsItTwice) {
    // A diamond: the segment from (2, 5) to the right runs exactly through the vertex (10, 5)
    // and meets both edges there, so the clearly inside point counts as outside.
    const OvPolygon diamond = Ring({P(5, 0), P(10, 5), P(5, 10), P(0, 5)});
    EXPECT_FALSE(diamond.Overlap(P(2, 5)));
    EXPECT_FALSE(diamond.Overlap(P(5, 5)));
    // Just off the vertex row the point is inside.
    EXPECT_TRUE(diamond.Overlap(P(5, 4)));
    EXPECT_TRUE(diamond.Overlap(P(5, 6)));
}

TEST(PolygonOverlapTest, ThreeDimensionalPolygonsUseTheBoxAlone) {
    const OvPolygon triangle = Ring({P(0, 0, 0), P(10, 0, 0), P(0, 10, 5)}, OvPolygonMode3D);
    EXPECT_TRUE(triangle.Overlap(P(9, 9, 1)));
    EXPECT_FALSE(triangle.Overlap(P(9, 9, 6)));
    const OvPolygon flat = Ring({P(0, 0, 0), P(10, 0, 0), P(0, 10, 5)}, OvPolygonMode2D);
    EXPECT_FALSE(flat.Overlap(P(9, 9, 1)));
}

TEST(PolygonOverlapTest, EmptyPolygonContainsItsBoxOnly) {
    const OvPolygon empty;
    EXPECT_TRUE(empty.Overlap(P(0, 0)));
    EXPECT_FALSE(empty.Overlap(P(1, 0)));
}

TEST(PolygonAreaTest, KnownShapes) {
    EXPECT_EQ(Square10().Area(), 100);
    EXPECT_EQ(Ring({P(0, 0), P(4, 0), P(0, 3)}).Area(), 6);
    EXPECT_EQ(Ring({P(0, 0), P(0, 3), P(4, 0)}).Area(), 6);  // clockwise
    // An L made of a 4x1 and a 1x2 block.
    EXPECT_EQ(Ring({P(0, 0), P(4, 0), P(4, 1), P(1, 1), P(1, 3), P(0, 3)}).Area(), 6);
    // Shifted far from the origin, with z ignored.
    EXPECT_EQ(Ring({P(100, 200, 7), P(102, 200, -1), P(102, 205, 3)}).Area(), 5);
    EXPECT_EQ(Square10().Area(false), 100);
}

TEST(PolygonAreaTest, FewerThanThreePoints) {
    EXPECT_EQ(OvPolygon().Area(), -1.0);
    EXPECT_EQ(Ring({P(0, 0), P(3, 4)}).Area(), -1.0);
    EXPECT_EQ(Ring({P(0, 0), P(3, 4)}).Area(false), -1.0);
}

TEST(PolygonLengthTest, OpenAndClosed) {
    EXPECT_EQ(Square10().Length(false), 30);
    EXPECT_EQ(Square10().Length(true), 40);
    // The closing edge is not added again when the ring already returns to its start.
    const OvPolygon closedRing = Ring({P(0, 0), P(10, 0), P(10, 10), P(0, 10), P(0, 0)});
    EXPECT_EQ(closedRing.Length(true), 40);
    EXPECT_EQ(closedRing.Length(false), 40);
}

TEST(PolygonLengthTest, ThreeDimensionalDistances) {
    const OvPolygon path = Ring({P(0, 0, 0), P(1, 2, 2), P(1, 2, 5)}, OvPolygonMode3D);
    EXPECT_EQ(path.Length(false), 6);
    EXPECT_DOUBLE_EQ(path.Length(true), 6 + std::sqrt(30.0));
    // Two points: never closed.
    const OvPolygon segment = Ring({P(0, 0, 0), P(3, 4, 12)});
    EXPECT_EQ(segment.Length(true), 13);
    EXPECT_EQ(segment.Length(false), 13);
}

TEST(PolygonLengthTest, FewerThanTwoPoints) {
    EXPECT_EQ(OvPolygon().Length(), -1.0);
    EXPECT_EQ(Ring({P(1, 1)}).Length(true), -1.0);
}

TEST(PolygonWriteTest, ColumnsFollowTheMode) {
    OvPolygon polygon(OvPolygonMode2D);
    polygon.AddPoint(OvPoint(7, 1.5, -2, 3, 0));
    polygon.AddPoint(OvPoint(8, 0.25, 4, 5, 0));

    const std::string x1 = Field("1.5", 21), y1 = Field("-2", 21), z1 = Field("3", 21);
    const std::string x2 = Field("0.25", 21), y2 = Field("4", 21), z2 = Field("5", 21);
    const std::string id1 = Field("7", 10), id2 = Field("8", 10);
    const struct {
        OVPolygonMode mode;
        std::string expected;
    } cases[] = {
        {OvPolygonMode2D, x1 + y1 + "\n" + x2 + y2},
        {OvPolygonMode2DId, id1 + x1 + y1 + "\n" + id2 + x2 + y2},
        {OvPolygonMode3D, x1 + y1 + z1 + "\n" + x2 + y2 + z2},
        {OvPolygonMode3DId, id1 + x1 + y1 + z1 + "\n" + id2 + x2 + y2 + z2},
    };
    for (const auto& c : cases) {
        OvWriterReset();
        polygon.SetMode(c.mode);
        std::ostringstream out;
        polygon.Write(out);
        EXPECT_EQ(out.str(), c.expected) << c.mode;
    }
    // Writing leaves the mode's columns in the list's format.
    EXPECT_EQ(polygon.GetPointList().GetMask().HasEntry(eOvPointRWId), 0);
    EXPECT_EQ(polygon.GetPointList().GetMask().HasEntry(eOvPointRWZ), 3);
}

TEST(PolygonWriteTest, OtherModesWriteWithTheListsOwnFormat) {
    OvPolygon polygon(static_cast<OVPolygonMode>(7));
    polygon.AddPoint(OvPoint(3, 1, 2, 9, 0));
    const eOvPointRWMask yOnly[] = {eOvPointRWY, eOvPointRWEnd};
    polygon.GetPointList().SetMask(OvPointFormat(yOnly));
    OvWriterReset();
    std::ostringstream out;
    polygon.Write(out);
    EXPECT_EQ(out.str(), Field("2", 21));
}

TEST(PolygonWriteTest, EmptyPolygonWritesNothing) {
    OvWriterReset();
    std::ostringstream out;
    OvPolygon(OvPolygonMode3DId).Write(out);
    EXPECT_EQ(out.str(), "");
}

}  // namespace
}  // namespace orvo
