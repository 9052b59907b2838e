// Least-squares solution of an augmented normal-equation system by Cholesky factorisation.
//
// The augmented layout lets one pass of line-by-line factorisation produce, next to the factor
// R, both R^-T A^T l (the reduced right-hand side) and R^-T (from the identity block), from
// which the solution N^-1 A^T l and the residual sum of squares follow without a separate
// inversion.
#include <cmath>

#include "orvo/numerics/matrix.h"

namespace orvo {

double OvMatrix::Cholesky(OvVector& x) {
    const int u = (columns_ - 1) / 2;
    if (columns_ < 1) throw kOvErrMatrixGetElem;
    if (lines_ < u + 1) throw kOvErrMatrixLine;
    if (x.GetSize() < u) throw kOvErrVectorIndex;

    // Factorisation in place, line by line: a(k, k) = sqrt(a(k, k) - sum a(i, k)^2), then the
    // rest of line k is solved against the lines above, out to the last column.
    for (int k = 1; k <= u; ++k) {
        double* line = (*this)[k];
        double squares = 0.0;
        for (int i = 1; i < k; ++i)
            squares += (*this)[i][k - 1] * (*this)[i][k - 1];
        line[k - 1] = std::sqrt(line[k - 1] - squares);
        for (int j = k + 1; j <= columns_; ++j) {
            double sum = 0.0;
            for (int i = 1; i < k; ++i)
                sum += (*this)[i][k - 1] * (*this)[i][j - 1];
            line[j - 1] = (line[j - 1] - sum) / line[k - 1];
        }
    }

    // x = R^-1 R^-T A^T l, read off the columns of R^-T; s = |R^-T A^T l|^2.
    double s = 0.0;
    for (int k = 1; k <= u; ++k) {
        double sum = 0.0;
        for (int i = 1; i <= u; ++i)
            sum += (*this)[i][u + k] * (*this)[i][u];
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
