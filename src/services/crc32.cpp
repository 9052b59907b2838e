// CRC-32 of IEEE 802.3: reflected, polynomial 0xEDB88320, register preset to all ones and
// inverted at the end, driven by a 256-entry table.
#include <array>

#include "orvo/services/checksum.h"

namespace orvo {

namespace {

constexpr std::array<std::uint32_t, 256> MakeCrcTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t n = 0; n < 256; ++n) {
        std::uint32_t value = n;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1U) ? (0xEDB88320U ^ (value >> 1)) : (value >> 1);
        }
        table[n] = value;
    }
    return table;
}

constexpr std::array<std::uint32_t, 256> kCrcTable = MakeCrcTable();

// Runs the table over the bytes with the register as given (no inversions).
std::uint32_t ProcessBytes(std::uint32_t reg, const void* data, std::size_t length) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i < length; ++i) {
        reg = kCrcTable[(reg ^ bytes[i]) & 0xFFU] ^ (reg >> 8);
    }
    return reg;
}

}  // namespace

OvCalcCRC32::OvCalcCRC32() : register_(0) {}

std::uint32_t OvCalcCRC32::Reset() {
    register_ = 0;
    return 0;
}

std::uint32_t OvCalcCRC32::Crc(const void* data, unsigned int length) {
    if (data == nullptr) return Reset();
    // The stored register is the raw one; inverting it here (rather than continuing from it)
    // is what makes a second call continue from the previously returned value.
    register_ = ProcessBytes(~register_, data, length);
    return ~register_;
}

std::uint32_t OvCrc32Update(std::uint32_t crc, const void* data, std::size_t length) {
    if (data == nullptr || length == 0) return crc;
    return ~ProcessBytes(~crc, data, length);
}

}  // namespace orvo
