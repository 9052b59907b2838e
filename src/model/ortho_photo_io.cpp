// Reading and writing ortho photo records.
#include <ostream>

#include "../rectify/record_tokens.h"
#include "../rectify/record_writing.h"
#include "orvo/model/ortho_photo.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace orvo {

namespace {

// A region read from a keyword's block (and only from a block).
class RegionBlock : public LinkHdl {
public:
    explicit RegionBlock(OvRegion& region) : region_(region) {}
    std::int32_t Read(void* object) {
        return detail::ReadInBlock(static_cast<OvReaderObject*>(object), region_);
    }

private:
    OvRegion& region_;
};

}  // namespace

std::int32_t OvOrthoPhoto::ReadIdHdl(void* readerObject) {
    auto* object = static_cast<OvReaderObject*>(readerObject);
    if (OvReader* reader = detail::BlockReaderOf(object)) {
        detail::RecordTokens tokens(*reader);
        if (!tokens.AtDataEnd()) OvObject::Read(object);
        tokens.SkipToBlockEnd();
    }
    return 1;
}

int OvOrthoPhoto::Read(OvReaderObject* object) {
    if (detail::BlockReaderOf(object) == nullptr) return 1;
    // The photo's own fields are reached through their accessors: read into copies, put back.
    String comment = GetComment();
    double scale = GetScale();
    OvRegion pixels = GetDigiRegion();
    object->RegisterObject(OvReaderObject("ID", Link(this, &OvOrthoPhoto::ReadIdHdl)));
    object->RegisterObject(OvReaderObject("COMMENT", &comment));
    object->RegisterObject(OvReaderObject("RECTPIXEL", &rectPixel_));
    object->RegisterObject(OvReaderObject("TIME", &time_));
    object->RegisterObject(OvReaderObject("SCALE", &scale));
    object->RegisterObject(OvReaderObject("PLANEANGLE", &maxAngle_));
    RegionBlock pixelBlock(pixels);
    RegionBlock objectBlock(objectRegion_);
    object->RegisterObject(OvReaderObject("PIXELSIZE", Link(&pixelBlock, &RegionBlock::Read)));
    object->RegisterObject(OvReaderObject("OBJECTSIZE", Link(&objectBlock, &RegionBlock::Read)));
    object->RegisterObject(
        OvReaderObject("PLANEINFO", Link(&planes_, &OvTiltPlaneInfoList::AddPlaneHdl)));
    detail::ProcessBlock(object);
    SetComment(comment);
    SetScale(scale);
    SetDigiRegion(pixels);
    return 1;
}

std::ostream& OvOrthoPhoto::Write(std::ostream& out) const {
    detail::InlineObject(out, "ID", *this);
    detail::QuotedLine(out, "COMMENT", GetComment());
    detail::NumberLine(out, "RECTPIXEL", rectPixel_);
    detail::NumberLine(out, "TIME", time_);
    detail::NumberLine(out, "SCALE", GetScale());
    detail::NumberLine(out, "PLANEANGLE", maxAngle_);
    detail::InlineBlock(out, "PIXELSIZE", GetDigiRegion());
    detail::InlineBlock(out, "OBJECTSIZE", objectRegion_);
    for (const OvTiltPlaneInfo* plane = planes_.First(); plane != nullptr; plane = plane->Next())
        detail::BlockLines(out, "PLANEINFO", *plane);
    return out;
}

std::ostream& OvOrthoPhotoList::Write(std::ostream& out) const {
    for (const OvOrthoPhoto* photo = First(); photo != nullptr; photo = photo->Next()) {
        out << "ORTHOPHOTO" << Ovendl << OvBeginBlockNL;
        photo->Write(out);
        out << OvEndBlockNL << Ovendl << Ovendl;
    }
    return out;
}

}  // namespace orvo
