#include "orvo/geom2d/region.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>

#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

OvPoint P(double x, double y, double z = 0.0) {
    return OvPoint(0, x, y, z, 0);
}

// Left, Bottom, Right, Top of a region, read through the const accessors.
void ExpectEdges(const OvRegion& r, double left, double bottom, double right, double top) {
    EXPECT_EQ(r.Left(), left);
    EXPECT_EQ(r.Bottom(), bottom);
    EXPECT_EQ(r.Right(), right);
    EXPECT_EQ(r.Top(), top);
}

// One written coordinate: a blank, then the text right-aligned in 21 characters.
std::string Field21(const std::string& text) {
    return " " + std::string(21 - text.size(), ' ') + text;
}

TEST(RegionTest, ConstructionFromFourValuesSorts) {
    ExpectEdges(OvRegion(10, 20, 0, 5), 0, 5, 10, 20);
    ExpectEdges(OvRegion(-1, -2, 3, 4), -1, -2, 3, 4);
    ExpectEdges(OvRegion(), 0, 0, 0, 0);
}

TEST(RegionTest, ConstructionFromPointsAndSetDoNotSort) {
    const OvRegion fromPoints(P(10, 20, 1), P(0, 5, 2));
    ExpectEdges(fromPoints, 10, 20, 0, 5);
    EXPECT_EQ(fromPoints.GetFirst().GetZ(), 1);

    OvRegion r;
    r.Set(5, 6, 1, 2);
    ExpectEdges(r, 5, 6, 1, 2);
    double x1, y1, x2, y2;
    r.Get(x1, y1, x2, y2);
    EXPECT_EQ(x1, 5);
    EXPECT_EQ(y1, 6);
    EXPECT_EQ(x2, 1);
    EXPECT_EQ(y2, 2);
    r.Sort();
    ExpectEdges(r, 1, 2, 5, 6);

    OvRegion other;
    other.Set(r);
    EXPECT_TRUE(other == r);
}

TEST(RegionTest, SortSwapsEachAxisOnItsOwn) {
    OvRegion r(P(0, 9), P(4, 1));
    r.Sort();
    ExpectEdges(r, 0, 1, 4, 9);
    OvRegion s(P(7, 1), P(3, 9));
    s.Sort();
    ExpectEdges(s, 3, 1, 7, 9);
}

TEST(RegionTest, SizeAndSignedArea) {
    const OvRegion r(1, 2, 4, 8);
    EXPECT_EQ(r.Width(), 3);
    EXPECT_EQ(r.Height(), 6);
    EXPECT_EQ(r.Area(), 18);
    // One axis reversed: negative; both reversed: positive again.
    EXPECT_EQ(OvRegion(P(0, 20), P(10, 5)).Area(), -150);
    EXPECT_EQ(OvRegion(P(10, 0), P(0, 5)).Area(), -50);
    EXPECT_EQ(OvRegion(P(10, 20), P(0, 5)).Area(), 150);
}

TEST(RegionTest, CornersAndCenter) {
    const OvRegion r(OvPoint(0, 1, 2, 4, 0), OvPoint(0, 5, 10, 8, 0));
    const OvPoint center = r.GetCenter();
    EXPECT_EQ(center.GetX(), 3);
    EXPECT_EQ(center.GetY(), 6);
    EXPECT_EQ(center.GetZ(), 6);
    const OvPoint ul = r.GetUL();
    EXPECT_EQ(ul.GetX(), 1);
    EXPECT_EQ(ul.GetY(), 10);
    const OvPoint lr = r.GetLR();
    EXPECT_EQ(lr.GetX(), 5);
    EXPECT_EQ(lr.GetY(), 2);
    const OvPoint ur = r.GetUR();
    EXPECT_EQ(ur.GetX(), 5);
    EXPECT_EQ(ur.GetY(), 10);
    EXPECT_EQ(ur.GetZ(), 8);
}

TEST(RegionTest, EdgesByReference) {
    OvRegion r(0, 0, 10, 10);
    r.Left() = 2.0;
    r.Bottom() -= 1.5;
    r.Right() *= 3.0;
    r.Top() += 0.25;
    ExpectEdges(r, 2, -1.5, 30, 10.25);
    // Reading through the reference gives the coordinate.
    const double right = r.Right();
    EXPECT_EQ(right, 30);
    // Assigning one reference to another copies the value, like double&.
    r.Left() = r.Top();
    EXPECT_EQ(static_cast<const OvRegion&>(r).Left(), 10.25);
}

TEST(RegionTest, EqualityIsExactOnXAndY) {
    const OvRegion a(0, 0, 1, 1);
    OvRegion b(0, 0, 1, 1);
    EXPECT_TRUE(a == b);
    b.GetSecond().SetZ(5.0);  // z is not compared
    EXPECT_TRUE(a == b);
    b.Top() = std::nextafter(1.0, 2.0);
    EXPECT_FALSE(a == b);
}

TEST(RegionTest, GrowAndShrink) {
    OvRegion r(0, 0, 10, 10);
    r += 2.0;
    ExpectEdges(r, -2, -2, 12, 12);
    r -= 3.0;
    ExpectEdges(r, 1, 1, 9, 9);
}

TEST(RegionTest, CornerWiseSumAndDifference) {
    const OvRegion a(1, 2, 3, 4);
    const OvRegion b(10, 20, 30, 40);
    ExpectEdges(a + b, 11, 22, 33, 44);
    ExpectEdges(b - a, 9, 18, 27, 36);
}

