// The point-in-polygon test walks the ring in place (OvPolygon::Overlap) or only the edges of
// one horizontal band (OvPreparedPolygon). Both must give exactly the answer of the rule as first
// stated: copy the ring, rotate the copy to its lowest vertex, put a copy of the last vertex in
// front and count the edges the test segment meets with Intersect. That rule is written out
// here on the public pieces (point list, OvLine, Intersect) and compared on random polygons and
// points, on points that hit vertices and edges, and at magnitudes where products underflow.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "orvo/geom2d/line.h"
#include "orvo/geom2d/polygon.h"
#include "orvo/geom2d/prepared_polygon.h"

#include "literal_overlap.h"

namespace orvo {
namespace {

using orvo::test::LiteralOverlap;

OvPoint P(double x, double y) {
    return OvPoint(0, x, y, 0.0, 0);
}

// Tallies what the queries hit, so that a test can show it exercised what it claims to.
struct Tally {
    int queries = 0;
    int literal = 0;  // of them compared with the literal rule too
    int inside = 0;
    int onVertexRow = 0;  // the test segment runs through a vertex's y
};

void ExpectAgreement(const OvPolygon& polygon, const std::vector<OvPoint>& queries, Tally& tally) {
    const OvPreparedPolygon prepared(polygon);
    std::vector<double> vertexRows;
    for (const OvPoint* q = polygon.First(); q != nullptr; q = q->Next())
        vertexRows.push_back(q->GetY());
    // The literal rule copies the whole ring for every point, which is slow under the
    // sanitizers: on large rings it checks every 16th point, and the in-place walk (checked
    // against it) stands in for it on the others.
    const std::size_t literalStep = polygon.Count() > 64 ? 16 : 1;
    for (std::size_t i = 0; i < queries.size(); ++i) {
        const OvPoint& p = queries[i];
        const bool expected = polygon.Overlap(p);
        if (i % literalStep == 0) {
            ASSERT_EQ(LiteralOverlap(polygon, p), expected)
                << "in place, point (" << p.GetX() << ", " << p.GetY() << ")";
            ++tally.literal;
        }
        ASSERT_EQ(prepared.Overlap(p), expected)
            << "prepared, point (" << p.GetX() << ", " << p.GetY() << ")";
        ASSERT_EQ(prepared.Overlap(&p), expected);
        ++tally.queries;
        if (expected) ++tally.inside;
        for (double y : vertexRows) {
            if (y == p.GetY()) {
                ++tally.onVertexRow;
                break;
            }
        }
    }
}

class Random {
public:
    explicit Random(std::uint64_t start) : engine_(start) {}
    double Uniform(double lo, double hi) {
        return std::uniform_real_distribution<>(lo, hi)(engine_);
    }
    int Int(int lo, int hi) { return std::uniform_int_distribution<>(lo, hi)(engine_); }

private:
    std::mt19937_64 engine_;
};

// A star around the origin with integer vertices on a coarse grid: horizontal and vertical
// edges, repeated vertices and collinear runs are frequent.
OvPolygon GridStar(Random& random, int vertices, int radius, double scale) {
    OvPolygon polygon;
    for (int i = 0; i < vertices; ++i) {
        const double angle = 6.283185307179586 * i / vertices;
        const double r = random.Int(1, radius);
        polygon.AddPoint(
            P(std::round(r * std::cos(angle)) * scale, std::round(r * std::sin(angle)) * scale));
    }
    return polygon;
}

// Vertices anywhere in the box: self-intersecting rings.
OvPolygon Scribble(Random& random, int vertices, double scale) {
    OvPolygon polygon;
    for (int i = 0; i < vertices; ++i)
        polygon.AddPoint(P(random.Uniform(-1, 1) * scale, random.Uniform(-1, 1) * scale));
    return polygon;
}

// Points that meet the ring: every vertex, the middle of every edge, the ring's vertex rows at
// random x and at the other vertices' x, random points of the box, and the box corners.
std::vector<OvPoint> Probes(const OvPolygon& polygon, Random& random, int randomCount) {
    std::vector<OvPoint> probes;
    const OvPoint& lo = polygon.GetMin();
    const OvPoint& hi = polygon.GetMax();
    std::vector<OvPoint> ring;
    for (const OvPoint* q = polygon.First(); q != nullptr; q = q->Next())
        ring.push_back(*q);
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const OvPoint& a = ring[i];
        const OvPoint& b = ring[(i + 1) % ring.size()];
        probes.push_back(P(a.GetX(), a.GetY()));
        probes.push_back(P(0.5 * (a.GetX() + b.GetX()), 0.5 * (a.GetY() + b.GetY())));
        probes.push_back(P(random.Uniform(lo.GetX(), hi.GetX()), a.GetY()));
        probes.push_back(
            P(ring[random.Int(0, static_cast<int>(ring.size()) - 1)].GetX(), a.GetY()));
        probes.push_back(P(std::nextafter(a.GetX(), hi.GetX() + 1), a.GetY()));
        probes.push_back(P(a.GetX(), std::nextafter(a.GetY(), hi.GetY() + 1)));
    }
    for (int i = 0; i < randomCount; ++i)
        probes.push_back(
            P(random.Uniform(lo.GetX(), hi.GetX()), random.Uniform(lo.GetY(), hi.GetY())));
    probes.push_back(P(lo.GetX(), lo.GetY()));
    probes.push_back(P(hi.GetX(), hi.GetY()));
    probes.push_back(P(lo.GetX(), hi.GetY()));
    probes.push_back(P(hi.GetX(), lo.GetY()));
    return probes;
}

TEST(PolygonOverlapAgreementTest, GridStarsWithVertexAndEdgeHits) {
    Random random(20240611);
    Tally tally;
    for (int vertices : {1, 2, 3, 4, 5, 8, 16, 50, 200, 1000}) {
        for (int round = 0; round < (vertices >= 200 ? 2 : 5); ++round) {
            const OvPolygon polygon = GridStar(random, vertices, 1 + round * 4, 1.0);
            ExpectAgreement(polygon, Probes(polygon, random, 200), tally);
            // The same shape at integer points of its box: many rows through vertices.
            std::vector<OvPoint> grid;
            for (double y = polygon.GetMin().GetY(); y <= polygon.GetMax().GetY(); ++y) {
                for (double x = polygon.GetMin().GetX(); x <= polygon.GetMax().GetX(); ++x)
                    grid.push_back(P(x, y));
            }
            ExpectAgreement(polygon, grid, tally);
        }
    }
    // Not a vacuous comparison: both answers and many vertex rows occurred.
    EXPECT_GT(tally.inside, tally.queries / 10);
    EXPECT_LT(tally.inside, tally.queries * 9 / 10);
    EXPECT_GT(tally.onVertexRow, tally.queries / 4);
    EXPECT_GT(tally.literal, 15000);
}

TEST(PolygonOverlapAgreementTest, SelfIntersectingRingsAndRandomPoints) {
    Random random(7);
    Tally tally;
    for (int vertices : {3, 7, 40, 300}) {
        for (double scale : {1.0, 1e-3, 1234.5678, 1e6}) {
            const OvPolygon polygon = Scribble(random, vertices, scale);
            ExpectAgreement(polygon, Probes(polygon, random, 500), tally);
        }
    }
    EXPECT_GT(tally.inside, tally.queries / 10);
    EXPECT_LT(tally.inside, tally.queries * 9 / 10);
}

TEST(PolygonOverlapAgreementTest, PreparedPolygonsUseTheBandIndex) {
    // A smooth ring gets about one band per edge.
    OvPolygon circle;
    for (int i = 0; i < 1000; ++i) {
        const double angle = 6.283185307179586 * i / 1000;
        circle.AddPoint(P(std::round(1e6 * std::cos(angle)), std::round(1e6 * std::sin(angle))));
    }
    const OvPreparedPolygon prepared(circle);
    EXPECT_TRUE(prepared.IsIndexed());
    EXPECT_EQ(prepared.EdgeCount(), 1000);
    EXPECT_EQ(prepared.BandCount(), 1000);
    // Edges that reach across much of the height get fewer, taller bands.
    Random random(11);
    const OvPreparedPolygon spiky(GridStar(random, 1000, 40, 0.25));
    EXPECT_TRUE(spiky.IsIndexed());
    EXPECT_GT(spiky.BandCount(), 1);
    EXPECT_LT(spiky.BandCount(), 1000);
    // Coordinates beyond 2^1000 leave the index out.
    OvPolygon huge;
    for (const OvPoint& p : {P(0, 0), P(0x1p1001, 0), P(0, 1)})
        huge.AddPoint(p);
    EXPECT_FALSE(OvPreparedPolygon(huge).IsIndexed());
    EXPECT_EQ(OvPreparedPolygon(huge).BandCount(), 0);
}

// Far from 1 the orientation products underflow to zero or overflow to infinity, and beyond
// 2^1000 the prepared polygon gives up its index; the answers must not change anywhere.
TEST(PolygonOverlapAgreementTest, ExtremeMagnitudes) {
    Random random(3);
    Tally tally;
    for (double scale :
         {0x1p-1074, 0x1p-1060, 1e-310, 1e-300, 1e-160, 1e150, 1e300, 0x1p1001, 1e307}) {
        for (int vertices : {3, 12, 60}) {
            const OvPolygon star = GridStar(random, vertices, 9, scale);
            ExpectAgreement(star, Probes(star, random, 100), tally);
            const OvPolygon scribble = Scribble(random, vertices, scale);
            ExpectAgreement(scribble, Probes(scribble, random, 100), tally);
        }
    }
    // A tiny ring far from the origin and a wide one with a tiny notch.
    OvPolygon offset;
    for (const OvPoint& p : {P(1e6, 1e-300), P(1e6 + 1, 2e-300), P(1e6, 3e-300)})
        offset.AddPoint(p);
    ExpectAgreement(offset, Probes(offset, random, 200), tally);
    OvPolygon notch;
    for (const OvPoint& p :
         {P(-1e200, 0), P(1e200, 0), P(1e200, 1e-300), P(0, 5e-324), P(-1e200, 1e-300)})
        notch.AddPoint(p);
    ExpectAgreement(notch, Probes(notch, random, 200), tally);
    EXPECT_GT(tally.inside, 0);
}

TEST(PolygonOverlapAgreementTest, NonFiniteVerticesAndStaleBoxes) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    Random random(5);
    Tally tally;
    for (const OvPoint& odd :
         {P(inf, 3), P(-inf, 3), P(3, inf), P(3, -inf), P(nan, 3), P(3, nan), P(inf, inf)}) {
        OvPolygon polygon;
        for (const OvPoint& p : {P(0, 0), P(10, 0), odd, P(10, 10), P(0, 10)})
            polygon.AddPoint(p);
        ExpectAgreement(polygon, Probes(polygon, random, 100), tally);
        std::vector<OvPoint> square;
        for (double y = 0; y <= 10; ++y) {
            for (double x = 0; x <= 10; ++x)
                square.push_back(P(x, y));
        }
        ExpectAgreement(polygon, square, tally);
    }

    // Points changed behind the polygon's back: the box that the test uses is the old one.
    OvPolygon stale = GridStar(random, 30, 10, 1.0);
    for (OvPoint* q = stale.GetPointList().First(); q != nullptr; q = q->Next())
        q->SetY(q->GetY() * 3.0 + 1.0);
    ExpectAgreement(stale, Probes(stale, random, 300), tally);
    EXPECT_GT(tally.inside, 0);
}

TEST(PolygonOverlapAgreementTest, EveryModeAndTheEmptyPolygon) {
    Random random(9);
    Tally tally;
    for (OVPolygonMode mode : {OvPolygonMode2D, OvPolygonMode2DId, OvPolygonMode3D,
                               OvPolygonMode3DId, static_cast<OVPolygonMode>(7)}) {
        const OvPolygon star = GridStar(random, 20, 8, 1.0);
        OvPolygon polygon(mode);
        for (const OvPoint* q = star.First(); q != nullptr; q = q->Next())
            polygon.AddPoint(*q);
        ExpectAgreement(polygon, Probes(polygon, random, 100), tally);
    }
    const OvPolygon empty;
    ExpectAgreement(empty, {P(0, 0), P(1, 0), P(0, -1)}, tally);
}

}  // namespace
}  // namespace orvo
