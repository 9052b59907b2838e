// Replacing a file all at once: the new content goes to a temporary file next to the target and
// is renamed over it only after it was written and flushed to the disk completely. Readers see
// either the old or the new file, never a half-written one, and any failure on the way leaves the
// target untouched.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orvo {

/// Writes a new version of one file through a temporary file.
///
/// The temporary file is created in the target's own directory (so the final rename never
/// crosses file systems) with an unpredictable name and exclusive creation, so it can neither
/// collide with nor be pre-planted by another process. When the target exists its permission bits
/// are carried over; a new file gets the usual default permissions. A target that is a symbolic
/// link is resolved, so the link stays and the file it points to is replaced.
///
/// Nothing reaches the target before `Commit`. The destructor discards an uncommitted write,
/// removing the temporary file.
class OvAtomicFileWriter {
public:
    /// Creates the temporary file for `target`; check `IsOpen`.
    explicit OvAtomicFileWriter(const char* target);
    ~OvAtomicFileWriter();
    OvAtomicFileWriter(const OvAtomicFileWriter&) = delete;
    OvAtomicFileWriter& operator=(const OvAtomicFileWriter&) = delete;

    /// True while the temporary file is open and no write has failed.
    bool IsOpen() const;

    /// Appends bytes; false (and the whole write is spoiled) on failure.
    bool Write(const void* data, std::size_t length);
    bool Write(std::string_view text) { return Write(text.data(), text.size()); }

    /// Flushes the temporary file to the disk, closes it and renames it over the target.
    /// Returns false, removing the temporary file and leaving the target as it was, when any of
    /// these steps (or an earlier write) failed.
    bool Commit();

    /// Abandons the write and removes the temporary file; the target stays as it was.
    void Discard();

private:
    bool FlushBuffer();

    std::string target_;    // the file to replace (symbolic links resolved)
    std::string tempName_;  // empty when no temporary file exists
    std::string buffer_;    // bytes not yet handed to the operating system
    int handle_ = -1;
    bool failed_ = false;
};

/// Replaces (or creates) `target` with `content` through an `OvAtomicFileWriter`.
/// Returns false, with the target unchanged, on any failure.
bool OvWriteFileAtomically(const char* target, std::string_view content);

}  // namespace orvo
