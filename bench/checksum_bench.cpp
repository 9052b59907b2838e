// Throughput of MD5 and CRC-32 over one 256 MB buffer in memory, each against a byte-at-a-time
// baseline measured in the same iteration over the same bytes:
//
// - MD5: the library's `CMD5` fed the whole buffer in one `Update`, against the same `CMD5`
//   fed one byte per `Update` call (every byte then goes through the call and the block buffer
//   instead of straight into the compression function).
// - CRC-32: `OvCalcCRC32::Crc` (slicing by 8), against a plain bitwise CRC written here (eight
//   shift-and-xor steps per byte, no table) and against the library's byte-at-a-time table
//   kernel `OvCrc32RegisterBytewise`, which is what slicing by 8 replaced.
//
// Each iteration checks that the digests agree, so a fast but wrong kernel cannot pass. The
// reported time is the thread's CPU time of the library's fast path; "MB/s" counters are
// megabytes (10^6 bytes) per CPU second, "x_<baseline>" how many times faster the fast path is.
// The only large allocation is the buffer itself (256 MB).
//
// Run:  build/<dir>/bench/orvo_bench --benchmark_filter=Checksum
#include <cstdint>
#include <vector>

#include "bench_support.h"
#include "orvo/services/checksum.h"

namespace {

using orvo::bench::Measure;
using orvo::bench::Timing;

constexpr std::size_t kBufferSize = std::size_t{256} << 20;

// Pseudo-random bytes (xorshift), built once and shared by both benchmarks.
const std::vector<unsigned char>& Buffer() {
    static const std::vector<unsigned char> data = [] {
        std::vector<unsigned char> bytes(kBufferSize);
        std::uint32_t state = 2463534242U;
        for (auto& byte : bytes) {
            state ^= state << 13;
            state ^= state >> 17;
            state ^= state << 5;
            byte = static_cast<unsigned char>(state >> 24);
        }
        return bytes;
    }();
    return data;
}

// The textbook CRC-32: one bit at a time, no table.
std::uint32_t BitwiseCrc32(const unsigned char* data, std::size_t length) {
    std::uint32_t reg = 0xFFFFFFFFU;
    for (std::size_t i = 0; i < length; ++i) {
        reg ^= data[i];
        for (int bit = 0; bit < 8; ++bit)
            reg = (reg >> 1) ^ (0xEDB88320U & (0U - (reg & 1U)));
    }
    return ~reg;
}

double MegabytesPerSecond(double bytes, double seconds) {
    return seconds > 0.0 ? bytes / seconds / 1e6 : 0.0;
}

void BM_ChecksumMD5(benchmark::State& state) {
    const std::vector<unsigned char>& data = Buffer();
    const auto length = static_cast<unsigned int>(data.size());
    Timing fast, perByte;

    for (auto _ : state) {
        orvo::CMD5Digest whole, byByte;
        const double seconds = Measure(fast, [&] {
            orvo::CMD5 md5;
            md5.Update(data.data(), length);
            md5.Finalize();
            whole = md5.GetDigest();
        });
        state.SetIterationTime(seconds);
        Measure(perByte, [&] {
            orvo::CMD5 md5;
            for (unsigned int i = 0; i < length; ++i)
                md5.Update(data.data() + i, 1);
            md5.Finalize();
            byByte = md5.GetDigest();
        });
        if (whole != byByte) state.SkipWithError("MD5 differs between one call and byte calls");
    }

    const double bytes = static_cast<double>(state.iterations()) * static_cast<double>(data.size());
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
    state.counters["MB/s"] = MegabytesPerSecond(bytes, fast.cpu);
    state.counters["bytecall_MB/s"] = MegabytesPerSecond(bytes, perByte.cpu);
    state.counters["x_bytecall"] = perByte.cpu / fast.cpu;
    state.counters["wall_MB/s"] = MegabytesPerSecond(bytes, fast.wall);
}

void BM_ChecksumCRC32(benchmark::State& state) {
    const std::vector<unsigned char>& data = Buffer();
    const auto length = static_cast<unsigned int>(data.size());
    Timing sliced, table, bitwise;

    for (auto _ : state) {
        std::uint32_t fastCrc = 0, tableCrc = 0, bitwiseCrc = 0;
        const double seconds = Measure(sliced, [&] {
            orvo::OvCalcCRC32 crc;
            fastCrc = crc.Crc(data.data(), length);
        });
        state.SetIterationTime(seconds);
        Measure(table, [&] {
            tableCrc = ~orvo::OvCrc32RegisterBytewise(0xFFFFFFFFU, data.data(), data.size());
        });
        Measure(bitwise, [&] { bitwiseCrc = BitwiseCrc32(data.data(), data.size()); });
        benchmark::DoNotOptimize(fastCrc);
        if (fastCrc != tableCrc || fastCrc != bitwiseCrc) state.SkipWithError("CRC-32 differs");
    }

    const double bytes = static_cast<double>(state.iterations()) * static_cast<double>(data.size());
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
    state.counters["MB/s"] = MegabytesPerSecond(bytes, sliced.cpu);
    state.counters["table_MB/s"] = MegabytesPerSecond(bytes, table.cpu);
    state.counters["bitwise_MB/s"] = MegabytesPerSecond(bytes, bitwise.cpu);
    state.counters["x_table"] = table.cpu / sliced.cpu;
    state.counters["x_bitwise"] = bitwise.cpu / sliced.cpu;
    state.counters["wall_MB/s"] = MegabytesPerSecond(bytes, sliced.wall);
}

// Every iteration digests 256 MB several times over; three are plenty for stable figures.
BENCHMARK(BM_ChecksumMD5)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ChecksumCRC32)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace
