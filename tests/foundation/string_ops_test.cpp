// Case functions, comparisons, free helpers, positional substitution and stream I/O of String.
#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>

#include "orvo/foundation/string.h"

namespace orvo {
namespace {

String Capitalized(const char* text) {
    String s(text);
    s.capitalize();
    return s;
}

TEST(StringCase, UpDownReverse) {
    String s("Mixed Case 123!");
    s.upcase();
    EXPECT_EQ(s, "MIXED CASE 123!");
    s.downcase();
    EXPECT_EQ(s, "mixed case 123!");
    s.reverse();
    EXPECT_EQ(s, "!321 esac dexim");
    String odd("abc");
    odd.reverse();
    EXPECT_EQ(odd, "cba");

    String none;
    none.upcase();
    none.reverse();
    none.capitalize();
    EXPECT_EQ(none.allocation(), 0);
}

TEST(StringCase, CapitalizeSkipsTheCharacterAfterAWordEnd) {
    EXPECT_EQ(Capitalized("a.b"), "A.b");
    EXPECT_EQ(Capitalized("hello world"), "Hello wOrld");
    EXPECT_EQ(Capitalized("x  y"), "X  Y");
    EXPECT_EQ(Capitalized("HELLO"), "Hello");
    EXPECT_EQ(Capitalized("McDONALD"), "Mcdonald");
    EXPECT_EQ(Capitalized("it's o'neil"), "It's o'Neil");
    EXPECT_EQ(Capitalized("3d model"), "3d mOdel");
    EXPECT_EQ(Capitalized(" lead"), " Lead");
    EXPECT_EQ(Capitalized("a"), "A");
    EXPECT_EQ(Capitalized(""), "");
}

TEST(StringCompare, TerminatedTextsAsSignedChars) {
    EXPECT_EQ(compare(String("abc"), String("abc")), 0);
    EXPECT_EQ(compare(String("abc"), String("abd")), 'c' - 'd');
    EXPECT_EQ(compare(String("ab"), String("abc")), -'c');
    EXPECT_LT(compare(String("\xff"), String("a")), 0);  // 0xff is -1 as a signed char
    EXPECT_EQ(compare(String("abc"), "abc"), 0);
    EXPECT_EQ(compare(String("abc"), static_cast<const char*>(nullptr)), 1);
    EXPECT_EQ(compare(String(), static_cast<const char*>(nullptr)), 0);
}

TEST(StringCompare, ViewsCompareCounted) {
    String s("abcdef");
    EXPECT_EQ(compare(s.at(0, 2), String("abc")), -1);  // la - lb
    EXPECT_EQ(compare(String("abd"), s.at(0, 3)), 'd' - 'c');
    EXPECT_EQ(compare(s.at(0, 3), s.at(3, 3)), 'a' - 'd');
    EXPECT_EQ(compare(s.at(1, 2), "bc"), 0);
    EXPECT_EQ(compare(s.at(1, 2), "bcd"), -1);  // the text goes on
    EXPECT_EQ(compare(s.at(1, 3), "bc"), 'd');  // the text ends first
    EXPECT_EQ(compare(s.at(1, 3), static_cast<const char*>(nullptr)), 3);
}

TEST(StringCompare, FcompareIgnoresAsciiCase) {
    EXPECT_LT(fcompare("abc", "ABD"), 0);
    EXPECT_EQ(fcompare("abc", "ABC"), 0);
    EXPECT_EQ(fcompare("ab", "ABC"), -1);
    EXPECT_EQ(fcompare("_", "a"), '_' - 'A');  // letters are lifted to upper case
    EXPECT_EQ(fcompare("a[", "A{"), '[' - '{');
}

TEST(StringCompare, Operators) {
    const String a("apple");
    const String b("banana");
    EXPECT_TRUE(a == "apple");
    EXPECT_TRUE("apple" == a);
    EXPECT_TRUE(a != b);
    EXPECT_TRUE(a < b);
    EXPECT_TRUE(a <= b);
    EXPECT_TRUE(b > a);
    EXPECT_TRUE(b >= a);
    EXPECT_TRUE(a >= String("apple"));
    EXPECT_TRUE("banana" > a);
    EXPECT_FALSE("banana" < a);

    String c("pineapple");
    EXPECT_TRUE(c.from(4) == a);
    EXPECT_TRUE(a == c.from(4));
    EXPECT_TRUE(c.at(0, 4) == "pine");
    EXPECT_TRUE("pine" == c.at(0, 4));
    EXPECT_TRUE(c.at(0, 3) < "pine");
    EXPECT_TRUE("pine" > c.at(0, 3));
    EXPECT_TRUE(c.at(0, 4) != c.at(4, 4));
}

TEST(StringFree, Concatenation) {
    const String a("ab");
    String s("xyz");
    EXPECT_EQ(a + a, "abab");
    EXPECT_EQ(a + "cd", "abcd");
    EXPECT_EQ("cd" + a, "cdab");
    EXPECT_EQ(a + 'c', "abc");
    EXPECT_EQ('c' + a, "cab");
    EXPECT_EQ(a + s.at(1, 2), "abyz");
    EXPECT_EQ(s.at(0, 1) + a, "xab");
    EXPECT_EQ(s.at(0, 1) + s.at(2, 1), "xz");
    EXPECT_EQ(s.at(0, 1) + "!", "x!");
    EXPECT_EQ(s.at(0, 1) + '?', "x?");
    EXPECT_EQ(">" + s.at(1, 1), ">y");
    EXPECT_EQ((String() + String()).allocation(), 6);
}

TEST(StringFree, SplitKeepsInnerEmptyFields) {
    String res[10];
    ASSERT_EQ(split("a,,b,", res, 10, ","), 3);
    EXPECT_EQ(res[0], "a");
    EXPECT_EQ(res[1], "");
    EXPECT_EQ(res[2], "b");

    EXPECT_EQ(split("a::b::c", res, 2, "::"), 2);
    EXPECT_EQ(res[0], "a");
    EXPECT_EQ(res[1], "b");

    ASSERT_EQ(split("whole", res, 10, ""), 1);
    EXPECT_EQ(res[0], "whole");
    EXPECT_EQ(split("", res, 10, ","), 0);
    EXPECT_EQ(split(",x", res, 10, ","), 2);
    EXPECT_EQ(res[0], "");
    EXPECT_EQ(res[1], "x");

    // The source may be one of the results.
    res[0] = "p q";
    EXPECT_EQ(split(res[0], res, 10, " "), 2);
    EXPECT_EQ(res[0], "p");
    EXPECT_EQ(res[1], "q");
}

TEST(StringFree, TokenizeSkipsRunsOfDelimiters) {
    String res[4];
    ASSERT_EQ(tokenize("  a b\t\tc ", res, 4, " \t"), 3);
    EXPECT_EQ(res[0], "a");
    EXPECT_EQ(res[1], "b");
    EXPECT_EQ(res[2], "c");
    EXPECT_EQ(tokenize("1;2;3;4;5", res, 4, ";"), 4);
    EXPECT_EQ(res[3], "4");
    EXPECT_EQ(tokenize(";;;", res, 4, ";"), 0);
    EXPECT_EQ(tokenize("abc", res, 4, ""), 1);
    EXPECT_EQ(res[0], "abc");
}

TEST(StringFree, JoinReplicateCommonPrefixSuffix) {
    const String parts[] = {"a", "b", "c"};
    EXPECT_EQ(join(parts, 3, "-"), "a-b-c");
    EXPECT_EQ(join(parts, 1, "-"), "a");
    EXPECT_EQ(join(parts, 0, "-"), "");

    EXPECT_EQ(replicate('x', 3), "xxx");
    EXPECT_EQ(replicate(String("ab"), 3), "ababab");
    EXPECT_EQ(replicate('x', 0), "");
    EXPECT_EQ(replicate(String("ab"), -2), "");

    EXPECT_EQ(common_prefix("abcdef", "abcxyz"), "abc");
    EXPECT_EQ(common_prefix("abcdef", "abcxyz", 1), "bc");
    EXPECT_EQ(common_prefix("abc", "xyz"), "");
    EXPECT_EQ(common_prefix("abc", "abc", 5), "");
    EXPECT_EQ(common_prefix("abc", "abc", -1), "");
    EXPECT_EQ(common_suffix("xyzabc", "123abc"), "abc");
    EXPECT_EQ(common_suffix("xyzab!", "123ab?", -2), "ab");
    EXPECT_EQ(common_suffix("same", "same"), "same");
    EXPECT_EQ(common_suffix("abc", "abc", 0), "");
    EXPECT_EQ(common_suffix("abc", "abc", -10), "");
}

TEST(StringSprintf, PositionalSubstitutionDropsTheFollowingCharacter) {
    String t;
    EXPECT_EQ(Sprintf(t, "%1-%2", "a", "b"), 2);
    EXPECT_EQ(t, "ab");
    EXPECT_EQ(Sprintf(t, "x=%1;", "7"), 1);
    EXPECT_EQ(t, "x=7");
    EXPECT_EQ(Sprintf(t, "%1", "end"), 1);
    EXPECT_EQ(t, "end");
    EXPECT_EQ(Sprintf(t, "no placeholders"), 0);
    EXPECT_EQ(t, "no placeholders");
    EXPECT_EQ(Sprintf(t, "[%3 %1 %1 ]", "a", "b", "c"), 3);
    EXPECT_EQ(t, "[caa]");
    EXPECT_EQ(Sprintf(t, "%5 %4 .", "", "", "", "four", "five"), 2);
    EXPECT_EQ(t, "fivefour.");
    // Missing arguments are empty.
    EXPECT_EQ(Sprintf(t, "a%2 b"), 1);
    EXPECT_EQ(t, "ab");
}

TEST(StringSprintf, ArgumentsMaySupplyLaterPlaceholders) {
    String t;
    EXPECT_EQ(Sprintf(t, "%1", "%2", "z"), 2);
    EXPECT_EQ(t, "z");
    // An argument holding its own placeholder: each present "%1" is replaced once.
    EXPECT_EQ(Sprintf(t, "<%1> <%1>", "[%1]"), 2);
    EXPECT_EQ(t, "<[%1] <[%1]");
    // The target may be an argument too.
    t = "me";
    EXPECT_EQ(Sprintf(t, "%1!!", t), 1);
    EXPECT_EQ(t, "me!");
}

TEST(StringStream, OutputHonoursFieldWidth) {
    std::ostringstream out;
    const String s("ab");
    String t("xyz");
    out << std::setw(5) << s << '|' << std::left << std::setw(4) << t.at(1, 2) << '|' << s;
    EXPECT_EQ(out.str(), "   ab|yz  |ab");
    std::ostringstream nul;
    nul << String("a\0b", 3);
    EXPECT_EQ(nul.str(), std::string("a\0b", 3));
}

TEST(StringStream, ExtractReadsWhitespaceDelimitedWords) {
    std::istringstream in("  hello\tworld\n");
    String a;
    String b;
    String c("keep");
    in >> a >> b;
    EXPECT_EQ(a, "hello");
    EXPECT_EQ(b, "world");
    EXPECT_TRUE(in.good());
    in >> c;
    EXPECT_TRUE(in.fail());
    EXPECT_TRUE(in.eof());

    std::istringstream last("tail");
    last >> a;
    EXPECT_EQ(a, "tail");
    EXPECT_TRUE(last.eof());
    EXPECT_FALSE(last.fail());

    std::istringstream limited("abcdef");
    limited >> std::setw(3) >> a;
    EXPECT_EQ(a, "abc");
}

TEST(StringStream, ReadlineReturnsCharactersStored) {
    std::istringstream noNewline("abc");
    String x;
    EXPECT_EQ(readline(noNewline, x), 3);
    EXPECT_EQ(x, "abc");
    EXPECT_TRUE(noNewline.eof());

    std::istringstream lines("ab\ncd\n");
    EXPECT_EQ(readline(lines, x), 2);
    EXPECT_EQ(x, "ab");
    EXPECT_EQ(x.allocation(), 118);  // resized for 80 characters first
    EXPECT_FALSE(lines.eof());
    EXPECT_EQ(readline(lines, x, '\n', 0), 3);
    EXPECT_EQ(x, "cd\n");
    EXPECT_EQ(readline(lines, x), 0);
    EXPECT_TRUE(lines.eof());
    EXPECT_EQ(readline(lines, x), 0);  // nothing more once the stream has failed

    std::istringstream custom("k=v;rest");
    EXPECT_EQ(readline(custom, x, ';'), 3);
    EXPECT_EQ(x, "k=v");
}

TEST(StringStream, ReadlineGrowsByTheCapacityRule) {
    const std::string line(200, 'r');
    std::istringstream in(line + "\nnext\n");
    String x;
    EXPECT_EQ(readline(in, x), 200);
    EXPECT_EQ(x.allocation(), 246);
    EXPECT_EQ(std::string(x.chars()), line);
    EXPECT_TRUE(x.OK());

    const std::string huge(70000, 'h');
    std::istringstream big(huge + "\nafter\n");
    EXPECT_EQ(readline(big, x), 65535);
    EXPECT_EQ(x.length(), 65535);
    EXPECT_EQ(readline(big, x), 5);  // the rest of the long line was consumed
    EXPECT_EQ(x, "after");
}

}  // namespace
}  // namespace orvo
