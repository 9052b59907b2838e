// Reading the fields of rectification records from the block reader's tokenizer (private to
// the library).
#pragma once

#include <cstdint>

#include "orvo/foundation/string.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/tokenizer.h"

namespace orvo::detail {

/// The reader a handler was called with, or null for a null object or one registered with no
/// reader.
inline OvReader* ReaderOf(OvReaderObject* object) {
    return object != nullptr ? object->GetReader() : nullptr;
}

/// The reader of a handler that was called for its keyword's block; null when the keyword was
/// followed by a value instead (then the handler's bindings would be registered in the
/// enclosing scope and outlive the record, and its reading would eat the enclosing block).
inline OvReader* BlockReaderOf(OvReaderObject* object) {
    OvReader* reader = ReaderOf(object);
    if (reader == nullptr || reader->GetCurrentScope()->GetObjects().Exist(object)) return nullptr;
    return reader;
}

/// `record.Read(object)` when the handler was called for a block (see `BlockReaderOf`).
template <class Record>
std::int32_t ReadInBlock(OvReaderObject* object, Record& record) {
    if (BlockReaderOf(object) != nullptr) record.Read(object);
    return 1;
}

/// `object->DoProcess()` for a record's block, keeping the errors of the reads around it: the
/// reader takes a trailing "ParserErrorNotSpecifiedToken" back when a run ends, also one that
/// an enclosing record had recorded before this run began; such an error is put back.
int ProcessBlock(OvReaderObject* object);

/// The tokens of one record, read with the handlers' advance rule.
///
/// A "}" or the end of the input where a field belongs ends the record's data: the field
/// functions return false there without consuming the token, so the reader finds the block's
/// end where it expects it. A token of the wrong kind raises the parser's checked-request error
/// (status 5), which the block reader records.
class RecordTokens {
public:
    explicit RecordTokens(OvReader& reader) : reader_(reader), parser_(reader.GetParser()) {}

    OvReader& Reader() { return reader_; }
    OvParser& Parser() { return parser_; }

    /// Whether the current token is the "}" closing the block or the end of the input.
    bool AtDataEnd() const;
    /// Whether the current token is a "{".
    bool AtBlockBegin() const;

    /// An id from an integer token (exact, clamped to 0..4294967295).
    bool Id(std::uint32_t& value);
    /// A 32-bit integer from an integer token (clamped to the 32-bit range).
    bool Int(std::int32_t& value);
    /// An integer or floating token's value ("-0" keeps its sign); a keyword or string reads
    /// 0.0 and is stepped over; a "{" raises the checked-request error.
    bool Number(double& value);
    /// A double-quoted string.
    bool Text(String& value);

    /// Steps over the "{" that is the current token; false (nothing consumed) when it is not.
    bool EnterBlock();
    /// Steps over the "}" that is the current token; false (nothing consumed) when it is not.
    bool LeaveBlock();
    /// Advances to the "}" that closes the current block, stepping over nested blocks whole;
    /// the "}" stays current. Stops at the end of the input.
    void SkipToBlockEnd();

    /// Records a read error at the parser's present line, named `what`.
    void Report(const char* what, eOvParserStatus status = ParserErrorInvalidNumber);

private:
    OvReader& reader_;
    OvParser& parser_;
};

}  // namespace orvo::detail
