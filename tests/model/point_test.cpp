// The point record: fields, control-point code, ordering, arithmetic, list walk, predicates.
#include "orvo/model/point.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "orvo/model/point_list.h"
#include "orvo/model/point_tripel.h"
#include "orvo/numerics/vector.h"

namespace orvo {
namespace {

OvPoint MakePoint(unsigned id, double x, double y, double z) {
    return OvPoint(id, x, y, z, 0);
}

void SetTriples(OvPoint& p, double d0, double d1, double d2, double r0, double r1, double r2) {
    p.SetD(0, d0);
    p.SetD(1, d1);
    p.SetD(2, d2);
    p.SetR(0, r0);
    p.SetR(1, r1);
    p.SetR(2, r2);
}

TEST(OvPoint, DefaultIsAllZero) {
    OvPoint p;
    EXPECT_EQ(p.GetId(), 0u);
    EXPECT_TRUE(p.GetName().empty());
    EXPECT_EQ(p.GetFlag().IsFlagSet(0xFFFFFFFFu), 0u);
    EXPECT_EQ(p.GetPhotoId(), 0u);
    EXPECT_EQ(p.GetCameraId(), 0u);
    EXPECT_EQ(p.GetControlFlags(), 0);
    EXPECT_EQ(p.GetUserWord1(), 0u);
    EXPECT_EQ(p.GetUserWord2(), 0u);
    EXPECT_EQ(p.GetX(), 0.0);
    EXPECT_EQ(p.GetY(), 0.0);
    EXPECT_EQ(p.GetZ(), 0.0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(p.GetD(i), 0.0);
        EXPECT_EQ(p.GetR(i), 0.0);
    }
}

TEST(OvPoint, CopyAndAssignmentTakeEveryField) {
    OvPoint p(7, 1.0, 2.0, 3.0, 5);
    p.SetName("P7");
    p.GetFlag().SetFlag(0x104);
    p.SetPhotoId(11);
    p.SetCameraId(12);
    p.SetUserWord1(0xDEADBEEF);
    p.SetUserWord2(42);
    SetTriples(p, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6);

    const auto check = [](const OvPoint& q) {
        EXPECT_EQ(q.GetId(), 7u);
        EXPECT_STREQ(q.GetName().chars(), "P7");
        EXPECT_EQ(q.GetFlag().IsFlagSet(0xFFFFFFFFu), 0x104u);
        EXPECT_EQ(q.GetPhotoId(), 11u);
        EXPECT_EQ(q.GetCameraId(), 12u);
        EXPECT_EQ(q.GetControlFlags(), 5);
        EXPECT_EQ(q.GetUserWord1(), 0xDEADBEEFu);
        EXPECT_EQ(q.GetUserWord2(), 42u);
        EXPECT_EQ(q.GetX(), 1.0);
        EXPECT_EQ(q.GetY(), 2.0);
        EXPECT_EQ(q.GetZ(), 3.0);
        EXPECT_EQ(q.GetD(2), 0.3);
        EXPECT_EQ(q.GetR(0), 0.4);
    };
    OvPoint copy(p);
    check(copy);
    OvPoint assigned;
    assigned = p;
    check(assigned);
}

TEST(OvPoint, InitKeepsIdNameAndFlags) {
    OvPoint p(9, 1.0, 2.0, 3.0, 7);
    p.SetName("keep");
    p.GetFlag().SetFlag(0x20);
    p.SetPhotoId(3);
    p.SetCameraId(4);
    p.SetUserWord1(1);
    p.SetUserWord2(2);
    SetTriples(p, 1, 2, 3, 4, 5, 6);
    p.init();
    EXPECT_EQ(p.GetId(), 9u);
    EXPECT_STREQ(p.GetName().chars(), "keep");
    EXPECT_EQ(p.GetFlag().IsFlagSet(0x20), 0x20u);
    EXPECT_EQ(p.GetPhotoId(), 0u);
    EXPECT_EQ(p.GetCameraId(), 0u);
    EXPECT_EQ(p.GetControlFlags(), 0);
    EXPECT_EQ(p.GetUserWord1(), 0u);
    EXPECT_EQ(p.GetUserWord2(), 0u);
    EXPECT_EQ(p.GetX() + p.GetY() + p.GetZ(), 0.0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(p.GetD(i), 0.0);
        EXPECT_EQ(p.GetR(i), 0.0);
    }
}

TEST(OvPointControlCode, TextsOfBothTables) {
    const char* as123[8] = {"  0", "  1", "  2", " 12", "  3", " 13", " 23", "123"};
    const char* asXYZ[8] = {" N ", "X  ", " Y ", "XY ", "  Z", "X Z", " YZ", "XYZ"};
    for (int code = 0; code < 8; ++code) {
        EXPECT_STREQ(OvPoint::GetControlCodeAs123(code), as123[code]) << code;
        EXPECT_STREQ(OvPoint::GetControlCodeAsXYZ(code), asXYZ[code]) << code;
        // Only the three low bits index the tables.
        EXPECT_STREQ(OvPoint::GetControlCodeAs123(code + 8), as123[code]) << code;
        OvPoint p(1, 0, 0, 0, static_cast<short>(code));
        EXPECT_STREQ(p.GetControlFlagsAs123(), as123[code]);
        EXPECT_STREQ(p.GetControlFlagsAsXYZ(), asXYZ[code]);
    }
    EXPECT_STREQ(OvPoint::GetControlCodeAsXYZ(0), " N ");
    EXPECT_STREQ(OvPoint::GetControlCodeAsXYZ(-1), "XYZ");
}

TEST(OvPointControlCode, SetFromText) {
    OvPoint p(1, 0, 0, 0, 7);
    EXPECT_EQ(p.SetAsControlFlag("xZ"), 5);
    EXPECT_EQ(p.GetControlFlags(), 5);
    EXPECT_EQ(p.SetAsControlFlag("Y"), 2);
    EXPECT_EQ(p.SetAsControlFlag("123"), 7);
    EXPECT_EQ(p.SetAsControlFlag("y3"), 6);
    EXPECT_EQ(p.SetAsControlFlag(" N "), 0);
    EXPECT_EQ(p.GetControlFlags(), 0);
    p.SetControlFlags(3);
    EXPECT_EQ(p.SetAsControlFlag(static_cast<const char*>(nullptr)), 0);
    EXPECT_EQ(p.GetControlFlags(), 0);
}

TEST(OvPointControlCode, SetFromNumberDigits) {
    OvPoint p;
    EXPECT_EQ(p.SetAsControlFlag(23), 6);
    EXPECT_EQ(p.SetAsControlFlag(13), 5);
    EXPECT_EQ(p.SetAsControlFlag(123), 7);
    EXPECT_EQ(p.SetAsControlFlag(3), 4);
    EXPECT_EQ(p.SetAsControlFlag(0), 0);
    EXPECT_EQ(p.SetAsControlFlag(456), 0);
    EXPECT_EQ(p.SetAsControlFlag(-21), 3);  // the digits of "-21"
    EXPECT_EQ(p.SetAsControlFlag(7), 0);    // 7 is not a digit of the code, not a bit mask
}

TEST(OvPointControlCode, Predicates) {
    OvPoint p(1, 0, 0, 0, 5);
    EXPECT_NE(p.IsXControlPoint(), 0);
    EXPECT_EQ(p.IsYControlPoint(), 0);
    EXPECT_EQ(p.IsZControlPoint(), 4);
}

TEST(OvPointCompare, SumOfPhotoAndIdDifferences) {
    OvPoint a(3, 0, 0, 0, 0);
    a.SetPhotoId(1);
    OvPoint b(1, 0, 0, 0, 0);
    b.SetPhotoId(2);
    // (1 - 2) + (3 - 1): the two differences are added, not ranked.
    EXPECT_EQ(a.Compare(static_cast<const OvListnode*>(&b)), 1);
    EXPECT_EQ(b.Compare(static_cast<const OvListnode*>(&a)), -1);

    OvPoint c(10, 0, 0, 0, 0);
    c.SetPhotoId(5);
    OvPoint d(15, 0, 0, 0, 0);
    d.SetPhotoId(0);
    EXPECT_EQ(c.Compare(static_cast<const OvListnode*>(&d)), 0);  // 5 + (-5)

    // Through the base class, as the list calls it.
    const OvListnode& base = a;
    EXPECT_EQ(base.Compare(static_cast<const OvListnode*>(&b)), 1);

    // 32-bit wrap: 0 - 0xFFFFFFFF is 1 in unsigned 32-bit arithmetic.
    OvPoint small(0, 0, 0, 0, 0);
    OvPoint large(0xFFFFFFFFu, 0, 0, 0, 0);
    EXPECT_EQ(small.Compare(static_cast<const OvListnode*>(&large)), 1);
}

TEST(OvPointOperators, EqualityLooksAtCoordinatesOnly) {
    OvPoint a(1, 1.0, 2.0, 3.0, 1);
    OvPoint b(2, 1.0, 2.0, 3.0, 7);
    b.SetD(0, 9.0);
    b.SetPhotoId(4);
    EXPECT_TRUE(a == b);
    b.SetZ(3.0000000001);
    EXPECT_FALSE(a == b);
}

TEST(OvPointOperators, Distance) {
    OvPoint a = MakePoint(1, 1.0, 2.0, 3.0);
    OvPoint b = MakePoint(2, 4.0, 6.0, 15.0);
    EXPECT_DOUBLE_EQ(a.Distance(b), 13.0);  // 3, 4, 12
    EXPECT_EQ(a.Distance(a), 0.0);
}

TEST(OvPointOperators, PlusMinusActOnSixValues) {
    OvPoint a(5, 1.0, 2.0, 3.0, 3);
    a.SetName("left");
    a.SetPhotoId(8);
    a.GetFlag().SetFlag(0x40);
    SetTriples(a, 0.5, 0.25, 0.125, 10, 20, 30);
    OvPoint b(6, 10.0, 20.0, 30.0, 4);
    SetTriples(b, 1.0, 2.0, 4.0, 100, 200, 300);

    const OvPoint sum = a + b;
    EXPECT_EQ(sum.GetId(), 5u);
    EXPECT_STREQ(sum.GetName().chars(), "left");
    EXPECT_EQ(sum.GetPhotoId(), 8u);
    EXPECT_EQ(sum.GetControlFlags(), 3);
    EXPECT_EQ(sum.GetFlag().IsFlagSet(0x40), 0x40u);
    EXPECT_EQ(sum.GetX(), 11.0);
    EXPECT_EQ(sum.GetY(), 22.0);
    EXPECT_EQ(sum.GetZ(), 33.0);
    EXPECT_EQ(sum.GetD(0), 1.5);
    EXPECT_EQ(sum.GetD(1), 2.25);
    EXPECT_EQ(sum.GetD(2), 4.125);
    EXPECT_EQ(sum.GetR(0), 10.0);  // r[] is the left point's
    EXPECT_EQ(sum.GetR(2), 30.0);

    const OvPoint diff = a - b;
    EXPECT_EQ(diff.GetId(), 5u);
    EXPECT_EQ(diff.GetX(), -9.0);
    EXPECT_EQ(diff.GetZ(), -27.0);
    EXPECT_EQ(diff.GetD(0), -0.5);
    EXPECT_EQ(diff.GetD(2), -3.875);
    EXPECT_EQ(diff.GetR(1), 20.0);

    const OvPoint mid = a % b;
    EXPECT_EQ(mid.GetId(), 5u);
    EXPECT_EQ(mid.GetX(), 5.5);
    EXPECT_EQ(mid.GetY(), 11.0);
    EXPECT_EQ(mid.GetZ(), 16.5);
    EXPECT_EQ(mid.GetD(0), 0.75);
    EXPECT_EQ(mid.GetD(1), 1.125);
    EXPECT_EQ(mid.GetD(2), 2.0625);
    EXPECT_EQ(mid.GetR(0), 10.0);
}

TEST(OvPointOperators, ScalingActsOnThreeValues) {
    OvPoint a(5, 1.0, -2.0, 3.0, 0);
    SetTriples(a, 1, 2, 3, 4, 5, 6);
    const OvPoint times = a * 4.0;
    EXPECT_EQ(times.GetId(), 5u);
    EXPECT_EQ(times.GetX(), 4.0);
    EXPECT_EQ(times.GetY(), -8.0);
    EXPECT_EQ(times.GetZ(), 12.0);
    EXPECT_EQ(times.GetD(0), 1.0);
    EXPECT_EQ(times.GetD(2), 3.0);
    EXPECT_EQ(times.GetR(1), 5.0);

    // Division is a product with the reciprocal: 5 * (1 / 3) differs from 5 / 3.
    OvPoint b(1, 0.3, 3.0, 0.7, 0);
    SetTriples(b, 9, 9, 9, 9, 9, 9);
    const OvPoint third = OvPoint(1, 5.0, 3.0, 0.0, 0) / 3.0;
    EXPECT_EQ(third.GetX(), 5.0 * (1.0 / 3.0));
    EXPECT_NE(third.GetX(), 5.0 / 3.0);
    EXPECT_EQ(third.GetY(), 1.0);
    EXPECT_EQ((b / 4.0).GetD(1), 9.0);
    EXPECT_EQ((b / 4.0).GetR(2), 9.0);

    MultiplyOvPoint(&b, 2.0);
    EXPECT_EQ(b.GetX(), 0.6);
    EXPECT_EQ(b.GetY(), 6.0);
    EXPECT_EQ(b.GetZ(), 1.4);
    EXPECT_EQ(b.GetD(0), 9.0);
    EXPECT_EQ(b.GetR(0), 9.0);
    MultiplyOvPoint(nullptr, 2.0);  // ignored
}

TEST(OvPointOperators, VectorOfCoordinates) {
    OvPoint p(1, 1.5, -2.5, 7.0, 0);
    const OvVector v = p.GetAsVector();
    ASSERT_EQ(v.GetSize(), 3);
    EXPECT_EQ(v[1], 1.5);
    EXPECT_EQ(v[2], -2.5);
    EXPECT_EQ(v[3], 7.0);
}

TEST(OvPointOperators, TriplesKeepToTheirRange) {
    OvPoint p;
    p.SetD(3, 1.0);
    p.SetR(-1, 1.0);
    EXPECT_EQ(p.GetD(3), 0.0);
    EXPECT_EQ(p.GetR(-1), 0.0);
}

TEST(OvPointPredicates, EachBitAndItsPredicate) {
    struct Case {
        unsigned (*predicate)(const OvObject*);
        std::uint32_t bit;
    };
    const Case cases[] = {
        {IsPointFlagGuiSelect, 0x001},
        {IsPointFlagGuiCheckActive, 0x002},
        {IsPointGuiCheckAccept, 0x004},
        {IsPointGuiCheckNotAccept, 0x008},
        {IsPointGuiCheckMediumAccept, 0x010},
        {IsPointTrafo2DUsed, 0x020},
        {IsPointTrafo3DUsed, 0x040},
        {IsPointAbsor, 0x040},
        {IsPointRelorUsed, 0x080},
        {IsPointEinbor, 0x100},
    };
    for (const Case& c : cases) {
        OvPoint p;
        const OvObject* object = &p;
        EXPECT_EQ(c.predicate(object), 0u);
        p.GetFlag().SetFlag(0x1FFu & ~c.bit);
        EXPECT_EQ(c.predicate(object), 0u) << c.bit;
        p.GetFlag().SetFlag(c.bit);
        EXPECT_EQ(c.predicate(object), c.bit);
    }
    EXPECT_EQ(IsPointEinbor(nullptr), 0u);
}

class OvPointWalk : public ::testing::Test {
protected:
    void SetUp() override {
        // Flags of points 1..5: 0x1, 0x0, 0x2, 0x1|0x4, 0x0
        const std::uint32_t flags[] = {0x1, 0x0, 0x2, 0x5, 0x0};
        for (unsigned i = 0; i < 5; ++i) {
            auto* p = new OvPoint(i + 1, 0, 0, 0, 0);
            p->GetFlag().SetFlag(flags[i]);
            list.Add(p);
        }
    }
    OvPoint* At(unsigned id) { return list.Find(id, 0); }
    static unsigned IdOf(const OvPoint* p) { return p == nullptr ? 0u : p->GetId(); }

