// The orientation and segment tests on bare x, y pairs. The public functions take points and
// lines; the point-in-polygon tests call these directly so that they do not copy whole point
// records for every edge.
#pragma once

#include <cmath>

#include "orvo/model/point.h"

namespace orvo::planar {

struct XY {
    double x;
    double y;
};

inline XY Of(const OvPoint& p) {
    return {p.GetX(), p.GetY()};
}

inline int CounterClockwise(XY p0, XY p1, XY p2) {
    const double dx1 = p1.x - p0.x;
    const double dy1 = p1.y - p0.y;
    const double dx2 = p2.x - p0.x;
    const double dy2 = p2.y - p0.y;
    if (dx1 * dy2 > dy1 * dx2) return +1;
    if (dx1 * dy2 < dy1 * dx2) return -1;
    // Collinear: behind p0, beyond p1, or on the segment.
    if (dx1 * dx2 < 0 || dy1 * dy2 < 0) return -1;
    if (dx2 * dx2 + dy2 * dy2 > dx1 * dx1 + dy1 * dy1) return +1;
    return 0;
}

/// The order `OvLine::Adjust` gives: kept when first <= second in x and in y, else swapped.
inline void Adjust(XY& first, XY& second) {
    if (first.x <= second.x && first.y <= second.y) return;
    const XY keep = first;
    first = second;
    second = keep;
}

/// `Intersect` on two segments already put in order with `Adjust` (which is not idempotent:
/// adjusting an adjusted pair may swap it again).
inline bool IntersectAdjusted(XY a1, XY a2, XY b1, XY b2) {
    if (CounterClockwise(a1, a2, b2) * CounterClockwise(a1, a2, b1) > 0) return false;
    return CounterClockwise(b1, b2, a2) * CounterClockwise(b1, b2, a1) <= 0;
}

inline bool Intersect(XY a1, XY a2, XY b1, XY b2) {
    Adjust(a1, a2);
    Adjust(b1, b2);
    return IntersectAdjusted(a1, a2, b1, b2);
}

/// The horizontal test segment of the point-in-polygon test: from p to the right end x that the
/// polygon's box gives, together with the order `Intersect` puts it in.
struct TestRay {
    XY from;
    XY to;
    XY low;  // `from` and `to` after Adjust
    XY high;
};

/// The right end of the test segment: well beyond the box whatever the signs of its x values.
inline double RayEndX(double minX, double maxX) {
    return std::fabs(2.0 * (maxX - minX)) + std::fabs(maxX);
}

inline TestRay MakeTestRay(XY p, double minX, double maxX) {
    TestRay ray{p, {RayEndX(minX, maxX), p.y}, {}, {}};
    ray.low = ray.from;
    ray.high = ray.to;
    Adjust(ray.low, ray.high);
    return ray;
}

/// On which side of the test segment a vertex lies, exactly as the first test of `Intersect`
/// sees it. Both ends of an edge on the same side (a product > 0) mean that `Intersect` rejects
/// the edge, so one evaluation per vertex spares two per edge.
inline int Side(const TestRay& ray, XY vertex) {
    return CounterClockwise(ray.low, ray.high, vertex);
}

/// Whether the test segment meets the edge from start to end: the full `Intersect`.
inline bool Meets(const TestRay& ray, XY start, XY end) {
    return Intersect(ray.from, ray.to, start, end);
}

}  // namespace orvo::planar
