#include <gtest/gtest.h>

#include <cmath>

#include "linalg_test_support.h"
#include "orvo/numerics/vector.h"

namespace orvo {
namespace {

using test::MakeVector;
using test::ThrownCode;

TEST(OvVectorTest, NewVectorIsZeroFilledAndNegativeSizeIsEmpty) {
    OvVector v(4);
    ASSERT_EQ(v.GetSize(), 4);
    for (int i = 1; i <= 4; ++i)
        EXPECT_EQ(v.GetElem(i), 0.0);
    EXPECT_EQ(OvVector(-3).GetSize(), 0);
    EXPECT_EQ(OvVector().GetSize(), 0);
}

TEST(OvVectorTest, AccessIsOneBasedAndEachFormThrowsItsOwnCode) {
    OvVector v(3);
    EXPECT_EQ(v.SetElem(1, 1.5), 1.5);
    v[3] = -2.0;
    EXPECT_EQ(v.GetElem(1), 1.5);
    EXPECT_EQ(v.Data()[2], -2.0);
    const OvVector& cv = v;
    EXPECT_EQ(cv[3], -2.0);

    EXPECT_EQ(ThrownCode([&] { v.SetElem(0, 1.0); }), 0);
    EXPECT_EQ(ThrownCode([&] { v.SetElem(4, 1.0); }), 0);
    EXPECT_EQ(ThrownCode([&] { v.GetElem(0); }), 1);
    EXPECT_EQ(ThrownCode([&] { v.GetElem(4); }), 1);
    EXPECT_EQ(ThrownCode([&] { v[0] = 1.0; }), 2);
    EXPECT_EQ(ThrownCode([&] { (void)cv[4]; }), 2);
    EXPECT_EQ(ThrownCode([&] { (void)cv[-1]; }), 2);
}

TEST(OvVectorTest, AssignmentCopiesButNeverReshapes) {
    OvVector a = MakeVector({1, 2, 3});
    OvVector b(3);
    b = a;
    EXPECT_TRUE(b == a);
    a[1] = 9;
    EXPECT_EQ(b[1], 1.0);  // a deep copy

    OvVector small(2);
    EXPECT_EQ(ThrownCode([&] { small = a; }), 3);
    EXPECT_EQ(small.GetSize(), 2);
    EXPECT_EQ(small[1], 0.0);
    // An rvalue goes through the same checked copy.
    EXPECT_EQ(ThrownCode([&] { small = OvVector(5); }), 3);
}

TEST(OvVectorTest, CopyAndMoveConstruction) {
    OvVector a = MakeVector({4, 5});
    OvVector copy(a);
    EXPECT_TRUE(copy == a);
    OvVector moved(std::move(a));
    EXPECT_TRUE(moved == copy);
    EXPECT_EQ(a.GetSize(), 0);  // NOLINT(bugprone-use-after-move): documented state
}

TEST(OvVectorTest, ChangeTypeGrowsWithOneAndShrinksByType) {
    OvVector v = MakeVector({1, 2, 3});
    v.ChangeType(eOvVectorXYZW);
    EXPECT_TRUE(v == MakeVector({1, 2, 3, 1.0}));

    OvVector w = MakeVector({1, 2, 3, 4});
    w.ChangeType(eOvVectorXY0);
    EXPECT_TRUE(w == MakeVector({1, 2, 0}));
    OvVector x = MakeVector({1, 2, 3, 4});
    x.ChangeType(eOvVectorXY1);
    EXPECT_TRUE(x == MakeVector({1, 2, 1}));
    OvVector y = MakeVector({1, 2, 3, 4});
    y.ChangeType(eOvVectorXYZ);
    EXPECT_TRUE(y == MakeVector({1, 2, 3}));
    OvVector z = MakeVector({1, 2, 3, 4});
    z.ChangeType(static_cast<eOvVectorType>(9));  // any other type: shrink, keep the third
    EXPECT_TRUE(z == MakeVector({1, 2, 3}));
}

TEST(OvVectorTest, ChangeTypeLeavesOtherCombinationsAlone) {
    OvVector three = MakeVector({1, 2, 3});
    three.ChangeType(eOvVectorXY0);  // size 3 and type != 3
    EXPECT_TRUE(three == MakeVector({1, 2, 3}));
    OvVector four = MakeVector({1, 2, 3, 4});
    four.ChangeType(eOvVectorXYZW);  // size 4 and type 3
    EXPECT_TRUE(four == MakeVector({1, 2, 3, 4}));
    OvVector two = MakeVector({1, 2});
    two.ChangeType(eOvVectorXYZW);
    EXPECT_EQ(two.GetSize(), 2);
}

TEST(OvVectorTest, EqualityNeedsSameSizeAndExactValues) {
    EXPECT_TRUE(MakeVector({1, 2}) == MakeVector({1, 2}));
    EXPECT_FALSE(MakeVector({1, 2}) == MakeVector({1, 2, 0}));
    EXPECT_TRUE(MakeVector({1, 2}) != MakeVector({1, 2 + 1e-15}));
    EXPECT_TRUE(OvVector(0) == OvVector(0));
}

TEST(OvVectorTest, ScalarOperators) {
    const OvVector v = MakeVector({2, -4, 6});
    EXPECT_TRUE(v * 0.5 == MakeVector({1, -2, 3}));
    EXPECT_TRUE(0.5 * v == MakeVector({1, -2, 3}));
    EXPECT_TRUE(v / 2.0 == MakeVector({1, -2, 3}));
    // d / v divides the vector by d, it does not divide d by the elements.
    EXPECT_TRUE(2.0 / v == MakeVector({1, -2, 3}));

    OvVector w = v;
    w *= 3.0;
    EXPECT_TRUE(w == MakeVector({6, -12, 18}));
    w /= 3.0;
    EXPECT_TRUE(w == v);

    // Division is one reciprocal followed by products: x * (1/3), not x / 3.
    OvVector third = MakeVector({1.0, 10.0});
    third /= 3.0;
    EXPECT_EQ(third[2], 10.0 * (1.0 / 3.0));
}

TEST(OvVectorTest, DotAndCrossProducts) {
    const OvVector a = MakeVector({1, 2, 3});
    const OvVector b = MakeVector({4, -5, 6});
    EXPECT_EQ(a * b, 1 * 4 + 2 * -5 + 3 * 6);
    EXPECT_TRUE(a % b == MakeVector({2 * 6 - 3 * -5, 3 * 4 - 1 * 6, 1 * -5 - 2 * 4}));
    // The cross product is perpendicular to both factors.
    EXPECT_EQ((a % b) * a, 0.0);
    EXPECT_EQ((a % b) * b, 0.0);

    EXPECT_EQ(ThrownCode([&] { (void)(a * MakeVector({1, 2})); }), 8);
    EXPECT_EQ(ThrownCode([&] { (void)(a % MakeVector({1, 2})); }), 4);
    EXPECT_EQ(ThrownCode([&] { (void)(MakeVector({1, 2, 3, 4}) % MakeVector({1, 2, 3, 4})); }), 4);
}

TEST(OvVectorTest, ElementwiseSumsAndDifferences) {
    const OvVector a = MakeVector({1, 2, 3});
    const OvVector b = MakeVector({10, 20, 30});
    EXPECT_TRUE(a + b == MakeVector({11, 22, 33}));
    EXPECT_TRUE(b - a == MakeVector({9, 18, 27}));
    OvVector c = a;
    c += b;
    c -= a;
    EXPECT_TRUE(c == b);

    const OvVector other = MakeVector({1, 2});
    EXPECT_EQ(ThrownCode([&] { (void)(a + other); }), 5);
    EXPECT_EQ(ThrownCode([&] { (void)(a - other); }), 5);
    EXPECT_EQ(ThrownCode([&] { c += other; }), 5);
    EXPECT_EQ(ThrownCode([&] { c -= other; }), 5);
    EXPECT_TRUE(c == b);
}

TEST(OvVectorTest, LengthAndNormalisation) {
    OvVector v = MakeVector({3, 4, 12});
    EXPECT_EQ(v.Abs(), 13.0);
    EXPECT_EQ(abs(v), 13.0);
    EXPECT_FALSE(v.IsNormalized(1e-9));
    OvVector& same = v.Normalize();
    EXPECT_EQ(&same, &v);
    EXPECT_NEAR(v[1], 3.0 / 13.0, 1e-16);
    EXPECT_NEAR(v[3], 12.0 / 13.0, 1e-16);
    EXPECT_TRUE(v.IsNormalized(1e-12));

    // A zero vector is not guarded: its elements become NaN.
    OvVector zero(2);
    zero.Normalize();
    EXPECT_TRUE(std::isnan(zero[1]));
}

TEST(OvVectorTest, IsNormalizedBoundsAreInclusive) {
    EXPECT_TRUE(MakeVector({0.9}).IsNormalized(0.125));
    EXPECT_TRUE(MakeVector({1.1}).IsNormalized(0.125));
    EXPECT_FALSE(MakeVector({0.75}).IsNormalized(0.125));
    EXPECT_FALSE(MakeVector({1.25}).IsNormalized(0.125));
    EXPECT_TRUE(MakeVector({1.125}).IsNormalized(0.125));  // exactly 1 + eps
    EXPECT_TRUE(MakeVector({0.875}).IsNormalized(0.125));  // exactly 1 - eps
}

TEST(OvVectorTest, ClearZeroesEveryElement) {
    OvVector v = MakeVector({1, 2, 3});
    v.Clear();
    EXPECT_TRUE(v == OvVector(3));
}

}  // namespace
}  // namespace orvo
