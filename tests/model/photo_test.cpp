// The photo record: defaults, copies, predicates and filters, coordinate conversion, the measure
// and Imo lists with their transfers, pixel size, tilt transforms, attributes, the list walk and
// the reseau lookup.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "orvo/foundation/filter.h"
#include "orvo/model/photo.h"
#include "orvo/model/photo_list.h"
#include "orvo/model/reseau_list.h"
#include "temp_dir.h"

namespace orvo {
namespace {

OvTrafo2d Helmert(double p0, double p1, double p2, double p3) {
    OvTrafo2d t;
    t.SetType(eOvTrafo2DHelmert);
    t.SetParam(0, p0);
    t.SetParam(1, p1);
    t.SetParam(2, p2);
    t.SetParam(3, p3);
    return t;
}

// Pre stage: x' = 10 + 2x, y' = -4 + 2y. Main stage: a quarter turn, x' = 1 - y, y' = x.
OvPhoto ConvertingPhoto() {
    OvPhoto photo(4, "img.tif");
    photo.SetReseauPreTrafo(Helmert(10.0, 2.0, -4.0, 0.0));
    photo.SetReseauMainTrafo(Helmert(1.0, 0.0, 0.0, 1.0));
    photo.SetCamera(OvCamera(2, 50.0, 0.5, -0.25, 0.0, 0.0, 0.0, "cam"));
    return photo;
}

TEST(Photo, NewPhotoDefaults) {
    const OvPhoto photo(12, "scan.tif");
    EXPECT_EQ(photo.GetId(), 12u);
    EXPECT_STREQ(photo.GetName().chars(), "scan.tif");
    EXPECT_EQ(photo.GetActiveFlag(), 1);
    EXPECT_TRUE(photo.IsInactive());
    EXPECT_FALSE(photo.IsActive());
    EXPECT_FALSE(photo.IsExtern());
    EXPECT_EQ(photo.GetPhototype(), eOvPhotoAnalog);
    EXPECT_TRUE(photo.IsAnalog());
    EXPECT_FALSE(photo.IsDigital());
    EXPECT_EQ(photo.GetDigitizerId(), 1u);
    EXPECT_EQ(photo.GetLayer(), 0);
    EXPECT_EQ(photo.GetRotation(), 0);
    EXPECT_EQ(photo.GetScale(), 0.0);
    EXPECT_EQ(photo.GetDigPictPage(), 0);
    EXPECT_EQ(photo.GetDigPictRot(), 0);
    EXPECT_EQ(photo.GetScreenScale(), 0);
    EXPECT_EQ(photo.GetReserved(), 0u);
    EXPECT_EQ(photo.GetCamera().GetId(), 0u);
    EXPECT_EQ(photo.GetReseauTrafoType(), eOvTrafo2DNone);
    EXPECT_STREQ(photo.GetReseauTrafoName(), "None");
    EXPECT_EQ(photo.GetFlag().GetFlag(), 0u);
    EXPECT_FALSE(photo.IsOrthoPhoto());
    EXPECT_EQ(OvPhoto().GetId(), 0u);
}

TEST(Photo, InitResetsTheScalarsOnly) {
    OvPhoto photo(3, "a");
    photo.SetActiveFlag(0);
    photo.SetLayer(4);
    photo.SetRotation(90);
    photo.SetScale(0.5);
    photo.SetType(eOvPhotoDigital);
    photo.SetDigitizer(7);
    photo.SetDigPictPage(2);
    photo.SetDigPictRot(1);
    photo.SetScreenScale(3);
    photo.AktBikoId() = 44;
    photo.SetComment("kept");
    photo.Init();
    EXPECT_EQ(photo.GetActiveFlag(), 1);
    EXPECT_EQ(photo.GetLayer(), 0);
    EXPECT_EQ(photo.GetRotation(), 0);
    EXPECT_EQ(photo.GetScale(), 0.0);
    EXPECT_TRUE(photo.IsAnalog());
    EXPECT_EQ(photo.GetDigitizerId(), 1u);
    EXPECT_EQ(photo.GetDigPictPage(), 0);
    EXPECT_EQ(photo.GetDigPictRot(), 0);
    EXPECT_EQ(photo.GetScreenScale(), 0);
    EXPECT_EQ(photo.AktBikoId(), 0u);
    EXPECT_STREQ(photo.GetComment().chars(), "kept");
    EXPECT_EQ(photo.GetId(), 3u);
}

TEST(Photo, CompareIsTheIdDifference) {
    const OvPhoto five(5);
    const OvPhoto three(3);
    const OvPhoto top(0xFFFFFFFFu);
    EXPECT_EQ(five.Compare(static_cast<const OvListnode*>(&three)), 2);
    EXPECT_EQ(three.Compare(static_cast<const OvListnode*>(&five)), -2);
    // A 32-bit difference: 0 - 0xFFFFFFFF wraps to 1.
    EXPECT_EQ(OvPhoto().Compare(static_cast<const OvListnode*>(&top)), 1);
    // Sorting a list by it gives ascending ids.
    OvPhotoList list;
    for (unsigned id : {9u, 2u, 5u})
        list.Add(new OvPhoto(id));
    list.Sort();
    EXPECT_EQ(list.First()->GetId(), 2u);
    EXPECT_EQ(list.Last()->GetId(), 9u);
}

TEST(Photo, PredicatesAndFilters) {
    OvPhoto photo(1);
    photo.SetActiveFlag(2);
    EXPECT_TRUE(photo.IsExtern());
    EXPECT_TRUE(photo.IsInactive());
    EXPECT_EQ(IsPhotoExtern(&photo), 1u);
    EXPECT_EQ(IsPhotoActive(&photo), 0u);
    photo.SetActiveFlag(0);
    EXPECT_EQ(IsPhotoActive(&photo), 1u);
    EXPECT_EQ(IsPhotoAnalog(&photo), 1u);
    photo.SetPhototype(eOvPhotoDigital);
    EXPECT_EQ(IsPhotoDigital(&photo), 1u);
    EXPECT_EQ(IsPhotoAnalog(&photo), 0u);
    // Every type but 1 is analog.
    photo.SetPhototype(static_cast<eOvPhototype>(7));
    EXPECT_TRUE(photo.IsAnalog());

    EXPECT_EQ(HasPhotoReseau(&photo), 0u);
    photo.SetReseauMainTrafo(Helmert(0, 1, 0, 0));
    EXPECT_EQ(HasPhotoReseau(&photo), 1u);
    EXPECT_EQ(HasPhotoTilt(&photo), 0u);
    photo.AddTiltTrafo(OvTiltTrafo(1, "plane"));
    EXPECT_EQ(HasPhotoTilt(&photo), 1u);

    const OvAndFilter filter(new OvTestFilter(&IsPhotoActive), new OvTestFilter(&HasPhotoTilt));
    EXPECT_EQ(filter.Test(&photo), 1u);
    photo.SetActiveFlag(1);
    EXPECT_EQ(filter.Test(&photo), 0u);
}

TEST(Photo, CopyIsDeep) {
    OvPhoto photo = ConvertingPhoto();
    photo.SetComment("original");
    photo.AddMeasure(OvPoint(1, 1.0, 2.0, 0.0, 0), eConvertBikoNone);
    photo.AddImo(OvPoint(2, 3.0, 4.0, 0.0, 0), eConvertBikoNone);
    photo.AddTiltTrafo(OvTiltTrafo(5, "plane"));
    photo.AddAttribute(OvAttribute("colour=red"));
    photo.GetFlag().SetFlag(0x2);

    OvPhoto copy(photo);
    OvPhoto assigned(99);
    assigned = photo;
    for (OvPhoto* p : {&copy, &assigned}) {
        EXPECT_EQ(p->GetId(), 4u);
        EXPECT_STREQ(p->GetComment().chars(), "original");
        EXPECT_EQ(p->GetFlag().GetFlag(), 0x2u);
        EXPECT_EQ(p->GetCamera().GetId(), 2u);
        EXPECT_EQ(p->GetReseauPreTrafo().GetParam(0), 10.0);
        ASSERT_EQ(p->CountMeasure(), 1);
        EXPECT_NE(p->FirstMeasure(), photo.FirstMeasure());
        ASSERT_EQ(p->CountImo(), 1);
        ASSERT_NE(p->FindTiltTrafo(5), nullptr);
        EXPECT_NE(p->FindTiltTrafo(5), photo.FindTiltTrafo(5));
        ASSERT_NE(p->FirstAttribute(), nullptr);
        EXPECT_EQ(p->FirstAttribute()->GetPhoto(), p);
    }
    EXPECT_EQ(photo.FirstAttribute()->GetPhoto(), &photo);
}

TEST(PhotoConvert, DirectModes) {
    const OvPhoto photo = ConvertingPhoto();
    auto convert = [&](eConvertBikoMode mode, double x, double y) {
        OvPoint p(1, x, y, 7.0, 0);
        EXPECT_EQ(photo.ConvertBiko(&p, mode), 1);
        EXPECT_EQ(p.GetZ(), 7.0);
        return std::make_pair(p.GetX(), p.GetY());
    };
    // Pre: (3, 5) -> (16, 6); main: (16, 6) -> (1 - 6, 16) = (-5, 16).
    EXPECT_EQ(convert(eConvertMeasureToPre, 3, 5), std::make_pair(16.0, 6.0));
    EXPECT_EQ(convert(eConvertMeasureToBiko, 3, 5), std::make_pair(-5.0, 16.0));
    EXPECT_EQ(convert(eConvertPreToBiko, 16, 6), std::make_pair(-5.0, 16.0));
    // The camera has no distortion: Adjust only subtracts the principal point (0.5, -0.25).
    EXPECT_EQ(convert(eConvertMeasureToCorrectedBiko, 3, 5), std::make_pair(-5.5, 16.25));
    EXPECT_EQ(convert(eConvertBikoToCorrectedBiko, -5, 16), std::make_pair(-5.5, 16.25));
    // Without distortion the inverse adds the principal point back after one pass.
    EXPECT_EQ(convert(eConvertCorrectedBikoToBiko, -5.5, 16.25), std::make_pair(-5.0, 16.0));
    // Mode 6 goes back from image to measured coordinates.
    const auto back = convert(eConvertBikoToMeasure, -5, 16);
    EXPECT_NEAR(back.first, 3.0, 1e-12);
    EXPECT_NEAR(back.second, 5.0, 1e-12);
    for (int mode : {0, 11, 12, 13, 14, -3})
        EXPECT_EQ(convert(static_cast<eConvertBikoMode>(mode), 3, 5), std::make_pair(3.0, 5.0));
    EXPECT_EQ(photo.ConvertBiko(nullptr, eConvertMeasureToBiko), 1);
}

TEST(PhotoConvert, CameraWithIdZeroSkipsTheCameraStep) {
    OvPhoto photo = ConvertingPhoto();
    photo.SetCamera(OvCamera(0, 50.0, 0.5, -0.25, 0.0, 0.0, 0.0, "no id"));
    OvPoint p(1, 3.0, 5.0, 0.0, 0);
    photo.ConvertBiko(&p, eConvertMeasureToCorrectedBiko);
    EXPECT_EQ(p.GetX(), -5.0);
    EXPECT_EQ(p.GetY(), 16.0);
    photo.ConvertBiko(&p, eConvertCorrectedBikoToBiko);
    EXPECT_EQ(p.GetX(), -5.0);
}

TEST(PhotoConvert, ConvertListAndConvertMeasure) {
    OvPhoto photo = ConvertingPhoto();
    OvPointList list;
    list.Add(OvPoint(1, 3.0, 5.0, 1.0, 0));
    list.Add(OvPoint(2, -1.0, 0.5, 2.0, 0));
    photo.ConvertList(&list, eConvertMeasureToBiko);
    EXPECT_DOUBLE_EQ(list.Find(1u)->GetX(), -5.0);
    EXPECT_DOUBLE_EQ(list.Find(1u)->GetY(), 16.0);
    EXPECT_DOUBLE_EQ(list.Find(2u)->GetX(), 1.0 - (-4.0 + 1.0));
    EXPECT_DOUBLE_EQ(list.Find(2u)->GetY(), 10.0 - 2.0);
    EXPECT_EQ(list.Find(2u)->GetZ(), 2.0);
    photo.ConvertList(nullptr, eConvertMeasureToBiko);  // nothing to do

    photo.AddMeasure(OvPoint(7, 3.0, 5.0, 0.0, 0), eConvertBikoNone);
    photo.ConvertMeasure(eConvertMeasureToPre);
    EXPECT_DOUBLE_EQ(photo.FindMeasure(7)->GetX(), 16.0);
    EXPECT_DOUBLE_EQ(photo.FindMeasure(7)->GetY(), 6.0);
}

TEST(PhotoLists, AddMeasureStampsThePhotoIdAddImoDoesNot) {
    OvPhoto photo = ConvertingPhoto();
    OvPoint point(3, 3.0, 5.0, 0.0, 0);
    point.SetPhotoId(77);
    OvPoint* measured = photo.AddMeasure(point, eConvertMeasureToPre);
    ASSERT_NE(measured, nullptr);
    EXPECT_EQ(measured->GetPhotoId(), 4u);
    EXPECT_EQ(measured->GetX(), 16.0);
    EXPECT_EQ(point.GetX(), 3.0);  // the reference form converts a copy

    OvPoint* image = photo.AddImo(point, eConvertMeasureToPre);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->GetPhotoId(), 77u);
    EXPECT_EQ(image->GetX(), 16.0);

