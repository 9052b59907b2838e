// The range of a transform in the photo, the rectified plane, and the plane infos built from it.
#include <gtest/gtest.h>

#include "orvo/model/photo.h"
#include "orvo/numerics/linalg_errors.h"
#include "orvo/rectify/rect_plane.h"
#include "orvo/rectify/tilt_biko_points.h"
#include "orvo/rectify/tilt_plane_info.h"
#include "orvo/rectify/tilt_trafo.h"
#include "rectify_test_support.h"

namespace orvo {
namespace {

// A digital photo of 6000 x 4000 pixels of 0.01 mm: the main reseau step maps pixels to
// millimetres with the origin in the picture's centre; the pre step is the identity.
OvPhoto MakePhoto() {
    OvPhoto photo(3, "facade.tif");
    photo.SetPhototype(eOvPhotoDigital);
    photo.SetActiveFlag(kOvPhotoStateActive);
    photo.SetDigiRegion(OvRegion(0.0, 0.0, 6000.0, 4000.0));
    OvTrafo2d pre;
    pre.SetType(eOvTrafo2DHelmert);
    pre.SetIdent();
    photo.SetReseauPreTrafo(OvReseauTrafo(pre));
    OvTrafo2d main;
    main.SetType(eOvTrafo2DAffin);
    const double p[6] = {-30.0, 0.01, 0.0, -20.0, 0.0, 0.01};
    for (int i = 0; i < 6; ++i)
        main.SetParam(i, p[i]);
    photo.SetReseauMainTrafo(OvReseauTrafo(main));
    return photo;
}

// Measured (pixel) to image (mm), as the photo's mode 2 does it, done plainly.
double ImageX(double px) {
    return -30.0 + 0.01 * px;
}
double ImageY(double py) {
    return -20.0 + 0.01 * py;
}

TEST(OvGetTiltBikoPointsTest, TheValidRegionWhenThereIsOne) {
    OvPhoto photo = MakePhoto();
    OvTiltTrafo trafo;
    trafo.GetRegion().AddPoint(OvPoint(5, 1.0, 2.0, 0.0, 0));
    trafo.GetRegion().AddPoint(OvPoint(6, 3.0, 2.0, 0.0, 0));
    trafo.GetRegion().AddPoint(OvPoint(7, 3.0, 5.0, 0.0, 0));
    OvPointList out;
    EXPECT_EQ(OvGetTiltBikoPoints(out, &photo, &trafo), 3);
    EXPECT_EQ(out.First()->GetId(), 5u);
    EXPECT_EQ(out.Last()->GetY(), 5.0);
    OvPointList withoutPhoto;
    EXPECT_EQ(OvGetTiltBikoPoints(withoutPhoto, nullptr, &trafo), 3);
    OvTiltTrafo empty;
    OvPointList none;
    EXPECT_EQ(OvGetTiltBikoPoints(none, nullptr, &empty), 0);
}

TEST(OvGetTiltBikoPointsTest, ThePhotosRegionInImageCoordinates) {
    OvPhoto photo = MakePhoto();
    OvTiltTrafo trafo;
    OvPointList out;
    ASSERT_EQ(OvGetTiltBikoPoints(out, &photo, &trafo), 4);
    const double corners[4][2] = {{0, 0}, {6000, 0}, {6000, 4000}, {0, 4000}};
    const OvPoint* p = out.First();
    for (unsigned i = 0; i < 4; ++i, p = p->Next()) {
        EXPECT_EQ(p->GetId(), i + 1);
        EXPECT_NEAR(p->GetX(), ImageX(corners[i][0]), 1e-12);
        EXPECT_NEAR(p->GetY(), ImageY(corners[i][1]), 1e-12);
    }
    // Without a transform the same.
    OvPointList plain;
    EXPECT_EQ(OvGetTiltBikoPoints(plain, &photo, nullptr), 4);
}

TEST(OvGetTiltBikoPointsTest, DistortionCompensationCutsEachEdgeIntoNinePieces) {
    OvPhoto photo = MakePhoto();
    OvTiltTrafo trafo;
    trafo.SetDistortCameraFlag(true);
    trafo.SetDistortCameraParam(OvCamera(1, 50.0, 0.0, 0.0, 1e-5, 0.0, 0.0, ""));
    OvPointList out;
    ASSERT_EQ(OvGetTiltBikoPoints(out, &photo, &trafo), 36);
    unsigned id = 1;
    for (const OvPoint* p = out.First(); p != nullptr; p = p->Next())
        EXPECT_EQ(p->GetId(), id++);
    // The second edge runs from (30, -20) to (30, 20) in steps of 40 / 9.
    const OvPoint* p = out.Get(9);
    EXPECT_NEAR(p->GetX(), 30.0, 1e-12);
    EXPECT_NEAR(p->GetY(), -20.0, 1e-12);
    p = out.Get(12);
    EXPECT_NEAR(p->GetY(), -20.0 + 3.0 * (40.0 * 0.1111111111111111), 1e-12);
    // The last piece comes back towards the first corner.
    p = out.Last();
    EXPECT_NEAR(p->GetX(), -30.0, 1e-12);
    EXPECT_NEAR(p->GetY(), 20.0 - 8.0 * (40.0 * 0.1111111111111111), 1e-12);
}

TEST(OvRectPlaneTest, RangeAndPixelRectangleFromThePhoto) {
    OvPhoto photo = MakePhoto();
    OvTiltTrafo trafo(4, "ground floor");
    OvRectPlane plane(&photo, &trafo);
    EXPECT_EQ(plane.GetPhotoId(), 3u);
    EXPECT_EQ(plane.GetTiltId(), 4u);
    EXPECT_EQ(plane.GetPhoto(), &photo);
    EXPECT_EQ(plane.GetTiltTrafo(), &trafo);
    EXPECT_EQ(&plane.GetTiltMat(), &trafo.GetTiltMat());
    EXPECT_EQ(&plane.GetTiltRangeBiko(), &trafo.GetRegion());
    EXPECT_EQ(plane.GetRange().Count(), 4);
    EXPECT_NEAR(plane.PixelRect().Left(), 0.0, 1e-9);
    EXPECT_NEAR(plane.PixelRect().Bottom(), 0.0, 1e-9);
    EXPECT_NEAR(plane.PixelRect().Right(), 6000.0, 1e-6);
    EXPECT_NEAR(plane.PixelRect().Top(), 4000.0, 1e-6);
    EXPECT_TRUE(plane.GetPlaneMat().IsIdent());
    EXPECT_TRUE(plane.GetBorderMat().IsIdent());
    // The inverse of the image transform's matrix: image to measured, inverted.
    EXPECT_NEAR(plane.GetImageToPixelMat().GetElem(1, 1), 0.01, 1e-15);
    EXPECT_NEAR(plane.GetImageToPixelMat().GetElem(2, 3), -20.0, 1e-12);
    EXPECT_EQ(plane.SetGroup(-5), -5);
    EXPECT_EQ(plane.GetGroup(), -5);

    OvRectPlane copy(plane);
    EXPECT_EQ(copy.GetTiltTrafo(), &trafo);
    EXPECT_EQ(copy.GetGroup(), -5);
    EXPECT_EQ(copy.GetRange().Count(), 4);
}

TEST(OvRectPlaneTest, NullPointers) {
    OvRectPlane plane(nullptr, nullptr);
    EXPECT_EQ(plane.GetPhotoId(), 0u);
    EXPECT_EQ(plane.GetTiltId(), 0u);
    EXPECT_TRUE(plane.GetTiltMat().IsIdent());
    EXPECT_EQ(plane.GetTiltRangeBiko().Count(), 0);
    EXPECT_EQ(plane.GetRange().Count(), 0);
    EXPECT_EQ(plane.PixelRect().Right(), 0.0);
    plane.CalcTiltBorder();
    EXPECT_EQ(plane.GetBorder().Count(), 0);
}

TEST(OvRectPlaneTest, TheBorderAccumulatesOverCalls) {
    OvPhoto photo = MakePhoto();
    OvTiltTrafo trafo;
    for (const auto& c : {std::pair{0.0, 0.0}, {4.0, 0.0}, {4.0, 2.0}})
        trafo.GetRegion().AddPoint(OvPoint(0, c.first, c.second, 0.0, 0));
    OvRectPlane plane(&photo, &trafo);
    OvMatrix border(3, 3);
    border.SetIdent();
    border.SetElem(1, 1, 2.0);
    border.SetElem(2, 3, 1.0);
    plane.SetBorderMat(border);
    plane.CalcTiltBorder();
    ASSERT_EQ(plane.GetBorder().Count(), 3);
    EXPECT_EQ(plane.GetBorder().GetPointList().Last()->GetX(), 8.0);
    EXPECT_EQ(plane.GetBorder().GetPointList().Last()->GetY(), 3.0);
    plane.CalcTiltBorder();
    EXPECT_EQ(plane.GetBorder().Count(), 6);
    EXPECT_EQ(plane.GetBorder().GetMax().GetX(), 8.0);
}

// ---- plane infos ---------------------------------------------------------------------------

TEST(OvTiltPlaneInfoTest, BuiltFromARectifiedPlane) {
    OvPhoto photo = MakePhoto();
    OvTiltTrafo trafo(4, "ground floor");
    for (const auto& c : {std::pair{0.0, 0.0}, {4.0, 0.0}, {4.0, 2.0}, {0.0, 2.0}})
        trafo.GetRegion().AddPoint(OvPoint(0, c.first, c.second, 0.0, 0));
    OvMatrix placement(4, 4);
    placement.SetIdent();
    placement.SetElem(3, 4, 100.0);  // the plane lies at z = 100
    trafo.SetTransMat(placement);
    OvRectPlane plane(&photo, &trafo);
    OvMatrix planeMat(3, 3);
    planeMat.SetIdent();
    planeMat.SetElem(1, 1, 2.0);  // the rectified image is placed at twice the scale
    planeMat.SetElem(2, 2, 2.0);
    planeMat.SetElem(1, 3, 10.0);
    plane.SetPlaneMat(planeMat);
    plane.CalcTiltBorder();

    // Pixels of the rectified image to rectified-plane coordinates: 0.5 units per pixel.
    OvMatrix pixels(3, 3);
    pixels.SetIdent();
    pixels.SetElem(1, 1, 0.5);
    pixels.SetElem(2, 2, -0.5);
    pixels.SetElem(2, 3, 40.0);
    const OvTiltPlaneInfo info(pixels, &plane);
    EXPECT_EQ(info.GetPhotoId(), 3u);
    EXPECT_EQ(compare(info.GetPhotoRef().GetName(), String("facade.tif")), 0);
    EXPECT_EQ(info.GetTiltId(), 4u);
    EXPECT_EQ(compare(info.GetTiltRef().GetName(), String("ground floor")), 0);
    EXPECT_EQ(info.GetRange().Count(), 4);
    EXPECT_EQ(info.GetRange().GetMax().GetY(), 2.0);

    // (x, y) -> pixels -> inverse plane placement -> placement, done plainly.
    OvPoint p(1, 30.0, 10.0, 5.0, 0);
    ASSERT_TRUE(info.Transform(&p));
    const double px = 0.5 * 30.0;
    const double py = -0.5 * 10.0 + 40.0;
    EXPECT_DOUBLE_EQ(p.GetX(), (px - 10.0) / 2.0);
    EXPECT_DOUBLE_EQ(p.GetY(), py / 2.0);
    EXPECT_DOUBLE_EQ(p.GetZ(), 105.0);
    EXPECT_FALSE(info.Transform(nullptr));

    // A matrix too small for the embedding raises the matrix's range error.
    try {
        OvTiltPlaneInfo bad(OvMatrix(2, 2), &plane);
        FAIL() << "no throw";
    } catch (int code) {
        EXPECT_EQ(code, kOvErrMatrixGetElem);
    }
    const OvTiltPlaneInfo none(pixels, nullptr);
    EXPECT_EQ(none.GetPhotoId(), 0u);
    EXPECT_TRUE(none.GetTransformation().IsIdent());
}

OvTiltPlaneInfo* AddSquarePlane(OvTiltPlaneInfoList& list, unsigned photo, unsigned tilt, double x0,
                                double shift) {
    auto* info = new OvTiltPlaneInfo();
    for (const auto& c : {std::pair{0.0, 0.0}, {10.0, 0.0}, {10.0, 10.0}, {0.0, 10.0}})
        info->GetRange().AddPoint(OvPoint(0, x0 + c.first, c.second, 0.0, 0));
    OvMatrix m(4, 4);
    m.SetIdent();
    m.SetElem(1, 4, shift);
    info->SetTransformation(m);
    // The references are read from a record: build one.
    const std::string text = "PHOTOID { " + std::to_string(photo) + " \"p\" } TILTID { " +
                             std::to_string(tilt) + " \"t\" }";
    test::BlockHandler handler([&](OvReaderObject* object) { info->Read(object); });
    test::ReadText("PLANE { " + text + " }", [&](OvReader& reader) {
        reader.RegisterObject(OvReaderObject("PLANE", handler.AsLink()));
    });
    return list.Add(info);
}

TEST(OvTiltPlaneInfoListTest, FirstPlaneThatHoldsThePointWins) {
    OvTiltPlaneInfoList list;
    OvTiltPlaneInfo* a = AddSquarePlane(list, 1, 1, 0.0, 100.0);
    OvTiltPlaneInfo* b = AddSquarePlane(list, 1, 2, 5.0, 200.0);  // overlaps a in 5..10
    EXPECT_EQ(list.FindPlane(OvPoint(0, 7.0, 5.0, 0.0, 0)), a);
    EXPECT_EQ(list.FindPlane(OvPoint(0, 12.0, 5.0, 0.0, 0)), b);
    EXPECT_EQ(list.FindPlane(OvPoint(0, 20.0, 5.0, 0.0, 0)), nullptr);
    EXPECT_EQ(list.FindPlane(1, 2), b);
    EXPECT_EQ(list.FindPlane(2, 1), nullptr);

    OvPoint p(0, 12.0, 5.0, 0.0, 0);
    EXPECT_TRUE(list.Transform(&p));
    EXPECT_EQ(p.GetX(), 212.0);
    OvPoint outside(0, 30.0, 5.0, 0.0, 0);
    EXPECT_FALSE(list.Transform(&outside));
    EXPECT_EQ(outside.GetX(), 30.0);
    EXPECT_FALSE(list.Transform(nullptr));
}

TEST(OvTiltPlaneInfoTest, WritesAndReadsItsRecord) {
    OvTiltPlaneInfoList list;
    OvTiltPlaneInfo* info = AddSquarePlane(list, 3, 4, 0.0, 0.5);
    const std::string text = test::Written([&](std::ostream& out) { info->Write(out); });
    EXPECT_EQ(
        text.rfind("PHOTOID         {    3 \"p\"}\nTILTID          {    4 \"t\"}\nTRANSFORMATION\n{"
                   "\n        4    4",
                   0),
        0u)
        << text;
    EXPECT_NE(text.find("TILTRANGE   \n{\n    "), std::string::npos);

    OvTiltPlaneInfoList read;
    test::ReadText("PLANEINFO\n{\n" + text + "}\n", [&](OvReader& reader) {
        reader.RegisterObject(
            OvReaderObject("PLANEINFO", Link(&read, &OvTiltPlaneInfoList::AddPlaneHdl)));
    });
    ASSERT_EQ(read.Count(), 1);
    EXPECT_EQ(read.First()->GetTiltId(), 4u);
    EXPECT_EQ(read.First()->GetTransformation().GetElem(1, 4), 0.5);
    EXPECT_EQ(read.First()->GetRange().Count(), 4);
    EXPECT_EQ(test::Written([&](std::ostream& out) { read.First()->Write(out); }), text);
}

TEST(OvTiltPlaneInfoTest, AMatrixOfAnotherShapeIsNotTaken) {
    OvTiltPlaneInfoList read;
    const int errors = test::ReadText(
        "PLANEINFO { TRANSFORMATION { 3 3 1 0 0 0 1 0 0 0 1 } TILTRANGE { 1 } PHOTOID { 7 "
        "\"x\" } }\n",
        [&](OvReader& reader) {
            reader.RegisterObject(
                OvReaderObject("PLANEINFO", Link(&read, &OvTiltPlaneInfoList::AddPlaneHdl)));
        });
    EXPECT_EQ(errors, 1);
    ASSERT_EQ(read.Count(), 1);
    EXPECT_EQ(read.First()->GetTransformation().GetLines(), 4);
    EXPECT_EQ(read.First()->GetPhotoId(), 7u);
    OvPoint p(0, 1.0, 2.0, 3.0, 0);
    EXPECT_TRUE(read.First()->Transform(&p));
    EXPECT_EQ(p.GetY(), 2.0);
}

}  // namespace
}  // namespace orvo
