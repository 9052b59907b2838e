// Reading a small fixed record (a region's corners, a position) all or nothing.
#pragma once

#include "orvo/model/point.h"
#include "orvo/textfile/tokenizer.h"

namespace orvo::detail {

/// Runs `read`, which reads into copies of the caller's fields. Returns true when it read the
/// whole record. The "}" closing the block before the record was complete (the end of the
/// object's data) returns false, so the caller keeps its old values and the reader goes on
/// after the block, as it does after an incomplete point record. Any other status is passed on.
template <class ReadFunction>
bool ReadWholeRecord(ReadFunction&& read) {
    try {
        read();
    } catch (const OvParserStatus& status) {
        if (status.GetStatus() != kOvParserStatusEndOfData) throw;
        return false;
    }
    return true;
}

}  // namespace orvo::detail
