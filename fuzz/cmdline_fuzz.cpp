// Command lines of any bytes. The low bits of the first byte, a letter in the
// seeds, choose the table and the standard options; the rest are the entries,
// one a line. What is accepted must be delivered, in the program's own pass, as
// rows of the table with values that their kinds allow and that lie in the
// entries.
//
// The framework prints; run the fuzzer with -close_fd_mask=3.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "oakcmdlineapi.h"

namespace {

const OAK_CMDLINE_OPT_A kMixed[] = {
    {"a", nullptr, nullptr, "A flag"},
    {"b", "bold", nullptr, "A flag with a long name"},
    {"s", "size", "i=N", "A number"},
    {"", "name", "s=text", "A text"},
    {"c", "char", "c=letter", "A letter"},
    {"z", "odd", "z=thing", "A kind that there is not"},
    {"f", nullptr, "#=input", "An argument that must appear"},
    {"g", nullptr, "?=output", "An argument that may appear"},
    {"r", nullptr, "*=rest", "All other arguments"},
    {nullptr, nullptr, nullptr, nullptr},
};

const OAK_CMDLINE_OPT_A kFlags[] = {
    {"h", "help", nullptr, "Taken by the standard option"},
    {"q", "quiet", "s=how", "Taken by the standard option when there is one"},
    {"=", "", "s=value", "Names at the edge"},
    {"k", "key", "i=number", "Taken by the standard option when there is one"},
    {nullptr, nullptr, nullptr, nullptr},
};

void check(bool holds) {
    if (!holds) {
        __builtin_trap();
    }
}

std::vector<std::string> entries_of(const uint8_t *data, size_t size) {
    std::vector<std::string> entries(1);
    for (size_t i = 0; i < size; ++i) {
        if (data[i] == '\n') {
            entries.emplace_back();
        } else if (data[i] != '\0') { // ends a text of C
            entries.back() += static_cast<char>(data[i]);
        }
    }
    return entries;
}

bool lies_in(const char *text, const std::vector<const char *> &argv) {
    for (const char *entry : argv) {
        if (text >= entry && text <= entry + std::strlen(entry)) {
            return true;
        }
    }
    return false;
}

bool is_allowed(const OAK_CMDLINE_OPT_A &row, const char *value) {
    const char kind = row.arg == nullptr ? '\0' : row.arg[0];
    if (kind == '\0') {
        return value == nullptr;
    }
    if (value == nullptr || kind == 'z') {
        return false;
    }
    if (kind == 'i') {
        const char *digits = value + (value[0] == '-' ? 1 : 0);
        return std::strspn(digits, "0123456789") == std::strlen(digits);
    }
    return kind != 'c' || std::strlen(value) == 1;
}

const OAK_CMDLINE_OPT_A *row_of(const OAK_CMDLINE_OPT_A *table, const char *name) {
    for (; table->optShort != nullptr; ++table) {
        if (name == (table->optLong != nullptr ? table->optLong : table->optShort)) {
            return table;
        }
    }
    return nullptr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) {
        return 0;
    }
    const uint8_t choice = *data;
    const std::vector<std::string> entries = entries_of(data + 1, size - 1);
    std::vector<const char *> argv = {"tool"};
    for (const std::string &entry : entries) {
        argv.push_back(entry.c_str());
    }
    const OAK_CMDLINE_OPT_A *table = (choice & 1) != 0 ? kFlags : kMixed;
    const OAK_CMD_DEFAULTS defaults = {static_cast<uint8_t>(choice & 2),
                                       static_cast<uint8_t>(choice & 4)};
    OAK_CMDLINE_A cmd;
    OAK_CMDLINE_STATUS_A status;
    const OAK_RETCODE rc = oak_cmdlineInitEx(
        &cmd, (choice & 8) != 0 ? "banner\n" : nullptr, static_cast<int32_t>(argv.size()),
        argv.data(), nullptr, table, (choice & 16) != 0 ? &defaults : nullptr, &status);
    check(rc == sOKAY || rc == sCMD_USAGE || rc == sCMD_VERSION || rc == eBASE_COMMAND);
    check(status.enc_key == nullptr || lies_in(status.enc_key, argv));
    check(status.docroot == nullptr || lies_in(status.docroot, argv));
    if (rc != sOKAY) {
        return 0;
    }
    OAK_CMDLINE_A again = cmd;
    const char *arg = nullptr;
    size_t delivered = 0;
    while (const char *name = oak_cmdlineNextLongOption(&cmd, &arg)) {
        const OAK_CMDLINE_OPT_A *row = row_of(table, name);
        check(row != nullptr && is_allowed(*row, arg));
        check(arg == nullptr || lies_in(arg, argv));
        const char *same = nullptr;
        check(oak_cmdlineNextShortOption(&again, &same) == row->optShort[0] && same == arg);
        check(++delivered <= size);
    }
    check(arg == nullptr);
    check(oak_cmdlineNextShortOption(&again, nullptr) == '\0');
    return 0;
}
