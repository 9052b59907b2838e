// Feeds arbitrary text to the block-file reader with "MATRIX" and "VECTOR" blocks bound to a
// matrix and a vector that read themselves, as the records holding transformation matrices do.
// After each read the results are used whole, so a size that disagrees with the storage shows
// up under AddressSanitizer.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "orvo/numerics/matrix.h"
#include "orvo/textfile/reader.h"

namespace {

using orvo::Link;
using orvo::LinkHdl;
using orvo::OvMatrix;
using orvo::OvReader;
using orvo::OvReaderObject;
using orvo::OvVector;
using orvo::String;

class Record : public LinkHdl {
public:
    std::int32_t OnMatrix(void* arg) {
        auto* object = static_cast<OvReaderObject*>(arg);
        matrix.Read(object);
        object->DoProcess();
        return 1;
    }
    std::int32_t OnVector(void* arg) {
        auto* object = static_cast<OvReaderObject*>(arg);
        vector.Read(object);
        object->DoProcess();
        return 1;
    }
    std::int32_t OnError(void*) { return ++errors < 64 ? 1 : 0; }

    OvMatrix matrix{3, 3};
    OvVector vector{3};
    int errors = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    OvReader reader(in, String("fuzz.txt"));
    Record record;
    reader.RegisterObject(OvReaderObject("MATRIX", Link(&record, &Record::OnMatrix)));
    reader.RegisterObject(OvReaderObject("VECTOR", Link(&record, &Record::OnVector)));
    reader.SetParserErrorHdl(Link(&record, &Record::OnError));
    reader.DoProcess(false);

    // Touch every element through the checked interface and run the cheap operations.
    volatile double sink = 0.0;
    const OvMatrix& m = record.matrix;
    for (int i = 1; i <= m.GetZeilen(); ++i)
        for (int j = 1; j <= m.GetSpalten(); ++j)
            sink = sink + m.GetElem(i, j);
    sink = sink + record.vector.Abs();
    if (m.GetZeilen() > 0 && m.GetZeilen() <= 64 && m.GetSpalten() >= m.GetZeilen()) {
        sink = sink + orvo::Det(m);
    }
    if (m.GetSpalten() == record.vector.GetSize() && m.GetSpalten() <= 64) {
        sink = sink + (m * record.vector).Abs();
    }
    return 0;
}
