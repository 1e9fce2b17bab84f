// One-character input over memory or a file.
//
// Both kinds are one record with three functions. A memory input is a place in
// a borrowed text. A file input holds one block of 1024 bytes, the one in which
// it last read; blocks are counted from the place at which the input was opened
// and are fetched by their number, so that a start at any offset and a rewind
// to any point find what is there. Nothing is read before it is asked for.
//
// Rests on the platform's memory and files; serves the lexer, which takes most
// bytes through the window of lex_internal.h, and the catalog reader.
#include "input.h"

#include <algorithm>

#include "lex_internal.h"

// ---- Memory ----------------------------------------------------------------

OAK_RETCODE input_readMemory(OAK_INPUT_OBJ obj, B_CHAR *ch) {
    OAK_MEM_INPUT &in = obj->u.mem;
    *ch = in.pos < in.size ? in.buffer[in.pos++] : 0;
    return sOKAY;
}

namespace {

OAK_RETCODE rewind_memory(OAK_INPUT_OBJ obj, OAK_REWIND_POINT_OBJ point) {
    obj->u.mem.pos = point != nullptr ? point->mem.pos : 0;
    return sOKAY;
}

void mark_memory(OAK_INPUT_OBJ obj, OAK_REWIND_POINT *point) {
    point->mem.pos = obj->u.mem.pos;
}

// ---- Files -----------------------------------------------------------------

// Loads the block in which the place lies. On failure no block is loaded.
OAK_RETCODE load_block(OAK_FILE_INPUT &in) {
    const OSL_FILE_OFFSET number = (in.pos - in.startingPos) / INPUT_BLOCK_SIZE;
    const OSL_FILE_OFFSET start = in.startingPos + number * INPUT_BLOCK_SIZE;
    const auto wanted =
        static_cast<uint32_t>(std::min<OSL_FILE_OFFSET>(INPUT_BLOCK_SIZE, in.size - start));
    in.blockLen = 0;
    if (osl_fileSeekRead(in.file, start, in.buffer, wanted) != wanted) {
        return eBADREAD;
    }
    in.blockPos = start;
    in.blockLen = wanted;
    return sOKAY;
}

OAK_RETCODE read_file(OAK_INPUT_OBJ obj, B_CHAR *ch) {
    OAK_FILE_INPUT &in = obj->u.file;
    if (in.pos >= in.size) {
        *ch = 0;
        return sOKAY;
    }
    if (input_window(obj).size == 0) {
        if (const OAK_RETCODE rc = load_block(in); rc != sOKAY) {
            return rc;
        }
    }
    *ch = in.buffer[in.pos - in.blockPos];
    in.pos++;
    return sOKAY;
}

OAK_RETCODE rewind_file(OAK_INPUT_OBJ obj, OAK_REWIND_POINT_OBJ point) {
    OAK_FILE_INPUT &in = obj->u.file;
    in.pos = point != nullptr ? point->file.pos : in.startingPos;
    return sOKAY;
}

void mark_file(OAK_INPUT_OBJ obj, OAK_REWIND_POINT *point) {
    point->file.pos = obj->u.file.pos;
}

// ---- Both ------------------------------------------------------------------

OAK_INPUT_OBJ allocate_input(OSL_MEMTAG tag) {
    auto *input = static_cast<OAK_INPUT_OBJ>(OSL_GET_ZERO(sizeof(OAK_INPUT), tag));
    if (input != nullptr) {
        input->tag = tag;
    }
    return input;
}

} // namespace

// ---- Exported functions ----------------------------------------------------

OAK_RETCODE b_inputCreateFromMemory(OAK_INPUT_OBJ *pObj, const uint8_t *buffer, size_t size,
                                    OSL_MEMTAG tag) {
    if (pObj == nullptr || (buffer == nullptr && size != 0)) {
        return eINVNULLARG;
    }
    const OAK_INPUT_OBJ input = allocate_input(tag);
    if (input == nullptr) {
        return eNOMEMORY;
    }
    input->u.mem = {buffer, 0, size};
    input->readFcn = input_readMemory;
    input->rewindFcn = rewind_memory;
    input->createRewindPointFcn = mark_memory;
    *pObj = input;
    return sOKAY;
}

OAK_RETCODE b_inputCreateFromFile(OAK_INPUT_OBJ *pObj, OSL_FH file, OSL_MEMTAG tag) {
    if (pObj == nullptr || file == nullptr) {
        return eINVNULLARG;
    }
    OSL_FILE_OFFSET start = 0;
    if (const OAK_RETCODE rc = osl_fileSeek(file, 0, OSL_SEEK_CURRENT, &start); rc != sOKAY) {
        return rc;
    }
    const OAK_INPUT_OBJ input = allocate_input(tag);
    if (input == nullptr) {
        return eNOMEMORY;
    }
    input->u.file.file = file;
    input->u.file.pos = start;
    input->u.file.startingPos = start;
    input->u.file.size = osl_fileLength(file);
    input->readFcn = read_file;
    input->rewindFcn = rewind_file;
    input->createRewindPointFcn = mark_file;
    *pObj = input;
    return sOKAY;
}

OAK_RETCODE b_inputRead(OAK_INPUT_OBJ obj, B_CHAR *ch) {
    if (obj == nullptr || ch == nullptr) {
        return eINVNULLARG;
    }
    return obj->readFcn(obj, ch);
}

OAK_RETCODE b_inputRewind(OAK_INPUT_OBJ obj, OAK_REWIND_POINT_OBJ rewindPoint) {
    if (obj == nullptr) {
        return eINVNULLARG;
    }
    return obj->rewindFcn(obj, rewindPoint);
}

OAK_RETCODE b_inputCreateRewindPoint(OAK_INPUT_OBJ obj, OAK_REWIND_POINT_OBJ *pRewindPoint) {
    if (obj == nullptr || pRewindPoint == nullptr) {
        return eINVNULLARG;
    }
    auto *point =
        static_cast<OAK_REWIND_POINT_OBJ>(OSL_GET_ZERO(sizeof(OAK_REWIND_POINT), obj->tag));
    if (point == nullptr) {
        return eNOMEMORY;
    }
    obj->createRewindPointFcn(obj, point);
    *pRewindPoint = point;
    return sOKAY;
}

void b_inputClose(OAK_INPUT_OBJ obj) {
    if (obj != nullptr) {
        OSL_FREE(obj, obj->tag);
    }
}
