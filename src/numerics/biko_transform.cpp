// The image-coordinate converter of a photo: one combined matrix plus the polynomial and camera
// steps, chosen by the conversion mode.
#include "orvo/numerics/biko_transform.h"

#include <cmath>

#include "orvo/model/camera.h"
#include "orvo/model/photo.h"
#include "orvo/model/point.h"

namespace orvo {

namespace {

OvMatrix MatrixOf(const OvTrafo2d& trafo) {
    OvMatrix m(3, 3);
    trafo.BuildMatrix(&m);
    return m;
}

OvMatrix Identity() {
    OvMatrix m(3, 3);
    m.SetIdent();
    return m;
}

// Inverts without looking at the result code: a singular stage leaves whatever the solver
// produced, as the chain always did.
OvMatrix Inverse(OvMatrix m) {
    m.Invert();
    return m;
}

// The combined matrix of a mode; `main` is empty (unused) when the main stage is a polynomial.
OvMatrix CombinedMatrix(eConvertBikoMode mode, bool poly, const OvMatrix& pre,
                        const OvMatrix& main) {
    switch (mode) {
        case eConvertMeasureToPre:
            return pre;
        case eConvertMeasureToBiko:
        case eConvertMeasureToCorrectedBiko:
            return poly ? pre : main * pre;
        case eConvertPreToBiko:
            return poly ? Identity() : main;
        case eConvertBikoToMeasure:
        case eConvertCorrectedBikoToMeasure:
        case eConvertBikoToMeasureMatrixOnly:
            return Inverse(poly ? pre : main * pre);
        case eConvertPreToMeasure:
            return Inverse(pre);
        case eConvertBikoToPre:
            return poly ? Identity() : Inverse(main);
        default:
            return Identity();
    }
}

}  // namespace

OvBikoTransform::OvBikoTransform(const OvPhoto* photo, eConvertBikoMode mode)
    : photo_(photo), transformation_(3, 3), mode_(mode) {
    transformation_.SetIdent();
    const OvReseauTrafo none;
    const OvReseauTrafo& preTrafo = photo != nullptr ? photo->GetReseauPreTrafo() : none;
    const OvReseauTrafo& mainTrafo = photo != nullptr ? photo->GetReseauMainTrafo() : none;

    // The pre-reseau matrix is always built, also where the mode does not use it.
    const OvMatrix pre = MatrixOf(preTrafo);
    OvMatrix main(3, 3);
    if (mainTrafo.GetType() == eOvTrafo2DPolynomial) {
        poly_ = true;
        mainPoly_ = mainTrafo;
        inversePoly_ = photo->GetReseauPolyInv();
    } else {
        main = MatrixOf(mainTrafo);
    }
    transformation_ = CombinedMatrix(mode, poly_, pre, main);
}

OvBikoTransform::OvBikoTransform(const OvBikoTransform& other) = default;

OvBikoTransform& OvBikoTransform::operator=(const OvBikoTransform& other) {
    if (this != &other) {
        photo_ = other.photo_;
        transformation_ = other.transformation_;
        poly_ = other.poly_;
        mainPoly_ = other.mainPoly_;
        inversePoly_ = other.inversePoly_;
        mode_ = other.mode_;
    }
    return *this;
}

OvBikoTransform::~OvBikoTransform() = default;

bool OvBikoTransform::ApplyMatrix(double* x, double* y) const {
    // OvMatrix::PTrans2D term for term, read straight from the stored elements: the converter
    // runs once per point of whole point lists, and the matrix is 3 x 3 for good (assignment
    // never reshapes it), so the checked element access buys nothing here.
    const double* m = transformation_.Data();
    const double px = *x;
    const double py = *y;
    const double w = m[6] * px + m[7] * py + m[8];
    if (std::fabs(w) < kOvSingularThreshold) return false;  // a point at infinity: left as is
    *x = (m[0] * px + m[1] * py + m[2]) / w;
    *y = (m[3] * px + m[4] * py + m[5]) / w;
    return true;
}

bool OvBikoTransform::ApplyAdjust(double* x, double* y) const {
    return photo_ != nullptr && photo_->GetCamera().Adjust(x, y);
}

bool OvBikoTransform::ApplyInvAdjust(double* x, double* y) const {
    return photo_ != nullptr && photo_->GetCamera().InvAdjust(x, y);
}

bool OvBikoTransform::Transform(double* x, double* y, double* /*z*/) const {
    if (x == nullptr || y == nullptr) return false;
    bool ok = true;
    switch (mode_) {
        case eConvertMeasureToPre:
        case eConvertPreToMeasure:
            ok = ApplyMatrix(x, y);
            break;
        case eConvertMeasureToBiko:
            ok = ApplyMatrix(x, y);
            if (poly_) ok = mainPoly_.Transform(x, y) && ok;
            break;
        case eConvertPreToBiko:
            ok = poly_ ? mainPoly_.Transform(x, y) : ApplyMatrix(x, y);
            break;
        case eConvertMeasureToCorrectedBiko:
            ok = ApplyMatrix(x, y);
            ok = ApplyAdjust(x, y) && ok;
            break;
        case eConvertBikoToCorrectedBiko:
            ok = ApplyAdjust(x, y);
            break;
        case eConvertBikoToMeasure:
            if (poly_) ok = inversePoly_.Transform(x, y);
            ok = ApplyMatrix(x, y) && ok;
            break;
        case eConvertBikoToPre:
            ok = poly_ ? inversePoly_.Transform(x, y) : ApplyMatrix(x, y);
            break;
        case eConvertCorrectedBikoToBiko:
            ok = ApplyInvAdjust(x, y);
            break;
        case eConvertCorrectedBikoToMeasure:
            ok = ApplyInvAdjust(x, y);
            if (poly_) ok = inversePoly_.Transform(x, y) && ok;
            ok = ApplyMatrix(x, y) && ok;
            break;
        default:
            // 11, 12, 13 and every other value convert nothing.
            break;
    }
    return ok;
}

bool OvBikoTransform::Transform(OvPoint* point) const {
    if (point == nullptr) return false;
    double x = point->GetX();
    double y = point->GetY();
    double z = point->GetZ();
    const bool ok = Transform(&x, &y, &z);
    point->SetX(x);
    point->SetY(y);
    return ok;
}

}  // namespace orvo
