// Throughput of writing and reading point files of 1,000,000 points in the columns id, x, y, z.
// Each iteration also does the same work two plainer ways, timed separately, so the reported
// ratios compare the point file code with baselines measured in the same run under the same
// conditions:
//   - iostream: the same numbers in the same column layout written with `std::ofstream <<`, or
//     read back with `std::ifstream >> id >> x >> y >> z`;
//   - raw: the same bytes written with fwrite in 64 KiB pieces, or the file's bytes read in
//     64 KiB pieces and its line feeds counted with memchr; no text processing can beat these.
//
// Two sets of figures are reported: by elapsed time (what a user waits for, including the flush
// to the disk that the point file writer does before it replaces the file and the baselines do
// not) and by the thread's CPU time (the formatting and parsing work alone, and less disturbed
// by other processes on a busy machine). The ratios are baseline time / own time: 1.0 is as fast
// as the baseline, 0.5 twice as slow.
#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

#include "orvo/model/point_list.h"

#include "bench_support.h"

namespace {

using orvo::bench::CountLinesRaw;
using orvo::bench::Measure;
using orvo::bench::Timing;

using orvo::eOvPointRWMask;
using orvo::OvPoint;
using orvo::OvPointList;
using orvo::String;
using Clock = std::chrono::steady_clock;

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

// The raw writing baseline: the bytes of a finished file written with fwrite in 64 KiB pieces.
void WriteRaw(const std::string& name, const std::string& bytes) {
    std::FILE* file = std::fopen(name.c_str(), "wb");
    if (file == nullptr) return;
    for (std::size_t at = 0; at < bytes.size(); at += 1 << 16) {
        const std::size_t piece = std::min<std::size_t>(1 << 16, bytes.size() - at);
        if (std::fwrite(bytes.data() + at, 1, piece, file) != piece) break;
    }
    std::fclose(file);
}

std::string ReadBytes(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
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
            const Timing& own, const Timing& iostream, const Timing& raw) {
    const double iterations = static_cast<double>(state.iterations());
    const double bytes = bytesPerIteration * iterations;
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
    state.SetItemsProcessed(static_cast<std::int64_t>(static_cast<double>(points) * iterations));
    state.counters["MB/s"] = bytes / own.wall / 1e6;
    state.counters["cpu_MB/s"] = bytes / own.cpu / 1e6;
    state.counters["iostream_MB/s"] = bytes / iostream.wall / 1e6;
    state.counters["iostream_cpu_MB/s"] = bytes / iostream.cpu / 1e6;
    state.counters["raw_MB/s"] = bytes / raw.wall / 1e6;
    state.counters["raw_cpu_MB/s"] = bytes / raw.cpu / 1e6;
    state.counters["vs_iostream"] = iostream.wall / own.wall;
    state.counters["cpu_vs_iostream"] = iostream.cpu / own.cpu;
    state.counters["vs_raw"] = raw.wall / own.wall;
    state.counters["cpu_vs_raw"] = raw.cpu / own.cpu;
}

void BM_PointFileWrite(benchmark::State& state) {
    const std::vector<Row> rows = MakeRows(static_cast<std::size_t>(state.range(0)));
    OvPointList list;
    FillList(list, rows);
    ScratchDir dir;
    const std::string ownFile = dir.File("points.txt");
    const std::string baselineFile = dir.File("baseline.txt");
    const std::string rawFile = dir.File("raw.txt");
    const String ownName(ownFile.c_str());
    list.WriteFile(ownName);
    const std::string bytes = ReadBytes(ownFile);
    Timing own, iostream, raw;

    for (auto _ : state) {
        state.SetIterationTime(Measure(own, [&] { list.WriteFile(ownName); }));
        Measure(iostream, [&] { WriteBaseline(baselineFile, rows); });
        Measure(raw, [&] { WriteRaw(rawFile, bytes); });
    }
    if (ReadBytes(ownFile) != ReadBytes(baselineFile)) {
        state.SkipWithError("the point file and the iostream baseline differ");
        return;
    }
    Report(state, static_cast<double>(bytes.size()), rows.size(), own, iostream, raw);
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
    Timing own, iostream, raw;
    int count = 0;
    std::size_t lines = 0;

    for (auto _ : state) {
        // The list's points are freed inside the timed part, as a caller's would be.
        state.SetIterationTime(Measure(own, [&] {
            OvPointList list;
            count = list.ReadFile(fileName, mask);
        }));
        Measure(iostream, [&] { benchmark::DoNotOptimize(ReadBaseline(name, parsed)); });
        Measure(raw, [&] { lines = CountLinesRaw(name); });
        if (static_cast<std::size_t>(count) != rows.size() || parsed.size() != rows.size() ||
            lines != rows.size()) {
            state.SkipWithError("a file was read back incompletely");
            return;
        }
    }
    Report(state, static_cast<double>(std::filesystem::file_size(name)), rows.size(), own, iostream,
           raw);
}

// Each iteration handles 1,000,000 points (about 75 MB) three ways; three iterations are plenty.
BENCHMARK(BM_PointFileWrite)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Arg(1000000)
    ->Iterations(3);
BENCHMARK(BM_PointFileRead)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Arg(1000000)
    ->Iterations(3);

}  // namespace
