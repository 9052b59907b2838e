// Polygons over an owned point list: the valid region, range and border of a rectification and
// the definition points it is set up from. The point-in-polygon test decides which rectified
// plane a point belongs to. All comparisons are exact and bounds are inclusive.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/link.h"
#include "orvo/geom2d/region.h"
#include "orvo/model/point_list.h"

namespace orvo {

class OvParser;
class OvReaderObject;

/// What a polygon's points are and which point columns it is written and read with. The
/// underlying type is fixed at 32 bits; a value outside the named ones is a valid mode that no
/// box test accepts and that reads and writes with the list's own column format.
enum OVPolygonMode : std::int32_t {
    OvPolygonMode2D = 0,    ///< 2D, columns x, y
    OvPolygonMode2DId = 1,  ///< 2D, columns id, x, y
    OvPolygonMode3D = 2,    ///< 3D, columns x, y, z
    OvPolygonMode3DId = 3,  ///< 3D, columns id, x, y, z
};

class OvPolygon : public LinkHdl {
public:
    /// An empty polygon; its box is the origin.
    explicit OvPolygon(OVPolygonMode mode = OvPolygonMode2D);
    /// The rectangle through a and b (see MakePolygon).
    OvPolygon(const OvPoint& a, const OvPoint& b, OVPolygonMode mode);
    /// Adds the list's points in order; a null list gives an empty polygon.
    OvPolygon(const OvPointList* points, OVPolygonMode mode);
    /// Mode 0, the rectangle of the region's two corners.
    explicit OvPolygon(const OvRegion& region);
    /// Copy and assignment copy mode, box and points (with the list's column format).
    OvPolygon(const OvPolygon& other);
    OvPolygon& operator=(const OvPolygon& other);
    ~OvPolygon() override;

    OVPolygonMode GetMode() const { return mode; }
    void SetMode(OVPolygonMode newMode) { mode = newMode; }

    /// Appends a copy of the point. The first point of a polygon becomes its box; every later
    /// one widens it. Returns true.
    bool AddPoint(const OvPoint& point);
    /// Appends every point of the list in order. Returns false for a null list.
    bool AddPoint(const OvPointList* points);

    /// Recomputes the box from the points; an empty polygon keeps its old box.
    void UpdateMinMax();
    /// Widens the box by the point: each of x, y, z of the minimum takes the smaller, of the
    /// maximum the larger value.
    void UpdateMinMax(const OvPoint& point);

    /// The first point, null for an empty polygon.
    OvPoint* First() { return points.First(); }
    const OvPoint* First() const { return points.First(); }
    int Count() const { return points.Count(); }
    /// The points. Who changes them through this reference calls UpdateMinMax() afterwards.
    OvPointList& GetPointList() { return points; }
    const OvPointList& GetPointList() const { return points; }
    /// The componentwise minimum and maximum of x, y and z.
    const OvPoint& GetMin() const { return minimum; }
    const OvPoint& GetMax() const { return maximum; }

    /// The bounding box as a region (minimum and maximum as its corners).
    OvRegion GetRegion() const;
    /// max x - min x.
    double Width() const;
    /// max y - min y.
    double Height() const;
    /// max z - min z.
    double Deep() const;

    /// Whether p lies in the box, bounds included: x and y for modes 0 and 1, x, y and z for
    /// modes 2 and 3; false for any other mode.
    bool IsInBox(const OvPoint& p) const;
    /// Point in polygon, boundary cases as the crossing count gives them: false outside the
    /// box; true inside the box of a 3D-mode polygon (the box decides there) and of a polygon
    /// without points; otherwise true when the test segment from p to (|2 * (max x - min x)| +
    /// |max x|, p.y) meets an odd number of edges, each edge running from a vertex's predecessor
    /// to the vertex (the first edge closing the ring) and tested with `Intersect`. A segment
    /// through a vertex meets both edges there and counts it twice. The rule as first stated
    /// walks a copy of the ring rotated to its lowest vertex; the count does not depend on the
    /// start of the walk, so the ring is walked in place, without a copy, in time proportional
    /// to the point count. For many tests of one polygon see `OvPreparedPolygon`.
    bool Overlap(const OvPoint& p) const;
    /// The same through a pointer; a null point gives false.
    bool Overlap(const OvPoint* p) const;

    /// The enclosed area on x and y (shoelace formula over the closed ring), always positive;
    /// -1.0 for fewer than 3 points. The flag is accepted for symmetry with Length and does not
    /// change the result.
    double Area(bool closed = true) const;
    /// The length of the path through the points in 3D; -1.0 for fewer than 2 points. With
    /// closed set, the edge from the last point back to the first is added, except when the
    /// last point repeats the first (x, y and z equal) or there are exactly two points.
    double Length(bool closed = true) const;

    /// Writes the points with the mode's columns (the list's format is set to them first; for a
    /// mode outside 0..3 the list's own format is used): one point per line, no line end after the
    /// last, precision 16.
    std::ostream& Write(std::ostream& out) const;
    /// Reads the point records of the current block with the mode's columns (for a mode outside
    /// 0..3 with the list's own format). Exactly two points read give the rectangle through them
    /// (MakePolygon); otherwise the points are added in order. What was read replaces the points
    /// and the box the polygon held before (an empty block leaves an empty polygon with its box
    /// at the origin). Returns 1. Tokenizer errors reach the reader as with a point list.
    int Read(OvReaderObject* reader);
    /// The same on a tokenizer and its stream directly, up to the "}" closing the block or the
    /// end of the input.
    int Read(OvParser& parser, std::istream& in);
    /// `Read` in the shape of a link function: `Link(&polygon, &OvPolygon::ReadHdl)`.
    std::int32_t ReadHdl(void* readerObject);

protected:
    /// The axis-parallel rectangle through a and b: the box becomes a widened by b (z
    /// included), then the four corners (min x, min y), (max x, min y), (max x, max y),
    /// (min x, max y) are appended with z 0 and the points renumbered 1, 2, 3, ...
    void MakePolygon(const OvPoint& a, const OvPoint& b);

private:
    /// Sets the list's column format to the mode's columns; a mode outside 0..3 leaves it alone.
    void ApplyModeColumns() const;
    /// The column format that reading uses: the mode's, or the list's own for other modes.
    OvPointFormat ReadColumns() const;
    /// Takes over the points of a block just read (the rectangle for exactly two).
    void TakeOver(const OvPointList& read);

    OVPolygonMode mode;
    OvPoint minimum;
    OvPoint maximum;
    // Writing a polygon stamps its mode's columns into the list's format, also for a polygon
    // that is otherwise left untouched by writing.
    mutable OvPointList points;
};

}  // namespace orvo
