#include "orvo/rectify/tilt_parallel_def.h"

#include <gtest/gtest.h>

#include "orvo/geom3d/line3d.h"
#include "orvo/model/point_list.h"
#include "rectify_test_support.h"

namespace orvo {
namespace {

using test::Written;

// Image points 5, 7, 9, 11 at the corners of a 4 x 2 rectangle, z = 1.
OvPointList MakePoints() {
    OvPointList points;
    points.Add(OvPoint(5, 0.0, 0.0, 1.0, 0));
    points.Add(OvPoint(7, 4.0, 0.0, 1.0, 0));
    points.Add(OvPoint(9, 4.0, 2.0, 1.0, 0));
    points.Add(OvPoint(11, 0.0, 2.0, 1.0, 0));
    return points;
}

TEST(OvTiltParallelDefTest, MakeDefLineRefusesSameIdsDuplicatesAndUnknownPoints) {
    OvPointList points = MakePoints();
    OvTiltParallelDef def(&points);
    EXPECT_FALSE(def.HasData());
    EXPECT_EQ(def.MakeDefLine(5, 5), nullptr);
    OvTiltDefLine* line = def.MakeDefLine(7, 5);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->GetId(), 1u);
    EXPECT_EQ(line->GetFirstId(), 7u);
    EXPECT_EQ(line->GetSecondId(), 5u);
    EXPECT_TRUE(def.HasData());
    EXPECT_EQ(def.MakeDefLine(5, 7), nullptr);  // the same line the other way round
    EXPECT_EQ(def.MakeDefLine(5, 6), nullptr);  // no point 6
    OvTiltDefLine* second = def.MakeDefLine(9, 11);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->GetId(), 2u);
    EXPECT_EQ(def.GetDefLineList().Count(), 2);

    OvTiltParallelDef without;
    EXPECT_FALSE(without.IsDefLineValid(5, 7));
    EXPECT_EQ(without.MakeDefLine(5, 7), nullptr);
}

TEST(OvTiltParallelDefTest, DefLineLookupsByPointIds) {
    OvPointList points = MakePoints();
    OvTiltParallelDef def(&points);
    def.MakeDefLine(5, 7);
    EXPECT_TRUE(def.HasDefLineFromBikos(7, 5, true));
    EXPECT_TRUE(def.HasDefLineFromBikos(5, 5, true));  // both ids may hit the same end
    EXPECT_FALSE(def.HasDefLineFromBikos(5, 9, true));
    EXPECT_TRUE(def.HasDefLineFromBikos(5, 9, false));
    EXPECT_TRUE(def.HasDefLineFromBikos(9, 7, false));
    EXPECT_FALSE(def.HasDefLineFromBikos(9, 11, false));
    // The last two points are 9 and 11: no line touches them yet.
    EXPECT_FALSE(def.HasDefLineWithLastBikos());
    def.MakeDefLine(7, 9);
    EXPECT_TRUE(def.HasDefLineWithLastBikos());
}

TEST(OvTiltParallelDefTest, MakeDefLineFromLastTwoBikos) {
    OvPointList points = MakePoints();
    OvTiltParallelDef def(&points);
    OvTiltDefLine* line = def.MakeDefLineFromLastTwoBikos();
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->GetFirstId(), 9u);
    EXPECT_EQ(line->GetSecondId(), 11u);
    EXPECT_EQ(def.MakeDefLineFromLastTwoBikos(), nullptr);  // exists now

    // Unlike MakeDefLine it takes two points with the same id.
    points.Add(OvPoint(13, 1.0, 1.0, 0.0, 0));
    points.Add(OvPoint(13, 2.0, 1.0, 0.0, 0));
    line = def.MakeDefLineFromLastTwoBikos();
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->GetFirstId(), 13u);
    EXPECT_EQ(line->GetSecondId(), 13u);

    OvPointList one;
    one.Add(OvPoint(1, 0.0, 0.0, 0.0, 0));
    OvTiltParallelDef few(&one);
    EXPECT_EQ(few.MakeDefLineFromLastTwoBikos(), nullptr);
    EXPECT_FALSE(few.HasDefLineWithLastBikos());
    OvTiltParallelDef none;
    EXPECT_EQ(none.MakeDefLineFromLastTwoBikos(), nullptr);
}

