// orvo_stress: drives the library with inputs of hostile size, one job per run, so that an outside
// tool (/usr/bin/time -v in scripts/hostile_inputs.sh) can measure the time and peak memory of
// exactly that job. Each job prints "name: value" lines that the script picks up.
//
//   orvo_stress gen-points COUNT FILE      write COUNT points (id, x, y, z) with WriteFile
//   orvo_stress read-points FILE           read a point file (columns id, x, y, z) with ReadFile
//   orvo_stress read-blocks FILE           read a block file: "B" blocks nest to any depth, "X"
//                                          is an int, every other keyword is unknown
//   orvo_stress string LENGTH              String operations on a text of LENGTH characters
//   orvo_stress profile FILE LENGTH        write and read back a settings value of LENGTH chars
//
// Exit status: 0 when the job ran (errors in the input are reported, not failures), 1 when a
// check of the library's own guarantees failed, 2 for a usage error.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "orvo/orvo.h"

namespace {

using orvo::String;
using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

orvo::TOvFormatTable<orvo::eOvPointRWMask> IdXyzColumns() {
    orvo::TOvFormatTable<orvo::eOvPointRWMask> table;
    for (std::uint32_t code : {1U, 7U, 8U, 9U}) {
        table.AddEntry(static_cast<orvo::eOvPointRWMask>(code));
    }
    return table;
}

bool ParseCount(const char* text, unsigned long long* value) {
    char* end = nullptr;
    *value = std::strtoull(text, &end, 10);
    return end != text && *end == '\0';
}

int GenPoints(unsigned long long count, const char* file) {
    const Clock::time_point start = Clock::now();
    orvo::OvPointList list(IdXyzColumns());
    for (unsigned long long i = 1; i <= count; ++i) {
        const double t = static_cast<double>(i);
        list.Add(new orvo::OvPoint(static_cast<unsigned>(i), t * 0.125, -t * 1.0625 + 0.1,
                                   1000.0 / t, 0));
    }
    const double built = SecondsSince(start);
    const Clock::time_point writing = Clock::now();
    list.WriteFile(String(file));
    std::cout << "points: " << list.Count() << "\n"
              << "build_seconds: " << built << "\n"
              << "write_seconds: " << SecondsSince(writing) << "\n";
    return 0;
}

int ReadPoints(const char* file) {
    const Clock::time_point start = Clock::now();
    orvo::OvPointList list;
    const int count = list.ReadFile(String(file), IdXyzColumns());
    const double seconds = SecondsSince(start);
    // The size of the records themselves, as a yardstick for the process's peak memory.
    const unsigned long long recordBytes =
        static_cast<unsigned long long>(count) * sizeof(orvo::OvPoint);
    std::cout << "points: " << count << "\n"
              << "sizeof_point: " << sizeof(orvo::OvPoint) << "\n"
              << "record_bytes: " << recordBytes << "\n"
              << "read_seconds: " << seconds << "\n";
    const orvo::OvPoint* last = list.Last();
    if (last != nullptr) {
        std::cout << "last_point: " << last->GetId() << " " << last->GetX() << " " << last->GetY()
                  << " " << last->GetZ() << "\n";
    }
    return 0;
}

// Binds "B" to itself in every scope, so a file of nested B blocks goes as deep as the reader
// lets a handler go.
class NestedBlocks : public orvo::LinkHdl {
public:
    std::int32_t OnBlock(void* argument) {
        auto* block = static_cast<orvo::OvReaderObject*>(argument);
        ++blocks;
        const int depth = block->GetReader()->GetScopeDepth();
        if (depth > deepest) deepest = depth;
        block->RegisterObject(orvo::OvReaderObject("B", orvo::Link(this, &NestedBlocks::OnBlock)));
        block->RegisterObject(orvo::OvReaderObject("X", &x));
        block->DoProcess();
        return 1;
    }
    std::int32_t GoOn(void*) { return 1; }

