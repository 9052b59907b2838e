// A polygon prepared for many point-in-polygon tests. Deciding which rectified plane each of a
// photo's points belongs to asks the same valid-region polygon again and again; walking all its
// edges for every point costs time in proportion to the vertex count. The prepared form sorts
// the edges into horizontal bands once, so that a test looks only at the edges of the point's
// band.
#pragma once

#include <cstdint>
#include <vector>

#include "orvo/geom2d/polygon.h"

namespace orvo {

/// A snapshot of an `OvPolygon` (mode, box and edges) that answers `Overlap` exactly as the
/// polygon does, bit for bit, boundary cases and the twice-counted vertex included.
///
/// The snapshot does not follow later changes of the polygon: prepare it again after changing
/// the points, the box or the mode.
///
/// Only the edges of the band holding the point's y are examined, and of those only the ones
/// whose y range holds it. An edge with both ends strictly above (or strictly below) the test
/// segment is then never met. That holds for the exact orientation test as long as no product
/// in it can underflow to zero or overflow a difference; the preparation and each test check
/// the magnitudes that guarantee this (all coordinates finite and below 2^1000 in size, and
/// the segment's length times the smallest possible height difference representable), and a
/// test outside those bounds walks every edge, as `OvPolygon::Overlap` does.
class OvPreparedPolygon {
public:
    explicit OvPreparedPolygon(const OvPolygon& polygon);

    /// The same answer as `OvPolygon::Overlap(p)` of the polygon it was prepared from.
    bool Overlap(const OvPoint& p) const;
    /// The same through a pointer; a null point gives false.
    bool Overlap(const OvPoint* p) const;

    /// The number of edges (equal to the number of points; a single point is one edge to itself).
    int EdgeCount() const { return static_cast<int>(ring_.size()); }
    /// Whether the band index is in use (see the class comment); false for a polygon that
    /// always walks every edge.
    bool IsIndexed() const { return indexed_; }
    /// The number of horizontal bands (0 without an index).
    int BandCount() const {
        return static_cast<int>(bandStart_.empty() ? 0 : bandStart_.size() - 1);
    }

private:
    struct Vertex {
        double x;
        double y;
    };
    struct Edge {
        Vertex first;   // the ends of the edge from a vertex's predecessor to the vertex, in
        Vertex second;  // the order `OvLine::Adjust` puts them in
        double low;     // the smaller y of the two ends
        double high;    // the larger y
    };

    bool IsInBox(const OvPoint& p) const;
    bool WalkEveryEdge(const OvPoint& p) const;
    bool WalkBand(const OvPoint& p) const;
    void BuildBands();
    std::size_t BandOf(double y) const;

    OVPolygonMode mode_;
    OvPoint minimum_;
    OvPoint maximum_;
    std::vector<Vertex> ring_;  // the points in list order
    bool indexed_ = false;
    // The smallest exponent of a unit in the last place among the vertices' y values other than
    // zero: no height difference between such a y and another value is smaller than that unit,
    // or than the other value's.
    int smallestUlpExponentY_ = 0;
    double bandLow_ = 0.0;
    double bandScale_ = 0.0;
    std::vector<std::uint32_t>
        bandStart_;  // band b holds bandEdges_[bandStart_[b], bandStart_[b + 1])
    std::vector<Edge> bandEdges_;
};

}  // namespace orvo
