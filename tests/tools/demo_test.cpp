// End-to-end runs of `orvo demo` on the bundled example and on broken copies of it.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <string>

#include "cli/demo_truth.h"
#include "cli_run.h"
#include "orvo/model/photo_list.h"
#include "orvo/model/point_list.h"
#include "orvo/model/project_file.h"
#include "temp_dir.h"

namespace {

namespace fs = std::filesystem;
using orvo::test::Contains;
using orvo::test::RunOrvo;

const std::string kExamples = std::string(ORVO_SOURCE_DIR) + "/examples";

// The example files (not the output directory) with their sizes and times.
std::map<std::string, std::pair<std::uintmax_t, fs::file_time_type>> Snapshot() {
    std::map<std::string, std::pair<std::uintmax_t, fs::file_time_type>> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(kExamples)) {
        if (entry.is_regular_file())
            files[entry.path().filename().string()] = {entry.file_size(), entry.last_write_time()};
    }
    return files;
}

// A path as the tool shows it: with "/" between its parts on every system.
std::string Shown(const std::string& path) {
    return fs::path(path).generic_string();
}

// A copy of the example's input files in a scratch directory.
void CopyExample(const fs::path& to) {
    for (const char* name :
         {"cameras.cam", "chapel.pro", "metric150.res", "photo1.imo", "photo1_reseau.imo",
          "photo2.imo", "photo3.imo", "control.coo", "truth.txt"}) {
        fs::copy_file(fs::path(kExamples) / name, to / name);
    }
}

orvo::OvPointList ReadPoints(const std::string& file, const char* columns) {
    const orvo::eOvPointRWMask xy[] = {orvo::eOvPointRWId, orvo::eOvPointRWX, orvo::eOvPointRWY,
                                       orvo::eOvPointRWEnd};
    const orvo::eOvPointRWMask xyz[] = {orvo::eOvPointRWId, orvo::eOvPointRWX, orvo::eOvPointRWY,
                                        orvo::eOvPointRWZ, orvo::eOvPointRWEnd};
    return orvo::OvPointList(orvo::String(file.c_str()), std::string(columns) == "xyz" ? xyz : xy);
}

