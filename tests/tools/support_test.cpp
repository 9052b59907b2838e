// The pieces the commands share: JSON and SVG output, number formatting, point files, the
// logger and the progress bar sessions.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "cli/command_support.h"
#include "cli/json_writer.h"
#include "cli/point_files.h"
#include "cli/svg_plot.h"
#include "orvo/services/logger.h"
#include "orvo/services/progress.h"
#include "temp_dir.h"
#include "xml_check.h"

namespace {

using namespace orvo::cli;

TEST(JsonWriter, NestedDocumentWithEscapesAndNonFiniteNumbers) {
    std::ostringstream out;
    {
        JsonWriter json(out);
        json.BeginObject();
        json.Key("name").String("a \"b\"\\\n\t\x01");
        json.Key("values").BeginArray().Number(0.1).Number(-2.5e-300).Integer(-7).EndArray();
        json.Key("empty").BeginArray().EndArray();
        json.Key("none").BeginObject().EndObject();
        json.Key("nan").Number(std::numeric_limits<double>::quiet_NaN());
        json.Key("flag").Bool(false);
        json.Key("null").Null();
        json.EndObject();
    }
    EXPECT_EQ(out.str(),
              "{\n"
              "  \"name\": \"a \\\"b\\\"\\\\\\n\\t\\u0001\",\n"
              "  \"values\": [\n"
              "    0.1,\n"
              "    -2.5e-300,\n"
              "    -7\n"
              "  ],\n"
              "  \"empty\": [],\n"
              "  \"none\": {},\n"
              "  \"nan\": null,\n"
              "  \"flag\": false,\n"
              "  \"null\": null\n"
              "}\n");
}

TEST(NumberFormatting, FixedGeneralAndAlignment) {
    EXPECT_EQ(Fixed(1.23456, 2), "1.23");
    EXPECT_EQ(Fixed(-0.0004, 3), "0.000");  // no "-0.000"
    EXPECT_EQ(Fixed(-0.0006, 3, 8), "  -0.001");
    EXPECT_EQ(Fixed(std::numeric_limits<double>::infinity(), 2, 5), "  inf");
    EXPECT_EQ(General(0.000123456, 3), "0.000123");
    EXPECT_EQ(General(123456789.0, 4, 10), " 1.235e+08");
    EXPECT_EQ(Right("ab", 4), "  ab");
    EXPECT_EQ(Left("ab", 4), "ab  ");
    EXPECT_EQ(Right("abcdef", 4), "abcdef");
}

TEST(SvgPlot, EscapingAndAChosenMagnification) {
    EXPECT_EQ(XmlEscape("a<b>&\"c'\x02"), "a&lt;b&gt;&amp;&quot;c&apos; ");
    // Extent 100, longest vector 0.05: an eighth of the extent is 12.5, 250 times the vector;
    // rounded down to 1, 2, 5 times a power of ten: 200.
    const std::vector<ResidualVector> vectors = {{1, 0.0, 0.0, 0.03, 0.04, false},
                                                 {2, 100.0, 50.0, -0.01, 0.0, true}};
    EXPECT_DOUBLE_EQ(ChooseMagnification(vectors), 200.0);
    EXPECT_DOUBLE_EQ(ChooseMagnification({{1, 0.0, 0.0, 0.0, 0.0, false}}), 1.0);

    std::ostringstream out;
    ResidualPlotOptions options;
    options.title = "A & B";
    EXPECT_DOUBLE_EQ(WriteResidualPlot(out, vectors, options), 200.0);
    orvo::test::XmlCheck xml;
    ASSERT_TRUE(xml.Parse(out.str())) << xml.Error();
    EXPECT_EQ(xml.Count("line", "vector"), 2);
    EXPECT_EQ(xml.Count("line", "check"), 1);
    EXPECT_NE(out.str().find("A &amp; B"), std::string::npos);
    // The plotted area is the points' box widened by a tenth, -5..105 by -2.5..52.5, on 680
    // picture units (6.1818 per coordinate unit) from x = 60, with its top at y = 100. The
    // first vector, (0.03, 0.04) at 200 times, runs 37.09 right and 49.45 up from (0, 0).
    EXPECT_NE(out.str().find("x1=\"90.91\" y1=\"424.55\" x2=\"128.00\" y2=\"375.09\""),
              std::string::npos)
        << out.str();

    // An empty plot is still a document.
    std::ostringstream empty;
    WriteResidualPlot(empty, {}, ResidualPlotOptions());
    EXPECT_TRUE(xml.Parse(empty.str())) << xml.Error();
    EXPECT_EQ(xml.Count("line", "vector"), 0);
}

TEST(PointFiles, ColumnNames) {
    std::string error;
    const std::optional<orvo::OvPointFormat> format =
        ParseColumns("id,code123,x,y,z,sx,rx,skip,105", &error);
    ASSERT_TRUE(format);
    EXPECT_EQ(format->Size(), 9);
    EXPECT_EQ((*format)[1], orvo::eOvPointRWCode123);
    EXPECT_EQ((*format)[8], orvo::eOvPointRWSx);
    EXPECT_EQ(ColumnsText(*format), "id,code123,x,y,z,sx,rx,skip,sx");
    EXPECT_EQ(TokensPerRecord(*format), 8);  // the residual column reads nothing
    EXPECT_FALSE(ParseColumns("id,,x", &error));
    EXPECT_EQ(error, "unknown column ''");
    EXPECT_FALSE(ParseColumns("id,118", &error));
    EXPECT_EQ(error, "unknown column '118'");
}

TEST(PointFiles, ReadWithColumnsAndWriteBack) {
    orvo::test::TempDir dir;
    orvo::test::WriteWholeFile(dir.file("p.coo"),
                               "; control points\n"
                               "  12  13  1.5  2.5  3.5   ! X and Z\n"
                               "\r\n"
                               "  14 123 -1 -2 -3\r\n");
    std::istringstream none;
    const PointFile read =
        ReadPointFile(dir.file("p.coo"), none, ParseColumns("id,code123,x,y,z", nullptr));
    EXPECT_TRUE(read.problems.empty()) << FormatProblem(read.problems.front());
    ASSERT_EQ(read.points.Count(), 2);
    const orvo::OvPoint& first = *read.points.First();
    EXPECT_EQ(first.GetId(), 12u);
    EXPECT_EQ(first.GetControlFlags(), orvo::eOvControlX | orvo::eOvControlZ);
    EXPECT_EQ(first.GetZ(), 3.5);
    EXPECT_EQ(read.points.Last()->GetControlFlags(), 7);

    std::ostringstream out;
    out.precision(3);
    ASSERT_TRUE(WritePointFile("-", read.points, ParseColumns("id,x,y", nullptr).value(), out));
    EXPECT_EQ(out.str(),
              "         12                   1.5                   2.5\n"
              "         14                    -1                    -2\n");
    EXPECT_EQ(out.precision(), 3);  // the caller's stream keeps its format
    EXPECT_FALSE(WritePointFile(dir.file("no/dir/p.coo"), read.points, read.columns, out));
}

TEST(PointFiles, ShapeProblems) {
    std::istringstream in("1 2 3 4 5\n2 3 4 5 6\n");
    const PointFile unknown = ReadPointFile("-", in, std::nullopt);
    ASSERT_EQ(unknown.problems.size(), 1u);
    EXPECT_EQ(FormatProblem(unknown.problems[0]),
              "<stdin>:1: ParserErrorNotSpecifiedToken: 5 values on a line; name the columns "
              "with --columns");

    // Broken numbers are reported once per line, by the text check.
    std::istringstream broken("1 2 3\n2 3D 4\n3 4 5\n");
    const PointFile read = ReadPointFile("-", broken, std::nullopt);
    ASSERT_EQ(read.problems.size(), 1u) << FormatProblem(read.problems.back());
    EXPECT_EQ(FormatProblem(read.problems[0]),
              "<stdin>:2: ParserErrorNotSpecifiedToken: '3D' is not a number");
    EXPECT_EQ(read.points.First()->GetId(), 1u);

    std::istringstream empty("; nothing\n");
    const PointFile nothing = ReadPointFile("-", empty, std::nullopt);
    EXPECT_TRUE(nothing.problems.empty());
    EXPECT_EQ(nothing.points.Count(), 0);
}

TEST(LogSession, LevelsWordsAndTheMasterBefore) {
    orvo::OvMasterLogger outer;
    orvo::OvApplicationLogger::RegisterMasterLogger(&outer);
    std::ostringstream err;
    {
        LogSession session(err, kLogInfo);
        LogMessage(kLogError, "broken");
        LogMessage(kLogWarning, "odd");
        LogMessage(kLogInfo, "doing");
        LogMessage(kLogDebug, "detail");  // above the session's level
    }
    EXPECT_EQ(err.str(), "orvo: error: broken\norvo: warning: odd\norvo: doing\n");
    EXPECT_EQ(orvo::OvApplicationLogger::GetMasterLogger(), &outer);
    orvo::OvApplicationLogger::RegisterMasterLogger(nullptr);
}

class CountingHandler : public orvo::LinkHdl {
public:
    std::int32_t OnShow(void*) { return ++shown; }
    int shown = 0;
};

TEST(ProgressSession, DrawsThroughTheRouterAndRestoresTheLinks) {
    CountingHandler host;
    const orvo::Link hostShow = orvo::MakeLink(&host, &CountingHandler::OnShow);
    const orvo::Link before = orvo::OvProgressBarRouter::RegisterShowProgressBarLnk(hostShow);
    std::ostringstream err;
    {
        ProgressSession session(err, true);
        ProgressTask task("reading", 4);
        task.Step(1);
        task.Step(1);  // the same percent: nothing new is drawn
        task.Step(4);
    }
    EXPECT_EQ(err.str(),
              "\rreading [..............................]   0%"
              "\rreading [#######.......................]  25%"
              "\rreading [##############################] 100%"
              "\r                                             \r");
    // The host's link is back, and a disabled session draws nothing.
    EXPECT_EQ(orvo::OvProgressBarRouter::ShowProgressBar("x", 0, 1), 1);
    std::ostringstream quiet;
    {
        ProgressSession session(quiet, false);
        ProgressTask task("reading", 2);
        task.Step(2);
    }
    EXPECT_EQ(quiet.str(), "");
    EXPECT_EQ(host.shown, 2);
    orvo::OvProgressBarRouter::RegisterShowProgressBarLnk(before);
}

}  // namespace
