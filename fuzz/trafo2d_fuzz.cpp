// Feeds arbitrary text to the block-file reader with transformation blocks ("TRAFO" in the
// current form, "TRAFOV50" in the form of file version 5.0) and point blocks ("MEASURED",
// "REFERENCE": id, x, y). Whatever was read is then used whole: the transformation maps points,
// builds its matrix, is written and read back (which must give the same type and, for finite
// values, the same parameters to 16 digits; others come back as 0.0), and every estimation runs on
// the point lists.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "orvo/geom2d/region.h"
#include "orvo/numerics/calc_trafo2d.h"
#include "orvo/numerics/matrix.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace {

using orvo::Link;
using orvo::LinkHdl;
using orvo::OvReader;
using orvo::OvReaderObject;
using orvo::OvTrafo2d;
using orvo::String;

class Record : public LinkHdl {
public:
    Record() {
        const orvo::eOvPointRWMask columns[] = {orvo::eOvPointRWId, orvo::eOvPointRWX,
                                                orvo::eOvPointRWY, orvo::eOvPointRWEnd};
        measured.SetTable(columns);
        reference.SetTable(columns);
    }

    std::int32_t OnTrafo(void* arg) {
        auto* object = static_cast<OvReaderObject*>(arg);
        trafo.Read(object);
        object->DoProcess();
        return 1;
    }
    std::int32_t OnTrafoV50(void* arg) {
        auto* object = static_cast<OvReaderObject*>(arg);
        trafo.ReadV50(object);
        object->DoProcess();
        return 1;
    }
    std::int32_t OnError(void*) { return ++errors < 64 ? 1 : 0; }

    OvTrafo2d trafo;
    orvo::OvPointList measured;
    orvo::OvPointList reference;
    int errors = 0;
};

// Reads `text` with the record's bindings.
void ReadInto(Record& record, const std::string& text) {
    std::istringstream in(text);
    OvReader reader(in, String("fuzz.txt"));
    reader.RegisterObject(OvReaderObject("TRAFO", Link(&record, &Record::OnTrafo)));
    reader.RegisterObject(OvReaderObject("TRAFOV50", Link(&record, &Record::OnTrafoV50)));
    reader.RegisterObject(
        OvReaderObject("MEASURED", Link(&record.measured, &orvo::OvPointList::ReadHdl)));
    reader.RegisterObject(
        OvReaderObject("REFERENCE", Link(&record.reference, &orvo::OvPointList::ReadHdl)));
    reader.SetParserErrorHdl(Link(&record, &Record::OnError));
    reader.DoProcess(false);
}

void CheckRoundTrip(const OvTrafo2d& trafo) {
    orvo::OvWriterReset();
    std::ostringstream out;
    out << "TRAFO " << orvo::OvBeginBlockNL;
    trafo.Write(out);
    out << orvo::OvEndBlockNL << orvo::Ovendl;
    Record again;
    ReadInto(again, out.str());
    if (again.trafo.GetType() != trafo.GetType()) std::abort();
    for (int i = 0; i < trafo.GetParamCount(); ++i) {
        const double a = trafo.GetParam(i);
        const double b = again.trafo.GetParam(i);
        if (!std::isfinite(a)) {
            if (b != 0.0) std::abort();  // written as "nan", read as 0.0
        } else if (std::fabs(a - b) > 1e-15 * std::fabs(a) + 1e-300) {
            std::abort();
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Record record;
    ReadInto(record, std::string(reinterpret_cast<const char*>(data), size));

    // The transformation on its own.
    volatile double sink = 0.0;
    double x = 12.5, y = -3.25;
    if (record.trafo.Transform(&x, &y)) sink = sink + x + y;
    if (record.trafo.TransInvHelmert(&x, &y)) sink = sink + x + y;
    orvo::OvMatrix matrix(3, 3);
    record.trafo.BuildMatrix(&matrix);
    sink = sink + matrix.GetElem(3, 3);
    CheckRoundTrip(record.trafo);

    // The estimations on the point lists read (bounded, so that one input stays quick).
    if (record.measured.Count() > 2000 || record.reference.Count() > 2000) return 0;
    orvo::OvCalcTrafo2D calc(&record.reference);
    calc.Set(record.trafo);
    calc.CalcResiduals(&record.measured);
    calc.CalcTrafoHelmert(&record.measured);
    calc.CalcTrafoAffin(&record.measured);
    calc.CalcTrafoProjectiv(&record.measured);
    calc.CalcTrafoPolynom(&record.measured);
    orvo::OvTrafo2DFitOptions options;
    options.isCheckPoint = [](const orvo::OvPoint& p) { return p.GetId() % 5 == 0; };
    orvo::OvTrafo2DFitReport report;
    for (orvo::eOvTrafo2DType type : {orvo::eOvTrafo2DHelmert, orvo::eOvTrafo2DAffin,
                                      orvo::eOvTrafo2DProjektiv, orvo::eOvTrafo2DPolynomial}) {
        if (calc.CalcTrafo(type, &record.measured, options, &report)) {
            if (!calc.HasFiniteParameters()) std::abort();  // the extended fit refuses these
            sink = sink + report.sigma0;
        }
    }
    const orvo::OvRegion region(-100.0, -100.0, 100.0, 100.0);
    sink = sink + static_cast<int>(calc.SuggestTrafoByDistrib(region, &record.measured));
    return 0;
}
