// Point records are formatted in memory when the stream would print plain numbers, and by the
// stream itself otherwise. Both must give the bytes that the stream's own formatting gives:
// each value is printed here independently with `' ' << std::setw(width) << value` at
// precision 16 and compared with OvPoint::Write, with OvPointList::Write and with WriteFile, and
// with the stream path forced by a locale whose number facet is not the standard one's own type.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <iomanip>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "orvo/model/point_list.h"
#include "orvo/textfile/writer.h"
#include "temp_dir.h"

namespace orvo {
namespace {

using Table = TOvFormatTable<eOvPointRWMask>;

Table MakeTable(std::initializer_list<std::uint32_t> codes) {
    Table table;
    for (std::uint32_t code : codes)
        table.AddEntry(static_cast<eOvPointRWMask>(code));
    return table;
}

// The standard formatting under a type of its own: the stream prints as always, but the point
// writer cannot know that and leaves the formatting to the stream.
struct SameNumPut : std::num_put<char> {};

std::locale StreamPathLocale() {
    return std::locale(std::locale::classic(), new SameNumPut);
}

template <typename Value>
std::string Plain(const Value& value, int width, char fill = ' ') {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out.precision(16);
    out.fill(fill);
    out << ' ' << std::setw(width) << value;
    return out.str();
}

std::string Written(const OvPoint& p, const Table& format, const std::locale& locale,
                    char fill = ' ') {
    std::ostringstream out;
    out.imbue(locale);
    out.fill(fill);
    p.Write(out, format);
    return out.str();
}

// The doubles whose printing is easiest to get wrong: integers around the switch to exponent
// notation, signed zeros, subnormals and the extremes, values that need all 16 digits, halves
// of the 16th digit, and the non-finite values.
std::vector<double> HardValues() {
    const double inf = std::numeric_limits<double>::infinity();
    std::vector<double> values = {0.0,
                                  -0.0,
                                  1.0,
                                  -1.0,
                                  42.0,
                                  1e15,
                                  999999999999999.0,
                                  9999999999999998.0,
                                  1e16,
                                  1e17,
                                  9007199254740992.0,
                                  9007199254740993.0,
                                  123456789012345678.0,
                                  -4294967296.0,
                                  0.1,
                                  0.2,
                                  0.1 + 0.2,
                                  1.0 / 3.0,
                                  -2.0 / 3.0,
                                  3.141592653589793,
                                  1.234567890123456,
                                  1.2345678901234567,
                                  9.999999999999999,
                                  9.9999999999999995,
                                  0.99999999999999994,
                                  1.0000000000000002,
                                  1.00000000000000005,
                                  1e-4,
                                  9.99999999999999e-5,
                                  1e-5,
                                  0.0001234,
                                  1e-300,
                                  2.2250738585072014e-308,
                                  2.2250738585072009e-308,
                                  4.9406564584124654e-324,
                                  -1e-310,
                                  1.7976931348623157e308,
                                  -1.7976931348623157e308,
                                  1e300,
                                  9.999999999999999e22,
                                  1e23,
                                  5e-324,
                                  inf,
                                  -inf,
                                  std::numeric_limits<double>::quiet_NaN(),
                                  -std::numeric_limits<double>::quiet_NaN()};
    for (int e = -30; e <= 30; ++e) {
        values.push_back(std::pow(10.0, e));
        values.push_back(-std::pow(10.0, e) * 1.5);
        values.push_back(std::nextafter(std::pow(10.0, e), 0.0));
    }
    return values;
}

// Random bit patterns cover every exponent; random short decimals cover values whose
// 16-digit form ends in zeros that the general notation drops.
std::vector<double> RandomValues(std::size_t count) {
    std::mt19937_64 bits(12345);
    std::vector<double> values;
    for (std::size_t i = 0; i < count; ++i) {
        std::uint64_t word = bits();
        double value = 0.0;
        std::memcpy(&value, &word, sizeof value);
        values.push_back(value);
        values.push_back(
            static_cast<double>(static_cast<std::int64_t>(word % 2000000001) - 1000000000) /
            std::pow(10.0, static_cast<double>(word % 13)));
    }
    return values;
}

TEST(PointTextIdentityTest, EveryDoubleColumnPrintsAsTheStream) {
    const Table x = MakeTable({7});
    const Table redu = MakeTable({14});
    std::vector<double> values = HardValues();
    const std::vector<double> random = RandomValues(50000);
    values.insert(values.end(), random.begin(), random.end());
    for (double v : values) {
#ifdef _WIN32
        // That C runtime's stream prints a NaN with its sign bit set as "nan"; the records
        // write "-nan" as glibc's stream does, the same bytes on every system.
        if (std::isnan(v)) continue;
#endif
        OvPoint p(1, v, 0.0, 0.0, 0);
        p.SetR(0, v);
        const std::string expected21 = Plain(v, 21);
        ASSERT_EQ(Written(p, x, std::locale::classic()), expected21) << std::hexfloat << v;
        ASSERT_EQ(Written(p, x, StreamPathLocale()), expected21) << std::hexfloat << v;
        ASSERT_EQ(Written(p, redu, std::locale::classic()), Plain(v, 24)) << std::hexfloat << v;
    }
    // A few of the printed forms, spelled out.
    EXPECT_EQ(Plain(-0.0, 4), "   -0");
    EXPECT_EQ(Plain(1e16, 5), " 1e+16");
    EXPECT_EQ(Plain(0.1 + 0.2, 3), " 0.3");
    EXPECT_EQ(Plain(1.0 / 3.0, 1), " 0.3333333333333333");
}

TEST(PointTextIdentityTest, IntegerAndTextColumns) {
    const Table format = MakeTable({1, 2, 3, 4, 5, 6});
    const std::uint32_t ids[] = {0, 1, 9, 10, 999999999, 2147483648u, 4294967295u};
    const std::int16_t flags[] = {0, 1, 5, 7, 8, 123, -1, -32768, 32767};
    const char* names[] = {"",           "P",           "Name",
                           "exactly10c", "eleven char", "a much longer point name"};
    for (std::uint32_t id : ids) {
        for (std::int16_t flag : flags) {
            for (const char* name : names) {
                OvPoint p(id, 0.0, 0.0, 0.0, flag);
                p.SetName(String(name));
                p.SetPhotoId(id ^ 0x5555u);
                p.SetCameraId(~id);
                const std::string expected = Plain(id, 10) + Plain(p.GetControlFlagsAs123(), 4) +
                                             Plain(flag, 4) + Plain(name, 10) +
                                             Plain(id ^ 0x5555u, 10) + Plain(~id, 10);
                ASSERT_EQ(Written(p, format, std::locale::classic()), expected);
                ASSERT_EQ(Written(p, format, StreamPathLocale()), expected);
            }
        }
    }
}

TEST(PointTextIdentityTest, EveryColumnWithAnotherFillCharacter) {
    const Table every = MakeTable({1,  2,  3,  4,  5,  6,   7,   8,   9,   10,  11,  12,
                                   13, 14, 15, 16, 17, 105, 106, 107, 115, 116, 117, 999});
    OvPoint p(12, 1.5, -2.25, 1e-7, 5);
    p.SetName(String("PP7"));
    p.SetPhotoId(3);
    p.SetCameraId(4);
    for (int i = 0; i < 3; ++i) {
        p.SetD(i, 0.1 * (i + 1));
        p.SetR(i, -1e20 * (i + 1));
    }
    const double d0 = p.GetD(0), d1 = p.GetD(1), d2 = p.GetD(2);
    const double r0 = p.GetR(0), r1 = p.GetR(1), r2 = p.GetR(2);
    const double ds = std::sqrt(d0 * d0 + d1 * d1 + d2 * d2);
    const std::string expected =
        Plain(12u, 10, '*') + Plain(" 13", 4, '*') + Plain(static_cast<short>(5), 4, '*') +
        Plain("PP7", 10, '*') + Plain(3u, 10, '*') + Plain(4u, 10, '*') + Plain(1.5, 21, '*') +
        Plain(-2.25, 21, '*') + Plain(1e-7, 21, '*') + Plain(d0, 24, '*') + Plain(d1, 24, '*') +
        Plain(d2, 24, '*') + Plain(ds, 24, '*') + Plain(r0, 24, '*') + Plain(r1, 24, '*') +
        Plain(r2, 24, '*') + Plain(d0, 24, '*') + Plain(d1, 24, '*') + Plain(d2, 24, '*') +
        Plain(r0, 24, '*') + Plain(r1, 24, '*') + Plain(r2, 24, '*');
    EXPECT_EQ(Written(p, every, std::locale::classic(), '*'), expected);
    EXPECT_EQ(Written(p, every, StreamPathLocale(), '*'), expected);
}

// Stream settings under which the stream prints numbers differently are honoured: the record is
// then left to the stream, and the bytes are what the stream prints with those settings.
TEST(PointTextIdentityTest, StreamSettingsThatChangeNumbersAreHonoured) {
    const Table format = MakeTable({1, 7, 8});
    const OvPoint p(255, 1234.5, -0.000125, 0.0, 0);
    struct Setting {
        std::ios_base::fmtflags set;
        std::ios_base::fmtflags mask;
    };
    const Setting settings[] = {
        {std::ios_base::showpos, std::ios_base::showpos},
        {std::ios_base::showpoint, std::ios_base::showpoint},
        {std::ios_base::scientific, std::ios_base::floatfield},
        {std::ios_base::fixed, std::ios_base::floatfield},
        {std::ios_base::uppercase | std::ios_base::scientific,
         std::ios_base::uppercase | std::ios_base::floatfield},
        {std::ios_base::hex, std::ios_base::basefield},
        {std::ios_base::oct, std::ios_base::basefield},
        {std::ios_base::fixed | std::ios_base::scientific, std::ios_base::floatfield},
    };
    for (const Setting& s : settings) {
        std::ostringstream expected;
        expected.imbue(std::locale::classic());
        expected.precision(16);
        expected.setf(s.set, s.mask);
        expected << ' ' << std::setw(10) << 255u << ' ' << std::setw(21) << 1234.5 << ' '
                 << std::setw(21) << -0.000125;
        std::ostringstream out;
        out.imbue(std::locale::classic());
        out.setf(s.set, s.mask);
        p.Write(out, format);
        EXPECT_EQ(out.str(), expected.str()) << s.set;
    }

    // A width left pending by the caller pads the first column's blank.
    std::ostringstream pending;
    pending.width(3);
    p.Write(pending, format);
    EXPECT_EQ(pending.str(), "  " + Plain(255u, 10) + Plain(1234.5, 21) + Plain(-0.000125, 21));

    // A decimal comma from the host's locale is printed as the stream does.
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
    };
    std::ostringstream comma;
    comma.imbue(std::locale(std::locale::classic(), new Comma));
    p.Write(comma, format);
    EXPECT_EQ(comma.str(), Plain(255u, 10) + " " + std::string(15, ' ') + "1234,5" + " " +
                               std::string(12, ' ') + "-0,000125");
}

TEST(PointTextIdentityTest, StreamStateAfterARecord) {
    const OvPoint p(1, 2.0, 3.0, 4.0, 0);
    for (const std::locale& locale : {std::locale::classic(), StreamPathLocale()}) {
        std::ostringstream out;
        out.imbue(locale);
        out.setf(std::ios_base::left, std::ios_base::adjustfield);
        out.precision(3);
        p.Write(out, MakeTable({7}));
        EXPECT_EQ(out.precision(), 16);
        EXPECT_EQ(out.width(), 0);
        EXPECT_EQ(out.flags() & std::ios_base::adjustfield, std::ios_base::right);
        out << std::setw(4) << 7;
        EXPECT_EQ(out.str(), Plain(2.0, 21) + "   7");

        // An empty format writes nothing and leaves the alignment alone.
        std::ostringstream empty;
        empty.imbue(locale);
        empty.setf(std::ios_base::left, std::ios_base::adjustfield);
        p.Write(empty, MakeTable({17, 999}));
        EXPECT_EQ(empty.str(), "");
        EXPECT_EQ(empty.flags() & std::ios_base::adjustfield, std::ios_base::left);
        EXPECT_EQ(empty.precision(), 16);
    }
}

// Counts the flushes that reach it.
class FlushCounter : public std::stringbuf {
public:
    int flushes = 0;

protected:
    int sync() override {
        ++flushes;
        return std::stringbuf::sync();
    }
};

OvPointList RandomList(int count, const Table& mask) {
    std::mt19937_64 bits(99);
    std::uniform_real_distribution<double> coordinate(-5000.0, 5000.0);
    OvPointList list(mask);
    for (int i = 0; i < count; ++i) {
        OvPoint* p = new OvPoint(static_cast<unsigned>(i + 1), coordinate(bits), coordinate(bits),
                                 coordinate(bits) * 1e-3, static_cast<short>(i % 8));
        p->SetPhotoId(static_cast<std::uint32_t>(i % 17));
        for (int k = 0; k < 3; ++k) {
            p->SetD(k, coordinate(bits) * 1e-6);
            p->SetR(k, coordinate(bits) * 1e9);
        }
        list.Add(p);
    }
    return list;
}

TEST(PointTextIdentityTest, ListLinesFlushAndIndentAsOvendl) {
    const OvPointList list = RandomList(50, MakeTable({1, 2, 7, 8, 9, 13, 115}));
    std::string expected;
    for (const OvPoint* p = list.First(); p != nullptr; p = p->Next()) {
        if (p != list.First()) expected += "\n        ";  // two indentation units
        expected += Plain(p->GetId(), 10) + Plain(p->GetControlFlagsAs123(), 4) +
                    Plain(p->GetX(), 21) + Plain(p->GetY(), 21) + Plain(p->GetZ(), 21) +
                    Plain(std::sqrt(p->GetD(0) * p->GetD(0) + p->GetD(1) * p->GetD(1) +
                                    p->GetD(2) * p->GetD(2)),
                          24) +
                    Plain(p->GetR(0), 24);
    }
    for (const std::locale& locale : {std::locale::classic(), StreamPathLocale()}) {
        OvWriterReset();
        std::ostream indent(nullptr);
        indent << OvTabPlus << OvTabPlus;
        FlushCounter buffer;
        std::ostream out(&buffer);
        out.imbue(locale);
        list.Write(out);
        EXPECT_EQ(buffer.str(), expected);
        EXPECT_EQ(buffer.flushes, 49);  // one per line end
    }
    OvWriterReset();
}

TEST(PointTextIdentityTest, WriteFileGivesTheStreamsBytes) {
    // Records of every column, enough of them to cross the pieces the file is handed in.
    const OvPointList list =
        RandomList(4000, MakeTable({1,  2,  3,  5,  6,  7,   8,   9,   10,  11,  12,
                                    13, 14, 15, 16, 17, 105, 106, 107, 115, 116, 117}));
    std::ostringstream expected;
    expected.imbue(StreamPathLocale());  // every number through the stream's own formatting
    OvWriterReset();
    list.Write(expected);
    ASSERT_GT(expected.str().size(), 1u << 20);

    test::TempDir dir;
    const std::string name = dir.file("points.txt");
    EXPECT_EQ(list.WriteFile(String(name.c_str())), 1);
    EXPECT_EQ(test::ReadWholeFile(name), expected.str());

    const OvPointList one = RandomList(1, MakeTable({7, 8}));
    EXPECT_EQ(one.WriteFile(String(name.c_str())), 1);
    EXPECT_EQ(test::ReadWholeFile(name),
              Plain(one.First()->GetX(), 21) + Plain(one.First()->GetY(), 21));
    const OvPointList none(MakeTable({7, 8}));
    EXPECT_EQ(none.WriteFile(String(name.c_str())), 1);
    EXPECT_EQ(test::ReadWholeFile(name), "");
}

}  // namespace
}  // namespace orvo
