// Reading photo records: every keyword, the older forms and their post-processing, and damaged
// records reported and stepped over without losing the reader's place.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "orvo/model/photo.h"
#include "orvo/model/photo_list.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

using Problems = std::vector<std::pair<std::uint32_t, std::string>>;

// Reads "PHOTO" blocks with a plain reader into a photo list, and "AFTER" into an int at the top
// level. The errors are taken right after each photo, since the reader takes a trailing error
// of the "not specified token" kind back when its run ends.
class PhotoBlocks : public LinkHdl {
public:
    std::int32_t OnPhoto(void* arg) {
        photos.AddPhotoHdl(arg);
        problems.clear();
        const OvReader& reader = *static_cast<OvReaderObject*>(arg)->GetReader();
        for (const OvReaderError* e = reader.GetReaderErrorList().First(); e != nullptr;
             e = e->Next()) {
            problems.emplace_back(e->GetLine(), e->GetName().chars());
        }
        return 1;
    }

    void Read(const std::string& text, const char* name = "project.pro") {
        std::istringstream in(text);
        OvReader reader(in, name);
        reader.RegisterObject(OvReaderObject("PHOTO", MakeLink(this, &PhotoBlocks::OnPhoto)));
        reader.RegisterObject(OvReaderObject("AFTER", &after));
        reader.DoProcess(false);
    }

    OvPhoto& Only() {
        EXPECT_EQ(photos.Count(), 1);
        return *photos.First();
    }

    OvPhotoList photos;
    Problems problems;
    int after = 0;
};

std::string Written(const OvPhoto& photo) {
    OvWriterReset();
    std::ostringstream out;
    photo.Write(out);
    return out.str();
}

OvPhoto FullPhoto() {
    OvPhoto photo(7, "dsc_0007.jpg");
    photo.SetComment("east wall; left");
    photo.SetDigPictPage(2);
    photo.SetDigPictRot(1);
    photo.SetType(eOvPhotoDigital);
    photo.SetDigitizer(4000000000u);
    photo.GetFlag().SetFlag(kOvPhotoFlagCheckActive);
    photo.SetActiveFlag(0);
    photo.SetRotation(-90);
    photo.SetScale(0.0125);
    photo.SetDigiRegion(OvRegion(-1.5, 0.0, 6016.0, 4000.5));
    photo.SetCamera(
        OvCamera(3, 24.314752, 0.01274, -0.03391, -0.00020417, 3.6028e-07, 9.0, "Wide 24mm"));
    photo.SetReseauData(OvReseauDataDesc("body2.dres", 4000000000u));
    OvTrafo2d pre;
    pre.SetType(eOvTrafo2DProjektiv);
    for (int i = 0; i < 8; ++i)
        pre.SetParam(i, 0.125 * (i + 1) - 0.3);
    photo.SetReseauPreTrafo(pre);
    OvTrafo2d main;
    main.SetType(eOvTrafo2DPolynomial);
    for (int i = 0; i < 20; ++i)
        main.SetParam(i, 1.0 / (i + 3));
    photo.SetReseauMainTrafo(main);
    main.SetParam(0, -17.25);
    photo.SetPolyInvTrafo(main);
    photo.SetScreenPos(OvPosition(120.5, -40.25));
    photo.SetScreenScale(3);
    return photo;
}

TEST(PhotoRead, WhatIsWrittenReadsBack) {
    const OvPhoto photo = FullPhoto();
    const std::string text = Written(photo);
    PhotoBlocks blocks;
    blocks.Read("PHOTO\n{\n" + text + "}\nAFTER 1\n");
    const OvPhoto& read = blocks.Only();
    EXPECT_TRUE(blocks.problems.empty());
    EXPECT_EQ(blocks.after, 1);
    EXPECT_EQ(Written(read), text);
    EXPECT_EQ(read.GetId(), 7u);
    EXPECT_STREQ(read.GetName().chars(), "dsc_0007.jpg");
    EXPECT_STREQ(read.GetComment().chars(), "east wall; left");
    EXPECT_EQ(read.GetDigitizerId(), 4000000000u);
    EXPECT_EQ(read.GetReseauData().GetSubId(), 4000000000u);
    EXPECT_STREQ(read.GetReseauData().GetName().chars(), "body2.dres");
    EXPECT_EQ(read.GetFlag().GetFlag(), kOvPhotoFlagCheckActive);
    EXPECT_EQ(read.GetRotation(), -90);
    EXPECT_EQ(read.GetScale(), 0.0125);
    EXPECT_EQ(read.GetDigiRegion().Left(), -1.5);
    EXPECT_EQ(read.GetDigiRegion().Top(), 4000.5);
    EXPECT_EQ(read.GetCamera().GetA2(), 3.6028e-07);
    EXPECT_STREQ(read.GetCamera().GetInfo().chars(), "Wide 24mm");
    EXPECT_EQ(read.GetReseauPreTrafo().GetType(), eOvTrafo2DProjektiv);
    EXPECT_EQ(read.GetReseauPreTrafo().GetParam(7), 0.7);
    EXPECT_DOUBLE_EQ(read.GetReseauMainTrafo().GetParam(19), 1.0 / 22);  // 16 digits kept
    EXPECT_EQ(read.GetReseauPolyInv().GetParam(0), -17.25);
    EXPECT_EQ(read.GetScreenPos().GetY(), -40.25);
    EXPECT_EQ(read.GetScreenScale(), 3);
    EXPECT_EQ(read.GetDigPictPage(), 2);
    EXPECT_EQ(read.GetDigPictRot(), 1);
}

