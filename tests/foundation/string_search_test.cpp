// Searching, anchored tests, slicing views and editing of String.
#include <gtest/gtest.h>

#include "orvo/foundation/string.h"

namespace orvo {
namespace {

TEST(StringSearch, ForwardAndBackward) {
    const String s("xabcxab");
    EXPECT_EQ(s.index('a'), 1);
    EXPECT_EQ(s.index('a', 2), 5);
    EXPECT_EQ(s.index('a', -1), 5);  // last occurrence
    EXPECT_EQ(s.index('a', -3), 1);  // must be at or before index 4
    EXPECT_EQ(s.index("ab"), 1);
    EXPECT_EQ(s.index("ab", 2), 5);
    EXPECT_EQ(s.index("ab", -1), 5);
    EXPECT_EQ(s.index("ab", -2), 1);  // an "ab" ending at or before index 5
    EXPECT_EQ(s.index(String("cx")), 3);
    EXPECT_EQ(s.index("ab", 6), -1);  // would not fit completely
    EXPECT_EQ(s.index("ab", 100), -1);
    EXPECT_EQ(s.index('x', -100), -1);
    EXPECT_EQ(s.index("zz"), -1);
    EXPECT_EQ(s.index(s.at(4, 2)), 0);
}

TEST(StringSearch, EmptyTargetOrStringIsNeverFound) {
    const String s("abc");
    EXPECT_EQ(s.index(""), -1);
    EXPECT_EQ(s.contains(""), 0);
    EXPECT_EQ(s.contains(String()), 0);
    EXPECT_EQ(String().index('a'), -1);
    EXPECT_EQ(String().index(""), -1);
    EXPECT_EQ(s.index(static_cast<const char*>(nullptr)), -1);
    EXPECT_EQ(String().matches(""), 0);
}

TEST(StringSearch, ContainsAndMatchesAnchors) {
    const String abcd("abcd");
    EXPECT_EQ(abcd.contains("bc"), 1);
    EXPECT_EQ(abcd.contains('d'), 1);
    EXPECT_EQ(abcd.contains("bc", 1), 1);
    EXPECT_EQ(abcd.contains("bc", 2), 0);
    EXPECT_EQ(abcd.contains("cd", -1), 1);  // ends exactly at the last index
    EXPECT_EQ(abcd.contains("bc", -2), 1);
    EXPECT_EQ(abcd.contains("bc", -1), 0);
    EXPECT_EQ(abcd.contains('a', 0), 1);
    EXPECT_EQ(abcd.contains("cde", 2), 0);

    EXPECT_EQ(String("abc").matches("abc"), 1);
    EXPECT_EQ(abcd.matches("abc"), 0);
    EXPECT_EQ(abcd.matches("cd", 2), 1);
    EXPECT_EQ(abcd.matches("c", 2), 0);
    EXPECT_EQ(abcd.matches("abcd", -1), 1);  // the whole string
    EXPECT_EQ(abcd.matches("bcd", -1), 0);   // must start at 0
    EXPECT_EQ(abcd.matches("ab", -3), 1);    // from 0, ending at index 1
    EXPECT_EQ(String("a").matches('a'), 1);
}

TEST(StringSearch, FreqCountsOverlappingMatches) {
    const String s("aaaa");
    EXPECT_EQ(s.freq("aa"), 3);
    EXPECT_EQ(s.freq('a'), 4);
    EXPECT_EQ(s.freq(""), 0);
    EXPECT_EQ(String("abab").freq(String("ab")), 2);
    EXPECT_EQ(String().freq("a"), 0);
}

// A failed slice is the empty view of _nilString; assigning to it changes nothing. A valid
// empty view inserts on assignment. This tells the two apart.
bool IsNilView(String& s, SubString view) {
    const String before = s;
    view = "#";
    const bool unchanged = s == before;
    s = before;
    return unchanged && view.length() == 0;
}

TEST(StringSlice, IntegerForms) {
    String s("abcdef");
    EXPECT_EQ(s.at(1, 3), "bcd");
    EXPECT_EQ(s(0, 6), "abcdef");
    EXPECT_EQ(s.before(3), "abc");
    EXPECT_EQ(s.through(2), "abc");
    EXPECT_EQ(s.from(2), "cdef");
    EXPECT_EQ(s.after(2), "def");
    EXPECT_EQ(s.after(-1), "abcdef");  // starts at pos + 1 = 0

    EXPECT_TRUE(IsNilView(s, s.at(4, 3)));
    EXPECT_TRUE(IsNilView(s, s.at(-1, 2)));
    EXPECT_TRUE(IsNilView(s, s.at(2, -1)));
    EXPECT_TRUE(IsNilView(s, s.before(7)));
    EXPECT_TRUE(IsNilView(s, s.before(-1)));
    EXPECT_TRUE(IsNilView(s, s.through(6)));
    EXPECT_TRUE(IsNilView(s, s.from(7)));
    EXPECT_TRUE(IsNilView(s, s.after(6)));
    EXPECT_TRUE(IsNilView(s, s.at(2147483647, 2147483647)));

    // Empty but valid views at the ends.
    EXPECT_FALSE(IsNilView(s, s.at(6, 0)));
    EXPECT_FALSE(IsNilView(s, s.before(0)));
    EXPECT_FALSE(IsNilView(s, s.from(6)));
    EXPECT_FALSE(IsNilView(s, s.after(5)));
    EXPECT_EQ(s, "abcdef");
}

TEST(StringSlice, TargetForms) {
    String s("abcabc");
    EXPECT_EQ(s.before("c"), "ab");
    EXPECT_EQ(s.before("c", -1), "abcab");
    EXPECT_EQ(s.before('a'), "");
    EXPECT_EQ(s.through("bc"), "abc");
    EXPECT_EQ(s.through('b', 2), "abcab");
    EXPECT_EQ(s.from("ca"), "cabc");
    EXPECT_EQ(s.from(String("b"), -1), "bc");
    EXPECT_EQ(s.after("ab"), "cabc");
    EXPECT_EQ(s.after("ab", -1), "c");
    EXPECT_EQ(s.after("bc", -1), "");
    EXPECT_EQ(s.at('b', 2), "b");
    EXPECT_EQ(s.at("ca"), "ca");
    EXPECT_EQ(s.at(s.at(1, 2), 2), "bc");

    for (SubString (String::*slice)(const char*, int) :
         {static_cast<SubString (String::*)(const char*, int)>(&String::at),
          static_cast<SubString (String::*)(const char*, int)>(&String::before),
          static_cast<SubString (String::*)(const char*, int)>(&String::through),
          static_cast<SubString (String::*)(const char*, int)>(&String::from),
          static_cast<SubString (String::*)(const char*, int)>(&String::after)}) {
        EXPECT_TRUE(IsNilView(s, (s.*slice)("zz", 0)));
        EXPECT_TRUE(IsNilView(s, (s.*slice)("", 0)));
    }
}

TEST(StringSlice, ConstStringsSliceReadOnly) {
    const String s("key=value");
    EXPECT_EQ(s.before('='), "key");
    EXPECT_EQ(s.after('='), "value");
    EXPECT_EQ(String(s.at(4, 5)), "value");
    EXPECT_EQ(s.from("val").length(), 5);
    EXPECT_EQ(s.through(2), "key");
}

TEST(StringSlice, NilStringStaysUntouched) {
    String s("abc");
    s.before("zz") = "would be a write into the shared empty string";
    s.after(10) = 'x';
    EXPECT_EQ(_nilString.length(), 0);
    EXPECT_EQ(_nilString.allocation(), 0);
    EXPECT_EQ(_nilStrRep.len, 0);
    EXPECT_EQ(_nilStrRep.s[0], '\0');
    EXPECT_EQ(s, "abc");
}

TEST(StringEdit, DelByPositionAndTarget) {
    String s("abcdef");
    s.del(1, 2);
    EXPECT_EQ(s, "adef");
    s.del(-1, 2);
    s.del(2, 0);
    s.del(2, -1);
    s.del(3, 2);
    EXPECT_EQ(s, "adef");
    s.del(3, 1);
    EXPECT_EQ(s, "ade");

    String t("a-b-c");
    t.del('-', -1);
    EXPECT_EQ(t, "a-bc");
    t.del("-b");
    EXPECT_EQ(t, "ac");
    t.del("zz");
    EXPECT_EQ(t, "ac");
    t.del(String("ac"));
    EXPECT_EQ(t, "");
    EXPECT_TRUE(t.OK());

    String none;
    none.del(0, 1);
    EXPECT_EQ(none.allocation(), 0);
}

TEST(StringEdit, GsubReplacesNonOverlappingLeftToRight) {
    String s("aaa");
    EXPECT_EQ(s.gsub("aa", "b"), 1);
    EXPECT_EQ(s, "ba");

    String grow("a.b.c");
    EXPECT_EQ(grow.gsub(".", "<dot>"), 2);
    EXPECT_EQ(grow, "a<dot>b<dot>c");

    String none("abc");
    const char* buffer = none.chars();
    EXPECT_EQ(none.gsub("x", "y"), 0);
    EXPECT_EQ(none.chars(), buffer);
    EXPECT_EQ(none.gsub("", "y"), 0);

    String shrink("xxabxxab");
    buffer = shrink.chars();
    EXPECT_EQ(shrink.gsub(String("ab"), String()), 2);
    EXPECT_EQ(shrink, "xxxx");
    EXPECT_EQ(shrink.chars(), buffer);  // fits back into the buffer

    String self("ab");
    EXPECT_EQ(self.gsub("a", self), 1);
    EXPECT_EQ(self, "abb");
    EXPECT_EQ(self.gsub(self.at(1, 1), "B"), 2);
    EXPECT_EQ(self, "aBB");
}

TEST(SubStringAssign, GrowsAndShrinksTheString) {
    String s("abcdef");
    s.at(1, 2) = "XYZW";
    EXPECT_EQ(s, "aXYZWdef");
    s.at(1, 4) = "q";
    EXPECT_EQ(s, "aqdef");
    s.at(0, 1) = 'Z';
    EXPECT_EQ(s, "Zqdef");
    s.from(3) = String("!");
    EXPECT_EQ(s, "Zqd!");
    s.at(4, 0) = "end";
    EXPECT_EQ(s, "Zqd!end");
    s.before(0) = "<";
    EXPECT_EQ(s, "<Zqd!end");
    s.at(0, 8) = "";
    EXPECT_EQ(s, "");
    EXPECT_TRUE(s.OK());

    // Growing past the capacity moves the text to a bigger buffer.
    String small("abc");
    small.at(1, 1) = "0123456789";
    EXPECT_EQ(small, "a0123456789c");
    EXPECT_EQ(small.allocation(), 22);

    // The view covers the new text afterwards.
    String v("one two");
    SubString word = v.after(' ');
    word = "three";
    EXPECT_EQ(word.length(), 5);
    EXPECT_EQ(word, "three");
    EXPECT_EQ(v, "one three");
}

TEST(SubStringAssign, SourceAliasingTheTarget) {
    String s("abcd");
    s.at(1, 2) = s;
    EXPECT_EQ(s, "aabcdd");
    s.at(0, 2) = s.at(4, 2);
    EXPECT_EQ(s, "ddbcdd");
    s.from(2) = s.before(2);
    EXPECT_EQ(s, "dddd");
    SubString middle = s.at(1, 2);
    const SubString& alias = middle;
    middle = alias;
    EXPECT_EQ(s, "dddd");
    EXPECT_TRUE(s.OK());
}

TEST(SubStringQueries, ContainsMatchesAndOK) {
    String s("hello world");
    const SubString world = s.after(' ');
    EXPECT_EQ(world.contains("orl"), 1);
    EXPECT_EQ(world.contains('h'), 0);
    EXPECT_EQ(world.contains(String("wor")), 1);
    EXPECT_EQ(world.matches("world"), 1);
    EXPECT_EQ(world.matches("worl"), 0);
    EXPECT_EQ(world.matches("ld", 3), 1);
    EXPECT_EQ(s.before(' ').matches(s.at(0, 5)), 1);
    EXPECT_EQ(world.empty(), 0);

    EXPECT_EQ(world.OK(), 1);       // reaches the end
    EXPECT_EQ(s.at(0, 2).OK(), 0);  // kept as always: a view short of the end fails
    EXPECT_EQ(s.at("zz").OK(), 0);  // the nil view: empty string
}

TEST(SubStringQueries, StaleViewIsClippedToTheCurrentText) {
    String s("abcdefgh");
    const SubString tail = s.from(5);
    s.del(0, 6);  // "gh": the view now starts beyond the text
    EXPECT_EQ(tail.valid_length(), 0);
    EXPECT_EQ(String(tail), "");
    s = "0123456789";
    EXPECT_EQ(tail.valid_length(), 3);
    EXPECT_EQ(String(tail), "567");
}

TEST(StringAccess, IndexingAndOutOfRange) {
    String s("abc");
    EXPECT_EQ(s[0], 'a');
    EXPECT_EQ(s.elem(2), 'c');
    EXPECT_EQ(s.firstchar(), 'a');
    EXPECT_EQ(s.lastchar(), 'c');
    s[1] = 'B';
    EXPECT_EQ(s, "aBc");

    s[3] = 'X';  // out of range: lands on a scratch character
    s[-1] = 'Y';
    EXPECT_EQ(s, "aBc");
    EXPECT_EQ(s.length(), 3);
    EXPECT_TRUE(s.OK());

    const String& cs = s;
    EXPECT_EQ(cs[3], '\0');
    EXPECT_EQ(cs[100], '\0');
    EXPECT_EQ(cs.elem(-5), '\0');

    String none;
    none[0] = 'Z';
    EXPECT_EQ(none.length(), 0);
    EXPECT_EQ(_nilStrRep.s[0], '\0');
    EXPECT_EQ(String().lastchar(), '\0');
    EXPECT_EQ(String().firstchar(), '\0');
    const char* text = s;
    EXPECT_STREQ(text, "aBc");
}

}  // namespace
}  // namespace orvo
