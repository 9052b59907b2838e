// Throughput of the block-file reader: a generated project file of just over 1,000,000
// keyword entries in nested blocks, read by DoProcess into bound variables through block
// handlers, the way the data classes read their records. Each iteration also runs, over the same
// file and timed separately, the raw baseline (read the bytes, count the lines with memchr) and
// the bare tokenizer, so the figures show both the distance to the cheapest pass over the bytes
// and what the reader adds to tokenizing.
//
//     build/benches/bench/orvo_bench --benchmark_filter=Reader
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <locale>
#include <string>

#include "bench_support.h"
#include "orvo/foundation/link.h"
#include "orvo/foundation/string.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/tokenizer.h"

namespace {

using orvo::Link;
using orvo::OvReader;
using orvo::OvReaderObject;
using orvo::String;
using orvo::bench::Measure;
using orvo::bench::Timing;

// Every record is ten entries: RECORD, ID, LABEL, X, Y, Z, ACTIVE, POSITION, PX, PY.
constexpr std::size_t kRecords = 100000;
constexpr std::size_t kEntriesPerRecord = 10;
// PROJECT and TITLE around the records.
constexpr std::size_t kEntries = kRecords * kEntriesPerRecord + 2;

// What reading the file must give (the sums check that every value arrived).
struct Totals {
    std::size_t records = 0;
    std::uint64_t idSum = 0;
    std::size_t active = 0;
    std::size_t labelChars = 0;
    double coordinateSum = 0.0;
    bool operator==(const Totals&) const = default;
};

struct ProjectFile {
    ProjectFile();

    orvo::bench::ScratchDir dir{"orvo-reader-bench-"};
    std::string name = dir.File("project.txt");
    double bytes = 0.0;
    Totals expected;
};

// Values written with few digits so that the sums are exact in any order of addition.
ProjectFile::ProjectFile() {
    std::ofstream out(name, std::ios::binary | std::ios::trunc);
    out.imbue(std::locale::classic());
    out << "; generated project: nested record blocks\n"
        << "PROJECT\n{\n"
        << "  TITLE       \"reader benchmark\"\n";
    for (std::size_t i = 1; i <= kRecords; ++i) {
        std::string label("P");
        label += std::to_string(i);
        const double x = static_cast<double>(i % 4096) * 0.25;
        const double y = -static_cast<double>(i % 1024) * 0.5;
        const double z = static_cast<double>(i % 100);
        const bool active = i % 3 != 0;
        const double px = static_cast<double>(i % 512) * 0.125;
        const double py = 2.0;
        out << "  RECORD\n  {\n"
            << "    ID          " << i << "\n"
            << "    LABEL       \"" << label << "\"\n"
            << "    X           " << x << "\n"
            << "    Y           " << y << "\n"
            << "    Z           " << z << "\n"
            << "    ACTIVE      " << (active ? 1 : 0) << "\n"
            << "    POSITION\n    {\n"
            << "      PX        " << px << "\n"
            << "      PY        " << py << "\n"
            << "    }\n  }\n";
        ++expected.records;
        expected.idSum += i;
        expected.active += active;
        expected.labelChars += label.size();
        expected.coordinateSum += x + y + z + px + py;
    }
    out << "}\n";
    out.close();
    bytes = static_cast<double>(std::filesystem::file_size(name));
}

const ProjectFile& GetProjectFile() {
    static const ProjectFile file;
    return file;
}

// The handlers of a data class: each record block registers its bound variables, reads its
// block and takes the values over.
class ProjectReader : public orvo::LinkHdl {
public:
    std::int32_t OnProject(void* arg) {
        auto* block = static_cast<OvReaderObject*>(arg);
        block->RegisterObject(OvReaderObject("TITLE", &title_));
        block->RegisterObject(OvReaderObject("RECORD", Link(this, &ProjectReader::OnRecord)));
        block->DoProcess();
        return 1;
    }

