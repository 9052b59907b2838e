#include "orvo/geom2d/position.h"

#include "whole_record.h"

namespace orvo {

namespace {

const eOvPointRWMask kPositionColumns[] = {eOvPointRWX, eOvPointRWY, eOvPointRWEnd};

}  // namespace

OvPosition::OvPosition(double x, double y) : OvPoint(0, x, y, 0.0, 0) {}

OvPosition::~OvPosition() = default;

int OvPosition::Read(OvReaderObject* reader) {
    OvPoint read(*this);
    if (detail::ReadWholeRecord([&] { read.Read(reader, OvPointFormat(kPositionColumns)); })) {
        SetX(read.GetX());
        SetY(read.GetY());
    }
    return 1;
}

int OvPosition::Read(OvParser& parser, std::istream& in) {
    OvPoint read(*this);
    if (detail::ReadWholeRecord([&] { read.Read(parser, in, OvPointFormat(kPositionColumns)); })) {
        SetX(read.GetX());
        SetY(read.GetY());
    }
    return 1;
}

std::int32_t OvPosition::ReadHdl(void* readerObject) {
    return Read(static_cast<OvReaderObject*>(readerObject));
}

std::ostream& OvPosition::Write(std::ostream& out) const {
    return OvPoint::Write(out, OvPointFormat(kPositionColumns));
}

}  // namespace orvo
