#include "orvo/foundation/id_table.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>

#include "orvo/foundation/link.h"
#include "orvo/foundation/object.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

std::string Written(const OvIdTable& t) {
    std::ostringstream out;
    t.Write(out);
    return out.str();
}

std::string Written(const OvIdPairTable& t) {
    std::ostringstream out;
    t.Write(out);
    return out.str();
}

// "id" left-aligned in 10 columns.
std::string Field(const std::string& id) {
    return id + std::string(10 - id.size(), ' ');
}

class IdTableTest : public ::testing::Test {
protected:
    void SetUp() override { OvWriterReset(); }
    void TearDown() override { OvWriterReset(); }
};

TEST_F(IdTableTest, WriteLaysOutTenIdsPerLine) {
    OvIdTable empty;
    EXPECT_EQ(Written(empty), "\n");

    OvIdTable three;
    three.Add(1);
    three.Add(22);
    three.Add(4294967295u);
    EXPECT_EQ(Written(three), "1          22         4294967295 \n");

    OvIdTable twelve;
    std::string expected;
    for (unsigned id = 1; id <= 12; ++id) {
        twelve.Add(id);
        expected += Field(std::to_string(id)) + " ";
        if (id == 10) expected += "\n";
    }
    expected += "\n";
    EXPECT_EQ(Written(twelve), expected);

    OvIdTable ten;
    for (unsigned id = 0; id < 10; ++id)
        ten.Add(id);
    const std::string text = Written(ten);
    EXPECT_EQ(text.size(), 10u * 11u + 2u);
    EXPECT_EQ(text.substr(text.size() - 3), " \n\n");  // the tenth id's line end and the last
}

TEST_F(IdTableTest, WritePairsFivePerLineAndKeepsTheStreamFlags) {
    OvIdPairTable pairs;
    std::string expected;
    for (unsigned i = 1; i <= 6; ++i) {
        pairs.Add(OvIdPair(i, 100 * i));
        expected += Field(std::to_string(i)) + " " + Field(std::to_string(100 * i)) + "  ";
        if (i == 5) expected += "\n";
    }
    expected += "\n";
    EXPECT_EQ(Written(pairs), expected);
    EXPECT_EQ(Written(OvIdPairTable()), "\n");

    std::ostringstream out;
    out << std::right;
    OvIdTable one;
    one.Add(7);
    one.Write(out);
    out << std::setw(3) << 5;
    EXPECT_EQ(out.str(), "7          \n  5");
}

TEST_F(IdTableTest, LineEndsIndentInsideABlock) {
    OvIdTable t;
    for (unsigned id = 1; id <= 11; ++id)
        t.Add(id);
    std::ostringstream out;
    out << "IDS " << OvBeginBlockNL;
    t.Write(out);
    out << OvEndBlockNL;
    const std::string text = out.str();
    EXPECT_EQ(text.substr(0, 10), "IDS {\n    ");
    EXPECT_NE(text.find("10         \n    11         \n    \n}"), std::string::npos);
}

TEST(IdPair, OrdersByFirstThenSecond) {
    EXPECT_TRUE(OvIdPair(1, 9) < OvIdPair(2, 0));
    EXPECT_TRUE(OvIdPair(2, 1) < OvIdPair(2, 3));
    EXPECT_FALSE(OvIdPair(2, 3) < OvIdPair(2, 3));
    EXPECT_TRUE(OvIdPair(2, 3) <= OvIdPair(2, 3));
    EXPECT_FALSE(OvIdPair(3, 0) <= OvIdPair(2, 9));
    EXPECT_TRUE(OvIdPair(4, 5) == OvIdPair(4, 5));
    EXPECT_FALSE(OvIdPair(4, 5) == OvIdPair(5, 4));

    OvIdPairTable t;
    for (auto p : {OvIdPair(3, 1), OvIdPair(1, 2), OvIdPair(1, 1), OvIdPair(2, 7)})
        t.Add(p);
    t.Sort();
    EXPECT_EQ(t[0], OvIdPair(1, 1));
    EXPECT_EQ(t[3], OvIdPair(3, 1));
    EXPECT_EQ(t.BinSearchUp(OvIdPair(2, 7)), 2);
    EXPECT_EQ(t.BinSearchUp(OvIdPair(2, 8)), -1);
}

// ---- reading ----------------------------------------------------------------------------------

// Binds the blocks of a small test file to the tables and an object.
class Record : public LinkHdl {
public:
    std::int32_t OnIds(void* arg) { return ids.Read(static_cast<OvReaderObject*>(arg)); }
    std::int32_t OnPairs(void* arg) { return pairs.Read(static_cast<OvReaderObject*>(arg)); }
    std::int32_t OnObject(void* arg) { return object.Read(static_cast<OvReaderObject*>(arg)); }