    std::int32_t OnRecord(void* arg) {
        auto* block = static_cast<OvReaderObject*>(arg);
        Record record;
        current_ = &record;
        block->RegisterObject(OvReaderObject("ID", &record.id));
        block->RegisterObject(OvReaderObject("LABEL", &record.label));
        block->RegisterObject(OvReaderObject("X", &record.x));
        block->RegisterObject(OvReaderObject("Y", &record.y));
        block->RegisterObject(OvReaderObject("Z", &record.z));
        block->RegisterObject(OvReaderObject("ACTIVE", &record.active));
        block->RegisterObject(OvReaderObject("POSITION", Link(this, &ProjectReader::OnPosition)));
        block->DoProcess();
        current_ = nullptr;
        ++totals_.records;
        totals_.idSum += static_cast<std::uint64_t>(record.id);
        totals_.active += record.active;
        totals_.labelChars += record.label.length();
        totals_.coordinateSum += record.x + record.y + record.z + record.px + record.py;
        return 1;
    }

    std::int32_t OnPosition(void* arg) {
        auto* block = static_cast<OvReaderObject*>(arg);
        block->RegisterObject(OvReaderObject("PX", &current_->px));
        block->RegisterObject(OvReaderObject("PY", &current_->py));
        block->DoProcess();
        return 1;
    }

    const Totals& GetTotals() const { return totals_; }

private:
    struct Record {
        int id = 0;
        String label;
        double x = 0.0, y = 0.0, z = 0.0;
        bool active = false;
        double px = 0.0, py = 0.0;
    };

    String title_;
    Record* current_ = nullptr;
    Totals totals_;
};

// Reads the whole file; returns the totals and the number of read errors.
Totals ReadProject(const std::string& name, int& errors) {
    ProjectReader project;
    OvReader reader{String(name.c_str())};
    reader.RegisterObject(OvReaderObject("PROJECT", Link(&project, &ProjectReader::OnProject)));
    reader.DoProcess(false);
    errors = reader.GetReadErrorCount();
    return project.GetTotals();
}

// The tokens of the file without a reader on top.
std::size_t CountTokens(const std::string& name) {
    std::ifstream in(name);
    orvo::OvParser parser;
    std::size_t tokens = 0;
    for (parser.ParseForToken(in); parser.GetToken().type != orvo::TokenEOF;
         parser.ParseForToken(in))
        ++tokens;
    return tokens;
}

void BM_ReaderNestedRecords(benchmark::State& state) {
    const ProjectFile& file = GetProjectFile();
    Timing own, raw, tokenizer;
    std::size_t lines = 0, tokens = 0;
    for (auto _ : state) {
        Totals totals;
        int errors = -1;
        state.SetIterationTime(Measure(own, [&] { totals = ReadProject(file.name, errors); }));
        Measure(raw, [&] { lines = orvo::bench::CountLinesRaw(file.name); });
        Measure(tokenizer, [&] { tokens = CountTokens(file.name); });
        if (errors != 0 || !(totals == file.expected) || lines == 0 || tokens == 0) {
            state.SkipWithError("the reader did not read every record");
            return;
        }
    }
    orvo::bench::ReportAgainstRaw(state, file.bytes, own, raw);
    const double megabytes = file.bytes * static_cast<double>(state.iterations()) / 1e6;
    state.counters["tokenizer_MB/s"] = megabytes / tokenizer.cpu;
    state.counters["vs_tokenizer"] = tokenizer.cpu / own.cpu;
    state.counters["entries/s"] = benchmark::Counter(
        static_cast<double>(kEntries * state.iterations()), benchmark::Counter::kIsRate);
    state.counters["file_MB"] = file.bytes / 1e6;
}

BENCHMARK(BM_ReaderNestedRecords)->UseManualTime()->MinTime(2.0)->Unit(benchmark::kMillisecond);

}  // namespace