TEST(DemoCommand, RunsTheExampleAndWritesOnlyIntoTheOutputDirectory) {
    orvo::test::TempDir dir;
    const std::string out = dir.file("out");
    const auto before = Snapshot();
    const orvo::test::CliResult run = RunOrvo({"demo", kExamples, "--out", out});
    ASSERT_EQ(run.code, 0) << run.err << run.out;
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(Snapshot(), before);

    // The report: what was read, the fit of the analog photo, converted and rectified points.
    for (const char* line :
         {"cameras   " ORVO_SOURCE_DIR "/examples/cameras.cam: 2 cameras\n",
          "project   " ORVO_SOURCE_DIR "/examples/chapel.pro: 3 photos\n",
          "\"Metric 150/23 reseau, 5 x 5 crosses\", 25 crosses, photo 230 x 230 mm\n",
          "photo 1 \"north facade, metric camera, scanned plate\" (analog, camera 1)\n",
          "  reseau transformation: Polynomial (suggested by the number and spread of the "
          "crosses)\n",
          "    fitted to 25 measured crosses of \"Metric 150/23 reseau, 5 x 5 crosses\"\n",
          "    the scan's true affine distortion, recovered by an Affin fit of the crosses:\n",
          "  16 measured points -> image coordinates [mm], against the true image coordinates:\n",
          "  reseau transformation from the project: Affin\n",
          "  tilt plane 1 \"north facade\": active, lens distortion removed first",
          "    rectified plane against the control points: RMS ", "\nwritten:\n"}) {
        EXPECT_TRUE(Contains(run.out, line)) << line;
    }
    for (const char* file : {"chapel.pro", "photo1_image.imo", "photo2_image.imo",
                             "photo3_image.imo", "photo3_object.coo"}) {
        EXPECT_TRUE(Contains(run.out, "  " + Shown(out) + "/" + file + "\n")) << file;
        EXPECT_TRUE(fs::exists(fs::path(out) / file)) << file;
    }

    // The written project reads back cleanly, with the estimated reseau transformations.
    orvo::OvPhotoList photos;
    orvo::OvProjectFileErrors errors;
    EXPECT_EQ(orvo::OvReadProjectFile(orvo::String((out + "/chapel.pro").c_str()), photos, &errors),
              3);
    EXPECT_TRUE(errors.empty());
    ASSERT_NE(photos.Find(1u), nullptr);
    EXPECT_EQ(photos.Find(1u)->GetReseauTrafoType(), orvo::eOvTrafo2DPolynomial);
    EXPECT_EQ(photos.Find(1u)->GetReseauPolyInv().GetType(), orvo::eOvTrafo2DPolynomial);
    EXPECT_EQ(photos.Find(3u)->GetTiltList().Count(), 1);

    // Photo 1: the measured points through the true scan distortion give what the estimated
    // chain gave, to the accuracy of the reseau fit (a few micrometres).
    const orvo::cli::Truth truth = orvo::cli::ReadTruthFile(kExamples + "/truth.txt");
    ASSERT_NE(truth.Find(1), nullptr);
    const orvo::OvTrafo2d& scan = truth.Find(1)->scan;
    const orvo::OvPointList measured1 = ReadPoints(kExamples + "/photo1.imo", "xy");
    const orvo::OvPointList image1 = ReadPoints(out + "/photo1_image.imo", "xy");
    ASSERT_EQ(image1.Count(), 16);
    for (const orvo::OvPoint* p = measured1.First(); p != nullptr; p = p->Next()) {
        const orvo::OvPoint* q = image1.Find(p->GetId(), 0u);
        ASSERT_NE(q, nullptr);
        const double col = p->GetX(), row = p->GetY();
        const double x = scan.GetParam(0) + scan.GetParam(1) * col + scan.GetParam(2) * row;
        const double y = scan.GetParam(3) + scan.GetParam(4) * col + scan.GetParam(5) * row;
        EXPECT_NEAR(q->GetX(), x, 0.010) << p->GetId();
        EXPECT_NEAR(q->GetY(), y, 0.010) << p->GetId();
    }

    // Photo 2: pixels to millimetres through the project's Affin, exactly.
    const orvo::OvPointList measured2 = ReadPoints(kExamples + "/photo2.imo", "xy");
    const orvo::OvPointList image2 = ReadPoints(out + "/photo2_image.imo", "xy");
    ASSERT_EQ(image2.Count(), measured2.Count());
    for (const orvo::OvPoint* p = measured2.First(); p != nullptr; p = p->Next()) {
        const orvo::OvPoint* q = image2.Find(p->GetId(), 0u);
        ASSERT_NE(q, nullptr);
        EXPECT_NEAR(q->GetX(), -18.0 + 0.006 * p->GetX(), 1e-12);
        EXPECT_NEAR(q->GetY(), 12.0 - 0.006 * p->GetY(), 1e-12);
    }

    // Photo 3: the rectified points are the control points placed in the site grid (the
    // facade runs at an azimuth of 23.5 degrees from (2480, 1315, 103.25)), to a few mm.
    const orvo::OvPointList control = ReadPoints(kExamples + "/control.coo", "xyz");
    const orvo::OvPointList object = ReadPoints(out + "/photo3_object.coo", "xyz");
    ASSERT_EQ(object.Count(), 16);
    const double angle = 23.5 * std::acos(-1.0) / 180.0;
    for (const orvo::OvPoint* c = control.First(); c != nullptr; c = c->Next()) {
        const orvo::OvPoint* q = object.Find(c->GetId(), 0u);
        ASSERT_NE(q, nullptr);
        EXPECT_NEAR(q->GetX(), 2480.0 + c->GetX() * std::cos(angle), 0.005) << c->GetId();
        EXPECT_NEAR(q->GetY(), 1315.0 + c->GetX() * std::sin(angle), 0.005) << c->GetId();
        EXPECT_NEAR(q->GetZ(), 103.25 + c->GetY(), 0.005) << c->GetId();
    }
}

