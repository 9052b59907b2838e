// Digital camera entries: the line form, the entry made from it with its generated grid, and
// the digital camera file read back to the same entries.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "../support/temp_dir.h"
#include "orvo/model/reseau_list.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

const char kDigitalHeader[] =
    "; \n"
    "; ORVOMETRIC 10 Version 6.715 Digital Camera Reseau File\n"
    "; \n"
    "; File Format:\n"
    "; { \"ExifKameraType\"  SubId \"Comment\"              Pixel_X  Pixel_Y   CCD_X    CCD_Y    "
    "}\n"
    "; \n"
    "\n";

const char kCanonLine[] =
    "{                   \"Canon EOS 5D\"     2                   \"studio\"      4368      2912"
    "      35.8      23.9 }";

OvReseauFile Digital(const char* type, std::uint32_t subId, const char* comment, int px, int py,
                     double ccdX, double ccdY) {
    OvReseauFile file;
    file.SetSubId(subId);
    file.Set(type, comment, px, py, ccdX, ccdY);
    file.GenerateDummyData();
    return file;
}

std::string LineOf(const OvReseauFile& file) {
    std::ostringstream out;
    file.WriteDigitalCameraFormat(out);
    return out.str();
}

std::string BodyOf(const OvReseauFile& file) {
    OvWriterReset();
    std::ostringstream out;
    file.Write(out);
    return out.str();
}

TEST(DigitalCameraLine, IsExact) {
    EXPECT_EQ(LineOf(Digital("Canon EOS 5D", 2, "studio", 4368, 2912, 35.8, 23.9)), kCanonLine);
}

TEST(DigitalCameraLine, TextsAreQuotedAndMadeReadable) {
    const std::string line = LineOf(Digital("Cam\"X\"", 0, "a\nb", 0, 0, 1.25, 1));
    EXPECT_EQ(line,
              "{                   \"Cam'X'\"     0                   \"a b\"         0         0"
              "      1.25         1 }");
}

TEST(DigitalCameraLine, SensorSizeIsWrittenWithSixDigits) {
    const std::string line = LineOf(Digital("c", 0, "", 1, 1, 23.456789, 15.6));
    EXPECT_NE(line.find("   23.4568 "), std::string::npos) << line;
}

TEST(DigitalCameraEntry, SetCentresTheSensorOnTheOrigin) {
    OvReseauFile file;
    file.SetSubId(3);
    file.GetCrossList().Add(OvPoint(1, 0, 0, 0, 0));
    file.Set("Nikon D3", "press", 4256, 2832, 36.0, 23.9);
    EXPECT_EQ(file.GetName(), "Nikon D3");
    EXPECT_EQ(file.GetInfoText(), "press");
    EXPECT_EQ(file.GetSubId(), 3u);  // left as it was
    EXPECT_EQ(file.GetExifPixelWidth(), 4256);
    EXPECT_EQ(file.GetExifPixelHeight(), 2832);
    EXPECT_TRUE(file.GetPhotoRegion() == OvRegion(-18.0, -11.95, 18.0, 11.95));
    EXPECT_EQ(file.GetPhotoRegion().Width(), 36.0);
    EXPECT_EQ(file.GetPhotoRegion().Height(), 23.9);
    // The info text box is the top tenth of the picture.
    EXPECT_TRUE(file.GetBoxRegion() == OvRegion(-18.0, 11.95 - 2.39, 18.0, 11.95));
    EXPECT_EQ(file.GetCrossList().Count(), 0);
    EXPECT_EQ(file.IsValid(), 1);
    EXPECT_TRUE(file.IsDigitalCameraEntry());
}

TEST(DigitalCameraEntry, ValidityNeedsASensorSize) {
    OvReseauFile file;
    file.Set("c", "", 0, 0, 10, 10);
    EXPECT_EQ(file.IsValid(), 1);  // unknown pixel sizes are allowed
    file.Set("c", "", 10, 10, 0, 10);
    EXPECT_EQ(file.IsValid(), 0);
    file.Set("c", "", 10, 10, 10, -1);
    EXPECT_EQ(file.IsValid(), 0);
    file.Set("c", "", 10, 10, std::nan(""), 10);
    EXPECT_EQ(file.IsValid(), 0);
    file.Set("c", "", -1, 10, 10, 10);
    EXPECT_EQ(file.IsValid(), 0);
    file.Set("c", "", 10, 10, 9.99999e-301, 10);
    EXPECT_EQ(file.IsValid(), 0);
    file.Set("c", "", 10, 10, 1.7976931348623157e308, 1e-300);
    EXPECT_EQ(file.IsValid(), 1);
    EXPECT_EQ(file.GetPhotoRegion().Width(), 1.7976931348623157e308);
}

