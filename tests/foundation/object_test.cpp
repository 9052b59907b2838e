#include "orvo/foundation/object.h"

#include <gtest/gtest.h>

#include <sstream>

namespace orvo {
namespace {

TEST(Object, ConstructionAndAccessors) {
    OvObject none;
    EXPECT_EQ(none.GetId(), 0u);
    EXPECT_TRUE(none.GetName().empty());
    OvObject named(String("Pt"));
    EXPECT_EQ(named.GetId(), 0u);
    EXPECT_STREQ(named.GetName().chars(), "Pt");
    OvObject both(7, String("seven"));
    both.SetId(8);
    both.SetName(String("eight"));
    EXPECT_EQ(both.GetId(), 8u);
    EXPECT_STREQ(both.GetName().chars(), "eight");
    OvObject copy(both);
    EXPECT_EQ(copy.GetId(), 8u);
    EXPECT_STREQ(copy.GetName().chars(), "eight");
}

TEST(Object, CompareIsOneWhenThisIdIsSmaller) {
    const OvObject five(5);
    EXPECT_EQ(five.Compare(6u), 1);
    EXPECT_EQ(five.Compare(5u), 0);
    EXPECT_EQ(five.Compare(4u), -1);
    const OvObject six(6);
    EXPECT_EQ(five.Compare(&six), 1);
    EXPECT_EQ(six.Compare(&five), -1);
    EXPECT_EQ(five.Compare(static_cast<const OvObject*>(nullptr)), 0);
    const OvObject big(0xFFFFFFFFu);
    EXPECT_EQ(five.Compare(&big), 1);  // unsigned: no wrap-around

    const OvListnode a(1), b(2);
    EXPECT_EQ(a.Compare(&b), 1);
    EXPECT_EQ(b.Compare(&a), -1);
    EXPECT_EQ(a.Compare(&a), 0);
    EXPECT_EQ(a.Compare(static_cast<const OvBaseListnode*>(&b)), 1);  // the untyped order
    EXPECT_EQ(b.Compare(static_cast<const OvBaseListnode*>(&a)), 1);
}

TEST(Object, WriteStoresTheIdAndTheQuotedName) {
    std::ostringstream out;
    OvObject(12, String("Kamera A")).Write(out);
    EXPECT_EQ(out.str(), "   12 \"Kamera A\"");

    std::ostringstream wide;
    wide << std::left;
    OvObject(123456, String()).Write(wide) << 'x';
    EXPECT_EQ(wide.str(), " 123456 \"\"x");
    EXPECT_TRUE(wide.flags() & std::ios::left);  // the caller's stream state is kept
}

TEST(Listnode, CopiesAreUnlinkedAndAssignmentKeepsLinks) {
    OvListnode a(1, String("a"));
    OvListnode b(2, String("b"));
    OvListnode c(a);
    EXPECT_EQ(c.GetNext(), nullptr);
    EXPECT_EQ(c.GetPrev(), nullptr);
    EXPECT_EQ(c.GetId(), 1u);
    b = a;
    EXPECT_EQ(b.GetId(), 1u);
    EXPECT_STREQ(b.GetName().chars(), "a");
    b.Init();
    EXPECT_EQ(b.GetNext(), nullptr);
}

TEST(Flag, SetClearToggleAndTest) {
    OvFlag f;
    EXPECT_EQ(f.GetFlag(), 0u);
    EXPECT_EQ(f.SetFlag(0x21), 0x21u);
    EXPECT_EQ(f.SetFlag(0x100), 0x121u);
    EXPECT_EQ(f.ClearFlag(0x01), 0x120u);
    EXPECT_EQ(f.ToggleFlag(0x101), 0x021u);
    EXPECT_EQ(f.IsFlagSet(0x030), 0x020u);
    EXPECT_EQ(f.IsFlagSet(0x200), 0u);
    OvFlag high(0x80000000u);
    EXPECT_EQ(high.ToggleFlag(0xFFFFFFFFu), 0x7FFFFFFFu);
}

}  // namespace
}  // namespace orvo
