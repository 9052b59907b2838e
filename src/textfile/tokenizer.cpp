// The tokenizer: reads a block file line by line and cuts the current line into tokens in place.
//
// Tokens are cut inside the line buffer: the character that ends a token is overwritten with a
// NUL so the token's text can be handed out as a plain C string. When that character is itself
// the start of the next token (a comment, a quote, a "{") it is remembered and put back before
// scanning goes on. Every scan stops at the line's terminating NUL, which ReadLine always
// writes, so no input can make the scanner leave the buffer.
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <string>

#include "orvo/textfile/tokenizer.h"

namespace orvo {

namespace {

constexpr std::uint32_t kAnyDelimiter =
    ChSeparator | ChComment | ChStringDelimiter | ChBlockBegin | ChBlockEnd;

// The text of "{", "}" and end-of-file tokens.
constexpr char kBlank[] = " ";

// Character classes of the "C" locale, which the parser keeps in force; spelled out so the
// scanner does not depend on a locale that someone else may switch meanwhile.
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// The value of an integer token: clamped for the 32-bit field, exact (as far as a double
// holds it) for every numeric use.
void ConvertInteger(const char* text, std::int32_t& clamped, double& exact) {
    const int savedErrno = errno;
    errno = 0;
    char* end = nullptr;
    const long long value = std::strtoll(text, &end, 10);
    if (errno == ERANGE || value == 0) {
        // Beyond 64 bits: let the floating-point conversion round the same digits. A zero goes
        // the same way so that "-0" keeps its sign.
        exact =
            std::strtod(std::string(text, static_cast<std::size_t>(end - text)).c_str(), nullptr);
    } else {
        exact = static_cast<double>(value);
    }
    errno = savedErrno;
    constexpr long long kMin = std::numeric_limits<std::int32_t>::min();
    constexpr long long kMax = std::numeric_limits<std::int32_t>::max();
    clamped = static_cast<std::int32_t>(value < kMin ? kMin : (value > kMax ? kMax : value));
}

}  // namespace

OvParser::OvParser() : buffer_{} {
    lookup_.SetFlags(" \t\n", ChSeparator);
    lookup_.SetFlags(";!", ChComment);
    lookup_.SetFlags('"', ChStringDelimiter);
    lookup_.SetFlags('{', ChBlockBegin);
    lookup_.SetFlags('}', ChBlockEnd);
}

// The copy gets a locale guard of its own (see the class comment); everything else, the line
// buffer included, is copied, and the token text is re-pointed into the copy's buffer.
OvParser::OvParser(const OvParser& other) : buffer_{} {
    CopyStateFrom(other);
}

OvParser& OvParser::operator=(const OvParser& other) {
    if (this != &other) CopyStateFrom(other);
    return *this;
}

void OvParser::CopyStateFrom(const OvParser& other) {
    buffer_ = other.buffer_;
    tokenStart_ = other.tokenStart_;
    scanPos_ = other.scanPos_;
    savedChar_ = other.savedChar_;
    decPoint_ = other.decPoint_;
    lookup_ = other.lookup_;
    status_ = other.status_;
    token_ = other.token_;
    skipNextParse_ = other.skipNextParse_;
    SetTokenText(tokenStart_);
}

std::istream& OvParser::ParseForToken(std::istream& in) {
    for (;;) {
        if (CutToken()) return in;
        if (in.fail()) {
            if (in.eof()) {
                SetEndOfFile();
                return in;
            }
            Fail(ParserErrorStream);
        }
        ReadLine(in);
    }
}

std::istream& OvParser::Advance(std::istream& in) {
    if (skipNextParse_) {
        skipNextParse_ = false;
        return in;
    }
    return ParseForToken(in);
}

const OvParserToken& OvParser::GetToken(eOvTokentype wanted) {
    if (wanted == TokenNumber) {
        if (token_.type == TokenInt || token_.type == TokenFloat) return token_;
        Fail(ParserErrorNotSpecifiedToken);
    }
    if (token_.type == TokenEOF) throw status_;
    if (token_.type != wanted) Fail(ParserErrorNotSpecifiedToken);
    return token_;
}

void OvParser::SkipLine() {
    scanPos_ = kNoLine;
    savedChar_ = '\0';
}

void OvParser::SetDecPoint(char c) {
    decPoint_ = c;
    lookup_.ClearFlags(static_cast<unsigned char>(c), ChSeparator | ChComment);
}

void OvParser::SetCommentChar(char c, bool on) {
    const auto uc = static_cast<unsigned char>(c);
    if (on) {
        lookup_.SetFlags(uc, ChComment);
        lookup_.ClearFlags(uc, ChSeparator);
    } else {
        lookup_.ClearFlags(uc, ChComment);
    }
}

void OvParser::SetTokenseperator(char c, bool on) {
    const auto uc = static_cast<unsigned char>(c);
    if (on) {
        lookup_.SetFlags(uc, ChSeparator);
        lookup_.ClearFlags(uc, ChComment);
    } else {
        lookup_.ClearFlags(uc, ChSeparator);
    }
}

// Reads one line like istream::getline with a buffer of kLineBufferSize: the line feed is
// taken and dropped, a line that does not fit marks the stream failed (with its first
// kMaxLineLength characters kept), and a read that finds nothing marks it failed and at its
// end. A carriage return directly before the line feed is dropped as part of the line end.
void OvParser::ReadLine(std::istream& in) {
    using Traits = std::istream::traits_type;
    std::size_t length = 0;
    std::ios_base::iostate state = std::ios_base::goodbit;
    const std::istream::sentry ready(in, true);
    if (ready) {
        bool extracted = false;
        try {
            std::streambuf* source = in.rdbuf();
            for (;;) {
                const Traits::int_type next = source->sgetc();
                if (Traits::eq_int_type(next, Traits::eof())) {
                    state |= std::ios_base::eofbit;
                    break;
                }
                const char c = Traits::to_char_type(next);
                if (c == '\n') {
                    source->sbumpc();
                    extracted = true;
                    break;
                }
                if (c == '\r') {
                    source->sbumpc();
                    extracted = true;
                    if (Traits::eq_int_type(source->sgetc(), Traits::to_int_type('\n'))) {
                        source->sbumpc();
                        break;
                    }
                    // A carriage return inside the line is an ordinary character.
                    if (length == kMaxLineLength) {
                        state |= std::ios_base::failbit;
                        break;
                    }
                    buffer_[length++] = c;
                    continue;
                }
                if (length == kMaxLineLength) {
                    state |= std::ios_base::failbit;
                    break;
                }
                buffer_[length++] = c;
                source->sbumpc();
                extracted = true;
            }
        } catch (...) {
            state |= std::ios_base::badbit;
        }
        if (!extracted) state |= std::ios_base::failbit;
    }
    buffer_[length] = '\0';
    scanPos_ = 0;
    savedChar_ = '\0';
    status_.SetLine(status_.GetLine() + 1);
    if (state != std::ios_base::goodbit) in.setstate(state);
}

bool OvParser::CutToken() {
    if (status_.GetStatus() == ParserStatusEOF) return true;
    if (scanPos_ == kNoLine) return false;

    char* const line = buffer_.data();
    std::size_t pos = scanPos_;
    if (savedChar_ != '\0') {
        line[pos] = savedChar_;
        savedChar_ = '\0';
    }
    auto flags = [this](char c) { return lookup_.GetFlags(static_cast<unsigned char>(c)); };

    while (line[pos] != '\0' && (flags(line[pos]) & ChSeparator) != 0)
        ++pos;
    const std::uint32_t here = flags(line[pos]);
    if (line[pos] == '\0' || (here & ChComment) != 0) {
        SkipLine();
        return false;
    }

    if ((here & ChStringDelimiter) != 0) {
        const std::size_t start = pos + 1;
        std::size_t end = start;
        while (line[end] != '\0' && (flags(line[end]) & ChStringDelimiter) == 0)
            ++end;
        if (line[end] == '\0') {
            token_.type = TokenString;
            token_.ivalue = 0;
            token_.dvalue = 0.0;
            SetTokenText(start);
            SkipLine();
            Fail(ParserErrorUnterminatedString);
        }
        line[end] = '\0';
        scanPos_ = end + 1;
        DeliverToken(TokenString, start);
        return true;
    }
    if ((here & ChBlockBegin) != 0) {
        scanPos_ = pos + 1;
        DeliverToken(TokenBlockBegin, kBlankText);
        return true;
    }
    if ((here & ChBlockEnd) != 0) {
        scanPos_ = pos + 1;
        DeliverToken(TokenBlockEnd, kBlankText);
        return true;
    }

    scanPos_ = pos;
    CutPlainToken();
    return true;
}

void OvParser::CutPlainToken() {
    char* const line = buffer_.data();
    const std::size_t start = scanPos_;
    std::size_t pos = start;
    std::size_t digits = 0;
    std::size_t letters = 0;
    bool floating = false;
    for (; line[pos] != '\0'; ++pos) {
        const char c = line[pos];
        if ((lookup_.GetFlags(static_cast<unsigned char>(c)) & kAnyDelimiter) != 0) break;
        if (c == decPoint_) {
            line[pos] = '.';
            floating = true;
        } else if (IsDigit(c)) {
            ++digits;
        } else if (IsLetter(c)) {
            // An exponent mark after a digit makes a number floating instead of a word.
            if ((c == 'e' || c == 'E') && digits > 0) {
                floating = true;
            } else {
                ++letters;
            }
        }
    }

    const char stop = line[pos];
    const std::uint32_t stopFlags = lookup_.GetFlags(static_cast<unsigned char>(stop));
    if (stop == '\0') {
        scanPos_ = pos;
    } else if ((stopFlags & ChSeparator) != 0) {
        line[pos] = '\0';
        scanPos_ = pos + 1;
    } else if ((stopFlags & (ChComment | ChStringDelimiter | ChBlockBegin)) != 0) {
        savedChar_ = stop;
        line[pos] = '\0';
        scanPos_ = pos;
    } else {
        // A "}" is left in the text (so the token's text runs on to the end of the line) and
        // becomes the next token.
        scanPos_ = pos;
    }

    const char* const text = line + start;
    token_.ivalue = 0;
    token_.dvalue = 0.0;
    if (letters > 0) {
        if (IsLetter(line[start])) {
            DeliverToken(TokenKeyword, start);
            return;
        }
        token_.type = TokenOther;
        SetTokenText(start);
        Fail(ParserErrorInvalidNumber);
    }
    if (digits > 0) {
        if (floating) {
            token_.dvalue = std::strtod(text, nullptr);
            DeliverToken(TokenFloat, start);
        } else {
            ConvertInteger(text, token_.ivalue, token_.dvalue);
            DeliverToken(TokenInt, start);
        }
        return;
    }
    DeliverToken(TokenOther, start);
}

void OvParser::SetTokenText(std::size_t offset) {
    tokenStart_ = offset;
    token_.text = offset == kBlankText ? kBlank : buffer_.data() + offset;
}

void OvParser::DeliverToken(eOvTokentype type, std::size_t textOffset) {
    if (type != TokenInt && type != TokenFloat) {
        token_.ivalue = 0;
        token_.dvalue = 0.0;
    }
    token_.type = type;
    SetTokenText(textOffset);
    status_.SetTokenCount(status_.GetTokenCount() + 1);
}

void OvParser::SetEndOfFile() {
    token_.type = TokenEOF;
    token_.ivalue = 0;
    token_.dvalue = 0.0;
    SetTokenText(kBlankText);
    status_.SetStatus(ParserStatusEOF);
}

void OvParser::Fail(eOvParserStatus status) {
    status_.SetStatus(status);
    throw status_;
}

}  // namespace orvo