TEST(DummyGrid, EvenGridWithoutPixelSizes) {
    OvReseauFile file;
    file.Set("c", "", 0, 0, 40.0, 30.0);
    ASSERT_EQ(file.GenerateDummyData(), 25);
    const double xs[] = {-20, -10, 0, 10, 20};
    const double ys[] = {15, 7.5, 0, -7.5, -15};
    unsigned id = 1;
    for (const OvPoint* p = file.GetCrossList().First(); p != nullptr; p = p->Next(), ++id) {
        const int row = static_cast<int>(id - 1) / 5;
        const int column = static_cast<int>(id - 1) % 5;
        EXPECT_EQ(p->GetId(), id);
        EXPECT_EQ(p->GetX(), xs[column]) << id;
        EXPECT_EQ(p->GetY(), ys[row]) << id;
        const bool corner = (row == 0 || row == 4) && (column == 0 || column == 4);
        EXPECT_EQ(p->GetControlFlags(), corner ? eOvReseauCrossCorner : eOvReseauCrossSmall);
        EXPECT_EQ(p->GetName(), kOvReseauDummyMarker);
    }
    EXPECT_TRUE(file.HasDummyData());
}

TEST(DummyGrid, GridLinesFallOnWholePixels) {
    OvReseauFile file;
    file.Set("c", "", 4001, 3001, 40.0, 30.0);
    ASSERT_EQ(file.GenerateDummyData(), 25);
    // Pixel column of each grid column: i * 4001 / 4 rounded down; rows likewise from the top.
    const double columns[] = {0, 1000, 2000, 3000, 4001};
    const double rows[] = {0, 750, 1500, 2250, 3001};
    const double pitchX = 40.0 / 4001;
    const double pitchY = 30.0 / 3001;
    for (const OvPoint* p = file.GetCrossList().First(); p != nullptr; p = p->Next()) {
        const int row = static_cast<int>(p->GetId() - 1) / 5;
        const int column = static_cast<int>(p->GetId() - 1) % 5;
        EXPECT_NEAR((p->GetX() + 20.0) / pitchX, columns[column], 1e-9) << p->GetId();
        EXPECT_NEAR((15.0 - p->GetY()) / pitchY, rows[row], 1e-9) << p->GetId();
    }
    // The corners are the picture's corners exactly.
    EXPECT_EQ(file.FindCrossId(1)->GetX(), -20.0);
    EXPECT_EQ(file.FindCrossId(1)->GetY(), 15.0);
    EXPECT_EQ(file.FindCrossId(25)->GetX(), 20.0);
    EXPECT_EQ(file.FindCrossId(25)->GetY(), -15.0);
}

TEST(DummyGrid, NoGridOnAnEmptyRegion) {
    OvReseauFile file;
    file.GetCrossList().Add(OvPoint(1, 0, 0, 0, 0));
    EXPECT_FALSE(file.HasDummyData());
    EXPECT_EQ(file.GenerateDummyData(), 0);
    EXPECT_EQ(file.GetCrossList().Count(), 0);
    EXPECT_FALSE(file.HasDummyData());
    file.SetPhotoRegion(OvRegion(0, 0, 1, 1));
    EXPECT_EQ(file.GenerateDummyData(), 25);
    file.GetCrossList().First()->SetName("measured");
    EXPECT_FALSE(file.HasDummyData());
}

// Exposes the protected parts of the list to the tests.
class TestList : public OvReseaufileList {
public:
    using OvReseaufileList::WriteDigitalCameraFormat;
    using OvReseaufileList::WriteDigitalCameraFormatHeaderComment;
};

TEST(DigitalCameraFile, HeaderIsExact) {
    std::ostringstream out;
    TestList().WriteDigitalCameraFormatHeaderComment(out);
    EXPECT_EQ(out.str(), kDigitalHeader);
}

TEST(DigitalCameraFile, WritesDigitalEntriesOnlyAndReadsBackTheSameEntries) {
    test::TempDir dir;
    const std::string name = dir.file("cameras.dres");
    TestList list;
    list.Add(Digital("Canon EOS 5D", 2, "studio", 4368, 2912, 35.8, 23.9));
    OvReseauFile film;
    film.SetName("rmk.res");
    film.SetPhotoRegion(OvRegion(-115, -115, 115, 115));
    film.SetValid(1);
    list.Add(film);
    list.Add(Digital("Nikon D3", 1, "", 0, 0, 36, 24));
    EXPECT_EQ(list.WriteDigitalCameraFormat(String(name.c_str())), 1);

    const std::string nikonLine =
        "{                   \"Nikon D3\"     1                   \"\"         0         0        "
        "36"
        "        24 }";
    EXPECT_EQ(test::ReadWholeFile(name),
              std::string(kDigitalHeader) + kCanonLine + "\n" + nikonLine + "\n");

    OvReseaufileList read;
    OvReaderErrorList errors;
    EXPECT_EQ(read.ReadReseauFile(name.c_str(), &errors), 2);
    EXPECT_EQ(errors.Count(), 0);
    ASSERT_EQ(read.Count(), 2);
    const OvReseauFile* written[] = {list.First(), list.Last()};
    int i = 0;
    for (const OvReseauFile* entry = read.First(); entry != nullptr; entry = entry->Next(), ++i) {
        EXPECT_EQ(entry->GetName(), written[i]->GetName());
        EXPECT_EQ(entry->GetSubId(), written[i]->GetSubId());
        EXPECT_EQ(entry->GetExifPixelWidth(), written[i]->GetExifPixelWidth());
        EXPECT_EQ(entry->GetExifPixelHeight(), written[i]->GetExifPixelHeight());
        EXPECT_TRUE(entry->IsDigitalCameraEntry());
        EXPECT_TRUE(entry->HasDummyData());
        // Text, regions and every cross, through the reseau file form.
        EXPECT_EQ(BodyOf(*entry), BodyOf(*written[i]));
        EXPECT_EQ(entry->GetDescName(), written[i]->GetDescName());
    }

    // Written again, the file is the same.
    const std::string again = dir.file("again.dres");
    read.WriteDigitalCameraFormat(String(again.c_str()));
    EXPECT_EQ(test::ReadWholeFile(again), test::ReadWholeFile(name));
}

