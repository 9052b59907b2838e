// End-to-end runs of `orvo fit`: parameters, residuals, JSON, the transformation block, the
// residual plot, and broken inputs.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "cli_run.h"
#include "json_read.h"
#include "orvo/foundation/link.h"
#include "orvo/numerics/trafo2d.h"
#include "orvo/textfile/reader.h"
#include "temp_dir.h"
#include "xml_check.h"

namespace {

using orvo::test::Contains;
using orvo::test::Json;
using orvo::test::RunOrvo;

struct Pt {
    unsigned id;
    double x, y;
};

std::string PointText(const std::vector<Pt>& points) {
    std::string text;
    char line[128];
    for (const Pt& p : points) {
        std::snprintf(line, sizeof line, "%u %.12g %.12g\n", p.id, p.x, p.y);
        text += line;
    }
    return text;
}

// Measured points spread over a scan and control points made from them by a known affine
// transformation: x' = 10 + 0.5 x + 0.02 y, y' = -4 + 0.01 x - 0.49 y.
const double kAffine[6] = {10.0, 0.5, 0.02, -4.0, 0.01, -0.49};

std::vector<Pt> Measured() {
    std::vector<Pt> points;
    unsigned id = 1;
    for (double x : {0.0, 40.0, 100.0, 160.0, 200.0})
        for (double y : {0.0, 70.0, 150.0})
            points.push_back({id++, x + 0.37 * y, y - 0.11 * x});
    return points;
}

std::vector<Pt> Control(const std::vector<Pt>& measured) {
    std::vector<Pt> control;
    for (const Pt& p : measured) {
        control.push_back({p.id, kAffine[0] + kAffine[1] * p.x + kAffine[2] * p.y,
                           kAffine[3] + kAffine[4] * p.x + kAffine[5] * p.y});
    }
    return control;
}

class TrafoBlockReader : public orvo::LinkHdl {
public:
    std::int32_t Read(void* object) {
        return trafo.Read(static_cast<orvo::OvReaderObject*>(object));
    }
    orvo::OvTrafo2d trafo;
};

TEST(FitCommand, RecoversAnExactAffineAndWritesItsBlock) {
    orvo::test::TempDir dir;
    const std::vector<Pt> measured = Measured();
    orvo::test::WriteWholeFile(dir.file("m.imo"), PointText(measured));
    orvo::test::WriteWholeFile(dir.file("c.coo"), PointText(Control(measured)));

    const orvo::test::CliResult run = RunOrvo({"fit", dir.file("m.imo"), dir.file("c.coo"),
                                               "--type", "affin", "--write", dir.file("t.txt")});
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_TRUE(Contains(run.out,
                         "  15 measured points, 15 control points, 15 pairs (0 check "
                         "points)\n  type: Affin\n"));
    EXPECT_TRUE(Contains(run.out, "\nresiduals (transformed measured minus control):\n"));

    // The block reads back with the library's reader to the true parameters.
    const std::string block = orvo::test::ReadWholeFile(dir.file("t.txt"));
    EXPECT_EQ(block.rfind("; orvo fit: Affin from 15 pairs of ", 0), 0u) << block;
    EXPECT_TRUE(Contains(block, "\nMAINRESTRAFO\n{\n    2\n")) << block;
    orvo::OvReader reader(orvo::String(dir.file("t.txt").c_str()));
    TrafoBlockReader handler;
    reader.RegisterObject(
        orvo::OvReaderObject("MAINRESTRAFO", orvo::MakeLink(&handler, &TrafoBlockReader::Read)));
    reader.DoProcess(false);
    EXPECT_EQ(reader.GetReadErrorCount(), 0);
    ASSERT_EQ(handler.trafo.GetType(), orvo::eOvTrafo2DAffin);
    for (int i = 0; i < 6; ++i)
        EXPECT_NEAR(handler.trafo.GetParam(i), kAffine[i], 1e-9) << i;
}

TEST(FitCommand, JsonResidualsAreThoseOfALeastSquaresFit) {
    orvo::test::TempDir dir;
    const std::vector<Pt> measured = Measured();
    std::vector<Pt> control = Control(measured);
    control[6].x += 0.25;               // point 7 is off in x ...
    control[11].y -= 0.1;               // ... and point 12 in y
    control.push_back({99, 1.0, 1.0});  // a control point nobody measured
    orvo::test::WriteWholeFile(dir.file("m.imo"),
                               PointText(measured) + "500 1 1\n");  // and one without control
    orvo::test::WriteWholeFile(dir.file("c.coo"), PointText(control));

    const orvo::test::CliResult run =
        RunOrvo({"fit", dir.file("m.imo"), dir.file("c.coo"), "--type", "affin", "--json"});
    ASSERT_EQ(run.code, 0) << run.err;
    bool ok = false;
    const Json json = orvo::test::ParseJson(run.out, &ok);
    ASSERT_TRUE(ok) << run.out;
    EXPECT_EQ(json["type"].text, "Affin");
    EXPECT_EQ(json["type_code"].number, 2.0);
    EXPECT_FALSE(json["suggested"].boolean);
    EXPECT_EQ(json["pairs"].number, 15.0);
    EXPECT_EQ(json["unknowns"].number, 6.0);
    EXPECT_EQ(json["redundancy"].number, 24.0);
    ASSERT_EQ(json["parameters"].items.size(), 6u);
    EXPECT_EQ(json["parameters"][0]["name"].text, "p0");
    EXPECT_GT(json["parameters"][0]["std_dev"].number, 0.0);
    ASSERT_EQ(json["unmatched_measured"].items.size(), 1u);
    EXPECT_EQ(json["unmatched_measured"][0].number, 500.0);
    ASSERT_EQ(json["unmatched_control"].items.size(), 1u);
    EXPECT_EQ(json["unmatched_control"][0].number, 99.0);

    // Least-squares residuals of an affine fit are orthogonal to every column of its design:
    // sum r = 0, sum r x = 0, sum r y = 0 in each coordinate (x, y measured).
    const Json& residuals = json["residuals"];
    ASSERT_EQ(residuals.items.size(), 15u);
    double sums[6] = {};
    double squares[2] = {};
    double worst = 0.0;
    unsigned worstId = 0;
    for (std::size_t i = 0; i < residuals.items.size(); ++i) {
        const Json& row = residuals[i];
        const Pt& m = measured[i];
        ASSERT_EQ(row["id"].number, m.id);
        const double rx = row["rx"].number, ry = row["ry"].number;
        sums[0] += rx;
        sums[1] += rx * m.x;
        sums[2] += rx * m.y;
        sums[3] += ry;
        sums[4] += ry * m.x;
        sums[5] += ry * m.y;
        squares[0] += rx * rx;
        squares[1] += ry * ry;
        if (std::hypot(rx, ry) > worst) {
            worst = std::hypot(rx, ry);
            worstId = m.id;
        }
        EXPECT_NEAR(row["x"].number, control[i].x, 1e-9);
    }
    for (double sum : sums)
        EXPECT_NEAR(sum, 0.0, 1e-8);
    EXPECT_NEAR(json["fit_points"]["rms_x"].number, std::sqrt(squares[0] / 15.0), 1e-12);
    EXPECT_NEAR(json["fit_points"]["rms_y"].number, std::sqrt(squares[1] / 15.0), 1e-12);
    EXPECT_EQ(json["fit_points"]["worst_id"].number, worstId);
    EXPECT_EQ(worstId, 7u);
    EXPECT_NEAR(json["fit_points"]["worst_error"].number, worst, 1e-12);
    // sigma0 of unit weights: sqrt(sum of squares / redundancy).
    EXPECT_NEAR(json["sigma0"].number, std::sqrt((squares[0] + squares[1]) / 24.0), 1e-12);

    // The text report shows the same table and names the points without partner.
    const orvo::test::CliResult text =
        RunOrvo({"fit", dir.file("m.imo"), dir.file("c.coo"), "--type", "affin"});
    EXPECT_TRUE(Contains(text.out, "worst point 7 (")) << text.out;
    EXPECT_TRUE(Contains(text.out, "measured points without control point: 500\n"));
    EXPECT_TRUE(Contains(text.out, "control points not measured: 99\n"));
}

TEST(FitCommand, ResidualPlotIsWellFormedWithOneVectorPerMatchedPoint) {
    orvo::test::TempDir dir;
    const std::vector<Pt> measured = Measured();
    std::vector<Pt> control = Control(measured);
    for (std::size_t i = 0; i < control.size(); ++i)
        control[i].x += 0.01 * std::sin(3.0 * i);
    control.push_back({77, 5.0, 5.0});
    orvo::test::WriteWholeFile(dir.file("m.imo"), PointText(measured) + "88 3 3\n");
    orvo::test::WriteWholeFile(dir.file("c.coo"), PointText(control));

    const orvo::test::CliResult run =
        RunOrvo({"fit", dir.file("m.imo"), dir.file("c.coo"), "--check", "3,8", "--svg",
                 dir.file("plot.svg"), "-v"});
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_TRUE(Contains(run.err, "orvo: wrote the residual plot to " + dir.file("plot.svg") +
                                      " (vectors magnified "));
    const std::string svg = orvo::test::ReadWholeFile(dir.file("plot.svg"));
    orvo::test::XmlCheck xml;
    ASSERT_TRUE(xml.Parse(svg)) << xml.Error();
    ASSERT_FALSE(xml.Elements().empty());
    EXPECT_EQ(xml.Elements().front().name, "svg");
    EXPECT_EQ(xml.Count("line", "vector"), 15);  // 15 matched points, the unmatched ones not
    EXPECT_EQ(xml.Count("line", "check"), 2);
    EXPECT_EQ(xml.Count("circle", "point"), 15);
    EXPECT_EQ(xml.Count("line", "bar"), 2);  // the coordinate and the residual scale bars
    EXPECT_TRUE(Contains(svg, "(vectors magnified "));
    EXPECT_TRUE(Contains(svg, "fit: m.imo -&gt; c.coo</text>"));
}

TEST(FitCommand, SuggestsTheTypeAndReadsStandardInput) {
    const std::string measured = "1 0 0\n2 10 0\n3 0 10\n";
    orvo::test::TempDir dir;
    orvo::test::WriteWholeFile(dir.file("c.coo"), "1 5 5\n2 15 5\n3 5 15\n");
    const orvo::test::CliResult run = RunOrvo({"fit", "-", dir.file("c.coo")}, measured);
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "fit <stdin> -> " + dir.file("c.coo") + "\n"));
    EXPECT_TRUE(Contains(run.out,
                         "  type: Affin (suggested by the number and spread of the "
                         "points)\n"));
}

