#include "orvo/rectify/tilt_trafo.h"

#include <gtest/gtest.h>

#include <cmath>

#include "orvo/model/photo.h"
#include "orvo/model/point_list.h"
#include "orvo/numerics/linalg_errors.h"

namespace orvo {
namespace {

OvMatrix Matrix3(const double (&v)[3][3]) {
    OvMatrix m(3, 3);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            m.SetElem(i + 1, j + 1, v[i][j]);
    return m;
}

// A projective tilt and a placement that lifts the plane by 10 in z and shifts it.
const double kTilt[3][3] = {{2.0, 0.5, 1.0}, {-0.25, 1.5, 3.0}, {0.01, 0.02, 1.0}};

OvMatrix Placement() {
    OvMatrix m(4, 4);
    m.SetIdent();
    m.SetElem(1, 4, 100.0);
    m.SetElem(2, 4, 200.0);
    m.SetElem(3, 4, 10.0);
    return m;
}

// The mapping of the tilt matrix, done plainly.
void PlainTilt(double x, double y, double& ox, double& oy) {
    const double w = kTilt[2][0] * x + kTilt[2][1] * y + kTilt[2][2];
    ox = (kTilt[0][0] * x + kTilt[0][1] * y + kTilt[0][2]) / w;
    oy = (kTilt[1][0] * x + kTilt[1][1] * y + kTilt[1][2]) / w;
}

OvCamera DistortingCamera(unsigned id) {
    return OvCamera(id, 50.0, 0.1, -0.2, 1e-4, 0.0, 0.0, "lens");
}

TEST(OvTiltTrafoTest, DefaultsMapPointsUnchanged) {
    const OvTiltTrafo trafo;
    EXPECT_EQ(trafo.GetId(), 0u);
    EXPECT_FALSE(trafo.IsActive());
    EXPECT_FALSE(trafo.IsRegionActive());
    EXPECT_FALSE(trafo.GetDistortCameraFlag());
    EXPECT_TRUE(trafo.GetTiltMat().IsIdent());
    EXPECT_EQ(trafo.GetTiltMat().GetLines(), 3);
    EXPECT_TRUE(trafo.GetTransMat().IsIdent());
    EXPECT_EQ(trafo.GetTransMat().GetLines(), 4);
    EXPECT_EQ(trafo.GetBikoList().GetMode(), OvPolygonMode3DId);
    EXPECT_EQ(trafo.GetMeasPoints().GetMode(), OvPolygonMode2DId);
    EXPECT_EQ(trafo.GetRegion().GetMode(), OvPolygonMode2D);
    EXPECT_FALSE(trafo.HasRegion());
    EXPECT_FALSE(trafo.IsByParallelDef());
    EXPECT_EQ(trafo.GetDistortCameraParam().GetId(), 0u);
    EXPECT_EQ(trafo.GetParallelDef().GetPointList(), &trafo.GetMeasPoints().GetPointList());

    OvPoint in(7, 1.5, -2.5, 3.25, 0);
    in.SetName("p");
    OvPoint out;
    EXPECT_TRUE(trafo.Transform(&in, &out));
    EXPECT_EQ(out.GetId(), 7u);
    EXPECT_EQ(out.GetX(), 1.5);
    EXPECT_EQ(out.GetY(), -2.5);
    EXPECT_EQ(out.GetZ(), 3.25);
    EXPECT_FALSE(trafo.Transform(nullptr, &out));
    EXPECT_FALSE(trafo.Transform(&in, nullptr));

    OvPointList empty;
    EXPECT_EQ(trafo.Transform(&empty), 0);
    EXPECT_EQ(trafo.Transform(static_cast<OvPointList*>(nullptr)), 0);
}

TEST(OvTiltTrafoTest, FlagBitsAndPredicates) {
    OvTiltTrafo trafo(3, "plane");
    trafo.SetActive(true);
    trafo.SetRegionActive(true);
    trafo.SetDistortCameraFlag(true);
    EXPECT_EQ(trafo.GetFlag().GetFlag(), 0x002u | 0x400u | 0x800u);
    EXPECT_EQ(IsTiltActive(&trafo), 1u);
    EXPECT_EQ(HasTiltRegion(&trafo), 0u);
    trafo.GetRegion().AddPoint(OvPoint(0, 1.0, 1.0, 0.0, 0));
    EXPECT_EQ(HasTiltRegion(&trafo), 1u);
    trafo.SetActive(false);
    EXPECT_EQ(trafo.GetFlag().GetFlag(), 0x400u | 0x800u);
    EXPECT_EQ(IsTiltActive(&trafo), 0u);
    EXPECT_EQ(IsTiltActive(nullptr), 0u);

    // Distortion is compensated only with the flag and a camera whose id is not 0.
    EXPECT_FALSE(trafo.CompensateDistortion());
    EXPECT_TRUE(trafo.SetDistortCameraParam(DistortingCamera(4)));
    EXPECT_TRUE(trafo.CompensateDistortion());
    trafo.SetDistortCameraFlag(false);
    EXPECT_FALSE(trafo.CompensateDistortion());
}

TEST(OvTiltTrafoTest, TransformAppliesDistortionTiltAndPlacementInTurn) {
    OvTiltTrafo trafo;
    trafo.SetTiltMat(Matrix3(kTilt));
    trafo.SetTransMat(Placement());
    OvPoint in(1, 3.0, 4.0, 2.0, 0);
    OvPoint out;
    ASSERT_TRUE(trafo.Transform(&in, &out));
    double x = 0.0;
    double y = 0.0;
    PlainTilt(3.0, 4.0, x, y);
    EXPECT_DOUBLE_EQ(out.GetX(), x + 100.0);
    EXPECT_DOUBLE_EQ(out.GetY(), y + 200.0);
    EXPECT_DOUBLE_EQ(out.GetZ(), 12.0);

    // With the flag but a camera of id 0: no correction.
    OvCamera noId = DistortingCamera(0);
    trafo.SetDistortCameraParam(noId);
    trafo.SetDistortCameraFlag(true);
    ASSERT_TRUE(trafo.Transform(&in, &out));
    EXPECT_DOUBLE_EQ(out.GetX(), x + 100.0);

    // With a real camera the point is corrected first.
    const OvCamera camera = DistortingCamera(9);
    trafo.SetDistortCameraParam(camera);
    double cx = 3.0;
    double cy = 4.0;
    ASSERT_TRUE(camera.Adjust(&cx, &cy));
    PlainTilt(cx, cy, x, y);
    ASSERT_TRUE(trafo.Transform(&in, &out));
    EXPECT_DOUBLE_EQ(out.GetX(), x + 100.0);
    EXPECT_DOUBLE_EQ(out.GetY(), y + 200.0);

    // The list form gives the same, in place, and counts the points.
    OvPointList list;
    list.Add(in);
    list.Add(OvPoint(2, -1.0, 0.5, 0.0, 0));
    EXPECT_EQ(trafo.Transform(&list), 2);
    EXPECT_DOUBLE_EQ(list.First()->GetX(), out.GetX());
    EXPECT_DOUBLE_EQ(list.First()->GetZ(), 12.0);

    // In place through the point form too.
    OvPoint same(in);
    ASSERT_TRUE(trafo.Transform(&same, &same));
    EXPECT_DOUBLE_EQ(same.GetY(), out.GetY());
}

TEST(OvTiltTrafoTest, ListMappingMatchesTheMatrixMappingExactly) {
    OvTiltTrafo trafo;
    trafo.SetTiltMat(Matrix3(kTilt));
    OvMatrix placement = Placement();
    placement.SetElem(4, 1, 0.003);  // a projective placement
    placement.SetElem(4, 3, -0.5);
    trafo.SetTransMat(placement);
    OvPointList list;
    // The second point lies on the tilt matrix's horizon (w = 0.01 * -100 + 1 = 0).
    const double coordinates[][3] = {{3.0, 4.0, 2.0},    {-100.0, 0.0, 0.0}, {1e6, -3e5, 7.0},
                                     {0.125, -7.5, 2.0}, {-1.0, 0.5, -4.0},  {-300.0, 0.0, 0.0}};
    for (const auto& c : coordinates)
        list.Add(OvPoint(0, c[0], c[1], c[2], 0));
    ASSERT_EQ(trafo.Transform(&list), 6);
    int i = 0;
    for (const OvPoint* p = list.First(); p != nullptr; p = p->Next(), ++i) {
        double x = coordinates[i][0];
        double y = coordinates[i][1];
        double z = coordinates[i][2];
        trafo.GetTiltMat().PTrans2D(&x, &y);
        trafo.GetTransMat().PTrans3D(&x, &y, &z);
        EXPECT_EQ(p->GetX(), x) << i;
        EXPECT_EQ(p->GetY(), y) << i;
        EXPECT_EQ(p->GetZ(), z) << i;
    }
}

TEST(OvTiltTrafoTest, APointAtTheHorizonIsLeftWhereItIs) {
    OvTiltTrafo trafo;
    const double horizon[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {1.0, 0.0, -2.0}};
    trafo.SetTiltMat(Matrix3(horizon));
    OvPoint in(1, 2.0, 5.0, 0.0, 0);  // w = 2 - 2 = 0
    OvPoint out;
    EXPECT_TRUE(trafo.Transform(&in, &out));
    EXPECT_EQ(out.GetX(), 2.0);
    EXPECT_EQ(out.GetY(), 5.0);
}

TEST(OvTiltTrafoTest, MatricesOfAnotherShapeAreRefused) {
    OvTiltTrafo trafo;
    try {
        trafo.SetTiltMat(OvMatrix(2, 2));
        FAIL() << "no throw";
    } catch (int code) {
        EXPECT_EQ(code, kOvErrMatrixAssign);
    }
    EXPECT_TRUE(trafo.GetTiltMat().IsIdent());
    EXPECT_THROW(trafo.SetTransMat(OvMatrix(3, 3)), int);
}

TEST(OvTiltTrafoTest, AreaAndLengthOfTheRegionInTheRectifiedPlane) {
    OvTiltTrafo trafo;
    EXPECT_EQ(trafo.Area(), -1.0);
    EXPECT_EQ(trafo.Length(), -1.0);
    const double scale[3][3] = {{3.0, 0.0, 5.0}, {0.0, 2.0, -1.0}, {0.0, 0.0, 1.0}};
    trafo.SetTiltMat(Matrix3(scale));
    trafo.SetTransMat(Placement());  // not applied to areas
    for (const auto& corner : {std::pair{0.0, 0.0}, {2.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}})
        trafo.GetRegion().AddPoint(OvPoint(0, corner.first, corner.second, 0.0, 0));
    EXPECT_DOUBLE_EQ(trafo.Area(), 6.0 * 4.0);
    EXPECT_DOUBLE_EQ(trafo.Length(), 2.0 * (6.0 + 4.0));
    // The region itself is not changed.
    EXPECT_EQ(trafo.GetRegion().GetPointList().Last()->GetY(), 2.0);

    // Distortion correction moves the corners before the tilt.
    const OvCamera camera = DistortingCamera(1);
    trafo.SetDistortCameraParam(camera);
    trafo.SetDistortCameraFlag(true);
    double area = 0.0;
    double xs[4];
    double ys[4];
    const double cs[4][2] = {{0, 0}, {2, 0}, {2, 2}, {0, 2}};
    for (int i = 0; i < 4; ++i) {
        xs[i] = cs[i][0];
        ys[i] = cs[i][1];
        camera.Adjust(&xs[i], &ys[i]);
        xs[i] = 3.0 * xs[i] + 5.0;
        ys[i] = 2.0 * ys[i] - 1.0;
    }
    for (int i = 0; i < 4; ++i) {
        const int j = (i + 1) % 4;
        area += 0.5 * (ys[j] + ys[i]) * (xs[j] - xs[i]);
    }
    EXPECT_NEAR(trafo.Area(), std::fabs(area), 1e-12);
}

TEST(OvTiltTrafoTest, OriginalPixelAreaNeedsAnActiveDigitalPhoto) {
    OvTiltTrafo trafo;
    for (const auto& corner : {std::pair{0.0, 0.0}, {2.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}})
        trafo.GetRegion().AddPoint(OvPoint(0, corner.first, corner.second, 0.0, 0));
    EXPECT_EQ(trafo.GetOriginalPixelArea(nullptr), 0.0);

    OvPhoto photo(1);
    // Pixels of 0.01 mm: the main reseau step maps pixels to millimetres.
    OvTrafo2d main;
    main.SetType(eOvTrafo2DAffin);
    const double p[6] = {0.0, 0.01, 0.0, 0.0, 0.0, 0.01};
    for (int i = 0; i < 6; ++i)
        main.SetParam(i, p[i]);
    photo.SetReseauMainTrafo(OvReseauTrafo(main));
    OvTrafo2d pre;
    pre.SetType(eOvTrafo2DHelmert);
    pre.SetIdent();
    photo.SetReseauPreTrafo(OvReseauTrafo(pre));
    photo.SetActiveFlag(kOvPhotoStateActive);
    EXPECT_EQ(trafo.GetOriginalPixelArea(&photo), 0.0);  // analog
    photo.SetPhototype(eOvPhotoDigital);
    photo.SetActiveFlag(kOvPhotoStateInactive);
    EXPECT_EQ(trafo.GetOriginalPixelArea(&photo), 0.0);  // inactive
    photo.SetActiveFlag(kOvPhotoStateActive);
    EXPECT_NEAR(trafo.GetOriginalPixelArea(&photo), 200.0 * 200.0, 1e-6);
}

TEST(OvTiltTrafoTest, CopiesCarryEverythingAndTheirOwnPointList) {
    OvTiltTrafo trafo(5, "facade");
    trafo.SetActive(true);
    trafo.SetTiltMat(Matrix3(kTilt));
    trafo.SetTransMat(Placement());
    trafo.GetMeasPoints().AddPoint(OvPoint(1, 0.0, 0.0, 0.0, 0));
    trafo.GetMeasPoints().AddPoint(OvPoint(2, 1.0, 0.0, 0.0, 0));
    trafo.GetBikoList().AddPoint(OvPoint(1, 10.0, 0.0, 0.0, 0));
    trafo.GetRegion().AddPoint(OvPoint(1, 0.5, 0.5, 0.0, 0));
    trafo.SetDistortCameraParam(DistortingCamera(3));
    ASSERT_NE(trafo.GetParallelDef().MakeDefLine(1, 2), nullptr);

    OvTiltTrafo copy(trafo);
    EXPECT_EQ(copy.GetId(), 5u);
    EXPECT_EQ(compare(copy.GetName(), String("facade")), 0);
    EXPECT_TRUE(copy.IsActive());
    EXPECT_EQ(copy.GetTiltMat().GetElem(1, 2), 0.5);
    EXPECT_EQ(copy.GetTransMat().GetElem(3, 4), 10.0);
    EXPECT_EQ(copy.GetBikoList().Count(), 1);
    EXPECT_EQ(copy.GetRegion().Count(), 1);
    EXPECT_EQ(copy.GetDistortCameraParam().GetId(), 3u);
    EXPECT_TRUE(copy.IsByParallelDef());
    EXPECT_EQ(copy.GetParallelDef().GetPointList(), &copy.GetMeasPoints().GetPointList());
    // The copy's definition works on its own points.
    delete copy.GetMeasPoints().GetPointList().Subtract(2u);
    copy.GetParallelDef().CheckAndRepair();
    EXPECT_FALSE(copy.IsByParallelDef());
    EXPECT_TRUE(trafo.IsByParallelDef());

    OvTiltTrafo assigned;
    assigned = trafo;
    EXPECT_EQ(assigned.GetParallelDef().GetPointList(), &assigned.GetMeasPoints().GetPointList());
    EXPECT_EQ(assigned.GetTiltMat().GetElem(3, 2), 0.02);

    // A definition over an outside list keeps that list.
    OvPointList outside;
    trafo.GetParallelDef().SetPointList(&outside);
    OvTiltTrafo shared(trafo);
    EXPECT_EQ(shared.GetParallelDef().GetPointList(), &outside);
}

}  // namespace
}  // namespace orvo
