// The 2D transformation: type, parameters, the point mappings and the matrix form.
#include "orvo/numerics/trafo2d.h"

#include <cmath>

#include "extended_precision.h"
#include "orvo/model/point.h"
#include "orvo/numerics/matrix.h"

namespace orvo {

namespace {

// When the terms of a polynomial are this many times larger than its value, the sum has lost
// that many bits to cancellation and is formed again in extended precision.
constexpr double kCancellation = 65536.0;

// x' = c0 + c1 x + c2 y + c3 x^2 + c4 x y + c5 y^2 + c6 x^3 + c7 x^2 y + c8 x y^2 + c9 y^3
// with c = p0..p9, and y' the same with p10..p19.
//
// On ordinary coordinates these are the plain double sums. On coordinates whose offset dwarfs
// their spread (national-grid metres, x around 4.5e6) the cubic terms reach 1e12 and more while
// the value stays near 1e6, and the plain sum loses millimetres; there the sum is formed again
// in long double (extended precision where the platform has it), which keeps what the
// parameters themselves can hold.
double ExtendedSum(const double* c, double x, double y) {
    const OvWide lx = x;
    const OvWide ly = y;
    const OvWide m[10] = {1.0L,    lx,           ly,           lx * lx,      lx * ly,
                          ly * ly, lx * lx * lx, lx * lx * ly, lx * ly * ly, ly * ly * ly};
    OvWide sum = 0.0L;
    for (int k = 0; k < 10; ++k)
        sum += static_cast<OvWide>(c[k]) * m[k];
    return OvNarrow(sum);
}

void TransformPolynomial(const double* p, double* x, double* y) {
    const double px = *x;
    const double py = *y;
    const double m[10] = {1.0,     px,           py,           px * px,      px * py,
                          py * py, px * px * px, px * px * py, px * py * py, py * py * py};
    double sumX = p[0];
    double sumY = p[10];
    double sizeX = std::fabs(sumX);
    double sizeY = std::fabs(sumY);
    for (int k = 1; k < 10; ++k) {
        const double termX = p[k] * m[k];
        const double termY = p[10 + k] * m[k];
        sumX += termX;
        sumY += termY;
        sizeX += std::fabs(termX);
        sizeY += std::fabs(termY);
    }
    *x = sizeX > kCancellation * std::fabs(sumX) ? ExtendedSum(p, px, py) : sumX;
    *y = sizeY > kCancellation * std::fabs(sumY) ? ExtendedSum(p + 10, px, py) : sumY;
}

}  // namespace

int OvTrafo2DParamCount(eOvTrafo2DType type) {
    switch (type) {
        case eOvTrafo2DHelmert:
            return 4;
        case eOvTrafo2DAffin:
            return 6;
        case eOvTrafo2DProjektiv:
            return 8;
        case eOvTrafo2DPolynomial:
            return 20;
        default:
            return 0;
    }
}

const char* OvTrafo2DName(eOvTrafo2DType type) {
    switch (type) {
        case eOvTrafo2DHelmert:
            return "Helmert";
        case eOvTrafo2DAffin:
            return "Affin";
        case eOvTrafo2DProjektiv:
            return "Projektiv";
        case eOvTrafo2DPolynomial:
            return "Polynomial";
        case eOvTrafo2DInvHelmert:
            return "Inv. Helmert";
        default:
            return "None";
    }
}

OvTrafo2d::OvTrafo2d() = default;
OvTrafo2d::~OvTrafo2d() = default;

OvTrafo2d& OvTrafo2d::operator=(OvTrafo2d other) {
    Set(other);
    return *this;
}

void OvTrafo2d::Set(const OvTrafo2d& other) {
    type_ = other.type_;
    for (int i = 0; i < kMaxParams; ++i)
        p_[i] = other.p_[i];
}

void OvTrafo2d::Init() {
    type_ = eOvTrafo2DNone;
    for (double& value : p_)
        value = 0.0;
}

void OvTrafo2d::SetIdent() {
    type_ = eOvTrafo2DHelmert;
    p_[0] = 0.0;
    p_[1] = 1.0;
    p_[2] = 0.0;
    p_[3] = 0.0;
}

bool OvTrafo2d::HasFiniteParameters() const {
    const int count = GetParamCount();
    for (int i = 0; i < count; ++i)
        if (!std::isfinite(p_[i])) return false;
    return true;
}

bool OvTrafo2d::Transform(double* x, double* y) const {
    if (x == nullptr || y == nullptr) return false;
    const double px = *x;
    const double py = *y;
    const double* p = p_;
    switch (type_) {
        case eOvTrafo2DHelmert:
            *x = p[0] + p[1] * px - p[3] * py;
            *y = p[2] + p[3] * px + p[1] * py;
            return true;
        case eOvTrafo2DAffin:
            *x = p[0] + p[1] * px + p[2] * py;
            *y = p[3] + p[4] * px + p[5] * py;
            return true;
        case eOvTrafo2DProjektiv: {
            const double d = p[6] * px + p[7] * py + 1.0;
            *x = (p[0] * px + p[1] * py + p[2]) / d;
            *y = (p[3] * px + p[4] * py + p[5]) / d;
            return true;
        }
        case eOvTrafo2DPolynomial:
            TransformPolynomial(p, x, y);
            return true;
        default:
            return false;
    }
}

bool OvTrafo2d::Transform(OvPoint* point) const {
    if (point == nullptr) return false;
    double x = point->GetX();
    double y = point->GetY();
    if (!Transform(&x, &y)) return false;
    point->SetX(x);
    point->SetY(y);
    return true;
}

bool OvTrafo2d::TransInvHelmert(double* x, double* y) const {
    if (x == nullptr || y == nullptr) return false;
    const double* p = p_;
    const double d = p[1] * p[1] + p[3] * p[3];
    if (d == 0.0) return false;
    const double reciprocal = 1.0 / d;
    const double px = *x;
    const double py = *y;
    *x = ((px * p[1] + py * p[3]) - (p[2] * p[3] + p[0] * p[1])) * reciprocal;
    *y = (py * p[1] + (p[0] * p[3] - p[2] * p[1]) - px * p[3]) * reciprocal;
    return true;
}

bool OvTrafo2d::TransInvHelmert(OvPoint* point) const {
    if (point == nullptr) return false;
    double x = point->GetX();
    double y = point->GetY();
    if (!TransInvHelmert(&x, &y)) return false;
    point->SetX(x);
    point->SetY(y);
    return true;
}

void OvTrafo2d::BuildMatrix(OvMatrix* matrix) const {
    if (matrix == nullptr) return;
    if (matrix->GetZeilen() != 3 || matrix->GetSpalten() != 3) throw kOvErrMatrixAssign;
    const double* p = p_;
    double m[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    switch (type_) {
        case eOvTrafo2DHelmert:
            m[0][0] = p[1], m[0][1] = -p[3], m[0][2] = p[0];
            m[1][0] = p[3], m[1][1] = p[1], m[1][2] = p[2];
            break;
        case eOvTrafo2DAffin:
            m[0][0] = p[1], m[0][1] = p[2], m[0][2] = p[0];
            m[1][0] = p[4], m[1][1] = p[5], m[1][2] = p[3];
            break;
        case eOvTrafo2DProjektiv:
            m[0][0] = p[0], m[0][1] = p[1], m[0][2] = p[2];
            m[1][0] = p[3], m[1][1] = p[4], m[1][2] = p[5];
            m[2][0] = p[6], m[2][1] = p[7];
            break;
        default:
            break;  // no matrix form: the identity, which leaves points as Transform does
    }
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            matrix->SetElem(i + 1, j + 1, m[i][j]);
}

}  // namespace orvo
