// Numbers, dates and UUIDs between text and memory. What is measured stands beside peers
// that do the nearest like work: the classifying scan and the platform's parsers against
// std::from_chars and strtod, printing against std::to_chars and snprintf. All run over
// the same fixed texts, and a peer reads or writes the same bytes.
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "convert_scan.h"
#include "datetime.h"
#include "osltypes.h"
#include "uuid.h"

namespace {

constexpr size_t kTexts = 1024; // a power of two

uint64_t next_random(uint64_t &state) {
    uint64_t z = (state += 0x9e3779b97f4a7c15u);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return z ^ (z >> 31);
}

// Integers of 1 to 19 digits, one in four negative.
const std::vector<int64_t> &integers() {
    static const std::vector<int64_t> values = [] {
        std::vector<int64_t> result;
        uint64_t state = 1;
        for (size_t i = 0; i < kTexts; ++i) {
            uint64_t bound = 10;
            for (size_t digits = next_random(state) % 18; digits > 0; --digits)
                bound *= 10;
            const auto value = static_cast<int64_t>(next_random(state) % bound);
            result.push_back(next_random(state) % 4 == 0 ? -value : value);
        }
        return result;
    }();
    return values;
}

// Prices: up to six digits before the point and two behind.
const std::vector<double> &prices() {
    static const std::vector<double> values = [] {
        std::vector<double> result;
        uint64_t state = 2;
        for (size_t i = 0; i < kTexts; ++i)
            result.push_back(static_cast<double>(next_random(state) % 100000000) / 100);
        return result;
    }();
    return values;
}

std::vector<std::string> texts_of(const std::vector<int64_t> &values) {
    std::vector<std::string> texts;
    for (const int64_t value : values)
        texts.push_back(std::to_string(value));
    return texts;
}

std::vector<std::string> texts_of(const std::vector<double> &values, const char *format) {
    std::vector<std::string> texts;
    for (const double value : values) {
        char text[64];
        std::snprintf(text, sizeof text, format, value);
        texts.push_back(text);
    }
    return texts;
}

const std::vector<std::string> &integer_texts() {
    static const std::vector<std::string> texts = texts_of(integers());
    return texts;
}
const std::vector<std::string> &price_texts() {
    static const std::vector<std::string> texts = texts_of(prices(), "%.2f");
    return texts;
}
const std::vector<std::string> &scientific_texts() {
    static const std::vector<std::string> texts = texts_of(prices(), "%.15e");
    return texts;
}

// Runs `each` over the texts, one an iteration.
template <class Each>
void over_texts(benchmark::State &state, const std::vector<std::string> &texts, Each each) {
    size_t i = 0;
    size_t bytes = 0;
    for (auto _ : state) {
        const std::string &text = texts[i++ % kTexts];
        bytes += text.size();
        each(text);
    }
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
}

// ---- Text to number -------------------------------------------------------------------

void classify(benchmark::State &state, const std::vector<std::string> &texts) {
    over_texts(state, texts, [](const std::string &text) {
        int16_t sign, expt;
        uint16_t mag, scale;
        benchmark::DoNotOptimize(convert_parseNumber(text.c_str(), &sign, &mag, &scale, &expt));
        benchmark::DoNotOptimize(mag);
    });
}

template <class Number>
void from_chars(benchmark::State &state, const std::vector<std::string> &texts) {
    over_texts(state, texts, [](const std::string &text) {
        Number value{};
        benchmark::DoNotOptimize(std::from_chars(text.data(), text.data() + text.size(), value).ec);
        benchmark::DoNotOptimize(value);
    });
}

void from_chars_int64(benchmark::State &state, const std::vector<std::string> &texts) {
    from_chars<int64_t>(state, texts);
}
void from_chars_double(benchmark::State &state, const std::vector<std::string> &texts) {
    from_chars<double>(state, texts);
}

void c_strtod(benchmark::State &state, const std::vector<std::string> &texts) {
    over_texts(state, texts, [](const std::string &text) {
        benchmark::DoNotOptimize(std::strtod(text.c_str(), nullptr));
    });
}

void platform_atoi64(benchmark::State &state, const std::vector<std::string> &texts) {
    over_texts(state, texts, [](const std::string &text) {
        int64_t value = 0;
        benchmark::DoNotOptimize(osl_atoi64(text.c_str(), &value));
        benchmark::DoNotOptimize(value);
    });
}

void platform_strtod(benchmark::State &state, const std::vector<std::string> &texts) {
    over_texts(state, texts, [](const std::string &text) {
        double value = 0;
        benchmark::DoNotOptimize(osl_strtod(text.c_str(), &value));
        benchmark::DoNotOptimize(value);
    });
}

BENCHMARK_CAPTURE(classify, integers, integer_texts());
BENCHMARK_CAPTURE(platform_atoi64, integers, integer_texts());
BENCHMARK_CAPTURE(from_chars_int64, integers, integer_texts());
BENCHMARK_CAPTURE(classify, prices, price_texts());
BENCHMARK_CAPTURE(platform_strtod, prices, price_texts());
BENCHMARK_CAPTURE(from_chars_double, prices, price_texts());
BENCHMARK_CAPTURE(c_strtod, prices, price_texts());
BENCHMARK_CAPTURE(classify, scientific, scientific_texts());
BENCHMARK_CAPTURE(platform_strtod, scientific, scientific_texts());
BENCHMARK_CAPTURE(from_chars_double, scientific, scientific_texts());
BENCHMARK_CAPTURE(c_strtod, scientific, scientific_texts());

// ---- Number to text -------------------------------------------------------------------

template <class Number, class Each>
void over_numbers(benchmark::State &state, const std::vector<Number> &numbers, Each each) {
    char text[64];
    size_t i = 0;
    for (auto _ : state) {
        each(text, numbers[i++ % kTexts]);
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
    }
}

void integer_osl_snprintf(benchmark::State &state) {
    over_numbers(state, integers(), [](char(&text)[64], int64_t value) {
        osl_snprintf(text, sizeof text, "%ld", static_cast<long>(value));
    });
}
void integer_snprintf(benchmark::State &state) {
    over_numbers(state, integers(), [](char(&text)[64], int64_t value) {
        std::snprintf(text, sizeof text, "%ld", static_cast<long>(value));
    });
}
void integer_to_chars(benchmark::State &state) {
    over_numbers(state, integers(), [](char(&text)[64], int64_t value) {
        *std::to_chars(text, text + sizeof text - 1, value).ptr = '\0';
    });
}
void double_osl_snprintf(benchmark::State &state) {
    over_numbers(state, prices(), [](char(&text)[64], double value) {
        osl_snprintf(text, sizeof text, "%.15G", value);
    });
}
void double_snprintf(benchmark::State &state) {
    over_numbers(state, prices(), [](char(&text)[64], double value) {
        std::snprintf(text, sizeof text, "%.15G", value);
    });
}
void double_to_chars(benchmark::State &state) {
    over_numbers(state, prices(), [](char(&text)[64], double value) {
        *std::to_chars(text, text + sizeof text - 1, value, std::chars_format::general, 15).ptr =
            '\0';
    });
}

BENCHMARK(integer_osl_snprintf);
BENCHMARK(integer_snprintf);
BENCHMARK(integer_to_chars);
BENCHMARK(double_osl_snprintf);
BENCHMARK(double_snprintf);
BENCHMARK(double_to_chars);

// ---- Dates and times --------------------------------------------------------------------

// Timestamps of a hundred years.
const std::vector<OAK_PACKED_TIMESTAMP_T> &timestamps() {
    static const std::vector<OAK_PACKED_TIMESTAMP_T> values = [] {
        std::vector<OAK_PACKED_TIMESTAMP_T> result;
        uint64_t state = 3;
        for (size_t i = 0; i < kTexts; ++i)
            result.push_back({static_cast<uint32_t>(719163 + next_random(state) % 36525),
                              static_cast<uint32_t>(next_random(state) % 864000000)});
        return result;
    }();
    return values;
}

const std::vector<std::string> &timestamp_texts() {
    static const std::vector<std::string> texts = [] {
        std::vector<std::string> result;
        for (const OAK_PACKED_TIMESTAMP_T &value : timestamps()) {
            char text[OAK_TIMESTAMP_TEXT_SIZE];
            if (oak_timestampToString(value, OAK_YYYYMMDD, '-', OAK_HHMMSSFFFF, text, sizeof text,
                                      nullptr) == sOKAY)
                result.push_back(text);
        }
        return result;
    }();
    return texts;
}

void timestamp_unpack(benchmark::State &state) {
    size_t i = 0;
    for (auto _ : state) {
        OAK_TIMESTAMP_T fields;
        benchmark::DoNotOptimize(oak_timestampUnpack(timestamps()[i++ % kTexts], &fields));
        benchmark::DoNotOptimize(fields);
    }
}
void timestamp_gmtime(benchmark::State &state) {
    size_t i = 0;
    for (auto _ : state) {
        const OAK_PACKED_TIMESTAMP_T &value = timestamps()[i++ % kTexts];
        const time_t seconds = (int64_t{value.date} - 719163) * 86400 + value.time / 10000;
        struct tm fields;
        benchmark::DoNotOptimize(gmtime_r(&seconds, &fields));
        benchmark::DoNotOptimize(fields);
    }
}
void timestamp_to_text(benchmark::State &state) {
    over_numbers(state, timestamps(), [](char(&text)[64], OAK_PACKED_TIMESTAMP_T value) {
        benchmark::DoNotOptimize(oak_timestampToString(value, OAK_YYYYMMDD, '-', OAK_HHMMSSFFFF,
                                                       text, sizeof text, nullptr));
    });
}
// Printing alone, from fields that are there.
void timestamp_snprintf(benchmark::State &state) {
    over_numbers(state, timestamps(), [](char(&text)[64], OAK_PACKED_TIMESTAMP_T value) {
        std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u.%04u", value.date % 9999,
                      value.date % 12, value.date % 28, value.time % 24, value.time % 60,
                      value.time % 59, value.time % 10000);
    });
}
void timestamp_from_text(benchmark::State &state) {
    over_texts(state, timestamp_texts(), [](const std::string &text) {
        OAK_PACKED_TIMESTAMP_T value;
        benchmark::DoNotOptimize(oak_timestampFromString(text.c_str(), OAK_YYYYMMDD, &value));
        benchmark::DoNotOptimize(value);
    });
}
// The fields alone, without a day number.
void timestamp_strptime(benchmark::State &state) {
    over_texts(state, timestamp_texts(), [](const std::string &text) {
        struct tm fields;
        benchmark::DoNotOptimize(strptime(text.c_str(), "%Y-%m-%d %H:%M:%S", &fields));
        benchmark::DoNotOptimize(fields);
    });
}

