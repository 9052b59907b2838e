// The classic estimations and the residuals: exact data gives the parameters back, noisy data
// gives the least-squares solution of an independent QR solve, the partner rules, the failure
// cases, and the residual figures recomputed here.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "orvo/numerics/calc_trafo2d.h"
#include "trafo2d_test_support.h"

namespace orvo {
namespace {

using test::MakePairs;
using test::MakeTrafo;
using test::MeasuredList;
using test::PlainPair;
using test::ReferenceList;
using test::SolveQR;

bool Fit(OvCalcTrafo2D& calc, eOvTrafo2DType type, OvPointList* list) {
    switch (type) {
        case eOvTrafo2DHelmert:
            return calc.CalcTrafoHelmert(list);
        case eOvTrafo2DAffin:
            return calc.CalcTrafoAffin(list);
        case eOvTrafo2DProjektiv:
            return calc.CalcTrafoProjectiv(list);
        case eOvTrafo2DPolynomial:
            return calc.CalcTrafoPolynom(list);
        default:
            return false;
    }
}

const OvTrafo2d kHelmert = MakeTrafo(eOvTrafo2DHelmert, {12.5, 0.9986, -40.25, 0.0523});
const OvTrafo2d kAffin = MakeTrafo(eOvTrafo2DAffin, {12.5, 1.002, 0.013, -40.25, -0.011, 0.997});
const OvTrafo2d kProjektiv =
    MakeTrafo(eOvTrafo2DProjektiv, {1.01, 0.02, 3.5, -0.015, 0.99, -2.25, 2e-4, -1e-4});
const OvTrafo2d kPolynomial = MakeTrafo(
    eOvTrafo2DPolynomial, {0.5,   1.001,  0.002, 1e-4, -2e-4, 5e-5,  1e-6, 0,    -2e-6, 3e-7,  //
                           -0.25, -0.003, 0.999, 2e-5, 1e-4,  -3e-4, 0,    4e-6, 1e-6,  -1e-6});

const OvTrafo2d& Truth(eOvTrafo2DType type) {
    switch (type) {
        case eOvTrafo2DHelmert:
            return kHelmert;
        case eOvTrafo2DAffin:
            return kAffin;
        case eOvTrafo2DProjektiv:
            return kProjektiv;
        default:
            return kPolynomial;
    }
}

constexpr eOvTrafo2DType kFitTypes[] = {eOvTrafo2DHelmert, eOvTrafo2DAffin, eOvTrafo2DProjektiv,
                                        eOvTrafo2DPolynomial};

TEST(CalcTrafo2dObject, DefaultsListsAndCopies) {
    OvCalcTrafo2D calc;
    EXPECT_EQ(calc.GetType(), eOvTrafo2DNone);
    EXPECT_EQ(calc.GetPPList(), &calc.GetOwnList());
    EXPECT_EQ(calc.GetActList(), nullptr);
    EXPECT_EQ(calc.GetScale(), 1.0);
    EXPECT_EQ(calc.GetResidualX(), 0.0);
    EXPECT_EQ(calc.GetMaxError(), 0u);

    OvPointList outside;
    OvCalcTrafo2D withList(&outside);
    EXPECT_EQ(withList.GetPPList(), &outside);
    OvCalcTrafo2D withNull(nullptr);
    EXPECT_EQ(withNull.GetPPList(), &withNull.GetOwnList());
    withList.SetPPList(nullptr);
    EXPECT_EQ(withList.GetPPList(), &withList.GetOwnList());

    // A copy of an object using its own list uses its own copy; an outside list is shared.
    calc.GetOwnList().Add(new OvPoint(7, 1.0, 2.0, 0.0, 0));
    calc.SetIdent();
    OvCalcTrafo2D copy(calc);
    EXPECT_EQ(copy.GetPPList(), &copy.GetOwnList());
    EXPECT_EQ(copy.GetOwnList().Count(), 1);
    EXPECT_EQ(copy.GetType(), eOvTrafo2DHelmert);
    OvCalcTrafo2D shared(&outside);
    OvCalcTrafo2D sharedCopy(shared);
    EXPECT_EQ(sharedCopy.GetPPList(), &outside);
    OvCalcTrafo2D assigned;
    assigned = shared;
    EXPECT_EQ(assigned.GetPPList(), &outside);
    assigned = calc;
    EXPECT_EQ(assigned.GetPPList(), &assigned.GetOwnList());
    EXPECT_EQ(assigned.GetOwnList().Count(), 1);
}

TEST(CalcTrafo2dHelmert, TwoPointsAreReproducedAndTheScaleIsReciprocal) {
    OvPointList pp;
    pp.Add(new OvPoint(1, 100.0, 200.0, 0.0, 0));
    pp.Add(new OvPoint(2, 130.0, 240.0, 0.0, 0));
    OvPointList measured;
    measured.Add(new OvPoint(1, 10.0, 20.0, 0.0, 0));
    measured.Add(new OvPoint(2, 13.0, 16.0, 0.0, 0));
    OvCalcTrafo2D calc(&pp);
    ASSERT_TRUE(calc.CalcTrafoHelmert(&measured));
    EXPECT_EQ(calc.GetType(), eOvTrafo2DHelmert);
    for (const OvPoint* p = measured.First(); p != nullptr; p = p->Next()) {
        OvPoint q = *p;
        ASSERT_TRUE(calc.Transform(&q));
        const OvPoint* ref = pp.Find(p->GetId());
        EXPECT_NEAR(q.GetX(), ref->GetX(), 1e-9);
        EXPECT_NEAR(q.GetY(), ref->GetY(), 1e-9);
    }
    // 50 reference units against 5 measured ones: the measured-to-reference scale is 10, the
    // stored scale its reciprocal.
    const double p1 = calc.GetParam(1), p3 = calc.GetParam(3);
    EXPECT_NEAR(std::sqrt(p1 * p1 + p3 * p3), 10.0, 1e-12);
    EXPECT_DOUBLE_EQ(calc.GetScale(), 1.0 / std::sqrt(p1 * p1 + p3 * p3));
}

TEST(CalcTrafo2dExact, EveryTypeRecoversItsParameters) {
    for (eOvTrafo2DType type : kFitTypes) {
        const std::vector<PlainPair> pairs =
            MakePairs(Truth(type), 40, -50.0, -60.0, 120.0, 0.0, 3);
        OvPointList pp = ReferenceList(pairs);
        OvPointList measured = MeasuredList(pairs);
        OvCalcTrafo2D calc(&pp);
        ASSERT_TRUE(Fit(calc, type, &measured)) << OvTrafo2DName(type);
        EXPECT_EQ(calc.GetType(), type);
        for (int i = 0; i < OvTrafo2DParamCount(type); ++i) {
            EXPECT_NEAR(calc.GetParam(i), Truth(type).GetParam(i),
                        1e-9 * (1.0 + std::fabs(Truth(type).GetParam(i))))
                << OvTrafo2DName(type) << " p" << i;
        }
    }
}

TEST(CalcTrafo2dNoisy, EveryTypeMatchesAnIndependentQRSolution) {
    for (eOvTrafo2DType type : kFitTypes) {
        const std::vector<PlainPair> pairs = MakePairs(Truth(type), 60, 0.0, 0.0, 100.0, 0.05, 7);
        OvPointList pp = ReferenceList(pairs);
        OvPointList measured = MeasuredList(pairs);
        OvCalcTrafo2D calc(&pp);
        ASSERT_TRUE(Fit(calc, type, &measured));
        const test::PlainSolution plain = SolveQR(type, pairs);
        ASSERT_TRUE(plain.ok);
        for (int i = 0; i < OvTrafo2DParamCount(type); ++i) {
            // The polynomial's normal equations on coordinates up to 100 lose some digits.
            const double tolerance = type == eOvTrafo2DPolynomial ? 1e-6 : 1e-9;
            EXPECT_NEAR(calc.GetParam(i), plain.params[i],
                        tolerance * (1.0 + std::fabs(plain.params[i])))
                << OvTrafo2DName(type) << " p" << i;
        }
        // And the fitted points agree, whatever the conditioning of single parameters.
        const OvTrafo2d plainTrafo = MakeTrafo(type, plain.params);
        for (const PlainPair& p : pairs) {
            double ax = p.x, ay = p.y, bx = p.x, by = p.y;
            calc.Transform(&ax, &ay);
            plainTrafo.Transform(&bx, &by);
            EXPECT_NEAR(ax, bx, 1e-8);
            EXPECT_NEAR(ay, by, 1e-8);
        }
    }
}

TEST(CalcTrafo2dPartners, UnmatchedPointsAreSkippedAndTheFirstPartnerWins) {
    const std::vector<PlainPair> pairs = MakePairs(kAffin, 12, 0.0, 0.0, 50.0, 0.01, 11);
    OvPointList pp = ReferenceList(pairs);
    OvPointList measured = MeasuredList(pairs);
    // A later reference point with a used number, and measured points without partner.
    pp.Add(new OvPoint(3, 1e6, -1e6, 0.0, 0));
    measured.Add(new OvPoint(500, 1e5, 1e5, 0.0, 0));
    measured.Insert(measured.First(), new OvPoint(501, -1e5, 3e5, 0.0, 0));

    OvCalcTrafo2D calc(&pp);
    ASSERT_TRUE(calc.CalcTrafoAffin(&measured));
    const test::PlainSolution plain = SolveQR(eOvTrafo2DAffin, pairs);
    for (int i = 0; i < 6; ++i)
        EXPECT_NEAR(calc.GetParam(i), plain.params[i], 1e-9 * (1.0 + std::fabs(plain.params[i])));
}

TEST(CalcTrafo2dFailure, TooFewPointsChangeNothing) {
    const int minimum[] = {2, 3, 4, 10};
    int t = 0;
    for (eOvTrafo2DType type : kFitTypes) {
        const std::vector<PlainPair> pairs =
            MakePairs(Truth(type), minimum[t++] - 1, 0.0, 0.0, 10.0, 0.0, 13);
        OvPointList pp = ReferenceList(pairs);
        OvPointList measured = MeasuredList(pairs);
        OvCalcTrafo2D calc(&pp);
        calc.SetType(eOvTrafo2DInvHelmert);
        calc.SetParam(0, 42.0);
        EXPECT_FALSE(Fit(calc, type, &measured)) << OvTrafo2DName(type);
        EXPECT_EQ(calc.GetType(), eOvTrafo2DInvHelmert);
        EXPECT_EQ(calc.GetParam(0), 42.0);
        EXPECT_EQ(calc.GetScale(), 1.0);
    }
    OvCalcTrafo2D calc;
    EXPECT_FALSE(calc.CalcTrafoHelmert(nullptr));  // no list and no act list
}

TEST(CalcTrafo2dFailure, PointsWithoutPartnersCountButLeaveTheSystemSingular) {
    // Two points pass the Helmert's minimum, but only one has a partner: the system is
    // singular, there is no test, and the solver's result is stored as it comes.
    OvPointList pp;
    pp.Add(new OvPoint(1, 5.0, 5.0, 0.0, 0));
    OvPointList measured;
    measured.Add(new OvPoint(1, 1.0, 1.0, 0.0, 0));
    measured.Add(new OvPoint(2, 2.0, 2.0, 0.0, 0));
    OvCalcTrafo2D calc(&pp);
    EXPECT_TRUE(calc.CalcTrafoHelmert(&measured));
    EXPECT_EQ(calc.GetType(), eOvTrafo2DHelmert);
    EXPECT_FALSE(calc.HasFiniteParameters());
}

TEST(CalcTrafo2dFailure, HelmertWithoutScaleIsFalseButStored) {
    // Every reference point at the origin: the solution is p = 0, a Helmert without scale.
    OvPointList pp;
    OvPointList measured;
    for (unsigned id = 1; id <= 4; ++id) {
        pp.Add(new OvPoint(id, 0.0, 0.0, 0.0, 0));
        measured.Add(new OvPoint(id, id * 1.5, id * id * 0.5, 0.0, 0));
    }
    OvCalcTrafo2D calc(&pp);
    calc.SetParam(0, 5.0);
    EXPECT_FALSE(calc.CalcTrafoHelmert(&measured));
    EXPECT_EQ(calc.GetType(), eOvTrafo2DHelmert);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(calc.GetParam(i), 0.0) << i;
    EXPECT_EQ(calc.GetScale(), 1.0);
}

TEST(CalcTrafo2dLists, NullMeansTheActList) {
    const std::vector<PlainPair> pairs = MakePairs(kHelmert, 5, 0.0, 0.0, 10.0, 0.0, 17);
    OvPointList pp = ReferenceList(pairs);
    OvPointList measured = MeasuredList(pairs);
    OvCalcTrafo2D calc(&pp);
    calc.SetActList(&measured);
    ASSERT_TRUE(calc.CalcTrafoHelmert(nullptr));
    EXPECT_NEAR(calc.GetParam(0), kHelmert.GetParam(0), 1e-9);
    ASSERT_TRUE(calc.CalcResiduals());
    EXPECT_LT(calc.GetResidualX(), 1e-9);
    EXPECT_EQ(calc.SuggestTrafoByPointsNbr(), eOvTrafo2DProjektiv);
}

TEST(CalcTrafo2dResiduals, FiguresFlagsAndTheWorstPoint) {
    OvPointList pp;
    pp.Add(new OvPoint(1, 0.0, 0.0, 0.0, 0));
    pp.Add(new OvPoint(2, 10.0, 0.0, 0.0, 0));
    pp.Add(new OvPoint(3, 10.0, 10.0, 0.0, 0));
    OvPointList measured;
    measured.Add(new OvPoint(1, 0.5, -0.25, 0.0, 0));
    measured.Add(new OvPoint(2, 10.0, 0.0, 0.0, 0));
    measured.Add(new OvPoint(3, 9.0, 10.5, 0.0, 0));
    measured.Add(new OvPoint(4, 99.0, 99.0, 0.0, 0));  // no partner
    measured.Last()->SetR(0, 7.0);
    measured.Last()->SetR(1, 7.0);

    OvCalcTrafo2D calc(&pp);
    calc.SetIdent();
    ASSERT_TRUE(calc.CalcResiduals(&measured));
    const double rx[3] = {0.5, 0.0, -1.0};
    const double ry[3] = {-0.25, 0.0, 0.5};
    int k = 0;
    for (const OvPoint* p = measured.First(); p != nullptr; p = p->Next(), ++k) {
        if (k < 3) {
            EXPECT_EQ(p->GetR(0), rx[k]);
            EXPECT_EQ(p->GetR(1), ry[k]);
            EXPECT_NE(IsPointTrafo2DUsed(p), 0u);
        } else {
            EXPECT_EQ(p->GetR(0), 0.0);  // cleared although unmatched
            EXPECT_EQ(p->GetR(1), 0.0);
            EXPECT_EQ(IsPointTrafo2DUsed(p), 0u);
        }
    }
    EXPECT_DOUBLE_EQ(calc.GetResidualX(), std::sqrt((0.25 + 0.0 + 1.0) / 3.0));
    EXPECT_DOUBLE_EQ(calc.GetResidualY(), std::sqrt((0.0625 + 0.0 + 0.25) / 3.0));
    EXPECT_EQ(calc.GetMaxError(), 3u);
}

TEST(CalcTrafo2dResiduals, NoPartnersLeaveZeros) {
    OvPointList pp;
    pp.Add(new OvPoint(9, 0.0, 0.0, 0.0, 0));
    OvPointList measured;
    measured.Add(new OvPoint(1, 3.0, 4.0, 0.0, 0));
    OvCalcTrafo2D calc(&pp);
    calc.SetIdent();
    ASSERT_TRUE(calc.CalcResiduals(&measured));
    EXPECT_EQ(calc.GetResidualX(), 0.0);
    EXPECT_EQ(calc.GetResidualY(), 0.0);
    EXPECT_EQ(calc.GetMaxError(), 0u);
    EXPECT_FALSE(OvCalcTrafo2D().CalcResiduals(nullptr));
}

TEST(CalcTrafo2dResiduals, TypeWithoutMappingComparesTheRawPoints) {
    OvPointList pp;
    pp.Add(new OvPoint(1, 1.0, 2.0, 0.0, 0));
    OvPointList measured;
    measured.Add(new OvPoint(1, 4.0, 6.0, 0.0, 0));
    OvCalcTrafo2D calc(&pp);
    ASSERT_TRUE(calc.CalcResiduals(&measured));
    EXPECT_EQ(measured.First()->GetR(0), 3.0);
    EXPECT_EQ(measured.First()->GetR(1), 4.0);
    EXPECT_EQ(calc.GetResidualX(), 3.0);
    EXPECT_EQ(calc.GetMaxError(), 1u);
}

TEST(CalcTrafo2dResiduals, InitClearsFiguresButKeepsTheTransformation) {
    const std::vector<PlainPair> pairs = MakePairs(kHelmert, 6, 0.0, 0.0, 10.0, 0.1, 19);
    OvPointList pp = ReferenceList(pairs);
    OvPointList measured = MeasuredList(pairs);
    OvCalcTrafo2D calc(&pp);
    ASSERT_TRUE(calc.CalcTrafoHelmert(&measured));
    ASSERT_TRUE(calc.CalcResiduals(&measured));
    EXPECT_GT(calc.GetResidualX(), 0.0);
    const double p0 = calc.GetParam(0);
    calc.Init();
    EXPECT_EQ(calc.GetResidualX(), 0.0);
    EXPECT_EQ(calc.GetResidualY(), 0.0);
    EXPECT_EQ(calc.GetScale(), 1.0);
    EXPECT_EQ(calc.GetType(), eOvTrafo2DHelmert);
    EXPECT_EQ(calc.GetParam(0), p0);
}

}  // namespace
}  // namespace orvo
