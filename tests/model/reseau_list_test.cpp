// The list of reseau descriptions: lookup by key, reading files into it, refreshing entries.
#include <gtest/gtest.h>

#include <string>

#include "../support/temp_dir.h"
#include "orvo/model/reseau_list.h"
#include "orvo/textfile/reader.h"

namespace orvo {
namespace {

OvReseauFile* Named(const char* name, std::uint32_t subId, const char* info = "") {
    auto* file = new OvReseauFile;
    file->SetName(name);
    file->SetSubId(subId);
    file->SetInfoText(info);
    return file;
}

TEST(ReseauList, FindNeedsTheNameInAnyCaseAndTheSameSubId) {
    OvReseaufileList list;
    list.Add(Named("Canon EOS 5D", 1, "first"));
    list.Add(Named("Canon EOS 5D", 2));
    list.Add(Named("canon eos 5d", 1, "second"));

    const OvReseauDataDesc key("CANON EOS 5D", 1);
    const OvReseauFile* found = list.FindReseauFile(key);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->GetInfoText(), "first");  // the first in list order

    const OvReseauDataDesc otherSub("Canon EOS 5D", 3);
    EXPECT_EQ(list.FindReseauFile(otherSub), nullptr);
    EXPECT_TRUE(otherSub.Match(key));
    EXPECT_EQ(list.FindReseauFile(OvReseauDataDesc("Canon", 1)), nullptr);
    EXPECT_EQ(OvReseaufileList().FindReseauFile(key), nullptr);
}

TEST(ReseauList, CopiesAreDeep) {
    OvReseaufileList list;
    list.Add(Named("a.res", 0, "a"));
    list.Add(Named("b.res", 0, "b"));
    OvReseaufileList copy(list);
    OvReseaufileList assigned;
    assigned.Add(Named("old.res", 0));
    assigned = list;
    list.First()->SetInfoText("changed");
    ASSERT_EQ(copy.Count(), 2);
    ASSERT_EQ(assigned.Count(), 2);
    EXPECT_EQ(copy.First()->GetInfoText(), "a");
    EXPECT_EQ(assigned.First()->GetInfoText(), "a");
    EXPECT_EQ(assigned.Last()->GetName(), "b.res");
}

TEST(ReseauList, ReadingAFileAgainRefreshesItsEntryInPlace) {
    test::TempDir dir;
    const std::string name = dir.file("grid.res");
    test::WriteWholeFile(name, "\"one\" { 0 0 1 1 } { 0 0 1 1 } { 1 0 0 0 }\n");

    OvReseaufileList list;
    list.Add(Named("before.res", 0));
    EXPECT_EQ(list.ReadReseauFile(name.c_str()), 1);
    list.Add(Named("after.res", 0));
    ASSERT_EQ(list.Count(), 3);

    test::WriteWholeFile(name, "\"two\" { 0 0 2 2 } { 0 0 1 1 } { 1 0 0 0 } { 2 1 1 0 }\n");
    EXPECT_EQ(list.ReadReseauFile(name.c_str()), 1);
    ASSERT_EQ(list.Count(), 3);
    const OvReseauFile* middle = list.Get(1);
    EXPECT_EQ(middle->GetName(), name.c_str());
    EXPECT_EQ(middle->GetInfoText(), "two");
    EXPECT_EQ(middle->GetCrossList().Count(), 2);
    EXPECT_EQ(list.FindReseauFile(OvReseauDataDesc(name.c_str(), 0)), middle);
}

TEST(ReseauList, InvalidFileIsNotTaken) {
    test::TempDir dir;
    const std::string name = dir.file("broken.res");
    test::WriteWholeFile(name, "\"x\" { 0 0 1 } { 0 0 1 1 }\n");
    OvReseaufileList list;
    OvReaderErrorList errors;
    EXPECT_EQ(list.ReadReseauFile(name.c_str(), &errors), 0);
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(errors.Count(), 1);
    EXPECT_EQ(list.ReadReseauFile(dir.file("none.res").c_str()), 0);
    EXPECT_EQ(list.Count(), 0);
}

TEST(ReseauList, LaterDigitalLineWithTheSameKeyWins) {
    test::TempDir dir;
    const std::string name = dir.file("cams.dres");
    test::WriteWholeFile(name,
                         "{ \"A\" 0 \"old\" 10 10 1 1 }\n"
                         "{ \"B\" 0 \"b\" 10 10 1 1 }\n"
                         "{ \"a\" 0 \"new\" 20 20 2 2 }\n"
                         "{ \"A\" 1 \"sub 1\" 10 10 1 1 }\n");
    OvReseaufileList list;
    EXPECT_EQ(list.ReadReseauFile(name.c_str()), 4);
    ASSERT_EQ(list.Count(), 3);
    const OvReseauFile* a = list.FindReseauFile(OvReseauDataDesc("A", 0));
    ASSERT_EQ(a, list.First());
    EXPECT_EQ(a->GetInfoText(), "new");
    EXPECT_EQ(a->GetExifPixelWidth(), 20);
    EXPECT_EQ(list.FindReseauFile(OvReseauDataDesc("a", 1))->GetInfoText(), "sub 1");
}

}  // namespace
}  // namespace orvo
