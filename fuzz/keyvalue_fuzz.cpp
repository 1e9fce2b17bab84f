// Any bytes as a key-value string. Whatever is accepted can be written down again
// in its plainest form, every key and value quoted, and reads back as the same
// map; all getters answer every key with one of their statuses.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "keyvalue.h"

namespace {

void require(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}

using Pair = std::pair<std::string, std::vector<std::string>>;

struct Collector {
    B_KEYVALUE kv;
    std::vector<Pair> pairs;
};

OAK_RETCODE collect(void *ctx, const char *key) {
    auto *collector = static_cast<Collector *>(ctx);
    uint32_t count = 0;
    char **texts = nullptr;
    require(b_keyvalueGetValueList(collector->kv, key, &count, OSL_TAG_PROCESS, &texts) == sOKAY);
    require(count >= 1);
    std::vector<std::string> values;
    for (uint32_t i = 0; i < count; ++i) {
        values.push_back(texts[i]);
        OSL_FREE(texts[i], OSL_TAG_PROCESS);
    }
    OSL_FREE(texts, OSL_TAG_PROCESS);
    collector->pairs.emplace_back(key, values);
    return sOKAY;
}

bool is_one_of(OAK_RETCODE rc, std::initializer_list<OAK_RETCODE> expected) {
    return std::find(expected.begin(), expected.end(), rc) != expected.end();
}

void ask_everything(B_KEYVALUE kv, const Pair &pair) {
    const char *key = pair.first.c_str();
    const bool list = pair.second.size() > 1;
    char text[16];
    OAK_BOOL_T flag = OAK_FALSE;
    int16_t i16 = 0;
    int32_t i32 = 0;
    int64_t i64 = 0;
    uint16_t u16 = 0;
    uint32_t u32 = 0;
    uint64_t u64 = 0;
    const OAK_RETCODE got = b_keyvalueGetValue(kv, key, text, sizeof text);
    require(list ? got == eVALUEISLIST : is_one_of(got, {sOKAY, sTRUNCATE, sKVNOVALUE}));
    require(list || std::strlen(text) == std::min(pair.second[0].size(), sizeof text - 1));
    require(is_one_of(b_keyvalueGetValueBoolean(kv, key, &flag),
                      {sOKAY, sKVNOVALUE, eINVOPTIONVALUE, eVALUEISLIST}));
    const auto is_number_status = [](OAK_RETCODE rc) {
        return is_one_of(rc, {sOKAY, sKVNOVALUE, eRANGE, eVALUEISLIST});
    };
    require(is_number_status(b_keyvalueGetInt16Value(kv, key, &i16)));
    require(is_number_status(b_keyvalueGetIntValue(kv, key, &i32)));
    require(is_number_status(b_keyvalueGetInt64Value(kv, key, &i64)));
    require(is_number_status(b_keyvalueGetUInt16Value(kv, key, &u16)));
    require(is_number_status(b_keyvalueGetUIntValue(kv, key, &u32)));
    require(is_number_status(b_keyvalueGetUInt64Value(kv, key, &u64)));
}

std::string quoted(const std::string &text) {
    std::string out = "'";
    for (const char ch : text) {
        out += ch == '\'' ? "''" : ch == '\\' ? "\\\\" : std::string(1, ch);
    }
    return out + "'";
}

std::string written(const std::vector<Pair> &pairs) {
    std::string text;
    for (const auto &[key, values] : pairs) {
        text += quoted(key) + "=";
        for (size_t i = 0; i < values.size(); ++i) {
            text += (i != 0 ? "," : "") + quoted(values[i]);
        }
        text += ";";
    }
    return text;
}

// The map of an accepted text; false when it is refused.
bool parse(const std::string &text, OAK_BOOL_T use_case, std::vector<Pair> *pairs) {
    B_KEYVALUE kv = nullptr;
    const OAK_RETCODE rc = b_keyvalueCreate(text.c_str(), use_case, &kv);
    require(is_one_of(rc, {sOKAY, eINVKEYVALUE, eNOMEMORY}));
    require((kv != nullptr) == (rc == sOKAY));
    if (rc != sOKAY) {
        return false;
    }
    Collector collector = {kv, {}};
    require(b_keyvalueIterate(kv, &collector, collect) == sOKAY);
    for (const Pair &pair : collector.pairs) {
        ask_everything(kv, pair);
    }
    require(b_keyvalueDestroy(kv) == sOKAY);
    *pairs = collector.pairs;
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    for (const OAK_BOOL_T use_case : {OAK_FALSE, OAK_TRUE}) {
        std::vector<Pair> pairs;
        if (parse(text, use_case, &pairs)) {
            std::vector<Pair> again;
            require(parse(written(pairs), use_case, &again));
            require(pairs == again);
        }
    }
    return 0;
}
