// The point-in-polygon rule of OvPolygon::Overlap carried out word for word: the box test, the
// ray from the point to the right, a copy of the ring rotated to start at its lowest vertex
// (the last one of equal lowest y) and closed with a copy of its last vertex, and the parity of
// the ray's crossings with the edges. Slow on purpose: tests, the fuzz target and the benchmark
// hold the library's faster forms against it.
#pragma once

#include <cmath>

#include "orvo/geom2d/line.h"
#include "orvo/geom2d/polygon.h"
#include "orvo/model/point.h"
#include "orvo/model/point_list.h"

namespace orvo::test {

inline bool LiteralOverlap(const OvPolygon& polygon, const OvPoint& p) {
    if (!polygon.IsInBox(p)) return false;
    if (polygon.GetMode() != OvPolygonMode2D && polygon.GetMode() != OvPolygonMode2DId) return true;
    if (polygon.Count() == 0) return true;
    const double minX = polygon.GetMin().GetX();
    const double maxX = polygon.GetMax().GetX();
    const OvLine ray(
        p, OvPoint(0, std::fabs(2.0 * (maxX - minX)) + std::fabs(maxX), p.GetY(), 0.0, 0));

    OvPointList ring(polygon.GetPointList());
    OvPoint* lowest = ring.First();
    for (OvPoint* q = ring.First(); q != nullptr; q = q->Next()) {
        if (q->GetY() <= lowest->GetY()) lowest = q;
    }
    while (ring.First() != lowest)
        ring.Add(ring.SubtractFirst());
    ring.Insert(ring.First(), new OvPoint(*ring.Last()));

    int crossings = 0;
    for (const OvPoint* q = ring.First()->Next(); q != nullptr; q = q->Next()) {
        if (Intersect(ray, OvLine(*q->Previous(), *q))) ++crossings;
    }
    return crossings % 2 == 1;
}

}  // namespace orvo::test
