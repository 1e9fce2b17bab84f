// Internal to the platform layer: the arena behind a memory tag.
//
// An arena hands out blocks in size classes, cut from chunks that belong to the
// tag; a released block goes to the free list of its class and is the next one
// to be taken. Blocks above `kMostSmall` bytes are allocations of their own on
// a list of the tag. So both taking and releasing are a handful of
// instructions without a lock, and freeing a tag frees its chunks and its large
// blocks, never block by block. Memory of one class is not given to another
// before the tag dies: tags hold many blocks of few sizes, and die young.
//
//     chunk   | next |hdr| payload ... |hdr| payload ... |hdr| ...
//     large   | prev | next | - |hdr| payload ...
//
// A header is the eight bytes before the payload: the payload's capacity, and
// the class, 0 for a large block. Every payload is aligned to 16 bytes.
//
// The two process-wide arenas are for any number of threads: each of their
// blocks is a large one that is on no list, so that the C library's allocator,
// which knows about threads, does all the work.
//
// Two builds differ. With OSL_SEPARATE_BLOCKS every block is a large one of
// exactly the size that was asked for, and moves whenever it grows, so that the
// address sanitizer sees every overrun and every stale pointer. Without NDEBUG
// each header also notes who asked, the live blocks of a tag are on a list, and
// contents that nobody may rely on are overwritten.
#ifndef ARENA_H
#define ARENA_H

#include <array>
#include <atomic>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "osl_internal.h"

namespace osl {

/// What a block is, in the eight bytes before its payload, and in debug builds
/// who asked for it.
struct BlockHeader {
#ifndef NDEBUG
    BlockHeader *next; // the live blocks of the arena
    BlockHeader *prev;
    OSL_MEMTAG arena; // null: not live
    const char *file;
    size_t asked;
    int64_t line;
#endif
    uint64_t size_class : 8; // 0: a large block
    uint64_t capacity : 56;  // bytes of payload
};

inline void describe(BlockHeader *header, size_t size_class, size_t capacity) {
    header->size_class = size_class & 0xff;
    header->capacity = capacity & ((uint64_t{1} << 56) - 1);
}

constexpr size_t kAlignment = 16;
constexpr size_t kHeader = sizeof(BlockHeader);
static_assert(kHeader % kAlignment == 8, "a payload behind a header at 16 n + 8 is aligned");

/// A released small block; the link lies in the payload.
struct FreeBlock {
    FreeBlock *next;
};

/// A stretch of memory that small blocks are cut from; they begin behind the link.
struct Chunk {
    Chunk *next;
};
static_assert(sizeof(Chunk) == 8);

/// What precedes the payload of a large block. Those of a private tag form a
/// ring around the arena's `large`.
struct LargeBlock {
    LargeBlock *prev;
    LargeBlock *next;
    uint64_t unused; // keeps the payload aligned
    BlockHeader header;
};
static_assert(sizeof(LargeBlock) % kAlignment == 0);
static_assert(offsetof(LargeBlock, header) + kHeader == sizeof(LargeBlock));

// ---- Size classes -----------------------------------------------------------

#ifdef OSL_SEPARATE_BLOCKS
constexpr bool kSeparateBlocks = true;
#else
constexpr bool kSeparateBlocks = false;
#endif

// Blocks with their headers: steps of 16 bytes to 256, then four to a doubling.
constexpr size_t kSmallestBlock =
    (kHeader + sizeof(FreeBlock) + kAlignment - 1) & ~(kAlignment - 1);
constexpr size_t kFineSteps = 256;
constexpr size_t kLargestSmallBlock = 8192;
constexpr size_t kMostSmall = kSeparateBlocks ? 0 : kLargestSmallBlock - kHeader;

constexpr size_t next_block_size(size_t size) {
    size_t step = kAlignment;
    for (size_t limit = kFineSteps; limit <= size; limit *= 2) {
        step = limit / 4;
    }
    return size + step;
}

constexpr size_t count_classes() {
    size_t count = 2; // the unused class 0, and the smallest
    for (size_t size = kSmallestBlock; size < kLargestSmallBlock; size = next_block_size(size)) {
        ++count;
    }
    return count;
}
constexpr size_t kClasses = count_classes();

constexpr std::array<uint16_t, kClasses> make_block_sizes() {
    std::array<uint16_t, kClasses> sizes{};
    size_t size = kSmallestBlock;
    for (size_t i = 1; i < kClasses; ++i) {
        sizes[i] = static_cast<uint16_t>(size);
        size = next_block_size(size);
    }
    return sizes;
}
/// The size of a class's blocks, headers included.
inline constexpr std::array<uint16_t, kClasses> kBlockSizes = make_block_sizes();
static_assert(kBlockSizes[kClasses - 1] == kLargestSmallBlock);

constexpr std::array<uint8_t, kLargestSmallBlock / kAlignment + 1> make_class_table() {
    std::array<uint8_t, kLargestSmallBlock / kAlignment + 1> table{};
    size_t size_class = 1;
    for (size_t units = 0; units < table.size(); ++units) {
        while (kBlockSizes[size_class] < units * kAlignment) {
            ++size_class;
        }
        table[units] = static_cast<uint8_t>(size_class);
    }
    return table;
}
/// The class of a block of so many 16-byte units.
inline constexpr auto kClassOfUnits = make_class_table();

constexpr size_t class_of(size_t size) {
    return kClassOfUnits[(size + kHeader + kAlignment - 1) / kAlignment];
}

/// No larger block is ever asked of the system, so that no size wraps and each
/// fits its header; the address sanitizer ends a program that asks for 2 to the 40th.
constexpr size_t kMostBytes = size_t{1} << (kSeparateBlocks ? 39 : 55);

} // namespace osl

