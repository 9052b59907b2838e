// Throughput of the camera's distortion correction (Adjust) and its iterative inverse
// (InvAdjust) on 1,000,000 image points of a realistic wide-angle lens: A1 = 1e-5 per mm²,
// points spread evenly over the disc of radius 30 mm around the principal point.
//
// Each iteration also runs the same arithmetic written inline over plain arrays, timed on the
// thread's CPU clock like the library call, so the ratio "vs_inline" (1.0 = as fast as inline
// code) shows what the library's interface costs. The list forms (Adjust / InvAdjust of an
// OvPointList) are measured too. The InvAdjust benchmarks report the mean number of passes.
#include <benchmark/benchmark.h>
#include <time.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "orvo/model/camera.h"
#include "orvo/model/point.h"
#include "orvo/model/point_list.h"

#include "bench_support.h"

namespace {

using orvo::OvCamera;

constexpr std::size_t kPoints = 1000000;

// The realistic wide-angle camera: 24 mm, A1 = 1e-5 per mm², no r⁴ term and radius of zero
// distortion 0 (the usual choice for a digital body); principal point at the origin, so that
// InvAdjust is the exact inverse of Adjust and the list round trip comes back to its start.
OvCamera WideAngle() {
    return OvCamera(1, 24.0, 0.0, 0.0, 1e-5, 0.0, 0.0, "wide angle");
}

struct Points {
    std::vector<double> x, y;
};

// Evenly over the disc of radius 30 mm (deterministic).
Points MakePoints() {
    Points p;
    p.x.resize(kPoints);
    p.y.resize(kPoints);
    std::uint64_t state = 88172645463325252ULL;
    const auto next = [&state] {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        return static_cast<double>(state >> 11) / 9007199254740992.0;  // [0, 1)
    };
    for (std::size_t i = 0; i < kPoints; ++i) {
        const double r = 30.0 * std::sqrt(next());
        const double phi = 2.0 * 3.14159265358979323846 * next();
        p.x[i] = r * std::cos(phi);
        p.y[i] = r * std::sin(phi);
    }
    return p;
}

// The correction written out inline.
void InlineAdjust(const OvCamera& c, const Points& in, Points& out) {
    const double Xh = c.GetXh(), Yh = c.GetYh(), A1 = c.GetA1(), A2 = c.GetA2();
    const double R0sq = c.GetR0() * c.GetR0();
    for (std::size_t i = 0; i < kPoints; ++i) {
        const double u = in.x[i] - Xh, v = in.y[i] - Yh;
        const double r = std::sqrt(u * u + v * v);
        const double k = r == 0.0 ? 0.0 : (r * r * r * r - R0sq * R0sq) * A2 + (r * r - R0sq) * A1;
        out.x[i] = u - k * u;
        out.y[i] = v - k * v;
    }
}

// The fixed-point inverse written out inline; returns the total number of passes.
std::int64_t InlineInvAdjust(const OvCamera& c, const Points& in, Points& out) {
    const double Xh = c.GetXh(), Yh = c.GetYh(), A1 = c.GetA1(), A2 = c.GetA2();
    const double R0sq = c.GetR0() * c.GetR0();
    const double K1 = R0sq * A1, K2 = R0sq * R0sq * A2;
    std::int64_t passes = 0;
    for (std::size_t i = 0; i < kPoints; ++i) {
        const double x0 = in.x[i], y0 = in.y[i];
        double u = x0, v = y0, d = 0.0;
        int pass = 0;
        do {
            const double s = u * u + v * v;
            const double f = s * A1 - K1 + s * s * A2 - K2;
            const double un = f * (u - Xh) + x0, vn = f * (v - Yh) + y0;
            d = (u - un) * (u - un) + (v - vn) * (v - vn);
            u = un;
            v = vn;
        } while (++pass < 25 && !(d <= 1e-18));
        passes += pass;
        out.x[i] = d < 1e-18 ? u + Xh : x0;
        out.y[i] = d < 1e-18 ? v + Yh : y0;
    }
    return passes;
}

// Throughput of `operations` corrections per point and iteration, from the CPU seconds of the
// library calls and of the inline code.
void Report(benchmark::State& state, double own, double inlined, int operations = 1) {
    const double points =
        static_cast<double>(kPoints) * static_cast<double>(state.iterations()) * operations;
    state.SetItemsProcessed(static_cast<std::int64_t>(points));
    state.counters["points/s"] = points / own;
    state.counters["inline_points/s"] = points / inlined;
    state.counters["vs_inline"] = inlined / own;
}

void BM_CameraAdjust(benchmark::State& state) {
    const OvCamera camera = WideAngle();
    const Points in = MakePoints();
    Points out = in, baseline = in;
    double own = 0.0, inlined = 0.0;
    for (auto _ : state) {
        const double t = orvo::bench::CpuSecondsOf([&] {
            for (std::size_t i = 0; i < kPoints; ++i) {
                double x = in.x[i], y = in.y[i];
                camera.Adjust(&x, &y);
                out.x[i] = x;
                out.y[i] = y;
            }
        });
        state.SetIterationTime(t);
        own += t;
        inlined += orvo::bench::CpuSecondsOf([&] { InlineAdjust(camera, in, baseline); });
        benchmark::DoNotOptimize(out.x.data());
        benchmark::DoNotOptimize(baseline.x.data());
    }
    if (out.x != baseline.x || out.y != baseline.y)
        state.SkipWithError("results differ from inline");
    Report(state, own, inlined);
}

void BM_CameraInvAdjust(benchmark::State& state) {
    const OvCamera camera = WideAngle();
    Points corrected = MakePoints();  // taken as corrected coordinates to be inverted
    Points out = corrected, baseline = corrected;
    double own = 0.0, inlined = 0.0;
    std::int64_t passes = 0;
    for (auto _ : state) {
        const double t = orvo::bench::CpuSecondsOf([&] {
            for (std::size_t i = 0; i < kPoints; ++i) {
                double x = corrected.x[i], y = corrected.y[i];
                camera.InvAdjust(&x, &y);
                out.x[i] = x;
                out.y[i] = y;
            }
        });
        state.SetIterationTime(t);
        own += t;
        inlined += orvo::bench::CpuSecondsOf(
            [&] { passes = InlineInvAdjust(camera, corrected, baseline); });
        benchmark::DoNotOptimize(out.x.data());
    }
    if (out.x != baseline.x || out.y != baseline.y)
        state.SkipWithError("results differ from inline");
    Report(state, own, inlined);
    state.counters["mean_passes"] = static_cast<double>(passes) / kPoints;
    // The worst case: a corrected point at the full radius of 30 mm.
    const orvo::OvInvAdjustDiagnosis edge = camera.DiagnoseInvAdjust(30.0, 0.0);
    state.counters["passes_at_30mm"] = edge.passes;
    state.counters["converged_at_30mm"] = edge.result == orvo::InvAdjustConverged ? 1 : 0;
    state.counters["last_step_at_30mm"] = edge.lastStep;
}

// The list forms, on the same points as OvPoints; the list is refilled outside the timing.
void BM_CameraListAdjustAndInverse(benchmark::State& state) {
    const OvCamera camera = WideAngle();
    const Points in = MakePoints();
    orvo::OvPointList list;
    for (std::size_t i = 0; i < kPoints; ++i)
        list.Add(new orvo::OvPoint(static_cast<unsigned>(i + 1), in.x[i], in.y[i], 0.0, 0));
    Points baseline = in, back = in;
    double own = 0.0, inlined = 0.0;
    for (auto _ : state) {
        // Adjust then InvAdjust: the list comes back to its start, so nothing needs refilling.
        const double t = orvo::bench::CpuSecondsOf([&] {
            camera.Adjust(&list);
            camera.InvAdjust(&list);
        });
        state.SetIterationTime(t);
        own += t;
        inlined += orvo::bench::CpuSecondsOf([&] {
            InlineAdjust(camera, in, baseline);
            InlineInvAdjust(camera, baseline, back);
        });
    }
    double worst = 0.0;
    std::size_t i = 0;
    for (const orvo::OvPoint* p = list.First(); p != nullptr; p = p->Next(), ++i)
        worst = std::fmax(worst, std::hypot(p->GetX() - in.x[i], p->GetY() - in.y[i]));
    state.counters["worst_round_trip_mm"] = worst;
    Report(state, own, inlined, 2);  // Adjust and InvAdjust of every point
}

BENCHMARK(BM_CameraAdjust)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CameraInvAdjust)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CameraListAdjustAndInverse)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
