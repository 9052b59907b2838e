// The debug logger that writes the protocol file, and its install/uninstall switch.
#include <fstream>
#include <locale>
#include <memory>

#include "orvo/services/logger.h"

namespace orvo {

namespace {

std::unique_ptr<OvOrvoDebugLogger>& InstalledDebugLogger() {
    static std::unique_ptr<OvOrvoDebugLogger> installed;
    return installed;
}

}  // namespace

int OvOrvoDebugLogger::Log(int messageLevel, const char* text) {
    // Opened and closed for every message, so that whatever was logged before a crash is on
    // disk. Failures are deliberately silent: logging must never disturb the caller.
    const String path = OvGetProtocolFilePath();
    // Binary, so that the file holds the same bytes (lines ended by '\n') on every system.
    std::ofstream protocol(path.chars(), std::ios::out | std::ios::app | std::ios::binary);
    if (!protocol) return 0;
    protocol.imbue(std::locale::classic());
    protocol << messageLevel << " : " << (text != nullptr ? text : "") << '\n';
    protocol.flush();
    return 0;
}

void InstallOrvoDebugLogger() {
    OvMasterLogger* master = OvApplicationLogger::GetMasterLogger();
    std::unique_ptr<OvOrvoDebugLogger>& installed = InstalledDebugLogger();
    if (master == nullptr || installed) return;
    installed = std::make_unique<OvOrvoDebugLogger>();
    master->AddLogger(installed.get());
    OvApplicationLogger::Log(4, String("InstallOrvoDebugLogger()"));
}

void UninstallOrvoDebugLogger() {
    OvMasterLogger* master = OvApplicationLogger::GetMasterLogger();
    std::unique_ptr<OvOrvoDebugLogger>& installed = InstalledDebugLogger();
    if (master == nullptr || !installed) return;
    OvApplicationLogger::Log(4, String("UninstallOrvoDebugLogger()"));
    master->SubtractLogger(installed.get());
    installed.reset();
}

bool IsOrvoDebugLoggerInstalled() {
    return InstalledDebugLogger() != nullptr;
}

}  // namespace orvo
