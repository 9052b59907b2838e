// Project files with ortho photos and with the tilt transforms of photos.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "orvo/model/ortho_photo.h"
#include "orvo/model/project_file.h"
#include "temp_dir.h"

namespace orvo {
namespace {

std::string WriteProject(const OvPhotoList& photos, const OvOrthoPhotoList& orthos) {
    std::ostringstream out;
    OvWriteProject(out, photos, orthos);
    return out.str();
}

void MakeProject(OvPhotoList& photos, OvOrthoPhotoList& orthos) {
    auto* photo = new OvPhoto(1, "facade.tif");
    photo->SetPhototype(eOvPhotoDigital);
    OvTiltTrafo tilt(3, "ground floor");
    tilt.SetActive(true);
    OvMatrix m(3, 3);
    m.SetIdent();
    m.SetElem(3, 1, 0.001);
    m.SetElem(1, 3, -2.5);
    tilt.SetTiltMat(m);
    tilt.GetMeasPoints().AddPoint(OvPoint(1, 0.0, 0.0, 0.0, 0));
    tilt.GetMeasPoints().AddPoint(OvPoint(2, 10.0, 0.0, 0.0, 0));
    tilt.GetParallelDef().MakeDefLine(1, 2);
    for (const auto& c : {std::pair{0.0, 0.0}, {10.0, 0.0}, {10.0, 8.0}})
        tilt.GetRegion().AddPoint(OvPoint(0, c.first, c.second, 0.0, 0));
    tilt.GetRegion().GetPointList().Renumber(1);
    photo->AddTiltTrafo(tilt);
    photos.Add(photo);

    auto* ortho = new OvOrthoPhoto(2, "facade_ortho.tif");
    ortho->SetStatPixel(4000);
    ortho->SetDigiRegion(OvRegion(0.0, 0.0, 400.0, 300.0));
    ortho->SetObjectRegion(OvRegion(0.0, 0.0, 8.0, 6.0));
    auto* plane = new OvTiltPlaneInfo();
    for (const auto& c : {std::pair{0.0, 0.0}, {400.0, 0.0}, {400.0, 300.0}, {0.0, 300.0}})
        plane->GetRange().AddPoint(OvPoint(0, c.first, c.second, 0.0, 0));
    ortho->TiltPlaneList().Add(plane);
    orthos.Add(ortho);
    orthos.Add(new OvOrthoPhoto(5, "second.tif"));
}

TEST(OrthoProjectFile, PhotosTiltTransformsAndOrthoPhotosRoundTrip) {
    OvPhotoList photos;
    OvOrthoPhotoList orthos;
    MakeProject(photos, orthos);
    const std::string text = WriteProject(photos, orthos);
    EXPECT_NE(text.find("\nORTHOPHOTO\n{\n    ID              {    2 \"facade_ortho.tif\"}\n"),
              std::string::npos)
        << text;
    EXPECT_LT(text.find("PHOTO\n{"), text.find("ORTHOPHOTO\n{"));

    OvPhotoList readPhotos;
    OvOrthoPhotoList readOrthos;
    OvProjectFileErrors errors;
    std::istringstream in(text);
    EXPECT_EQ(OvReadProject(in, "p", readPhotos, readOrthos, &errors), 3);
    EXPECT_TRUE(errors.empty()) << errors.front().Format().chars();
    ASSERT_EQ(readPhotos.Count(), 1);
    ASSERT_EQ(readOrthos.Count(), 2);
    const OvTiltTrafo* tilt = readPhotos.First()->FirstTiltTrafo();
    ASSERT_NE(tilt, nullptr);
    EXPECT_EQ(tilt->GetId(), 3u);
    EXPECT_TRUE(tilt->IsActive());
    EXPECT_EQ(tilt->GetTiltMat().GetElem(3, 1), 0.001);
    EXPECT_TRUE(tilt->IsByParallelDef());
    EXPECT_EQ(readOrthos.First()->TiltPlaneList().Count(), 1);
    EXPECT_EQ(readOrthos.First()->GetStatPixel(), 4000);
    EXPECT_EQ(WriteProject(readPhotos, readOrthos), text);
}

TEST(OrthoProjectFile, OldTiltRecordsInAPhotoAreRead) {
    const std::string text =
        "PHOTO {\n"
        "  PHOTOID { 1 \"a.tif\" }\n"
        "  TILTTRAFO { 4 \"old\" 1  0 0 0 1 0 1 0 0 { 4 4 1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1 }"
        " { } 0 0 1 0 1 1 0 1 }\n"
        "  TILTPLANE { TILTID { 6 \"new\" } ACTIV 1 }\n"
        "}\n";
    OvPhotoList photos;
    OvProjectFileErrors errors;
    std::istringstream in(text);
    EXPECT_EQ(OvReadProject(in, "p", photos, &errors), 1);
    EXPECT_TRUE(errors.empty()) << errors.front().Format().chars();
    ASSERT_EQ(photos.Count(), 1);
    const OvTiltTrafoList& tilts = photos.First()->GetTiltList();
    ASSERT_EQ(tilts.Count(), 2);
    EXPECT_EQ(tilts.First()->GetId(), 4u);
    EXPECT_EQ(tilts.First()->GetMeasPoints().Count(), 4);
    EXPECT_EQ(tilts.First()->GetBikoList().Count(), 4);
    EXPECT_EQ(tilts.Last()->GetId(), 6u);
    EXPECT_TRUE(tilts.Last()->IsActive());
}

TEST(OrthoProjectFile, DamagedOrthoBlocksAreReportedAndTheRestIsKept) {
    const std::string text =
        "ORTHOPHOTO 5\n"
        "ORTHOPHOTO { ID { 1 \"a\" } PLANEINFO { TRANSFORMATION { 2 2 1 0 0 1 } } }\n"
        "PHOTO { PHOTOID { 2 \"b\" } }\n"
        "ORTHOPHOTO { ID { 3 \"cut\" } TIME 4\n";
    OvPhotoList photos;
    OvOrthoPhotoList orthos;
    OvProjectFileErrors errors;
    std::istringstream in(text);
    EXPECT_EQ(OvReadProject(in, "p", photos, orthos, &errors), 2);
    EXPECT_EQ(photos.Count(), 1);
    ASSERT_EQ(orthos.Count(), 1);
    EXPECT_EQ(orthos.First()->GetId(), 1u);
    EXPECT_EQ(orthos.First()->TiltPlaneList().First()->GetTransformation().GetLines(), 4);
    ASSERT_EQ(errors.size(), 3u);
    EXPECT_EQ(errors[0].GetLine(), 1u);
    EXPECT_EQ(compare(errors[0].GetText(), String("ORTHOPHOTO: a block is expected")), 0);
    EXPECT_EQ(errors[1].GetLine(), 2u);
    EXPECT_EQ(errors[2].GetLine(), 4u);

    // Without an ortho list the blocks are unknown keywords.
    OvPhotoList only;
    std::istringstream again(text);
    EXPECT_EQ(OvReadProject(again, "p", only, &errors), 1);
    EXPECT_EQ(compare(errors[0].GetText(), String("unknown keyword \"ORTHOPHOTO\"")), 0);
}

// The README shows an ortho photo record as the library writes it; reading that text and
// writing it again must give it back byte for byte.
TEST(OrthoProjectFile, TheReadmeExampleIsWhatTheLibraryWrites) {
    const std::string readme = test::ReadWholeFile(std::string(ORVO_SOURCE_DIR) + "/README.md");
    const std::size_t start = readme.find("```\nORTHOPHOTO\n{\n");
    ASSERT_NE(start, std::string::npos);
    const std::size_t end = readme.find("```", start + 3);
    ASSERT_NE(end, std::string::npos);
    const std::string block = readme.substr(start + 4, end - start - 4);

    OvPhotoList photos;
    OvOrthoPhotoList orthos;
    OvProjectFileErrors errors;
    std::istringstream in(block);
    EXPECT_EQ(OvReadProject(in, "README", photos, orthos, &errors), 1);
    EXPECT_TRUE(errors.empty());
    const std::string written = WriteProject(photos, orthos);
    ASSERT_GE(written.size(), block.size());
    EXPECT_EQ(written.substr(written.size() - block.size()), block);
}

TEST(OrthoProjectFile, FilesOnDisk) {
    test::TempDir dir;
    OvPhotoList photos;
    OvOrthoPhotoList orthos;
    MakeProject(photos, orthos);
    const String name(dir.file("ortho.pro").c_str());
    ASSERT_TRUE(OvWriteProjectFile(name, photos, orthos));
    EXPECT_EQ(test::ReadWholeFile(dir.file("ortho.pro")), WriteProject(photos, orthos));
    OvPhotoList readPhotos;
    OvOrthoPhotoList readOrthos;
    EXPECT_EQ(OvReadProjectFile(name, readPhotos, readOrthos), 3);
    EXPECT_EQ(readOrthos.Last()->GetId(), 5u);
}

}  // namespace
}  // namespace orvo
