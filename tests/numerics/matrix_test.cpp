#include <gtest/gtest.h>

#include "linalg_test_support.h"
#include "orvo/numerics/matrix.h"

namespace orvo {
namespace {

using test::MakeMatrix;
using test::MakeVector;
using test::ThrownCode;

TEST(OvMatrixTest, StorageIsLineByLineAndBracketGivesALinePointer) {
    OvMatrix m(2, 3);
    EXPECT_EQ(m.GetZeilen(), 2);
    EXPECT_EQ(m.GetSpalten(), 3);
    for (int k = 0; k < 6; ++k)
        EXPECT_EQ(m.Data()[k], 0.0);

    EXPECT_EQ(m.SetElem(2, 1, 7.0), 7.0);
    m.SetElem(1, 3, 5.0);
    // Element (i, j) sits at (i - 1) * columns + (j - 1).
    EXPECT_EQ(m.Data()[3], 7.0);
    EXPECT_EQ(m.Data()[2], 5.0);
    EXPECT_EQ(m[2][0], 7.0);
    EXPECT_EQ(m[1][2], 5.0);
    m[2][2] = -1.0;
    EXPECT_EQ(m.GetElem(2, 3), -1.0);
    const OvMatrix& cm = m;
    EXPECT_EQ(cm[2] - cm[1], 3);
}

TEST(OvMatrixTest, CheckedAccessCodes) {
    OvMatrix m(2, 3);
    EXPECT_EQ(ThrownCode([&] { m.SetElem(0, 1, 1); }), 9);
    EXPECT_EQ(ThrownCode([&] { m.SetElem(3, 1, 1); }), 9);
    EXPECT_EQ(ThrownCode([&] { m.SetElem(1, 4, 1); }), 9);
    EXPECT_EQ(ThrownCode([&] { m.GetElem(1, 0); }), 10);
    EXPECT_EQ(ThrownCode([&] { m.GetElem(3, 3); }), 10);
    EXPECT_EQ(ThrownCode([&] { (void)m[0]; }), 11);
    EXPECT_EQ(ThrownCode([&] { (void)m[3]; }), 11);
    const OvMatrix& cm = m;
    EXPECT_EQ(ThrownCode([&] { (void)cm[3]; }), 11);
    EXPECT_EQ(OvMatrix(-2, 4).GetZeilen(), 0);
}

TEST(OvMatrixTest, AssignmentNeedsTheSameShape) {
    const OvMatrix a = MakeMatrix({{1, 2}, {3, 4}});
    OvMatrix b(2, 2);
    b = a;
    EXPECT_EQ(b.GetElem(2, 1), 3.0);
    OvMatrix wide(2, 3);
    EXPECT_EQ(ThrownCode([&] { wide = a; }), 13);
    EXPECT_EQ(ThrownCode([&] { b = OvMatrix(1, 4); }), 13);
    EXPECT_EQ(wide.GetSpalten(), 3);
}

TEST(OvMatrixTest, ProductAgainstHandComputedValues) {
    const OvMatrix a = MakeMatrix({{1, 2, 3}, {4, 5, 6}});
    const OvMatrix b = MakeMatrix({{7, 8}, {9, 10}, {11, 12}});
    const OvMatrix p = a * b;
    ASSERT_EQ(p.GetZeilen(), 2);
    ASSERT_EQ(p.GetSpalten(), 2);
    EXPECT_EQ(p.GetElem(1, 1), 1 * 7 + 2 * 9 + 3 * 11);
    EXPECT_EQ(p.GetElem(1, 2), 1 * 8 + 2 * 10 + 3 * 12);
    EXPECT_EQ(p.GetElem(2, 1), 4 * 7 + 5 * 9 + 6 * 11);
    EXPECT_EQ(p.GetElem(2, 2), 4 * 8 + 5 * 10 + 6 * 12);
    EXPECT_EQ(ThrownCode([&] { (void)(a * a); }), 15);
}

TEST(OvMatrixTest, ProductAssignmentKeepsTheShape) {
    OvMatrix a = MakeMatrix({{1, 2}, {3, 4}});
    a *= MakeMatrix({{0, 1}, {1, 0}});
    EXPECT_EQ(a.GetElem(1, 1), 2.0);
    EXPECT_EQ(a.GetElem(1, 2), 1.0);
    EXPECT_EQ(a.GetElem(2, 1), 4.0);
    // A non-square right factor changes the shape, which the assignment refuses.
    EXPECT_EQ(ThrownCode([&] { a *= OvMatrix(2, 3); }), 13);
    EXPECT_EQ(ThrownCode([&] { a *= OvMatrix(3, 3); }), 15);
}

TEST(OvMatrixTest, ScalarOperatorsAndTheKeptDivisionForm) {
    const OvMatrix a = MakeMatrix({{2, 4}, {-6, 8}});
    const OvMatrix half = MakeMatrix({{1, 2}, {-3, 4}});
    auto equal = [](const OvMatrix& x, const OvMatrix& y) {
        for (int i = 1; i <= x.GetZeilen(); ++i)
            for (int j = 1; j <= x.GetSpalten(); ++j)
                if (x.GetElem(i, j) != y.GetElem(i, j)) return false;
        return true;
    };
    EXPECT_TRUE(equal(a * 0.5, half));
    EXPECT_TRUE(equal(0.5 * a, half));
    EXPECT_TRUE(equal(a / 2.0, half));
    EXPECT_TRUE(equal(2.0 / a, half));  // divides the matrix by 2
    OvMatrix b = a;
    b *= 0.5;
    EXPECT_TRUE(equal(b, half));
    b /= 0.5;
    EXPECT_TRUE(equal(b, a));
}

TEST(OvMatrixTest, SumsAndDifferences) {
    const OvMatrix a = MakeMatrix({{1, 2}, {3, 4}});
    const OvMatrix b = MakeMatrix({{10, 20}, {30, 40}});
    EXPECT_EQ((a + b).GetElem(2, 2), 44.0);
    EXPECT_EQ((b - a).GetElem(1, 2), 18.0);
    OvMatrix c = a;
    c += b;
    c -= a;
    EXPECT_EQ(c.GetElem(2, 1), 30.0);
    const OvMatrix other(2, 3);
    EXPECT_EQ(ThrownCode([&] { (void)(a + other); }), 16);
    EXPECT_EQ(ThrownCode([&] { c += other; }), 16);
    EXPECT_EQ(ThrownCode([&] { (void)(a - other); }), 17);
    EXPECT_EQ(ThrownCode([&] { c -= other; }), 17);
}

TEST(OvMatrixTest, MatrixTimesVector) {
    const OvMatrix a = MakeMatrix({{1, 2, 3}, {4, 5, 6}});
    const OvVector r = a * MakeVector({1, 0, -1});
    EXPECT_TRUE(r == MakeVector({-2, -2}));
    EXPECT_EQ(ThrownCode([&] { (void)(a * MakeVector({1, 2})); }), 14);
}

TEST(OvMatrixTest, TransposeSwapsTheShape) {
    const OvMatrix a = MakeMatrix({{1, 2, 3}, {4, 5, 6}});
    const OvMatrix t = a.Transpose();
    ASSERT_EQ(t.GetZeilen(), 3);
    ASSERT_EQ(t.GetSpalten(), 2);
    for (int i = 1; i <= 2; ++i)
        for (int j = 1; j <= 3; ++j)
            EXPECT_EQ(t.GetElem(j, i), a.GetElem(i, j));
}

TEST(OvMatrixTest, LineMeansRowAndRowMeansColumn) {
    OvMatrix m(3, 3);
    m.SetLine(2, MakeVector({1, 2, 3}));
    m.SetRow(3, MakeVector({7, 8, 9}));
    EXPECT_EQ(m.GetElem(2, 1), 1.0);
    EXPECT_EQ(m.GetElem(2, 2), 2.0);
    EXPECT_EQ(m.GetElem(1, 3), 7.0);
    EXPECT_EQ(m.GetElem(2, 3), 8.0);  // the row overwrote the line's last element

    OvVector line(3);
    m.GetLine(2, line);
    EXPECT_TRUE(line == MakeVector({1, 2, 8}));
    OvVector column(2);  // the vector's size decides how much is taken
    m.GetRow(3, column);
    EXPECT_TRUE(column == MakeVector({7, 8}));
}

TEST(OvMatrixTest, LineAndRowAccessIsCheckedElementByElement) {
    OvMatrix m(2, 2);
    // Too long a vector: the first two elements land, the third throws the write code.
    EXPECT_EQ(ThrownCode([&] { m.SetLine(1, MakeVector({5, 6, 7})); }), 9);
    EXPECT_EQ(m.GetElem(1, 1), 5.0);
    EXPECT_EQ(m.GetElem(1, 2), 6.0);
    EXPECT_EQ(ThrownCode([&] { m.SetRow(3, MakeVector({1})); }), 9);
    OvVector three(3);
    EXPECT_EQ(ThrownCode([&] { m.GetLine(1, three); }), 10);
    EXPECT_EQ(three[1], 5.0);
    EXPECT_EQ(ThrownCode([&] { m.GetRow(0, three); }), 10);
}

TEST(OvMatrixTest, SwapLinesAndItsCode) {
    OvMatrix m = MakeMatrix({{1, 2}, {3, 4}, {5, 6}});
    m.SwapLines(1, 3);
    EXPECT_EQ(m.GetElem(1, 1), 5.0);
    EXPECT_EQ(m.GetElem(3, 2), 2.0);
    m.SwapLines(2, 2);
    EXPECT_EQ(m.GetElem(2, 1), 3.0);
    EXPECT_EQ(ThrownCode([&] { m.SwapLines(0, 1); }), 19);
    EXPECT_EQ(ThrownCode([&] { m.SwapLines(1, 4); }), 19);
    EXPECT_EQ(m.GetElem(1, 1), 5.0);
}

TEST(OvMatrixTest, MultLineOverAColumnRange) {
    OvMatrix m = MakeMatrix({{1, 2, 3, 4}, {5, 6, 7, 8}});
    m.MultLine(1, 2, 10.0, 3);
    EXPECT_TRUE(m.GetElem(1, 1) == 1 && m.GetElem(1, 2) == 20 && m.GetElem(1, 3) == 30 &&
                m.GetElem(1, 4) == 4);
    m.MultLine(2, 3, -1.0);  // -1: through the last column
    EXPECT_TRUE(m.GetElem(2, 2) == 6 && m.GetElem(2, 3) == -7 && m.GetElem(2, 4) == -8);
    m.MultLine(2, 4, 100.0, 2);  // an empty range does nothing
    EXPECT_EQ(m.GetElem(2, 4), -8.0);

    EXPECT_EQ(ThrownCode([&] { m.MultLine(3, 1, 2.0); }), 19);
    EXPECT_EQ(ThrownCode([&] { m.MultLine(1, 0, 2.0); }), 10);
    // A range past the last column scales what is inside, then fails.
    EXPECT_EQ(ThrownCode([&] { m.MultLine(1, 4, 2.0, 5); }), 10);
    EXPECT_EQ(m.GetElem(1, 4), 8.0);
}

TEST(OvMatrixTest, AddLinesOverAColumnRange) {
    OvMatrix m = MakeMatrix({{1, 2, 3}, {10, 20, 30}});
    m.AddLines(2, 1, 2, -2.0);
    EXPECT_TRUE(m.GetElem(2, 1) == 10 && m.GetElem(2, 2) == 16 && m.GetElem(2, 3) == 24);
    m.AddLines(1, 2, 1, 1.0, 1);
    EXPECT_TRUE(m.GetElem(1, 1) == 11 && m.GetElem(1, 2) == 2);
    EXPECT_EQ(ThrownCode([&] { m.AddLines(0, 1, 1, 1.0); }), 19);
    EXPECT_EQ(ThrownCode([&] { m.AddLines(1, 3, 1, 1.0); }), 19);
    EXPECT_EQ(ThrownCode([&] { m.AddLines(1, 2, 3, 1.0, 4); }), 10);
    EXPECT_EQ(m.GetElem(1, 3), 27.0);  // column 3 was added before the range ran out
}

TEST(OvMatrixTest, SetIdentAndClear) {
    OvMatrix m = MakeMatrix({{5, 5}, {5, 5}});
    m.SetIdent();
    EXPECT_TRUE(m.GetElem(1, 1) == 1 && m.GetElem(1, 2) == 0 && m.GetElem(2, 1) == 0 &&
                m.GetElem(2, 2) == 1);
    m.Clear();
    EXPECT_EQ(m.GetElem(1, 1), 0.0);
    OvMatrix wide(2, 3);
    EXPECT_EQ(ThrownCode([&] { wide.SetIdent(); }), 12);
}

TEST(OvMatrixTest, IsIdentAcceptsZerosOnTheDiagonal) {
    OvMatrix id(3, 3);
    id.SetIdent();
    EXPECT_TRUE(id.IsIdent());
    EXPECT_TRUE(MakeMatrix({{1, 0, 0}, {0, 0, 0}, {0, 0, 1}}).IsIdent());
    EXPECT_TRUE(OvMatrix(3, 3).IsIdent());
    EXPECT_TRUE(MakeMatrix({{1, 0, 0}, {0, 1, 0}}).IsIdent());  // the shape is not tested
    EXPECT_FALSE(MakeMatrix({{1, 0}, {1e-300, 1}}).IsIdent());
    EXPECT_FALSE(MakeMatrix({{1, 0}, {0, 2}}).IsIdent());
    EXPECT_TRUE(MakeMatrix({{1, -0.0}, {0, 1}}).IsIdent());
}

TEST(OvMatrixTest, SarrusAgainstTheExpandedFormula) {
    const OvMatrix a = MakeMatrix({{2, -3, 1}, {2, 0, -1}, {1, 4, 5}});
    // Cofactor expansion along the first line.
    const double expected = 2 * (0 * 5 - (-1) * 4) - (-3) * (2 * 5 - (-1) * 1) + 1 * (2 * 4 - 0);
    EXPECT_EQ(a.Sarrus(), expected);
    EXPECT_EQ(ThrownCode([&] { (void)OvMatrix(2, 3).Sarrus(); }), 20);
    EXPECT_EQ(ThrownCode([&] { (void)OvMatrix(3, 2).Sarrus(); }), 20);
}

TEST(OvMatrixTest, SarrusOnAWiderMatrixUsesTheFirstNineStoredElements) {
    // 3 x 4: the first nine stored elements are 1..9, not the top-left block.
    OvMatrix wide(3, 4);
    for (int k = 0; k < 12; ++k)
        wide[1 + k / 4][k % 4] = k + 1;
    const OvMatrix nine = MakeMatrix({{1, 2, 3}, {4, 5, 6}, {7, 8, 10}});
    wide[3][0] = 10;  // element 9 in storage order is (3, 1)
    EXPECT_EQ(wide.Sarrus(), nine.Sarrus());
    EXPECT_EQ(nine.Sarrus(), -3.0);
}

}  // namespace
}  // namespace orvo