    // A point with an id that is there replaces it in its place.
    photo.AddMeasure(OvPoint(1, 0.0, 0.0, 0.0, 0), eConvertBikoNone);
    photo.AddMeasure(new OvPoint(3, 9.0, 9.0, 0.0, 0), eConvertBikoNone);
    EXPECT_EQ(photo.CountMeasure(), 2);
    EXPECT_EQ(photo.FirstMeasure()->GetX(), 9.0);
    EXPECT_EQ(photo.LastMeasure()->GetId(), 1u);

    // A point that is still in a list is refused before anything changes.
    OvPoint* linked = photo.FirstMeasure();
    EXPECT_EQ(photo.AddImo(linked, eConvertMeasureToPre), nullptr);
    EXPECT_EQ(linked->GetX(), 9.0);
    EXPECT_EQ(photo.AddMeasure(static_cast<OvPoint*>(nullptr), eConvertBikoNone), nullptr);
}

TEST(PhotoLists, SubtractDestroyAndFreeId) {
    OvPhoto photo(1);
    EXPECT_EQ(photo.GetFreeBikoId(), 1u);
    for (unsigned id : {1u, 2u, 4u})
        photo.AddMeasure(OvPoint(id, 0.0, 0.0, 0.0, 0), eConvertBikoNone);
    EXPECT_EQ(photo.GetFreeBikoId(), 5u);
    std::unique_ptr<OvPoint> taken(photo.SubtractMeasure(2u));
    ASSERT_NE(taken, nullptr);
    EXPECT_EQ(photo.CountMeasure(), 2);
    std::unique_ptr<OvPoint> last(photo.SubtractMeasure(photo.LastMeasure()));
    EXPECT_EQ(last->GetId(), 4u);
    EXPECT_EQ(photo.SubtractMeasure(42u), nullptr);
    photo.DestroyMeasure();
    EXPECT_EQ(photo.CountMeasure(), 0);

    photo.AddImo(OvPoint(8, 0.0, 0.0, 0.0, 0), eConvertBikoNone);
    EXPECT_EQ(photo.FindImo(8), photo.FirstImo());
    EXPECT_EQ(photo.FirstImo(), photo.LastImo());
    std::unique_ptr<OvPoint> image(photo.SubtractImo(8));
    EXPECT_NE(image, nullptr);
    photo.AddImo(OvPoint(9, 0.0, 0.0, 0.0, 0), eConvertBikoNone);
    photo.DestroyImo();
    EXPECT_EQ(photo.CountImo(), 0);
}

TEST(PhotoLists, TransfersBetweenTheLists) {
    OvPhoto photo = ConvertingPhoto();
    OvPoint image(5, 3.0, 5.0, 0.0, 0);
    image.SetPhotoId(60);
    photo.AddImo(image, eConvertBikoNone);

    OvPoint* copied = photo.CopyImoToMeasure(5, eConvertMeasureToPre);
    ASSERT_NE(copied, nullptr);
    EXPECT_EQ(copied->GetX(), 16.0);
    EXPECT_EQ(copied->GetPhotoId(), 4u);
    EXPECT_EQ(photo.FindImo(5)->GetX(), 3.0);
    EXPECT_EQ(photo.CopyImoToMeasure(6, eConvertBikoNone), nullptr);

    // Moving the measured point to the Imo list replaces the Imo point with that id.
    OvPoint* moved = photo.MoveMeasureToImo(5, eConvertPreToBiko);
    ASSERT_NE(moved, nullptr);
    EXPECT_EQ(photo.CountMeasure(), 0);
    EXPECT_EQ(photo.CountImo(), 1);
    EXPECT_EQ(photo.FindImo(5), moved);
    EXPECT_EQ(moved->GetX(), 1.0 - 6.0);
    EXPECT_EQ(moved->GetPhotoId(), 4u);  // stamped when it went into the measure list
    EXPECT_EQ(photo.MoveMeasureToImo(5, eConvertBikoNone), nullptr);

    EXPECT_EQ(photo.CopyMeasureToImo(5, eConvertBikoNone), nullptr);  // the measure list is empty
    OvPoint* back = photo.MoveImoToMeasure(5, eConvertBikoNone);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(photo.CountImo(), 0);
    EXPECT_EQ(photo.FindMeasure(5), back);
    EXPECT_EQ(back->GetPhotoId(), 4u);

    OvPoint* again = photo.CopyMeasureToImo(5, eConvertPreToBiko);
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->GetX(), 1.0 - back->GetY());
    EXPECT_EQ(again->GetY(), back->GetX());
    EXPECT_EQ(photo.CountMeasure(), 1);
}

