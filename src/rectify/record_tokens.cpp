// Reading the fields of rectification records.
#include "record_tokens.h"

#include <memory>

#include "../foundation/token_id.h"

namespace orvo::detail {

int ProcessBlock(OvReaderObject* object) {
    OvReader* reader = ReaderOf(object);
    if (reader == nullptr) return 0;
    OvReaderErrorList& errors = reader->GetReaderErrorList();
    const int before = errors.Count();
    std::unique_ptr<OvReaderError> last(errors.Last() != nullptr ? new OvReaderError(*errors.Last())
                                                                 : nullptr);
    const int result = object->DoProcess();
    if (last != nullptr && errors.Count() == before - 1) errors.Add(last.release());
    return result;
}

bool RecordTokens::AtDataEnd() const {
    const eOvTokentype type = parser_.GetToken().GetType();
    return type == TokenBlockEnd || type == TokenEOF;
}

bool RecordTokens::AtBlockBegin() const {
    return parser_.GetToken().GetType() == TokenBlockBegin;
}

bool RecordTokens::Id(std::uint32_t& value) {
    if (AtDataEnd()) return false;
    value = IdFromToken(parser_.GetToken(TokenInt));
    reader_.Advance();
    return true;
}

bool RecordTokens::Int(std::int32_t& value) {
    if (AtDataEnd()) return false;
    value = parser_.GetToken(TokenInt).ivalue;
    reader_.Advance();
    return true;
}

bool RecordTokens::Number(double& value) {
    if (AtDataEnd()) return false;
    // A nested block is not a number, and stepping into it would unbalance the blocks.
    if (AtBlockBegin()) parser_.GetToken(TokenNumber);
    const OvParserToken& token = parser_.GetToken();
    value = 0.0;
    if (token.GetType() == TokenInt) {
        value = token.GetNumber();
        if (value == 0.0 && token.text != nullptr && token.text[0] == '-') value = -0.0;
    } else if (token.GetType() == TokenFloat) {
        value = token.GetNumber();
    }
    reader_.Advance();
    return true;
}

bool RecordTokens::Text(String& value) {
    if (AtDataEnd()) return false;
    value = String(parser_.GetTokenString());
    reader_.Advance();
    return true;
}

bool RecordTokens::EnterBlock() {
    if (!AtBlockBegin()) return false;
    reader_.Advance();
    return true;
}

bool RecordTokens::LeaveBlock() {
    if (parser_.GetToken().GetType() != TokenBlockEnd) return false;
    reader_.Advance();
    return true;
}

void RecordTokens::SkipToBlockEnd() {
    int depth = 0;
    for (;;) {
        switch (parser_.GetToken().GetType()) {
            case TokenEOF:
                return;
            case TokenBlockBegin:
                ++depth;
                break;
            case TokenBlockEnd:
                if (depth == 0) return;
                --depth;
                break;
            default:
                break;
        }
        reader_.Advance();
    }
}

void RecordTokens::Report(const char* what, eOvParserStatus status) {
    OvParserStatus where = parser_.GetStatus();
    where.SetStatus(status);
    auto* error = new OvReaderError(where);
    error->SetName(String(what));
    reader_.GetReaderErrorList().Add(error);
}

}  // namespace orvo::detail
