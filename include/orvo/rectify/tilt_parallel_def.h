// The parallel definition of a plane rectification: definition lines between measured image
// points and parallel / perpendicular constraints between those lines, built step by step as
// the user measures, kept free of duplicates, and repaired when points disappear.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/link.h"
#include "orvo/rectify/tilt_def_line.h"

namespace orvo {

class OvLine3d;
class OvPoint;
class OvPointList;
class OvReaderObject;

class OvTiltParallelDef : public LinkHdl {
public:
    /// `points` is the list of measured image points the lines refer to (usually a photo's
    /// measure list). It is not owned, may be null, and must outlive this object.
    explicit OvTiltParallelDef(OvPointList* points = nullptr);
    /// Copies both lists and the point-list pointer.
    OvTiltParallelDef(const OvTiltParallelDef& other) = default;
    OvTiltParallelDef& operator=(const OvTiltParallelDef& other) = default;
    ~OvTiltParallelDef() override;

    OvPointList* GetPointList() const { return points_; }
    void SetPointList(OvPointList* points) { points_ = points; }
    OvTiltDefLineList& GetDefLineList() { return lines_; }
    const OvTiltDefLineList& GetDefLineList() const { return lines_; }
    OvTiltDefLineConstraintList& GetConstraintList() { return constraints_; }
    const OvTiltDefLineConstraintList& GetConstraintList() const { return constraints_; }

    /// Whether there is at least one definition line.
    bool HasData() const { return !lines_.IsEmpty(); }
    /// Deletes every line and every constraint.
    void Clear();

    /// Copies the line's two end points (first, second) out of the point list. False for a
    /// null line or point list, or when either point id is not in the list.
    bool GetLine(OvPoint& a, OvPoint& b, const OvTiltDefLine* line) const;
    /// The same lookup, as a 3D segment from the first point's (x, y, z) to the second's.
    bool GetLine(OvLine3d& segment, const OvTiltDefLine* line) const;
    /// The segment that joins the midpoints of the two constrained lines (for display): a is
    /// the midpoint of the first line, b of the second (`OvPoint::operator%`). False for a null
    /// constraint or when a line or a point is missing.
    bool GetConstraintLine(OvPoint& a, OvPoint& b, const OvTiltDefLineConstraint* c) const;

    /// Scans the lines in list order. With `both`, a line matches when a is one of its point ids
    /// and b is one of its point ids; without, when a or b equals either of them.
    bool HasDefLineFromBikos(std::uint32_t a, std::uint32_t b, bool both) const;
    /// `HasDefLineFromBikos(last-but-one point id, last point id, false)`; false without a
    /// point list or with fewer than two points.
    bool HasDefLineWithLastBikos() const;
    /// A line (a, b) may be made: there is a point list, a != b, both ids are in it, and no
    /// line joins them yet (in either direction).
    bool IsDefLineValid(std::uint32_t a, std::uint32_t b) const;
    /// Scans the constraints in list order; ids match as in `HasDefLineFromBikos`. A matching
    /// constraint counts when `type` is 0 or equals its type; the first one that counts gives
    /// true.
    bool HasConstraintDef(std::uint32_t l1, std::uint32_t l2, bool both, ConstraintType type) const;
    /// `HasConstraintDef(last-but-one line id, last line id, false, type)`; false with fewer
    /// than two lines.
    bool HasConstraintDefFromLastTwoLines(ConstraintType type) const;
    /// A constraint (l1, l2, type) may be made: l1 != l2, both lines exist, and no constraint
    /// of that type (any type for 0) joins them yet.
    bool IsConstraintDefValid(std::uint32_t l1, std::uint32_t l2, ConstraintType type) const;
    /// Whether some line has its x-axis flag set.
    bool HasXAxisDef() const;

    /// Appends the line (a, b) with the next free id and returns it; null (nothing changes)
    /// unless `IsDefLineValid(a, b)`.
    OvTiltDefLine* MakeDefLine(std::uint32_t a, std::uint32_t b);
    /// Appends a line between the last-but-one and the last point of the point list; null
    /// without a point list, with fewer than two points, or when a line already joins those two
    /// ids. Unlike `MakeDefLine` it accepts two points with the same id.
    OvTiltDefLine* MakeDefLineFromLastTwoBikos();
    /// Appends the constraint (l1, l2, type, value 0) with the next free id and returns it;
    /// null unless `IsConstraintDefValid(l1, l2, type)`.
    OvTiltDefLineConstraint* MakeConstraintDef(std::uint32_t l1, std::uint32_t l2,
                                               ConstraintType type);
    /// A constraint of `type` between the last-but-one and the last line; null with fewer than
    /// two lines or when such a constraint exists (`HasConstraintDef(.., true, type)`). Unlike
    /// `MakeConstraintDef` it does not check the type or that the two ids differ.
    OvTiltDefLineConstraint* MakeConstraintDefFromLastTwoDefLines(ConstraintType type);
    /// When the last two constraints are both parallel (P the last-but-one, Q the last), makes
    /// the perpendicular constraints (P.first, Q.first), (P.first, Q.second), (P.second,
    /// Q.first), (P.second, Q.second) with `MakeConstraintDef`, in that order, and returns true
    /// whether or not each was added. False (nothing added) otherwise.
    bool MakeLastTwoParallelConstraintsPerpendicular();
    /// Without a point list: nothing. Otherwise deletes every line with a point id that is not
    /// in the point list, then every constraint with a line id that is not in the line list.
    void CheckAndRepair();

    /// Registers "DEFLINE" and "CONSTRAINT" with the reader and reads the block; the elements
    /// are appended in file order; nothing is read for a keyword followed by a value instead of
    /// a block. Returns 1.
    int Read(OvReaderObject* reader);
    /// Every line as `s12` "DEFLINE", a blank, "{", the record, "}" and a line end (`Ovendl`),
    /// then every constraint the same way as "CONSTRAINT".
    std::ostream& Write(std::ostream& out) const;

private:
    /// Whether the point list holds a point with this id.
    bool HasPoint(std::uint32_t id) const;
    /// The ids of the last-but-one and the last node of a list; false with fewer than two.
    template <class List>
    static bool LastTwoIds(const List& list, std::uint32_t& previous, std::uint32_t& last);

    OvPointList* points_;
    OvTiltDefLineList lines_;
    OvTiltDefLineConstraintList constraints_;
};

}  // namespace orvo
