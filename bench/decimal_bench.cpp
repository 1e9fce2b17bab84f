// Decimal arithmetic, parsing and printing against two peers: the numeric type of
// libpgtypes, which also holds a digit a byte, and Boost's cpp_dec_float with 32
// digits. Operands have 16 or 32 significant digits, come from one seeded list for
// all three, and lie in arrays, so that no call knows its operands beforehand.
#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <boost/multiprecision/cpp_dec_float.hpp>
extern "C" {
#include <pgtypes_numeric.h>
}

#include "bcd.h"

namespace {

constexpr size_t COUNT = 256; // a power of two

uint64_t next_random(uint64_t *state) {
    uint64_t z = (*state += 0x9E3779B97F4A7C15);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    return z ^ (z >> 31);
}

// Half of the digits before the point, half behind it.
std::string random_number(int digits, uint64_t *state) {
    std::string text = next_random(state) % 2 == 0 ? "" : "-";
    for (int i = 0; i < digits; ++i) {
        if (i == digits / 2)
            text += '.';
        const bool edge = i == 0 || i == digits - 1;
        text +=
            static_cast<char>(edge ? '1' + next_random(state) % 9 : '0' + next_random(state) % 10);
    }
    return text;
}

struct Texts {
    std::vector<std::string> left, right;
    explicit Texts(int digits) {
        uint64_t state = static_cast<uint64_t>(digits);
        for (size_t i = 0; i < COUNT; ++i) {
            left.push_back(random_number(digits, &state));
            right.push_back(random_number(digits, &state));
        }
    }
};

void require(bool condition) {
    if (!condition)
        abort();
}

// ---- This library ------------------------------------------------------------

struct Oak {
    using Number = OAK_BCD_T;
    static void parse(const std::string &text, Number *number) {
        require(oak_bcdFromString(text.c_str(), number) >= sOKAY);
    }
    static void print(const Number &number) {
        char text[80];
        require(oak_bcdToString(&number, OAK_FALSE, text, sizeof text, nullptr) == sOKAY);
        benchmark::DoNotOptimize(text[0]);
    }
    static constexpr auto MODE = OAK_BCD_ROUND_NEAREST_TIES_TO_EVEN;
    static void add(const Number &l, const Number &r, Number *res) {
        benchmark::DoNotOptimize(oak_bcdAdd(&l, &r, MODE, res));
    }
    static void sub(const Number &l, const Number &r, Number *res) {
        benchmark::DoNotOptimize(oak_bcdSub(&l, &r, MODE, res));
    }
    static void mult(const Number &l, const Number &r, Number *res) {
        benchmark::DoNotOptimize(oak_bcdMult(&l, &r, MODE, res));
    }
    static void div(const Number &l, const Number &r, Number *res) {
        benchmark::DoNotOptimize(oak_bcdDiv(&l, &r, MODE, res));
    }
    static void compare(const Number &l, const Number &r) {
        benchmark::DoNotOptimize(oak_bcdCompare(&l, &r));
    }
};

// ---- libpgtypes ----------------------------------------------------------------

class PgNumber {
  public:
    PgNumber() : number_(PGTYPESnumeric_new()) {}
    ~PgNumber() { PGTYPESnumeric_free(number_); }
    PgNumber(const PgNumber &) = delete;
    PgNumber &operator=(const PgNumber &) = delete;
    void parse(const std::string &text) {
        PGTYPESnumeric_free(number_);
        number_ = PGTYPESnumeric_from_asc(const_cast<char *>(text.c_str()), nullptr);
        require(number_ != nullptr);
    }
    numeric *get() const { return number_; }

