// Differential target for the point-in-polygon test: the in-place walk (OvPolygon::Overlap) and
// the band index (OvPreparedPolygon) must answer exactly as the rule as first stated (copy the
// ring, rotate it to its lowest vertex, put a copy of the last vertex in front, count the edges
// the test segment meets), for any ring and any point.
//
// Input layout: byte 0 picks how coordinates are made from the rest:
//   bits 0-1  0: raw 8-byte doubles (every bit pattern: NaN, infinities, subnormals);
//             1: small integers from one byte each (-8..7), so that points hit vertices and
//                edges; 2: one byte each scaled by a power of two from byte 1 (tiny or huge);
//             3: one byte each added to a large offset (cancellation far from the origin)
//   bit 2     mode 1 instead of 0
//   bit 3     the box is widened by the last two values (a box that does not fit the points)
// Byte 1 (modes 2, 3): the exponent. Byte 2: the vertex count (1..64). Then the vertices' x, y,
// then query points' x, y until the input ends.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "orvo/geom2d/line.h"
#include "orvo/geom2d/polygon.h"
#include "orvo/geom2d/prepared_polygon.h"

#include "literal_overlap.h"

namespace {

using orvo::test::LiteralOverlap;

using orvo::OvLine;
using orvo::OvPoint;
using orvo::OvPointList;
using orvo::OvPolygon;

class Source {
public:
    Source(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    bool Byte(std::uint8_t& out) {
        if (at_ >= size_) return false;
        out = data_[at_++];
        return true;
    }

    bool Value(int kind, int exponent, double& out) {
        if (kind == 0) {
            if (size_ - at_ < sizeof out) return false;
            std::memcpy(&out, data_ + at_, sizeof out);
            at_ += sizeof out;
            return true;
        }
        std::uint8_t b = 0;
        if (!Byte(b)) return false;
        const double small = static_cast<double>(static_cast<int>(b & 0x0F) - 8);
        if (kind == 1) out = small;
        if (kind == 2) out = std::ldexp(static_cast<double>(static_cast<std::int8_t>(b)), exponent);
        if (kind == 3) out = std::ldexp(1.0, exponent / 4) + small;
        return true;
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Source source(data, size);
    std::uint8_t selector = 0, exponentByte = 0, countByte = 0;
    if (!source.Byte(selector) || !source.Byte(exponentByte) || !source.Byte(countByte)) return 0;
    const int kind = selector & 0x03;
    const int exponent = kind == 2 ? static_cast<int>(exponentByte) * 9 - 1150  // -1150..1145
                                   : static_cast<int>(exponentByte) * 4;        // offsets to 2^255
    const int count = 1 + countByte % 64;

    OvPolygon polygon((selector & 0x04) != 0 ? orvo::OvPolygonMode2DId : orvo::OvPolygonMode2D);
    for (int i = 0; i < count; ++i) {
        double x = 0.0, y = 0.0;
        if (!source.Value(kind, exponent, x) || !source.Value(kind, exponent, y)) return 0;
        polygon.AddPoint(OvPoint(static_cast<unsigned>(i + 1), x, y, 0.0, 0));
    }
    std::vector<OvPoint> queries;
    double x = 0.0, y = 0.0;
    while (source.Value(kind, exponent, x) && source.Value(kind, exponent, y))
        queries.emplace_back(0, x, y, 0.0, 0);
    if ((selector & 0x08) != 0 && !queries.empty()) {
        // Stretch the box by a query point: the test segment's end then comes from a box that
        // does not fit the ring.
        polygon.UpdateMinMax(queries.back());
    }
    // Every vertex is a query point as well.
    for (const OvPoint* q = polygon.First(); q != nullptr; q = q->Next())
        queries.emplace_back(0, q->GetX(), q->GetY(), 0.0, 0);

    const orvo::OvPreparedPolygon prepared(polygon);
    for (const OvPoint& p : queries) {
        const bool literal = LiteralOverlap(polygon, p);
        const bool inPlace = polygon.Overlap(p);
        const bool banded = prepared.Overlap(p);
        if (literal != inPlace || literal != banded) {
            std::fprintf(stderr,
                         "overlap differs at (%a, %a): literal %d, in place %d, prepared %d\n",
                         p.GetX(), p.GetY(), literal, inPlace, banded);
            std::abort();
        }
    }
    return 0;
}
