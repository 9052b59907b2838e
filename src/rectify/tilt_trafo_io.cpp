// Reading and writing tilt transforms: the keyword block, the positional record of file
// version 5.0, and the written record.
#include <ostream>

#include "orvo/model/point.h"
#include "orvo/model/point_list.h"
#include "orvo/rectify/tilt_trafo.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/writer.h"
#include "record_tokens.h"
#include "record_writing.h"

namespace orvo {

namespace {

// Reads a matrix block into `target` when it has the target's shape; a block of another shape
// is reported and leaves the target as it was. An empty block changes nothing.
void ReadSquareMatrix(OvReaderObject* object, OvMatrix& target, const char* what) {
    OvReader* reader = detail::BlockReaderOf(object);
    if (reader == nullptr) return;
    detail::RecordTokens tokens(*reader);
    if (!tokens.AtDataEnd()) {
        OvMatrix read;
        read.Read(object);
        if (read.GetLines() == target.GetLines() && read.GetColumns() == target.GetColumns()) {
            target = read;
        } else {
            tokens.Report(what);
        }
    }
    tokens.SkipToBlockEnd();
}

// Reads the point records of a block into a point-set polygon with its mode's columns (mode 1:
// id, x, y; mode 3: id, x, y, z), replacing its points. Unlike a region's block, where two
// points stand for the rectangle through them, two points stay two points here.
void ReadPointSet(OvReaderObject* object, OvPolygon& polygon) {
    if (detail::BlockReaderOf(object) == nullptr) return;
    OvPointFormat columns;
    columns.AddEntry(eOvPointRWId);
    columns.AddEntry(eOvPointRWX);
    columns.AddEntry(eOvPointRWY);
    if (polygon.GetMode() == OvPolygonMode3DId) columns.AddEntry(eOvPointRWZ);
    OvPointList read(columns);
    read.Read(object);
    polygon = OvPolygon(&read, polygon.GetMode());
}

}  // namespace

// ---- the keyword block ---------------------------------------------------------------------

std::int32_t OvTiltTrafo::ReadDefPointsHdl(void* readerObject) {
    ReadPointSet(static_cast<OvReaderObject*>(readerObject), defPoints_);
    return 1;
}

std::int32_t OvTiltTrafo::ReadMeasPointsHdl(void* readerObject) {
    ReadPointSet(static_cast<OvReaderObject*>(readerObject), measPoints_);
    return 1;
}

std::int32_t OvTiltTrafo::ReadIdHdl(void* readerObject) {
    auto* object = static_cast<OvReaderObject*>(readerObject);
    if (OvReader* reader = detail::BlockReaderOf(object)) {
        detail::RecordTokens tokens(*reader);
        if (!tokens.AtDataEnd()) OvObject::Read(object);
        tokens.SkipToBlockEnd();
    }
    return 1;
}

std::int32_t OvTiltTrafo::ReadDistortionHdl(void* readerObject) {
    auto* object = static_cast<OvReaderObject*>(readerObject);
    if (OvReader* reader = detail::BlockReaderOf(object)) {
        detail::RecordTokens tokens(*reader);
        if (!tokens.AtDataEnd()) camera_.Read(object);
        tokens.SkipToBlockEnd();
    }
    return 1;
}

std::int32_t OvTiltTrafo::ReadTiltMatHdl(void* readerObject) {
    ReadSquareMatrix(static_cast<OvReaderObject*>(readerObject), tiltMat_,
                     "TILTTRAFO: the tilt matrix must be 3 x 3, the block is not taken");
    return 1;
}

std::int32_t OvTiltTrafo::ReadTransMatHdl(void* readerObject) {
    ReadSquareMatrix(static_cast<OvReaderObject*>(readerObject), transMat_,
                     "TRAFO3D: the placement must be 4 x 4, the block is not taken");
    return 1;
}

std::int32_t OvTiltTrafo::ReadRegionHdl(void* readerObject) {
    return detail::ReadInBlock(static_cast<OvReaderObject*>(readerObject), region_);
}

std::int32_t OvTiltTrafo::ReadParallelDefHdl(void* readerObject) {
    parallelDef_.Read(static_cast<OvReaderObject*>(readerObject));
    return 1;
}

int OvTiltTrafo::Read(OvReaderObject* object) {
    measPoints_.SetMode(OvPolygonMode2DId);
    defPoints_.SetMode(OvPolygonMode3DId);
    if (detail::BlockReaderOf(object) == nullptr) return 1;

    bool active = false;
    bool camera = false;
    bool regionActive = false;
    object->RegisterObject(OvReaderObject("TILTID", Link(this, &OvTiltTrafo::ReadIdHdl)));
    object->RegisterObject(OvReaderObject("KAMERA", &camera));
    object->RegisterObject(OvReaderObject("ACTIV", &active));
    object->RegisterObject(
        OvReaderObject("DISTORTION", Link(this, &OvTiltTrafo::ReadDistortionHdl)));
    object->RegisterObject(OvReaderObject("REGIONACTIV", &regionActive));
    object->RegisterObject(OvReaderObject("TILTTRAFO", Link(this, &OvTiltTrafo::ReadTiltMatHdl)));
    object->RegisterObject(OvReaderObject("TRAFO3D", Link(this, &OvTiltTrafo::ReadTransMatHdl)));
    object->RegisterObject(OvReaderObject("DEFPOINTS", Link(this, &OvTiltTrafo::ReadDefPointsHdl)));
    object->RegisterObject(
        OvReaderObject("MEASPOINTS", Link(this, &OvTiltTrafo::ReadMeasPointsHdl)));
    object->RegisterObject(OvReaderObject("VALIDREGION", Link(this, &OvTiltTrafo::ReadRegionHdl)));
    object->RegisterObject(
        OvReaderObject("PARALLELDEF", Link(this, &OvTiltTrafo::ReadParallelDefHdl)));
    detail::ProcessBlock(object);

    region_.GetPointList().Renumber(1);
    SetActive(active);
    SetDistortCameraFlag(camera);
    SetRegionActive(regionActive);
    return 1;
}

// ---- the record of file version 5.0 --------------------------------------------------------

namespace {

// The positional fields of the old record, up to the four measured points; false where the
// record ended early (at a "}" or the end of the input).
class V50Fields {
public:
    V50Fields(OvTiltTrafo& trafo, OvReaderObject* object, OvMatrix& tilt, OvMatrix& placement)
        : trafo_(trafo),
          object_(object),
          tokens_(*object->GetReader()),
          tilt_(tilt),
          placement_(placement) {}

