// Helpers for the tokenizer tests: run a parser over a text and record what it delivered.
#pragma once

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "orvo/textfile/tokenizer.h"

namespace orvo::test {

struct SeenToken {
    eOvTokentype type;
    std::string text;
    std::int32_t ivalue;
    double dvalue;
    double number;
    std::uint32_t line;
    std::uint32_t count;
};

struct SeenError {
    eOvParserStatus status;
    std::uint32_t line;
    std::uint32_t count;
};

struct ParseResult {
    std::vector<SeenToken> tokens;  // without the final end-of-file token
    std::vector<SeenError> errors;
    OvParserStatus final;  // status after the end of file (or the stream error)
};

inline SeenToken Snapshot(const OvParser& parser) {
    const OvParserToken& token = parser.GetToken();
    return {token.type,
            token.text,
            token.ivalue,
            token.dvalue,
            token.GetNumber(),
            parser.GetStatus().GetLine(),
            parser.GetStatus().GetTokenCount()};
}

// Parses `text` to its end; errors 3 and 4 are recorded and parsing goes on, a stream error
// ends it. Guards against a parser that would never reach the end.
inline ParseResult ParseAll(const std::string& text, OvParser parser = OvParser()) {
    std::istringstream in(text);
    ParseResult result;
    for (int guard = 0; guard < 100000; ++guard) {
        try {
            parser.ParseForToken(in);
        } catch (const OvParserStatus& status) {
            result.errors.push_back({status.GetStatus(), status.GetLine(), status.GetTokenCount()});
            if (status.GetStatus() == ParserErrorStream) break;
            continue;
        }
        if (parser.GetToken().GetType() == TokenEOF) break;
        result.tokens.push_back(Snapshot(parser));
    }
    result.final = parser.GetStatus();
    return result;
}

inline std::vector<eOvTokentype> Types(const ParseResult& result) {
    std::vector<eOvTokentype> types;
    for (const SeenToken& token : result.tokens)
        types.push_back(token.type);
    return types;
}

inline std::vector<std::string> Texts(const ParseResult& result) {
    std::vector<std::string> texts;
    for (const SeenToken& token : result.tokens)
        texts.push_back(token.text);
    return texts;
}

}  // namespace orvo::test
