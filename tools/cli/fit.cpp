// `orvo fit MEASURED CONTROL`: estimates a 2D transformation that maps the measured points onto
// their control points (matched by point number), and reports the parameters with their
// standard deviations, the residual of every point, the RMS and the worst point. "--write"
// keeps the transformation as a block that a project file can take, "--svg" draws the
// residual vectors.
#include <algorithm>
#include <cmath>
#include <fstream>
#include <locale>
#include <set>
#include <string>
#include <vector>

#include "cli.h"
#include "command_support.h"
#include "json_writer.h"
#include "orvo/geom2d/region.h"
#include "orvo/numerics/calc_trafo2d.h"
#include "orvo/textfile/writer.h"
#include "point_files.h"
#include "svg_plot.h"

namespace orvo::cli {

namespace {

const char* const kCommand = "orvo fit";

struct TypeName {
    const char* name;
    eOvTrafo2DType type;
};
constexpr TypeName kTypes[] = {{"helmert", eOvTrafo2DHelmert},
                               {"affin", eOvTrafo2DAffin},
                               {"projektiv", eOvTrafo2DProjektiv},
                               {"polynomial", eOvTrafo2DPolynomial}};

struct Row {
    std::uint32_t id;
    double x, y;  // control position
    double rx, ry;
    bool check;
};

struct FitOutcome {
    std::string measuredFile;
    std::string controlFile;
    OvCalcTrafo2D trafo;
    OvTrafo2DFitReport report;
    bool suggested = false;
    int measuredCount = 0;
    int controlCount = 0;
    std::vector<Row> rows;
    std::vector<std::uint32_t> unmatchedMeasured;
    std::vector<std::uint32_t> unmatchedControl;
};

// Decimals that show residuals of this size with three significant digits.
int DecimalsFor(double size) {
    if (!(size > 0.0) || !std::isfinite(size)) return 4;
    return std::clamp(static_cast<int>(std::ceil(-std::log10(size))) + 2, 1, 12);
}

std::string IdList(const std::vector<std::uint32_t>& ids) {
    std::string text;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (i == 12) return text + ", ... (" + std::to_string(ids.size()) + " in all)";
        text += (i == 0 ? "" : ", ") + std::to_string(ids[i]);
    }
    return text;
}

void PrintText(std::ostream& out, const FitOutcome& fit) {
    const OvTrafo2DFitReport& report = fit.report;
    out << "fit " << fit.measuredFile << " -> " << fit.controlFile << "\n"
        << "  " << fit.measuredCount << " measured points, " << fit.controlCount
        << " control points, " << report.pairs + report.check.count << " pairs ("
        << report.check.count << " check points)\n"
        << "  type: " << fit.trafo.GetTrafoName()
        << (fit.suggested ? " (suggested by the number and spread of the points)" : "") << "\n"
        << "\nparameters (value, standard deviation):\n";
    for (int i = 0; i < fit.trafo.GetParamCount(); ++i) {
        out << "  " << Left(ParamName(i), 4) << General(fit.trafo.GetParam(i), 12, 22) << "  +- "
            << General(report.stdDev[i], 3) << "\n";
    }
    out << "sigma0 " << General(report.sigma0, 4) << ", redundancy " << report.redundancy
        << (fit.report.normalized ? "" : " (fitted on raw coordinates)") << "\n";

    const int decimals = DecimalsFor(std::max(report.fit.rmsX, report.fit.rmsY));
    const int width = decimals + 8;
    out << "\nresiduals (transformed measured minus control):\n"
        << Right("id", 10) << Right("rx", width) << Right("ry", width) << Right("|r|", width)
        << "\n";
    for (const Row& row : fit.rows) {
        out << Right(std::to_string(row.id), 10) << Fixed(row.rx, decimals, width)
            << Fixed(row.ry, decimals, width) << Fixed(std::hypot(row.rx, row.ry), decimals, width)
            << (row.check ? "  check point" : "") << "\n";
    }
    out << "RMS x " << Fixed(report.fit.rmsX, decimals) << ", RMS y "
        << Fixed(report.fit.rmsY, decimals) << ", worst point " << report.fit.maxId << " ("
        << Fixed(report.fit.maxError, decimals) << ")\n";
    if (report.check.count > 0) {
        out << "check points: RMS x " << Fixed(report.check.rmsX, decimals) << ", RMS y "
            << Fixed(report.check.rmsY, decimals) << ", worst point " << report.check.maxId << " ("
            << Fixed(report.check.maxError, decimals) << ")\n";
    }
    if (!fit.unmatchedMeasured.empty())
        out << "measured points without control point: " << IdList(fit.unmatchedMeasured) << "\n";
    if (!fit.unmatchedControl.empty())
        out << "control points not measured: " << IdList(fit.unmatchedControl) << "\n";
}

void Summary(JsonWriter& json, const char* key, const OvTrafo2DResidualSummary& summary) {
    json.Key(key).BeginObject();
    json.Key("count").Integer(summary.count);
    json.Key("rms_x").Number(summary.rmsX);
    json.Key("rms_y").Number(summary.rmsY);
    json.Key("worst_id").Integer(summary.maxId);
    json.Key("worst_error").Number(summary.maxError);
    json.EndObject();
}

void IdArray(JsonWriter& json, const char* key, const std::vector<std::uint32_t>& ids) {
    json.Key(key).BeginArray();
    for (std::uint32_t id : ids)
        json.Integer(id);
    json.EndArray();
}

void PrintJson(std::ostream& out, const FitOutcome& fit) {
    const OvTrafo2DFitReport& report = fit.report;
    JsonWriter json(out);
    json.BeginObject();
    json.Key("measured_file").String(fit.measuredFile);
    json.Key("control_file").String(fit.controlFile);
    json.Key("type").String(fit.trafo.GetTrafoName());
    json.Key("type_code").Integer(fit.trafo.GetType());
    json.Key("suggested").Bool(fit.suggested);
    json.Key("normalized").Bool(report.normalized);
    json.Key("pairs").Integer(report.pairs);
    json.Key("unknowns").Integer(report.unknowns);
    json.Key("redundancy").Integer(report.redundancy);
    json.Key("sigma0").Number(report.sigma0);
    json.Key("parameters").BeginArray();
    for (int i = 0; i < fit.trafo.GetParamCount(); ++i) {
        json.BeginObject()
            .Key("name")
            .String(ParamName(i))
            .Key("value")
            .Number(fit.trafo.GetParam(i))
            .Key("std_dev")
            .Number(report.stdDev[i])
            .EndObject();
    }
    json.EndArray();
    json.Key("residuals").BeginArray();
    for (const Row& row : fit.rows) {
        json.BeginObject();
        json.Key("id").Integer(row.id);
        json.Key("x").Number(row.x);
        json.Key("y").Number(row.y);
        json.Key("rx").Number(row.rx);
        json.Key("ry").Number(row.ry);
        json.Key("check").Bool(row.check);
        json.EndObject();
    }
    json.EndArray();
    Summary(json, "fit_points", report.fit);
    Summary(json, "check_points", report.check);
    IdArray(json, "unmatched_measured", fit.unmatchedMeasured);
    IdArray(json, "unmatched_control", fit.unmatchedControl);
    json.EndObject();
}

bool WriteTrafoBlock(const std::string& file, const FitOutcome& fit) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    if (!out) return false;
    out.imbue(std::locale::classic());
    OvWriterReset();
    out << OvComment << "orvo fit: " << fit.trafo.GetTrafoName() << " from " << fit.report.pairs
        << " pairs of " << fit.measuredFile << " and " << fit.controlFile << "\n"
        << OvComment << "RMS x " << General(fit.report.fit.rmsX, 4) << ", RMS y "
        << General(fit.report.fit.rmsY, 4) << ", sigma0 " << General(fit.report.sigma0, 4) << "\n"
        << "MAINRESTRAFO" << Ovendl << OvBeginBlockNL;
    static_cast<const OvTrafo2d&>(fit.trafo).Write(out);
    out << OvEndBlockNL << "\n";
    out.close();
    return !out.fail();
}

