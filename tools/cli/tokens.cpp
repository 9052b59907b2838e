// `orvo tokens FILE`: prints every token of a block file as the tokenizer delivers it, a
// debugging aid for project files that do not read as expected.
//
// One line per token: the line number, the token kind and its text; a number whose text does
// not plainly show its value is followed by "= value". Errors the tokenizer can continue after (an
// unterminated string, an invalid number) are printed in place and the listing goes on; a stream
// error ends it.
#include <charconv>
#include <cstdio>
#include <fstream>
#include <string>

#include "cli.h"
#include "command_support.h"
#include "orvo/textfile/tokenizer.h"

namespace orvo::cli {

namespace {

// The shortest text that reads back to the same double.
std::string FormatNumber(double value) {
    char text[64];
    const std::to_chars_result result = std::to_chars(text, text + sizeof text, value);
    return std::string(text, result.ptr);
}

// Control characters are made visible, so a stray carriage return or tab shows up.
std::string Visible(const char* text) {
    std::string shown;
    for (; *text != '\0'; ++text) {
        const auto c = static_cast<unsigned char>(*text);
        if (c == '\r') {
            shown += "\\r";
        } else if (c == '\t') {
            shown += "\\t";
        } else if (c == '\\') {
            shown += "\\\\";
        } else if (c < 0x20 || c == 0x7F) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", static_cast<unsigned>(c));
            shown += escaped;
        } else {
            shown += static_cast<char>(c);
        }
    }
    return shown;
}

// The line number and kind; the kind is padded only when more follows on the line.
void PrintPrefix(std::ostream& out, std::uint32_t line, const char* kind, bool more) {
    char prefix[48];
    std::snprintf(prefix, sizeof prefix, more ? "%6u  %-16s" : "%6u  %s",
                  static_cast<unsigned>(line), kind);
    out << prefix;
}

void PrintToken(std::ostream& out, const OvParser& parser) {
    const OvParserToken& token = parser.GetToken();
    PrintPrefix(out, parser.GetStatus().GetLine(), GetOvTokentypeName(token.type),
                token.type != TokenEOF);
    switch (token.type) {
        case TokenBlockBegin:
            out << " {";
            break;
        case TokenBlockEnd:
            out << " }";
            break;
        case TokenEOF:
            break;
        case TokenString:
            out << " \"" << Visible(token.text) << "\"";
            break;
        case TokenInt: {
            out << " " << Visible(token.text);
            // The value is shown where the text alone does not tell it: a sign, a text that
            // runs on past a "}", an integer beyond 32 bits (clamped, yet exact as a number).
            const std::string plain = std::to_string(token.ivalue);
            if (plain != token.text) out << "  = " << token.ivalue;
            if (token.GetNumber() != static_cast<double>(token.ivalue)) {
                out << " (as number " << FormatNumber(token.GetNumber()) << ")";
            }
            break;
        }
        case TokenFloat:
            out << " " << Visible(token.text);
            if (FormatNumber(token.dvalue) != token.text)
                out << "  = " << FormatNumber(token.dvalue);
            break;
        default:
            out << " " << Visible(token.text);
            break;
    }
    out << "\n";
}

void PrintTokenError(std::ostream& out, const OvParser& parser, const OvParserStatus& status) {
    PrintPrefix(out, status.GetLine(), "error", true);
    out << " " << status.GetStatusText();
    if (status.GetStatus() == ParserErrorUnterminatedString) {
        out << ": \"" << Visible(parser.GetToken().text);
    } else if (status.GetStatus() == ParserErrorInvalidNumber) {
        out << ": " << Visible(parser.GetToken().text);
    }
    out << "\n";
}

}  // namespace

int RunTokens(const Args& args, Io& io) {
    ArgParser parser("orvo tokens",
                     "List every token of a block file as the tokenizer delivers it: the line,\n"
                     "the token kind and its text. Errors are shown in place; the exit status\n"
                     "is 1 when there were any.");
    parser.Positional("FILE", "the block file to list");
    if (std::optional<int> exit = ParseOrExit(parser, args, io, "orvo tokens")) return *exit;
    const std::string name = parser.PositionalOr("FILE", "");
    std::ostream& out = io.out;

    // Binary mode: the tokenizer handles CR LF line ends itself on every system.
    std::ifstream in(name, std::ios::binary);
    if (!in) {
        PrintError(io, "orvo tokens", name + ": cannot open file");
        return 1;
    }

    OvParser tokenizer;
    std::uint32_t errors = 0;
    for (;;) {
        try {
            tokenizer.ParseForToken(in);
        } catch (const OvParserStatus& status) {
            PrintTokenError(out, tokenizer, status);
            ++errors;
            if (status.GetStatus() == ParserErrorStream) break;
            continue;  // the tokenizer has moved past the bad text
        }
        PrintToken(out, tokenizer);
        if (tokenizer.GetToken().GetType() == TokenEOF) break;
    }
    out << tokenizer.GetStatus().GetTokenCount() << " tokens, " << errors
        << (errors == 1 ? " error\n" : " errors\n");
    return errors == 0 ? 0 : 1;
}

}  // namespace orvo::cli
