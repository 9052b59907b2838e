// OvTrafo2d in the project files: the exact written text, reading both file forms, round trips
// and damaged blocks.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <string>

#include "orvo/foundation/link.h"
#include "orvo/numerics/trafo2d.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

// A blank and the text right-aligned in 24 characters: what `w19` makes of a value.
std::string Field(const std::string& text) {
    return " " + std::string(24 - text.size(), ' ') + text;
}

// Binds "TRAFO" and "TRAFOV50" blocks to a transformation, and "AFTER" to an int that shows
// whether the reader went on behind the block.
class Holder : public LinkHdl {
public:
    std::int32_t OnTrafo(void* arg) {
        auto* object = static_cast<OvReaderObject*>(arg);
        EXPECT_EQ(trafo.Read(object), 1);
        object->DoProcess();
        return 1;
    }
    std::int32_t OnTrafoV50(void* arg) {
        auto* object = static_cast<OvReaderObject*>(arg);
        EXPECT_EQ(trafo.ReadV50(object), 1);
        object->DoProcess();
        return 1;
    }

    // Counts the parser errors and lets the reader go on.
    std::int32_t OnError(void*) {
        ++errors;
        return 1;
    }

    // Reads `text`; returns the number of parser errors met.
    int Read(const std::string& text) {
        std::istringstream in(text);
        OvReader reader(in, "memory");
        reader.SetParserErrorHdl(MakeLink(this, &Holder::OnError));
        reader.RegisterObject(OvReaderObject("TRAFO", MakeLink(this, &Holder::OnTrafo)));
        reader.RegisterObject(OvReaderObject("TRAFOV50", MakeLink(this, &Holder::OnTrafoV50)));
        reader.RegisterObject(OvReaderObject("AFTER", &after));
        reader.DoProcess(false);
        return errors;
    }

    OvTrafo2d trafo;
    int after = 0;
    int errors = 0;
};

std::string Written(const OvTrafo2d& t) {
    OvWriterReset();
    std::ostringstream out;
    t.Write(out);
    return out.str();
}

// What a record writer makes of a transformation: keyword, block, the transformation, block end.
std::string WrittenBlock(const OvTrafo2d& t) {
    OvWriterReset();
    std::ostringstream out;
    out << s12 << "TRAFO" << OvBeginBlockNL;
    t.Write(out);
    out << OvEndBlockNL << Ovendl << s12 << "AFTER" << w4 << 1 << Ovendl;
    return out.str();
}

TEST(Trafo2dWrite, HelmertText) {
    OvTrafo2d t;
    t.SetType(eOvTrafo2DHelmert);
    t.SetParam(0, 12.5);
    t.SetParam(1, 0.1234567890123456789);
    t.SetParam(2, -3.0);
    t.SetParam(3, 1e25);
    t.SetParam(4, 99.0);  // beyond the Helmert's four: not written
    EXPECT_EQ(Written(t), "1\n" + Field("12.5") + Field("0.1234567890123457") + Field("-3") +
                              Field("1e+25") + "\n");
}

TEST(Trafo2dWrite, FourValuesPerLineAndTheBlockIndentation) {
    OvTrafo2d t;
    t.SetType(eOvTrafo2DAffin);
    for (int i = 0; i < 6; ++i)
        t.SetParam(i, i + 1);
    OvWriterReset();
    std::ostringstream out;
    out << OvTabPlus;
    t.Write(out);
    EXPECT_EQ(out.str(), "2\n    " + Field("1") + Field("2") + Field("3") + Field("4") + "\n    " +
                             Field("5") + Field("6"));
    OvWriterReset();
}

TEST(Trafo2dWrite, PolynomialOnFiveLinesOfFour) {
    OvTrafo2d t;
    t.SetType(eOvTrafo2DPolynomial);
    for (int i = 0; i < 20; ++i)
        t.SetParam(i, 0.5 * i);
    std::string expected = "4\n";
    for (int line = 0; line < 5; ++line) {
        for (int k = 0; k < 4; ++k) {
            std::ostringstream value;
            value << 0.5 * (4 * line + k);
            expected += Field(value.str());
        }
        expected += "\n";
    }
    EXPECT_EQ(Written(t), expected);
}

TEST(Trafo2dWrite, TypesWithoutParametersWriteTheCodeOnly) {
    OvTrafo2d t;
    t.SetParam(0, 5.0);
    EXPECT_EQ(Written(t), "0\n");
    t.SetType(eOvTrafo2DInvHelmert);
    EXPECT_EQ(Written(t), "5\n");
    t.SetType(static_cast<eOvTrafo2DType>(-7));
    EXPECT_EQ(Written(t), "-7\n");
}

