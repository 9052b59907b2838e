#include "orvo/services/progress.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orvo/services/environment.h"

namespace {

using orvo::Link;
using orvo::OvProgressBarRouter;

// A host display: records what it was asked to show, read back through the router's getters as
// a real display would.
class FakeDisplay : public orvo::LinkHdl {
public:
    std::int32_t OnShow(void* arg) {
        args.push_back(arg);
        events.push_back("show " + std::string(OvProgressBarRouter::GetProgressBarText().chars()) +
                         " " + std::to_string(OvProgressBarRouter::GetProgressBarLower()) + ".." +
                         std::to_string(OvProgressBarRouter::GetProgressBarUpper()));
        return 11;
    }
    std::int32_t OnPos(void* arg) {
        args.push_back(arg);
        events.push_back("pos " + std::to_string(OvProgressBarRouter::GetProgressBarPos()));
        return 22;
    }
    std::int32_t OnHide(void* arg) {
        args.push_back(arg);
        events.push_back("hide");
        return 33;
    }

    std::vector<std::string> events;
    std::vector<void*> args;
};

// Puts back whatever links were registered before the test.
class ProgressRouting : public ::testing::Test {
protected:
    void TearDown() override {
        OvProgressBarRouter::RegisterShowProgressBarLnk(Link());
        OvProgressBarRouter::RegisterSetProgressBarPosLnk(Link());
        OvProgressBarRouter::RegisterHideProgressBarLnk(Link());
    }
};

// Runs first in this program (and in a process of its own under ctest), before anything stored
// a value.
TEST_F(ProgressRouting, InitialValues) {
    EXPECT_EQ(OvProgressBarRouter::GetProgressBarLower(), 0);
    EXPECT_EQ(OvProgressBarRouter::GetProgressBarUpper(), 100);
    EXPECT_EQ(OvProgressBarRouter::GetProgressBarPos(), 0);
    EXPECT_EQ(OvProgressBarRouter::GetProgressBarText().length(), 0);
    EXPECT_EQ(orvo::OvSystemEnviroment::GetOperatingSystem(), orvo::eOperatingSystemUnknown);
    EXPECT_EQ(orvo::OvSystemEnviroment::GetRunningMode(), orvo::eOrvoRunningModeStandard);
}

TEST_F(ProgressRouting, WithoutLinksValuesAreStoredAndZeroReturned) {
    EXPECT_EQ(OvProgressBarRouter::ShowProgressBar("x", 0, 10), 0);
    EXPECT_STREQ(OvProgressBarRouter::GetProgressBarText().chars(), "x");
    EXPECT_EQ(OvProgressBarRouter::GetProgressBarLower(), 0);
    EXPECT_EQ(OvProgressBarRouter::GetProgressBarUpper(), 10);
    EXPECT_EQ(OvProgressBarRouter::SetProgressBarPos(7), 0);
    EXPECT_EQ(OvProgressBarRouter::GetProgressBarPos(), 7);
    EXPECT_EQ(OvProgressBarRouter::HideProgressBar(), 0);
    // Hiding keeps the values.
    EXPECT_EQ(OvProgressBarRouter::GetProgressBarPos(), 7);
    EXPECT_EQ(OvProgressBarRouter::GetProgressBarUpper(), 10);
}

TEST_F(ProgressRouting, HandlersAreCalledAfterValuesAreStored) {
    FakeDisplay display;
    OvProgressBarRouter::RegisterShowProgressBarLnk(Link(&display, &FakeDisplay::OnShow));
    OvProgressBarRouter::RegisterSetProgressBarPosLnk(Link(&display, &FakeDisplay::OnPos));
    OvProgressBarRouter::RegisterHideProgressBarLnk(Link(&display, &FakeDisplay::OnHide));

    EXPECT_EQ(OvProgressBarRouter::ShowProgressBar("Reading", -5, 250), 11);
    EXPECT_EQ(OvProgressBarRouter::SetProgressBarPos(42), 22);
    EXPECT_EQ(OvProgressBarRouter::HideProgressBar(), 33);
    EXPECT_EQ(display.events, (std::vector<std::string>{"show Reading -5..250", "pos 42", "hide"}));
    EXPECT_EQ(display.args, (std::vector<void*>{nullptr, nullptr, nullptr}));
}

TEST_F(ProgressRouting, RegisteringReturnsThePreviousLink) {
    FakeDisplay first, second;
    const Link firstShow(&first, &FakeDisplay::OnShow);
    const Link secondShow(&second, &FakeDisplay::OnShow);
    EXPECT_FALSE(OvProgressBarRouter::RegisterShowProgressBarLnk(firstShow).IsSet());
    EXPECT_TRUE(OvProgressBarRouter::RegisterShowProgressBarLnk(secondShow) == firstShow);

    OvProgressBarRouter::ShowProgressBar("a", 0, 1);
    EXPECT_TRUE(first.events.empty());
    EXPECT_EQ(second.events.size(), 1U);

    // Restoring the returned link brings the first display back.
    const Link previous = OvProgressBarRouter::RegisterShowProgressBarLnk(firstShow);
    EXPECT_TRUE(previous == secondShow);
    OvProgressBarRouter::ShowProgressBar("b", 0, 1);
    EXPECT_EQ(first.events, std::vector<std::string>{"show b 0..1"});

    const Link pos(&first, &FakeDisplay::OnPos);
    const Link hide(&first, &FakeDisplay::OnHide);
    EXPECT_FALSE(OvProgressBarRouter::RegisterSetProgressBarPosLnk(pos).IsSet());
    EXPECT_TRUE(OvProgressBarRouter::RegisterSetProgressBarPosLnk(Link()) == pos);
    EXPECT_FALSE(OvProgressBarRouter::RegisterHideProgressBarLnk(hide).IsSet());
    EXPECT_TRUE(OvProgressBarRouter::RegisterHideProgressBarLnk(Link()) == hide);
}

TEST(SystemEnvironment, StoresAnyValue) {
    using orvo::OvSystemEnviroment;
    const orvo::eOperatingSystem oldSystem = OvSystemEnviroment::GetOperatingSystem();
    const orvo::eOrvoRunningMode oldMode = OvSystemEnviroment::GetRunningMode();
    OvSystemEnviroment::SetOperatingSystem(orvo::eOperatingSystemLinux);
    OvSystemEnviroment::SetRunningMode(static_cast<orvo::eOrvoRunningMode>(77));
    EXPECT_EQ(OvSystemEnviroment::GetOperatingSystem(), orvo::eOperatingSystemLinux);
    EXPECT_EQ(static_cast<int>(OvSystemEnviroment::GetRunningMode()), 77);
    OvSystemEnviroment::SetOperatingSystem(oldSystem);
    OvSystemEnviroment::SetRunningMode(oldMode);
}

}  // namespace
