#include "orvo/textfile/filename.h"

#include <gtest/gtest.h>

#include <string>

#include "orvo/textfile/filetype.h"
#include "temp_dir.h"

namespace {

using orvo::OvGetFilename;
using orvo::OvGetFilenameNoExt;
using orvo::OvGetPath;

std::string Name(const char* path) {
    return OvGetFilename(path).chars();
}
std::string NoExt(const char* path) {
    return OvGetFilenameNoExt(path).chars();
}
std::string Dir(const char* path) {
    return OvGetPath(path).chars();
}

TEST(Filename, WindowsAndPosixPaths) {
    EXPECT_EQ(Dir("C:\\data\\a.pro"), "C:\\data");
    EXPECT_EQ(Name("C:\\data\\a.pro"), "a.pro");
    EXPECT_EQ(NoExt("C:\\data\\a.pro"), "a");

    EXPECT_EQ(Dir("/home/u/proj.v2/b.tar.gz"), "/home/u/proj.v2");
    EXPECT_EQ(Name("/home/u/proj.v2/b.tar.gz"), "b.tar.gz");
    EXPECT_EQ(NoExt("/home/u/proj.v2/b.tar.gz"), "b.tar");
    // Mixed separators: the last one of any kind counts.
    EXPECT_EQ(Name("C:a/b\\c"), "c");
    EXPECT_EQ(Dir("C:a/b\\c"), "C:a/b");
    EXPECT_EQ(Name("C:file.coo"), "file.coo");
    EXPECT_EQ(Dir("C:file.coo"), "C");
}

TEST(Filename, BareNamesAndLeadingSeparator) {
    EXPECT_EQ(NoExt("readme"), "");
    EXPECT_EQ(Dir("readme"), "");
    EXPECT_EQ(Name("readme"), "readme");
    // The separator at index 0 is never taken.
    EXPECT_EQ(Name("/a.pro"), "/a.pro");
    EXPECT_EQ(Dir("/a.pro"), "");
    EXPECT_EQ(NoExt("/a.pro"), "/a");
    // A leading dot is not an extension; a dot in the directory does not count either.
    EXPECT_EQ(NoExt(".profile"), "");
    EXPECT_EQ(NoExt("dir.d/readme"), "");
    // A trailing separator leaves an empty name.
    EXPECT_EQ(Name("a/b/"), "");
    EXPECT_EQ(Dir("a/b/"), "a/b");
    EXPECT_EQ(Name(""), "");
    EXPECT_EQ(Dir(""), "");
    EXPECT_EQ(NoExt(""), "");
}

TEST(Filename, ExistFile) {
    orvo::test::TempDir dir;
    orvo::test::WriteWholeFile(dir.file("there"), "x");
    EXPECT_TRUE(orvo::OvExistFile(dir.file("there").c_str()));
    EXPECT_FALSE(orvo::OvExistFile(dir.file("missing").c_str()));
    EXPECT_FALSE(orvo::OvExistFile(dir.path().string().c_str()));
    EXPECT_FALSE(orvo::OvExistFile(""));
    EXPECT_FALSE(orvo::OvExistFile(nullptr));
}

TEST(Filetype, ExtensionTable) {
    const char* expected[] = {"pro", "coo", "aor", "sip",  "imo", "aob",
                              "log", "mlg", "res", "dres", ""};
    for (int type = 0; type <= 10; ++type) {
        EXPECT_STREQ(orvo::GetOvExtension(static_cast<orvo::eOrvoFiletype>(type)), expected[type])
            << type;
    }
    EXPECT_STREQ(orvo::GetOvExtension(orvo::eOrvoFiletypeDres), "dres");
    // Values outside the table read nothing beyond it.
    EXPECT_STREQ(orvo::GetOvExtension(static_cast<orvo::eOrvoFiletype>(11)), "");
    EXPECT_STREQ(orvo::GetOvExtension(static_cast<orvo::eOrvoFiletype>(-1)), "");
}

}  // namespace
