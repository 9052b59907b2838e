// The tokenizer of the block-structured project files.
//
// `OvParser` cuts the text of a project file into tokens, one line at a time, and hands the
// block-file reader the current token typed as keyword, integer, floating-point number, quoted
// string, block begin, block end or end of file. Which characters separate tokens, start
// comments, delimit strings and open or close blocks is decided by a per-character flag table
// (`OvChLookup`), so a caller can adapt the syntax (a comma as decimal point, another comment
// character) without touching the scanner.
//
// Errors are not returned: the parser throws a copy of its `OvParserStatus` (line, token count,
// status code) and keeps that status.
//
// The syntax in short:
//   - separators are blank, tab and newline; ";" and "!" start a comment that runs to the end
//     of the line;
//   - "{" and "}" are tokens of their own wherever they stand;
//   - a double-quoted string has no escape character and must close on the same line;
//   - any other run of characters is a plain token: a keyword when it starts with a letter, a
//     number when it holds digits and no letters ("e"/"E" after a digit is an exponent, a
//     decimal point makes it floating), an invalid number when it holds letters but does not
//     start with one, and `TokenOther` when it holds neither letters nor digits.
//
// Line ends: a line ends at a line feed. A carriage return directly before the line feed
// belongs to the line end (files written on Windows read the same as on any other system);
// a carriage return anywhere else is an ordinary character. A NUL byte ends the line's text:
// what follows it on the same line is ignored.
//
// Numbers: integer tokens are converted exactly. `ivalue` is the value clamped to the 32-bit
// range, while `dvalue` holds the value as the nearest double (exact for every whole number up
// to 2^53), so a whole number written without a decimal point, even one that does not fit 32
// bits, reads back to the same double through `GetNumber` / `GetTokenNumber`.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <istream>

#include "orvo/textfile/c_locale.h"

namespace orvo {

// Token kinds. `TokenNumber` never describes a token; it is only used to ask for "an integer or
// a floating-point number".
enum eOvTokentype : std::int32_t {
    TokenOther = 0,       // neither letters nor digits, e.g. a lone "-"
    TokenInt = 1,         // integer number
    TokenFloat = 2,       // floating-point number
    TokenNumber = 3,      // request only: TokenInt or TokenFloat
    TokenKeyword = 4,     // a word that begins with a letter
    TokenString = 5,      // the text between two double quotes
    TokenBlockBegin = 6,  // "{"
    TokenBlockEnd = 7,    // "}"
    TokenEOF = 8,         // end of the input
};

// Status codes of the parser. The underlying type is fixed, so any 32-bit value is a valid
// status; the ones without a name have the text "ParserStatus??".
enum eOvParserStatus : std::uint32_t {
    ParserStatusOK = 0,
    ParserStatusEOF = 1,
    ParserErrorStream = 2,
    ParserErrorUnterminatedString = 3,
    ParserErrorInvalidNumber = 4,
    ParserErrorNotSpecifiedToken = 5,
};

// "ParserStatusOK", "ParserStatusEOF", ... for the named statuses, "ParserStatus??" otherwise.
const char* GetOvParserStatusText(eOvParserStatus status);

// The enumerator name of a token kind ("TokenKeyword", ...), "Token??" for other values.
// A debugging aid (the `orvo tokens` command prints it).
const char* GetOvTokentypeName(eOvTokentype type);

// Where the parser stands: lines read, tokens delivered and the status code. The parser throws
// a copy of its own status object on every error.
class OvParserStatus {
public:
    OvParserStatus() = default;
    OvParserStatus(std::uint32_t line, std::uint32_t token, eOvParserStatus status)
        : line_(line), token_(token), status_(status) {}
    OvParserStatus(const OvParserStatus&) = default;
    OvParserStatus& operator=(const OvParserStatus&) = default;
    virtual ~OvParserStatus() = default;

    // Number of lines read so far; the first line is 1. A read that fails at the end of the
    // input counts as a line as well, so an empty input ends with line 1.
    std::uint32_t GetLine() const { return line_; }
    // Number of tokens delivered so far (end-of-file tokens and tokens that raised an error
    // are not counted).
    std::uint32_t GetTokenCount() const { return token_; }
    eOvParserStatus GetStatus() const { return status_; }
    const char* GetStatusText() const { return GetOvParserStatusText(status_); }

    void SetLine(std::uint32_t line) { line_ = line; }
    void SetTokenCount(std::uint32_t token) { token_ = token; }
    void SetStatus(eOvParserStatus status) { status_ = status; }

private:
    std::uint32_t line_ = 0;
    std::uint32_t token_ = 0;
    eOvParserStatus status_ = ParserStatusOK;
};

// The current token of a parser.
//
// `text` points into the parser's line buffer and stays valid until the parser reads the next
// line (or is destroyed); copy it to keep it. For "{", "}" and end of file it points at a text
// holding one blank. A token that ends directly at a "}" is not cut there: its text runs on to
// the end of the line (its kind and value are those of the part before the "}", which follows
// as the next token).
class OvParserToken {
public:
    eOvTokentype GetType() const { return type; }
    // `dvalue` for TokenInt and TokenFloat (for an integer that is its exact value, not the
    // clamped `ivalue`), 0.0 for every other kind.
    double GetNumber() const;

    eOvTokentype type = TokenOther;
    std::int32_t ivalue = 0;  // TokenInt: the value clamped to the 32-bit range
    double dvalue = 0.0;      // TokenFloat: the value; TokenInt: the value as a double
    const char* text = " ";
};

// Flag bits of the character table.
enum eOvChFlag : std::uint32_t {
    ChSeparator = 1,        // separates tokens
    ChComment = 2,          // the rest of the line is ignored
    ChStringDelimiter = 4,  // starts and ends a string
    ChBlockBegin = 8,       // a "{" token
    ChBlockEnd = 16,        // a "}" token
};

// One 32-bit flag word per unsigned character value.
class OvChLookup {
public:
    OvChLookup() { Clear(); }

