// Writing the entries of rectification records.
#include "record_writing.h"

#include <ostream>

namespace orvo::detail {

std::ostream& InlineObject(std::ostream& out, const char* keyword, const OvObject& object) {
    return out << s12 << keyword << w4 << "{" << w4 << object.GetId() << " \""
               << OvQuotableText(object.GetName()) << "\"}" << Ovendl;
}

std::ostream& QuotedLine(std::ostream& out, const char* keyword, const String& text) {
    return out << s12 << keyword << w4 << '"' << OvQuotableText(text) << '"' << Ovendl;
}

}  // namespace orvo::detail
