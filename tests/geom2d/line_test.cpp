#include "orvo/geom2d/line.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

OvPoint P(double x, double y, double z = 0.0) {
    return OvPoint(0, x, y, z, 0);
}

OvLine L(double x1, double y1, double x2, double y2) {
    return OvLine(x1, y1, 0.0, x2, y2, 0.0);
}

TEST(CounterClockwiseTest, TurnDirection) {
    EXPECT_EQ(CounterClockwise(P(0, 0), P(2, 0), P(1, 1)), +1);
    EXPECT_EQ(CounterClockwise(P(0, 0), P(2, 0), P(1, -1)), -1);
    EXPECT_EQ(CounterClockwise(P(0, 0), P(2, 0), P(0, 1)), +1);
    EXPECT_EQ(CounterClockwise(P(1, 1), P(3, 3), P(1, 2)), +1);
    EXPECT_EQ(CounterClockwise(P(1, 1), P(3, 3), P(2, 1)), -1);
}

TEST(CounterClockwiseTest, CollinearPointsAlongTheSegment) {
    EXPECT_EQ(CounterClockwise(P(0, 0), P(2, 0), P(1, 0)), 0);
    EXPECT_EQ(CounterClockwise(P(0, 0), P(2, 0), P(3, 0)), +1);
    EXPECT_EQ(CounterClockwise(P(0, 0), P(2, 0), P(-1, 0)), -1);
    // End points belong to the segment.
    EXPECT_EQ(CounterClockwise(P(0, 0), P(2, 0), P(0, 0)), 0);
    EXPECT_EQ(CounterClockwise(P(0, 0), P(2, 0), P(2, 0)), 0);
    // Vertical and diagonal segments use the y test and the distances the same way.
    EXPECT_EQ(CounterClockwise(P(0, 0), P(0, 2), P(0, -1)), -1);
    EXPECT_EQ(CounterClockwise(P(0, 0), P(0, 2), P(0, 3)), +1);
    EXPECT_EQ(CounterClockwise(P(0, 0), P(1, 1), P(-1, -1)), -1);
    EXPECT_EQ(CounterClockwise(P(0, 0), P(1, 1), P(2, 2)), +1);
    EXPECT_EQ(CounterClockwise(P(0, 0), P(1, 1), P(0.5, 0.5)), 0);
}

TEST(CounterClockwiseTest, DegenerateSegments) {
    EXPECT_EQ(CounterClockwise(P(1, 1), P(1, 1), P(1, 1)), 0);
    // p0 == p1: every other p2 lies "beyond" the empty segment.
    EXPECT_EQ(CounterClockwise(P(1, 1), P(1, 1), P(5, -3)), +1);
}

TEST(CounterClockwiseTest, ZIsIgnored) {
    EXPECT_EQ(CounterClockwise(P(0, 0, 5), P(2, 0, -7), P(1, 0, 100)), 0);
}

TEST(LineTest, ConstructionFromSixValues) {
    OvLine line(1, 2, 3, 4, 5, 6);
    EXPECT_EQ(line.GetFirst().GetX(), 1);
    EXPECT_EQ(line.GetFirst().GetY(), 2);
    EXPECT_EQ(line.GetFirst().GetZ(), 3);
    EXPECT_EQ(line.GetSecond().GetX(), 4);
    EXPECT_EQ(line.GetSecond().GetY(), 5);
    EXPECT_EQ(line.GetSecond().GetZ(), 6);
    OvLine copy(line);
    EXPECT_TRUE(copy.GetSecond() == line.GetSecond());
}

TEST(LineTest, AdjustKeepsOnlyWhenBothCoordinatesAscend) {
    OvLine ascending = L(0, 0, 1, 1);
    ascending.Adjust();
    EXPECT_EQ(ascending.GetFirst().GetX(), 0);

    OvLine equal = L(1, 1, 1, 1);
    equal.Adjust();
    EXPECT_EQ(equal.GetFirst().GetY(), 1);

    // x ascends, y descends: swapped whole, so x now descends.
    OvLine mixed = L(0, 5, 3, 1);
    mixed.Adjust();
    EXPECT_EQ(mixed.GetFirst().GetX(), 3);
    EXPECT_EQ(mixed.GetFirst().GetY(), 1);
    EXPECT_EQ(mixed.GetSecond().GetX(), 0);
    EXPECT_EQ(mixed.GetSecond().GetY(), 5);

    OvLine descending(2, 2, 9, 1, 1, 8);
    descending.Adjust();
    EXPECT_EQ(descending.GetFirst().GetZ(), 8);
    EXPECT_EQ(descending.GetSecond().GetZ(), 9);
}

TEST(IntersectTest, CrossingAndSeparateSegments) {
    EXPECT_TRUE(Intersect(L(0, 0, 2, 2), L(0, 2, 2, 0)));
    EXPECT_FALSE(Intersect(L(0, 0, 1, 0), L(0, 1, 1, 1)));  // parallel
    EXPECT_FALSE(Intersect(L(0, 0, 2, 2), L(3, 0, 2, 1)));  // below the line's end
    EXPECT_FALSE(Intersect(L(0, 0, 1, 0), L(2, 0, 3, 0)));  // collinear, apart
}

TEST(IntersectTest, TouchingCounts) {
    EXPECT_TRUE(Intersect(L(0, 0, 1, 0), L(1, 0, 1, 1)));  // shared end point
    EXPECT_TRUE(Intersect(L(0, 0, 2, 0), L(1, 0, 1, 5)));  // end on the other's inside
    EXPECT_TRUE(Intersect(L(2, 0, 0, 0), L(1, 5, 1, 0)));  // the same, both reversed
    EXPECT_TRUE(Intersect(L(0, 0, 2, 0), L(1, 0, 3, 0)));  // collinear overlap
    EXPECT_TRUE(Intersect(L(0, 0, 1, 0), L(1, 0, 2, 0)));  // collinear, end to end
}

TEST(IntersectTest, LinesAreNotChanged) {
    const OvLine a = L(2, 0, 0, 0);
    const OvLine b = L(1, 5, 1, 0);
    EXPECT_TRUE(Intersect(a, b));
    EXPECT_EQ(a.GetFirst().GetX(), 2);
    EXPECT_EQ(b.GetFirst().GetY(), 5);
}

}  // namespace
}  // namespace orvo
