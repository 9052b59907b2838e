#include "orvo/rectify/tilt_estimation.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "orvo/model/point_list.h"
#include "orvo/numerics/linalg_errors.h"
#include "orvo/numerics/matrix.h"
#include "orvo/rectify/tilt_parallel_def.h"
#include "orvo/rectify/tilt_trafo.h"

namespace orvo {
namespace {

using Mat3 = std::array<std::array<double, 3>, 3>;

struct XY {
    double x;
    double y;
};

// The homogeneous mapping done plainly: (m (x, y, 1)) dehomogenised.
XY Map(const Mat3& m, XY p) {
    const double w = m[2][0] * p.x + m[2][1] * p.y + m[2][2];
    return {(m[0][0] * p.x + m[0][1] * p.y + m[0][2]) / w,
            (m[1][0] * p.x + m[1][1] * p.y + m[1][2]) / w};
}

XY Map(const OvMatrix& m, XY p) {
    Mat3 a{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            a[i][j] = m.GetElem(i + 1, j + 1);
    return Map(a, p);
}

// The inverse by the adjugate.
Mat3 Inverse(const Mat3& m) {
    Mat3 r{};
    const double det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
                       m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
                       m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            const int i1 = (j + 1) % 3;
            const int i2 = (j + 2) % 3;
            const int j1 = (i + 1) % 3;
            const int j2 = (i + 2) % 3;
            r[i][j] = (m[i1][j1] * m[i2][j2] - m[i1][j2] * m[i2][j1]) / det;
        }
    }
    return r;
}

// A facade 12 m wide seen obliquely: plane coordinates (m) to image coordinates (mm), with a
// strong vanishing in x and a weaker one in y.
const Mat3 kFacadeToImage{{{2.1, 0.35, -12.0}, {-0.2, 2.4, -7.5}, {0.045, -0.012, 1.0}}};

// ---- the projective fit --------------------------------------------------------------------

void AddGrid(OvPointList& image, OvPointList& plane, const Mat3& planeToImage) {
    unsigned id = 1;
    for (double y : {0.0, 3.0, 6.0}) {
        for (double x : {0.0, 5.0, 10.0}) {
            const XY p = Map(planeToImage, {x, y});
            image.Add(OvPoint(id, p.x, p.y, 0.0, 0));
            plane.Add(OvPoint(id, x, y, 0.0, 0));
            ++id;
        }
    }
}

TEST(OvEstimateTiltMatrixTest, RecoversTheTransformOfASyntheticFacade) {
    OvPointList image;
    OvPointList plane;
    AddGrid(image, plane, kFacadeToImage);
    image.Add(OvPoint(77, 3.0, 3.0, 0.0, 0));  // no partner: ignored
    OvMatrix tilt(3, 3);
    tilt.SetIdent();
    OvTrafo2DFitReport report;
    ASSERT_EQ(OvEstimateTiltMatrix(image, plane, tilt, &report), TiltEstimateOk);
    EXPECT_EQ(report.pairs, 9);
    EXPECT_EQ(tilt.GetElem(3, 3), 1.0);
    const Mat3 truth = Inverse(kFacadeToImage);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            EXPECT_NEAR(tilt.GetElem(i + 1, j + 1), truth[i][j] / truth[2][2], 1e-9)
                << i << "," << j;
    // Every image point lands on its plane point.
    for (const OvPoint* p = plane.First(); p != nullptr; p = p->Next()) {
        const OvPoint* q = image.TOvListHeader<OvPoint>::Find(p->GetId());
        double x = q->GetX();
        double y = q->GetY();
        ASSERT_TRUE(tilt.PTrans2D(&x, &y));
        EXPECT_NEAR(x, p->GetX(), 1e-9);
        EXPECT_NEAR(y, p->GetY(), 1e-9);
    }
    // The lists are left as they were.
    EXPECT_EQ(image.First()->GetR(0), 0.0);
    EXPECT_EQ(image.First()->GetFlag().GetFlag(), 0u);
}

TEST(OvEstimateTiltMatrixTest, FailuresLeaveTheMatrixAlone) {
    OvPointList image;
    OvPointList plane;
    for (unsigned id = 1; id <= 3; ++id) {
        image.Add(OvPoint(id, id * 1.0, id * id * 1.0, 0.0, 0));
        plane.Add(OvPoint(id, id * 2.0, id * 3.0, 0.0, 0));
    }
    image.Add(OvPoint(9, 5.0, 1.0, 0.0, 0));  // its partner is missing
    OvMatrix tilt(3, 3);
    tilt.SetIdent();
    EXPECT_EQ(OvEstimateTiltMatrix(image, plane, tilt), TiltEstimateTooFewPoints);
    EXPECT_TRUE(tilt.IsIdent());

    // Five points on one line do not fix a plane transform.
    OvPointList line;
    OvPointList onPlane;
    for (unsigned id = 1; id <= 5; ++id) {
        line.Add(OvPoint(id, id * 1.0, id * 2.0 + 1.0, 0.0, 0));
        onPlane.Add(OvPoint(id, id * 3.0, id * 1.0, 0.0, 0));
    }
    EXPECT_EQ(OvEstimateTiltMatrix(line, onPlane, tilt), TiltEstimateDegeneratePoints);
    EXPECT_TRUE(tilt.IsIdent());

    OvMatrix wrong(4, 4);
    try {
        OvEstimateTiltMatrix(image, plane, wrong);
        FAIL() << "no throw";
    } catch (int code) {
        EXPECT_EQ(code, kOvErrMatrixAssign);
    }
}

TEST(OvEstimateTiltMatrixTest, PointsOnBothSidesOfTheHorizonAreRefused) {
    // The plane's line x = 10 maps to the image's line at infinity.
    const Mat3 planeToImage{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {-0.1, 0.0, 1.0}}};
    OvPointList image;
    OvPointList plane;
    unsigned id = 1;
    for (double x : {0.0, 4.0, 14.0, 18.0}) {
        for (double y : {0.0, 5.0}) {
            const XY p = Map(planeToImage, {x, y});
            image.Add(OvPoint(id, p.x, p.y, 0.0, 0));
            plane.Add(OvPoint(id, x, y, 0.0, 0));
            ++id;
        }
    }
    OvMatrix tilt(3, 3);
    tilt.SetIdent();
    EXPECT_EQ(OvEstimateTiltMatrix(image, plane, tilt), TiltEstimateHorizonCrossesPoints);
    EXPECT_TRUE(tilt.IsIdent());
}

