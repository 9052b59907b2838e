#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "linalg_test_support.h"
#include "orvo/numerics/matrix.h"
#include "orvo/numerics/vector_geometry.h"

namespace orvo {
namespace {

using test::MakeMatrix;
using test::MakeVector;
using test::ThrownCode;

constexpr double kPi = std::numbers::pi;

// ---------------------------------------------------------------- PTrans2D / PTrans3D

TEST(PTrans2DTest, ProjectiveMappingDividesByW) {
    const OvMatrix m = MakeMatrix({{2, 0, 1}, {0, 3, -1}, {0.5, 0, 1}});
    double x = 2, y = 4;
    ASSERT_TRUE(m.PTrans2D(&x, &y));
    // w = 0.5 * 2 + 1 = 2; x' = (4 + 1) / 2, y' = (12 - 1) / 2.
    EXPECT_EQ(x, 2.5);
    EXPECT_EQ(y, 5.5);
}

TEST(PTrans2DTest, BothCoordinatesComeFromTheOldPoint) {
    const OvMatrix swap = MakeMatrix({{0, 1, 0}, {1, 0, 0}, {0, 0, 1}});
    double x = 1, y = 2;
    ASSERT_TRUE(swap.PTrans2D(&x, &y));
    EXPECT_EQ(x, 2.0);
    EXPECT_EQ(y, 1.0);
}

TEST(PTrans2DTest, WBelowTheThresholdLeavesThePoint) {
    OvMatrix m(3, 3);
    m.SetIdent();
    for (double w : {5e-11, -5e-11, 0.0}) {
        m.SetElem(3, 3, w);
        double x = 7, y = 8;
        EXPECT_FALSE(m.PTrans2D(&x, &y)) << "w = " << w;
        EXPECT_EQ(x, 7.0);
        EXPECT_EQ(y, 8.0);
    }
    m.SetElem(3, 3, 1e-10);  // exactly the threshold is not below it
    double x = 1e-10, y = 0;
    EXPECT_TRUE(m.PTrans2D(&x, &y));
    EXPECT_EQ(x, 1.0);
}

TEST(PTrans2DTest, NullPointersAndSmallMatrices) {
    OvMatrix id(3, 3);
    id.SetIdent();
    double v = 1;
    EXPECT_FALSE(id.PTrans2D(nullptr, &v));
    EXPECT_FALSE(id.PTrans2D(&v, nullptr));
    const OvMatrix small(2, 3);
    double x = 1, y = 1;
    EXPECT_EQ(ThrownCode([&] { small.PTrans2D(&x, &y); }), 10);
}

TEST(PTrans3DTest, FourByFourMapping) {
    OvMatrix m(4, 4);
    m.SetIdent();
    m.SetElem(1, 4, 10);  // translation
    m.SetElem(2, 4, 20);
    m.SetElem(3, 4, 30);
    m.SetElem(4, 3, 1);  // w = z + 1
    double x = 1, y = 2, z = 3;
    ASSERT_TRUE(m.PTrans3D(&x, &y, &z));
    EXPECT_EQ(x, 11.0 / 4.0);
    EXPECT_EQ(y, 22.0 / 4.0);
    EXPECT_EQ(z, 33.0 / 4.0);

    m.SetElem(4, 4, 5e-11);
    m.SetElem(4, 3, 0);
    x = 1, y = 2, z = 3;
    EXPECT_FALSE(m.PTrans3D(&x, &y, &z));
    EXPECT_TRUE(x == 1 && y == 2 && z == 3);
    EXPECT_FALSE(m.PTrans3D(&x, &y, nullptr));
    OvMatrix small(3, 3);
    EXPECT_EQ(ThrownCode([&] { small.PTrans3D(&x, &y, &z); }), 10);
}

// ---------------------------------------------------------------- Rotations

OvMatrix Elementary(int axis, double angle) {
    const double c = std::cos(angle), s = std::sin(angle);
    if (axis == 1) return MakeMatrix({{1, 0, 0}, {0, c, -s}, {0, s, c}});
    if (axis == 2) return MakeMatrix({{c, 0, s}, {0, 1, 0}, {-s, 0, c}});
    return MakeMatrix({{c, -s, 0}, {s, c, 0}, {0, 0, 1}});
}

void ExpectNearMatrix(const OvMatrix& a, const OvMatrix& b, double tolerance) {
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            EXPECT_NEAR(a.GetElem(i, j), b.GetElem(i, j), tolerance) << "(" << i << "," << j << ")";
}

TEST(RotationTest, IsTheProductOmegaPhiKappa) {
    const double omega = 0.3, phi = -0.7, kappa = 2.1;
    OvMatrix r(3, 3);
    r.MakeRotMatrix(omega, phi, kappa);
    const OvMatrix expected = Elementary(1, omega) * Elementary(2, phi) * Elementary(3, kappa);
    ExpectNearMatrix(r, expected, 1e-15);
    // Orthonormal with determinant +1.
    OvMatrix rrt = r * r.Transpose();
    OvMatrix id(3, 3);
    id.SetIdent();
    ExpectNearMatrix(rrt, id, 1e-15);
    EXPECT_NEAR(r.Sarrus(), 1.0, 1e-15);
}

TEST(RotationTest, KappaTurnsCounterClockwiseAboutZ) {
    OvMatrix r(3, 3);
    r.MakeRotMatrix(0, 0, kPi / 2);
    const OvVector turned = r * MakeVector({1, 0, 0});
    EXPECT_NEAR(turned[1], 0.0, 1e-16);
    EXPECT_NEAR(turned[2], 1.0, 1e-16);
    EXPECT_NEAR(turned[3], 0.0, 1e-16);
}

TEST(RotationTest, GetRotAnglesInvertsMakeRotMatrix) {
    const double angles[] = {-3.0, -1.5, -0.4, 0.0, 0.25, 1.2, 3.1};
    const double phis[] = {-1.5, -0.9, -0.1, 0.0, 0.6, 1.4, 1.5707};
    for (double omega : angles) {
        for (double phi : phis) {
            for (double kappa : angles) {
                OvMatrix r(3, 3);
                r.MakeRotMatrix(omega, phi, kappa);
                double o = 99, p = 99, k = 99;
                r.GetRotAngles(&o, &p, &k);
                EXPECT_NEAR(o, omega, 1e-9) << omega << " " << phi << " " << kappa;
                EXPECT_NEAR(p, phi, 1e-12) << omega << " " << phi << " " << kappa;
                EXPECT_NEAR(k, kappa, 1e-9) << omega << " " << phi << " " << kappa;
            }
        }
    }
}

TEST(RotationTest, AnglesOutsideTheMainRangeComeBackEquivalent) {
    OvMatrix r(3, 3);
    r.MakeRotMatrix(4.0, 2.0, -5.0);  // phi beyond pi/2 flips omega and kappa by pi
    double o, p, k;
    r.GetRotAngles(&o, &p, &k);
    EXPECT_LE(std::fabs(p), kPi / 2);
    EXPECT_LE(std::fabs(o), kPi);
    EXPECT_LE(std::fabs(k), kPi);
    OvMatrix again(3, 3);
    again.MakeRotMatrix(o, p, k);
    ExpectNearMatrix(again, r, 1e-14);
}

TEST(RotationTest, GimbalLockPutsTheCommonTurnIntoOmega) {
    for (double phi : {kPi / 2, -kPi / 2}) {
        OvMatrix r(3, 3);
        r.MakeRotMatrix(0.4, phi, 0.3);
        double o, p, k;
        r.GetRotAngles(&o, &p, &k);
        EXPECT_EQ(k, 0.0);
        EXPECT_NEAR(p, phi, 1e-7);
        OvMatrix again(3, 3);
        again.MakeRotMatrix(o, p, k);
        ExpectNearMatrix(again, r, 1e-14);
    }
}

TEST(RotationTest, NullOutputsAreSkipped) {
    OvMatrix r(3, 3);
    r.MakeRotMatrix(0.1, 0.2, 0.3);
    double p = 0;
    r.GetRotAngles(nullptr, &p, nullptr);
    EXPECT_NEAR(p, 0.2, 1e-15);
}

TEST(RotationTest, OnlyTheTopLeftBlockIsWritten) {
    OvMatrix m(4, 4);
    for (int i = 1; i <= 4; ++i)
        for (int j = 1; j <= 4; ++j)
            m.SetElem(i, j, 7.0);
    m.MakeRotMatrix(0, 0, 0);
    EXPECT_EQ(m.GetElem(1, 1), 1.0);
    EXPECT_EQ(m.GetElem(1, 2), 0.0);
    EXPECT_EQ(m.GetElem(1, 4), 7.0);
    EXPECT_EQ(m.GetElem(4, 1), 7.0);
    EXPECT_EQ(m.GetElem(4, 4), 7.0);
}

TEST(RotationTest, TooSmallAMatrixThrowsLineCode) {
    OvMatrix narrow(3, 2);
    EXPECT_EQ(ThrownCode([&] { narrow.MakeRotMatrix(0, 0, 0); }), 11);
    OvMatrix low(2, 3);
    double o;
    EXPECT_EQ(ThrownCode([&] { low.GetRotAngles(&o, &o, &o); }), 11);
    OvVector a = MakeVector({1, 0, 0});
    bool ok = true;
    EXPECT_EQ(ThrownCode([&] { low.MakeRotMatrix(a, a, a, &ok); }), 11);
}

TEST(RotationFromAxesTest, LinesAreTheNormalisedAxes) {
    OvMatrix reference(3, 3);
    reference.MakeRotMatrix(0.5, -0.2, 1.1);
    OvVector x(3), y(3), z(3);
    reference.GetLine(1, x);
    reference.GetLine(2, y);
    reference.GetLine(3, z);
    x *= 5.0;  // any length will do
    y *= 0.01;
    const OvVector xBefore = x;

    OvMatrix r(3, 3);
    bool usable = false;
    r.MakeRotMatrix(x, y, z, &usable);
    EXPECT_TRUE(usable);
    ExpectNearMatrix(r, reference, 1e-15);
    EXPECT_TRUE(x == xBefore);  // arguments are not modified

    // R maps each axis onto the matching unit vector.
    const OvVector e1 = r * x;
    EXPECT_NEAR(e1[1], 5.0, 1e-14);
    EXPECT_NEAR(e1[2], 0.0, 1e-14);
}

TEST(RotationFromAxesTest, UnusableAxesLeaveTheMatrix) {
    OvMatrix r(3, 3);
    r.SetIdent();
    r.SetElem(1, 2, 3.0);  // a marker
    bool usable = true;
    OvVector ex = MakeVector({1, 0, 0}), ey = MakeVector({0, 1, 0}), ez = MakeVector({0, 0, 1});
    OvVector skew = MakeVector({1, 1e-3, 0});
    r.MakeRotMatrix(skew, ey, ez, &usable);
    EXPECT_FALSE(usable);
    OvVector zero(3);
    r.MakeRotMatrix(ex, zero, ez, &usable);
    EXPECT_FALSE(usable);
    OvVector minusZ = MakeVector({0, 0, -1});
    r.MakeRotMatrix(ex, ey, minusZ, &usable);  // left-handed: a reflection
    EXPECT_FALSE(usable);
    EXPECT_EQ(r.GetElem(1, 2), 3.0);

    // Within the tolerance the axes are still accepted.
    OvVector almost = MakeVector({1, 1e-7, 0});
    r.MakeRotMatrix(almost, ey, ez, nullptr);
    EXPECT_DOUBLE_EQ(r.GetElem(1, 2), almost[2] / almost.Abs());

    OvVector flat = MakeVector({1, 0});
    EXPECT_EQ(ThrownCode([&] { r.MakeRotMatrix(flat, ey, ez, &usable); }), 2);
}

// ---------------------------------------------------------------- CalcAngle

TEST(CalcAngleTest, AnglesInRadians) {
    EXPECT_NEAR(CalcAngle(MakeVector({1, 0, 0}), MakeVector({0, 2, 0})), kPi / 2, 1e-15);
    EXPECT_EQ(CalcAngle(MakeVector({1, 2, 3}), MakeVector({2, 4, 6})), 0.0);
    EXPECT_NEAR(CalcAngle(MakeVector({3, 4}), MakeVector({4, 3})), std::acos(24.0 / 25.0), 1e-15);
    EXPECT_NEAR(CalcAngle(MakeVector({1, 0}), MakeVector({-3, 0})), kPi, 1e-15);
    EXPECT_EQ(ThrownCode([] { (void)CalcAngle(MakeVector({1, 0}), MakeVector({1, 0, 0})); }), 8);
}

// ---------------------------------------------------------------- CalcNormVect

TEST(CalcNormVectTest, TriangleNormalFollowsTheRightHandRule) {
    OvVector n(3);
    ASSERT_TRUE(CalcNormVect(&n, MakeMatrix({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}})));
    EXPECT_TRUE(n == MakeVector({0, 0, 1}));
    ASSERT_TRUE(CalcNormVect(&n, MakeMatrix({{0, 0, 0}, {0, 1, 0}, {1, 0, 0}})));
    EXPECT_TRUE(n == MakeVector({0, 0, -1}));
}

TEST(CalcNormVectTest, MatchesTheCrossProductOnATiltedPlane) {
    // Points on z = x + 2y + 1, in counter-clockwise order seen from above.
    const OvMatrix quad = MakeMatrix({{0, 0, 1}, {2, 0, 3}, {2, 1, 5}, {1, 2, 6}, {0, 1, 3}});
    OvVector n(3);
    ASSERT_TRUE(CalcNormVect(&n, quad));
    const OvVector p1 = MakeVector({0, 0, 1}), p2 = MakeVector({2, 0, 3}),
                   p3 = MakeVector({2, 1, 5});
    OvVector expected = (p2 - p1) % (p3 - p1);
    expected.Normalize();
    for (int k = 1; k <= 3; ++k)
        EXPECT_NEAR(n[k], expected[k], 1e-15);
    EXPECT_NEAR(n[1], -1.0 / std::sqrt(6.0), 1e-15);
}

TEST(CalcNormVectTest, DegenerateInputs) {
    OvVector n = MakeVector({9, 9, 9});
    EXPECT_FALSE(CalcNormVect(&n, MakeMatrix({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}})));
    EXPECT_FALSE(CalcNormVect(&n, MakeMatrix({{0, 0, 0}, {1, 0, 0}})));
    EXPECT_FALSE(CalcNormVect(nullptr, MakeMatrix({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}})));
    EXPECT_TRUE(n == MakeVector({9, 9, 9}));
    EXPECT_EQ(ThrownCode([&] { CalcNormVect(&n, OvMatrix(3, 2)); }), 10);
    OvVector shortN(2);
    EXPECT_EQ(ThrownCode([&] {
                  CalcNormVect(&shortN, MakeMatrix({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}));
              }),
              2);
}

