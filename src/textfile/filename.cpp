#include "orvo/textfile/filename.h"

#include <cstdio>
#include <filesystem>
#include <memory>

namespace orvo {

namespace {

bool IsSeparator(char c) {
    return c == '\\' || c == '/' || c == ':';
}

// Index of the last separator at index 1 or later, or -1. Index 0 is never taken as a separator,
// so a rooted name like "/a" keeps its leading slash in the file name.
int LastSeparator(const String& path) {
    const char* text = path.chars();
    for (int i = path.length() - 1; i > 0; --i) {
        if (IsSeparator(text[i])) return i;
    }
    return -1;
}

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

String OvGetFilename(const String& path) {
    const int separator = LastSeparator(path);
    if (separator < 0) return path;
    return String(path.chars() + separator + 1);
}

String OvGetFilenameNoExt(const String& path) {
    const String name = OvGetFilename(path);
    const char* text = name.chars();
    for (int i = name.length() - 1; i > 0; --i) {
        if (text[i] == '.') return String(text, i);
    }
    return String();
}

String OvGetPath(const String& path) {
    const int separator = LastSeparator(path);
    if (separator < 0) return String();
    return String(path.chars(), separator);
}

bool OvExistFile(const char* name) {
    if (name == nullptr || *name == '\0') return false;
    // Opening a directory for reading succeeds on some systems; it is still no file.
    std::error_code error;
    if (std::filesystem::is_directory(name, error)) return false;
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(name, "rb"));
    return file != nullptr;
}

}  // namespace orvo
