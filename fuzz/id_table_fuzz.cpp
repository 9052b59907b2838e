// Feeds arbitrary text to the id-table and object readers through the block-file reader, then
// checks that what was read writes out and reads back unchanged.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "orvo/foundation/id_table.h"
#include "orvo/foundation/link.h"
#include "orvo/foundation/object.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace {

using namespace orvo;

class Record : public LinkHdl {
public:
    std::int32_t OnIds(void* arg) { return ids.Read(static_cast<OvReaderObject*>(arg)); }
    std::int32_t OnPairs(void* arg) { return pairs.Read(static_cast<OvReaderObject*>(arg)); }
    std::int32_t OnObject(void* arg) { return object.Read(static_cast<OvReaderObject*>(arg)); }
    std::int32_t OnError(void*) { return ++errors < 64 ? 1 : 0; }

    void Load(std::istream& in) {
        OvReader reader(in, String("fuzz.txt"));
        reader.RegisterObject(OvReaderObject("IDS", Link(this, &Record::OnIds)));
        reader.RegisterObject(OvReaderObject("PAIRS", Link(this, &Record::OnPairs)));
        reader.RegisterObject(OvReaderObject("OBJECT", Link(this, &Record::OnObject)));
        reader.SetParserErrorHdl(Link(this, &Record::OnError));
        reader.DoProcess(false);
    }

    OvIdTable ids;
    OvIdPairTable pairs;
    OvObject object;
    int errors = 0;
};

// Names with a double quote or a line end cannot be stored in the quoted form.
bool Storable(const String& name) {
    for (const char* p = name.chars(); *p != '\0'; ++p) {
        if (*p == '"' || *p == '\n' || *p == '\r') return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    Record first;
    first.Load(in);

    OvWriterReset();
    std::ostringstream out;
    out << "IDS " << OvBeginBlockNL;
    first.ids.Write(out);
    out << OvEndBlockNL << Ovendl << "PAIRS " << OvBeginBlockNL;
    first.pairs.Write(out);
    out << OvEndBlockNL << Ovendl;
    const bool objectStorable = Storable(first.object.GetName());
    if (objectStorable) {
        out << "OBJECT {";
        first.object.Write(out) << " }" << Ovendl;
    }

    std::istringstream back(out.str());
    Record second;
    second.Load(back);
    if (second.ids != first.ids || second.pairs != first.pairs || second.errors != 0) std::abort();
    if (objectStorable && (second.object.GetId() != first.object.GetId() ||
                           compare(second.object.GetName(), first.object.GetName()) != 0)) {
        std::abort();
    }
    return 0;
}
