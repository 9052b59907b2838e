// Differential check of the tokenizer's number conversion: for every integer or floating token
// of arbitrary input, the value must be exactly what the C library gives for the token's text
// (strtod for the double, strtoll clamped to 32 bits for an integer's `ivalue`). The first
// byte picks the rounding direction the conversion runs under, since strtod follows it; the
// rest is the file text, read with the default syntax (so the token text is the text as
// written).
#include <cerrno>
#include <cfenv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <sstream>
#include <string>

#include "orvo/textfile/tokenizer.h"

namespace {

void Check(bool condition) {
    if (!condition) std::abort();
}

bool SameBits(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

std::int32_t ClampedStrtoll(const char* text) {
    const long long value = std::strtoll(text, nullptr, 10);
    if (value < std::numeric_limits<std::int32_t>::min())
        return std::numeric_limits<std::int32_t>::min();
    if (value > std::numeric_limits<std::int32_t>::max())
        return std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const int modes[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};
    std::fesetround(modes[data[0] % 4]);
    orvo::OvParser parser;
    std::istringstream in(std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
    const std::size_t maxRounds = 4 * size + 16;
    for (std::size_t rounds = 0; rounds < maxRounds; ++rounds) {
        try {
            parser.ParseForToken(in);
        } catch (const orvo::OvParserStatus& status) {
            if (status.GetStatus() == orvo::ParserErrorStream) break;
            continue;
        }
        const orvo::OvParserToken& token = parser.GetToken();
        if (token.type == orvo::TokenEOF) break;
        if (token.type != orvo::TokenInt && token.type != orvo::TokenFloat) continue;
        const int savedErrno = errno;
        Check(SameBits(token.dvalue, std::strtod(token.text, nullptr)));
        if (token.type == orvo::TokenInt) Check(token.ivalue == ClampedStrtoll(token.text));
        errno = savedErrno;
    }
    std::fesetround(FE_TONEAREST);
    return 0;
}
