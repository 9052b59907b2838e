// The portable half of the platform layer: the protocol file location and the debug sink.
// The system calls themselves live in platform_posix.cpp and platform_windows.cpp.
#include "orvo/foundation/platform.h"

#include <cstdlib>
#include <utility>

#include "platform_internal.h"

namespace orvo {

namespace {

// Process-wide platform settings. Like the rest of the library's process-wide state they are
// not locked: the host calls the library from one thread at a time.
OvDebugOutputSink& InstalledDebugSink() {
    static OvDebugOutputSink sink;
    return sink;
}

String& RedirectedProtocolFile() {
    static String path;
    return path;
}

constexpr const char* kProtocolFileVariable = "ORVO_PROTOCOL_FILE";

}  // namespace

void OvOutputDebugString(const char* text) {
    if (text == nullptr) return;
    const OvDebugOutputSink& sink = InstalledDebugSink();
    if (sink) {
        sink(text);
    } else {
        platform_detail::DefaultDebugOutput(text);
    }
}

OvDebugOutputSink OvSetDebugOutputSink(OvDebugOutputSink sink) {
    return std::exchange(InstalledDebugSink(), std::move(sink));
}

String OvGetDefaultProtocolFilePath() {
#ifdef _WIN32
    return String("\\OrvoProtokoll.log");
#else
    return String("/OrvoProtokoll.log");
#endif
}

String OvGetProtocolFilePath() {
    const String& redirected = RedirectedProtocolFile();
    if (!redirected.empty()) return redirected;
    const char* fromEnvironment = std::getenv(kProtocolFileVariable);
    if (fromEnvironment != nullptr && fromEnvironment[0] != '\0') return String(fromEnvironment);
    return OvGetDefaultProtocolFilePath();
}

void OvSetProtocolFilePath(const String& path) {
    RedirectedProtocolFile() = path;
}

}  // namespace orvo
