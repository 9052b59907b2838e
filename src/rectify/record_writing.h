// Writing the entries of rectification records in the keyword form of the project files
// (private to the library).
#pragma once

#include <ostream>

#include "orvo/foundation/object.h"
#include "orvo/foundation/string.h"
#include "orvo/textfile/writer.h"

namespace orvo::detail {

/// `s12` keyword, `w4`, "{", the id (`w4`), a blank and the quoted name, "}", `Ovendl`.
std::ostream& InlineObject(std::ostream& out, const char* keyword, const OvObject& object);

/// `s12` keyword, `w4`, the value, `Ovendl`.
template <class Number>
std::ostream& NumberLine(std::ostream& out, const char* keyword, Number value) {
    return out << s12 << keyword << w4 << value << Ovendl;
}

/// `s12` keyword, `w4`, the quoted text, `Ovendl`.
std::ostream& QuotedLine(std::ostream& out, const char* keyword, const String& text);

/// A record in a block on lines of its own: `s12` keyword, `Ovendl`, `OvBeginBlockNL`, the
/// record, `OvEndBlockNL`, `Ovendl`.
template <class Record>
std::ostream& BlockLines(std::ostream& out, const char* keyword, const Record& record) {
    out << s12 << keyword << Ovendl << OvBeginBlockNL;
    record.Write(out);
    return out << OvEndBlockNL << Ovendl;
}

/// A record in an inline block: `s12` keyword, `w4`, "{", the record, "}", `Ovendl`.
template <class Record>
std::ostream& InlineBlock(std::ostream& out, const char* keyword, const Record& record) {
    out << s12 << keyword << w4 << "{";
    record.Write(out);
    return out << "}" << Ovendl;
}

}  // namespace orvo::detail
