#include "orvo/geom2d/region.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "orvo/numerics/interval.h"
#include "whole_record.h"

namespace orvo {

namespace {

// Corners are stored and read as point records with the x and y columns only.
const eOvPointRWMask kCornerColumns[] = {eOvPointRWX, eOvPointRWY, eOvPointRWEnd};

}  // namespace

OvCoordRef::operator double() const {
    switch (axis_) {
        case kX:
            return point_.GetX();
        case kY:
            return point_.GetY();
        case kZ:
            break;
    }
    return point_.GetZ();
}

OvCoordRef& OvCoordRef::operator=(double value) {
    switch (axis_) {
        case kX:
            point_.SetX(value);
            return *this;
        case kY:
            point_.SetY(value);
            return *this;
        case kZ:
            break;
    }
    point_.SetZ(value);
    return *this;
}

OvRegion::OvRegion(double x1, double y1, double x2, double y2) {
    Set(x1, y1, x2, y2);
    Sort();
}

OvRegion::OvRegion(const OvPoint& first, const OvPoint& second) : OvLine(first, second) {}

OvRegion::~OvRegion() = default;

void OvRegion::Set(double x1, double y1, double x2, double y2) {
    first.SetX(x1);
    first.SetY(y1);
    second.SetX(x2);
    second.SetY(y2);
}

void OvRegion::Set(const OvRegion& other) {
    first = other.first;
    second = other.second;
}

void OvRegion::Get(double& x1, double& y1, double& x2, double& y2) const {
    x1 = first.GetX();
    y1 = first.GetY();
    x2 = second.GetX();
    y2 = second.GetY();
}

double OvRegion::Width() const {
    return second.GetX() - first.GetX();
}

double OvRegion::Height() const {
    return second.GetY() - first.GetY();
}

double OvRegion::Area() const {
    return Height() * Width();
}

OvPoint OvRegion::GetCenter() const {
    return OvPoint(0, (first.GetX() + second.GetX()) * 0.5, (first.GetY() + second.GetY()) * 0.5,
                   (first.GetZ() + second.GetZ()) * 0.5, 0);
}

OvPoint OvRegion::GetUL() const {
    return OvPoint(0, Left(), Top(), 0.0, 0);
}

OvPoint OvRegion::GetLR() const {
    return OvPoint(0, Right(), Bottom(), 0.0, 0);
}

OvPoint OvRegion::GetUR() const {
    return second;
}

void OvRegion::Sort() {
    if (first.GetX() > second.GetX()) {
        const double x = first.GetX();
        first.SetX(second.GetX());
        second.SetX(x);
    }
    if (first.GetY() > second.GetY()) {
        const double y = first.GetY();
        first.SetY(second.GetY());
        second.SetY(y);
    }
}

bool OvRegion::operator==(const OvRegion& other) const {
    return first.GetX() == other.first.GetX() && first.GetY() == other.first.GetY() &&
           second.GetX() == other.second.GetX() && second.GetY() == other.second.GetY();
}

OvRegion& OvRegion::operator+=(double d) {
    first.SetX(first.GetX() - d);
    first.SetY(first.GetY() - d);
    second.SetX(second.GetX() + d);
    second.SetY(second.GetY() + d);
    return *this;
}

OvRegion& OvRegion::operator-=(double d) {
    first.SetX(first.GetX() + d);
    first.SetY(first.GetY() + d);
    second.SetX(second.GetX() - d);
    second.SetY(second.GetY() - d);
    return *this;
}

OvRegion OvRegion::operator+(const OvRegion& other) const {
    OvRegion sum(*this);
    sum.first.SetX(first.GetX() + other.first.GetX());
    sum.first.SetY(first.GetY() + other.first.GetY());
    sum.second.SetX(second.GetX() + other.second.GetX());
    sum.second.SetY(second.GetY() + other.second.GetY());
    return sum;
}

OvRegion OvRegion::operator-(const OvRegion& other) const {
    OvRegion difference(*this);
    difference.first.SetX(first.GetX() - other.first.GetX());
    difference.first.SetY(first.GetY() - other.first.GetY());
    difference.second.SetX(second.GetX() - other.second.GetX());
    difference.second.SetY(second.GetY() - other.second.GetY());
    return difference;
}

bool OvRegion::Overlap(const OvPoint* p) const {
    if (p == nullptr) return false;
    const double minX = std::min(first.GetX(), second.GetX());
    const double maxX = std::max(first.GetX(), second.GetX());
    const double minY = std::min(first.GetY(), second.GetY());
    const double maxY = std::max(first.GetY(), second.GetY());
    return minX <= p->GetX() && p->GetX() <= maxX && minY <= p->GetY() && p->GetY() <= maxY;
}

namespace {

// Whether [lo1, hi1] and [lo2, hi2] (each ascending) share a point, ends included.
bool SpansMeet(double lo1, double hi1, double lo2, double hi2) {
    if (lo1 <= lo2) return hi1 >= lo2;
    return lo1 <= hi2;
}

}  // namespace

bool OvRegion::Overlap(const OvRegion* other) const {
    if (other == nullptr) return false;
    return SpansMeet(Left(), Right(), other->Left(), other->Right()) &&
           SpansMeet(Bottom(), Top(), other->Bottom(), other->Top());
}

OvRegion& OvRegion::Intersect(const OvRegion& other) {
    double lo = 0.0;
    double hi = 0.0;
    OvIntervall(lo, hi, first.GetY(), second.GetY(), other.first.GetY(), other.second.GetY());
    first.SetY(lo);
    second.SetY(hi);
    OvIntervall(lo, hi, first.GetX(), second.GetX(), other.first.GetX(), other.second.GetX());
    first.SetX(lo);
    second.SetX(hi);
    Sort();
    return *this;
}

OvRegion& OvRegion::Union(const OvRegion& other) {
    const double top = std::max(second.GetY(), other.Top());
    const double bottom = std::min(first.GetY(), other.Bottom());
    const double left = std::max(first.GetX(), other.Left());
    const double right = std::min(second.GetX(), other.Right());
    Set(left, bottom, right, top);
    return *this;
}

int OvRegion::Read(OvReaderObject* reader) {
    const OvPointFormat columns(kCornerColumns);
    OvPoint lowerLeft(first);
    OvPoint upperRight(second);
    if (detail::ReadWholeRecord([&] {
            lowerLeft.Read(reader, columns);
            upperRight.Read(reader, columns);
        })) {
        first = lowerLeft;
        second = upperRight;
    }
    return 1;
}

int OvRegion::Read(OvParser& parser, std::istream& in) {
    const OvPointFormat columns(kCornerColumns);
    OvPoint lowerLeft(first);
    OvPoint upperRight(second);
    if (detail::ReadWholeRecord([&] {
            lowerLeft.Read(parser, in, columns);
            upperRight.Read(parser, in, columns);
        })) {
        first = lowerLeft;
        second = upperRight;
    }
    return 1;
}

std::int32_t OvRegion::ReadHdl(void* readerObject) {
    return Read(static_cast<OvReaderObject*>(readerObject));
}

std::ostream& OvRegion::Write(std::ostream& out) const {
    const OvPointFormat columns(kCornerColumns);
    first.Write(out, columns);
    return second.Write(out, columns);
}

}  // namespace orvo
