// Cutting a path into directory, file name and name without extension, and testing that a file
// exists. "\\", "/" and ":" all separate path components, so Windows paths with a drive letter
// and POSIX paths are both understood.
#pragma once

#include "orvo/foundation/string.h"

namespace orvo {

/// The text after the last separator, or the whole path when it has none. A separator at
/// index 0 does not count: `OvGetFilename("/a")` is "/a".
/// `OvGetFilename("C:\\data\\a.pro")` is "a.pro".
String OvGetFilename(const String& path);

/// The file name without its extension: the text of `OvGetFilename(path)` before its last ".".
/// A name without a "." after its first character gives an empty result, on purpose: "readme"
/// and ".profile" both give "".
String OvGetFilenameNoExt(const String& path);

/// The text before the last separator, without the separator. A path without a separator after
/// index 0 gives an empty result, on purpose: a bare file name has an empty path.
/// `OvGetPath("C:\\data\\a.pro")` is "C:\\data".
String OvGetPath(const String& path);

/// True when `name` names a file that can be opened for reading. A directory is not a file and
/// gives false; so does a null or empty name.
bool OvExistFile(const char* name);

}  // namespace orvo
