// The camera's distortion model: the relative radial correction, its application to image
// coordinates (Adjust) and the inverse by fixed-point iteration (InvAdjust), with the
// diagnosis of the inverse and the monotony check of the correction curve.
#include <cmath>
#include <limits>

#include "orvo/model/camera.h"
#include "orvo/model/point.h"
#include "orvo/model/point_list.h"

namespace orvo {

namespace {

bool AllFinite(std::initializer_list<double> values) {
    for (double v : values) {
        if (!std::isfinite(v)) return false;
    }
    return true;
}

}  // namespace

double OvCamera::Calcdr(double x, double y) const {
    const double r = std::sqrt(x * x + y * y);
    if (r == 0.0 || std::isnan(r)) return 0.0;
    const double R0sq = R0_ * R0_;
    return (r * (r * r * r) - R0sq * R0sq) * A2_ + (r * r - R0sq) * A1_;
}

double OvCamera::Calcd(double x, double y) const {
    const double s = x * x + y * y;
    const double R0sq = R0_ * R0_;
    return s * A1_ - R0sq * A1_ + s * s * A2_ - R0sq * R0sq * A2_;
}

bool OvCamera::Adjust(double* x, double* y) const {
    if (GetId() == 0 || x == nullptr || y == nullptr) return false;
    const double u = *x - Xh_;
    const double v = *y - Yh_;
    const double k = Calcdr(u, v);
    *x = u - k * u;
    *y = v - k * v;
    return true;
}

bool OvCamera::Adjust(OvPoint* point) const {
    if (point == nullptr) return false;
    double x = point->GetX();
    double y = point->GetY();
    if (!Adjust(&x, &y)) return false;
    point->SetX(x);
    point->SetY(y);
    return true;
}

bool OvCamera::Adjust(OvPointList* list) const {
    if (list == nullptr) return false;
    if (GetId() == 0) return true;
    for (OvPoint* p = list->First(); p != nullptr; p = p->Next())
        Adjust(p);
    return true;
}

bool OvCamera::InvAdjust(double* x, double* y) const {
    return InvAdjust(x, y, nullptr);
}

bool OvCamera::InvAdjust(double* x, double* y, OvInvAdjustDiagnosis* diagnosis) const {
    OvInvAdjustDiagnosis local;
    OvInvAdjustDiagnosis& report = diagnosis != nullptr ? *diagnosis : local;
    report = OvInvAdjustDiagnosis{};
    if (GetId() == 0) {
        report.result = InvAdjustNoCamera;
        return false;
    }
    if (x == nullptr || y == nullptr) {
        report.result = InvAdjustNullArgument;
        return false;
    }

    const double x0 = *x;
    const double y0 = *y;
    const double R0sq = R0_ * R0_;
    const double K1 = R0sq * A1_;
    const double K2 = R0sq * R0sq * A2_;
    double u = x0;
    double v = y0;
    double d = 0.0;
    double previous = 0.0;
    int pass = 0;
    do {
        const double s = u * u + v * v;
        const double f = s * A1_ - K1 + s * s * A2_ - K2;
        const double un = f * (u - Xh_) + x0;
        const double vn = f * (v - Yh_) + y0;
        previous = d;
        d = (u - un) * (u - un) + (v - vn) * (v - vn);
        u = un;
        v = vn;
        if (++pass == 1) report.firstStep = d;
    } while (pass < kOvInvAdjustMaxPasses && !(d <= kOvInvAdjustTolerance));

    report.passes = pass;
    report.lastStep = d;
    if (pass >= 2 && previous > 0.0) report.contraction = std::sqrt(d / previous);

    if (d < kOvInvAdjustTolerance) {
        *x = u + Xh_;
        *y = v + Yh_;
        report.result = InvAdjustConverged;
        return true;
    }

    // Why it failed, for the caller's diagnosis.
    if (!AllFinite({x0, y0, C_, Xh_, Yh_, A1_, A2_, R0_})) {
        report.result = InvAdjustNotFinite;
    } else if (!std::isfinite(d)) {
        report.result = InvAdjustNotContracting;  // the iterates grew until they overflowed
    } else {
        // The steps of an iteration that has settled are rounding noise of the coordinates;
        // when the coordinates are large, that noise alone exceeds the absolute tolerance.
        const double scale = std::fmax(std::fmax(std::fabs(u), std::fabs(v)),
                                       std::fmax(std::fabs(x0), std::fabs(y0))) +
                             std::fmax(std::fabs(Xh_), std::fabs(Yh_));
        const double noise = 8.0 * std::numeric_limits<double>::epsilon() * scale;
        if (d <= noise * noise) {
            report.result = InvAdjustRoundingLimit;
        } else if (d >= report.firstStep) {
            report.result = InvAdjustNotContracting;
        } else {
            report.result = InvAdjustTooSlow;
        }
    }
    return false;
}

bool OvCamera::InvAdjust(OvPoint* point) const {
    if (point == nullptr) return false;
    double x = point->GetX();
    double y = point->GetY();
    if (!InvAdjust(&x, &y)) return false;
    point->SetX(x);
    point->SetY(y);
    return true;
}

bool OvCamera::InvAdjust(OvPointList* list) const {
    if (list == nullptr) return false;
    for (OvPoint* p = list->First(); p != nullptr; p = p->Next())
        InvAdjust(p);
    return true;
}

OvInvAdjustDiagnosis OvCamera::DiagnoseInvAdjust(double x, double y) const {
    OvInvAdjustDiagnosis diagnosis;
    InvAdjust(&x, &y, &diagnosis);
    return diagnosis;
}

const char* GetInvAdjustResultText(eOvInvAdjustResult result) {
    switch (result) {
        case InvAdjustConverged:
            return "converged";
        case InvAdjustNoCamera:
            return "camera id is 0";
        case InvAdjustNullArgument:
            return "null coordinate or point";
        case InvAdjustNotFinite:
            return "coordinate or camera value not finite";
        case InvAdjustNotContracting:
            return "iteration does not contract: distortion too strong at this radius";
        case InvAdjustTooSlow:
            return "converging too slowly for the pass limit";
        case InvAdjustRoundingLimit:
            return "coordinates too large for the absolute tolerance";
    }
    return "unknown result";
}

// The corrected radius of a measured radius r is r·(1 − Calcdr) =
//     r·(1 + A1·R0² + A2·R0⁴) − A1·r³ − A2·r⁵,
// whose slope, written in t = r², is the quadratic
//     g(t) = c0 − b·t − a·t²   with c0 = 1 + A1·R0² + A2·R0⁴, b = 3·A1, a = 5·A2.
// The curve is monotonic on [0, maxRadius] when g stays positive on [0, maxRadius²]; its first
// zero there is where the curve turns.
OvDistortionMonotony OvCamera::CheckMonotony(double maxRadius) const {
    OvDistortionMonotony result;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    if (!(maxRadius >= 0.0) || !AllFinite({A1_, A2_, R0_, maxRadius})) {
        result.minSlope = nan;
        result.minSlopeRadius = nan;
        return result;
    }
    const double R0sq = R0_ * R0_;
    const double c0 = 1.0 + A1_ * R0sq + A2_ * R0sq * R0sq;
    const double b = 3.0 * A1_;
    const double a = 5.0 * A2_;
    const double tMax = maxRadius * maxRadius;
    const auto slope = [&](double t) { return c0 - b * t - a * t * t; };

    // The smallest slope lies at an end of the range or, for a convex g (a < 0), at its vertex.
    result.minSlope = slope(0.0);
    result.minSlopeRadius = 0.0;
    const auto consider = [&](double t) {
        const double g = slope(t);
        if (g < result.minSlope) {
            result.minSlope = g;
            result.minSlopeRadius = std::sqrt(t);
        }
    };
    consider(tMax);
    if (a < 0.0) {
        const double vertex = -b / (2.0 * a);
        if (vertex > 0.0 && vertex < tMax) consider(vertex);
    }
    result.monotonic = result.minSlope > 0.0;
    if (result.monotonic) return result;

    // The first zero of g in [0, tMax]: g(0) ≤ 0 turns at once; otherwise the smallest positive
    // root of a·t² + b·t − c0 = 0 (computed in the cancellation-free form).
    double turn = 0.0;
    if (c0 > 0.0) {
        double root = std::numeric_limits<double>::infinity();
        if (a == 0.0) {
            if (b > 0.0) root = c0 / b;
        } else {
            const double disc = b * b + 4.0 * a * c0;
            if (disc >= 0.0) {
                const double q = -0.5 * (b + std::copysign(std::sqrt(disc), b));
                for (double t : {q / a, q != 0.0 ? -c0 / q : root}) {
                    if (t > 0.0 && t < root) root = t;
                }
            }
        }
        turn = std::sqrt(std::fmin(root, tMax));
    }
    result.turnRadius = turn;
    return result;
}

}  // namespace orvo
