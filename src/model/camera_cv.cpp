// Converting cameras to and from the computer-vision pinhole form by least-squares fits of the
// radial curve, with the two models compared on a grid of pixels over the sensor.
#include "orvo/model/camera_cv.h"

#include <cmath>
#include <initializer_list>
#include <limits>

#include "orvo/numerics/matrix.h"

namespace orvo {

namespace {

// Samples along the radius for the fits, and the side of the comparison grid.
constexpr int kFitSamples = 400;
constexpr int kGridSide = 17;

bool AllFinite(std::initializer_list<double> values) {
    for (double v : values) {
        if (!std::isfinite(v)) return false;
    }
    return true;
}

bool IsValidSensor(const OvSensorGeometry& sensor) {
    return std::isfinite(sensor.pixelSize) && sensor.pixelSize > 0.0 && sensor.width > 0 &&
           sensor.height > 0;
}

double CentreU(const OvSensorGeometry& sensor) {
    return (sensor.width - 1) / 2.0;
}
double CentreV(const OvSensorGeometry& sensor) {
    return (sensor.height - 1) / 2.0;
}

// The largest distance (mm) from a point of the image to the centres of the corner pixels.
double RadiusToCorners(const OvSensorGeometry& sensor, double x, double y) {
    const double halfX = CentreU(sensor) * sensor.pixelSize;
    const double halfY = CentreV(sensor) * sensor.pixelSize;
    double radius = 0.0;
    for (double cornerX : {-halfX, halfX}) {
        for (double cornerY : {-halfY, halfY})
            radius = std::fmax(radius, std::hypot(cornerX - x, cornerY - y));
    }
    return radius;
}

// Least squares for three unknowns: rows of (a1, a2, a3 | l) accumulated into the normal
// equations, each column scaled to a largest value of 1 so that the solver's fixed pivot
// threshold does not depend on the units.
class ThreeParameterFit {
public:
    void Add(double a1, double a2, double a3, double l) { rows_[count_++] = {a1, a2, a3, l}; }

