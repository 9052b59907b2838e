// Read errors and their report through the application logger.
#include <cstdio>
#include <vector>

#include "orvo/services/logger.h"
#include "orvo/textfile/reader.h"

namespace orvo {

namespace {

template <typename... Args>
String FormatLine(const char* format, Args... args) {
    const int needed = std::snprintf(nullptr, 0, format, args...);
    if (needed <= 0) return String();
    std::vector<char> text(static_cast<std::size_t>(needed) + 1);
    std::snprintf(text.data(), text.size(), format, args...);
    return String(text.data());
}

}  // namespace

OvReaderError& OvReaderError::operator=(const OvReaderError& other) {
    if (this != &other) {
        OvParserStatus::operator=(other);
        OvListnode::operator=(other);
    }
    return *this;
}

OvReaderError::~OvReaderError() = default;

OvReaderError* OvReaderError::Next() const {
    return static_cast<OvReaderError*>(GetNext());
}
OvReaderError* OvReaderError::Previous() const {
    return static_cast<OvReaderError*>(GetPrev());
}

OvReaderErrorList::~OvReaderErrorList() = default;

void LogErrorsToApplicationLogger(const OvReader& reader) {
    const int count = reader.GetReadErrorCount();
    if (count == 0) return;
    OvApplicationLogger::Log(
        2, FormatLine(" %d Read Error(s) in %s:", count, reader.GetFilename().chars()));
    for (const OvReaderError* error = reader.GetReaderErrorList().First(); error != nullptr;
         error = error->Next()) {
        OvApplicationLogger::Log(
            2, FormatLine(" - Line: %06d, Status: %s", static_cast<int>(error->GetLine()),
                          GetOvParserStatusText(error->GetStatus())));
    }
}

}  // namespace orvo
