// Settings files: reading and writing one key of a section.
//
// A settings file is plain text. A section starts with a line that is exactly the section name
// in square brackets ("[Paths]") and ends at the first empty line or at the end of the file;
// inside it, each key is a line "key=value". Section names and keys are compared without regard
// to letter case (ASCII), and a key is found by its first characters: looking for "Path" also
// finds a line "PathName=x". That prefix match is intended and relied upon.
//
// Lines are read in pieces of at most 511 characters; a longer line counts as several lines
// for matching, but an unchanged long line is written back whole. A line may end in "\n" or
// "\r\n" (the carriage return is not part of the line, nor is one that ends the file); bytes are
// otherwise taken as they are. Every line written ends with "\n", including the last line of the
// file, so a rewrite turns "\r\n" line ends into "\n".
#pragma once

#include <cstddef>

namespace orvo {

/// The longest piece of a line that is read as one line.
constexpr std::size_t kOvProfileLineLength = 511;
/// The size of the buffer `OvWritefPrivateProfile` formats the value into.
constexpr std::size_t kOvProfileFormatBuffer = 1024;

/// Reads `key` of `section` from the settings file `filename` into `result` (room for `size`
/// characters including the terminating NUL) and returns the length of the text placed there.
///
/// - `size` below 1, a null `result`, `section`, `key` or `filename`, or a file that cannot be
///   opened or read: returns 0 and leaves `result` untouched.
/// - Section or key not found (the key is searched from the section line on, and the search
///   does not stop at the end of the section): `defaultValue` (null counts as empty) is copied,
///   at most `size - 1` characters.
/// - Found line without "=": `result` becomes empty.
/// - Otherwise the text after the first "=" is copied, at most `size - 2` characters (one more
///   character of room is kept, as the format always did), and NUL-terminated.
int OvGetPrivateProfile(const char* section, const char* key, char* result, int size,
                        const char* defaultValue, const char* filename);

/// Sets `key` of `section` to `value` (null counts as empty) in the settings file `filename`.
///
/// A missing file is created with the section line and the key line. Otherwise the file is
/// rewritten: lines are copied up to and including the section line, then inside the section a
/// line beginning with `key` is replaced by "key=value"; when the section ends (empty line) or
/// the file ends without such a line, the key line is inserted there. When the section does not
/// exist, an empty line, the section line and the key line are appended. All other lines keep
/// their content and order.
///
/// The new file is written to a temporary file next to it, flushed to the disk and renamed over
/// the original, so a failure at any step leaves the original file untouched.
///
/// Returns 1 on success and 0 on failure: the file exists but cannot be read (a directory, no
/// permission), or it cannot be created or replaced (missing or read-only directory). A null
/// `section`, `key` or `filename`, an empty `key`, or a section, key or value containing a line
/// break returns 0 without touching the file, since it would change the file's structure.
int OvWritePrivateProfile(const char* section, const char* key, const char* value,
                          const char* filename);

/// Formats the value with the printf-style `format` into a buffer of `kOvProfileFormatBuffer`
/// bytes (a longer result is truncated to 1023 characters) and writes it with
/// `OvWritePrivateProfile`. A null `format` returns 0.
int OvWritefPrivateProfile(const char* section, const char* key, const char* filename,
                           const char* format, ...)
#if defined(__GNUC__) || defined(__clang__)
    __attribute__((format(printf, 4, 5)))
#endif
    ;

}  // namespace orvo
