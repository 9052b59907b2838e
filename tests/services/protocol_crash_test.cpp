// The protocol file survives a crash: a process killed with SIGKILL leaves every message it
// logged before the kill in the file, complete, because the debug logger opens, writes and closes
// the file for each message.
#ifndef _WIN32

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "orvo/foundation/platform.h"
#include "orvo/services/logger.h"
#include "temp_dir.h"

namespace orvo {
namespace {

using test::ReadWholeFile;
using test::TempDir;

// Sets up logging into `protocol` in the (child) process: a master that passes the bare
// message on, and the debug logger.
void StartProtocol(const std::string& protocol, OvMasterLogger& master) {
    OvSetProtocolFilePath(String(protocol.c_str()));
    master.SetFormat("$mesg");
    OvApplicationLogger::RegisterMasterLogger(&master);
    InstallOrvoDebugLogger();
}

std::string Message(std::uint32_t n) {
    return "message " + std::to_string(n) + " of a run that is killed";
}

bool ReadAll(int fd, void* data, std::size_t length) {
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

// Kills `child` and reports whether SIGKILL is what ended it.
bool KillAndReap(pid_t child) {
    ::kill(child, SIGKILL);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

TEST(ProtocolCrashTest, KilledProcessLeavesEveryMessageLoggedBeforeTheKill) {
    TempDir dir;
    const std::string protocol = dir.file("protocol.log");
    constexpr std::uint32_t kMessages = 300;

    int channel[2];
    ASSERT_EQ(::pipe(channel), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::close(channel[0]);
        OvMasterLogger master;
        StartProtocol(protocol, master);
        for (std::uint32_t n = 0; n < kMessages; ++n) {
            OvApplicationLogger::Log(3, String(Message(n).c_str()));
        }
        const char logged = 'L';
        [[maybe_unused]] const ssize_t sent = ::write(channel[1], &logged, 1);
        for (;;)
            ::pause();  // killed here, with the debug logger still installed
    }
    ::close(channel[1]);
    char logged = 0;
    const bool reported = ReadAll(channel[0], &logged, 1);
    ::close(channel[0]);
    ASSERT_TRUE(KillAndReap(child));
    ASSERT_TRUE(reported);

    std::string expected = "4 : InstallOrvoDebugLogger()\n";
    for (std::uint32_t n = 0; n < kMessages; ++n)
        expected += "3 : " + Message(n) + "\n";
    EXPECT_EQ(ReadWholeFile(protocol), expected);
}

TEST(ProtocolCrashTest, KillWhileLoggingLosesNoAcknowledgedMessage) {
    TempDir dir;
    const std::string protocol = dir.file("protocol.log");
    constexpr std::uint32_t kAcknowledged = 200;

    int channel[2];
    ASSERT_EQ(::pipe(channel), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::close(channel[0]);
        OvMasterLogger master;
        StartProtocol(protocol, master);
        // Logs until it is killed, telling the parent after each message that Log returned.
        for (std::uint32_t n = 0;; ++n) {
            OvApplicationLogger::Log(3, String(Message(n).c_str()));
            [[maybe_unused]] const ssize_t sent = ::write(channel[1], &n, sizeof n);
        }
    }
    ::close(channel[1]);
    std::uint32_t last = 0;
    bool inOrder = true;
    for (std::uint32_t n = 0; n < kAcknowledged; ++n) {
        std::uint32_t acknowledged = 0;
        if (!ReadAll(channel[0], &acknowledged, sizeof acknowledged)) {
            inOrder = false;
            break;
        }
        inOrder = inOrder && acknowledged == n;
        last = acknowledged;
    }
    // The child goes on logging while the parent kills it: the kill lands at an arbitrary point.
    ASSERT_TRUE(KillAndReap(child));
    ::close(channel[0]);
    ASSERT_TRUE(inOrder);

    const std::string text = ReadWholeFile(protocol);
    const std::vector<std::string> lines = Lines(text);
    ASSERT_GE(lines.size(), static_cast<std::size_t>(last) + 2);
    EXPECT_EQ(lines[0], "4 : InstallOrvoDebugLogger()");
    // Every message the child finished logging is there, in order; the messages it logged after
    // the last acknowledgement may be there too.
    for (std::uint32_t n = 0; n + 1 < lines.size(); ++n) {
        ASSERT_EQ(lines[n + 1], "3 : " + Message(n)) << "line " << n + 2;
    }
    // Every line is complete, up to and including the last one.
    EXPECT_EQ(text.back(), '\n');
}

}  // namespace
}  // namespace orvo

#endif  // _WIN32
