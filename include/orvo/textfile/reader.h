// The block-file reader: a push reader over the tokenizer.
//
// A caller binds keywords to destinations with OvReaderObjects and registers them with the
// reader; DoProcess then walks the file and, whenever a registered keyword is met, stores the
// following value into the bound variable or calls the bound handler. A handler that owns a
// block registers the keywords of that block (they form a fresh scope, visible only inside the
// block) and calls OvReaderObject::DoProcess to read the block's contents:
//
//     class Camera : public LinkHdl {
//     public:
//         explicit Camera(OvReaderObject* block) {       // the block after "CAMERA"
//             block->RegisterObject(OvReaderObject("NAME", &name));
//             block->RegisterObject(OvReaderObject("FOCAL", &focal));
//             block->DoProcess();                        // returns at the block's "}"
//         }
//         String name;
//         double focal = 0.0;
//     };
//
// A block handler is called with the first token inside the block as the current token and
// must return with the block's closing "}" as the current token; OvReaderObject::DoProcess does
// exactly that, and a handler that reads the block's tokens itself (a list of records, say)
// stops at the "}" without consuming it. The reader then goes on after the block.
//
// File syntax: an entry is a keyword followed by one value (integer, number or double-quoted
// string) or by a block "{ entries }". Keywords are compared exactly, and only with those
// registered in the current scope. A registered keyword that is missing from the file leaves
// its destination untouched: set defaults before reading.
//
// Errors never leave the reader as exceptions: each parser error becomes an OvReaderError with
// its line number, and reading stops at the first one unless a parser-error handler asks to go
// on. An unknown keyword is dropped with its one value; an unknown block is skipped whole and
// counts as a read error. A status-5 error ("ParserErrorNotSpecifiedToken") that is the last
// one recorded when a DoProcess run ends is taken back again (such an error is what normally
// ends a read that was stopped on purpose).
//
// Beyond the classic behaviour:
//   - the end of the input always ends DoProcess, whatever a parser-error handler returns, and
//     so does a stream error (the stream cannot recover from it);
//   - blocks nest at most kMaxBlockDepth deep; a deeper known block is skipped like an unknown
//     one (and counts as a read error), so hostile input cannot exhaust the stack;
//   - a handler's scope is removed even when the handler ends by throwing OvParserStatus, so no
//     binding can outlive the record it points into.
#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <istream>
#include <variant>

#include "orvo/foundation/link.h"
#include "orvo/foundation/list.h"
#include "orvo/foundation/object.h"
#include "orvo/foundation/string.h"
#include "orvo/textfile/tokenizer.h"

namespace orvo {

class OvReader;

// The kind of destination an OvReaderObject writes. The numbers equal the token kind that the
// reader requests from the parser for the value.
enum eOvReaderValueType : std::int32_t {
    ReaderValueHandler0 = 0,  // plain handler object (the two-handler form)
    ReaderValueInt = 1,       // int, or bool when IsBool()
    ReaderValueNumber = 3,    // double
    ReaderValueHandler = 4,   // handler called for the value or the block
    ReaderValueString = 5,    // String
};

// One keyword binding. Objects are registered by copy (OvReader::RegisterObject); the scope
// they are registered in owns the copy.
class OvReaderObject : public OvListnode {
public:
    // Keywords hold at most kKeywordSize - 1 characters; longer ones are cut.
    static constexpr std::size_t kKeywordSize = 29;
    // The keyword of the catch-all object that receives tokens which are not keywords.
    static constexpr const char* kNotDefined = "_NOT_DEFINED";

    OvReaderObject();
    OvReaderObject(const char* keyword, bool* target);
    OvReaderObject(const char* keyword, int* target);
    OvReaderObject(const char* keyword, double* target);
    OvReaderObject(const char* keyword, String* target);
    OvReaderObject(const char* keyword, const Link& handler);
    // The two-handler form: its keyword is left empty (the keyword argument is not used, as it
    // never was) and only `handler` is ever called; `handler2` is kept for the caller.
    OvReaderObject(const char* keyword, const Link& handler, const Link& handler2);
    // The catch-all object ("_NOT_DEFINED").
    explicit OvReaderObject(const Link& catchAll);
    OvReaderObject(const OvReaderObject& other);
    OvReaderObject& operator=(const OvReaderObject& other);
    ~OvReaderObject() override;

    OvReader* GetReader() const { return reader; }
    const char* GetKeyword() const { return keyword; }
    eOvReaderValueType GetValueType() const { return valuetype; }
    bool IsBool() const { return isbool; }
    const Link& GetHandler() const { return handler; }
    const Link& GetHandler2() const { return handler2; }

    // Whether the keyword equals `text` exactly (a null text equals nothing).
    bool IsKeyword(const char* text) const;

    // Registers `object` in the reader's current scope (see OvReader::RegisterObject); null
    // when this object belongs to no reader.
    OvReaderObject* RegisterObject(const OvReaderObject& object);

    // Processes the rest of the current block, starting with the current token, and returns at
    // the block's "}" (which stays the current token). Returns 0 without a reader.
    int DoProcess();

    // The value step: stores the current token into the destination, or calls the handler.
    // Throws OvParserStatus when the token is of the wrong kind.
    void ProcessValue();

    // Steps through the scope's list.
    OvReaderObject* Next() const;
    OvReaderObject* Previous() const;

private:
    friend class OvReader;
    using Target = std::variant<std::monostate, bool*, int*, double*, String*>;

    void SetKeyword(const char* text);