    OvPointList list;
};

TEST_F(OvPointWalk, FirstIncludesItself) {
    EXPECT_EQ(IdOf(At(1)->First(0x1)), 1u);
    EXPECT_EQ(IdOf(At(2)->First(0x1)), 4u);
    EXPECT_EQ(IdOf(At(1)->First(0x6)), 3u);  // any bit of the mask
    EXPECT_EQ(IdOf(At(5)->First(0x1)), 0u);
    EXPECT_EQ(IdOf(At(1)->First(0x8)), 0u);
}

TEST_F(OvPointWalk, NextAndPreviousSkipThemselves) {
    EXPECT_EQ(IdOf(At(1)->Next(0x1)), 4u);
    EXPECT_EQ(IdOf(At(4)->Next(0x1)), 0u);
    EXPECT_EQ(IdOf(At(4)->Previous(0x1)), 1u);
    EXPECT_EQ(IdOf(At(4)->Previous(0x4)), 0u);
    EXPECT_EQ(IdOf(At(5)->Previous(0x6)), 4u);
    EXPECT_EQ(IdOf(At(2)->Next()), 3u);
    EXPECT_EQ(IdOf(At(2)->Previous()), 1u);
    EXPECT_EQ(IdOf(At(5)->Next()), 0u);
    EXPECT_EQ(IdOf(At(1)->Previous()), 0u);
}

TEST(OvPointTripel, HoldsThreePointersAndFlags) {
    OvPoint a, b, c, other;
    OvPointTripel t;
    EXPECT_FALSE(t.IsValid());
    EXPECT_EQ(t[0], nullptr);
    EXPECT_FALSE(t.IsVisible(1));
    t.Set(&a, 0);
    t.Set(&b, 1);
    EXPECT_FALSE(t.IsValid());
    t.Set(&c, 2);
    EXPECT_TRUE(t.IsValid());
    EXPECT_EQ(t[1], &b);
    EXPECT_TRUE(t.IsInTripel(&c));
    EXPECT_FALSE(t.IsInTripel(&other));
    t.SetVisible(2, true);
    EXPECT_TRUE(t.IsVisible(2));
    EXPECT_FALSE(t.IsVisible(0));

    OvPointTripel copy(t);
    EXPECT_EQ(copy[2], &c);
    EXPECT_TRUE(copy.IsVisible(2));

    // Outside the three slots nothing is read or written.
    t.Set(&other, 3);
    t.SetVisible(-1, true);
    EXPECT_EQ(t[3], nullptr);
    EXPECT_FALSE(t.IsVisible(-1));
    EXPECT_FALSE(t.IsInTripel(&other));
}

}  // namespace
}  // namespace orvo
