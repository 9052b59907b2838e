// The extended fit: agreement with the classic fit when nothing is reduced, the reduced fit on
// national-grid coordinates against the classic one, accuracy figures against an independent
// QR computation, weights, check points and the refusals.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <set>
#include <vector>

#include "orvo/numerics/calc_trafo2d.h"
#include "trafo2d_test_support.h"
#include "valgrind_support.h"

namespace orvo {
namespace {

using test::MakePairs;
using test::MakeTrafo;
using test::MeasuredList;
using test::PlainPair;
using test::ReferenceList;
using test::SolveQR;

constexpr eOvTrafo2DType kFitTypes[] = {eOvTrafo2DHelmert, eOvTrafo2DAffin, eOvTrafo2DProjektiv,
                                        eOvTrafo2DPolynomial};

const OvTrafo2d& Truth(eOvTrafo2DType type) {
    static const OvTrafo2d helmert = MakeTrafo(eOvTrafo2DHelmert, {12.5, 0.9986, -40.25, 0.0523});
    static const OvTrafo2d affin =
        MakeTrafo(eOvTrafo2DAffin, {12.5, 1.002, 0.013, -40.25, -0.011, 0.997});
    static const OvTrafo2d projektiv =
        MakeTrafo(eOvTrafo2DProjektiv, {1.01, 0.02, 3.5, -0.015, 0.99, -2.25, 2e-4, -1e-4});
    static const OvTrafo2d polynomial =
        MakeTrafo(eOvTrafo2DPolynomial,
                  {0.5,   1.001,  0.002, 1e-4, -2e-4, 5e-5,  1e-6, 0,    -2e-6, 3e-7,  //
                   -0.25, -0.003, 0.999, 2e-5, 1e-4,  -3e-4, 0,    4e-6, 1e-6,  -1e-6});
    switch (type) {
        case eOvTrafo2DHelmert:
            return helmert;
        case eOvTrafo2DAffin:
            return affin;
        case eOvTrafo2DProjektiv:
            return projektiv;
        default:
            return polynomial;
    }
}

bool Classic(OvCalcTrafo2D& calc, eOvTrafo2DType type, OvPointList* list) {
    switch (type) {
        case eOvTrafo2DHelmert:
            return calc.CalcTrafoHelmert(list);
        case eOvTrafo2DAffin:
            return calc.CalcTrafoAffin(list);
        case eOvTrafo2DProjektiv:
            return calc.CalcTrafoProjectiv(list);
        default:
            return calc.CalcTrafoPolynom(list);
    }
}

OvTrafo2DFitOptions Raw() {
    OvTrafo2DFitOptions options;
    options.normalize = false;
    return options;
}

TEST(Trafo2dFit, WithoutReductionItIsTheClassicFitBitForBit) {
    for (eOvTrafo2DType type : kFitTypes) {
        const std::vector<PlainPair> pairs = MakePairs(Truth(type), 30, 0.0, 0.0, 100.0, 0.05, 23);
        OvPointList pp = ReferenceList(pairs);
        OvPointList measured = MeasuredList(pairs);
        OvCalcTrafo2D classic(&pp);
        OvCalcTrafo2D extended(&pp);
        ASSERT_TRUE(Classic(classic, type, &measured));
        ASSERT_TRUE(extended.CalcTrafo(type, &measured, Raw()));
        EXPECT_EQ(extended.GetType(), type);
        for (int i = 0; i < OvTrafo2d::kMaxParams; ++i)
            EXPECT_EQ(extended.GetParam(i), classic.GetParam(i)) << OvTrafo2DName(type) << i;
        EXPECT_EQ(extended.GetScale(), classic.GetScale());
        // Its residual figures are those of CalcResiduals.
        ASSERT_TRUE(classic.CalcResiduals(&measured));
        EXPECT_EQ(extended.GetResidualX(), classic.GetResidualX());
        EXPECT_EQ(extended.GetResidualY(), classic.GetResidualY());
        EXPECT_EQ(extended.GetMaxError(), classic.GetMaxError());
    }
}

TEST(Trafo2dFit, ReducedFitMatchesTheIndependentSolution) {
    for (eOvTrafo2DType type : kFitTypes) {
        const std::vector<PlainPair> pairs = MakePairs(Truth(type), 30, 0.0, 0.0, 100.0, 0.05, 29);
        OvPointList pp = ReferenceList(pairs);
        OvPointList measured = MeasuredList(pairs);
        OvCalcTrafo2D calc(&pp);
        OvTrafo2DFitReport report;
        ASSERT_TRUE(calc.CalcTrafo(type, &measured, OvTrafo2DFitOptions(), &report));
        EXPECT_TRUE(report.normalized);
        // The same least-squares problem in the reduced coordinates, solved by QR and mapped
        // back point by point.
        const test::ReducedPairs reduced(pairs);
        const OvTrafo2d plainReduced = MakeTrafo(type, SolveQR(type, reduced.pairs).params);
        for (const PlainPair& p : pairs) {
            double ax = p.x, ay = p.y, bx = p.x, by = p.y;
            calc.Transform(&ax, &ay);
            reduced.Map(plainReduced, &bx, &by);
            EXPECT_NEAR(ax, bx, 1e-9) << OvTrafo2DName(type);
            EXPECT_NEAR(ay, by, 1e-9) << OvTrafo2DName(type);
        }
        // Helmert, Affin and Polynomial are linear problems, whose solution does not depend on
        // the reduction: the parameters are those of the plain fit.
        if (type == eOvTrafo2DProjektiv) continue;
        const test::PlainSolution plain = SolveQR(type, pairs);
        for (int i = 0; i < OvTrafo2DParamCount(type); ++i) {
            EXPECT_NEAR(calc.GetParam(i), plain.params[i],
                        1e-7 * (1.0 + std::fabs(plain.params[i])))
                << OvTrafo2DName(type) << " p" << i;
        }
    }
}

TEST(Trafo2dFit, ReducedProjektivStaysCloseToTheClassicLinearisation) {
    // The Projektiv's equations are linearised by multiplying with the denominator, whose
    // scale depends on the coordinates: the reduced fit minimises a slightly differently
    // weighted sum. On near-affine data the two stay far inside the noise.
    const std::vector<PlainPair> pairs =
        MakePairs(Truth(eOvTrafo2DProjektiv), 30, 0.0, 0.0, 100.0, 0.05, 29);
    OvPointList pp = ReferenceList(pairs);
    OvPointList measured = MeasuredList(pairs);
    OvCalcTrafo2D classic(&pp), reduced(&pp);
    ASSERT_TRUE(classic.CalcTrafoProjectiv(&measured));
    ASSERT_TRUE(reduced.CalcTrafo(eOvTrafo2DProjektiv, &measured));
    for (const PlainPair& p : pairs) {
        double ax = p.x, ay = p.y, bx = p.x, by = p.y;
        classic.Transform(&ax, &ay);
        reduced.Transform(&bx, &by);
        EXPECT_LT(std::hypot(ax - bx, ay - by), 0.02 * 0.05);
    }
}

// A 100 m site in national-grid metres: x about 4,500,000, y about 5,400,000, mapped into
// another grid by a near-conformal map with a gentle quadratic distortion, reference
// coordinates disturbed by 1 mm of noise.
struct GridSite {
    std::vector<PlainPair> pairs;
    double x0 = 4500000.0, y0 = 5400000.0, X0 = 4499712.4, Y0 = 5400361.7;
    double sigma = 0.001;

