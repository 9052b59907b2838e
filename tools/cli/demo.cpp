// `orvo demo [DIR]`: the typical run of a close-range project on the bundled example (or on a
// directory laid out the same way): read the camera file, the reseau files and the project;
// for each analog photo estimate its reseau transformation from the measured reseau crosses and
// store it in the photo; convert every photo's measured points to image coordinates; map them
// through the photo's active plane rectification; write the project and the results into an
// output directory; print a readable report. When the directory holds the generator's ground
// truth, recovered values are shown next to the true ones.
//
// Layout of DIR:
//   cameras.cam            the camera file
//   <name>.pro             the project file (exactly one)
//   <reseau files>         as the photos name them (RESEAUFILE), relative to DIR
//   photo<ID>.imo          measured points of photo ID (id x y, in the photo's measuring units)
//   photo<ID>_reseau.imo   measured reseau crosses of analog photo ID
//   control.coo            control points in the plane of a rectification (id x y z), optional
//   truth.txt              the generator's ground truth, optional
// Written to the output directory (default DIR/out): the project with the new reseau
// transformations, photo<ID>_image.imo (image coordinates) and photo<ID>_object.coo (object
// coordinates of the rectified points). Nothing is written anywhere else.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli.h"
#include "command_support.h"
#include "demo_truth.h"
#include "orvo/model/camera_list.h"
#include "orvo/model/photo.h"
#include "orvo/model/photo_list.h"
#include "orvo/model/project_file.h"
#include "orvo/model/reseau_list.h"
#include "orvo/numerics/calc_trafo2d.h"
#include "orvo/rectify/tilt_trafo.h"
#include "point_files.h"
#include "project_support.h"

