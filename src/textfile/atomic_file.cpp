// Whole-file replacement through a flushed temporary file and a rename. The few operating-system
// calls this needs differ between POSIX and Windows; they are kept together at the top.
#include "orvo/textfile/atomic_file.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace orvo {

namespace {

// Bytes collected before they are handed to the operating system in one write.
constexpr std::size_t kBufferLimit = 64 * 1024;
// Tries at finding an unused temporary name; a clash of 64 random bits is not expected at all,
// so running out means the directory refuses new files for some other reason.
constexpr int kNameAttempts = 16;

#ifdef _WIN32

int OpenExclusive(const std::string& name, bool* nameTaken) {
    int fd = _open(name.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT,
                   _S_IREAD | _S_IWRITE);
    *nameTaken = (fd < 0 && errno == EEXIST);
    return fd;
}

bool WriteAll(int fd, const char* data, std::size_t length) {
    while (length > 0) {
        const unsigned chunk = length > 0x40000000U ? 0x40000000U : static_cast<unsigned>(length);
        const int written = _write(fd, data, chunk);
        if (written <= 0) return false;
        data += written;
        length -= static_cast<std::size_t>(written);
    }
    return true;
}

bool SyncFile(int fd) {
    return _commit(fd) == 0;
}
bool CloseFile(int fd) {
    return _close(fd) == 0;
}
void RemoveFile(const std::string& name) {
    _unlink(name.c_str());
}
void CopyPermissions(int, const std::string&) {}

bool ReplaceTarget(const std::string& temp, const std::string& target) {
    return MoveFileExA(temp.c_str(), target.c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

void SyncDirectoryOf(const std::string&) {}

#else

int OpenExclusive(const std::string& name, bool* nameTaken) {
    int fd;
    do {
        fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (fd < 0 && errno == EINTR);
    *nameTaken = (fd < 0 && errno == EEXIST);
    return fd;
}

bool WriteAll(int fd, const char* data, std::size_t length) {
    while (length > 0) {
        const ssize_t written = ::write(fd, data, length);
        if (written < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        data += written;
        length -= static_cast<std::size_t>(written);
    }
    return true;
}

bool SyncFile(int fd) {
    int result;
    do {
        result = ::fsync(fd);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

bool CloseFile(int fd) {
    return ::close(fd) == 0;
}
void RemoveFile(const std::string& name) {
    ::unlink(name.c_str());
}

// The replacement keeps the target's permission bits and, where allowed, its owner; a new file
// keeps what the open gave it (0666 less the umask).
void CopyPermissions(int fd, const std::string& target) {
    struct stat info;
    if (::stat(target.c_str(), &info) != 0) return;
    (void)::fchmod(fd, info.st_mode & 07777);
    if (::fchown(fd, info.st_uid, info.st_gid) != 0) {
        // Only the owner's privileges decide this; the content is replaced either way.
    }
}

bool ReplaceTarget(const std::string& temp, const std::string& target) {
    return std::rename(temp.c_str(), target.c_str()) == 0;
}

// Makes the rename itself durable. Best effort: the new content is already safely on disk.
void SyncDirectoryOf(const std::string& target) {
    std::filesystem::path directory = std::filesystem::path(target).parent_path();
    if (directory.empty()) directory = ".";
    const int fd = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    (void)SyncFile(fd);
    ::close(fd);
}

#endif

std::string ResolveTarget(const char* target) {
    std::error_code error;
    const std::filesystem::path path(target);
    if (std::filesystem::is_symlink(path, error)) {
        std::filesystem::path resolved = std::filesystem::canonical(path, error);
        if (!error) return resolved.string();
    }
    return path.string();
}

std::string TemporaryNameFor(const std::string& target, std::random_device& random) {
    const std::filesystem::path path(target);
    std::string base = path.filename().string();
    if (base.size() > 100) base.resize(100);  // keep the temporary name within name limits
    char suffix[24];
    std::snprintf(suffix, sizeof suffix, ".%08x%08x.tmp", static_cast<unsigned>(random()),
                  static_cast<unsigned>(random()));
    return (path.parent_path() / ("." + base + suffix)).string();
}

}  // namespace

OvAtomicFileWriter::OvAtomicFileWriter(const char* target) {
    if (target == nullptr || *target == '\0') {
        failed_ = true;
        return;
    }
    target_ = ResolveTarget(target);
    std::random_device random;
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
        std::string name = TemporaryNameFor(target_, random);
        bool nameTaken = false;
        handle_ = OpenExclusive(name, &nameTaken);
        if (handle_ >= 0) {
            tempName_ = std::move(name);
            CopyPermissions(handle_, target_);
            return;
        }
        if (!nameTaken) break;  // the directory is missing, read-only, ...: retrying won't help
    }
    failed_ = true;
}

OvAtomicFileWriter::~OvAtomicFileWriter() {
    Discard();
}

bool OvAtomicFileWriter::IsOpen() const {
    return handle_ >= 0 && !failed_;
}

bool OvAtomicFileWriter::Write(const void* data, std::size_t length) {
    if (!IsOpen()) return false;
    buffer_.append(static_cast<const char*>(data), length);
    if (buffer_.size() >= kBufferLimit) return FlushBuffer();
    return true;
}

bool OvAtomicFileWriter::FlushBuffer() {
    if (!WriteAll(handle_, buffer_.data(), buffer_.size())) failed_ = true;
    buffer_.clear();
    return !failed_;
}

bool OvAtomicFileWriter::Commit() {
    if (!IsOpen() || !FlushBuffer() || !SyncFile(handle_)) {
        Discard();
        return false;
    }
    const bool closed = CloseFile(handle_);
    handle_ = -1;
    if (!closed || !ReplaceTarget(tempName_, target_)) {
        Discard();
        return false;
    }
    tempName_.clear();
    SyncDirectoryOf(target_);
    return true;
}

void OvAtomicFileWriter::Discard() {
    if (handle_ >= 0) {
        CloseFile(handle_);
        handle_ = -1;
    }
    if (!tempName_.empty()) {
        RemoveFile(tempName_);
        tempName_.clear();
    }
    buffer_.clear();
    failed_ = true;
}

bool OvWriteFileAtomically(const char* target, std::string_view content) {
    OvAtomicFileWriter writer(target);
    return writer.Write(content) && writer.Commit();
}

}  // namespace orvo
