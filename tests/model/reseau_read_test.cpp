// Reading reseau files, damaged ones above all: every problem is collected with its line, the
// good crosses are kept, and nothing that follows the damage is lost.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../support/temp_dir.h"
#include "orvo/model/reseau_file.h"
#include "orvo/textfile/reader.h"

namespace orvo {
namespace {

const char kGoodHead[] =
    "; a comment line\n"
    "\"Test grid\"\n"      // line 2
    "{ -10 -10 10 10 }\n"  // line 3
    "{ -9 8 0 9.5 }\n"     // line 4
    "\n";

struct ReadResult {
    int valid = 0;
    std::vector<unsigned> crossIds;
    std::vector<std::uint32_t> errorLines;
    std::vector<eOvParserStatus> errorStatus;
};

ReadResult ReadText(const std::string& text, OvReseauFile* into = nullptr) {
    test::TempDir dir;
    const std::string name = dir.file("grid.res");
    test::WriteWholeFile(name, text);
    OvReseauFile local;
    OvReseauFile& file = into != nullptr ? *into : local;
    OvReaderErrorList errors;
    ReadResult result;
    result.valid = file.ReadFile(name.c_str(), &errors);
    for (const OvPoint* p = file.GetCrossList().First(); p != nullptr; p = p->Next())
        result.crossIds.push_back(p->GetId());
    for (const OvReaderError* e = errors.First(); e != nullptr; e = e->Next()) {
        result.errorLines.push_back(e->GetLine());
        result.errorStatus.push_back(e->GetStatus());
    }
    return result;
}

using Ids = std::vector<unsigned>;
using Lines = std::vector<std::uint32_t>;

TEST(ReseauRead, CleanFileHasNoErrors) {
    const ReadResult r = ReadText(std::string(kGoodHead) + "{ 1 -5 5 1 }\n{ 2 5 5 0 }\r\n");
    EXPECT_EQ(r.valid, 1);
    EXPECT_EQ(r.crossIds, (Ids{1, 2}));
    EXPECT_TRUE(r.errorLines.empty());
}

TEST(ReseauRead, FieldsAreTakenAsWritten) {
    OvReseauFile file;
    ReadText(std::string(kGoodHead) + "{ 7 -5 2.5e1 2 }\n{ 8 1 2 9 }\n", &file);
    EXPECT_EQ(file.GetInfoText(), "Test grid");
    EXPECT_TRUE(file.GetPhotoRegion() == OvRegion(-10, -10, 10, 10));
    EXPECT_TRUE(file.GetBoxRegion() == OvRegion(-9, 8, 0, 9.5));
    const OvPoint* cross = file.GetCrossList().First();
    ASSERT_NE(cross, nullptr);
    EXPECT_EQ(cross->GetX(), -5.0);
    EXPECT_EQ(cross->GetY(), 25.0);
    EXPECT_EQ(cross->GetZ(), 0.0);
    EXPECT_EQ(cross->GetControlFlags(), eOvReseauCrossCorner);
    // A code outside the named ones is kept as it is.
    EXPECT_EQ(cross->Next()->GetControlFlags(), 9);
}

TEST(ReseauRead, MissingFileIsAStreamError) {
    test::TempDir dir;
    OvReseauFile file;
    OvReaderErrorList errors;
    EXPECT_EQ(file.ReadFile(dir.file("none.res").c_str(), &errors), 0);
    ASSERT_EQ(errors.Count(), 1);
    EXPECT_EQ(errors.First()->GetStatus(), ParserErrorStream);
}

TEST(ReseauRead, EmptyFileIsInvalidWithoutError) {
    const ReadResult r = ReadText("; only a comment\n");
    EXPECT_EQ(r.valid, 0);
    EXPECT_TRUE(r.errorLines.empty());
}

TEST(ReseauRead, MissingInfoTextMakesTheFileInvalid) {
    const ReadResult r = ReadText("{ -10 -10 10 10 }\n{ 0 0 1 1 }\n{ 1 2 3 0 }\n");
    EXPECT_EQ(r.valid, 0);
    EXPECT_TRUE(r.crossIds.empty());
    EXPECT_EQ(r.errorLines, (Lines{1}));
    EXPECT_EQ(r.errorStatus[0], ParserErrorNotSpecifiedToken);
}

TEST(ReseauRead, StringWhereARegionNumberBelongs) {
    const ReadResult r = ReadText("\"x\"\n{ -10 \"ten\" 10 10 }\n{ 0 0 1 1 }\n{ 1 2 3 0 }\n");
    EXPECT_EQ(r.valid, 0);
    EXPECT_TRUE(r.crossIds.empty());
    EXPECT_EQ(r.errorLines, (Lines{2}));
}

TEST(ReseauRead, ShortOrOverlongRegionMakesTheFileInvalid) {
    EXPECT_EQ(ReadText("\"x\"\n{ 1 2 3 }\n{ 0 0 1 1 }\n").valid, 0);
    EXPECT_EQ(ReadText("\"x\"\n{ 1 2 3 4 5 }\n{ 0 0 1 1 }\n").valid, 0);
    EXPECT_EQ(ReadText("\"x\"\n{ 1 2 3 4 }\n").valid, 0);  // box region missing
}

TEST(ReseauRead, ReadFileStartsFromAnEmptyDescription) {
    OvReseauFile file;
    ReadText(std::string(kGoodHead) + "{ 1 2 3 0 }\n", &file);
    ASSERT_EQ(file.IsValid(), 1);
    // ReadFile starts from an empty description, whatever the object held before.
    ReadText("\"other\"\n{ 1 2 }\n", &file);
    EXPECT_EQ(file.IsValid(), 0);
    EXPECT_EQ(file.GetInfoText(), "");
    EXPECT_EQ(file.GetCrossList().Count(), 0);
}

TEST(ReseauRead, DamagedCrossesAreDroppedAndTheRestKept) {
    const std::string text = std::string(kGoodHead) +
                             "{ 1 -5 5 1 }\n"        // 6
                             "{ 2 \"five\" 5 0 }\n"  // 7: string where x belongs
                             "{ 3 5 }\n"             // 8: ends early
                             "{ 4.5 5 5 0 }\n"       // 9: fractional id
                             "{ 5 1e999 5 0 }\n"     // 10: not finite
                             "{ 6 5 5 1.0 }\n"       // 11: fractional code
                             "{ 7 1 2 0 }\n";        // 12
    const ReadResult r = ReadText(text);
    EXPECT_EQ(r.valid, 1);
    EXPECT_EQ(r.crossIds, (Ids{1, 7}));
    EXPECT_EQ(r.errorLines, (Lines{7, 8, 9, 10, 11}));
}

TEST(ReseauRead, TokenizerErrorsSpoilOnlyTheirCross) {
    const std::string text = std::string(kGoodHead) +
                             "{ 1 12abc 5 1 }\n"  // 6: invalid number
                             "{ 2 3 4 \"open\n"   // 7: unterminated string
                             "{ 3 1 2 0 }\n";     // 8
    const ReadResult r = ReadText(text);
    EXPECT_EQ(r.crossIds, (Ids{3}));
    ASSERT_EQ(r.errorStatus.size(), 2u);
    EXPECT_EQ(r.errorStatus[0], ParserErrorInvalidNumber);
    EXPECT_EQ(r.errorLines[0], 6u);
    EXPECT_EQ(r.errorStatus[1], ParserErrorUnterminatedString);
    EXPECT_EQ(r.errorLines[1], 7u);
}

TEST(ReseauRead, CompleteCrossWithoutItsBraceIsKept) {
    const std::string text = std::string(kGoodHead) +
                             "{ 1 -5 5 1\n"      // 6: "}" missing, next cross follows
                             "{ 2 5 5 0 } 99\n"  // 7: a stray number after it
                             "{ 3 5 5 0 6 }\n"   // 8: surplus field
                             "{ 4 0 0 2\n";      // 9: unterminated at the end of the file
    const ReadResult r = ReadText(text);
    EXPECT_EQ(r.crossIds, (Ids{1, 2, 3, 4}));
    EXPECT_EQ(r.errorLines, (Lines{7, 7, 8, 10}));
}

TEST(ReseauRead, StrayTokensAndBracesBetweenCrossesAreSkipped) {
    const std::string text = std::string(kGoodHead) +
                             "{ 1 0 0 0 }\n"
                             "} } junk \"text\" 5\n"  // 7: one error for the whole run
                             "{ 2 0 0 0 }\n"
                             "KEYWORD 3\n"  // 9
                             "{ 3 0 0 0 }\n";
    const ReadResult r = ReadText(text);
    EXPECT_EQ(r.crossIds, (Ids{1, 2, 3}));
    EXPECT_EQ(r.errorLines, (Lines{7, 9}));
}

TEST(ReseauRead, TrailingMistypedFieldIsStillReported) {
    // The plain reader takes back a trailing "ParserErrorNotSpecifiedToken"; ReadFile keeps it.
    const ReadResult r = ReadText(std::string(kGoodHead) + "{ 1 0 0 0 }\n{ 2 x 0 0 }\n");
    EXPECT_EQ(r.crossIds, (Ids{1}));
    EXPECT_EQ(r.errorLines, (Lines{7}));
    EXPECT_EQ(r.errorStatus[0], ParserErrorNotSpecifiedToken);
}

// A description inside a keyword block of another file ends at the block's "}"; the reader
// goes on with what follows.
class Holder : public LinkHdl {
public:
    std::int32_t OnReseau(void* object) {
        auto* readerObject = static_cast<OvReaderObject*>(object);
        const std::int32_t result = file.Read(readerObject);
        errorsAfterRead = readerObject->GetReader()->GetReadErrorCount();
        return result;
    }
    OvReseauFile file;
    int errorsAfterRead = -1;
};

TEST(ReseauRead, DescriptionInsideABlockEndsAtItsBrace) {
    test::TempDir dir;
    const std::string name = dir.file("project.txt");
    test::WriteWholeFile(name,
                         "RESEAU {\n"
                         "  \"inner\" { 0 0 4 4 } { 0 3 4 4 }\n"
                         "  { 1 1 1 0 } { 2 3 3 2 }\n"
                         "}\n"
                         "AFTER 5\n");
    Holder holder;
    int after = 0;
    OvReader reader(String(name.c_str()));
    reader.RegisterObject(OvReaderObject("RESEAU", Link(&holder, &Holder::OnReseau)));
    reader.RegisterObject(OvReaderObject("AFTER", &after));
    reader.DoProcess(false);
    EXPECT_EQ(reader.GetReadErrorCount(), 0);
    EXPECT_EQ(holder.file.IsValid(), 1);
    EXPECT_EQ(holder.file.GetInfoText(), "inner");
    EXPECT_EQ(holder.file.GetCrossList().Count(), 2);
    EXPECT_EQ(after, 5);
}

TEST(ReseauRead, DamagedHeaderInsideABlockSkipsOnlyThatBlock) {
    test::TempDir dir;
    const std::string name = dir.file("project.txt");
    test::WriteWholeFile(name,
                         "RESEAU {\n"
                         "  \"inner\" { 0 0 4 } { 0 3 4 4 }\n"
                         "  { 1 1 1 0 } { 2 3 3 2 }\n"
                         "}\n"
                         "AFTER 5\n");
    Holder holder;
    int after = 0;
    OvReader reader(String(name.c_str()));
    reader.RegisterObject(OvReaderObject("RESEAU", Link(&holder, &Holder::OnReseau)));
    reader.RegisterObject(OvReaderObject("AFTER", &after));
    reader.DoProcess(false);
    EXPECT_EQ(holder.file.IsValid(), 0);
    EXPECT_EQ(holder.file.GetCrossList().Count(), 0);
    // One error for the short region. The reader itself takes it back when its run ends, as
    // it does with every trailing "ParserErrorNotSpecifiedToken".
    EXPECT_EQ(holder.errorsAfterRead, 1);
    EXPECT_EQ(after, 5);
}

TEST(ReseauRead, UnregisteredObjectReadsNothing) {
    OvReseauFile file;
    OvReaderObject object;
    EXPECT_EQ(file.Read(&object), 1);
    EXPECT_EQ(file.IsValid(), 0);
    EXPECT_EQ(file.Read(nullptr), 1);
}

}  // namespace
}  // namespace orvo