TEST(PhotoLists, TransfersOfAllPoints) {
    OvPhoto photo = ConvertingPhoto();
    for (unsigned id : {1u, 2u, 3u})
        photo.AddImo(OvPoint(id, 3.0, 5.0, 0.0, 0), eConvertBikoNone);
    EXPECT_EQ(photo.CopyImoToMeasure(eConvertMeasureToPre), 3);
    EXPECT_EQ(photo.FindMeasure(2)->GetX(), 16.0);
    EXPECT_EQ(photo.FindImo(2)->GetX(), 3.0);
    EXPECT_EQ(photo.MoveImoToMeasure(), 3);  // unconverted, replacing the copies
    EXPECT_EQ(photo.CountImo(), 0);
    EXPECT_EQ(photo.CountMeasure(), 3);
    EXPECT_EQ(photo.FindMeasure(2)->GetX(), 3.0);
    EXPECT_EQ(photo.CopyMeasureToImo(), 3);
    EXPECT_EQ(photo.MoveMeasureToImo(eConvertMeasureToPre), 3);
    EXPECT_EQ(photo.CountMeasure(), 0);
    EXPECT_EQ(photo.FindImo(3)->GetX(), 16.0);

    OvPointList other;
    EXPECT_EQ(photo.CopyImoTo(&other), 3);
    EXPECT_EQ(photo.CountImo(), 3);
    EXPECT_EQ(photo.MoveImoTo(&other), 3);
    EXPECT_EQ(photo.CountImo(), 0);
    EXPECT_EQ(other.Count(), 6);
    EXPECT_EQ(photo.CopyMeasureTo(nullptr), 0);
    EXPECT_EQ(photo.CopyMeasureTo(&photo.GetMeasureList()), 0);
    photo.AddMeasure(OvPoint(1, 0, 0, 0, 0), eConvertBikoNone);
    EXPECT_EQ(photo.MoveMeasureTo(&other), 1);
    EXPECT_EQ(other.Count(), 7);
}

