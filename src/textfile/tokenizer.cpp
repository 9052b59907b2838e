// The tokenizer: reads a block file line by line and cuts the current line into tokens in place.
//
// Tokens are cut inside the line buffer: the character that ends a token is overwritten with a
// NUL so the token's text can be handed out as a plain C string. When that character is itself
// the start of the next token (a comment, a quote, a "{") it is remembered and put back before
// scanning goes on. Every scan stops at the line's terminating NUL, which ReadLine always
// writes, so no input can make the scanner leave the buffer.
#include <cerrno>
#include <cfenv>
#include <cfloat>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <system_error>

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

std::int32_t ClampTo32Bits(long long value) {
    constexpr long long kMin = std::numeric_limits<std::int32_t>::min();
    constexpr long long kMax = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(value < kMin ? kMin : (value > kMax ? kMax : value));
}

// The value of an integer token the C library's way: strtoll, and where that overflows, strtod
// of the same digits. errno is left as it was: a number out of range is not an error here.
void ConvertIntegerByCLibrary(const char* text, std::int32_t& clamped, double& exact) {
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
    clamped = ClampTo32Bits(value);
}

// The value of an integer token: clamped for the 32-bit field, exact (as far as a double
// holds it) for every numeric use. This is the hot path of reading ids and counts, so the
// common form (an optional sign and at most 18 digits, which cannot overflow 64 bits) is
// converted here; anything else (more digits, leading blanks that strtoll would skip, no
// digit after the sign) goes to the C library.
void ConvertInteger(const char* text, std::int32_t& clamped, double& exact) {
    constexpr int kSafeDigits = 18;
    const char* digits = text;
    const bool negative = *digits == '-';
    if (*digits == '-' || *digits == '+') ++digits;
    std::uint64_t magnitude = 0;
    int count = 0;
    while (count < kSafeDigits && IsDigit(digits[count])) {
        magnitude = magnitude * 10 + static_cast<std::uint64_t>(digits[count] - '0');
        ++count;
    }
    if (count == 0 || IsDigit(digits[count])) {
        ConvertIntegerByCLibrary(text, clamped, exact);
        return;
    }
    const auto value = static_cast<long long>(magnitude);
    const long long signedValue = negative ? -value : value;
    // strtod keeps the sign of "-0".
    exact = magnitude != 0 ? static_cast<double>(signedValue) : (negative ? -0.0 : 0.0);
    clamped = ClampTo32Bits(signedValue);
}

// Powers of ten that a double holds exactly.
constexpr double kExactPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kLargestExactPowerOfTen = 22;
// Integers up to 2^53 convert to double exactly.
constexpr std::uint64_t kLargestExactInteger = std::uint64_t{1} << 53;
// More significant digits than this are not gathered (10^19 still fits 64 bits).
constexpr int kMaxGatheredDigits = 19;

