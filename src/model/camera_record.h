// Reading camera records: shared by the camera's own Read and the camera file's block handler
// (private to the library).
#pragma once

#include "orvo/model/camera.h"
#include "orvo/textfile/reader.h"

namespace orvo::detail {

/// The number of fields of a camera record: id, six numbers and the info text.
inline constexpr int kCameraRecordFields = 8;

/// Reads one record into `camera` (see OvCamera::Read), counting in `fields` how many fields
/// were stored, also when it ends by throwing the parser's status.
void ReadCameraRecord(OvCamera& camera, OvReader& reader, int& fields);

/// Appends a read error with the given status to the reader's error list.
void RecordReadError(OvReader& reader, const OvParserStatus& status);

}  // namespace orvo::detail
