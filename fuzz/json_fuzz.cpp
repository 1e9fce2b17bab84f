// Any bytes as a text for the JSON reader: the walk ends with the top value or
// with eSYNTAX after no more steps than the text has bytes, strings are no longer
// than the text, and a reader that is asked to keep nothing gives the same
// statuses and types.
#include <cstdint>
#include <cstring>
#include <vector>

#include "json.h"

namespace {

void require(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}

struct Step {
    OAK_RETCODE status;
    OAK_JSON_VALTYPE type;
    bool operator==(const Step &) const = default;
};

// Reads one pair, with its texts or without.
Step next_pair(OAK_JSON_OBJ json, bool keep, size_t size) {
    OAK_JSON_PAIR pair;
    OAK_JSON_VALTYPE type = jvNOVAL;
    const OAK_RETCODE rc = b_jsonNextPair(json, &type, keep ? &pair : nullptr);
    if (keep) {
        require(rc != sOKAY || pair.value.type == type);
        require(rc != sOKAY || (pair.name != nullptr) == (type != jvEND));
        require(pair.name == nullptr || std::strlen(pair.name) <= size);
        require(type != jvSTRING || std::strlen(pair.value.v.str) <= size);
        b_jsonFreePair(json, &pair);
    }
    return {rc, type};
}

Step next_value(OAK_JSON_OBJ json, bool keep, size_t size) {
    OAK_JSON_VAL value;
    OAK_JSON_VALTYPE type = jvNOVAL;
    const OAK_RETCODE rc = b_jsonNextValue(json, &type, keep ? &value : nullptr);
    require(!keep || type != jvSTRING || std::strlen(value.v.str) <= size);
    return {rc, type};
}

std::vector<Step> walk(const uint8_t *data, size_t size, bool keep) {
    OAK_INPUT_OBJ input = nullptr;
    require(b_inputCreateFromMemory(&input, data, size, OSL_TAG_PROCESS) == sOKAY);
    OAK_JSON_OBJ json = nullptr;
    require(b_jsonOpen(&json, input) == sOKAY);
    std::vector<Step> steps;
    std::vector<OAK_JSON_VALTYPE> open;
    do {
        const bool in_object = !open.empty() && open.back() == jvOBJECT;
        steps.push_back(in_object ? next_pair(json, keep, size) : next_value(json, keep, size));
        require(steps.size() <= size + 1);
        const auto [status, type] = steps.back();
        require(status == sOKAY || (status == eSYNTAX && type == jvNOVAL));
        if (type == jvOBJECT || type == jvARRAY) {
            open.push_back(type);
        } else if (type == jvEND) {
            require(!open.empty());
            open.pop_back();
        }
    } while (steps.back().status == sOKAY && !open.empty());
    b_jsonClose(json);
    b_inputClose(input);
    return steps;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    require(walk(data, size, true) == walk(data, size, false));
    return 0;
}
