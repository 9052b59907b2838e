#include "orvo/services/checksum.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "temp_dir.h"

namespace {

using orvo::CMD5;
using orvo::CMD5Digest;
using orvo::OvCalcCRC32;

std::string Md5Text(const std::string& input) {
    CMD5 md5;
    md5.Update(reinterpret_cast<const unsigned char*>(input.data()),
               static_cast<unsigned int>(input.size()));
    md5.Finalize();
    return md5.GetDigest().GetText();
}

// Bit-by-bit CRC-32 with a chosen starting register, written without a table so that it checks
// the library's table-driven code independently.
std::uint32_t PlainCrcRegister(std::uint32_t reg, const std::string& data) {
    for (unsigned char byte : data) {
        reg ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            reg = (reg >> 1) ^ (0xEDB88320U & (0U - (reg & 1U)));
    }
    return reg;
}

std::vector<unsigned char> PatternBuffer(std::size_t size) {
    std::vector<unsigned char> data(size);
    std::uint32_t state = 12345;
    for (auto& byte : data) {
        state = state * 1103515245U + 12345U;
        byte = static_cast<unsigned char>(state >> 16);
    }
    return data;
}

TEST(Md5, Rfc1321TestSuite) {
    EXPECT_EQ(Md5Text(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(Md5Text("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(Md5Text("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(Md5Text("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(Md5Text("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
    EXPECT_EQ(Md5Text("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
              "d174ab98d277d9f5a5611c2c9f419d9f");
    EXPECT_EQ(Md5Text("1234567890123456789012345678901234567890123456789012345678901234567890123456"
                      "7890"),
              "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(Md5, DigestBytesMatchTextAndStringUpdate) {
    CMD5 md5;
    md5.Update("abc");
    md5.Finalize();
    CMD5Digest digest;
    md5.GetDigest(&digest);
    const unsigned char expected[16] = {0x90, 0x01, 0x50, 0x98, 0x3c, 0xd2, 0x4f, 0xb0,
                                        0xd6, 0x96, 0x3f, 0x7d, 0x28, 0xe1, 0x7f, 0x72};
    EXPECT_EQ(std::memcmp(digest.GetBytes(), expected, 16), 0);
    EXPECT_STREQ(digest.GetText(), "900150983cd24fb0d6963f7d28e17f72");

    // A digest built from the bytes carries the same text and compares equal.
    CMD5Digest fromBytes(expected);
    EXPECT_STREQ(fromBytes.GetText(), digest.GetText());
    EXPECT_EQ(fromBytes == digest, 1);
    EXPECT_EQ(fromBytes != digest, 0);
    EXPECT_EQ(CMD5Digest() == digest, 0);
    EXPECT_STREQ(CMD5Digest().GetText(), "00000000000000000000000000000000");
}

TEST(Md5, InitRestartsAndFinalizeIsFinal) {
    CMD5 md5;
    md5.Update("some earlier data");
    md5.Init();
    md5.Finalize();
    EXPECT_STREQ(md5.GetDigest().GetText(), "d41d8cd98f00b204e9800998ecf8427e");
    // Data or a second Finalize after completion cannot change the stored digest.
    md5.Update("abc");
    md5.Finalize();
    EXPECT_STREQ(md5.GetDigest().GetText(), "d41d8cd98f00b204e9800998ecf8427e");

    CMD5 copy;
    copy.Update("a");
    CMD5 assigned;
    assigned = copy;
    assigned.Finalize();
    EXPECT_STREQ(assigned.GetDigest().GetText(), "0cc175b9c0f1b6a831c399e269772661");
}

TEST(Md5, PiecewiseEqualsOneShotOnLargeBuffer) {
    const std::vector<unsigned char> data = PatternBuffer(1 << 20);
    CMD5 whole;
    whole.Update(data.data(), static_cast<unsigned int>(data.size()));
    whole.Finalize();

    // Piece sizes that straddle the 64-byte block and the 56-byte padding boundary.
    const unsigned pieceSizes[] = {1, 55, 56, 63, 64, 65, 1000, 4096};
    CMD5 pieces;
    std::size_t offset = 0;
    for (std::size_t k = 0; offset < data.size(); ++k) {
        const std::size_t piece = std::min<std::size_t>(pieceSizes[k % 8], data.size() - offset);
        pieces.Update(data.data() + offset, static_cast<unsigned int>(piece));
        offset += piece;
    }
    pieces.Finalize();
    EXPECT_EQ(pieces.GetDigest() == whole.GetDigest(), 1);
    EXPECT_EQ(orvo::OvMD5Buffer(data.data(), data.size()) == whole.GetDigest(), 1);
}

TEST(Crc32, CheckValueAndNullReset) {
    OvCalcCRC32 crc;
    EXPECT_EQ(crc.Crc("123456789", 9), 0xCBF43926U);
    EXPECT_EQ(crc.Crc(nullptr, 9), 0U);
    // After the reset a single call is the standard CRC again.
    EXPECT_EQ(crc.Crc("123456789", 9), 0xCBF43926U);
    EXPECT_EQ(crc.Reset(), 0U);
    EXPECT_EQ(crc.Crc("The quick brown fox jumps over the lazy dog", 43), 0x414FA339U);
    crc.Reset();
    EXPECT_EQ(crc.Crc("", 0), 0U);
}

TEST(Crc32, SecondCallContinuesFromReturnedValue) {
    OvCalcCRC32 crc;
    const std::uint32_t first = crc.Crc("12345", 5);
    EXPECT_EQ(first, ~PlainCrcRegister(0xFFFFFFFFU, "12345"));
    const std::uint32_t second = crc.Crc("6789", 4);
    // The second call starts from the value returned by the first, so it is not the CRC of the
    // whole text.
    EXPECT_EQ(second, ~PlainCrcRegister(first, "6789"));
    EXPECT_NE(second, 0xCBF43926U);

    // A copy carries the register along.
    OvCalcCRC32 original;
    original.Crc("12345", 5);
    OvCalcCRC32 copy(original);
    EXPECT_EQ(copy.Crc("6789", 4), second);
}

TEST(Crc32, IncrementalUpdateGivesWholeBufferCrc) {
    const std::vector<unsigned char> data = PatternBuffer(300000);
    const std::string asText(data.begin(), data.end());
    const std::uint32_t expected = ~PlainCrcRegister(0xFFFFFFFFU, asText);

    OvCalcCRC32 once;
    EXPECT_EQ(once.Crc(data.data(), static_cast<unsigned int>(data.size())), expected);

    std::uint32_t running = 0;
    for (std::size_t offset = 0; offset < data.size(); offset += 7777) {
        running = orvo::OvCrc32Update(running, data.data() + offset,
                                      std::min<std::size_t>(7777, data.size() - offset));
    }
    EXPECT_EQ(running, expected);
    EXPECT_EQ(orvo::OvCrc32Update(0, "123456789", 9), 0xCBF43926U);
}

// The sliced kernel against the byte-at-a-time one and the bitwise reference: every length from
// 0 to 64 (all tails of the eight-byte steps, one to eight full steps) at every offset 0..15
// into a random buffer, from random starting registers, plus longer random pieces.
TEST(Crc32, SlicedKernelEqualsBytewiseKernel) {
    std::mt19937 random(20240611U);
    std::vector<unsigned char> data(64 + 16 + 4096);
    for (auto& byte : data)
        byte = static_cast<unsigned char>(random());

    for (std::size_t offset = 0; offset < 16; ++offset) {
        for (std::size_t length = 0; length <= 64; ++length) {
            const unsigned char* piece = data.data() + offset;
            const std::uint32_t start = (length % 3 == 0) ? 0xFFFFFFFFU : random();
            const std::uint32_t bytewise = orvo::OvCrc32RegisterBytewise(start, piece, length);
            ASSERT_EQ(orvo::OvCrc32RegisterSliced(start, piece, length), bytewise)
                << "offset " << offset << ", length " << length;
            ASSERT_EQ(bytewise, PlainCrcRegister(start, std::string(piece, piece + length)))
                << "offset " << offset << ", length " << length;
        }
    }
    for (int round = 0; round < 200; ++round) {
        const std::size_t offset = random() % 64;
        const std::size_t length = random() % (data.size() - offset + 1);
        const std::uint32_t start = random();
        ASSERT_EQ(orvo::OvCrc32RegisterSliced(start, data.data() + offset, length),
                  orvo::OvCrc32RegisterBytewise(start, data.data() + offset, length))
            << "offset " << offset << ", length " << length;
    }

    EXPECT_EQ(~orvo::OvCrc32RegisterSliced(0xFFFFFFFFU, "123456789", 9), 0xCBF43926U);
    EXPECT_EQ(~orvo::OvCrc32RegisterBytewise(0xFFFFFFFFU, "123456789", 9), 0xCBF43926U);
    EXPECT_EQ(orvo::OvCrc32RegisterSliced(0x1234U, nullptr, 5), 0x1234U);
    EXPECT_EQ(orvo::OvCrc32RegisterBytewise(0x1234U, nullptr, 5), 0x1234U);
}

// The chaining rule holds for pieces long enough to go through the sliced steps, cut at
// places that are not multiples of eight.
TEST(Crc32, ChainingOverLongPiecesContinuesFromReturnedValue) {
    const std::vector<unsigned char> data = PatternBuffer(1000);
    const std::string first(data.begin(), data.begin() + 613);
    const std::string second(data.begin() + 613, data.end());
    OvCalcCRC32 crc;
    const std::uint32_t returned = crc.Crc(first.data(), static_cast<unsigned int>(first.size()));
    EXPECT_EQ(returned, ~PlainCrcRegister(0xFFFFFFFFU, first));
    EXPECT_EQ(crc.Crc(second.data(), static_cast<unsigned int>(second.size())),
              ~PlainCrcRegister(returned, second));
}

TEST(ChecksumFile, DigestsFileInBlocksAndRejectsUnreadable) {
    orvo::test::TempDir dir;
    // Larger than one read block and not a multiple of it.
    const std::vector<unsigned char> data = PatternBuffer(3 * 65536 + 123);
    const std::string content(data.begin(), data.end());
    orvo::test::WriteWholeFile(dir.file("data.bin"), content);

    orvo::OvFileChecksums sums;
    ASSERT_TRUE(orvo::OvChecksumFile(dir.file("data.bin").c_str(), &sums));
    EXPECT_EQ(sums.md5 == orvo::OvMD5Buffer(data.data(), data.size()), 1);
    EXPECT_EQ(sums.crc32, ~PlainCrcRegister(0xFFFFFFFFU, content));

    CMD5Digest md5;
    std::uint32_t crc = 0;
    ASSERT_TRUE(orvo::OvMD5File(dir.file("data.bin").c_str(), &md5));
    ASSERT_TRUE(orvo::OvCRC32File(dir.file("data.bin").c_str(), &crc));
    EXPECT_EQ(md5 == sums.md5, 1);
    EXPECT_EQ(crc, sums.crc32);

    orvo::test::WriteWholeFile(dir.file("empty"), "");
    ASSERT_TRUE(orvo::OvChecksumFile(dir.file("empty").c_str(), &sums));
    EXPECT_STREQ(sums.md5.GetText(), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(sums.crc32, 0U);

    sums.crc32 = 42;
    EXPECT_FALSE(orvo::OvChecksumFile(dir.file("missing").c_str(), &sums));
    EXPECT_FALSE(orvo::OvChecksumFile(dir.path().string().c_str(), &sums));  // a directory
    EXPECT_FALSE(orvo::OvChecksumFile(nullptr, &sums));
    EXPECT_EQ(sums.crc32, 42U);
}

}  // namespace
