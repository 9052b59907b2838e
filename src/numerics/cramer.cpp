// Cramer's rule for small square systems.
#include "elimination.h"
#include "orvo/numerics/matrix.h"

namespace orvo {

OvVector OvMatrix::Cramer(const OvVector& b) const {
    if (lines_ != columns_) throw kOvErrMatrixInvert;
    if (b.GetSize() != lines_) throw kOvErrMatrixTimesVector;
    const int n = lines_;
    OvVector x(n);
    if (n == 0) return x;

    // Every line is a pivot candidate here: unlike Det, a system whose only usable pivot sits in
    // the last line is solvable.
    const double determinant = elimination::Determinant(*this, true);
    if (determinant == 0.0) return x;

    OvMatrix replaced(*this);
    for (int i = 1; i <= n; ++i) {
        replaced = *this;
        replaced.SetRow(i, b);
        x[i] = elimination::Determinant(replaced, true) / determinant;
    }
    return x;
}

}  // namespace orvo