TEST(FitCommand, BrokenInputs) {
    orvo::test::TempDir dir;
    orvo::test::WriteWholeFile(dir.file("c.coo"), "1 5 5\n2 15 5\n3 5 15\n");
    orvo::test::WriteWholeFile(dir.file("one.imo"), "1 0 0\n7 1 1\n");
    orvo::test::WriteWholeFile(dir.file("bad.imo"), "1 0 0\n2 1O 0\n3 4 4 4\n");
    orvo::test::WriteWholeFile(dir.file("line.imo"), "1 0 0\n2 1 1\n3 2 2\n");

    const orvo::test::CliResult missing = RunOrvo({"fit", dir.file("none.imo"), dir.file("c.coo")});
    EXPECT_EQ(missing.code, 1);
    EXPECT_EQ(missing.err,
              "orvo fit: " + dir.file("none.imo") + ": ParserErrorStream: cannot open file\n");

    const orvo::test::CliResult bad = RunOrvo({"fit", dir.file("bad.imo"), dir.file("c.coo")});
    EXPECT_EQ(bad.code, 1);
    EXPECT_TRUE(Contains(bad.err, "orvo fit: " + dir.file("bad.imo") +
                                      ":2: ParserErrorNotSpecifiedToken: '1O' is not a number\n"))
        << bad.err;
    EXPECT_TRUE(Contains(bad.err,
                         ":3: ParserErrorNotSpecifiedToken: 4 values on the line, the "
                         "columns id,x,y take 3\n"));
    EXPECT_EQ(bad.out, "");

    const orvo::test::CliResult few = RunOrvo({"fit", dir.file("one.imo"), dir.file("c.coo")});
    EXPECT_EQ(few.code, 1);
    EXPECT_EQ(few.err, "orvo fit: 1 point(s) with a control point to fit; at least 2 are needed\n");

    const orvo::test::CliResult collinear =
        RunOrvo({"fit", dir.file("line.imo"), dir.file("c.coo"), "--type", "affin"});
    EXPECT_EQ(collinear.code, 1);
    EXPECT_TRUE(Contains(collinear.err,
                         "orvo fit: the Affin fit failed: the points do not "
                         "determine it"))
        << collinear.err;

    const orvo::test::CliResult tooFew =
        RunOrvo({"fit", dir.file("one.imo"), dir.file("c.coo"), "--type", "projektiv"});
    EXPECT_EQ(tooFew.code, 1);
    EXPECT_EQ(tooFew.err,
              "orvo fit: the Projektiv fit failed: 1 fit pairs, at least 4 are needed\n");

    EXPECT_EQ(RunOrvo({"fit", dir.file("one.imo"), dir.file("c.coo"), "--type", "x"}).code, 2);
    const orvo::test::CliResult columns =
        RunOrvo({"fit", dir.file("one.imo"), dir.file("c.coo"), "--columns", "id,q"});
    EXPECT_EQ(columns.code, 2);
    EXPECT_EQ(columns.err, "orvo fit: unknown column 'q'\n");
    EXPECT_EQ(RunOrvo({"fit", dir.file("one.imo"), dir.file("c.coo"), "--check", "1,x"}).code, 2);
    EXPECT_EQ(RunOrvo({"fit", dir.file("one.imo"), dir.file("c.coo"), "--magnify", "0"}).code, 2);
    EXPECT_EQ(RunOrvo({"fit", dir.file("one.imo")}).code, 2);

    // A plot that cannot be written fails the command after the report.
    const orvo::test::CliResult unwritable =
        RunOrvo({"fit", dir.file("c.coo"), dir.file("c.coo"), "--svg", dir.file("no/such.svg")});
    EXPECT_EQ(unwritable.code, 1);
    EXPECT_TRUE(Contains(unwritable.out, "RMS x "));
    EXPECT_EQ(unwritable.err, "orvo fit: " + dir.file("no/such.svg") + ": cannot write file\n");
}

}  // namespace
