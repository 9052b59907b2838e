// The tilt transform's identity, state bits and valid region, and the photo's list of them.
#include "orvo/rectify/tilt_trafo.h"

#include <ostream>

#include "orvo/model/point.h"
#include "orvo/textfile/writer.h"

namespace orvo {

namespace {

void SetBit(OvFlag& flag, std::uint32_t bit, bool on) {
    if (on) {
        flag.SetFlag(bit);
    } else {
        flag.ClearFlag(bit);
    }
}

const OvTiltTrafo* AsTilt(const OvObject* object) {
    return static_cast<const OvTiltTrafo*>(object);
}

}  // namespace

OvTiltTrafo::OvTiltTrafo() : region_(OvPolygonMode2D) {}

OvTiltTrafo::OvTiltTrafo(std::uint32_t id, const String& name)
    : OvListnode(id, name), region_(OvPolygonMode2D) {}

OvTiltTrafo::OvTiltTrafo(const OvTiltTrafo& other) = default;

OvTiltTrafo& OvTiltTrafo::operator=(const OvTiltTrafo& other) {
    if (this != &other) {
        OvListnode::operator=(other);
        flag_ = other.flag_;
        region_ = other.region_;
    }
    return *this;
}

OvTiltTrafo::~OvTiltTrafo() = default;

void OvTiltTrafo::SetActive(bool on) {
    SetBit(flag_, eOvTiltFlagActive, on);
}

void OvTiltTrafo::SetRegionActive(bool on) {
    SetBit(flag_, eOvTiltFlagRegionActive, on);
}

void OvTiltTrafo::SetDistortCameraFlag(bool on) {
    SetBit(flag_, eOvTiltFlagDistortCamera, on);
}

bool OvTiltTrafo::Overlap(const OvPoint* point) const {
    return region_.Overlap(point);
}

std::ostream& OvTiltTrafo::Write(std::ostream& out) const {
    out << s12 << "TILTID" << w4 << "{";
    OvObject::Write(out);
    out << "}" << Ovendl;
    out << s12 << "ACTIV" << w4 << (IsActive() ? 1 : 0) << Ovendl;
    out << s12 << "KAMERA" << w4 << (GetDistortCameraFlag() ? 1 : 0) << Ovendl;
    out << s12 << "REGIONACTIV" << w4 << (IsRegionActive() ? 1 : 0) << Ovendl;
    out << s12 << "VALIDREGION" << Ovendl << OvBeginBlockNL;
    region_.Write(out);
    out << OvEndBlockNL << Ovendl;
    return out;
}

OvTiltTrafoList::~OvTiltTrafoList() = default;

unsigned IsTiltActive(const OvObject* trafo) {
    return trafo != nullptr && AsTilt(trafo)->IsActive() ? 1U : 0U;
}

unsigned HasTiltRegion(const OvObject* trafo) {
    return trafo != nullptr && AsTilt(trafo)->HasRegion() ? 1U : 0U;
}

}  // namespace orvo