TEST(DigitalCameraFile, EmptyListWritesNoLines) {
    std::ostringstream out;
    TestList list;
    list.WriteDigitalCameraFormat(out);
    EXPECT_EQ(out.str(), "");
}

TEST(DigitalCameraFile, UnwritableFileStillReportsSuccess) {
    test::TempDir dir;
    OvReseaufileList list;
    EXPECT_EQ(list.WriteDigitalCameraFormat(String(dir.file("no/such/dir/x.dres").c_str())), 1);
}

struct LineRead {
    int taken = 0;
    std::vector<std::string> names;
    std::vector<std::uint32_t> errorLines;
};

LineRead ReadDigital(const std::string& text, const char* fileName = "c.dres") {
    test::TempDir dir;
    const std::string name = dir.file(fileName);
    test::WriteWholeFile(name, text);
    OvReseaufileList list;
    OvReaderErrorList errors;
    LineRead result;
    result.taken = list.ReadReseauFile(name.c_str(), &errors);
    for (const OvReseauFile* f = list.First(); f != nullptr; f = f->Next())
        result.names.push_back(f->GetName().chars());
    for (const OvReaderError* e = errors.First(); e != nullptr; e = e->Next())
        result.errorLines.push_back(e->GetLine());
    return result;
}

using Names = std::vector<std::string>;
using Lines = std::vector<std::uint32_t>;

TEST(DigitalCameraFile, DamagedLinesAreReportedAndSkipped) {
    const LineRead r = ReadDigital(
        "; header\n"
        "{ \"A\" 0 \"ok\" 100 200 10 20 }\n"        // 2
        "{ \"B\" 0 \"short\" 100 200 10 }\n"        // 3: ends early
        "{ \"C\" x \"mistyped\" 100 200 10 20 }\n"  // 4: keyword for the sub id
        "{ \"D\" 0 \"negative\" -1 200 10 20 }\n"   // 5: negative picture size
        "{ \"E\" 0 \"no sensor\" 1 1 0 20 }\n"      // 6: sensor without size
        "{ \"F\" 1 \"no brace\" 10 10 1 1\n"        // 7: "}" missing (reported at 8)
        "{ \"G\" 2 \"ok\" 10 10 1 1 } 5\n"          // 8: a stray number after it
        "{ \"H\" 3 \"ok\" 10 10 1 1e999 }\n"        // 9: sensor size overflows
        "{ \"I\" 4 \"ok\" 10 10 1 12abc }\n"        // 10: invalid number
        "{ \"J\" 5 \"ok\" 10 10 1 1 }\n");          // 11
    EXPECT_EQ(r.taken, 4);
    EXPECT_EQ(r.names, (Names{"A", "F", "G", "J"}));
    EXPECT_EQ(r.errorLines, (Lines{3, 4, 5, 6, 8, 8, 9, 10}));
}

TEST(DigitalCameraFile, UnterminatedLastLineIsKept) {
    const LineRead r = ReadDigital("{ \"A\" 0 \"ok\" 100 200 10 20\n");
    EXPECT_EQ(r.names, (Names{"A"}));
    EXPECT_EQ(r.errorLines.size(), 1u);
}

TEST(DigitalCameraFile, ExtensionDecidesTheFormLetterCaseIgnored) {
    const std::string line = "{ \"A\" 0 \"ok\" 100 200 10 20 }\n";
    EXPECT_EQ(ReadDigital(line, "C.DRES").taken, 1);
    // Read as a reseau file, the line lacks its info text.
    const LineRead asReseau = ReadDigital(line, "c.res");
    EXPECT_EQ(asReseau.taken, 0);
    EXPECT_EQ(asReseau.errorLines.size(), 1u);
    EXPECT_EQ(ReadDigital(line, "dres").taken, 0);  // a bare name has no extension
}

TEST(DigitalCameraFile, ReadDigitalCameraFileIgnoresTheExtension) {
    test::TempDir dir;
    const std::string name = dir.file("cameras.txt");
    test::WriteWholeFile(name, "{ \"A\" 0 \"ok\" 100 200 10 20 }\n");
    OvReseaufileList list;
    EXPECT_EQ(list.ReadDigitalCameraFile(name.c_str()), 1);
    ASSERT_EQ(list.Count(), 1);
    EXPECT_EQ(list.First()->GetCrossList().Count(), 25);
}

}  // namespace
}  // namespace orvo
