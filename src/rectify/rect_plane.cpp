// The rectified plane of one tilt transform on one photo.
#include "orvo/rectify/rect_plane.h"

#include "orvo/model/photo.h"
#include "orvo/rectify/tilt_biko_points.h"
#include "orvo/rectify/tilt_trafo.h"

namespace orvo {

namespace {

OvMatrix Identity3() {
    OvMatrix m(3, 3);
    m.SetIdent();
    return m;
}

}  // namespace

OvRectPlane::OvRectPlane(OvPhoto* photo, OvTiltTrafo* trafo)
    : border_(OvPolygonMode2D),
      range_(OvPolygonMode2D),
      photo_(photo),
      trafo_(trafo),
      image_(photo, eConvertBikoToMeasure),
      imageToPixel_(image_.GetTransformation()),
      planeMat_(Identity3()),
      borderMat_(Identity3()),
      work_(3) {
    int singular = 0;
    imageToPixel_.Invert(&singular);
    if (singular != 0) imageToPixel_ = Identity3();
    CalcTiltPolygonBiko();
}

OvRectPlane::OvRectPlane(const OvRectPlane& other) = default;

OvRectPlane& OvRectPlane::operator=(const OvRectPlane& other) {
    if (this == &other) return *this;
    OvListnode::operator=(other);
    border_ = other.border_;
    range_ = other.range_;
    photo_ = other.photo_;
    trafo_ = other.trafo_;
    group_ = other.group_;
    pixelRect_ = other.pixelRect_;
    image_ = other.image_;
    imageToPixel_ = other.imageToPixel_;
    planeMat_ = other.planeMat_;
    borderMat_ = other.borderMat_;
    work_ = other.work_;
    return *this;
}

OvRectPlane::~OvRectPlane() = default;

std::uint32_t OvRectPlane::GetPhotoId() const {
    return photo_ != nullptr ? photo_->GetId() : 0;
}

std::uint32_t OvRectPlane::GetTiltId() const {
    return trafo_ != nullptr ? trafo_->GetId() : 0;
}

const OvMatrix& OvRectPlane::GetTiltMat() const {
    static const OvMatrix kNone = Identity3();
    return trafo_ != nullptr ? trafo_->GetTiltMat() : kNone;
}

const OvPolygon& OvRectPlane::GetTiltRangeBiko() const {
    static const OvPolygon kNone(OvPolygonMode2D);
    return trafo_ != nullptr ? trafo_->GetRegion() : kNone;
}

void OvRectPlane::CalcTiltPolygonBiko() {
    OvGetTiltBikoPoints(range_.GetPointList(), photo_, trafo_);
    range_.UpdateMinMax();
    OvPoint low(range_.GetMin());
    OvPoint high(range_.GetMax());
    if (photo_ != nullptr) {
        photo_->ConvertBiko(&low, eConvertBikoToMeasure);
        photo_->ConvertBiko(&high, eConvertBikoToMeasure);
    }
    // The constructor from four values sorts the corners.
    pixelRect_ = OvRegion(0.0, 0.0, high.GetX() - low.GetX(), high.GetY() - low.GetY());
}

void OvRectPlane::CalcTiltBorder() {
    const bool undistort = trafo_ != nullptr && trafo_->CompensateDistortion();
    for (const OvPoint* p = range_.First(); p != nullptr; p = p->Next()) {
        OvPoint point(*p);
        if (undistort) trafo_->GetDistortCameraParam().Adjust(&point);
        borderMat_.PTrans2D(&point);
        border_.AddPoint(point);
    }
}

}  // namespace orvo
