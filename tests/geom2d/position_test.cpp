#include "orvo/geom2d/position.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

std::string Field21(const std::string& text) {
    return " " + std::string(21 - text.size(), ' ') + text;
}

TEST(PositionTest, ConstructionAndCopy) {
    const OvPosition origin;
    EXPECT_EQ(origin.GetX(), 0);
    EXPECT_EQ(origin.GetY(), 0);
    OvPosition p(1.5, -2.25);
    EXPECT_EQ(p.GetX(), 1.5);
    EXPECT_EQ(p.GetY(), -2.25);
    EXPECT_EQ(p.GetZ(), 0);
    OvPosition q(p);
    EXPECT_EQ(q.GetY(), -2.25);
    q = OvPosition(7, 8);
    EXPECT_EQ(q.GetX(), 7);
}

TEST(PositionTest, WritesXAndYOnly) {
    OvWriterReset();
    OvPosition p(1.5, -2);
    p.SetZ(99);
    p.SetId(42);
    std::ostringstream out;
    p.Write(out);
    EXPECT_EQ(out.str(), Field21("1.5") + Field21("-2"));
}

TEST(PositionTest, WritesSixteenSignificantDigits) {
    OvWriterReset();
    std::ostringstream out;
    OvPosition(2.0 / 3.0, 1e-7).Write(out);
    EXPECT_EQ(out.str(), Field21("0.6666666666666666") + Field21("1e-07"));
}

}  // namespace
}  // namespace orvo
