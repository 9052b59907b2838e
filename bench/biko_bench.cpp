// Speed of the image-coordinate conversion of whole point lists (`OvPhoto::ConvertList`) in the
// modes users run over every measured point: 2 (measured -> image), 4 (measured -> corrected
// image), 6 (image -> measured) and 10 (corrected image -> measured), on 1,000,000 points.
//
// Each iteration also converts the same list "by hand" in the same run: a loop that calls the
// stage transformations and the camera correction on every point directly (forward: the two
// `OvTrafo2d::Transform` calls, then `OvCamera::Adjust`; backward: `OvCamera::InvAdjust`, then
// the two stages inverted with `TransInvHelmert`). The reported ratio `vs_direct` is the direct
// loop's time over ConvertList's (1.0 = as fast as the direct calls, above 1 faster). Both
// runs start from the same coordinates and must agree, which is checked before timing.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "orvo/model/photo.h"
#include "orvo/model/point_list.h"

#include "bench_support.h"

namespace {

using orvo::OvPhoto;
using orvo::OvPoint;
using orvo::OvPointList;

constexpr int kPoints = 1000000;

orvo::OvTrafo2d Helmert(double p0, double p1, double p2, double p3) {
    orvo::OvTrafo2d t;
    t.SetType(orvo::eOvTrafo2DHelmert);
    t.SetParam(0, p0);
    t.SetParam(1, p1);
    t.SetParam(2, p2);
    t.SetParam(3, p3);
    return t;
}

// A scanned photo: comparator micrometres to millimetres with a slight rotation (pre stage), a
// reseau fit (main stage) and a camera with radial distortion.
const OvPhoto& BenchPhoto() {
    static const OvPhoto photo = [] {
        OvPhoto p(1, "scan.tif");
        p.SetReseauPreTrafo(Helmert(-115.0, 0.001, -115.0, 2e-6));
        p.SetReseauMainTrafo(Helmert(0.012, 1.00003, -0.008, -1.2e-4));
        p.SetCamera(orvo::OvCamera(3, 152.8, 0.004, -0.011, 4.2e-9, -1.1e-13, 70.0, "RMK"));
        return p;
    }();
    return photo;
}

// Coordinates spread over the photo, in the units the mode starts from.
std::vector<double> StartCoordinates(orvo::eConvertBikoMode mode) {
    const bool measured =
        mode == orvo::eConvertMeasureToBiko || mode == orvo::eConvertMeasureToCorrectedBiko;
    const double scale = measured ? 230000.0 : 230.0;  // micrometres or millimetres
    const double offset = measured ? 0.0 : -115.0;
    std::vector<double> xy(2 * static_cast<std::size_t>(kPoints));
    unsigned state = 12345u;
    for (double& v : xy) {
        state = state * 1664525u + 1013904223u;
        v = offset + scale * (state >> 8) / 16777216.0;
    }
    return xy;
}

void Restore(OvPointList& list, const std::vector<double>& xy) {
    std::size_t i = 0;
    for (OvPoint* p = list.First(); p != nullptr; p = p->Next(), i += 2) {
        p->SetX(xy[i]);
        p->SetY(xy[i + 1]);
    }
}

// The conversion written as direct calls of the stages and the camera.
void ConvertDirectly(const OvPhoto& photo, orvo::eConvertBikoMode mode, OvPointList& list) {
    const orvo::OvTrafo2d& pre = photo.GetReseauPreTrafo();
    const orvo::OvTrafo2d& main = photo.GetReseauMainTrafo();
    const orvo::OvCamera& camera = photo.GetCamera();
    for (OvPoint* p = list.First(); p != nullptr; p = p->Next()) {
        double x = p->GetX();
        double y = p->GetY();
        switch (mode) {
            case orvo::eConvertMeasureToBiko:
                pre.Transform(&x, &y);
                main.Transform(&x, &y);
                break;
            case orvo::eConvertMeasureToCorrectedBiko:
                pre.Transform(&x, &y);
                main.Transform(&x, &y);
                camera.Adjust(&x, &y);
                break;
            case orvo::eConvertBikoToMeasure:
                main.TransInvHelmert(&x, &y);
                pre.TransInvHelmert(&x, &y);
                break;
            default:
                camera.InvAdjust(&x, &y);
                main.TransInvHelmert(&x, &y);
                pre.TransInvHelmert(&x, &y);
                break;
        }
        p->SetX(x);
        p->SetY(y);
    }
}

// Both ways must give the same coordinates (up to the rounding of the combined matrix).
void CheckAgreement(const OvPhoto& photo, orvo::eConvertBikoMode mode,
                    const std::vector<double>& xy) {
    OvPointList a;
    OvPointList b;
    for (int i = 0; i < 1000; ++i) {
        a.Add(OvPoint(i + 1, xy[2 * i], xy[2 * i + 1], 0.0, 0));
        b.Add(OvPoint(i + 1, xy[2 * i], xy[2 * i + 1], 0.0, 0));
    }
    photo.ConvertList(&a, mode);
    ConvertDirectly(photo, mode, b);
    for (const OvPoint *p = a.First(), *q = b.First(); p != nullptr; p = p->Next(), q = q->Next()) {
        const double scale = 1.0 + std::fabs(q->GetX()) + std::fabs(q->GetY());
        if (std::fabs(p->GetX() - q->GetX()) > 1e-9 * scale ||
            std::fabs(p->GetY() - q->GetY()) > 1e-9 * scale) {
            std::abort();
        }
    }
}

void BM_ConvertList(benchmark::State& state) {
    const auto mode = static_cast<orvo::eConvertBikoMode>(state.range(0));
    const OvPhoto& photo = BenchPhoto();
    const std::vector<double> xy = StartCoordinates(mode);
    CheckAgreement(photo, mode, xy);

    OvPointList list;
    for (int i = 0; i < kPoints; ++i)
        list.Add(new OvPoint(i + 1, 0.0, 0.0, 0.0, 0));

    double librarySeconds = 0.0;
    double directSeconds = 0.0;
    for (auto _ : state) {
        Restore(list, xy);
        double start = orvo::bench::ThreadCpuSeconds();
        photo.ConvertList(&list, mode);
        const double elapsed = orvo::bench::ThreadCpuSeconds() - start;
        benchmark::DoNotOptimize(list.Last()->GetX());
        librarySeconds += elapsed;
        state.SetIterationTime(elapsed);

        Restore(list, xy);
        start = orvo::bench::ThreadCpuSeconds();
        ConvertDirectly(photo, mode, list);
        directSeconds += orvo::bench::ThreadCpuSeconds() - start;
        benchmark::DoNotOptimize(list.Last()->GetX());
    }
    const double points = static_cast<double>(kPoints) * static_cast<double>(state.iterations());
    state.SetItemsProcessed(static_cast<std::int64_t>(points));
    state.counters["points/s"] = points / librarySeconds;
    state.counters["direct_points/s"] = points / directSeconds;
    state.counters["vs_direct"] = directSeconds / librarySeconds;
}

BENCHMARK(BM_ConvertList)
    ->ArgName("mode")
    ->Arg(2)
    ->Arg(4)
    ->Arg(6)
    ->Arg(10)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10);

}  // namespace
