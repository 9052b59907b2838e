// A position in the plane: where a photo's view sits on the host's screen, and similar places
// that only need x and y.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/link.h"
#include "orvo/model/point.h"

namespace orvo {

class OvParser;
class OvReaderObject;

/// A point used for its x and y only. Everything else of the point record is there (a position
/// is a point) but is neither read nor written.
class OvPosition : public OvPoint, public LinkHdl {
public:
    /// At the origin.
    OvPosition() = default;
    OvPosition(double x, double y);
    OvPosition(const OvPosition&) = default;
    OvPosition& operator=(const OvPosition&) = default;
    ~OvPosition() override;

    // The point's record forms with an explicit column format stay available.
    using OvPoint::Read;
    using OvPoint::Write;

    /// Reads x and y as a point record with the x, y columns from the reader's tokenizer.
    /// Returns 1. Both are taken over only when both were read: a block that closes early
    /// leaves the position as it was and the reader goes on after the block. Other tokenizer
    /// errors reach the reader.
    int Read(OvReaderObject* reader);
    /// The same on a tokenizer and its stream directly (the current token is x).
    int Read(OvParser& parser, std::istream& in);
    /// `Read` in the shape of a link function: `Link(&position, &OvPosition::ReadHdl)`.
    std::int32_t ReadHdl(void* readerObject);
    /// Writes x and y as a point record with the x, y columns (each a blank and a right-aligned
    /// field of 21, precision 16), without a line end.
    std::ostream& Write(std::ostream& out) const;
};

}  // namespace orvo
