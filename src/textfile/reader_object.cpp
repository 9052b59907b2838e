// Keyword bindings of the block-file reader and the scopes that hold them.
#include <cstring>

#include "orvo/textfile/reader.h"

namespace orvo {

namespace {

// Writes the current token into the bound destination; the parser throws OvParserStatus when
// the token is not of the requested kind.
// (An integer that does not fit 32 bits arrives clamped; a double gets its exact value.)
struct ValueWriter {
    OvParser& parser;

    void operator()(std::monostate) const {}
    void operator()(bool* target) const { *target = parser.GetTokenInt() != 0; }
    void operator()(int* target) const { *target = parser.GetTokenInt(); }
    void operator()(double* target) const { *target = parser.GetTokenNumber(); }
    void operator()(String* target) const { *target = parser.GetTokenString(); }
};

}  // namespace

OvReaderObject::OvReaderObject() = default;

OvReaderObject::OvReaderObject(const char* text, bool* destination)
    : target(destination), valuetype(ReaderValueInt), isbool(true) {
    SetKeyword(text);
}

OvReaderObject::OvReaderObject(const char* text, int* destination)
    : target(destination), valuetype(ReaderValueInt) {
    SetKeyword(text);
}

OvReaderObject::OvReaderObject(const char* text, double* destination)
    : target(destination), valuetype(ReaderValueNumber) {
    SetKeyword(text);
}

OvReaderObject::OvReaderObject(const char* text, String* destination)
    : target(destination), valuetype(ReaderValueString) {
    SetKeyword(text);
}

OvReaderObject::OvReaderObject(const char* text, const Link& link)
    : valuetype(ReaderValueHandler), handler(link) {
    SetKeyword(text);
}

OvReaderObject::OvReaderObject(const char* /*keyword*/, const Link& link, const Link& link2)
    : valuetype(ReaderValueHandler0), handler(link), handler2(link2) {}

OvReaderObject::OvReaderObject(const Link& catchAll)
    : valuetype(ReaderValueHandler), handler(catchAll) {
    SetKeyword(kNotDefined);
}

OvReaderObject::OvReaderObject(const OvReaderObject& other)
    : OvListnode(other),
      reader(other.reader),
      target(other.target),
      valuetype(other.valuetype),
      isbool(other.isbool),
      handler(other.handler),
      handler2(other.handler2) {
    std::memcpy(keyword, other.keyword, kKeywordSize);
}

OvReaderObject& OvReaderObject::operator=(const OvReaderObject& other) {
    if (this != &other) {
        OvListnode::operator=(other);
        reader = other.reader;
        std::memcpy(keyword, other.keyword, kKeywordSize);
        target = other.target;
        valuetype = other.valuetype;
        isbool = other.isbool;
        handler = other.handler;
        handler2 = other.handler2;
    }
    return *this;
}

OvReaderObject::~OvReaderObject() = default;

void OvReaderObject::SetKeyword(const char* text) {
    // Bounded copy; the last byte always stays the terminator, so an over-long keyword is cut.
    std::memset(keyword, 0, kKeywordSize);
    if (text != nullptr) std::strncpy(keyword, text, kKeywordSize - 1);
}

bool OvReaderObject::IsKeyword(const char* text) const {
    return text != nullptr && std::strcmp(keyword, text) == 0;
}

OvReaderObject* OvReaderObject::RegisterObject(const OvReaderObject& object) {
    return reader != nullptr ? reader->RegisterObject(object) : nullptr;
}

int OvReaderObject::DoProcess() {
    if (reader == nullptr) return 0;
    // The current token is the first one of the block: have the loop deliver it again.
    reader->GetParser().SkipNextParse(true);
    return reader->DoProcess(false);
}

void OvReaderObject::ProcessValue() {
    switch (valuetype) {
        case ReaderValueInt:
        case ReaderValueNumber:
        case ReaderValueString:
            if (reader != nullptr) std::visit(ValueWriter{reader->GetParser()}, target);
            break;
        case ReaderValueHandler0:
        case ReaderValueHandler:
            handler.Call(this);
            break;
        default:
            break;
    }
}

OvReaderObject* OvReaderObject::Next() const {
    return static_cast<OvReaderObject*>(GetNext());
}
OvReaderObject* OvReaderObject::Previous() const {
    return static_cast<OvReaderObject*>(GetPrev());
}

OvReaderInstance::OvReaderInstance(const OvReaderInstance& other)
    : OvListnode(other), objects(other.objects), reader(other.reader) {}

OvReaderInstance& OvReaderInstance::operator=(const OvReaderInstance& other) {
    if (this != &other) {
        OvListnode::operator=(other);
        objects = other.objects;
        reader = other.reader;
    }
    return *this;
}

OvReaderInstance::~OvReaderInstance() = default;

OvReaderObject* OvReaderInstance::Find(const char* text) const {
    for (OvReaderObject* object = objects.First(); object != nullptr; object = object->Next()) {
        if (object->IsKeyword(text)) return object;
    }
    return nullptr;
}

}  // namespace orvo
