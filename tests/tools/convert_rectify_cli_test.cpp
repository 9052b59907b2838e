// End-to-end runs of `orvo convert` and `orvo rectify` on the example project.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "cli_run.h"
#include "orvo/model/camera.h"
#include "temp_dir.h"

namespace {

using orvo::test::Contains;
using orvo::test::ExampleFile;
using orvo::test::RunOrvo;

struct Row {
    unsigned id;
    double x, y, z;
};

// Rows of "id x y [z]" text.
std::vector<Row> Rows(const std::string& text, bool withZ) {
    std::vector<Row> rows;
    std::istringstream in(text);
    Row row{0, 0.0, 0.0, 0.0};
    while (in >> row.id >> row.x >> row.y && (!withZ || in >> row.z))
        rows.push_back(row);
    return rows;
}

TEST(ConvertCommand, PixelsToImageCoordinatesOfADigitalPhoto) {
    const std::string input = "7 0 0\n8 3000 2000\n9 6000.5 10.25\n";
    const orvo::test::CliResult run = RunOrvo(
        {"convert", ExampleFile("chapel.pro"), "--photo", "2", "--mode", "measured-to-image"},
        input);
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    // The photo's Affin: x = -18 + 0.006 col, y = 12 - 0.006 row; written as point records.
    const std::vector<Row> rows = Rows(run.out, false);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].id, 7u);
    EXPECT_DOUBLE_EQ(rows[0].x, -18.0);
    EXPECT_DOUBLE_EQ(rows[0].y, 12.0);
    EXPECT_NEAR(rows[1].x, 0.0, 1e-12);
    EXPECT_NEAR(rows[1].y, 0.0, 1e-12);
    EXPECT_NEAR(rows[2].x, -18.0 + 0.006 * 6000.5, 1e-12);
    EXPECT_NEAR(rows[2].y, 12.0 - 0.006 * 10.25, 1e-12);
    EXPECT_EQ(run.out.substr(0, 11), "          7");  // the id in a field of 10 after a blank
}

TEST(ConvertCommand, CorrectedImageAndBackAgain) {
    orvo::test::TempDir dir;
    const orvo::test::CliResult forward =
        RunOrvo({"convert", ExampleFile("chapel.pro"), "-p", "3", "-m", "4",
                 ExampleFile("photo3.imo"), "-o", dir.file("corrected.imo")});
    ASSERT_EQ(forward.code, 0) << forward.err;
    EXPECT_EQ(forward.out, "");
    // Mode 4 is pixels -> image, then the camera's correction: check one point by hand.
    const orvo::OvCamera camera(2, 24.312, 0.0127, -0.0339, -6.1e-05, 4.2e-08, 12.0, "");
    const std::vector<Row> measured =
        Rows(orvo::test::ReadWholeFile(ExampleFile("photo3.imo")), false);
    const std::vector<Row> corrected =
        Rows(orvo::test::ReadWholeFile(dir.file("corrected.imo")), false);
    ASSERT_EQ(corrected.size(), measured.size());
    for (std::size_t i = 0; i < measured.size(); ++i) {
        const double x = -18.0 + 0.006 * measured[i].x - camera.GetXh();
        const double y = 12.0 - 0.006 * measured[i].y - camera.GetYh();
        const double r = std::hypot(x, y);
        const double k = (r * r - 144.0) * -6.1e-05 + (r * r * r * r - 20736.0) * 4.2e-08;
        EXPECT_NEAR(corrected[i].x, x - k * x, 1e-9) << measured[i].id;
        EXPECT_NEAR(corrected[i].y, y - k * y, 1e-9) << measured[i].id;
    }
    // Mode 10 takes corrected image coordinates back to pixels: the camera's inverse (the
    // fixed-point iteration as the camera model defines it, principal point quirk included),
    // then the inverse of the photo's Affin.
    const orvo::test::CliResult back =
        RunOrvo({"convert", ExampleFile("chapel.pro"), "--photo=3", "--mode=corrected-to-measured",
                 dir.file("corrected.imo")});
    ASSERT_EQ(back.code, 0) << back.err;
    const std::vector<Row> pixels = Rows(back.out, false);
    ASSERT_EQ(pixels.size(), corrected.size());
    for (std::size_t i = 0; i < corrected.size(); ++i) {
        const double x0 = corrected[i].x, y0 = corrected[i].y;
        const double k1 = 144.0 * -6.1e-05, k2 = 20736.0 * 4.2e-08;
        double u = x0, v = y0, d = 1.0;
        for (int pass = 0; pass < 25 && d > 1e-18; ++pass) {
            const double s = u * u + v * v;
            const double f = s * -6.1e-05 - k1 + s * s * 4.2e-08 - k2;
            const double nu = f * (u - camera.GetXh()) + x0;
            const double nv = f * (v - camera.GetYh()) + y0;
            d = (u - nu) * (u - nu) + (v - nv) * (v - nv);
            u = nu;
            v = nv;
        }
        ASSERT_LT(d, 1e-18);
        const double x = u + camera.GetXh(), y = v + camera.GetYh();
        EXPECT_NEAR(pixels[i].x, (x + 18.0) / 0.006, 1e-6) << corrected[i].id;
        EXPECT_NEAR(pixels[i].y, (12.0 - y) / 0.006, 1e-6) << corrected[i].id;
        // Near the measured pixels, but not on them: that inverse is not exact off the centre.
        EXPECT_NEAR(pixels[i].x, measured[i].x, 0.1);
        EXPECT_NEAR(pixels[i].y, measured[i].y, 0.1);
    }
}

