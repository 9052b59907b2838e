// The small value types around the tokenizer: status texts, token kinds, the character table.
#include "orvo/textfile/tokenizer.h"

namespace orvo {

const char* GetOvParserStatusText(eOvParserStatus status) {
    switch (status) {
        case ParserStatusOK:
            return "ParserStatusOK";
        case ParserStatusEOF:
            return "ParserStatusEOF";
        case ParserErrorStream:
            return "ParserErrorStream";
        case ParserErrorUnterminatedString:
            return "ParserErrorUnterminatedString";
        case ParserErrorInvalidNumber:
            return "ParserErrorInvalidNumber";
        case ParserErrorNotSpecifiedToken:
            return "ParserErrorNotSpecifiedToken";
    }
    return "ParserStatus??";
}

const char* GetOvTokentypeName(eOvTokentype type) {
    switch (type) {
        case TokenOther:
            return "TokenOther";
        case TokenInt:
            return "TokenInt";
        case TokenFloat:
            return "TokenFloat";
        case TokenNumber:
            return "TokenNumber";
        case TokenKeyword:
            return "TokenKeyword";
        case TokenString:
            return "TokenString";
        case TokenBlockBegin:
            return "TokenBlockBegin";
        case TokenBlockEnd:
            return "TokenBlockEnd";
        case TokenEOF:
            return "TokenEOF";
    }
    return "Token??";
}

double OvParserToken::GetNumber() const {
    // For an integer the double keeps the exact value even where ivalue had to be clamped.
    if (type == TokenInt || type == TokenFloat) return dvalue;
    return 0.0;
}

void OvChLookup::SetFlags(const char* set, std::uint32_t flags) {
    if (set == nullptr) return;
    for (; *set != '\0'; ++set)
        SetFlags(static_cast<unsigned char>(*set), flags);
}

void OvChLookup::ClearFlags(const char* set, std::uint32_t flags) {
    if (set == nullptr) return;
    for (; *set != '\0'; ++set)
        ClearFlags(static_cast<unsigned char>(*set), flags);
}

}  // namespace orvo
