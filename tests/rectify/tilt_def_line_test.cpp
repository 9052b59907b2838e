#include "orvo/rectify/tilt_def_line.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "rectify_test_support.h"

namespace orvo {
namespace {

using test::ReadText;
using test::Written;

TEST(OvTiltDefLineTest, ConstructionDefaultsAndCopyKeepRunTimeData) {
    OvTiltDefLine line(7, 5);
    EXPECT_EQ(line.GetId(), 0u);
    EXPECT_EQ(line.GetFirstId(), 7u);
    EXPECT_EQ(line.GetSecondId(), 5u);
    EXPECT_EQ(line.GetValue(), 0.0);
    EXPECT_EQ(line.GetXAxisFlag(), 0);
    EXPECT_EQ(line.GetRunValue(), 0.0);
    EXPECT_EQ(line.GetRunIndex(), 0);
    EXPECT_EQ(line.GetRunState(), 0);

    line.SetId(3);
    line.SetName("ridge");
    line.SetValue(2.5);
    line.SetXAxisFlag(1);
    line.SetRunValue(1.25);
    line.SetRunIndex(-4);
    line.SetRunState(9);
    OvTiltDefLine other;
    other = line;
    EXPECT_EQ(other.GetId(), 3u);
    EXPECT_EQ(compare(other.GetName(), String("ridge")), 0);
    EXPECT_EQ(other.GetValue(), 2.5);
    EXPECT_TRUE(other.IsXAxis());
    EXPECT_EQ(other.GetRunValue(), 1.25);
    EXPECT_EQ(other.GetRunIndex(), -4);
    EXPECT_EQ(other.GetRunState(), 9);
}

TEST(OvTiltDefLineTest, WritesFourFieldsOfEightThenTheValue) {
    OvTiltDefLine line(12, 345);
    line.SetId(1);
    line.SetXAxisFlag(1);
    line.SetValue(0.125);
    EXPECT_EQ(Written([&](std::ostream& out) { line.Write(out); }),
              "       1       12      345        1 0.125");
    // The run-time data is never written, and a long value keeps its digits.
    line.SetRunValue(99.0);
    line.SetValue(1.0 / 3.0);
    EXPECT_EQ(Written([&](std::ostream& out) { line.Write(out); }),
              "       1       12      345        1 0.3333333333333333");
}

TEST(OvTiltDefLineTest, WriteLeavesTheStreamFormatAlone) {
    OvTiltDefLine line(1, 2);
    std::ostringstream out;
    out.precision(3);
    out << std::left;
    line.Write(out);
    EXPECT_EQ(out.precision(), 3);
    EXPECT_TRUE(out.flags() & std::ios_base::left);
}

TEST(OvTiltDefLineConstraintTest, Predicates) {
    const OvTiltDefLineConstraint parallel(4, 9, ConstraintTypeParallel, 0.0);
    EXPECT_TRUE(parallel.IsParallel());
    EXPECT_TRUE(parallel.IsValid());
    EXPECT_TRUE(parallel.IsConstraint(ConstraintTypeNone));
    EXPECT_TRUE(parallel.IsConstraint(ConstraintTypeParallel));
    EXPECT_FALSE(parallel.IsConstraint(ConstraintTypePerpendicular));
    EXPECT_TRUE(parallel.HasId(4));
    EXPECT_TRUE(parallel.HasId(9));
    EXPECT_FALSE(parallel.HasId(5));
    EXPECT_TRUE(parallel.HasBothId(9, 4));
    EXPECT_TRUE(parallel.HasBothId(4, 4));  // one id may answer for both
    EXPECT_FALSE(parallel.HasBothId(4, 5));
    EXPECT_TRUE(parallel.HasEitherId(5, 9));
    EXPECT_FALSE(parallel.HasEitherId(5, 6));

    const OvTiltDefLineConstraint none(1, 2, ConstraintTypeNone, 0.0);
    EXPECT_FALSE(none.IsValid());
    EXPECT_FALSE(none.IsParallel());
    // A type outside the named ones is valid but matches only itself (and the query 0).
    const OvTiltDefLineConstraint odd(1, 2, static_cast<ConstraintType>(7), 0.0);
    EXPECT_TRUE(odd.IsValid());
    EXPECT_TRUE(odd.IsConstraint(static_cast<ConstraintType>(7)));
    EXPECT_FALSE(odd.IsConstraint(ConstraintTypeParallel));
}

TEST(OvTiltDefLineConstraintTest, WritesThreeFieldsOfEightThenTheValue) {
    OvTiltDefLineConstraint c(2, 3, ConstraintTypePerpendicular, -1.5);
    c.SetId(44);  // the own id is not part of the record
    EXPECT_EQ(Written([&](std::ostream& out) { c.Write(out); }), "       2        3        2 -1.5");
}

TEST(OvTiltDefLineListTest, ReadsRecordsFromBlocksAndDropsIncompleteOnes) {
    OvTiltDefLineList lines;
    const int errors = ReadText(
        "DEFLINE { 1 3 4 0 2.5 }\n"
        "DEFLINE {2 5 6 1 -0}\n"
        "DEFLINE { 3 7 }\n"                  // cut short by the block end: not added
        "DEFLINE { 4 8 9 0 1.0 extra 5 }\n"  // the rest of the block is stepped over
        "DEFLINE { 4294967299 1 2 0 0 }\n",  // an id beyond 32 bits is clamped
        [&](OvReader& reader) {
            reader.RegisterObject(
                OvReaderObject("DEFLINE", Link(&lines, &OvTiltDefLineList::AddObjectHdl)));
        });
    EXPECT_EQ(errors, 0);
    ASSERT_EQ(lines.Count(), 4);
    const OvTiltDefLine* line = lines.First();
    EXPECT_EQ(line->GetId(), 1u);
    EXPECT_EQ(line->GetFirstId(), 3u);
    EXPECT_EQ(line->GetSecondId(), 4u);
    EXPECT_EQ(line->GetXAxisFlag(), 0);
    EXPECT_EQ(line->GetValue(), 2.5);
    line = line->Next();
    EXPECT_EQ(line->GetId(), 2u);
    EXPECT_TRUE(line->IsXAxis());
    EXPECT_TRUE(std::signbit(line->GetValue()));
    line = line->Next();
    EXPECT_EQ(line->GetId(), 4u);
    EXPECT_EQ(line->GetSecondId(), 9u);
    EXPECT_EQ(line->GetValue(), 1.0);
    EXPECT_EQ(lines.Last()->GetId(), 4294967295u);
}

TEST(OvTiltDefLineListTest, ReadAfterWriteGivesTheSameRecord) {
    OvTiltDefLine line(101, 202);
    line.SetId(17);
    line.SetXAxisFlag(-3);
    line.SetValue(12.345678901234567);
    const std::string text =
        "DEFLINE {" + Written([&](std::ostream& out) { line.Write(out); }) + "}\n";
    OvTiltDefLineList lines;
    ReadText(text, [&](OvReader& reader) {
        reader.RegisterObject(
            OvReaderObject("DEFLINE", Link(&lines, &OvTiltDefLineList::AddObjectHdl)));
    });
    ASSERT_EQ(lines.Count(), 1);
    EXPECT_EQ(lines.First()->GetId(), 17u);
    EXPECT_EQ(lines.First()->GetFirstId(), 101u);
    EXPECT_EQ(lines.First()->GetSecondId(), 202u);
    EXPECT_EQ(lines.First()->GetXAxisFlag(), -3);
    EXPECT_EQ(lines.First()->GetValue(), 12.345678901234567);
}

TEST(OvTiltDefLineConstraintListTest, ReadsRecordsWithIdZero) {
    OvTiltDefLineConstraintList constraints;
    const int errors = ReadText(
        "CONSTRAINT { 1 2 1 0 }\nCONSTRAINT { 3 4 2 0.5 }\nCONSTRAINT { 5 6 }\n",
        [&](OvReader& reader) {
            reader.RegisterObject(OvReaderObject(
                "CONSTRAINT", Link(&constraints, &OvTiltDefLineConstraintList::AddObjectHdl)));
        });
    EXPECT_EQ(errors, 0);
    ASSERT_EQ(constraints.Count(), 2);
    const OvTiltDefLineConstraint* c = constraints.First();
    EXPECT_EQ(c->GetId(), 0u);
    EXPECT_EQ(c->GetFirstLineId(), 1u);
    EXPECT_EQ(c->GetSecondLineId(), 2u);
    EXPECT_TRUE(c->IsParallel());
    c = c->Next();
    EXPECT_EQ(c->GetId(), 0u);
    EXPECT_EQ(c->GetType(), ConstraintTypePerpendicular);
    EXPECT_EQ(c->GetValue(), 0.5);
}

TEST(OvTiltDefLineListTest, AWrongTokenKindIsARecordedErrorNotACrash) {
    OvTiltDefLineList lines;
    ReadText("DEFLINE { \"one\" 2 3 0 0 }\nDEFLINE { 2 3 4 0 0 }\n", [&](OvReader& reader) {
        reader.RegisterObject(
            OvReaderObject("DEFLINE", Link(&lines, &OvTiltDefLineList::AddObjectHdl)));
    });
    // The reader stops at its first error, with nothing half-read appended.
    EXPECT_EQ(lines.Count(), 0);
}

}  // namespace
}  // namespace orvo