    OvReader* reader = nullptr;
    char keyword[kKeywordSize] = {};
    Target target;
    eOvReaderValueType valuetype = ReaderValueHandler0;
    bool isbool = false;
    Link handler;
    Link handler2;
};

// A scope: the objects registered for one block, in registration order, owned.
class OvReaderInstance : public OvListnode {
public:
    explicit OvReaderInstance(OvReader* reader = nullptr) : reader(reader) {}
    OvReaderInstance(const OvReaderInstance& other);
    OvReaderInstance& operator=(const OvReaderInstance& other);
    ~OvReaderInstance() override;

    OvReader* GetReader() const { return reader; }
    TOvListHeader<OvReaderObject>& GetObjects() { return objects; }
    const TOvListHeader<OvReaderObject>& GetObjects() const { return objects; }
    // The first object whose keyword equals `text`, or null.
    OvReaderObject* Find(const char* text) const;

private:
    TOvListHeader<OvReaderObject> objects;
    OvReader* reader;
};

// One read error: the parser's status (line, token count, status code) when it happened.
class OvReaderError : public OvParserStatus, public OvListnode {
public:
    OvReaderError() = default;
    explicit OvReaderError(const OvParserStatus& status) : OvParserStatus(status) {}
    OvReaderError(const OvReaderError& other) = default;
    OvReaderError& operator=(const OvReaderError& other);
    ~OvReaderError() override;

    OvReaderError* Next() const;
    OvReaderError* Previous() const;
};

// The errors of one read, in the order they happened; owns them.
class OvReaderErrorList : public TOvListHeader<OvReaderError> {
public:
    OvReaderErrorList() = default;
    OvReaderErrorList(const OvReaderErrorList& other) = default;
    OvReaderErrorList& operator=(const OvReaderErrorList& other) = default;
    ~OvReaderErrorList() override;
};

// The stream and the parser, for handlers that read further tokens themselves.
struct OvStreamParser {
    std::istream& stream;
    OvParser& parser;
};

class OvReader {
public:
    // Blocks nest at most this deep (see the notes at the top).
    static constexpr int kMaxBlockDepth = 256;

    // Reads the named file. A file that cannot be opened makes the first read step fail with
    // "ParserErrorStream", recorded as an error.
    explicit OvReader(const String& filename);
    // Reads from a stream the caller owns and keeps alive while the reader reads; `name` is
    // only used in messages.
    OvReader(std::istream& source, const String& name);
    OvReader(const OvReader&) = delete;
    OvReader& operator=(const OvReader&) = delete;

    // Called for an unknown keyword when unknown keywords are not skipped; calls the
    // unknown-token handler with the reader and returns its result (0 without a handler, which
    // ends DoProcess).
    virtual int UnknownTokenFound();
    // Called after each parser error; calls the parser-error handler with the reader and
    // returns its result (0 without a handler, which ends DoProcess).
    virtual int ParserError();
    virtual ~OvReader();

    // Switches to another file: closes the open one and opens `name`; reading starts at the
    // new file's beginning, and the parser keeps its syntax settings (decimal point, character
    // table). True unless the stream is failed.
    bool SetFilename(const String& name);
    const String& GetFilename() const { return filename; }

    OvParser& GetParser() { return parser; }
    std::istream& GetStream() { return *input; }
    OvStreamParser GetStreamParser() { return OvStreamParser{*input, parser}; }
    // The advance step of handlers: honours the parser's skip-next-parse flag.
    void Advance();

    OvReaderErrorList& GetReaderErrorList() { return errors; }
    const OvReaderErrorList& GetReaderErrorList() const { return errors; }
    int GetReadErrorCount() const { return errors.Count(); }

    // true (the default): unknown keywords are dropped with their value or block;
    // false: UnknownTokenFound decides.
    void SkipUnknownToken(bool skip) { skipUnknown = skip; }
    bool IsSkipUnknownToken() const { return skipUnknown; }
    void SetUnknownTokenHdl(const Link& link) { unknownTokenHdl = link; }
    void SetParserErrorHdl(const Link& link) { parserErrorHdl = link; }

    // Registers a heap copy of `object` in the current scope and returns the copy.
    OvReaderObject* RegisterObject(const OvReaderObject& object);

    // Reads entries until the end of the input or, unless `continueAfterBlockEnd`, until the
    // "}" that closes the current block. Returns 1.
    int DoProcess(bool continueAfterBlockEnd = false);

    // Skips the block whose "{" is the current token, up to its matching "}" (or the end of the
    // input), recording one read error for it.
    void SkipCurrentBlock();

    // The scope that keywords are matched in, the number of scopes and the object matched
    // last (null when none, or when its scope is gone).
    OvReaderInstance* GetCurrentScope() const { return current; }
    int GetScopeDepth() const { return scopes.Count(); }
    OvReaderObject* GetLastObject() const { return lastObject; }

private:
    void OpenFile();
    void PushScope();
    void PopScope();
    void RecordError(const OvParserStatus& status);
    // Handles the keyword that is the current token; returns whether the loop goes on and sets
    // `pending` when the loop stopped on a keyword that it has still to process.
    bool ProcessKeyword(bool continueAfterBlockEnd, bool& pending);

    std::ifstream file;
    std::istream* input;  // `file`, or the caller's stream
    OvParser parser;
    String filename;
    bool skipUnknown = true;
    TOvListHeader<OvReaderInstance> scopes;
    OvReaderInstance* current = nullptr;
    OvReaderObject* lastObject = nullptr;
    Link unknownTokenHdl;
    Link parserErrorHdl;
    OvReaderErrorList errors;
};

// Logs the reader's errors at level 2 through the application logger: a header line
// " <count> Read Error(s) in <file>:" and one line " - Line: 000012, Status: <text>" per error.
// Logs nothing when there are no errors.
void LogErrorsToApplicationLogger(const OvReader& reader);

}  // namespace orvo
