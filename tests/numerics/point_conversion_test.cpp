#include <gtest/gtest.h>

#include "linalg_test_support.h"
#include "orvo/model/point.h"
#include "orvo/numerics/matrix.h"

namespace orvo {
namespace {

using test::MakeMatrix;
using test::MakeVector;

TEST(OvVectorFromPointTest, TypesPickTheElements) {
    const OvPoint p(7, 1.5, -2.5, 4.0, 0);
    EXPECT_TRUE(OvVector(p, eOvVectorXY0) == MakeVector({1.5, -2.5, 0.0}));
    EXPECT_TRUE(OvVector(p, eOvVectorXY1) == MakeVector({1.5, -2.5, 1.0}));
    EXPECT_TRUE(OvVector(p, eOvVectorXYZ) == MakeVector({1.5, -2.5, 4.0}));
    // Type 3 puts 0.0 in the fourth element, where ChangeType would put 1.0.
    EXPECT_TRUE(OvVector(p, eOvVectorXYZW) == MakeVector({1.5, -2.5, 4.0, 0.0}));
    EXPECT_TRUE(OvVector(p, static_cast<eOvVectorType>(9)) == MakeVector({1.5, -2.5, 4.0, 0.0}));
    OvVector grown(p, eOvVectorXYZ);
    grown.ChangeType(eOvVectorXYZW);
    EXPECT_EQ(grown[4], 1.0);
}

TEST(PointMappingTest, PTrans2DMovesOnlyXAndY) {
    const OvMatrix m = MakeMatrix({{1, 0, 10}, {0, 2, 0}, {0, 0, 1}});
    OvPoint p(1, 1.0, 2.0, 3.0, 0);
    ASSERT_TRUE(m.PTrans2D(&p));
    EXPECT_EQ(p.GetX(), 11.0);
    EXPECT_EQ(p.GetY(), 4.0);
    EXPECT_EQ(p.GetZ(), 3.0);
    EXPECT_EQ(p.GetId(), 1u);
    EXPECT_FALSE(m.PTrans2D(static_cast<OvPoint*>(nullptr)));

    const OvMatrix vanishing = MakeMatrix({{1, 0, 0}, {0, 1, 0}, {0, 0, 5e-11}});
    OvPoint q(2, 0.0, 0.0, 1.0, 0);
    EXPECT_FALSE(vanishing.PTrans2D(&q));
    EXPECT_EQ(q.GetX(), 0.0);
}

TEST(PointMappingTest, PTrans3DMovesAllThree) {
    OvMatrix m(4, 4);
    m.SetIdent();
    m.SetElem(3, 4, -1.0);
    m.SetElem(4, 4, 2.0);
    OvPoint p(1, 2.0, 4.0, 6.0, 0);
    ASSERT_TRUE(m.PTrans3D(&p));
    EXPECT_EQ(p.GetX(), 1.0);
    EXPECT_EQ(p.GetY(), 2.0);
    EXPECT_EQ(p.GetZ(), 2.5);
    m.SetElem(4, 4, 0.0);
    EXPECT_FALSE(m.PTrans3D(&p));
    EXPECT_EQ(p.GetZ(), 2.5);
    EXPECT_FALSE(m.PTrans3D(static_cast<OvPoint*>(nullptr)));
}

}  // namespace
}  // namespace orvo
