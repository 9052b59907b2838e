// Camera records and the camera file: the exact text of header, records and the plain column
// form, reading through the block reader, damaged files, and the best match by type and C.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <string>

#include "orvo/model/camera.h"
#include "orvo/model/camera_list.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"
#include "temp_dir.h"

namespace orvo {
namespace {

using test::ReadWholeFile;
using test::TempDir;
using test::WriteWholeFile;

const char kHeader[] =
    "; \n"
    "; ORVOMETRIC 10 Version 6.715 Camera File\n"
    "; \n"
    "; File Format: { Id  C  Xh  Yh  A1  A2  R0 \"Infotext\"}\n"
    "; \n"
    "\n";

// The record of the wide-angle camera below, as it stands between its braces.
const char kWideRecord[] =
    "    3"
    "          24.314752"
    "            0.01274"
    "           -0.03391"
    "        -0.00020417"
    "         3.6028e-07"
    "                  9"
    " \"Wide 24mm, body 2\"";

OvCamera Wide() {
    return OvCamera(3, 24.314752, 0.01274, -0.03391, -0.00020417, 3.6028e-07, 9,
                    "Wide 24mm, body 2");
}

class CameraFileTest : public ::testing::Test {
protected:
    void SetUp() override { OvWriterReset(); }
    void TearDown() override { OvWriterReset(); }

    // Reads `text` as a camera file and returns the errors.
    OvReaderErrorList ReadText(OvCameraList& list, const std::string& text) {
        const std::string name = dir.file("cameras.txt");
        WriteWholeFile(name, text);
        OvReaderErrorList errors;
        EXPECT_EQ(list.ReadFile(name.c_str(), &errors), 1);
        return errors;
    }

