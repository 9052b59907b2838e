#include "orvo/numerics/rounding.h"
#include "orvo/numerics/interval.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(RoundValueTest, NearestRoundsHalvesAwayFromZero) {
    EXPECT_EQ(RoundValue(2.5, 1.0, 0), 3.0);
    EXPECT_EQ(RoundValue(-2.5, 1.0, 0), -3.0);
    EXPECT_EQ(RoundValue(2.4999, 1.0, 0), 2.0);
    EXPECT_EQ(RoundValue(-2.4, 1.0, 0), -2.0);
    EXPECT_EQ(RoundValue(-2.6, 1.0, 0), -3.0);
    EXPECT_EQ(RoundValue(0.0, 1.0, 0), 0.0);
    EXPECT_EQ(RoundValue(7.5, 5.0, 0), 10.0);
    EXPECT_EQ(RoundValue(-7.4, 5.0, 0), -5.0);
    EXPECT_EQ(RoundValue(0.25, 0.5, 0), 0.5);
    EXPECT_EQ(RoundValue(-0.25, 0.5, 0), -0.5);
}

TEST(RoundValueTest, NegativeModeRoundsDown) {
    EXPECT_EQ(RoundValue(-2.4, 1.0, -1), -3.0);
    EXPECT_EQ(RoundValue(2.9, 1.0, -1), 2.0);
    EXPECT_EQ(RoundValue(-2.0, 1.0, -7), -2.0);
    EXPECT_EQ(RoundValue(2.5, 1.0, -1), 2.0);
    EXPECT_EQ(RoundValue(-2.5, 1.0, -1), -3.0);
    EXPECT_EQ(RoundValue(14.0, 5.0, -1), 10.0);
    EXPECT_EQ(RoundValue(-1.0, 5.0, -1), -5.0);
}

TEST(RoundValueTest, PositiveModeMovesAwayFromZeroEvenOnExactMultiples) {
    EXPECT_EQ(RoundValue(2.0, 1.0, 1), 3.0);
    EXPECT_EQ(RoundValue(-2.0, 1.0, 1), -3.0);
    EXPECT_EQ(RoundValue(2.5, 1.0, 1), 3.0);
    EXPECT_EQ(RoundValue(-2.5, 1.0, 2), -3.0);
    EXPECT_EQ(RoundValue(0.1, 1.0, 1), 1.0);
    EXPECT_EQ(RoundValue(0.0, 1.0, 1), 0.0);
    EXPECT_EQ(RoundValue(11.0, 5.0, 1), 15.0);
}

TEST(RoundValueTest, ZeroStepReturnsTheValue) {
    for (int mode : {-1, 0, 1}) {
        EXPECT_EQ(RoundValue(2.345, 0.0, mode), 2.345);
        EXPECT_EQ(RoundValue(-7.5, 0.0, mode), -7.5);
    }
}

TEST(IntervallTest, OverlappingIntervalsInEitherOrder) {
    double lo = -1, hi = -1;
    OvIntervall(lo, hi, 3.0, 1.0, 2.0, 5.0);
    EXPECT_EQ(lo, 2.0);
    EXPECT_EQ(hi, 3.0);

    OvIntervall(lo, hi, 5.0, 2.0, 1.0, 3.0);
    EXPECT_EQ(lo, 2.0);
    EXPECT_EQ(hi, 3.0);
}

TEST(IntervallTest, ContainedInterval) {
    double lo = -1, hi = -1;
    OvIntervall(lo, hi, 0.0, 10.0, 4.0, 6.0);
    EXPECT_EQ(lo, 4.0);
    EXPECT_EQ(hi, 6.0);
    OvIntervall(lo, hi, 6.0, 4.0, 10.0, 0.0);
    EXPECT_EQ(lo, 4.0);
    EXPECT_EQ(hi, 6.0);
}

TEST(IntervallTest, DisjointIntervalsGiveZero) {
    double lo = -1, hi = -1;
    OvIntervall(lo, hi, 0.0, 1.0, 2.0, 3.0);
    EXPECT_EQ(lo, 0.0);
    EXPECT_EQ(hi, 0.0);
    lo = hi = -1;
    OvIntervall(lo, hi, 7.0, 5.0, -3.0, -2.0);
    EXPECT_EQ(lo, 0.0);
    EXPECT_EQ(hi, 0.0);
}

TEST(IntervallTest, TouchingIntervalsDependOnTheirOrder) {
    double lo = -1, hi = -1;
    OvIntervall(lo, hi, 0.0, 1.0, 1.0, 2.0);
    EXPECT_EQ(lo, 0.0);
    EXPECT_EQ(hi, 0.0);

    lo = hi = -1;
    OvIntervall(lo, hi, 1.0, 2.0, 0.0, 1.0);
    EXPECT_EQ(lo, 1.0);
    EXPECT_EQ(hi, 1.0);

    lo = hi = -1;
    OvIntervall(lo, hi, 5.0, 3.0, 7.0, 5.0);
    EXPECT_EQ(lo, 0.0);
    EXPECT_EQ(hi, 0.0);
}

TEST(IntervallTest, EqualValuesKeepTheirOrder) {
    // Identical intervals: sorted 1S1, 1S2, 4E1, 4E2.
    double lo = -1, hi = -1;
    OvIntervall(lo, hi, 1.0, 4.0, 1.0, 4.0);
    EXPECT_EQ(lo, 1.0);
    EXPECT_EQ(hi, 4.0);

    // Degenerate intervals at one value: start1, end1, start2, end2 all equal; the second point
    // is end1 and the third start2, so they count as disjoint.
    lo = hi = -1;
    OvIntervall(lo, hi, 2.0, 2.0, 2.0, 2.0);
    EXPECT_EQ(lo, 0.0);
    EXPECT_EQ(hi, 0.0);

    // A point interval inside another one: sorted 0S, 3S, 3E, 9E.
    lo = hi = -1;
    OvIntervall(lo, hi, 0.0, 9.0, 3.0, 3.0);
    EXPECT_EQ(lo, 3.0);
    EXPECT_EQ(hi, 3.0);
}

}  // namespace
}  // namespace orvo
