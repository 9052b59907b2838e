#include "project_support.h"

#include <fstream>

#include "arg_parser.h"
#include "command_support.h"
#include "orvo/model/project_file.h"

namespace orvo::cli {

namespace {

struct ModeName {
    eConvertBikoMode mode;
    const char* name;
    const char* description;
};

constexpr ModeName kModes[] = {
    {eConvertMeasureToPre, "measured-to-pre", "measured -> pre-corrected"},
    {eConvertMeasureToBiko, "measured-to-image", "measured -> image"},
    {eConvertPreToBiko, "pre-to-image", "pre-corrected -> image"},
    {eConvertMeasureToCorrectedBiko, "measured-to-corrected", "measured -> corrected image"},
    {eConvertBikoToCorrectedBiko, "image-to-corrected", "image -> corrected image"},
    {eConvertBikoToMeasure, "image-to-measured", "image -> measured"},
    {eConvertPreToMeasure, "pre-to-measured", "pre-corrected -> measured"},
    {eConvertBikoToPre, "image-to-pre", "image -> pre-corrected"},
    {eConvertCorrectedBikoToBiko, "corrected-to-image", "corrected image -> image"},
    {eConvertCorrectedBikoToMeasure, "corrected-to-measured", "corrected image -> measured"},
};

}  // namespace

bool LoadProject(const std::string& file, OvPhotoList& photos, Io& io, const char* command) {
    if (!std::ifstream(file).good()) {
        PrintError(io, command, file + ": cannot open file");
        return false;
    }
    OvProjectFileErrors errors;
    const int read = OvReadProjectFile(String(file.c_str()), photos, &errors);
    OvLogProjectFileErrors(String(file.c_str()), errors);
    LogMessage(kLogInfo, "read " + std::to_string(read) + " photos from " + file);
    return true;
}

OvPhoto* FindPhoto(OvPhotoList& photos, unsigned id, Io& io, const char* command) {
    if (OvPhoto* photo = photos.Find(id)) return photo;
    std::string ids;
    for (const OvPhoto* photo = photos.First(); photo != nullptr; photo = photo->Next())
        ids += (ids.empty() ? "" : ", ") + std::to_string(photo->GetId());
    PrintError(io, command,
               "no photo " + std::to_string(id) + " in the project" +
                   (ids.empty() ? std::string(" (it has no photos)") : " (photos: " + ids + ")"));
    return nullptr;
}

std::optional<eConvertBikoMode> ParseMode(const std::string& text) {
    for (const ModeName& mode : kModes) {
        if (text == mode.name) return mode.mode;
    }
    const std::optional<unsigned> number = ParseUnsigned(text);
    if (number && *number >= 1 && *number <= 10) return static_cast<eConvertBikoMode>(*number);
    return std::nullopt;
}

const char* ModeDescription(eConvertBikoMode mode) {
    for (const ModeName& entry : kModes) {
        if (entry.mode == mode) return entry.description;
    }
    return "no conversion";
}

bool ModeUsesCamera(eConvertBikoMode mode) {
    return mode == eConvertMeasureToCorrectedBiko || mode == eConvertBikoToCorrectedBiko ||
           mode == eConvertCorrectedBikoToBiko || mode == eConvertCorrectedBikoToMeasure;
}

std::string ModeTable() {
    std::string text = "modes (number or name):\n";
    for (const ModeName& mode : kModes) {
        text += Right(std::to_string(static_cast<int>(mode.mode)), 5) + "  " + Left(mode.name, 24) +
                mode.description + "\n";
    }
    return text;
}

}  // namespace orvo::cli
