// `orvo convert PROJECT --photo ID --mode N [POINTS]`: converts the points of a point file
// between the coordinate stages of one photo of the project (measured, pre-corrected, image,
// corrected image) with the photo's reseau transformations and camera, and writes them with
// the same columns.
#include <string>

#include "cli.h"
#include "command_support.h"
#include "orvo/model/photo.h"
#include "orvo/numerics/biko_transform.h"
#include "point_files.h"
#include "project_support.h"

namespace orvo::cli {

namespace {
const char* const kCommand = "orvo convert";
}

int RunConvert(const Args& args, Io& io) {
    ArgParser parser(kCommand,
                     "Convert points between the coordinate stages of a photo: measured (as\n"
                     "digitised on the scan or picture), pre-corrected, image coordinates and\n"
                     "corrected image coordinates, with the photo's reseau transformations and\n"
                     "camera as the project holds them. The points are written with the columns\n"
                     "they were read with.");
    parser.Positional("PROJECT", "the project file");
    parser.Positional("POINTS", "the point file (default and \"-\": standard input)", false);
    parser.Option("photo", 'p', "ID", "the photo whose conversions to use");
    parser.Option("mode", 'm', "N", "the conversion (see below)");
    parser.Option("columns", 0, "LIST",
                  "columns of the point file, e.g. id,x,y\n(default: from the shape of the lines)");
    parser.Option("out", 'o', "FILE", "write the points here instead of standard output");
    AddLogOptions(parser);
    parser.Epilog(ModeTable() +
                  "\nexample:\n"
                  "  orvo convert examples/chapel.pro --photo 2 --mode measured-to-image "
                  "examples/photo2.imo\n");
    if (std::optional<int> exit = ParseOrExit(parser, args, io, kCommand)) return *exit;
    LogSession log(io.err, LogLevelOf(parser));
    ProgressSession progressBar(io.err, io.progress);

    if (!parser.Has("photo") || !parser.Has("mode")) {
        PrintError(io, kCommand,
                   std::string("missing option ") + (parser.Has("photo") ? "--mode" : "--photo"));
        io.err << parser.Usage() << "\n";
        return 2;
    }
    const std::optional<unsigned> photoId = ParseUnsigned(parser.Value("photo"));
    if (!photoId) {
        PrintError(io, kCommand, "invalid photo id '" + parser.Value("photo") + "'");
        return 2;
    }
    const std::optional<eConvertBikoMode> mode = ParseMode(parser.Value("mode"));
    if (!mode) {
        PrintError(io, kCommand,
                   "invalid mode '" + parser.Value("mode") + "' (1 to 10 or a name, see --help)");
        return 2;
    }
    std::optional<OvPointFormat> columns;
    if (!ColumnsOption(parser, "columns", io, kCommand, columns)) return 2;

    OvPhotoList photos;
    if (!LoadProject(parser.PositionalOr("PROJECT", ""), photos, io, kCommand)) return 1;
    const OvPhoto* photo = FindPhoto(photos, *photoId, io, kCommand);
    if (photo == nullptr) return 1;

    PointFile points = ReadPointFile(parser.PositionalOr("POINTS", "-"), io.in, columns);
    if (!ReportProblems(points, io, kCommand)) return 1;

    // A photo without camera skips the camera correction (as the library's conversion does);
    // say so once rather than failing every point.
    const bool noCamera = ModeUsesCamera(*mode) && photo->GetCamera().GetId() == 0;
    if (noCamera) {
        LogMessage(kLogWarning, "photo " + std::to_string(*photoId) +
                                    " has no camera: the camera correction is skipped");
    }
    const OvBikoTransform transform(photo, *mode);
    OvPointList converted(points.columns);
    int failed = 0;
    {
        ProgressTask progress("converting", points.points.Count());
        std::int64_t done = 0;
        for (const OvPoint* p = points.points.First(); p != nullptr; p = p->Next()) {
            OvPoint point(*p);
            if (transform.Transform(&point) || noCamera) {
                converted.Add(point);
            } else {
                PrintError(io, kCommand,
                           "point " + std::to_string(p->GetId()) +
                               ": the conversion failed (the point is left out)");
                ++failed;
            }
            progress.Step(++done);
        }
    }
    LogMessage(kLogInfo, "converted " + std::to_string(converted.Count()) + " points of photo " +
                             std::to_string(*photoId) + ", " + ModeDescription(*mode));

    const std::string outName = parser.Value("out").empty() ? "-" : parser.Value("out");
    if (!WritePointFile(outName, converted, points.columns, io.out)) {
        PrintError(io, kCommand, outName + ": cannot write file");
        return 1;
    }
    return failed == 0 ? 0 : 1;
}

}  // namespace orvo::cli