  private:
    numeric *number_;
};

struct Pgtypes {
    using Number = PgNumber;
    static void parse(const std::string &text, Number *number) { number->parse(text); }
    static void print(const Number &number) {
        char *text = PGTYPESnumeric_to_asc(number.get(), -1);
        benchmark::DoNotOptimize(text[0]);
        PGTYPESchar_free(text);
    }
    static void add(const Number &l, const Number &r, Number *res) {
        require(PGTYPESnumeric_add(l.get(), r.get(), res->get()) == 0);
    }
    static void sub(const Number &l, const Number &r, Number *res) {
        require(PGTYPESnumeric_sub(l.get(), r.get(), res->get()) == 0);
    }
    static void mult(const Number &l, const Number &r, Number *res) {
        require(PGTYPESnumeric_mul(l.get(), r.get(), res->get()) == 0);
    }
    static void div(const Number &l, const Number &r, Number *res) {
        require(PGTYPESnumeric_div(l.get(), r.get(), res->get()) == 0);
    }
    static void compare(const Number &l, const Number &r) {
        benchmark::DoNotOptimize(PGTYPESnumeric_cmp(l.get(), r.get()));
    }
};

// ---- Boost ---------------------------------------------------------------------

struct Boost {
    using Number = boost::multiprecision::number<boost::multiprecision::cpp_dec_float<32>,
                                                 boost::multiprecision::et_off>;
    static void parse(const std::string &text, Number *number) { number->assign(text.c_str()); }
    static void print(const Number &number) {
        const std::string text = number.str();
        benchmark::DoNotOptimize(text[0]);
    }
    static void add(const Number &l, const Number &r, Number *res) {
        boost::multiprecision::add(*res, l, r);
        benchmark::DoNotOptimize(*res);
    }
    static void sub(const Number &l, const Number &r, Number *res) {
        boost::multiprecision::subtract(*res, l, r);
        benchmark::DoNotOptimize(*res);
    }
    static void mult(const Number &l, const Number &r, Number *res) {
        boost::multiprecision::multiply(*res, l, r);
        benchmark::DoNotOptimize(*res);
    }
    static void div(const Number &l, const Number &r, Number *res) {
        *res = l / r;
        benchmark::DoNotOptimize(*res);
    }
    static void compare(const Number &l, const Number &r) {
        benchmark::DoNotOptimize(l.compare(r));
    }
};

// ---- The loops -------------------------------------------------------------------

template <class Peer>
struct Operands {
    Texts texts;
    std::vector<typename Peer::Number> left, right;
    explicit Operands(int digits) : texts(digits), left(COUNT), right(COUNT) {
        for (size_t i = 0; i < COUNT; ++i) {
            Peer::parse(texts.left[i], &left[i]);
            Peer::parse(texts.right[i], &right[i]);
        }
    }
};

template <class Peer, auto operation>
void arithmetic(benchmark::State &state) {
    const Operands<Peer> operands(static_cast<int>(state.range(0)));
    typename Peer::Number result;
    size_t i = 0;
    for (auto _ : state) {
        operation(operands.left[i], operands.right[i], &result);
        benchmark::ClobberMemory();
        i = (i + 1) % COUNT;
    }
}

template <class Peer>
void order(benchmark::State &state) {
    const Operands<Peer> operands(static_cast<int>(state.range(0)));
    size_t i = 0;
    for (auto _ : state) {
        Peer::compare(operands.left[i], operands.right[i]);
        i = (i + 1) % COUNT;
    }
}

template <class Peer>
void parse(benchmark::State &state) {
    const Texts texts(static_cast<int>(state.range(0)));
    typename Peer::Number number;
    size_t i = 0;
    for (auto _ : state) {
        Peer::parse(texts.left[i], &number);
        benchmark::ClobberMemory();
        i = (i + 1) % COUNT;
    }
}

template <class Peer>
void print(benchmark::State &state) {
    const Operands<Peer> operands(static_cast<int>(state.range(0)));
    size_t i = 0;
    for (auto _ : state) {
        Peer::print(operands.left[i]);
        i = (i + 1) % COUNT;
    }
}

#define OF_EACH(body, ...)                                                                         \
    BENCHMARK_TEMPLATE(body, Oak __VA_OPT__(, Oak::) __VA_ARGS__)->Arg(16)->Arg(32);               \
    BENCHMARK_TEMPLATE(body, Pgtypes __VA_OPT__(, Pgtypes::) __VA_ARGS__)->Arg(16)->Arg(32);       \
    BENCHMARK_TEMPLATE(body, Boost __VA_OPT__(, Boost::) __VA_ARGS__)->Arg(16)->Arg(32)

OF_EACH(arithmetic, add);
OF_EACH(arithmetic, sub);
OF_EACH(arithmetic, mult);
OF_EACH(arithmetic, div);
OF_EACH(order);
OF_EACH(parse);
OF_EACH(print);

// What libpgtypes has no counterpart for.
void pack(benchmark::State &state) {
    const Operands<Oak> operands(static_cast<int>(state.range(0)));
    OAK_PACKED_BCD_T packed[OAK_PACKED_BCD_SIZE(32)];
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(oak_bcdPack(&operands.left[i], packed, 32, 16));
        benchmark::ClobberMemory();
        i = (i + 1) % COUNT;
    }
}
BENCHMARK(pack)->Arg(16)->Arg(32);

void unpack(benchmark::State &state) {
    const Operands<Oak> operands(static_cast<int>(state.range(0)));
    OAK_PACKED_BCD_T packed[OAK_PACKED_BCD_SIZE(32)];
    require(oak_bcdPack(&operands.left[0], packed, 32, 16) >= sOKAY);
    OAK_BCD_T number;
    for (auto _ : state) {
        benchmark::DoNotOptimize(oak_bcdUnpack(packed, &number, 32, 16));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(unpack)->Arg(16)->Arg(32);

} // namespace