// ---- the metric rectification --------------------------------------------------------------

// Image points of features on the facade: a window (ids 1-4, 4 m x 2 m from the origin), a
// square panel (ids 5-8, 2 m, from (6, 1)) and a door (ids 9-12, from (10, 0), 1.5 m x 2.5 m).
class MetricFacade : public ::testing::Test {
protected:
    void SetUp() override { Build(kFacadeToImage); }

    void Build(const Mat3& planeToImage) {
        points.Destroy();
        const XY corners[] = {{0, 0},  {4, 0},    {4, 2},      {0, 2},      // window
                              {6, 1},  {8, 1},    {8, 3},      {6, 3},      // square
                              {10, 0}, {11.5, 0}, {11.5, 2.5}, {10, 2.5}};  // door
        unsigned id = 1;
        for (const XY& c : corners) {
            const XY p = Map(planeToImage, c);
            points.Add(OvPoint(id++, p.x, p.y, 0.0, 0));
        }
        def.Clear();
        def.SetPointList(&points);
    }

    // Lines 1 bottom, 2 top, 3 left, 4 right of the window; 5, 6 the square's diagonals;
    // 7 the door's left edge.
    void AddLines() {
        def.MakeDefLine(1, 2);
        def.MakeDefLine(4, 3);
        def.MakeDefLine(1, 4);
        def.MakeDefLine(2, 3);
        def.MakeDefLine(5, 7);
        def.MakeDefLine(6, 8);
        def.MakeDefLine(9, 12);
    }

