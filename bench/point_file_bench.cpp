// Throughput of writing and reading large point files. Each iteration also writes (or reads)
// the same numbers in the same column layout with plain iostreams, timed separately, so the
// reported ratios compare the point file code with the standard library's formatting and
// parsing measured in the same run under the same conditions.
//
// Two ratios are reported: by elapsed time (what a user waits for, including the flush to the
// disk that the point file writer does before it replaces the file and the baseline does not)
// and by the thread's CPU time (the formatting and parsing work alone, and less disturbed by
// other processes on a busy machine).
#include <benchmark/benchmark.h>
#include <time.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <string>
#include <system_error>
#include <vector>

#include "orvo/model/point_list.h"

namespace {

using orvo::eOvPointRWMask;
using orvo::OvPoint;
using orvo::OvPointList;
using orvo::String;
using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double ThreadCpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Elapsed and CPU seconds of one measured piece of work.
struct Timing {
    double wall = 0.0;
    double cpu = 0.0;
};

template <typename Work>
double Measure(Timing& total, Work work) {
    const double cpuStart = ThreadCpuSeconds();
    const Clock::time_point start = Clock::now();
    work();
    const double wall = SecondsSince(start);
    total.wall += wall;
    total.cpu += ThreadCpuSeconds() - cpuStart;
    return wall;
}

// One measured point as plain numbers, for the baseline.
struct Row {
    std::uint32_t id;
    double x, y, z;
};

// Object coordinates of a few kilometres with sub-millimetre digits, deterministic.
std::vector<Row> MakeRows(std::size_t n) {
    std::vector<Row> rows(n);
    std::uint64_t state = 88172645463325252ULL;
    const auto next = [&state] {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        return static_cast<double>(state >> 11) / 9007199254740992.0;  // [0, 1)
    };
    for (std::size_t i = 0; i < n; ++i) {
        rows[i] = {static_cast<std::uint32_t>(i + 1), 5000.0 * next() - 2500.0,
                   5000.0 * next() - 2500.0, 100.0 * next()};
    }
    return rows;
}

const eOvPointRWMask kColumns[] = {orvo::eOvPointRWId, orvo::eOvPointRWX, orvo::eOvPointRWY,
                                   orvo::eOvPointRWZ, orvo::eOvPointRWEnd};

void FillList(OvPointList& list, const std::vector<Row>& rows) {
    list.SetMask(orvo::TOvFormatTable<eOvPointRWMask>(kColumns));
    for (const Row& r : rows)
        list.Add(new OvPoint(r.id, r.x, r.y, r.z, 0));
}

// The same layout as the point file (blank + right-aligned 10 / 21 / 21 / 21, precision 16),
// with plain line ends.
void WriteBaseline(const std::string& name, const std::vector<Row>& rows) {
    std::ofstream out(name, std::ios::binary | std::ios::trunc);
    out.imbue(std::locale::classic());
    out.precision(16);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i != 0) out << '\n';
        const Row& r = rows[i];
        out << ' ' << std::setw(10) << r.id << ' ' << std::setw(21) << r.x << ' ' << std::setw(21)
            << r.y << ' ' << std::setw(21) << r.z;
    }
}

std::size_t ReadBaseline(const std::string& name, std::vector<Row>& rows) {
    std::ifstream in(name, std::ios::binary);
    in.imbue(std::locale::classic());
    rows.clear();
    Row r{};
    while (in >> r.id >> r.x >> r.y >> r.z)
        rows.push_back(r);
    return rows.size();
}

class ScratchDir {
public:
    ScratchDir()
        : path_(std::filesystem::temp_directory_path() /
                ("orvo-point-bench-" + std::to_string(Clock::now().time_since_epoch().count()))) {
        std::filesystem::create_directories(path_);
    }
    ~ScratchDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    std::string File(const char* name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

void Report(benchmark::State& state, double bytesPerIteration, std::size_t points,
            const Timing& own, const Timing& baseline) {
    const double iterations = static_cast<double>(state.iterations());
    const double bytes = bytesPerIteration * iterations;
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
    state.SetItemsProcessed(static_cast<std::int64_t>(static_cast<double>(points) * iterations));
    state.counters["MB/s"] = bytes / own.wall / 1e6;
    state.counters["iostream_MB/s"] = bytes / baseline.wall / 1e6;
    state.counters["cpu_MB/s"] = bytes / own.cpu / 1e6;
    state.counters["iostream_cpu_MB/s"] = bytes / baseline.cpu / 1e6;
    // 1.0 = as fast as plain iostreams, 0.5 = twice as slow.
    state.counters["vs_iostream"] = baseline.wall / own.wall;
    state.counters["cpu_vs_iostream"] = baseline.cpu / own.cpu;
}

void BM_PointFileWrite(benchmark::State& state) {
    const std::vector<Row> rows = MakeRows(static_cast<std::size_t>(state.range(0)));
    OvPointList list;
    FillList(list, rows);
    ScratchDir dir;
    const std::string ownFile = dir.File("points.txt");
    const std::string baselineFile = dir.File("baseline.txt");
    const String ownName(ownFile.c_str());
    Timing own, base;

    for (auto _ : state) {
        state.SetIterationTime(Measure(own, [&] { list.WriteFile(ownName); }));
        Measure(base, [&] { WriteBaseline(baselineFile, rows); });
    }
    const auto size = std::filesystem::file_size(ownFile);
    if (size != std::filesystem::file_size(baselineFile)) {
        state.SkipWithError("the point file and the baseline differ in size");
        return;
    }
    Report(state, static_cast<double>(size), rows.size(), own, base);
}

void BM_PointFileRead(benchmark::State& state) {
    const std::vector<Row> rows = MakeRows(static_cast<std::size_t>(state.range(0)));
    ScratchDir dir;
    const std::string name = dir.File("points.txt");
    {
        OvPointList list;
        FillList(list, rows);
        list.WriteFile(String(name.c_str()));
    }
    const String fileName(name.c_str());
    const orvo::TOvFormatTable<eOvPointRWMask> mask(kColumns);
    std::vector<Row> parsed;
    parsed.reserve(rows.size());
    Timing own, base;
    int count = 0;

    for (auto _ : state) {
        // The list's points are freed inside the timed part, as a caller's would be.
        state.SetIterationTime(Measure(own, [&] {
            OvPointList list;
            benchmark::DoNotOptimize(list.ReadFile(fileName, mask));
            count = list.Count();
        }));
        Measure(base, [&] { benchmark::DoNotOptimize(ReadBaseline(name, parsed)); });
        if (static_cast<std::size_t>(count) != rows.size() || parsed.size() != rows.size()) {
            state.SkipWithError("a file was read back incompletely");
            return;
        }
    }
    Report(state, static_cast<double>(std::filesystem::file_size(name)), rows.size(), own, base);
}

BENCHMARK(BM_PointFileWrite)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Arg(1000)
    ->Arg(100000);
BENCHMARK(BM_PointFileRead)->UseManualTime()->Unit(benchmark::kMillisecond)->Arg(1000)->Arg(100000);

}  // namespace
