// The planes of ortho photos: construction from a rectified plane, mapping, lookup, records.
#include "orvo/rectify/tilt_plane_info.h"

#include <ostream>

#include "orvo/model/photo.h"
#include "orvo/rectify/rect_plane.h"
#include "orvo/rectify/tilt_trafo.h"
#include "orvo/textfile/reader.h"
#include "record_tokens.h"
#include "record_writing.h"

namespace orvo {

namespace {

OvMatrix Identity4() {
    OvMatrix m(4, 4);
    m.SetIdent();
    return m;
}

// A 3 x 3 plane transform as a 4 x 4 one that leaves z alone: lines 1 and 2 take the 3 x 3
// elements (r, 1), (r, 2), (r, 3) into the columns 1, 2 and 4. Every access is checked.
OvMatrix Embed(const OvMatrix& m) {
    OvMatrix e = Identity4();
    for (int r = 1; r <= 2; ++r) {
        e.SetElem(r, 1, m.GetElem(r, 1));
        e.SetElem(r, 2, m.GetElem(r, 2));
        e.SetElem(r, 4, m.GetElem(r, 3));
    }
    return e;
}

}  // namespace

OvTiltPlaneInfo::OvTiltPlaneInfo() : transformation_(Identity4()), range_(OvPolygonMode2D) {}

OvTiltPlaneInfo::OvTiltPlaneInfo(const OvTiltPlaneInfo& other) = default;

OvTiltPlaneInfo::OvTiltPlaneInfo(OvReaderObject* reader) : OvTiltPlaneInfo() {
    Read(reader);
}

OvTiltPlaneInfo::OvTiltPlaneInfo(const OvMatrix& m, const OvRectPlane* plane) : OvTiltPlaneInfo() {
    if (plane == nullptr) return;
    if (const OvPhoto* photo = plane->GetPhoto())
        photo_ = OvObject(photo->GetId(), photo->GetName());
    const OvTiltTrafo* trafo = plane->GetTiltTrafo();
    if (trafo != nullptr) tilt_ = OvObject(trafo->GetId(), trafo->GetName());
    range_ = plane->GetBorder();
    range_.SetMode(OvPolygonMode2D);
    range_.UpdateMinMax();

    OvMatrix placement = Embed(plane->GetPlaneMat());
    const OvMatrix pixels = Embed(m);
    placement.Invert();
    const OvMatrix object = trafo != nullptr ? trafo->GetTransMat() : Identity4();
    transformation_ = (object * placement) * pixels;
}

OvTiltPlaneInfo& OvTiltPlaneInfo::operator=(const OvTiltPlaneInfo& other) {
    if (this == &other) return *this;
    OvListnode::operator=(other);
    photo_ = other.photo_;
    tilt_ = other.tilt_;
    transformation_ = other.transformation_;
    range_ = other.range_;
    return *this;
}

OvTiltPlaneInfo::~OvTiltPlaneInfo() = default;

bool OvTiltPlaneInfo::Transform(OvPoint* point) const {
    if (point == nullptr) return false;
    transformation_.PTrans3D(point);
    return true;
}

// ---- records -------------------------------------------------------------------------------

namespace {

std::int32_t ReadObjectBlock(OvObject& target, OvReaderObject* object) {
    if (OvReader* reader = detail::BlockReaderOf(object)) {
        detail::RecordTokens tokens(*reader);
        if (!tokens.AtDataEnd()) target.Read(object);
        tokens.SkipToBlockEnd();
    }
    return 1;
}

}  // namespace

std::int32_t OvTiltPlaneInfo::ReadPhotoHdl(void* readerObject) {
    return ReadObjectBlock(photo_, static_cast<OvReaderObject*>(readerObject));
}

std::int32_t OvTiltPlaneInfo::ReadTiltHdl(void* readerObject) {
    return ReadObjectBlock(tilt_, static_cast<OvReaderObject*>(readerObject));
}

std::int32_t OvTiltPlaneInfo::ReadTransformationHdl(void* readerObject) {
    auto* object = static_cast<OvReaderObject*>(readerObject);
    if (OvReader* reader = detail::BlockReaderOf(object)) {
        detail::RecordTokens tokens(*reader);
        if (!tokens.AtDataEnd()) {
            OvMatrix read;
            read.Read(object);
            if (read.GetLines() == 4 && read.GetColumns() == 4) {
                transformation_ = read;
            } else {
                tokens.Report("TRANSFORMATION: the matrix must be 4 x 4, the block is not taken");
            }
        }
        tokens.SkipToBlockEnd();
    }
    return 1;
}

std::int32_t OvTiltPlaneInfo::ReadRangeHdl(void* readerObject) {
    return detail::ReadInBlock(static_cast<OvReaderObject*>(readerObject), range_);
}

int OvTiltPlaneInfo::Read(OvReaderObject* object) {
    if (detail::BlockReaderOf(object) == nullptr) return 1;
    object->RegisterObject(OvReaderObject("PHOTOID", Link(this, &OvTiltPlaneInfo::ReadPhotoHdl)));
    object->RegisterObject(OvReaderObject("TILTID", Link(this, &OvTiltPlaneInfo::ReadTiltHdl)));
    object->RegisterObject(
        OvReaderObject("TRANSFORMATION", Link(this, &OvTiltPlaneInfo::ReadTransformationHdl)));
    object->RegisterObject(OvReaderObject("TILTRANGE", Link(this, &OvTiltPlaneInfo::ReadRangeHdl)));
    detail::ProcessBlock(object);
    return 1;
}

std::ostream& OvTiltPlaneInfo::Write(std::ostream& out) const {
    detail::InlineObject(out, "PHOTOID", photo_);
    detail::InlineObject(out, "TILTID", tilt_);
    detail::BlockLines(out, "TRANSFORMATION", transformation_);
    detail::BlockLines(out, "TILTRANGE", range_);
    return out;
}

// ---- the list ------------------------------------------------------------------------------

OvTiltPlaneInfoList::~OvTiltPlaneInfoList() = default;

OvTiltPlaneInfo* OvTiltPlaneInfoList::FindPlane(const OvPoint& point) const {
    for (OvTiltPlaneInfo* plane = First(); plane != nullptr; plane = plane->Next()) {
        if (plane->Overlap(point)) return plane;
    }
    return nullptr;
}

OvTiltPlaneInfo* OvTiltPlaneInfoList::FindPlane(std::uint32_t photoId, std::uint32_t tiltId) const {
    for (OvTiltPlaneInfo* plane = First(); plane != nullptr; plane = plane->Next()) {
        if (plane->GetPhotoId() == photoId && plane->GetTiltId() == tiltId) return plane;
    }
    return nullptr;
}

bool OvTiltPlaneInfoList::Transform(OvPoint* point) const {
    if (point == nullptr) return false;
    const OvTiltPlaneInfo* plane = FindPlane(*point);
    return plane != nullptr && plane->Transform(point);
}

OvTiltPlaneInfo* OvTiltPlaneInfoList::AddPlane(OvReaderObject* reader) {
    if (detail::BlockReaderOf(reader) == nullptr) return nullptr;
    return Add(new OvTiltPlaneInfo(reader));
}

std::int32_t OvTiltPlaneInfoList::AddPlaneHdl(void* readerObject) {
    AddPlane(static_cast<OvReaderObject*>(readerObject));
    return 1;
}

}  // namespace orvo
