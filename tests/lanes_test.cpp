// Every term of the lane vocabulary on every target and vector size against its scalar meaning: exhaustively over pairs of
// bytes and over single 16-bit lanes, then over seeded random bytes that favour the extremes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>

#include "built_targets.h"
#include "core/targets.h"
#include "harness/workspace.h"
#include "lanes/lane_terms.h"

#define DECLARE(target)                         \
    namespace zivcolor::target {                \
    extern const harness::LaneTerms lane_terms; \
    }
ZIVCOLOR_BUILT_TARGETS(DECLARE)
#undef DECLARE

namespace {

using Bytes = std::vector<uint8_t>;
// N: bytes of a vector; in: 4 N bytes; out: 4 N bytes, cleared.
using Meaning = std::function<void(int N, const uint8_t* in, uint8_t* out)>;

int s16(const uint8_t* p, int lane) {
    int16_t v;
    std::memcpy(&v, p + 2 * lane, 2);
    return v;
}
void put16(uint8_t* p, int lane, int64_t value) {
    const auto v = static_cast<uint16_t>(value & 0xFFFF);
    std::memcpy(p + 2 * lane, &v, 2);
}
uint8_t clamp8(int64_t v) { return static_cast<uint8_t>(std::clamp<int64_t>(v, 0, 255)); }

Meaning on_bytes(int (*f)(int a, int b)) {
    return [f](int N, const uint8_t* in, uint8_t* out) {
        for (int i = 0; i < N; i++) out[i] = static_cast<uint8_t>(f(in[i], in[N + i]));
    };
}
Meaning on_s16(int64_t (*f)(int64_t a, int64_t b)) {
    return [f](int N, const uint8_t* in, uint8_t* out) {
        for (int i = 0; i < N / 2; i++) put16(out, i, f(s16(in, i), s16(in + N, i)));
    };
}
// Byte n of the output, for `count` vectors of output, is byte from(N, n) of the input.
Meaning moves(int count, int (*from)(int N, int n)) {
    return [=](int N, const uint8_t* in, uint8_t* out) {
        for (int n = 0; n < count * N; n++) out[n] = in[from(N, n)];
    };
}

int term_in_range(const uint8_t* p, int lane) {
    const int size = std::min<int>(p[2 * lane], 254);
    return p[2 * lane + 1] & 1 ? -size : size;
}

const std::map<std::string, Meaning>& meanings() {
    static const std::map<std::string, Meaning> table = {
        {"load_widened", [](int N, const uint8_t* in, uint8_t* out) { for (int i = 0; i < N / 2; i++) put16(out, i, in[i]); }},
        {"store_low_bytes", [](int N, const uint8_t* in, uint8_t* out) { for (int i = 0; i < N / 2; i++) out[i] = in[2 * i]; }},
        {"load2", moves(2, [](int N, int n) { return 2 * (n % N) + n / N; })},
        {"load3", moves(3, [](int N, int n) { return 3 * (n % N) + n / N; })},
        {"load4", moves(4, [](int N, int n) { return 4 * (n % N) + n / N; })},
        {"store2", moves(2, [](int N, int n) { return n % 2 * N + n / 2; })},
        {"store3", moves(3, [](int N, int n) { return n % 3 * N + n / 3; })},
        {"store4", moves(4, [](int N, int n) { return n % 4 * N + n / 4; })},
        {"add_saturating", on_bytes([](int a, int b) { return std::min(a + b, 255); })},
        {"subtract_saturating", on_bytes([](int a, int b) { return std::max(a - b, 0); })},
        {"average_up", on_bytes([](int a, int b) { return (a + b + 1) >> 1; })},
        {"lane_min_u8", on_bytes([](int a, int b) { return std::min(a, b); })},
        {"lane_max_u8", on_bytes([](int a, int b) { return std::max(a, b); })},
        {"lane_min_s16", on_s16([](int64_t a, int64_t b) { return std::min(a, b); })},
        {"lane_max_s16", on_s16([](int64_t a, int64_t b) { return std::max(a, b); })},
        {"even_bytes", [](int N, const uint8_t* in, uint8_t* out) { for (int i = 0; i < N / 2; i++) put16(out, i, in[2 * i]); }},
        {"odd_bytes", [](int N, const uint8_t* in, uint8_t* out) { for (int i = 0; i < N / 2; i++) put16(out, i, in[2 * i + 1]); }},
        {"merge_bytes", moves(1, [](int N, int n) { return n % 2 ? N + n - 1 : n; })},
        {"double_bytes", moves(1, [](int, int n) { return n / 2 * 2; })},
        {"even_lanes", moves(1, [](int, int n) { return 2 * n; })},
        {"odd_lanes", moves(1, [](int, int n) { return 2 * n + 1; })},
        {"interleave_low", moves(1, [](int N, int n) { return n / 2 + n % 2 * N; })},
        {"interleave_high", moves(1, [](int N, int n) { return N / 2 + n / 2 + n % 2 * N; })},
        {"narrow_saturating",
         [](int N, const uint8_t* in, uint8_t* out) { for (int i = 0; i < N; i++) out[i] = clamp8(s16(in, i)); }},
        {"widen_add_narrow", on_bytes([](int a, int b) { return std::min(a + b, 255); })},
        {"multiply_round_high", on_s16([](int64_t a, int64_t b) { return (a * (b | 1) + 16384) >> 15; })},
        {"multiply_high", on_s16([](int64_t a, int64_t b) { return (a * b) >> 16; })},
        {"weigh_pair_q15",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int i = 0; i < N / 2; i++) put16(out, i, (-11277 * (in[2 * i] - 128) - 23401 * (in[N + 2 * i] - 128) + 16384) >> 15);
         }},
        {"store_pixels3",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int i = 0; i < N; i++)
                 for (int k = 0; k < 3; k++) out[3 * i + k] = clamp8(in[3 * N + i] + term_in_range(in + k * N, i / 2));
         }},
        {"store_pixels4",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int i = 0; i < N; i++)
                 for (int k = 0; k < 4; k++)
                     out[4 * i + k] = k == 3 ? in[4 * N - 1] : clamp8(in[3 * N + i] + term_in_range(in + k * N, i / 2));
         }},
    };
    return table;
}

