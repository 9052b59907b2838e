// The image-coordinate converter: every mode with a plain and with a polynomial main
// transformation, checked against the transformation equations and the camera correction
// written out here; the combined matrices; the list transforms.
#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "orvo/model/camera.h"
#include "orvo/model/photo.h"
#include "orvo/model/point_list.h"
#include "orvo/numerics/biko_transform.h"

namespace orvo {
namespace {

constexpr double kTight = 1e-12;

struct XY {
    double x;
    double y;
};

// The stages written out from their equations (not through the library's matrices).
XY ApplyAffin(const double p[6], XY v) {
    return {p[0] + p[1] * v.x + p[2] * v.y, p[3] + p[4] * v.x + p[5] * v.y};
}
XY ApplyHelmert(const double p[4], XY v) {
    return {p[0] + p[1] * v.x - p[3] * v.y, p[2] + p[3] * v.x + p[1] * v.y};
}
XY ApplyPolynomial(const double p[20], XY v) {
    const double m[10] = {1.0,
                          v.x,
                          v.y,
                          v.x * v.x,
                          v.x * v.y,
                          v.y * v.y,
                          v.x * v.x * v.x,
                          v.x * v.x * v.y,
                          v.x * v.y * v.y,
                          v.y * v.y * v.y};
    XY r{0.0, 0.0};
    for (int i = 0; i < 10; ++i) {
        r.x += p[i] * m[i];
        r.y += p[10 + i] * m[i];
    }
    return r;
}
// The camera correction: relative to the principal point, radial distortion removed.
XY ApplyAdjust(double Xh, double Yh, double A1, double A2, double R0, XY v) {
    const double x = v.x - Xh;
    const double y = v.y - Yh;
    const double r = std::sqrt(x * x + y * y);
    const double k = (r * r * r * r - R0 * R0 * R0 * R0) * A2 + (r * r - R0 * R0) * A1;
    return {x - k * x, y - k * y};
}

const double kPre[6] = {12.5, 1.002, 0.003, -7.25, -0.002, 0.998};  // Affin
const double kMain[4] = {-3.0, 0.5, 4.0, 0.01};                     // Helmert
const double kCam[5] = {0.0, 0.0, 2e-5, -1e-9, 10.0};               // Xh, Yh, A1, A2, R0

OvTrafo2d MakeTrafo(eOvTrafo2DType type, const double* p, int n) {
    OvTrafo2d t;
    t.SetType(type);
    for (int i = 0; i < n; ++i)
        t.SetParam(i, p[i]);
    return t;
}

// A photo whose pre stage is kPre (Affin) and whose main stage is kMain (Helmert), with a
// camera of id 3.
OvPhoto PlainPhoto() {
    OvPhoto photo(1);
    photo.SetReseauPreTrafo(MakeTrafo(eOvTrafo2DAffin, kPre, 6));
    photo.SetReseauMainTrafo(MakeTrafo(eOvTrafo2DHelmert, kMain, 4));
    photo.SetCamera(OvCamera(3, 50.0, kCam[0], kCam[1], kCam[2], kCam[3], kCam[4], "cam"));
    return photo;
}

// Main stage: a mild polynomial and an inverse polynomial of its own (the converter takes the
// inverse as given; it need not be the exact inverse).
double kPoly[20];
double kPolyInv[20];

OvPhoto PolyPhoto() {
    for (double& p : kPoly)
        p = 0.0;
    for (double& p : kPolyInv)
        p = 0.0;
    const std::pair<int, double> poly[] = {{0, 1.0},   {1, 0.9},   {2, 0.01}, {3, 1e-4},  {9, 2e-6},
                                           {10, -2.0}, {11, 0.02}, {12, 1.1}, {14, -3e-4}};
    const std::pair<int, double> inverse[] = {{0, -1.0}, {1, 1.1},   {5, 5e-4},
                                              {10, 1.5}, {12, 0.95}, {17, 1e-6}};
    for (const auto& [i, value] : poly)
        kPoly[i] = value;
    for (const auto& [i, value] : inverse)
        kPolyInv[i] = value;
    OvPhoto photo = PlainPhoto();
    photo.SetReseauMainTrafo(MakeTrafo(eOvTrafo2DPolynomial, kPoly, 20));
    photo.SetPolyInvTrafo(MakeTrafo(eOvTrafo2DPolynomial, kPolyInv, 20));
    return photo;
}

XY Convert(const OvPhoto& photo, eConvertBikoMode mode, XY v, bool* ok = nullptr) {
    OvBikoTransform t(&photo, mode);
    double z = 42.0;
    const bool result = t.Transform(&v.x, &v.y, &z);
    EXPECT_EQ(z, 42.0);  // z is never touched
    if (ok != nullptr) *ok = result;
    return v;
}

void ExpectNear(XY actual, XY expected, double tolerance) {
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
}

const XY kStart{103.25, -48.5};

TEST(BikoTransformPlain, ForwardModesFollowTheStages) {
    const OvPhoto photo = PlainPhoto();
    const XY pre = ApplyAffin(kPre, kStart);
    const XY biko = ApplyHelmert(kMain, pre);
    ExpectNear(Convert(photo, eConvertMeasureToPre, kStart), pre, kTight * 1e3);
    ExpectNear(Convert(photo, eConvertMeasureToBiko, kStart), biko, kTight * 1e3);
    ExpectNear(Convert(photo, eConvertPreToBiko, pre), biko, kTight * 1e3);
    const XY corrected = ApplyAdjust(kCam[0], kCam[1], kCam[2], kCam[3], kCam[4], biko);
    ExpectNear(Convert(photo, eConvertMeasureToCorrectedBiko, kStart), corrected, 1e-9);
    ExpectNear(Convert(photo, eConvertBikoToCorrectedBiko, biko), corrected, 1e-9);
}

TEST(BikoTransformPlain, BackwardModesReturnToTheStart) {
    const OvPhoto photo = PlainPhoto();
    const XY pre = ApplyAffin(kPre, kStart);
    const XY biko = ApplyHelmert(kMain, pre);
    ExpectNear(Convert(photo, eConvertBikoToMeasure, biko), kStart, 1e-9);
    ExpectNear(Convert(photo, eConvertPreToMeasure, pre), kStart, 1e-9);
    ExpectNear(Convert(photo, eConvertBikoToPre, biko), pre, 1e-9);
    // Without a principal point offset the inverse correction undoes the correction.
    const XY corrected = Convert(photo, eConvertMeasureToCorrectedBiko, kStart);
    ExpectNear(Convert(photo, eConvertCorrectedBikoToBiko, corrected), biko, 1e-9);
    ExpectNear(Convert(photo, eConvertCorrectedBikoToMeasure, corrected), kStart, 1e-8);
    // Mode 6 after mode 2 gives the starting point.
    ExpectNear(Convert(photo, eConvertBikoToMeasure, Convert(photo, eConvertMeasureToBiko, kStart)),
               kStart, 1e-9);
}

TEST(BikoTransformPlain, ModesWithoutConversionLeaveThePoint) {
    const OvPhoto photo = PlainPhoto();
    for (int mode : {0, 11, 12, 13, 14, -1, 1000}) {
        bool ok = false;
        const XY v = Convert(photo, static_cast<eConvertBikoMode>(mode), kStart, &ok);
        EXPECT_EQ(v.x, kStart.x) << mode;
        EXPECT_EQ(v.y, kStart.y) << mode;
        EXPECT_TRUE(ok) << mode;
    }
}

TEST(BikoTransformPlain, CombinedMatrices) {
    const OvPhoto photo = PlainPhoto();
    // M x P written out: P = |p1 p2 p0; p4 p5 p3; 0 0 1|, M = |q1 -q3 q0; q3 q1 q2; 0 0 1|.
    const double* p = kPre;
    const double* q = kMain;
    const double expected[3][3] = {
        {q[1] * p[1] - q[3] * p[4], q[1] * p[2] - q[3] * p[5], q[1] * p[0] - q[3] * p[3] + q[0]},
        {q[3] * p[1] + q[1] * p[4], q[3] * p[2] + q[1] * p[5], q[3] * p[0] + q[1] * p[3] + q[2]},
        {0.0, 0.0, 1.0}};
    const OvBikoTransform two(&photo, eConvertMeasureToBiko);
    const OvBikoTransform four(&photo, eConvertMeasureToCorrectedBiko);
    for (int i = 1; i <= 3; ++i) {
        for (int j = 1; j <= 3; ++j) {
            EXPECT_NEAR(two.GetTransformation().GetElem(i, j), expected[i - 1][j - 1], kTight);
            EXPECT_EQ(four.GetTransformation().GetElem(i, j),
                      two.GetTransformation().GetElem(i, j));
        }
    }
    // Mode 13 builds the matrix of mode 6; modes 5, 9, 11 and 12 the identity.
    const OvBikoTransform six(&photo, eConvertBikoToMeasure);
    const OvBikoTransform thirteen(&photo, eConvertBikoToMeasureMatrixOnly);
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            EXPECT_EQ(six.GetTransformation().GetElem(i, j),
                      thirteen.GetTransformation().GetElem(i, j));
    for (int mode : {5, 9, 11, 12}) {
        EXPECT_TRUE(OvBikoTransform(&photo, static_cast<eConvertBikoMode>(mode))
                        .GetTransformation()
                        .IsIdent())
            << mode;
    }
    EXPECT_FALSE(six.IsPolyTrafo());
    EXPECT_EQ(six.GetMode(), eConvertBikoToMeasure);
    EXPECT_EQ(six.GetPhoto(), &photo);
}

TEST(BikoTransformPlain, CameraStepsNeedACamera) {
    OvPhoto photo = PlainPhoto();
    photo.SetCamera(OvCamera());  // id 0
    bool ok = true;
    const XY biko = Convert(photo, eConvertMeasureToBiko, kStart);
    ExpectNear(Convert(photo, eConvertMeasureToCorrectedBiko, kStart, &ok), biko, kTight);
    EXPECT_FALSE(ok);
    const XY same = Convert(photo, eConvertBikoToCorrectedBiko, kStart, &ok);
    EXPECT_EQ(same.x, kStart.x);
    EXPECT_FALSE(ok);
    EXPECT_EQ(Convert(photo, eConvertCorrectedBikoToBiko, kStart, &ok).y, kStart.y);
    EXPECT_FALSE(ok);
}

TEST(BikoTransformPoly, ForwardModesApplyThePolynomialAfterTheMatrix) {
    const OvPhoto photo = PolyPhoto();
    const XY pre = ApplyAffin(kPre, kStart);
    EXPECT_TRUE(OvBikoTransform(&photo, eConvertMeasureToBiko).IsPolyTrafo());
    ExpectNear(Convert(photo, eConvertMeasureToPre, kStart), pre, 1e-9);
    ExpectNear(Convert(photo, eConvertMeasureToBiko, kStart), ApplyPolynomial(kPoly, pre), 1e-9);
    // Mode 3: only the polynomial, the matrix is the identity.
    ExpectNear(Convert(photo, eConvertPreToBiko, pre), ApplyPolynomial(kPoly, pre), 1e-9);
    EXPECT_TRUE(OvBikoTransform(&photo, eConvertPreToBiko).GetTransformation().IsIdent());
    // Mode 4: the pre stage and the camera correction only, as the table has it.
    ExpectNear(Convert(photo, eConvertMeasureToCorrectedBiko, kStart),
               ApplyAdjust(kCam[0], kCam[1], kCam[2], kCam[3], kCam[4], pre), 1e-9);
}

TEST(BikoTransformPoly, BackwardModesApplyTheInversePolynomialFirst) {
    const OvPhoto photo = PolyPhoto();
    const XY biko{20.5, -13.25};
    // P^-1 written out for the Affin: solve the 2 x 2 system.
    auto preInverse = [](XY v) {
        const double* p = kPre;
        const double det = p[1] * p[5] - p[2] * p[4];
        const double x = v.x - p[0];
        const double y = v.y - p[3];
        return XY{(p[5] * x - p[2] * y) / det, (p[1] * y - p[4] * x) / det};
    };
    const XY viaInverse = ApplyPolynomial(kPolyInv, biko);
    ExpectNear(Convert(photo, eConvertBikoToMeasure, biko), preInverse(viaInverse), 1e-9);
    ExpectNear(Convert(photo, eConvertBikoToPre, biko), viaInverse, 1e-12);
    EXPECT_TRUE(OvBikoTransform(&photo, eConvertBikoToPre).GetTransformation().IsIdent());
    ExpectNear(Convert(photo, eConvertPreToMeasure, biko), preInverse(biko), 1e-9);
    // Mode 10: the inverse correction, the inverse polynomial, then P^-1.
    const XY corrected = Convert(photo, eConvertBikoToCorrectedBiko, biko);
    ExpectNear(Convert(photo, eConvertCorrectedBikoToMeasure, corrected),
               preInverse(ApplyPolynomial(kPolyInv, biko)), 1e-8);
}

TEST(BikoTransform, MatrixStepIsTheHomogeneousMapping) {
    // A Projektiv pre stage: x' = (x + 2) / d, y' = (y - 1) / d, d = 0.5 x + 1.
    OvPhoto photo(1);
    OvTrafo2d projektiv;
    projektiv.SetType(eOvTrafo2DProjektiv);
    projektiv.SetParam(0, 1.0);
    projektiv.SetParam(2, 2.0);
    projektiv.SetParam(4, 1.0);
    projektiv.SetParam(5, -1.0);
    projektiv.SetParam(6, 0.5);
    photo.SetReseauPreTrafo(projektiv);
    for (int mode : {1, 7}) {
        const OvBikoTransform t(&photo, static_cast<eConvertBikoMode>(mode));
        for (const XY start : {XY{3.0, 4.0}, XY{-2.0, 7.5}, XY{0.125, -1e6}, XY{-1.9999, 0.0}}) {
            double x = start.x, y = start.y, z = 0.0;
            double px = start.x, py = start.y;
            const bool ok = t.Transform(&x, &y, &z);
            EXPECT_EQ(ok, t.GetTransformation().PTrans2D(&px, &py));
            EXPECT_EQ(x, px);  // bit for bit
            EXPECT_EQ(y, py);
        }
    }
    // d = 0 at x = -2: the point stays and the conversion reports it.
    double x = -2.0, y = 3.0, z = 0.0;
    EXPECT_FALSE(OvBikoTransform(&photo, eConvertMeasureToPre).Transform(&x, &y, &z));
    EXPECT_EQ(x, -2.0);
    EXPECT_EQ(y, 3.0);
    // A matrix changed through the reference is the one applied.
    OvBikoTransform t(&photo, eConvertMeasureToPre);
    t.GetTransformation().SetIdent();
    x = 5.0;
    EXPECT_TRUE(t.Transform(&x, &y, &z));
    EXPECT_EQ(x, 5.0);
}

TEST(BikoTransform, NullPhotoConvertsThroughIdentities) {
    const OvBikoTransform t(nullptr, eConvertMeasureToBiko);
    EXPECT_TRUE(t.GetTransformation().IsIdent());
    double x = 3.0, y = 4.0, z = 5.0;
    EXPECT_TRUE(t.Transform(&x, &y, &z));
    EXPECT_EQ(x, 3.0);
    EXPECT_EQ(y, 4.0);
    // No camera: the correction refuses.
    const OvBikoTransform adjust(nullptr, eConvertBikoToCorrectedBiko);
    EXPECT_FALSE(adjust.Transform(&x, &y, &z));
    EXPECT_FALSE(adjust.Transform(nullptr, &y, &z));
    EXPECT_FALSE(adjust.Transform(static_cast<OvPoint*>(nullptr)));
}

TEST(BikoTransform, CopyAndAssignmentKeepTheConverter) {
    const OvPhoto plain = PlainPhoto();
    const OvPhoto poly = PolyPhoto();
    const OvBikoTransform a(&poly, eConvertBikoToMeasure);
    OvBikoTransform b(&plain, eConvertMeasureToPre);
    b = a;
    const OvBikoTransform c(a);
    for (const OvBikoTransform* t : {static_cast<const OvBikoTransform*>(&b), &c}) {
        EXPECT_TRUE(t->IsPolyTrafo());
        EXPECT_EQ(t->GetMode(), eConvertBikoToMeasure);
        EXPECT_EQ(t->GetPhoto(), &poly);
        OvPoint p1(1, 7.0, 8.0, 9.0, 0);
        OvPoint p2(p1);
        a.Transform(&p1);
        t->Transform(&p2);
        EXPECT_EQ(p1.GetX(), p2.GetX());
        EXPECT_EQ(p1.GetY(), p2.GetY());
        EXPECT_EQ(p2.GetZ(), 9.0);
    }
}

TEST(ListTransforms, Transform2DCountsEveryPointAndSkipsRefusedOnes) {
    OvPointList list;
    list.Add(OvPoint(1, 1.0, 2.0, 0.0, 0));
    list.Add(OvPoint(2, -2.0, 0.5, 0.0, 0));  // w = 0.5 * -2 + 1 = 0: refused
    list.Add(OvPoint(3, 4.0, -1.0, 0.0, 0));
    OvMatrix m(3, 3);
    m.SetIdent();
    m.SetElem(1, 3, 10.0);  // x + 10
    m.SetElem(3, 1, 0.5);   // w = 0.5 x + 1
    EXPECT_EQ(Transform2D(&list, m), 3);
    EXPECT_DOUBLE_EQ(list.Find(1u)->GetX(), 11.0 / 1.5);
    EXPECT_DOUBLE_EQ(list.Find(1u)->GetY(), 2.0 / 1.5);
    EXPECT_EQ(list.Find(2u)->GetX(), -2.0);
    EXPECT_EQ(list.Find(2u)->GetY(), 0.5);
    EXPECT_DOUBLE_EQ(list.Find(3u)->GetX(), 14.0 / 3.0);
    EXPECT_EQ(Transform2D(nullptr, m), 0);
}

TEST(ListTransforms, Transform3DMapsXYZ) {
    OvPointList list;
    list.Add(OvPoint(1, 1.0, 2.0, 3.0, 0));
    list.Add(OvPoint(2, 0.0, 0.0, 0.0, 0));
    OvMatrix m(4, 4);
    m.SetIdent();
    m.SetElem(1, 4, 1.0);
    m.SetElem(2, 4, -1.0);
    m.SetElem(3, 3, 2.0);
    EXPECT_EQ(Transform3D(&list, m), 2);
    EXPECT_EQ(list.Find(1u)->GetX(), 2.0);
    EXPECT_EQ(list.Find(1u)->GetY(), 1.0);
    EXPECT_EQ(list.Find(1u)->GetZ(), 6.0);
    EXPECT_EQ(list.Find(2u)->GetY(), -1.0);
    EXPECT_EQ(Transform3D(nullptr, m), 0);
    OvPointList empty;
    EXPECT_EQ(Transform3D(&empty, m), 0);
}

}  // namespace
}  // namespace orvo
