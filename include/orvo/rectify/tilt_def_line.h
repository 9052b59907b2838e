// Definition lines and the constraints between them: the pieces from which a plane
// rectification is set up without control points. A definition line joins two measured image
// points; a constraint says that two definition lines are parallel or perpendicular in the
// rectified plane.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/link.h"
#include "orvo/foundation/list.h"
#include "orvo/foundation/object.h"

namespace orvo {

class OvReaderObject;

/// How two definition lines relate in the rectified plane. The type is 32 bits wide and every
/// value is valid: a value other than 1 and 2 is no relation that the estimation knows.
enum ConstraintType : std::int32_t {
    /// No type. A constraint of this type is invalid; as a query it matches every type.
    ConstraintTypeNone = 0,
    ConstraintTypeParallel = 1,
    ConstraintTypePerpendicular = 2,
};

/// A straight line in the photo between two measured image points, referred to by their ids
/// in the parallel definition's point list. The line's own number is its object id.
class OvTiltDefLine : public OvListnode {
public:
    /// A line from the point `firstId` to the point `secondId`; id 0, value 0, no x-axis flag.
    OvTiltDefLine(std::uint32_t firstId = 0, std::uint32_t secondId = 0);
    OvTiltDefLine(const OvTiltDefLine& other) = default;
    /// A line read from the record at the reader's current token (see `Read`).
    explicit OvTiltDefLine(OvReaderObject* reader);
    /// Copies the id, the name and every member, the run-time data included.
    OvTiltDefLine& operator=(const OvTiltDefLine& other) = default;
    ~OvTiltDefLine() override;

    std::uint32_t GetFirstId() const { return firstId_; }
    std::uint32_t GetSecondId() const { return secondId_; }
    void SetFirstId(std::uint32_t id) { firstId_ = id; }
    void SetSecondId(std::uint32_t id) { secondId_ = id; }
    /// A value that travels with the line (the host keeps e.g. a nominal length in it); the
    /// library stores, copies, writes and reads it and gives it no meaning.
    double GetValue() const { return value_; }
    void SetValue(double value) { value_ = value; }
    /// Non-zero: the line gives the direction of the rectified x axis.
    std::int32_t GetXAxisFlag() const { return xAxis_; }
    void SetXAxisFlag(std::int32_t flag) { xAxis_ = flag; }
    bool IsXAxis() const { return xAxis_ != 0; }

    /// Scratch values for the host while it works with the line: zero after construction,
    /// copied with the line, never written to a file.
    double GetRunValue() const { return runValue_; }
    void SetRunValue(double value) { runValue_ = value; }
    std::int32_t GetRunIndex() const { return runIndex_; }
    void SetRunIndex(std::int32_t value) { runIndex_ = value; }
    std::int32_t GetRunState() const { return runState_; }
    void SetRunState(std::int32_t value) { runState_ = value; }

    /// Reads the record "id first second x-axis-flag value" from the reader's current token on.
    /// The ids are integer tokens; the value an integer or floating token. A "}" met inside the
    /// record ends it: the fields read so far are set, the others stay. Returns 1.
    int Read(OvReaderObject* reader);
    /// Writes the id, the two point ids and the x-axis flag, each right-aligned in a field of
    /// 8 and followed by one blank, then the value in the shortest form that reads back to the
    /// same double ("0.125", "4", "1e+20"). The stream's format is left as it was. No line end.
    std::ostream& Write(std::ostream& out) const;

    OvTiltDefLine* Next() const { return static_cast<OvTiltDefLine*>(GetNext()); }
    OvTiltDefLine* Previous() const { return static_cast<OvTiltDefLine*>(GetPrev()); }

private:
    std::uint32_t firstId_ = 0;
    std::uint32_t secondId_ = 0;
    double value_ = 0.0;
    std::int32_t xAxis_ = 0;
    double runValue_ = 0.0;
    std::int32_t runIndex_ = 0;
    std::int32_t runState_ = 0;
};

/// A relation between two definition lines, referred to by their ids.
class OvTiltDefLineConstraint : public OvListnode {
public:
    OvTiltDefLineConstraint(std::uint32_t firstLineId = 0, std::uint32_t secondLineId = 0,
                            ConstraintType type = ConstraintTypeNone, double value = 0.0);
    OvTiltDefLineConstraint(const OvTiltDefLineConstraint& other) = default;
    /// A constraint read from the record at the reader's current token (see `Read`).
    explicit OvTiltDefLineConstraint(OvReaderObject* reader);
    /// Copies the id, the name and every member.
    OvTiltDefLineConstraint& operator=(const OvTiltDefLineConstraint& other) = default;
    ~OvTiltDefLineConstraint() override;

