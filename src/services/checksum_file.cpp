// Digests of whole buffers and files. Files are streamed in blocks so that their size is bounded
// by nothing but the disk.
#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>
#include <vector>

#include "orvo/services/checksum.h"

namespace orvo {

namespace {

constexpr std::size_t kFileBlockSize = 64 * 1024;

// The CMD5 interface takes 32-bit lengths; larger buffers are fed in slices.
void FeedMD5(CMD5& md5, const unsigned char* data, std::size_t length) {
    constexpr std::size_t kMaxSlice = std::numeric_limits<unsigned int>::max();
    while (length > 0) {
        const std::size_t slice = std::min(length, kMaxSlice);
        md5.Update(data, static_cast<unsigned int>(slice));
        data += slice;
        length -= slice;
    }
}

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// Streams the file once, feeding whichever digests were asked for.
bool DigestFile(const char* filename, CMD5* md5, std::uint32_t* crc) {
    if (filename == nullptr) return false;
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(filename, "rb"));
    if (!file) return false;

    std::vector<unsigned char> block(kFileBlockSize);
    for (;;) {
        const std::size_t got = std::fread(block.data(), 1, block.size(), file.get());
        if (md5 != nullptr) FeedMD5(*md5, block.data(), got);
        if (crc != nullptr) *crc = OvCrc32Update(*crc, block.data(), got);
        if (got < block.size()) break;
    }
    // A short read is either the end of the file or an error (a directory reads as EISDIR).
    if (std::ferror(file.get())) return false;
    if (md5 != nullptr) md5->Finalize();
    return true;
}

}  // namespace

CMD5Digest OvMD5Buffer(const void* data, std::size_t length) {
    CMD5 md5;
    FeedMD5(md5, static_cast<const unsigned char*>(data), data == nullptr ? 0 : length);
    md5.Finalize();
    return md5.GetDigest();
}

bool OvChecksumFile(const char* filename, OvFileChecksums* result) {
    CMD5 md5;
    std::uint32_t crc = 0;
    if (!DigestFile(filename, &md5, &crc)) return false;
    if (result != nullptr) {
        result->md5 = md5.GetDigest();
        result->crc32 = crc;
    }
    return true;
}

bool OvMD5File(const char* filename, CMD5Digest* digest) {
    CMD5 md5;
    if (!DigestFile(filename, &md5, nullptr)) return false;
    if (digest != nullptr) md5.GetDigest(digest);
    return true;
}

bool OvCRC32File(const char* filename, std::uint32_t* crc) {
    std::uint32_t value = 0;
    if (!DigestFile(filename, nullptr, &value)) return false;
    if (crc != nullptr) *crc = value;
    return true;
}

}  // namespace orvo
