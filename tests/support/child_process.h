// Running a piece of a test in a child process that can be killed or starved of disk space, to
// see what a crash or a full disk leaves behind. POSIX only (fork, signals, resource limits).
//
// A killed writer is stopped at a known point: the child's files may grow only to a set size,
// and the signal the system sends when a write goes past it (SIGXFSZ) is caught; the handler
// tells the parent through a pipe and waits. The parent then kills the child with SIGKILL, so
// the write is cut off in the middle, at a byte count the test knows, every time.
#pragma once

#ifndef _WIN32

#include <signal.h>
#include <sys/resource.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

namespace orvo::test {

namespace child_detail {

inline int& ReportDescriptor() {
    static int descriptor = -1;
    return descriptor;
}

// Runs in the child when a write goes past the size limit: report, then wait to be killed.
// Only async-signal-safe calls here.
extern "C" inline void ReportAndWait(int) {
    const char stalled = 'S';
    [[maybe_unused]] const ssize_t sent = ::write(ReportDescriptor(), &stalled, 1);
    for (;;)
        ::pause();
}

inline bool LimitFileSize(std::size_t bytes) {
    rlimit limit{};
    limit.rlim_cur = static_cast<rlim_t>(bytes);
    limit.rlim_max = static_cast<rlim_t>(bytes);
    return ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

inline bool ReadExactly(int fd, void* data, std::size_t length) {
    auto* bytes = static_cast<char*>(data);
    while (length > 0) {
        const ssize_t got = ::read(fd, bytes, length);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        bytes += got;
        length -= static_cast<std::size_t>(got);
    }
    return true;
}

inline int WaitFor(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

}  // namespace child_detail

/// How a writer run by KillWriterMidway ended.
enum class KilledWrite {
    kKilledMidway,   // stopped in the middle of writing and killed with SIGKILL
    kFinishedEarly,  // the write never reached the size limit: nothing was interrupted
    kChildFailed,    // the child could not be set up or ended some other way
};

/// Runs `write` in a child process whose files may grow to `stallBytes` bytes. When a write
/// goes past that size, the child is killed with SIGKILL right there, in the middle of the
/// write; the bytes up to the limit have reached the file.
inline KilledWrite KillWriterMidway(std::size_t stallBytes, const std::function<void()>& write) {
    int channel[2];
    if (::pipe(channel) != 0) return KilledWrite::kChildFailed;
    const pid_t child = ::fork();
    if (child < 0) {
        ::close(channel[0]);
        ::close(channel[1]);
        return KilledWrite::kChildFailed;
    }
    if (child == 0) {
        ::close(channel[0]);
        child_detail::ReportDescriptor() = channel[1];
        struct sigaction action {};
        action.sa_handler = child_detail::ReportAndWait;
        sigemptyset(&action.sa_mask);
        if (::sigaction(SIGXFSZ, &action, nullptr) != 0 ||
            !child_detail::LimitFileSize(stallBytes)) {
            ::_exit(2);
        }
        write();
        const char finished = 'F';
        [[maybe_unused]] const ssize_t sent = ::write(channel[1], &finished, 1);
        ::_exit(0);
    }
    ::close(channel[1]);
    char report = 0;
    const bool reported = child_detail::ReadExactly(channel[0], &report, 1);
    ::close(channel[0]);
    if (reported && report == 'S') ::kill(child, SIGKILL);
    const int status = child_detail::WaitFor(child);
    if (reported && report == 'S' && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) {
        return KilledWrite::kKilledMidway;
    }
    if (reported && report == 'F' && WIFEXITED(status) && WEXITSTATUS(status) == 0) {
        return KilledWrite::kFinishedEarly;
    }
    return KilledWrite::kChildFailed;
}

/// Runs `write` in a child process whose files may not grow beyond `limitBytes`, as on a disk
/// that is full: a write past the limit fails with EFBIG (SIGXFSZ is ignored). Returns what
/// `write` returned, or nothing when the child did not get that far.
inline std::optional<std::int64_t> RunOnFullDisk(std::size_t limitBytes,
                                                 const std::function<std::int64_t()>& write) {
    int channel[2];
    if (::pipe(channel) != 0) return std::nullopt;
    const pid_t child = ::fork();
    if (child < 0) {
        ::close(channel[0]);
        ::close(channel[1]);
        return std::nullopt;
    }
    if (child == 0) {
        ::close(channel[0]);
        if (::signal(SIGXFSZ, SIG_IGN) == SIG_ERR || !child_detail::LimitFileSize(limitBytes)) {
            ::_exit(2);
        }
        const std::int64_t result = write();
        const bool sent =
            ::write(channel[1], &result, sizeof result) == static_cast<ssize_t>(sizeof result);
        ::_exit(sent ? 0 : 2);
    }
    ::close(channel[1]);
    std::int64_t result = 0;
    const bool reported = child_detail::ReadExactly(channel[0], &result, sizeof result);
    ::close(channel[0]);
    const int status = child_detail::WaitFor(child);
    // The exit code itself is not checked: a memory checker running the tests may replace it
    // with its own for errors found earlier in the process, which the child inherited.
    if (!reported || !WIFEXITED(status)) return std::nullopt;
    return result;
}

}  // namespace orvo::test

#endif  // _WIN32
