// Projective mapping of plane and space points with homogeneous 3 x 3 and 4 x 4 matrices.
#include <cmath>

#include "orvo/numerics/matrix.h"

namespace orvo {

bool OvMatrix::PTrans2D(double* x, double* y) const {
    if (x == nullptr || y == nullptr) return false;
    const double px = *x;
    const double py = *y;
    const double w = GetElem(3, 1) * px + GetElem(3, 2) * py + GetElem(3, 3);
    if (std::fabs(w) < kOvSingularThreshold) return false;  // a point at infinity: left as is
    *x = (GetElem(1, 1) * px + GetElem(1, 2) * py + GetElem(1, 3)) / w;
    *y = (GetElem(2, 1) * px + GetElem(2, 2) * py + GetElem(2, 3)) / w;
    return true;
}

bool OvMatrix::PTrans3D(double* x, double* y, double* z) const {
    if (x == nullptr || y == nullptr || z == nullptr) return false;
    const double px = *x;
    const double py = *y;
    const double pz = *z;
    auto mapped = [&](int line) {
        return GetElem(line, 1) * px + GetElem(line, 2) * py + GetElem(line, 3) * pz +
               GetElem(line, 4);
    };
    const double w = mapped(4);
    if (std::fabs(w) < kOvSingularThreshold) return false;
    const double nx = mapped(1);
    const double ny = mapped(2);
    const double nz = mapped(3);
    *x = nx / w;
    *y = ny / w;
    *z = nz / w;
    return true;
}

}  // namespace orvo
