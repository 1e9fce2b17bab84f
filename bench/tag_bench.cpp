// Memory tags against the C library's allocator, in the same run: a block taken
// and released, many sizes at once, and a block that grows by 16 bytes a step.
//
// Each benchmark has two rows, `tag` and `malloc`. "Whole" frees by the tag: what
// a tag is for, and what malloc has no counterpart of.
#include <array>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <benchmark/benchmark.h>

#include "osltypes.h"

namespace {

constexpr size_t kLiveBlocks = 1024;

struct TagAllocator {
    OSL_MEMTAG tag = OSL_CREATE_TAG();
    ~TagAllocator() { OSL_FREE_TAG(tag); }
    void *get(size_t size) { return OSL_GET(size, tag); }
    void *extend(void *block, size_t size) {
        return osl_extendMem(block, size, tag, OSL_MEM_PLAIN, 16, nullptr, __FILE__, __LINE__);
    }
    void put(void *block) { OSL_FREE(block, tag); }
};

struct LibraryAllocator {
    void *get(size_t size) { return std::malloc(size); }
    void *extend(void *block, size_t size) { return std::realloc(block, size); }
    void put(void *block) { std::free(block); }
};

/// Sizes as rows, nodes and texts have them; the same for both allocators.
std::vector<size_t> mixed_sizes() {
    std::vector<size_t> sizes;
    uint64_t state = 14;
    for (size_t i = 0; i < 4 * kLiveBlocks; ++i) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        const uint64_t bits = state >> 33;
        sizes.push_back(bits % 8 == 0 ? 256 + bits / 8 % 3840 : 8 + bits / 8 % 248);
    }
    return sizes;
}

template <class Allocator>
void take_and_release(benchmark::State &state) {
    Allocator allocator;
    const auto size = static_cast<size_t>(state.range(0));
    for (auto _ : state) {
        void *block = allocator.get(size);
        benchmark::DoNotOptimize(block);
        allocator.put(block);
    }
}
BENCHMARK(take_and_release<TagAllocator>)->Name("small/tag")->Arg(16)->Arg(64)->Arg(500)->Arg(4000);
BENCHMARK(take_and_release<LibraryAllocator>)
    ->Name("small/malloc")
    ->Arg(16)
    ->Arg(64)
    ->Arg(500)
    ->Arg(4000);

/// A thousand live blocks; each step replaces one by one of another size.
template <class Allocator>
void mixed(benchmark::State &state) {
    Allocator allocator;
    const std::vector<size_t> sizes = mixed_sizes();
    std::array<void *, kLiveBlocks> blocks{};
    size_t step = 0;
    for (auto _ : state) {
        void *&place = blocks[step * 7919 % kLiveBlocks];
        if (place != nullptr) {
            allocator.put(place);
        }
        place = allocator.get(sizes[step % sizes.size()]);
        *static_cast<char *>(place) = 1;
        ++step;
    }
    for (void *block : blocks) {
        if (block != nullptr) {
            allocator.put(block);
        }
    }
}
BENCHMARK(mixed<TagAllocator>)->Name("mixed/tag");
BENCHMARK(mixed<LibraryAllocator>)->Name("mixed/malloc");

/// From 16 bytes to 64 KiB in steps of 16, beside a second block that grows too,
/// as arrays do in real programs.
template <class Allocator>
void grow(benchmark::State &state) {
    Allocator allocator;
    constexpr size_t most = 65536;
    for (auto _ : state) {
        void *first = allocator.get(16);
        void *second = allocator.get(16);
        for (size_t size = 32; size <= most; size += 16) {
            first = allocator.extend(first, size);
            second = allocator.extend(second, size);
            static_cast<char *>(first)[size - 1] = 1;
            static_cast<char *>(second)[size - 1] = 1;
        }
        allocator.put(first);
        allocator.put(second);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(2 * (most / 16 - 1)));
}
BENCHMARK(grow<TagAllocator>)->Name("grow16/tag");
BENCHMARK(grow<LibraryAllocator>)->Name("grow16/malloc");

/// A thousand blocks, then all of them gone.
void whole_tag(benchmark::State &state) {
    for (auto _ : state) {
        OSL_MEMTAG tag = OSL_CREATE_TAG();
        for (size_t i = 0; i < kLiveBlocks; ++i) {
            benchmark::DoNotOptimize(OSL_GET(48, tag));
        }
        OSL_FREE_TAG(tag);
    }
}
BENCHMARK(whole_tag)->Name("whole/tag");

void whole_library(benchmark::State &state) {
    std::array<void *, kLiveBlocks> blocks{};
    for (auto _ : state) {
        for (void *&block : blocks) {
            block = std::malloc(48);
            benchmark::DoNotOptimize(block);
        }
        for (void *block : blocks) {
            std::free(block);
        }
    }
}
BENCHMARK(whole_library)->Name("whole/malloc");

} // namespace
