// The values of number tokens must be exactly what the C library's conversions give for the
// token's text in the "C" locale: strtod for floating tokens; for integer tokens strtoll,
// clamped to 32 bits, for `ivalue`, and the correctly rounded value of the digits (what strtod
// gives for the same text) for `dvalue`. Checked over many generated texts against the C
// library called plainly here.
#include <gtest/gtest.h>

#include <bit>
#include <cerrno>
#include <cfenv>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <vector>

#include "orvo/textfile/tokenizer.h"
#include "valgrind_support.h"

namespace orvo {
namespace {

std::uint64_t Bits(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

std::int32_t ClampedStrtoll(const char* text) {
    const int saved = errno;
    const long long value = std::strtoll(text, nullptr, 10);
    errno = saved;
    if (value < std::numeric_limits<std::int32_t>::min())
        return std::numeric_limits<std::int32_t>::min();
    if (value > std::numeric_limits<std::int32_t>::max())
        return std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(value);
}

double PlainStrtod(const char* text) {
    const int saved = errno;
    char* end = nullptr;
    const double value = std::strtod(text, &end);
    errno = saved;
    // Where nothing converts the C standard's answer is zero; one C runtime gives -0.0 after a
    // lone minus sign, the tokenizer (like glibc) +0.0 on every system.
    return end == text ? 0.0 : value;
}

struct Tally {
    int ints = 0;
    int floats = 0;
    int others = 0;
};

// Parses the texts, one per line, with one parser and checks every number token against the C
// library applied to the text as written (the default decimal point leaves it unchanged).
Tally CheckAgainstCLibrary(const std::vector<std::string>& texts) {
    std::string input;
    for (const std::string& text : texts)
        if (!text.empty()) input += text + "\n";
    std::istringstream in(input);
    OvParser parser;
    Tally tally;
    for (const std::string& text : texts) {
        if (text.empty()) continue;  // an empty line gives no token
        try {
            parser.ParseForToken(in);
        } catch (const OvParserStatus& status) {
            // Only texts with letters ("e" without a digit in front) may be refused.
            EXPECT_EQ(status.GetStatus(), ParserErrorInvalidNumber) << text;
            ++tally.others;
            continue;
        }
        const OvParserToken& token = parser.GetToken();
        EXPECT_EQ(std::string(token.text), text);
        if (token.type == TokenFloat) {
            ++tally.floats;
            EXPECT_EQ(Bits(token.dvalue), Bits(PlainStrtod(text.c_str())))
                << text << ": " << token.dvalue;
            EXPECT_EQ(token.ivalue, 0) << text;
        } else if (token.type == TokenInt) {
            ++tally.ints;
            EXPECT_EQ(token.ivalue, ClampedStrtoll(text.c_str())) << text;
            // The digits of an integer token are all that strtod reads of it as well.
            EXPECT_EQ(Bits(token.dvalue), Bits(PlainStrtod(text.c_str())))
                << text << ": " << token.dvalue;
        } else {
            ++tally.others;
            EXPECT_NE(token.type, TokenEOF) << text;
        }
    }
    parser.ParseForToken(in);
    EXPECT_EQ(parser.GetToken().type, TokenEOF);
    return tally;
}

TEST(TokenizerNumbers, NamedFormsConvertLikeTheCLibrary) {
    const std::vector<std::string> texts = {
        "+3",
        "-3",
        "1e",
        "1E",
        "1e+",
        "1e-",
        "1.2.3",
        "1..2",
        "1.",
        ".5",
        "-.5",
        "+.5",
        "1.5e3",
        "2E5",
        "1e5e5",
        "1.5e3.7",
        "007",
        "-007.50",
        "0",
        "-0",
        "+0",
        "-0.0",
        "0e0",
        "-0e-5",
        "+-3",
        "-+3",
        "--3",
        "++3",
        "3-",
        "3+4",
        "3-4.5",
        "1,5",
        "1_000",
        "1#2",
        "1/2",
        "1.2e+05",
        "1.2e-05",
        "2147483647",
        "2147483648",
        "-2147483648",
        "-2147483649",
        "9223372036854775807",
        "9223372036854775808",
        "-9223372036854775809",
        "18446744073709551616",
        "9007199254740993",
        "9007199254740993.0",
        "9007199254740995",
        "123456789012345678",
        "1234567890123456789",
        "12345678901234567890123",
    };
    const Tally tally = CheckAgainstCLibrary(texts);
    EXPECT_EQ(tally.ints + tally.floats, static_cast<int>(texts.size()));
}

TEST(TokenizerNumbers, ExtremeExponentsAndDenormals) {
    const std::vector<std::string> texts = {
        "1e308",
        "1e309",
        "-1e309",
        "1e400",
        "1e99999",
        "1e-99999",
        "-1e-99999",
        "1e999999999999999999999",
        "1e-999999999999999999999",
        "0e999999",
        "1.7976931348623157e308",
        "1.7976931348623158e308",
        "1.7976931348623159e308",
        "-1.7976931348623159e308",
        "2.2250738585072011e-308",
        "2.2250738585072014e-308",
        "2.225073858507201e-308",
        "4.9406564584124654e-324",
        "4.9e-324",
        "2.4703282292062327e-324",
        "2.4703282292062328e-324",
        "-2.4703282292062328e-324",
        "1e-320",
        "1e-310",
        "1e-323",
        "1e-324",
        "3e-324",
        "1e-400",
        "0.000000000000000000000000000001e-300",
        "100000000000000000000000000000000000000000e-350",
        "1e-0400",
        "1e+0308",
        "1e0000000000000000000000000000000000000000000000000000001",
    };
    const Tally tally = CheckAgainstCLibrary(texts);
    EXPECT_EQ(tally.floats, static_cast<int>(texts.size()));
}

TEST(TokenizerNumbers, LongMantissasRoundCorrectly) {
    std::vector<std::string> texts;
    // Halfway cases between neighbouring doubles need every digit to decide.
    texts.push_back("9007199254740993.00000000000000000000000000000000000000000000000001");
    texts.push_back("9007199254740993.00000000000000000000000000000000000000000000000000");
    texts.push_back(
        "2.47032822920623272088284396434110686182529901307162382212792841250337753635104375932"
        "649918180817996189898282347722858865463328355177969898199387398005390939063150356595"
        "155702263922908583924491051844359318028499365361525003193704576782492193656236698636"
        "584807570015857692699037063119282795585513329278343384093519780155312465972635795746"
        "227664652e-324");
    texts.push_back("0." + std::string(400, '0') + "1");
    texts.push_back(std::string(400, '9'));
    texts.push_back(std::string(400, '9') + ".5");
    texts.push_back("1" + std::string(308, '0'));
    texts.push_back("1" + std::string(309, '0'));
    texts.push_back("-" + std::string(50, '0') + "1.25");
    const Tally tally = CheckAgainstCLibrary(texts);
    EXPECT_EQ(tally.ints + tally.floats, static_cast<int>(texts.size()));
}

// Every combination of the parts a number is made of, including malformed ones.
TEST(TokenizerNumbers, CombinationsOfSignDigitsPointAndExponent) {
    const char* signs[] = {"", "+", "-", "+-", "--"};
    const char* integers[] = {"", "0", "1", "00", "7", "123", "4294967296", "99999999999999999999"};
    const char* fractions[] = {"", ".", ".5", ".25", ".0001", ".1.2", "..5", ".30000000000000004"};
    const char* exponents[] = {"",      "e",    "E",     "e+",    "e-",    "e5",
                               "E-3",   "e308", "e309",  "e-308", "e-320", "e-324",
                               "e-400", "e+0",  "e0001", "e22",   "e23",   "e-5e3"};
    const char* suffixes[] = {"", ".3", "-", "+4", "#", "/2"};
    std::vector<std::string> texts;
    for (const char* sign : signs)
        for (const char* integer : integers)
            for (const char* fraction : fractions)
                for (const char* exponent : exponents)
                    for (const char* suffix : suffixes)
                        texts.push_back(std::string(sign) + integer + fraction + exponent + suffix);
    const Tally tally = CheckAgainstCLibrary(texts);
    EXPECT_GT(tally.floats, 20000);
    EXPECT_GT(tally.ints, 150);
}

// Random digit strings with a point somewhere and an exponent over the whole range.
TEST(TokenizerNumbers, RandomDecimalTexts) {
    std::uint64_t state = 0x9E3779B97F4A7C15ULL;
    const auto next = [&state](std::uint64_t n) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        return state % n;
    };
    std::vector<std::string> texts;
    for (int i = 0; i < 30000; ++i) {
        std::string text;
        const auto sign = next(4);
        if (sign == 1) text += '-';
        if (sign == 2) text += '+';
        const std::uint64_t digits = 1 + next(i % 10 == 0 ? 60 : 20);
        const std::uint64_t point = next(digits + 2);
        for (std::uint64_t d = 0; d < digits; ++d) {
            if (d == point) text += '.';
            text += static_cast<char>('0' + next(10));
        }
        if (next(3) != 0) {
            text += next(2) != 0 ? 'e' : 'E';
            const auto exponentSign = next(3);
            if (exponentSign == 1) text += '-';
            if (exponentSign == 2) text += '+';
            text += std::to_string(next(i % 7 == 0 ? 400 : 330));
        }
        texts.push_back(text);
    }
    const Tally tally = CheckAgainstCLibrary(texts);
    EXPECT_EQ(tally.ints + tally.floats, static_cast<int>(texts.size()));
    EXPECT_GT(tally.floats, 20000);
}

// Shortest round-trip texts of random doubles of every magnitude, denormals included.
TEST(TokenizerNumbers, WrittenDoublesReadBackToTheSameBits) {
    std::uint64_t state = 88172645463325252ULL;
    std::vector<std::string> texts;
    std::vector<double> values;
    for (int i = 0; i < 20000; ++i) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        const double value = std::bit_cast<double>((state & ~(std::uint64_t{0x7FF} << 52)) |
                                                   (((state >> 3) % 0x7FF) << 52));
        std::ostringstream out;
        out.imbue(std::locale::classic());
        out.precision(17);
        out << value;
        texts.push_back(out.str());
        values.push_back(value);
    }
    CheckAgainstCLibrary(texts);
    std::string input;
    for (const std::string& text : texts)
        input += text + "\n";
    std::istringstream in(input);
    OvParser parser;
    for (std::size_t i = 0; i < values.size(); ++i) {
        parser.ParseForToken(in);
        ASSERT_EQ(Bits(parser.GetToken().GetNumber()), Bits(values[i])) << texts[i];
    }
}

// Texts that the scanner takes for a number but that hold none convert to +0.0 on every
// system, whatever sign they start with.
TEST(TokenizerNumbers, ANumberWithoutDigitsIsPositiveZero) {
    std::istringstream in("-..3 -.+4 -./2 --0\n");
    OvParser parser;
    for (int i = 0; i < 4; ++i) {
        parser.ParseForToken(in);
        const OvParserToken& token = parser.GetToken();
        ASSERT_TRUE(token.type == TokenFloat || token.type == TokenInt) << token.text;
        EXPECT_EQ(Bits(token.dvalue), 0u) << token.text;
    }
}

// strtod rounds in the current rounding direction; so must the tokenizer.
TEST(TokenizerNumbers, DirectedRoundingLikeTheCLibrary) {
    if (test::RunningUnderValgrind()) GTEST_SKIP() << "valgrind ignores the rounding mode";
#ifdef _WIN32
    GTEST_SKIP() << "the Windows C runtime's strtod ignores the rounding mode";
#endif
    std::vector<std::string> texts = {"0.1",
                                      "-0.1",
                                      "1.1",
                                      "-1.1",
                                      "3.3e-5",
                                      "-3.3e5",
                                      "1e23",
                                      "-1e23",
                                      "2.5e-320",
                                      "-2.5e-320",
                                      "1e400",
                                      "-1e400",
                                      "9007199254740993",
                                      "-9007199254740993",
                                      "123456789012345678901234567890",
                                      "0.3000000000000000166"};
    std::uint32_t state = 2463534242U;
    for (int i = 0; i < 3000; ++i) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        std::string text = (state & 1) != 0 ? "-" : "";
        text += std::to_string(state % 100000) + "." + std::to_string(state / 7);
        text += "e" + std::to_string(static_cast<int>(state % 61) - 30);
        texts.push_back(text);
    }
    for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        ASSERT_EQ(std::fesetround(mode), 0);
        const Tally tally = CheckAgainstCLibrary(texts);
        std::fesetround(FE_TONEAREST);
        EXPECT_EQ(tally.ints + tally.floats, static_cast<int>(texts.size())) << mode;
    }
}

