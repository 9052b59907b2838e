// Digital camera files of arbitrary content. Reading must never fail outside the collected
// errors; the entries read must write a file that reads back without any error to the same
// keys and picture sizes, and from the second round on the file's text is stable.
//
// Input layout: byte 0 selects how the rest, the file's text, is read:
//   bit 0  through OvReseaufileList::ReadReseauFile on a scratch file named ".dres"
//   else   through the line handler on a reader over the text
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "orvo/model/reseau_list.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace {

namespace fs = std::filesystem;

const fs::path& ScratchFile() {
    static const fs::path path =
        fs::temp_directory_path() / ("orvo-dres-fuzz-" + std::to_string(::getpid()) + ".dres");
    return path;
}

struct RemoveScratch {
    ~RemoveScratch() {
        std::error_code ec;
        fs::remove(ScratchFile(), ec);
    }
} removeScratch;

// Opens the line handler and the file writer to the fuzzer.
class FuzzList : public orvo::OvReseaufileList {
public:
    using OvReseaufileList::ReadDigitalCameraFormatHdl;

    // Reads the text through a reader on a stream; returns the number of read errors.
    int ReadText(const std::string& text) {
        std::istringstream in(text);
        orvo::OvReader reader(in, "fuzz");
        reader.RegisterObject(
            orvo::OvReaderObject(orvo::Link(this, &FuzzList::ReadDigitalCameraFormatHdl)));
        reader.DoProcess(true);
        return reader.GetReadErrorCount();
    }

    std::string Text() const {
        orvo::OvWriterReset();
        std::ostringstream out;
        WriteDigitalCameraFormatHeaderComment(out);
        WriteDigitalCameraFormat(out);
        return out.str();
    }
};

using Key = std::tuple<std::string, std::uint32_t, int, int>;

std::vector<Key> Keys(const orvo::OvReseaufileList& list) {
    std::vector<Key> keys;
    for (const orvo::OvReseauFile* f = list.First(); f != nullptr; f = f->Next()) {
        keys.emplace_back(f->GetName().chars(), f->GetSubId(), f->GetExifPixelWidth(),
                          f->GetExifPixelHeight());
        if (f->IsValid() != 1 || f->GetCrossList().Count() != orvo::kOvReseauDummyGridLines *
                                                                  orvo::kOvReseauDummyGridLines) {
            std::fprintf(stderr, "dres fuzz: entry taken invalid or without its grid\n");
            std::abort();
        }
    }
    return keys;
}

// Reads `text` back. Texts are cleaned and cut when written, so in the first round two names
// that differed only there become one key, and the later entry replaces the earlier: the count
// may shrink then, never afterwards.
void ReadBack(const std::string& text, const FuzzList& source, FuzzList& again, const char* round,
              bool exact) {
    const int errors = again.ReadText(text);
    const bool countOk = exact ? again.Count() == source.Count()
                               : again.Count() >= 1 && again.Count() <= source.Count();
    if (errors != 0 || !countOk) {
        std::fprintf(stderr, "dres fuzz: %s round: %d errors, %d entries for %d\n%s\n", round,
                     errors, again.Count(), source.Count(), text.c_str());
        std::abort();
    }
    Keys(again);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const std::uint8_t selector = data[0];
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);

    FuzzList list;
    if ((selector & 0x01) != 0) {
        {
            std::ofstream out(ScratchFile(), std::ios::binary | std::ios::trunc);
            out << text;
        }
        orvo::OvReaderErrorList errors;
        list.ReadReseauFile(orvo::String(ScratchFile().string().c_str()), &errors);
    } else {
        list.ReadText(text);
    }
    Keys(list);
    if (list.IsEmpty()) return 0;

    const std::string first = list.Text();
    FuzzList second;
    ReadBack(first, list, second, "first", false);
    const std::string secondText = second.Text();
    FuzzList third;
    ReadBack(secondText, second, third, "second", true);
    if (Keys(third) != Keys(second) || third.Text() != secondText) {
        std::fprintf(stderr, "dres fuzz: file not stable:\n%s\n---\n%s\n", secondText.c_str(),
                     third.Text().c_str());
        std::abort();
    }
    return 0;
}
