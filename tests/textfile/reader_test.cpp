#include "orvo/textfile/reader.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "orvo/services/logger.h"
#include "temp_dir.h"

namespace orvo {
namespace {

// A reader over an in-memory text; the stream lives as long as the reader.
struct TextReader {
    explicit TextReader(const std::string& text) : in(text), reader(in, String("memory.txt")) {}
    std::istringstream in;
    OvReader reader;
};

std::vector<std::pair<unsigned, eOvParserStatus>> Errors(const OvReader& reader) {
    std::vector<std::pair<unsigned, eOvParserStatus>> result;
    for (const OvReaderError* e = reader.GetReaderErrorList().First(); e != nullptr;
         e = e->Next()) {
        result.emplace_back(e->GetLine(), e->GetStatus());
    }
    return result;
}

using ErrorList = std::vector<std::pair<unsigned, eOvParserStatus>>;

// Records what reaches a handler: the keyword of the object and the token it was called on.
class Recorder : public LinkHdl {
public:
    std::int32_t OnValue(void* arg) {
        auto* object = static_cast<OvReaderObject*>(arg);
        const OvParserToken& token = object->GetReader()->GetParser().GetToken();
        seen.push_back(std::string(object->GetKeyword()) + ":" + TokenText(token));
        return 1;
    }
    std::int32_t OnReaderEvent(void* arg) {
        auto* reader = static_cast<OvReader*>(arg);
        seen.push_back(std::string("reader:") + TokenText(reader->GetParser().GetToken()));
        return result;
    }
    static std::string TokenText(const OvParserToken& token) {
        switch (token.GetType()) {
            case TokenInt:
                return std::to_string(token.ivalue);
            case TokenBlockBegin:
                return "{";
            case TokenBlockEnd:
                return "}";
            default:
                return token.text;
        }
    }

