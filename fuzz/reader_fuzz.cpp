// Feeds arbitrary text to the block-file reader with a typical set of bindings: values of every
// kind, a catch-all, an error handler that keeps going, and a block handler that registers
// itself again for nested blocks.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "orvo/textfile/reader.h"

namespace {

using orvo::Link;
using orvo::LinkHdl;
using orvo::OvReader;
using orvo::OvReaderObject;
using orvo::String;

class Record : public LinkHdl {
public:
    std::int32_t OnBlock(void* arg) {
        auto* block = static_cast<OvReaderObject*>(arg);
        block->RegisterObject(OvReaderObject("ID", &id));
        block->RegisterObject(OvReaderObject("X", &x));
        block->RegisterObject(OvReaderObject("NAME", &name));
        block->RegisterObject(OvReaderObject("ACTIVE", &active));
        block->RegisterObject(OvReaderObject("BLOCK", Link(this, &Record::OnBlock)));
        block->RegisterObject(OvReaderObject("VALUE", Link(this, &Record::OnValue)));
        block->DoProcess();
        return 1;
    }
    // Reads a value itself, as handlers of multi-token values do.
    std::int32_t OnValue(void* arg) {
        auto* object = static_cast<OvReaderObject*>(arg);
        x += object->GetReader()->GetParser().GetTokenNumber();
        return 1;
    }
    std::int32_t OnStray(void*) {
        ++stray;
        return 1;
    }
    std::int32_t OnError(void*) { return ++errors < 64 ? 1 : 0; }

    int id = 0;
    double x = 0.0;
    String name;
    bool active = false;
    int stray = 0;
    int errors = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    OvReader reader(in, String("fuzz.txt"));
    Record record;
    reader.RegisterObject(OvReaderObject("ID", &record.id));
    reader.RegisterObject(OvReaderObject("X", &record.x));
    reader.RegisterObject(OvReaderObject("NAME", &record.name));
    reader.RegisterObject(OvReaderObject("ACTIVE", &record.active));
    reader.RegisterObject(OvReaderObject("BLOCK", Link(&record, &Record::OnBlock)));
    reader.RegisterObject(OvReaderObject("VALUE", Link(&record, &Record::OnValue)));
    reader.RegisterObject(OvReaderObject(Link(&record, &Record::OnStray)));
    reader.SetParserErrorHdl(Link(&record, &Record::OnError));
    reader.DoProcess(size % 2 == 0);
    // Walk the error list as a caller that reports errors would.
    unsigned lines = 0;
    for (const orvo::OvReaderError* e = reader.GetReaderErrorList().First(); e != nullptr;
         e = e->Next()) {
        lines += e->GetLine();
    }
    return lines == 0xFFFFFFFFu ? 1 : 0;
}
