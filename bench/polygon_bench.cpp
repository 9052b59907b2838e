// Point-in-polygon tests and nearest-point searches on a polygon of 1,000 vertices, in tests per
// second. Every benchmark also runs a plain loop over the same data in the same iteration, timed
// apart, and reports its own rate as a ratio to that loop's:
//   - Overlap: the classic crossing-number loop over an array of vertices (no exact boundary
//     rule: a point is inside when a ray to the right crosses an odd number of edges, with the
//     half-open rule at vertices); it is what a caller would write without the library.
//   - FindNearest: a loop over an array of x, y, z that keeps the smallest Euclidean distance.
// The literal form of the overlap rule (a copy of the ring, rotated to its lowest vertex, for
// every test) is measured as well, as the figure the other two improve upon.
//
// The reported time is the thread's CPU time, which a busy machine disturbs little.
#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "orvo/geom2d/line.h"
#include "orvo/geom2d/polygon.h"
#include "orvo/geom2d/prepared_polygon.h"

#include "literal_overlap.h"

#include "bench_support.h"

namespace {

using orvo::test::LiteralOverlap;

using orvo::bench::CpuSecondsOf;

using orvo::OvLine;
using orvo::OvPoint;
using orvo::OvPointList;
using orvo::OvPolygon;
using orvo::OvPreparedPolygon;

constexpr int kVertices = 1000;
constexpr int kQueries = 4096;

struct XY {
    double x;
    double y;
};

// A star-shaped ring of a rectification's valid-region size (metres, with millimetre digits).
// Shape 0, an outline: the radius wanders slowly, as along a digitised border. Shape 1, spiky:
// every vertex takes a new random radius, so that many edges are tall and a horizontal line
// meets a great many of them (the hard case for any index by height).
OvPolygon MakeStar(int shape) {
    std::mt19937_64 random(4242);
    std::uniform_real_distribution<double> radius(300.0, 500.0);
    std::uniform_real_distribution<double> step(-4.0, 4.0);
    OvPolygon polygon;
    double r = 400.0;
    for (int i = 0; i < kVertices; ++i) {
        const double angle = 6.283185307179586 * i / kVertices;
        r = shape == 0 ? std::clamp(r + step(random), 300.0, 500.0) : radius(random);
        const double x = 1000.0 + std::round(r * std::cos(angle) * 1000) / 1000;
        const double y = 2000.0 + std::round(r * std::sin(angle) * 1000) / 1000;
        polygon.AddPoint(OvPoint(static_cast<unsigned>(i + 1), x, y, 0.0, 0));
    }
    return polygon;
}

std::vector<OvPoint> MakeQueries(const OvPolygon& polygon) {
    std::mt19937_64 random(77);
    std::uniform_real_distribution<double> x(polygon.GetMin().GetX(), polygon.GetMax().GetX());
    std::uniform_real_distribution<double> y(polygon.GetMin().GetY(), polygon.GetMax().GetY());
    std::vector<OvPoint> queries;
    for (int i = 0; i < kQueries; ++i)
        queries.emplace_back(0, x(random), y(random), 0.0, 0);
    return queries;
}

std::vector<XY> Vertices(const OvPolygon& polygon) {
    std::vector<XY> ring;
    for (const OvPoint* p = polygon.First(); p != nullptr; p = p->Next())
        ring.push_back({p->GetX(), p->GetY()});
    return ring;
}

// The crossing-number loop as it is usually written.
bool PlainCrossing(const std::vector<XY>& ring, double px, double py) {
    bool inside = false;
    for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
        if ((ring[i].y > py) != (ring[j].y > py) &&
            px < (ring[j].x - ring[i].x) * (py - ring[i].y) / (ring[j].y - ring[i].y) + ring[i].x)
            inside = !inside;
    }
    return inside;
}

// The rule word for word: copy, rotate to the lowest vertex, put a copy of the last vertex in
// front, count the edges that Intersect the test segment.
void Report(benchmark::State& state, double ownSeconds, double plainSeconds, int insideCount) {
    const double tests = static_cast<double>(state.iterations()) * kQueries;
    state.SetItemsProcessed(static_cast<std::int64_t>(tests));
    state.counters["tests/s"] = tests / ownSeconds;
    state.counters["plain_tests/s"] = tests / plainSeconds;
    state.counters["vs_plain"] = plainSeconds / ownSeconds;  // above 1: faster than the plain loop
    state.counters["inside"] = insideCount;
}

