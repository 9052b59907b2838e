// The point list: copying, lookups, writing the records, and the free list functions.
#include "orvo/model/point_list.h"

#include <cmath>
#include <cstdint>
#include <ostream>
#include <unordered_map>

#include "orvo/textfile/writer.h"
#include "point_text.h"

namespace orvo {

OvPointList::OvPointList(const TOvFormatTable<eOvPointRWMask>& mask)
    : TOvFormatTable<eOvPointRWMask>(mask) {}

OvPointList::OvPointList(const OvPointList& other)
    : TOvListHeader<OvPoint>(other), TOvFormatTable<eOvPointRWMask>(other) {}

OvPointList& OvPointList::operator=(const OvPointList& other) {
    if (this != &other) {
        TOvListHeader<OvPoint>::operator=(other);
        SetTable(other);
    }
    return *this;
}

TOvFormatTable<eOvPointRWMask>& OvPointList::SetMask(const TOvFormatTable<eOvPointRWMask>& mask) {
    SetTable(mask);
    return *this;
}

OvPoint* OvPointList::Find(unsigned id, unsigned photoId, OvPoint* start) const {
    const auto matches = [id, photoId](const OvPoint* p) {
        return p->GetId() == id && (photoId == 0 || p->GetPhotoId() == photoId);
    };
    if (start == nullptr) {
        for (OvPoint* p = First(); p != nullptr; p = p->Next()) {
            if (matches(p)) return p;
        }
        return nullptr;
    }
    for (OvPoint* p = start; p != nullptr; p = p->Next()) {
        if (matches(p)) return p;
    }
    for (OvPoint* p = start; p != nullptr; p = p->Previous()) {
        if (matches(p)) return p;
    }
    return nullptr;
}

namespace {

// The square of OvPoint::Distance, computed the same way: its square root is that distance.
double SquaredDistance(const OvPoint& candidate, const OvPoint& p) {
    const double dx = candidate.GetX() - p.GetX();
    const double dy = candidate.GetY() - p.GetY();
    const double dz = candidate.GetZ() - p.GetZ();
    return dx * dx + dy * dy + dz * dz;
}

}  // namespace

OvPoint* OvPointList::FindNearest(const OvPoint& p, double* distance) const {
    OvPoint* best = First();
    if (best == nullptr) return nullptr;
    double bestSquare = SquaredDistance(*best, p);
    double bestDistance = std::sqrt(bestSquare);
    for (OvPoint* candidate = best->Next(); candidate != nullptr; candidate = candidate->Next()) {
        // The square root rounds monotonically, so a distance below the best one needs a square
        // below the best square: the root is taken only then. Equal roots of different squares
        // keep the earlier point, as comparing the distances themselves does.
        const double square = SquaredDistance(*candidate, p);
        if (square < bestSquare) {
            const double d = std::sqrt(square);
            if (d < bestDistance) {
                best = candidate;
                bestDistance = d;
                bestSquare = square;
            }
        }
    }
    if (distance != nullptr) *distance = bestDistance;
    return best;
}

std::ostream& OvPointList::Write(std::ostream& out) const {
    const TOvFormatTable<eOvPointRWMask>& mask = GetMask();
    const OvPoint* first = First();
    if (first == nullptr) return out;
    out.precision(16);
    if (!detail::StreamPrintsPlainNumbers(out)) {
        for (const OvPoint* p = first; p != nullptr; p = p->Next()) {
            if (p != first) out << Ovendl;
            p->Write(out, mask);
        }
        return out;
    }
    // The stream's state is checked once for the whole list; the records are formatted in
    // memory with the same bytes. The line ends stay Ovendl's, flush and indentation included.
    detail::OvTextBuffer text;
    bool wrote = false;
    for (const OvPoint* p = first; p != nullptr; p = p->Next()) {
        if (p != first) out << Ovendl;
        text.Clear();
        wrote = detail::AppendPointRecord(text, *p, mask, out.fill()) || wrote;
        out.write(text.Data(), static_cast<std::streamsize>(text.Size()));
    }
    if (wrote) out.setf(std::ios_base::right, std::ios_base::adjustfield);
    return out;
}

int FindOvPointById(const OvPointList& a, const OvPointList& b, OvPointList* result) {
    // How many partners of each id b still has to give. Which of several equal-id points of b
    // serves as partner does not show in the result, so counting them is enough.
    std::unordered_map<std::uint32_t, int> unusedPartners;
    for (const OvPoint* p = b.First(); p != nullptr; p = p->Next())
        ++unusedPartners[p->GetId()];
    int found = 0;
    for (const OvPoint* p = a.First(); p != nullptr; p = p->Next()) {
        auto partner = unusedPartners.find(p->GetId());
        if (partner == unusedPartners.end() || partner->second == 0) continue;
        --partner->second;
        ++found;
        if (result != nullptr) result->Add(*p);
    }
    return found;
}

OvPoint OvCalcGravitycenter(const OvPointList& list) {
    OvPoint center;
    for (const OvPoint* p = list.First(); p != nullptr; p = p->Next()) {
        center = (center * 0.0 + *p) / 1.0;
    }
    return center;
}

}  // namespace orvo
