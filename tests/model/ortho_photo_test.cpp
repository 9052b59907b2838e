#include "orvo/model/ortho_photo.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <sstream>
#include <string>

#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

std::string Written(const OvOrthoPhoto& photo) {
    OvWriterReset();
    std::ostringstream out;
    photo.Write(out);
    OvWriterReset();
    return out.str();
}

// Reads "ORTHOPHOTO { ... }" blocks of the text into the list; returns the read errors.
int ReadOrthos(const std::string& text, OvOrthoPhotoList& list) {
    std::istringstream in(text);
    OvReader reader(in, "test");
    reader.RegisterObject(
        OvReaderObject("ORTHOPHOTO", Link(&list, &OvOrthoPhotoList::AddPhotoHdl)));
    reader.DoProcess(false);
    return reader.GetReadErrorCount();
}

// A plane whose range is the square x0..x0+10, 0..10 and whose transformation shifts by
// (dx, 0, dz).
OvTiltPlaneInfo* AddPlane(OvOrthoPhoto& photo, double x0, double dx, double dz) {
    auto* plane = new OvTiltPlaneInfo();
    for (const auto& c : {std::pair{0.0, 0.0}, {10.0, 0.0}, {10.0, 10.0}, {0.0, 10.0}})
        plane->GetRange().AddPoint(OvPoint(0, x0 + c.first, c.second, 0.0, 0));
    OvMatrix m(4, 4);
    m.SetIdent();
    m.SetElem(1, 4, dx);
    m.SetElem(3, 4, dz);
    plane->SetTransformation(m);
    return photo.TiltPlaneList().Add(plane);
}

TEST(OvOrthoPhotoTest, Defaults) {
    const OvOrthoPhoto photo(4);
    EXPECT_EQ(photo.GetId(), 4u);
    EXPECT_TRUE(photo.IsOrthoPhoto());
    EXPECT_TRUE(photo.IsDigital());
    EXPECT_EQ(photo.GetStatTime(), 1.0);
    EXPECT_EQ(photo.GetMaxAngle(), 9.0);
    EXPECT_EQ(photo.GetStatPixel(), 0);
    EXPECT_TRUE(photo.TiltPlaneList().IsEmpty());
    EXPECT_EQ(photo.GetObjectRegion().Right(), 0.0);
    // The photo's own defaults stay.
    EXPECT_TRUE(photo.IsInactive());
    EXPECT_EQ(photo.GetDigitizerId(), 1u);
    const OvPhoto& base = photo;
    EXPECT_TRUE(base.IsOrthoPhoto());
    const OvPhoto plain(1);
    EXPECT_FALSE(plain.IsOrthoPhoto());
}

TEST(OvOrthoPhotoTest, PixelSizeIsObjectWidthOverPixelWidth) {
    OvOrthoPhoto photo(1);
    photo.SetObjectRegion(OvRegion(10.0, 0.0, 22.5, 5.0));
    const OvPhoto& base = photo;
    EXPECT_EQ(base.GetPixelSize(), 12.5);  // no pixel width: 1.0
    photo.SetDigiRegion(OvRegion(0.0, 0.0, 2500.0, 1000.0));
    EXPECT_DOUBLE_EQ(base.GetPixelSize(), 0.005);
    // An unsorted object region still gives a positive size.
    photo.SetObjectRegion(OvRegion(OvPoint(0, 22.5, 0.0, 0.0, 0), OvPoint(0, 10.0, 5.0, 0.0, 0)));
    EXPECT_DOUBLE_EQ(photo.GetPixelSize(), 0.005);
}

TEST(OvOrthoPhotoTest, TransformThroughOneOrSeveralPlanes) {
    OvOrthoPhoto photo(1);
    EXPECT_FALSE(photo.Transform(nullptr));
    OvPoint p(0, 50.0, 5.0, 1.0, 0);
    EXPECT_FALSE(photo.Transform(&p));  // no plane

    AddPlane(photo, 0.0, 100.0, 0.0);
    // One plane maps every point, also outside its range.
    ASSERT_TRUE(photo.Transform(&p));
    EXPECT_EQ(p.GetX(), 150.0);
    EXPECT_EQ(p.GetZ(), 1.0);

    AddPlane(photo, 10.0, 200.0, 7.0);
    OvPoint inSecond(0, 15.0, 5.0, 0.0, 0);
    ASSERT_TRUE(photo.Transform(&inSecond));
    EXPECT_EQ(inSecond.GetX(), 215.0);
    EXPECT_EQ(inSecond.GetZ(), 7.0);
    OvPoint onEdge(0, 10.0, 5.0, 0.0, 0);  // in both ranges: the first wins
    ASSERT_TRUE(photo.Transform(&onEdge));
    EXPECT_EQ(onEdge.GetX(), 110.0);
    OvPoint outside(0, 50.0, 5.0, 0.0, 0);
    EXPECT_FALSE(photo.Transform(&outside));
    EXPECT_EQ(outside.GetX(), 50.0);
}