bool WritePlot(const std::string& file, const FitOutcome& fit, double magnification, double* used) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    if (!out) return false;
    std::vector<ResidualVector> vectors;
    for (const Row& row : fit.rows)
        vectors.push_back({row.id, row.x, row.y, row.rx, row.ry, row.check});
    ResidualPlotOptions options;
    const auto base = [](const std::string& path) {
        const std::size_t slash = path.find_last_of("/\\");
        return slash == std::string::npos ? path : path.substr(slash + 1);
    };
    options.title = std::string(fit.trafo.GetTrafoName()) + " fit: " + base(fit.measuredFile) +
                    " -> " + base(fit.controlFile);
    options.subtitle = std::to_string(fit.report.pairs) + " fit points" +
                       (fit.report.check.count > 0
                            ? ", " + std::to_string(fit.report.check.count) + " check points"
                            : std::string()) +
                       ", RMS x " + General(fit.report.fit.rmsX, 3) + ", RMS y " +
                       General(fit.report.fit.rmsY, 3) + ", sigma0 " +
                       General(fit.report.sigma0, 3);
    options.magnification = magnification;
    *used = WriteResidualPlot(out, vectors, options);
    out.close();
    return !out.fail();
}

}  // namespace

int RunFit(const Args& args, Io& io) {
    ArgParser parser(
        kCommand,
        "Estimate the 2D transformation that maps the measured points onto the control\n"
        "points with the same point numbers (least squares, coordinates centred and\n"
        "scaled for accuracy), and report its parameters with standard deviations, the\n"
        "residual of every point, the RMS in x and y and the worst point.");
    parser.Positional("MEASURED", "point file of the measured points (\"-\": standard input)");
    parser.Positional("CONTROL", "point file of the control (pass) points");
    parser.Choice("type", "TYPE", {"auto", "helmert", "affin", "projektiv", "polynomial"},
                  "the transformation; auto takes the type the library\nsuggests for the number "
                  "and spread of the points",
                  "auto");
    parser.Option("columns", 0, "LIST",
                  "columns of both point files, e.g. id,x,y\n(default: from the shape of the "
                  "lines)");
    parser.Option("control-columns", 0, "LIST", "columns of the control file, if they differ");
    parser.Option("check", 0, "IDS",
                  "point numbers kept out of the fit as check points\n"
                  "(comma-separated)");
    parser.Flag("classic", 0, "fit the raw coordinates as the classic estimation\ndoes");
    parser.Option("write", 'w', "FILE", "write the transformation as a MAINRESTRAFO block");
    parser.Option("svg", 0, "FILE", "draw the residual vectors into an SVG file");
    parser.Option("magnify", 0, "N", "magnification of the plotted vectors (default: chosen)");
    parser.Flag("json", 0, "print the result as JSON");
    AddLogOptions(parser);
    parser.Epilog(
        "examples:\n"
        "  orvo fit examples/photo3.imo examples/control.coo --type projektiv\n"
        "  orvo fit crosses.imo nominal.coo --check 5,9 --svg residuals.svg --json\n");
    if (std::optional<int> exit = ParseOrExit(parser, args, io, kCommand)) return *exit;
    LogSession log(io.err, LogLevelOf(parser));

    std::optional<OvPointFormat> columns;
    if (!ColumnsOption(parser, "columns", io, kCommand, columns)) return 2;
    std::optional<OvPointFormat> controlColumns = columns;
    if (!ColumnsOption(parser, "control-columns", io, kCommand, controlColumns)) return 2;
    std::set<std::uint32_t> checkIds;
    if (parser.Has("check")) {
        const std::optional<std::vector<unsigned>> ids = ParseUnsignedList(parser.Value("check"));
        if (!ids) {
            PrintError(io, kCommand, "invalid point numbers '" + parser.Value("check") + "'");
            return 2;
        }
        checkIds.insert(ids->begin(), ids->end());
    }
    double magnification = 0.0;
    if (parser.Has("magnify")) {
        const std::optional<double> value = ParseDouble(parser.Value("magnify"));
        if (!value || *value <= 0.0) {
            PrintError(io, kCommand, "invalid magnification '" + parser.Value("magnify") + "'");
            return 2;
        }
        magnification = *value;
    }

    PointFile measured = ReadPointFile(parser.PositionalOr("MEASURED", ""), io.in, columns);
    PointFile control = ReadPointFile(parser.PositionalOr("CONTROL", ""), io.in, controlColumns);
    const bool measuredRead = ReportProblems(measured, io, kCommand);
    if (!ReportProblems(control, io, kCommand) || !measuredRead) return 1;
    LogMessage(kLogInfo, "read " + std::to_string(measured.points.Count()) + " measured and " +
                             std::to_string(control.points.Count()) + " control points");

    FitOutcome fit;
    fit.measuredFile = measured.name;
    fit.controlFile = control.name;
    fit.measuredCount = measured.points.Count();
    fit.controlCount = control.points.Count();
    fit.trafo.SetPPList(&control.points);

    // The pairs, and the spread of the measured points that have a partner.
    OvPointList matched;
    std::set<std::uint32_t> measuredIds;
    for (const OvPoint* p = measured.points.First(); p != nullptr; p = p->Next()) {
        measuredIds.insert(p->GetId());
        if (control.points.Find(p->GetId(), 0u) != nullptr) {
            matched.Add(*p);
        } else {
            fit.unmatchedMeasured.push_back(p->GetId());
        }
    }
    for (const OvPoint* q = control.points.First(); q != nullptr; q = q->Next()) {
        if (measuredIds.count(q->GetId()) == 0) fit.unmatchedControl.push_back(q->GetId());
    }

    eOvTrafo2DType type = eOvTrafo2DNone;
    for (const TypeName& name : kTypes) {
        if (parser.Value("type") == name.name) type = name.type;
    }
    if (type == eOvTrafo2DNone) {
        OvPointList fitPoints;
        for (const OvPoint* p = matched.First(); p != nullptr; p = p->Next()) {
            if (checkIds.count(p->GetId()) == 0) fitPoints.Add(*p);
        }
        // The area the suggestion divides: the bounding box of the fit points.
        double minX = 0.0, minY = 0.0, maxX = 0.0, maxY = 0.0;
        if (const OvPoint* first = fitPoints.First()) {
            minX = maxX = first->GetX();
            minY = maxY = first->GetY();
        }
        for (const OvPoint* p = fitPoints.First(); p != nullptr; p = p->Next()) {
            minX = std::min(minX, p->GetX());
            maxX = std::max(maxX, p->GetX());
            minY = std::min(minY, p->GetY());
            maxY = std::max(maxY, p->GetY());
        }
        const OvRegion area(minX, minY, maxX, maxY);
        type = fit.trafo.SuggestTrafoByDistrib(area, &fitPoints);
        fit.suggested = true;
        if (type == eOvTrafo2DNone) {
            PrintError(io, kCommand,
                       std::to_string(fitPoints.Count()) +
                           " point(s) with a control point to fit; at least 2 are needed");
            return 1;
        }
        LogMessage(kLogInfo, std::string("suggested type: ") + OvTrafo2DName(type));
    }

    OvTrafo2DFitOptions options;
    options.normalize = !parser.Has("classic");
    if (!checkIds.empty()) {
        options.isCheckPoint = [&checkIds](const OvPoint& p) {
            return checkIds.count(p.GetId()) != 0;
        };
    }
    if (!fit.trafo.CalcTrafo(type, &measured.points, options, &fit.report)) {
        const int needed = type == eOvTrafo2DHelmert     ? 2
                           : type == eOvTrafo2DAffin     ? 3
                           : type == eOvTrafo2DProjektiv ? 4
                                                         : 10;
        std::string why = fit.report.pairs < needed
                              ? std::to_string(fit.report.pairs) + " fit pairs, at least " +
                                    std::to_string(needed) + " are needed"
                              : "the points do not determine it (they lie on a line or "
                                "coincide)";
        PrintError(io, kCommand, std::string("the ") + OvTrafo2DName(type) + " fit failed: " + why);
        return 1;
    }

    for (const OvPoint* p = measured.points.First(); p != nullptr; p = p->Next()) {
        const OvPoint* q = control.points.Find(p->GetId(), 0u);
        if (q == nullptr) continue;
        fit.rows.push_back({p->GetId(), q->GetX(), q->GetY(), p->GetR(0), p->GetR(1),
                            checkIds.count(p->GetId()) != 0});
    }

    if (parser.Has("json")) {
        PrintJson(io.out, fit);
    } else {
        PrintText(io.out, fit);
    }

    int exitCode = 0;
    if (parser.Has("write")) {
        if (WriteTrafoBlock(parser.Value("write"), fit)) {
            LogMessage(kLogInfo, "wrote the transformation to " + parser.Value("write"));
        } else {
            PrintError(io, kCommand, parser.Value("write") + ": cannot write file");
            exitCode = 1;
        }
    }
    if (parser.Has("svg")) {
        double used = 0.0;
        if (WritePlot(parser.Value("svg"), fit, magnification, &used)) {
            LogMessage(kLogInfo, "wrote the residual plot to " + parser.Value("svg") +
                                     " (vectors magnified " + General(used, 3) + " times)");
        } else {
            PrintError(io, kCommand, parser.Value("svg") + ": cannot write file");
            exitCode = 1;
        }
    }
    return exitCode;
}

}  // namespace orvo::cli