TEST(ConvertCommand, BrokenInputs) {
    const std::string project = ExampleFile("chapel.pro");
    const orvo::test::CliResult noPhoto =
        RunOrvo({"convert", project, "--photo", "9", "--mode", "2"}, "1 2 3\n");
    EXPECT_EQ(noPhoto.code, 1);
    EXPECT_EQ(noPhoto.err, "orvo convert: no photo 9 in the project (photos: 1, 2, 3)\n");

    const orvo::test::CliResult badMode =
        RunOrvo({"convert", project, "--photo", "2", "--mode", "13"}, "1 2 3\n");
    EXPECT_EQ(badMode.code, 2);
    EXPECT_EQ(badMode.err, "orvo convert: invalid mode '13' (1 to 10 or a name, see --help)\n");

    const orvo::test::CliResult noMode = RunOrvo({"convert", project, "--photo", "2"});
    EXPECT_EQ(noMode.code, 2);
    EXPECT_TRUE(Contains(noMode.err, "orvo convert: missing option --mode\n"));
    EXPECT_EQ(RunOrvo({"convert", project, "--photo", "x", "--mode", "2"}).code, 2);

    const orvo::test::CliResult noProject =
        RunOrvo({"convert", "/nonexistent/p.pro", "--photo", "2", "--mode", "2"}, "1 2 3\n");
    EXPECT_EQ(noProject.code, 1);
    EXPECT_EQ(noProject.err, "orvo convert: /nonexistent/p.pro: cannot open file\n");

    const orvo::test::CliResult badPoints =
        RunOrvo({"convert", project, "--photo", "2", "--mode", "2"}, "1 2 3\n2 x 4\n");
    EXPECT_EQ(badPoints.code, 1);
    EXPECT_EQ(badPoints.err,
              "orvo convert: <stdin>:2: ParserErrorNotSpecifiedToken: 'x' is not a number\n");
    EXPECT_EQ(badPoints.out, "");

    orvo::test::TempDir dir;
    const orvo::test::CliResult unwritable = RunOrvo(
        {"convert", project, "--photo", "2", "--mode", "2", "--out", dir.file("no/such/file.imo")},
        "1 2 3\n");
    EXPECT_EQ(unwritable.code, 1);
    EXPECT_EQ(unwritable.err,
              "orvo convert: " + dir.file("no/such/file.imo") + ": cannot write file\n");
}

