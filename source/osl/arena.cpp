// The arena's slow paths: new chunks, large blocks, growth, birth and death,
// and what a debug build notes about live blocks. The design and the fast paths
// stand in arena.h.
//
// Growth: a block that must move gets half of its capacity on top, so that n
// extensions by a constant copy O(n) bytes in all. A large block grows by
// realloc, which moves pages, not bytes, where the block is big.
#include "arena.h"

#include "osl_debug.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

namespace osl {

constinit Arena process_arena{.process_wide = true};
constinit Arena lz_arena{.process_wide = true};

namespace {

// The first chunk holds the arena itself; later ones double up to a bound.
constexpr size_t kFirstChunk = 2048;
constexpr size_t kSecondChunk = 4096;
constexpr size_t kLargestChunk = 65536;

/// Where blocks begin behind the arena's record: 8 above a multiple of 16.
constexpr size_t kArenaRecord = (sizeof(Arena) + 7) / kAlignment * kAlignment + 8;
static_assert(kArenaRecord >= sizeof(Arena));
static_assert(kFirstChunk >= kArenaRecord + 512, "a new tag has room for a few blocks");

LargeBlock *large_of(BlockHeader *header) {
    return reinterpret_cast<LargeBlock *>(reinterpret_cast<uint8_t *>(header) -
                                          offsetof(LargeBlock, header));
}

void link_large(Arena *arena, LargeBlock *large) {
    large->prev = &arena->large;
    large->next = arena->large.next;
    large->next->prev = large;
    arena->large.next = large;
}

void unlink_large(LargeBlock *large) {
    large->prev->next = large->next;
    large->next->prev = large->prev;
}

/// What is left of the old chunk becomes free blocks, the largest first.
void spend_rest_of_chunk(Arena *arena) {
    for (size_t size_class = kClasses - 1; size_class > 0; --size_class) {
        const size_t size = kBlockSizes[size_class];
        while (static_cast<size_t>(arena->bump_end - arena->bump) >= size) {
            release_small(arena, cut_block(arena->bump, size_class));
            arena->bump += size;
        }
    }
}

} // namespace

BlockHeader *cut_from_new_chunk(Arena *arena, size_t size_class) {
    const size_t size = std::max(arena->next_chunk_size, sizeof(Chunk) + kBlockSizes[size_class]);
    auto *chunk = static_cast<Chunk *>(std::malloc(size));
    if (chunk == nullptr) {
        return nullptr;
    }
    spend_rest_of_chunk(arena);
    chunk->next = arena->chunks;
    arena->chunks = chunk;
    arena->bump = reinterpret_cast<uint8_t *>(chunk) + sizeof(Chunk);
    arena->bump_end = reinterpret_cast<uint8_t *>(chunk) + size;
    arena->next_chunk_size = std::min(arena->next_chunk_size * 2, kLargestChunk);
    return take_small(arena, size_class);
}

BlockHeader *take_large(Arena *arena, size_t capacity) {
    if (capacity > kMostBytes) {
        return nullptr;
    }
    auto *large = static_cast<LargeBlock *>(std::malloc(sizeof(LargeBlock) + capacity));
    if (large == nullptr) {
        return nullptr;
    }
    if (!arena->process_wide) {
        link_large(arena, large);
    }
    describe(&large->header, 0, capacity);
    return &large->header;
}

void release_large(Arena *arena, BlockHeader *header) {
    LargeBlock *large = large_of(header);
    if (!arena->process_wide) {
        unlink_large(large);
    }
    std::free(large);
}

// ---- Growth -----------------------------------------------------------------

namespace {

void *move_small(Arena *arena, void *block, size_t size, const char *file, int32_t line) {
    void *moved = arena_get(arena, size, file, line);
    if (moved != nullptr) {
        std::memcpy(moved, block, std::min(size_t{header_of(block)->capacity}, size));
        arena_put(arena, block);
    }
    return moved;
}

void *move_large(Arena *arena, void *block, size_t size, const char *file, int32_t line) {
    if (size > kMostBytes) {
        return nullptr;
    }
    LargeBlock *old = large_of(header_of(block));
    note_released(arena, &old->header);
    if (!arena->process_wide) {
        unlink_large(old);
    }
    auto *moved = static_cast<LargeBlock *>(std::realloc(old, sizeof(LargeBlock) + size));
    LargeBlock *large = moved != nullptr ? moved : old;
    if (!arena->process_wide) {
        link_large(arena, large);
    }
    note_taken(arena, &large->header, size, file, line);
    if (moved == nullptr) {
        return nullptr;
    }
    describe(&moved->header, 0, size);
    return block_of(&moved->header);
}

void *move_block(Arena *arena, void *block, size_t size, const char *file, int32_t line) {
    return header_of(block)->size_class != 0 ? move_small(arena, block, size, file, line)
                                             : move_large(arena, block, size, file, line);
}

} // namespace

void *arena_extend(Arena *arena, void *block, size_t size, const char *file, int32_t line) {
    const size_t capacity = header_of(block)->capacity;
    if (kSeparateBlocks) {
        return move_block(arena, block, size, file, line);
    }
    if (size <= capacity) {
        note_changed(arena, header_of(block), size, file, line);
        return block;
    }
    const size_t generous = std::max(size, capacity + capacity / 2);
    void *moved = move_block(arena, block, generous, file, line);
    if (moved == nullptr) {
        return move_block(arena, block, size, file, line);
    }
    note_changed(arena, header_of(moved), size, file, line);
    return moved;
}

// ---- Birth and death --------------------------------------------------------

Arena *arena_create(jmp_buf *no_memory_exit) {
    constexpr size_t size = kSeparateBlocks ? kArenaRecord : kFirstChunk;
    void *memory = std::malloc(size);
    if (memory == nullptr) {
        return nullptr;
    }
    auto *arena = new (memory) Arena{};
    arena->bump = static_cast<uint8_t *>(memory) + kArenaRecord;
    arena->bump_end = static_cast<uint8_t *>(memory) + size;
    arena->next_chunk_size = kSecondChunk;
    arena->large.prev = &arena->large;
    arena->large.next = &arena->large;
    arena->no_memory_exit = no_memory_exit;
    return arena;
}

void arena_destroy(Arena *arena) {
    count_live(Live::blocks, -live_blocks(arena));
    for (LargeBlock *large = arena->large.next; large != &arena->large;) {
        std::free(std::exchange(large, large->next));
    }
    for (Chunk *chunk = arena->chunks; chunk != nullptr;) {
        std::free(std::exchange(chunk, chunk->next));
    }
    std::free(arena);
}

// ---- What a debug build notes -----------------------------------------------

#ifndef NDEBUG
namespace {

/// The lists of the process-wide tags belong to any thread. It may be taken twice:
/// the callback of a report may allocate.
pthread_mutex_t process_lock = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;

class NoteGuard {
  public:
    explicit NoteGuard(const Arena *arena) : locked_(arena->process_wide) {
        if (locked_) {
            pthread_mutex_lock(&process_lock);
        }
    }
    ~NoteGuard() {
        if (locked_) {
            pthread_mutex_unlock(&process_lock);
        }
    }
    NoteGuard(const NoteGuard &) = delete;
    NoteGuard &operator=(const NoteGuard &) = delete;

