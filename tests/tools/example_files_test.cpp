// The bundled example's files are what the library itself writes, byte for byte, and what the
// generator script makes of its ground truth.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "cli_run.h"
#include "orvo/model/camera_list.h"
#include "orvo/model/photo_list.h"
#include "orvo/model/project_file.h"
#include "orvo/model/reseau_file.h"
#include "orvo/textfile/reader.h"
#include "temp_dir.h"

namespace {

using orvo::String;
using orvo::test::ExampleFile;
using orvo::test::ReadWholeFile;

TEST(ExampleFiles, CameraFileIsAsTheLibraryWritesIt) {
    orvo::OvCameraList cameras;
    orvo::OvReaderErrorList errors;
    cameras.ReadFile(ExampleFile("cameras.cam").c_str(), &errors);
    EXPECT_EQ(errors.Count(), 0);
    ASSERT_EQ(cameras.Count(), 2);
    EXPECT_EQ(cameras.Find(2u)->GetR0(), 12.0);  // the digital camera: distortion with R0
    EXPECT_EQ(cameras.Find(1u)->GetA1(), 0.0);
    orvo::test::TempDir dir;
    cameras.WriteFile(String(dir.file("cameras.cam").c_str()));
    EXPECT_EQ(ReadWholeFile(dir.file("cameras.cam")), ReadWholeFile(ExampleFile("cameras.cam")));
}

TEST(ExampleFiles, ReseauFileIsAsTheLibraryWritesIt) {
    orvo::OvReseauFile reseau;
    orvo::OvReaderErrorList errors;
    EXPECT_EQ(reseau.ReadFile(String(ExampleFile("metric150.res").c_str()), &errors), 1);
    EXPECT_EQ(errors.Count(), 0);
    EXPECT_EQ(reseau.GetCrossList().Count(), 25);
    orvo::test::TempDir dir;
    reseau.WriteFile(String(dir.file("metric150.res").c_str()));
    EXPECT_EQ(ReadWholeFile(dir.file("metric150.res")),
              ReadWholeFile(ExampleFile("metric150.res")));
}

TEST(ExampleFiles, ProjectFileIsAsTheLibraryWritesIt) {
    orvo::OvPhotoList photos;
    orvo::OvProjectFileErrors errors;
    EXPECT_EQ(orvo::OvReadProjectFile(String(ExampleFile("chapel.pro").c_str()), photos, &errors),
              3);
    EXPECT_TRUE(errors.empty());
    EXPECT_TRUE(photos.Find(1u)->IsAnalog());
    EXPECT_TRUE(photos.Find(2u)->IsDigital());
    ASSERT_EQ(photos.Find(3u)->GetTiltList().Count(), 1);
    EXPECT_TRUE(photos.Find(3u)->FirstTiltTrafo()->CompensateDistortion());
    orvo::test::TempDir dir;
    ASSERT_TRUE(orvo::OvWriteProjectFile(String(dir.file("chapel.pro").c_str()), photos));
    EXPECT_EQ(ReadWholeFile(dir.file("chapel.pro")), ReadWholeFile(ExampleFile("chapel.pro")));
}

// The committed files are the generator's output (when python is there to run it).
TEST(ExampleFiles, AreWhatTheGeneratorWrites) {
    if (std::system("python3 -c pass > /dev/null 2>&1") != 0) {
        GTEST_SKIP() << "python3 is not available";
    }
    orvo::test::TempDir dir;
    const std::string command =
        "python3 '" + ExampleFile("generate.py") + "' --out '" + dir.path().string() + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    for (const char* name :
         {"cameras.cam", "chapel.pro", "metric150.res", "photo1.imo", "photo1_reseau.imo",
          "photo2.imo", "photo3.imo", "control.coo", "truth.txt"}) {
        EXPECT_EQ(ReadWholeFile(dir.file(name)), ReadWholeFile(ExampleFile(name))) << name;
    }
}

}  // namespace
