// Reading a project for the commands that work on one of its photos.
#pragma once

#include <optional>
#include <string>

#include "cli.h"
#include "orvo/model/photo_list.h"
#include "orvo/numerics/biko_transform.h"

namespace orvo::cli {

/// Reads the project file into `photos`. Read problems are logged as warnings through the
/// library's loggers (the readable photos are kept, as the reader keeps them). False, with an
/// error printed, when the file cannot be opened.
bool LoadProject(const std::string& file, OvPhotoList& photos, Io& io, const char* command);

/// The photo with this id, or null with an error printed (naming the ids there are).
OvPhoto* FindPhoto(OvPhotoList& photos, unsigned id, Io& io, const char* command);

/// A conversion mode from its number 1..13 or its name ("measured-to-image", ...).
std::optional<eConvertBikoMode> ParseMode(const std::string& text);
/// "measured -> image" and the like, for reports.
const char* ModeDescription(eConvertBikoMode mode);
/// Whether the mode applies the photo's camera correction (Adjust or InvAdjust).
bool ModeUsesCamera(eConvertBikoMode mode);
/// The help text listing every mode with its number and name.
std::string ModeTable();

}  // namespace orvo::cli
