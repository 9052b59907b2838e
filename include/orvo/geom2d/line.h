// Segments in the plane and the two predicates every other 2D test is built from: the
// orientation of three points and whether two segments meet. All comparisons are exact.
#pragma once

#include "orvo/model/point.h"

namespace orvo {

/// A segment between two points. Only x and y take part in the predicates; z is carried along.
class OvLine {
public:
    /// Both points at the origin.
    OvLine() = default;
    /// From the x, y, z of the first and of the second point.
    OvLine(double x1, double y1, double z1, double x2, double y2, double z2);
    /// From two points, copied whole.
    OvLine(const OvPoint& first, const OvPoint& second);
    OvLine(const OvLine&) = default;
    OvLine& operator=(const OvLine&) = default;
    virtual ~OvLine();

    OvPoint& GetFirst() { return first; }
    const OvPoint& GetFirst() const { return first; }
    OvPoint& GetSecond() { return second; }
    const OvPoint& GetSecond() const { return second; }

    /// Keeps the order only when the first point is at or below the second in x AND in y;
    /// otherwise swaps the two points whole. So afterwards x or y may still descend (a segment
    /// from (0, 5) to (3, 1) becomes (3, 1)-(0, 5)); `Intersect` relies on exactly this order.
    void Adjust();

protected:
    OvPoint first;
    OvPoint second;
};

/// The orientation of p2 seen along p0 -> p1, on x and y:
/// +1 when p2 lies to the left (counter-clockwise turn) or, collinear, beyond p1;
/// -1 when it lies to the right or, collinear, behind p0;
///  0 when it lies on the segment p0-p1, end points included.
int CounterClockwise(const OvPoint& p0, const OvPoint& p1, const OvPoint& p2);

/// Whether the segments a and b have a point in common; touching at an end point counts.
/// Both segments are put in `Adjust` order (on copies) before the orientation tests.
bool Intersect(const OvLine& a, const OvLine& b);

}  // namespace orvo