    std::uint32_t GetFirstLineId() const { return firstLineId_; }
    std::uint32_t GetSecondLineId() const { return secondLineId_; }
    void SetFirstLineId(std::uint32_t id) { firstLineId_ = id; }
    void SetSecondLineId(std::uint32_t id) { secondLineId_ = id; }
    ConstraintType GetType() const { return type_; }
    void SetType(ConstraintType type) { type_ = type; }
    /// Stored, copied, written and read; not interpreted by the library.
    double GetValue() const { return value_; }
    void SetValue(double value) { value_ = value; }

    /// Type 1.
    bool IsParallel() const { return type_ == ConstraintTypeParallel; }
    /// True for the query type 0 (every type), else when the type equals `type`.
    bool IsConstraint(ConstraintType type) const {
        return type == ConstraintTypeNone || type_ == type;
    }
    /// Any type but 0.
    bool IsValid() const { return type_ != ConstraintTypeNone; }
    /// `a` is one of the two line ids.
    bool HasId(std::uint32_t a) const { return a == firstLineId_ || a == secondLineId_; }
    /// `a` is one of the two line ids and so is `b` (the same one counts twice: a = b = first
    /// line id matches).
    bool HasBothId(std::uint32_t a, std::uint32_t b) const { return HasId(a) && HasId(b); }
    /// Either of `a`, `b` is one of the two line ids.
    bool HasEitherId(std::uint32_t a, std::uint32_t b) const { return HasId(a) || HasId(b); }

    /// Reads the record "first-line second-line type value" from the reader's current token on;
    /// the constraint's own id is not part of the record and is left as it is (0 for a
    /// constraint made by reading). A "}" met inside the record ends it. Returns 1.
    int Read(OvReaderObject* reader);
    /// Writes the two line ids and the type, each right-aligned in a field of 8 and followed
    /// by one blank, then the value as the line writes it. No line end.
    std::ostream& Write(std::ostream& out) const;

    OvTiltDefLineConstraint* Next() const {
        return static_cast<OvTiltDefLineConstraint*>(GetNext());
    }
    OvTiltDefLineConstraint* Previous() const {
        return static_cast<OvTiltDefLineConstraint*>(GetPrev());
    }

private:
    std::uint32_t firstLineId_ = 0;
    std::uint32_t secondLineId_ = 0;
    ConstraintType type_ = ConstraintTypeNone;
    double value_ = 0.0;
};

/// The definition lines of a parallel definition; owns them.
class OvTiltDefLineList : public TOvListHeader<OvTiltDefLine>, public LinkHdl {
public:
    OvTiltDefLineList() = default;
    OvTiltDefLineList(const OvTiltDefLineList& other) = default;
    OvTiltDefLineList& operator=(const OvTiltDefLineList& other) = default;
    ~OvTiltDefLineList() override;

    /// Reads a line from the block at the reader's current token and appends it; returns it.
    /// A record that the block's "}" cuts short is not appended (null). Whatever follows the
    /// record inside the block is stepped over, so the reader goes on after the block.
    OvTiltDefLine* AddObject(OvReaderObject* reader);
    /// `AddObject` in the shape of a reader callback ("DEFLINE"): `Link(&list,
    /// &OvTiltDefLineList::AddObjectHdl)`. Returns 1.
    std::int32_t AddObjectHdl(void* readerObject);
};

/// The constraints of a parallel definition; owns them.
class OvTiltDefLineConstraintList : public TOvListHeader<OvTiltDefLineConstraint>, public LinkHdl {
public:
    OvTiltDefLineConstraintList() = default;
    OvTiltDefLineConstraintList(const OvTiltDefLineConstraintList& other) = default;
    OvTiltDefLineConstraintList& operator=(const OvTiltDefLineConstraintList& other) = default;
    ~OvTiltDefLineConstraintList() override;

    /// As `OvTiltDefLineList::AddObject`, for a constraint record.
    OvTiltDefLineConstraint* AddObject(OvReaderObject* reader);
    /// The reader callback of "CONSTRAINT". Returns 1.
    std::int32_t AddObjectHdl(void* readerObject);
};

}  // namespace orvo
