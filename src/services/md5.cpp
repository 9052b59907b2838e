// MD5 as RFC 1321 defines it: 64-byte blocks, four rounds of sixteen steps, little-endian words.
#include <cstring>
#include <utility>

#include "orvo/services/checksum.h"

namespace orvo {

namespace {

constexpr char kHexDigits[] = "0123456789abcdef";

// Per-step left-rotation amounts, four per round.
constexpr unsigned kShift[4][4] = {
    {7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

// The sine table: floor(abs(sin(i + 1)) * 2^32).
constexpr std::uint32_t kSine[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

constexpr std::uint32_t RotateLeft(std::uint32_t value, unsigned bits) {
    return (value << bits) | (value >> (32 - bits));
}

std::uint32_t LoadLittleEndian(const unsigned char* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) | (static_cast<std::uint32_t>(bytes[1]) << 8) |
           (static_cast<std::uint32_t>(bytes[2]) << 16) |
           (static_cast<std::uint32_t>(bytes[3]) << 24);
}

void StoreLittleEndian(std::uint32_t value, unsigned char* bytes) {
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<unsigned char>(value >> (8 * i));
}

// One of the 64 steps of the compression function, with everything that depends on the step
// number fixed at compile time, so that the steps unroll into straight code with the four
// registers in machine registers (a loop with a switch on the round takes half as long again).
template <unsigned kStep>
inline void Step(std::uint32_t (&r)[4], const std::uint32_t (&words)[16]) {
    constexpr unsigned kRound = kStep / 16;
    // The registers take turns: step 0 updates a from b, c, d; step 1 d from a, b, c; step 2 c
    // from d, a, b; step 3 b from c, d, a; and so on.
    constexpr unsigned kA = (4 - kStep % 4) % 4;
    const std::uint32_t b = r[(kA + 1) % 4], c = r[(kA + 2) % 4], d = r[(kA + 3) % 4];
    std::uint32_t mixed;
    unsigned word;
    if constexpr (kRound == 0) {
        mixed = d ^ (b & (c ^ d));  // (b & c) | (~b & d)
        word = kStep;
    } else if constexpr (kRound == 1) {
        mixed = c ^ (d & (b ^ c));  // (b & d) | (c & ~d)
        word = (5 * kStep + 1) % 16;
    } else if constexpr (kRound == 2) {
        mixed = b ^ c ^ d;
        word = (3 * kStep + 5) % 16;
    } else {
        mixed = c ^ (b | ~d);
        word = (7 * kStep) % 16;
    }
    r[kA] = b + RotateLeft(r[kA] + mixed + kSine[kStep] + words[word], kShift[kRound][kStep % 4]);
}

template <std::size_t... kSteps>
inline void RunSteps(std::uint32_t (&r)[4], const std::uint32_t (&words)[16],
                     std::index_sequence<kSteps...>) {
    (Step<kSteps>(r, words), ...);
}

}  // namespace

// ---- CMD5Digest ----------------------------------------------------------------------------

CMD5Digest::CMD5Digest() : digest_{}, text_{} {
    Update();
}

CMD5Digest::CMD5Digest(const unsigned char bytes[kSize]) : digest_{}, text_{} {
    SetBytes(bytes);
}

int CMD5Digest::operator==(const CMD5Digest& other) const {
    return std::memcmp(digest_, other.digest_, kSize) == 0 ? 1 : 0;
}

void CMD5Digest::Update() {
    for (std::size_t i = 0; i < kSize; ++i) {
        text_[2 * i] = kHexDigits[digest_[i] >> 4];
        text_[2 * i + 1] = kHexDigits[digest_[i] & 0x0F];
    }
    text_[2 * kSize] = '\0';
}

void CMD5Digest::SetBytes(const unsigned char bytes[kSize]) {
    std::memcpy(digest_, bytes, kSize);
    Update();
}

// ---- CMD5 ----------------------------------------------------------------------------------

CMD5::CMD5() {
    Init();
}

void CMD5::Init() {
    state_[0] = 0x67452301;
    state_[1] = 0xefcdab89;
    state_[2] = 0x98badcfe;
    state_[3] = 0x10325476;
    bitCount_ = 0;
    std::memset(buffer_, 0, sizeof buffer_);
    finalized_ = false;
}

void CMD5::Update(const unsigned char* data, unsigned int length) {
    if (finalized_ || data == nullptr || length == 0) return;
    std::size_t used = static_cast<std::size_t>((bitCount_ >> 3) & 0x3F);
    bitCount_ += static_cast<std::uint64_t>(length) << 3;

    std::size_t offset = 0;
    const std::size_t room = 64 - used;
    if (length >= room) {
        std::memcpy(buffer_ + used, data, room);
        Transform(buffer_);
        offset = room;
        for (; offset + 64 <= length; offset += 64)
            Transform(data + offset);
        used = 0;
    }
    std::memcpy(buffer_ + used, data + offset, length - offset);
}

void CMD5::Update(const char* text) {
    if (text == nullptr) return;
    Update(reinterpret_cast<const unsigned char*>(text),
           static_cast<unsigned int>(std::strlen(text)));
}

void CMD5::Finalize() {
    if (finalized_) return;
    unsigned char lengthBytes[8];
    for (int i = 0; i < 8; ++i)
        lengthBytes[i] = static_cast<unsigned char>(bitCount_ >> (8 * i));

    // Pad with a one bit and zeros up to 56 bytes modulo 64, then the 64-bit bit count.
    static constexpr unsigned char kPadding[64] = {0x80};
    const unsigned used = static_cast<unsigned>((bitCount_ >> 3) & 0x3F);
    const unsigned padLength = (used < 56) ? (56 - used) : (120 - used);
    Update(kPadding, padLength);
    Update(lengthBytes, 8);

    unsigned char bytes[CMD5Digest::kSize];
    for (int i = 0; i < 4; ++i)
        StoreLittleEndian(state_[i], bytes + 4 * i);
    digest_.SetBytes(bytes);
    finalized_ = true;
}

void CMD5::GetDigest(CMD5Digest* digest) const {
    if (digest != nullptr) *digest = digest_;
}

CMD5Digest CMD5::GetDigest() const {
    return digest_;
}

void CMD5::Transform(const unsigned char block[64]) {
    std::uint32_t words[16];
    for (int i = 0; i < 16; ++i)
        words[i] = LoadLittleEndian(block + 4 * i);

    std::uint32_t registers[4] = {state_[0], state_[1], state_[2], state_[3]};
    RunSteps(registers, words, std::make_index_sequence<64>());
    for (int i = 0; i < 4; ++i)
        state_[i] += registers[i];
}

}  // namespace orvo
