// Project files from arbitrary bytes: reading must never crash, and whatever photos are read
// must write out, read back as as many photos and write out to the same text again.
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "orvo/model/project_file.h"

namespace {

using orvo::OvPhotoList;

// A number that is not finite is written as "nan" or "inf", which no reader takes for a number
// (and a number near the largest double can round up to infinity on the way through the
// text). Texts holding such a word outside double quotes are left out of the round-trip check.
bool HasNonFiniteNumber(const std::string& text) {
    bool quoted = false;
    std::string word;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        const char c = i < text.size() ? text[i] : ' ';
        if (c == '\n') quoted = false;
        if (c == '"') {
            quoted = !quoted;
            word.clear();
            continue;
        }
        if (quoted) continue;
        if (std::isspace(static_cast<unsigned char>(c)) || c == '{' || c == '}') {
            if (word == "nan" || word == "-nan" || word == "inf" || word == "-inf") return true;
            word.clear();
        } else {
            word += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
    }
    return false;
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
    const std::string rewritten = Written(second);
    if (!HasNonFiniteNumber(first) && !HasNonFiniteNumber(rewritten) && rewritten != first) {
        std::abort();
    }
    return 0;
}
