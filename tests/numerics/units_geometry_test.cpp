#include <gtest/gtest.h>

#include "orvo/geom2d/region.h"
#include "orvo/model/point.h"
#include "orvo/numerics/units.h"

namespace orvo {
namespace {

TEST(ConvertUnitPointTest, ScalesXYZOnly) {
    OvPoint p(5, 1500, -250, 2, 0);
    p.SetD(0, 7.0);
    p.SetR(1, 3.0);
    ConvertUnit(&p, eOvUnitMM, eOvUnitM);
    const double k = 0.001 / 1.0;
    EXPECT_EQ(p.GetX(), 1500 * k);
    EXPECT_EQ(p.GetY(), -250 * k);
    EXPECT_EQ(p.GetZ(), 2 * k);
    EXPECT_DOUBLE_EQ(p.GetX(), 1.5);
    EXPECT_EQ(p.GetD(0), 7.0);
    EXPECT_EQ(p.GetR(1), 3.0);
    EXPECT_EQ(p.GetId(), 5u);

    OvPoint q(0, 2, 3, 4, 0);
    ConvertUnit(&q, eOvUnitMicron, eOvUnitMM);
    EXPECT_EQ(q.GetX(), 2 * (1e-6 / 0.001));
    EXPECT_DOUBLE_EQ(q.GetZ(), 0.004);

    ConvertUnit(static_cast<OvPoint*>(nullptr), eOvUnitMM, eOvUnitM);
}

TEST(ConvertUnitRegionTest, ScalesBothCornersWithZ) {
    OvRegion r(OvPoint(0, 1, 2, 3, 0), OvPoint(0, 4, 5, 6, 0));
    ConvertUnit(&r, eOvUnitCM, eOvUnitMM);
    const double k = 0.01 / 0.001;
    EXPECT_EQ(r.GetFirst().GetX(), 1 * k);
    EXPECT_EQ(r.GetFirst().GetY(), 2 * k);
    EXPECT_EQ(r.GetFirst().GetZ(), 3 * k);
    EXPECT_EQ(r.GetSecond().GetX(), 4 * k);
    EXPECT_EQ(r.GetSecond().GetY(), 5 * k);
    EXPECT_EQ(r.GetSecond().GetZ(), 6 * k);
    EXPECT_DOUBLE_EQ(r.GetSecond().GetZ(), 60.0);

    OvRegion unknown(0, 0, 2, 2);
    ConvertUnit(&unknown, static_cast<eOvUnit>(11), eOvUnitMM);
    EXPECT_DOUBLE_EQ(unknown.Right(), 2000.0);

    ConvertUnit(static_cast<OvRegion*>(nullptr), eOvUnitMM, eOvUnitM);
}

}  // namespace
}  // namespace orvo
