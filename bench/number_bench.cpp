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

#include "convert.h"
#include "convert_scan.h"
#include "datetime.h"
#include "osltypes.h"
#include "uuid.h"
#include "value.h"

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

// ---- Text to number -------------------------------------------------------------------------

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

// ---- Number to text -------------------------------------------------------------------------

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

// ---- Conversions of values ------------------------------------------------------------------
//
// The same texts and numbers through the conversions, beside what they rest on above:
// a value from a text, a text in a plain buffer, and a text in memory of its own, which
// is measured first where no size is asked for.

void convert_text(benchmark::State &state, const std::vector<std::string> &texts, OAK_TYPE type) {
    over_texts(state, texts, [type](const std::string &text) {
        OAK_VALUE from, to;
        oak_valueInitWithStatusAndType(&from, vsOKAY, OAK_CHAR);
        from.vt.cv = text.c_str();
        from.len = text.size() + 1;
        benchmark::DoNotOptimize(
            oak_valueConvert(&to, &from, type, 0, OAK_YYYYMMDD, '-', OAK_HHMMSSFFFF, 0, nullptr));
        benchmark::DoNotOptimize(to);
    });
}
void text_to_int64(benchmark::State &state) {
    convert_text(state, integer_texts(), OAK_INT64);
}
void text_to_double(benchmark::State &state) {
    convert_text(state, price_texts(), OAK_DOUBLE);
}

OAK_VALUE value_of(int64_t number) {
    OAK_VALUE value;
    oak_valueInit(&value);
    oak_valueSetInt64(&value, number);
    return value;
}
OAK_VALUE value_of(double number) {
    OAK_VALUE value;
    oak_valueInit(&value);
    oak_valueSetDouble(&value, number);
    return value;
}

template <class Number>
void to_plain_buffer(benchmark::State &state, const std::vector<Number> &numbers) {
    over_numbers(state, numbers, [](char(&text)[64], Number number) {
        const OAK_VALUE from = value_of(number);
        size_t size = 0;
        benchmark::DoNotOptimize(b_convertOakValueToBuffer(&from, OAK_CHAR, OAK_YYYYMMDD, '-',
                                                           OAK_HHMMSSFFFF, 0, text, sizeof text,
                                                           nullptr, &size));
        benchmark::DoNotOptimize(size);
    });
}
void int64_to_buffer(benchmark::State &state) {
    to_plain_buffer(state, integers());
}
void double_to_buffer(benchmark::State &state) {
    to_plain_buffer(state, prices());
}

template <class Number>
void to_text_value(benchmark::State &state, const std::vector<Number> &numbers) {
    const OSL_MEMTAG tag = OSL_CREATE_TAG();
    const auto room = static_cast<size_t>(state.range(0));
    over_numbers(state, numbers, [tag, room](char(&)[64], Number number) {
        const OAK_VALUE from = value_of(number);
        OAK_VALUE to;
        benchmark::DoNotOptimize(oak_valueConvert(&to, &from, OAK_CHAR, room, OAK_YYYYMMDD, '-',
                                                  OAK_HHMMSSFFFF, 0, tag));
        OSL_FREE(const_cast<void *>(to.vt.pv), tag);
    });
    OSL_FREE_TAG(tag);
}
void int64_to_text(benchmark::State &state) {
    to_text_value(state, integers());
}
void double_to_text(benchmark::State &state) {
    to_text_value(state, prices());
}
void int64_to_double(benchmark::State &state) {
    over_numbers(state, integers(), [](char(&)[64], int64_t number) {
        const OAK_VALUE from = value_of(number);
        OAK_VALUE to;
        benchmark::DoNotOptimize(oak_valueConvert(&to, &from, OAK_DOUBLE, 0, OAK_YYYYMMDD, '-',
                                                  OAK_HHMMSSFFFF, 0, nullptr));
        benchmark::DoNotOptimize(to);
    });
}
// An array of 1,024 as one, in nanoseconds an element.
void int64_array_to_double(benchmark::State &state) {
    std::vector<double> out(kTexts);
    OAK_VALUE from = value_of(int64_t{0});
    from.elts = kTexts;
    from.vt.i64a = const_cast<int64_t *>(integers().data());
    size_t size = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            b_convertOakValueToBuffer(&from, OAK_DOUBLE, OAK_YYYYMMDD, '-', OAK_HHMMSSFFFF, 0,
                                      out.data(), out.size() * sizeof(double), nullptr, &size));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kTexts));
}

BENCHMARK(text_to_int64);
BENCHMARK(text_to_double);
BENCHMARK(int64_to_buffer);
BENCHMARK(double_to_buffer);
BENCHMARK(int64_to_text)->ArgName("room")->Arg(0)->Arg(24);
BENCHMARK(double_to_text)->ArgName("room")->Arg(0)->Arg(24);
BENCHMARK(int64_to_double);
BENCHMARK(int64_array_to_double);

// ---- Dates and times ------------------------------------------------------------------------

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

// ---- UUIDs and escape clauses ---------------------------------------------------------------

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
