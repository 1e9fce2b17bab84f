// The JSON pull reader against a DOM parse of the same text by RapidJSON.
//
// The text is a catalog of 200 tables, once indented as people write it and once
// without white space. Ours pulls every value and frees every pair; the peer
// builds a whole document, without touching it afterwards.
#include <cstdint>
#include <cstdio>
#include <string>

#include <benchmark/benchmark.h>
#include <rapidjson/document.h>

#include "json.h"
#include "lex.h"

namespace {

struct Layout {
    const char *newline;
    const char *indent;
    const char *colon;
};
constexpr Layout kIndented = {"\n", "    ", ": "};
constexpr Layout kCompact = {"", "", ":"};

// Writes one catalog; `layout` decides about white space alone.
class Catalog {
  public:
    explicit Catalog(const Layout &layout) : layout_(layout) {
        open("{", nullptr);
        open("{", "database");
        pair("id", "1");
        pair("name", "benchmark");
        open("[", "tables");
        for (int table = 0; table < 200; ++table) {
            add_table(table);
        }
        close("]");
        close("}");
        close("}");
    }
    const std::string &text() const { return text_; }

  private:
    void line(const char *name) {
        text_ += first_ ? "" : ",";
        text_ += layout_.newline;
        for (int i = 0; i < depth_; ++i) {
            text_ += layout_.indent;
        }
        first_ = false;
        if (name != nullptr) {
            text_ += std::string("\"") + name + "\"" + layout_.colon;
        }
    }
    void open(const char *bracket, const char *name) {
        line(name);
        text_ += bracket;
        depth_++;
        first_ = true;
    }
    void close(const char *bracket) {
        depth_--;
        first_ = true;
        line(nullptr);
        text_ += bracket;
        first_ = false;
    }
    void pair(const char *name, const std::string &value) {
        line(name);
        text_ += "\"" + value + "\"";
    }
    void literal(const char *name, const std::string &value) {
        line(name);
        text_ += value;
    }
    void add_column(int table, int column) {
        open("{", nullptr);
        pair("id", std::to_string(table * 100 + column));
        pair("name", "column_" + std::to_string(column));
        pair("type", column % 3 == 0 ? "varchar" : "integer");
        literal("length", std::to_string(column * 8));
        literal("nullable", column % 2 == 0 ? "true" : "false");
        literal("default", column % 4 == 0 ? "1.5" : "null");
        pair("description", "the " + std::to_string(column) + "th column, as it was declared");
        close("}");
    }
    void add_table(int table) {
        open("{", nullptr);
        pair("id", std::to_string(table));
        pair("name", "table_" + std::to_string(table));
        open("[", "cols");
        for (int column = 0; column < 12; ++column) {
            add_column(table, column);
        }
        close("]");
        close("}");
    }

    Layout layout_;
    std::string text_;
    int depth_ = 0;
    bool first_ = true;
};

const std::string &catalog(bool compact) {
    static const Catalog texts[] = {Catalog(kIndented), Catalog(kCompact)};
    return texts[compact ? 1 : 0].text();
}

void finish(benchmark::State &state, size_t size) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * size));
    state.SetLabel(std::to_string(size) + " bytes");
}

// Walks whatever is open to its end. The nesting of a catalog is shallow.
size_t pull_object(OAK_JSON_OBJ json);

size_t pull_array(OAK_JSON_OBJ json) {
    OAK_JSON_VAL value;
    size_t count = 0;
    while (b_jsonNextValue(json, nullptr, &value) == sOKAY && value.type != jvEND) {
        count += 1 + (value.type == jvOBJECT ? pull_object(json) : 0);
    }
    return count;
}

size_t pull_object(OAK_JSON_OBJ json) {
    OAK_JSON_PAIR pair;
    size_t count = 0;
    while (b_jsonNextPair(json, nullptr, &pair) == sOKAY && pair.value.type != jvEND) {
        const OAK_JSON_VALTYPE type = pair.value.type;
        b_jsonFreePair(json, &pair);
        count += 1 + (type == jvOBJECT  ? pull_object(json)
                      : type == jvARRAY ? pull_array(json)
                                        : 0);
    }
    return count;
}

void pull(benchmark::State &state) {
    const std::string &text = catalog(state.range(0) != 0);
    for ([[maybe_unused]] auto _ : state) {
        OAK_INPUT_OBJ input = nullptr;
        OAK_JSON_OBJ json = nullptr;
        if (b_inputCreateFromMemory(&input, reinterpret_cast<const uint8_t *>(text.data()),
                                    text.size(), OSL_TAG_PROCESS) != sOKAY ||
            b_jsonOpen(&json, input) != sOKAY || b_jsonNextValue(json, nullptr, nullptr) != sOKAY ||
            pull_object(json) != 2 + 2 + 200 * (4 + 12 * 8)) {
            state.SkipWithError("the catalog was not read");
        }
        b_jsonClose(json);
        b_inputClose(input);
    }
    finish(state, text.size());
}
BENCHMARK(pull)->Arg(0)->Arg(1)->ArgName("compact");

void tokens(benchmark::State &state) {
    const std::string &text = catalog(state.range(0) != 0);
    for ([[maybe_unused]] auto _ : state) {
        OSL_MEMTAG tag = OSL_CREATE_TAG();
        const B_LEX lex = b_lexOpen("json", OAK_TRUE, OAK_FALSE, tag);
        b_lexInit(lex, text.c_str(), nullptr, 1, tag);
        B_TOKEN token;
        while (b_lexGet(lex, &token) != tokEOS) {
            b_lexTokenFree(lex, &token);
        }
        b_lexClose(lex);
        OSL_FREE_TAG(tag);
    }
    finish(state, text.size());
}
BENCHMARK(tokens)->Arg(0)->Arg(1)->ArgName("compact");

void rapidjson_document(benchmark::State &state) {
    const std::string &text = catalog(state.range(0) != 0);
    for ([[maybe_unused]] auto _ : state) {
        rapidjson::Document document;
        document.Parse(text.data(), text.size());
        if (document.HasParseError()) {
            state.SkipWithError("the catalog was not read");
        }
        benchmark::DoNotOptimize(document);
    }
    finish(state, text.size());
}
BENCHMARK(rapidjson_document)->Arg(0)->Arg(1)->ArgName("compact");

} // namespace
