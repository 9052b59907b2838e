// Writing the entries of rectification records.
#include "record_writing.h"

#include <ostream>

namespace orvo::detail {

namespace {

constexpr int kMaxTextWritten = 8000;

}  // namespace

String QuotableText(const String& text) {
    const int length = text.length() < kMaxTextWritten ? text.length() : kMaxTextWritten;
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

std::ostream& InlineObject(std::ostream& out, const char* keyword, const OvObject& object) {
    return out << s12 << keyword << w4 << "{" << w4 << object.GetId() << " \""
               << QuotableText(object.GetName()) << "\"}" << Ovendl;
}

std::ostream& QuotedLine(std::ostream& out, const char* keyword, const String& text) {
    return out << s12 << keyword << w4 << '"' << QuotableText(text) << '"' << Ovendl;
}

}  // namespace orvo::detail
