// B_STR (str.h). Rests on the platform's memory.
//
// Memory is taken with the calls that never jump; the string jumps itself, to the
// buffer that was set last, from validateSpace alone. No frame between that and
// the exported call holds anything that would need unwinding.
#include "str.h"

#include <cstring>

#include "container_internal.h"

struct b_str {
    OSL_MEMTAG tag;
    char *buffer;
    size_t size; // bytes owned
    size_t pos;  // bytes used
    bool ownTag; // the tag was made by the string
    jmp_buf *jmpbuf;
};

namespace {

constexpr size_t kRoomStep = 256;

/// Makes room for `added` bytes more. Jumps on failure if a jump is set.
OAK_RETCODE validateSpace(B_STR string, size_t added) {
    if (added <= string->size - string->pos) {
        return sOKAY;
    }
    OAK_RETCODE rc = eNOMEMORY;
    if (added <= SIZE_MAX - string->pos - kRoomStep) {
        const size_t steps = (string->pos + added + kRoomStep - 1) / kRoomStep;
        void *block = nullptr;
        rc = osl_extendMem_rc(string->buffer, steps * kRoomStep, string->tag, OSL_MEM_PLAIN, 0,
                              nullptr, &block, __FILE__, __LINE__);
        if (rc == sOKAY) {
            string->buffer = static_cast<char *>(block);
            string->size = steps * kRoomStep;
        }
    }
    if (rc != sOKAY && string->jmpbuf != nullptr) {
        longjmp(*string->jmpbuf, rc);
    }
    return rc;
}

} // namespace

OAK_RETCODE b_strCreate(B_STR *pString, jmp_buf *jmpbuf, OSL_MEMTAG tag) {
    if (pString == nullptr) {
        return eINVNULLARG;
    }
    const bool ownTag = tag == nullptr;
    OAK_RETCODE rc =
        ownTag ? osl_createTagEx_rc(jmpbuf, BLOCK_ALLOCATOR, 0, 0, 0, &tag, __FILE__, __LINE__)
               : sOKAY;
    if (rc != sOKAY) {
        return rc;
    }
    b_str *string = nullptr;
    rc = oak::get_zeroed(1, tag, &string, __FILE__, __LINE__);
    if (rc != sOKAY) {
        if (ownTag) {
            OSL_FREE_TAG(tag);
        }
        return rc;
    }
    string->tag = tag;
    string->ownTag = ownTag;
    string->jmpbuf = jmpbuf;
    *pString = string;
    return sOKAY;
}

void b_strDestroy(B_STR string) {
    if (string == nullptr) {
        return;
    }
    if (string->ownTag) {
        OSL_FREE_TAG(string->tag);
        return;
    }
    OSL_FREE(string->buffer, string->tag);
    OSL_FREE(string, string->tag);
}

void b_strReset(B_STR string, jmp_buf *jmpbuf) {
    if (string != nullptr) {
        string->pos = 0;
        string->jmpbuf = jmpbuf;
    }
}

OAK_RETCODE b_strAppend(B_STR string, const char *text, size_t length) {
    if (string == nullptr || (text == nullptr && length > 0)) {
        return eINVNULLARG;
    }
    const OAK_RETCODE rc = validateSpace(string, length);
    if (rc == sOKAY && length > 0) {
        std::memcpy(string->buffer + string->pos, text, length);
        string->pos += length;
    }
    return rc;
}

size_t b_strSize(B_STR_C string) {
    return string != nullptr ? string->pos : 0;
}

const char *b_strString(B_STR string) {
    if (string == nullptr || validateSpace(string, 1) != sOKAY) {
        return nullptr;
    }
    string->buffer[string->pos] = '\0';
    return string->buffer;
}

char b_strChar(B_STR_C string, size_t index) {
    return string != nullptr && index < string->pos ? string->buffer[index] : '\0';
}
