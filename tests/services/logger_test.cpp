#include "orvo/services/logger.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "temp_dir.h"

namespace orvo {
namespace {

// Records what it receives; returns `result` from every call.
class RecordingLogger : public OvLogger {
public:
    explicit RecordingLogger(int level, int result = 0) : OvLogger(level), result(result) {}
    int Start() override {
        ++starts;
        return result;
    }
    int Stop() override {
        ++stops;
        return result;
    }
    int Log(int messageLevel, const char* text) override {
        received.emplace_back(messageLevel, text);
        return result;
    }

    int result;
    int starts = 0;
    int stops = 0;
    std::vector<std::pair<int, std::string>> received;
};

// Gives the tests access to the clock-independent expansion.
class ExpandingMaster : public OvMasterLogger {
public:
    static std::string Expand(const char* templ, const char* text, const std::tm& when) {
        String expanded(templ);
        Format(expanded, text, when);
        return expanded.chars();
    }
};

std::tm LocalTime(int year, int month, int day, int hour, int minute, int second) {
    std::tm t{};
    t.tm_year = year - 1900;
    t.tm_mon = month - 1;
    t.tm_mday = day;
    t.tm_hour = hour;
    t.tm_min = minute;
    t.tm_sec = second;
    return t;
}

// Every test starts and ends with no master, no queued message and no debug logger.
class LoggerTest : public ::testing::Test {
protected:
    void SetUp() override { Reset(); }
    void TearDown() override {
        Reset();
        OvSetProtocolFilePath(String());
    }
    static void Reset() {
        if (OvApplicationLogger::GetMasterLogger() != nullptr) UninstallOrvoDebugLogger();
        OvApplicationLogger::RegisterMasterLogger(nullptr);
        OvApplicationLogger::DiscardPending();
    }
};

TEST_F(LoggerTest, BaseLoggerDoesNothingAndHasLevelThree) {
    OvLogger logger;
    EXPECT_EQ(logger.GetLevel(), 3);
    EXPECT_EQ(logger.Start(), 0);
    EXPECT_EQ(logger.Stop(), 0);
    EXPECT_EQ(logger.Log(1, "x"), 0);
    logger.SetLevel(-2);
    EXPECT_EQ(logger.GetLevel(), -2);
    EXPECT_EQ(OvOrvoDebugLogger().GetLevel(), 4);
    EXPECT_EQ(OvMasterLogger().GetLevel(), 3);
    EXPECT_STREQ(OvMasterLogger().GetFormat().chars(), "[$hour24:$minute:$second] $mesg");
}

TEST_F(LoggerTest, MessageReachesLoggersWhoseLevelIsAtLeastTheMessageLevel) {
    OvMasterLogger master;
    master.SetFormat("$mesg");
    RecordingLogger level3(3), level4(4), levelMinus1(-1);
    master.AddLogger(&level3);
    master.AddLogger(&level4);
    master.AddLogger(&levelMinus1);

    master.Log(4, "four");
    master.Log(3, "three");
    master.Log(-1, "minus one");
    master.Log(5, "five");

    using Entries = std::vector<std::pair<int, std::string>>;
    EXPECT_EQ(level3.received, (Entries{{3, "three"}, {-1, "minus one"}}));
    EXPECT_EQ(level4.received, (Entries{{4, "four"}, {3, "three"}, {-1, "minus one"}}));
    EXPECT_EQ(levelMinus1.received, (Entries{{-1, "minus one"}}));
}

TEST_F(LoggerTest, MasterLogReportsWhetherAnyLoggerReturnedNonZero) {
    OvMasterLogger master;
    RecordingLogger quiet(3, 0), loud(1, 7);
    master.AddLogger(&quiet);
    EXPECT_EQ(master.Log(2, "a"), 0);
    master.AddLogger(&loud);
    EXPECT_EQ(master.Log(2, "b"), 0);  // `loud` (level 1) is not asked
    EXPECT_EQ(master.Log(1, "c"), 1);
}

TEST_F(LoggerTest, AddingTwiceDeliversTwiceAndSubtractRemovesOneReference) {
    OvMasterLogger master;
    master.SetFormat("$mesg");
    RecordingLogger logger(3);
    master.AddLogger(&logger);
    master.AddLogger(&logger);
    EXPECT_EQ(master.GetLoggerCount(), 2);
    master.Log(1, "m");
    EXPECT_EQ(logger.received.size(), 2u);

    master.SubtractLogger(&logger);
    EXPECT_EQ(master.GetLoggerCount(), 1);
    master.Log(1, "n");
    EXPECT_EQ(logger.received.size(), 3u);

    RecordingLogger stranger(3);
    master.SubtractLogger(&stranger);  // not registered: nothing happens
    EXPECT_EQ(master.GetLoggerCount(), 1);
    master.SubtractLogger(&logger);
    EXPECT_EQ(master.GetLoggerCount(), 0);
    EXPECT_EQ(logger.received.size(), 3u);
}

TEST_F(LoggerTest, StartAndStopReachEveryLoggerAndReportAnyNonZero) {
    OvMasterLogger master;
    EXPECT_EQ(master.Start(), 0);
    EXPECT_EQ(master.Stop(), 0);

    RecordingLogger zero(3, 0), one(3, 1);
    master.AddLogger(&zero);
    EXPECT_EQ(master.Start(), 0);
    master.AddLogger(&one);
    EXPECT_EQ(master.Start(), 1);
    EXPECT_EQ(master.Stop(), 1);
    EXPECT_EQ(zero.starts, 2);
    EXPECT_EQ(one.starts, 1);
    EXPECT_EQ(zero.stops, 1);
    EXPECT_EQ(one.stops, 1);
}

TEST_F(LoggerTest, MessagesLoggedBeforeTheMasterWaitAndArriveInOrder) {
    EXPECT_EQ(OvApplicationLogger::Log(1, String("first")), 1);
    EXPECT_EQ(OvApplicationLogger::Log(4, String("second")), 2);
    EXPECT_EQ(OvApplicationLogger::Log(2, String("third")), 3);
    EXPECT_EQ(OvApplicationLogger::GetPendingCount(), 3);

    OvMasterLogger master;
    master.SetFormat("$mesg");
    RecordingLogger logger(4);
    master.AddLogger(&logger);
    OvApplicationLogger::RegisterMasterLogger(&master);
    EXPECT_EQ(OvApplicationLogger::GetMasterLogger(), &master);
    // Registering alone delivers nothing; the next message brings the queue along.
    EXPECT_TRUE(logger.received.empty());

    EXPECT_EQ(OvApplicationLogger::Log(3, String("fourth")), 0);
    using Entries = std::vector<std::pair<int, std::string>>;
    EXPECT_EQ(logger.received, (Entries{{1, "first"}, {4, "second"}, {2, "third"}, {3, "fourth"}}));
    EXPECT_EQ(OvApplicationLogger::GetPendingCount(), 0);
}

TEST_F(LoggerTest, DestroyedMasterUnregistersItself) {
    {
        OvMasterLogger master;
        OvApplicationLogger::RegisterMasterLogger(&master);
    }
    EXPECT_EQ(OvApplicationLogger::GetMasterLogger(), nullptr);
    EXPECT_EQ(OvApplicationLogger::Log(1, String("queued again")), 1);
}

TEST_F(LoggerTest, FormatReplacesEveryPlaceholder) {
    const std::tm afternoon = LocalTime(2024, 3, 5, 14, 5, 9);
    EXPECT_EQ(ExpandingMaster::Expand(OvMasterLogger::kDefaultFormat, "x", afternoon),
              "[14:05:09] x");
    EXPECT_EQ(ExpandingMaster::Expand("$day.$month.$year $hour12:$minute:$second $ampm $mesg",
                                      "text", afternoon),
              "05.03.2024 02:05:09 PM text");
    EXPECT_EQ(ExpandingMaster::Expand("$second$second-$mesg$mesg", "m", afternoon), "0909-mm");
    EXPECT_EQ(ExpandingMaster::Expand("no placeholders $ here $foo", "m", afternoon),
              "no placeholders $ here $foo");
    EXPECT_EQ(ExpandingMaster::Expand("$$day$", "m", afternoon), "$05$");
    EXPECT_EQ(ExpandingMaster::Expand("", "m", afternoon), "");
    EXPECT_EQ(ExpandingMaster::Expand("$mesg", nullptr, afternoon), "");
    // The year is printed with "%4d": blank-padded, not zero-padded.
    EXPECT_EQ(ExpandingMaster::Expand("$year", "", LocalTime(999, 1, 1, 0, 0, 0)), " 999");
}

TEST_F(LoggerTest, FormatTwelveHourClock) {
    const char* templ = "$hour12 $ampm";
    EXPECT_EQ(ExpandingMaster::Expand(templ, "", LocalTime(2024, 1, 1, 0, 30, 0)), "00 AM");
    EXPECT_EQ(ExpandingMaster::Expand(templ, "", LocalTime(2024, 1, 1, 11, 59, 0)), "11 AM");
    EXPECT_EQ(ExpandingMaster::Expand(templ, "", LocalTime(2024, 1, 1, 12, 30, 0)), "12 PM");
    EXPECT_EQ(ExpandingMaster::Expand(templ, "", LocalTime(2024, 1, 1, 13, 0, 0)), "01 PM");
    EXPECT_EQ(ExpandingMaster::Expand(templ, "", LocalTime(2024, 1, 1, 23, 0, 0)), "11 PM");
}

TEST_F(LoggerTest, InsertedMessageIsNeverScannedAgain) {
    const std::tm t = LocalTime(2024, 12, 24, 8, 0, 0);
    EXPECT_EQ(ExpandingMaster::Expand("<$mesg>", "on $day at $hour24 ($mesg)", t),
              "<on $day at $hour24 ($mesg)>");
    // A placeholder completed by inserted text is not one either.
    EXPECT_EQ(ExpandingMaster::Expand("$mesgday", "$", t), "$day");
}

TEST_F(LoggerTest, MasterStampsMessagesWithThePresentLocalTime) {
    OvMasterLogger master;
    master.SetFormat("$year-$month-$day $hour24:$minute:$second|$mesg");
    RecordingLogger logger(3);
    master.AddLogger(&logger);

    // The clock may tick between reading it here and inside Log: accept either neighbour.
    std::vector<std::string> candidates;
    const std::time_t before = std::time(nullptr);
    master.Log(1, "now");
    const std::time_t after = std::time(nullptr);
    for (std::time_t t = before; t <= after; ++t) {
        std::tm local{};
        ASSERT_TRUE(OvGetLocalTime(t, local));
        char text[64];
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S|now", &local);
        candidates.push_back(text);
    }
    ASSERT_EQ(logger.received.size(), 1u);
    EXPECT_NE(std::find(candidates.begin(), candidates.end(), logger.received[0].second),
              candidates.end())
        << logger.received[0].second;
}

class DebugLoggerTest : public LoggerTest {
protected:
    void SetUp() override {
        LoggerTest::SetUp();
        protocol = dir.file("protocol.log");
        OvSetProtocolFilePath(String(protocol.c_str()));
        master.SetFormat("$mesg");
    }
    void TearDown() override { LoggerTest::TearDown(); }

