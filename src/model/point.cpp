// The point record: construction, control-point code, comparison, arithmetic, list walk and the
// state predicates.
#include "orvo/model/point.h"

#include <cmath>
#include <cstdio>
#include <cstring>

#include "orvo/numerics/vector.h"

namespace orvo {

namespace {

// Index = control flags & 7.
constexpr const char* kControlCode123[8] = {"  0", "  1", "  2", " 12", "  3", " 13", " 23", "123"};
constexpr const char* kControlCodeXYZ[8] = {" N ", "X  ", " Y ", "XY ", "  Z", "X Z", " YZ", "XYZ"};

// The predicates receive the record through its object part; they are only ever given points.
unsigned PointFlagBits(const OvObject* object, std::uint32_t bits) {
    if (object == nullptr) return 0;
    return static_cast<const OvPoint*>(object)->GetFlag().IsFlagSet(bits);
}

bool HasAnyFlag(const OvPoint* point, int mask) {
    return point->GetFlag().IsFlagSet(static_cast<std::uint32_t>(mask)) != 0;
}

}  // namespace

OvPoint::OvPoint(unsigned id, double x, double y, double z, short controlFlags)
    : OvListnode(id), controlFlags_(controlFlags), x_(x), y_(y), z_(z) {}

void OvPoint::init() {
    photoId_ = 0;
    cameraId_ = 0;
    controlFlags_ = 0;
    user1_ = 0;
    user2_ = 0;
    x_ = y_ = z_ = 0.0;
    for (int i = 0; i < 3; ++i) {
        d_[i] = 0.0;
        r_[i] = 0.0;
    }
}

int OvPoint::SetAsControlFlag(const char* text) {
    controlFlags_ = 0;
    if (text == nullptr) return 0;
    int flags = 0;
    if (std::strpbrk(text, "1Xx") != nullptr) flags |= eOvControlX;
    if (std::strpbrk(text, "2Yy") != nullptr) flags |= eOvControlY;
    if (std::strpbrk(text, "3Zz") != nullptr) flags |= eOvControlZ;
    controlFlags_ = static_cast<std::int16_t>(flags);
    return flags;
}

int OvPoint::SetAsControlFlag(int code) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%d", code);
    int flags = 0;
    if (std::strchr(digits, '1') != nullptr) flags |= eOvControlX;
    if (std::strchr(digits, '2') != nullptr) flags |= eOvControlY;
    if (std::strchr(digits, '3') != nullptr) flags |= eOvControlZ;
    controlFlags_ = static_cast<std::int16_t>(flags);
    return flags;
}

const char* OvPoint::GetControlCodeAs123(int code) {
    return kControlCode123[code & 7];
}

const char* OvPoint::GetControlCodeAsXYZ(int code) {
    return kControlCodeXYZ[code & 7];
}

int OvPoint::Compare(const OvListnode* other) const {
    // Unsigned 32-bit arithmetic wraps like the 32-bit registers the ordering was defined on;
    // the sum is then read as a signed 32-bit value.
    std::uint32_t otherPhoto = 0;
    std::uint32_t otherId = 0;
    if (other != nullptr) {
        const auto* point = static_cast<const OvPoint*>(other);
        otherPhoto = point->photoId_;
        otherId = point->GetId();
    }
    const std::uint32_t sum = (photoId_ - otherPhoto) + (GetId() - otherId);
    return static_cast<std::int32_t>(sum);
}

bool OvPoint::operator==(const OvPoint& other) const {
    return x_ == other.x_ && y_ == other.y_ && z_ == other.z_;
}

double OvPoint::Distance(const OvPoint& other) const {
    const double dx = x_ - other.x_;
    const double dy = y_ - other.y_;
    const double dz = z_ - other.z_;
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}

OvPoint OvPoint::operator+(const OvPoint& other) const {
    OvPoint result(*this);
    result.x_ += other.x_;
    result.y_ += other.y_;
    result.z_ += other.z_;
    for (int i = 0; i < 3; ++i)
        result.d_[i] += other.d_[i];
    return result;
}

OvPoint OvPoint::operator-(const OvPoint& other) const {
    OvPoint result(*this);
    result.x_ -= other.x_;
    result.y_ -= other.y_;
    result.z_ -= other.z_;
    for (int i = 0; i < 3; ++i)
        result.d_[i] -= other.d_[i];
    return result;
}

OvPoint OvPoint::operator%(const OvPoint& other) const {
    OvPoint result(*this);
    result.x_ = 0.5 * (x_ + other.x_);
    result.y_ = 0.5 * (y_ + other.y_);
    result.z_ = 0.5 * (z_ + other.z_);
    for (int i = 0; i < 3; ++i)
        result.d_[i] = 0.5 * (d_[i] + other.d_[i]);
    return result;
}

OvPoint OvPoint::operator*(double factor) const {
    OvPoint result(*this);
    MultiplyOvPoint(&result, factor);
    return result;
}

OvPoint OvPoint::operator/(double factor) const {
    OvPoint result(*this);
    MultiplyOvPoint(&result, 1.0 / factor);
    return result;
}

OvVector OvPoint::GetAsVector() const {
    OvVector v(3);
    v[1] = x_;
    v[2] = y_;
    v[3] = z_;
    return v;
}

OvPoint* OvPoint::First(int mask) {
    for (OvPoint* p = this; p != nullptr; p = p->Next()) {
        if (HasAnyFlag(p, mask)) return p;
    }
    return nullptr;
}

OvPoint* OvPoint::Next(int mask) {
    OvPoint* next = Next();
    return next != nullptr ? next->First(mask) : nullptr;
}

OvPoint* OvPoint::Previous(int mask) {
    for (OvPoint* p = Previous(); p != nullptr; p = p->Previous()) {
        if (HasAnyFlag(p, mask)) return p;
    }
    return nullptr;
}

void MultiplyOvPoint(OvPoint* point, double factor) {
    if (point == nullptr) return;
    point->Set(point->GetX() * factor, point->GetY() * factor, point->GetZ() * factor);
}

unsigned IsPointFlagGuiSelect(const OvObject* point) {
    return PointFlagBits(point, eOvPointFlagGuiSelect);
}
unsigned IsPointFlagGuiCheckActive(const OvObject* point) {
    return PointFlagBits(point, eOvPointFlagGuiCheckActive);
}
unsigned IsPointGuiCheckAccept(const OvObject* point) {
    return PointFlagBits(point, eOvPointFlagGuiCheckAccept);
}
unsigned IsPointGuiCheckNotAccept(const OvObject* point) {
    return PointFlagBits(point, eOvPointFlagGuiCheckNotAccept);
}
unsigned IsPointGuiCheckMediumAccept(const OvObject* point) {
    return PointFlagBits(point, eOvPointFlagGuiCheckMediumAccept);
}
unsigned IsPointTrafo2DUsed(const OvObject* point) {
    return PointFlagBits(point, eOvPointFlagTrafo2DUsed);
}
unsigned IsPointTrafo3DUsed(const OvObject* point) {
    return PointFlagBits(point, eOvPointFlagTrafo3DUsed);
}
unsigned IsPointAbsor(const OvObject* point) {
    return PointFlagBits(point, eOvPointFlagAbsor);
}
unsigned IsPointRelorUsed(const OvObject* point) {
    return PointFlagBits(point, eOvPointFlagRelorUsed);
}
unsigned IsPointEinbor(const OvObject* point) {
    return PointFlagBits(point, eOvPointFlagEinbor);
}

}  // namespace orvo
