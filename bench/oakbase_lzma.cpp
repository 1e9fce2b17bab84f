// See oakbase_lzma.h.
#include "oakbase_lzma.h"

#include <cstdlib>

#include "../source/base/lzma.h"

struct OakCompressor::State {
    OSL_MEMTAG tag;
    LZMA lzma;
    OAK_BUFFER stream;
};

namespace {
void must(OAK_RETCODE status) {
    if (status != sOKAY) {
        std::abort();
    }
}
} // namespace

OakCompressor::OakCompressor() : state_(new State{OSL_CREATE_TAG(), nullptr, {}}) {
    must(b_lzmaCreate(&state_->lzma));
    b_buffInit(&state_->stream, state_->tag);
}

OakCompressor::~OakCompressor() {
    b_lzmaDestroy(state_->lzma);
    OSL_FREE_TAG(state_->tag);
    delete state_;
}

size_t OakCompressor::compress(const void *object, size_t size) {
    OAK_BUFFER source;
    b_buffInit(&source, state_->tag);
    b_buffSetStatic(&source, object, size);
    b_buffTerm(&state_->stream);
    must(b_lzmaCompress(state_->lzma, &source, &state_->stream));
    return state_->stream.len;
}

size_t OakCompressor::decompress() {
    OAK_BUFFER object;
    b_buffInit(&object, state_->tag);
    must(b_lzmaDecompress(state_->lzma, &state_->stream, &object));
    const size_t size = object.len;
    b_buffTerm(&object);
    return size;
}
