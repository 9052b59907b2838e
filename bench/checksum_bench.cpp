// Throughput of MD5 and CRC-32 over in-memory buffers. Each iteration also runs two baselines
// over the same buffer, a plain byte-sum loop and a memcpy, timed separately, so the reported
// ratios compare the checksum with memory-bound work measured in the same run under the same
// conditions.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <vector>

#include "orvo/services/checksum.h"

namespace {

std::vector<unsigned char> MakeBuffer(std::size_t size) {
    std::vector<unsigned char> data(size);
    std::uint32_t state = 2463534242U;
    for (auto& byte : data) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        byte = static_cast<unsigned char>(state);
    }
    return data;
}

std::uint64_t ByteSum(const std::vector<unsigned char>& data) {
    std::uint64_t sum = 0;
    for (unsigned char byte : data)
        sum += byte;
    return sum;
}

// Time spent by this thread on the CPU where the system offers it, so that other processes on a
// busy machine do not inflate the figures; wall-clock time elsewhere.
#if defined(CLOCK_THREAD_CPUTIME_ID)
double NowSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}
#else
double NowSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}
#endif

// Runs `checksum` once per iteration under manual timing and reports MB/s plus the speed of the
// checksum relative to each baseline (1.0 = as fast as the baseline, 0.1 = ten times slower).
template <typename Checksum>
void RunAgainstBaselines(benchmark::State& state, Checksum checksum) {
    const std::vector<unsigned char> data = MakeBuffer(static_cast<std::size_t>(state.range(0)));
    std::vector<unsigned char> copy(data.size());
    double checksumSeconds = 0, byteSumSeconds = 0, memcpySeconds = 0;

    for (auto _ : state) {
        double start = NowSeconds();
        benchmark::DoNotOptimize(checksum(data));
        const double elapsed = NowSeconds() - start;
        checksumSeconds += elapsed;
        state.SetIterationTime(elapsed);

        start = NowSeconds();
        benchmark::DoNotOptimize(ByteSum(data));
        byteSumSeconds += NowSeconds() - start;

        start = NowSeconds();
        std::memcpy(copy.data(), data.data(), data.size());
        benchmark::ClobberMemory();
        memcpySeconds += NowSeconds() - start;
    }

    const double bytes = static_cast<double>(state.iterations()) * static_cast<double>(data.size());
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
    state.counters["MB/s"] = bytes / checksumSeconds / 1e6;
    state.counters["bytesum_MB/s"] = bytes / byteSumSeconds / 1e6;
    state.counters["vs_bytesum"] = byteSumSeconds / checksumSeconds;
    state.counters["vs_memcpy"] = memcpySeconds / checksumSeconds;
}

void BM_MD5(benchmark::State& state) {
    RunAgainstBaselines(state, [](const std::vector<unsigned char>& data) {
        orvo::CMD5 md5;
        md5.Update(data.data(), static_cast<unsigned int>(data.size()));
        md5.Finalize();
        return md5.GetDigest().GetBytes()[0];
    });
}

void BM_CRC32(benchmark::State& state) {
    RunAgainstBaselines(state, [](const std::vector<unsigned char>& data) {
        orvo::OvCalcCRC32 crc;
        return crc.Crc(data.data(), static_cast<unsigned int>(data.size()));
    });
}

BENCHMARK(BM_MD5)->UseManualTime()->Arg(4 << 10)->Arg(1 << 20)->Arg(16 << 20);
BENCHMARK(BM_CRC32)->UseManualTime()->Arg(4 << 10)->Arg(1 << 20)->Arg(16 << 20);

}  // namespace
