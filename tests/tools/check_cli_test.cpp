// End-to-end runs of `orvo check` on the example's files and on broken files of every kind.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli_run.h"
#include "json_read.h"
#include "temp_dir.h"

namespace {

using orvo::test::Contains;
using orvo::test::ExampleFile;
using orvo::test::RunOrvo;

const std::vector<std::string> kExampleFiles = {"chapel.pro", "cameras.cam",       "metric150.res",
                                                "photo1.imo", "photo1_reseau.imo", "photo2.imo",
                                                "photo3.imo", "control.coo"};

TEST(CheckCommand, TheExampleFilesReadCleanly) {
    std::vector<std::string> args = {"check"};
    for (const std::string& name : kExampleFiles)
        args.push_back(ExampleFile(name));
    const orvo::test::CliResult run = RunOrvo(args);
    EXPECT_EQ(run.code, 0) << run.out;
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, ExampleFile("chapel.pro") + ": project file, 3 photos: ok\n" +
                           ExampleFile("cameras.cam") + ": camera file, 2 cameras: ok\n" +
                           ExampleFile("metric150.res") + ": reseau file, 25 crosses: ok\n" +
                           ExampleFile("photo1.imo") + ": point file, 16 points: ok\n" +
                           ExampleFile("photo1_reseau.imo") + ": point file, 25 points: ok\n" +
                           ExampleFile("photo2.imo") + ": point file, 16 points: ok\n" +
                           ExampleFile("photo3.imo") + ": point file, 16 points: ok\n" +
                           ExampleFile("control.coo") + ": point file, 16 points: ok\n" +
                           "8 files checked, 0 with errors (0 errors)\n");
}

TEST(CheckCommand, ReportsEveryErrorWithFileLineAndStatus) {
    orvo::test::TempDir dir;
    // A project with an unknown keyword (line 9) and a value of the wrong kind (line 10).
    std::string project = orvo::test::ReadWholeFile(ExampleFile("chapel.pro"));
    project.replace(project.find("    DIGITALPAGE"), 0, "    FOO 12\n    STATE \"x\"\n");
    orvo::test::WriteWholeFile(dir.file("bad.pro"), project);
    // A camera file whose second record breaks off.
    orvo::test::WriteWholeFile(dir.file("bad.cam"),
                               "; cameras\n{ 1 150 0 0 0 0 0 \"a\"}\n{ 2 24 0.1 }\n"
                               "{ 3 35 0 0 0 0 0 \"c\"}\n");
    // A reseau file without its regions, and an empty one.
    orvo::test::WriteWholeFile(dir.file("bad.res"), "\"grid\"\n{ 1 2 }\n");
    orvo::test::WriteWholeFile(dir.file("empty.res"), "; nothing here\n");
    // A point file with a word and a short line.
    orvo::test::WriteWholeFile(dir.file("bad.coo"), "1 0 0 0\n2 abc 1 1\n3 4 4\n4 5 5 5\n");

    const orvo::test::CliResult run =
        RunOrvo({"check", dir.file("bad.pro"), dir.file("bad.cam"), dir.file("bad.res"),
                 dir.file("empty.res"), dir.file("bad.coo"), dir.file("missing.pro")});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.err, "");
    const std::string& out = run.out;
    EXPECT_TRUE(Contains(
        out, dir.file("bad.pro") + ":9: ParserErrorNotSpecifiedToken: unknown keyword \"FOO\"\n"))
        << out;
    EXPECT_TRUE(Contains(out, dir.file("bad.pro") + ":10: ParserErrorNotSpecifiedToken: STATE"))
        << out;
    EXPECT_TRUE(Contains(out, dir.file("bad.pro") + ": project file, 3 photos: 2 errors\n"));
    EXPECT_TRUE(Contains(out, dir.file("bad.cam") + ":3: ")) << out;
    EXPECT_TRUE(Contains(out, dir.file("bad.cam") + ": camera file, 2 cameras: 1 error\n"));
    EXPECT_TRUE(Contains(out, dir.file("bad.res") + ":2: ")) << out;
    EXPECT_TRUE(Contains(
        out, dir.file("empty.res") + ": ParserStatusEOF: no reseau description in the file\n"));
    EXPECT_TRUE(Contains(
        out, dir.file("bad.coo") + ":2: ParserErrorNotSpecifiedToken: 'abc' is not a number\n"));
    EXPECT_TRUE(Contains(out, dir.file("bad.coo") + ":3: ParserErrorNotSpecifiedToken: 3 values "
                                                    "on the line, the columns id,x,y,z take 4\n"));
    EXPECT_TRUE(Contains(out, dir.file("missing.pro") + ": ParserErrorStream: cannot open file\n"))
        << out;
    EXPECT_TRUE(Contains(out, "6 files checked, 6 with errors ("));
}

