// The camera record: construction, values and the list walk.
#include "orvo/model/camera.h"

#include <cmath>
#include <cstring>

namespace orvo {

namespace {

bool HasAnyFlag(const OvCamera* camera, int mask) {
    return camera->GetFlag().IsFlagSet(static_cast<std::uint32_t>(mask)) != 0;
}

void CopyInfo(const String& text, char* info, std::size_t infoSize) {
    if (info == nullptr || infoSize == 0) return;
    std::size_t length = static_cast<std::size_t>(text.length());
    if (length > infoSize - 1) length = infoSize - 1;
    std::memcpy(info, text.chars(), length);
    info[length] = '\0';
}

}  // namespace

OvCamera::OvCamera() = default;

OvCamera::OvCamera(unsigned id, double C, double Xh, double Yh, double A1, double A2, double R0,
                   const char* info) {
    Set(id, C, Xh, Yh, A1, A2, R0, info);
}

OvCamera::OvCamera(const OvCamera& other) = default;

OvCamera::OvCamera(OvReaderObject* reader) {
    Read(reader);
}

OvCamera& OvCamera::operator=(const OvCamera& other) {
    if (this != &other) {
        Set(other);
        flag_ = other.flag_;
    }
    return *this;
}

OvCamera::~OvCamera() = default;

void OvCamera::Set(unsigned newId, double C, double Xh, double Yh, double A1, double A2, double R0,
                   const char* info) {
    SetId(newId);
    SetName(info != nullptr ? String(info) : String());
    C_ = C;
    Xh_ = Xh;
    Yh_ = Yh;
    A1_ = A1;
    A2_ = A2;
    R0_ = R0;
}

void OvCamera::Set(const OvCamera& other) {
    SetId(other.GetId());
    SetName(other.GetName());
    C_ = other.C_;
    Xh_ = other.Xh_;
    Yh_ = other.Yh_;
    A1_ = other.A1_;
    A2_ = other.A2_;
    R0_ = other.R0_;
}

void OvCamera::Get(unsigned& outId, double& C, double& Xh, double& Yh, double& A1, double& A2,
                   double& R0, char* info) const {
    // A String holds at most 65535 characters, so this is the most the copy can need.
    Get(outId, C, Xh, Yh, A1, A2, R0, info, static_cast<std::size_t>(GetInfo().length()) + 1);
}

void OvCamera::Get(unsigned& outId, double& C, double& Xh, double& Yh, double& A1, double& A2,
                   double& R0, char* info, std::size_t infoSize) const {
    outId = GetId();
    C = C_;
    Xh = Xh_;
    Yh = Yh_;
    A1 = A1_;
    A2 = A2_;
    R0 = R0_;
    CopyInfo(GetInfo(), info, infoSize);
}

bool OvCamera::IsValid() const {
    return GetId() != 0 && C_ != 0.0 && !std::isnan(C_);
}

OvCamera* OvCamera::Next() {
    return static_cast<OvCamera*>(GetNext());
}

OvCamera* OvCamera::Previous() {
    return static_cast<OvCamera*>(GetPrev());
}

const OvCamera* OvCamera::Next() const {
    return static_cast<const OvCamera*>(GetNext());
}

const OvCamera* OvCamera::Previous() const {
    return static_cast<const OvCamera*>(GetPrev());
}

OvCamera* OvCamera::First(int mask) {
    for (OvCamera* c = this; c != nullptr; c = c->Next()) {
        if (HasAnyFlag(c, mask)) return c;
    }
    return nullptr;
}

OvCamera* OvCamera::Next(int mask) {
    OvCamera* next = Next();
    return next != nullptr ? next->First(mask) : nullptr;
}

OvCamera* OvCamera::Previous(int mask) {
    for (OvCamera* c = Previous(); c != nullptr; c = c->Previous()) {
        if (HasAnyFlag(c, mask)) return c;
    }
    return nullptr;
}

}  // namespace orvo
