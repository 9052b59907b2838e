// Project files from arbitrary bytes: reading must never crash, and whatever photos are read
// must write out, read back as as many photos and write out to the same text again.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "orvo/model/project_file.h"

namespace {

using orvo::OvPhoto;
using orvo::OvPhotoList;

bool Finite(double v) {
    return std::isfinite(v);
}

bool Finite(const orvo::OvTrafo2d& t) {
    for (int i = 0; i < orvo::OvTrafo2d::kMaxParams; ++i)
        if (!Finite(t.GetParam(i))) return false;
    return true;
}

// A number that is not finite (or overflows when written with the writers' digits) cannot be
// written so that it reads back; such photos are left out of the round-trip check.
bool AllFinite(const OvPhotoList& photos) {
    for (const OvPhoto* p = photos.First(); p != nullptr; p = p->Next()) {
        const orvo::OvCamera& c = p->GetCamera();
        const orvo::OvRegion& r = p->GetDigiRegion();
        const double values[] = {p->GetScale(), r.Left(),    r.Bottom(), r.Right(),
                                 r.Top(),       c.GetC(),    c.GetXh(),  c.GetYh(),
                                 c.GetA1(),     c.GetA2(),   c.GetR0(),  p->GetScreenPos().GetX(),
                                 p->GetScreenPos().GetY()};
        for (double v : values)
            if (!Finite(v)) return false;
        if (!Finite(p->GetReseauPreTrafo()) || !Finite(p->GetReseauMainTrafo()) ||
            !Finite(p->GetReseauPolyInv())) {
            return false;
        }
    }
    return true;
}

std::string Written(const OvPhotoList& photos) {
    std::ostringstream out;
    orvo::OvWriteProject(out, photos);
    return out.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    OvPhotoList photos;
    orvo::OvProjectFileErrors errors;
    const int read = orvo::OvReadProject(in, "fuzz.pro", photos, &errors);
    if (read != photos.Count()) std::abort();
    for (const orvo::OvProjectFileError& e : errors)
        (void)e.Format();

    const std::string first = Written(photos);
    std::istringstream again(first);
    OvPhotoList second;
    orvo::OvProjectFileErrors secondErrors;
    if (orvo::OvReadProject(again, "fuzz.pro", second, &secondErrors) != read) std::abort();
    if (AllFinite(photos) && AllFinite(second)) {
        if (Written(second) != first) std::abort();
    }
    return 0;
}