TEST(PhotoRead, OlderKeywordsAndTheAnalogConversion) {
    PhotoBlocks blocks;
    blocks.Read(
        "PHOTO {\n"
        "  PHOTOID { 12 \"plate 12, survey 1987\" }\n"
        "  TYPE 0 5\n"
        "  USERDATA \"scan;0;3;archive\"\n"
        "  PRERESEAU { 2 10 0.001 -4 0 }\n"
        "  MAINRESEAU { 1 1 0 0 0 1 0 }\n"
        "  POLYRESINV { 3 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 }\n"
        "  CHECKACTIVE 1\n"
        "}\n",
        "survey.pro");
    const OvPhoto& photo = blocks.Only();
    EXPECT_TRUE(blocks.problems.empty());
    EXPECT_EQ(photo.GetId(), 12u);
    EXPECT_EQ(photo.GetDigitizerId(), 5u);
    EXPECT_EQ(photo.GetDigPictPage(), 1);
    EXPECT_EQ(photo.GetDigPictRot(), 0);
    EXPECT_EQ(photo.GetReseauPreTrafo().GetType(), eOvTrafo2DHelmert);
    EXPECT_EQ(photo.GetReseauPreTrafo().GetParam(1), 0.001);
    EXPECT_EQ(photo.GetReseauMainTrafo().GetType(), eOvTrafo2DAffin);
    EXPECT_EQ(photo.GetReseauPolyInv().GetType(), eOvTrafo2DPolynomial);
    EXPECT_EQ(photo.GetReseauPolyInv().GetParam(19), 20.0);
    EXPECT_TRUE(photo.GetFlag().IsFlagSet(kOvPhotoFlagCheckActive));
    // The old form names the reseau data by the file, and an analog record kept its comment
    // where the name stands.
    EXPECT_STREQ(photo.GetReseauData().GetName().chars(), "survey.pro");
    EXPECT_EQ(photo.GetName().length(), 0);
    EXPECT_STREQ(photo.GetComment().chars(), "plate 12, survey 1987");
}

TEST(PhotoRead, DigitalOldRecordKeepsItsName) {
    PhotoBlocks blocks;
    blocks.Read(
        "PHOTO { PHOTOID { 3 \"a.jpg\" } COMMENT \"c\" DIGITAL 1 PRERESEAU { 2 0 1 0 0 } }");
    const OvPhoto& photo = blocks.Only();
    EXPECT_STREQ(photo.GetName().chars(), "a.jpg");
    EXPECT_STREQ(photo.GetComment().chars(), "c");
    EXPECT_STREQ(photo.GetReseauData().GetName().chars(), "project.pro");
}

TEST(PhotoRead, CurrentFormLeavesNameAndComment) {
    PhotoBlocks blocks;
    blocks.Read(
        "PHOTO { PHOTOID { 3 \"a.tif\" } COMMENT \"c\" RESEAUFILE \"r.res\" "
        "PRERESTRAFO { 1 0 1 0 0 } CHECKACTIVE 0 }");
    const OvPhoto& photo = blocks.Only();
    EXPECT_STREQ(photo.GetName().chars(), "a.tif");
    EXPECT_STREQ(photo.GetComment().chars(), "c");
    EXPECT_STREQ(photo.GetReseauData().GetName().chars(), "r.res");
    EXPECT_EQ(photo.GetFlag().GetFlag(), 0u);
}

TEST(PhotoRead, UserData) {
    struct Case {
        const char* text;
        int page;
        int rotation;
    };
    for (const Case& c :
         {Case{"a;0;3", 1, 0}, Case{"a;2;1", 3, 1}, Case{"a;2;1;x;y", 3, 1}, Case{"a", 9, 8},
          Case{"a;;", 1, 0}, Case{"a; 4x;-2", 5, -2}, Case{"a;2147483647;3", INT_MAX, 0}}) {
        PhotoBlocks blocks;
        blocks.Read(std::string("PHOTO { DIGITALPAGE 9 DIGITALROT 8 USERDATA \"") + c.text +
                    "\" }");
        EXPECT_EQ(blocks.Only().GetDigPictPage(), c.page) << c.text;
        EXPECT_EQ(blocks.Only().GetDigPictRot(), c.rotation) << c.text;
    }
}