TEST(TokenizerNumbers, NumberBeforeAClosingBraceConvertsUpToTheBrace) {
    std::istringstream in("1.5e3} -12} 7.25}8\n");
    OvParser parser;
    const double expected[] = {1500.0, -12.0, 7.25};
    for (double value : expected) {
        parser.ParseForToken(in);
        EXPECT_EQ(parser.GetToken().GetNumber(), value) << parser.GetToken().text;
        parser.ParseForToken(in);
        EXPECT_EQ(parser.GetToken().type, TokenBlockEnd);
    }
}

TEST(TokenizerNumbers, DecimalCommaConvertsTheTextWithAPoint) {
    std::istringstream in("1,5 -0,125e2 1,2,3 ,5 2,5e-320 1.5\n");
    OvParser parser;
    parser.SetDecPoint(',');
    const char* asWritten[] = {"1.5", "-0.125e2", "1.2.3", ".5", "2.5e-320"};
    for (const char* text : asWritten) {
        parser.ParseForToken(in);
        EXPECT_EQ(parser.GetToken().type, TokenFloat) << text;
        EXPECT_EQ(Bits(parser.GetToken().dvalue), Bits(PlainStrtod(text))) << text;
    }
    // With the comma as decimal point a "." is not one: the integer conversion stops there.
    parser.ParseForToken(in);
    EXPECT_EQ(parser.GetToken().type, TokenInt);
    EXPECT_EQ(parser.GetToken().ivalue, 1);
    EXPECT_EQ(parser.GetToken().dvalue, 1.0);
}

