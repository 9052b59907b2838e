// Point files of arbitrary content, read with a column format chosen by the first input byte:
// reading must never fail outside the tokenizer's own errors; whatever was read must write the
// same bytes whether the records are formatted in memory or by the stream itself; and for
// formats in which every column is one token each way, writing what was read and reading it
// again must give the same number of points.
//
// Input layout: byte 0 selects the format and the path; with bit 3 set, bytes 1..24 are the
// format's codes (indexes into the list of codes; a 0 byte ends them early); the rest is the
// file's text.
//   bits 0-2  one of eight realistic formats
//   bit 3     a format of up to 24 codes taken from the input instead
//   bit 4     the points stand in a "POINTS { ... }" block of a block file
//   bit 5     read from the tokenizer directly instead of through a file and the reader
//   bit 6     the format of every column code, in code order (unless bit 3 is set)
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <locale>
#include <sstream>
#include <string>

#include "orvo/model/point_list.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/tokenizer.h"

namespace {

namespace fs = std::filesystem;
using orvo::eOvPointRWMask;
using Table = orvo::TOvFormatTable<eOvPointRWMask>;

const std::uint32_t kFormats[8][8] = {
    {1, 7, 8, 9},                    // object points
    {1, 7, 8},                       // image points
    {1, 5, 6, 7, 8},                 // measured points with photo and camera
    {1, 2, 7, 8, 9, 105, 106, 107},  // control points with accuracies
    {1, 3, 7, 8, 9, 10, 11, 12},     // coded points with deviations
    {1, 7, 8, 9, 13, 14, 15, 16},    // results with length and reductions
    {1, 4, 17, 7, 8},                // name column and a skipped column
    {1, 7, 8, 115, 116, 117, 9},     // residual columns (consume nothing on read)
};

// Every column code there is.
const std::uint32_t kEveryCode[] = {1,  2,  3,  4,  5,  6,   7,   8,   9,   10,  11, 12,
                                    13, 14, 15, 16, 17, 105, 106, 107, 115, 116, 117};

// The standard number formatting under a type of its own, which makes the point writer leave
// the formatting to the stream.
struct SameNumPut : std::num_put<char> {};

// Codes a fuzzed format may hold: every named one plus a few unknown values.
const std::uint32_t kCodes[] = {1,  2,  3,  4,  5,   6,   7,   8,   9,   10,  11, 12,  13,
                                14, 15, 16, 17, 105, 106, 107, 115, 116, 117, 18, 100, 999};

// Columns that write exactly one token and read exactly one token.
bool IsSymmetric(std::uint32_t code) {
    return (code >= 1 && code <= 16 && code != 4 && code != 13) || (code >= 105 && code <= 107);
}

const fs::path& ScratchFile() {
    static const fs::path path =
        fs::temp_directory_path() / ("orvo-point-fuzz-" + std::to_string(::getpid()) + ".txt");
    return path;
}

bool AllFinite(const orvo::OvPointList& list) {
    for (const orvo::OvPoint* p = list.First(); p != nullptr; p = p->Next()) {
        double sum = p->GetX() + p->GetY() + p->GetZ();
        for (int i = 0; i < 3; ++i)
            sum += p->GetD(i) + p->GetR(i);
        if (!std::isfinite(sum)) return false;
    }
    return true;
}

void ReadFromTokenizer(orvo::OvPointList& list, const std::string& text) {
    std::istringstream in(text);
    orvo::OvParser parser;
    try {
        parser.ParseForToken(in);
        list.Read(parser, in);
    } catch (const orvo::OvParserStatus&) {
        // A tokenizer error ends the read; the complete records stay.
    }
}

// libFuzzer may end the process without running destructors, so the scratch file is removed
// after every input.
struct ScratchFileRemover {
    ~ScratchFileRemover() {
        std::error_code ec;
        fs::remove(ScratchFile(), ec);
    }
};

void ReadThroughReader(orvo::OvPointList& list, const std::string& text, bool inBlock,
                       const Table& mask) {
    const ScratchFileRemover remover;
    {
        std::ofstream out(ScratchFile(), std::ios::binary | std::ios::trunc);
        if (inBlock) out << "POINTS {\n";
        out << text;
        if (inBlock) out << "\n}\nAFTER 1\n";
    }
    const orvo::String name(ScratchFile().string().c_str());
    if (!inBlock) {
        list.ReadFile(name, mask);
        return;
    }
    list.SetMask(mask);
    int after = 0;
    orvo::OvReader reader(name);
    orvo::OvReaderObject points("POINTS", orvo::Link(&list, &orvo::OvPointList::ReadHdl));
    orvo::OvReaderObject afterValue("AFTER", &after);
    reader.RegisterObject(points);
    reader.RegisterObject(afterValue);
    reader.DoProcess(false);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const std::uint8_t selector = data[0];
    std::size_t offset = 1;
    Table mask;
    if ((selector & 0x08) != 0) {
        for (; offset < size && offset <= 24; ++offset) {
            if (data[offset] == 0) {
                ++offset;  // the 0 ends the codes and is not part of the text
                break;
            }
            mask.AddEntry(static_cast<eOvPointRWMask>(kCodes[data[offset] % std::size(kCodes)]));
        }
    } else if ((selector & 0x40) != 0) {
        for (std::uint32_t code : kEveryCode)
            mask.AddEntry(static_cast<eOvPointRWMask>(code));
    } else {
        for (std::uint32_t code : kFormats[selector & 0x07]) {
            if (code != 0) mask.AddEntry(static_cast<eOvPointRWMask>(code));
        }
    }
    const std::string text(reinterpret_cast<const char*>(data + offset), size - offset);

    orvo::OvPointList list(mask);
    if ((selector & 0x20) != 0) {
        ReadFromTokenizer(list, text);
    } else {
        ReadThroughReader(list, text, (selector & 0x10) != 0, mask);
    }

    // The records formatted in memory and by the stream: the same bytes, for every value read.
    std::ostringstream fast;
    fast.imbue(std::locale::classic());
    list.Write(fast);
    std::ostringstream byStream;
    byStream.imbue(std::locale(std::locale::classic(), new SameNumPut));
    list.Write(byStream);
    if (fast.str() != byStream.str()) {
        std::fprintf(stderr, "point fuzz: in-memory and stream formatting differ:\n%s\n%s\n",
                     fast.str().c_str(), byStream.str().c_str());
        std::abort();
    }

    bool symmetric = mask.Size() > 0;
    for (int i = 0; i < mask.Size(); ++i)
        symmetric = symmetric && IsSymmetric(mask[i]);
    if (!symmetric || !AllFinite(list)) return 0;

    std::ostringstream written;
    list.Write(written);
    orvo::OvPointList again(mask);
    ReadFromTokenizer(again, written.str());
    if (again.Count() != list.Count()) {
        std::fprintf(stderr, "point fuzz: %d points read, written and read back as %d\n",
                     list.Count(), again.Count());
        std::abort();
    }
    return 0;
}
