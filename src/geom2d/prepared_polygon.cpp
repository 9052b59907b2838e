#include "orvo/geom2d/prepared_polygon.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "planar.h"

namespace orvo {

namespace {

// Coordinates up to this size leave every difference, and twice the box width, finite.
constexpr double kLargestIndexedCoordinate = 0x1p1000;
// The exponent of the smallest positive double (a subnormal).
constexpr int kSmallestExponent = -1074;
// Stands for "no y other than zero": larger than any sum it takes part in can make matter.
constexpr int kNoUlpExponent = 100000;
// Bands are halved while the edges, counted once per band they reach, exceed this many per edge.
constexpr std::size_t kBandEntriesPerEdge = 8;

bool Moderate(double v) {
    return std::fabs(v) <= kLargestIndexedCoordinate;  // false for NaN and infinities too
}

// The exponent of the unit in the last place of a finite y other than zero. Every double of at
// least this magnitude is a multiple of that unit, so two different doubles differ by at least
// the smaller of their two units.
int UlpExponent(double y) {
    return std::max(std::ilogb(y) - 52, kSmallestExponent);
}

bool Is2D(OVPolygonMode mode) {
    return mode == OvPolygonMode2D || mode == OvPolygonMode2DId;
}
bool Is3D(OVPolygonMode mode) {
    return mode == OvPolygonMode3D || mode == OvPolygonMode3DId;
}

}  // namespace

OvPreparedPolygon::OvPreparedPolygon(const OvPolygon& polygon)
    : mode_(polygon.GetMode()), minimum_(polygon.GetMin()), maximum_(polygon.GetMax()) {
    const OvPointList& points = polygon.GetPointList();
    for (const OvPoint* q = points.First(); q != nullptr; q = q->Next())
        ring_.push_back({q->GetX(), q->GetY()});
    if (!Is2D(mode_) || ring_.empty()) return;  // the box alone decides

    indexed_ = Moderate(minimum_.GetX()) && Moderate(maximum_.GetX()) &&
               Moderate(minimum_.GetY()) && Moderate(maximum_.GetY());
    smallestUlpExponentY_ = kNoUlpExponent;
    for (const Vertex& v : ring_) {
        indexed_ = indexed_ && Moderate(v.x) && Moderate(v.y);
        if (v.y != 0.0 && std::isfinite(v.y))
            smallestUlpExponentY_ = std::min(smallestUlpExponentY_, UlpExponent(v.y));
    }
    if (indexed_) BuildBands();
}

std::size_t OvPreparedPolygon::BandOf(double y) const {
    // Subtraction and multiplication round monotonically, so y1 <= y2 gives BandOf(y1) <=
    // BandOf(y2): an edge whose y range holds y is filed in y's band.
    const std::size_t last = bandStart_.size() - 2;
    const double t = (y - bandLow_) * bandScale_;
    if (!(t > 0.0)) return 0;
    if (t >= static_cast<double>(last)) return last;
    return static_cast<std::size_t>(t);
}

void OvPreparedPolygon::BuildBands() {
    const std::size_t n = ring_.size();
    std::vector<Edge> edges;
    edges.reserve(n);
    double lowY = ring_[0].y;
    double highY = ring_[0].y;
    for (std::size_t i = 0; i < n; ++i) {
        planar::XY start{ring_[i == 0 ? n - 1 : i - 1].x, ring_[i == 0 ? n - 1 : i - 1].y};
        planar::XY end{ring_[i].x, ring_[i].y};
        planar::Adjust(start, end);
        edges.push_back({{start.x, start.y},
                         {end.x, end.y},
                         std::min(start.y, end.y),
                         std::max(start.y, end.y)});
        lowY = std::min(lowY, end.y);
        highY = std::max(highY, end.y);
    }

    // About one band per edge; fewer when tall edges would be filed in too many bands.
    std::size_t bands = std::max<std::size_t>(n, 1);
    for (;;) {
        bandLow_ = lowY;
        bandScale_ = highY > lowY ? static_cast<double>(bands) / (highY - lowY) : 0.0;
        if (!std::isfinite(bandScale_)) bandScale_ = 0.0;
        bandStart_.assign(bands + 1, 0);
        std::size_t entries = 0;
        for (const Edge& e : edges)
            entries += BandOf(e.high) - BandOf(e.low) + 1;
        if (bands == 1 || entries <= kBandEntriesPerEdge * n) break;
        bands /= 2;
    }

    // Counting pass, then filling pass: bandStart_[b + 1] first counts the edges of band b.
    for (const Edge& e : edges) {
        for (std::size_t b = BandOf(e.low), top = BandOf(e.high); b <= top; ++b)
            ++bandStart_[b + 1];
    }
    for (std::size_t b = 0; b < bands; ++b)
        bandStart_[b + 1] += bandStart_[b];
    bandEdges_.resize(bandStart_[bands]);
    std::vector<std::uint32_t> fill(bandStart_.begin(), bandStart_.end() - 1);
    for (const Edge& e : edges) {
        for (std::size_t b = BandOf(e.low), top = BandOf(e.high); b <= top; ++b)
            bandEdges_[fill[b]++] = e;
    }
}

bool OvPreparedPolygon::IsInBox(const OvPoint& p) const {
    if (!Is2D(mode_) && !Is3D(mode_)) return false;
    const bool inPlane = minimum_.GetX() <= p.GetX() && p.GetX() <= maximum_.GetX() &&
                         minimum_.GetY() <= p.GetY() && p.GetY() <= maximum_.GetY();
    if (!inPlane || Is2D(mode_)) return inPlane;
    return minimum_.GetZ() <= p.GetZ() && p.GetZ() <= maximum_.GetZ();
}

bool OvPreparedPolygon::Overlap(const OvPoint& p) const {
    if (!IsInBox(p)) return false;
    if (!Is2D(mode_) || ring_.empty()) return true;
    return indexed_ ? WalkBand(p) : WalkEveryEdge(p);
}

bool OvPreparedPolygon::Overlap(const OvPoint* p) const {
    return p != nullptr && Overlap(*p);
}

bool OvPreparedPolygon::WalkEveryEdge(const OvPoint& p) const {
    // As OvPolygon::Overlap: each edge from a vertex's predecessor to the vertex, the closing
    // edge first; an edge with both ends on one side of the segment is rejected by Intersect.
    const planar::TestRay ray =
        planar::MakeTestRay(planar::Of(p), minimum_.GetX(), maximum_.GetX());
    planar::XY start{ring_.back().x, ring_.back().y};
    int startSide = planar::Side(ray, start);
    int crossings = 0;
    for (const Vertex& v : ring_) {
        const planar::XY end{v.x, v.y};
        const int endSide = planar::Side(ray, end);
        if (startSide * endSide <= 0 && planar::Meets(ray, start, end)) ++crossings;
        start = end;
        startSide = endSide;
    }
    return crossings % 2 == 1;
}

bool OvPreparedPolygon::WalkBand(const OvPoint& p) const {
    const planar::TestRay ray =
        planar::MakeTestRay(planar::Of(p), minimum_.GetX(), maximum_.GetX());
    const double y = p.GetY();

    // A vertex strictly above the segment lies on its left (Side +1) when length * height,
    // the orientation test's one product that is not zero, stays above zero: both factors are
    // positive and the product is at least 2^(exponent of the length + exponent of the
    // height's lower bound). Below that bound the product might round to zero, and the edges
    // are walked one by one.
    const double length = ray.high.x - ray.low.x;
    if (!(length > 0.0)) return WalkEveryEdge(p);
    int heightExponent = smallestUlpExponentY_;
    if (y != 0.0) heightExponent = std::min(heightExponent, UlpExponent(y));
    if (std::ilogb(length) + heightExponent < kSmallestExponent) return WalkEveryEdge(p);

    // Of the edges whose y range holds y, one with its ends strictly above and below passes
    // the first test of Intersect (sides +1 and -1) and needs the second one only; one with an
    // end on the segment's line needs both.
    const std::size_t band = BandOf(y);
    int crossings = 0;
    for (std::uint32_t i = bandStart_[band]; i < bandStart_[band + 1]; ++i) {
        const Edge& e = bandEdges_[i];
        if (!(e.low <= y && y <= e.high)) continue;
        const planar::XY first{e.first.x, e.first.y};
        const planar::XY second{e.second.x, e.second.y};
        if (e.low < y && y < e.high) {
            if (planar::CounterClockwise(first, second, ray.high) *
                    planar::CounterClockwise(first, second, ray.low) <=
                0)
                ++crossings;
        } else if (planar::IntersectAdjusted(ray.low, ray.high, first, second)) {
            ++crossings;
        }
    }
    return crossings % 2 == 1;
}

}  // namespace orvo
