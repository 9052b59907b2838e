// Ortho photos: construction, pixel size, mapping into object space, and the list.
#include "orvo/model/ortho_photo.h"

#include "../rectify/record_tokens.h"

#include <cmath>
#include <limits>

namespace orvo {

OvOrthoPhoto::OvOrthoPhoto() : OvOrthoPhoto(0U) {}

OvOrthoPhoto::OvOrthoPhoto(unsigned id) : OvPhoto(id) {
    SetPhototype(eOvPhotoDigital);
}

OvOrthoPhoto::OvOrthoPhoto(unsigned id, const String& fileName) : OvPhoto(id, fileName) {
    SetPhototype(eOvPhotoDigital);
}

OvOrthoPhoto::OvOrthoPhoto(const OvOrthoPhoto& other)
    : OvPhoto(other),
      LinkHdl(other),
      planes_(other.planes_),
      rectPixel_(other.rectPixel_),
      time_(other.time_),
      objectRegion_(other.objectRegion_),
      maxAngle_(other.maxAngle_) {}

OvOrthoPhoto::OvOrthoPhoto(OvReaderObject* reader) : OvOrthoPhoto(0U) {
    Read(reader);
}

OvOrthoPhoto& OvOrthoPhoto::operator=(const OvOrthoPhoto& other) {
    if (this == &other) return *this;
    OvPhoto::operator=(other);
    planes_ = other.planes_;
    rectPixel_ = other.rectPixel_;
    time_ = other.time_;
    objectRegion_ = other.objectRegion_;
    maxAngle_ = other.maxAngle_;
    return *this;
}

OvOrthoPhoto::~OvOrthoPhoto() = default;

double OvOrthoPhoto::GetPixelSize() const {
    const OvRegion& pixels = GetDigiRegion();
    double pixelWidth = pixels.Right() - pixels.Left();
    if (pixelWidth == 0.0 || std::isnan(pixelWidth)) pixelWidth = 1.0;
    return std::fabs((objectRegion_.Right() - objectRegion_.Left()) / pixelWidth);
}

bool OvOrthoPhoto::Transform(OvPoint* point) const {
    if (point == nullptr) return false;
    if (planes_.Count() == 1) return planes_.First()->Transform(point);
    return planes_.Transform(point);
}

const OvTiltPlaneInfo* OvOrthoPhoto::CornerPlane(const OvPoint& corner) const {
    if (const OvTiltPlaneInfo* holder = planes_.FindPlane(corner)) return holder;
    const OvTiltPlaneInfo* nearest = nullptr;
    double best = std::numeric_limits<double>::infinity();
    for (const OvTiltPlaneInfo* plane = planes_.First(); plane != nullptr; plane = plane->Next()) {
        const OvPolygon& range = plane->GetRange();
        if (range.Count() == 0) continue;
        const double dx = std::fmax(0.0, std::fmax(range.GetMin().GetX() - corner.GetX(),
                                                   corner.GetX() - range.GetMax().GetX()));
        const double dy = std::fmax(0.0, std::fmax(range.GetMin().GetY() - corner.GetY(),
                                                   corner.GetY() - range.GetMax().GetY()));
        const double distance = dx * dx + dy * dy;
        if (distance < best) {
            best = distance;
            nearest = plane;
        }
    }
    return nearest != nullptr ? nearest : planes_.First();
}

bool OvOrthoPhoto::GetImageCorners(OvPoint* a, OvPoint* b, OvPoint* c, OvPoint* d) const {
    if (a == nullptr || b == nullptr || c == nullptr || d == nullptr || planes_.IsEmpty())
        return false;
    const OvRegion& pixels = GetDigiRegion();
    const double x[4] = {pixels.Left(), pixels.Right(), pixels.Right(), pixels.Left()};
    const double y[4] = {pixels.Bottom(), pixels.Bottom(), pixels.Top(), pixels.Top()};
    OvPoint* corners[4] = {a, b, c, d};
    for (int i = 0; i < 4; ++i) {
        OvPoint corner(static_cast<unsigned>(i + 1), x[i], y[i], 0.0, 0);
        const OvTiltPlaneInfo* plane = planes_.Count() == 1 ? planes_.First() : CornerPlane(corner);
        plane->Transform(&corner);
        *corners[i] = corner;
    }
    return true;
}

OvOrthoPhotoList::~OvOrthoPhotoList() = default;

OvOrthoPhoto* OvOrthoPhotoList::AddPhoto(OvReaderObject* reader) {
    if (detail::BlockReaderOf(reader) == nullptr) return nullptr;
    return Add(new OvOrthoPhoto(reader));
}

std::int32_t OvOrthoPhotoList::AddPhotoHdl(void* readerObject) {
    AddPhoto(static_cast<OvReaderObject*>(readerObject));
    return 1;
}

}  // namespace orvo