TEST(OvTiltParallelDefTest, GetLineCopiesTheEndPoints) {
    OvPointList points = MakePoints();
    OvTiltParallelDef def(&points);
    const OvTiltDefLine* line = def.MakeDefLine(9, 5);
    OvPoint a;
    OvPoint b;
    ASSERT_TRUE(def.GetLine(a, b, line));
    EXPECT_EQ(a.GetId(), 9u);
    EXPECT_EQ(b.GetId(), 5u);
    OvLine3d segment;
    ASSERT_TRUE(def.GetLine(segment, line));
    EXPECT_EQ(segment.GetStart(), OvPoint3d(4.0, 2.0, 1.0));
    EXPECT_EQ(segment.GetEnd(), OvPoint3d(0.0, 0.0, 1.0));

    EXPECT_FALSE(def.GetLine(a, b, nullptr));
    OvTiltDefLine dangling(5, 6);
    EXPECT_FALSE(def.GetLine(a, b, &dangling));
    OvTiltParallelDef without;
    EXPECT_FALSE(without.GetLine(a, b, line));
}

TEST(OvTiltParallelDefTest, ConstraintLineJoinsTheMidpoints) {
    OvPointList points = MakePoints();
    OvTiltParallelDef def(&points);
    def.MakeDefLine(5, 7);   // bottom edge, midpoint (2, 0)
    def.MakeDefLine(11, 9);  // top edge, midpoint (2, 2)
    const OvTiltDefLineConstraint* c = def.MakeConstraintDef(1, 2, ConstraintTypeParallel);
    ASSERT_NE(c, nullptr);
    OvPoint a;
    OvPoint b;
    ASSERT_TRUE(def.GetConstraintLine(a, b, c));
    EXPECT_EQ(a.GetX(), 2.0);
    EXPECT_EQ(a.GetY(), 0.0);
    EXPECT_EQ(a.GetZ(), 1.0);
    EXPECT_EQ(b.GetX(), 2.0);
    EXPECT_EQ(b.GetY(), 2.0);
    EXPECT_FALSE(def.GetConstraintLine(a, b, nullptr));
    const OvTiltDefLineConstraint missing(1, 3, ConstraintTypeParallel);
    EXPECT_FALSE(def.GetConstraintLine(a, b, &missing));
}

TEST(OvTiltParallelDefTest, ConstraintsByTypeAndIds) {
    OvPointList points = MakePoints();
    OvTiltParallelDef def(&points);
    def.MakeDefLine(5, 7);
    def.MakeDefLine(9, 11);
    def.MakeDefLine(7, 9);
    EXPECT_EQ(def.MakeConstraintDef(1, 1, ConstraintTypeParallel), nullptr);
    EXPECT_EQ(def.MakeConstraintDef(1, 4, ConstraintTypeParallel), nullptr);  // no line 4
    ASSERT_NE(def.MakeConstraintDef(1, 2, ConstraintTypeParallel), nullptr);
    EXPECT_EQ(def.MakeConstraintDef(2, 1, ConstraintTypeParallel), nullptr);
    // Only a parallel constraint joins 1 and 2: a perpendicular one is not there and may come.
    EXPECT_FALSE(def.HasConstraintDef(1, 2, true, ConstraintTypePerpendicular));
    EXPECT_TRUE(def.HasConstraintDef(1, 2, true, ConstraintTypeNone));
    const OvTiltDefLineConstraint* perpendicular =
        def.MakeConstraintDef(1, 2, ConstraintTypePerpendicular);
    ASSERT_NE(perpendicular, nullptr);
    EXPECT_EQ(perpendicular->GetId(), 2u);
    EXPECT_EQ(perpendicular->GetValue(), 0.0);
    // Type 0 asks for any type: both exist now.
    EXPECT_FALSE(def.IsConstraintDefValid(1, 2, ConstraintTypeNone));
    EXPECT_TRUE(def.HasConstraintDef(3, 2, false, ConstraintTypePerpendicular));
    EXPECT_FALSE(def.HasConstraintDef(3, 3, false, ConstraintTypeNone));
    // The last two lines are 2 and 3.
    EXPECT_TRUE(def.HasConstraintDefFromLastTwoLines(ConstraintTypeParallel));
    EXPECT_FALSE(def.HasXAxisDef());
    def.GetDefLineList().First()->SetXAxisFlag(1);
    EXPECT_TRUE(def.HasXAxisDef());
}

