#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "linalg_test_support.h"
#include "orvo/numerics/matrix.h"

namespace orvo {
namespace {

using test::MakeMatrix;
using test::MakeVector;
using test::RandomMatrix;
using test::ThrownCode;

using Dense = std::vector<std::vector<double>>;

Dense ToDense(const OvMatrix& m) {
    Dense d(m.GetZeilen(), std::vector<double>(m.GetSpalten()));
    for (int i = 1; i <= m.GetZeilen(); ++i)
        for (int j = 1; j <= m.GetSpalten(); ++j)
            d[i - 1][j - 1] = m.GetElem(i, j);
    return d;
}

// The determinant by cofactor expansion along the first line: independent of any elimination.
double CofactorDeterminant(const Dense& m) {
    const std::size_t n = m.size();
    if (n == 1) return m[0][0];
    double sum = 0.0;
    for (std::size_t skip = 0; skip < n; ++skip) {
        Dense minor;
        for (std::size_t i = 1; i < n; ++i) {
            std::vector<double> line;
            for (std::size_t j = 0; j < n; ++j)
                if (j != skip) line.push_back(m[i][j]);
            minor.push_back(line);
        }
        sum += (skip % 2 == 0 ? 1.0 : -1.0) * m[0][skip] * CofactorDeterminant(minor);
    }
    return sum;
}

// The largest |(a * x - b)(i, c)| over all elements.
double MaxResidual(const OvMatrix& a, const OvMatrix& x, const OvMatrix& b) {
    double worst = 0.0;
    for (int i = 1; i <= a.GetZeilen(); ++i) {
        for (int c = 1; c <= b.GetSpalten(); ++c) {
            double sum = 0.0;
            for (int k = 1; k <= a.GetSpalten(); ++k)
                sum += a.GetElem(i, k) * x.GetElem(k, c);
            worst = std::max(worst, std::fabs(sum - b.GetElem(i, c)));
        }
    }
    return worst;
}

// ---------------------------------------------------------------- GaussLoeserRelMax

TEST(GaussLoeserRelMaxTest, SolvesRandomSystemsWithSeveralRightHandSides) {
    for (int n : {1, 2, 5, 17, 40}) {
        const OvMatrix a = RandomMatrix(n, n, 100 + n);
        const OvMatrix b = RandomMatrix(n, 3, 200 + n);
        OvMatrix work = a;
        OvMatrix x = b;
        ASSERT_EQ(GaussLoeserRelMax(work, x), 0) << "n = " << n;
        EXPECT_LT(MaxResidual(a, x, b), 1e-11) << "n = " << n;
    }
}

TEST(GaussLoeserRelMaxTest, MemberFormForwards) {
    const OvMatrix a = MakeMatrix({{4, -2, 1}, {-2, 4, -2}, {1, -2, 4}});
    OvMatrix work = a;
    OvMatrix x = MakeMatrix({{11}, {-16}, {17}});
    ASSERT_EQ(work.GaussLoeserRelMax(x), 0);
    EXPECT_NEAR(x.GetElem(1, 1), 1.0, 1e-14);
    EXPECT_NEAR(x.GetElem(2, 1), -2.0, 1e-14);
    EXPECT_NEAR(x.GetElem(3, 1), 3.0, 1e-14);
}

TEST(GaussLoeserRelMaxTest, PivotIsChosenByScaledRatioNotByMagnitude) {
    // Line 1 has the larger entry (2 > 1) but the smaller ratio 2/102 against line 2's 1/2.
    OvMatrix a = MakeMatrix({{2, 100}, {1, 1}});
    OvMatrix b = MakeMatrix({{102}, {2}});
    ASSERT_EQ(GaussLoeserRelMax(a, b), 0);
    // Line 2 became the pivot line; the multiplier 2/1 sits below the diagonal.
    EXPECT_EQ(a.GetElem(1, 1), 1.0);
    EXPECT_EQ(a.GetElem(1, 2), 1.0);
    EXPECT_EQ(a.GetElem(2, 1), 2.0);
    EXPECT_EQ(a.GetElem(2, 2), 98.0);
    EXPECT_EQ(b.GetElem(1, 1), 1.0);
    EXPECT_EQ(b.GetElem(2, 1), 1.0);
}

TEST(GaussLoeserRelMaxTest, EqualRatiosKeepTheUpperLine) {
    // Both lines have the ratio 1/2; the first stays the pivot.
    OvMatrix a = MakeMatrix({{1, 1}, {2, -2}});
    OvMatrix b = MakeMatrix({{3}, {-2}});
    ASSERT_EQ(GaussLoeserRelMax(a, b), 0);
    EXPECT_EQ(a.GetElem(1, 1), 1.0);
    EXPECT_EQ(a.GetElem(2, 1), 2.0);
    EXPECT_EQ(a.GetElem(2, 2), -4.0);
    EXPECT_EQ(b.GetElem(1, 1), 1.0);
    EXPECT_EQ(b.GetElem(2, 1), 2.0);
}

TEST(GaussLoeserRelMaxTest, LowerTriangleHoldsTheMultipliers) {
    const OvMatrix a = MakeMatrix({{4, 3, 2}, {2, 1, 3}, {3, 2, 1}});
    OvMatrix work = a;
    OvMatrix b(3, 1);
    ASSERT_EQ(GaussLoeserRelMax(work, b), 0);
    // Rebuild P * A from L (unit lower, the multipliers) times U (upper triangle of work): its
    // lines must be the lines of A in some order.
    std::vector<bool> used(3, false);
    for (int i = 1; i <= 3; ++i) {
        std::vector<double> line(3, 0.0);
        for (int j = 1; j <= 3; ++j) {
            for (int k = 1; k <= std::min(i, j); ++k) {
                const double l = k == i ? 1.0 : work.GetElem(i, k);
                line[j - 1] += l * work.GetElem(k, j);
            }
        }
        bool found = false;
        for (int r = 1; r <= 3 && !found; ++r) {
            if (used[r - 1]) continue;
            bool same = true;
            for (int j = 1; j <= 3; ++j)
                same = same && std::fabs(line[j - 1] - a.GetElem(r, j)) < 1e-14;
            if (same) used[r - 1] = found = true;
        }
        EXPECT_TRUE(found) << "line " << i << " of L * U is no line of A";
    }
}

TEST(GaussLoeserRelMaxTest, SingularSystemsReturnOne) {
    OvMatrix dependent = MakeMatrix({{1, 2, 3}, {2, 4, 6}, {1, 0, 1}});
    OvMatrix b(3, 1);
    EXPECT_EQ(GaussLoeserRelMax(dependent, b), 1);

    OvMatrix zero(3, 3);
    OvMatrix b3(3, 2);
    EXPECT_EQ(GaussLoeserRelMax(zero, b3), 1);

    // The line sums fall below 1e-10 even though the matrix is regular in exact arithmetic.
    OvMatrix tiny = MakeMatrix({{1e-11, 0}, {0, 1e-11}});
    OvMatrix bt(2, 1);
    EXPECT_EQ(GaussLoeserRelMax(tiny, bt), 1);

    // A last pivot of about 9e-13 after elimination.
    OvMatrix nearly = MakeMatrix({{1, 1}, {1, 1 + 1.0 / 1024 / 1024 / 1024 / 1024}});
    OvMatrix bn(2, 1);
    EXPECT_EQ(GaussLoeserRelMax(nearly, bn), 1);
}

TEST(GaussLoeserRelMaxTest, AZeroLineStopsTheSearchBeforeAnySwap) {
    // Line 1 is zero from column 1 on; line 2 would make a fine pivot, but the search stops at
    // the zero line and nothing is changed.
    OvMatrix a = MakeMatrix({{0, 0}, {1, 1}});
    OvMatrix b = MakeMatrix({{5}, {6}});
    EXPECT_EQ(GaussLoeserRelMax(a, b), 1);
    EXPECT_EQ(a.GetElem(1, 1), 0.0);
    EXPECT_EQ(a.GetElem(2, 1), 1.0);
    EXPECT_EQ(b.GetElem(1, 1), 5.0);
}

TEST(GaussLoeserRelMaxTest, ShapeViolations) {
    OvMatrix empty(0, 0);
    OvMatrix none(0, 1);
    EXPECT_EQ(ThrownCode([&] { GaussLoeserRelMax(empty, none); }), 11);
    OvMatrix narrow(3, 2);
    OvMatrix b(3, 1);
    EXPECT_EQ(ThrownCode([&] { GaussLoeserRelMax(narrow, b); }), 10);
    OvMatrix square(3, 3);
    OvMatrix shortB(2, 1);
    EXPECT_EQ(ThrownCode([&] { GaussLoeserRelMax(square, shortB); }), 11);
}

TEST(GaussLoeserRelMaxTest, ExtraColumnsOfAAreCarriedAlong) {
    // An augmented a: column 3 rides along with the elimination without taking part in the
    // pivot search.
    OvMatrix a = MakeMatrix({{2, 1, 1000}, {1, 3, -1000}});
    OvMatrix b = MakeMatrix({{3}, {4}});
    ASSERT_EQ(GaussLoeserRelMax(a, b), 0);
    EXPECT_NEAR(b.GetElem(1, 1), 1.0, 1e-15);
    EXPECT_NEAR(b.GetElem(2, 1), 1.0, 1e-15);
    EXPECT_EQ(a.GetElem(2, 3), -1000 - 0.5 * 1000);
}

// ---------------------------------------------------------------- DreieckLoeserOben

TEST(DreieckLoeserObenTest, BackSubstitutionIgnoresTheLowerTriangle) {
    OvMatrix a = MakeMatrix({{2, 1, -1}, {99, 4, 2}, {99, 99, 8}});
    OvMatrix b = MakeMatrix({{3, 2}, {10, 6}, {16, 8}});
    EXPECT_EQ(DreieckLoeserOben(a, b), 0);
    // x3 = 16/8 = 2, x2 = (10 - 2*2)/4 = 1.5, x1 = (3 - 1.5 + 2)/2 = 1.75.
    EXPECT_EQ(b.GetElem(3, 1), 2.0);
    EXPECT_EQ(b.GetElem(2, 1), 1.5);
    EXPECT_EQ(b.GetElem(1, 1), 1.75);
    // Second right-hand side: x3 = 1, x2 = (6 - 2)/4 = 1, x1 = (2 - 1 + 1)/2 = 1.
    EXPECT_EQ(b.GetElem(1, 2), 1.0);
    EXPECT_EQ(b.GetElem(2, 2), 1.0);
    EXPECT_EQ(b.GetElem(3, 2), 1.0);
    EXPECT_EQ(a.DreieckLoeserOben(b), 0);  // the member form
}

TEST(DreieckLoeserObenTest, ZeroDiagonalIsNotTested) {
    OvMatrix a = MakeMatrix({{0}});
    OvMatrix b = MakeMatrix({{1}});
    EXPECT_EQ(DreieckLoeserOben(a, b), 0);
    EXPECT_TRUE(std::isinf(b.GetElem(1, 1)));
}

// ---------------------------------------------------------------- Invert

TEST(InvertTest, InverseTimesMatrixIsTheIdentity) {
    for (int n : {1, 3, 8, 25}) {
        const OvMatrix a = RandomMatrix(n, n, 300 + n);
        OvMatrix inverse = a;
        int result = -1;
        OvMatrix& same = inverse.Invert(&result);
        EXPECT_EQ(&same, &inverse);
        ASSERT_EQ(result, 0);
        const OvMatrix left = inverse * a;
        const OvMatrix right = a * inverse;
        for (int i = 1; i <= n; ++i) {
            for (int j = 1; j <= n; ++j) {
                EXPECT_NEAR(left.GetElem(i, j), i == j ? 1.0 : 0.0, 1e-11);
                EXPECT_NEAR(right.GetElem(i, j), i == j ? 1.0 : 0.0, 1e-11);
            }
        }
    }
}

TEST(InvertTest, KnownTwoByTwoInverse) {
    OvMatrix a = MakeMatrix({{4, 7}, {2, 6}});
    a.Invert();  // a null result pointer is allowed
    EXPECT_NEAR(a.GetElem(1, 1), 0.6, 1e-15);
    EXPECT_NEAR(a.GetElem(1, 2), -0.7, 1e-15);
    EXPECT_NEAR(a.GetElem(2, 1), -0.2, 1e-15);
    EXPECT_NEAR(a.GetElem(2, 2), 0.4, 1e-15);
}

TEST(InvertTest, SingularAndNonSquare) {
    OvMatrix singular = MakeMatrix({{1, 2}, {2, 4}});
    int result = 0;
    singular.Invert(&result);
    EXPECT_EQ(result, 1);

    OvMatrix wide = MakeMatrix({{1, 2, 3}, {4, 5, 6}});
    result = 7;
    EXPECT_EQ(ThrownCode([&] { wide.Invert(&result); }), 18);
    EXPECT_EQ(result, 7);
    EXPECT_EQ(wide.GetElem(2, 3), 6.0);  // nothing changed before the throw
}

// ---------------------------------------------------------------- Det

TEST(DetTest, MatchesCofactorExpansion) {
    for (int n : {1, 2, 3, 4, 6}) {
        const OvMatrix a = RandomMatrix(n, n, 400 + n);
        const double expected = CofactorDeterminant(ToDense(a));
        EXPECT_NEAR(Det(a), expected, 1e-13 * std::max(1.0, std::fabs(expected))) << "n = " << n;
        EXPECT_EQ(a.Det(), Det(a));
    }
}

TEST(DetTest, SwapsFlipTheSign) {
    const OvMatrix p = MakeMatrix({{0, 1, 0}, {1, 0, 0}, {0, 0, 1}});
    EXPECT_EQ(Det(p), -1.0);
    EXPECT_EQ(CofactorDeterminant(ToDense(p)), -1.0);
    const OvMatrix q = MakeMatrix({{1, 2, 3}, {4, 5, 6}, {7, 8, 10}});
    EXPECT_NEAR(Det(q), -3.0, 1e-13);
}

TEST(DetTest, TheLastLineIsNeverAPivot) {
    // Regular matrices whose only usable pivot lies in the last line give 0.0.
    EXPECT_EQ(Det(MakeMatrix({{0, 1}, {1, 0}})), 0.0);
    EXPECT_EQ(Det(MakeMatrix({{1, 0, 0}, {0, 0, 1}, {0, 1, 0}})), 0.0);
    EXPECT_EQ(CofactorDeterminant(ToDense(MakeMatrix({{1, 0, 0}, {0, 0, 1}, {0, 1, 0}}))), -1.0);
}

TEST(DetTest, ThresholdsAndShapes) {
    EXPECT_EQ(Det(MakeMatrix({{5}})), 5.0);
    EXPECT_EQ(Det(MakeMatrix({{1e-11}})), 0.0);
    EXPECT_EQ(Det(MakeMatrix({{1, 2}, {2, 4}})), 0.0);
    EXPECT_EQ(Det(MakeMatrix({{1e-11, 0}, {0, 1}})), 0.0);  // line sum below 1e-10
    EXPECT_EQ(ThrownCode([] { (void)Det(OvMatrix(0, 0)); }), 11);
    EXPECT_EQ(ThrownCode([] { (void)Det(OvMatrix(2, 1)); }), 10);
}

TEST(DetTest, LeavesItsArgumentUntouched) {
    const OvMatrix a = MakeMatrix({{0, 2, 1}, {3, 1, 0}, {1, 1, 1}});
    OvMatrix copy = a;
    (void)Det(copy);
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            EXPECT_EQ(copy.GetElem(i, j), a.GetElem(i, j));
}

// ---------------------------------------------------------------- CalcNGLAN

TEST(CalcNGLANTest, AccumulatesOuterProductsIntoTheTopLeftBlock) {
    // Normal equations of a straight-line fit y = p1 + p2 x: rows (1, x).
    const std::vector<double> xs = {0.5, 1.0, 2.0, 4.5};
    OvMatrix n(3, 3);
    n.SetElem(3, 3, 42.0);
    for (double x : xs)
        n.CalcNGLAN(MakeVector({1.0, x}));
    double sx = 0.0, sxx = 0.0;
    for (double x : xs) {
        sx += x;
        sxx += x * x;
    }
    EXPECT_EQ(n.GetElem(1, 1), 4.0);
    EXPECT_EQ(n.GetElem(1, 2), sx);
    EXPECT_EQ(n.GetElem(2, 1), sx);
    EXPECT_EQ(n.GetElem(2, 2), sxx);
    EXPECT_EQ(n.GetElem(1, 3), 0.0);
    EXPECT_EQ(n.GetElem(3, 3), 42.0);
}

TEST(CalcNGLANTest, TooSmallAMatrixThrowsBeforeAnyChange) {
    OvMatrix shortN(1, 3);
    EXPECT_EQ(ThrownCode([&] { CalcNGLAN(shortN, MakeVector({1, 2})); }), 11);
    OvMatrix narrow(2, 1);
    EXPECT_EQ(ThrownCode([&] { CalcNGLAN(narrow, MakeVector({1, 2})); }), 10);
    EXPECT_EQ(narrow.GetElem(1, 1), 0.0);
}

// ---------------------------------------------------------------- Cholesky

// Builds the augmented layout for min |A p - l|: (u + 1) x (2u + 1).
OvMatrix AugmentedNormalEquations(const Dense& a, const std::vector<double>& l) {
    const int u = static_cast<int>(a[0].size());
    OvMatrix m(u + 1, 2 * u + 1);
    for (std::size_t r = 0; r < a.size(); ++r) {
        for (int i = 0; i < u; ++i) {
            for (int j = 0; j < u; ++j)
                m[i + 1][j] += a[r][i] * a[r][j];
            m[i + 1][u] += a[r][i] * l[r];
        }
        m[u + 1][u] += l[r] * l[r];
    }
    for (int i = 1; i <= u; ++i)
        m[i][u + i] = 1.0;
    return m;
}

TEST(CholeskyTest, LineFitMatchesTheClosedForm) {
    const std::vector<double> xs = {0, 1, 2, 3, 4};
    const std::vector<double> ys = {1.1, 2.9, 5.2, 7.1, 8.8};
    Dense a;
    for (double x : xs)
        a.push_back({1.0, x});
    OvMatrix m = AugmentedNormalEquations(a, ys);
    OvVector p(2);
    const double v = m.Cholesky(p);

    // Closed-form simple regression.
    const double n = 5.0;
    double sx = 0, sy = 0, sxx = 0, sxy = 0;
    for (std::size_t k = 0; k < xs.size(); ++k) {
        sx += xs[k];
        sy += ys[k];
        sxx += xs[k] * xs[k];
        sxy += xs[k] * ys[k];
    }
    const double slope = (n * sxy - sx * sy) / (n * sxx - sx * sx);
    const double intercept = (sy - slope * sx) / n;
    EXPECT_NEAR(p[1], intercept, 1e-12);
    EXPECT_NEAR(p[2], slope, 1e-12);

    double residuals = 0.0;
    for (std::size_t k = 0; k < xs.size(); ++k) {
        const double e = ys[k] - intercept - slope * xs[k];
        residuals += e * e;
    }
    EXPECT_NEAR(v, residuals, 1e-10);
    // The element (u + 1, u + 1) now holds s / v with s = l^T l - v.
    double ll = 0;
    for (double y : ys)
        ll += y * y;
    EXPECT_NEAR(m.GetElem(3, 3), (ll - v) / v, 1e-6 * (ll - v) / v);
}

TEST(CholeskyTest, FactorAndInverseRootLandBesideTheNormalMatrix) {
    Dense a = {{2, 0, 1}, {0, 1, 1}, {1, 1, 0}, {1, 0, 0}, {0, 3, 1}};
    const std::vector<double> l = {1, 2, 3, 4, 5};
    const OvMatrix before = AugmentedNormalEquations(a, l);
    OvMatrix m = before;
    OvVector x(3);
    m.Cholesky(x);
    // R^T R reproduces N, and R^-T R^T is the identity.
    for (int i = 1; i <= 3; ++i) {
        for (int j = 1; j <= 3; ++j) {
            double rtr = 0.0, ident = 0.0;
            for (int k = 1; k <= std::min(i, j); ++k)
                rtr += m.GetElem(k, i) * m.GetElem(k, j);
            for (int k = 1; k <= 3; ++k) {
                const double rInvT = m.GetElem(i, 4 + k);          // (R^-T)(i, k)
                const double rT = k >= j ? m.GetElem(j, k) : 0.0;  // (R^T)(k, j) = R(j, k)
                ident += rInvT * rT;
            }
            EXPECT_NEAR(rtr, before.GetElem(i, j), 1e-12);
            EXPECT_NEAR(ident, i == j ? 1.0 : 0.0, 1e-12);
        }
    }
    // The solution satisfies the normal equations N x = A^T l.
    for (int i = 1; i <= 3; ++i) {
        double nx = 0.0;
        for (int j = 1; j <= 3; ++j)
            nx += before.GetElem(i, j) * x[j];
        EXPECT_NEAR(nx, before.GetElem(i, 4), 1e-11);
    }
}

TEST(CholeskyTest, ExactFitReturnsZeroAndKeepsTheCorner) {
    // One unknown, one observation: v = l^T l - s = 4 - 4 = 0.
    OvMatrix m = MakeMatrix({{1, 2, 1}, {0, 4, 0}});
    OvVector x(1);
    EXPECT_EQ(m.Cholesky(x), 0.0);
    EXPECT_EQ(x[1], 2.0);
    EXPECT_EQ(m.GetElem(2, 2), 4.0);
}

TEST(CholeskyTest, ShapeViolations) {
    OvMatrix m(3, 5);  // u = 2
    OvVector shortX(1);
    EXPECT_EQ(ThrownCode([&] { m.Cholesky(shortX); }), 2);
    OvMatrix fewLines(2, 5);
    OvVector x(2);
    EXPECT_EQ(ThrownCode([&] { fewLines.Cholesky(x); }), 11);
    OvMatrix noColumns(1, 0);
    EXPECT_EQ(ThrownCode([&] { noColumns.Cholesky(x); }), 10);
}

// ---------------------------------------------------------------- Cramer

TEST(CramerTest, AgreesWithGaussianElimination) {
    const OvMatrix a = RandomMatrix(4, 4, 500, 1.0);
    const OvVector b = MakeVector({1, -2, 0.5, 3});
    const OvVector x = a.Cramer(b);
    const OvVector ax = a * x;
    for (int i = 1; i <= 4; ++i)
        EXPECT_NEAR(ax[i], b[i], 1e-12);
}

TEST(CramerTest, SolvesWhatDetCannotPivot) {
    const OvMatrix swap = MakeMatrix({{0, 1}, {1, 0}});
    const OvVector x = swap.Cramer(MakeVector({2, 3}));
    EXPECT_EQ(x[1], 3.0);
    EXPECT_EQ(x[2], 2.0);
}

TEST(CramerTest, SingularGivesZerosAndShapesAreChecked) {
    const OvVector x = MakeMatrix({{1, 2}, {2, 4}}).Cramer(MakeVector({1, 1}));
    EXPECT_TRUE(x == OvVector(2));
    EXPECT_EQ(OvMatrix(0, 0).Cramer(OvVector(0)).GetSize(), 0);
    EXPECT_EQ(ThrownCode([] { (void)OvMatrix(2, 3).Cramer(OvVector(2)); }), 18);
    EXPECT_EQ(ThrownCode([] { (void)OvMatrix(2, 2).Cramer(OvVector(3)); }), 14);
}

}  // namespace
}  // namespace orvo
