#include "orvo/textfile/filetype.h"

#include <array>

namespace orvo {

namespace {

constexpr std::array<const char*, 11> kExtensions = {"pro", "coo", "aor", "sip",  "imo", "aob",
                                                     "log", "mlg", "res", "dres", ""};

}  // namespace

const char* GetOvExtension(eOrvoFiletype type) {
    const auto index = static_cast<std::int64_t>(type);
    if (index < 0 || index >= static_cast<std::int64_t>(kExtensions.size())) return "";
    return kExtensions[static_cast<std::size_t>(index)];
}

}  // namespace orvo
