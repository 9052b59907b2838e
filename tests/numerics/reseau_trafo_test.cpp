// The reseau transformation: its object part, reading both file forms with every problem
// recorded (and the same stored result as the plain transformation reader), and writing.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "orvo/foundation/link.h"
#include "orvo/numerics/reseau_trafo.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace orvo {
namespace {

// Reads the block after "T" (current form) or "V" (old form) into a reseau transformation and,
// for comparison, the same block into a plain transformation; the rest of each block is skipped.
class Holder : public LinkHdl {
public:
    std::int32_t OnCurrent(void* arg) { return Take(arg, false); }
    std::int32_t OnOld(void* arg) { return Take(arg, true); }

    std::int32_t Take(void* arg, bool old) {
        auto* object = static_cast<OvReaderObject*>(arg);
        OvReader& reader = *object->GetReader();
        EXPECT_EQ(old ? reseau.ReadV50(object) : reseau.Read(object), 1);
        // Taken now: the reader takes a trailing error of this kind back when its run ends.
        names.clear();
        lines.clear();
        for (const OvReaderError* e = reader.GetReaderErrorList().First(); e != nullptr;
             e = e->Next()) {
            names.emplace_back(e->GetName().chars());
            lines.push_back(e->GetLine());
        }
        SkipRest(reader);
        return 1;
    }
    std::int32_t OnPlain(void* arg) {
        auto* object = static_cast<OvReaderObject*>(arg);
        plainOld ? plain.ReadV50(object) : plain.Read(object);
        SkipRest(*object->GetReader());
        return 1;
    }
    static void SkipRest(OvReader& reader) {
        while (reader.GetParser().GetToken().GetType() != TokenBlockEnd &&
               reader.GetParser().GetToken().GetType() != TokenEOF)
            reader.Advance();
    }
    std::int32_t OnError(void*) { return 1; }

    // Reads the text with the reseau transformation; returns the names of the errors recorded.
    std::vector<std::string> Read(const std::string& text) {
        std::istringstream in(text);
        OvReader reader(in, "old_project.pro");
        reader.SetParserErrorHdl(MakeLink(this, &Holder::OnError));
        reader.RegisterObject(OvReaderObject("T", MakeLink(this, &Holder::OnCurrent)));
        reader.RegisterObject(OvReaderObject("V", MakeLink(this, &Holder::OnOld)));
        reader.DoProcess(false);
        return names;
    }
    // Reads the same block with the plain transformation reader.
    void ReadPlain(const std::string& block, bool old) {
        plainOld = old;
        std::istringstream in("P " + block);
        OvReader reader(in, "plain");
        reader.SetParserErrorHdl(MakeLink(this, &Holder::OnError));
        reader.RegisterObject(OvReaderObject("P", MakeLink(this, &Holder::OnPlain)));
        reader.DoProcess(false);
    }

