// Rotation matrices in the photogrammetric omega-phi-kappa convention.
#include <algorithm>
#include <cmath>

#include "orvo/numerics/matrix.h"

namespace orvo {

namespace {

// How far from orthogonal two normalised axes may be (the cosine of the angle between them).
constexpr double kAxisOrthogonalityTolerance = 1e-6;

}  // namespace

OvMatrix& OvMatrix::MakeRotMatrix(double omega, double phi, double kappa) {
    if (lines_ < 3 || columns_ < 3) throw kOvErrMatrixLine;
    const double so = std::sin(omega), co = std::cos(omega);
    const double sp = std::sin(phi), cp = std::cos(phi);
    const double sk = std::sin(kappa), ck = std::cos(kappa);

    double* r1 = (*this)[1];
    double* r2 = (*this)[2];
    double* r3 = (*this)[3];
    r1[0] = cp * ck;
    r1[1] = -cp * sk;
    r1[2] = sp;
    r2[0] = co * sk + so * sp * ck;
    r2[1] = co * ck - so * sp * sk;
    r2[2] = -so * cp;
    r3[0] = so * sk - co * sp * ck;
    r3[1] = so * ck + co * sp * sk;
    r3[2] = co * cp;
    return *this;
}

OvMatrix& OvMatrix::MakeRotMatrix(OvVector& xAxis, OvVector& yAxis, OvVector& zAxis, bool* usable) {
    if (lines_ < 3 || columns_ < 3) throw kOvErrMatrixLine;
    OvVector axes[3] = {OvVector(3), OvVector(3), OvVector(3)};
    const OvVector* given[3] = {&xAxis, &yAxis, &zAxis};
    bool ok = true;
    for (int a = 0; a < 3; ++a) {
        for (int k = 1; k <= 3; ++k)
            axes[a][k] = (*given[a])[k];
        const double length = axes[a].Abs();
        if (length < kOvSingularThreshold) {
            ok = false;
        } else {
            axes[a] /= length;
        }
    }
    if (ok) {
        ok = std::fabs(axes[0] * axes[1]) <= kAxisOrthogonalityTolerance &&
             std::fabs(axes[0] * axes[2]) <= kAxisOrthogonalityTolerance &&
             std::fabs(axes[1] * axes[2]) <= kAxisOrthogonalityTolerance &&
             (axes[0] % axes[1]) * axes[2] > 0.0;  // right-handed, not a reflection
    }
    if (ok) {
        for (int a = 0; a < 3; ++a) {
            double* line = (*this)[a + 1];
            for (int k = 0; k < 3; ++k)
                line[k] = axes[a].Data()[k];
        }
    }
    if (usable != nullptr) *usable = ok;
    return *this;
}

void OvMatrix::GetRotAngles(double* omega, double* phi, double* kappa) const {
    if (lines_ < 3 || columns_ < 3) throw kOvErrMatrixLine;
    const double* r1 = (*this)[1];
    const double* r2 = (*this)[2];
    const double* r3 = (*this)[3];

    // Rounding can push |r13| a hair past 1; asin would then give NaN.
    const double p = std::asin(std::clamp(r1[2], -1.0, 1.0));
    double o = 0.0;
    double k = 0.0;
    if (std::hypot(r1[0], r1[1]) < kOvSingularThreshold) {
        // cos(phi) = 0: omega and kappa turn about the same axis; put it all into omega.
        o = std::atan2(r3[1], r2[1]);
    } else {
        o = std::atan2(-r2[2], r3[2]);
        k = std::atan2(-r1[1], r1[0]);
    }
    if (omega != nullptr) *omega = o;
    if (phi != nullptr) *phi = p;
    if (kappa != nullptr) *kappa = k;
}

}  // namespace orvo