    bool Solve(double* x) {
        double scale[3] = {0.0, 0.0, 0.0};
        for (int r = 0; r < count_; ++r) {
            for (int j = 0; j < 3; ++j)
                scale[j] = std::fmax(scale[j], std::fabs(rows_[r][j]));
        }
        for (double s : scale) {
            if (!(s > 0.0) || !std::isfinite(s)) return false;
        }
        OvMatrix normal(3, 3);
        OvMatrix rhs(3, 1);
        for (int r = 0; r < count_; ++r) {
            double a[3];
            for (int j = 0; j < 3; ++j)
                a[j] = rows_[r][j] / scale[j];
            // Lines are 1-based; operator[] gives a line whose elements count from 0.
            for (int i = 0; i < 3; ++i) {
                for (int j = 0; j < 3; ++j)
                    normal[i + 1][j] += a[i] * a[j];
                rhs[i + 1][0] += a[i] * rows_[r][3];
            }
        }
        if (GaussLoeserRelMax(normal, rhs) != 0) return false;
        for (int j = 0; j < 3; ++j)
            x[j] = rhs.GetElem(j + 1, 1) / scale[j];
        return AllFinite({x[0], x[1], x[2]});
    }

private:
    struct Row {
        double values[4];
        double operator[](int i) const { return values[i]; }
    };
    Row rows_[kFitSamples];
    int count_ = 0;
};

// Compares the two models over the sensor: each grid pixel is taken as measured, corrected by
// the camera, turned into a ray and projected again by the computer-vision model.
OvCvFit Compare(const OvCamera& camera, const OvCvIntrinsics& cv, const OvSensorGeometry& sensor,
                double maxRadius) {
    OvCamera active(camera);
    active.SetId(1);  // Adjust refuses a camera without id; the id plays no part here
    OvCvFit fit;
    fit.maxRadius = maxRadius;
    double sum = 0.0;
    for (int i = 0; i < kGridSide; ++i) {
        for (int j = 0; j < kGridSide; ++j) {
            const double u = (sensor.width - 1) * static_cast<double>(i) / (kGridSide - 1);
            const double v = (sensor.height - 1) * static_cast<double>(j) / (kGridSide - 1);
            double x = 0.0, y = 0.0;
            OvPixelToImage(sensor, u, v, &x, &y);
            active.Adjust(&x, &y);
            double u2 = 0.0, v2 = 0.0;
            OvCvProject(cv, x / camera.GetC(), -y / camera.GetC(), &u2, &v2);
            const double residual = std::hypot(u2 - u, v2 - v);
            sum += residual * residual;
            fit.maxResidual = std::fmax(fit.maxResidual, residual);
        }
    }
    fit.rmsResidual = std::sqrt(sum / (kGridSide * kGridSide));
    return fit;
}

// The smallest t > 0 where 1 + b·t + a·t² reaches 0 (infinity when it never does).
double FirstSlopeZero(double b, double a) {
    const double inf = std::numeric_limits<double>::infinity();
    if (a == 0.0) return b < 0.0 ? -1.0 / b : inf;
    const double disc = b * b - 4.0 * a;
    if (disc < 0.0) return inf;
    const double q = -0.5 * (b + std::copysign(std::sqrt(disc), b));
    double root = inf;
    for (double t : {q / a, q != 0.0 ? 1.0 / q : inf}) {
        if (t > 0.0 && t < root) root = t;
    }
    return root;
}

}  // namespace

bool OvPixelToImage(const OvSensorGeometry& sensor, double u, double v, double* x, double* y) {
    if (!IsValidSensor(sensor) || x == nullptr || y == nullptr) return false;
    *x = (u - CentreU(sensor)) * sensor.pixelSize;
    *y = (CentreV(sensor) - v) * sensor.pixelSize;
    return true;
}

bool OvImageToPixel(const OvSensorGeometry& sensor, double x, double y, double* u, double* v) {
    if (!IsValidSensor(sensor) || u == nullptr || v == nullptr) return false;
    *u = CentreU(sensor) + x / sensor.pixelSize;
    *v = CentreV(sensor) - y / sensor.pixelSize;
    return true;
}

bool OvCvProject(const OvCvIntrinsics& cv, double xn, double yn, double* u, double* v) {
    if (u == nullptr || v == nullptr) return false;
    const double r2 = xn * xn + yn * yn;
    const double q = 1.0 + cv.k1 * r2 + cv.k2 * r2 * r2;
    *u = cv.fx * q * xn + cv.cx;
    *v = cv.fy * q * yn + cv.cy;
    return true;
}

bool OvCameraToCv(const OvCamera& camera, const OvSensorGeometry& sensor, OvCvIntrinsics* cv,
                  OvCvFit* fit) {
    const double C = camera.GetC();
    if (cv == nullptr || !IsValidSensor(sensor) || !(C > 0.0) ||
        !AllFinite(
            {C, camera.GetXh(), camera.GetYh(), camera.GetA1(), camera.GetA2(), camera.GetR0()})) {
        return false;
    }
    const double maxRadius = RadiusToCorners(sensor, camera.GetXh(), camera.GetYh());
    if (!camera.CheckMonotony(maxRadius).monotonic) return false;

    // Measured radius r (mm) against the ray's normalised radius p = r·(1 − Calcdr(r)) / C:
    // r = f·p + f·k1·p³ + f·k2·p⁵, with f in mm.
    ThreeParameterFit lsq;
    for (int i = 1; i <= kFitSamples; ++i) {
        const double r = maxRadius * i / kFitSamples;
        const double p = r * (1.0 - camera.Calcdr(r, 0.0)) / C;
        lsq.Add(p, p * p * p, p * p * p * p * p, r);
    }
    double x[3];
    if (!lsq.Solve(x) || !(x[0] > 0.0)) return false;

    OvCvIntrinsics result;
    result.fx = result.fy = x[0] / sensor.pixelSize;
    result.k1 = x[1] / x[0];
    result.k2 = x[2] / x[0];
    OvImageToPixel(sensor, camera.GetXh(), camera.GetYh(), &result.cx, &result.cy);
    if (fit != nullptr) *fit = Compare(camera, result, sensor, maxRadius);
    *cv = result;
    return true;
}

bool OvCvToCamera(const OvCvIntrinsics& cv, const OvSensorGeometry& sensor, OvCamera* camera,
                  OvCvFit* fit) {
    if (camera == nullptr || !IsValidSensor(sensor) || !(cv.fx > 0.0) || !(cv.fy > 0.0) ||
        !AllFinite({cv.fx, cv.fy, cv.cx, cv.cy, cv.k1, cv.k2, camera->GetR0()})) {
        return false;
    }
    const double f = 0.5 * (cv.fx + cv.fy) * sensor.pixelSize;  // mm
    double Xh = 0.0, Yh = 0.0;
    OvPixelToImage(sensor, cv.cx, cv.cy, &Xh, &Yh);
    const double maxRadius = RadiusToCorners(sensor, Xh, Yh);

    // Distorted radius r(p) = f·p·(1 + k1·p² + k2·p⁴) of a ray's normalised radius p. The ray
    // that reaches the farthest corner is found by bisection, on the part of the curve that
    // still rises; a curve that turns back before the corners cannot be converted.
    const auto radius = [&](double p) {
        return f * p * (1.0 + cv.k1 * p * p + cv.k2 * p * p * p * p);
    };
    double high = maxRadius / f;
    const double turn = std::sqrt(FirstSlopeZero(3.0 * cv.k1, 5.0 * cv.k2));
    if (std::isfinite(turn)) {
        if (radius(turn) < maxRadius) return false;
        high = turn;
    } else {
        while (radius(high) < maxRadius) {
            high *= 2.0;
            if (!std::isfinite(high)) return false;
        }
    }
    double low = 0.0;
    for (int i = 0; i < 200 && low < high; ++i) {
        const double mid = 0.5 * (low + high);
        if (radius(mid) < maxRadius) {
            low = mid;
        } else {
            high = mid;
        }
    }
    const double pMax = high;

    // Corrected radius C·p = r·(1 − A1·(r² − R0²) − A2·(r⁴ − R0⁴)), linear in C, A1, A2.
    const double R0sq = camera->GetR0() * camera->GetR0();
    ThreeParameterFit lsq;
    for (int i = 1; i <= kFitSamples; ++i) {
        const double p = pMax * i / kFitSamples;
        const double r = radius(p);
        const double r2 = r * r;
        lsq.Add(p, r * (r2 - R0sq), r * (r2 * r2 - R0sq * R0sq), r);
    }
    double x[3];
    if (!lsq.Solve(x) || !(x[0] > 0.0)) return false;

    OvCamera converted(*camera);
    converted.SetC(x[0]);
    converted.SetXh(Xh);
    converted.SetYh(Yh);
    converted.SetA1(x[1]);
    converted.SetA2(x[2]);
    if (fit != nullptr) *fit = Compare(converted, cv, sensor, maxRadius);
    camera->Set(converted);
    return true;
}

}  // namespace orvo