    OvReseauTrafo reseau;
    OvTrafo2d plain;
    bool plainOld = false;
    std::vector<std::string> names;
    std::vector<std::uint32_t> lines;
};

void ExpectSameTrafo(const OvTrafo2d& a, const OvTrafo2d& b) {
    EXPECT_EQ(a.GetType(), b.GetType());
    for (int i = 0; i < OvTrafo2d::kMaxParams; ++i)
        EXPECT_EQ(a.GetParam(i), b.GetParam(i)) << "parameter " << i;
}

TEST(ReseauTrafo, ObjectPartAndConstruction) {
    const OvReseauTrafo none;
    EXPECT_EQ(none.GetType(), eOvTrafo2DNone);
    EXPECT_EQ(none.GetId(), 0u);
    EXPECT_EQ(none.GetName().length(), 0);

    OvTrafo2d helmert;
    helmert.SetIdent();
    helmert.SetParam(0, 5.0);
    OvReseauTrafo copy(helmert);
    ExpectSameTrafo(copy, helmert);
    EXPECT_EQ(copy.GetId(), 0u);

    // Assigning a plain transformation keeps the object part; assigning a reseau one copies it.
    OvReseauTrafo named;
    named.SetId(7);
    named.SetName("grid.res");
    named = helmert;
    ExpectSameTrafo(named, helmert);
    EXPECT_EQ(named.GetId(), 7u);
    EXPECT_STREQ(named.GetName().chars(), "grid.res");
    OvReseauTrafo other;
    other = named;
    EXPECT_EQ(other.GetId(), 7u);
    EXPECT_STREQ(other.GetName().chars(), "grid.res");
    EXPECT_EQ(other.GetParam(0), 5.0);
}

TEST(ReseauTrafo, ReadsWhatThePlainReaderReads) {
    const std::vector<std::string> blocks = {
        "{ 1 0.5 2 -3 4e-2 }",
        "{ 2 1 2 3 4 5 6 }",
        "{ 3 1 2 3 4 5 6 7 8 }",
        "{ 0 }",
        "{ 5 }",
        "{ 9 }",
        "{ 2 1 2 }",
        "{ 1 1 x 3 4 }",
        "{ 1 -0 \"s\" -0.0 7 }",
        "{ 4 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 }",
        "{ 1 }",
        "{ -1 2 }",
    };
    for (const std::string& block : blocks) {
        for (bool old : {false, true}) {
            Holder h;
            h.Read((old ? "V " : "T ") + block);
            h.ReadPlain(block, old);
            SCOPED_TRACE(block);
            ExpectSameTrafo(h.reseau, h.plain);
            for (int i = 0; i < OvTrafo2d::kMaxParams; ++i)
                EXPECT_EQ(std::signbit(h.reseau.GetParam(i)), std::signbit(h.plain.GetParam(i)));
        }
    }
}

TEST(ReseauTrafo, ReportsEveryProblemWithItsLine) {
    Holder clean;
    EXPECT_TRUE(clean.Read("T { 1 1 0 0 1 }").empty());

    Holder shortBlock;
    EXPECT_EQ(shortBlock.Read("T {\n 2\n 1 2\n }"),
              std::vector<std::string>{"transformation: the block ends before all parameters"});
    EXPECT_EQ(shortBlock.lines, std::vector<std::uint32_t>{4});
    EXPECT_EQ(shortBlock.reseau.GetType(), eOvTrafo2DAffin);
    EXPECT_EQ(shortBlock.reseau.GetParam(1), 2.0);
    EXPECT_EQ(shortBlock.reseau.GetParam(2), 0.0);

    Holder word;
    EXPECT_EQ(word.Read("T {\n 1\n 1 x\n 3 4 }"),
              std::vector<std::string>{"transformation: a parameter is not a number"});
    EXPECT_EQ(word.lines, std::vector<std::uint32_t>{3});
    EXPECT_EQ(word.reseau.GetParam(1), 0.0);
    EXPECT_EQ(word.reseau.GetParam(3), 4.0);

    // An unknown code is stored as it is and reads no parameters.
    Holder unknown;
    EXPECT_EQ(unknown.Read("T {\n 17 }"),
              std::vector<std::string>{"transformation: unknown type code"});
    EXPECT_EQ(unknown.lines, std::vector<std::uint32_t>{2});
    EXPECT_EQ(static_cast<int>(unknown.reseau.GetType()), 17);
}

TEST(ReseauTrafo, OldFormTranslatesCodesAndTakesTheFileName) {
    Holder h;
    EXPECT_TRUE(h.Read("V { 0 1 2 3 4 5 6 7 8 }").empty());
    EXPECT_EQ(h.reseau.GetType(), eOvTrafo2DProjektiv);
    EXPECT_EQ(h.reseau.GetParam(7), 8.0);
    EXPECT_STREQ(h.reseau.GetName().chars(), "old_project.pro");

    Holder keep;
    keep.reseau.SetType(eOvTrafo2DAffin);
    EXPECT_EQ(keep.Read("V { 4 1 2 }"),
              std::vector<std::string>{"transformation: unknown type code of the old form"});
    EXPECT_EQ(keep.reseau.GetType(), eOvTrafo2DAffin);
    EXPECT_STREQ(keep.reseau.GetName().chars(), "old_project.pro");
}

TEST(ReseauTrafo, WritesTheTransformationOnly) {
    OvReseauTrafo t;
    t.SetType(eOvTrafo2DHelmert);
    t.SetParam(0, 1.5);
    t.SetParam(1, 1.0);
    t.SetId(9);
    t.SetName("ignored");
    OvWriterReset();
    std::ostringstream a;
    t.Write(a);
    OvWriterReset();
    std::ostringstream b;
    static_cast<const OvTrafo2d&>(t).Write(b);
    EXPECT_EQ(a.str(), b.str());
    EXPECT_EQ(a.str(), "1\n" + std::string(" ") + std::string(21, ' ') + "1.5" + std::string(" ") +
                           std::string(23, ' ') + "1" + " " + std::string(23, ' ') + "0" + " " +
                           std::string(23, ' ') + "0" + "\n");
}

}  // namespace
}  // namespace orvo
