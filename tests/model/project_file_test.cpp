// Project files: the exact text, a byte-exact round trip of a thousand photos, damaged files
// read with their problems reported by line, files on disk, and the problem log.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "orvo/model/project_file.h"
#include "orvo/services/logger.h"
#include "orvo/textfile/writer.h"
#include "temp_dir.h"

namespace orvo {
namespace {

const std::string kHeader = "; \n; ORVOMETRIC 10 Version 6.715 Project File\n; \n\n";

std::string Written(const OvPhotoList& photos) {
    std::ostringstream out;
    OvWriteProject(out, photos);
    return out.str();
}

// What the photo writes on its own at the top level, one level deeper: every line end is
// followed by one more indentation unit.
std::string Indented(const OvPhoto& photo) {
    OvWriterReset();
    std::ostringstream out;
    photo.Write(out);
    std::string indented;
    for (char c : out.str()) {
        indented += c;
        if (c == '\n') indented += "    ";
    }
    return indented;
}

TEST(ProjectFileWrite, HeaderAndPhotoBlocks) {
    OvPhotoList empty;
    EXPECT_EQ(Written(empty), kHeader);

    OvPhotoList photos;
    photos.Add(new OvPhoto(1, "a.tif"));
    OvPhoto* second = photos.Add(new OvPhoto(2, "b.tif"));
    second->SetType(eOvPhotoDigital);
    const std::string expected = kHeader + "PHOTO\n{\n    " + Indented(*photos.First()) +
                                 "\n}\n\nPHOTO\n{\n    " + Indented(*second) + "\n}\n\n";
    // The writer starts at the top level whatever level the last writer left.
    std::ostringstream out;
    out << OvTabPlus << OvTabPlus;
    OvWriteProject(out, photos);
    EXPECT_EQ(out.str(), expected);
    // The start of the first block, spelled out.
    const std::string start = "PHOTO\n{\n    PHOTOID         {    1 \"a.tif\"}\n    COMMENT     ";
    EXPECT_EQ(expected.substr(kHeader.size(), start.size()), start);
}

// A thousand photos that between them use every field the record holds.
OvPhotoList ManyPhotos() {
    OvPhotoList photos;
    for (unsigned i = 1; i <= 1000; ++i) {
        auto* p =
            new OvPhoto(i * 7919u % 100003u, String(("img_" + std::to_string(i) + ".tif").c_str()));
        p->SetComment(
            String(("facade " + std::to_string(i % 13) + "; take " + std::to_string(i)).c_str()));
        p->SetDigPictPage(static_cast<int>(i % 4));
        p->SetDigPictRot(static_cast<int>(i % 3));
        p->SetType(i % 2 == 0 ? eOvPhotoDigital : eOvPhotoAnalog);
        p->SetDigitizer(i % 5 == 0 ? 4000000000u + i : i % 7);
        if (i % 3 == 0) p->GetFlag().SetFlag(kOvPhotoFlagCheckActive);
        p->SetActiveFlag(static_cast<int>(i % 3));
        p->SetRotation(static_cast<int>(i % 4) * 90 - 180);
        p->SetScale(1.0 / (i + 0.5));
        p->SetDigiRegion(OvRegion(-0.1 * i, 0.0, 36.0 + i / 7.0, 24.0 - i / 9.0));
        p->SetCamera(OvCamera(i % 9, 24.0 + i / 1000.0, 0.001 * (i % 17) - 0.008, -0.0021,
                              -1.5e-4 / i, 3.25e-7, 9.5, "body"));
        p->SetReseauData(OvReseauDataDesc("grid.res", i % 4));
        OvTrafo2d pre;
        pre.SetType(static_cast<eOvTrafo2DType>(i % 5));
        for (int k = 0; k < 20; ++k)
            pre.SetParam(k, std::sin(i * 0.37 + k) * std::pow(10.0, k % 7 - 3));
        p->SetReseauPreTrafo(pre);
        OvTrafo2d main;
        main.SetType(static_cast<eOvTrafo2DType>((i + 2) % 5));
        for (int k = 0; k < 20; ++k)
            main.SetParam(k, std::cos(i * 1.7 - k) / (k + 1));
        p->SetReseauMainTrafo(main);
        if (main.GetType() == eOvTrafo2DPolynomial) p->SetPolyInvTrafo(main);
        p->SetScreenPos(OvPosition(i * 0.25, -(i * 0.5)));
        p->SetScreenScale(static_cast<int>(i % 6));
        photos.Add(p);
    }
    return photos;
}

TEST(ProjectFileRoundTrip, AThousandPhotosByteExact) {
    const OvPhotoList photos = ManyPhotos();
    const std::string first = Written(photos);

    OvPhotoList read;
    OvProjectFileErrors errors;
    std::istringstream in(first);
    EXPECT_EQ(OvReadProject(in, "many.pro", read, &errors), 1000);
    EXPECT_TRUE(errors.empty()) << (errors.empty() ? "" : errors.front().Format().chars());
    ASSERT_EQ(read.Count(), 1000);
    EXPECT_EQ(Written(read), first);

    // Spot checks on what was read.
    const OvPhoto* last = read.Last();
    EXPECT_EQ(last->GetId(), 1000u * 7919u % 100003u);
    EXPECT_STREQ(last->GetName().chars(), "img_1000.tif");
    EXPECT_EQ(last->GetDigitizerId(), 4000001000u);
    EXPECT_TRUE(last->IsDigital());
    EXPECT_EQ(last->GetReseauMainTrafo().GetType(), eOvTrafo2DAffin);  // (1000 + 2) % 5
    EXPECT_EQ(read.Get(996)->GetReseauPolyInv().GetType(), eOvTrafo2DPolynomial);
    EXPECT_EQ(last->GetScreenPos().GetY(), -500.0);
    EXPECT_EQ(read.Get(2)->GetFlag().GetFlag(), kOvPhotoFlagCheckActive);
}

TEST(ProjectFileRead, DamagedFileKeepsThePhotosReadAndReportsByLine) {
    const std::string text =
        "; a damaged project\n"                   // 1
        "PHOTO { PHOTOID { 1 \"a\" } }\n"         // 2
        "FOO 12\n"                                // 3
        "BAR { x { y } }\n"                       // 4
        "PHOTO {\n"                               // 5
        "  PHOTOID { 2 \"b\" }\n"                 // 6
        "  MAINRESTRAFO { 1 1 2 }\n"              // 7
        "  PRERESTRAFO { abc 1 }\n"               // 8
        "  POLYRESINVTRAFO { 42 }\n"              // 9
        "  UNKNOWN 5 ORIENTED 0\n"                // 10
        "  COMMENT \"never closed\n"              // 11
        "  STATE 0\n"                             // 12
        "}\n"                                     // 13
        "PHOTO 7\n"                               // 14
        "\"stray\" }\n"                           // 15
        "PHOTO { PHOTOID { 3 \"c\" } STATE 0\n";  // 16
    OvPhotoList photos;
    OvProjectFileErrors errors;
    std::istringstream in(text);
    EXPECT_EQ(OvReadProject(in, "damaged.pro", photos, &errors), 2);
    ASSERT_EQ(photos.Count(), 2);
    EXPECT_EQ(photos.First()->GetId(), 1u);
    const OvPhoto* b = photos.Last();
    EXPECT_EQ(b->GetId(), 2u);
    EXPECT_EQ(b->GetReseauMainTrafo().GetType(), eOvTrafo2DHelmert);
    EXPECT_EQ(b->GetReseauMainTrafo().GetParam(1), 2.0);
    EXPECT_EQ(b->GetReseauPreTrafo().GetType(), eOvTrafo2DNone);
    EXPECT_EQ(static_cast<int>(b->GetReseauPolyInv().GetType()), 42);
    EXPECT_EQ(b->GetActiveFlag(), 0);

    std::vector<std::string> formatted;
    for (const OvProjectFileError& e : errors)
        formatted.emplace_back(e.Format().chars());
    const std::vector<std::string> expected = {
        "Line 000003: unknown keyword \"FOO\"",
        "Line 000004: unknown keyword \"BAR\"",
        "Line 000007: transformation: the block ends before all parameters",
        "Line 000008: PRERESTRAFO: a value of another kind is expected",
        "Line 000009: transformation: unknown type code",
        "Line 000010: unknown keyword \"UNKNOWN\"",
        "Line 000011: ParserErrorUnterminatedString",
        "Line 000014: PHOTO: a block is expected",
        "Line 000015: a keyword is expected",
        "Line 000016: PHOTO: the block is cut off by the end of the file; the photo is not kept",
    };
    EXPECT_EQ(formatted, expected);
    EXPECT_EQ(errors[6].GetStatus(), ParserErrorUnterminatedString);
    EXPECT_EQ(errors[0].GetStatus(), ParserErrorNotSpecifiedToken);
    EXPECT_EQ(errors[0].GetLine(), 3u);
}

TEST(ProjectFileRead, AppendsToTheList) {
    OvPhotoList photos;
    photos.Add(new OvPhoto(99));
    std::istringstream in("PHOTO { PHOTOID { 1 \"a\" } }\nPHOTO { PHOTOID { 2 \"b\" } }\n");
    EXPECT_EQ(OvReadProject(in, "x", photos), 2);
    ASSERT_EQ(photos.Count(), 3);
    EXPECT_EQ(photos.First()->GetId(), 99u);
    EXPECT_EQ(photos.Last()->GetId(), 2u);
}

TEST(ProjectFileDisk, WriteAndReadAFile) {
    test::TempDir dir;
    const String name(dir.file("facade.pro").c_str());
    const OvPhotoList photos = ManyPhotos();
    ASSERT_TRUE(OvWriteProjectFile(name, photos));
    EXPECT_EQ(test::ReadWholeFile(name.chars()), Written(photos));

    OvPhotoList read;
    OvProjectFileErrors errors;
    EXPECT_EQ(OvReadProjectFile(name, read, &errors), 1000);
    EXPECT_TRUE(errors.empty());
    EXPECT_EQ(Written(read), Written(photos));

    // A file that is not there: one stream error, no photos.
    OvPhotoList none;
    errors.emplace_back();  // emptied by the read
    EXPECT_EQ(OvReadProjectFile(String(dir.file("missing.pro").c_str()), none, &errors), 0);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].GetStatus(), ParserErrorStream);
    EXPECT_EQ(none.Count(), 0);

