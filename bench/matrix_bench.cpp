// Speed of the dense solvers and the matrix product. Each iteration also runs a plain textbook
// version of the same computation on a std::vector (row-major, no checks, no scaled pivot
// search), timed separately on the same input, so the reported ratio compares the library with
// straightforward code measured in the same run (1.0 = as fast as the plain code, 0.5 = twice
// as slow).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <random>
#include <utility>
#include <vector>

#include "orvo/numerics/matrix.h"

#include "bench_support.h"

namespace {

using Plain = std::vector<double>;  // n x m, row-major

double SecondsSince(double start) {
    return orvo::bench::ThreadCpuSeconds() - start;
}

orvo::OvMatrix RandomMatrix(int lines, int columns, unsigned streamSeed, double diagonal) {
    std::mt19937 engine(streamSeed);
    std::uniform_real_distribution<double> entry(-1.0, 1.0);
    orvo::OvMatrix m(lines, columns);
    for (int i = 1; i <= lines; ++i)
        for (int j = 1; j <= columns; ++j)
            m[i][j - 1] = entry(engine) + (i == j ? diagonal : 0.0);
    return m;
}

Plain ToPlain(const orvo::OvMatrix& m) {
    return Plain(m.Data(), m.Data() + static_cast<std::size_t>(m.GetZeilen()) * m.GetSpalten());
}

// Gaussian elimination with partial (largest magnitude) pivoting and back substitution, for
// one right-hand side.
void PlainGaussSolve(Plain& a, Plain& b, int n) {
    for (int k = 0; k < n; ++k) {
        int pivot = k;
        for (int i = k + 1; i < n; ++i)
            if (std::fabs(a[i * n + k]) > std::fabs(a[pivot * n + k])) pivot = i;
        if (pivot != k) {
            for (int j = 0; j < n; ++j)
                std::swap(a[k * n + j], a[pivot * n + j]);
            std::swap(b[k], b[pivot]);
        }
        for (int i = k + 1; i < n; ++i) {
            const double f = a[i * n + k] / a[k * n + k];
            for (int j = k; j < n; ++j)
                a[i * n + j] -= f * a[k * n + j];
            b[i] -= f * b[k];
        }
    }
    for (int i = n - 1; i >= 0; --i) {
        double sum = b[i];
        for (int j = i + 1; j < n; ++j)
            sum -= a[i * n + j] * b[j];
        b[i] = sum / a[i * n + i];
    }
}

void PlainProduct(const Plain& a, const Plain& b, Plain& c, int n) {
    std::fill(c.begin(), c.end(), 0.0);
    for (int i = 0; i < n; ++i)
        for (int k = 0; k < n; ++k)
            for (int j = 0; j < n; ++j)
                c[i * n + j] += a[i * n + k] * b[k * n + j];
}

void Report(benchmark::State& state, double flopsPerIteration, double librarySeconds,
            double plainSeconds) {
    const double iterations = static_cast<double>(state.iterations());
    state.SetItemsProcessed(state.iterations());
    state.counters["MFLOP/s"] = flopsPerIteration * iterations / librarySeconds / 1e6;
    state.counters["plain_MFLOP/s"] = flopsPerIteration * iterations / plainSeconds / 1e6;
    state.counters["vs_plain"] = plainSeconds / librarySeconds;
    state.counters["ns_per_call"] = librarySeconds / iterations * 1e9;
    state.counters["plain_ns_per_call"] = plainSeconds / iterations * 1e9;
}

void BM_GaussLoeserRelMax(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const orvo::OvMatrix a = RandomMatrix(n, n, 11, 0.0);
    const orvo::OvMatrix b = RandomMatrix(n, 1, 12, 0.0);
    double librarySeconds = 0, plainSeconds = 0;
    for (auto _ : state) {
        orvo::OvMatrix work = a;
        orvo::OvMatrix x = b;
        double start = orvo::bench::ThreadCpuSeconds();
        benchmark::DoNotOptimize(orvo::GaussLoeserRelMax(work, x));
        const double elapsed = SecondsSince(start);
        librarySeconds += elapsed;
        state.SetIterationTime(elapsed);

        Plain plainA = ToPlain(a);
        Plain plainB = ToPlain(b);
        start = orvo::bench::ThreadCpuSeconds();
        PlainGaussSolve(plainA, plainB, n);
        benchmark::DoNotOptimize(plainB.data());
        plainSeconds += SecondsSince(start);
    }
    Report(state, 2.0 / 3.0 * n * n * n, librarySeconds, plainSeconds);
}

void BM_Invert(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const orvo::OvMatrix a = RandomMatrix(n, n, 21, 0.0);
    double librarySeconds = 0, plainSeconds = 0;
    for (auto _ : state) {
        orvo::OvMatrix inverse = a;
        int result = 0;
        double start = orvo::bench::ThreadCpuSeconds();
        inverse.Invert(&result);
        benchmark::DoNotOptimize(result);
        const double elapsed = SecondsSince(start);
        librarySeconds += elapsed;
        state.SetIterationTime(elapsed);

        // The plain counterpart: one factorisation-and-solve per unit vector would be unfair,
        // so the baseline solves all n right-hand sides in one elimination pass.
        Plain plainA = ToPlain(a);
        Plain identity(static_cast<std::size_t>(n) * n, 0.0);
        for (int i = 0; i < n; ++i)
            identity[i * n + i] = 1.0;
        start = orvo::bench::ThreadCpuSeconds();
        for (int k = 0; k < n; ++k) {
            int pivot = k;
            for (int i = k + 1; i < n; ++i)
                if (std::fabs(plainA[i * n + k]) > std::fabs(plainA[pivot * n + k])) pivot = i;
            if (pivot != k) {
                for (int j = 0; j < n; ++j) {
                    std::swap(plainA[k * n + j], plainA[pivot * n + j]);
                    std::swap(identity[k * n + j], identity[pivot * n + j]);
                }
            }
            for (int i = k + 1; i < n; ++i) {
                const double f = plainA[i * n + k] / plainA[k * n + k];
                for (int j = k; j < n; ++j)
                    plainA[i * n + j] -= f * plainA[k * n + j];
                for (int j = 0; j < n; ++j)
                    identity[i * n + j] -= f * identity[k * n + j];
            }
        }
        for (int i = n - 1; i >= 0; --i) {
            for (int j = i + 1; j < n; ++j) {
                const double f = plainA[i * n + j];
                for (int c = 0; c < n; ++c)
                    identity[i * n + c] -= f * identity[j * n + c];
            }
            const double d = plainA[i * n + i];
            for (int c = 0; c < n; ++c)
                identity[i * n + c] /= d;
        }
        benchmark::DoNotOptimize(identity.data());
        plainSeconds += SecondsSince(start);
    }
    Report(state, 2.0 * n * n * n, librarySeconds, plainSeconds);
}

// The augmented normal-equation layout of a least-squares problem with u unknowns and 2u
// observations, as the 2D estimations build it.
orvo::OvMatrix AugmentedSystem(int u, Plain& normal, Plain& rhs) {
    const orvo::OvMatrix a = RandomMatrix(2 * u, u, 31, 0.0);
    const orvo::OvMatrix l = RandomMatrix(2 * u, 1, 32, 0.0);
    orvo::OvMatrix m(u + 1, 2 * u + 1);
    normal.assign(static_cast<std::size_t>(u) * u, 0.0);
    rhs.assign(static_cast<std::size_t>(u), 0.0);
    for (int r = 1; r <= 2 * u; ++r) {
        orvo::OvVector row(u);
        a.GetLine(r, row);
        m.CalcNGLAN(row);
        for (int i = 1; i <= u; ++i)
            m[i][u] += row[i] * l[r][0];
        m[u + 1][u] += l[r][0] * l[r][0];
    }
    for (int i = 1; i <= u; ++i) {
        m[i][u + i] = 1.0;
        for (int j = 1; j <= u; ++j)
            normal[(i - 1) * u + (j - 1)] = m[i][j - 1];
        rhs[i - 1] = m[i][u];
    }
    return m;
}

void BM_Cholesky(benchmark::State& state) {
    const int u = static_cast<int>(state.range(0));
    Plain normal, rhs;
    const orvo::OvMatrix system = AugmentedSystem(u, normal, rhs);
    double librarySeconds = 0, plainSeconds = 0;
    for (auto _ : state) {
        orvo::OvMatrix work = system;
        orvo::OvVector x(u);
        double start = orvo::bench::ThreadCpuSeconds();
        benchmark::DoNotOptimize(work.Cholesky(x));
        const double elapsed = SecondsSince(start);
        librarySeconds += elapsed;
        state.SetIterationTime(elapsed);

        // The library's layout also yields R^-T (for the cofactor matrix); the plain baseline
        // only factorises and solves, so this ratio shows the price of that extra output too.
        Plain plainN = normal;
        Plain plainR = rhs;
        start = orvo::bench::ThreadCpuSeconds();
        orvo::bench::PlainCholeskySolve(plainN.data(), plainR.data(), u);
        benchmark::DoNotOptimize(plainR.data());
        plainSeconds += SecondsSince(start);
    }
    Report(state, 1.0 / 3.0 * u * u * u, librarySeconds, plainSeconds);
}

void BM_MatrixProduct(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const orvo::OvMatrix a = RandomMatrix(n, n, 41, 0.0);
    const orvo::OvMatrix b = RandomMatrix(n, n, 42, 0.0);
    const Plain plainA = ToPlain(a);
    const Plain plainB = ToPlain(b);
    Plain plainC(static_cast<std::size_t>(n) * n);
    double librarySeconds = 0, plainSeconds = 0;
    for (auto _ : state) {
        double start = orvo::bench::ThreadCpuSeconds();
        orvo::OvMatrix c = a * b;
        benchmark::DoNotOptimize(c.Data());
        const double elapsed = SecondsSince(start);
        librarySeconds += elapsed;
        state.SetIterationTime(elapsed);

        start = orvo::bench::ThreadCpuSeconds();
        PlainProduct(plainA, plainB, plainC, n);
        benchmark::DoNotOptimize(plainC.data());
        plainSeconds += SecondsSince(start);
    }
    Report(state, 2.0 * n * n * n, librarySeconds, plainSeconds);
}

BENCHMARK(BM_GaussLoeserRelMax)->UseManualTime()->Arg(4)->Arg(8)->Arg(20)->Arg(100);
BENCHMARK(BM_Invert)->UseManualTime()->Arg(4)->Arg(8)->Arg(20)->Arg(100);
BENCHMARK(BM_Cholesky)->UseManualTime()->Arg(20)->Arg(100);
BENCHMARK(BM_MatrixProduct)->UseManualTime()->Arg(50)->Arg(100)->Arg(200);

}  // namespace