    // The distortion-free truth at a measured point.
    void Map(double x, double y, double* X, double* Y) const {
        const double u = (x - x0) / 50.0, v = (y - y0) / 50.0;
        *X = X0 + 50.0 * (1.00012 * u - 0.00031 * v + 2e-4 * u * u - 1e-4 * u * v);
        *Y = Y0 + 50.0 * (0.00031 * u + 1.00012 * v + 1.5e-4 * v * v + 5e-5 * u * u);
    }

    explicit GridSite(int count, unsigned streamSeed) {
        std::mt19937 engine(streamSeed);
        std::uniform_real_distribution<double> spread(0.0, 100.0);
        std::normal_distribution<double> noise(0.0, sigma);
        for (int k = 0; k < count; ++k) {
            PlainPair p{static_cast<std::uint32_t>(k + 1), x0 + spread(engine), y0 + spread(engine),
                        0.0, 0.0};
            Map(p.x, p.y, &p.X, &p.Y);
            p.X += noise(engine);
            p.Y += noise(engine);
            pairs.push_back(p);
        }
    }

    // The same pairs about the site's corner, where the plain solver is well conditioned.
    std::vector<PlainPair> Local() const {
        std::vector<PlainPair> local = pairs;
        for (PlainPair& p : local) {
            p.x -= x0, p.y -= y0, p.X -= X0, p.Y -= Y0;
        }
        return local;
    }
};

TEST(Trafo2dFit, NationalGridPolynomialBreaksClassicallyAndHoldsReduced) {
    if (test::RunningUnderValgrind()) GTEST_SKIP() << "valgrind computes long double as double";
    const GridSite site(60, 31);
    OvPointList pp = ReferenceList(site.pairs);
    OvPointList measured = MeasuredList(site.pairs);

    // The classic fit says true but its uncentred normal equations have broken down.
    OvCalcTrafo2D classic(&pp);
    EXPECT_TRUE(classic.CalcTrafoPolynom(&measured));
    EXPECT_FALSE(classic.HasFiniteParameters());

    // The extended fit without reduction notices and refuses.
    OvCalcTrafo2D raw(&pp);
    EXPECT_FALSE(raw.CalcTrafo(eOvTrafo2DPolynomial, &measured, Raw()));
    EXPECT_EQ(raw.GetType(), eOvTrafo2DNone);

    // Reduced, it stays at the noise level and agrees with a QR solution computed about the
    // site's corner (evaluated there, so no large numbers enter it).
    OvCalcTrafo2D reduced(&pp);
    OvTrafo2DFitReport report;
    ASSERT_TRUE(reduced.CalcTrafo(eOvTrafo2DPolynomial, &measured, OvTrafo2DFitOptions(), &report));
    EXPECT_TRUE(reduced.HasFiniteParameters());
    EXPECT_EQ(report.pairs, 60);
    EXPECT_EQ(report.redundancy, 100);
    // With 100 of 120 observations redundant the RMS of the residuals is about 0.91 sigma.
    EXPECT_GT(reduced.GetResidualX(), 0.6 * site.sigma);
    EXPECT_LT(reduced.GetResidualX(), 1.2 * site.sigma);
    EXPECT_GT(reduced.GetResidualY(), 0.6 * site.sigma);
    EXPECT_LT(reduced.GetResidualY(), 1.2 * site.sigma);
    EXPECT_GT(report.sigma0, 0.7 * site.sigma);
    EXPECT_LT(report.sigma0, 1.3 * site.sigma);

    const std::vector<PlainPair> local = site.Local();
    const test::PlainSolution plain = SolveQR(eOvTrafo2DPolynomial, local);
    ASSERT_TRUE(plain.ok);
    const OvTrafo2d plainTrafo = MakeTrafo(eOvTrafo2DPolynomial, plain.params);
    double worst = 0.0;
    for (std::size_t k = 0; k < local.size(); ++k) {
        double ax = site.pairs[k].x, ay = site.pairs[k].y;
        double bx = local[k].x, by = local[k].y;
        reduced.Transform(&ax, &ay);
        plainTrafo.Transform(&bx, &by);
        worst = std::fmax(worst, std::fabs((ax - site.X0) - bx));
        worst = std::fmax(worst, std::fabs((ay - site.Y0) - by));
    }
    // The parameter form itself holds the cubic terms on coordinates of this size only to some
    // tenths of a millimetre (rounding p0 alone, about 1e12 here, costs 1e-4 m); the fit adds
    // nothing worse.
    EXPECT_LT(worst, site.sigma);
    std::printf(
        "national-grid polynomial: RMS residual %.3g / %.3g m (noise %.3g m), largest "
        "departure from the QR solution %.3g m\n",
        reduced.GetResidualX(), reduced.GetResidualY(), site.sigma, worst);
}

// Exact data from a near-affine perspective map of a 100 m site into national-grid metres
// (p6, p7 about 1e-9): every fit should leave residuals of zero, so whatever remains is lost
// accuracy. `measuredOffset` places the measured points.
struct PerspectiveSite {
    std::vector<PlainPair> pairs;