    int Load(const std::string& text) {
        std::istringstream in(text);
        OvReader reader(in, String("test"));
        reader.RegisterObject(OvReaderObject("IDS", Link(this, &Record::OnIds)));
        reader.RegisterObject(OvReaderObject("PAIRS", Link(this, &Record::OnPairs)));
        reader.RegisterObject(OvReaderObject("OBJECT", Link(this, &Record::OnObject)));
        reader.RegisterObject(OvReaderObject("AFTER", &after));
        reader.DoProcess(false);
        return reader.GetReadErrorCount();
    }

    OvIdTable ids;
    OvIdPairTable pairs;
    OvObject object;
    int after = 0;
};

TEST_F(IdTableTest, ReadTakesTheIntegersOfTheBlock) {
    Record r;
    EXPECT_EQ(r.Load("IDS {\n 5 7\n 3 ; comment\n 4000000000 }\nAFTER 9\n"), 0);
    ASSERT_EQ(r.ids.Size(), 4);
    EXPECT_EQ(r.ids[0], 5u);
    EXPECT_EQ(r.ids[2], 3u);
    EXPECT_EQ(r.ids[3], 4000000000u);  // beyond the signed 32-bit range, kept exactly
    EXPECT_EQ(r.after, 9);             // the reader goes on behind the block
}

TEST_F(IdTableTest, ReadPairsDropsALoneLastId) {
    Record r;
    EXPECT_EQ(r.Load("PAIRS { 1 2 3 4 5 }\nAFTER 1\n"), 0);
    ASSERT_EQ(r.pairs.Size(), 2);
    EXPECT_EQ(r.pairs[1], OvIdPair(3, 4));
    EXPECT_EQ(r.after, 1);

    Record empty;
    EXPECT_EQ(empty.Load("IDS { }\nPAIRS {}\nAFTER 2\n"), 0);
    EXPECT_EQ(empty.ids.Size(), 0);
    EXPECT_EQ(empty.pairs.Size(), 0);
    EXPECT_EQ(empty.after, 2);
}

TEST_F(IdTableTest, ReadClampsOutOfRangeIds) {
    Record r;
    EXPECT_EQ(r.Load("IDS { -3 99999999999 }"), 0);
    ASSERT_EQ(r.ids.Size(), 2);
    EXPECT_EQ(r.ids[0], 0u);
    EXPECT_EQ(r.ids[1], 4294967295u);
}

TEST_F(IdTableTest, ANonIntegerIsAReadError) {
    Record r;
    // With a parser-error handler missing, reading stops at the bad token; the error is a
    // status-5 one and, being the last recorded, it is taken back by the reader.
    r.Load("IDS { 1 2.5 3 }\nAFTER 4\n");
    EXPECT_EQ(r.ids.Size(), 1);
    EXPECT_EQ(r.after, 0);

    Record s;
    s.Load("IDS { 1 \"x\" }");
    EXPECT_EQ(s.ids.Size(), 1);
}

TEST_F(IdTableTest, WrittenTablesReadBack) {
    OvIdTable ids;
    for (unsigned i = 0; i < 23; ++i)
        ids.Add(i * 2654435761u);
    OvIdPairTable pairs;
    for (unsigned i = 0; i < 12; ++i)
        pairs.Add(OvIdPair(i, 4294967295u - i));

    std::ostringstream out;
    out << "IDS " << OvBeginBlockNL;
    ids.Write(out);
    out << OvEndBlockNL << Ovendl << "PAIRS " << OvBeginBlockNL;
    pairs.Write(out);
    out << OvEndBlockNL << Ovendl;

    Record r;
    EXPECT_EQ(r.Load(out.str()), 0);
    EXPECT_TRUE(r.ids == ids);
    EXPECT_TRUE(r.pairs == pairs);
}

TEST_F(IdTableTest, ObjectReadsItsWrittenForm) {
    std::ostringstream out;
    out << "OBJECT {";
    OvObject(3000000000u, String("Punkt 1")).Write(out);
    out << " }\nAFTER 6\n";
    EXPECT_EQ(out.str(), "OBJECT { 3000000000 \"Punkt 1\" }\nAFTER 6\n");

    Record r;
    EXPECT_EQ(r.Load(out.str()), 0);
    EXPECT_EQ(r.object.GetId(), 3000000000u);
    EXPECT_STREQ(r.object.GetName().chars(), "Punkt 1");
    EXPECT_EQ(r.after, 6);
}

TEST_F(IdTableTest, ObjectReadRequiresAnIntegerThenAString) {
    Record r;
    r.object.SetName(String("old"));
    r.Load("OBJECT { 4 name }\nAFTER 1\n");  // a bare keyword is no string
    EXPECT_EQ(r.object.GetId(), 4u);
    EXPECT_STREQ(r.object.GetName().chars(), "old");
    EXPECT_EQ(r.after, 0);

    OvObject unbound;
    OvReaderObject loose;
    EXPECT_EQ(unbound.Read(&loose), 0);
    EXPECT_EQ(unbound.Read(nullptr), 0);
    OvIdTable t;
    EXPECT_EQ(t.Read(&loose), 0);
    EXPECT_EQ(OvIdPairTable().Read(nullptr), 0);
}

}  // namespace
}  // namespace orvo