TEST(PhotoPixelSize, MeasuredUnitsPerImageUnit) {
    // No transformation: five image units are five measured units.
    const OvPhoto plain(1);
    EXPECT_DOUBLE_EQ(plain.GetPixelSizeX(), 1.0);
    EXPECT_DOUBLE_EQ(plain.GetPixelSizeY(), 1.0);
    // Pre stage doubles, main stage halves again in x and y, and an Affin scales y by 4 more.
    OvPhoto photo(2);
    OvTrafo2d affin;
    affin.SetType(eOvTrafo2DAffin);
    affin.SetParam(1, 2.0);  // x' = 2x
    affin.SetParam(5, 8.0);  // y' = 8y
    photo.SetReseauPreTrafo(affin);
    photo.SetReseauMainTrafo(Helmert(0.0, 0.5, 0.0, 0.0));
    // Image -> measured: x / (2 * 0.5) = x, y / (8 * 0.5) = y / 4.
    EXPECT_DOUBLE_EQ(photo.GetPixelSizeX(), 1.0);
    EXPECT_DOUBLE_EQ(photo.GetPixelSizeY(), 4.0);
    EXPECT_DOUBLE_EQ(photo.GetPixelSize(), 4.0);
}

TEST(PhotoPixelSize, ATransformMappingOntoOnePointGivesFive) {
    // A polynomial main stage whose inverse maps every point onto the origin.
    OvPhoto photo(1);
    OvTrafo2d poly;
    poly.SetType(eOvTrafo2DPolynomial);
    photo.SetReseauMainTrafo(poly);
    photo.SetPolyInvTrafo(poly);
    EXPECT_EQ(photo.GetPixelSizeX(), 5.0);
    EXPECT_EQ(photo.GetPixelSizeY(), 5.0);
    EXPECT_EQ(photo.GetPixelSize(), 25.0);
}