namespace orvo::cli {

namespace {

namespace fs = std::filesystem;

const char* const kCommand = "orvo demo";

struct Demo {
    Demo(Io& streams, fs::path directory) : io(streams), dir(std::move(directory)) {}
    Io& io;
    fs::path dir;
    fs::path out;
    OvCameraList cameras;
    OvReseaufileList reseaus;
    OvPhotoList photos;
    fs::path projectFile;
    Truth truth;
    OvPointList control;
    bool hasControl = false;
    std::vector<std::string> written;
    int problems = 0;
};

std::string Path(const fs::path& path) {
    return path.generic_string();
}

void Warn(Demo& demo, const std::string& text) {
    LogMessage(kLogWarning, text);
    ++demo.problems;
}

// Reads a point file of the directory; missing files give an empty list without a problem.
bool ReadPoints(Demo& demo, const fs::path& file, OvPointList* points) {
    if (!fs::exists(file)) return false;
    PointFile read = ReadPointFile(Path(file), demo.io.in, std::nullopt);
    for (const FileProblem& problem : read.problems)
        Warn(demo, FormatProblem(problem));
    *points = read.points;
    return true;
}

std::string PhotoTitle(const OvPhoto& photo) {
    std::string title = "photo " + std::to_string(photo.GetId());
    const std::string comment = photo.GetComment().chars();
    if (!comment.empty()) title += " \"" + comment + "\"";
    title += photo.IsDigital() ? " (digital" : " (analog";
    if (photo.GetCamera().GetId() != 0) {
        title += ", camera " + std::to_string(photo.GetCamera().GetId());
    }
    return title + ")";
}

// -- reading -------------------------------------------------------------------------------------

bool ReadInputs(Demo& demo) {
    std::ostream& out = demo.io.out;
    std::error_code ec;
    if (!fs::is_directory(demo.dir, ec)) {
        PrintError(demo.io, kCommand, Path(demo.dir) + ": not a directory");
        return false;
    }
    std::vector<fs::path> projects;
    for (const fs::directory_entry& entry : fs::directory_iterator(demo.dir, ec)) {
        if (entry.is_regular_file() && entry.path().extension() == ".pro")
            projects.push_back(entry.path());
    }
    if (projects.size() != 1) {
        PrintError(demo.io, kCommand,
                   Path(demo.dir) + ": " +
                       (projects.empty() ? "no project file (*.pro)"
                                         : "more than one project file (*.pro)"));
        return false;
    }
    demo.projectFile = projects.front();
    out << "orvo demo: the example project in " << Path(demo.dir) << "\n\n";

    const fs::path cameraFile = demo.dir / "cameras.cam";
    OvReaderErrorList cameraErrors;
    LogMessage(kLogInfo, "reading the camera file " + Path(cameraFile));
    if (fs::exists(cameraFile)) {
        demo.cameras.ReadFile(Path(cameraFile).c_str(), &cameraErrors);
        std::vector<FileProblem> problems;
        CollectReaderErrors(Path(cameraFile), cameraErrors, &problems);
        for (const FileProblem& problem : problems)
            Warn(demo, FormatProblem(problem));
    } else {
        Warn(demo, Path(cameraFile) + ": no camera file");
    }
    out << "cameras   " << Path(cameraFile) << ": " << demo.cameras.Count() << " cameras\n";
    for (const OvCamera* camera = demo.cameras.First(); camera != nullptr;
         camera = camera->Next()) {
        out << "          " << Right(std::to_string(camera->GetId()), 3) << "  \""
            << camera->GetInfo().chars() << "\"  C " << Fixed(camera->GetC(), 3) << " mm"
            << (camera->GetA1() != 0.0 || camera->GetA2() != 0.0
                    ? ", radial distortion A1 " + General(camera->GetA1(), 4) + " A2 " +
                          General(camera->GetA2(), 4) + " R0 " + General(camera->GetR0(), 4) + " mm"
                    : ", no distortion")
            << "\n";
    }

    LogMessage(kLogInfo, "reading the project " + Path(demo.projectFile));
    OvProjectFileErrors projectErrors;
    OvReadProjectFile(String(Path(demo.projectFile).c_str()), demo.photos, &projectErrors);
    OvLogProjectFileErrors(String(Path(demo.projectFile).c_str()), projectErrors);
    demo.problems += static_cast<int>(projectErrors.size());
    out << "project   " << Path(demo.projectFile) << ": " << demo.photos.Count() << " photos\n";

    // The reseau files the photos name, each read once and found by the photos' key.
    for (OvPhoto* photo = demo.photos.First(); photo != nullptr; photo = photo->Next()) {
        const OvReseauDataDesc& key = photo->GetReseauData();
        if (key.GetName().empty() || demo.reseaus.FindReseauFile(key) != nullptr) continue;
        const fs::path file = demo.dir / key.GetName().chars();
        LogMessage(kLogInfo, "reading the reseau file " + Path(file));
        auto reseau = std::make_unique<OvReseauFile>();
        OvReaderErrorList errors;
        reseau->ReadFile(String(Path(file).c_str()), &errors);
        std::vector<FileProblem> problems;
        CollectReaderErrors(Path(file), errors, &problems);
        for (const FileProblem& problem : problems)
            Warn(demo, FormatProblem(problem));
        if (!reseau->IsValid()) {
            Warn(demo, Path(file) + ": no valid reseau description");
            continue;
        }
        reseau->SetName(key.GetName());
        reseau->SetSubId(key.GetSubId());
        const OvRegion& region = reseau->GetPhotoRegion();
        out << "reseau    " << Path(file) << ": \"" << reseau->GetInfoText().chars() << "\", "
            << reseau->GetCrossList().Count() << " crosses, photo " << General(region.Width(), 6)
            << " x " << General(region.Height(), 6) << " mm\n";
        demo.reseaus.Add(reseau.release());
    }

    // The photos keep their own copy of their camera; it should be the camera file's.
    for (const OvPhoto* photo = demo.photos.First(); photo != nullptr; photo = photo->Next()) {
        const OvCamera& own = photo->GetCamera();
        if (own.GetId() == 0) continue;
        const OvCamera* listed = demo.cameras.Find(own.GetId());
        if (listed == nullptr) {
            Warn(demo, "photo " + std::to_string(photo->GetId()) + ": camera " +
                           std::to_string(own.GetId()) + " is not in the camera file");
        } else if (listed->GetC() != own.GetC() || listed->GetXh() != own.GetXh() ||
                   listed->GetYh() != own.GetYh() || listed->GetA1() != own.GetA1() ||
                   listed->GetA2() != own.GetA2() || listed->GetR0() != own.GetR0()) {
            Warn(demo, "photo " + std::to_string(photo->GetId()) + ": its copy of camera " +
                           std::to_string(own.GetId()) + " differs from the camera file");
        }
    }

    const fs::path truthFile = demo.dir / "truth.txt";
    if (fs::exists(truthFile)) {
        demo.truth = ReadTruthFile(Path(truthFile));
        for (const FileProblem& problem : demo.truth.problems)
            Warn(demo, FormatProblem(problem));
        out << "truth     " << Path(truthFile) << ": the generator's true values, shown for "
            << "comparison\n";
    }
    demo.hasControl = ReadPoints(demo, demo.dir / "control.coo", &demo.control);
    if (demo.hasControl) {
        out << "control   " << Path(demo.dir / "control.coo") << ": " << demo.control.Count()
            << " control points\n";
    }
    return true;
}

// -- the reseau transformation of an analog photo ------------------------------------------------

void PrintParameters(std::ostream& out, const OvTrafo2d& trafo, const OvTrafo2DFitReport& report) {
    for (int i = 0; i < trafo.GetParamCount(); ++i) {
        out << "      " << Left(ParamName(i), 4) << General(trafo.GetParam(i), 10, 18) << "  +- ";
        const bool lineEnds = i % 2 == 1 || i + 1 == trafo.GetParamCount();
        out << (lineEnds ? General(report.stdDev[i], 2) + "\n"
                         : Left(General(report.stdDev[i], 2), 11));
    }
}

// Compares the estimated and the true mapping from measured to image coordinates: parameter by
// parameter through an affine fit of the crosses (the truth is affine; `measured` holds the
// crosses as the main stage sees them), and over a grid of the digitised region through the
// photo's whole chain as it now stands (the reseau transformation is used everywhere in
// between the crosses).
void CompareWithTrueScan(Demo& demo, const OvPhoto& photo, const OvPointList& measured,
                         const OvPointList& nominal, const TruthPhoto& truth) {
    std::ostream& out = demo.io.out;
    // An affine fit of the same crosses recovers the true distortion parameter by parameter.
    OvPointList pp(nominal);
    OvCalcTrafo2D affine(&pp);
    OvPointList act(measured);
    OvTrafo2DFitReport report;
    if (affine.CalcTrafo(eOvTrafo2DAffin, &act, OvTrafo2DFitOptions(), &report)) {
        out << "    the scan's true affine distortion, recovered by an Affin fit of the crosses:\n"
            << "      " << Left("", 4) << Right("true", 18) << Right("recovered", 18)
            << Right("+-", 12) << Right("off / sd", 10) << "\n";
        for (int i = 0; i < 6; ++i) {
            const double trueValue = truth.scan.GetParam(i);
            const double off = affine.GetParam(i) - trueValue;
            const double sd = report.stdDev[i];
            out << "      " << Left(ParamName(i), 4) << General(trueValue, 10, 18)
                << General(affine.GetParam(i), 10, 18) << General(sd, 2, 12)
                << (sd > 0.0 ? Fixed(off / sd, 1, 10) : Right("-", 10)) << "\n";
        }
    }
    const OvRegion& region = photo.GetDigiRegion();
    double worst = 0.0;
    double sum = 0.0;
    int count = 0;
    for (int i = 0; i <= 10; ++i) {
        for (int j = 0; j <= 10; ++j) {
            double x = region.Left() + region.Width() * i / 10.0;
            double y = region.Bottom() + region.Height() * j / 10.0;
            OvPoint p(0, x, y, 0.0, 0);
            photo.ConvertBiko(&p, eConvertMeasureToBiko);
            truth.scan.Transform(&x, &y);
            const double d = std::hypot(p.GetX() - x, p.GetY() - y) * 1000.0;
            worst = std::max(worst, d);
            sum += d * d;
            ++count;
        }
    }
    out << "    the new chain (measured -> image) against the truth on 11 x 11 points of the "
           "scan:\n"
        << "      RMS " << Fixed(std::sqrt(sum / count), 1) << " um, largest " << Fixed(worst, 1)
        << " um\n";
}

void FitReseau(Demo& demo, OvPhoto& photo) {
    std::ostream& out = demo.io.out;
    const OvReseauFile* reseau = demo.reseaus.FindReseauFile(&photo);
    if (reseau == nullptr) {
        out << "  no reseau description: the photo's reseau transformation is kept ("
            << photo.GetReseauTrafoName() << ")\n";
        return;
    }
    OvPointList measured;
    const fs::path crossFile = demo.dir / ("photo" + std::to_string(photo.GetId()) + "_reseau.imo");
    if (!ReadPoints(demo, crossFile, &measured) || measured.Count() == 0) {
        out << "  no measured reseau crosses (" << Path(crossFile)
            << "): the reseau transformation is kept (" << photo.GetReseauTrafoName() << ")\n";
        return;
    }
    // The main stage follows the pre stage: fit what the pre stage delivers.
    photo.ConvertList(&measured, eConvertMeasureToPre);
    OvPointList nominal(reseau->GetCrossList());

    OvCalcTrafo2D fit(&nominal);
    const eOvTrafo2DType type = fit.SuggestTrafoByDistrib(photo.GetDigiRegion(), &measured);
    OvTrafo2DFitReport report;
    if (type == eOvTrafo2DNone || !fit.CalcTrafo(type, &measured, OvTrafo2DFitOptions(), &report)) {
        Warn(demo, "photo " + std::to_string(photo.GetId()) + ": the " + OvTrafo2DName(type) +
                       " fit of the reseau crosses failed; the transformation is kept");
        return;
    }
    out << "  reseau transformation: " << fit.GetTrafoName()
        << " (suggested by the number and spread of the crosses)\n"
        << "    fitted to " << report.pairs << " measured crosses of \""
        << reseau->GetInfoText().chars() << "\"\n"
        << "    sigma0 " << General(report.sigma0, 3) << " mm, redundancy " << report.redundancy
        << ", RMS x " << Fixed(report.fit.rmsX * 1000.0, 1) << " um, RMS y "
        << Fixed(report.fit.rmsY * 1000.0, 1) << " um, worst cross " << report.fit.maxId << " ("
        << Fixed(report.fit.maxError * 1000.0, 1) << " um)\n"
        << "    parameters (measured -> image, value +- standard deviation):\n";
    PrintParameters(out, fit, report);

    OvReseauTrafo main(fit);
    photo.SetReseauMainTrafo(main);
    if (type == eOvTrafo2DPolynomial) {
        // The way back (image -> measured) needs the inverse polynomial of its own.
        OvPointList back(measured);
        OvCalcTrafo2D inverse(&back);
        OvPointList crosses(nominal);
        if (inverse.CalcTrafo(eOvTrafo2DPolynomial, &crosses)) {
            photo.SetPolyInvTrafo(OvReseauTrafo(inverse));
            out << "    inverse polynomial (image -> measured) estimated from the same crosses\n";
        } else {
            Warn(demo, "photo " + std::to_string(photo.GetId()) +
                           ": the inverse polynomial could not be estimated");
        }
    } else {
        photo.SetPolyInvTrafo(OvReseauTrafo());
    }
    if (const TruthPhoto* truth = demo.truth.Find(photo.GetId()); truth && truth->hasScan)
        CompareWithTrueScan(demo, photo, measured, nominal, *truth);
}

// -- points --------------------------------------------------------------------------------------

// Converts the measured points of the photo to image coordinates (its Imo list) and prints
// them, next to the true ones when known.
void ConvertPoints(Demo& demo, OvPhoto& photo) {
    std::ostream& out = demo.io.out;
    OvPointList measured;
    const fs::path file = demo.dir / ("photo" + std::to_string(photo.GetId()) + ".imo");
    if (!ReadPoints(demo, file, &measured) || measured.Count() == 0) {
        out << "  no measured points (" << Path(file) << ")\n";
        return;
    }
    photo.DestroyMeasure();
    photo.DestroyImo();
    for (const OvPoint* p = measured.First(); p != nullptr; p = p->Next())
        photo.AddMeasure(*p, eConvertBikoNone);
    photo.CopyMeasureToImo(eConvertMeasureToBiko);

    const TruthPhoto* truth = demo.truth.Find(photo.GetId());
    out << "  " << photo.CountImo() << " measured points -> image coordinates [mm]"
        << (photo.GetReseauPreTrafo().GetType() != eOvTrafo2DNone ? " (pre and main stage)" : "")
        << (truth != nullptr ? ", against the true image coordinates" : "") << ":\n"
        << "    " << Right("id", 6) << Right("measured x", 12) << Right("measured y", 12)
        << Right("image x", 11) << Right("image y", 11);
    if (truth != nullptr) out << Right("dx [um]", 9) << Right("dy [um]", 9);
    out << "\n";
    double sum = 0.0;
    int compared = 0;
    for (const OvPoint* p = photo.FirstMeasure(); p != nullptr; p = p->Next()) {
        const OvPoint* image = photo.FindImo(p->GetId());
        if (image == nullptr) continue;
        out << "    " << Right(std::to_string(p->GetId()), 6) << Fixed(p->GetX(), 2, 12)
            << Fixed(p->GetY(), 2, 12) << Fixed(image->GetX(), 4, 11)
            << Fixed(image->GetY(), 4, 11);
        const OvPoint* known = truth != nullptr ? truth->image.Find(p->GetId(), 0u) : nullptr;
        if (known != nullptr) {
            const double dx = (image->GetX() - known->GetX()) * 1000.0;
            const double dy = (image->GetY() - known->GetY()) * 1000.0;
            out << Fixed(dx, 1, 9) << Fixed(dy, 1, 9);
            sum += dx * dx + dy * dy;
            ++compared;
        }
        out << "\n";
    }
    if (compared > 0) {
        out << "    difference from the truth: RMS " << Fixed(std::sqrt(sum / (2.0 * compared)), 1)
            << " um per coordinate over " << compared << " points\n";
    }
}

// Maps the photo's image points through its active tilt transforms and prints the object
// coordinates; where the plane's control points are known, the rectified plane coordinates
// are compared with them.
void RectifyPoints(Demo& demo, OvPhoto& photo) {
    std::ostream& out = demo.io.out;
    if (photo.GetTiltList().Count() == 0 || photo.CountImo() == 0) return;
    OvPointList object;
    object.SetMask(ParseColumns("id,x,y,z", nullptr).value());
    for (const OvTiltTrafo* tilt = photo.FirstTiltTrafo(); tilt != nullptr; tilt = tilt->Next()) {
        out << "  tilt plane " << tilt->GetId() << " \"" << tilt->GetName().chars()
            << "\": " << (tilt->IsActive() ? "active" : "inactive")
            << (tilt->CompensateDistortion() ? ", lens distortion removed first" : "")
            << "\n    valid region of " << tilt->GetRegion().Count() << " corners, covering "
            << Fixed(tilt->Area(), 2) << " square units of the rectified plane\n";
    }
    out << "    " << Right("id", 6) << Right("plane X", 10) << Right("plane Y", 10);
    if (demo.hasControl) out << Right("dX [mm]", 9) << Right("dY [mm]", 9);
    out << Right("object X", 12) << Right("object Y", 12) << Right("object Z", 10) << "\n";
    double sum = 0.0;
    int compared = 0;
    int outside = 0;
    for (const OvPoint* p = photo.FirstImo(); p != nullptr; p = p->Next()) {
        const OvTiltTrafo* tilt = photo.GetTiltTrafo(p, nullptr, true);
        if (tilt == nullptr) {
            ++outside;
            continue;
        }
        // The plane coordinates: the same transform without its placement in object space.
        OvTiltTrafo planeOnly(*tilt);
        OvMatrix identity(4, 4);
        identity.SetIdent();
        planeOnly.SetTransMat(identity);
        OvPoint plane;
        planeOnly.Transform(p, &plane);
        OvPoint placed;
        tilt->Transform(p, &placed);
        object.Add(placed);
        out << "    " << Right(std::to_string(p->GetId()), 6) << Fixed(plane.GetX(), 3, 10)
            << Fixed(plane.GetY(), 3, 10);
        if (demo.hasControl) {
            if (const OvPoint* known = demo.control.Find(p->GetId(), 0u)) {
                const double dx = (plane.GetX() - known->GetX()) * 1000.0;
                const double dy = (plane.GetY() - known->GetY()) * 1000.0;
                out << Fixed(dx, 1, 9) << Fixed(dy, 1, 9);
                sum += dx * dx + dy * dy;
                ++compared;
            } else {
                out << Right("-", 9) << Right("-", 9);
            }
        }
        out << Fixed(placed.GetX(), 3, 12) << Fixed(placed.GetY(), 3, 12)
            << Fixed(placed.GetZ(), 3, 10) << "\n";
    }
    if (compared > 0) {
        out << "    rectified plane against the control points: RMS "
            << Fixed(std::sqrt(sum / (2.0 * compared)), 1) << " mm per coordinate over " << compared
            << " points\n";
    }
    if (outside > 0) {
        out << "    " << outside << " points lie outside every active tilt plane\n";
    }
    const fs::path file = demo.out / ("photo" + std::to_string(photo.GetId()) + "_object.coo");
    if (WritePointFile(Path(file), object, object.GetMask(), demo.io.out)) {
        demo.written.push_back(Path(file));
    } else {
        Warn(demo, Path(file) + ": cannot write file");
    }
}

}  // namespace

int RunDemo(const Args& args, Io& io) {
    ArgParser parser(kCommand,
                     "Run the typical job on the bundled example project (or on DIR, laid out\n"
                     "the same way): read the camera file, the reseau files and the project;\n"
                     "estimate the reseau transformation of each analog photo from its measured\n"
                     "crosses; convert the measured points to image coordinates; map them\n"
                     "through the active plane rectifications; write the project and the\n"
                     "results into the output directory and print a report.");
    parser.Positional("DIR", "the example directory [default: examples]", false);
    parser.Option("out", 'o', "DIR", "the output directory [default: DIR/out]");
    AddLogOptions(parser);
    parser.Epilog(
        "The directory holds cameras.cam, one *.pro project, the reseau files its photos\n"
        "name, photo<ID>.imo (measured points) and photo<ID>_reseau.imo (measured reseau\n"
        "crosses), and optionally control.coo and the generator's truth.txt.\n");
    if (std::optional<int> exit = ParseOrExit(parser, args, io, kCommand)) return *exit;
    LogSession log(io.err, LogLevelOf(parser));
    ProgressSession progressBar(io.err, io.progress);

    Demo demo(io, fs::path(parser.PositionalOr("DIR", "examples")));
    demo.out = parser.Has("out") ? fs::path(parser.Value("out")) : demo.dir / "out";
    if (!ReadInputs(demo)) return 1;

    std::error_code ec;
    fs::create_directories(demo.out, ec);
    if (ec || !fs::is_directory(demo.out)) {
        PrintError(io, kCommand, Path(demo.out) + ": cannot create the output directory");
        return 1;
    }

    {
        ProgressTask progress("working", demo.photos.Count());
        int done = 0;
        for (OvPhoto* photo = demo.photos.First(); photo != nullptr; photo = photo->Next()) {
            LogMessage(kLogInfo, "working on photo " + std::to_string(photo->GetId()));
            io.out << "\n" << PhotoTitle(*photo) << "\n";
            if (photo->IsAnalog() && !photo->GetReseauData().GetName().empty())
                FitReseau(demo, *photo);
            else if (photo->GetReseauTrafoType() != eOvTrafo2DNone)
                io.out << "  reseau transformation from the project: "
                       << photo->GetReseauTrafoName() << "\n";
            ConvertPoints(demo, *photo);
            if (photo->CountImo() > 0) {
                const fs::path file =
                    demo.out / ("photo" + std::to_string(photo->GetId()) + "_image.imo");
                if (WritePointFile(Path(file), photo->GetImoList(),
                                   ParseColumns("id,x,y", nullptr).value(), io.out)) {
                    demo.written.push_back(Path(file));
                } else {
                    Warn(demo, Path(file) + ": cannot write file");
                }
            }
            RectifyPoints(demo, *photo);
            progress.Step(++done);
        }
    }

    const fs::path project = demo.out / demo.projectFile.filename();
    if (!OvWriteProjectFile(String(Path(project).c_str()), demo.photos)) {
        PrintError(io, kCommand, Path(project) + ": cannot write file");
        return 1;
    }
    demo.written.insert(demo.written.begin(), Path(project));
    io.out << "\nwritten:\n";
    for (const std::string& file : demo.written)
        io.out << "  " << file << "\n";
    if (demo.problems > 0) {
        io.out << "\n" << demo.problems << " problem(s) were reported on the error output\n";
        return 1;
    }
    return 0;
}

}  // namespace orvo::cli