// ---- The arena --------------------------------------------------------------

struct OSL_MEMTAG_S {
    std::array<osl::FreeBlock *, osl::kClasses> free_lists{};
    uint8_t *bump = nullptr; // the unused rest of the newest chunk
    uint8_t *bump_end = nullptr;
    osl::Chunk *chunks = nullptr;
    size_t next_chunk_size = 0;
    osl::LargeBlock large{}; // the ring's anchor; no block
    jmp_buf *no_memory_exit = nullptr;
    OSL_POOL pools = nullptr;
    bool process_wide = false;
#ifdef OSL_FAULT_INJECTION
    std::atomic<int64_t> live_blocks{0};
#endif
#ifndef NDEBUG
    osl::BlockHeader *live = nullptr;
#endif
};

namespace osl {

using Arena = OSL_MEMTAG_S;

extern Arena process_arena;
extern Arena lz_arena;

/// The arena of a tag; null for a null tag.
inline Arena *arena_of(OSL_MEMTAG tag) {
    if (reinterpret_cast<uintptr_t>(tag) > 2) [[likely]] {
        return tag;
    }
    if (tag == OSL_TAG_PROCESS) {
        return &process_arena;
    }
    return tag == OSL_TAG_LZ ? &lz_arena : nullptr;
}

/// A new private arena, null when memory is exhausted.
Arena *arena_create(jmp_buf *no_memory_exit);
/// Frees the arena with all its blocks; a process-wide one stays as it is.
void arena_destroy(Arena *arena);

inline BlockHeader *header_of(void *block) {
    return reinterpret_cast<BlockHeader *>(static_cast<uint8_t *>(block) - kHeader);
}

inline void *block_of(BlockHeader *header) {
    return reinterpret_cast<uint8_t *>(header) + kHeader;
}

// ---- What test and debug builds note about a block --------------------------

inline void count_blocks([[maybe_unused]] Arena *arena, [[maybe_unused]] int64_t change) {
#ifdef OSL_FAULT_INJECTION
    arena->live_blocks += change;
    count_live(Live::blocks, change);
#endif
}

inline int64_t live_blocks([[maybe_unused]] const Arena *arena) {
#ifdef OSL_FAULT_INJECTION
    return arena->live_blocks;
#else
    return 0;
#endif
}

#ifndef NDEBUG
/// Puts the block on the list of the live ones.
void note_taken(Arena *arena, BlockHeader *header, size_t asked, const char *file, int32_t line);
/// Notes the newest asker of a live block.
void note_changed(Arena *arena, BlockHeader *header, size_t asked, const char *file, int32_t line);
void note_released(Arena *arena, BlockHeader *header);
/// Overwrites contents that nobody may rely on.
inline void scribble(BlockHeader *header, int byte) {
    std::memset(block_of(header), byte, header->capacity);
}
#else
inline void note_taken(Arena *, BlockHeader *, size_t, const char *, int32_t) {}
inline void note_changed(Arena *, BlockHeader *, size_t, const char *, int32_t) {}
inline void note_released(Arena *, BlockHeader *) {}
inline void scribble(BlockHeader *, int) {}
#endif
constexpr int kFresh = 0xa5;
constexpr int kReleased = 0x5a;

// ---- Taking and releasing blocks --------------------------------------------

/// A small block from a new chunk, null when memory is exhausted.
BlockHeader *cut_from_new_chunk(Arena *arena, size_t size_class);
/// A block of its own for at least `capacity` bytes, null when memory is exhausted.
BlockHeader *take_large(Arena *arena, size_t capacity);
void release_large(Arena *arena, BlockHeader *header);

inline BlockHeader *cut_block(uint8_t *place, size_t size_class) {
    auto *header = reinterpret_cast<BlockHeader *>(place);
    describe(header, size_class, kBlockSizes[size_class] - kHeader);
    return header;
}

inline BlockHeader *take_small(Arena *arena, size_t size_class) {
    if (FreeBlock *block = arena->free_lists[size_class]; block != nullptr) [[likely]] {
        arena->free_lists[size_class] = block->next;
        return header_of(block);
    }
    const size_t size = kBlockSizes[size_class];
    if (size > static_cast<size_t>(arena->bump_end - arena->bump)) [[unlikely]] {
        return cut_from_new_chunk(arena, size_class);
    }
    uint8_t *place = arena->bump;
    arena->bump += size;
    return cut_block(place, size_class);
}

inline void release_small(Arena *arena, BlockHeader *header) {
    auto *block = static_cast<FreeBlock *>(block_of(header));
    block->next = arena->free_lists[header->size_class];
    arena->free_lists[header->size_class] = block;
}

/// A block of at least `size` bytes, null when memory is exhausted.
inline void *arena_get(Arena *arena, size_t size, const char *file, int32_t line) {
    const bool small = size <= kMostSmall && !kSeparateBlocks && !arena->process_wide;
    BlockHeader *header = small ? take_small(arena, class_of(size)) : take_large(arena, size);
    if (header == nullptr) [[unlikely]] {
        return nullptr;
    }
    count_blocks(arena, 1);
    note_taken(arena, header, size, file, line);
    scribble(header, kFresh);
    return block_of(header);
}

inline void arena_put(Arena *arena, void *block) {
    assert(arena != nullptr && "a block is released to the tag that it was taken from");
    BlockHeader *header = header_of(block);
    note_released(arena, header);
    scribble(header, kReleased);
    count_blocks(arena, -1);
    if (header->size_class != 0) [[likely]] {
        release_small(arena, header);
    } else {
        release_large(arena, header);
    }
}

/// The block with room for `size` bytes, perhaps elsewhere; null, with the old
/// block as it was, when memory is exhausted.
void *arena_extend(Arena *arena, void *block, size_t size, const char *file, int32_t line);

/// Runs the destructors of the pools under the arena, newest block first.
void destroy_pool_blocks(Arena *arena);

} // namespace osl

#endif
