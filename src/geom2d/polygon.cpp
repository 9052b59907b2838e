#include "orvo/geom2d/polygon.h"

#include <cmath>
#include <cstddef>
#include <ostream>

#include "planar.h"

namespace orvo {

namespace {

const eOvPointRWMask kColumns2D[] = {eOvPointRWX, eOvPointRWY, eOvPointRWEnd};
const eOvPointRWMask kColumns2DId[] = {eOvPointRWId, eOvPointRWX, eOvPointRWY, eOvPointRWEnd};
const eOvPointRWMask kColumns3D[] = {eOvPointRWX, eOvPointRWY, eOvPointRWZ, eOvPointRWEnd};
const eOvPointRWMask kColumns3DId[] = {eOvPointRWId, eOvPointRWX, eOvPointRWY, eOvPointRWZ,
                                       eOvPointRWEnd};

// The column array of a mode, null for a mode outside the table.
const eOvPointRWMask* ColumnsOf(OVPolygonMode mode) {
    switch (mode) {
        case OvPolygonMode2D:
            return kColumns2D;
        case OvPolygonMode2DId:
            return kColumns2DId;
        case OvPolygonMode3D:
            return kColumns3D;
        case OvPolygonMode3DId:
            return kColumns3DId;
    }
    return nullptr;
}

bool Is2D(OVPolygonMode mode) {
    return mode == OvPolygonMode2D || mode == OvPolygonMode2DId;
}
bool Is3D(OVPolygonMode mode) {
    return mode == OvPolygonMode3D || mode == OvPolygonMode3DId;
}

double Distance3D(const OvPoint& a, const OvPoint& b) {
    const double dx = b.GetX() - a.GetX();
    const double dy = b.GetY() - a.GetY();
    const double dz = b.GetZ() - a.GetZ();
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}

}  // namespace

OvPolygon::OvPolygon(OVPolygonMode mode) : mode(mode) {}

OvPolygon::OvPolygon(const OvPoint& a, const OvPoint& b, OVPolygonMode mode) : mode(mode) {
    MakePolygon(a, b);
}

OvPolygon::OvPolygon(const OvPointList* list, OVPolygonMode mode) : mode(mode) {
    AddPoint(list);
}

OvPolygon::OvPolygon(const OvRegion& region) : mode(OvPolygonMode2D) {
    MakePolygon(region.GetFirst(), region.GetSecond());
}

OvPolygon::OvPolygon(const OvPolygon& other) = default;

OvPolygon& OvPolygon::operator=(const OvPolygon& other) = default;

OvPolygon::~OvPolygon() = default;

bool OvPolygon::AddPoint(const OvPoint& point) {
    if (points.First() == nullptr) {
        minimum = point;
        maximum = point;
    } else {
        UpdateMinMax(point);
    }
    points.Add(point);
    return true;
}

bool OvPolygon::AddPoint(const OvPointList* list) {
    if (list == nullptr) return false;
    for (const OvPoint* p = list->First(); p != nullptr; p = p->Next())
        AddPoint(*p);
    return true;
}

void OvPolygon::UpdateMinMax() {
    const OvPoint* p = points.First();
    if (p == nullptr) return;
    minimum = *p;
    maximum = *p;
    for (; p != nullptr; p = p->Next())
        UpdateMinMax(*p);
}

void OvPolygon::UpdateMinMax(const OvPoint& p) {
    if (p.GetX() < minimum.GetX()) minimum.SetX(p.GetX());
    if (p.GetY() < minimum.GetY()) minimum.SetY(p.GetY());
    if (p.GetZ() < minimum.GetZ()) minimum.SetZ(p.GetZ());
    if (p.GetX() > maximum.GetX()) maximum.SetX(p.GetX());
    if (p.GetY() > maximum.GetY()) maximum.SetY(p.GetY());
    if (p.GetZ() > maximum.GetZ()) maximum.SetZ(p.GetZ());
}

void OvPolygon::MakePolygon(const OvPoint& a, const OvPoint& b) {
    minimum = a;
    maximum = b;
    UpdateMinMax(a);
    UpdateMinMax(b);
    const double x0 = minimum.GetX();
    const double y0 = minimum.GetY();
    const double x1 = maximum.GetX();
    const double y1 = maximum.GetY();
    // The corners go straight into the list: the box keeps the z range of a and b.
    points.Add(OvPoint(0, x0, y0, 0.0, 0));
    points.Add(OvPoint(0, x1, y0, 0.0, 0));
    points.Add(OvPoint(0, x1, y1, 0.0, 0));
    points.Add(OvPoint(0, x0, y1, 0.0, 0));
    points.Renumber(1, nullptr, 1);
}

OvRegion OvPolygon::GetRegion() const {
    return OvRegion(minimum, maximum);
}

double OvPolygon::Width() const {
    return maximum.GetX() - minimum.GetX();
}

double OvPolygon::Height() const {
    return maximum.GetY() - minimum.GetY();
}

double OvPolygon::Deep() const {
    return maximum.GetZ() - minimum.GetZ();
}

bool OvPolygon::IsInBox(const OvPoint& p) const {
    if (!Is2D(mode) && !Is3D(mode)) return false;
    const bool inPlane = minimum.GetX() <= p.GetX() && p.GetX() <= maximum.GetX() &&
                         minimum.GetY() <= p.GetY() && p.GetY() <= maximum.GetY();
    if (!inPlane || Is2D(mode)) return inPlane;
    return minimum.GetZ() <= p.GetZ() && p.GetZ() <= maximum.GetZ();
}

bool OvPolygon::Overlap(const OvPoint& p) const {
    if (!IsInBox(p)) return false;
    if (!Is2D(mode)) return true;  // for 3D polygons the box alone decides
    const OvPoint* first = points.First();
    if (first == nullptr) return true;

    // The rule walks a rotated copy of the ring from its lowest vertex, with a copy of the last
    // vertex in front so that the first edge closes the ring, and counts every edge from a
    // vertex's predecessor to the vertex that the test segment meets. The count does not depend
    // on where the walk starts, only on the set of edges (each with its direction, which
    // `Intersect` is sensitive to), so the ring is walked in place here: the closing edge
    // (last, first) first, then the others. A segment through a vertex meets both edges there
    // and counts twice, as the rule has it.
    const planar::TestRay ray = planar::MakeTestRay(planar::Of(p), minimum.GetX(), maximum.GetX());
    planar::XY start = planar::Of(*points.Last());
    int startSide = planar::Side(ray, start);
    int crossings = 0;
    for (const OvPoint* q = first; q != nullptr; q = q->Next()) {
        const planar::XY end = planar::Of(*q);
        const int endSide = planar::Side(ray, end);
        if (startSide * endSide <= 0 && planar::Meets(ray, start, end)) ++crossings;
        start = end;
        startSide = endSide;
    }
    return crossings % 2 == 1;
}

bool OvPolygon::Overlap(const OvPoint* p) const {
    return p != nullptr && Overlap(*p);
}

double OvPolygon::Area(bool /*closed*/) const {
    if (points.Count() < 3) return -1.0;
    double sum = 0.0;
    for (const OvPoint* p = points.First(); p != nullptr; p = p->Next()) {
        const OvPoint* next = p->Next() != nullptr ? p->Next() : points.First();
        sum += 0.5 * (next->GetY() + p->GetY()) * (next->GetX() - p->GetX());
    }
    return std::fabs(sum);
}

double OvPolygon::Length(bool closed) const {
    const int count = points.Count();
    if (count < 2) return -1.0;
    const OvPoint* first = points.First();
    const OvPoint* last = points.Last();
    if (*first == *last || count == 2) closed = false;
    double length = 0.0;
    for (const OvPoint* p = first; p->Next() != nullptr; p = p->Next()) {
        length += Distance3D(*p, *p->Next());
    }
    if (closed) length += Distance3D(*last, *first);
    return length;
}

void OvPolygon::ApplyModeColumns() const {
    if (const eOvPointRWMask* columns = ColumnsOf(mode)) points.SetMask(OvPointFormat(columns));
}

std::ostream& OvPolygon::Write(std::ostream& out) const {
    ApplyModeColumns();
    return points.Write(out);
}

OvPointFormat OvPolygon::ReadColumns() const {
    const eOvPointRWMask* columns = ColumnsOf(mode);
    return columns != nullptr ? OvPointFormat(columns) : points.GetMask();
}

void OvPolygon::TakeOver(const OvPointList& read) {
    // A block read replaces what the polygon held, box included: appending would leave the
    // box of a two-point rectangle blind to the older points.
    points.Destroy();
    minimum = OvPoint();
    maximum = OvPoint();
    const OvPoint* first = read.First();
    if (read.Count() == 2) {
        MakePolygon(*first, *first->Next());
    } else {
        AddPoint(&read);
    }
}

int OvPolygon::Read(OvReaderObject* reader) {
    OvPointList read(ReadColumns());
    read.Read(reader);
    TakeOver(read);
    return 1;
}

int OvPolygon::Read(OvParser& parser, std::istream& in) {
    OvPointList read(ReadColumns());
    read.Read(parser, in);
    TakeOver(read);
    return 1;
}

std::int32_t OvPolygon::ReadHdl(void* readerObject) {
    return Read(static_cast<OvReaderObject*>(readerObject));
}

}  // namespace orvo
