// Tags and the allocating calls: flags, copies, jumps to a tag's buffer. The
// blocks come from the tag's arena (arena.h).
//
// Each plain call is its `_rc` twin with the status left out; what differs is
// that the plain one jumps when the tag has a jump buffer and memory is
// exhausted. Nothing between the two has a destructor.
#include "arena.h"

#include <bit>
#include <csetjmp>

namespace {

using osl::Arena;

/// The size of a text with its terminator, 0 for no text.
size_t text_size(const void *source) {
    return source != nullptr ? std::strlen(static_cast<const char *>(source)) + 1 : 0;
}

/// A block with undefined contents, null when memory is exhausted.
inline void *get_plain(Arena *arena, size_t size, const char *file, int32_t line) {
    return osl::refuses(osl::Resource::memory) ? nullptr : osl::arena_get(arena, size, file, line);
}

OAK_RETCODE get(size_t size, OSL_MEMTAG tag, uint32_t flags, const void *source, void **out,
                const char *file, int32_t line) {
    Arena *arena = osl::arena_of(tag);
    if (arena == nullptr || out == nullptr) {
        return eINVNULLARG;
    }
    const bool copies = flags == OSL_MEM_COPY || flags == OSL_MEM_STRING;
    if (copies && source == nullptr && (flags == OSL_MEM_STRING || size > 0)) {
        return eINVNULLARG;
    }
    if (flags == OSL_MEM_STRING) {
        size = text_size(source);
    }
    void *block = get_plain(arena, size, file, line);
    if (block == nullptr) {
        return eNOMEMORY;
    }
    if (copies && size > 0) {
        std::memcpy(block, source, size);
    } else if (flags == OSL_MEM_ZERO) {
        std::memset(block, 0, size);
    }
    *out = block;
    return sOKAY;
}

/// The block becomes a copy of a text, which may lie in the block itself.
void *replace_by_text(Arena *arena, void *old, const void *text, const char *file, int32_t line) {
    const size_t size = text_size(text);
    void *block = osl::arena_get(arena, size, file, line);
    if (block != nullptr) {
        std::memcpy(block, text, size);
        osl::arena_put(arena, old);
    }
    return block;
}

OAK_RETCODE extend(void *old, size_t size, OSL_MEMTAG tag, uint32_t flags, size_t added,
                   const void *source, void **out, const char *file, int32_t line) {
    if (old == nullptr) {
        return get(size, tag, flags, source, out, file, line);
    }
    Arena *arena = osl::arena_of(tag);
    if (arena == nullptr || out == nullptr || (flags == OSL_MEM_STRING && source == nullptr)) {
        return eINVNULLARG;
    }
    if (osl::refuses(osl::Resource::memory)) {
        return eNOMEMORY;
    }
    void *block = flags == OSL_MEM_STRING ? replace_by_text(arena, old, source, file, line)
                                          : osl::arena_extend(arena, old, size, file, line);
    if (block == nullptr) {
        return eNOMEMORY;
    }
    if (flags == OSL_MEM_ZERO) {
        const size_t zeroed = added < size ? added : size;
        std::memset(static_cast<uint8_t *>(block) + (size - zeroed), 0, zeroed);
    }
    *out = block;
    return sOKAY;
}

/// Where a plain call without memory ends: at the tag's jump, or with null.
void *jump_or_null(const Arena *arena) {
    if (arena->no_memory_exit != nullptr) {
        longjmp(*arena->no_memory_exit, eNOMEMORY);
    }
    return nullptr;
}

void *block_or_jump(OAK_RETCODE status, void *block, OSL_MEMTAG tag) {
    if (status == sOKAY) {
        return block;
    }
    return status == eNOMEMORY ? jump_or_null(osl::arena_of(tag)) : nullptr;
}

} // namespace

// ---- Tags -------------------------------------------------------------------

OSL_MEMTAG osl_createTagEx(jmp_buf *noMemoryExit, OSL_ALLOCATOR, uint32_t, uint32_t, uint32_t,
                           const char *, int32_t) {
    Arena *arena = osl::refuses(osl::Resource::memory) ? nullptr : osl::arena_create(noMemoryExit);
    if (arena != nullptr) {
        osl::count_live(osl::Live::tags, 1);
    }
    return arena;
}