TEST(CheckCommand, DigitalCameraFile) {
    orvo::test::TempDir dir;
    orvo::test::WriteWholeFile(dir.file("bodies.dres"),
                               "; digital cameras\n"
                               "{ \"Canon EOS 5D\" 2 \"studio\" 4368 2912 35.8 23.9 }\n"
                               "{ \"Broken\" 0 \"no size\" 4000 }\n"
                               "{ \"Wide body\" 0 \"\" 6000 4000 36 24 }\n");
    const orvo::test::CliResult run = RunOrvo({"check", dir.file("bodies.dres")});
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(Contains(run.out, dir.file("bodies.dres") + ":3: ")) << run.out;
    EXPECT_TRUE(Contains(run.out, dir.file("bodies.dres") + ": digital camera file, 2 entries: "))
        << run.out;
}

TEST(CheckCommand, KindFromHeaderOrOption) {
    orvo::test::TempDir dir;
    orvo::test::WriteWholeFile(dir.file("cams.txt"),
                               orvo::test::ReadWholeFile(ExampleFile("cameras.cam")));
    orvo::test::WriteWholeFile(dir.file("points.txt"), "1 2 3\n");
    orvo::test::WriteWholeFile(dir.file("run.log"), "1 : something\n");

    const orvo::test::CliResult byHeader = RunOrvo({"check", dir.file("cams.txt")});
    EXPECT_EQ(byHeader.code, 0);
    EXPECT_EQ(byHeader.out, dir.file("cams.txt") + ": camera file, 2 cameras: ok\n");

    const orvo::test::CliResult unknown = RunOrvo({"check", dir.file("points.txt")});
    EXPECT_EQ(unknown.code, 1);
    EXPECT_EQ(unknown.out, dir.file("points.txt") +
                               ": ParserErrorStream: cannot tell the kind of the file; give "
                               "--kind\n");
    EXPECT_EQ(RunOrvo({"check", dir.file("run.log")}).code, 1);

    const orvo::test::CliResult forced =
        RunOrvo({"check", "--kind", "points", "--columns", "x,y,z", dir.file("points.txt")});
    EXPECT_EQ(forced.code, 0);
    EXPECT_EQ(forced.out, dir.file("points.txt") + ": point file, 1 points: ok\n");

    const orvo::test::CliResult stdinPoints = RunOrvo({"check", "-"}, "1 2 3\n2 3 4\n");
    EXPECT_EQ(stdinPoints.code, 0);
    EXPECT_EQ(stdinPoints.out, "<stdin>: point file, 2 points: ok\n");

    EXPECT_EQ(RunOrvo({"check", "--kind", "photo", dir.file("cams.txt")}).code, 2);
    EXPECT_EQ(RunOrvo({"check", "--columns", "id,w", dir.file("cams.txt")}).code, 2);
    EXPECT_EQ(RunOrvo({"check"}).code, 2);
}

TEST(CheckCommand, JsonReport) {
    orvo::test::TempDir dir;
    orvo::test::WriteWholeFile(dir.file("bad.coo"), "1 0 0\n2 \"x\" 1\n");
    const orvo::test::CliResult run =
        RunOrvo({"check", "--json", ExampleFile("cameras.cam"), dir.file("bad.coo")});
    EXPECT_EQ(run.code, 1);
    bool ok = false;
    const orvo::test::Json json = orvo::test::ParseJson(run.out, &ok);
    ASSERT_TRUE(ok) << run.out;
    ASSERT_EQ(json["files"].items.size(), 2u);
    const orvo::test::Json& cameras = json["files"][0];
    EXPECT_EQ(cameras["file"].text, ExampleFile("cameras.cam"));
    EXPECT_EQ(cameras["kind"].text, "camera");
    EXPECT_EQ(cameras["items"].number, 2.0);
    EXPECT_EQ(cameras["item_name"].text, "cameras");
    EXPECT_TRUE(cameras["errors"].items.empty());
    const orvo::test::Json& points = json["files"][1];
    EXPECT_EQ(points["kind"].text, "points");
    ASSERT_EQ(points["errors"].items.size(), 1u);
    EXPECT_EQ(points["errors"][0]["line"].number, 2.0);
    EXPECT_EQ(points["errors"][0]["status"].text, "ParserErrorNotSpecifiedToken");
    EXPECT_EQ(points["errors"][0]["text"].text, "'\"x\"' is not a number");
    EXPECT_EQ(json["files_with_errors"].number, 1.0);
    EXPECT_EQ(json["error_count"].number, 1.0);
}

TEST(CheckCommand, ProgressBarOnlyOnATerminal) {
    std::vector<std::string> args = {"check"};
    for (const std::string& name : kExampleFiles)
        args.push_back(ExampleFile(name));
    const orvo::test::CliResult terminal = RunOrvo(args, "", true);
    EXPECT_EQ(terminal.code, 0);
    EXPECT_EQ(terminal.err.rfind("\rchecking [", 0), 0u) << terminal.err;
    EXPECT_TRUE(Contains(terminal.err, "\rchecking [##############################] 100%"));
    EXPECT_EQ(terminal.err.back(), '\r');
    const orvo::test::CliResult pipe = RunOrvo(args);
    EXPECT_EQ(pipe.err, "");
    EXPECT_EQ(pipe.out, terminal.out);
}

}  // namespace
