// Reseau descriptions: the file text byte for byte, round trips, cross lookups, the display
// name and the key by which photos name a description.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <sstream>
#include <string>

#include "../support/temp_dir.h"
#include "orvo/model/reseau_file.h"
#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

const char kHeader[] =
    "; \n"
    "; ORVOMETRIC 10 Version 6.715 Reseau File\n"
    "; \n"
    "; File Format:\n"
    "; \"Infotext\"         ... Commenttext displayed in a graphical view\n"
    "; { x1, y1, x2, y2 } ... Size of Photo in Bikos [mm]\n"
    "; { x1, y1, x2, y2 } ... Pos. and size of Commenttext\n"
    "; { Id, x, y, Code } ... List of Reseaucrosses\n"
    ";             Code  Description\n"
    ";              0 .. Small Reseaucross\n"
    ";              1 .. Big Reseaucross\n"
    ";              2 .. Not really a cross, a Corner of the Picture\n"
    "; \n"
    "\n";

// The body of the three-cross description made by MakeThreeCrosses.
const char kThreeCrossBody[] =
    "\"RMK test\"\n"
    "{                  -115                  -115                   115                   115}\n"
    "{                  -110                   100                     0                   110}\n"
    "\n"
    "{          1                  -100                   100    1}\n"
    "{          2                   0.5                   100    0}\n"
    "{          3                   115                  -115    2}\n";

OvReseauFile MakeThreeCrosses() {
    OvReseauFile file;
    file.SetInfoText("RMK test");
    file.SetPhotoRegion(OvRegion(-115, -115, 115, 115));
    file.SetBoxRegion(OvRegion(-110, 100, 0, 110));
    file.GetCrossList().Add(OvPoint(1, -100, 100, 0, eOvReseauCrossBig));
    file.GetCrossList().Add(OvPoint(2, 0.5, 100, 0, eOvReseauCrossSmall));
    file.GetCrossList().Add(OvPoint(3, 115, -115, 0, eOvReseauCrossCorner));
    return file;
}

std::string Written(const OvReseauFile& file) {
    OvWriterReset();
    std::ostringstream out;
    file.Write(out);
    return out.str();
}

TEST(ReseauFileText, HeaderCommentIsExact) {
    std::ostringstream out;
    OvReseauFile().WriteHeaderComment(out);
    EXPECT_EQ(out.str(), kHeader);
}

TEST(ReseauFileText, BodyWithThreeCrossCodesIsExact) {
    EXPECT_EQ(Written(MakeThreeCrosses()), kThreeCrossBody);
}

TEST(ReseauFileText, EmptyDescriptionWritesTextAndRegionsOnly) {
    EXPECT_EQ(Written(OvReseauFile()),
              "\"\"\n"
              "{                     0                     0                     0                "
              "     0}\n"
              "{                     0                     0                     0                "
              "     0}\n"
              "\n");
}

TEST(ReseauFileText, InfoTextIsMadeReadable) {
    OvReseauFile file;
    file.SetInfoText(String("say \"hi\"\nnow"));
    const std::string text = Written(file);
    EXPECT_EQ(text.substr(0, text.find('\n')), "\"say 'hi' now\"");
}

TEST(ReseauFileText, CrossesAreWrittenWithTheirOwnColumnsWhateverTheListMask) {
    OvReseauFile file = MakeThreeCrosses();
    const eOvPointRWMask other[] = {eOvPointRWX, eOvPointRWEnd};
    file.GetCrossList().SetMask(OvPointFormat(other));
    EXPECT_EQ(Written(file), kThreeCrossBody);
}