TEST(RegionTest, UnionIsEnclosingInYAndCommonInX) {
    OvRegion r(0, 0, 10, 10);
    r.Union(OvRegion(5, 5, 20, 20));
    ExpectEdges(r, 5, 0, 10, 20);
    OvRegion s(5, 5, 20, 20);
    s.Union(OvRegion(0, 0, 10, 10));
    ExpectEdges(s, 5, 0, 10, 20);
}

TEST(RegionTest, IntersectOverlappingAndDisjoint) {
    OvRegion r(0, 0, 10, 10);
    r.Intersect(OvRegion(5, 5, 20, 20));
    ExpectEdges(r, 5, 5, 10, 10);

    OvRegion inner(0, 0, 10, 10);
    inner.Intersect(OvRegion(2, 3, 4, 5));
    ExpectEdges(inner, 2, 3, 4, 5);

    OvRegion apart(0, 0, 1, 1);
    apart.Intersect(OvRegion(2, 2, 3, 3));
    ExpectEdges(apart, 0, 0, 0, 0);

    OvRegion self(1, 2, 3, 4);
    self.Intersect(self);
    ExpectEdges(self, 1, 2, 3, 4);
}

TEST(RegionTest, IntersectOfTouchingRegionsDependsOnOrder) {
    // Touching in x, equal in y: [0,1] with [1,2] is disjoint, [1,2] with [0,1] gives 1..1.
    OvRegion left(0, 0, 1, 1);
    left.Intersect(OvRegion(1, 0, 2, 1));
    ExpectEdges(left, 0, 0, 0, 1);

    OvRegion right(1, 0, 2, 1);
    right.Intersect(OvRegion(0, 0, 1, 1));
    ExpectEdges(right, 1, 0, 1, 1);
}

TEST(RegionTest, IntersectSortsUnsortedInput) {
    OvRegion r(P(10, 10), P(0, 0));
    r.Intersect(OvRegion(P(20, 20), P(5, 5)));
    ExpectEdges(r, 5, 5, 10, 10);
}

TEST(RegionOverlapTest, PointBoundsAreInclusive) {
    const OvRegion r(0, 0, 10, 5);
    const OvPoint inside = P(3, 3), corner = P(10, 5), lowerCorner = P(0, 0), edge = P(10, 2.5),
                  outside = P(std::nextafter(10.0, 11.0), 2), below = P(5, -1e-300);
    EXPECT_TRUE(r.Overlap(&inside));
    EXPECT_TRUE(r.Overlap(&corner));
    EXPECT_TRUE(r.Overlap(&lowerCorner));
    EXPECT_TRUE(r.Overlap(&edge));
    EXPECT_FALSE(r.Overlap(&outside));
    EXPECT_FALSE(r.Overlap(&below));
    EXPECT_FALSE(r.Overlap(static_cast<const OvPoint*>(nullptr)));
}

TEST(RegionOverlapTest, PointTestWorksOnUnsortedRegions) {
    const OvRegion r(P(10, 5), P(0, 0));
    const OvPoint corner = P(0, 5), outside = P(-1, 2);
    EXPECT_TRUE(r.Overlap(&corner));
    EXPECT_FALSE(r.Overlap(&outside));
}

TEST(RegionOverlapTest, RegionsMeetingAtEdgesAndCorners) {
    const OvRegion r(0, 0, 10, 10);
    const OvRegion touchingRight(10, 2, 12, 4), touchingCorner(10, 10, 11, 11),
        contained(2, 2, 3, 3), containing(-5, -5, 50, 50), leftOf(-3, 0, -1, 10),
        aboveOnly(2, 11, 3, 12), crossingFromLeft(-5, 5, 1, 6);
    EXPECT_TRUE(r.Overlap(&touchingRight));
    EXPECT_TRUE(touchingRight.Overlap(&r));
    EXPECT_TRUE(r.Overlap(&touchingCorner));
    EXPECT_TRUE(r.Overlap(&contained));
    EXPECT_TRUE(r.Overlap(&containing));
    EXPECT_TRUE(r.Overlap(&crossingFromLeft));
    EXPECT_TRUE(crossingFromLeft.Overlap(&r));
    EXPECT_FALSE(r.Overlap(&leftOf));
    EXPECT_FALSE(leftOf.Overlap(&r));
    EXPECT_FALSE(r.Overlap(&aboveOnly));
    EXPECT_FALSE(aboveOnly.Overlap(&r));
    EXPECT_FALSE(r.Overlap(static_cast<const OvRegion*>(nullptr)));
}

TEST(RegionWriteTest, TwoCornersWithXAndYColumns) {
    OvWriterReset();
    std::ostringstream out;
    OvRegion(0.5, -2, 10, 1.0 / 3.0).Write(out);
    EXPECT_EQ(out.str(),
              Field21("0.5") + Field21("-2") + Field21("10") + Field21("0.3333333333333333"));
}

TEST(RegionWriteTest, UnsortedRegionWritesItsCornersAsTheyAre) {
    OvWriterReset();
    std::ostringstream out;
    OvRegion(P(7, 8, 99), P(1, 2, 99)).Write(out);
    EXPECT_EQ(out.str(), Field21("7") + Field21("8") + Field21("1") + Field21("2"));
}

}  // namespace
}  // namespace orvo
