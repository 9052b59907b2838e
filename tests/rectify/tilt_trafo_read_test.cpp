// Reading and writing tilt transforms: exact records, round trips, the old positional record
// and damaged blocks.
#include <gtest/gtest.h>

#include <string>

#include "orvo/rectify/tilt_trafo.h"
#include "rectify_test_support.h"

namespace orvo {
namespace {

using test::BlockHandler;
using test::ReadText;
using test::Written;

// A blank and the text right-aligned in `width`: what the wN manipulators give.
std::string Field(int width, const std::string& text) {
    return " " + std::string(static_cast<std::size_t>(width) - text.size(), ' ') + text;
}

std::string Keyword(const std::string& keyword) {
    return keyword + std::string(12 - keyword.size(), ' ');
}

// The lines of a matrix block inside a block at indentation level 1.
std::string MatrixBlock(const std::string& keyword, int n, const std::string (&cells)[16]) {
    std::string text =
        Keyword(keyword) + "\n{\n    " + Field(4, std::to_string(n)) + Field(4, std::to_string(n));
    for (int i = 0; i < n; ++i) {
        text += "\n    ";
        for (int j = 0; j < n; ++j)
            text += Field(24, cells[i * n + j]);
    }
    return text + "\n}\n";
}

const std::string kIdentity3[16] = {"1", "0", "0", "0", "1", "0", "0", "0", "1"};
const std::string kIdentity4[16] = {"1", "0", "0", "0", "0", "1", "0", "0",
                                    "0", "0", "1", "0", "0", "0", "0", "1"};

// Reads the text through a "TILTPLANE" (or, with legacy, "TILTTRAFO") block into the list.
int ReadTrafos(const std::string& text, OvTiltTrafoList& list, bool legacy = false) {
    BlockHandler handler([&](OvReaderObject* object) {
        if (legacy) {
            list.AddTrafoV50(object);
        } else {
            list.AddTrafo(object);
        }
    });
    return ReadText(text, [&](OvReader& reader) {
        reader.RegisterObject(OvReaderObject(legacy ? "TILTTRAFO" : "TILTPLANE", handler.AsLink()));
    });
}

std::string Framed(const OvTiltTrafo& trafo) {
    return Written([&](std::ostream& out) {
        out << "TILTPLANE" << Ovendl << OvBeginBlockNL;
        trafo.Write(out);
        out << OvEndBlockNL << Ovendl;
    });
}

TEST(OvTiltTrafoWriteTest, ADefaultTransformWritesEveryEntryButTheParallelDefinition) {
    OvTiltTrafo trafo(2, "north \"wall\"");
    trafo.SetActive(true);
    const std::string camera = Field(4, "0") + Field(18, "0") + Field(18, "0") + Field(18, "0") +
                               Field(18, "0") + Field(18, "0") + Field(18, "0") + " \"\"";
    const std::string expected =
        Keyword("TILTID") + Field(4, "{") + Field(4, "2") + " \"north 'wall'\"}\n" +
        Keyword("ACTIV") + Field(4, "1") + "\n" + Keyword("KAMERA") + Field(4, "0") + "\n" +
        Keyword("REGIONACTIV") + Field(4, "0") + "\n" + MatrixBlock("TILTTRAFO", 3, kIdentity3) +
        MatrixBlock("TRAFO3D", 4, kIdentity4) + Keyword("DEFPOINTS") + "\n{\n    \n}\n" +
        Keyword("DISTORTION") + "\n{\n    " + camera + "\n}\n" + Keyword("MEASPOINTS") +
        "\n{\n    \n}\n" + Keyword("VALIDREGION") + "\n{\n    \n}\n";
    EXPECT_EQ(Written([&](std::ostream& out) { trafo.Write(out); }), expected);
}

TEST(OvTiltTrafoWriteTest, TheParallelDefinitionComesAfterTheFlags) {
    OvTiltTrafo trafo(1, "");
    trafo.GetMeasPoints().AddPoint(OvPoint(4, 0.0, 0.0, 0.0, 0));
    trafo.GetMeasPoints().AddPoint(OvPoint(6, 1.0, 0.0, 0.0, 0));
    trafo.GetParallelDef().MakeDefLine(4, 6);
    const std::string text = Written([&](std::ostream& out) { trafo.Write(out); });
    const std::string block = Keyword("REGIONACTIV") + Field(4, "0") + "\n" +
                              Keyword("PARALLELDEF") + "\n{\n    " + Keyword("DEFLINE") +
                              " {       1        4        6        0 0}\n    \n}\n" +
                              Keyword("TILTTRAFO") + "\n";
    EXPECT_NE(text.find(block), std::string::npos) << text;
    // The measured points with their ids, x and y.
    EXPECT_NE(text.find(Keyword("MEASPOINTS") + "\n{\n    " + Field(10, "4") + Field(21, "0") +
                        Field(21, "0") + "\n    " + Field(10, "6") + Field(21, "1") +
                        Field(21, "0") + "\n}\n"),
              std::string::npos)
        << text;
}

TEST(OvTiltTrafoReadTest, WhatIsWrittenReadsBackTheSame) {
    OvTiltTrafo trafo(12, "window plane");
    trafo.SetActive(true);
    trafo.SetDistortCameraFlag(true);
    OvMatrix tilt(3, 3);
    const double values[9] = {1.0021, 0.0134, -3.25, -0.0127, 0.9987, 1.5, 1.2e-05, -3.4e-06, 1};
    for (int i = 0; i < 9; ++i)
        tilt.SetElem(i / 3 + 1, i % 3 + 1, values[i]);
    trafo.SetTiltMat(tilt);
    OvMatrix placement(4, 4);
    placement.SetIdent();
    placement.SetElem(1, 4, 0.1);
    placement.SetElem(3, 4, 1.0 / 3.0);
    trafo.SetTransMat(placement);
    trafo.SetDistortCameraParam(OvCamera(3, 24.3, 0.01, -0.03, -2e-4, 3.6e-7, 9.0, "24mm"));
    trafo.GetMeasPoints().AddPoint(OvPoint(1, -11.5, -7.25, 0.0, 0));
    trafo.GetMeasPoints().AddPoint(OvPoint(2, 11.5, -7.25, 0.0, 0));
    trafo.GetMeasPoints().AddPoint(OvPoint(3, 11.5, 7.25, 0.0, 0));
    trafo.GetBikoList().AddPoint(OvPoint(1, 0.0, 0.0, 0.0, 0));
    trafo.GetBikoList().AddPoint(OvPoint(2, 4.25, 0.0, 1.5, 0));
    trafo.GetBikoList().AddPoint(OvPoint(3, 4.25, 2.5, 1.5, 0));
    for (double x : {-11.0, 11.0, 11.0, -11.0})
        trafo.GetRegion().AddPoint(OvPoint(0, x, x > 0 ? 7.0 : -7.0, 0.0, 0));
    trafo.GetParallelDef().MakeDefLine(1, 2);
    trafo.GetParallelDef().MakeDefLine(3, 2)->SetXAxisFlag(1);
    trafo.GetParallelDef().MakeConstraintDef(1, 2, ConstraintTypePerpendicular);

    const std::string text = Framed(trafo);
    OvTiltTrafoList list;
    EXPECT_EQ(ReadTrafos(text, list), 0);
    ASSERT_EQ(list.Count(), 1);
    const OvTiltTrafo& read = *list.First();
    EXPECT_EQ(read.GetId(), 12u);
    EXPECT_TRUE(read.IsActive());
    EXPECT_TRUE(read.GetDistortCameraFlag());
    EXPECT_FALSE(read.IsRegionActive());
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            EXPECT_EQ(read.GetTiltMat().GetElem(i, j), tilt.GetElem(i, j));
    EXPECT_EQ(read.GetTransMat().GetElem(3, 4), 1.0 / 3.0);
    EXPECT_EQ(read.GetDistortCameraParam().GetA2(), 3.6e-7);
    EXPECT_EQ(read.GetParallelDef().GetDefLineList().Count(), 2);
    EXPECT_EQ(read.GetParallelDef().GetPointList(), &read.GetMeasPoints().GetPointList());
    // The region's points were numbered on reading; otherwise the text is the same.
    EXPECT_EQ(read.GetRegion().GetPointList().Last()->GetId(), 4u);
    EXPECT_EQ(Framed(read), text);
}

TEST(OvTiltTrafoReadTest, FlagsNotInTheBlockAreCleared) {
    OvTiltTrafo trafo;
    trafo.SetActive(true);
    trafo.SetRegionActive(true);
    trafo.SetDistortCameraFlag(true);
    const std::string text = "TILTPLANE\n{\n  KAMERA 1\n}\n";
    BlockHandler handler([&](OvReaderObject* object) { trafo.Read(object); });
    EXPECT_EQ(ReadText(text,
                       [&](OvReader& reader) {
                           reader.RegisterObject(OvReaderObject("TILTPLANE", handler.AsLink()));
                       }),
              0);
    EXPECT_FALSE(trafo.IsActive());
    EXPECT_FALSE(trafo.IsRegionActive());
    EXPECT_TRUE(trafo.GetDistortCameraFlag());
}

TEST(OvTiltTrafoReadTest, DamagedBlocksNeverBreakTheTransform) {
    const std::string text =
        "TILTPLANE {\n"
        "  TILTID { }\n"                          // empty: nothing read
        "  TILTTRAFO { 2 2  1 2 3 4 }\n"          // too small: refused
        "  TRAFO3D { 3 3  1 0 0 0 1 0 0 0 1 }\n"  // not 4 x 4: refused
        "  DEFPOINTS { 1 2.5 }\n"                 // a cut-off point
        "  MEASPOINTS { 1 0 0 }\n"                // one point
        "  VALIDREGION { 5 5 }\n"                 // one point
        "  DISTORTION { }\n"                      // empty
        "  UNKNOWN { 1 2 { 3 } }\n"               // skipped
        "  ACTIV 1\n"
        "}\n"
        "TILTPLANE { TILTID { 9 \"second\" extra tokens } ACTIV 1 }\n";
    OvTiltTrafoList list;
    const int errors = ReadTrafos(text, list);
    ASSERT_EQ(list.Count(), 2);
    const OvTiltTrafo& first = *list.First();
    EXPECT_EQ(errors, 3);  // the two refused matrices and the unknown block
    EXPECT_EQ(first.GetTiltMat().GetLines(), 3);
    EXPECT_TRUE(first.GetTiltMat().IsIdent());
    EXPECT_EQ(first.GetTransMat().GetLines(), 4);
    EXPECT_TRUE(first.IsActive());
    EXPECT_EQ(first.GetBikoList().Count(), 0);
    EXPECT_EQ(first.GetMeasPoints().Count(), 1);
    EXPECT_EQ(first.GetRegion().Count(), 1);
    EXPECT_EQ(first.GetRegion().First()->GetId(), 1u);
    OvPoint p(1, 1.0, 2.0, 3.0, 0);
    OvPoint out;
    EXPECT_TRUE(first.Transform(&p, &out));
    EXPECT_EQ(first.Area(), -1.0);
    const OvTiltTrafo& second = *list.Last();
    EXPECT_EQ(second.GetId(), 9u);
    EXPECT_EQ(compare(second.GetName(), String("second")), 0);
    EXPECT_TRUE(second.IsActive());
}

TEST(OvTiltTrafoReadTest, TwoPointsStayTwoExceptInTheValidRegion) {
    const std::string text =
        "TILTPLANE {\n"
        "  MEASPOINTS { 4 1.5 2.5  9 3.5 -1 }\n"
        "  DEFPOINTS { 4 0 0 0  9 2 0 1 }\n"
        "  VALIDREGION { 0 0  10 5 }\n"
        "}\n";
    OvTiltTrafoList list;
    EXPECT_EQ(ReadTrafos(text, list), 0);
    ASSERT_EQ(list.Count(), 1);
    const OvTiltTrafo& t = *list.First();
    ASSERT_EQ(t.GetMeasPoints().Count(), 2);
    EXPECT_EQ(t.GetMeasPoints().First()->GetId(), 4u);
    EXPECT_EQ(t.GetMeasPoints().GetPointList().Last()->GetX(), 3.5);
    EXPECT_EQ(t.GetMeasPoints().GetPointList().Last()->GetY(), -1.0);
    EXPECT_EQ(t.GetMeasPoints().GetMin().GetY(), -1.0);
    ASSERT_EQ(t.GetBikoList().Count(), 2);
    EXPECT_EQ(t.GetBikoList().GetPointList().Last()->GetZ(), 1.0);
    // A region of two corners is the rectangle through them.
    EXPECT_EQ(t.GetRegion().Count(), 4);
    EXPECT_EQ(t.GetRegion().GetMax().GetY(), 5.0);
}

TEST(OvTiltTrafoReadTest, KeywordsWithoutTheirBlocksReadNothing) {
    OvTiltTrafoList list;
    ReadTrafos("TILTPLANE 5\n"
               "TILTPLANE { TILTID 4 VALIDREGION 1 MEASPOINTS 7 PARALLELDEF 8 ACTIV 1 }\n",
               list);
    ASSERT_EQ(list.Count(), 1);
    EXPECT_TRUE(list.First()->IsActive());
    EXPECT_EQ(list.First()->GetId(), 0u);
    EXPECT_EQ(list.First()->GetRegion().Count(), 0);
    EXPECT_EQ(list.First()->GetMeasPoints().Count(), 0);
    ReadTrafos("TILTTRAFO 3\nTILTTRAFO { 2 \"x\" 1 }\n", list, true);
    ASSERT_EQ(list.Count(), 2);
    EXPECT_EQ(list.Last()->GetId(), 2u);
}

TEST(OvTiltTrafoReadTest, TheOldPositionalRecord) {
    // id, name, active, m13 m23 m12 m22 m32 m11 m21 m31, {4 x 4}, {region}, four points.
    const std::string text =
        "TILTTRAFO {\n"
        "  7 \"old plane\" 1\n"
        "  13 23 12 22 0.32 11 21 0.31\n"
        "  { 4 4  1 0 0 5  0 1 0 6  0 0 1 7  0 0 0 1 }\n"
        "  { 0 0  10 0  10 10  0 10 }\n"
        "  1 1  2 1  2 2  1 2\n"
        "}\n";
    OvTiltTrafoList list;
    EXPECT_EQ(ReadTrafos(text, list, true), 0);
    ASSERT_EQ(list.Count(), 1);
    const OvTiltTrafo& t = *list.First();
    EXPECT_EQ(t.GetId(), 7u);
    EXPECT_EQ(compare(t.GetName(), String("old plane")), 0);
    EXPECT_TRUE(t.IsActive());
    const OvMatrix& m = t.GetTiltMat();
    EXPECT_EQ(m.GetElem(1, 1), 11.0);
    EXPECT_EQ(m.GetElem(1, 2), 12.0);
    EXPECT_EQ(m.GetElem(1, 3), 13.0);
    EXPECT_EQ(m.GetElem(2, 1), 21.0);
    EXPECT_EQ(m.GetElem(2, 2), 22.0);
    EXPECT_EQ(m.GetElem(2, 3), 23.0);
    EXPECT_EQ(m.GetElem(3, 1), 0.31);
    EXPECT_EQ(m.GetElem(3, 2), 0.32);
    EXPECT_EQ(m.GetElem(3, 3), 1.0);
    EXPECT_EQ(t.GetTransMat().GetElem(2, 4), 6.0);
    ASSERT_EQ(t.GetRegion().Count(), 4);
    EXPECT_EQ(t.GetRegion().GetPointList().Last()->GetId(), 4u);
    ASSERT_EQ(t.GetMeasPoints().Count(), 4);
    EXPECT_EQ(t.GetMeasPoints().GetMode(), OvPolygonMode2DId);
    EXPECT_EQ(t.GetBikoList().GetMode(), OvPolygonMode3DId);
    ASSERT_EQ(t.GetBikoList().Count(), 4);
    // Each definition point is its measured point through the tilt matrix and the placement.
    const OvPoint* measured = t.GetMeasPoints().First();
    unsigned id = 1;
    for (const OvPoint* d = t.GetBikoList().First(); d != nullptr; d = d->Next(), ++id) {
        const double x = measured->GetX();
        const double y = measured->GetY();
        const double w = 0.31 * x + 0.32 * y + 1.0;
        EXPECT_EQ(d->GetId(), id);
        EXPECT_DOUBLE_EQ(d->GetX(), (11.0 * x + 12.0 * y + 13.0) / w + 5.0);
        EXPECT_DOUBLE_EQ(d->GetY(), (21.0 * x + 22.0 * y + 23.0) / w + 6.0);
        EXPECT_DOUBLE_EQ(d->GetZ(), 7.0);
        measured = measured->Next();
    }
}

TEST(OvTiltTrafoReadTest, AnOldRecordCutShortKeepsWhatItHas) {
    const std::string text = "TILTTRAFO { 3 \"short\" 0 1 2 3 }\nTILTTRAFO { 4 \"next\" 1 }\n";
    OvTiltTrafoList list;
    EXPECT_EQ(ReadTrafos(text, list, true), 0);
    ASSERT_EQ(list.Count(), 2);
    EXPECT_EQ(list.First()->GetId(), 3u);
    EXPECT_EQ(list.First()->GetTiltMat().GetElem(1, 3), 1.0);
    EXPECT_EQ(list.First()->GetTiltMat().GetElem(2, 3), 2.0);
    EXPECT_EQ(list.First()->GetTiltMat().GetElem(1, 2), 3.0);
    EXPECT_EQ(list.First()->GetTiltMat().GetElem(2, 2), 1.0);  // not reached: identity
    EXPECT_EQ(list.First()->GetBikoList().Count(), 0);
    EXPECT_TRUE(list.Last()->IsActive());
}

}  // namespace
}  // namespace orvo
