// `orvo rectify PROJECT --photo ID [--tilt ID] POINTS`: maps image points of a photo through
// the photo's plane rectification (tilt transform): distortion removed when the transform says
// so, the projective tilt matrix into the rectified plane, the placement into object space.
#include <string>

#include "cli.h"
#include "command_support.h"
#include "orvo/model/photo.h"
#include "orvo/numerics/biko_transform.h"
#include "orvo/rectify/tilt_trafo.h"
#include "point_files.h"
#include "project_support.h"

namespace orvo::cli {

namespace {
const char* const kCommand = "orvo rectify";
}

int RunRectify(const Args& args, Io& io) {
    ArgParser parser(kCommand,
                     "Map points of a photo through its plane rectification (tilt transform)\n"
                     "into object coordinates. Each point takes the first active transform of\n"
                     "the photo whose valid region holds it, or the one named by --tilt. The\n"
                     "points are image coordinates; --mode converts them first (e.g. from\n"
                     "measured coordinates, see 'orvo convert --help').\n"
                     "The result has the columns of the input with z added when it is missing.");
    parser.Positional("PROJECT", "the project file");
    parser.Positional("POINTS", "the point file (\"-\": standard input)");
    parser.Option("photo", 'p', "ID", "the photo");
    parser.Option("tilt", 't', "ID", "use this tilt transform for every point");
    parser.Option("mode", 'm', "N", "convert the points with this mode first");
    parser.Option("columns", 0, "LIST",
                  "columns of the point file, e.g. id,x,y\n(default: from the shape of the lines)");
    parser.Option("out", 'o', "FILE", "write the points here instead of standard output");
    AddLogOptions(parser);
    parser.Epilog(
        "example:\n"
        "  orvo rectify examples/chapel.pro --photo 3 --mode measured-to-image "
        "examples/photo3.imo\n");
    if (std::optional<int> exit = ParseOrExit(parser, args, io, kCommand)) return *exit;
    LogSession log(io.err, LogLevelOf(parser));
    ProgressSession progressBar(io.err, io.progress);

    if (!parser.Has("photo")) {
        PrintError(io, kCommand, "missing option --photo");
        io.err << parser.Usage() << "\n";
        return 2;
    }
    const std::optional<unsigned> photoId = ParseUnsigned(parser.Value("photo"));
    if (!photoId) {
        PrintError(io, kCommand, "invalid photo id '" + parser.Value("photo") + "'");
        return 2;
    }
    std::optional<unsigned> tiltId;
    if (parser.Has("tilt") && !(tiltId = ParseUnsigned(parser.Value("tilt")))) {
        PrintError(io, kCommand, "invalid tilt transform id '" + parser.Value("tilt") + "'");
        return 2;
    }
    eConvertBikoMode mode = eConvertBikoNone;
    if (parser.Has("mode")) {
        const std::optional<eConvertBikoMode> parsed = ParseMode(parser.Value("mode"));
        if (!parsed) {
            PrintError(io, kCommand, "invalid mode '" + parser.Value("mode") + "'");
            return 2;
        }
        mode = *parsed;
    }
    std::optional<OvPointFormat> columns;
    if (!ColumnsOption(parser, "columns", io, kCommand, columns)) return 2;

    OvPhotoList photos;
    if (!LoadProject(parser.PositionalOr("PROJECT", ""), photos, io, kCommand)) return 1;
    const OvPhoto* photo = FindPhoto(photos, *photoId, io, kCommand);
    if (photo == nullptr) return 1;
    if (photo->GetTiltList().Count() == 0) {
        PrintError(io, kCommand, "photo " + std::to_string(*photoId) + " has no tilt transform");
        return 1;
    }
    const OvTiltTrafo* fixedTilt = nullptr;
    if (tiltId) {
        fixedTilt = photo->FindTiltTrafo(*tiltId);
        if (fixedTilt == nullptr) {
            PrintError(io, kCommand,
                       "photo " + std::to_string(*photoId) + " has no tilt transform " +
                           std::to_string(*tiltId));
            return 1;
        }
    }

    PointFile points = ReadPointFile(parser.PositionalOr("POINTS", "-"), io.in, columns);
    if (!ReportProblems(points, io, kCommand)) return 1;
    OvPointFormat outColumns = points.columns;
    if (outColumns.HasEntry(eOvPointRWZ) < 0) outColumns.AddEntry(eOvPointRWZ);

    const OvBikoTransform conversion(photo, mode);
    OvPointList rectified(outColumns);
    int failed = 0;
    {
        ProgressTask progress("rectifying", points.points.Count());
        std::int64_t done = 0;
        for (const OvPoint* p = points.points.First(); p != nullptr; p = p->Next()) {
            OvPoint point(*p);
            progress.Step(++done);
            if (mode != eConvertBikoNone && !conversion.Transform(&point) &&
                !(ModeUsesCamera(mode) && photo->GetCamera().GetId() == 0)) {
                PrintError(io, kCommand,
                           "point " + std::to_string(p->GetId()) +
                               ": the conversion failed (the point is left out)");
                ++failed;
                continue;
            }
            const OvTiltTrafo* tilt =
                fixedTilt != nullptr ? fixedTilt : photo->GetTiltTrafo(&point, nullptr, true);
            if (tilt == nullptr) {
                PrintError(io, kCommand,
                           "point " + std::to_string(p->GetId()) +
                               ": no active tilt transform covers it (left out)");
                ++failed;
                continue;
            }
            tilt->Transform(&point, &point);
            rectified.Add(point);
        }
    }
    LogMessage(kLogInfo, "rectified " + std::to_string(rectified.Count()) + " points of photo " +
                             std::to_string(*photoId));

    const std::string outName = parser.Value("out").empty() ? "-" : parser.Value("out");
    if (!WritePointFile(outName, rectified, outColumns, io.out)) {
        PrintError(io, kCommand, outName + ": cannot write file");
        return 1;
    }
    return failed == 0 ? 0 : 1;
}

}  // namespace orvo::cli
