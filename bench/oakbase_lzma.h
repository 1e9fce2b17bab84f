// Our LZMA coder behind names that do not meet those of liblzma, whose header
// has the same name as ours. Used by lzma_bench.cpp alone.
#ifndef OAKBASE_LZMA_H
#define OAKBASE_LZMA_H

#include <cstddef>

class OakCompressor {
  public:
    OakCompressor();
    ~OakCompressor();
    OakCompressor(const OakCompressor &) = delete;
    OakCompressor &operator=(const OakCompressor &) = delete;
    // The size of the stream; a new output buffer each time, set-up included.
    size_t compress(const void *object, size_t size);
    // Decodes what compress wrote last; the size of the object.
    size_t decompress();

  private:
    struct State;
    State *state_;
};

#endif