    test::TempDir dir;
    std::string protocol;
    OvMasterLogger master;
};

TEST_F(DebugLoggerTest, InstallWithoutMasterDoesNothing) {
    InstallOrvoDebugLogger();
    EXPECT_FALSE(IsOrvoDebugLoggerInstalled());
    EXPECT_FALSE(std::filesystem::exists(protocol));
    EXPECT_EQ(OvApplicationLogger::GetPendingCount(), 0);
}

TEST_F(DebugLoggerTest, ProtocolRecordsInstallMessagesAndUninstall) {
    OvApplicationLogger::RegisterMasterLogger(&master);
    InstallOrvoDebugLogger();
    ASSERT_TRUE(IsOrvoDebugLoggerInstalled());
    InstallOrvoDebugLogger();  // a second install changes nothing
    EXPECT_EQ(master.GetLoggerCount(), 1);
    EXPECT_EQ(test::ReadWholeFile(protocol), "4 : InstallOrvoDebugLogger()\n");

    OvApplicationLogger::Log(2, String("measured 12 points"));
    OvApplicationLogger::Log(5, String("too chatty for the protocol"));
    OvApplicationLogger::Log(4, String("level four still written"));
    UninstallOrvoDebugLogger();
    EXPECT_FALSE(IsOrvoDebugLoggerInstalled());
    EXPECT_EQ(master.GetLoggerCount(), 0);
    OvApplicationLogger::Log(1, String("after uninstall"));

    EXPECT_EQ(test::ReadWholeFile(protocol),
              "4 : InstallOrvoDebugLogger()\n"
              "2 : measured 12 points\n"
              "4 : level four still written\n"
              "4 : UninstallOrvoDebugLogger()\n");
    UninstallOrvoDebugLogger();  // nothing installed: nothing happens
    EXPECT_FALSE(IsOrvoDebugLoggerInstalled());
}

TEST_F(DebugLoggerTest, ProtocolIsAppendedAndClosedAfterEachMessage) {
    test::WriteWholeFile(protocol, "earlier session\n");
    OvOrvoDebugLogger logger;
    EXPECT_EQ(logger.Log(3, "one"), 0);
    // Closed after the message: the text is on disk and the file can be removed at once.
    EXPECT_EQ(test::ReadWholeFile(protocol), "earlier session\n3 : one\n");
    std::filesystem::remove(protocol);
    EXPECT_EQ(logger.Log(-7, "two"), 0);
    EXPECT_EQ(test::ReadWholeFile(protocol), "-7 : two\n");
}

TEST_F(DebugLoggerTest, ProtocolLinesCarryTheMasterExpansion) {
    master.SetFormat("[$mesg]");
    OvApplicationLogger::RegisterMasterLogger(&master);
    InstallOrvoDebugLogger();
    OvApplicationLogger::Log(1, String("$day stays"));
    EXPECT_EQ(test::ReadWholeFile(protocol), "4 : [InstallOrvoDebugLogger()]\n1 : [$day stays]\n");
}

TEST_F(DebugLoggerTest, UnwritableProtocolIsIgnored) {
    OvSetProtocolFilePath(String(dir.file("missing-dir/protocol.log").c_str()));
    OvOrvoDebugLogger logger;
    EXPECT_EQ(logger.Log(1, "lost"), 0);
    EXPECT_FALSE(std::filesystem::exists(dir.file("missing-dir")));
}

class DbgprintfTest : public ::testing::Test {
protected:
    void SetUp() override {
        OvSetDebugOutputSink([this](const char* text) { received.push_back(text); });
    }
    void TearDown() override { OvSetDebugOutputSink(OvDebugOutputSink()); }