struct Row {
    std::string target;
    harness::LaneTerm term;
};
void PrintTo(const Row& row, std::ostream* out) { *out << row.target << " " << row.term.name; }

// The terms of every target that this CPU can run.
std::vector<Row> rows() {
    std::vector<Row> all;
    const auto collect = [&](const std::string& name, const harness::LaneTerms& terms) {
        for (const zivcolor::Target& target : zivcolor::built_targets())
            if (name == target.name && target.runs_here())
                for (int i = 0; i < terms.count; i++) all.push_back({name, terms.rows[i]});
    };
#define COLLECT(target) collect(#target, zivcolor::target::lane_terms);
    ZIVCOLOR_BUILT_TARGETS(COLLECT)
#undef COLLECT
    return all;
}

class LaneTerms : public testing::TestWithParam<Row> {
protected:
    // Four vectors of input; true if the term gave its meaning.
    bool agrees(const Bytes& in) {
        const int N = GetParam().term.bytes;
        Bytes expected(static_cast<size_t>(4 * N)), got(static_cast<size_t>(4 * N));
        meanings().at(GetParam().term.name)(N, in.data(), expected.data());
        GetParam().term.run(in.data(), got.data());
        if (got == expected) return true;
        const auto at = std::mismatch(expected.begin(), expected.end(), got.begin());
        ADD_FAILURE() << "output byte " << at.first - expected.begin() << ": expected " << int{*at.first} << ", got "
                      << int{*at.second};
        return false;
    }
};

TEST_P(LaneTerms, HasAMeaning) { ASSERT_TRUE(meanings().count(GetParam().term.name)); }

TEST_P(LaneTerms, AllPairsOfBytes) {
    const auto N = static_cast<size_t>(GetParam().term.bytes);
    Bytes in(4 * N);
    for (size_t pair = 0; pair < 65536; pair += N) {
        for (size_t i = 0; i < N; i++) {
            in[i] = in[2 * N + i] = static_cast<uint8_t>(pair + i);
            in[N + i] = in[3 * N + i] = static_cast<uint8_t>((pair + i) >> 8);
        }
        if (!agrees(in)) return;
    }
}

TEST_P(LaneTerms, AllSingleLanesOf16Bits) {
    const auto N = static_cast<size_t>(GetParam().term.bytes);
    Bytes in(4 * N);
    harness::Random random{harness::base_seed};
    for (size_t value = 0; value < 65536; value += N / 2) {
        harness::fill(in.data(), in.size(), random.next());
        const size_t which = random.next() % 2 * N;
        for (size_t i = 0; i < N / 2; i++) put16(in.data() + which, static_cast<int>(i), static_cast<int64_t>(value + i));
        if (!agrees(in)) return;
    }
}

TEST_P(LaneTerms, RandomBytes) {
    Bytes in(static_cast<size_t>(4 * GetParam().term.bytes));
    harness::Random random{harness::base_seed + 1};
    for (int round = 0; round < 4000; round++) {
        harness::fill(in.data(), in.size(), random.next());
        if (!agrees(in)) return;
    }
}

// 16-bit lanes of nothing but extremes, in every combination of two.
TEST_P(LaneTerms, ExtremesOf16Bits) {
    static constexpr int extremes[] = {-32768, -32767, -16385, -16384, -256, -255, -129, -128, -1,    0,     1,
                                       2,      15,     31,     127,    128,  254,  255,  256,  16383, 16384, 32767};
    const auto N = static_cast<size_t>(GetParam().term.bytes);
    Bytes in(4 * N);
    for (const int a : extremes)
        for (const int b : extremes) {
            for (size_t i = 0; i < 4 * N / 2; i++) put16(in.data(), static_cast<int>(i), i / (N / 2) % 2 ? b : a);
            if (!agrees(in)) return;
        }
}

INSTANTIATE_TEST_SUITE_P(All, LaneTerms, testing::ValuesIn(rows()), [](const testing::TestParamInfo<Row>& row) {
    return row.param.target + "_" + std::to_string(row.param.term.bytes) + "_" + row.param.term.name;
});

}  // namespace
