#include "orvo/numerics/units.h"

#include <gtest/gtest.h>

#include <cstring>

namespace orvo {
namespace {

TEST(UnitTextTest, NamedUnitsWithAndWithoutBrackets) {
    EXPECT_STREQ(GetOvUnitText(eOvUnitMM, false), "mm");
    EXPECT_STREQ(GetOvUnitText(eOvUnitCM, false), "cm");
    EXPECT_STREQ(GetOvUnitText(eOvUnitM, false), "m");
    EXPECT_STREQ(GetOvUnitText(eOvUnitMM, true), "[mm]");
    EXPECT_STREQ(GetOvUnitText(eOvUnitCM, true), "[cm]");
    EXPECT_STREQ(GetOvUnitText(eOvUnitM, true), "[m]");
}

TEST(UnitTextTest, MicroSignIsOneLatin1Byte) {
    const char* plain = GetOvUnitText(eOvUnitMicron, false);
    ASSERT_EQ(std::strlen(plain), 2u);
    EXPECT_EQ(static_cast<unsigned char>(plain[0]), 0xB5);
    EXPECT_EQ(plain[1], 'm');

    const char* bracketed = GetOvUnitText(eOvUnitMicron, true);
    ASSERT_EQ(std::strlen(bracketed), 4u);
    EXPECT_EQ(bracketed[0], '[');
    EXPECT_EQ(static_cast<unsigned char>(bracketed[1]), 0xB5);
    EXPECT_EQ(bracketed[2], 'm');
    EXPECT_EQ(bracketed[3], ']');
}

TEST(UnitTextTest, ValuesOutsideTheTableGiveQuestionMarks) {
    for (std::int32_t value : {0, 5, 7, -1, 0x7fffffff}) {
        const auto unit = static_cast<eOvUnit>(value);
        EXPECT_STREQ(GetOvUnitText(unit, true), "??") << value;
        EXPECT_STREQ(GetOvUnitText(unit, false), "??") << value;
    }
}

TEST(UnitFactorTest, MetresPerUnit) {
    EXPECT_EQ(GetUnitFactor(eOvUnitMM), 0.001);
    EXPECT_EQ(GetUnitFactor(eOvUnitCM), 0.01);
    EXPECT_EQ(GetUnitFactor(eOvUnitM), 1.0);
    EXPECT_EQ(GetUnitFactor(eOvUnitMicron), 1e-6);
    EXPECT_EQ(GetUnitFactor(static_cast<eOvUnit>(0)), 1.0);
    EXPECT_EQ(GetUnitFactor(static_cast<eOvUnit>(9)), 1.0);
}

// The factor is one division of the two table factors, applied with one multiplication.
TEST(ConvertUnitValueTest, BothDirectionsAgainstTheTableFactors) {
    struct Case {
        eOvUnit from, to;
        double k;
    };
    const Case cases[] = {
        {eOvUnitMM, eOvUnitM, 0.001 / 1.0},       {eOvUnitM, eOvUnitMM, 1.0 / 0.001},
        {eOvUnitMicron, eOvUnitMM, 1e-6 / 0.001}, {eOvUnitMM, eOvUnitMicron, 0.001 / 1e-6},
        {eOvUnitCM, eOvUnitMM, 0.01 / 0.001},     {eOvUnitMM, eOvUnitCM, 0.001 / 0.01},
        {eOvUnitM, eOvUnitCM, 1.0 / 0.01},        {eOvUnitCM, eOvUnitMicron, 0.01 / 1e-6},
    };
    for (const Case& c : cases) {
        double v = 1234.5;
        ConvertUnit(&v, c.from, c.to);
        EXPECT_EQ(v, 1234.5 * c.k) << c.from << " -> " << c.to;
    }
}

TEST(ConvertUnitValueTest, HandComputedValues) {
    double v = 2500.0;
    ConvertUnit(&v, eOvUnitMM, eOvUnitM);
    EXPECT_DOUBLE_EQ(v, 2.5);
    ConvertUnit(&v, eOvUnitM, eOvUnitMM);
    EXPECT_DOUBLE_EQ(v, 2500.0);

    double micro = 1500.0;
    ConvertUnit(&micro, eOvUnitMicron, eOvUnitMM);
    EXPECT_DOUBLE_EQ(micro, 1.5);

    double cm = 12.0;
    ConvertUnit(&cm, eOvUnitCM, eOvUnitMM);
    EXPECT_DOUBLE_EQ(cm, 120.0);
}

TEST(ConvertUnitValueTest, UnknownUnitCountsAsMetres) {
    double v = 3.0;
    ConvertUnit(&v, static_cast<eOvUnit>(7), eOvUnitMM);
    EXPECT_DOUBLE_EQ(v, 3000.0);
    double w = 3000.0;
    ConvertUnit(&w, eOvUnitMM, static_cast<eOvUnit>(0));
    EXPECT_DOUBLE_EQ(w, 3.0);
    double same = -17.25;
    ConvertUnit(&same, eOvUnitM, static_cast<eOvUnit>(-3));
    EXPECT_EQ(same, -17.25);
}

TEST(ConvertUnitValueTest, NullValueIsIgnored) {
    ConvertUnit(static_cast<double*>(nullptr), eOvUnitMM, eOvUnitM);
}

}  // namespace
}  // namespace orvo