    std::vector<std::string> received;
};

TEST_F(DbgprintfTest, FormatsLikePrintf) {
    EXPECT_EQ(dbgprintf("%s=%d (%.2f)\n", "n", 42, 1.005), 12);
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0], "n=42 (1.00)\n");
    EXPECT_EQ(dbgprintf("%s", ""), 0);
    EXPECT_EQ(received.back(), "");
}

TEST_F(DbgprintfTest, LongTextIsCutAtTheBufferSize) {
    const std::string fits(kDbgprintfBufferSize - 1, 'a');
    EXPECT_EQ(dbgprintf("%s", fits.c_str()), 1499);
    EXPECT_EQ(received.back(), fits);

    const std::string oneTooMany(kDbgprintfBufferSize, 'b');
    EXPECT_EQ(dbgprintf("%s", oneTooMany.c_str()), 1499);
    EXPECT_EQ(received.back(), std::string(1499, 'b'));

    const std::string huge(100000, 'c');
    EXPECT_EQ(dbgprintf("<%s>", huge.c_str()), 1499);
    EXPECT_EQ(received.back(), "<" + std::string(1498, 'c'));
    EXPECT_EQ(received.size(), 3u);
}

TEST(OvDifftimeTest, ValueIsTheDifferenceOfTheTimesOfDay) {
    OvSystemTime start;
    start.wYear = 2024;
    start.wHour = 10;
    start.wMinute = 0;
    start.wSecond = 0;
    start.wMilliseconds = 250;
    OvSystemTime stop = start;
    stop.wMinute = 1;
    stop.wSecond = 30;
    stop.wMilliseconds = 500;
    stop.wDay = 17;  // the date does not count

    const OvDifftime measured(start, stop);
    EXPECT_FALSE(measured.IsRunning());
    EXPECT_DOUBLE_EQ(measured.Value(), 90.25);
    EXPECT_DOUBLE_EQ(OvDifftime::SecondsOfDay(stop), 10 * 3600 + 60 + 30.5);

    // Across UTC midnight the value is negative, as it always was.
    OvSystemTime lateStart;
    lateStart.wHour = 23;
    lateStart.wMinute = 59;
    lateStart.wSecond = 59;
    OvSystemTime earlyStop;
    earlyStop.wSecond = 1;
    EXPECT_DOUBLE_EQ(OvDifftime(lateStart, earlyStop).Value(), 1.0 - 86399.0);

    OvDifftime copy(measured);
    EXPECT_DOUBLE_EQ(copy.Value(), 90.25);
    OvDifftime assigned;
    assigned = measured;
    EXPECT_FALSE(assigned.IsRunning());
    EXPECT_DOUBLE_EQ(assigned.Value(), 90.25);
}

TEST(OvDifftimeTest, RunsFromConstructionUntilStop) {
    OvDifftime watch;
    EXPECT_TRUE(watch.IsRunning());
    // A running stopwatch reports against the last stop time, which is still cleared.
    EXPECT_DOUBLE_EQ(watch.Value(), -OvDifftime::SecondsOfDay(watch.GetStartTime()));
    watch.Stop();
    EXPECT_FALSE(watch.IsRunning());
    EXPECT_DOUBLE_EQ(watch.Value(), OvDifftime::SecondsOfDay(watch.GetStopTime()) -
                                        OvDifftime::SecondsOfDay(watch.GetStartTime()));
    watch.Start();
    EXPECT_TRUE(watch.IsRunning());
}

}  // namespace
}  // namespace orvo
