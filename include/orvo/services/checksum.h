// MD5 message digests (RFC 1321) and CRC-32 checksums (IEEE 802.3, reflected polynomial
// 0xEDB88320), for buffers and for whole files.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvo {

/// The result of an MD5 computation: the 16 digest bytes in RFC 1321 order and the same value
/// as 32 lowercase hexadecimal digits. The text is rebuilt whenever the bytes are set, so the
/// two never disagree. A default-constructed digest holds 16 zero bytes.
class CMD5Digest {
public:
    static constexpr std::size_t kSize = 16;
    static constexpr std::size_t kTextSize = 2 * kSize + 1;  // digits plus terminating zero

    CMD5Digest();
    explicit CMD5Digest(const unsigned char bytes[kSize]);
    CMD5Digest(const CMD5Digest& other) = default;
    CMD5Digest& operator=(const CMD5Digest& other) = default;
    virtual ~CMD5Digest() = default;

    /// 1 when the 16 digest bytes are equal, else 0. The text follows from the bytes, so it is
    /// not compared.
    int operator==(const CMD5Digest& other) const;
    int operator!=(const CMD5Digest& other) const { return (*this == other) ? 0 : 1; }

    const unsigned char* GetBytes() const { return digest_; }
    /// The 32 hexadecimal digits, zero-terminated.
    const char* GetText() const { return text_; }

protected:
    /// Rebuilds the text from the bytes.
    void Update();

private:
    friend class CMD5;
    void SetBytes(const unsigned char bytes[kSize]);

    unsigned char digest_[kSize];
    char text_[kTextSize];
};

/// An MD5 computation. Feed the data with `Update` (in as many pieces as convenient; the result
/// does not depend on how the data is cut), then call `Finalize` and read the digest.
///
/// After `Finalize` the computation is complete: further `Update` calls and a second `Finalize`
/// are ignored until `Init` starts a new computation, so the stored digest cannot be spoiled by
/// padding the same state twice.
class CMD5 {
public:
    CMD5();
    CMD5(const CMD5& other) = default;
    CMD5& operator=(const CMD5& other) = default;
    virtual ~CMD5() = default;

    /// Starts a new computation.
    void Init();
    void Update(const unsigned char* data, unsigned int length);
    /// The bytes of a zero-terminated string without its terminator; a null pointer adds nothing.
    void Update(const char* text);
    /// Pads and completes the computation and stores the result in the digest.
    void Finalize();

    void GetDigest(CMD5Digest* digest) const;
    CMD5Digest GetDigest() const;

private:
    void Transform(const unsigned char block[64]);

    std::uint32_t state_[4];
    std::uint64_t bitCount_;
    unsigned char buffer_[64];
    bool finalized_;
    CMD5Digest digest_;
};

/// A CRC-32 calculator with a chaining rule of its own.
///
/// The register is stored without the final inversion but inverted again at the start of the
/// next `Crc` call. One `Crc` call after construction or `Reset` therefore returns the standard
/// CRC-32 of its data, while a second call continues from the value the first call returned,
/// not from the stored register: two calls over the halves of a buffer do NOT give the CRC-32 of
/// the whole buffer. Callers that need the standard CRC of data arriving in pieces use
/// `OvCrc32Update` instead.
class OvCalcCRC32 {
public:
    OvCalcCRC32();
    OvCalcCRC32(const OvCalcCRC32& other) = default;
    OvCalcCRC32& operator=(const OvCalcCRC32& other) = default;
    virtual ~OvCalcCRC32() = default;

    /// Register = 0; returns 0.
    std::uint32_t Reset();
    /// Processes `length` bytes at `data` and returns the inverted register. A null `data`
    /// resets the register and returns 0.
    std::uint32_t Crc(const void* data, unsigned int length);

private:
    std::uint32_t register_;
};

/// Standard incremental CRC-32: `crc` is the value returned for the data so far (0 to start),
/// the result is the CRC-32 of that data followed by `length` bytes at `data`. Feeding a buffer
/// in any number of pieces gives the CRC-32 of the whole buffer.
std::uint32_t OvCrc32Update(std::uint32_t crc, const void* data, std::size_t length);

/// The two kernels behind the CRC-32 functions. Both run the raw register `reg` over `length`
/// bytes at `data` (no inversion at either end) and return it; a null `data` returns `reg`.
/// The byte-at-a-time kernel uses one 256-entry table; the sliced one folds eight bytes per step
/// through eight tables and is several times faster. They give the same register for every
/// input; `OvCalcCRC32` and `OvCrc32Update` use the sliced one.
std::uint32_t OvCrc32RegisterBytewise(std::uint32_t reg, const void* data, std::size_t length);
std::uint32_t OvCrc32RegisterSliced(std::uint32_t reg, const void* data, std::size_t length);

/// MD5 over a buffer of any size (the `CMD5` interface takes 32-bit lengths).
CMD5Digest OvMD5Buffer(const void* data, std::size_t length);

/// MD5 and CRC-32 of a file, computed in one pass.
struct OvFileChecksums {
    CMD5Digest md5;
    std::uint32_t crc32 = 0;
};

/// Digests a whole file. The file is read in fixed-size blocks, never loaded as a whole, so
/// files of any size can be digested. Returns false (and leaves `result` untouched) when the
/// file cannot be opened or a read fails, for example for a directory.
bool OvChecksumFile(const char* filename, OvFileChecksums* result);
/// MD5 of a whole file, streamed as above; false when the file cannot be read.
bool OvMD5File(const char* filename, CMD5Digest* digest);
/// Standard CRC-32 of a whole file, streamed as above; false when the file cannot be read.
bool OvCRC32File(const char* filename, std::uint32_t* crc);

}  // namespace orvo