    void AddRectangleConstraints() {
        def.MakeConstraintDef(1, 2, ConstraintTypeParallel);
        def.MakeConstraintDef(3, 4, ConstraintTypeParallel);
        def.MakeConstraintDef(1, 3, ConstraintTypePerpendicular);
    }

    // The rectified position of a plane point.
    XY Rectified(const OvMatrix& tilt, XY plane) const {
        return Map(tilt, Map(kFacadeToImage, plane));
    }

    OvPointList points;
    OvTiltParallelDef def;
};

TEST_F(MetricFacade, WithKnownLengthTheFacadeComesBackExactly) {
    AddLines();
    AddRectangleConstraints();
    def.MakeConstraintDef(5, 6, ConstraintTypePerpendicular);  // the square's diagonals
    def.GetDefLineList().First()->SetValue(4.0);               // the window is 4 m wide
    OvMatrix tilt(3, 3);
    OvMetricTiltOptions options;
    options.useLineValuesAsLengths = true;
    OvMetricTiltReport report;
    ASSERT_EQ(OvEstimateMetricTilt(def, tilt, options, &report), TiltEstimateOk);
    EXPECT_EQ(report.parallelUsed, 2);
    EXPECT_EQ(report.perpendicularUsed, 2);
    EXPECT_EQ(report.lengthsUsed, 1);
    EXPECT_EQ(report.referenceLineId, 1u);
    EXPECT_LT(report.maxAngle, 1e-9);
    EXPECT_EQ(tilt.GetElem(3, 3), 1.0);
    // Line 1 runs from (0, 0) along +x, so the rectified plane is the facade's own frame.
    for (XY p : {XY{0, 0}, XY{4, 2}, XY{8, 3}, XY{11.5, 2.5}, XY{7.3, -1.2}}) {
        const XY r = Rectified(tilt, p);
        EXPECT_NEAR(r.x, p.x, 1e-8);
        EXPECT_NEAR(r.y, p.y, 1e-8);
    }
}

TEST_F(MetricFacade, WithoutLengthsTheReferenceLineKeepsItsImageLength) {
    AddLines();
    AddRectangleConstraints();
    def.MakeConstraintDef(5, 6, ConstraintTypePerpendicular);
    def.GetDefLineList().First()->SetValue(4.0);  // not looked at by default
    OvMatrix tilt(3, 3);
    ASSERT_EQ(OvEstimateMetricTilt(def, tilt), TiltEstimateOk);
    const OvPoint* a = points.First();
    const OvPoint* b = a->Next();
    const double k = std::hypot(b->GetX() - a->GetX(), b->GetY() - a->GetY()) / 4.0;
    for (XY p : {XY{0, 0}, XY{4, 2}, XY{8, 3}, XY{11.5, 2.5}}) {
        const XY r = Rectified(tilt, p);
        EXPECT_NEAR(r.x, k * p.x, 1e-8);
        EXPECT_NEAR(r.y, k * p.y, 1e-8);
    }
}

TEST_F(MetricFacade, LengthsCanReplaceTheSecondPerpendicularPair) {
    AddLines();
    AddRectangleConstraints();
    // Without a second perpendicular pair the window's aspect is open.
    OvMatrix tilt(3, 3);
    tilt.SetIdent();
    OvMetricTiltOptions options;
    options.useLineValuesAsLengths = true;
    EXPECT_EQ(OvEstimateMetricTilt(def, tilt, options), TiltEstimateTooFewPerpendicular);
    EXPECT_TRUE(tilt.IsIdent());
    // Its height fixes it; the scale comes from the width.
    def.GetDefLineList().Find(3u)->SetValue(2.0);
    def.GetDefLineList().Find(1u)->SetValue(4.0);
    OvMetricTiltReport report;
    ASSERT_EQ(OvEstimateMetricTilt(def, tilt, options, &report), TiltEstimateOk);
    EXPECT_EQ(report.lengthsUsed, 2);
    for (XY p : {XY{0, 0}, XY{4, 2}, XY{11.5, 2.5}}) {
        const XY r = Rectified(tilt, p);
        EXPECT_NEAR(r.x, p.x, 1e-8);
        EXPECT_NEAR(r.y, p.y, 1e-8);
    }
}

