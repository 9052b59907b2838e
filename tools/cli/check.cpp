// `orvo check FILE...`: reads project files of every kind and reports every read error with
// file, line and status text; the exit status is 1 when any file has errors, so that the
// command can guard a project's files in continuous integration.
//
// The kind of a file comes from "--kind" or from its extension (the file-type table: "pro"
// project, "res" reseau file, "dres" digital camera file, "coo", "imo", "aor", "sip", "aob"
// point files; "cam" for the camera file, which has no entry in the table). A file with
// another extension is recognised by the header comment the library writes ("... Camera
// File", "... Reseau File", ...).
#include <cctype>
#include <fstream>
#include <string>
#include <vector>

#include "cli.h"
#include "command_support.h"
#include "json_writer.h"
#include "orvo/model/camera_list.h"
#include "orvo/model/photo_list.h"
#include "orvo/model/project_file.h"
#include "orvo/model/reseau_file.h"
#include "orvo/model/reseau_list.h"
#include "orvo/textfile/filetype.h"
#include "point_files.h"

namespace orvo::cli {

namespace {

const char* const kCommand = "orvo check";

struct CheckResult {
    std::string file;
    std::string kind;      // "project", "camera", ...; empty when it could not be told
    int items = 0;         // photos, cameras, crosses, entries or points read
    std::string itemName;  // "photos", ...
    std::vector<FileProblem> problems;
};

std::string Lower(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

std::string KindByExtension(const std::string& file) {
    const std::size_t slash = file.find_last_of("/\\:");
    const std::size_t dot = file.rfind('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return "";
    const std::string extension = Lower(file.substr(dot + 1));
    if (extension == "cam") return "camera";
    for (int type = eOrvoFiletypePro; type < eOrvoFiletypeNone; ++type) {
        if (extension != GetOvExtension(static_cast<eOrvoFiletype>(type))) continue;
        switch (static_cast<eOrvoFiletype>(type)) {
            case eOrvoFiletypePro:
                return "project";
            case eOrvoFiletypeRes:
                return "reseau";
            case eOrvoFiletypeDres:
                return "dres";
            case eOrvoFiletypeLog:
            case eOrvoFiletypeMlg:
                return "";  // protocols are plain text, nothing to check
            default:
                return "points";
        }
    }
    return "";
}

// The header comment the library's writers put at the top of each kind of file.
std::string KindByHeader(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    std::string line;
    for (int i = 0; i < 8 && std::getline(in, line); ++i) {
        if (line.empty() || (line[0] != ';' && line[0] != '!')) continue;
        if (line.find("Digital Camera Reseau File") != std::string::npos) return "dres";
        if (line.find("Camera File") != std::string::npos) return "camera";
        if (line.find("Reseau File") != std::string::npos) return "reseau";
        if (line.find("Project File") != std::string::npos) return "project";
    }
    return "";
}

void CheckProject(CheckResult& result) {
    OvPhotoList photos;
    OvProjectFileErrors errors;
    result.items = OvReadProjectFile(String(result.file.c_str()), photos, &errors);
    result.itemName = "photos";
    for (const OvProjectFileError& error : errors) {
        result.problems.push_back({result.file, error.GetLine(),
                                   GetOvParserStatusText(error.GetStatus()),
                                   error.GetText().chars()});
    }
}

void CheckCameras(CheckResult& result) {
    OvCameraList cameras;
    OvReaderErrorList errors;
    cameras.ReadFile(result.file.c_str(), &errors);
    result.items = cameras.Count();
    result.itemName = "cameras";
    CollectReaderErrors(result.file, errors, &result.problems);
}

void CheckReseau(CheckResult& result) {
    OvReseauFile reseau;
    OvReaderErrorList errors;
    const int valid = reseau.ReadFile(String(result.file.c_str()), &errors);
    result.items = reseau.GetCrossList().Count();
    result.itemName = "crosses";
    CollectReaderErrors(result.file, errors, &result.problems);
    if (!valid && result.problems.empty()) {
        result.problems.push_back({result.file, 0, GetOvParserStatusText(ParserStatusEOF),
                                   "no reseau description in the file"});
    }
}

void CheckDigitalCameras(CheckResult& result) {
    OvReseaufileList entries;
    OvReaderErrorList errors;
    result.items = entries.ReadDigitalCameraFile(String(result.file.c_str()), &errors);
    result.itemName = "entries";
    CollectReaderErrors(result.file, errors, &result.problems);
}

void CheckPoints(CheckResult& result, const std::string& file, std::istream& in,
                 const std::optional<OvPointFormat>& columns) {
    PointFile points = ReadPointFile(file, in, columns);
    result.items = points.points.Count();
    result.itemName = "points";
    result.problems = std::move(points.problems);
}

std::string KindTitle(const std::string& kind) {
    if (kind == "project") return "project file";
    if (kind == "camera") return "camera file";
    if (kind == "reseau") return "reseau file";
    if (kind == "dres") return "digital camera file";
    return "point file";
}

void PrintText(std::ostream& out, const std::vector<CheckResult>& results) {
    int withErrors = 0;
    std::size_t total = 0;
    for (const CheckResult& result : results) {
        for (const FileProblem& problem : result.problems)
            out << FormatProblem(problem) << "\n";
        if (result.kind.empty()) continue;  // reported above as a problem of its own
        out << result.file << ": " << KindTitle(result.kind) << ", " << result.items << " "
            << result.itemName << ": ";
        if (result.problems.empty()) {
            out << "ok\n";
        } else {
            out << result.problems.size()
                << (result.problems.size() == 1 ? " error\n" : " errors\n");
        }
    }
    for (const CheckResult& result : results) {
        if (!result.problems.empty()) ++withErrors;
        total += result.problems.size();
    }
    if (results.size() > 1) {
        out << results.size() << " files checked, " << withErrors << " with errors (" << total
            << (total == 1 ? " error)\n" : " errors)\n");
    }
}

void PrintJson(std::ostream& out, const std::vector<CheckResult>& results) {
    std::size_t total = 0;
    int withErrors = 0;
    JsonWriter json(out);
    json.BeginObject().Key("files").BeginArray();
    for (const CheckResult& result : results) {
        json.BeginObject().Key("file").String(result.file);
        json.Key("kind");
        if (result.kind.empty()) {
            json.Null();
        } else {
            json.String(result.kind);
        }
        json.Key("items").Integer(result.items);
        json.Key("item_name").String(result.itemName);
        json.Key("errors").BeginArray();
        for (const FileProblem& problem : result.problems) {
            json.BeginObject()
                .Key("line")
                .Integer(problem.line)
                .Key("status")
                .String(problem.status)
                .Key("text")
                .String(problem.detail)
                .EndObject();
        }
        json.EndArray().EndObject();
        total += result.problems.size();
        if (!result.problems.empty()) ++withErrors;
    }
    json.EndArray();
    json.Key("files_with_errors").Integer(withErrors);
    json.Key("error_count").Integer(static_cast<std::int64_t>(total));
    json.EndObject();
}

}  // namespace

int RunCheck(const Args& args, Io& io) {
    ArgParser parser(kCommand,
                     "Read each file as the library reads it and report every read error as\n"
                     "\"FILE:LINE: STATUS: what was wrong\". The exit status is 1 when any file\n"
                     "has errors, 0 when all read cleanly.\n"
                     "\n"
                     "The kind of a file follows from its extension (pro, cam, res, dres; coo,\n"
                     "imo, aor, sip, aob for point files) or from the header comment the library\n"
                     "writes; --kind overrides both.");
    parser.Positional("FILE", "the files to check (\"-\": a point file on standard input)", true,
                      true);
    parser.Choice("kind", "KIND", {"project", "camera", "reseau", "dres", "points"},
                  "read every file as this kind", "");
    parser.Option("columns", 0, "LIST",
                  "columns of point files, e.g. id,x,y,z\n(default: from the shape of the lines)");
    parser.Flag("json", 0, "print the report as JSON");
    AddLogOptions(parser);
    if (std::optional<int> exit = ParseOrExit(parser, args, io, kCommand)) return *exit;
    LogSession log(io.err, LogLevelOf(parser));
    ProgressSession progressBar(io.err, io.progress);

    std::optional<OvPointFormat> columns;
    if (!ColumnsOption(parser, "columns", io, kCommand, columns)) return 2;

    const std::vector<std::string> files = parser.Positionals("FILE");
    std::vector<CheckResult> results;
    {
        ProgressTask progress("checking", static_cast<std::int64_t>(files.size()));
        for (const std::string& file : files) {
            CheckResult result;
            result.file = file == "-" ? "<stdin>" : file;
            result.kind = parser.Value("kind");
            if (result.kind.empty()) result.kind = file == "-" ? "points" : KindByExtension(file);
            if (result.kind.empty()) result.kind = KindByHeader(file);
            LogMessage(kLogInfo, "checking " + result.file + " as " +
                                     (result.kind.empty() ? "?" : KindTitle(result.kind)));
            if (file != "-" && !std::ifstream(file).good()) {
                result.kind.clear();
                result.problems.push_back(
                    {result.file, 0, GetOvParserStatusText(ParserErrorStream), "cannot open file"});
            } else if (result.kind.empty()) {
                result.problems.push_back({result.file, 0, GetOvParserStatusText(ParserErrorStream),
                                           "cannot tell the kind of the file; give --kind"});
            } else if (result.kind == "project") {
                CheckProject(result);
            } else if (result.kind == "camera") {
                CheckCameras(result);
            } else if (result.kind == "reseau") {
                CheckReseau(result);
            } else if (result.kind == "dres") {
                CheckDigitalCameras(result);
            } else {
                CheckPoints(result, file, io.in, columns);
            }
            if (file == "-") result.file = "<stdin>";
            results.push_back(std::move(result));
            progress.Step(static_cast<std::int64_t>(results.size()));
        }
    }  // the bar is gone before the report is printed

    if (parser.Has("json")) {
        PrintJson(io.out, results);
    } else {
        PrintText(io.out, results);
    }
    for (const CheckResult& result : results) {
        if (!result.problems.empty()) return 1;
    }
    return 0;
}

}  // namespace orvo::cli