    // A directory that is not there: nothing is written.
    EXPECT_FALSE(OvWriteProjectFile(String(dir.file("no/such/dir.pro").c_str()), photos));
}

// The example of the README is what the writer writes: it reads without a problem and writes
// back to the same text.
TEST(ProjectFileReadme, ExampleReadsAndWritesBack) {
    const std::string readme = test::ReadWholeFile(std::string(ORVO_SOURCE_DIR) + "/README.md");
    const std::size_t section = readme.find("## Project files");
    ASSERT_NE(section, std::string::npos);
    const std::size_t open = readme.find("```\n", section);
    ASSERT_NE(open, std::string::npos);
    const std::size_t close = readme.find("```\n", open + 4);
    ASSERT_NE(close, std::string::npos);
    const std::string example = readme.substr(open + 4, close - open - 4);

    OvPhotoList photos;
    OvProjectFileErrors errors;
    std::istringstream in(example);
    EXPECT_EQ(OvReadProject(in, "chapel.pro", photos, &errors), 2);
    EXPECT_TRUE(errors.empty());
    EXPECT_EQ(Written(photos), example);
}

class CollectingLogger : public OvLogger {
public:
    CollectingLogger() : OvLogger(5) {}
    int Log(int /*level*/, const char* text) override {
        lines.emplace_back(text);
        return 0;
    }
    std::vector<std::string> lines;
};

TEST(ProjectFileLog, ProblemsGoToTheApplicationLogger) {
    OvApplicationLogger::DiscardPending();  // messages other tests left waiting
    OvMasterLogger master;
    master.SetFormat("$mesg");
    CollectingLogger logger;
    master.AddLogger(&logger);
    OvApplicationLogger::RegisterMasterLogger(&master);

    OvLogProjectFileErrors("x.pro", {});
    const OvProjectFileErrors errors = {
        OvProjectFileError(3, ParserErrorNotSpecifiedToken, "unknown keyword \"FOO\""),
        OvProjectFileError(12, ParserErrorInvalidNumber, "ParserErrorInvalidNumber")};
    OvLogProjectFileErrors("x.pro", errors);
    OvApplicationLogger::RegisterMasterLogger(nullptr);

    const std::vector<std::string> expected = {
        " 2 Read Error(s) in x.pro:", " - Line 000003: unknown keyword \"FOO\"",
        " - Line 000012: ParserErrorInvalidNumber"};
    EXPECT_EQ(logger.lines, expected);
}

}  // namespace
}  // namespace orvo
