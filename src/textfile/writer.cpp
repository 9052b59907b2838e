// The block-file writing manipulators and the library-wide indentation level they share.
#include "orvo/textfile/writer.h"

#include <ostream>

namespace orvo {

namespace {

// The one indentation level of all writers (process-wide by design, see the header).
std::int32_t indentLevel = 0;

void Raise() {
    ++indentLevel;
}
void Lower() {
    if (indentLevel > 0) --indentLevel;
}

std::ostream& BlankThenField(std::ostream& out, std::streamsize width) {
    out << ' ';
    out.setf(std::ios_base::right, std::ios_base::adjustfield);
    out.width(width);
    return out;
}

}  // namespace

void OvWriterReset() {
    indentLevel = 0;
}

std::int32_t OvWriterLevel() {
    return indentLevel;
}

std::ostream& OvTabPlus(std::ostream& out) {
    Raise();
    return out;
}

std::ostream& OvTabMinus(std::ostream& out) {
    Lower();
    return out;
}

std::ostream& OvBeginBlock(std::ostream& out) {
    Raise();
    return out << '{';
}

std::ostream& OvEndBlock(std::ostream& out) {
    Lower();
    return out << '}';
}

std::ostream& OvComment(std::ostream& out) {
    return out << kOvCommentPrefix;
}

std::ostream& Ovendl(std::ostream& out) {
    out << '\n';
    out.flush();
    for (std::int32_t i = 0; i < indentLevel; ++i)
        out << kOvIndentUnit;
    return out;
}

std::ostream& OvBeginBlockNL(std::ostream& out) {
    out << '{';
    Raise();
    return Ovendl(out);
}

std::ostream& OvEndBlockNL(std::ostream& out) {
    Lower();
    Ovendl(out);
    return out << '}';
}

std::ostream& w4(std::ostream& out) {
    return BlankThenField(out, 4);
}
std::ostream& w6(std::ostream& out) {
    return BlankThenField(out, 8);
}
std::ostream& w8(std::ostream& out) {
    return BlankThenField(out, 10);
}
std::ostream& w12(std::ostream& out) {
    return BlankThenField(out, 16);
}
std::ostream& w14(std::ostream& out) {
    return BlankThenField(out, 18);
}
std::ostream& w16(std::ostream& out) {
    return BlankThenField(out, 21);
}
std::ostream& w19(std::ostream& out) {
    return BlankThenField(out, 24);
}

std::ostream& s12(std::ostream& out) {
    out.setf(std::ios_base::left, std::ios_base::adjustfield);
    out.width(12);
    return out;
}

String OvQuotableText(const String& text, int maxLength) {
    const int length = text.length() < maxLength ? text.length() : (maxLength > 0 ? maxLength : 0);
    String result(text.chars(), length);
    for (int i = 0; i < length; ++i) {
        const char c = result.chars()[i];
        if (c == '"') {
            result[i] = '\'';
        } else if (c == '\n' || c == '\r' || c == '\0') {
            result[i] = ' ';
        }
    }
    return result;
}

}  // namespace orvo
