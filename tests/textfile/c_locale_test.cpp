// OvCLocale switches the C library's locale and always restores all categories.
#include <gtest/gtest.h>

#include <clocale>
#include <string>

#include "orvo/textfile/c_locale.h"

namespace orvo {
namespace {

// A second locale to switch between; the test is skipped where none is installed.
const char* OtherLocale() {
    for (const char* name : {"C.UTF-8", "C.utf8", "POSIX", "en_US.UTF-8"}) {
        const std::string before = std::setlocale(LC_ALL, nullptr);
        const char* set = std::setlocale(LC_ALL, name);
        const bool usable = set != nullptr && std::string(set) != "C";
        std::setlocale(LC_ALL, before.c_str());
        if (usable) return name;
    }
    return nullptr;
}

std::string Current(int category) {
    return std::setlocale(category, nullptr);
}

class CLocaleTest : public ::testing::Test {
protected:
    void SetUp() override { original = Current(LC_ALL); }
    void TearDown() override { std::setlocale(LC_ALL, original.c_str()); }
    std::string original;
};

TEST_F(CLocaleTest, DefaultSwitchesEverythingToCAndRestores) {
    const char* other = OtherLocale();
    if (other == nullptr) GTEST_SKIP() << "no second locale installed";
    ASSERT_NE(std::setlocale(LC_ALL, other), nullptr);
    const std::string outside = Current(LC_ALL);
    {
        OvCLocale guard;
        EXPECT_EQ(Current(LC_ALL), "C");
        EXPECT_EQ(std::string(guard.GetSaved().chars()), outside);
    }
    EXPECT_EQ(Current(LC_ALL), outside);
}

TEST_F(CLocaleTest, RestoresAllCategoriesWhateverCategoryChanged) {
    const char* other = OtherLocale();
    if (other == nullptr) GTEST_SKIP() << "no second locale installed";
    std::setlocale(LC_ALL, "C");
    {
        OvCLocale guard(LC_NUMERIC, other);
        EXPECT_NE(Current(LC_NUMERIC), "C");
        EXPECT_EQ(Current(LC_CTYPE), "C");
        // Something else changes another category meanwhile; it is undone too.
        std::setlocale(LC_CTYPE, other);
    }
    EXPECT_EQ(Current(LC_ALL), "C");
}

TEST_F(CLocaleTest, CopiesCarryTheSavedNameOnly) {
    std::setlocale(LC_ALL, "C");
    OvCLocale first;
    const OvCLocale copy(first);
    EXPECT_EQ(copy.GetSaved(), first.GetSaved());
    EXPECT_EQ(Current(LC_ALL), "C");
    OvCLocale assigned(LC_NUMERIC, "C");
    assigned = first;
    EXPECT_EQ(assigned.GetSaved(), "C");
    EXPECT_EQ(Current(LC_ALL), "C");
}

TEST_F(CLocaleTest, DecimalPointIsADotUnderTheGuard) {
    OvCLocale guard;
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", 1.5);
    EXPECT_STREQ(text, "1.50");
}

}  // namespace
}  // namespace orvo
