#include "orvo/foundation/platform.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

namespace orvo {
namespace {

// Sets or removes an environment variable for one test and puts the old value back afterwards.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) saved_ = old;
        Set(value);
    }
    ~ScopedEnvironment() { Set(saved_ ? saved_->c_str() : nullptr); }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    void Set(const char* value) {
#ifdef _WIN32
        _putenv_s(name_.c_str(), value != nullptr ? value : "");
#else
        if (value != nullptr) {
            setenv(name_.c_str(), value, 1);
        } else {
            unsetenv(name_.c_str());
        }
#endif
    }

    std::string name_;
    std::optional<std::string> saved_;
};

TEST(PlatformTest, ProtocolFileDefaultsToTheRoot) {
#ifdef _WIN32
    EXPECT_STREQ(OvGetDefaultProtocolFilePath().chars(), "\\OrvoProtokoll.log");
#else
    EXPECT_STREQ(OvGetDefaultProtocolFilePath().chars(), "/OrvoProtokoll.log");
#endif
    ScopedEnvironment unset("ORVO_PROTOCOL_FILE", nullptr);
    EXPECT_STREQ(OvGetProtocolFilePath().chars(), OvGetDefaultProtocolFilePath().chars());
}

TEST(PlatformTest, EnvironmentOverridesDefaultAndSetterOverridesBoth) {
    ScopedEnvironment fromEnvironment("ORVO_PROTOCOL_FILE", "from-env.log");
    EXPECT_STREQ(OvGetProtocolFilePath().chars(), "from-env.log");

    OvSetProtocolFilePath(String("from-setter.log"));
    EXPECT_STREQ(OvGetProtocolFilePath().chars(), "from-setter.log");

    OvSetProtocolFilePath(String());
    EXPECT_STREQ(OvGetProtocolFilePath().chars(), "from-env.log");

    ScopedEnvironment emptyEnvironment("ORVO_PROTOCOL_FILE", "");
    EXPECT_STREQ(OvGetProtocolFilePath().chars(), OvGetDefaultProtocolFilePath().chars());
}

TEST(PlatformTest, DebugSinkCanBeReplacedAndRestored) {
    std::vector<std::string> first;
    std::vector<std::string> second;
    EXPECT_FALSE(OvSetDebugOutputSink([&](const char* t) { first.push_back(t); }));
    OvOutputDebugString("one");
    OvOutputDebugString(nullptr);  // ignored

    OvDebugOutputSink previous = OvSetDebugOutputSink([&](const char* t) { second.push_back(t); });
    ASSERT_TRUE(previous);
    OvOutputDebugString("two");
    previous("three");  // the old sink is still usable

    EXPECT_TRUE(OvSetDebugOutputSink(OvDebugOutputSink()));
    OvOutputDebugString("to the default sink");

    EXPECT_EQ(first, (std::vector<std::string>{"one", "three"}));
    EXPECT_EQ(second, (std::vector<std::string>{"two"}));
}

TEST(PlatformTest, SystemTimeIsTheUtcTimeOfDay) {
    // Compare with the C library's UTC conversion; retry if a second boundary is crossed.
    for (int attempt = 0; attempt < 5; ++attempt) {
        const std::time_t before = std::time(nullptr);
        OvSystemTime now;
        OvGetSystemTime(now);
        const std::time_t after = std::time(nullptr);
        if (before != after) continue;

        std::tm utc{};
#ifdef _WIN32
        gmtime_s(&utc, &before);
#else
        gmtime_r(&before, &utc);
#endif
        EXPECT_EQ(now.wYear, utc.tm_year + 1900);
        EXPECT_EQ(now.wMonth, utc.tm_mon + 1);
        EXPECT_EQ(now.wDay, utc.tm_mday);
        EXPECT_EQ(now.wDayOfWeek, utc.tm_wday);
        EXPECT_EQ(now.wHour, utc.tm_hour);
        EXPECT_EQ(now.wMinute, utc.tm_min);
        EXPECT_EQ(now.wSecond, utc.tm_sec);
        EXPECT_LT(now.wMilliseconds, 1000);
        return;
    }
    FAIL() << "the clock kept crossing second boundaries";
}

TEST(PlatformTest, LocalTimeMatchesTheCLibrary) {
    const std::time_t when = 1700000000;  // 2023-11-14 22:13:20 UTC
    std::tm ours{};
    ASSERT_TRUE(OvGetLocalTime(when, ours));
    const std::tm theirs = *std::localtime(&when);
    EXPECT_EQ(ours.tm_year, theirs.tm_year);
    EXPECT_EQ(ours.tm_mon, theirs.tm_mon);
    EXPECT_EQ(ours.tm_mday, theirs.tm_mday);
    EXPECT_EQ(ours.tm_hour, theirs.tm_hour);
    EXPECT_EQ(ours.tm_min, theirs.tm_min);
    EXPECT_EQ(ours.tm_sec, 20);
    const std::time_t now = OvGetCalendarTime();
    EXPECT_GE(now, when);
}

}  // namespace
}  // namespace orvo
