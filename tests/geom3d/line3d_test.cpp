#include "orvo/geom3d/line3d.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(OvPoint3dTest, ArithmeticAndProducts) {
    const OvPoint3d a(1.0, 2.0, 3.0);
    const OvPoint3d b(-4.0, 0.5, 2.0);
    EXPECT_EQ(a + b, OvPoint3d(-3.0, 2.5, 5.0));
    EXPECT_EQ(a - b, OvPoint3d(5.0, 1.5, 1.0));
    EXPECT_EQ(a * 2.0, OvPoint3d(2.0, 4.0, 6.0));
    EXPECT_DOUBLE_EQ(a.Dot(b), -4.0 + 1.0 + 6.0);
    // (2*2 - 3*0.5, 3*(-4) - 1*2, 1*0.5 - 2*(-4))
    EXPECT_EQ(a.Cross(b), OvPoint3d(2.5, -14.0, 8.5));
    EXPECT_DOUBLE_EQ(OvPoint3d(3.0, 4.0, 12.0).Length(), 13.0);
    EXPECT_DOUBLE_EQ(a.Distance(OvPoint3d(4.0, 6.0, 3.0)), 5.0);
}

TEST(OvLine3dTest, StartEndAndDerivedValues) {
    const OvLine3d line(1.0, 1.0, 1.0, 4.0, 5.0, 13.0);
    EXPECT_EQ(line.GetStart(), OvPoint3d(1.0, 1.0, 1.0));
    EXPECT_EQ(line.GetEnd(), OvPoint3d(4.0, 5.0, 13.0));
    EXPECT_EQ(line.Direction(), OvPoint3d(3.0, 4.0, 12.0));
    EXPECT_DOUBLE_EQ(line.Length(), 13.0);
    EXPECT_EQ(line.Midpoint(), OvPoint3d(2.5, 3.0, 7.0));
    EXPECT_EQ(line.PointAt(0.0), line.GetStart());
    EXPECT_EQ(line.PointAt(1.0), line.GetEnd());
}

TEST(OvLine3dTest, DefaultIsDegenerateAtOriginAndSettersReplaceEnds) {
    OvLine3d line;
    EXPECT_EQ(line.Length(), 0.0);
    line.SetStart(OvPoint3d(0.0, 0.0, 1.0));
    line.SetEnd(OvPoint3d(0.0, 2.0, 1.0));
    EXPECT_EQ(line, OvLine3d(OvPoint3d(0.0, 0.0, 1.0), OvPoint3d(0.0, 2.0, 1.0)));
    EXPECT_FALSE(line == OvLine3d());
}

}  // namespace
}  // namespace orvo