TEST(OvTiltParallelDefTest, ConstraintFromLastTwoLines) {
    OvPointList points = MakePoints();
    OvTiltParallelDef def(&points);
    def.MakeDefLine(5, 7);
    EXPECT_EQ(def.MakeConstraintDefFromLastTwoDefLines(ConstraintTypeParallel), nullptr);
    EXPECT_FALSE(def.HasConstraintDefFromLastTwoLines(ConstraintTypeNone));
    def.MakeDefLine(11, 9);
    OvTiltDefLineConstraint* c = def.MakeConstraintDefFromLastTwoDefLines(ConstraintTypeParallel);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->GetFirstLineId(), 1u);
    EXPECT_EQ(c->GetSecondLineId(), 2u);
    EXPECT_EQ(c->GetType(), ConstraintTypeParallel);
    EXPECT_EQ(c->GetId(), 1u);
    EXPECT_EQ(def.MakeConstraintDefFromLastTwoDefLines(ConstraintTypeParallel), nullptr);
    EXPECT_NE(def.MakeConstraintDefFromLastTwoDefLines(ConstraintTypePerpendicular), nullptr);
}

TEST(OvTiltParallelDefTest, LastTwoParallelConstraintsBecomePerpendicularPairs) {
    OvPointList points = MakePoints();
    OvTiltParallelDef def(&points);
    def.MakeDefLine(5, 7);   // 1: bottom
    def.MakeDefLine(11, 9);  // 2: top
    def.MakeDefLine(5, 11);  // 3: left
    def.MakeDefLine(7, 9);   // 4: right
    EXPECT_FALSE(def.MakeLastTwoParallelConstraintsPerpendicular());
    def.MakeConstraintDef(1, 2, ConstraintTypeParallel);
    EXPECT_FALSE(def.MakeLastTwoParallelConstraintsPerpendicular());
    def.MakeConstraintDef(3, 4, ConstraintTypeParallel);
    // One of the four already exists: it is skipped, and the answer is still true.
    def.MakeConstraintDef(2, 3, ConstraintTypePerpendicular);
    EXPECT_FALSE(def.MakeLastTwoParallelConstraintsPerpendicular());  // perpendicular is last
    EXPECT_EQ(def.GetConstraintList().Count(), 3);

    delete def.GetConstraintList().Subtract(def.GetConstraintList().Last());
    def.MakeConstraintDef(2, 3, ConstraintTypePerpendicular);
    OvTiltDefLineConstraint* moved =
        def.GetConstraintList().Subtract(def.GetConstraintList().Last());
    def.GetConstraintList().Insert(def.GetConstraintList().First(), moved);
    // Now: (2,3 perp), (1,2 par), (3,4 par).
    ASSERT_TRUE(def.MakeLastTwoParallelConstraintsPerpendicular());
    ASSERT_EQ(def.GetConstraintList().Count(), 6);
    const OvTiltDefLineConstraint* c = def.GetConstraintList().Get(3);
    const std::uint32_t expected[3][2] = {{1, 3}, {1, 4}, {2, 4}};
    for (const auto& pair : expected) {
        ASSERT_NE(c, nullptr);
        EXPECT_EQ(c->GetFirstLineId(), pair[0]);
        EXPECT_EQ(c->GetSecondLineId(), pair[1]);
        EXPECT_EQ(c->GetType(), ConstraintTypePerpendicular);
        c = c->Next();
    }
}