  private:
    bool locked_;
};

} // namespace

void note_taken(Arena *arena, BlockHeader *header, size_t asked, const char *file, int32_t line) {
    const NoteGuard guard(arena);
    header->arena = arena;
    header->asked = asked;
    header->file = file;
    header->line = line;
    header->prev = nullptr;
    header->next = arena->live;
    if (header->next != nullptr) {
        header->next->prev = header;
    }
    arena->live = header;
}

void note_changed(Arena *arena, BlockHeader *header, size_t asked, const char *file, int32_t line) {
    const NoteGuard guard(arena);
    header->asked = asked;
    header->file = file;
    header->line = line;
}

void note_released(Arena *arena, BlockHeader *header) {
    const NoteGuard guard(arena);
    assert(header->arena == arena &&
           "a block is released once, under the tag that it was taken from");
    header->arena = nullptr;
    (header->prev != nullptr ? header->prev->next : arena->live) = header->next;
    if (header->next != nullptr) {
        header->next->prev = header->prev;
    }
}
#endif

} // namespace osl

#ifndef NDEBUG
uint64_t osl_leakReport(OSL_MEMTAG tag, OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx) {
    const osl::Arena *arena = osl::arena_of(tag);
    if (arena == nullptr) {
        return 0;
    }
    const osl::NoteGuard guard(arena);
    uint64_t count = 0;
    OAK_RETCODE status = sOKAY;
    for (const osl::BlockHeader *header = arena->live; header != nullptr; header = header->next) {
        ++count;
        if (status == sOKAY) {
            status = osl_fnprintf(fcn, ctx, "%s:%d: %zu bytes\n", header->file,
                                  static_cast<int>(header->line), header->asked);
        }
    }
    return count;
}
#endif