TEST(OvOrthoPhotoTest, ImageCornersThroughThePlanes) {
    OvOrthoPhoto photo(1);
    photo.SetDigiRegion(OvRegion(0.0, 0.0, 20.0, 12.0));
    OvPoint a;
    OvPoint b;
    OvPoint c;
    OvPoint d;
    EXPECT_FALSE(photo.GetImageCorners(&a, &b, &c, &d));
    AddPlane(photo, 0.0, 100.0, 1.0);
    ASSERT_TRUE(photo.GetImageCorners(&a, &b, &c, &d));
    EXPECT_EQ(a.GetX(), 100.0);
    EXPECT_EQ(a.GetY(), 0.0);
    EXPECT_EQ(b.GetX(), 120.0);
    EXPECT_EQ(c.GetY(), 12.0);
    EXPECT_EQ(d.GetX(), 100.0);
    EXPECT_EQ(d.GetZ(), 1.0);

    // Two planes side by side: each corner goes through the plane nearest to it, since the
    // top corners lie above both ranges.
    AddPlane(photo, 10.0, 200.0, 2.0);
    ASSERT_TRUE(photo.GetImageCorners(&a, &b, &c, &d));
    EXPECT_EQ(a.GetX(), 100.0);  // (0, 0): in the first range
    EXPECT_EQ(b.GetX(), 220.0);  // (20, 0): in the second
    EXPECT_EQ(c.GetX(), 220.0);  // (20, 12): nearest to the second
    EXPECT_EQ(c.GetZ(), 2.0);
    EXPECT_EQ(d.GetX(), 100.0);  // (0, 12): nearest to the first
    EXPECT_FALSE(photo.GetImageCorners(&a, nullptr, &c, &d));
}

TEST(OvOrthoPhotoTest, WritesItsRecordExactly) {
    OvOrthoPhoto photo(4, "facade_ortho.tif");
    photo.SetComment("ground \"floor\"");
    photo.SetStatPixel(120000);
    photo.SetStatTime(2.5);
    photo.SetScale(0.02);
    photo.SetMaxAngle(12.0);
    photo.SetDigiRegion(OvRegion(0.0, 0.0, 2000.0, 1000.0));
    photo.SetObjectRegion(OvRegion(1.0, 2.0, 21.0, 12.0));
    // Keywords the photo writes are not part of the ortho record.
    photo.SetDigPictPage(3);
    const std::string region =
        " {                     0                     0"
        "                  2000                  1000}";
    const std::string object =
        " {                     1                     2"
        "                    21                    12}";
    EXPECT_EQ(Written(photo),
              "ID              {    4 \"facade_ortho.tif\"}\n"
              "COMMENT         \"ground 'floor'\"\n"
              "RECTPIXEL    120000\n"
              "TIME          2.5\n"
              "SCALE        0.02\n"
              "PLANEANGLE     12\n"
              "PIXELSIZE      " +
                  region +
                  "\n"
                  "OBJECTSIZE     " +
                  object + "\n");
}

TEST(OvOrthoPhotoTest, PlanesAreWrittenInBlocksAndEverythingReadsBack) {
    OvOrthoPhoto photo(7, "ortho.tif");
    photo.SetComment("two planes");
    photo.SetStatPixel(99);
    photo.SetStatTime(0.25);
    photo.SetMaxAngle(4.5);
    photo.SetDigiRegion(OvRegion(0.0, 0.0, 20.0, 10.0));
    photo.SetObjectRegion(OvRegion(-1.0, -2.0, 3.0, 4.0));
    AddPlane(photo, 0.0, 100.0, 1.0);
    AddPlane(photo, 10.0, 200.0, 2.0);
    const std::string text = Written(photo);
    EXPECT_NE(text.find("PLANEINFO   \n{\n    PHOTOID         {    0 \"\"}\n"), std::string::npos)
        << text;

    OvOrthoPhotoList list;
    OvWriterReset();
    std::ostringstream framed;
    framed << "ORTHOPHOTO" << Ovendl << OvBeginBlockNL;
    photo.Write(framed);
    framed << OvEndBlockNL << Ovendl;
    EXPECT_EQ(ReadOrthos(framed.str(), list), 0);
    ASSERT_EQ(list.Count(), 1);
    const OvOrthoPhoto& read = *list.First();
    EXPECT_EQ(read.GetId(), 7u);
    EXPECT_EQ(compare(read.GetComment(), String("two planes")), 0);
    EXPECT_EQ(read.GetStatPixel(), 99);
    EXPECT_EQ(read.GetStatTime(), 0.25);
    EXPECT_EQ(read.GetMaxAngle(), 4.5);
    EXPECT_EQ(read.GetDigiRegion().Right(), 20.0);
    EXPECT_EQ(read.GetObjectRegion().Bottom(), -2.0);
    EXPECT_EQ(read.TiltPlaneList().Count(), 2);
    EXPECT_TRUE(read.IsDigital());
    EXPECT_EQ(Written(read), text);
}

