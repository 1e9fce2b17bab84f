// Pools: blocks that keep their contents while they wait to be used again, so
// that a constructor runs once a block, not once a use. The blocks come from the
// arena of the pool's tag (arena.h).
//
// Free blocks wait in bins, one for each size; a pool nearly always has a single
// one, and the bin used last stands first. A block knows its bin, so that
// putting it back is O(1). A destructor runs when the tag dies, over every block
// that the pool made, in use or not.
//
// A pool under a process-wide tag is as safe as its tag is: the bins are then
// guarded by a lock. Under any other tag there is none.
#include "arena.h"

#include <new>

namespace {

using osl::Arena;
struct Bin;

/// What precedes a pool block's payload.
struct PoolBlock {
    PoolBlock *next_made; // kept for the destructor
    PoolBlock *next_free;
    Bin *bin;
    OSL_POOL pool;
};
static_assert(sizeof(PoolBlock) % osl::kAlignment == 0);

struct Bin {
    size_t size; // of the payload
    PoolBlock *free;
    Bin *next;
};

void *payload_of(PoolBlock *block) {
    return block + 1;
}

PoolBlock *pool_block_of(void *payload) {
    return static_cast<PoolBlock *>(payload) - 1;
}

} // namespace

struct OSL_POOL_S {
    Arena *arena;
    OSL_POOL_FCN constructor;
    OSL_POOL_FCN destructor;
    void *user;
    PoolBlock *made;
    Bin *bins;
    Bin first_bin;
    OSL_POOL next; // of the same arena
    pthread_mutex_t lock;
};

namespace {

/// Holds the pool's lock where the pool is shared.
class PoolGuard {
  public:
    explicit PoolGuard(OSL_POOL pool) : lock_(pool->arena->process_wide ? &pool->lock : nullptr) {
        if (lock_ != nullptr) {
            pthread_mutex_lock(lock_);
        }
    }
    ~PoolGuard() {
        if (lock_ != nullptr) {
            pthread_mutex_unlock(lock_);
        }
    }
    PoolGuard(const PoolGuard &) = delete;
    PoolGuard &operator=(const PoolGuard &) = delete;

  private:
    pthread_mutex_t *lock_;
};

/// A new bin, uncounted: like the arena's own record it is no block of a caller.
Bin *make_bin(OSL_POOL pool, size_t size) {
    osl::BlockHeader *header = osl::take_large(pool->arena, sizeof(Bin));
    return header != nullptr ? new (osl::block_of(header)) Bin{size, nullptr, nullptr} : nullptr;
}

/// The bin of the size, moved to the front; null when memory is exhausted.
Bin *bin_of(OSL_POOL pool, size_t size) {
    if (pool->bins == nullptr) {
        pool->first_bin.size = size;
        pool->bins = &pool->first_bin;
    }
    Bin **link = &pool->bins;
    while (*link != nullptr && (*link)->size != size) {
        link = &(*link)->next;
    }
    Bin *bin = *link != nullptr ? *link : make_bin(pool, size);
    if (bin == nullptr || bin == pool->bins) {
        return bin;
    }
    if (*link != nullptr) {
        *link = bin->next;
    }
    bin->next = pool->bins;
    pool->bins = bin;
    return bin;
}

/// A block that waits in the bin, null if there is none.
PoolBlock *recycle(Bin *bin) {
    PoolBlock *block = bin->free;
    if (block != nullptr) {
        bin->free = block->next_free;
    }
    return block;
}

void remember(OSL_POOL pool, PoolBlock *block) {
    const PoolGuard guard(pool);
    block->next_made = pool->made;
    pool->made = block;
}

void *make_block(OSL_POOL pool, Bin *bin, uint32_t flags, const char *file, int32_t line) {
    if (bin->size > osl::kMostBytes) {
        return nullptr;
    }
    void *memory = osl::arena_get(pool->arena, sizeof(PoolBlock) + bin->size, file, line);
    if (memory == nullptr) {
        return nullptr;
    }
    auto *block = new (memory) PoolBlock{nullptr, nullptr, bin, pool};
    if (flags == OSL_MEM_ZERO) {
        std::memset(payload_of(block), 0, bin->size);
    }
    if (pool->constructor != nullptr) {
        pool->constructor(pool->user, payload_of(block));
    }
    if (pool->destructor != nullptr) {
        remember(pool, block);
    }
    return payload_of(block);
}

void *reuse_block(OSL_POOL pool, PoolBlock *block, uint32_t flags, const char *file, int32_t line) {
    osl::count_blocks(pool->arena, 1);
    osl::note_taken(pool->arena, osl::header_of(block), block->bin->size, file, line);
    if (flags == OSL_MEM_ZERO && pool->constructor == nullptr) {
        std::memset(payload_of(block), 0, block->bin->size);
    }
    return payload_of(block);
}

} // namespace

namespace osl {

void destroy_pool_blocks(Arena *arena) {
    for (OSL_POOL pool = arena->pools; pool != nullptr; pool = pool->next) {
        for (PoolBlock *block = pool->made; block != nullptr; block = block->next_made) {
            pool->destructor(pool->user, payload_of(block));
        }
    }
}

} // namespace osl

OAK_RETCODE osl_poolCreateEx(OSL_MEMTAG tag, OSL_POOL_KIND, uint32_t, OSL_POOL_FCN constructor,
                             OSL_POOL_FCN destructor, void *user, OSL_POOL *pPool) {
    Arena *arena = osl::arena_of(tag);
    if (arena == nullptr || pPool == nullptr) {
        return eINVNULLARG;
    }
    void *memory = nullptr;
    const OAK_RETCODE status =
        osl_getMem_rc(sizeof(OSL_POOL_S), tag, OSL_MEM_ZERO, nullptr, &memory, __FILE__, __LINE__);
    if (status != sOKAY) {
        return status;
    }
    auto *pool = new (memory) OSL_POOL_S{.arena = arena,
                                         .constructor = constructor,
                                         .destructor = destructor,
                                         .user = user,
                                         .made = nullptr,
                                         .bins = nullptr,
                                         .first_bin = {},
                                         .next = nullptr,
                                         .lock = PTHREAD_MUTEX_INITIALIZER};
    if (!arena->process_wide) {
        pool->next = arena->pools;
        arena->pools = pool;
    }
    *pPool = pool;
    return sOKAY;
}

void *osl_poolGetMem(OSL_POOL pool, size_t size, uint32_t flags, uint32_t, const char *file,
                     int32_t line) {
    if (pool == nullptr || osl::refuses(osl::Resource::memory)) {
        return nullptr;
    }
    Bin *bin = nullptr;
    PoolBlock *block = nullptr;
    {
        const PoolGuard guard(pool);
        bin = bin_of(pool, size);
        block = bin != nullptr ? recycle(bin) : nullptr;
    }
    if (block != nullptr) {
        return reuse_block(pool, block, flags, file, line);
    }
    return bin != nullptr ? make_block(pool, bin, flags, file, line) : nullptr;
}

void osl_poolPut(OSL_POOL pool, void *block) {
    if (pool == nullptr || block == nullptr) {
        return;
    }
    PoolBlock *returned = pool_block_of(block);
    assert(returned->pool == pool && "a block goes back to the pool that made it");
    osl::note_released(pool->arena, osl::header_of(returned));
    osl::count_blocks(pool->arena, -1);
    const PoolGuard guard(pool);
    returned->next_free = returned->bin->free;
    returned->bin->free = returned;
}