    TempDir dir;
};

void ExpectCamera(const OvCamera* c, unsigned id, double C, double Xh, double Yh, double A1,
                  double A2, double R0, const char* info) {
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->GetId(), id);
    EXPECT_EQ(c->GetC(), C);
    EXPECT_EQ(c->GetXh(), Xh);
    EXPECT_EQ(c->GetYh(), Yh);
    EXPECT_EQ(c->GetA1(), A1);
    EXPECT_EQ(c->GetA2(), A2);
    EXPECT_EQ(c->GetR0(), R0);
    EXPECT_STREQ(c->GetInfo().chars(), info);
}

std::string Statuses(const OvReaderErrorList& errors) {
    std::string text;
    for (const OvReaderError* e = errors.First(); e != nullptr; e = e->Next()) {
        text += std::to_string(e->GetLine()) + ":" + e->GetStatusText() + " ";
    }
    return text;
}

TEST_F(CameraFileTest, RecordTextIsExact) {
    std::ostringstream out;
    Wide().Write(out);
    EXPECT_EQ(out.str(), kWideRecord);
    EXPECT_EQ(out.precision(), 8);

    // C is written as stored, and the stream's notation is used.
    std::ostringstream fixed;
    fixed.setf(std::ios::fixed, std::ios::floatfield);
    OvCamera(12345, -50.0, 0, 0, 1e-5, 0, 0, "").Write(fixed);
    EXPECT_EQ(fixed.str(),
              " 12345       -50.00000000         0.00000000         0.00000000         0.00001000"
              "         0.00000000         0.00000000 \"\"");
}

TEST_F(CameraFileTest, PlainColumnFormIsExact) {
    std::ostringstream out;
    OvCamera(7, -150.12, -0.004, 0.011, 0, 1.5e-9, 0, "not written").WriteGentriFormat(out);
    EXPECT_EQ(out.str(),
              "    7"
              "           150.12"
              "           -0.004"
              "            0.011"
              "                0"
              "          1.5e-09"
              "                0");
}

TEST_F(CameraFileTest, HeaderAndListAreExact) {
    OvCameraList list;
    std::ostringstream header;
    list.WriteHeaderComment(header);
    EXPECT_EQ(header.str(), kHeader);

    list.Add(new OvCamera(Wide()));
    list.Add(new OvCamera(7, 150.12, -0.004, 0.011, 0, 0, 0, "Metric 150, reseau"));
    std::ostringstream out;
    list.Write(out);
    EXPECT_EQ(out.str(), std::string("{") + kWideRecord + "}\n" +
                             "{    7             150.12             -0.004              0.011"
                             "                  0                  0                  0"
                             " \"Metric 150, reseau\"}\n");
    EXPECT_EQ(OvWriterLevel(), 0);
}

TEST_F(CameraFileTest, WriteFileInBothForms) {
    OvCameraList list;
    list.Add(new OvCamera(Wide()));
    list.Add(new OvCamera(8, -85.0, 0, 0, 0, 0, 0, "Tele"));
    const std::string name = dir.file("cameras.cam");
    WriteWholeFile(name, "old content that must go");
    ASSERT_EQ(list.WriteFile(String(name.c_str()), false), 1);
    EXPECT_EQ(ReadWholeFile(name),
              std::string(kHeader) + "{" + kWideRecord + "}\n" +
                  "{    8                -85                  0                  0"
                  "                  0                  0                  0 \"Tele\"}\n");

    ASSERT_EQ(list.WriteFile(String(name.c_str()), true), 1);
    EXPECT_EQ(ReadWholeFile(name),
              "    3        24.314752          0.01274         -0.03391      -0.00020417"
              "       3.6028e-07                9\n"
              "    8               85                0                0                0"
              "                0                0\n");

    // The writers report no failure, deliberately; nothing is created either.
    const std::string missing = dir.file("no/such/dir/cameras.cam");
    EXPECT_EQ(list.WriteFile(String(missing.c_str()), false), 1);
    EXPECT_EQ(list.WriteFile(String(missing.c_str()), true), 1);
    EXPECT_FALSE(std::filesystem::exists(missing));
}

TEST_F(CameraFileTest, FileRoundTripKeepsEveryValue) {
    OvCameraList list;
    list.Add(new OvCamera(Wide()));
    list.Add(new OvCamera(4000000000u, 1234.5678, -1e-30, 2.5e22, -0.0, 7.25e-300, 1e15, ""));
    list.Add(new OvCamera(5, 50, 0, 0, 0, 0, 0, "semi; colon ! and {braces}"));
    const std::string name = dir.file("round.cam");
    list.WriteFile(String(name.c_str()));

    OvCameraList back(name.c_str());
    ASSERT_EQ(back.Count(), 3);
    ExpectCamera(back.First(), 3, 24.314752, 0.01274, -0.03391, -0.00020417, 3.6028e-07, 9,
                 "Wide 24mm, body 2");
    ExpectCamera(back.Get(1), 4000000000u, 1234.5678, -1e-30, 2.5e22, -0.0, 7.25e-300, 1e15, "");
    EXPECT_TRUE(std::signbit(back.Get(1)->GetA1()));
    ExpectCamera(back.Last(), 5, 50, 0, 0, 0, 0, 0, "semi; colon ! and {braces}");
}

TEST_F(CameraFileTest, InfoTextsThatCannotStandInQuotesAreMadeReadable) {
    OvCameraList list;
    list.Add(new OvCamera(1, 50, 0, 0, 0, 0, 0, "say \"cheese\"\nnow"));
    std::ostringstream out;
    list.Write(out);
    EXPECT_NE(out.str().find("\"say 'cheese' now\"}\n"), std::string::npos);
    OvCameraList back;
    EXPECT_EQ(ReadText(back, out.str()).Count(), 0);
    ASSERT_EQ(back.Count(), 1);
    EXPECT_STREQ(back.First()->GetInfo().chars(), "say 'cheese' now");
}

TEST_F(CameraFileTest, ReadingMakesCPositiveAndTakesIntegersAsNumbers) {
    OvCameraList list;
    const OvReaderErrorList errors = ReadText(list,
                                              "; a comment line\n"
                                              "{ 1 -50.0 0 0 1e-5 0 10 \"negative C\" }\n"
                                              "! another comment\n"
                                              "{2 35 1 -1 0 0 0 \"ints\"}{3 -0 0 0 0 0 0 \"\"}\n");
    EXPECT_EQ(errors.Count(), 0);
    ASSERT_EQ(list.Count(), 3);
    ExpectCamera(list.First(), 1, 50.0, 0, 0, 1e-5, 0, 10, "negative C");
    ExpectCamera(list.Get(1), 2, 35, 1, -1, 0, 0, 0, "ints");
    EXPECT_FALSE(std::signbit(list.Last()->GetC()));
}

TEST_F(CameraFileTest, ReadFileAppendsAndReportsAMissingFile) {
    OvCameraList list;
    list.Add(new OvCamera(9, 10, 0, 0, 0, 0, 0, "kept"));
    OvReaderErrorList errors;
    EXPECT_EQ(list.ReadFile(dir.file("missing.cam").c_str(), &errors), 1);
    EXPECT_EQ(list.Count(), 1);
    ASSERT_EQ(errors.Count(), 1);
    EXPECT_EQ(errors.First()->GetStatus(), ParserErrorStream);
    EXPECT_EQ(list.ReadFile(nullptr), 1);
    EXPECT_EQ(list.Count(), 1);
}

TEST_F(CameraFileTest, DamagedRecordsCostOnlyThemselves) {
    OvCameraList list;
    const OvReaderErrorList errors = ReadText(list,
                                              "{1 50 0 0 0 0 0 \"good one\"}\n"         // 1
                                              "{2 50 0 0 0 \"missing fields\"}\n"       // 2
                                              "{3 \"x\" 0 0 0 0 0 \"string for C\"}\n"  // 3
                                              "{4 nan 0 0 0 0 0 \"NaN for C\"}\n"       // 4
                                              "{5 -nan 0 0 0 0 0 \"broken number\"}\n"  // 5
                                              "{\"id\" 50 0 0 0 0 0 \"string id\"}\n"   // 6
                                              "{7 50 0 0 0 0 0 \"extra\" 1 2}\n"        // 7
                                              "{}\n"                                    // 8
                                              "{9 60 0 0 0 0 0 \"good two\"}\n");       // 9
    ASSERT_EQ(list.Count(), 5);
    ExpectCamera(list.First(), 1, 50, 0, 0, 0, 0, 0, "good one");
    // A string or a keyword where a number belongs reads 0.0: the record is complete, but its
    // camera is invalid and the field is reported.
    ExpectCamera(list.Get(1), 3, 0, 0, 0, 0, 0, 0, "string for C");
    EXPECT_FALSE(list.Get(1)->IsValid());
    ExpectCamera(list.Get(2), 4, 0, 0, 0, 0, 0, 0, "NaN for C");
    EXPECT_FALSE(list.Get(2)->IsValid());
    ExpectCamera(list.Get(3), 7, 50, 0, 0, 0, 0, 0, "extra");
    ExpectCamera(list.Last(), 9, 60, 0, 0, 0, 0, 0, "good two");
    EXPECT_EQ(Statuses(errors),
              "2:ParserErrorNotSpecifiedToken "  // A2 from the text, then "}" for R0
              "2:ParserErrorNotSpecifiedToken "
              "3:ParserErrorNotSpecifiedToken "
              "4:ParserErrorNotSpecifiedToken "
              "5:ParserErrorInvalidNumber "
              "6:ParserErrorNotSpecifiedToken "
              "7:ParserErrorNotSpecifiedToken "
              "8:ParserErrorNotSpecifiedToken ");
}

TEST_F(CameraFileTest, UnterminatedBlocksAndStrayTokens) {
    OvCameraList list;
    const OvReaderErrorList errors = ReadText(list,
                                              "{1 50 0 0 0 0 0 \"no brace\"\n"    // 1
                                              "{2 51 0 0 0 0 0 \"after it\"}\n"   // 2
                                              "17 } \"stray\"\n"                  // 3
                                              "UNKNOWN { 1 2 3 }\n"               // 4
                                              "{3 52 0 0 0 0 0 \"unterminated");  // 5
    ASSERT_EQ(list.Count(), 2);
    ExpectCamera(list.First(), 1, 50, 0, 0, 0, 0, 0, "no brace");
    ExpectCamera(list.Last(), 2, 51, 0, 0, 0, 0, 0, "after it");
    EXPECT_EQ(Statuses(errors),
              "2:ParserErrorNotSpecifiedToken "  // the "{" where "}" belongs
              "3:ParserErrorNotSpecifiedToken "  // 17
              "3:ParserErrorNotSpecifiedToken "  // "stray" ("}" alone is passed over)
              "4:ParserErrorNotSpecifiedToken "  // the unknown block, skipped with the
                                                 // parser's status as it stands
              "5:ParserErrorUnterminatedString ");
}

TEST_F(CameraFileTest, EndOfFileInsideARecord) {
    OvCameraList list;
    OvReaderErrorList errors = ReadText(list, "{1 50 0 0 0 0 0 \"complete\"\n");
    ASSERT_EQ(list.Count(), 1);
    EXPECT_EQ(Statuses(errors), "2:ParserStatusEOF ");

    OvCameraList cut;
    errors = ReadText(cut, "{1 50 0 0\n");
    EXPECT_EQ(cut.Count(), 0);
    EXPECT_EQ(Statuses(errors), "2:ParserStatusEOF ");

    // Without an error list the same files read quietly.
    OvCameraList quiet;
    const std::string name = dir.file("quiet.cam");
    WriteWholeFile(name, "{1 50 0 0 0 0 0 \"a\"}\n{2 x}\n{3 50 0 0 0 0 0 \"b\"}\n");
    EXPECT_EQ(quiet.ReadFile(name.c_str()), 1);
    EXPECT_EQ(quiet.Count(), 2);
}

TEST_F(CameraFileTest, TrailingWrongTokenIsStillReported) {
    // A plain reader run takes back a last "ParserErrorNotSpecifiedToken"; the camera file
    // reports it, since it is damage like any other.
    OvCameraList list;
    const OvReaderErrorList errors = ReadText(list, "{1 50 0 0 0 0 0 \"a\"}\n{2 50 0}\n");
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(Statuses(errors), "2:ParserErrorNotSpecifiedToken ");
}

TEST_F(CameraFileTest, CameraRecordInsideAKeywordBlock) {
    std::istringstream in("CAMERA {    3  -24.5  0.1  -0.1  1e-5  0  9 \"Wide\"}\nNEXT 5\n");
    OvReader reader(in, "project");
    OvCamera camera;  // as a photo holds its camera, bound to the block after the keyword
    int next = 0;
    reader.RegisterObject(OvReaderObject("CAMERA", Link(&camera, &OvCamera::ReadHdl)));
    reader.RegisterObject(OvReaderObject("NEXT", &next));
    reader.DoProcess(false);
    EXPECT_EQ(reader.GetReadErrorCount(), 0);
    ExpectCamera(&camera, 3, 24.5, 0.1, -0.1, 1e-5, 0, 9, "Wide");
    EXPECT_EQ(next, 5);

    // An object outside any reader reads nothing.
    OvReaderObject loose;
    EXPECT_EQ(camera.Read(&loose), 1);
    EXPECT_EQ(camera.GetId(), 3u);
}

TEST_F(CameraFileTest, ListReadsOneBlockFromAReaderObject) {
    std::istringstream in("{ 4 28 0 0 0 0 0 \"one\" } { 5 35 0 0 0 0 0 \"two\" }");
    OvReader reader(in, "blocks");
    OvCameraList target;
    reader.RegisterObject(OvReaderObject(Link(&target, &OvCameraList::ReadHdl)));
    reader.DoProcess(false);
    ASSERT_EQ(target.Count(), 2);
    EXPECT_STREQ(target.Last()->GetInfo().chars(), "two");

    // Constructed on a reader object, a list reads the one block at hand.
    std::istringstream single("{ 6 50 0 0 0 0 0 \"single\" }");
    OvReader singleReader(single, "single");
    OvReaderObject* object = singleReader.RegisterObject(OvReaderObject());
    singleReader.Advance();
    const OvCameraList one(object);
    ASSERT_EQ(one.Count(), 1);
    EXPECT_EQ(one.First()->GetId(), 6u);
    EXPECT_EQ(OvCameraList(static_cast<OvReaderObject*>(nullptr)).Count(), 0);
}

TEST_F(CameraFileTest, ListCopiesOwnTheirCameras) {
    OvCameraList list;
    list.Add(new OvCamera(Wide()));
    OvCameraList copy(list);
    OvCameraList assigned;
    assigned.Add(new OvCamera(1, 1, 1, 1, 1, 1, 1, "gone"));
    assigned = list;
    list.First()->SetC(99.0);
    ASSERT_EQ(copy.Count(), 1);
    ASSERT_EQ(assigned.Count(), 1);
    EXPECT_EQ(copy.First()->GetC(), 24.314752);
    EXPECT_EQ(assigned.First()->GetC(), 24.314752);
}

TEST(CameraBestMatch, NearestPrincipalDistanceAmongMatchingTypes) {
    OvCameraList list;
    EXPECT_EQ(list.FindBestMatch("Wide", 24.0), nullptr);
    OvCamera* tele = list.Add(new OvCamera(1, 85, 0, 0, 0, 0, 0, "Tele 85"));
    OvCamera* w18 = list.Add(new OvCamera(2, 18, 0, 0, 0, 0, 0, "Wide 18"));
    OvCamera* w30 = list.Add(new OvCamera(3, 30, 0, 0, 0, 0, 0, "Super Wide 30"));
    EXPECT_EQ(list.FindBestMatch("Wide", 24.0), w18);  // both 6 away: the earlier stays
    EXPECT_EQ(list.FindBestMatch("Wide", 25.0), w30);
    EXPECT_EQ(list.FindBestMatch("wide", 24.0), nullptr);  // case-sensitive
    EXPECT_EQ(list.FindBestMatch("Tele", 20.0), tele);
    EXPECT_EQ(list.FindBestMatch("", 80.0), tele);  // an empty type is in every text
    EXPECT_EQ(list.FindBestMatch("18", 1000.0), w18);

    // A camera whose distance is not a number never beats one whose distance is.
    OvCameraList odd;
    odd.Add(new OvCamera(1, std::numeric_limits<double>::quiet_NaN(), 0, 0, 0, 0, 0, "x"));
    OvCamera* real = odd.Add(new OvCamera(2, 40, 0, 0, 0, 0, 0, "x"));
    EXPECT_EQ(odd.FindBestMatch("x", 24.0), real);
}

}  // namespace
}  // namespace orvo