TEST(Trafo2dWrite, NonFiniteParametersStayReadable) {
    OvTrafo2d t;
    t.SetType(eOvTrafo2DHelmert);
    t.SetParam(0, std::nan(""));
    t.SetParam(1, -std::numeric_limits<double>::infinity());
    t.SetParam(2, 2.5);
    t.SetParam(3, -std::nan(""));
    EXPECT_EQ(Written(t), "1\n" + Field("nan") + Field("nan") + Field("2.5") + Field("nan") + "\n");
    Holder holder;
    EXPECT_EQ(holder.Read(WrittenBlock(t)), 0);
    EXPECT_EQ(holder.trafo.GetType(), eOvTrafo2DHelmert);
    EXPECT_EQ(holder.trafo.GetParam(0), 0.0);
    EXPECT_EQ(holder.trafo.GetParam(1), 0.0);
    EXPECT_EQ(holder.trafo.GetParam(2), 2.5);
    EXPECT_EQ(holder.trafo.GetParam(3), 0.0);
    EXPECT_EQ(holder.after, 1);
}

TEST(Trafo2dWrite, FuzzInputWithAnInfiniteParameterRoundTrips) {
    // Found by the fuzz target: -1e730 reads as minus infinity, which was written as "-inf",
    // a malformed number that stopped the reading of the written block.
    const std::string input =
        "TRAFO { 3 1 2 \"three\" 4 }\nTRAFOC{ 1.5 }\nTRAFO { -7 1 2  }\nTRAFOC{ 1.5 }\n"
        "TRAFO { -7 1 2 }\nTRAFO { 4 1e308 -1e307 4.9e\377\377\377\010-3}\n"
        "TRAFO { 4 1e308 -1e730 4.9e\377\377\377\010-324\n";
    Holder first;
    first.Read(input);
    ASSERT_EQ(first.trafo.GetType(), eOvTrafo2DPolynomial);
    EXPECT_EQ(first.trafo.GetParam(0), 1e308);
    EXPECT_EQ(first.trafo.GetParam(1), -std::numeric_limits<double>::infinity());
    Holder second;
    EXPECT_EQ(second.Read(WrittenBlock(first.trafo)), 0);
    EXPECT_EQ(second.trafo.GetType(), eOvTrafo2DPolynomial);
    EXPECT_EQ(second.trafo.GetParam(0), 1e308);
    EXPECT_EQ(second.trafo.GetParam(1), 0.0);
    for (int i = 2; i < 20; ++i)
        EXPECT_EQ(second.trafo.GetParam(i), first.trafo.GetParam(i)) << i;
    EXPECT_EQ(second.after, 1);
}

TEST(Trafo2dWrite, RestoresTheStreamFormat) {
    OvTrafo2d t;
    t.SetIdent();
    std::ostringstream out;
    out.precision(3);
    out.setf(std::ios_base::fixed, std::ios_base::floatfield);
    t.Write(out);
    EXPECT_EQ(out.precision(), 3);
    EXPECT_TRUE(out.flags() & std::ios_base::fixed);
    EXPECT_NE(out.str().find(Field("1") + Field("0")), std::string::npos) << out.str();
}

TEST(Trafo2dRead, RoundTripOfEveryType) {
    for (eOvTrafo2DType type :
         {eOvTrafo2DHelmert, eOvTrafo2DAffin, eOvTrafo2DProjektiv, eOvTrafo2DPolynomial}) {
        OvTrafo2d t;
        t.SetType(type);
        // Values given with at most 15 significant digits come back exactly.
        const char* values[] = {"4512345.678901",    "-0.000123456789012", "1e-300",  "-7",
                                "0.999876543210987", "123456789012345",    "-2.5e17", "3.14159"};
        for (int i = 0; i < t.GetParamCount(); ++i)
            t.SetParam(i, std::stod(values[i % 8]) * (i < 8 ? 1.0 : 0.5));
        t.SetParam(1, -0.0);
        Holder holder;
        ASSERT_EQ(holder.Read(WrittenBlock(t)), 0) << WrittenBlock(t);
        EXPECT_EQ(holder.trafo.GetType(), type);
        for (int i = 0; i < OvTrafo2d::kMaxParams; ++i)
            EXPECT_EQ(holder.trafo.GetParam(i), t.GetParam(i)) << OvTrafo2DName(type) << " p" << i;
        EXPECT_TRUE(std::signbit(holder.trafo.GetParam(1)));
        EXPECT_EQ(holder.after, 1);
    }
}

TEST(Trafo2dRead, NumbersMayBeIntegersAndOtherTokensReadZero) {
    Holder holder;
    EXPECT_EQ(holder.Read("TRAFO { 2 7 1.5 \"text\" -4 word 6e1 } AFTER 3"), 0);
    const double expected[] = {7.0, 1.5, 0.0, -4.0, 0.0, 60.0};
    EXPECT_EQ(holder.trafo.GetType(), eOvTrafo2DAffin);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(holder.trafo.GetParam(i), expected[i]) << i;
    EXPECT_EQ(holder.after, 3);
}