// ---------------------------------------------------------------- CalcArbitaryAlg

TEST(CalcArbitaryAlgTest, NormalAlongZUsesTheWorldYAxis) {
    OvVector ax(3), ay(3);
    ASSERT_TRUE(CalcArbitaryAlg(&ax, &ay, MakeVector({0, 0, 1})));
    EXPECT_TRUE(ax == MakeVector({1, 0, 0}));
    EXPECT_TRUE(ay == MakeVector({0, 1, 0}));
    ASSERT_TRUE(CalcArbitaryAlg(&ax, &ay, MakeVector({0, 0, -3})));
    EXPECT_TRUE(ax == MakeVector({-1, 0, 0}));
    EXPECT_TRUE(ay == MakeVector({0, 1, 0}));
}

TEST(CalcArbitaryAlgTest, OtherNormalsUseTheWorldZAxis) {
    OvVector ax(3), ay(3);
    ASSERT_TRUE(CalcArbitaryAlg(&ax, &ay, MakeVector({1, 0, 0})));
    EXPECT_TRUE(ax == MakeVector({0, 1, 0}));
    EXPECT_TRUE(ay == MakeVector({0, 0, 1}));
}

TEST(CalcArbitaryAlgTest, ThresholdIsOneSixtyFourthOfTheUnitNormal) {
    // Wy x N = (Nz, 0, -Nx) has no y part; Wz x N = (-Ny, Nx, 0) has no z part.
    OvVector ax(3), ay(3);
    const double below = 0.0156, above = 0.0157;  // 1/64 = 0.015625
    ASSERT_TRUE(CalcArbitaryAlg(&ax, &ay, MakeVector({below, 0, std::sqrt(1 - below * below)})));
    EXPECT_EQ(ax[2], 0.0);
    EXPECT_NE(ax[3], 0.0);
    ASSERT_TRUE(CalcArbitaryAlg(&ax, &ay, MakeVector({above, 0, std::sqrt(1 - above * above)})));
    EXPECT_EQ(ax[3], 0.0);
    // The test is on the normalised normal: a long vector with the same direction agrees.
    ASSERT_TRUE(CalcArbitaryAlg(&ax, &ay,
                                MakeVector({100 * below, 0, 100 * std::sqrt(1 - below * below)})));
    EXPECT_EQ(ax[2], 0.0);
    // Both components must be small: N.y alone above the threshold also switches.
    ASSERT_TRUE(CalcArbitaryAlg(&ax, &ay, MakeVector({below, above, 1})));
    EXPECT_EQ(ax[3], 0.0);
}

