// The column format table and its header line.
#include "orvo/model/format_table.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

using Table = TOvFormatTable<eOvPointRWMask>;

// A blank, then the text right-aligned in a field of the given width.
std::string Field(const std::string& text, std::size_t width) {
    return " " + std::string(width > text.size() ? width - text.size() : 0, ' ') + text;
}

std::string Header(const Table& table) {
    std::ostringstream out;
    out << table;
    return out.str();
}

TEST(TOvFormatTable, EmptyTable) {
    Table table;
    EXPECT_EQ(table.Size(), 0);
    EXPECT_EQ(table.HasEntry(eOvPointRWId), -1);
    EXPECT_EQ(table[0], eOvPointRWEnd);
    EXPECT_EQ(table[-1], eOvPointRWEnd);
    EXPECT_EQ(Header(table), "");
}

TEST(TOvFormatTable, FromZeroTerminatedArray) {
    const eOvPointRWMask codes[] = {eOvPointRWId, eOvPointRWX, eOvPointRWEnd, eOvPointRWY,
                                    eOvPointRWEnd};
    Table table(codes);
    ASSERT_EQ(table.Size(), 2);  // stops at the first 0
    EXPECT_EQ(table[0], eOvPointRWId);
    EXPECT_EQ(table[1], eOvPointRWX);
    EXPECT_EQ(table[2], eOvPointRWEnd);  // operator[](count) is 0
    EXPECT_EQ(table.HasEntry(eOvPointRWX), 1);
    EXPECT_EQ(table.HasEntry(eOvPointRWY), -1);

    const eOvPointRWMask startsWithZero[] = {eOvPointRWEnd, eOvPointRWId};
    table.SetTable(startsWithZero);
    EXPECT_EQ(table.Size(), 0);

    table = codes;
    EXPECT_EQ(table.Size(), 2);
    table.SetTable(static_cast<const eOvPointRWMask*>(nullptr));
    EXPECT_EQ(table.Size(), 0);
}

TEST(TOvFormatTable, CopyAssignAndDelete) {
    const eOvPointRWMask codes[] = {eOvPointRWZ, eOvPointRWY, eOvPointRWZ, eOvPointRWEnd};
    Table a(codes);
    EXPECT_EQ(a.HasEntry(eOvPointRWZ), 0);  // the first of two equal entries
    Table b(a);
    EXPECT_TRUE(b == a);
    Table c;
    c = a;
    EXPECT_EQ(c.Size(), 3);
    c.SetTable(Table());
    EXPECT_EQ(c.Size(), 0);
    a.DelTable();
    EXPECT_EQ(a.Size(), 0);
    EXPECT_EQ(b.Size(), 3);  // copies are independent
}

TEST(TOvFormatTable, UnnamedCodesAreValidValues) {
    Table table;
    table.AddEntry(static_cast<eOvPointRWMask>(999));
    table.AddEntry(eOvPointRWId);
    EXPECT_EQ(table.HasEntry(static_cast<eOvPointRWMask>(999)), 0);
    EXPECT_EQ(static_cast<std::uint32_t>(table[0]), 999u);
}

TEST(TOvFormatTableHeader, EveryLabelWithItsWidth) {
    const eOvPointRWMask codes[] = {
        eOvPointRWId,        eOvPointRWCode123,   eOvPointRWCode,      eOvPointRWName,
        eOvPointRWPhoto,     eOvPointRWCamera,    eOvPointRWX,         eOvPointRWY,
        eOvPointRWZ,         eOvPointRWDx,        eOvPointRWDy,        eOvPointRWDz,
        eOvPointRWDs,        eOvPointRWRedu,      eOvPointRWRedu2,     eOvPointRWRedu3,
        eOvPointRWSkip,      eOvPointRWSx,        eOvPointRWSy,        eOvPointRWSz,
        eOvPointRWResidualX, eOvPointRWResidualY, eOvPointRWResidualZ, eOvPointRWEnd};
    const std::string expected =
        Field("#", 10) + Field("Code", 4) + Field("Code", 4) + Field("PP", 10) +
        Field("Photo", 10) + Field("Camera", 10) + Field("   X", 21) + Field("   Y", 21) +
        Field("   Z", 21) + Field("  dx", 24) + Field("  dy", 24) + Field("  dz", 24) +
        Field("  dS", 24) + Field("Redu", 24) + Field("Redu2", 24) + Field("Redu3", 24) +
        Field("  Sx", 24) + Field("  Sy", 24) + Field("  Sz", 24) + Field("Residual x", 24) +
        Field("Residual y", 24) + Field("Residual z", 24);
    EXPECT_EQ(Header(Table(codes)), expected);
}

TEST(TOvFormatTableHeader, LiteralShortHeader) {
    const eOvPointRWMask codes[] = {eOvPointRWId, eOvPointRWX, eOvPointRWEnd};
    EXPECT_EQ(Header(Table(codes)), "          #                     X");
}

TEST(TOvFormatTableHeader, UnknownCodesWriteNothingAndZeroEnds) {
    Table table;
    table.AddEntry(static_cast<eOvPointRWMask>(18));
    table.AddEntry(eOvPointRWPhoto);
    table.AddEntry(eOvPointRWSkip);
    table.AddEntry(static_cast<eOvPointRWMask>(108));
    table.AddEntry(eOvPointRWEnd);
    table.AddEntry(eOvPointRWX);
    EXPECT_EQ(Header(table), Field("Photo", 10));
}

}  // namespace
}  // namespace orvo