    void Read() {
        if (!Head() || !TiltElements() || !Placement() || !Region()) return;
        MeasuredPoints();
    }

private:
    bool Head() {
        std::uint32_t id = 0;
        String name;
        std::int32_t active = 0;
        if (!tokens_.Id(id)) return false;
        trafo_.SetId(id);
        if (!tokens_.Text(name)) return false;
        trafo_.SetName(name);
        if (!tokens_.Int(active)) return false;
        trafo_.SetActive(active != 0);
        return true;
    }

    bool TiltElements() {
        // The order in which the old files kept the eight free elements.
        static constexpr int kOrder[8][2] = {{1, 3}, {2, 3}, {1, 2}, {2, 2},
                                             {3, 2}, {1, 1}, {2, 1}, {3, 1}};
        tilt_.SetElem(3, 3, 1.0);
        for (const auto& element : kOrder) {
            double value = 0.0;
            if (!tokens_.Number(value)) return false;
            tilt_.SetElem(element[0], element[1], value);
        }
        return true;
    }

    // "{" then what `read` takes, then "}"; false when the record ended instead of the "{".
    template <class Read>
    bool InBlock(Read read) {
        if (tokens_.AtDataEnd()) return false;
        // Anything but "{" raises the reader's error for a token of the wrong kind.
        if (!tokens_.AtBlockBegin()) tokens_.Parser().GetToken(TokenBlockBegin);
        tokens_.EnterBlock();
        read();
        tokens_.SkipToBlockEnd();
        return tokens_.LeaveBlock();
    }

    bool Placement() {
        return InBlock([this] {
            if (tokens_.AtDataEnd()) return;
            OvMatrix read;
            read.Read(object_);
            if (read.GetLines() == 4 && read.GetColumns() == 4) {
                placement_ = read;
            } else {
                tokens_.Report("TILTTRAFO: the placement must be 4 x 4, it is not taken");
            }
        });
    }

    bool Region() {
        return InBlock([this] { trafo_.GetRegion().Read(object_); });
    }

    void MeasuredPoints() {
        OvPointFormat columns;
        columns.AddEntry(eOvPointRWX);
        columns.AddEntry(eOvPointRWY);
        for (int i = 0; i < 4 && !tokens_.AtDataEnd(); ++i) {
            OvPoint point;
            try {
                point.Read(object_, columns);
            } catch (const OvParserStatus& status) {
                // A "}" inside the point ends the data: the incomplete point is dropped.
                if (status.GetStatus() == kOvParserStatusEndOfData) return;
                throw;
            }
            trafo_.GetMeasPoints().AddPoint(point);
        }
    }

    OvTiltTrafo& trafo_;
    OvReaderObject* object_;
    detail::RecordTokens tokens_;
    OvMatrix& tilt_;
    OvMatrix& placement_;
};

}  // namespace

int OvTiltTrafo::ReadV50(OvReaderObject* object) {
    if (detail::BlockReaderOf(object) == nullptr) return 1;
    V50Fields(*this, object, tiltMat_, transMat_).Read();

    region_.GetPointList().Renumber(1);
    defPoints_ = measPoints_;
    for (OvPoint* p = defPoints_.First(); p != nullptr; p = p->Next())
        Transform(p, p);
    defPoints_.GetPointList().Renumber(1);
    defPoints_.UpdateMinMax();
    measPoints_.SetMode(OvPolygonMode2DId);
    defPoints_.SetMode(OvPolygonMode3DId);
    return 1;
}

// ---- writing -------------------------------------------------------------------------------

std::ostream& OvTiltTrafo::Write(std::ostream& out) const {
    detail::InlineObject(out, "TILTID", *this);
    detail::NumberLine(out, "ACTIV", IsActive() ? 1 : 0);
    detail::NumberLine(out, "KAMERA", GetDistortCameraFlag() ? 1 : 0);
    detail::NumberLine(out, "REGIONACTIV", IsRegionActive() ? 1 : 0);
    if (parallelDef_.HasData()) detail::BlockLines(out, "PARALLELDEF", parallelDef_);
    detail::BlockLines(out, "TILTTRAFO", tiltMat_);
    detail::BlockLines(out, "TRAFO3D", transMat_);
    detail::BlockLines(out, "DEFPOINTS", defPoints_);
    detail::BlockLines(out, "DISTORTION", camera_);
    detail::BlockLines(out, "MEASPOINTS", measPoints_);
    detail::BlockLines(out, "VALIDREGION", region_);
    return out;
}

}  // namespace orvo