OAK_RETCODE osl_createTagEx_rc(jmp_buf *noMemoryExit, OSL_ALLOCATOR kind, uint32_t reserved1,
                               uint32_t reserved2, uint32_t reserved3, OSL_MEMTAG *pTag,
                               const char *file, int32_t line) {
    if (pTag == nullptr) {
        return eINVNULLARG;
    }
    OSL_MEMTAG tag =
        osl_createTagEx(noMemoryExit, kind, reserved1, reserved2, reserved3, file, line);
    if (tag == nullptr) {
        return eNOMEMORY;
    }
    *pTag = tag;
    return sOKAY;
}

void osl_freeTagMem(OSL_MEMTAG tag, int32_t, const char *, int32_t) {
    Arena *arena = osl::arena_of(tag);
    if (arena == nullptr || arena->process_wide) {
        return;
    }
    osl::destroy_pool_blocks(arena);
    osl::arena_destroy(arena);
    osl::count_live(osl::Live::tags, -1);
}

// ---- Blocks -----------------------------------------------------------------

void *osl_getMem(size_t size, OSL_MEMTAG tag, uint32_t flags, const void *source, const char *file,
                 int32_t line) {
    Arena *arena = osl::arena_of(tag);
    void *block = nullptr;
    if (flags == OSL_MEM_PLAIN && arena != nullptr) [[likely]] {
        block = get_plain(arena, size, file, line);
        return block != nullptr ? block : jump_or_null(arena);
    }
    const OAK_RETCODE status = get(size, tag, flags, source, &block, file, line);
    return block_or_jump(status, block, tag);
}

OAK_RETCODE osl_getMem_rc(size_t size, OSL_MEMTAG tag, uint32_t flags, const void *source,
                          void **ppBlock, const char *file, int32_t line) {
    return get(size, tag, flags, source, ppBlock, file, line);
}

void *osl_extendMem(void *old, size_t newSize, OSL_MEMTAG tag, uint32_t flags, size_t added,
                    const void *source, const char *file, int32_t line) {
    void *block = nullptr;
    const OAK_RETCODE status = extend(old, newSize, tag, flags, added, source, &block, file, line);
    return block_or_jump(status, block, tag);
}

OAK_RETCODE osl_extendMem_rc(void *old, size_t newSize, OSL_MEMTAG tag, uint32_t flags,
                             size_t added, const void *source, void **ppBlock, const char *file,
                             int32_t line) {
    return extend(old, newSize, tag, flags, added, source, ppBlock, file, line);
}

void osl_freeMem(void *block, OSL_MEMTAG tag, const char *, int32_t) {
    if (block != nullptr) [[likely]] {
        osl::arena_put(osl::arena_of(tag), block);
    }
}

// ---- Alignment --------------------------------------------------------------

namespace {

struct Boundary {
    ALIGN_TYPE kind;
    size_t bytes;
};
constexpr Boundary kBoundaries[] = {
    {ALN_CHAR, 1},  {ALN_INT16, 2}, {ALN_WCHAR, 4},  {ALN_INT32, 4},
    {ALN_FLOAT, 4}, {ALN_INT64, 8}, {ALN_DOUBLE, 8},
};

constexpr bool boundaries_stand_in_order() {
    for (size_t i = 0; i < std::size(kBoundaries); ++i) {
        if (static_cast<size_t>(kBoundaries[i].kind) != i ||
            !std::has_single_bit(kBoundaries[i].bytes)) {
            return false;
        }
    }
    return std::size(kBoundaries) == size_t{ALN_DOUBLE} + 1;
}
static_assert(boundaries_stand_in_order());

constexpr size_t round_up(size_t value, size_t boundary) {
    return (value + boundary - 1) & ~(boundary - 1);
}

} // namespace

size_t osl_alignBufferSize(size_t size) {
    return round_up(size, 8);
}

size_t osl_align(size_t offset, ALIGN_TYPE kind) {
    const auto row = static_cast<uint32_t>(kind);
    return round_up(offset, row < std::size(kBoundaries) ? kBoundaries[row].bytes : 8);
}

#ifdef OSL_FAULT_INJECTION
uint64_t osl_faultLiveUnderTag(OSL_MEMTAG tag) {
    const Arena *arena = osl::arena_of(tag);
    return arena != nullptr ? static_cast<uint64_t>(osl::live_blocks(arena)) : 0;
}
#endif
