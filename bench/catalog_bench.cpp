// A catalog of 200 tables of 12 columns, from its text to a finalized schema,
// against RapidJSON making a document of the same text.
#include <benchmark/benchmark.h>
#include <rapidjson/document.h>

#include <string>

#include "schema.h"
#include "schema_load.h"

namespace {

constexpr int kTables = 200;
constexpr int kColumns = 12;

std::string column(int number) {
    static const char *const types[] = {
        R"({"data_type": "int32"})",
        R"({"data_type": "varchar", "length": 40})",
        R"({"data_type": "decimal", "length": 12, "scale": 2})",
        R"({"data_type": "date"})",
        R"({"data_type": "double"})",
        R"({"data_type": "int64"})",
    };
    const std::string id = std::to_string(number);
    return "{\"colid\": " + id + ", \"name\": \"column" + id + "\"" +
           (number == 0 ? ", \"not_null\": \"\"" : "") + ", \"type\": " + types[number % 6] + "}";
}

std::string table(int number) {
    const std::string id = std::to_string(number);
    const std::string drawer = std::to_string(2 * number + 3);
    const std::string key_drawer = std::to_string(2 * number + 4);
    std::string text = "{\"tabid\": " + id + ", \"dwrid\": " + drawer +
                       ", \"type\": \"standard\", \"name\": \"table" + id +
                       "\", \"nocols\": 12, \"nextcol\": 12, \"maxcols\": 12, \"nokeys\": 1,"
                       " \"nextkey\": 1, \"maxkeys\": 1, \"columns\": [";
    for (int i = 0; i < kColumns; ++i) {
        text += (i > 0 ? ",\n" : "\n") + column(i);
    }
    return text + "],\n\"keys\": [{\"keyid\": 0, \"dwrid\": " + key_drawer +
           ", \"name\": \"primary" + id +
           "\", \"type\": \"primary\", \"method\": \"btree\", \"nocols\": 1,"
           " \"cols\": [{\"colid\": \"0\", \"order\": \"asc\"}]}]}";
}

std::string drawers() {
    std::string text;
    for (int i = 1; i <= kTables; ++i) {
        const std::string id = std::to_string(i);
        text += std::string(i > 1 ? ",\n" : "\n") + "{\"dwrid\": " + std::to_string(2 * i + 3) +
                ", \"tabid\": \"" + id + "\", \"srcid\": " + id + ", \"type\": \"table\"},\n" +
                "{\"dwrid\": " + std::to_string(2 * i + 4) + ", \"tabid\": \"" + id +
                "\", \"srcid\": 0, \"type\": \"btree\"}";
    }
    return text;
}

const std::string &catalog() {
    static const std::string text = [] {
        const std::string limit = std::to_string(2 * kTables + 5);
        std::string all = "{\"database\": {\"catver\": 1, \"dbver\": 1, \"name\": \"bench\","
                          " \"maxdrawers\": " +
                          limit + ", \"nodrawers\": " + limit + ", \"nextdrawer\": " + limit +
                          ", \"maxtabs\": 201, \"notabs\": 201, \"nexttab\": 201,\n\"drawers\": [" +
                          drawers() + "],\n\"tables\": [";
        for (int i = 1; i <= kTables; ++i) {
            all += (i > 1 ? ",\n" : "\n") + table(i);
        }
        return all + "]}}\n";
    }();
    return text;
}

void report(benchmark::State &state) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * catalog().size()));
}

void Ours(benchmark::State &state) {
    const char *text = catalog().c_str();
    for (auto _ : state) {
        SCH_INFO schema = nullptr;
        if (sch_read_database_schema(&schema, nullptr, text, OAK_FALSE) != sOKAY) {
            state.SkipWithError("the catalog was refused");
            break;
        }
        sch_destroy(schema);
    }
    report(state);
}
BENCHMARK(Ours)->Name("catalog/ours");

void Peer(benchmark::State &state) {
    const char *text = catalog().c_str();
    for (auto _ : state) {
        rapidjson::Document document;
        document.Parse(text);
        if (document.HasParseError()) {
            state.SkipWithError("the catalog was refused");
            break;
        }
        benchmark::DoNotOptimize(document);
    }
    report(state);
}
BENCHMARK(Peer)->Name("catalog/rapidjson");

} // namespace