TEST(ConvertCommand, APhotoWithoutCameraSkipsTheCorrectionWithAWarning) {
    orvo::test::TempDir dir;
    std::string project = orvo::test::ReadWholeFile(ExampleFile("chapel.pro"));
    // Photo 2 without its camera: the id 0 means no camera.
    const std::size_t camera = project.find("CAMERA          {    2", project.find("IMG_4711"));
    project.replace(project.find("{    2", camera), 6, "{    0");
    orvo::test::WriteWholeFile(dir.file("p.pro"), project);
    const orvo::test::CliResult run =
        RunOrvo({"convert", dir.file("p.pro"), "--photo", "2", "--mode", "4"}, "1 3000 2000\n");
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.err, "orvo: warning: photo 2 has no camera: the camera correction is skipped\n");
    const std::vector<Row> rows = Rows(run.out, false);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_NEAR(rows[0].x, 0.0, 1e-12);
}

TEST(RectifyCommand, FacadePointsIntoTheSiteGrid) {
    const orvo::test::CliResult run =
        RunOrvo({"rectify", ExampleFile("chapel.pro"), "--photo", "3", "--mode",
                 "measured-to-image", ExampleFile("photo3.imo")});
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    const std::vector<Row> object = Rows(run.out, true);
    const std::vector<Row> control =
        Rows(orvo::test::ReadWholeFile(ExampleFile("control.coo")), true);
    ASSERT_EQ(object.size(), 16u);
    ASSERT_EQ(control.size(), 16u);
    const double angle = 23.5 * std::acos(-1.0) / 180.0;
    for (std::size_t i = 0; i < control.size(); ++i) {
        EXPECT_EQ(object[i].id, control[i].id);
        EXPECT_NEAR(object[i].x, 2480.0 + control[i].x * std::cos(angle), 0.005);
        EXPECT_NEAR(object[i].y, 1315.0 + control[i].x * std::sin(angle), 0.005);
        EXPECT_NEAR(object[i].z, 103.25 + control[i].y, 0.005);
    }
}

TEST(RectifyCommand, PointsOutsideTheValidRegionAndBrokenInputs) {
    const std::string project = ExampleFile("chapel.pro");
    // Image coordinates: the first inside the facade's region, the second far outside it.
    const orvo::test::CliResult run =
        RunOrvo({"rectify", project, "--photo", "3", "-"}, "1 -5 0\n2 17 11\n");
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.err, "orvo rectify: point 2: no active tilt transform covers it (left out)\n");
    EXPECT_EQ(Rows(run.out, true).size(), 1u);

    // With the transform named, every point is mapped.
    const orvo::test::CliResult named =
        RunOrvo({"rectify", project, "--photo", "3", "--tilt", "1", "-"}, "1 -5 0\n2 17 11\n");
    EXPECT_EQ(named.code, 0) << named.err;
    EXPECT_EQ(Rows(named.out, true).size(), 2u);

    const orvo::test::CliResult noTilt =
        RunOrvo({"rectify", project, "--photo", "1", "-"}, "1 0 0\n");
    EXPECT_EQ(noTilt.code, 1);
    EXPECT_EQ(noTilt.err, "orvo rectify: photo 1 has no tilt transform\n");
    const orvo::test::CliResult wrongTilt =
        RunOrvo({"rectify", project, "--photo", "3", "--tilt", "4", "-"}, "1 0 0\n");
    EXPECT_EQ(wrongTilt.code, 1);
    EXPECT_EQ(wrongTilt.err, "orvo rectify: photo 3 has no tilt transform 4\n");
    EXPECT_EQ(RunOrvo({"rectify", project, "-"}).code, 2);
    EXPECT_EQ(RunOrvo({"rectify", project, "--photo", "3"}).code, 2);
    EXPECT_EQ(RunOrvo({"rectify", project, "--photo", "3", "--mode", "0", "-"}).code, 2);
}

}  // namespace
