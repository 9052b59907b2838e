// OvTrafo2d: names, the point mappings of every type against the equations written out here,
// the inverse Helmert, the matrix form and the finiteness test.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "linalg_test_support.h"
#include "orvo/model/point.h"
#include "orvo/numerics/matrix.h"
#include "orvo/numerics/trafo2d.h"
#include "valgrind_support.h"

namespace orvo {
namespace {

using test::ThrownCode;

OvTrafo2d Make(eOvTrafo2DType type, std::initializer_list<double> params) {
    OvTrafo2d t;
    t.SetType(type);
    int i = 0;
    for (double value : params)
        t.SetParam(i++, value);
    return t;
}

TEST(Trafo2dTypes, NamesAndParameterCounts) {
    EXPECT_STREQ(OvTrafo2DName(eOvTrafo2DNone), "None");
    EXPECT_STREQ(OvTrafo2DName(eOvTrafo2DHelmert), "Helmert");
    EXPECT_STREQ(OvTrafo2DName(eOvTrafo2DAffin), "Affin");
    EXPECT_STREQ(OvTrafo2DName(eOvTrafo2DProjektiv), "Projektiv");
    EXPECT_STREQ(OvTrafo2DName(eOvTrafo2DPolynomial), "Polynomial");
    EXPECT_STREQ(OvTrafo2DName(eOvTrafo2DInvHelmert), "Inv. Helmert");
    EXPECT_STREQ(OvTrafo2DName(static_cast<eOvTrafo2DType>(9)), "None");
    EXPECT_STREQ(OvTrafo2DName(static_cast<eOvTrafo2DType>(-1)), "None");

    const int expected[] = {0, 4, 6, 8, 20, 0, 0};
    for (int code = 0; code <= 6; ++code)
        EXPECT_EQ(OvTrafo2DParamCount(static_cast<eOvTrafo2DType>(code)), expected[code]) << code;
    static_assert(sizeof(eOvTrafo2DType) == 4);
}

TEST(Trafo2dState, DefaultInitSetIdentAndCopies) {
    OvTrafo2d t;
    EXPECT_EQ(t.GetType(), eOvTrafo2DNone);
    for (int i = 0; i < OvTrafo2d::kMaxParams; ++i)
        EXPECT_EQ(t.GetParam(i), 0.0);

    for (int i = 0; i < OvTrafo2d::kMaxParams; ++i)
        t.SetParam(i, i + 0.5);
    t.SetIdent();
    EXPECT_EQ(t.GetType(), eOvTrafo2DHelmert);
    EXPECT_STREQ(t.GetTrafoName(), "Helmert");
    EXPECT_EQ(t.GetParam(0), 0.0);
    EXPECT_EQ(t.GetParam(1), 1.0);
    EXPECT_EQ(t.GetParam(2), 0.0);
    EXPECT_EQ(t.GetParam(3), 0.0);
    EXPECT_EQ(t.GetParam(4), 4.5);  // the rest is left alone
    EXPECT_EQ(t.GetParam(19), 19.5);

    // Out-of-range indices read 0 and write nothing.
    t.SetParam(20, 7.0);
    t.SetParam(-1, 7.0);
    EXPECT_EQ(t.GetParam(20), 0.0);
    EXPECT_EQ(t.GetParam(-1), 0.0);

    OvTrafo2d copy(t);
    OvTrafo2d assigned;
    assigned = t;
    OvTrafo2d set;
    set.Set(t);
    for (const OvTrafo2d* other : {&copy, &assigned, &set}) {
        EXPECT_EQ(other->GetType(), eOvTrafo2DHelmert);
        for (int i = 0; i < OvTrafo2d::kMaxParams; ++i)
            EXPECT_EQ(other->GetParam(i), t.GetParam(i));
    }

    t.Init();
    EXPECT_EQ(t.GetType(), eOvTrafo2DNone);
    for (int i = 0; i < OvTrafo2d::kMaxParams; ++i)
        EXPECT_EQ(t.GetParam(i), 0.0);
}

TEST(Trafo2dTransform, IdentityLeavesPoints) {
    OvTrafo2d t;
    t.SetIdent();
    for (double x : {-3.25, 0.0, 1e6}) {
        double px = x, py = 2.0 * x + 1.0;
        EXPECT_TRUE(t.Transform(&px, &py));
        EXPECT_EQ(px, x);
        EXPECT_EQ(py, 2.0 * x + 1.0);
    }
}

TEST(Trafo2dTransform, HelmertKeepsTranslationsInP0AndP2) {
    // x' = 10 + 2 x - 0.5 y, y' = 20 + 0.5 x + 2 y
    const OvTrafo2d t = Make(eOvTrafo2DHelmert, {10.0, 2.0, 20.0, 0.5});
    double x = 1.0, y = 2.0;
    ASSERT_TRUE(t.Transform(&x, &y));
    EXPECT_DOUBLE_EQ(x, 11.0);
    EXPECT_DOUBLE_EQ(y, 24.5);
}

TEST(Trafo2dTransform, AffinAndProjektivParameterOrder) {
    const OvTrafo2d affin = Make(eOvTrafo2DAffin, {1.0, 2.0, 3.0, 4.0, 5.0, 6.0});
    double x = 10.0, y = 100.0;
    ASSERT_TRUE(affin.Transform(&x, &y));
    EXPECT_DOUBLE_EQ(x, 1.0 + 20.0 + 300.0);
    EXPECT_DOUBLE_EQ(y, 4.0 + 50.0 + 600.0);

    // The constant terms are p2 and p5; the denominator is p6 x + p7 y + 1.
    const OvTrafo2d proj = Make(eOvTrafo2DProjektiv, {2.0, 0.5, 7.0, -1.0, 3.0, 11.0, 0.01, 0.02});
    x = 4.0;
    y = -2.0;
    ASSERT_TRUE(proj.Transform(&x, &y));
    const double d = 0.04 - 0.04 + 1.0;
    EXPECT_DOUBLE_EQ(x, (8.0 - 1.0 + 7.0) / d);
    EXPECT_DOUBLE_EQ(y, (-4.0 - 6.0 + 11.0) / d);

    x = 5.0;
    y = 5.0;
    ASSERT_TRUE(proj.Transform(&x, &y));
    EXPECT_DOUBLE_EQ(x, (10.0 + 2.5 + 7.0) / 1.15);
    EXPECT_DOUBLE_EQ(y, (-5.0 + 15.0 + 11.0) / 1.15);
}

TEST(Trafo2dTransform, PolynomialMonomialOrder) {
    OvTrafo2d t;
    t.SetType(eOvTrafo2DPolynomial);
    // Each coefficient picks one monomial, so a wrong order shows at once.
    const double cx[10] = {1, 2, 3, 5, 7, 11, 13, 17, 19, 23};
    const double cy[10] = {-1, 0.5, 0.25, 0, 0, 0, 0, 0, 0, 1};
    for (int k = 0; k < 10; ++k) {
        t.SetParam(k, cx[k]);
        t.SetParam(10 + k, cy[k]);
    }
    const double px = 2.0, py = 3.0;
    const double m[10] = {1,       px,           py,           px * px,      px * py,
                          py * py, px * px * px, px * px * py, px * py * py, py * py * py};
    double ex = 0.0, ey = 0.0;
    for (int k = 0; k < 10; ++k) {
        ex += cx[k] * m[k];
        ey += cy[k] * m[k];
    }
    double x = px, y = py;
    ASSERT_TRUE(t.Transform(&x, &y));
    EXPECT_DOUBLE_EQ(x, ex);
    EXPECT_DOUBLE_EQ(y, ey);
    EXPECT_DOUBLE_EQ(y, -1.0 + 1.0 + 0.75 + 27.0);
}

TEST(Trafo2dTransform, PolynomialKeepsItsValueAgainstCancellation) {
    if (test::RunningUnderValgrind()) GTEST_SKIP() << "valgrind computes long double as double";
    // x' = (x - c)^3 expanded, with c = 2^22 (every coefficient exact): at x = c + 10 the
    // terms are near 2^66 while the value is 1000. The plain double sum loses it entirely.
    const double c = 4194304.0;
    const OvTrafo2d t = Make(eOvTrafo2DPolynomial,
                             {-c * c * c, 3.0 * c * c, 0.0, -3.0 * c, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0,
                              // y' = y: a plain identity, summed without cancellation
                              0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0});
    const double x0 = c + 10.0;
    double plain = -c * c * c;
    plain += 3.0 * c * c * x0;
    plain += -3.0 * c * (x0 * x0);
    plain += x0 * x0 * x0;
    EXPECT_GT(std::fabs(plain - 1000.0), 100.0) << plain;

    double x = x0, y = 7.25;
    ASSERT_TRUE(t.Transform(&x, &y));
    EXPECT_EQ(y, 7.25);
    if (std::numeric_limits<long double>::digits >= 64) {
        EXPECT_EQ(x, 1000.0);  // every product and sum exact in extended precision
    } else {
        EXPECT_NEAR(x, 1000.0, 1e5);  // no wider type on this platform: no worse than plain
    }
}

TEST(Trafo2dTransform, TypesWithoutMappingRefuseAndLeaveThePoint) {
    for (int code : {0, 5, 6, 42, -3}) {
        OvTrafo2d t = Make(static_cast<eOvTrafo2DType>(code), {1, 2, 3, 4, 5, 6, 7, 8});
        double x = 1.5, y = -2.5;
        EXPECT_FALSE(t.Transform(&x, &y)) << code;
        EXPECT_EQ(x, 1.5);
        EXPECT_EQ(y, -2.5);
        OvPoint p(1, 1.5, -2.5, 9.0, 0);
        EXPECT_FALSE(t.Transform(&p));
        EXPECT_EQ(p.GetX(), 1.5);
    }
    OvTrafo2d helmert;
    helmert.SetIdent();
    EXPECT_FALSE(helmert.Transform(nullptr, nullptr));
    EXPECT_FALSE(helmert.Transform(static_cast<OvPoint*>(nullptr)));
}

TEST(Trafo2dTransform, PointFormKeepsZ) {
    const OvTrafo2d t = Make(eOvTrafo2DAffin, {1.0, 1.0, 0.0, 2.0, 0.0, 1.0});
    OvPoint p(4, 3.0, 5.0, 8.0, 0);
    ASSERT_TRUE(t.Transform(&p));
    EXPECT_EQ(p.GetX(), 4.0);
    EXPECT_EQ(p.GetY(), 7.0);
    EXPECT_EQ(p.GetZ(), 8.0);
}

TEST(Trafo2dInvHelmert, UndoesTheHelmert) {
    const OvTrafo2d t = Make(eOvTrafo2DHelmert, {-120.5, 0.998, 35.25, 0.061});
    std::mt19937 engine(5);
    std::uniform_real_distribution<double> coordinate(-500.0, 500.0);
    for (int k = 0; k < 100; ++k) {
        const double x0 = coordinate(engine), y0 = coordinate(engine);
        double x = x0, y = y0;
        ASSERT_TRUE(t.Transform(&x, &y));
        ASSERT_TRUE(t.TransInvHelmert(&x, &y));
        EXPECT_NEAR(x, x0, 1e-10);
        EXPECT_NEAR(y, y0, 1e-10);
    }
    // Written out for one point: D = 4.25 and 1 / D multiplied.
    const OvTrafo2d simple = Make(eOvTrafo2DInvHelmert, {1.0, 2.0, 3.0, 0.5});
    double x = 10.0, y = 20.0;
    ASSERT_TRUE(simple.TransInvHelmert(&x, &y));
    EXPECT_DOUBLE_EQ(x, ((10.0 * 2.0 + 20.0 * 0.5) - (3.0 * 0.5 + 1.0 * 2.0)) * (1.0 / 4.25));
    EXPECT_DOUBLE_EQ(y, (20.0 * 2.0 + (1.0 * 0.5 - 3.0 * 2.0) - 10.0 * 0.5) * (1.0 / 4.25));

    OvPoint p(1, 11.0, 24.5, 3.0, 0);
    const OvTrafo2d forward = Make(eOvTrafo2DHelmert, {10.0, 2.0, 20.0, 0.5});
    ASSERT_TRUE(forward.TransInvHelmert(&p));
    EXPECT_DOUBLE_EQ(p.GetX(), 1.0);
    EXPECT_DOUBLE_EQ(p.GetY(), 2.0);
    EXPECT_EQ(p.GetZ(), 3.0);
}

TEST(Trafo2dInvHelmert, ZeroRotationScaleIsRefused) {
    const OvTrafo2d t = Make(eOvTrafo2DHelmert, {5.0, 0.0, 6.0, 0.0});
    double x = 1.0, y = 2.0;
    EXPECT_FALSE(t.TransInvHelmert(&x, &y));
    EXPECT_EQ(x, 1.0);
    EXPECT_EQ(y, 2.0);
    EXPECT_FALSE(t.TransInvHelmert(nullptr, &y));
}

// PTrans2D with the built matrix must map as Transform does, on many points.
void ExpectMatrixMatchesTransform(const OvTrafo2d& t, unsigned streamSeed) {
    OvMatrix m(3, 3);
    t.BuildMatrix(&m);
    std::mt19937 engine(streamSeed);
    std::uniform_real_distribution<double> coordinate(-2000.0, 2000.0);
    for (int k = 0; k < 2000; ++k) {
        const double x0 = coordinate(engine), y0 = coordinate(engine);
        double tx = x0, ty = y0, mx = x0, my = y0;
        const bool transformed = t.Transform(&tx, &ty);
        ASSERT_TRUE(m.PTrans2D(&mx, &my)) << t.GetTrafoName();
        if (!transformed) {
            EXPECT_EQ(mx, x0);
            EXPECT_EQ(my, y0);
            continue;
        }
        const double scale = 1.0 + std::fabs(tx) + std::fabs(ty);
        EXPECT_NEAR(mx, tx, 1e-13 * scale) << t.GetTrafoName() << " at " << x0 << ", " << y0;
        EXPECT_NEAR(my, ty, 1e-13 * scale) << t.GetTrafoName() << " at " << x0 << ", " << y0;
    }
}

TEST(Trafo2dMatrix, HomogeneousMatrixMapsLikeTransform) {
    ExpectMatrixMatchesTransform(Make(eOvTrafo2DHelmert, {-120.5, 0.998, 35.25, 0.061}), 1);
    ExpectMatrixMatchesTransform(Make(eOvTrafo2DAffin, {3.0, 1.01, -0.02, -7.0, 0.03, 0.97}), 2);
    // Denominator 1 + 1e-4 x - 5e-5 y stays within [0.7, 1.3] on the sampled square.
    ExpectMatrixMatchesTransform(
        Make(eOvTrafo2DProjektiv, {1.2, 0.1, 50.0, -0.05, 0.9, -20.0, 1e-4, -5e-5}), 3);
    ExpectMatrixMatchesTransform(Make(eOvTrafo2DNone, {}), 4);
    ExpectMatrixMatchesTransform(Make(eOvTrafo2DInvHelmert, {1.0, 2.0, 3.0, 4.0}), 5);
}

TEST(Trafo2dMatrix, ElementsOfEachType) {
    OvMatrix m(3, 3);
    Make(eOvTrafo2DHelmert, {1.0, 2.0, 3.0, 4.0}).BuildMatrix(&m);
    EXPECT_EQ(m.GetElem(1, 1), 2.0);
    EXPECT_EQ(m.GetElem(1, 2), -4.0);
    EXPECT_EQ(m.GetElem(1, 3), 1.0);
    EXPECT_EQ(m.GetElem(2, 1), 4.0);
    EXPECT_EQ(m.GetElem(2, 2), 2.0);
    EXPECT_EQ(m.GetElem(2, 3), 3.0);
    EXPECT_EQ(m.GetElem(3, 1), 0.0);
    EXPECT_EQ(m.GetElem(3, 2), 0.0);
    EXPECT_EQ(m.GetElem(3, 3), 1.0);

    Make(eOvTrafo2DProjektiv, {1, 2, 3, 4, 5, 6, 7, 8}).BuildMatrix(&m);
    const double expected[3][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 1}};
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            EXPECT_EQ(m.GetElem(i, j), expected[i - 1][j - 1]);