TEST_F(MetricFacade, TheXAxisLineOrAnExplicitReferenceSetsTheFrame) {
    AddLines();
    AddRectangleConstraints();
    def.MakeConstraintDef(5, 6, ConstraintTypePerpendicular);
    // The door's left edge, 2.5 m from (10, 0) upwards, becomes the +x axis from the origin:
    // the facade turns by -90 degrees about the door's corner.
    OvTiltDefLine* door = def.GetDefLineList().Find(7u);
    door->SetXAxisFlag(1);
    door->SetValue(2.5);
    OvMatrix tilt(3, 3);
    OvMetricTiltOptions options;
    options.useLineValuesAsLengths = true;
    OvMetricTiltReport report;
    ASSERT_EQ(OvEstimateMetricTilt(def, tilt, options, &report), TiltEstimateOk);
    EXPECT_EQ(report.referenceLineId, 7u);
    for (XY p : {XY{10, 0}, XY{0, 0}, XY{4, 2}, XY{11.5, 2.5}}) {
        const XY r = Rectified(tilt, p);
        EXPECT_NEAR(r.x, p.y, 1e-8);
        EXPECT_NEAR(r.y, -(p.x - 10.0), 1e-8);
    }
    // An explicit reference wins over the flag: line 2 runs from (0, 2) to (4, 2).
    options.referenceLineId = 2;
    ASSERT_EQ(OvEstimateMetricTilt(def, tilt, options, &report), TiltEstimateOk);
    const XY r = Rectified(tilt, {4, 0});
    EXPECT_NEAR(r.x, 4.0, 1e-8);
    EXPECT_NEAR(r.y, -2.0, 1e-8);
    options.referenceLineId = 99;
    EXPECT_EQ(OvEstimateMetricTilt(def, tilt, options, &report), TiltEstimateNoReferenceLine);
}

TEST_F(MetricFacade, InsufficientOrDegenerateConstraintsAreNamed) {
    AddLines();
    OvMatrix tilt(3, 3);
    tilt.SetIdent();
    OvMetricTiltReport report;
    // No constraints at all, then one vanishing direction twice.
    EXPECT_EQ(OvEstimateMetricTilt(def, tilt, {}, &report), TiltEstimateTooFewParallel);
    def.MakeConstraintDef(1, 2, ConstraintTypeParallel);
    EXPECT_EQ(OvEstimateMetricTilt(def, tilt), TiltEstimateTooFewParallel);
    def.MakeDefLine(9, 10);  // 8: the door's sill, parallel to the window's sill
    def.MakeConstraintDef(2, 8, ConstraintTypeParallel);
    EXPECT_EQ(OvEstimateMetricTilt(def, tilt, {}, &report), TiltEstimateTooFewParallel);
    EXPECT_EQ(report.parallelUsed, 2);
    EXPECT_EQ(report.result, TiltEstimateTooFewParallel);
    // A second direction: now the metric step is short of conditions.
    def.MakeConstraintDef(3, 4, ConstraintTypeParallel);
    EXPECT_EQ(OvEstimateMetricTilt(def, tilt), TiltEstimateTooFewPerpendicular);
    def.MakeConstraintDef(1, 3, ConstraintTypePerpendicular);
    def.MakeConstraintDef(2, 4, ConstraintTypePerpendicular);  // the same condition again
    EXPECT_EQ(OvEstimateMetricTilt(def, tilt), TiltEstimateTooFewPerpendicular);
    // A sill "perpendicular" to the parallel top line cannot be made metric.
    def.MakeConstraintDef(1, 2, ConstraintTypePerpendicular);
    EXPECT_EQ(OvEstimateMetricTilt(def, tilt), TiltEstimateInconsistent);
    EXPECT_TRUE(tilt.IsIdent());
}

