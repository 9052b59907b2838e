// Least-squares solution of an augmented normal-equation system by Cholesky factorisation.
//
// The augmented layout lets one pass of line-by-line factorisation produce, next to the factor
// R, both R^-T A^T l (the reduced right-hand side) and R^-T (from the identity block), from
// which the solution N^-1 A^T l and the residual sum of squares follow without a separate
// inversion.
#include <algorithm>
#include <cmath>
#include <vector>

#include "orvo/numerics/matrix.h"

namespace orvo {

double OvMatrix::Cholesky(OvVector& x) {
    const int u = (columns_ - 1) / 2;
    if (columns_ < 1) throw kOvErrMatrixGetElem;
    if (lines_ < u + 1) throw kOvErrMatrixLine;
    if (x.GetSize() < u) throw kOvErrVectorIndex;

    // Factorisation in place, line by line: a(k, k) = sqrt(a(k, k) - sum a(i, k)^2), then the
    // rest of line k is solved against the lines above, out to the last column:
    // a(k, j) = (a(k, j) - sum a(i, k) a(i, j)) / a(k, k), both sums over i = 1..k-1. The sums of
    // one line are gathered for all its columns at once, walking the lines above in i order,
    // so each sum adds its terms in the same order as the formula while the memory is read
    // line by line.
    std::vector<double> sums(static_cast<std::size_t>(columns_));
    for (int k = 1; k <= u; ++k) {
        double* line = (*this)[k];
        std::fill(sums.begin() + (k - 1), sums.end(), 0.0);
        for (int i = 1; i < k; ++i) {
            const double* above = (*this)[i];
            const double aik = above[k - 1];
            for (int j = k - 1; j < columns_; ++j)
                sums[j] += aik * above[j];
        }
        line[k - 1] = std::sqrt(line[k - 1] - sums[k - 1]);
        for (int j = k; j < columns_; ++j)
            line[j] = (line[j] - sums[j]) / line[k - 1];
    }

    // x = R^-1 R^-T A^T l, read off the columns of R^-T; s = |R^-T A^T l|^2.
    double s = 0.0;
    for (int k = 1; k <= u; ++k) {
        double sum = 0.0;
        for (int i = 1; i <= u; ++i) {
            const double* factorLine = (*this)[i];
            sum += factorLine[u + k] * factorLine[u];
        }
        x[k] = sum;
        s += (*this)[k][u] * (*this)[k][u];
    }

    double* last = (*this)[u + 1];
    const double residual = last[u] - s;
    if (residual > 0.0) {
        last[u] = s / residual;
        return residual;
    }
    return 0.0;
}

}  // namespace orvo