    std::int32_t result = 1;
    std::vector<std::string> seen;
};

TEST(OvReaderObjectTest, ConstructorsSetKeywordKindAndDestination) {
    int i = 0;
    bool b = false;
    double d = 0.0;
    String s;
    Recorder recorder;
    const Link link(&recorder, &Recorder::OnValue);

    EXPECT_STREQ(OvReaderObject().GetKeyword(), "");
    EXPECT_EQ(OvReaderObject().GetValueType(), ReaderValueHandler0);
    EXPECT_EQ(OvReaderObject("I", &i).GetValueType(), ReaderValueInt);
    EXPECT_FALSE(OvReaderObject("I", &i).IsBool());
    EXPECT_EQ(OvReaderObject("B", &b).GetValueType(), ReaderValueInt);
    EXPECT_TRUE(OvReaderObject("B", &b).IsBool());
    EXPECT_EQ(OvReaderObject("D", &d).GetValueType(), ReaderValueNumber);
    EXPECT_EQ(OvReaderObject("S", &s).GetValueType(), ReaderValueString);
    EXPECT_EQ(OvReaderObject("H", link).GetValueType(), ReaderValueHandler);
    EXPECT_TRUE(OvReaderObject("H", link).GetHandler() == link);

    const OvReaderObject two("IGNORED", link, Link(&recorder, &Recorder::OnReaderEvent));
    EXPECT_STREQ(two.GetKeyword(), "");
    EXPECT_EQ(two.GetValueType(), ReaderValueHandler0);
    EXPECT_TRUE(two.GetHandler2().IsSet());

    const OvReaderObject catchAll(link);
    EXPECT_STREQ(catchAll.GetKeyword(), "_NOT_DEFINED");
    EXPECT_EQ(catchAll.GetValueType(), ReaderValueHandler);
    EXPECT_EQ(catchAll.GetReader(), nullptr);
}

TEST(OvReaderObjectTest, KeywordIsCutAt28CharactersAndCopiedWithTheObject) {
    int i = 0;
    const OvReaderObject longOne("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789", &i);
    EXPECT_STREQ(longOne.GetKeyword(), "ABCDEFGHIJKLMNOPQRSTUVWXYZ01");
    EXPECT_TRUE(longOne.IsKeyword("ABCDEFGHIJKLMNOPQRSTUVWXYZ01"));
    EXPECT_FALSE(longOne.IsKeyword("ABCDEFGHIJKLMNOPQRSTUVWXYZ012"));
    EXPECT_FALSE(longOne.IsKeyword(nullptr));

    OvReaderObject copy(longOne);
    EXPECT_STREQ(copy.GetKeyword(), longOne.GetKeyword());
    EXPECT_EQ(copy.GetValueType(), ReaderValueInt);
    OvReaderObject assigned;
    assigned = longOne;
    EXPECT_TRUE(assigned.IsKeyword("ABCDEFGHIJKLMNOPQRSTUVWXYZ01"));
    EXPECT_EQ(OvReaderObject().RegisterObject(longOne), nullptr);
    EXPECT_EQ(OvReaderObject().DoProcess(), 0);
}

TEST(OvReaderTest, BindsEveryValueType) {
    TextReader t(
        "; a comment line\n"
        "COUNT 42\n"
        "NEG -7 ! trailing comment\n"
        "SCALE 1.5e-3\n"
        "WHOLE 12\n"
        "TITLE \"hello world\"\n"
        "EMPTY \"\"\n"
        "ON 1\n"
        "OFF 0\n"
        "TWO 2\n");
    int count = 0, neg = 0;
    double scale = 0.0, whole = 0.0;
    String title, empty("not yet");
    bool on = false, off = true, two = false;
    OvReader& r = t.reader;
    OvReaderObject* registered = r.RegisterObject(OvReaderObject("COUNT", &count));
    EXPECT_EQ(registered->GetReader(), &r);
    r.RegisterObject(OvReaderObject("NEG", &neg));
    r.RegisterObject(OvReaderObject("SCALE", &scale));
    r.RegisterObject(OvReaderObject("WHOLE", &whole));
    r.RegisterObject(OvReaderObject("TITLE", &title));
    r.RegisterObject(OvReaderObject("EMPTY", &empty));
    r.RegisterObject(OvReaderObject("ON", &on));
    r.RegisterObject(OvReaderObject("OFF", &off));
    r.RegisterObject(OvReaderObject("TWO", &two));

    EXPECT_EQ(r.DoProcess(false), 1);
    EXPECT_EQ(count, 42);
    EXPECT_EQ(neg, -7);
    EXPECT_DOUBLE_EQ(scale, 1.5e-3);
    EXPECT_EQ(whole, 12.0);
    EXPECT_STREQ(title.chars(), "hello world");
    EXPECT_STREQ(empty.chars(), "");
    EXPECT_TRUE(on);
    EXPECT_FALSE(off);
    EXPECT_TRUE(two);
    EXPECT_EQ(r.GetReadErrorCount(), 0);
    EXPECT_STREQ(r.GetLastObject()->GetKeyword(), "TWO");
}

TEST(OvReaderTest, MissingKeywordsLeaveDefaultsAndCaseMatters) {
    TextReader t("count 5\nOTHER 3\n");
    int count = -1;
    double ratio = 0.25;
    t.reader.RegisterObject(OvReaderObject("COUNT", &count));
    t.reader.RegisterObject(OvReaderObject("RATIO", &ratio));
    t.reader.DoProcess(false);
    EXPECT_EQ(count, -1);
    EXPECT_EQ(ratio, 0.25);
    EXPECT_EQ(t.reader.GetReadErrorCount(), 0);
}

TEST(OvReaderTest, FirstRegistrationOfAKeywordWins) {
    TextReader t("VALUE 9\n");
    int first = 0, second = 0;
    t.reader.RegisterObject(OvReaderObject("VALUE", &first));
    t.reader.RegisterObject(OvReaderObject("VALUE", &second));
    t.reader.DoProcess(false);
    EXPECT_EQ(first, 9);
    EXPECT_EQ(second, 0);
}

TEST(OvReaderTest, IntegersBeyond32BitsAreClampedForIntsAndExactForNumbers) {
    TextReader t(
        "BIG 1000000000000000\n"
        "BIGINT 1000000000000000\n"
        "SMALLINT -99999999999\n"
        "FLAG 4294967296\n"
        "NEGNUM -4294967297\n");
    double big = 0.0, negnum = 0.0;
    int bigint = 0, smallint = 0;
    bool flag = false;
    t.reader.RegisterObject(OvReaderObject("BIG", &big));
    t.reader.RegisterObject(OvReaderObject("BIGINT", &bigint));
    t.reader.RegisterObject(OvReaderObject("SMALLINT", &smallint));
    t.reader.RegisterObject(OvReaderObject("FLAG", &flag));
    t.reader.RegisterObject(OvReaderObject("NEGNUM", &negnum));
    t.reader.DoProcess(false);
    EXPECT_EQ(big, 1e15);
    EXPECT_EQ(bigint, INT_MAX);
    EXPECT_EQ(smallint, INT_MIN);
    EXPECT_TRUE(flag);
    EXPECT_EQ(negnum, -4294967297.0);
    EXPECT_EQ(t.reader.GetReadErrorCount(), 0);
}

// A record that reads itself from the block it is constructed for, as data classes do.
class Lens : public LinkHdl {
public:
    explicit Lens(OvReaderObject* block) {
        block->RegisterObject(OvReaderObject("K1", &k1));
        block->RegisterObject(OvReaderObject("K2", &k2));
        block->DoProcess();
    }
    double k1 = 0.0;
    double k2 = 0.0;
};

class Camera : public LinkHdl {
public:
    explicit Camera(OvReaderObject* block) {
        block->RegisterObject(OvReaderObject("NAME", &name));
        block->RegisterObject(OvReaderObject("FOCAL", &focal));
        block->RegisterObject(OvReaderObject("ID", &id));
        block->RegisterObject(OvReaderObject("LENS", Link(this, &Camera::OnLens)));
        block->DoProcess();
    }
    std::int32_t OnLens(void* arg) {
        lens = std::make_unique<Lens>(static_cast<OvReaderObject*>(arg));
        return 1;
    }

