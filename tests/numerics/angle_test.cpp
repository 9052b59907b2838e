#include "orvo/numerics/angle.h"

#include <gtest/gtest.h>

#include <cmath>

namespace orvo {
namespace {

constexpr double kPi = 3.141592653589793;

TEST(ConvertAngleTest, DegreesToRadiansAndBack) {
    EXPECT_DOUBLE_EQ(ConvertAngle(180.0, eOvAngleDegree, eOvAngleRadian), kPi);
    EXPECT_DOUBLE_EQ(ConvertAngle(90.0, eOvAngleDegree, eOvAngleRadian), kPi / 2);
    EXPECT_DOUBLE_EQ(ConvertAngle(-45.0, eOvAngleDegree, eOvAngleRadian), -kPi / 4);
    EXPECT_DOUBLE_EQ(ConvertAngle(kPi, eOvAngleRadian, eOvAngleDegree), 180.0);
    EXPECT_DOUBLE_EQ(ConvertAngle(kPi / 6, eOvAngleRadian, eOvAngleDegree), 30.0);
}

TEST(ConvertAngleTest, GonToRadiansAndBack) {
    EXPECT_DOUBLE_EQ(ConvertAngle(kPi, eOvAngleRadian, eOvAngleGon), 200.0);
    EXPECT_DOUBLE_EQ(ConvertAngle(100.0, eOvAngleGon, eOvAngleRadian), kPi / 2);
    EXPECT_DOUBLE_EQ(ConvertAngle(400.0, eOvAngleGon, eOvAngleRadian), 2 * kPi);
}

TEST(ConvertAngleTest, DegreesAndGonThroughRadians) {
    EXPECT_DOUBLE_EQ(ConvertAngle(90.0, eOvAngleDegree, eOvAngleGon), 100.0);
    EXPECT_DOUBLE_EQ(ConvertAngle(50.0, eOvAngleGon, eOvAngleDegree), 45.0);
    EXPECT_DOUBLE_EQ(ConvertAngle(33.0, eOvAngleDegree, eOvAngleDegree), 33.0);
}

TEST(ConvertAngleTest, UnitsOutsideTheNamedOnesMeanRadians) {
    const double x = 1.2345678;
    EXPECT_EQ(ConvertAngle(x, static_cast<eOvAngleUnit>(5), static_cast<eOvAngleUnit>(7)), x);
    EXPECT_EQ(ConvertAngle(x, static_cast<eOvAngleUnit>(0), eOvAngleRadian), x);
    EXPECT_DOUBLE_EQ(ConvertAngle(kPi, static_cast<eOvAngleUnit>(-2), eOvAngleDegree), 180.0);
    EXPECT_DOUBLE_EQ(ConvertAngle(180.0, eOvAngleDegree, static_cast<eOvAngleUnit>(99)), kPi);
}

TEST(NormAngleTest, NegativeAnglesGainWholeTurns) {
    EXPECT_EQ(NormAngle(-0.5), 6.283185307179586 - 0.5);
    EXPECT_EQ(NormAngle(-7.0), (-7.0 + 6.283185307179586) + 6.283185307179586);
    EXPECT_EQ(NormAngle(-6.283185307179586), 0.0);
}

TEST(NormAngleTest, TheRangeIsClosedAtBothEnds) {
    EXPECT_EQ(NormAngle(0.0), 0.0);
    EXPECT_EQ(NormAngle(6.283185307179586), 6.283185307179586);
    const double justAbove = std::nextafter(6.283185307179586, 10.0);
    EXPECT_EQ(NormAngle(justAbove), justAbove - 6.283185307179586);
    EXPECT_EQ(NormAngle(3.0), 3.0);
}

TEST(NormAngleTest, LargeAnglesLoseWholeTurnsOneAtATime) {
    double expected = 20.0;
    while (expected > 6.283185307179586)
        expected -= 6.283185307179586;
    EXPECT_EQ(NormAngle(20.0), expected);
    // Three turns plus a bit, subtracted step by step.
    EXPECT_EQ(NormAngle(3 * 6.283185307179586 + 1.0),
              ((3 * 6.283185307179586 + 1.0) - 6.283185307179586 - 6.283185307179586) -
                  6.283185307179586);
}

TEST(NormAngleTest, HugeAndNonFiniteAnglesFinish) {
    const double huge = NormAngle(1e300);
    EXPECT_GE(huge, 0.0);
    EXPECT_LE(huge, 6.283185307179586);
    const double hugeNegative = NormAngle(-1e20);
    EXPECT_GE(hugeNegative, 0.0);
    EXPECT_LE(hugeNegative, 6.283185307179586);
    EXPECT_TRUE(std::isnan(NormAngle(INFINITY)));
    EXPECT_TRUE(std::isnan(NormAngle(-INFINITY)));
    EXPECT_TRUE(std::isnan(NormAngle(NAN)));
}

}  // namespace
}  // namespace orvo
