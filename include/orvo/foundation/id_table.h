// Tables of ids and of id pairs, as they are stored in the block files.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/array.h"

namespace orvo {

class OvReaderObject;

/// Two ids, ordered by the first and then by the second.
class OvIdPair {
public:
    OvIdPair() = default;
    OvIdPair(std::uint32_t id1, std::uint32_t id2) : id1(id1), id2(id2) {}

    bool operator<(const OvIdPair& o) const { return id1 < o.id1 || (id1 == o.id1 && id2 < o.id2); }
    bool operator<=(const OvIdPair& o) const { return !(o < *this); }
    bool operator==(const OvIdPair& o) const { return id1 == o.id1 && id2 == o.id2; }
    bool operator!=(const OvIdPair& o) const { return !(*this == o); }

    std::uint32_t id1 = 0;
    std::uint32_t id2 = 0;
};

// Both tables are stored as the contents of a block that the owning record opens with its own
// keyword, for example
//
//     PHOTOS {
//         1          2          17
//     }
//
// `Write` writes only the contents (the ids and their line ends); the caller writes the keyword
// and the braces around them. `Read` is the block's handler: it is called with the first token
// inside the block as the current token, appends the ids it finds and returns with the block's
// "}" as the current token, as `OvReaderObject::DoProcess` does. Every token up to the "}" must
// be an integer; anything else raises the parser's "ParserErrorNotSpecifiedToken" (status 5),
// which the reader records. Ids are unsigned 32-bit: a larger value reads as 4294967295, a
// negative one as 0.

/// A table of ids.
class OvIdTable : public TOvArray<std::uint32_t> {
public:
    using TOvArray<std::uint32_t>::TOvArray;

    /// Appends the ids of the block (see above). Returns 1, or 0 for an object that belongs
    /// to no reader.
    int Read(OvReaderObject* reader);
    /// Each id left-aligned in a field of 10 followed by " ", a line end (`Ovendl`) after every
    /// 10 ids and one at the end (so a table of 10 ids ends with two line ends, an empty table
    /// writes one). The stream's format flags are kept.
    std::ostream& Write(std::ostream& out) const;
};

/// A table of id pairs.
class OvIdPairTable : public TOvArray<OvIdPair> {
public:
    using TOvArray<OvIdPair>::TOvArray;

    /// Appends the pairs of the block: two ids each. A lone id before the "}" makes no pair
    /// and is dropped. Returns 1, or 0 for an object that belongs to no reader.
    int Read(OvReaderObject* reader);
    /// Each pair as the first id left-aligned in 10, " ", the second left-aligned in 10, "  ";
    /// a line end after every 5 pairs and one at the end. The stream's format flags are kept.
    std::ostream& Write(std::ostream& out) const;
};

}  // namespace orvo