BENCHMARK(timestamp_unpack);
BENCHMARK(timestamp_gmtime);
BENCHMARK(timestamp_to_text);
BENCHMARK(timestamp_snprintf);
BENCHMARK(timestamp_from_text);
BENCHMARK(timestamp_strptime);

// ---- UUIDs and escape clauses -------------------------------------------------------------

void uuid_create(benchmark::State &state) {
    for (auto _ : state) {
        OAK_UUID_T uuid;
        oak_uuidCreate(&uuid);
        benchmark::DoNotOptimize(uuid);
    }
}
void uuid_to_text(benchmark::State &state) {
    OAK_UUID_T uuid;
    oak_uuidCreate(&uuid);
    char text[OAK_UUID_TEXT_SIZE];
    for (auto _ : state) {
        benchmark::DoNotOptimize(oak_uuidToString(&uuid, text, sizeof text, OAK_FALSE));
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
    }
}
void uuid_snprintf(benchmark::State &state) {
    OAK_UUID_T uuid;
    oak_uuidCreate(&uuid);
    char text[OAK_UUID_TEXT_SIZE];
    for (auto _ : state) {
        std::snprintf(text, sizeof text,
                      "%8.8x-%4.4x-%4.4x-%2.2x%2.2x-%2.2x%2.2x%2.2x%2.2x%2.2x%2.2x", uuid.time_low,
                      uuid.time_mid, uuid.time_high_and_version, uuid.clock_seq_high_and_reserved,
                      uuid.clock_seq_low, uuid.node[0], uuid.node[1], uuid.node[2], uuid.node[3],
                      uuid.node[4], uuid.node[5]);
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
    }
}
void uuid_from_text(benchmark::State &state) {
    for (auto _ : state) {
        OAK_UUID_T uuid;
        benchmark::DoNotOptimize(oak_uuidFromString("00112233-4455-6677-8899-aabbccddeeff", &uuid));
        benchmark::DoNotOptimize(uuid);
    }
}
void escapes_to_sql(benchmark::State &state) {
    const std::string sql = "select name, {fn ucase(city)} from customer, region where "
                            "since > {d '2024-02-29'} and name <> 'O''Hara' order by name";
    std::vector<char> out(sql.size() + 2);
    for (auto _ : state) {
        size_t length = 0;
        benchmark::DoNotOptimize(
            b_convertEscapesToSQL(sql.c_str(), out.data(), out.size(), &length));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * sql.size()));
}

BENCHMARK(uuid_create);
BENCHMARK(uuid_to_text);
BENCHMARK(uuid_snprintf);
BENCHMARK(uuid_from_text);
BENCHMARK(escapes_to_sql);

} // namespace
