// Recording a problem met while reading a record (private to the library).
#pragma once

#include "orvo/textfile/reader.h"
#include "orvo/textfile/tokenizer.h"

namespace orvo::detail {

/// Adds an error to the reader's list at the parser's current line and token count, with
/// `status` and with `what` as the error's name, so that a report can say what was wrong and
/// not only which token kind was expected.
void ReportReadProblem(OvReader& reader, const char* what,
                       eOvParserStatus status = ParserErrorNotSpecifiedToken);

/// The reader of a reader object, or null for a null object or one registered with no reader.
inline OvReader* ReaderOf(OvReaderObject* object) {
    return object != nullptr ? object->GetReader() : nullptr;
}

}  // namespace orvo::detail
