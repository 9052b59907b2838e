// Camera files of arbitrary content. Reading must end without a crash whatever the text, and
// what was read must survive writing: the cameras read back from the written file write out
// the same text again, and as many of them.
//
// Input layout: byte 0 selects the path, the rest is the file's text.
//   bit 0  read through OvCameraList::ReadFile from a scratch file (else from a stream, with the
//          list bound to the reader's catch-all object as a plain reader run does it)
//   bit 1  put the text inside a "CAMERA { ... }" keyword block and read one record with
//          OvCamera::Read, as a photo block holds its camera
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "orvo/model/camera.h"
#include "orvo/model/camera_list.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace {

namespace fs = std::filesystem;

const fs::path& ScratchFile() {
    static const fs::path path =
        fs::temp_directory_path() / ("orvo-camera-fuzz-" + std::to_string(::getpid()) + ".cam");
    return path;
}

struct RemoveScratch {
    ~RemoveScratch() {
        std::error_code ec;
        fs::remove(ScratchFile(), ec);
    }
} removeScratch;

void ReadFromStream(orvo::OvCameraList& list, const std::string& text) {
    std::istringstream in(text);
    orvo::OvReader reader(in, "fuzz");
    reader.RegisterObject(orvo::OvReaderObject(orvo::Link(&list, &orvo::OvCameraList::ReadHdl)));
    reader.DoProcess(false);
}

void ReadThroughFile(orvo::OvCameraList& list, const std::string& text) {
    {
        std::ofstream out(ScratchFile(), std::ios::binary | std::ios::trunc);
        out << text;
    }
    orvo::OvReaderErrorList errors;
    list.ReadFile(ScratchFile().string().c_str(), &errors);
}

void ReadOneRecord(orvo::OvCameraList& list, const std::string& text) {
    std::istringstream in("CAMERA {" + text + "\n}\n");
    orvo::OvReader reader(in, "fuzz");
    orvo::OvCamera camera;
    reader.RegisterObject(
        orvo::OvReaderObject("CAMERA", orvo::Link(&camera, &orvo::OvCamera::ReadHdl)));
    reader.DoProcess(false);
    list.Add(new orvo::OvCamera(camera));
}

// The list as the camera file writes it, header left out.
std::string Written(const orvo::OvCameraList& list) {
    std::ostringstream out;
    orvo::OvWriterReset();
    list.Write(out);
    return out.str();
}

bool AllFinite(const orvo::OvCameraList& list) {
    for (const orvo::OvCamera* c = list.First(); c != nullptr; c = c->Next()) {
        const double sum =
            c->GetC() + c->GetXh() + c->GetYh() + c->GetA1() + c->GetA2() + c->GetR0();
        if (!std::isfinite(sum)) return false;
        if (c->GetC() < 0.0) {
            std::fprintf(stderr, "camera fuzz: a camera read with a negative C\n");
            std::abort();
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const std::uint8_t selector = data[0];
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);

    orvo::OvCameraList list;
    if ((selector & 0x02) != 0) {
        ReadOneRecord(list, text);
    } else if ((selector & 0x01) != 0) {
        ReadThroughFile(list, text);
    } else {
        ReadFromStream(list, text);
    }
    // Infinite values (from numbers beyond the double range) are written as words and cannot
    // come back; everything else must.
    if (!AllFinite(list)) return 0;

    // Written once, the numbers carry 8 digits; from then on the text must stay the same.
    const std::string first = Written(list);
    orvo::OvCameraList again;
    ReadFromStream(again, first);
    const std::string second = Written(again);
    orvo::OvCameraList third;
    ReadFromStream(third, second);
    if (again.Count() != list.Count() || Written(third) != second) {
        std::fprintf(stderr, "camera fuzz: %d cameras written, %d read back; texts:\n%s\n---\n%s\n",
                     list.Count(), again.Count(), first.c_str(), second.c_str());
        std::abort();
    }
    return 0;
}