TEST(CalcArbitaryAlgTest, GivesARightHandedOrthonormalFrame) {
    const OvVector normals[] = {MakeVector({1, 2, 3}), MakeVector({-0.01, 0.005, -2}),
                                MakeVector({0, -1, 0}), MakeVector({5, 5, -5})};
    for (const OvVector& n : normals) {
        OvVector ax(3), ay(3);
        ASSERT_TRUE(CalcArbitaryAlg(&ax, &ay, n));
        OvVector unit = n;
        unit.Normalize();
        EXPECT_NEAR(ax.Abs(), 1.0, 1e-15);
        EXPECT_NEAR(ay.Abs(), 1.0, 1e-15);
        EXPECT_NEAR(ax * ay, 0.0, 1e-15);
        EXPECT_NEAR(ax * unit, 0.0, 1e-15);
        const OvVector z = ax % ay;
        for (int k = 1; k <= 3; ++k)
            EXPECT_NEAR(z[k], unit[k], 1e-15);
    }
}

TEST(CalcArbitaryAlgTest, DegenerateInputs) {
    OvVector ax = MakeVector({7, 7, 7}), ay(3);
    EXPECT_FALSE(CalcArbitaryAlg(&ax, &ay, OvVector(3)));
    EXPECT_FALSE(CalcArbitaryAlg(nullptr, &ay, MakeVector({0, 0, 1})));
    EXPECT_FALSE(CalcArbitaryAlg(&ax, nullptr, MakeVector({0, 0, 1})));
    EXPECT_TRUE(ax == MakeVector({7, 7, 7}));
    EXPECT_EQ(ThrownCode([&] { CalcArbitaryAlg(&ax, &ay, MakeVector({0, 1})); }), 2);
}

}  // namespace
}  // namespace orvo
