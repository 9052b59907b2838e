// Block files holding regions, positions and polygons, read through the block-file reader from a
// stream. Byte 0 picks the polygon mode (0..3 and two modes outside the table), the rest is the
// text. Reading must not fail outside the reader's own error collection; every polygon read must
// hold a box that contains its points; and for the modes 0..3, writing the polygon and reading
// it back must give the same number of points, unless a coordinate overflowed to infinity (it
// is written as "inf", which no reader takes for a number).
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "orvo/geom2d/polygon.h"
#include "orvo/geom2d/position.h"
#include "orvo/geom2d/region.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace {

using namespace orvo;

const std::int32_t kModes[6] = {0, 1, 2, 3, 4, -7};

struct Records {
    OvRegion region;
    OvPosition position;
    OvPolygon polygon;

    explicit Records(OVPolygonMode mode) : polygon(mode) {}

    void Read(const std::string& text) {
        std::istringstream in(text);
        OvReader reader(in, "fuzz");
        reader.RegisterObject(OvReaderObject("REGION", Link(&region, &OvRegion::ReadHdl)));
        reader.RegisterObject(OvReaderObject("POSITION", Link(&position, &OvPosition::ReadHdl)));
        reader.RegisterObject(OvReaderObject("POLYGON", Link(&polygon, &OvPolygon::ReadHdl)));
        reader.DoProcess(false);
    }
};

void CheckBox(const OvPolygon& polygon) {
    for (const OvPoint* p = polygon.First(); p != nullptr; p = p->Next()) {
        // NaN cannot come from the tokenizer, so every coordinate compares.
        if (!(polygon.GetMin().GetX() <= p->GetX() && p->GetX() <= polygon.GetMax().GetX() &&
              polygon.GetMin().GetY() <= p->GetY() && p->GetY() <= polygon.GetMax().GetY())) {
            std::abort();
        }
    }
}

bool AllFinite(const OvPolygon& polygon) {
    for (const OvPoint* p = polygon.First(); p != nullptr; p = p->Next()) {
        if (!std::isfinite(p->GetX()) || !std::isfinite(p->GetY()) || !std::isfinite(p->GetZ()))
            return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const auto mode = static_cast<OVPolygonMode>(kModes[data[0] % 6]);
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);

    Records records(mode);
    records.Read(text);
    CheckBox(records.polygon);
    // The predicates must cope with whatever was read.
    records.polygon.Overlap(records.position);
    records.polygon.Area();
    records.polygon.Length();
    records.region.Overlap(&records.position);

    if (mode < 0 || mode > 3 || records.polygon.Count() == 2 || !AllFinite(records.polygon)) {
        return 0;
    }
    OvWriterReset();
    std::ostringstream out;
    out << "POLYGON" << Ovendl << OvBeginBlockNL;
    records.polygon.Write(out);
    out << OvEndBlockNL << Ovendl;
    Records again(mode);
    again.Read(out.str());
    if (again.polygon.Count() != records.polygon.Count()) std::abort();
    return 0;
}
