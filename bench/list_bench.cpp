// Cost of the id operations of the record list on lists of 100,000 nodes: `Find(id)` and
// `GetFreeId` walk the list (lookups are specified to return the first match from the head),
// `Add` appends. Each iteration runs the same operations on a std::list (the same linear walk)
// and on a std::unordered_map keyed by id (what a hashed index would cost), timed separately,
// so the figures tell a user what to expect from the list relative to the standard containers
// measured in the same run.
//
//     build/benches/bench/orvo_bench --benchmark_filter=List
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <unordered_map>
#include <vector>

#include "bench_support.h"
#include "orvo/foundation/list.h"

namespace {

using orvo::bench::Measure;
using orvo::bench::Timing;

constexpr std::size_t kNodes = 100000;

struct BenchNode : orvo::OvListnode {
    explicit BenchNode(std::uint32_t id) : OvListnode(id) {}
    double payload = 0.0;
};

// The baselines hold the same records: an id and a payload.
struct PlainRecord {
    std::uint32_t id;
    double payload;
};

// Deterministic pseudo-random numbers in [0, n).
class Sequence {
public:
    std::uint32_t Next(std::uint32_t n) {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 17;
        state_ ^= state_ << 5;
        return state_ % n;
    }

private:
    std::uint32_t state_ = 2463534242U;
};

// The three containers with the same ids in the same order: 2, 4, 6, ... (every odd id is
// free, so GetFreeId with a wish has something to search for).
struct Lists {
    Lists() {
        for (std::uint32_t i = 1; i <= kNodes; ++i) {
            const std::uint32_t id = 2 * i;
            list.Add(new BenchNode(id));
            plainList.push_back({id, 0.0});
            map.emplace(id, &plainList.back());
        }
    }
    orvo::TOvListHeader<BenchNode> list;
    std::list<PlainRecord> plainList;
    std::unordered_map<std::uint32_t, PlainRecord*> map;
};

const Lists& GetLists() {
    static const Lists lists;
    return lists;
}

// Nanoseconds per operation for the list and both baselines, and the list's cost relative to
// each (1.0 = as fast, 10 = ten times slower).
void ReportPerOperation(benchmark::State& state, double operationsPerIteration, const Timing& own,
                        const Timing& plainList, const Timing& map) {
    const double operations = operationsPerIteration * static_cast<double>(state.iterations());
    state.SetItemsProcessed(static_cast<std::int64_t>(operations));
    state.counters["ns/op"] = own.cpu * 1e9 / operations;
    state.counters["std_list_ns/op"] = plainList.cpu * 1e9 / operations;
    state.counters["unordered_map_ns/op"] = map.cpu * 1e9 / operations;
    state.counters["x_std_list"] = own.cpu / plainList.cpu;
    state.counters["x_unordered_map"] = own.cpu / map.cpu;
}

// Lookups of ids spread over the whole list (present ones and, every fourth, absent ones).
std::vector<std::uint32_t> LookupIds(std::size_t count) {
    Sequence random;
    std::vector<std::uint32_t> ids(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t id = 2 * (random.Next(kNodes) + 1);
        ids[i] = i % 4 == 3 ? id - 1 : id;
    }
    return ids;
}

void BM_ListFindId(benchmark::State& state) {
    const Lists& lists = GetLists();
    const std::vector<std::uint32_t> ids = LookupIds(static_cast<std::size_t>(state.range(0)));
    Timing own, plainList, map;
    std::size_t found = 0, plainFound = 0, mapFound = 0;
    for (auto _ : state) {
        state.SetIterationTime(Measure(own, [&] {
            for (std::uint32_t id : ids)
                found += lists.list.Find(id) != nullptr;
        }));
        Measure(plainList, [&] {
            for (std::uint32_t id : ids) {
                const auto it = std::find_if(lists.plainList.begin(), lists.plainList.end(),
                                             [id](const PlainRecord& r) { return r.id == id; });
                plainFound += it != lists.plainList.end();
            }
        });
        Measure(map, [&] {
            for (std::uint32_t id : ids)
                mapFound += lists.map.find(id) != lists.map.end();
        });
    }
    if (found != plainFound || found != mapFound) {
        state.SkipWithError("the containers found different records");
        return;
    }
    ReportPerOperation(state, static_cast<double>(ids.size()), own, plainList, map);
}

// GetFreeId(0): the largest id plus one; the baselines look for the largest id the obvious
// way (a walk of the list, a walk of the map's entries).
void BM_ListGetFreeIdNext(benchmark::State& state) {
    const Lists& lists = GetLists();
    const int repeat = static_cast<int>(state.range(0));
    Timing own, plainList, map;
    std::uint32_t got = 0, plainGot = 0, mapGot = 0;
    for (auto _ : state) {
        state.SetIterationTime(Measure(own, [&] {
            for (int i = 0; i < repeat; ++i)
                got = lists.list.GetFreeId(0);
        }));
        Measure(plainList, [&] {
            for (int i = 0; i < repeat; ++i) {
                std::uint32_t largest = 0;
                for (const PlainRecord& r : lists.plainList)
                    largest = std::max(largest, r.id);
                plainGot = largest + 1;
            }
        });
        Measure(map, [&] {
            for (int i = 0; i < repeat; ++i) {
                std::uint32_t largest = 0;
                for (const auto& entry : lists.map)
                    largest = std::max(largest, entry.first);
                mapGot = largest + 1;
            }
        });
        benchmark::DoNotOptimize(got);
    }
    if (got != 2 * kNodes + 1 || plainGot != got || mapGot != got) {
        state.SkipWithError("the containers gave different free ids");
        return;
    }
    ReportPerOperation(state, repeat, own, plainList, map);
}

// GetFreeId(wish) for wishes spread over the list, half of them taken: the list answers from
// a sorted copy of its ids; the std::list baseline walks the list once per candidate, the map
// probes candidates.
void BM_ListGetFreeIdWish(benchmark::State& state) {
    const Lists& lists = GetLists();
    const std::vector<std::uint32_t> wishes = LookupIds(static_cast<std::size_t>(state.range(0)));
    Timing own, plainList, map;
    std::uint64_t sum = 0, plainSum = 0, mapSum = 0;
    for (auto _ : state) {
        state.SetIterationTime(Measure(own, [&] {
            for (std::uint32_t wish : wishes)
                sum += lists.list.GetFreeId(wish);
        }));
        Measure(plainList, [&] {
            for (std::uint32_t wish : wishes) {
                std::uint32_t candidate = wish;
                while (std::any_of(lists.plainList.begin(), lists.plainList.end(),
                                   [candidate](const PlainRecord& r) { return r.id == candidate; }))
                    ++candidate;
                plainSum += candidate;
            }
        });
        Measure(map, [&] {
            for (std::uint32_t wish : wishes) {
                std::uint32_t candidate = wish;
                while (lists.map.count(candidate) != 0)
                    ++candidate;
                mapSum += candidate;
            }
        });
    }
    if (sum != plainSum || sum != mapSum) {
        state.SkipWithError("the containers gave different free ids");
        return;
    }
    ReportPerOperation(state, static_cast<double>(wishes.size()), own, plainList, map);
}

// Add: building a list of 100,000 freshly allocated records, against push_back into a
// std::list and emplace into a std::unordered_map (both allocate a node per record as well).
// Tearing the containers down is not timed.
void BM_ListAdd(benchmark::State& state) {
    Timing own, plainList, map;
    for (auto _ : state) {
        orvo::TOvListHeader<BenchNode> list;
        std::list<PlainRecord> plain;
        std::unordered_map<std::uint32_t, PlainRecord> hashed;
        state.SetIterationTime(Measure(own, [&] {
            for (std::uint32_t id = 1; id <= kNodes; ++id)
                list.Add(new BenchNode(id));
        }));
        Measure(plainList, [&] {
            for (std::uint32_t id = 1; id <= kNodes; ++id)
                plain.push_back({id, 0.0});
        });
        Measure(map, [&] {
            for (std::uint32_t id = 1; id <= kNodes; ++id)
                hashed.emplace(id, PlainRecord{id, 0.0});
        });
        if (list.Count() != static_cast<int>(kNodes) || plain.size() != kNodes ||
            hashed.size() != kNodes) {
            state.SkipWithError("a container lost records");
            return;
        }
    }
    ReportPerOperation(state, static_cast<double>(kNodes), own, plainList, map);
}

BENCHMARK(BM_ListFindId)->UseManualTime()->Unit(benchmark::kMillisecond)->Arg(200);
BENCHMARK(BM_ListGetFreeIdNext)->UseManualTime()->Unit(benchmark::kMillisecond)->Arg(20);
BENCHMARK(BM_ListGetFreeIdWish)->UseManualTime()->Unit(benchmark::kMillisecond)->Arg(20);
BENCHMARK(BM_ListAdd)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
