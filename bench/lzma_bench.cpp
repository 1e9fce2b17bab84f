// LZMA of row-like objects of 4 and 16 KiB, set-up included, against liblzma's
// raw LZMA1 with the same window and properties in its fast mode.
#include "/usr/include/lzma.h" // liblzma; ours has the same name
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <vector>

#include "oakbase_lzma.h"

namespace {

std::string rows(size_t size) {
    std::string text;
    for (int i = 0; text.size() < size; ++i) {
        char row[100];
        std::snprintf(row, sizeof row, "%08d|customer-%05d|%s street %d|%d.%02d;", 1000 + i,
                      i * 7919 % 20000, i % 2 == 0 ? "Oak" : "Birch", i * 37 % 300, i * 101 % 5000,
                      i * 13 % 100);
        text += row;
    }
    text.resize(size);
    return text;
}

class Filters {
  public:
    Filters() {
        lzma_lzma_preset(&options_, 0);
        options_.dict_size = 16384;
        options_.lc = 3;
        options_.lp = 0;
        options_.pb = 2;
        options_.mode = LZMA_MODE_FAST;
    }
    const lzma_filter *get() const { return filters_; }

  private:
    lzma_options_lzma options_{};
    lzma_filter filters_[2] = {{LZMA_FILTER_LZMA1, &options_}, {LZMA_VLI_UNKNOWN, nullptr}};
};

std::vector<uint8_t> peer_stream(const std::string &object) {
    static const Filters filters;
    std::vector<uint8_t> stream(object.size() * 2 + 1000);
    size_t used = 0;
    if (lzma_raw_buffer_encode(filters.get(), nullptr,
                               reinterpret_cast<const uint8_t *>(object.data()), object.size(),
                               stream.data(), &used, stream.size()) != LZMA_OK) {
        std::abort();
    }
    stream.resize(used);
    return stream;
}

void report(benchmark::State &state, size_t object, size_t stream) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(object));
    state.counters["stream"] = static_cast<double>(stream);
}

void CompressOurs(benchmark::State &state) {
    const std::string object = rows(static_cast<size_t>(state.range(0)));
    OakCompressor coder;
    size_t stream = 0;
    for (auto _ : state) {
        stream = coder.compress(object.data(), object.size());
    }
    report(state, object.size(), stream);
}
BENCHMARK(CompressOurs)->Arg(4096)->Arg(16384)->Name("lzma/compress/ours");

void CompressPeer(benchmark::State &state) {
    const std::string object = rows(static_cast<size_t>(state.range(0)));
    const Filters filters;
    std::vector<uint8_t> stream(object.size() * 2 + 1000);
    size_t used = 0;
    for (auto _ : state) {
        used = 0;
        if (lzma_raw_buffer_encode(filters.get(), nullptr,
                                   reinterpret_cast<const uint8_t *>(object.data()), object.size(),
                                   stream.data(), &used, stream.size()) != LZMA_OK) {
            state.SkipWithError("liblzma failed");
        }
    }
    report(state, object.size(), used);
}
BENCHMARK(CompressPeer)->Arg(4096)->Arg(16384)->Name("lzma/compress/liblzma");

void DecompressOurs(benchmark::State &state) {
    const std::string object = rows(static_cast<size_t>(state.range(0)));
    OakCompressor coder;
    const size_t stream = coder.compress(object.data(), object.size());
    for (auto _ : state) {
        if (coder.decompress() != object.size()) {
            state.SkipWithError("wrong size");
        }
    }
    report(state, object.size(), stream);
}
BENCHMARK(DecompressOurs)->Arg(4096)->Arg(16384)->Name("lzma/decompress/ours");

void DecompressPeer(benchmark::State &state) {
    const std::string object = rows(static_cast<size_t>(state.range(0)));
    const std::vector<uint8_t> stream = peer_stream(object);
    const Filters filters;
    std::vector<uint8_t> back(object.size());
    for (auto _ : state) {
        size_t in = 0, out = 0;
        if (lzma_raw_buffer_decode(filters.get(), nullptr, stream.data(), &in, stream.size(),
                                   back.data(), &out, back.size()) != LZMA_OK &&
            out != object.size()) {
            state.SkipWithError("liblzma failed");
        }
    }
    report(state, object.size(), stream.size());
}
BENCHMARK(DecompressPeer)->Arg(4096)->Arg(16384)->Name("lzma/decompress/liblzma");

} // namespace