    // A polynomial has no matrix form: the identity, whatever the matrix held before.
    OvTrafo2d poly = Make(eOvTrafo2DPolynomial, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    poly.BuildMatrix(&m);
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            EXPECT_EQ(m.GetElem(i, j), i == j ? 1.0 : 0.0);
}

TEST(Trafo2dMatrix, WrongShapeThrowsBeforeWriting) {
    const OvTrafo2d t = Make(eOvTrafo2DAffin, {1, 2, 3, 4, 5, 6});
    OvMatrix small(2, 3);
    OvMatrix large(4, 4);
    large.SetElem(1, 1, 9.0);
    EXPECT_EQ(ThrownCode([&] { t.BuildMatrix(&small); }), kOvErrMatrixAssign);
    EXPECT_EQ(ThrownCode([&] { t.BuildMatrix(&large); }), kOvErrMatrixAssign);
    EXPECT_EQ(large.GetElem(1, 1), 9.0);
    EXPECT_EQ(ThrownCode([&] { t.BuildMatrix(nullptr); }), -1);
}

TEST(Trafo2dFinite, OnlyTheUsedParametersCount) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    OvTrafo2d t = Make(eOvTrafo2DHelmert, {1.0, 2.0, 3.0, 4.0});
    EXPECT_TRUE(t.HasFiniteParameters());
    t.SetParam(4, nan);  // not used by a Helmert
    EXPECT_TRUE(t.HasFiniteParameters());
    t.SetType(eOvTrafo2DAffin);
    EXPECT_FALSE(t.HasFiniteParameters());
    t.SetParam(4, 0.0);
    t.SetParam(19, inf);
    EXPECT_TRUE(t.HasFiniteParameters());
    t.SetType(eOvTrafo2DPolynomial);
    EXPECT_FALSE(t.HasFiniteParameters());
    t.SetType(eOvTrafo2DNone);
    EXPECT_TRUE(t.HasFiniteParameters());
}

}  // namespace
}  // namespace orvo