TEST(PhotoRegions, OverlapAndBikoRegion) {
    OvPhoto photo = ConvertingPhoto();
    photo.SetDigiRegion(OvRegion(0.0, 0.0, 10.0, 20.0));
    const OvPoint inside(1, 10.0, 0.0, 0.0, 0);
    const OvPoint outside(2, 10.5, 0.0, 0.0, 0);
    EXPECT_TRUE(photo.Overlap(&inside));
    EXPECT_FALSE(photo.Overlap(&outside));
    EXPECT_FALSE(photo.Overlap(static_cast<const OvPoint*>(nullptr)));
    const OvRegion touching(10.0, 20.0, 30.0, 40.0);
    const OvRegion apart(10.5, 0.0, 30.0, 40.0);
    EXPECT_TRUE(photo.Overlap(&touching));
    EXPECT_FALSE(photo.Overlap(&apart));

    // Corners through pre and main: (0, 0) -> (10, -4) -> (5, 10);
    // (10, 20) -> (30, 36) -> (-35, 30).
    const OvRegion biko = photo.GetBikoRegion();
    EXPECT_EQ(biko.GetFirst().GetX(), 5.0);
    EXPECT_EQ(biko.GetFirst().GetY(), 10.0);
    EXPECT_EQ(biko.GetSecond().GetX(), -35.0);
    EXPECT_EQ(biko.GetSecond().GetY(), 30.0);
}

