// Settings-file access. A settings file is small, so it is read whole and split into lines in
// memory; the rewrite builds the new text and hands it to the atomic file writer.
#include "orvo/textfile/profile.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "orvo/textfile/atomic_file.h"

namespace orvo {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

enum class ReadStatus { kOk, kMissing, kFailed };

// Reads the whole file. kMissing only when the file does not exist at all; a file that exists
// but cannot be opened or read (no permission, a directory) is kFailed.
ReadStatus ReadSettingsFile(const char* filename, std::string* content) {
    errno = 0;
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(filename, "rb"));
    if (!file) return errno == ENOENT ? ReadStatus::kMissing : ReadStatus::kFailed;
    char block[4096];
    for (;;) {
        const std::size_t got = std::fread(block, 1, sizeof block, file.get());
        content->append(block, got);
        if (got < sizeof block) break;
    }
    return std::ferror(file.get()) ? ReadStatus::kFailed : ReadStatus::kOk;
}

// One line as the settings format sees it: at most kOvProfileLineLength characters. `cut` marks
// a piece of a longer line whose text goes on in the next piece.
struct ProfileLine {
    std::string_view text;
    bool cut = false;
};

class LineSplitter {
public:
    explicit LineSplitter(std::string_view content) : rest_(content) {}

    std::optional<ProfileLine> Next() {
        if (rest_.empty()) return std::nullopt;
        const std::size_t newline = rest_.find('\n');
        std::string_view line = rest_.substr(0, newline);
        const std::size_t consumed =
            (newline == std::string_view::npos) ? line.size() : newline + 1;
        // "\r\n" ends a line as "\n" does; so does a "\r" that is the last byte of the file,
        // which keeps a rewritten file (where that line gains its "\n") reading the same.
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (line.size() > kOvProfileLineLength) {
            line = line.substr(0, kOvProfileLineLength);
            rest_.remove_prefix(kOvProfileLineLength);
            return ProfileLine{line, true};
        }
        rest_.remove_prefix(consumed);
        return ProfileLine{line, false};
    }

private:
    std::string_view rest_;
};

char FoldAscii(char c) {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return FoldAscii(x) == FoldAscii(y);
           });
}

// The deliberate prefix match: the line begins with the key, compared over the key's length.
bool BeginsWithKey(std::string_view line, std::string_view key) {
    return line.size() >= key.size() && EqualNoCase(line.substr(0, key.size()), key);
}

std::string SectionLine(const char* section) {
    return std::string("[") + section + "]";
}

bool HasLineBreak(std::string_view text) {
    return text.find_first_of("\r\n") != std::string_view::npos;
}

// Copies at most `limit` characters of `text` (stopping at an embedded NUL) and terminates.
int CopyTerminated(std::string_view text, std::size_t limit, char* result) {
    std::size_t n = std::min(text.size(), limit);
    const std::size_t nul = text.substr(0, n).find('\0');
    if (nul != std::string_view::npos) n = nul;
    std::memcpy(result, text.data(), n);
    result[n] = '\0';
    return static_cast<int>(n);
}

// Collects the rewritten file. Every complete line gets its "\n"; a cut piece is written without
// one so an untouched long line comes out whole, and anything new written after a cut piece
// starts on a line of its own.
class ProfileOutput {
public:
    void Copy(const ProfileLine& line) {
        text_.append(line.text);
        if (line.cut) {
            midLine_ = true;
        } else {
            text_ += '\n';
            midLine_ = false;
        }
    }

    void AddLine(std::string_view line) {
        if (midLine_) text_ += '\n';
        text_.append(line);
        text_ += '\n';
        midLine_ = false;
    }

    const std::string& Text() const { return text_; }

private:
    std::string text_;
    bool midLine_ = false;
};

std::string RewriteSettings(std::string_view content, const std::string& sectionLine,
                            std::string_view key, const std::string& keyLine) {
    enum class Phase { kBeforeSection, kInSection, kDone };
    Phase phase = Phase::kBeforeSection;
    ProfileOutput output;
    LineSplitter lines(content);
    while (std::optional<ProfileLine> line = lines.Next()) {
        switch (phase) {
            case Phase::kBeforeSection:
                output.Copy(*line);
                if (EqualNoCase(line->text, sectionLine)) phase = Phase::kInSection;
                break;
            case Phase::kInSection:
                if (BeginsWithKey(line->text, key)) {
                    output.AddLine(keyLine);
                    phase = Phase::kDone;
                } else if (line->text.empty() && !line->cut) {
                    output.AddLine(keyLine);
                    output.Copy(*line);
                    phase = Phase::kDone;
                } else {
                    output.Copy(*line);
                }
                break;
            case Phase::kDone:
                output.Copy(*line);
                break;
        }
    }
    if (phase == Phase::kBeforeSection) {
        output.AddLine("");
        output.AddLine(sectionLine);
        output.AddLine(keyLine);
    } else if (phase == Phase::kInSection) {
        output.AddLine(keyLine);
    }
    return output.Text();
}

}  // namespace

int OvGetPrivateProfile(const char* section, const char* key, char* result, int size,
                        const char* defaultValue, const char* filename) {
    if (size < 1 || result == nullptr || section == nullptr || key == nullptr ||
        filename == nullptr) {
        return 0;
    }
    std::string content;
    if (ReadSettingsFile(filename, &content) != ReadStatus::kOk) return 0;

    const std::size_t room = static_cast<std::size_t>(size);
    const std::string sectionLine = SectionLine(section);
    const std::string_view keyText(key);
    auto useDefault = [&] {
        return CopyTerminated(defaultValue ? defaultValue : "", room - 1, result);
    };

    LineSplitter lines(content);
    std::optional<ProfileLine> line;
    while ((line = lines.Next()) && !EqualNoCase(line->text, sectionLine)) {
    }
    if (!line) return useDefault();
    while ((line = lines.Next()) && !BeginsWithKey(line->text, keyText)) {
    }
    if (!line) return useDefault();

    const std::size_t equals = line->text.find('=');
    if (equals == std::string_view::npos) {
        result[0] = '\0';
        return 0;
    }
    return CopyTerminated(line->text.substr(equals + 1), room >= 2 ? room - 2 : 0, result);
}

int OvWritePrivateProfile(const char* section, const char* key, const char* value,
                          const char* filename) {
    if (section == nullptr || key == nullptr || filename == nullptr || *key == '\0') return 0;
    if (value == nullptr) value = "";
    if (HasLineBreak(section) || HasLineBreak(key) || HasLineBreak(value)) return 0;

    const std::string sectionLine = SectionLine(section);
    const std::string keyLine = std::string(key) + "=" + value;

    std::string content;
    switch (ReadSettingsFile(filename, &content)) {
        case ReadStatus::kMissing:
            return OvWriteFileAtomically(filename, sectionLine + "\n" + keyLine + "\n") ? 1 : 0;
        case ReadStatus::kFailed:
            return 0;
        case ReadStatus::kOk:
            break;
    }
    const std::string rewritten = RewriteSettings(content, sectionLine, key, keyLine);
    return OvWriteFileAtomically(filename, rewritten) ? 1 : 0;
}

int OvWritefPrivateProfile(const char* section, const char* key, const char* filename,
                           const char* format, ...) {
    if (format == nullptr) return 0;
    char buffer[kOvProfileFormatBuffer];
    va_list arguments;
    va_start(arguments, format);
    const int written = std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    if (written < 0) return 0;  // an encoding error leaves nothing sensible to write
    return OvWritePrivateProfile(section, key, buffer, filename);
}

}  // namespace orvo
