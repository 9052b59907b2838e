// Gaussian elimination with scaled pivoting, back substitution, the determinant and the
// accumulation of normal equations.
//
// The shapes are validated once up front; the loops then work on line pointers into the
// contiguous storage, doing exactly the arithmetic that the element-wise description gives
// (the same operands, the same order of summation).
#include <algorithm>
#include <cmath>
#include <vector>

#include "elimination.h"
#include "orvo/numerics/matrix.h"

namespace orvo {

int elimination::FindScaledPivot(OvMatrix& a, int k, int n, int lastCandidate) {
    double bestRatio = 0.0;
    int pivot = 0;
    for (int i = k; i <= lastCandidate; ++i) {
        const double* line = a[i];
        double sum = 0.0;
        for (int j = k; j <= n; ++j)
            sum += std::fabs(line[j - 1]);
        if (std::fabs(sum) < kOvSingularThreshold) return 0;
        const double ratio = std::fabs(line[k - 1]) / sum;
        if (ratio > bestRatio) {
            bestRatio = ratio;
            pivot = i;
        }
    }
    if (std::fabs(bestRatio) < kOvSingularThreshold) return 0;
    return pivot;
}

namespace {

// Eliminates column k below the pivot line k: line i of a gets f * line k added over columns
// k..end, with f = -a(i, k) / a(k, k), and the multiplier -f is kept in a(i, k); line i of b
// gets the same f * line k over all its columns.
void EliminateBelow(OvMatrix& a, OvMatrix& b, int k, int n) {
    const int columns = a.GetSpalten();
    const double* pivotLine = a[k];
    for (int i = k + 1; i <= n; ++i) {
        double* line = a[i];
        const double f = -line[k - 1] / pivotLine[k - 1];
        for (int j = k; j <= columns; ++j)
            line[j - 1] += f * pivotLine[j - 1];
        b.AddLines(i, k, 1, f, -1);
        line[k - 1] = -f;
    }
}

void CheckSystemShape(const OvMatrix& a, const OvMatrix& b) {
    const int n = a.GetZeilen();
    if (a.GetSpalten() < n) throw kOvErrMatrixGetElem;
    if (b.GetZeilen() < n) throw kOvErrMatrixLine;
}

}  // namespace

int GaussLoeserRelMax(OvMatrix& a, OvMatrix& b) {
    CheckSystemShape(a, b);
    const int n = a.GetZeilen();
    for (int k = 1; k <= n; ++k) {
        const int pivot = elimination::FindScaledPivot(a, k, n, n);
        if (pivot == 0) return 1;
        if (pivot != k) {
            a.SwapLines(pivot, k);
            b.SwapLines(pivot, k);
        }
        EliminateBelow(a, b, k, n);
    }
    if (std::fabs(a[n][n - 1]) < kOvSingularThreshold) return 1;  // n = 0 throws 11 here
    DreieckLoeserOben(a, b);
    return 0;
}

int DreieckLoeserOben(OvMatrix& a, OvMatrix& b) {
    CheckSystemShape(a, b);
    const int n = a.GetZeilen();
    const int rhsCount = b.GetSpalten();
    // For every right-hand side c: b(i, c) = (b(i, c) - sum a(i, j) b(j, c), j = i+1..n) / a(i, i).
    // The sums of all right-hand sides are collected line by line, each in j order.
    std::vector<double> sums(static_cast<std::size_t>(rhsCount));
    for (int i = n; i >= 1; --i) {
        const double* line = a[i];
        std::fill(sums.begin(), sums.end(), 0.0);
        for (int j = i + 1; j <= n; ++j) {
            const double aij = line[j - 1];
            const double* solved = b[j];
            for (int c = 0; c < rhsCount; ++c)
                sums[c] += aij * solved[c];
        }
        double* rhs = b[i];
        for (int c = 0; c < rhsCount; ++c)
            rhs[c] = (rhs[c] - sums[c]) / line[i - 1];
    }
    return 0;
}

double elimination::Determinant(const OvMatrix& m, bool lastLineIsCandidate) {
    const int n = m.GetZeilen();
    if (m.GetSpalten() < n) throw kOvErrMatrixGetElem;
    OvMatrix a(m);
    double d = 1.0;
    for (int k = 1; k <= n - 1; ++k) {
        const int pivot = elimination::FindScaledPivot(a, k, n, lastLineIsCandidate ? n : n - 1);
        if (pivot == 0) return 0.0;
        if (pivot != k) {
            a.SwapLines(pivot, k);
            d *= -1.0;
        }
        const double* pivotLine = a[k];
        d *= pivotLine[k - 1];
        const int columns = a.GetSpalten();
        for (int i = k + 1; i <= n; ++i) {
            double* line = a[i];
            const double f = (-1.0 / pivotLine[k - 1]) * line[k - 1];
            for (int j = k; j <= columns; ++j)
                line[j - 1] += f * pivotLine[j - 1];
            line[k - 1] = -f;
        }
    }
    const double last = a[n][n - 1];  // n = 0 throws 11 here
    return std::fabs(last) >= kOvSingularThreshold ? d * last : 0.0;
}

// The last line is never a pivot candidate here; that is how the determinant has always been
// taken by this library, and callers rely on its results staying the same.
double Det(const OvMatrix& m) {
    return elimination::Determinant(m, false);
}

void CalcNGLAN(OvMatrix& n, const OvVector& a) {
    const int m = a.GetSize();
    if (n.GetZeilen() < m) throw kOvErrMatrixLine;
    if (n.GetSpalten() < m) throw kOvErrMatrixGetElem;
    const double* x = a.Data();
    for (int i = 1; i <= m; ++i) {
        double* line = n[i];
        for (int j = 1; j <= m; ++j)
            line[j - 1] += x[i - 1] * x[j - 1];
    }
}

}  // namespace orvo