TEST(PhotoTilt, GetTiltTrafoWalksFromAfter) {
    OvPhoto photo(1);
    OvTiltTrafo* first = photo.AddTiltTrafo(OvTiltTrafo(1, "everywhere"));
    auto* second = new OvTiltTrafo(2, "left half");
    second->GetRegion().AddPoint(OvPoint(1, 0.0, 0.0, 0.0, 0));
    second->GetRegion().AddPoint(OvPoint(2, 5.0, 0.0, 0.0, 0));
    second->GetRegion().AddPoint(OvPoint(3, 5.0, 10.0, 0.0, 0));
    second->GetRegion().AddPoint(OvPoint(4, 0.0, 10.0, 0.0, 0));
    second->SetActive(true);
    ASSERT_EQ(photo.AddTiltTrafo(second), second);
    OvTiltTrafo* third = photo.AddTiltTrafo(OvTiltTrafo(3, "also everywhere"));
    third->SetActive(true);

    const OvPoint left(1, 2.0, 3.0, 0.0, 0);
    const OvPoint right(2, 8.0, 3.0, 0.0, 0);
    EXPECT_EQ(photo.GetTiltTrafo(&left, nullptr, false), first);
    EXPECT_EQ(photo.GetTiltTrafo(&left, first, false), second);
    EXPECT_EQ(photo.GetTiltTrafo(&right, first, false), third);
    EXPECT_EQ(photo.GetTiltTrafo(&left, third, false), nullptr);
    EXPECT_EQ(photo.GetTiltTrafo(&left, nullptr, true), second);
    EXPECT_EQ(photo.GetTiltTrafo(&right, nullptr, true), third);
    EXPECT_EQ(photo.CountTiltTrafo(&left, false), 3);
    EXPECT_EQ(photo.CountTiltTrafo(&right, false), 2);
    EXPECT_EQ(photo.CountTiltTrafo(&right, true), 1);

    // A transform of another photo is no starting point here.
    OvPhoto other(2);
    OvTiltTrafo* foreign = other.AddTiltTrafo(OvTiltTrafo(1, "x"));
    EXPECT_EQ(photo.GetTiltTrafo(&left, foreign, false), nullptr);

    EXPECT_EQ(photo.FirstTiltTrafo(), first);
    EXPECT_EQ(photo.LastTiltTrafo(), third);
    EXPECT_EQ(photo.FindTiltTrafo(2), second);
    std::unique_ptr<OvTiltTrafo> taken(photo.SubtractTiltTrafo(2));
    EXPECT_EQ(taken.get(), second);
    EXPECT_EQ(photo.GetTiltList().Count(), 2);
}

