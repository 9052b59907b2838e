// CRC-32 of IEEE 802.3: reflected, polynomial 0xEDB88320, register preset to all ones and
// inverted at the end.
//
// Two kernels compute the same register. The byte-at-a-time one looks up one table entry per
// byte; every step depends on the previous one, so it is bound by the latency of that chain.
// Slicing by 8 folds eight bytes per step with eight independent lookups into eight tables
// (table k advances a byte by k further zero bytes), which shortens the dependency chain
// eightfold. All checksums of the library use the sliced kernel; the byte-at-a-time one stays
// as the plain reference the sliced one is tested against.
#include <array>

#include "orvo/services/checksum.h"

namespace orvo {

namespace {

constexpr std::uint32_t kPolynomial = 0xEDB88320U;

using CrcTables = std::array<std::array<std::uint32_t, 256>, 8>;

constexpr CrcTables MakeCrcTables() {
    CrcTables tables{};
    for (std::uint32_t n = 0; n < 256; ++n) {
        std::uint32_t value = n;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1U) ? (kPolynomial ^ (value >> 1)) : (value >> 1);
        }
        tables[0][n] = value;
    }
    // tables[k][n]: the register after byte n is followed by k zero bytes.
    for (std::size_t k = 1; k < tables.size(); ++k) {
        for (std::size_t n = 0; n < 256; ++n) {
            const std::uint32_t previous = tables[k - 1][n];
            tables[k][n] = tables[0][previous & 0xFFU] ^ (previous >> 8);
        }
    }
    return tables;
}

constexpr CrcTables kCrcTables = MakeCrcTables();

// Four bytes as a little-endian word, whatever the host's byte order and the pointer's alignment
// (compilers turn this into one load on little-endian machines).
inline std::uint32_t LoadLittleEndian32(const unsigned char* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) | (static_cast<std::uint32_t>(bytes[1]) << 8) |
           (static_cast<std::uint32_t>(bytes[2]) << 16) |
           (static_cast<std::uint32_t>(bytes[3]) << 24);
}

}  // namespace

std::uint32_t OvCrc32RegisterBytewise(std::uint32_t reg, const void* data, std::size_t length) {
    if (data == nullptr) return reg;
    const auto* bytes = static_cast<const unsigned char*>(data);
    const auto& table = kCrcTables[0];
    for (std::size_t i = 0; i < length; ++i) {
        reg = table[(reg ^ bytes[i]) & 0xFFU] ^ (reg >> 8);
    }
    return reg;
}

std::uint32_t OvCrc32RegisterSliced(std::uint32_t reg, const void* data, std::size_t length) {
    if (data == nullptr) return reg;
    const auto* bytes = static_cast<const unsigned char*>(data);
    const CrcTables& t = kCrcTables;
    // The register is folded into the first four of every eight bytes: byte 0 then has seven
    // bytes behind it in this step (table 7), byte 7 none (table 0).
    for (; length >= 8; bytes += 8, length -= 8) {
        const std::uint32_t low = reg ^ LoadLittleEndian32(bytes);
        const std::uint32_t high = LoadLittleEndian32(bytes + 4);
        reg = t[7][low & 0xFFU] ^ t[6][(low >> 8) & 0xFFU] ^ t[5][(low >> 16) & 0xFFU] ^
              t[4][low >> 24] ^ t[3][high & 0xFFU] ^ t[2][(high >> 8) & 0xFFU] ^
              t[1][(high >> 16) & 0xFFU] ^ t[0][high >> 24];
    }
    return OvCrc32RegisterBytewise(reg, bytes, length);
}

OvCalcCRC32::OvCalcCRC32() : register_(0) {}

std::uint32_t OvCalcCRC32::Reset() {
    register_ = 0;
    return 0;
}

std::uint32_t OvCalcCRC32::Crc(const void* data, unsigned int length) {
    if (data == nullptr) return Reset();
    // The stored register is the raw one; inverting it here (rather than continuing from it)
    // is what makes a second call continue from the previously returned value.
    register_ = OvCrc32RegisterSliced(~register_, data, length);
    return ~register_;
}

std::uint32_t OvCrc32Update(std::uint32_t crc, const void* data, std::size_t length) {
    if (data == nullptr || length == 0) return crc;
    return ~OvCrc32RegisterSliced(~crc, data, length);
}

}  // namespace orvo
