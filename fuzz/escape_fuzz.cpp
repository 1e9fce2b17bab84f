// Feeds the escape rewriter arbitrary SQL. The first byte chooses a buffer that may be
// too small. Traps when anything is written behind the buffer, when a text is longer than
// its input allows, and when the cut text is not the front of the whole one.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "convert_scan.h"

namespace {

void require(bool holds) {
    if (!holds)
        __builtin_trap();
}

struct Rewritten {
    OAK_RETCODE rc;
    std::string text;
};

Rewritten rewrite(const std::string &sql, size_t size) {
    std::vector<char> buffer(size); // the sanitizer sees its end
    char none;
    size_t length = SIZE_MAX;
    const OAK_RETCODE rc =
        b_convertEscapesToSQL(sql.c_str(), size == 0 ? &none : buffer.data(), size, &length);
    require(rc == sOKAY || (rc == eESCAPE && length == SIZE_MAX));
    if (rc != sOKAY)
        return {rc, ""};
    require(size == 0 ? length == 0 : length < size && buffer[length] == '\0');
    return {rc, std::string(buffer.data(), length)};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0)
        return 0;
    const std::string given(reinterpret_cast<const char *>(data + 1), size - 1);
    const std::string sql = given.c_str();
    const Rewritten whole = rewrite(sql, sql.size() + 2);
    require(whole.text.size() <= sql.size() + 1);
    const size_t small = data[0] % (sql.size() + 2);
    const Rewritten cut = rewrite(sql, small);
    require(cut.rc == whole.rc);
    require(cut.text == whole.text.substr(0, small == 0 ? 0 : small - 1));
    if (sql.find_first_of("{-'\"cC") == std::string::npos)
        require(whole.text == sql);
    return 0;
}