// The common case of a floating token, decimal digits with a point and an exponent of modest
// size, done exactly: when the significant digits form an integer of at most 2^53 and the
// decimal exponent is at most 22 either way, both are exact doubles and the value is one
// multiplication or division of them, which rounds once, correctly, in the current rounding
// direction, as strtod does. Reads what strtod reads: an optional sign, digits with at most
// one point (at least one digit), and an exponent only when a digit follows the "e" and its
// sign. Returns false, leaving `value` alone, for anything it cannot do exactly that way.
bool ConvertFloatExactly(const char* text, double& value) {
    if constexpr (FLT_EVAL_METHOD != 0) {
        return false;  // the operations below would round twice
    }
    const char* p = text;
    const bool negative = *p == '-';
    if (*p == '-' || *p == '+') ++p;
    const char* const mantissa = p;

    // Leading zeros carry no digits; after them every digit is gathered (a run of more than
    // kMaxGatheredDigits digits overflows `significand`, but is refused below).
    while (*p == '0')
        ++p;
    std::uint64_t significand = 0;
    const char* gatherStart = p;
    for (; IsDigit(*p); ++p)
        significand = significand * 10 + static_cast<std::uint64_t>(*p - '0');
    std::ptrdiff_t gathered = p - gatherStart;
    int exponent = 0;
    bool point = false;
    if (*p == '.') {
        point = true;
        ++p;
        if (gathered == 0) {
            // Zeros right after the point only scale the value.
            const char* zeros = p;
            while (*p == '0')
                ++p;
            exponent -= static_cast<int>(p - zeros);
        }
        gatherStart = p;
        for (; IsDigit(*p); ++p)
            significand = significand * 10 + static_cast<std::uint64_t>(*p - '0');
        exponent -= static_cast<int>(p - gatherStart);
        gathered += p - gatherStart;
    }
    if (p - mantissa == (point ? 1 : 0)) return false;  // no digit at all
    if (gathered > kMaxGatheredDigits) return false;

    if (*p == 'e' || *p == 'E') {
        const char* q = p + 1;
        const bool negativeExponent = *q == '-';
        if (*q == '-' || *q == '+') ++q;
        if (IsDigit(*q)) {
            int written = 0;
            for (; IsDigit(*q); ++q) {
                // Beyond this the value is far out of the exact range anyway.
                if (written > 100000) return false;
                written = written * 10 + (*q - '0');
            }
            exponent += negativeExponent ? -written : written;
        }
    }
    if (significand == 0) {
        value = negative ? -0.0 : 0.0;
        return true;
    }
    if (significand > kLargestExactInteger || exponent > kLargestExactPowerOfTen ||
        exponent < -kLargestExactPowerOfTen)
        return false;
    // The sign goes in before the rounding operation: with a directed rounding the magnitude
    // of a negative value rounds the other way.
    const double digits =
        negative ? -static_cast<double>(significand) : static_cast<double>(significand);
    value = exponent >= 0 ? digits * kExactPowersOfTen[exponent]
                          : digits / kExactPowersOfTen[-exponent];
    return true;
}

// The value of a floating token (the token's NUL-terminated text): exactly what strtod gives
// in the "C" locale.
//
// strtod is slow (it used to take most of the time of reading a file of coordinates), so the
// decimal forms are converted here or by std::from_chars, which rounds correctly as well and
// gives the same double for every text it accepts when the rounding direction is the default.
// from_chars does not take a leading "+", so the sign is handled here (a value correctly
// rounded to nearest is symmetric in the sign). The forms it reads differently or not at all
// go to strtod: hexadecimal ("0x", where from_chars would stop after the "0"), "inf" and
// "nan", a sign not followed by a digit or a point, leading blanks, values out of range
// (strtod gives infinity or zero there), and every text while the host has switched the
// rounding direction away from the default (from_chars always rounds to nearest).
double ConvertFloat(const char* text) {
    double value = 0.0;
    if (ConvertFloatExactly(text, value)) return value;
    const char* p = text;
    const bool negative = *p == '-';
    if (*p == '-' || *p == '+') ++p;
    const bool decimal =
        (IsDigit(*p) || *p == '.') && !(p[0] == '0' && (p[1] == 'x' || p[1] == 'X'));
    if (decimal && std::fegetround() == FE_TONEAREST) {
        const std::from_chars_result result = std::from_chars(p, p + std::strlen(p), value);
        if (result.ec == std::errc()) return negative ? -value : value;
    }
    // errno is left as it was: a number out of range is not an error here.
    const int savedErrno = errno;
    char* end = nullptr;
    value = std::strtod(text, &end);
    errno = savedErrno;
    // Where nothing converts ("-..3") the answer is the C standard's zero, +0.0; one C runtime
    // gives -0.0 after a minus sign, and a file must read the same everywhere.
    return end == text ? 0.0 : value;
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

namespace {

using Traits = std::istream::traits_type;

// Reads one line into `buffer` (kLineBufferSize bytes) and returns its length, without the
// NUL. See OvParser::ReadLine for the rules.
//
// istream::getline does the work: the standard library finds the line feed in the stream's
// buffer a block at a time, much faster than taking character by character. What remains here
// is the carriage return: it is dropped after the line has been read, and a line that filled
// the buffer is still complete when a carriage return and a line feed come next.
std::size_t ReadLineWithGetline(std::istream& in, char* buffer) {
    in.getline(buffer, static_cast<std::streamsize>(OvParser::kLineBufferSize));
    auto length = static_cast<std::size_t>(in.gcount());
    const std::ios_base::iostate state = in.rdstate();
    if ((state & (std::ios_base::failbit | std::ios_base::eofbit | std::ios_base::badbit)) == 0) {
        // The line feed was taken (and counted).
        --length;
        if (length > 0 && buffer[length - 1] == '\r') --length;
        return length;
    }
    if (length != OvParser::kMaxLineLength || state != std::ios_base::failbit) return length;

    // The buffer is full and the next character is neither a line feed nor the end of the
    // input (that would have set eofbit instead). A carriage return and a line feed still end
    // the line properly; a carriage return followed by anything else is taken, and the line is
    // too long.
    in.clear();
    std::ios_base::iostate after = std::ios_base::failbit;
    try {
        std::streambuf* source = in.rdbuf();
        if (Traits::eq_int_type(source->sgetc(), Traits::to_int_type('\r'))) {
            source->sbumpc();
            if (Traits::eq_int_type(source->sgetc(), Traits::to_int_type('\n'))) {
                source->sbumpc();
                after = std::ios_base::goodbit;
            }
        }
    } catch (...) {
        after |= std::ios_base::badbit;
    }
    if (after != std::ios_base::goodbit) in.setstate(after);
    return length;
}

// The same line reading one character at a time through the stream buffer, for streams that
// throw on a failed read (getline would throw before the carriage return could be looked
// at). The state is returned rather than set, so the caller can finish the line first.
std::size_t ReadLineByCharacters(std::istream& in, char* buffer, std::ios_base::iostate& state) {
    std::size_t length = 0;
    const std::istream::sentry ready(in, true);
    if (!ready) return length;
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
                if (length == OvParser::kMaxLineLength) {
                    state |= std::ios_base::failbit;
                    break;
                }
                buffer[length++] = c;
                continue;
            }
            if (length == OvParser::kMaxLineLength) {
                state |= std::ios_base::failbit;
                break;
            }
            buffer[length++] = c;
            source->sbumpc();
            extracted = true;
        }
    } catch (...) {
        state |= std::ios_base::badbit;
    }
    if (!extracted) state |= std::ios_base::failbit;
    return length;
}

}  // namespace