    long long blocks = 0;
    int deepest = 0;
    int x = 0;
};

int ReadBlocks(const char* file) {
    const Clock::time_point start = Clock::now();
    orvo::OvReader reader{String(file)};
    NestedBlocks nesting;
    reader.RegisterObject(orvo::OvReaderObject("B", orvo::Link(&nesting, &NestedBlocks::OnBlock)));
    reader.RegisterObject(orvo::OvReaderObject("X", &nesting.x));
    // Keep reading after errors, as far as the reader can go.
    reader.SetParserErrorHdl(orvo::Link(&nesting, &NestedBlocks::GoOn));
    reader.DoProcess(false);
    const double seconds = SecondsSince(start);
    std::cout << "handled_blocks: " << nesting.blocks << "\n"
              << "deepest_scope: " << nesting.deepest << "\n"
              << "x: " << nesting.x << "\n"
              << "lines: " << reader.GetParser().GetStatus().GetLine() << "\n"
              << "tokens: " << reader.GetParser().GetStatus().GetTokenCount() << "\n"
              << "read_errors: " << reader.GetReadErrorCount() << "\n";
    if (const orvo::OvReaderError* first = reader.GetReaderErrorList().First()) {
        std::cout << "first_error: line " << first->GetLine() << " " << first->GetStatusText()
                  << "\n";
        const orvo::OvReaderError* last = reader.GetReaderErrorList().Last();
        std::cout << "last_error: line " << last->GetLine() << " " << last->GetStatusText() << "\n";
    }
    std::cout << "read_seconds: " << seconds << "\n";
    return 0;
}

int Check(bool ok, const char* what) {
    if (!ok) std::cout << "FAILED: " << what << "\n";
    return ok ? 0 : 1;
}

int StringJob(unsigned long long length) {
    const std::string text(length, 'a');
    int failures = 0;
    const int limit = String::kMaxLength;
    const int expected =
        length < static_cast<unsigned long long>(limit) ? static_cast<int>(length) : limit;

    String whole(text.c_str());
    failures += Check(whole.length() == expected && whole.OK(), "construction");
    String doubled = whole;
    doubled += whole;
    failures += Check(doubled.length() == std::min(2 * expected, limit), "append");
    doubled.prepend(whole);
    failures += Check(doubled.OK(), "prepend");
    String replaced = whole;
    replaced.gsub("a", "bb");
    failures += Check(replaced.length() <= limit && replaced.OK(), "gsub");
    String formatted;
    orvo::Sprintf(formatted, String("<%1>"), whole);
    failures += Check(formatted.length() <= limit && formatted.OK(), "Sprintf");
    std::istringstream in(text + "\nrest");
    String line;
    const int got = orvo::readline(in, line, '\n', 1);
    failures += Check(got == expected && line.length() == expected, "readline");
    String rest;
    orvo::readline(in, rest, '\n', 1);
    failures += Check(std::strcmp(rest.chars(), "rest") == 0, "readline goes on after the line");

    std::cout << "input_length: " << length << "\n"
              << "string_length: " << whole.length() << "\n"
              << "appended_length: " << doubled.length() << "\n"
              << "gsub_length: " << replaced.length() << "\n"
              << "readline_length: " << got << "\n";
    return failures == 0 ? 0 : 1;
}

int ProfileJob(const char* file, unsigned long long length) {
    const std::string value(length, 'v');
    const int written = orvo::OvWritePrivateProfile("Long", "Value", value.c_str(), file);
    std::vector<char> result(length + 16);
    const int read = orvo::OvGetPrivateProfile("Long", "Value", result.data(),
                                               static_cast<int>(result.size()), "", file);
    // Lines are read in pieces of kOvProfileLineLength characters; the first piece holds the
    // key, "=" and the start of the value.
    std::cout << "written: " << written << "\n"
              << "read_length: " << read << "\n";
    const bool ok = written == 1 && read >= 0 &&
                    static_cast<std::size_t>(read) <= orvo::kOvProfileLineLength &&
                    std::string(result.data()) == value.substr(0, static_cast<std::size_t>(read));
    return Check(ok, "settings value read back as its first piece");
}

int Usage() {
    std::cerr << "usage: orvo_stress gen-points COUNT FILE | read-points FILE | read-blocks FILE"
                 " | string LENGTH | profile FILE LENGTH\n";
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) return Usage();
    const std::string job = argv[1];
    unsigned long long number = 0;
    if (job == "gen-points" && argc == 4 && ParseCount(argv[2], &number)) {
        return GenPoints(number, argv[3]);
    }
    if (job == "read-points" && argc == 3) return ReadPoints(argv[2]);
    if (job == "read-blocks" && argc == 3) return ReadBlocks(argv[2]);
    if (job == "string" && argc == 3 && ParseCount(argv[2], &number)) return StringJob(number);
    if (job == "profile" && argc == 4 && ParseCount(argv[3], &number)) {
        return ProfileJob(argv[2], number);
    }
    return Usage();
}
