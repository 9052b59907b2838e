// What an interrupted write leaves behind for the project file, the camera file, reseau files and
// the digital camera file: a writer killed in the middle of a large file, or a disk that fills
// up, leaves the previous file byte for byte as it was, and no half-written file next to it
// after a failed write.
#ifndef _WIN32

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "child_process.h"
#include "orvo/model/camera_list.h"
#include "orvo/model/photo.h"
#include "orvo/model/photo_list.h"
#include "orvo/model/project_file.h"
#include "orvo/model/reseau_file.h"
#include "orvo/model/reseau_list.h"
#include "orvo/textfile/writer.h"
#include "temp_dir.h"

namespace orvo {
namespace {

using test::KilledWrite;
using test::ReadWholeFile;
using test::TempDir;

// A writer of one kind of file, with data of a chosen size: `Write(name, n, variant)` writes
// a file of about n records whose values depend on `variant`, so two versions differ.
struct FileKind {
    const char* name;
    const char* fileName;
    std::function<void(const String&, int, int)> write;
};

// Names the writer in test output instead of dumping the object's bytes.
[[maybe_unused]] void PrintTo(const FileKind& kind, std::ostream* out) {
    *out << kind.name;
}

void WriteProject(const String& name, int photos, int variant) {
    OvPhotoList list;
    for (int i = 1; i <= photos; ++i) {
        auto* photo = new OvPhoto(static_cast<unsigned>(i),
                                  String(("photo_" + std::to_string(i) + ".tif").c_str()));
        photo->SetComment(String(("variant " + std::to_string(variant)).c_str()));
        list.Add(photo);
    }
    OvWriteProjectFile(name, list);
}

void WriteCameras(const String& name, int cameras, int variant) {
    OvCameraList list;
    for (int i = 1; i <= cameras; ++i) {
        list.Add(OvCamera(static_cast<unsigned>(i), 24.0 + variant, 0.01 * i, -0.02, 1e-5, 0.0, 0.0,
                          "body"));
    }
    list.WriteFile(name);
}

void WriteReseau(const String& name, int crosses, int variant) {
    OvReseauFile file;
    for (int i = 1; i <= crosses; ++i) {
        file.GetCrossList().Add(
            OvPoint(static_cast<std::uint32_t>(i), 0.5 * i + variant, -0.25 * i, 0.0, 0));
    }
    file.WriteFile(name);
}

void WriteDigitalCameras(const String& name, int entries, int variant) {
    OvReseaufileList list;
    for (int i = 1; i <= entries; ++i) {
        auto* entry = new OvReseauFile();
        entry->SetSubId(static_cast<std::uint32_t>(i));
        entry->Set(("Body " + std::to_string(i)).c_str(), ("v" + std::to_string(variant)).c_str(),
                   4000 + variant, 3000, 36.0, 24.0);
        entry->GenerateDummyData();
        list.Add(entry);
    }
    list.WriteDigitalCameraFormat(name);
}

const FileKind kKinds[] = {
    {"project", "survey.pro", WriteProject},
    {"cameras", "cameras.cam", WriteCameras},
    {"reseau", "metric.res", WriteReseau},
    {"digital_cameras", "cameras.dres", WriteDigitalCameras},
};

// The file sizes the tests work with: the previous file is small, the replacement well past
// the limits below.
constexpr int kSmall = 3;
constexpr int kLarge = 4000;
constexpr std::size_t kLimit = 16 * 1024;

class ModelFileCrashTest : public ::testing::TestWithParam<FileKind> {
protected:
    void SetUp() override {
        OvWriterReset();
        target_ = dir_.file(GetParam().fileName);
        GetParam().write(Target(), kSmall, 1);
        previous_ = ReadWholeFile(target_);
        ASSERT_FALSE(previous_.empty());
        // The replacement is large enough that both limits cut it off in the middle.
        const std::string scratch = dir_.file("scratch");
        GetParam().write(String(scratch.c_str()), kLarge, 2);
        ASSERT_GT(ReadWholeFile(scratch).size(), 4 * kLimit);
        std::filesystem::remove(scratch);
    }
    void TearDown() override { OvWriterReset(); }

    String Target() const { return String(target_.c_str()); }
    std::vector<std::string> Entries() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(dir_.path()))
            names.push_back(entry.path().filename().string());
        return names;
    }

    TempDir dir_;
    std::string target_;
    std::string previous_;
};

TEST_P(ModelFileCrashTest, WriterKilledMidwayLeavesThePreviousFile) {
    const KilledWrite outcome =
        test::KillWriterMidway(kLimit, [&] { GetParam().write(Target(), kLarge, 2); });
    ASSERT_EQ(outcome, KilledWrite::kKilledMidway);
    EXPECT_EQ(ReadWholeFile(target_), previous_);

    // The next write is not disturbed by what the killed one left.
    GetParam().write(Target(), kLarge, 3);
    EXPECT_NE(ReadWholeFile(target_), previous_);
    EXPECT_GT(ReadWholeFile(target_).size(), 4 * kLimit);
}

TEST_P(ModelFileCrashTest, FullDiskLeavesThePreviousFileAndNothingElse) {
    const std::optional<std::int64_t> finished = test::RunOnFullDisk(kLimit, [&] {
        GetParam().write(Target(), kLarge, 2);
        return std::int64_t{1};
    });
    ASSERT_TRUE(finished.has_value());
    EXPECT_EQ(ReadWholeFile(target_), previous_);
    EXPECT_EQ(Entries(), std::vector<std::string>{GetParam().fileName});
}

INSTANTIATE_TEST_SUITE_P(Writers, ModelFileCrashTest, ::testing::ValuesIn(kKinds),
                         [](const ::testing::TestParamInfo<FileKind>& info) {
                             return std::string(info.param.name);
                         });

}  // namespace
}  // namespace orvo

#endif  // _WIN32
