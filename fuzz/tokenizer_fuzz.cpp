// Feeds arbitrary bytes to the tokenizer. The first byte picks a syntax variant (decimal comma,
// extra comment and separator characters, an odd flag table) so those paths get exercised too;
// the rest is the file text. Every token must stay inside the line buffer and the parser must
// reach the end of the input or stop at a stream error.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include "orvo/textfile/tokenizer.h"

namespace {

void Check(bool condition) {
    if (!condition) std::abort();
}

void ConfigureSyntax(orvo::OvParser& parser, std::uint8_t variant) {
    if ((variant & 1) != 0) parser.SetDecPoint(',');
    if ((variant & 2) != 0) parser.SetCommentChar('#', true);
    if ((variant & 4) != 0) parser.SetTokenseperator(';', true);
    if ((variant & 8) != 0) parser.SetTokenseperator(' ', false);
    if ((variant & 16) != 0) parser.SetCommentChar('!', false);
    if ((variant & 32) != 0) {
        // Give a handful of characters (NUL among them) every meaning at once.
        parser.GetChLookup().SetFlags(static_cast<unsigned char>(variant >> 6), 0xFFFFFFFFu);
        parser.GetChLookup().SetFlags(static_cast<unsigned char>(0), 0xFFFFFFFFu);
    }
}

// Touches every byte of the token text so the sanitizer sees an overrun.
std::size_t TouchText(const char* text) {
    std::size_t length = std::strlen(text);
    Check(length <= orvo::OvParser::kMaxLineLength);
    return length;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    orvo::OvParser parser;
    ConfigureSyntax(parser, data[0]);
    std::istringstream in(std::string(reinterpret_cast<const char*>(data) + 1, size - 1));

    std::size_t newlines = 0;
    for (std::size_t i = 1; i < size; ++i)
        newlines += data[i] == '\n' ? 1 : 0;

    // Every round either delivers a token or an error and consumes input; the bound only
    // protects against a parser that stops making progress.
    const std::size_t maxRounds = 4 * size + 16;
    std::size_t rounds = 0;
    for (; rounds < maxRounds; ++rounds) {
        try {
            parser.ParseForToken(in);
        } catch (const orvo::OvParserStatus& status) {
            Check(status.GetStatus() == orvo::ParserErrorStream ||
                  status.GetStatus() == orvo::ParserErrorUnterminatedString ||
                  status.GetStatus() == orvo::ParserErrorInvalidNumber);
            TouchText(parser.GetToken().text);
            if (status.GetStatus() == orvo::ParserErrorStream) break;
            continue;
        }
        const orvo::OvParserToken& token = parser.GetToken();
        TouchText(token.text);
        if (token.GetType() == orvo::TokenEOF) break;

        // The checked requests agree with the kind and never read anything else.
        try {
            const double number = parser.GetTokenNumber();
            Check(token.GetType() == orvo::TokenInt || token.GetType() == orvo::TokenFloat);
            Check(number == token.GetNumber());
        } catch (const orvo::OvParserStatus& status) {
            Check(status.GetStatus() == orvo::ParserErrorNotSpecifiedToken);
        }
        if (token.GetType() == orvo::TokenInt) {
            const double exact = token.GetNumber();
            if (exact >= -2147483648.0 && exact <= 2147483647.0) {
                Check(static_cast<double>(token.ivalue) == exact);
            }
        }
        if ((rounds & 7) == 3) {
            const char* const text = token.text;
            const std::uint32_t count = parser.GetStatus().GetTokenCount();
            parser.SkipNextParse(true);
            parser.Advance(in);  // delivers the same token again
            Check(parser.GetToken().text == text && parser.GetStatus().GetTokenCount() == count);
            Check(!parser.IsSkipNextParse());
        }
        if ((data[0] & 0xC0) == 0xC0 && (rounds % 13) == 5) parser.SkipLine();
    }
    Check(rounds < maxRounds);
    // A failed read at the end counts as one more line.
    Check(parser.GetStatus().GetLine() <= newlines + 2);
    if (parser.GetStatus().GetStatus() == orvo::ParserStatusEOF) {
        Check(parser.GetToken().GetType() == orvo::TokenEOF);
        // A copy taken now behaves like the original.
        orvo::OvParser copy(parser);
        Check(copy.GetStatus().GetTokenCount() == parser.GetStatus().GetTokenCount());
    }
    return 0;
}
