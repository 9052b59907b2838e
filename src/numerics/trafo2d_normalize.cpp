// From parameters fitted in reduced coordinates back to the usual parameter form.
//
// With x~ = (x - cx) k on the measured side and X~ = (X - CX) K on the reference side, a fitted
// X~ = F~(x~, y~) is X = CX + F~(k (x - cx), k (y - cy)) / K. For the Helmert, the Affin and the
// Polynomial that is again a transformation of the same type whose parameters are an affine
// function of the reduced ones (the polynomial by binomial expansion of the shifted monomials).
// The Projektiv is the matrix product T_out^-1 H~ T_in, scaled so that its last element is 1,
// which is not linear in the reduced parameters; its Jacobian is formed analytically.
#include "trafo2d_normalize.h"

#include <algorithm>
#include <cmath>

#include "extended_precision.h"

namespace orvo::trafo2d {

void FrameBuilder::Add(double x, double y) {
    if (count_ == 0) {
        minX_ = maxX_ = x;
        minY_ = maxY_ = y;
    } else {
        minX_ = std::min(minX_, x);
        maxX_ = std::max(maxX_, x);
        minY_ = std::min(minY_, y);
        maxY_ = std::max(maxY_, y);
    }
    sumX_ += x;
    sumY_ += y;
    ++count_;
}

bool FrameBuilder::Make(Frame* frame) const {
    if (count_ == 0) return false;
    const double cx = sumX_ / count_;
    const double cy = sumY_ / count_;
    const double reach =
        std::max(std::max(maxX_ - cx, cx - minX_), std::max(maxY_ - cy, cy - minY_));
    if (!(reach > 0.0) || !std::isfinite(reach)) return false;
    *frame = Frame{cx, cy, 1.0 / reach};
    return true;
}

namespace {

// Exponents of x and y of the ten monomials, in parameter order.
constexpr int kPowX[10] = {0, 1, 0, 2, 1, 0, 3, 2, 1, 0};
constexpr int kPowY[10] = {0, 0, 1, 0, 1, 2, 0, 1, 2, 3};
constexpr double kBinomial[4][4] = {{1, 0, 0, 0}, {1, 1, 0, 0}, {1, 2, 1, 0}, {1, 3, 3, 1}};

int MonomialIndex(int powX, int powY) {
    for (int m = 0; m < 10; ++m)
        if (kPowX[m] == powX && kPowY[m] == powY) return m;
    return 0;  // not reached: every product of lower powers is one of the ten
}

// The linear part of the way back (no reference centre added), or the whole of it.
void DenormalizeLinearTypes(eOvTrafo2DType type, const Frame& in, const Frame& out, const double* a,
                            double* p, bool withCentre) {
    const double toOut = 1.0 / out.k;
    const double ratio = in.k / out.k;
    const double cx = withCentre ? out.cx : 0.0;
    const double cy = withCentre ? out.cy : 0.0;
    switch (type) {
        case eOvTrafo2DHelmert:
            p[1] = a[1] * ratio;
            p[3] = a[3] * ratio;
            p[0] = cx + (a[0] * toOut - p[1] * in.cx + p[3] * in.cy);
            p[2] = cy + (a[2] * toOut - p[3] * in.cx - p[1] * in.cy);
            return;
        case eOvTrafo2DAffin:
            p[1] = a[1] * ratio;
            p[2] = a[2] * ratio;
            p[4] = a[4] * ratio;
            p[5] = a[5] * ratio;
            p[0] = cx + (a[0] * toOut - p[1] * in.cx - p[2] * in.cy);
            p[3] = cy + (a[3] * toOut - p[4] * in.cx - p[5] * in.cy);
            return;
        case eOvTrafo2DPolynomial: {
            // (k x - k cx)^i = sum over r of C(i, r) k^r x^r (-k cx)^(i - r), likewise in y.
            // The terms grow with the cube of the offset and cancel in the sum, so they are
            // summed in long double: the result is then the double nearest to the exact
            // parameter where the platform has extended precision.
            using Wide = OvWide;
            Wide powK[4], powShiftX[4], powShiftY[4];
            powK[0] = powShiftX[0] = powShiftY[0] = 1.0L;
            for (int e = 1; e < 4; ++e) {
                powK[e] = powK[e - 1] * in.k;
                powShiftX[e] = powShiftX[e - 1] * (-static_cast<Wide>(in.k) * in.cx);
                powShiftY[e] = powShiftY[e - 1] * (-static_cast<Wide>(in.k) * in.cy);
            }
            Wide sums[20] = {};
            for (int side = 0; side < 2; ++side) {
                for (int m = 0; m < 10; ++m) {
                    const Wide c = static_cast<Wide>(a[side * 10 + m]) / out.k;
                    const int i = kPowX[m];
                    const int j = kPowY[m];
                    for (int r = 0; r <= i; ++r) {
                        const Wide fx = kBinomial[i][r] * powK[r] * powShiftX[i - r];
                        for (int s = 0; s <= j; ++s) {
                            const Wide fy = kBinomial[j][s] * powK[s] * powShiftY[j - s];
                            sums[side * 10 + MonomialIndex(r, s)] += c * fx * fy;
                        }
                    }
                }
            }
            sums[0] += cx;
            sums[10] += cy;
            for (int i = 0; i < 20; ++i)
                p[i] = OvNarrow(sums[i]);
            return;
        }
        default:
            return;
    }
}

// 3 x 3 helpers for the Projektiv.
using M3 = double[3][3];

void Multiply(const M3& a, const M3& b, M3& c) {
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            c[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
}

struct ProjectiveFrames {
    M3 in;      // reduces measured coordinates
    M3 outInv;  // expands reduced reference coordinates
};

ProjectiveFrames MakeProjectiveFrames(const Frame& in, const Frame& out) {
    return ProjectiveFrames{{{in.k, 0.0, -in.k * in.cx}, {0.0, in.k, -in.k * in.cy}, {0, 0, 1}},
                            {{1.0 / out.k, 0.0, out.cx}, {0.0, 1.0 / out.k, out.cy}, {0, 0, 1}}};
}

// T_out^-1 H T_in for a 3 x 3 H.
void Expand(const ProjectiveFrames& f, const M3& h, M3& g) {
    M3 right;
    Multiply(h, f.in, right);
    Multiply(f.outInv, right, g);
}

// Matrix position of Projektiv parameter i.
constexpr int kRow[8] = {0, 0, 0, 1, 1, 1, 2, 2};
constexpr int kCol[8] = {0, 1, 2, 0, 1, 2, 0, 1};

void ProjectiveMatrix(const double* a, M3& h) {
    h[0][0] = a[0], h[0][1] = a[1], h[0][2] = a[2];
    h[1][0] = a[3], h[1][1] = a[4], h[1][2] = a[5];
    h[2][0] = a[6], h[2][1] = a[7], h[2][2] = 1.0;
}

}  // namespace

void Denormalize(eOvTrafo2DType type, const Frame& in, const Frame& out, const double* a,
                 double* p) {
    if (type != eOvTrafo2DProjektiv) {
        DenormalizeLinearTypes(type, in, out, a, p, true);
        return;
    }
    const ProjectiveFrames f = MakeProjectiveFrames(in, out);
    M3 h, g;
    ProjectiveMatrix(a, h);
    Expand(f, h, g);
    for (int i = 0; i < 8; ++i)
        p[i] = g[kRow[i]][kCol[i]] / g[2][2];
}

void DenormalizeJacobian(eOvTrafo2DType type, const Frame& in, const Frame& out, const double* a,
                         double* jacobian) {
    const int u = OvTrafo2DParamCount(type);
    if (type != eOvTrafo2DProjektiv) {
        // The map is affine: column j is the linear part applied to the unit vector j.
        double unit[OvTrafo2d::kMaxParams] = {};
        double column[OvTrafo2d::kMaxParams] = {};
        for (int j = 0; j < u; ++j) {
            unit[j] = 1.0;
            DenormalizeLinearTypes(type, in, out, unit, column, false);
            unit[j] = 0.0;
            for (int i = 0; i < u; ++i)
                jacobian[i * u + j] = column[i];
        }
        return;
    }
    // p_i = G_i / G_33 with G = T_out^-1 H T_in, which is affine in a; dG/da_j is the expansion
    // of the unit matrix at a_j's position.
    const ProjectiveFrames f = MakeProjectiveFrames(in, out);
    M3 h, g;
    ProjectiveMatrix(a, h);
    Expand(f, h, g);
    const double w = g[2][2];
    for (int j = 0; j < 8; ++j) {
        M3 unit = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}};
        unit[kRow[j]][kCol[j]] = 1.0;
        M3 dg;
        Expand(f, unit, dg);
        for (int i = 0; i < 8; ++i) {
            const double gi = g[kRow[i]][kCol[i]];
            jacobian[i * 8 + j] = (dg[kRow[i]][kCol[i]] - gi / w * dg[2][2]) / w;
        }
    }
}

}  // namespace orvo::trafo2d