TEST(Trafo2dRead, BlockEndingEarlyZeroesTheRestAndReadingGoesOn) {
    Holder holder;
    for (int i = 0; i < OvTrafo2d::kMaxParams; ++i)
        holder.trafo.SetParam(i, 9.0);
    EXPECT_EQ(holder.Read("TRAFO { 3 1 2 3 }\nAFTER 4\n"), 0);
    EXPECT_EQ(holder.trafo.GetType(), eOvTrafo2DProjektiv);
    EXPECT_EQ(holder.trafo.GetParam(2), 3.0);
    for (int i = 3; i < 8; ++i)
        EXPECT_EQ(holder.trafo.GetParam(i), 0.0) << i;
    EXPECT_EQ(holder.trafo.GetParam(8), 9.0);  // beyond the Projektiv's eight: untouched
    EXPECT_EQ(holder.after, 4);

    Holder atEnd;
    EXPECT_EQ(atEnd.Read("TRAFO { 1 5 6"), 0);
    EXPECT_EQ(atEnd.trafo.GetType(), eOvTrafo2DHelmert);
    EXPECT_EQ(atEnd.trafo.GetParam(0), 5.0);
    EXPECT_EQ(atEnd.trafo.GetParam(1), 6.0);
    EXPECT_EQ(atEnd.trafo.GetParam(2), 0.0);
}

TEST(Trafo2dRead, UnknownCodeIsStoredWithoutNumbers) {
    Holder holder;
    holder.trafo.SetParam(0, 8.0);
    // The numbers after the code are not the transformation's; the block reader reports them.
    EXPECT_EQ(holder.Read("TRAFO { 9 1 2 } AFTER 5"), 2);
    EXPECT_EQ(holder.trafo.GetType(), static_cast<eOvTrafo2DType>(9));
    EXPECT_EQ(holder.trafo.GetParam(0), 8.0);
    EXPECT_EQ(holder.after, 5);

    Holder none;
    EXPECT_EQ(none.Read("TRAFO { 0 } AFTER 5"), 0);
    EXPECT_EQ(none.trafo.GetType(), eOvTrafo2DNone);
    EXPECT_EQ(none.after, 5);
}

TEST(Trafo2dRead, CodeMustBeAnInteger) {
    Holder holder;
    holder.trafo.SetIdent();
    // The error is the code's; the four numbers then reach the block reader as stray tokens.
    EXPECT_EQ(holder.Read("TRAFO { 1.0 1 2 3 4 } AFTER 6"), 5);
    EXPECT_EQ(holder.trafo.GetType(), eOvTrafo2DHelmert);
    EXPECT_EQ(holder.trafo.GetParam(1), 1.0);
    EXPECT_EQ(holder.trafo.GetParam(0), 0.0);
}

TEST(Trafo2dReadV50, OldCodesRunTheOtherWayRound) {
    struct Case {
        int code;
        eOvTrafo2DType type;
        int count;
    };
    for (const Case& c : {Case{0, eOvTrafo2DProjektiv, 8}, Case{1, eOvTrafo2DAffin, 6},
                          Case{2, eOvTrafo2DHelmert, 4}, Case{3, eOvTrafo2DPolynomial, 20}}) {
        std::string text = "TRAFOV50 { " + std::to_string(c.code);
        for (int i = 0; i < c.count; ++i)
            text += " " + std::to_string(i + 1);
        text += " } AFTER 7";
        Holder holder;
        EXPECT_EQ(holder.Read(text), 0) << text;
        EXPECT_EQ(holder.trafo.GetType(), c.type);
        for (int i = 0; i < c.count; ++i)
            EXPECT_EQ(holder.trafo.GetParam(i), i + 1.0);
        EXPECT_EQ(holder.after, 7);
    }
}

TEST(Trafo2dReadV50, UnknownCodeKeepsTheType) {
    Holder holder;
    holder.trafo.SetIdent();
    holder.trafo.SetParam(0, 3.5);
    EXPECT_EQ(holder.Read("TRAFOV50 { 4 } AFTER 8"), 0);
    EXPECT_EQ(holder.trafo.GetType(), eOvTrafo2DHelmert);
    EXPECT_EQ(holder.trafo.GetParam(0), 3.5);
    EXPECT_EQ(holder.after, 8);
}

TEST(Trafo2dRead, ObjectWithoutReaderReadsNothing) {
    OvTrafo2d t;
    OvReaderObject detached;
    EXPECT_EQ(t.Read(&detached), 1);
    EXPECT_EQ(t.ReadV50(&detached), 1);
    EXPECT_EQ(t.Read(nullptr), 1);
    EXPECT_EQ(t.GetType(), eOvTrafo2DNone);
}

}  // namespace
}  // namespace orvo