TEST_F(MetricFacade, MissingAndDegenerateLines) {
    AddLines();
    AddRectangleConstraints();
    def.MakeConstraintDef(5, 6, ConstraintTypePerpendicular);
    def.GetConstraintList().Add(new OvTiltDefLineConstraint(1, 42, ConstraintTypeParallel));
    OvMatrix tilt(3, 3);
    EXPECT_EQ(OvEstimateMetricTilt(def, tilt), TiltEstimateMissingLine);
    delete def.GetConstraintList().Subtract(def.GetConstraintList().Last());
    // A constraint of another type is not looked at, even with unknown lines.
    def.GetConstraintList().Add(new OvTiltDefLineConstraint(1, 42, ConstraintTypeNone));
    EXPECT_EQ(OvEstimateMetricTilt(def, tilt), TiltEstimateOk);

    points.Add(OvPoint(20, points.First()->GetX(), points.First()->GetY(), 0.0, 0));
    def.GetDefLineList().Add(new OvTiltDefLine(1, 20));
    EXPECT_EQ(OvEstimateMetricTilt(def, tilt), TiltEstimateDegenerateLine);
    delete points.Subtract(20u);
    EXPECT_EQ(OvEstimateMetricTilt(def, tilt), TiltEstimateMissingLine);
    OvTiltParallelDef empty;
    EXPECT_EQ(OvEstimateMetricTilt(empty, tilt), TiltEstimateTooFewParallel);
}

TEST_F(MetricFacade, AFacadeThatCrossesItsOwnHorizonIsRefused) {
    // The plane's line x = 9 goes to infinity in this "image": the door lies beyond it.
    Build(Mat3{{{1.0, 0.1, 0.0}, {0.0, 1.0, 0.0}, {-1.0 / 9.0, 0.0, 1.0}}});
    AddLines();
    AddRectangleConstraints();
    def.MakeConstraintDef(5, 6, ConstraintTypePerpendicular);
    OvMatrix tilt(3, 3);
    EXPECT_EQ(OvEstimateMetricTilt(def, tilt), TiltEstimateHorizonCrossesPoints);
}

TEST_F(MetricFacade, NoisyMeasurementsGiveSmallAngleErrors) {
    std::mt19937 random(4711);
    std::normal_distribution<double> noise(0.0, 0.002);
    for (OvPoint* p = points.First(); p != nullptr; p = p->Next())
        p->Set(p->GetX() + noise(random), p->GetY() + noise(random), 0.0);
    AddLines();
    AddRectangleConstraints();
    def.MakeConstraintDef(5, 6, ConstraintTypePerpendicular);
    def.MakeDefLine(10, 11);  // 8: the door's right edge
    def.MakeConstraintDef(7, 8, ConstraintTypeParallel);
    def.MakeConstraintDef(7, 1, ConstraintTypePerpendicular);
    OvMatrix tilt(3, 3);
    OvMetricTiltReport report;
    ASSERT_EQ(OvEstimateMetricTilt(def, tilt, {}, &report), TiltEstimateOk);
    EXPECT_EQ(report.parallelUsed, 3);
    EXPECT_EQ(report.perpendicularUsed, 3);
    EXPECT_GT(report.rmsAngle, 0.0);
    EXPECT_LT(report.maxAngle, 0.05);
    EXPECT_LE(report.rmsAngle, report.maxAngle);
    // Shape is kept up to scale: the window stays twice as wide as high.
    const XY o = Rectified(tilt, {0, 0});
    const XY w = Rectified(tilt, {4, 0});
    const XY h = Rectified(tilt, {0, 2});
    EXPECT_NEAR(std::hypot(w.x - o.x, w.y - o.y) / std::hypot(h.x - o.x, h.y - o.y), 2.0, 0.05);
}

// ---- on a tilt transform ------------------------------------------------------------------

