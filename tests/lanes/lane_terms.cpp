#include "lanes/lane_terms.h"

#include "core/lanes.h"

namespace zivcolor::ZIVCOLOR_TARGET {

template <int N>
struct Input {
    U8<N> a, b, c, d;
    explicit Input(const uint8_t* p) : a(load<N>(p)), b(load<N>(p + N)), c(load<N>(p + 2 * N)), d(load<N>(p + 3 * N)) {}
};

#define TERM(name, ...)                                                                   \
    template <int N>                                                                      \
    void term_##name([[maybe_unused]] const uint8_t* in, [[maybe_unused]] uint8_t* out) { \
        [[maybe_unused]] const Input<N> v(in);                                            \
        __VA_ARGS__                                                                       \
    }

TERM(load_widened, { store(out, load_widened<N>(in)); })
TERM(store_low_bytes, { store_low_bytes<N>(out, (U16<N>)v.a); })
TERM(load2, {
    const Channels<N, 2> r = load2<N>(in);
    store(out, r.c[0]), store(out + N, r.c[1]);
})
TERM(load3, {
    const Channels<N, 3> r = load3<N>(in);
    store(out, r.c[0]), store(out + N, r.c[1]), store(out + 2 * N, r.c[2]);
})
TERM(load4, {
    const Channels<N, 4> r = load4<N>(in);
    store(out, r.c[0]), store(out + N, r.c[1]), store(out + 2 * N, r.c[2]), store(out + 3 * N, r.c[3]);
})
TERM(store2, { store2<N>(out, v.a, v.b); })
TERM(store3, { store3<N>(out, v.a, v.b, v.c); })
TERM(store4, { store4<N>(out, v.a, v.b, v.c, v.d); })
TERM(add_saturating, { store(out, add_saturating(v.a, v.b)); })
TERM(subtract_saturating, { store(out, subtract_saturating(v.a, v.b)); })
TERM(average_up, { store(out, average_up(v.a, v.b)); })
TERM(lane_min_u8, { store(out, lane_min(v.a, v.b)); })
TERM(lane_max_u8, { store(out, lane_max(v.a, v.b)); })
TERM(lane_min_s16, { store(out, lane_min((S16<N>)v.a, (S16<N>)v.b)); })
TERM(lane_max_s16, { store(out, lane_max((S16<N>)v.a, (S16<N>)v.b)); })
TERM(even_bytes, { store(out, even_bytes<N>(v.a)); })
TERM(odd_bytes, { store(out, odd_bytes<N>(v.a)); })
TERM(merge_bytes, { store(out, merge_bytes<N>(even_bytes<N>(v.a), (U16<N>)v.b)); })
TERM(double_bytes, { store(out, double_bytes<N>(even_bytes<N>(v.a))); })
TERM(even_lanes, { store(out, even_lanes<N>(v.a, v.b)); })
TERM(odd_lanes, { store(out, odd_lanes<N>(v.a, v.b)); })
TERM(interleave_low, { store(out, interleave_low<N>(v.a, v.b)); })
TERM(interleave_high, { store(out, interleave_high<N>(v.a, v.b)); })
TERM(narrow_saturating, { store(out, narrow_saturating<N>((S16<N>)v.a, (S16<N>)v.b)); })
TERM(widen_add_narrow, {
    const Wide<N> a = widen<N>(v.a);
    const Wide<N> b = widen<N>(v.b);
    store(out, narrow<N>(Wide<N>{(U16<N>)(a.lo + b.lo), (U16<N>)(a.hi + b.hi)}));
})
// Both -32768 is outside the term's domain: one of them is kept odd.
TERM(multiply_round_high, { store(out, multiply_round_high<N>((S16<N>)v.a, (S16<N>)v.b | (int16_t)1)); })
TERM(multiply_high, { store(out, multiply_high<N>((S16<N>)v.a, (S16<N>)v.b)); })
// a and b within a centred byte.
TERM(weigh_pair_q15, {
    const S16<N> a = (S16<N>)even_bytes<N>(v.a) - (int16_t)128;
    const S16<N> b = (S16<N>)even_bytes<N>(v.b) - (int16_t)128;
    store(out, weigh_pair_q15<N>(a, b, -11277, -23401));
})
// Terms of -254 to 254, from the ninth bit of a lane as sign.
template <int N>
ZIV_INLINE S16<N> term_in_range(U8<N> v) {
    const S16<N> size = lane_min((S16<N>)even_bytes<N>(v), S16<N>{} + (int16_t)254);
    return ((U16<N>)v & 0x100) != 0 ? -size : size;
}
TERM(store_pixels3,
     { store_pixels<N>(out, v.d, pixel_terms<N>(term_in_range<N>(v.a), term_in_range<N>(v.b), term_in_range<N>(v.c))); })
TERM(store_pixels4, {
    store_pixels<N>(out, v.d,
                    pixel_terms<N>(term_in_range<N>(v.a), term_in_range<N>(v.b), term_in_range<N>(v.c), in[4 * N - 1]));
})

#define ROW(name, N) {#name, N, term_##name<N>},
#if defined(ZIVCOLOR_TARGET_avx512)
#define ROWS(name) ROW(name, 64) ROW(name, 32) ROW(name, 16)
#elif defined(ZIVCOLOR_TARGET_avx2)
#define ROWS(name) ROW(name, 32) ROW(name, 16)
#else
#define ROWS(name) ROW(name, 16)
#endif

static constexpr harness::LaneTerm rows[] = {
    ROWS(load_widened) ROWS(store_low_bytes) ROWS(load2) ROWS(load3) ROWS(load4) ROWS(store2) ROWS(store3) ROWS(store4)
        ROWS(add_saturating) ROWS(subtract_saturating) ROWS(average_up) ROWS(lane_min_u8) ROWS(lane_max_u8) ROWS(lane_min_s16)
            ROWS(lane_max_s16) ROWS(even_bytes) ROWS(odd_bytes) ROWS(merge_bytes) ROWS(double_bytes) ROWS(even_lanes)
                ROWS(odd_lanes) ROWS(interleave_low) ROWS(interleave_high) ROWS(narrow_saturating) ROWS(widen_add_narrow)
                    ROWS(multiply_round_high) ROWS(multiply_high) ROWS(weigh_pair_q15) ROWS(store_pixels3) ROWS(store_pixels4)};

extern const harness::LaneTerms lane_terms;
const harness::LaneTerms lane_terms = {rows, sizeof rows / sizeof *rows};

}  // namespace zivcolor::ZIVCOLOR_TARGET