TEST(OvTiltParallelDefTest, CheckAndRepairDropsLinesOfLostPointsAndTheirConstraints) {
    OvPointList points = MakePoints();
    OvTiltParallelDef def(&points);
    def.MakeDefLine(5, 7);
    def.MakeDefLine(11, 9);
    def.MakeDefLine(5, 11);
    def.MakeConstraintDef(1, 2, ConstraintTypeParallel);
    def.MakeConstraintDef(1, 3, ConstraintTypePerpendicular);
    def.MakeConstraintDef(2, 3, ConstraintTypePerpendicular);
    def.CheckAndRepair();
    EXPECT_EQ(def.GetDefLineList().Count(), 3);
    EXPECT_EQ(def.GetConstraintList().Count(), 3);

    delete points.Subtract(9u);  // line 2 loses an end
    def.CheckAndRepair();
    ASSERT_EQ(def.GetDefLineList().Count(), 2);
    EXPECT_EQ(def.GetDefLineList().First()->GetId(), 1u);
    EXPECT_EQ(def.GetDefLineList().Last()->GetId(), 3u);
    ASSERT_EQ(def.GetConstraintList().Count(), 1);
    EXPECT_EQ(def.GetConstraintList().First()->GetFirstLineId(), 1u);
    EXPECT_EQ(def.GetConstraintList().First()->GetSecondLineId(), 3u);

    // Without a point list nothing is touched.
    def.SetPointList(nullptr);
    points.Destroy();
    def.CheckAndRepair();
    EXPECT_EQ(def.GetDefLineList().Count(), 2);
}

TEST(OvTiltParallelDefTest, CopyAndClear) {
    OvPointList points = MakePoints();
    OvTiltParallelDef def(&points);
    def.MakeDefLine(5, 7);
    def.MakeDefLine(11, 9);
    def.MakeConstraintDef(1, 2, ConstraintTypeParallel);
    OvTiltParallelDef copy(def);
    EXPECT_EQ(copy.GetPointList(), &points);
    EXPECT_EQ(copy.GetDefLineList().Count(), 2);
    EXPECT_EQ(copy.GetConstraintList().Count(), 1);
    def.Clear();
    EXPECT_FALSE(def.HasData());
    EXPECT_TRUE(def.GetConstraintList().IsEmpty());
    EXPECT_TRUE(copy.HasData());
    OvTiltParallelDef assigned;
    assigned = copy;
    EXPECT_EQ(assigned.GetDefLineList().Count(), 2);
    EXPECT_EQ(assigned.GetPointList(), &points);
}

TEST(OvTiltParallelDefTest, WritesLinesThenConstraintsAndReadsThemBack) {
    OvPointList points = MakePoints();
    OvTiltParallelDef def(&points);
    def.MakeDefLine(5, 7)->SetXAxisFlag(1);
    def.MakeDefLine(11, 9)->SetValue(4.0);
    def.MakeConstraintDef(1, 2, ConstraintTypeParallel);
    const std::string text = Written([&](std::ostream& out) { def.Write(out); });
    EXPECT_EQ(text,
              "DEFLINE      {       1        5        7        1 0}\n"
              "DEFLINE      {       2       11        9        0 4}\n"
              "CONSTRAINT   {       1        2        1 0}\n");

    OvTiltParallelDef read(&points);
    test::BlockHandler handler([&](OvReaderObject* object) { read.Read(object); });
    const int errors = test::ReadText("PARALLELDEF\n{\n" + text + "}\n", [&](OvReader& reader) {
        reader.RegisterObject(OvReaderObject("PARALLELDEF", handler.AsLink()));
    });
    EXPECT_EQ(errors, 0);
    EXPECT_EQ(Written([&](std::ostream& out) { read.Write(out); }),
              "DEFLINE      {       1        5        7        1 0}\n"
              "DEFLINE      {       2       11        9        0 4}\n"
              // The constraint's own id is not in the record.
              "CONSTRAINT   {       1        2        1 0}\n");
    EXPECT_EQ(read.GetConstraintList().First()->GetId(), 0u);
    EXPECT_EQ(read.GetDefLineList().Last()->GetValue(), 4.0);
}

}  // namespace
}  // namespace orvo
