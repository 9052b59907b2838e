// Text output of vectors and matrices: the project-file record (Write) and the developer's
// debug dump (DbgPrintf).
#include <cstdio>
#include <ios>
#include <ostream>
#include <string>

#include "orvo/numerics/matrix.h"
#include "orvo/numerics/vector.h"
#include "orvo/services/logger.h"
#include "orvo/textfile/writer.h"

namespace orvo {

namespace {

// 17 significant digits identify every double, so a written record reads back bit for bit.
constexpr std::streamsize kRoundTripDigits = 17;

// Switches a stream to the round-trip number format and restores the caller's format after.
class RoundTripFormat {
public:
    explicit RoundTripFormat(std::ostream& out)
        : out_(out), flags_(out.flags()), precision_(out.precision()) {
        out_.unsetf(std::ios_base::floatfield);
        out_.precision(kRoundTripDigits);
    }
    ~RoundTripFormat() {
        out_.flags(flags_);
        out_.precision(precision_);
    }
    RoundTripFormat(const RoundTripFormat&) = delete;
    RoundTripFormat& operator=(const RoundTripFormat&) = delete;

private:
    std::ostream& out_;
    std::ios_base::fmtflags flags_;
    std::streamsize precision_;
};

// One element as the debug dump shows it: "%.5f" followed by three blanks.
void AppendDebugElement(std::string& text, double value) {
    const int length = std::snprintf(nullptr, 0, "%.5f   ", value);
    if (length <= 0) return;
    const std::size_t start = text.size();
    text.resize(start + static_cast<std::size_t>(length) + 1);
    std::snprintf(text.data() + start, static_cast<std::size_t>(length) + 1, "%.5f   ", value);
    text.resize(start + static_cast<std::size_t>(length));
}

// dbgprintf cuts what does not fit its buffer, so a long text goes out in pieces that do; the
// debugger shows the pieces as one continuous text.
void SendDebugText(const std::string& text) {
    const std::size_t piece = static_cast<std::size_t>(kDbgprintfBufferSize - 1);
    for (std::size_t start = 0; start < text.size(); start += piece) {
        dbgprintf("%s", text.substr(start, piece).c_str());
    }
}

void SendDebugTitle(const char* title) {
    if (title != nullptr) SendDebugText(std::string(title) + "\n");
}

}  // namespace

std::ostream& OvVector::Write(std::ostream& out) const {
    RoundTripFormat format(out);
    out << w4 << size_;
    for (int i = 1; i <= size_; ++i)
        out << w19 << elements_[i - 1];
    return out;
}

void OvVector::DbgPrintf(const char* title) const {
    SendDebugTitle(title);
    std::string line;
    for (int i = 1; i <= size_; ++i)
        AppendDebugElement(line, GetElem(i));
    SendDebugText(line + "\n");
}

std::ostream& OvMatrix::Write(std::ostream& out) const {
    RoundTripFormat format(out);
    out << w4 << lines_ << w4 << columns_;
    for (int i = 1; i <= lines_; ++i) {
        out << Ovendl;
        for (int j = 1; j <= columns_; ++j)
            out << w19 << elements_[Offset(i, j)];
    }
    return out;
}

void OvMatrix::DbgPrintf(const char* title) const {
    SendDebugTitle(title);
    for (int i = 1; i <= lines_; ++i) {
        std::string line;
        for (int j = 1; j <= columns_; ++j)
            AppendDebugElement(line, GetElem(i, j));
        SendDebugText(line + "\n");
    }
}

}  // namespace orvo