TEST(ReseauFileText, WriteFileHoldsHeaderAndBodyAndReadsBack) {
    test::TempDir dir;
    const std::string name = dir.file("rmk.res");
    EXPECT_EQ(MakeThreeCrosses().WriteFile(name.c_str()), 1);
    EXPECT_EQ(test::ReadWholeFile(name), std::string(kHeader) + kThreeCrossBody);

    OvReseauFile read(String(name.c_str()));
    ASSERT_EQ(read.IsValid(), 1);
    EXPECT_EQ(read.GetName(), name.c_str());
    EXPECT_EQ(read.GetSubId(), 0u);
    EXPECT_EQ(read.GetInfoText(), "RMK test");
    EXPECT_TRUE(read.GetPhotoRegion() == OvRegion(-115, -115, 115, 115));
    EXPECT_TRUE(read.GetBoxRegion() == OvRegion(-110, 100, 0, 110));
    ASSERT_EQ(read.GetCrossList().Count(), 3);
    const int ids[] = {1, 2, 3};
    const double xs[] = {-100, 0.5, 115};
    const double ys[] = {100, 100, -115};
    const int codes[] = {1, 0, 2};
    int i = 0;
    for (const OvPoint* p = read.GetCrossList().First(); p != nullptr; p = p->Next(), ++i) {
        EXPECT_EQ(p->GetId(), static_cast<unsigned>(ids[i]));
        EXPECT_EQ(p->GetX(), xs[i]);
        EXPECT_EQ(p->GetY(), ys[i]);
        EXPECT_EQ(p->GetControlFlags(), codes[i]);
    }
    // Written again, the description gives the same text.
    EXPECT_EQ(Written(read), kThreeCrossBody);
}

TEST(ReseauFileText, UnwritableFileStillReportsSuccess) {
    test::TempDir dir;
    const std::string name = dir.file("missing/dir/rmk.res");
    EXPECT_EQ(MakeThreeCrosses().WriteFile(name.c_str()), 1);
    EXPECT_FALSE(std::filesystem::exists(name));
}

TEST(ReseauFileText, ManyDigitsBigWholeNumbersAndNegativeZeroSurviveTheRoundTrip) {
    test::TempDir dir;
    const std::string name = dir.file("precise.res");
    OvReseauFile file;
    file.SetPhotoRegion(OvRegion(-0.123456789012345, -1e-300, 1e15, 3));
    file.GetCrossList().Add(OvPoint(4000000000u, -0.0, 2.5e-7, 0, 1));
    file.WriteFile(name.c_str());
    OvReseauFile read(String(name.c_str()));
    ASSERT_EQ(read.IsValid(), 1);
    EXPECT_TRUE(read.GetPhotoRegion() == file.GetPhotoRegion());
    const OvPoint* cross = read.GetCrossList().First();
    ASSERT_NE(cross, nullptr);
    EXPECT_EQ(cross->GetId(), 4000000000u);
    EXPECT_TRUE(std::signbit(cross->GetX()));
    EXPECT_EQ(cross->GetY(), 2.5e-7);
}

TEST(ReseauFileCopy, CopiesAreDeepAndUnlinked) {
    OvReseauFile original = MakeThreeCrosses();
    original.SetName("a.res");
    original.SetSubId(7);
    OvReseauFile copy(original);
    original.GetCrossList().First()->SetX(1234);
    EXPECT_EQ(copy.GetName(), "a.res");
    EXPECT_EQ(copy.GetSubId(), 7u);
    EXPECT_EQ(copy.GetCrossList().Count(), 3);
    EXPECT_EQ(copy.GetCrossList().First()->GetX(), -100);
    EXPECT_EQ(copy.Next(), nullptr);

    OvReseauFile assigned;
    assigned = original;
    EXPECT_EQ(assigned.GetCrossList().First()->GetX(), 1234);
    EXPECT_EQ(Written(assigned), Written(original));
}

TEST(ReseauCrosses, FindNearestMeasuresInThePlaneAndKeepsTheEarlierOnATie) {
    OvReseauFile file = MakeThreeCrosses();
    double distance = -1.0;
    // z of the query is ignored: the crosses lie in the photo plane.
    const OvPoint* nearest = file.FindNearest(OvPoint(0, -97, 104, 50, 0), &distance);
    ASSERT_NE(nearest, nullptr);
    EXPECT_EQ(nearest->GetId(), 1u);
    EXPECT_DOUBLE_EQ(distance, 5.0);

    // (-49.75, 100) is 50.25 from both cross 1 and cross 2.
    nearest = file.FindNearest(OvPoint(0, -49.75, 100, 0, 0), &distance);
    ASSERT_NE(nearest, nullptr);
    EXPECT_EQ(nearest->GetId(), 1u);
    EXPECT_EQ(distance, 50.25);

    EXPECT_NE(file.FindNearest(OvPoint(), nullptr), nullptr);

    OvReseauFile empty;
    distance = -1.0;
    EXPECT_EQ(empty.FindNearest(OvPoint(), &distance), nullptr);
    EXPECT_EQ(distance, -1.0);
}