    explicit PerspectiveSite(double measuredOffset) {
        const OvTrafo2d local = MakeTrafo(eOvTrafo2DProjektiv, {1.0002, -0.0003, 4499712.4, 0.0003,
                                                                1.0002, 5400361.7, 1e-9, -5e-10});
        std::mt19937 engine(37);
        std::uniform_real_distribution<double> spread(0.0, 100.0);
        for (std::uint32_t id = 1; id <= 40; ++id) {
            const double u = spread(engine), v = spread(engine);
            double X = u, Y = v;
            local.Transform(&X, &Y);
            pairs.push_back(PlainPair{id, measuredOffset + u, measuredOffset + v, X, Y});
        }
    }

    // RMS residual of the fit as CalcResiduals finds it (x and y together).
    static double Loss(OvCalcTrafo2D& calc, OvPointList* measured) {
        calc.CalcResiduals(measured);
        return std::hypot(calc.GetResidualX(), calc.GetResidualY());
    }
};

TEST(Trafo2dFit, NationalGridProjektivLosesClassicallyAndHoldsReduced) {
    // Measured in a local 100 m system, reference in national-grid metres.
    const PerspectiveSite site(0.0);
    OvPointList pp = ReferenceList(site.pairs);
    OvPointList measured = MeasuredList(site.pairs);
    OvCalcTrafo2D classic(&pp);
    ASSERT_TRUE(classic.CalcTrafoProjectiv(&measured));
    OvCalcTrafo2D reduced(&pp);
    ASSERT_TRUE(reduced.CalcTrafo(eOvTrafo2DProjektiv, &measured));
    const double classicLoss = PerspectiveSite::Loss(classic, &measured);
    const double reducedLoss = PerspectiveSite::Loss(reduced, &measured);
    std::printf(
        "exact perspective data into national-grid metres: RMS residual %.3g m classic, "
        "%.3g m reduced\n",
        classicLoss, reducedLoss);
    EXPECT_GT(classicLoss, 1e-4);  // tenths of a millimetre lost
    EXPECT_LT(reducedLoss, 1e-8);

    // Both sides in national-grid metres: the classic normal equations break down entirely.
    const PerspectiveSite grid(4500000.0);
    OvPointList gridPP = ReferenceList(grid.pairs);
    OvPointList gridMeasured = MeasuredList(grid.pairs);
    OvCalcTrafo2D gridClassic(&gridPP);
    EXPECT_TRUE(gridClassic.CalcTrafoProjectiv(&gridMeasured));
    const double gridLoss = PerspectiveSite::Loss(gridClassic, &gridMeasured);
    std::printf("the same with national-grid measured points: classic %s, RMS residual %.3g m\n",
                gridClassic.HasFiniteParameters() ? "finite" : "not finite", gridLoss);
    EXPECT_TRUE(!gridClassic.HasFiniteParameters() || gridLoss > 1e-4);
    OvCalcTrafo2D gridReduced(&gridPP);
    ASSERT_TRUE(gridReduced.CalcTrafo(eOvTrafo2DProjektiv, &gridMeasured));
    EXPECT_LT(PerspectiveSite::Loss(gridReduced, &gridMeasured), 1e-7);
}

TEST(Trafo2dFit, Sigma0AndStandardDeviationsMatchAnIndependentComputation) {
    for (eOvTrafo2DType type : kFitTypes) {
        const std::vector<PlainPair> pairs =
            MakePairs(Truth(type), 25, -40.0, 10.0, 80.0, 0.02, 41);
        OvPointList pp = ReferenceList(pairs);
        const test::PlainSolution plain = SolveQR(type, pairs);
        const int u = OvTrafo2DParamCount(type);
        // v^T v of the plain solution's own residuals.
        const OvTrafo2d plainTrafo = MakeTrafo(type, plain.params);
        double vtv = 0.0;
        for (const PlainPair& p : pairs) {
            double x = p.x, y = p.y;
            plainTrafo.Transform(&x, &y);
            vtv += (x - p.X) * (x - p.X) + (y - p.Y) * (y - p.Y);
        }
        const double sigma0 = std::sqrt(vtv / (2 * 25 - u));

        for (bool normalize : {false, true}) {
            OvPointList measured = MeasuredList(pairs);
            OvCalcTrafo2D calc(&pp);
            OvTrafo2DFitOptions options;
            options.normalize = normalize;
            OvTrafo2DFitReport report;
            ASSERT_TRUE(calc.CalcTrafo(type, &measured, options, &report));
            EXPECT_EQ(report.type, type);
            EXPECT_EQ(report.unknowns, u);
            EXPECT_EQ(report.redundancy, 50 - u);
            // The Projektiv's normal equations on raw coordinates up to 100 keep about ten
            // digits of its perspective terms.
            const double close = type == eOvTrafo2DProjektiv ? 1e-5 : 1e-9;
            EXPECT_NEAR(report.vtpv, vtv, close * vtv);
            EXPECT_NEAR(report.sigma0, sigma0, close * sigma0) << OvTrafo2DName(type);
            // The Projektiv's figures come from its linearised equations; the reduction
            // changes their scale slightly, so they agree to first order only.
            const double tolerance = type == eOvTrafo2DProjektiv && normalize ? 2e-2 : 1e-6;
            for (int i = 0; i < u; ++i) {
                const double expected = sigma0 * std::sqrt(plain.cofactor[i * u + i]);
                EXPECT_NEAR(report.stdDev[i], expected, tolerance * expected)
                    << OvTrafo2DName(type) << (normalize ? " reduced" : " raw") << " p" << i;
            }
            for (int i = u; i < OvTrafo2d::kMaxParams; ++i)
                EXPECT_EQ(report.stdDev[i], 0.0);
        }
    }
}

TEST(Trafo2dFit, WithoutRedundancyTheFiguresAreZero) {
    const std::vector<PlainPair> pairs =
        MakePairs(Truth(eOvTrafo2DAffin), 3, 0.0, 0.0, 10.0, 0.1, 43);
    OvPointList pp = ReferenceList(pairs);
    OvPointList measured = MeasuredList(pairs);
    OvCalcTrafo2D calc(&pp);
    OvTrafo2DFitReport report;
    ASSERT_TRUE(calc.CalcTrafo(eOvTrafo2DAffin, &measured, OvTrafo2DFitOptions(), &report));
    EXPECT_EQ(report.redundancy, 0);
    EXPECT_EQ(report.sigma0, 0.0);
    for (double s : report.stdDev)
        EXPECT_EQ(s, 0.0);
    EXPECT_LT(calc.GetResidualX(), 1e-9);  // three points, six unknowns: an exact fit
}

TEST(Trafo2dFit, CheckPointsStayOutOfTheFitAndAreReportedApart) {
    const std::vector<PlainPair> pairs =
        MakePairs(Truth(eOvTrafo2DAffin), 20, 0.0, 0.0, 50.0, 0.02, 47);
    const std::set<std::uint32_t> checkIds = {3, 8, 15};
    std::vector<PlainPair> fitOnly;
    for (const PlainPair& p : pairs)
        if (checkIds.count(p.id) == 0) fitOnly.push_back(p);

    OvPointList pp = ReferenceList(pairs);
    OvPointList measured = MeasuredList(pairs);
    // A stale flag on a check point goes, the fit points get theirs.
    measured.Find(3u)->GetFlag().SetFlag(eOvPointFlagTrafo2DUsed);
    OvCalcTrafo2D calc(&pp);
    OvTrafo2DFitOptions options;
    options.isCheckPoint = [&checkIds](const OvPoint& p) { return checkIds.count(p.GetId()) != 0; };
    OvTrafo2DFitReport report;
    ASSERT_TRUE(calc.CalcTrafo(eOvTrafo2DAffin, &measured, options, &report));

    const test::PlainSolution plain = SolveQR(eOvTrafo2DAffin, fitOnly);
    for (int i = 0; i < 6; ++i)
        EXPECT_NEAR(calc.GetParam(i), plain.params[i], 1e-9 * (1.0 + std::fabs(plain.params[i])));
    EXPECT_EQ(report.pairs, 17);
    EXPECT_EQ(report.fit.count, 17);
    EXPECT_EQ(report.check.count, 3);

    // Check figures recomputed from the stored residuals.
    double sx = 0.0, sy = 0.0, worst = 0.0;
    std::uint32_t worstId = 0;
    for (const OvPoint* p = measured.First(); p != nullptr; p = p->Next()) {
        double x = p->GetX(), y = p->GetY();
        calc.Transform(&x, &y);
        const OvPoint* q = pp.Find(p->GetId());
        EXPECT_DOUBLE_EQ(p->GetR(0), x - q->GetX());
        EXPECT_DOUBLE_EQ(p->GetR(1), y - q->GetY());
        const bool check = checkIds.count(p->GetId()) != 0;
        EXPECT_EQ(IsPointTrafo2DUsed(p) != 0, !check) << p->GetId();
        if (!check) continue;
        sx += p->GetR(0) * p->GetR(0);
        sy += p->GetR(1) * p->GetR(1);
        const double e = std::hypot(p->GetR(0), p->GetR(1));
        if (e > worst) worst = e, worstId = p->GetId();
    }
    EXPECT_DOUBLE_EQ(report.check.rmsX, std::sqrt(sx / 3.0));
    EXPECT_DOUBLE_EQ(report.check.rmsY, std::sqrt(sy / 3.0));
    EXPECT_EQ(report.check.maxId, worstId);
    EXPECT_DOUBLE_EQ(report.check.maxError, worst);
    // The object's own figures describe the fit points.
    EXPECT_EQ(calc.GetResidualX(), report.fit.rmsX);
    EXPECT_EQ(calc.GetMaxError(), report.fit.maxId);
}

TEST(Trafo2dFit, WeightsMatchAWeightedIndependentSolution) {
    const std::vector<PlainPair> pairs =
        MakePairs(Truth(eOvTrafo2DHelmert), 15, 0.0, 0.0, 40.0, 0.05, 53);
    std::vector<double> weights;
    for (const PlainPair& p : pairs)
        weights.push_back(p.id % 3 == 0 ? 4.0 : 0.25 + 0.1 * p.id);
    OvPointList pp = ReferenceList(pairs);
    for (OvPoint* q = pp.First(); q != nullptr; q = q->Next())
        q->SetD(0, 1.0 / std::sqrt(weights[q->GetId() - 1]));  // the points' accuracies
    OvPointList measured = MeasuredList(pairs);

    for (bool normalize : {false, true}) {
        OvCalcTrafo2D calc(&pp);
        OvTrafo2DFitOptions options;
        options.normalize = normalize;
        options.weight = [](const OvPoint&, const OvPoint& ref) {
            return 1.0 / (ref.GetD(0) * ref.GetD(0));
        };
        OvTrafo2DFitReport report;
        ASSERT_TRUE(calc.CalcTrafo(eOvTrafo2DHelmert, &measured, options, &report));
        const test::PlainSolution plain = SolveQR(eOvTrafo2DHelmert, pairs, weights);
        for (int i = 0; i < 4; ++i)
            EXPECT_NEAR(calc.GetParam(i), plain.params[i],
                        1e-9 * (1.0 + std::fabs(plain.params[i])));
        double vtpv = 0.0;
        const OvTrafo2d plainTrafo = MakeTrafo(eOvTrafo2DHelmert, plain.params);
        for (std::size_t k = 0; k < pairs.size(); ++k) {
            double x = pairs[k].x, y = pairs[k].y;
            plainTrafo.Transform(&x, &y);
            vtpv += weights[k] *
                    ((x - pairs[k].X) * (x - pairs[k].X) + (y - pairs[k].Y) * (y - pairs[k].Y));
        }
        EXPECT_NEAR(report.vtpv, vtpv, 1e-8 * vtpv);
        const double sigma0 = std::sqrt(vtpv / (30 - 4));
        for (int i = 0; i < 4; ++i)
            EXPECT_NEAR(report.stdDev[i], sigma0 * std::sqrt(plain.cofactor[i * 4 + i]),
                        1e-6 * report.stdDev[i]);
    }
}

TEST(Trafo2dFit, NonPositiveWeightMakesACheckPoint) {
    const std::vector<PlainPair> pairs =
        MakePairs(Truth(eOvTrafo2DAffin), 8, 0.0, 0.0, 30.0, 0.01, 59);
    OvPointList pp = ReferenceList(pairs);
    OvPointList measured = MeasuredList(pairs);
    OvTrafo2DFitOptions byWeight;
    byWeight.weight = [](const OvPoint& p, const OvPoint&) {
        return p.GetId() == 2 ? 0.0 : p.GetId() == 5 ? std::nan("") : 1.0;
    };
    OvTrafo2DFitOptions byCheck;
    byCheck.isCheckPoint = [](const OvPoint& p) { return p.GetId() == 2 || p.GetId() == 5; };
    OvCalcTrafo2D a(&pp), b(&pp);
    OvTrafo2DFitReport ra, rb;
    ASSERT_TRUE(a.CalcTrafo(eOvTrafo2DAffin, &measured, byWeight, &ra));
    ASSERT_TRUE(b.CalcTrafo(eOvTrafo2DAffin, &measured, byCheck, &rb));
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(a.GetParam(i), b.GetParam(i));
    EXPECT_EQ(ra.check.count, 2);
    EXPECT_EQ(ra.check.rmsX, rb.check.rmsX);
}

TEST(Trafo2dFit, RefusalsChangeNothing) {
    const std::vector<PlainPair> pairs =
        MakePairs(Truth(eOvTrafo2DAffin), 12, 0.0, 0.0, 30.0, 0.01, 61);
    OvPointList pp = ReferenceList(pairs);
    OvPointList measured = MeasuredList(pairs);
    OvCalcTrafo2D calc(&pp);
    calc.SetType(eOvTrafo2DInvHelmert);
    calc.SetParam(0, 42.0);
    auto unchanged = [&] {
        EXPECT_EQ(calc.GetType(), eOvTrafo2DInvHelmert);
        EXPECT_EQ(calc.GetParam(0), 42.0);
        EXPECT_EQ(calc.GetResidualX(), 0.0);
        for (const OvPoint* p = measured.First(); p != nullptr; p = p->Next()) {
            EXPECT_EQ(p->GetR(0), 0.0);
            EXPECT_EQ(IsPointTrafo2DUsed(p), 0u);
        }
    };
    OvTrafo2DFitReport report;
    EXPECT_FALSE(calc.CalcTrafo(eOvTrafo2DNone, &measured));
    EXPECT_FALSE(calc.CalcTrafo(eOvTrafo2DInvHelmert, &measured));
    EXPECT_FALSE(calc.CalcTrafo(eOvTrafo2DAffin, nullptr));
    unchanged();

    // Ten points, but only nine fit pairs for a polynomial.
    OvTrafo2DFitOptions nine;
    nine.isCheckPoint = [](const OvPoint& p) { return p.GetId() > 9; };
    EXPECT_FALSE(calc.CalcTrafo(eOvTrafo2DPolynomial, &measured, nine, &report));
    EXPECT_EQ(report.pairs, 9);
    unchanged();

    // Collinear points leave the Affin undetermined, reduced or not.
    OvPointList line;
    for (const PlainPair& p : pairs)
        line.Add(new OvPoint(p.id, p.x, 2.0 * p.x + 1.0, 0.0, 0));
    EXPECT_FALSE(calc.CalcTrafo(eOvTrafo2DAffin, &line));
    EXPECT_FALSE(calc.CalcTrafo(eOvTrafo2DAffin, &line, Raw()));
    // All measured points in one place: no scale can be formed.
    OvPointList spot;
    for (const PlainPair& p : pairs)
        spot.Add(new OvPoint(p.id, 3.0, 4.0, 0.0, 0));
    EXPECT_FALSE(calc.CalcTrafo(eOvTrafo2DHelmert, &spot));
    unchanged();
}

}  // namespace
}  // namespace orvo