TEST(OvOrthoPhotoTest, OnlyTheOrthoKeywordsAreRead) {
    OvOrthoPhotoList list;
    const int errors = ReadOrthos(
        "ORTHOPHOTO {\n"
        "  ID { 3 \"a.tif\" }\n"
        "  DIGITAL 0\n"  // a photo keyword: not read
        "  STATE 0\n"
        "  SCALE 0.5 TIME 3\n"
        "  PIXELSIZE { 0 0 100 }\n"  // cut short: the region stays
        "  PLANEINFO { TILTID { 2 \"t\" } }\n"
        "  PLANEINFO { }\n"
        "}\n"
        "ORTHOPHOTO { ID { 4 \"b.tif\" } }\n",
        list);
    EXPECT_EQ(errors, 0);
    ASSERT_EQ(list.Count(), 2);
    const OvOrthoPhoto& a = *list.First();
    EXPECT_EQ(a.GetId(), 3u);
    EXPECT_TRUE(a.IsDigital());
    EXPECT_TRUE(a.IsInactive());
    EXPECT_EQ(a.GetScale(), 0.5);
    EXPECT_EQ(a.GetStatTime(), 3.0);
    EXPECT_EQ(a.GetDigiRegion().Right(), 0.0);
    ASSERT_EQ(a.TiltPlaneList().Count(), 2);
    EXPECT_EQ(a.TiltPlaneList().First()->GetTiltId(), 2u);
    EXPECT_EQ(compare(list.Last()->GetName(), String("b.tif")), 0);
}

// Found by fuzzing: a record keyword followed by a value instead of a block registered the
// record's bindings in the enclosing scope, where they outlived the record.
TEST(OvOrthoPhotoTest, ARecordKeywordWithoutABlockReadsNothing) {
    OvOrthoPhotoList list;
    ReadOrthos(
        "ORTHOPHOTO \x01\x01 ID { 4 \"a\" } COMMENT \"x\" TIME 2\n"
        "PIXELSIZE { 0 0 1 1 } OBJECTSIZE 3 PLANEINFO 4\n"
        "ORTHOPHOTO { PIXELSIZE 5 OBJECTSIZE { 0 0 2 2 } PLANEINFO 7 COMMENT \"y\" }\n"
        "COMMENT \"z\"\n",
        list);
    ASSERT_EQ(list.Count(), 1);
    EXPECT_EQ(list.First()->GetObjectRegion().Right(), 2.0);
    EXPECT_EQ(list.First()->TiltPlaneList().Count(), 0);
    EXPECT_EQ(compare(list.First()->GetComment(), String("y")), 0);
}

TEST(OvOrthoPhotoTest, CopyAndAssignment) {
    OvOrthoPhoto photo(2, "x");
    photo.SetStatPixel(5);
    photo.SetMaxAngle(1.0);
    AddPlane(photo, 0.0, 1.0, 0.0);
    const OvOrthoPhoto copy(photo);
    EXPECT_EQ(copy.GetStatPixel(), 5);
    EXPECT_EQ(copy.TiltPlaneList().Count(), 1);
    OvOrthoPhoto assigned(9);
    assigned = photo;
    EXPECT_EQ(assigned.GetId(), 2u);
    EXPECT_EQ(assigned.GetMaxAngle(), 1.0);
    EXPECT_EQ(assigned.TiltPlaneList().Count(), 1);
    EXPECT_NE(assigned.TiltPlaneList().First(), photo.TiltPlaneList().First());
}

}  // namespace
}  // namespace orvo
