// Definition lines and constraints: records, reading and writing.
#include "orvo/rectify/tilt_def_line.h"

#include <charconv>
#include <iomanip>
#include <memory>
#include <ostream>

#include "record_tokens.h"

namespace orvo {

namespace {

constexpr int kIdField = 8;

// Writes the integer fields right-aligned in 8, each followed by a blank, then the value in the
// shortest form that reads back to the same double; the stream's format is left as it was.
template <class... Fields>
void WriteRecord(std::ostream& out, double value, Fields... fields) {
    const std::ios_base::fmtflags flags = out.flags();
    out << std::right;
    ((out << std::setw(kIdField) << fields << ' '), ...);
    out.flags(flags);
    char text[64];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
    out.write(text, end.ptr - text);
}

// Reads a definition line's record; true when all five fields were there.
bool ReadLineRecord(OvTiltDefLine& line, OvReader& reader) {
    detail::RecordTokens tokens(reader);
    std::uint32_t id = 0;
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    std::int32_t xAxis = 0;
    double value = 0.0;
    if (!tokens.Id(id)) return false;
    line.SetId(id);
    if (!tokens.Id(first)) return false;
    line.SetFirstId(first);
    if (!tokens.Id(second)) return false;
    line.SetSecondId(second);
    if (!tokens.Int(xAxis)) return false;
    line.SetXAxisFlag(xAxis);
    if (!tokens.Number(value)) return false;
    line.SetValue(value);
    return true;
}

bool ReadConstraintRecord(OvTiltDefLineConstraint& constraint, OvReader& reader) {
    detail::RecordTokens tokens(reader);
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    std::int32_t type = 0;
    double value = 0.0;
    if (!tokens.Id(first)) return false;
    constraint.SetFirstLineId(first);
    if (!tokens.Id(second)) return false;
    constraint.SetSecondLineId(second);
    if (!tokens.Int(type)) return false;
    constraint.SetType(static_cast<ConstraintType>(type));
    if (!tokens.Number(value)) return false;
    constraint.SetValue(value);
    return true;
}

// Reads one record with `read` into a new element and appends it when it was complete. The
// rest of the block is stepped over, so that the reader finds the block's "}".
template <class List, class Element, class ReadFunction>
Element* AddRecord(List& list, OvReaderObject* object, ReadFunction read) {
    OvReader* reader = detail::BlockReaderOf(object);
    if (reader == nullptr) return nullptr;
    auto element = std::make_unique<Element>();
    const bool complete = read(*element, *reader);
    detail::RecordTokens(*reader).SkipToBlockEnd();
    if (!complete) return nullptr;
    Element* added = list.Add(element.get());
    if (added != nullptr) element.release();
    return added;
}

}  // namespace

// ---- OvTiltDefLine -------------------------------------------------------------------------

OvTiltDefLine::OvTiltDefLine(std::uint32_t firstId, std::uint32_t secondId)
    : firstId_(firstId), secondId_(secondId) {}

OvTiltDefLine::OvTiltDefLine(OvReaderObject* reader) {
    Read(reader);
}

OvTiltDefLine::~OvTiltDefLine() = default;

int OvTiltDefLine::Read(OvReaderObject* object) {
    if (OvReader* reader = detail::ReaderOf(object)) ReadLineRecord(*this, *reader);
    return 1;
}

std::ostream& OvTiltDefLine::Write(std::ostream& out) const {
    WriteRecord(out, value_, GetId(), firstId_, secondId_, xAxis_);
    return out;
}

// ---- OvTiltDefLineConstraint ---------------------------------------------------------------

OvTiltDefLineConstraint::OvTiltDefLineConstraint(std::uint32_t firstLineId,
                                                 std::uint32_t secondLineId, ConstraintType type,
                                                 double value)
    : firstLineId_(firstLineId), secondLineId_(secondLineId), type_(type), value_(value) {}

OvTiltDefLineConstraint::OvTiltDefLineConstraint(OvReaderObject* reader) {
    Read(reader);
}

OvTiltDefLineConstraint::~OvTiltDefLineConstraint() = default;

int OvTiltDefLineConstraint::Read(OvReaderObject* object) {
    if (OvReader* reader = detail::ReaderOf(object)) ReadConstraintRecord(*this, *reader);
    return 1;
}

std::ostream& OvTiltDefLineConstraint::Write(std::ostream& out) const {
    WriteRecord(out, value_, firstLineId_, secondLineId_, static_cast<std::int32_t>(type_));
    return out;
}

// ---- lists ---------------------------------------------------------------------------------

OvTiltDefLineList::~OvTiltDefLineList() = default;

OvTiltDefLine* OvTiltDefLineList::AddObject(OvReaderObject* reader) {
    return AddRecord<OvTiltDefLineList, OvTiltDefLine>(*this, reader, ReadLineRecord);
}

std::int32_t OvTiltDefLineList::AddObjectHdl(void* readerObject) {
    AddObject(static_cast<OvReaderObject*>(readerObject));
    return 1;
}

OvTiltDefLineConstraintList::~OvTiltDefLineConstraintList() = default;

OvTiltDefLineConstraint* OvTiltDefLineConstraintList::AddObject(OvReaderObject* reader) {
    return AddRecord<OvTiltDefLineConstraintList, OvTiltDefLineConstraint>(*this, reader,
                                                                           ReadConstraintRecord);
}

std::int32_t OvTiltDefLineConstraintList::AddObjectHdl(void* readerObject) {
    AddObject(static_cast<OvReaderObject*>(readerObject));
    return 1;
}

}  // namespace orvo
