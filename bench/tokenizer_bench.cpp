// Throughput of the tokenizer over a generated point block file of more than 50 MB: blocks of
// point records (an id and three coordinates written with 16 significant digits, the way point
// files are written), each block under a keyword. Every iteration also runs the raw baseline
// over the same file (read the bytes, count the lines with memchr), timed separately, so the
// ratio compares the tokenizer with the cheapest possible pass over the same bytes in the same
// run.
//
//     build/benches/bench/orvo_bench --benchmark_filter=Tokenizer
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <locale>
#include <string>

#include "bench_support.h"
#include "orvo/textfile/tokenizer.h"

namespace {

using orvo::OvParser;
using orvo::OvParserStatus;
using orvo::bench::Measure;
using orvo::bench::Timing;

constexpr std::size_t kPoints = 700000;  // about 54 MB
constexpr std::size_t kPointsPerBlock = 1000;

// What tokenizing the file must give.
struct Expected {
    std::size_t tokens = 0;
    std::size_t numbers = 0;
    std::size_t lines = 0;
};

// The generated file, written once per run and removed at the end of the program.
struct PointFile {
    PointFile();

    orvo::bench::ScratchDir dir{"orvo-tokenizer-bench-"};
    std::string name = dir.File("points.txt");
    double bytes = 0.0;
    Expected expected;
};

// Coordinates of a few kilometres with sub-millimetre digits, deterministic.
class Coordinates {
public:
    double Next(double range) {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 7;
        state_ ^= state_ << 17;
        return range * (static_cast<double>(state_ >> 11) / 9007199254740992.0 - 0.5);
    }

private:
    std::uint64_t state_ = 88172645463325252ULL;
};

PointFile::PointFile() {
    std::ofstream out(name, std::ios::binary | std::ios::trunc);
    out.imbue(std::locale::classic());
    out.precision(16);
    out << "; generated point blocks: id x y z\n";
    Coordinates random;
    std::size_t lines = 1;
    for (std::size_t i = 0; i < kPoints; ++i) {
        if (i % kPointsPerBlock == 0) {
            if (i != 0) out << "}\n";
            out << "POINTS\n{\n";
            lines += i != 0 ? 3 : 2;
            expected.tokens += 3;
        }
        out << ' ' << std::setw(10) << (i + 1) << ' ' << std::setw(21) << random.Next(5000.0) << ' '
            << std::setw(21) << random.Next(5000.0) << ' ' << std::setw(21) << random.Next(200.0)
            << '\n';
        ++lines;
    }
    out << "}\n";
    ++lines;
    expected.tokens += 4 * kPoints;
    expected.numbers = 4 * kPoints;
    expected.lines = lines;
    out.close();
    bytes = static_cast<double>(std::filesystem::file_size(name));
}

const PointFile& GetPointFile() {
    static const PointFile file;
    return file;
}

// Tokenizes the whole file the way the block reader does; counts tokens and numbers.
Expected Tokenize(const std::string& name, double& checksum) {
    std::ifstream in(name);
    OvParser parser;
    Expected seen;
    for (;;) {
        parser.ParseForToken(in);
        const orvo::OvParserToken& token = parser.GetToken();
        if (token.type == orvo::TokenEOF) break;
        ++seen.tokens;
        if (token.type == orvo::TokenInt || token.type == orvo::TokenFloat) {
            ++seen.numbers;
            checksum += token.GetNumber();
        }
    }
    // The end of input counts as a line read, as the parser reports it.
    seen.lines = parser.GetStatus().GetLine() - 1;
    return seen;
}

void BM_TokenizerPointFile(benchmark::State& state) {
    const PointFile& file = GetPointFile();
    Timing own, raw;
    for (auto _ : state) {
        Expected seen;
        double checksum = 0.0;
        try {
            state.SetIterationTime(Measure(own, [&] { seen = Tokenize(file.name, checksum); }));
        } catch (const OvParserStatus& status) {
            state.SkipWithError(status.GetStatusText());
            return;
        }
        benchmark::DoNotOptimize(checksum);
        std::size_t rawLines = 0;
        Measure(raw, [&] { rawLines = orvo::bench::CountLinesRaw(file.name); });
        if (seen.tokens != file.expected.tokens || seen.numbers != file.expected.numbers ||
            seen.lines != file.expected.lines || rawLines != file.expected.lines) {
            state.SkipWithError("the file was not tokenized completely");
            return;
        }
    }
    orvo::bench::ReportAgainstRaw(state, file.bytes, own, raw);
    state.counters["file_MB"] = file.bytes / 1e6;
}

BENCHMARK(BM_TokenizerPointFile)->UseManualTime()->MinTime(2.0)->Unit(benchmark::kMillisecond);

}  // namespace
