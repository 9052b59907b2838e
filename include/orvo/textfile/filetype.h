// The project file types and their fixed file extensions.
#pragma once

#include <cstdint>

namespace orvo {

/// Project file types. The values index the extension table of `GetOvExtension` and are stored
/// by callers, so they never change.
enum eOrvoFiletype : std::int32_t {
    eOrvoFiletypePro = 0,    // "pro"
    eOrvoFiletypeCoo = 1,    // "coo"
    eOrvoFiletypeAor = 2,    // "aor"
    eOrvoFiletypeSip = 3,    // "sip"
    eOrvoFiletypeImo = 4,    // "imo"
    eOrvoFiletypeAob = 5,    // "aob"
    eOrvoFiletypeLog = 6,    // "log"
    eOrvoFiletypeMlg = 7,    // "mlg"
    eOrvoFiletypeRes = 8,    // "res"
    eOrvoFiletypeDres = 9,   // "dres"
    eOrvoFiletypeNone = 10,  // no extension
};

/// The extension of a file type, without the dot ("pro" for `eOrvoFiletypePro`). The type is not
/// checked against the named values; any value outside the table gives "" like
/// `eOrvoFiletypeNone` rather than reading past it.
const char* GetOvExtension(eOrvoFiletype type);

}  // namespace orvo