// Reads one line like istream::getline with a buffer of kLineBufferSize: the line feed is
// taken and dropped, a line that does not fit marks the stream failed (with its first
// kMaxLineLength characters kept), and a read that finds nothing marks it failed and at its
// end. A carriage return directly before the line feed is dropped as part of the line end, so
// it does not count against the length either.
void OvParser::ReadLine(std::istream& in) {
    std::ios_base::iostate state = std::ios_base::goodbit;
    const std::size_t length = in.exceptions() == std::ios_base::goodbit
                                   ? ReadLineWithGetline(in, buffer_.data())
                                   : ReadLineByCharacters(in, buffer_.data(), state);
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
    const char decPoint = decPoint_;
    std::size_t pos = start;
    bool digits = false;
    bool letters = false;
    bool floating = false;
    const auto delimits = [this](char c) {
        return (lookup_.GetFlags(static_cast<unsigned char>(c)) & kAnyDelimiter) != 0;
    };
    // Runs of digits make up most of a project file, so they get a loop of their own that
    // looks only for the end of the run. That is right unless the decimal point is itself a
    // digit (a caller may choose any character): then every character takes the full way.
    const bool pointIsDigit = IsDigit(decPoint);
    for (;;) {
        const char c = line[pos];
        if (delimits(c)) break;
        if (c == decPoint) {
            if (c == '\0') break;
            line[pos++] = '.';
            floating = true;
            continue;
        }
        if (IsDigit(c)) {
            digits = true;
            ++pos;
            if (!pointIsDigit) {
                while (IsDigit(line[pos]) && !delimits(line[pos]))
                    ++pos;
            }
            continue;
        }
        if (c == '\0') break;
        if (IsLetter(c)) {
            // An exponent mark after a digit makes a number floating instead of a word.
            if ((c == 'e' || c == 'E') && digits) {
                floating = true;
            } else {
                letters = true;
            }
        }
        ++pos;
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
    if (letters) {
        if (IsLetter(line[start])) {
            DeliverToken(TokenKeyword, start);
            return;
        }
        token_.type = TokenOther;
        SetTokenText(start);
        Fail(ParserErrorInvalidNumber);
    }
    if (digits) {
        if (floating) {
            token_.dvalue = ConvertFloat(text);
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