class CountingAttribute : public OvAttribute {
public:
    CountingAttribute(const String& text, int* added, int* subtracted)
        : OvAttribute(text), added_(added), subtracted_(subtracted) {}
    int OnAdd() override { return ++*added_; }
    int OnSubtract() override { return ++*subtracted_; }

private:
    int* added_;
    int* subtracted_;
};

TEST(PhotoAttributes, OwnershipAndHooks) {
    OvPhoto photo(1);
    int added = 0;
    int subtracted = 0;
    auto* attribute = new CountingAttribute("k=v", &added, &subtracted);
    ASSERT_EQ(photo.AddAttribute(attribute), attribute);
    EXPECT_EQ(added, 1);
    EXPECT_EQ(attribute->GetPhoto(), &photo);
    EXPECT_EQ(photo.FindAttribute("k=v"), attribute);
    EXPECT_EQ(photo.FirstAttribute(), attribute);
    EXPECT_EQ(photo.AddAttribute(attribute), nullptr);  // already in the list
    EXPECT_EQ(added, 1);

    std::unique_ptr<OvAttribute> taken(photo.SubtractAttribute("k=v"));
    EXPECT_EQ(taken.get(), attribute);
    EXPECT_EQ(subtracted, 1);
    EXPECT_EQ(attribute->GetPhoto(), nullptr);
    EXPECT_EQ(photo.SubtractAttribute(attribute), nullptr);

    OvAttribute* copy = photo.AddAttribute(OvAttribute("note"));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->GetPhoto(), &photo);
    EXPECT_TRUE(photo.DelAttribute("note"));
    EXPECT_FALSE(photo.DelAttribute("note"));
    EXPECT_EQ(photo.GetAttributeList().Count(), 0);
    EXPECT_EQ(photo.AddAttribute(static_cast<OvAttribute*>(nullptr)), nullptr);
}

TEST(PhotoWalk, MaskedWalkOverAList) {
    OvPhotoList list;
    for (unsigned id = 1; id <= 5; ++id)
        list.Add(new OvPhoto(id));
    list.Find(2u)->GetFlag().SetFlag(0x2);
    list.Find(4u)->GetFlag().SetFlag(0x20);
    OvPhoto* first = list.First();
    EXPECT_EQ(first->First(0x22)->GetId(), 2u);
    EXPECT_EQ(first->First(0x22)->Next(0x22)->GetId(), 4u);
    EXPECT_EQ(list.Find(4u)->Next(0x22), nullptr);
    EXPECT_EQ(list.Last()->Previous(0x2)->GetId(), 2u);
    EXPECT_EQ(first->Previous(0x2), nullptr);
    EXPECT_EQ(first->Next()->GetId(), 2u);
    EXPECT_EQ(list.Last()->Previous()->GetId(), 4u);
    EXPECT_EQ(first->First(0x100), nullptr);
}

TEST(PhotoReseau, FindReseauFileByThePhotosKey) {
    OvReseaufileList files;
    auto* rmk = new OvReseauFile();
    rmk->SetName("RMK.res");
    files.Add(rmk);
    auto* second = new OvReseauFile(*rmk);
    files.Add(second);

    OvPhoto photo(1);
    photo.SetReseauData(OvReseauDataDesc("rmk.RES", 0));
    EXPECT_EQ(files.FindReseauFile(&photo), rmk);
    photo.ReseauData().SetSubId(3);
    EXPECT_EQ(files.FindReseauFile(&photo), nullptr);
    EXPECT_EQ(files.FindReseauFile(static_cast<const OvPhoto*>(nullptr)), nullptr);
    EXPECT_STREQ(photo.GetReseauData().GetName().chars(), "rmk.RES");
}

TEST(PhotoFile, ExistFileTestsThePictureName) {
    test::TempDir dir;
    const std::string name = dir.file("picture.tif");
    OvPhoto photo(1, String(name.c_str()));
    EXPECT_FALSE(photo.ExistFile());
    test::WriteWholeFile(name, "x");
    EXPECT_TRUE(photo.ExistFile());
}

}  // namespace
}  // namespace orvo
