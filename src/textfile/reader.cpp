// The block-file reader's main loop.
#include <locale>

#include "orvo/textfile/reader.h"

namespace orvo {

namespace {

// Removes the scope of a block when its handler is done, also when the handler leaves by an
// exception: the bindings of that scope point into the handler's record and must not outlive it.
class ScopeGuard {
public:
    explicit ScopeGuard(OvReader& reader, void (OvReader::*pop)()) : reader_(reader), pop_(pop) {}
    ScopeGuard(const ScopeGuard&) = delete;
    ScopeGuard& operator=(const ScopeGuard&) = delete;
    ~ScopeGuard() { (reader_.*pop_)(); }

private:
    OvReader& reader_;
    void (OvReader::*pop_)();
};

}  // namespace

OvReader::OvReader(const String& name) : input(&file), filename(name) {
    OpenFile();
    PushScope();
}

OvReader::OvReader(std::istream& source, const String& name) : input(&source), filename(name) {
    PushScope();
}

OvReader::~OvReader() = default;

int OvReader::UnknownTokenFound() {
    return unknownTokenHdl.Call(this);
}

int OvReader::ParserError() {
    return parserErrorHdl.Call(this);
}

void OvReader::OpenFile() {
    if (file.is_open()) file.close();  // a failed close sets the stream's fail state itself
    file.open(filename.chars(), std::ios::in);
    file.imbue(std::locale::classic());
    input = &file;
}

bool OvReader::SetFilename(const String& name) {
    filename = name;
    OpenFile();
    // The new file is read from its beginning; the parser keeps its syntax settings.
    OvParser fresh;
    fresh.SetDecPoint(parser.GetDecPoint());
    fresh.GetChLookup() = parser.GetChLookup();
    parser = fresh;
    return !file.fail();
}

void OvReader::Advance() {
    parser.Advance(*input);
}

OvReaderObject* OvReader::RegisterObject(const OvReaderObject& object) {
    auto* copy = new OvReaderObject(object);
    copy->reader = this;
    current->GetObjects().Add(copy);
    return copy;
}

void OvReader::PushScope() {
    current = new OvReaderInstance(this);
    scopes.Add(current);
}

void OvReader::PopScope() {
    if (scopes.Count() <= 1) return;
    delete scopes.Subtract(scopes.Last());
    current = scopes.Last();
}

void OvReader::RecordError(const OvParserStatus& status) {
    errors.Add(new OvReaderError(status));
}

int OvReader::DoProcess(bool continueAfterBlockEnd) {
    const eOvParserStatus initial = parser.GetStatus().GetStatus();
    bool running = initial != ParserStatusEOF && initial != ParserErrorStream;
    bool pending = false;  // the current token is a keyword that still has to be processed

    while (running) {
        try {
            if (!pending) Advance();
            pending = false;

            switch (parser.GetToken().GetType()) {
                case TokenEOF:
                    running = false;
                    break;
                case TokenKeyword:
                    running = ProcessKeyword(continueAfterBlockEnd, pending);
                    break;
                case TokenBlockEnd:
                    running = continueAfterBlockEnd;
                    break;
                default:
                    if (OvReaderObject* catchAll = current->Find(OvReaderObject::kNotDefined)) {
                        lastObject = catchAll;
                        catchAll->ProcessValue();
                    } else {
                        // No one takes this token: the parser's check raises the status-5
                        // error ("ParserErrorNotSpecifiedToken") for it.
                        parser.GetToken(TokenKeyword);
                    }
                    break;
            }
        } catch (const OvParserStatus& thrown) {
            if (thrown.GetStatus() == ParserStatusEOF) {
                running = false;
            } else {
                RecordError(thrown);
                const bool goOn = ParserError() != 0;
                // A failed stream fails again on every read: going on could never end.
                running = goOn && thrown.GetStatus() != ParserErrorStream;
            }
        }
    }

    // A read that was stopped by a token of the wrong kind does not report that last error.
    OvReaderError* last = errors.Last();
    if (last != nullptr && last->GetStatus() == ParserErrorNotSpecifiedToken) {
        delete errors.Subtract(last);
    }
    return 1;
}

bool OvReader::ProcessKeyword(bool continueAfterBlockEnd, bool& pending) {
    OvReaderObject* object = current->Find(parser.GetToken().text);
    if (object == nullptr) {
        if (!skipUnknown) return UnknownTokenFound() != 0;
        Advance();  // the unknown keyword's value is dropped with it
        if (parser.GetToken().GetType() == TokenBlockBegin) SkipCurrentBlock();
        return true;
    }

    lastObject = object;
    Advance();
    if (parser.GetToken().GetType() != TokenBlockBegin) {
        object->ProcessValue();
        return true;
    }

    if (GetScopeDepth() > kMaxBlockDepth) {
        SkipCurrentBlock();
        return true;
    }

    Advance();  // past "{": the handler's DoProcess delivers this token again
    {
        PushScope();
        ScopeGuard guard(*this, &OvReader::PopScope);
        object->ProcessValue();
    }
    lastObject = object;

    // The handler returned at the block's "}"; look at what follows it.
    Advance();
    switch (parser.GetToken().GetType()) {
        case TokenKeyword:
            pending = true;
            return true;
        case TokenBlockEnd:
            return continueAfterBlockEnd;
        default:
            return true;  // any other token here is dropped unprocessed, as it always was
    }
}

void OvReader::SkipCurrentBlock() {
    // A skipped block counts as a read error, recorded with the parser's present status.
    RecordError(parser.GetStatus());
    // 64 bits: a file of more than 2^31 nested "{" must not overflow the count.
    std::int64_t depth = 1;
    for (;;) {
        Advance();
        switch (parser.GetToken().GetType()) {
            case TokenEOF:
                return;
            case TokenBlockBegin:
                ++depth;
                break;
            case TokenBlockEnd:
                if (depth == 1) return;
                --depth;
                break;
            default:
                break;
        }
    }
}

}  // namespace orvo
