// What the writing conventions produce, the tokenizer reads back: same tokens, same numbers.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "orvo/textfile/tokenizer.h"
#include "orvo/textfile/writer.h"
#include "tokenizer_test_support.h"

namespace orvo {
namespace {

using test::ParseAll;
using test::ParseResult;

// Doubles as the data classes write them: a width manipulator, then the value in the stream's
// general notation with the writer's precision.
std::string WriteNumbers(const std::vector<double>& values, std::streamsize precision,
                         std::ostream& (*width)(std::ostream&)) {
    std::ostringstream out;
    out.precision(precision);
    for (double value : values)
        out << width << value;
    return out.str();
}

bool IsWholeNumberText(const std::string& text) {
    return text.find_first_of(".eE") == std::string::npos;
}

const std::vector<double>& SampleValues() {
    static const std::vector<double> values = {
        0.0,
        -0.0,
        1.0,
        -7.0,
        2147483647.0,
        2147483648.0,
        -2147483649.0,
        3e9,
        4294967296.0,
        -98765432109.0,
        1e15,
        -1e15,
        9007199254740992.0,  // 2^53: sixteen digits, still written without exponent
        1e16,
        1e20,
        0.5,
        -0.125,
        0.1,
        1.0 / 3.0,
        24.314752,
        -0.00020417,
        3.6028e-07,
        6.02214076e23,
        -1.797693134862315e308,  // the largest 16-digit value below the double maximum
        std::numeric_limits<double>::denorm_min(),
        std::numeric_limits<double>::min(),
    };
    return values;
}

// `relativeTolerance` bounds the rounding to `precision` significant digits; whole numbers
// must come back exactly, and at least `minWholeNumbers` of the sample are written as such.
void ExpectReadBack(std::streamsize precision, std::ostream& (*width)(std::ostream&),
                    double relativeTolerance, std::size_t minWholeNumbers) {
    const std::vector<double>& values = SampleValues();
    const std::string written = WriteNumbers(values, precision, width);
    ParseResult r = ParseAll(written);
    ASSERT_TRUE(r.errors.empty()) << written;
    ASSERT_EQ(r.tokens.size(), values.size()) << written;
    std::size_t wholeNumbers = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const test::SeenToken& token = r.tokens[i];
        const double value = values[i];
        if (IsWholeNumberText(token.text)) {
            // No decimal point and no exponent: an integer token that must give back the very
            // same double, sign of zero included.
            ++wholeNumbers;
            EXPECT_EQ(token.type, TokenInt) << token.text;
            EXPECT_EQ(token.number, value) << token.text;
            EXPECT_EQ(std::signbit(token.number), std::signbit(value)) << token.text;
            const double clamped = std::fmax(-2147483648.0, std::fmin(2147483647.0, value));
            EXPECT_EQ(static_cast<double>(token.ivalue), clamped) << token.text;
        } else {
            EXPECT_EQ(token.type, TokenFloat) << token.text;
            EXPECT_LE(std::fabs(token.number - value), relativeTolerance * std::fabs(value))
                << token.text;
        }
    }
    EXPECT_GE(wholeNumbers, minWholeNumbers) << written;
}

TEST(TokenizerRoundTrip, PointPrecisionNumbersReadBack) {
    // With 16 digits the whole numbers up to 2^53 are written without exponent, those beyond
    // 32 bits included.
    ExpectReadBack(16, w16, 1e-15, 13);
    ExpectReadBack(16, w19, 1e-15, 13);
}

TEST(TokenizerRoundTrip, CameraPrecisionNumbersReadBack) {
    ExpectReadBack(8, w14, 5e-8, 4);
}

TEST(TokenizerRoundTrip, AWholeNumberBeyond32BitsIsWrittenPlainAndReadExactly) {
    std::ostringstream out;
    out.precision(16);
    out << w16 << 1e15;
    EXPECT_EQ(out.str(), "      1000000000000000");
    ParseResult r = ParseAll(out.str());
    ASSERT_EQ(r.tokens.size(), 1u);
    EXPECT_EQ(r.tokens[0].type, TokenInt);
    EXPECT_EQ(r.tokens[0].ivalue, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(r.tokens[0].number, 1e15);
}

TEST(TokenizerRoundTrip, AWrittenBlockReadsBackAsItsTokens) {
    OvWriterReset();
    std::ostringstream out;
    out.precision(16);
    out << s12 << "PHOTO" << OvBeginBlockNL;
    out << s12 << "PHOTOID" << w4 << "{" << w4 << 12 << " \"north 1.tif\""
        << "}" << Ovendl;
    out << s12 << "COMMENT" << w4 << "\"a; b! {c}\"" << Ovendl;
    out << s12 << "SCALE" << w6 << 0.0125 << Ovendl;
    out << s12 << "DIGIREGION" << w4 << "{" << w16 << -1.5 << w16 << 4e10 << "}" << Ovendl;
    out << OvComment << "written by the test" << Ovendl;
    out << s12 << "MAINRESTRAFO" << Ovendl << OvBeginBlockNL << 1 << Ovendl;
    out << w19 << 1.0 << w19 << 2.5e-9 << OvEndBlockNL << OvEndBlockNL;
    ASSERT_EQ(OvWriterLevel(), 0);

    ParseResult r = ParseAll(out.str());
    ASSERT_TRUE(r.errors.empty()) << out.str();
    const std::vector<eOvTokentype> kinds = {
        TokenKeyword,  TokenBlockBegin,                                          // PHOTO {
        TokenKeyword,  TokenBlockBegin, TokenInt,   TokenString, TokenBlockEnd,  // PHOTOID
        TokenKeyword,  TokenString,                                              // COMMENT
        TokenKeyword,  TokenFloat,                                               // SCALE
        TokenKeyword,  TokenBlockBegin, TokenFloat, TokenInt,    TokenBlockEnd,  // DIGIREGION
        TokenKeyword,  TokenBlockBegin, TokenInt,   TokenInt,    TokenFloat,     // MAINRESTRAFO
        TokenBlockEnd, TokenBlockEnd,
    };
    EXPECT_EQ(test::Types(r), kinds) << out.str();
    ASSERT_EQ(r.tokens.size(), kinds.size());
    EXPECT_EQ(r.tokens[0].text, "PHOTO");
    EXPECT_EQ(r.tokens[4].ivalue, 12);
    EXPECT_EQ(r.tokens[5].text, "north 1.tif");
    EXPECT_EQ(r.tokens[8].text, "a; b! {c}");
    EXPECT_EQ(r.tokens[10].number, 0.0125);
    EXPECT_EQ(r.tokens[13].number, -1.5);
    EXPECT_EQ(r.tokens[14].number, 4e10);
    EXPECT_EQ(r.tokens[18].ivalue, 1);
    EXPECT_EQ(r.tokens[19].number, 1.0);
    EXPECT_EQ(r.tokens[20].number, 2.5e-9);
    // The comment line is skipped but counted: MAINRESTRAFO stands on line 7.
    EXPECT_EQ(r.tokens[16].line, 7u);
}

}  // namespace
}  // namespace orvo
