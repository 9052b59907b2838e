// The camera record: values, validity, the distortion polynomial, Adjust and InvAdjust with
// the diagnosis of the inverse, and the monotony check of the correction curve.
#include "orvo/model/camera.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "orvo/model/camera_list.h"
#include "orvo/model/point.h"
#include "orvo/model/point_list.h"

namespace orvo {
namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();

// The relative correction written out plainly: A1·(r² − R0²) + A2·(r⁴ − R0⁴).
double PlainCorrection(double r, double A1, double A2, double R0) {
    return A1 * (r * r - R0 * R0) + A2 * (std::pow(r, 4) - std::pow(R0, 4));
}

TEST(CameraValues, DefaultIsAllZeroAndInvalid) {
    const OvCamera camera;
    EXPECT_EQ(camera.GetId(), 0u);
    EXPECT_EQ(camera.GetC(), 0.0);
    EXPECT_EQ(camera.GetXh(), 0.0);
    EXPECT_EQ(camera.GetYh(), 0.0);
    EXPECT_EQ(camera.GetA1(), 0.0);
    EXPECT_EQ(camera.GetA2(), 0.0);
    EXPECT_EQ(camera.GetR0(), 0.0);
    EXPECT_STREQ(camera.GetInfo().chars(), "");
    EXPECT_FALSE(camera.IsValid());
}

TEST(CameraValues, ValidityNeedsIdAndANonZeroNumberC) {
    EXPECT_TRUE(OvCamera(1, 50.0, 0, 0, 0, 0, 0, "").IsValid());
    EXPECT_TRUE(OvCamera(1, -50.0, 0, 0, 0, 0, 0, "").IsValid());
    EXPECT_FALSE(OvCamera(0, 50.0, 0, 0, 0, 0, 0, "").IsValid());
    EXPECT_FALSE(OvCamera(1, 0.0, 0, 0, 0, 0, 0, "").IsValid());
    EXPECT_FALSE(OvCamera(1, kNaN, 0, 0, 0, 0, 0, "").IsValid());
}

TEST(CameraValues, SetGetAndSettersReturnWhatTheyStore) {
    OvCamera camera;
    camera.Set(7, -35.5, 0.1, -0.2, 1e-5, -2e-8, 12.0, "Tele");
    unsigned id = 0;
    double v[6] = {};
    char info[16];
    std::memset(info, 'x', sizeof info);
    camera.Get(id, v[0], v[1], v[2], v[3], v[4], v[5], info);
    EXPECT_EQ(id, 7u);
    EXPECT_EQ(v[0], -35.5);  // stored as given: only reading makes C positive
    EXPECT_EQ(v[1], 0.1);
    EXPECT_EQ(v[2], -0.2);
    EXPECT_EQ(v[3], 1e-5);
    EXPECT_EQ(v[4], -2e-8);
    EXPECT_EQ(v[5], 12.0);
    EXPECT_STREQ(info, "Tele");
    EXPECT_EQ(info[5], 'x');  // nothing beyond the terminating NUL

    camera.Get(id, v[0], v[1], v[2], v[3], v[4], v[5], nullptr);  // no text wanted
    char small[3];
    camera.Get(id, v[0], v[1], v[2], v[3], v[4], v[5], small, sizeof small);
    EXPECT_STREQ(small, "Te");

    EXPECT_EQ(camera.SetC(-1.5), -1.5);
    EXPECT_EQ(camera.GetC(), -1.5);
    EXPECT_EQ(camera.SetXh(2.0), 2.0);
    EXPECT_EQ(camera.SetYh(3.0), 3.0);
    EXPECT_EQ(camera.SetA1(4.0), 4.0);
    EXPECT_EQ(camera.SetA2(5.0), 5.0);
    EXPECT_EQ(camera.SetR0(6.0), 6.0);
    EXPECT_EQ(camera.GetR0(), 6.0);

    camera.Set(8, 1, 2, 3, 4, 5, 6, nullptr);
    EXPECT_STREQ(camera.GetInfo().chars(), "");
}

TEST(CameraValues, CopiesTakeValuesTextAndFlagsButSetLeavesTheFlags) {
    OvCamera original(4, 50, 1, 2, 3, 4, 5, "Normal");
    original.GetFlag().SetFlag(0x5);
    const OvCamera copy(original);
    EXPECT_EQ(copy.GetId(), 4u);
    EXPECT_EQ(copy.GetA2(), 4.0);
    EXPECT_STREQ(copy.GetInfo().chars(), "Normal");
    EXPECT_EQ(copy.GetFlag().GetFlag(), 0x5u);

    OvCamera assigned;
    assigned = original;
    EXPECT_EQ(assigned.GetR0(), 5.0);
    EXPECT_EQ(assigned.GetFlag().GetFlag(), 0x5u);

    OvCamera target;
    target.GetFlag().SetFlag(0x100);
    target.Set(original);
    EXPECT_EQ(target.GetId(), 4u);
    EXPECT_EQ(target.GetXh(), 1.0);
    EXPECT_STREQ(target.GetInfo().chars(), "Normal");
    EXPECT_EQ(target.GetFlag().GetFlag(), 0x100u);
}

TEST(CameraValues, MaskedWalkFollowsTheFlagWord) {
    OvCameraList list;
    OvCamera* a = list.Add(new OvCamera(1, 10, 0, 0, 0, 0, 0, "a"));
    OvCamera* b = list.Add(new OvCamera(2, 20, 0, 0, 0, 0, 0, "b"));
    OvCamera* c = list.Add(new OvCamera(3, 30, 0, 0, 0, 0, 0, "c"));
    a->GetFlag().SetFlag(0x1);
    c->GetFlag().SetFlag(0x3);
    EXPECT_EQ(a->First(0x1), a);
    EXPECT_EQ(a->Next(0x1), c);
    EXPECT_EQ(b->First(0x2), c);
    EXPECT_EQ(c->Previous(0x1), a);
    EXPECT_EQ(c->Previous(0x2), nullptr);
    EXPECT_EQ(a->Next(0x4), nullptr);
    EXPECT_EQ(a->Next(), b);
    EXPECT_EQ(b->Previous(), a);
    EXPECT_EQ(c->Next(), nullptr);
}

TEST(CameraDistortion, CalcdrAndCalcdAgainstThePlainPolynomial) {
    const OvCamera camera(1, 50, 0, 0, 1e-5, -3e-9, 10.0, "");
    EXPECT_EQ(camera.Calcdr(0.0, 0.0), 0.0);
    EXPECT_EQ(camera.Calcdr(kNaN, 1.0), 0.0);
    EXPECT_NEAR(camera.Calcdr(3.0, 4.0), PlainCorrection(5.0, 1e-5, -3e-9, 10.0), 1e-18);
    EXPECT_NEAR(camera.Calcd(3.0, 4.0), PlainCorrection(5.0, 1e-5, -3e-9, 10.0), 1e-18);
    EXPECT_NEAR(camera.Calcdr(-20.0, 15.0), PlainCorrection(25.0, 1e-5, -3e-9, 10.0), 1e-17);
    // At the origin Calcd keeps the constant terms that Calcdr's zero test leaves out.
    EXPECT_NEAR(camera.Calcd(0.0, 0.0), -1e-5 * 100 + 3e-9 * 1e4, 1e-18);

    const OvCamera edgeCase(1, 50, 0, 0, 1e-5, 0.0, 10.0, "");
    EXPECT_DOUBLE_EQ(edgeCase.Calcd(0.0, 0.0), -0.001);
    EXPECT_EQ(edgeCase.Calcdr(0.0, 0.0), 0.0);
}

TEST(CameraDistortion, AdjustSubtractsThePrincipalPointAndTheRadialCorrection) {
    const OvCamera camera(1, 50, 0.1, -0.2, 1e-5, 1e-8, 10.0, "");
    double x = 10.1, y = 4.8;
    ASSERT_TRUE(camera.Adjust(&x, &y));
    const double u = 10.1 - 0.1, v = 4.8 + 0.2;
    const double k = PlainCorrection(std::hypot(u, v), 1e-5, 1e-8, 10.0);
    EXPECT_NEAR(x, u - k * u, 1e-13);
    EXPECT_NEAR(y, v - k * v, 1e-13);

    const OvCamera plain(1, 50, 0, 0, 0, 0, 7.0, "");
    double px = 12.5, py = -3.25;
    ASSERT_TRUE(plain.Adjust(&px, &py));
    EXPECT_EQ(px, 12.5);
    EXPECT_EQ(py, -3.25);
}

TEST(CameraDistortion, CameraWithoutIdRefusesBothDirections) {
    const OvCamera camera(0, 50, 1, 1, 1e-5, 0, 0, "");
    double x = 3, y = 4;
    EXPECT_FALSE(camera.Adjust(&x, &y));
    EXPECT_FALSE(camera.InvAdjust(&x, &y));
    EXPECT_EQ(x, 3.0);
    EXPECT_EQ(y, 4.0);
    OvPoint p(1, 3, 4, 5, 0);
    EXPECT_FALSE(camera.Adjust(&p));
    EXPECT_FALSE(camera.InvAdjust(&p));
    EXPECT_EQ(p.GetX(), 3.0);
    EXPECT_EQ(camera.DiagnoseInvAdjust(3, 4).result, InvAdjustNoCamera);
}

TEST(CameraDistortion, PointAndListForms) {
    const OvCamera camera(2, 50, 0.5, 0.25, 2e-5, 0, 0, "");
    OvPoint p(9, 10.5, 5.25, 77.0, 0);
    ASSERT_TRUE(camera.Adjust(&p));
    double x = 10.5, y = 5.25;
    camera.Adjust(&x, &y);
    EXPECT_EQ(p.GetX(), x);
    EXPECT_EQ(p.GetY(), y);
    EXPECT_EQ(p.GetZ(), 77.0);  // z is not an image coordinate
    ASSERT_TRUE(camera.InvAdjust(&p));
    camera.InvAdjust(&x, &y);
    EXPECT_EQ(p.GetX(), x);
    EXPECT_EQ(p.GetY(), y);
    EXPECT_FALSE(camera.Adjust(static_cast<OvPoint*>(nullptr)));
    EXPECT_FALSE(camera.InvAdjust(static_cast<OvPoint*>(nullptr)));

    OvPointList empty;
    EXPECT_TRUE(camera.Adjust(&empty));
    EXPECT_TRUE(camera.InvAdjust(&empty));
    EXPECT_FALSE(camera.Adjust(static_cast<OvPointList*>(nullptr)));
    EXPECT_FALSE(camera.InvAdjust(static_cast<OvPointList*>(nullptr)));

    OvPointList list;
    list.Add(new OvPoint(1, 10.5, 5.25, 0, 0));
    list.Add(new OvPoint(2, -20.0, 12.0, 0, 0));
    OvPointList expected(list);
    for (OvPoint* q = expected.First(); q != nullptr; q = q->Next())
        camera.Adjust(q);
    ASSERT_TRUE(camera.Adjust(&list));
    for (OvPoint *q = list.First(), *e = expected.First(); q != nullptr;
         q = q->Next(), e = e->Next()) {
        EXPECT_EQ(q->GetX(), e->GetX());
        EXPECT_EQ(q->GetY(), e->GetY());
    }

    // Without a camera id the list is left alone, and the answer is still true.
    const OvCamera none(0, 50, 0.5, 0.25, 2e-5, 0, 0, "");
    EXPECT_TRUE(none.Adjust(&list));
    EXPECT_EQ(list.First()->GetX(), expected.First()->GetX());
    EXPECT_TRUE(none.InvAdjust(&list));
    EXPECT_EQ(list.First()->GetX(), expected.First()->GetX());
}

TEST(CameraInverse, WithoutDistortionTheFirstPassEndsIt) {
    const OvCamera camera(1, 50, 0, 0, 0, 0, 25.0, "");
    double x = 12.0, y = -7.0;
    OvInvAdjustDiagnosis diagnosis;
    ASSERT_TRUE(camera.InvAdjust(&x, &y, &diagnosis));
    EXPECT_EQ(x, 12.0);
    EXPECT_EQ(y, -7.0);
    EXPECT_EQ(diagnosis.result, InvAdjustConverged);
    EXPECT_EQ(diagnosis.passes, 1);
    EXPECT_EQ(diagnosis.lastStep, 0.0);
}

TEST(CameraInverse, UndoesAdjustWhenThePrincipalPointIsZero) {
    const OvCamera camera(1, 24, 0, 0, -4e-5, 2e-8, 12.0, "");
    for (double x0 : {-18.0, -3.5, 0.0, 0.25, 11.0, 17.9}) {
        for (double y0 : {-12.0, 0.0, 4.75, 11.9}) {
            double x = x0, y = y0;
            ASSERT_TRUE(camera.Adjust(&x, &y));
            ASSERT_TRUE(camera.InvAdjust(&x, &y)) << x0 << ", " << y0;
            EXPECT_NEAR(x, x0, 1e-9);
            EXPECT_NEAR(y, y0, 1e-9);
        }
    }
}

TEST(CameraInverse, SolvesTheFixedPointWithThePrincipalPointAsStored) {
    // The step uses (u − Xh) while s comes from u and v, and Xh, Yh are added at the end: the
    // result (x, y) must satisfy u = f(u, v)·(u − Xh) + x0 with u = x − Xh.
    const double Xh = 0.3, Yh = -0.15, A1 = 3e-5, A2 = -1e-8, R0 = 8.0;
    const OvCamera camera(1, 35, Xh, Yh, A1, A2, R0, "");
    const double x0 = 14.0, y0 = -9.5;
    double x = x0, y = y0;
    ASSERT_TRUE(camera.InvAdjust(&x, &y));
    const double u = x - Xh, v = y - Yh;
    const double s = u * u + v * v;
    const double f = A1 * (s - R0 * R0) + A2 * (s * s - std::pow(R0, 4));
    EXPECT_NEAR(u, f * (u - Xh) + x0, 1e-9);
    EXPECT_NEAR(v, f * (v - Yh) + y0, 1e-9);
    // Because of that mixture it is not the exact inverse of Adjust here.
    double ax = x, ay = y;
    camera.Adjust(&ax, &ay);
    EXPECT_GT(std::hypot(ax - x0, ay - y0), 1e-6);
}

TEST(CameraInverse, RealisticWideAngleLensConvergesInAFewPasses) {
    // A1 = 1e-5 per mm² at an image radius of 30 mm: 0.9 % correction at the edge.
    const OvCamera camera(1, 24, 0, 0, 1e-5, 0, 0, "");
    double x = 30.0, y = 0.0;
    camera.Adjust(&x, &y);
    OvInvAdjustDiagnosis diagnosis;
    ASSERT_TRUE(camera.InvAdjust(&x, &y, &diagnosis));
    EXPECT_NEAR(x, 30.0, 1e-9);
    EXPECT_EQ(diagnosis.result, InvAdjustConverged);
    EXPECT_LT(diagnosis.lastStep, kOvInvAdjustTolerance);
    // The step shrinks by about 3·A1·r² = 0.027 per pass near the solution.
    EXPECT_GE(diagnosis.passes, 5);
    EXPECT_LE(diagnosis.passes, 8);
    EXPECT_NEAR(diagnosis.contraction, 3 * 1e-5 * 900, 0.01);
}

TEST(CameraInverse, DiagnosisNamesWhyItFailed) {
    // Far too strong for this radius: every step is larger than the one before.
    const OvCamera strong(1, 24, 0, 0, 0.01, 0, 0, "");
    double x = 30.0, y = 0.0;
    OvInvAdjustDiagnosis diagnosis;
    EXPECT_FALSE(strong.InvAdjust(&x, &y, &diagnosis));
    EXPECT_EQ(x, 30.0);
    EXPECT_EQ(y, 0.0);
    EXPECT_EQ(diagnosis.result, InvAdjustNotContracting);
    EXPECT_STREQ(GetInvAdjustResultText(diagnosis.result),
                 "iteration does not contract: distortion too strong at this radius");

    // Contracting by about 0.58 per pass: 25 passes are not enough for 1e-18.
    const OvCamera slow(1, 24, 0, 0, 2e-4, 0, 0, "");
    diagnosis = slow.DiagnoseInvAdjust(25.0, 0.0);
    EXPECT_EQ(diagnosis.result, InvAdjustTooSlow);
    EXPECT_EQ(diagnosis.passes, kOvInvAdjustMaxPasses);
    EXPECT_GT(diagnosis.contraction, 0.4);
    EXPECT_LT(diagnosis.contraction, 0.8);
    EXPECT_LT(diagnosis.lastStep, diagnosis.firstStep);

    diagnosis = slow.DiagnoseInvAdjust(kNaN, 0.0);
    EXPECT_EQ(diagnosis.result, InvAdjustNotFinite);

    // Coordinates near 1e8 mm carry rounding noise far above the absolute tolerance: this
    // iteration contracts fast (about 0.27 per pass) but its steps stall at a few ulps.
    const OvCamera tiny(1, 24, 0, 0, 1e-17, 0, 0, "");
    const double far = 82051767.394444585;
    diagnosis = tiny.DiagnoseInvAdjust(far, 0.3 * far);
    EXPECT_EQ(diagnosis.result, InvAdjustRoundingLimit);
    EXPECT_GE(diagnosis.lastStep, kOvInvAdjustTolerance);
    EXPECT_LT(diagnosis.lastStep, 1e-12);

    double* none = nullptr;
    EXPECT_FALSE(slow.InvAdjust(none, &y, &diagnosis));
    EXPECT_EQ(diagnosis.result, InvAdjustNullArgument);
    EXPECT_STREQ(GetInvAdjustResultText(static_cast<eOvInvAdjustResult>(99)), "unknown result");
}

// The corrected radius r·(1 − Calcdr) sampled finely; the first radius where it stops rising.
double SampledTurnRadius(const OvCamera& camera, double maxRadius) {
    const int steps = 200000;
    double previous = 0.0;
    for (int i = 1; i <= steps; ++i) {
        const double r = maxRadius * i / steps;
        const double corrected = r * (1.0 - camera.Calcdr(r, 0.0));
        if (corrected <= previous) return maxRadius * (i - 1) / steps;
        previous = corrected;
    }
    return -1.0;
}

TEST(CameraMonotony, UndistortedAndMildLensesAreMonotonic) {
    const OvDistortionMonotony none = OvCamera(1, 50, 0, 0, 0, 0, 0, "").CheckMonotony(40.0);
    EXPECT_TRUE(none.monotonic);
    EXPECT_EQ(none.turnRadius, -1.0);
    EXPECT_EQ(none.minSlope, 1.0);

    const OvCamera mild(1, 24, 0, 0, 1e-4, 0, 0, "");
    const OvDistortionMonotony result = mild.CheckMonotony(30.0);
    EXPECT_TRUE(result.monotonic);
    EXPECT_NEAR(result.minSlope, 1.0 - 3e-4 * 900.0, 1e-12);
    EXPECT_DOUBLE_EQ(result.minSlopeRadius, 30.0);
    EXPECT_EQ(SampledTurnRadius(mild, 30.0), -1.0);
}

TEST(CameraMonotony, AFailedCalibrationTurnsBackInsideTheImage) {
    const OvCamera failed(1, 24, 0, 0, 5e-4, 0, 0, "");
    const OvDistortionMonotony result = failed.CheckMonotony(30.0);
    EXPECT_FALSE(result.monotonic);
    EXPECT_NEAR(result.turnRadius, std::sqrt(1.0 / (3 * 5e-4)), 1e-9);
    EXPECT_NEAR(result.turnRadius, SampledTurnRadius(failed, 30.0), 1e-3);
    EXPECT_LT(result.minSlope, 0.0);

    // With R0 and a negative A2 the slope has its minimum inside the range.
    const OvCamera wavy(1, 24, 0, 0, 4e-4, -1e-7, 5.0, "");
    const OvDistortionMonotony dip = wavy.CheckMonotony(50.0);
    const double c0 = 1 + 4e-4 * 25 - 1e-7 * 625;
    const double vertex = 1.2e-3 / (2 * 5e-7);
    EXPECT_NEAR(dip.minSlopeRadius, std::sqrt(vertex), 1e-9);
    EXPECT_NEAR(dip.minSlope, c0 - 1.2e-3 * vertex + 5e-7 * vertex * vertex, 1e-12);
    EXPECT_EQ(dip.monotonic, dip.minSlope > 0.0);
    EXPECT_EQ(SampledTurnRadius(wavy, 50.0) < 0.0, dip.monotonic);

    const OvCamera strongWavy(1, 24, 0, 0, 6e-4, -1e-7, 0.0, "");
    const OvDistortionMonotony strong = strongWavy.CheckMonotony(50.0);
    EXPECT_FALSE(strong.monotonic);
    EXPECT_NEAR(strong.turnRadius, SampledTurnRadius(strongWavy, 50.0), 1e-3);
}

TEST(CameraMonotony, InvalidArgumentsAreNotMonotonic) {
    const OvCamera camera(1, 24, 0, 0, 1e-5, 0, 0, "");
    EXPECT_FALSE(camera.CheckMonotony(-1.0).monotonic);
    EXPECT_TRUE(std::isnan(camera.CheckMonotony(kNaN).minSlope));
    EXPECT_FALSE(OvCamera(1, 24, 0, 0, kNaN, 0, 0, "").CheckMonotony(10.0).monotonic);
    EXPECT_TRUE(camera.CheckMonotony(0.0).monotonic);
}

}  // namespace
}  // namespace orvo