TEST(PhotoRead, NumbersAreClampedOrReadExactly) {
    PhotoBlocks blocks;
    blocks.Read(
        "PHOTO { STATE 99999999999 ROTATION -99999999999 DIGITIZERID 4294967295 "
        "RESEAUSUBID -3 SCALE 12 }");
    const OvPhoto& photo = blocks.Only();
    EXPECT_EQ(photo.GetActiveFlag(), INT_MAX);
    EXPECT_EQ(photo.GetRotation(), INT_MIN);
    EXPECT_EQ(photo.GetDigitizerId(), 4294967295u);
    EXPECT_EQ(photo.GetReseauData().GetSubId(), 0u);
    EXPECT_EQ(photo.GetScale(), 12.0);

    // A negative zero is written as "-0" and reads back with its sign.
    PhotoBlocks zero;
    zero.Read("PHOTO { SCALE -0 }");
    EXPECT_TRUE(std::signbit(zero.Only().GetScale()));
}

TEST(PhotoRead, DamagedEntriesAreReportedAndSkipped) {
    PhotoBlocks blocks;
    blocks.Read(
        "PHOTO {\n"                                 // 1
        "  SCALE abc\n"                             // 2
        "  STATE { 0 }\n"                           // 3
        "  CAMERA 5\n"                              // 4
        "  ROTATION 90\n"                           // 5
        "  CAMERA { 2 50 0 0 0 0 0 \"cam\" 99 }\n"  // 6
        "  12 \"stray\" { x { y } }\n"              // 7
        "  DIGIREGION { 0 0 4 4 } { junk } 7\n"     // 8
        "  COMMENT DIGITAL 1\n"                     // 9
        "  PHOTOID { x \"n\" }\n"                   // 10
        "  TYPE 1 DIGITIZERID 6\n"                  // 11
        "  MAINRESTRAFO { 1 1 }\n"                  // 12
        "  ORIENTED 1 AORM { 1 { 2 } } AORV\n"      // 13
        "  TILTPLANE { TILTID { 1 \"p\" } }\n"      // 14
        "  SCREENSIZE 5\n"                          // 15
        "}\n"
        "AFTER 1\n");
    const OvPhoto& photo = blocks.Only();
    EXPECT_EQ(blocks.after, 1);
    EXPECT_EQ(photo.GetScale(), 0.0);
    EXPECT_EQ(photo.GetActiveFlag(), 1);
    EXPECT_EQ(photo.GetRotation(), 90);
    EXPECT_EQ(photo.GetCamera().GetId(), 2u);
    EXPECT_EQ(photo.GetCamera().GetC(), 50.0);
    EXPECT_EQ(photo.GetDigiRegion().Right(), 4.0);
    EXPECT_TRUE(photo.IsDigital());
    EXPECT_EQ(photo.GetId(), 0u);
    EXPECT_EQ(photo.GetDigitizerId(), 6u);
    EXPECT_EQ(photo.GetReseauMainTrafo().GetType(), eOvTrafo2DHelmert);
    EXPECT_EQ(photo.GetReseauMainTrafo().GetParam(0), 1.0);
    EXPECT_EQ(photo.GetScreenScale(), 5);
    ASSERT_EQ(photo.GetTiltList().Count(), 1);
    EXPECT_EQ(photo.GetTiltList().First()->GetId(), 1u);

    const Problems expected = {
        {2, "SCALE: a value of another kind is expected"},
        {3, "STATE: a value is expected, not a block"},
        {4, "CAMERA: a block is expected"},
        {6, "CAMERA: unexpected tokens before the end of the block"},
        {7, "PHOTO: a keyword is expected"},
        {7, "PHOTO: a keyword is expected"},
        {7, "PHOTO: a keyword is expected"},
        {8, "PHOTO: a keyword is expected"},
        {8, "PHOTO: a keyword is expected"},
        {9, "COMMENT: a value of another kind is expected"},
        {10, "PHOTOID: a value of another kind is expected"},
        {11, "TYPE: a value of another kind is expected"},
        {12, "transformation: the block ends before all parameters"},
    };
    EXPECT_EQ(blocks.problems, expected);
}

TEST(PhotoRead, BindingsEndWithTheRecord) {
    PhotoBlocks blocks;
    std::istringstream in("PHOTO { STATE 0 } STATE 2 PHOTO 5 AFTER 3");
    OvReader reader(in, "x");
    reader.RegisterObject(
        OvReaderObject("PHOTO", MakeLink(&blocks.photos, &OvPhotoList::AddPhotoHdl)));
    reader.RegisterObject(OvReaderObject("AFTER", &blocks.after));
    const int before = reader.GetCurrentScope()->GetObjects().Count();
    reader.DoProcess(false);
    EXPECT_EQ(reader.GetCurrentScope()->GetObjects().Count(), before);
    ASSERT_EQ(blocks.photos.Count(), 2);
    EXPECT_EQ(blocks.photos.First()->GetActiveFlag(), 0);
    // A "PHOTO" without a block gives a photo with the defaults.
    EXPECT_EQ(blocks.photos.Last()->GetActiveFlag(), 1);
    EXPECT_EQ(blocks.after, 3);
}

TEST(PhotoRead, ObjectWithoutReaderReadsNothing) {
    OvPhoto photo(5);
    OvReaderObject unbound;
    EXPECT_EQ(photo.Read(&unbound), 1);
    EXPECT_EQ(photo.Read(nullptr), 1);
    EXPECT_EQ(photo.GetId(), 5u);
}

}  // namespace
}  // namespace orvo