TEST(ReseauCrosses, SelectionHelpers) {
    OvReseauFile file = MakeThreeCrosses();
    EXPECT_EQ(file.FindCrossId(2)->GetX(), 0.5);
    EXPECT_EQ(file.FindCrossId(9), nullptr);

    EXPECT_EQ(file.FindUserSelectedCrosses(nullptr), 0);
    EXPECT_EQ(file.SelectCross(3)->GetId(), 3u);
    EXPECT_NE(file.SelectCross(1, true), nullptr);
    EXPECT_EQ(file.SelectCross(42), nullptr);

    OvPointList selected;
    EXPECT_EQ(file.FindUserSelectedCrosses(&selected), 2);
    ASSERT_EQ(selected.Count(), 2);
    EXPECT_EQ(selected.First()->GetId(), 1u);  // list order, not selection order
    EXPECT_EQ(selected.Last()->GetId(), 3u);
    // The result holds copies: the crosses stay in the description.
    EXPECT_EQ(file.GetCrossList().Count(), 3);

    EXPECT_NE(file.SelectCross(1, false), nullptr);
    EXPECT_EQ(file.FindUserSelectedCrosses(nullptr), 1);
    EXPECT_EQ(file.DeselectAllCrosses(), 1);
    EXPECT_EQ(file.FindUserSelectedCrosses(nullptr), 0);
}

TEST(ReseauDescName, NameSubIdAndPixelSize) {
    OvReseauFile file;
    file.SetName("rmk1523.res");
    EXPECT_EQ(file.GetDescName(), "rmk1523.res");
    file.SetSubId(2);
    EXPECT_EQ(file.GetDescName(), "rmk1523.res (2)");

    file.Set("Canon EOS 5D", "studio", 4368, 2912, 35.8, 23.9);
    EXPECT_EQ(file.GetDescName(), "Canon EOS 5D (2) 4368 * 2912 Pixel");
    file.SetSubId(0);
    EXPECT_EQ(file.GetDescName(), "Canon EOS 5D 4368 * 2912 Pixel");
    // Both pixel sizes are needed for the pixel text.
    file.Set("Canon EOS 5D", "studio", 4368, 0, 35.8, 23.9);
    EXPECT_EQ(file.GetDescName(), "Canon EOS 5D");
    file.SetSubId(4000000000u);
    EXPECT_EQ(file.GetDescName(), "Canon EOS 5D (4000000000)");
}

TEST(ReseauDataDesc, ConstructionAndSet) {
    EXPECT_EQ(OvReseauDataDesc().GetName(), "");
    EXPECT_EQ(OvReseauDataDesc().GetSubId(), 0u);
    EXPECT_EQ(OvReseauDataDesc(static_cast<const char*>(nullptr), 3).GetName(), "");
    const OvReseauDataDesc key("a.res", 3);
    EXPECT_EQ(key.GetName(), "a.res");
    EXPECT_EQ(key.GetSubId(), 3u);

    OvReseauFile file;
    file.SetName("b.res");
    file.SetSubId(5);
    OvReseauDataDesc desc(key);
    desc.Set(&file);
    EXPECT_EQ(desc.GetName(), "b.res");
    EXPECT_EQ(desc.GetSubId(), 5u);
    desc.Set(nullptr);
    EXPECT_EQ(desc.GetName(), "");
    EXPECT_EQ(desc.GetSubId(), 0u);
    desc.Set(String("c.res"), 1);
    desc = key;
    EXPECT_EQ(desc.GetName(), "a.res");
}

TEST(ReseauDataDesc, MatchIgnoresCaseAndSubIdExactMatchNeedsTheSubId) {
    const OvReseauDataDesc key("C:\\Res\\RMK.res", 1);
    EXPECT_TRUE(key.Match(OvReseauDataDesc("c:\\res\\rmk.RES", 2)));
    EXPECT_FALSE(key.ExactMatch(OvReseauDataDesc("c:\\res\\rmk.RES", 2)));
    EXPECT_TRUE(key.ExactMatch(OvReseauDataDesc("c:\\res\\rmk.RES", 1)));
    EXPECT_FALSE(key.Match(OvReseauDataDesc("C:\\Res\\RMK.re", 1)));
    EXPECT_TRUE(key == OvReseauDataDesc("c:\\res\\rmk.res", 1));
    EXPECT_TRUE(key != OvReseauDataDesc("c:\\res\\rmk.res", 0));
}

}  // namespace
}  // namespace orvo
