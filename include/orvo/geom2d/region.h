// Axis-parallel rectangles: the digitised area of a photo, the size of a reseau photo, the
// pixel rectangle of a rectification.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/link.h"
#include "orvo/geom2d/line.h"

namespace orvo {

class OvParser;
class OvReaderObject;

/// A writable reference to one coordinate of a point, for the by-reference edge accessors of
/// `OvRegion` (a point keeps its coordinates private, so a plain `double&` cannot be handed
/// out). It reads like the double it refers to and writes through on assignment:
///     region.Left() = 2.0;  region.Top() += 1.5;  double w = region.Right();
/// Like a reference it must not outlive the region it came from.
class OvCoordRef {
public:
    enum Axis { kX, kY, kZ };

    OvCoordRef(OvPoint& point, Axis axis) : point_(point), axis_(axis) {}
    OvCoordRef(const OvCoordRef&) = default;

    operator double() const;  // NOLINT: reads like the coordinate on purpose
    OvCoordRef& operator=(double value);
    /// Assigning one reference to another copies the value, as with `double&`.
    OvCoordRef& operator=(const OvCoordRef& other) { return *this = static_cast<double>(other); }
    OvCoordRef& operator+=(double value) { return *this = static_cast<double>(*this) + value; }
    OvCoordRef& operator-=(double value) { return *this = static_cast<double>(*this) - value; }
    OvCoordRef& operator*=(double value) { return *this = static_cast<double>(*this) * value; }
    OvCoordRef& operator/=(double value) { return *this = static_cast<double>(*this) / value; }

private:
    OvPoint& point_;
    Axis axis_;
};

/// An axis-parallel rectangle from the first corner (Left, Bottom) to the second (Right, Top).
/// A region is "sorted" when the first corner holds the minima; only the constructor from four
/// doubles and `Sort`/`Intersect` sort, every other operation takes the corners as they are.
class OvRegion : public OvLine, public LinkHdl {
public:
    /// All corners at the origin.
    OvRegion() = default;
    /// From first x, first y, second x, second y; the region is sorted afterwards.
    OvRegion(double x1, double y1, double x2, double y2);
    /// From two corner points, copied whole and not sorted.
    OvRegion(const OvPoint& first, const OvPoint& second);
    OvRegion(const OvRegion&) = default;
    OvRegion& operator=(const OvRegion&) = default;
    ~OvRegion() override;

    /// Sets first x, first y, second x, second y as given (not sorted); z stays.
    void Set(double x1, double y1, double x2, double y2);
    /// Copies the other region's corners.
    void Set(const OvRegion& other);
    /// First x, first y, second x, second y: Left, Bottom, Right, Top of a sorted region.
    void Get(double& x1, double& y1, double& x2, double& y2) const;

    double Left() const { return first.GetX(); }
    double Bottom() const { return first.GetY(); }
    double Right() const { return second.GetX(); }
    double Top() const { return second.GetY(); }
    OvCoordRef Left() { return {first, OvCoordRef::kX}; }
    OvCoordRef Bottom() { return {first, OvCoordRef::kY}; }
    OvCoordRef Right() { return {second, OvCoordRef::kX}; }
    OvCoordRef Top() { return {second, OvCoordRef::kY}; }

    /// Right - Left.
    double Width() const;
    /// Top - Bottom.
    double Height() const;
    /// Height * Width, without absolute value: a region with exactly one axis reversed has a
    /// negative area.
    double Area() const;

    /// The midpoint of the two corners (x, y and z).
    OvPoint GetCenter() const;
    /// (Left, Top), z 0.
    OvPoint GetUL() const;
    /// (Right, Bottom), z 0.
    OvPoint GetLR() const;
    /// The second corner.
    OvPoint GetUR() const;

    /// Swaps the x values when first x > second x and the y values when first y > second y.
    void Sort();

    /// All four x and y coordinates exactly equal.
    bool operator==(const OvRegion& other) const;

    /// Grows the region by d on every side (Left and Bottom -= d, Right and Top += d).
    OvRegion& operator+=(double d);
    /// Shrinks the region by d on every side.
    OvRegion& operator-=(double d);
    /// Corner-wise sum / difference of x and y (first with first, second with second); z and
    /// the other point fields are this region's.
    OvRegion operator+(const OvRegion& other) const;
    OvRegion operator-(const OvRegion& other) const;

    /// Whether p lies in the region, bounds included, on x and y. Works on unsorted regions.
    /// A null point gives false.
    bool Overlap(const OvPoint* p) const;
    /// Whether the two (sorted) regions meet; touching edges count. A null region gives false.
    bool Overlap(const OvRegion* other) const;

    /// Becomes the common part: each axis is intersected with `OvIntervall`, y first, then x,
    /// and the result sorted. An axis on which the regions are disjoint becomes 0..0; on which
    /// they only touch, it follows `OvIntervall`'s order-dependent rule.
    OvRegion& Intersect(const OvRegion& other);
    /// Top becomes the larger Top and Bottom the smaller Bottom, but Left the larger Left and
    /// Right the smaller Right: the enclosing span in y and the common part in x. The project
    /// data relies on this mixed rule; it is not a bounding-box union.
    OvRegion& Union(const OvRegion& other);

    /// Reads the two corners as point records with the x, y columns, first then second, from
    /// the reader's tokenizer; the "}" closing the block stays the current token. Returns 1.
    /// The corners are taken over only when all four numbers were read: a block that closes
    /// early leaves the region as it was, like an incomplete record of a point list, and the
    /// reader goes on after the block. Other tokenizer errors reach the reader.
    int Read(OvReaderObject* reader);
    /// The same on a tokenizer and its stream directly (the current token is the first number).
    int Read(OvParser& parser, std::istream& in);
    /// `Read` in the shape of a link function, so that a block can be bound to a region:
    /// `Link(&region, &OvRegion::ReadHdl)`. The argument is the `OvReaderObject*`.
    std::int32_t ReadHdl(void* readerObject);
    /// Writes the first corner, then the second, each as a point record with the x, y columns
    /// (a blank and a right-aligned field of 21, precision 16), without a line end.
    std::ostream& Write(std::ostream& out) const;
};

}  // namespace orvo
