// Plane rectification: mapping a list of 1,000,000 image points through a tilt transform, and
// finding the plane of an ortho photo that holds a point among 100 planes of 100 vertices each.
// Every benchmark also runs a plain loop over the same data in the same iteration, timed apart,
// and reports its own rate as a ratio to that loop's (1.0 = as fast as the plain loop, 0.5 =
// twice as slow):
//   - Transform: the tilt matrix and the placement applied to x, y, z held in an array of
//     structs, with the same homogeneous division and the same weight test as the library.
//   - FindPlane: the crossing-number test over arrays of vertices with a bounding-box check
//     first, the first plane that holds the point winning, as a caller would write it.
//
// The tilt matrix is a projective involution and the placement an involution too, so that the
// points come back to where they started every second pass and the figures do not drift.
//
// The reported time is the thread's CPU time, which a busy machine disturbs little.
//
// Run:  build/<dir>/bench/orvo_bench --benchmark_filter=Rectify
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "bench_support.h"
#include "orvo/model/point_list.h"
#include "orvo/numerics/matrix.h"
#include "orvo/rectify/tilt_plane_info.h"
#include "orvo/rectify/tilt_trafo.h"

namespace {

using orvo::OvMatrix;
using orvo::OvPoint;
using orvo::OvPointList;
using orvo::OvTiltPlaneInfo;
using orvo::OvTiltPlaneInfoList;
using orvo::OvTiltTrafo;
using orvo::bench::Measure;
using orvo::bench::Timing;

constexpr int kPoints = 1000000;
constexpr int kPlanesPerSide = 10;
constexpr int kVertices = 100;
constexpr int kQueries = 4096;

// (x, y) -> (x, y) / (a x + b y - 1): its own inverse.
constexpr double kTilt[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {1e-4, -2e-4, -1.0}};
// z -> 10 - z: its own inverse.
constexpr double kPlacement[4][4] = {
    {1.0, 0.0, 0.0, 0.0}, {0.0, 1.0, 0.0, 0.0}, {0.0, 0.0, -1.0, 10.0}, {0.0, 0.0, 0.0, 1.0}};

struct XYZ {
    double x;
    double y;
    double z;
};

OvTiltTrafo MakeTrafo() {
    OvTiltTrafo trafo;
    OvMatrix tilt(3, 3);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            tilt.SetElem(i + 1, j + 1, kTilt[i][j]);
    OvMatrix placement(4, 4);
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            placement.SetElem(i + 1, j + 1, kPlacement[i][j]);
    trafo.SetTiltMat(tilt);
    trafo.SetTransMat(placement);
    return trafo;
}

// The plain loop: the tilt matrix on x, y, then the placement on x, y, z, each dividing by its
// homogeneous weight unless that is below 1e-10.
void PlainTransform(std::vector<XYZ>& points) {
    for (XYZ& p : points) {
        const double w = kTilt[2][0] * p.x + kTilt[2][1] * p.y + kTilt[2][2];
        if (std::fabs(w) >= 1e-10) {
            const double x = (kTilt[0][0] * p.x + kTilt[0][1] * p.y + kTilt[0][2]) / w;
            const double y = (kTilt[1][0] * p.x + kTilt[1][1] * p.y + kTilt[1][2]) / w;
            p.x = x;
            p.y = y;
        }
        const double* m[4] = {kPlacement[0], kPlacement[1], kPlacement[2], kPlacement[3]};
        const double w3 = m[3][0] * p.x + m[3][1] * p.y + m[3][2] * p.z + m[3][3];
        if (std::fabs(w3) >= 1e-10) {
            const double x = (m[0][0] * p.x + m[0][1] * p.y + m[0][2] * p.z + m[0][3]) / w3;
            const double y = (m[1][0] * p.x + m[1][1] * p.y + m[1][2] * p.z + m[1][3]) / w3;
            const double z = (m[2][0] * p.x + m[2][1] * p.y + m[2][2] * p.z + m[2][3]) / w3;
            p.x = x;
            p.y = y;
            p.z = z;
        }
    }
}

void BM_RectifyTransformList(benchmark::State& state) {
    const OvTiltTrafo trafo = MakeTrafo();
    std::mt19937_64 random(11);
    std::uniform_real_distribution<double> coordinate(-20.0, 20.0);
    OvPointList list;
    std::vector<XYZ> plain;
    plain.reserve(kPoints);
    for (int i = 0; i < kPoints; ++i) {
        const double x = coordinate(random);
        const double y = coordinate(random);
        list.Add(new OvPoint(static_cast<unsigned>(i + 1), x, y, 1.0, 0));
        plain.push_back({x, y, 1.0});
    }
    Timing own;
    Timing loop;
    for (auto _ : state) {
        int mapped = 0;
        state.SetIterationTime(Measure(own, [&] { mapped = trafo.Transform(&list); }));
        Measure(loop, [&] { PlainTransform(plain); });
        if (mapped != kPoints) state.SkipWithError("not every point was mapped");
    }
    // Both went the same way: the last points agree.
    if (list.Last()->GetX() != plain.back().x || list.Last()->GetZ() != plain.back().z)
        state.SkipWithError("the library and the plain loop disagree");
    const double points = static_cast<double>(state.iterations()) * kPoints;
    state.SetItemsProcessed(static_cast<std::int64_t>(points));
    state.counters["Mpoints/s"] = points / own.cpu / 1e6;
    state.counters["plain_Mpoints/s"] = points / loop.cpu / 1e6;
    state.counters["vs_plain"] = loop.cpu / own.cpu;
    state.counters["wall_Mpoints/s"] = points / own.wall / 1e6;
}

// ---- FindPlane -----------------------------------------------------------------------------

struct PlainPlane {
    std::vector<double> x;
    std::vector<double> y;
    double minX = 0.0;
    double maxX = 0.0;
    double minY = 0.0;
    double maxY = 0.0;
};

// A star-shaped ring of kVertices vertices in the cell (column, line) of a 10 x 10 grid of
// 100 x 100 cells, so that neighbouring planes share no point.
std::vector<XYZ> MakeRing(int column, int line, std::mt19937_64& random) {
    std::uniform_real_distribution<double> radius(30.0, 48.0);
    const double cx = 100.0 * column + 50.0;
    const double cy = 100.0 * line + 50.0;
    std::vector<XYZ> ring;
    for (int i = 0; i < kVertices; ++i) {
        const double angle = 6.283185307179586 * i / kVertices;
        const double r = radius(random);
        ring.push_back({cx + r * std::cos(angle), cy + r * std::sin(angle), 0.0});
    }
    return ring;
}

bool PlainInside(const PlainPlane& plane, double px, double py) {
    if (px < plane.minX || px > plane.maxX || py < plane.minY || py > plane.maxY) return false;
    bool inside = false;
    const std::size_t n = plane.x.size();
    for (std::size_t i = 0, j = n - 1; i < n; j = i++) {
        if ((plane.y[i] > py) != (plane.y[j] > py) &&
            px < (plane.x[j] - plane.x[i]) * (py - plane.y[i]) / (plane.y[j] - plane.y[i]) +
                     plane.x[i]) {
            inside = !inside;
        }
    }
    return inside;
}

int PlainFind(const std::vector<PlainPlane>& planes, double px, double py) {
    for (std::size_t k = 0; k < planes.size(); ++k)
        if (PlainInside(planes[k], px, py)) return static_cast<int>(k);
    return -1;
}

void BM_RectifyFindPlane(benchmark::State& state) {
    std::mt19937_64 random(5);
    OvTiltPlaneInfoList list;
    std::vector<PlainPlane> plain;
    std::vector<const OvTiltPlaneInfo*> order;
    for (int line = 0; line < kPlanesPerSide; ++line) {
        for (int column = 0; column < kPlanesPerSide; ++column) {
            const std::vector<XYZ> ring = MakeRing(column, line, random);
            auto* info = new OvTiltPlaneInfo();
            PlainPlane p;
            for (const XYZ& v : ring) {
                info->GetRange().AddPoint(OvPoint(0, v.x, v.y, 0.0, 0));
                p.x.push_back(v.x);
                p.y.push_back(v.y);
            }
            p.minX = info->GetRange().GetMin().GetX();
            p.maxX = info->GetRange().GetMax().GetX();
            p.minY = info->GetRange().GetMin().GetY();
            p.maxY = info->GetRange().GetMax().GetY();
            order.push_back(list.Add(info));
            plain.push_back(p);
        }
    }
    std::uniform_real_distribution<double> coordinate(0.0, 100.0 * kPlanesPerSide);
    std::vector<OvPoint> queries;
    for (int i = 0; i < kQueries; ++i)
        queries.emplace_back(0, coordinate(random), coordinate(random), 0.0, 0);

    // Both must find the same planes (a query on an edge could be decided differently by the
    // two boundary rules; random doubles practically never land there).
    int found = 0;
    for (const OvPoint& q : queries) {
        const OvTiltPlaneInfo* plane = list.FindPlane(q);
        const int k = PlainFind(plain, q.GetX(), q.GetY());
        if ((plane == nullptr) != (k < 0) || (plane != nullptr && plane != order[k]))
            state.SkipWithError("the library and the plain loop found different planes");
        if (plane != nullptr) ++found;
    }

    Timing own;
    Timing loop;
    for (auto _ : state) {
        const OvTiltPlaneInfo* last = nullptr;
        int lastPlain = 0;
        state.SetIterationTime(Measure(own, [&] {
            for (const OvPoint& q : queries)
                last = list.FindPlane(q);
        }));
        Measure(loop, [&] {
            for (const OvPoint& q : queries)
                lastPlain = PlainFind(plain, q.GetX(), q.GetY());
        });
        benchmark::DoNotOptimize(last);
        benchmark::DoNotOptimize(lastPlain);
    }
    const double lookups = static_cast<double>(state.iterations()) * kQueries;
    state.SetItemsProcessed(static_cast<std::int64_t>(lookups));
    state.counters["ns/lookup"] = own.cpu / lookups * 1e9;
    state.counters["plain_ns/lookup"] = loop.cpu / lookups * 1e9;
    state.counters["vs_plain"] = loop.cpu / own.cpu;
    state.counters["hit_share"] = static_cast<double>(found) / kQueries;
}

}  // namespace

BENCHMARK(BM_RectifyTransformList)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RectifyFindPlane)->UseManualTime()->Unit(benchmark::kMicrosecond);
