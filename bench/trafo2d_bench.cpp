// Speed of the 2D estimations and of Transform. Each iteration also runs a plain textbook
// version of the same computation on std::vector data (partners through a hash map, normal
// equations in a u x u array, a plain Cholesky solve; the transformation equations written
// inline), timed separately on the same input, so that `vs_plain` compares the library with
// straightforward code measured in the same run (1.0 = as fast, 0.5 = twice as slow).
//
// BM_FitHelmertWalkFromHead times the textbook fit with the partner found by walking the
// reference list from its head for every point, which is what makes a fit quadratic in the
// number of points; the library indexes the list once per fit instead.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <random>
#include <unordered_map>
#include <vector>

#include "orvo/numerics/calc_trafo2d.h"

#include "bench_support.h"

namespace {

using orvo::eOvTrafo2DType;
using orvo::OvCalcTrafo2D;
using orvo::OvPoint;
using orvo::OvPointList;
using orvo::OvTrafo2d;

OvTrafo2d Truth(eOvTrafo2DType type) {
    OvTrafo2d t;
    t.SetType(type);
    const double params[4][20] = {
        {12.5, 0.9986, -40.25, 0.0523},
        {12.5, 1.002, 0.013, -40.25, -0.011, 0.997},
        {1.01, 0.02, 3.5, -0.015, 0.99, -2.25, 2e-4, -1e-4},
        {0.5,   1.001,  0.002, 1e-4, -2e-4, 5e-5,  1e-6, 0,    -2e-6, 3e-7,
         -0.25, -0.003, 0.999, 2e-5, 1e-4,  -3e-4, 0,    4e-6, 1e-6,  -1e-6}};
    for (int i = 0; i < 20; ++i)
        t.SetParam(i, params[type - 1][i]);
    return t;
}

// n measured points over 100 x 100 and their reference partners with noise, the reference list
// in another order so that partners are not found at the same position.
struct Data {
    OvPointList measured;
    OvPointList reference;
    std::vector<std::uint32_t> ids;
    std::vector<double> x, y, X, Y;  // the same pairs as plain arrays, in measured order

