// Tilt transforms, plane infos, parallel definitions and ortho photos read from block files
// through the block reader: "TILTPLANE" blocks (the keyword record), "TILTTRAFO" blocks (the
// positional record of file version 5.0), "PLANEINFO", "PARALLELDEF" and "ORTHOPHOTO" blocks.
//
// Whatever the input: reading collects its errors and never fails otherwise; every tilt matrix
// is 3 x 3 and every placement 4 x 4 afterwards, so that mapping, areas and lookups run; and what
// was read, written and read again has the same numbers of records, points, lines and planes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "orvo/model/ortho_photo.h"
#include "orvo/model/point_list.h"
#include "orvo/rectify/tilt_parallel_def.h"
#include "orvo/rectify/tilt_plane_info.h"
#include "orvo/rectify/tilt_trafo.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"

namespace {

using namespace orvo;

struct Records : public LinkHdl {
    OvTiltTrafoList trafos;
    OvTiltPlaneInfoList planes;
    OvOrthoPhotoList orthos;
    OvPointList points;
    OvTiltParallelDef def{&points};

    std::int32_t OnTrafo(void* object) {
        trafos.AddTrafo(static_cast<OvReaderObject*>(object));
        return 1;
    }
    std::int32_t OnOldTrafo(void* object) {
        trafos.AddTrafoV50(static_cast<OvReaderObject*>(object));
        return 1;
    }
    std::int32_t OnParallelDef(void* object) {
        def.Read(static_cast<OvReaderObject*>(object));
        return 1;
    }

    void Read(const std::string& text) {
        std::istringstream in(text);
        OvReader reader(in, "fuzz");
        reader.RegisterObject(OvReaderObject("TILTPLANE", Link(this, &Records::OnTrafo)));
        reader.RegisterObject(OvReaderObject("TILTTRAFO", Link(this, &Records::OnOldTrafo)));
        reader.RegisterObject(
            OvReaderObject("PLANEINFO", Link(&planes, &OvTiltPlaneInfoList::AddPlaneHdl)));
        reader.RegisterObject(OvReaderObject("PARALLELDEF", Link(this, &Records::OnParallelDef)));
        reader.RegisterObject(
            OvReaderObject("ORTHOPHOTO", Link(&orthos, &OvOrthoPhotoList::AddPhotoHdl)));
        reader.DoProcess(false);
    }

    std::string Write() const {
        OvWriterReset();
        std::ostringstream out;
        for (const OvTiltTrafo* t = trafos.First(); t != nullptr; t = t->Next()) {
            out << "TILTPLANE" << Ovendl << OvBeginBlockNL;
            t->Write(out);
            out << OvEndBlockNL << Ovendl;
        }
        for (const OvTiltPlaneInfo* p = planes.First(); p != nullptr; p = p->Next()) {
            out << "PLANEINFO" << Ovendl << OvBeginBlockNL;
            p->Write(out);
            out << OvEndBlockNL << Ovendl;
        }
        if (def.HasData() || !def.GetConstraintList().IsEmpty()) {
            out << "PARALLELDEF" << Ovendl << OvBeginBlockNL;
            def.Write(out);
            out << OvEndBlockNL << Ovendl;
        }
        orthos.Write(out);
        return out.str();
    }
};

void Check(bool condition) {
    if (!condition) std::abort();
}

// Exercises everything that works on what was read.
void Use(const Records& records) {
    for (const OvTiltTrafo* t = records.trafos.First(); t != nullptr; t = t->Next()) {
        Check(t->GetTiltMat().GetLines() == 3 && t->GetTiltMat().GetColumns() == 3);
        Check(t->GetTransMat().GetLines() == 4 && t->GetTransMat().GetColumns() == 4);
        OvPoint p(1, 1.5, -2.0, 0.5, 0);
        OvPoint out;
        t->Transform(&p, &out);
        OvPointList copy(t->GetMeasPoints().GetPointList());
        t->Transform(&copy);
        t->Area();
        t->Length();
        t->Overlap(&p);
        OvTiltParallelDef def(t->GetParallelDef());
        def.CheckAndRepair();
        def.MakeLastTwoParallelConstraintsPerpendicular();
    }
    for (const OvTiltPlaneInfo* p = records.planes.First(); p != nullptr; p = p->Next())
        Check(p->GetTransformation().GetLines() == 4 && p->GetTransformation().GetColumns() == 4);
    OvPoint q(0, 3.0, 4.0, 0.0, 0);
    records.planes.Transform(&q);
    for (const OvOrthoPhoto* o = records.orthos.First(); o != nullptr; o = o->Next()) {
        OvPoint a;
        OvPoint b;
        OvPoint c;
        OvPoint d;
        o->GetImageCorners(&a, &b, &c, &d);
        OvPoint r(0, 1.0, 1.0, 0.0, 0);
        o->Transform(&r);
        o->GetPixelSize();
    }
}

int PointCount(const OvTiltTrafoList& list) {
    int n = 0;
    for (const OvTiltTrafo* t = list.First(); t != nullptr; t = t->Next()) {
        n += t->GetMeasPoints().Count() + t->GetBikoList().Count() + t->GetRegion().Count();
        // A transform writes its parallel definition only when it has lines.
        const OvTiltParallelDef& def = t->GetParallelDef();
        if (def.HasData()) n += def.GetDefLineList().Count() + def.GetConstraintList().Count();
    }
    return n;
}

int PlaneCount(const OvOrthoPhotoList& list) {
    int n = 0;
    for (const OvOrthoPhoto* o = list.First(); o != nullptr; o = o->Next())
        n += o->TiltPlaneList().Count();
    return n;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    Records records;
    records.Read(text);
    Use(records);

    // What was written reads back into as many records, points, lines and planes. A number
    // that overflowed while mapping (the 5.0 record maps its points) is written as "inf" or
    // "nan", which no reader takes for a number: such texts are only read, not compared.
    const std::string written = records.Write();
    Records again;
    again.Read(written);
    Use(again);
    if (written.find("inf") != std::string::npos || written.find("nan") != std::string::npos)
        return 0;
    Check(again.trafos.Count() == records.trafos.Count());
    Check(PointCount(again.trafos) == PointCount(records.trafos));
    Check(again.planes.Count() == records.planes.Count());
    Check(again.def.GetDefLineList().Count() == records.def.GetDefLineList().Count());
    Check(again.def.GetConstraintList().Count() == records.def.GetConstraintList().Count());
    Check(again.orthos.Count() == records.orthos.Count());
    Check(PlaneCount(again.orthos) == PlaneCount(records.orthos));
    return 0;
}
