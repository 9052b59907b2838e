// Reseau files of arbitrary content. Reading must never fail outside the collected errors, and
// a description that was read as valid must write a text that reads back without any error to
// the same number of crosses with the same ids; from the second round on the text is stable.
//
// Input layout: byte 0 selects how the rest, the file's text, is read:
//   bit 0  through OvReseauFile::ReadFile on a scratch file (with the error list)
//   bit 1  (without bit 0) inside a "RESEAU { ... }" block of a block file, followed by a
//          keyword that must still be read after the block
//   else   through a reader on the text, the description at the top level
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "orvo/model/reseau_file.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace {

namespace fs = std::filesystem;
using orvo::OvReseauFile;

const fs::path& ScratchFile() {
    static const fs::path path =
        fs::temp_directory_path() / ("orvo-reseau-fuzz-" + std::to_string(::getpid()) + ".res");
    return path;
}

struct RemoveScratch {
    ~RemoveScratch() {
        std::error_code ec;
        fs::remove(ScratchFile(), ec);
    }
} removeScratch;

class Holder : public orvo::LinkHdl {
public:
    explicit Holder(OvReseauFile& file) : file_(file) {}
    std::int32_t OnData(void* object) {
        return file_.Read(static_cast<orvo::OvReaderObject*>(object));
    }

private:
    OvReseauFile& file_;
};

// Reads the text through a reader on a stream; returns the number of read errors.
int ReadText(OvReseauFile& file, const std::string& text, bool inBlock) {
    std::istringstream in(inBlock ? "RESEAU {\n" + text + "\n}\nAFTER 7\n" : text);
    Holder holder(file);
    orvo::OvReader reader(in, "fuzz");
    int after = 0;
    if (inBlock) {
        reader.RegisterObject(orvo::OvReaderObject("RESEAU", orvo::Link(&holder, &Holder::OnData)));
        reader.RegisterObject(orvo::OvReaderObject("AFTER", &after));
    } else {
        reader.RegisterObject(orvo::OvReaderObject(orvo::Link(&holder, &Holder::OnData)));
    }
    reader.DoProcess(!inBlock);
    return reader.GetReadErrorCount();
}

void ReadFromFile(OvReseauFile& file, const std::string& text) {
    {
        std::ofstream out(ScratchFile(), std::ios::binary | std::ios::trunc);
        out << text;
    }
    orvo::OvReaderErrorList errors;
    file.ReadFile(orvo::String(ScratchFile().string().c_str()), &errors);
    // Every error carries a line the file can have had.
    for (const orvo::OvReaderError* e = errors.First(); e != nullptr; e = e->Next()) {
        if (e->GetLine() > text.size() + 2) {
            std::fprintf(stderr, "reseau fuzz: error on line %u of a %zu byte file\n", e->GetLine(),
                         text.size());
            std::abort();
        }
    }
}

std::string Written(const OvReseauFile& file) {
    orvo::OvWriterReset();
    std::ostringstream out;
    file.Write(out);
    return out.str();
}

std::vector<std::uint32_t> CrossIds(const OvReseauFile& file) {
    std::vector<std::uint32_t> ids;
    for (const orvo::OvPoint* p = file.GetCrossList().First(); p != nullptr; p = p->Next())
        ids.push_back(p->GetId());
    return ids;
}

// Reads `text` (written by Write) back and checks it against `source`.
OvReseauFile ReadBack(const std::string& text, const OvReseauFile& source, const char* round) {
    OvReseauFile again;
    const int errors = ReadText(again, text, false);
    if (errors != 0 || again.IsValid() != 1 || CrossIds(again) != CrossIds(source)) {
        std::fprintf(
            stderr, "reseau fuzz: %s round: %d errors, valid %d, %zu crosses for %zu\n%s\n", round,
            errors, again.IsValid(), CrossIds(again).size(), CrossIds(source).size(), text.c_str());
        std::abort();
    }
    return again;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const std::uint8_t selector = data[0];
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);

    OvReseauFile file;
    if ((selector & 0x01) != 0) {
        ReadFromFile(file, text);
    } else {
        ReadText(file, text, (selector & 0x02) != 0);
    }
    if (file.IsValid() != 1) return 0;

    const std::string first = Written(file);
    const OvReseauFile second = ReadBack(first, file, "first");
    const std::string secondText = Written(second);
    const OvReseauFile third = ReadBack(secondText, second, "second");
    if (Written(third) != secondText) {
        std::fprintf(stderr, "reseau fuzz: text not stable:\n%s\n---\n%s\n", secondText.c_str(),
                     Written(third).c_str());
        std::abort();
    }
    return 0;
}