    String name;
    double focal = -1.0;
    int id = 0;
    std::unique_ptr<Lens> lens;
};

class CameraFile : public LinkHdl {
public:
    std::int32_t OnCamera(void* arg) {
        cameras.push_back(std::make_unique<Camera>(static_cast<OvReaderObject*>(arg)));
        return 1;
    }
    std::vector<std::unique_ptr<Camera>> cameras;
};

TEST(OvReaderTest, HandlersBuildRecordsFromNestedBlocks) {
    TextReader t(
        "VERSION 3\n"
        "CAMERA {\n"
        "    NAME \"Wide\"\n"
        "    FOCAL 24.5\n"
        "    LENS {\n"
        "        K1 0.001\n"
        "        K2 -2e-7\n"
        "    }\n"
        "    ID 4\n"
        "}\n"
        "CAMERA { NAME \"Tele\" FOCAL 85 }\n"
        "AFTER 7\n");
    CameraFile file;
    int version = 0, after = 0;
    t.reader.RegisterObject(OvReaderObject("VERSION", &version));
    t.reader.RegisterObject(OvReaderObject("CAMERA", Link(&file, &CameraFile::OnCamera)));
    t.reader.RegisterObject(OvReaderObject("AFTER", &after));
    t.reader.DoProcess(false);

    EXPECT_EQ(version, 3);
    ASSERT_EQ(file.cameras.size(), 2u);
    const Camera& wide = *file.cameras[0];
    EXPECT_STREQ(wide.name.chars(), "Wide");
    EXPECT_EQ(wide.focal, 24.5);
    EXPECT_EQ(wide.id, 4);
    ASSERT_NE(wide.lens, nullptr);
    EXPECT_EQ(wide.lens->k1, 0.001);
    EXPECT_EQ(wide.lens->k2, -2e-7);
    const Camera& tele = *file.cameras[1];
    EXPECT_STREQ(tele.name.chars(), "Tele");
    EXPECT_EQ(tele.focal, 85.0);
    EXPECT_EQ(tele.lens, nullptr);
    EXPECT_EQ(after, 7);
    EXPECT_EQ(t.reader.GetReadErrorCount(), 0);
    EXPECT_EQ(t.reader.GetScopeDepth(), 1);
}

// Reads a block of bare numbers itself, as point lists do, and stops at the block's "}".
class NumberList : public LinkHdl {
public:
    std::int32_t OnBlock(void* arg) {
        OvReader& reader = *static_cast<OvReaderObject*>(arg)->GetReader();
        for (;;) {
            const eOvTokentype type = reader.GetParser().GetToken().GetType();
            if (type == TokenBlockEnd || type == TokenEOF) return 1;
            values.push_back(reader.GetParser().GetTokenNumber());
            reader.Advance();
        }
    }
    std::vector<double> values;
};

TEST(OvReaderTest, HandlerReadingItsBlockItselfEndsAtTheClosingBrace) {
    TextReader t(
        "POINTS {\n"
        "    1 2.5 3\n"
        "    4 5 -6e1\n"
        "}\n"
        "AFTER 1\n"
        "EMPTY { }\n"
        "AFTER 2\n");
    NumberList list;
    int after = 0;
    t.reader.RegisterObject(OvReaderObject("POINTS", Link(&list, &NumberList::OnBlock)));
    t.reader.RegisterObject(OvReaderObject("EMPTY", Link(&list, &NumberList::OnBlock)));
    t.reader.RegisterObject(OvReaderObject("AFTER", &after));
    t.reader.DoProcess(false);
    EXPECT_EQ(list.values, (std::vector<double>{1, 2.5, 3, 4, 5, -60}));
    EXPECT_EQ(after, 2);
    EXPECT_EQ(t.reader.GetReadErrorCount(), 0);
}

TEST(OvReaderTest, ScopesHideKeywordsOfOtherBlocks) {
    TextReader t(
        "CAMERA {\n"
        "    VERSION 99\n"  // registered only at the top: unknown inside the block
        "    NAME \"inner\"\n"
        "}\n"
        "NAME \"outer\"\n"  // registered only inside the block: unknown here
        "VERSION 5\n");
    CameraFile file;
    int version = 0;
    t.reader.RegisterObject(OvReaderObject("VERSION", &version));
    t.reader.RegisterObject(OvReaderObject("CAMERA", Link(&file, &CameraFile::OnCamera)));
    t.reader.DoProcess(false);
    ASSERT_EQ(file.cameras.size(), 1u);
    EXPECT_STREQ(file.cameras[0]->name.chars(), "inner");
    EXPECT_EQ(version, 5);
    EXPECT_EQ(t.reader.GetReadErrorCount(), 0);
}

TEST(OvReaderTest, UnknownKeywordDropsOneValueAndTheRestGoesToTheCatchAll) {
    TextReader t("UNKNOWN 1 2 \"three\"\nKNOWN 4\n");
    Recorder recorder;
    int known = 0;
    t.reader.RegisterObject(OvReaderObject("KNOWN", &known));
    t.reader.RegisterObject(OvReaderObject(Link(&recorder, &Recorder::OnValue)));
    t.reader.DoProcess(false);
    EXPECT_EQ(recorder.seen, (std::vector<std::string>{"_NOT_DEFINED:2", "_NOT_DEFINED:three"}));
    EXPECT_EQ(known, 4);
    EXPECT_EQ(t.reader.GetReadErrorCount(), 0);
}

TEST(OvReaderTest, StrayTokensWithoutCatchAllStopReadingAndTheLastStatus5IsTakenBack) {
    TextReader t("UNKNOWN 1 2 3\nKNOWN 4\n");
    int known = 0;
    t.reader.RegisterObject(OvReaderObject("KNOWN", &known));
    t.reader.DoProcess(false);
    EXPECT_EQ(known, 0);  // stopped at the stray "2"
    EXPECT_EQ(t.reader.GetReadErrorCount(), 0);
}

TEST(OvReaderTest, ParserErrorHandlerLetsReadingGoOnAndOnlyATrailingStatus5IsDropped) {
    TextReader t("UNKNOWN 1 2 3\nKNOWN 4\n");
    Recorder recorder;
    int known = 0;
    t.reader.RegisterObject(OvReaderObject("KNOWN", &known));
    t.reader.SetParserErrorHdl(Link(&recorder, &Recorder::OnReaderEvent));
    t.reader.DoProcess(false);
    EXPECT_EQ(known, 4);
    EXPECT_EQ(recorder.seen, (std::vector<std::string>{"reader:2", "reader:3"}));
    // Two errors were recorded; the last one has status 5 and is taken back.
    EXPECT_EQ(Errors(t.reader), (ErrorList{{1, ParserErrorNotSpecifiedToken}}));
}

TEST(OvReaderTest, WrongValueKindIsAStatus5ErrorAtItsLine) {
    TextReader t("COUNT \"text\"\nBAD 12abc\nRATIO 1.0\n");
    Recorder recorder;
    int count = 3;
    double ratio = 0.0;
    t.reader.RegisterObject(OvReaderObject("COUNT", &count));
    t.reader.RegisterObject(OvReaderObject("RATIO", &ratio));
    t.reader.SetParserErrorHdl(Link(&recorder, &Recorder::OnReaderEvent));
    t.reader.DoProcess(false);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(ratio, 1.0);
    EXPECT_EQ(Errors(t.reader),
              (ErrorList{{1, ParserErrorNotSpecifiedToken}, {2, ParserErrorInvalidNumber}}));
}

TEST(OvReaderTest, WrongValueKindWithoutHandlerStopsSilently) {
    TextReader t("COUNT \"text\"\nRATIO 1.0\n");
    int count = 3;
    double ratio = 0.0;
    t.reader.RegisterObject(OvReaderObject("COUNT", &count));
    t.reader.RegisterObject(OvReaderObject("RATIO", &ratio));
    t.reader.DoProcess(false);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(ratio, 0.0);
    EXPECT_EQ(t.reader.GetReadErrorCount(), 0);
}

TEST(OvReaderTest, UnterminatedStringStopsReadingWithAnError) {
    TextReader t("INT 1\nTEXT \"abc\nINT 3\n");
    int value = 0;
    String text("unchanged");
    t.reader.RegisterObject(OvReaderObject("INT", &value));
    t.reader.RegisterObject(OvReaderObject("TEXT", &text));
    t.reader.DoProcess(false);
    EXPECT_EQ(value, 1);
    EXPECT_STREQ(text.chars(), "unchanged");
    EXPECT_EQ(Errors(t.reader), (ErrorList{{2, ParserErrorUnterminatedString}}));
}

TEST(OvReaderTest, UnknownBlockIsSkippedWholeAndCountsAsAnError) {
    TextReader t(
        "INT 1\n"
        "MYSTERY {\n"
        "    A { B 1 }\n"
        "    C \"x\" { }\n"
        "}\n"
        "REAL 2.5\n");
    int value = 0;
    double real = 0.0;
    t.reader.RegisterObject(OvReaderObject("INT", &value));
    t.reader.RegisterObject(OvReaderObject("REAL", &real));
    t.reader.DoProcess(false);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(real, 2.5);
    ASSERT_EQ(Errors(t.reader), (ErrorList{{2, ParserStatusOK}}));
    // Recorded at the block's "{": INT, 1, MYSTERY and "{" were delivered.
    EXPECT_EQ(t.reader.GetReaderErrorList().First()->GetTokenCount(), 4u);
}

TEST(OvReaderTest, EndOfFileEndsReadingWithoutAnError) {
    {
        TextReader t("CAMERA {\n    NAME \"cut short\"\n");
        CameraFile file;
        t.reader.RegisterObject(OvReaderObject("CAMERA", Link(&file, &CameraFile::OnCamera)));
        t.reader.DoProcess(false);
        ASSERT_EQ(file.cameras.size(), 1u);
        EXPECT_STREQ(file.cameras[0]->name.chars(), "cut short");
        EXPECT_EQ(t.reader.GetReadErrorCount(), 0);
    }
    {
        TextReader t("COUNT\n");  // the value is missing
        int count = 8;
        t.reader.RegisterObject(OvReaderObject("COUNT", &count));
        t.reader.DoProcess(false);
        EXPECT_EQ(count, 8);
        EXPECT_EQ(t.reader.GetReadErrorCount(), 0);
    }
    {
        TextReader t("");
        EXPECT_EQ(t.reader.DoProcess(false), 1);
        EXPECT_EQ(t.reader.GetReadErrorCount(), 0);
        EXPECT_EQ(t.reader.DoProcess(true), 1);  // again at the end: nothing happens
    }
}

TEST(OvReaderTest, UnclosedUnknownBlockIsOneErrorAndEndsAtEndOfFile) {
    TextReader t("MYSTERY {\n  A 1\n  B {\n");
    Recorder recorder;
    t.reader.SetParserErrorHdl(Link(&recorder, &Recorder::OnReaderEvent));
    t.reader.DoProcess(true);
    EXPECT_EQ(Errors(t.reader), (ErrorList{{1, ParserStatusOK}}));
    EXPECT_TRUE(recorder.seen.empty());
}

TEST(OvReaderTest, EndOfFileEndsTheLoopEvenWhenTheErrorHandlerWantsMore) {
    TextReader t("COUNT 1 \"stray\"");
    Recorder recorder;  // answers 1: go on after every error
    int count = 0;
    t.reader.RegisterObject(OvReaderObject("COUNT", &count));
    t.reader.SetParserErrorHdl(Link(&recorder, &Recorder::OnReaderEvent));
    t.reader.DoProcess(true);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(recorder.seen, (std::vector<std::string>{"reader:stray"}));
}

TEST(OvReaderTest, CatchAllNeverSeesTheEndOfFile) {
    TextReader t("12 \"x\"");
    Recorder recorder;
    t.reader.RegisterObject(OvReaderObject(Link(&recorder, &Recorder::OnValue)));
    t.reader.DoProcess(true);
    EXPECT_EQ(recorder.seen, (std::vector<std::string>{"_NOT_DEFINED:12", "_NOT_DEFINED:x"}));
}

TEST(OvReaderTest, BlockEndStopsUnlessAskedToContinue) {
    {
        TextReader t("A 1 } B 2\n");
        int a = 0, b = 0;
        t.reader.RegisterObject(OvReaderObject("A", &a));
        t.reader.RegisterObject(OvReaderObject("B", &b));
        t.reader.DoProcess(false);
        EXPECT_EQ(a, 1);
        EXPECT_EQ(b, 0);
        t.reader.DoProcess(false);  // a second run goes on after the "}"
        EXPECT_EQ(b, 2);
    }
    {
        TextReader t("A 1 } B 2\n");
        int a = 0, b = 0;
        t.reader.RegisterObject(OvReaderObject("A", &a));
        t.reader.RegisterObject(OvReaderObject("B", &b));
        t.reader.DoProcess(true);
        EXPECT_EQ(a, 1);
        EXPECT_EQ(b, 2);
    }
}

TEST(OvReaderTest, TokenAfterAHandledBlockIsDroppedUnlessItIsAKeyword) {
    TextReader t("CAMERA { } 5 INT 3\n");
    CameraFile file;
    int value = 0;
    t.reader.RegisterObject(OvReaderObject("CAMERA", Link(&file, &CameraFile::OnCamera)));
    t.reader.RegisterObject(OvReaderObject("INT", &value));
    t.reader.DoProcess(false);
    EXPECT_EQ(file.cameras.size(), 1u);
    EXPECT_EQ(value, 3);
    EXPECT_EQ(t.reader.GetReadErrorCount(), 0);
}

TEST(OvReaderTest, HandlerIsCalledForASingleValueToo) {
    TextReader t("POINT 17\nNEXT 1\n");
    Recorder recorder;
    int next = 0;
    t.reader.RegisterObject(OvReaderObject("POINT", Link(&recorder, &Recorder::OnValue)));
    t.reader.RegisterObject(OvReaderObject("NEXT", &next));
    t.reader.DoProcess(false);
    EXPECT_EQ(recorder.seen, (std::vector<std::string>{"POINT:17"}));
    EXPECT_EQ(next, 1);
}

TEST(OvReaderTest, UnknownKeywordsCanBeHandedToAHandler) {
    TextReader t("STRANGE 5\nKNOWN 6\n");
    Recorder recorder;
    int known = 0;
    t.reader.RegisterObject(OvReaderObject("KNOWN", &known));
    t.reader.RegisterObject(OvReaderObject(Link(&recorder, &Recorder::OnValue)));
    t.reader.SkipUnknownToken(false);
    EXPECT_FALSE(t.reader.IsSkipUnknownToken());
    t.reader.SetUnknownTokenHdl(Link(&recorder, &Recorder::OnReaderEvent));
    t.reader.DoProcess(false);
    // The handler went on (1), so the value 5 reached the catch-all.
    EXPECT_EQ(recorder.seen, (std::vector<std::string>{"reader:STRANGE", "_NOT_DEFINED:5"}));
    EXPECT_EQ(known, 6);
}

TEST(OvReaderTest, UnknownKeywordWithoutHandlerStopsWhenNotSkipping) {
    TextReader t("STRANGE 5\nKNOWN 6\n");
    int known = 0;
    t.reader.RegisterObject(OvReaderObject("KNOWN", &known));
    t.reader.SkipUnknownToken(false);
    t.reader.DoProcess(false);
    EXPECT_EQ(known, 0);
    EXPECT_EQ(t.reader.GetReadErrorCount(), 0);
}

// A block handler that fails half-way by asking for an integer where a string stands.
class FailingBlock : public LinkHdl {
public:
    std::int32_t OnBlock(void* arg) {
        auto* block = static_cast<OvReaderObject*>(arg);
        block->RegisterObject(OvReaderObject("INNER", &inner));
        block->GetReader()->GetParser().GetTokenInt();  // throws: the first token is "text"
        return 1;
    }
    int inner = 0;
};

TEST(OvReaderTest, ScopeOfAFailedHandlerIsRemoved) {
    TextReader t("BLOCK { \"text\" INNER 5 }\nINNER 6\n");
    FailingBlock failing;
    Recorder recorder;
    t.reader.RegisterObject(OvReaderObject("BLOCK", Link(&failing, &FailingBlock::OnBlock)));
    t.reader.SetParserErrorHdl(Link(&recorder, &Recorder::OnReaderEvent));
    t.reader.DoProcess(false);
    // Back at the top scope, INNER is unknown everywhere: the block's binding is gone.
    EXPECT_EQ(failing.inner, 0);
    EXPECT_EQ(t.reader.GetScopeDepth(), 1);
}

// Registers itself for every nested "B" block, however deep.
class Nesting : public LinkHdl {
public:
    std::int32_t OnBlock(void* arg) {
        auto* block = static_cast<OvReaderObject*>(arg);
        const int depth = block->GetReader()->GetScopeDepth();
        if (depth > deepest) deepest = depth;
        block->RegisterObject(OvReaderObject("B", Link(this, &Nesting::OnBlock)));
        block->RegisterObject(OvReaderObject("X", &x));
        block->DoProcess();
        return 1;
    }
    int deepest = 0;
    int x = 0;
};

TEST(OvReaderTest, NestingIsLimited) {
    std::string text;
    const int levels = OvReader::kMaxBlockDepth + 20;
    for (int i = 0; i < levels; ++i)
        text += "B {\n";
    for (int i = 0; i < levels; ++i)
        text += "}\n";
    text += "X 9\n";
    TextReader t(text);
    Nesting nesting;
    t.reader.RegisterObject(OvReaderObject("B", Link(&nesting, &Nesting::OnBlock)));
    t.reader.RegisterObject(OvReaderObject("X", &nesting.x));
    t.reader.DoProcess(false);
    EXPECT_EQ(nesting.deepest, OvReader::kMaxBlockDepth + 1);
    EXPECT_EQ(nesting.x, 9);
    ASSERT_EQ(t.reader.GetReadErrorCount(), 1);
    EXPECT_EQ(t.reader.GetReaderErrorList().First()->GetLine(),
              static_cast<unsigned>(OvReader::kMaxBlockDepth + 1));
}

TEST(OvReaderTest, ReadsNamedFilesAndReportsOneThatCannotBeOpened) {
    test::TempDir dir;
    const std::string path = dir.file("camera.txt");
    test::WriteWholeFile(path, "COUNT 5\r\nNAME \"from file\"\r\n");

    int count = 0;
    String name;
    OvReader missing(String(dir.file("missing.txt").c_str()));
    missing.RegisterObject(OvReaderObject("COUNT", &count));
    missing.DoProcess(false);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(Errors(missing), (ErrorList{{0, ParserErrorStream}}));
    EXPECT_STREQ(missing.GetFilename().chars(), dir.file("missing.txt").c_str());

    OvReader reader(String(path.c_str()));
    reader.RegisterObject(OvReaderObject("COUNT", &count));
    reader.RegisterObject(OvReaderObject("NAME", &name));
    reader.DoProcess(false);
    EXPECT_EQ(count, 5);
    EXPECT_STREQ(name.chars(), "from file");
    EXPECT_EQ(reader.GetReadErrorCount(), 0);

    // Switching files starts the new one from its beginning.
    test::WriteWholeFile(dir.file("second.txt"), "COUNT 6\n");
    EXPECT_TRUE(reader.SetFilename(String(dir.file("second.txt").c_str())));
    reader.DoProcess(false);
    EXPECT_EQ(count, 6);
    EXPECT_FALSE(reader.SetFilename(String(dir.file("missing.txt").c_str())));
}

// Collects what reaches the application logger.
class CollectingLogger : public OvLogger {
public:
    CollectingLogger() : OvLogger(2) {}
    int Log(int level, const char* text) override {
        lines.push_back(std::to_string(level) + "|" + text);
        return 0;
    }
    std::vector<std::string> lines;
};

TEST(OvReaderTest, ErrorsAreReportedThroughTheApplicationLogger) {
    OvMasterLogger master;
    master.SetFormat("$mesg");
    CollectingLogger logger;
    master.AddLogger(&logger);
    OvApplicationLogger::RegisterMasterLogger(&master);

    {
        TextReader clean("A 1\n");
        LogErrorsToApplicationLogger(clean.reader);
        EXPECT_TRUE(logger.lines.empty());
    }

    TextReader t("A 1\nMYSTERY {\n}\nBAD 7x\n");
    Recorder recorder;
    t.reader.SetParserErrorHdl(Link(&recorder, &Recorder::OnReaderEvent));
    t.reader.DoProcess(false);
    LogErrorsToApplicationLogger(t.reader);
    EXPECT_EQ(logger.lines, (std::vector<std::string>{
                                "2| 2 Read Error(s) in memory.txt:",
                                "2| - Line: 000002, Status: ParserStatusOK",
                                "2| - Line: 000004, Status: ParserErrorInvalidNumber",
                            }));
    OvApplicationLogger::RegisterMasterLogger(nullptr);
}

}  // namespace
}  // namespace orvo