TEST(DemoCommand, WritesIntoDirOutByDefaultAndLogsWhenAsked) {
    orvo::test::TempDir dir;
    CopyExample(dir.path());
    const orvo::test::CliResult run = RunOrvo({"demo", "-v", dir.path().string()});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_TRUE(fs::exists(dir.path() / "out" / "chapel.pro"));
    EXPECT_TRUE(Contains(run.err,
                         "orvo: reading the camera file " + Shown(dir.file("cameras.cam")) + "\n"));
    EXPECT_TRUE(Contains(run.err, "orvo: working on photo 3\n"));
}

TEST(DemoCommand, DrawsAProgressBarOnATerminal) {
    orvo::test::TempDir dir;
    const orvo::test::CliResult run =
        RunOrvo({"demo", kExamples, "--out", dir.file("out")}, "", true);
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(Contains(run.err, "\rworking [")) << run.err;
    EXPECT_TRUE(Contains(run.err, "] 100%"));
    // The bar is wiped at the end: the last thing written is a carriage return.
    ASSERT_FALSE(run.err.empty());
    EXPECT_EQ(run.err.back(), '\r');
}

TEST(DemoCommand, BrokenInputs) {
    orvo::test::TempDir dir;
    const orvo::test::CliResult missing = RunOrvo({"demo", dir.file("nothing")});
    EXPECT_EQ(missing.code, 1);
    EXPECT_EQ(missing.err, "orvo demo: " + Shown(dir.file("nothing")) + ": not a directory\n");

    const orvo::test::CliResult empty = RunOrvo({"demo", dir.path().string()});
    EXPECT_EQ(empty.code, 1);
    EXPECT_TRUE(Contains(empty.err, ": no project file (*.pro)\n"));
    EXPECT_FALSE(fs::exists(dir.path() / "out"));

    CopyExample(dir.path());
    orvo::test::WriteWholeFile(dir.file("blocker"), "a file where a directory should be");
    const orvo::test::CliResult blocked =
        RunOrvo({"demo", dir.path().string(), "--out", dir.file("blocker")});
    EXPECT_EQ(blocked.code, 1);
    EXPECT_TRUE(Contains(blocked.err, ": cannot create the output directory\n"));

    // A damaged crosses file and a damaged project: reported, the rest still done, exit 1.
    std::string crosses = orvo::test::ReadWholeFile(dir.file("photo1_reseau.imo"));
    crosses.replace(crosses.find('\n') + 1, 0, "          7   oops   12.5\n");
    orvo::test::WriteWholeFile(dir.file("photo1_reseau.imo"), crosses);
    std::string project = orvo::test::ReadWholeFile(dir.file("chapel.pro"));
    project.replace(project.find("    STATE"), 0, "    FOO 12\n");
    orvo::test::WriteWholeFile(dir.file("chapel.pro"), project);
    const orvo::test::CliResult damaged =
        RunOrvo({"demo", dir.path().string(), "--out", dir.file("out2")});
    EXPECT_EQ(damaged.code, 1);
    EXPECT_TRUE(Contains(damaged.err, "orvo: warning: " + Shown(dir.file("photo1_reseau.imo")) +
                                          ":2: ParserErrorNotSpecifiedToken"))
        << damaged.err;
    EXPECT_TRUE(Contains(damaged.err, "Read Error(s) in " + Shown(dir.file("chapel.pro"))));
    EXPECT_TRUE(Contains(damaged.err, "Line 000014: unknown keyword \"FOO\"")) << damaged.err;
    EXPECT_TRUE(Contains(damaged.out, "problem(s) were reported on the error output"));
    EXPECT_TRUE(fs::exists(dir.path() / "out2" / "chapel.pro"));
}

}  // namespace