TEST(OvEstimateTiltTrafoTest, FromMeasuredAndDefinitionPointsThroughTheDistortion) {
    // The camera's distortion is removed before the tilt matrix: the synthetic image points are
    // made by distorting the ideal ones, so that the correction gives them back.
    const OvCamera camera(7, 50.0, 0.0, 0.0, 2e-5, 0.0, 0.0, "lens");
    OvTiltTrafo trafo;
    trafo.SetDistortCameraFlag(true);
    trafo.SetDistortCameraParam(camera);
    unsigned id = 1;
    for (double y : {0.0, 3.0, 6.0}) {
        for (double x : {0.0, 5.0, 10.0}) {
            const XY ideal = Map(kFacadeToImage, {x, y});
            double u = ideal.x;
            double v = ideal.y;
            ASSERT_TRUE(camera.InvAdjust(&u, &v));
            trafo.GetMeasPoints().AddPoint(OvPoint(id, u, v, 0.0, 0));
            trafo.GetBikoList().AddPoint(OvPoint(id, x, y, 0.0, 0));
            ++id;
        }
    }
    ASSERT_EQ(OvEstimateTiltTrafo(trafo), TiltEstimateOk);
    // Every measured point now lands on its definition point through the whole transform.
    const OvPoint* d = trafo.GetBikoList().First();
    for (const OvPoint* m = trafo.GetMeasPoints().First(); m != nullptr; m = m->Next()) {
        OvPoint out;
        ASSERT_TRUE(trafo.Transform(m, &out));
        EXPECT_NEAR(out.GetX(), d->GetX(), 1e-7);
        EXPECT_NEAR(out.GetY(), d->GetY(), 1e-7);
        d = d->Next();
    }
    // Too few definition points: the matrix stays.
    OvTiltTrafo few;
    few.GetMeasPoints().AddPoint(OvPoint(1, 0.0, 0.0, 0.0, 0));
    few.GetBikoList().AddPoint(OvPoint(1, 0.0, 0.0, 0.0, 0));
    EXPECT_EQ(OvEstimateTiltTrafo(few), TiltEstimateTooFewPoints);
    EXPECT_TRUE(few.GetTiltMat().IsIdent());
}

TEST_F(MetricFacade, OnATiltTransformsOwnParallelDefinition) {
    OvTiltTrafo trafo;
    for (const OvPoint* p = points.First(); p != nullptr; p = p->Next())
        trafo.GetMeasPoints().AddPoint(*p);
    OvTiltParallelDef& own = trafo.GetParallelDef();
    own.MakeDefLine(1, 2)->SetValue(4.0);
    own.MakeDefLine(4, 3);
    own.MakeDefLine(1, 4);
    own.MakeDefLine(2, 3);
    own.MakeDefLine(5, 7);
    own.MakeDefLine(6, 8);
    own.MakeConstraintDef(1, 2, ConstraintTypeParallel);
    own.MakeConstraintDef(3, 4, ConstraintTypeParallel);
    own.MakeConstraintDef(1, 3, ConstraintTypePerpendicular);
    own.MakeConstraintDef(5, 6, ConstraintTypePerpendicular);
    OvMetricTiltOptions options;
    options.useLineValuesAsLengths = true;
    ASSERT_EQ(OvEstimateMetricTiltTrafo(trafo, options), TiltEstimateOk);
    for (XY p : {XY{0, 0}, XY{4, 2}, XY{8, 3}}) {
        const XY r = Map(trafo.GetTiltMat(), Map(kFacadeToImage, p));
        EXPECT_NEAR(r.x, p.x, 1e-8);
        EXPECT_NEAR(r.y, p.y, 1e-8);
    }
    // The transform's own definition still refers to its own points.
    EXPECT_EQ(trafo.GetParallelDef().GetPointList(), &trafo.GetMeasPoints().GetPointList());
    OvTiltTrafo empty;
    EXPECT_EQ(OvEstimateMetricTiltTrafo(empty), TiltEstimateTooFewParallel);
}

TEST(OvEstimateTiltTest, ResultTexts) {
    EXPECT_STREQ(GetTiltEstimateResultText(TiltEstimateOk), "ok");
    EXPECT_STREQ(GetTiltEstimateResultText(TiltEstimateTooFewPerpendicular),
                 "too few independent perpendicular constraints or lengths");
    EXPECT_STREQ(GetTiltEstimateResultText(static_cast<eOvTiltEstimateResult>(99)),
                 "unknown result");
}

}  // namespace
}  // namespace orvo
