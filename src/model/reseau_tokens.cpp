// Token-level reading of reseau records.
#include "reseau_tokens.h"

#include <cmath>
#include <limits>

namespace orvo::detail {

ReseauTokens::ReseauTokens(OvReader& reader) : reader_(reader), parser_(reader.GetParser()) {}

void ReseauTokens::Advance() {
    for (;;) {
        try {
            reader_.Advance();
            return;
        } catch (const OvParserStatus& status) {
            if (status.GetStatus() == ParserErrorStream) throw;
            if (status.GetStatus() == ParserStatusEOF) return;
            // The tokenizer has dropped the broken text; record it and go on with the next
            // token. The record it stood in is spoiled by the recorded problem.
            reader_.GetReaderErrorList().Add(new OvReaderError(status));
            ++problems_;
        }
    }
}

void ReseauTokens::Report(eOvParserStatus status) {
    OvParserStatus where = parser_.GetStatus();
    where.SetStatus(status);
    reader_.GetReaderErrorList().Add(new OvReaderError(where));
    ++problems_;
}

bool ReseauTokens::AtBoundary() const {
    const eOvTokentype type = Type();
    return type == TokenBlockBegin || type == TokenBlockEnd || type == TokenEOF;
}

bool ReseauTokens::Text(String& value) {
    if (AtBoundary()) return false;
    if (Type() != TokenString) {
        Report();
        Advance();
        return false;
    }
    value = String(parser_.GetToken().text);  // the text lives in the line buffer: copy first
    Advance();
    return true;
}

bool ReseauTokens::Number(double& value) {
    if (AtBoundary()) return false;
    const OvParserToken& token = parser_.GetToken();
    double read = 0.0;
    bool ok = false;
    if (token.GetType() == TokenInt) {
        read = token.GetNumber();
        if (read == 0.0 && token.text[0] == '-') read = -0.0;  // "-0" keeps its sign
        ok = true;
    } else if (token.GetType() == TokenFloat) {
        read = token.GetNumber();
        ok = true;
    }
    // Overflowing numbers ("1e999") cannot be written back as numbers: they are damage too.
    if (!ok || !std::isfinite(read)) {
        Report();
        Advance();
        return false;
    }
    value = read;
    Advance();
    return true;
}

bool ReseauTokens::Integer(double& value) {
    if (AtBoundary()) return false;
    if (Type() != TokenInt) {
        Report();
        Advance();
        return false;
    }
    value = parser_.GetToken().GetNumber();
    Advance();
    return true;
}

bool ReseauTokens::Open() {
    if (Type() != TokenBlockBegin) return false;
    Advance();
    return true;
}

bool ReseauTokens::Close() {
    if (Type() != TokenBlockEnd) return false;
    Advance();
    return true;
}

bool ReseauTokens::FinishRecord(bool report, bool consume) {
    bool reported = !report;
    for (;;) {
        switch (Type()) {
            case TokenBlockEnd:
                if (consume) Advance();
                return true;
            case TokenBlockBegin:
            case TokenEOF:
                if (!reported) Report();
                return false;
            default:
                if (!reported) {
                    Report();
                    reported = true;
                }
                Advance();
                break;
        }
    }
}

void ReseauTokens::SkipToDataEnd(bool topLevel) {
    int depth = 0;
    for (;;) {
        switch (Type()) {
            case TokenEOF:
                return;
            case TokenBlockBegin:
                ++depth;
                break;
            case TokenBlockEnd:
                if (depth > 0) {
                    --depth;
                } else if (!topLevel) {
                    return;
                }
                break;
            default:
                break;
        }
        Advance();
    }
}

std::uint32_t ToUnsigned32(double value) {
    constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max();
    if (!(value > 0.0)) return 0;
    return value >= static_cast<double>(kLargest) ? kLargest : static_cast<std::uint32_t>(value);
}

std::int32_t ToSigned32(double value) {
    constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();
    if (std::isnan(value)) return 0;
    if (value >= static_cast<double>(kLargest)) return kLargest;
    if (value <= static_cast<double>(kSmallest)) return kSmallest;
    return static_cast<std::int32_t>(value);
}

void TrailingErrorKeeper::Remember(const OvReader& reader) {
    const OvReaderError* last = reader.GetReaderErrorList().Last();
    if (last == nullptr) return;
    last_ = OvParserStatus(*last);
    countAfterLast_ = reader.GetReadErrorCount();
}

void TrailingErrorKeeper::Restore(OvReader& reader) const {
    if (countAfterLast_ > 0 && reader.GetReadErrorCount() == countAfterLast_ - 1)
        reader.GetReaderErrorList().Add(new OvReaderError(last_));
}

void CopyReadErrors(const OvReader& reader, OvReaderErrorList* errors) {
    if (errors == nullptr) return;
    errors->Destroy();
    for (const OvReaderError* e = reader.GetReaderErrorList().First(); e != nullptr;
         e = e->Next()) {
        errors->Add(new OvReaderError(*e));
    }
}

ReseauReadSession::ReseauReadSession(const String& fileName, const Link& onData)
    : reader_(fileName), onData_(onData) {
    reader_.RegisterObject(OvReaderObject(Link(this, &ReseauReadSession::OnData)));
    reader_.SetParserErrorHdl(Link(this, &ReseauReadSession::OnParserError));
}

ReseauReadSession::~ReseauReadSession() = default;

void ReseauReadSession::Run(OvReaderErrorList* errors) {
    reader_.DoProcess(true);
    keeper_.Restore(reader_);
    CopyReadErrors(reader_, errors);
}

std::int32_t ReseauReadSession::OnData(void* object) {
    const std::int32_t result = onData_.Call(object);
    keeper_.Remember(reader_);
    return result;
}

std::int32_t ReseauReadSession::OnParserError(void*) {
    keeper_.Remember(reader_);
    return 1;  // go on with the next record; the end of the input still ends the run
}

}  // namespace orvo::detail
