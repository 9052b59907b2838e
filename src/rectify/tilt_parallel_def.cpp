// The parallel definition: lookups, the step-by-step construction rules, repair, and the record.
#include "orvo/rectify/tilt_parallel_def.h"

#include <ostream>

#include "orvo/geom3d/line3d.h"
#include "orvo/model/point_list.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"
#include "record_tokens.h"

namespace orvo {

namespace {

// With `both`: a and b each equal one of the pair. Without: a or b equals one of the pair.
bool IdsMatch(std::uint32_t first, std::uint32_t second, std::uint32_t a, std::uint32_t b,
              bool both) {
    const bool hasA = a == first || a == second;
    const bool hasB = b == first || b == second;
    return both ? hasA && hasB : hasA || hasB;
}

OvPoint3d Position(const OvPoint& p) {
    return OvPoint3d(p.GetX(), p.GetY(), p.GetZ());
}

}  // namespace

OvTiltParallelDef::OvTiltParallelDef(OvPointList* points) : points_(points) {}

OvTiltParallelDef::~OvTiltParallelDef() = default;

void OvTiltParallelDef::Clear() {
    lines_.Destroy();
    constraints_.Destroy();
}

bool OvTiltParallelDef::HasPoint(std::uint32_t id) const {
    return points_ != nullptr && points_->TOvListHeader<OvPoint>::Find(id) != nullptr;
}

template <class List>
bool OvTiltParallelDef::LastTwoIds(const List& list, std::uint32_t& previous, std::uint32_t& last) {
    const auto* tail = list.Last();
    if (tail == nullptr || tail->Previous() == nullptr) return false;
    previous = tail->Previous()->GetId();
    last = tail->GetId();
    return true;
}

// ---- lookups -------------------------------------------------------------------------------

bool OvTiltParallelDef::GetLine(OvPoint& a, OvPoint& b, const OvTiltDefLine* line) const {
    if (line == nullptr || points_ == nullptr) return false;
    const OvPoint* first = points_->TOvListHeader<OvPoint>::Find(line->GetFirstId());
    const OvPoint* second = points_->TOvListHeader<OvPoint>::Find(line->GetSecondId());
    if (first == nullptr || second == nullptr) return false;
    a = *first;
    b = *second;
    return true;
}

bool OvTiltParallelDef::GetLine(OvLine3d& segment, const OvTiltDefLine* line) const {
    OvPoint a;
    OvPoint b;
    if (!GetLine(a, b, line)) return false;
    segment = OvLine3d(Position(a), Position(b));
    return true;
}

bool OvTiltParallelDef::GetConstraintLine(OvPoint& a, OvPoint& b,
                                          const OvTiltDefLineConstraint* c) const {
    if (c == nullptr) return false;
    const OvTiltDefLine* first = lines_.Find(c->GetFirstLineId());
    const OvTiltDefLine* second = lines_.Find(c->GetSecondLineId());
    OvPoint a1;
    OvPoint a2;
    OvPoint b1;
    OvPoint b2;
    if (!GetLine(a1, a2, first) || !GetLine(b1, b2, second)) return false;
    a = a1 % a2;
    b = b1 % b2;
    return true;
}

bool OvTiltParallelDef::HasDefLineFromBikos(std::uint32_t a, std::uint32_t b, bool both) const {
    for (const OvTiltDefLine* line = lines_.First(); line != nullptr; line = line->Next()) {
        if (IdsMatch(line->GetFirstId(), line->GetSecondId(), a, b, both)) return true;
    }
    return false;
}

bool OvTiltParallelDef::HasDefLineWithLastBikos() const {
    std::uint32_t previous = 0;
    std::uint32_t last = 0;
    if (points_ == nullptr || !LastTwoIds(*points_, previous, last)) return false;
    return HasDefLineFromBikos(previous, last, false);
}

bool OvTiltParallelDef::IsDefLineValid(std::uint32_t a, std::uint32_t b) const {
    return points_ != nullptr && a != b && HasPoint(a) && HasPoint(b) &&
           !HasDefLineFromBikos(a, b, true);
}

bool OvTiltParallelDef::HasConstraintDef(std::uint32_t l1, std::uint32_t l2, bool both,
                                         ConstraintType type) const {
    for (const OvTiltDefLineConstraint* c = constraints_.First(); c != nullptr; c = c->Next()) {
        if (IdsMatch(c->GetFirstLineId(), c->GetSecondLineId(), l1, l2, both) &&
            c->IsConstraint(type)) {
            return true;
        }
    }
    return false;
}

bool OvTiltParallelDef::HasConstraintDefFromLastTwoLines(ConstraintType type) const {
    std::uint32_t previous = 0;
    std::uint32_t last = 0;
    if (!LastTwoIds(lines_, previous, last)) return false;
    return HasConstraintDef(previous, last, false, type);
}

bool OvTiltParallelDef::IsConstraintDefValid(std::uint32_t l1, std::uint32_t l2,
                                             ConstraintType type) const {
    return l1 != l2 && lines_.Find(l1) != nullptr && lines_.Find(l2) != nullptr &&
           !HasConstraintDef(l1, l2, true, type);
}

bool OvTiltParallelDef::HasXAxisDef() const {
    for (const OvTiltDefLine* line = lines_.First(); line != nullptr; line = line->Next()) {
        if (line->IsXAxis()) return true;
    }
    return false;
}

// ---- construction --------------------------------------------------------------------------

OvTiltDefLine* OvTiltParallelDef::MakeDefLine(std::uint32_t a, std::uint32_t b) {
    if (!IsDefLineValid(a, b)) return nullptr;
    auto* line = new OvTiltDefLine(a, b);
    line->SetId(lines_.GetFreeId(0));
    return lines_.Add(line);
}

OvTiltDefLine* OvTiltParallelDef::MakeDefLineFromLastTwoBikos() {
    std::uint32_t previous = 0;
    std::uint32_t last = 0;
    if (points_ == nullptr || !LastTwoIds(*points_, previous, last)) return nullptr;
    if (HasDefLineFromBikos(previous, last, true)) return nullptr;
    auto* line = new OvTiltDefLine(previous, last);
    line->SetId(lines_.GetFreeId(0));
    return lines_.Add(line);
}

OvTiltDefLineConstraint* OvTiltParallelDef::MakeConstraintDef(std::uint32_t l1, std::uint32_t l2,
                                                              ConstraintType type) {
    if (!IsConstraintDefValid(l1, l2, type)) return nullptr;
    auto* constraint = new OvTiltDefLineConstraint(l1, l2, type, 0.0);
    constraint->SetId(constraints_.GetFreeId(0));
    return constraints_.Add(constraint);
}

OvTiltDefLineConstraint* OvTiltParallelDef::MakeConstraintDefFromLastTwoDefLines(
    ConstraintType type) {
    std::uint32_t previous = 0;
    std::uint32_t last = 0;
    if (!LastTwoIds(lines_, previous, last)) return nullptr;
    if (HasConstraintDef(previous, last, true, type)) return nullptr;
    auto* constraint = new OvTiltDefLineConstraint(previous, last, type, 0.0);
    constraint->SetId(constraints_.GetFreeId(0));
    return constraints_.Add(constraint);
}

bool OvTiltParallelDef::MakeLastTwoParallelConstraintsPerpendicular() {
    const OvTiltDefLineConstraint* q = constraints_.Last();
    const OvTiltDefLineConstraint* p = q != nullptr ? q->Previous() : nullptr;
    if (p == nullptr || !p->IsParallel() || !q->IsParallel()) return false;
    // Copied first: the new constraints are appended behind p and q.
    const std::uint32_t p1 = p->GetFirstLineId();
    const std::uint32_t p2 = p->GetSecondLineId();
    const std::uint32_t q1 = q->GetFirstLineId();
    const std::uint32_t q2 = q->GetSecondLineId();
    MakeConstraintDef(p1, q1, ConstraintTypePerpendicular);
    MakeConstraintDef(p1, q2, ConstraintTypePerpendicular);
    MakeConstraintDef(p2, q1, ConstraintTypePerpendicular);
    MakeConstraintDef(p2, q2, ConstraintTypePerpendicular);
    return true;
}

void OvTiltParallelDef::CheckAndRepair() {
    if (points_ == nullptr) return;
    for (OvTiltDefLine* line = lines_.First(); line != nullptr;) {
        OvTiltDefLine* next = line->Next();
        if (!HasPoint(line->GetFirstId()) || !HasPoint(line->GetSecondId()))
            delete lines_.Subtract(line);
        line = next;
    }
    for (OvTiltDefLineConstraint* c = constraints_.First(); c != nullptr;) {
        OvTiltDefLineConstraint* next = c->Next();
        if (lines_.Find(c->GetFirstLineId()) == nullptr ||
            lines_.Find(c->GetSecondLineId()) == nullptr) {
            delete constraints_.Subtract(c);
        }
        c = next;
    }
}

// ---- record --------------------------------------------------------------------------------

int OvTiltParallelDef::Read(OvReaderObject* object) {
    if (detail::BlockReaderOf(object) == nullptr) return 1;
    object->RegisterObject(
        OvReaderObject("DEFLINE", Link(&lines_, &OvTiltDefLineList::AddObjectHdl)));
    object->RegisterObject(OvReaderObject(
        "CONSTRAINT", Link(&constraints_, &OvTiltDefLineConstraintList::AddObjectHdl)));
    detail::ProcessBlock(object);
    return 1;
}

std::ostream& OvTiltParallelDef::Write(std::ostream& out) const {
    for (const OvTiltDefLine* line = lines_.First(); line != nullptr; line = line->Next()) {
        out << s12 << "DEFLINE" << ' ' << '{';
        line->Write(out);
        out << '}' << Ovendl;
    }
    for (const OvTiltDefLineConstraint* c = constraints_.First(); c != nullptr; c = c->Next()) {
        out << s12 << "CONSTRAINT" << ' ' << '{';
        c->Write(out);
        out << '}' << Ovendl;
    }
    return out;
}

}  // namespace orvo