    void Clear() { flags_.fill(0); }
    std::uint32_t GetFlags(unsigned char c) const { return flags_[c]; }
    // ORs `flags` into the word of `c`, or of every character of the NUL-terminated `set`.
    void SetFlags(unsigned char c, std::uint32_t flags) { flags_[c] |= flags; }
    void SetFlags(const char* set, std::uint32_t flags);
    // Clears `flags` in the word of `c`, or of every character of the NUL-terminated `set`.
    void ClearFlags(unsigned char c, std::uint32_t flags) { flags_[c] &= ~flags; }
    void ClearFlags(const char* set, std::uint32_t flags);

private:
    std::array<std::uint32_t, 256> flags_;
};

// The tokenizer. Typical use, as the block-file reader does it:
//
//     OvParser parser;
//     parser.ParseForToken(in);                  // first token
//     while (parser.GetToken().GetType() != TokenEOF) {
//         ... look at parser.GetToken() ...
//         parser.Advance(in);                    // next token (honours SkipNextParse)
//     }
//
// The parser keeps the C library's locale at "C" while it exists, so numbers convert with "."
// whatever the host's locale is. A copy makes its own locale guard, so parsers and their copies
// may be destroyed in any order without the locale being switched back while one is alive.
class OvParser {
public:
    static constexpr std::size_t kLineBufferSize = 8512;
    static constexpr std::size_t kMaxLineLength = kLineBufferSize - 1;

    OvParser();
    OvParser(const OvParser& other);
    OvParser& operator=(const OvParser& other);
    ~OvParser() = default;

    // Advances to the next token, reading further lines from `in` as needed. At the end of the
    // input the token becomes TokenEOF and the status ParserStatusEOF, and every later call
    // yields the end-of-file token again. Throws OvParserStatus on a stream failure, an
    // unterminated string or an invalid number.
    //
    // After an error the parser keeps that status (until the end of file replaces it) and can
    // go on: an unterminated string drops the rest of its line, an invalid number is stepped
    // over, while a failed stream fails again on every call. The current token then shows the
    // offending text (TokenString after the quote, TokenOther for the invalid number) although
    // it was not delivered and not counted.
    std::istream& ParseForToken(std::istream& in);

    // The consumer's advance step: when the skip flag is set it only clears it (the current
    // token is delivered once more), otherwise it calls ParseForToken.
    std::istream& Advance(std::istream& in);

    // The current token, unchecked.
    const OvParserToken& GetToken() const { return token_; }

    // The current token, checked against `wanted`:
    //   - TokenNumber accepts TokenInt and TokenFloat; anything else (end of file included)
    //     sets ParserErrorNotSpecifiedToken and throws;
    //   - any other kind: a current end-of-file token throws with the current status
    //     (ParserStatusEOF); a token of another kind sets ParserErrorNotSpecifiedToken and
    //     throws.
    const OvParserToken& GetToken(eOvTokentype wanted);

    std::int32_t GetTokenInt() { return GetToken(TokenInt).ivalue; }
    double GetTokenFloat() { return GetToken(TokenFloat).dvalue; }
    double GetTokenNumber() { return GetToken(TokenNumber).GetNumber(); }
    // A quoted string's text; a bare keyword is not accepted.
    const char* GetTokenString() { return GetToken(TokenString).text; }

    const OvParserStatus& GetStatus() const { return status_; }

    // Push-back: while set, the next consumer advance delivers the current token again.
    bool SkipNextParse(bool skip) { return skipNextParse_ = skip; }
    bool IsSkipNextParse() const { return skipNextParse_; }

    // Drops the rest of the current line; the next ParseForToken reads a new line.
    void SkipLine();

    // Makes `c` the decimal-point character (it is written as "." into the token text) and
    // clears its separator and comment bits.
    void SetDecPoint(char c);
    char GetDecPoint() const { return decPoint_; }

    // on: `c` starts a comment (and no longer separates); off: it no longer starts a comment.
    void SetCommentChar(char c, bool on);
    // on: `c` separates tokens (and no longer starts a comment); off: it no longer separates.
    void SetTokenseperator(char c, bool on);

    const OvChLookup& GetChLookup() const { return lookup_; }
    OvChLookup& GetChLookup() { return lookup_; }

private:
    static constexpr std::size_t kNoLine = static_cast<std::size_t>(-1);
    static constexpr std::size_t kBlankText = static_cast<std::size_t>(-1);

    // Cuts the next token from the current line. True when a token stands (or the end of file
    // does), false when the line gave none and the next line is needed.
    bool CutToken();
    void CutPlainToken();
    void ReadLine(std::istream& in);
    void SetEndOfFile();
    void SetTokenText(std::size_t offset);
    void DeliverToken(eOvTokentype type, std::size_t textOffset);
    [[noreturn]] void Fail(eOvParserStatus status);
    void CopyStateFrom(const OvParser& other);

    std::array<char, kLineBufferSize> buffer_;
    std::size_t tokenStart_ = kBlankText;  // start of the current token's text in buffer_
    std::size_t scanPos_ = kNoLine;        // where scanning goes on; kNoLine: read the next line
    char savedChar_ = '\0';  // delimiter overwritten by a token's NUL, put back next time
    char decPoint_ = '.';
    OvChLookup lookup_;
    OvParserStatus status_;
    OvParserToken token_;
    bool skipNextParse_ = false;
    OvCLocale localeGuard_;
};

}  // namespace orvo