// Runs `own` over every query, then the plain crossing loop, each timed apart.
template <typename Test>
void RunOverlap(benchmark::State& state, const OvPolygon& polygon, Test own) {
    const std::vector<OvPoint> queries = MakeQueries(polygon);
    const std::vector<XY> ring = Vertices(polygon);
    double ownSeconds = 0.0;
    double plainSeconds = 0.0;
    int inside = 0;
    for (auto _ : state) {
        int count = 0;
        const double seconds = CpuSecondsOf([&] {
            for (const OvPoint& q : queries)
                count += own(q) ? 1 : 0;
        });
        ownSeconds += seconds;
        state.SetIterationTime(seconds);
        int plainCount = 0;
        plainSeconds += CpuSecondsOf([&] {
            for (const OvPoint& q : queries)
                plainCount += PlainCrossing(ring, q.GetX(), q.GetY()) ? 1 : 0;
        });
        benchmark::DoNotOptimize(plainCount);
        inside = count;
    }
    Report(state, ownSeconds, plainSeconds, inside);
}

void BM_PolygonOverlapLiteral(benchmark::State& state) {
    const OvPolygon polygon = MakeStar(static_cast<int>(state.range(0)));
    RunOverlap(state, polygon, [&polygon](const OvPoint& p) { return LiteralOverlap(polygon, p); });
}

void BM_PolygonOverlap(benchmark::State& state) {
    const OvPolygon polygon = MakeStar(static_cast<int>(state.range(0)));
    RunOverlap(state, polygon, [&polygon](const OvPoint& p) { return polygon.Overlap(p); });
}

// The preparation is made once, before the timing, as a caller testing many points would.
void BM_PreparedPolygonOverlap(benchmark::State& state) {
    const OvPolygon polygon = MakeStar(static_cast<int>(state.range(0)));
    const OvPreparedPolygon prepared(polygon);
    RunOverlap(state, polygon, [&prepared](const OvPoint& p) { return prepared.Overlap(p); });
}

// What the preparation itself costs, per polygon of 1,000 vertices.
void BM_PreparePolygon(benchmark::State& state) {
    const OvPolygon polygon = MakeStar(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        OvPreparedPolygon prepared(polygon);
        benchmark::DoNotOptimize(prepared.BandCount());
    }
}

// FindNearest over the polygon's 1,000 vertices as a point list.
void BM_FindNearest(benchmark::State& state) {
    const OvPolygon polygon = MakeStar(static_cast<int>(state.range(0)));
    const OvPointList& list = polygon.GetPointList();
    const std::vector<OvPoint> queries = MakeQueries(polygon);
    struct XYZ {
        double x, y, z;
    };
    std::vector<XYZ> plain;
    for (const OvPoint* p = list.First(); p != nullptr; p = p->Next())
        plain.push_back({p->GetX(), p->GetY(), p->GetZ()});
    double ownSeconds = 0.0;
    double plainSeconds = 0.0;
    for (auto _ : state) {
        double sum = 0.0;
        const double seconds = CpuSecondsOf([&] {
            for (const OvPoint& q : queries) {
                double distance = 0.0;
                benchmark::DoNotOptimize(list.FindNearest(q, &distance));
                sum += distance;
            }
        });
        ownSeconds += seconds;
        state.SetIterationTime(seconds);
        double plainSum = 0.0;
        plainSeconds += CpuSecondsOf([&] {
            for (const OvPoint& q : queries) {
                double best = 0.0;
                std::size_t bestIndex = plain.size();
                for (std::size_t i = 0; i < plain.size(); ++i) {
                    const double dx = plain[i].x - q.GetX();
                    const double dy = plain[i].y - q.GetY();
                    const double dz = plain[i].z - q.GetZ();
                    const double d = std::sqrt(dx * dx + dy * dy + dz * dz);
                    if (bestIndex == plain.size() || d < best) {
                        best = d;
                        bestIndex = i;
                    }
                }
                plainSum += best;
            }
        });
        if (sum != plainSum) {
            state.SkipWithError("FindNearest and the plain loop disagree");
            return;
        }
    }
    Report(state, ownSeconds, plainSeconds, 0);
}

// Argument: the shape (0 outline, 1 spiky).
BENCHMARK(BM_PolygonOverlapLiteral)->UseManualTime()->Unit(benchmark::kMillisecond)->Arg(0)->Arg(1);
BENCHMARK(BM_PolygonOverlap)->UseManualTime()->Unit(benchmark::kMillisecond)->Arg(0)->Arg(1);
BENCHMARK(BM_PreparedPolygonOverlap)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Arg(0)
    ->Arg(1);
BENCHMARK(BM_PreparePolygon)->Unit(benchmark::kMicrosecond)->Arg(0)->Arg(1);
BENCHMARK(BM_FindNearest)->UseManualTime()->Unit(benchmark::kMillisecond)->Arg(0);

}  // namespace