// Digits are scanned in runs; a digit that the character table or the decimal point makes
// special must still end the run or become the point.
TEST(TokenizerNumbers, DigitsWithASpecialMeaning) {
    {
        std::istringstream in("1525 33 5\n");
        OvParser parser;
        parser.SetDecPoint('5');
        parser.ParseForToken(in);
        EXPECT_EQ(parser.GetToken().type, TokenFloat);
        EXPECT_STREQ(parser.GetToken().text, "1.2.");
        EXPECT_EQ(parser.GetToken().dvalue, 1.2);
        parser.ParseForToken(in);
        EXPECT_EQ(parser.GetToken().type, TokenInt);
        EXPECT_EQ(parser.GetToken().ivalue, 33);
        parser.ParseForToken(in);
        EXPECT_EQ(parser.GetToken().type, TokenOther);  // a point without digits
        EXPECT_STREQ(parser.GetToken().text, ".");
    }
    {
        std::istringstream in("12734.5 170\n");
        OvParser parser;
        parser.SetTokenseperator('7', true);
        const char* texts[] = {"12", "34.5", "1", "0"};
        for (const char* text : texts) {
            parser.ParseForToken(in);
            EXPECT_STREQ(parser.GetToken().text, text);
        }
    }
    {
        // A digit made a block end is left in the text like "}": the conversion reads on.
        std::istringstream in("1.2925\n");
        OvParser parser;
        parser.GetChLookup().SetFlags('9', ChBlockEnd);
        parser.ParseForToken(in);
        EXPECT_EQ(parser.GetToken().type, TokenFloat);
        EXPECT_STREQ(parser.GetToken().text, "1.2925");
        EXPECT_EQ(Bits(parser.GetToken().dvalue), Bits(PlainStrtod("1.2925")));
        parser.ParseForToken(in);
        EXPECT_EQ(parser.GetToken().type, TokenBlockEnd);
        parser.ParseForToken(in);
        EXPECT_EQ(parser.GetToken().type, TokenInt);
        EXPECT_EQ(parser.GetToken().ivalue, 25);
    }
}

TEST(TokenizerNumbers, ConversionLeavesErrnoAlone) {
    std::istringstream in("1e400 1e-400 4e-320 99999999999999999999999 -1e99999\n");
    OvParser parser;
    for (int i = 0; i < 5; ++i) {
        errno = 0;
        parser.ParseForToken(in);
        EXPECT_EQ(errno, 0) << parser.GetToken().text;
    }
}

}  // namespace
}  // namespace orvo
