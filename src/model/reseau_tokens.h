// Token-level reading of reseau records, shared by the reseau file and the digital camera file
// (private to the library).
//
// Reseau data must not be taken half-read: a cross with a wrong coordinate spoils the reseau
// transformation estimated from it. So every problem met here is recorded in the reader's
// error list and counted, and the callers keep a record only when no problem was counted while
// it was read.
#pragma once

#include <cstdint>

#include "orvo/foundation/string.h"
#include "orvo/textfile/reader.h"

namespace orvo::detail {

/// Walks the reader's tokens for one record handler.
class ReseauTokens {
public:
    explicit ReseauTokens(OvReader& reader);

    eOvTokentype Type() const { return parser_.GetToken().GetType(); }
    /// The number of problems recorded through this object.
    int Problems() const { return problems_; }

    /// The consumer's advance (the push-back flag honoured). A tokenizer error (unterminated
    /// string, invalid number) is recorded and the broken token stepped over; a failed stream is
    /// passed on as thrown, since it fails again on every read.
    void Advance();
    /// Records a problem at the current line with the given status.
    void Report(eOvParserStatus status = ParserErrorNotSpecifiedToken);

    /// "{", "}" or the end of the input: a token that no field may take.
    bool AtBoundary() const;

    // Field reads. A boundary token is not consumed and gives false (the record ends early;
    // nothing is recorded, the caller decides). A token of the wrong kind is recorded,
    // consumed and gives false.
    bool Text(String& value);
    /// An integer or floating token with a finite value ("-0" keeps its sign).
    bool Number(double& value);
    /// An integer token's exact value.
    bool Integer(double& value);

    /// Consumes a "{" (true) or leaves any other token (false).
    bool Open();
    /// Consumes a "}" (true) or leaves any other token (false).
    bool Close();

    /// After a record's last field: a "}" is consumed (true when `consume`, else left as the
    /// current token). Anything else is recorded once when `report` is set; surplus tokens are
    /// skipped up to the "}" (treated as above), while a "{" (the next record, this one lacking
    /// its "}") and the end of the input are left as the current token. Returns whether the
    /// "}" was found.
    bool FinishRecord(bool report, bool consume);

    /// Skips tokens up to the end of the data: the end of the input, or (unless `topLevel`) a
    /// "}" without its "{" among the skipped tokens, which stays the current token.
    void SkipToDataEnd(bool topLevel);

private:
    OvReader& reader_;
    OvParser& parser_;
    int problems_ = 0;
};

/// Ids are unsigned 32-bit: the exact value of the token clamped to 0..4294967295.
std::uint32_t ToUnsigned32(double value);
/// A whole number clamped to the signed 32-bit range.
std::int32_t ToSigned32(double value);

/// Lets a handler's last recorded problem survive the reader's end-of-run rule, which takes
/// back a trailing "ParserErrorNotSpecifiedToken": call `Remember` after each handler run and
/// from the parser-error handler, `Restore` after DoProcess.
class TrailingErrorKeeper {
public:
    void Remember(const OvReader& reader);
    void Restore(OvReader& reader) const;

private:
    OvParserStatus last_;
    int countAfterLast_ = 0;
};

/// Copies the reader's errors into `errors` (when not null), emptying it first.
void CopyReadErrors(const OvReader& reader, OvReaderErrorList* errors);

/// One reader run over a whole file whose records stand at the top level without a keyword:
/// the catch-all object of the first scope hands every token that is not a keyword to
/// `onData`. The run goes on after errors (one damaged record must not hide the records behind
/// it), a "}" without its block does not end it, and every error reaches `errors`.
class ReseauReadSession : public LinkHdl {
public:
    ReseauReadSession(const String& fileName, const Link& onData);
    ReseauReadSession(const ReseauReadSession&) = delete;
    ReseauReadSession& operator=(const ReseauReadSession&) = delete;
    ~ReseauReadSession() override;

    void Run(OvReaderErrorList* errors);

private:
    std::int32_t OnData(void* object);
    std::int32_t OnParserError(void* reader);

    OvReader reader_;
    Link onData_;
    TrailingErrorKeeper keeper_;
};

}  // namespace orvo::detail
