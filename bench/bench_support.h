// Shared pieces of the tokenizer, reader and list benchmarks: a clock pair (the thread's CPU
// time and elapsed time), a scratch directory for generated files, the raw-read baseline and
// the counters that put a measurement next to its baseline.
//
// The machine the benchmarks run on is often shared, so the reported time of a benchmark is
// the thread's CPU time (what the code itself costs, hardly disturbed by other processes);
// the elapsed-time figures are reported as extra counters.
#pragma once

#include <benchmark/benchmark.h>
#include <time.h>

#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace orvo::bench {

using Clock = std::chrono::steady_clock;

// The thread's CPU time where the system offers it, elapsed time elsewhere.
inline double ThreadCpuSeconds() {
#if defined(CLOCK_THREAD_CPUTIME_ID)
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
#else
    return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
#endif
}

// The CPU seconds `work` takes.
template <typename Work>
double CpuSecondsOf(Work&& work) {
    const double start = ThreadCpuSeconds();
    work();
    return ThreadCpuSeconds() - start;
}

// Accumulated CPU and elapsed seconds of one kind of work.
struct Timing {
    double cpu = 0.0;
    double wall = 0.0;
};

// Runs `work` once, adds its times to `total` and returns its CPU seconds.
template <typename Work>
double Measure(Timing& total, Work&& work) {
    const double cpuStart = ThreadCpuSeconds();
    const Clock::time_point wallStart = Clock::now();
    work();
    const double wall = std::chrono::duration<double>(Clock::now() - wallStart).count();
    const double cpu = ThreadCpuSeconds() - cpuStart;
    total.cpu += cpu;
    total.wall += wall;
    return cpu;
}

// A directory under the system's temporary directory, removed with everything in it.
class ScratchDir {
public:
    explicit ScratchDir(const char* prefix)
        : path_(std::filesystem::temp_directory_path() /
                (std::string(prefix) + std::to_string(Clock::now().time_since_epoch().count()))) {
        std::filesystem::create_directories(path_);
    }
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;
    ~ScratchDir() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    std::string File(const char* name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

// The raw baseline of the file-reading benchmarks: reads the file's bytes in large chunks and
// counts the line feeds with memchr. Nothing that reads a text file line by line can be faster
// by much. Returns the number of lines (a last line without a line feed counts).
inline std::size_t CountLinesRaw(const std::string& name) {
    std::FILE* file = std::fopen(name.c_str(), "rb");
    if (file == nullptr) return 0;
    std::vector<char> chunk(1 << 16);
    std::size_t lines = 0;
    char last = '\n';
    for (;;) {
        const std::size_t got = std::fread(chunk.data(), 1, chunk.size(), file);
        if (got == 0) break;
        const char* p = chunk.data();
        const char* const end = p + got;
        while ((p = static_cast<const char*>(
                    std::memchr(p, '\n', static_cast<std::size_t>(end - p)))) != nullptr) {
            ++lines;
            ++p;
        }
        last = chunk[got - 1];
    }
    std::fclose(file);
    return last == '\n' ? lines : lines + 1;
}

// Throughput of the measured work and of the raw baseline over the same bytes, and their
// ratio (1.0 = as fast as the raw read, 0.25 = four times slower). The benchmark's own time
// must be the work's CPU time (UseManualTime with the CPU seconds), so the "MB" rate counter
// is megabytes per CPU second.
inline void ReportAgainstRaw(benchmark::State& state, double bytesPerIteration, const Timing& own,
                             const Timing& raw) {
    const double megabytes = bytesPerIteration * static_cast<double>(state.iterations()) / 1e6;
    state.SetBytesProcessed(
        static_cast<std::int64_t>(bytesPerIteration * static_cast<double>(state.iterations())));
    state.counters["MB"] = benchmark::Counter(megabytes, benchmark::Counter::kIsRate);
    state.counters["raw_MB/s"] = megabytes / raw.cpu;
    state.counters["vs_raw"] = raw.cpu / own.cpu;
    state.counters["wall_MB/s"] = megabytes / own.wall;
    state.counters["wall_vs_raw"] = raw.wall / own.wall;
}

// The textbook baseline of the solver benchmarks: Cholesky factorisation N = L L^T of the
// u x u row-major matrix `n` (overwritten by L), then the two triangular solves for N x = r
// (`r` becomes x).
inline void PlainCholeskySolve(double* n, double* r, int u) {
    for (int j = 0; j < u; ++j) {
        double diagonal = n[j * u + j];
        for (int k = 0; k < j; ++k)
            diagonal -= n[j * u + k] * n[j * u + k];
        diagonal = std::sqrt(diagonal);
        n[j * u + j] = diagonal;
        for (int i = j + 1; i < u; ++i) {
            double sum = n[i * u + j];
            for (int k = 0; k < j; ++k)
                sum -= n[i * u + k] * n[j * u + k];
            n[i * u + j] = sum / diagonal;
        }
    }
    for (int i = 0; i < u; ++i) {
        double sum = r[i];
        for (int k = 0; k < i; ++k)
            sum -= n[i * u + k] * r[k];
        r[i] = sum / n[i * u + i];
    }
    for (int i = u - 1; i >= 0; --i) {
        double sum = r[i];
        for (int k = i + 1; k < u; ++k)
            sum -= n[k * u + i] * r[k];
        r[i] = sum / n[i * u + i];
    }
}

}  // namespace orvo::bench