    Data(eOvTrafo2DType type, int n) {
        const OvTrafo2d truth = Truth(type);
        std::mt19937 engine(static_cast<unsigned>(n) * 7u + static_cast<unsigned>(type));
        std::uniform_real_distribution<double> spread(0.0, 100.0);
        std::normal_distribution<double> noise(0.0, 0.01);
        std::vector<OvPoint*> refs;
        for (int k = 0; k < n; ++k) {
            const auto id = static_cast<std::uint32_t>(k + 1);
            const double px = spread(engine), py = spread(engine);
            double qx = px, qy = py;
            truth.Transform(&qx, &qy);
            qx += noise(engine);
            qy += noise(engine);
            measured.Add(new OvPoint(id, px, py, 0.0, 0));
            refs.push_back(new OvPoint(id, qx, qy, 0.0, 0));
            ids.push_back(id);
            x.push_back(px), y.push_back(py), X.push_back(qx), Y.push_back(qy);
        }
        std::shuffle(refs.begin(), refs.end(), engine);
        for (OvPoint* p : refs)
            reference.Add(p);
    }
};

// The observation rows written out in parameter order (the textbook does not reorder the
// Helmert's unknowns).
int Rows(eOvTrafo2DType type, double x, double y, double X, double Y, double* ax, double* ay) {
    switch (type) {
        case orvo::eOvTrafo2DHelmert: {
            const double rx[5] = {1, x, 0, -y, X}, ry[5] = {0, y, 1, x, Y};
            std::copy(rx, rx + 5, ax), std::copy(ry, ry + 5, ay);
            return 4;
        }
        case orvo::eOvTrafo2DAffin: {
            const double rx[7] = {1, x, y, 0, 0, 0, X}, ry[7] = {0, 0, 0, 1, x, y, Y};
            std::copy(rx, rx + 7, ax), std::copy(ry, ry + 7, ay);
            return 6;
        }
        case orvo::eOvTrafo2DProjektiv: {
            const double rx[9] = {x, y, 1, 0, 0, 0, -x * X, -y * X, X};
            const double ry[9] = {0, 0, 0, x, y, 1, -x * Y, -y * Y, Y};
            std::copy(rx, rx + 9, ax), std::copy(ry, ry + 9, ay);
            return 8;
        }
        default: {
            const double m[10] = {1,     x,         y,         x * x,     x * y,
                                  y * y, x * x * x, x * x * y, x * y * y, y * y * y};
            for (int k = 0; k < 10; ++k) {
                ax[k] = m[k], ax[10 + k] = 0.0;
                ay[k] = 0.0, ay[10 + k] = m[k];
            }
            ax[20] = X, ay[20] = Y;
            return 20;
        }
    }
}

// Normal equations N p = A^T l accumulated row by row, solved by Cholesky.
template <class FindPartner>
std::vector<double> PlainFit(eOvTrafo2DType type, const Data& data, FindPartner&& find) {
    double ax[21], ay[21];
    const int u = Rows(type, 0, 0, 0, 0, ax, ay);
    std::vector<double> n(static_cast<std::size_t>(u) * u, 0.0), r(static_cast<std::size_t>(u));
    for (std::size_t k = 0; k < data.ids.size(); ++k) {
        const OvPoint* q = find(data.ids[k]);
        if (q == nullptr) continue;
        Rows(type, data.x[k], data.y[k], q->GetX(), q->GetY(), ax, ay);
        for (const double* row : {ax, ay}) {
            for (int i = 0; i < u; ++i) {
                if (row[i] == 0.0) continue;
                for (int j = 0; j < u; ++j)
                    n[i * u + j] += row[i] * row[j];
                r[i] += row[i] * row[u];
            }
        }
    }
    orvo::bench::PlainCholeskySolve(n.data(), r.data(), u);
    return r;
}

std::vector<double> PlainFitHashed(eOvTrafo2DType type, const Data& data) {
    std::unordered_map<std::uint32_t, const OvPoint*> index;
    index.reserve(static_cast<std::size_t>(data.reference.Count()));
    for (const OvPoint* p = data.reference.First(); p != nullptr; p = p->Next())
        index.emplace(p->GetId(), p);
    return PlainFit(type, data, [&index](std::uint32_t id) -> const OvPoint* {
        const auto it = index.find(id);
        return it != index.end() ? it->second : nullptr;
    });
}

bool LibraryFit(OvCalcTrafo2D& calc, eOvTrafo2DType type, OvPointList* list) {
    switch (type) {
        case orvo::eOvTrafo2DHelmert:
            return calc.CalcTrafoHelmert(list);
        case orvo::eOvTrafo2DAffin:
            return calc.CalcTrafoAffin(list);
        case orvo::eOvTrafo2DProjektiv:
            return calc.CalcTrafoProjectiv(list);
        default:
            return calc.CalcTrafoPolynom(list);
    }
}

void Report(benchmark::State& state, double itemsPerIteration, double librarySeconds,
            double plainSeconds) {
    const double iterations = static_cast<double>(state.iterations());
    state.SetItemsProcessed(static_cast<std::int64_t>(itemsPerIteration * iterations));
    state.counters["pairs/s"] = itemsPerIteration * iterations / librarySeconds;
    state.counters["plain_pairs/s"] = itemsPerIteration * iterations / plainSeconds;
    state.counters["vs_plain"] = plainSeconds / librarySeconds;
}

template <eOvTrafo2DType kType>
void BM_Fit(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    Data data(kType, n);
    double librarySeconds = 0, plainSeconds = 0;
    for (auto _ : state) {
        OvCalcTrafo2D calc(&data.reference);
        double start = orvo::bench::ThreadCpuSeconds();
        benchmark::DoNotOptimize(LibraryFit(calc, kType, &data.measured));
        const double elapsed = orvo::bench::ThreadCpuSeconds() - start;
        librarySeconds += elapsed;
        state.SetIterationTime(elapsed);

        start = orvo::bench::ThreadCpuSeconds();
        std::vector<double> plain = PlainFitHashed(kType, data);
        benchmark::DoNotOptimize(plain.data());
        plainSeconds += orvo::bench::ThreadCpuSeconds() - start;
    }
    Report(state, n, librarySeconds, plainSeconds);
}

// The extended fit (reduced coordinates, residuals, sigma0 and deviations) against the same
// plain fit, which does far less: the ratio is the price of those extras.
template <eOvTrafo2DType kType>
void BM_FitReduced(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    Data data(kType, n);
    double librarySeconds = 0, plainSeconds = 0;
    orvo::OvTrafo2DFitReport report;
    for (auto _ : state) {
        OvCalcTrafo2D calc(&data.reference);
        double start = orvo::bench::ThreadCpuSeconds();
        benchmark::DoNotOptimize(calc.CalcTrafo(kType, &data.measured, {}, &report));
        const double elapsed = orvo::bench::ThreadCpuSeconds() - start;
        librarySeconds += elapsed;
        state.SetIterationTime(elapsed);

        start = orvo::bench::ThreadCpuSeconds();
        std::vector<double> plain = PlainFitHashed(kType, data);
        benchmark::DoNotOptimize(plain.data());
        plainSeconds += orvo::bench::ThreadCpuSeconds() - start;
    }
    Report(state, n, librarySeconds, plainSeconds);
}

// The library's fit against the textbook fit that walks the reference list for each partner.
void BM_FitHelmertWalkFromHead(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    Data data(orvo::eOvTrafo2DHelmert, n);
    double librarySeconds = 0, plainSeconds = 0;
    for (auto _ : state) {
        OvCalcTrafo2D calc(&data.reference);
        double start = orvo::bench::ThreadCpuSeconds();
        benchmark::DoNotOptimize(calc.CalcTrafoHelmert(&data.measured));
        const double elapsed = orvo::bench::ThreadCpuSeconds() - start;
        librarySeconds += elapsed;
        state.SetIterationTime(elapsed);

        start = orvo::bench::ThreadCpuSeconds();
        std::vector<double> plain = PlainFit(
            orvo::eOvTrafo2DHelmert, data,
            [&data](std::uint32_t id) -> const OvPoint* { return data.reference.Find(id); });
        benchmark::DoNotOptimize(plain.data());
        plainSeconds += orvo::bench::ThreadCpuSeconds() - start;
    }
    Report(state, n, librarySeconds, plainSeconds);
}

// Transform on 10,000 points against the equations written inline.
template <eOvTrafo2DType kType>
void BM_Transform(benchmark::State& state) {
    constexpr int kPoints = 10000;
    const OvTrafo2d t = Truth(kType);
    const double* p = t.GetParams();
    std::mt19937 engine(99);
    std::uniform_real_distribution<double> spread(-100.0, 100.0);
    std::vector<double> xs(kPoints), ys(kPoints);
    for (int k = 0; k < kPoints; ++k)
        xs[k] = spread(engine), ys[k] = spread(engine);
    std::vector<double> lx(kPoints), ly(kPoints), px(kPoints), py(kPoints);
    double librarySeconds = 0, plainSeconds = 0;
    for (auto _ : state) {
        lx = xs, ly = ys, px = xs, py = ys;
        double start = orvo::bench::ThreadCpuSeconds();
        for (int k = 0; k < kPoints; ++k)
            t.Transform(&lx[k], &ly[k]);
        benchmark::DoNotOptimize(lx.data());
        benchmark::DoNotOptimize(ly.data());
        const double elapsed = orvo::bench::ThreadCpuSeconds() - start;
        librarySeconds += elapsed;
        state.SetIterationTime(elapsed);

        start = orvo::bench::ThreadCpuSeconds();
        for (int k = 0; k < kPoints; ++k) {
            const double x = px[k], y = py[k];
            switch (kType) {
                case orvo::eOvTrafo2DHelmert:
                    px[k] = p[0] + p[1] * x - p[3] * y;
                    py[k] = p[2] + p[3] * x + p[1] * y;
                    break;
                case orvo::eOvTrafo2DAffin:
                    px[k] = p[0] + p[1] * x + p[2] * y;
                    py[k] = p[3] + p[4] * x + p[5] * y;
                    break;
                case orvo::eOvTrafo2DProjektiv: {
                    const double d = p[6] * x + p[7] * y + 1.0;
                    px[k] = (p[0] * x + p[1] * y + p[2]) / d;
                    py[k] = (p[3] * x + p[4] * y + p[5]) / d;
                    break;
                }
                default: {
                    const double m[10] = {1,     x,         y,         x * x,     x * y,
                                          y * y, x * x * x, x * x * y, x * y * y, y * y * y};
                    double sx = 0, sy = 0;
                    for (int i = 0; i < 10; ++i)
                        sx += p[i] * m[i], sy += p[10 + i] * m[i];
                    px[k] = sx, py[k] = sy;
                }
            }
        }
        benchmark::DoNotOptimize(px.data());
        benchmark::DoNotOptimize(py.data());
        plainSeconds += orvo::bench::ThreadCpuSeconds() - start;
    }
    const double iterations = static_cast<double>(state.iterations());
    state.SetItemsProcessed(static_cast<std::int64_t>(kPoints * iterations));
    state.counters["points/s"] = kPoints * iterations / librarySeconds;
    state.counters["plain_points/s"] = kPoints * iterations / plainSeconds;
    state.counters["vs_plain"] = plainSeconds / librarySeconds;
}

BENCHMARK(BM_Fit<orvo::eOvTrafo2DHelmert>)->UseManualTime()->Arg(10)->Arg(100)->Arg(10000);
BENCHMARK(BM_Fit<orvo::eOvTrafo2DAffin>)->UseManualTime()->Arg(10)->Arg(100)->Arg(10000);
BENCHMARK(BM_Fit<orvo::eOvTrafo2DProjektiv>)->UseManualTime()->Arg(10)->Arg(100)->Arg(10000);
BENCHMARK(BM_Fit<orvo::eOvTrafo2DPolynomial>)->UseManualTime()->Arg(10)->Arg(100)->Arg(10000);
BENCHMARK(BM_FitReduced<orvo::eOvTrafo2DHelmert>)->UseManualTime()->Arg(10)->Arg(100)->Arg(10000);
BENCHMARK(BM_FitReduced<orvo::eOvTrafo2DPolynomial>)
    ->UseManualTime()
    ->Arg(10)
    ->Arg(100)
    ->Arg(10000);
BENCHMARK(BM_FitHelmertWalkFromHead)->UseManualTime()->Arg(100)->Arg(10000);
BENCHMARK(BM_Transform<orvo::eOvTrafo2DHelmert>)->UseManualTime();
BENCHMARK(BM_Transform<orvo::eOvTrafo2DAffin>)->UseManualTime();
BENCHMARK(BM_Transform<orvo::eOvTrafo2DProjektiv>)->UseManualTime();
BENCHMARK(BM_Transform<orvo::eOvTrafo2DPolynomial>)->UseManualTime();

}  // namespace
