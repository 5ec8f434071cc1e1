// SPDX-License-Identifier: MIT
// Terms of four-byte pixels straight from pairs of bytes, on AVX-512.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

// Sixteen pairs a vector, b before a. The byte beside each has no weight.
template <int half>
ZIV_INLINE S16<64> outer_half_times_4(U8<64> pairs) {
    const __m512i index = hidden_bytes512([](int n) { return 32 * half + n / 4 * 2 + (n % 4 < 2 ? 1 : 0); });
    return weigh_signed_bytes<64>((U8<64>)_mm512_permutexvar_epi8(index, (__m512i)pairs), 4, 0);
}
template <>
ZIV_INLINE OuterLanes<64> outer_lanes_times_4<64>(U8<64> pairs) {
    return {{outer_half_times_4<0>(pairs), outer_half_times_4<1>(pairs)}};
}
template <>
ZIV_INLINE OuterLanes<64> multiply_outer_q15<64>(const OuterLanes<64>& lanes, int weight_a, int weight_b) {
    S16<64> weights = constants<64>(2 * weight_b, 2 * weight_a);
    asm("" : "+v"(weights));
    return {{multiply_high<64>(lanes.part[0], weights), multiply_high<64>(lanes.part[1], weights)}};
}

// Narrowed beside the middle terms of all pairs, either sixteen pairs stand in one vector: in every 16-byte part channels 0 and
// 2 of four pairs, side by side, then channel 1 of eight.
constexpr int byte_of_outer_term(int pair, int channel) {
    return channel == 1 ? pair / 8 * 16 + 8 + pair % 8 : pair % 16 / 4 * 16 + pair % 4 * 2 + channel / 2;
}
template <int q>
ZIV_INLINE __m512i place_outer_terms(const __m512i (&terms)[2], __m512i fourth) {
    const __m512i index = hidden_bytes512([](int n) { return byte_of_outer_term(8 * q + n / 8, n % 4 % 3); });
    return _mm512_mask_permutexvar_epi8(fourth, hidden_mask(colours), index, terms[q / 2]);
}
template <>
ZIV_INLINE PixelTerms4<64> pixel_terms<64>(const OuterLanes<64>& outer, S16<64> middle, uint8_t alpha) {
    const __m512i up[2] = {_mm512_packus_epi16((__m512i)outer.part[0], (__m512i)middle),
                           _mm512_packus_epi16((__m512i)outer.part[1], (__m512i)middle)};
    const __m512i down[2] = {_mm512_packus_epi16((__m512i)-outer.part[0], (__m512i)-middle),
                             _mm512_packus_epi16((__m512i)-outer.part[1], (__m512i)-middle)};
    const __m512i zero = _mm512_setzero_si512(), fourth = _mm512_set1_epi8(static_cast<char>(alpha));
    return {{place_outer_terms<0>(up, fourth), place_outer_terms<1>(up, fourth), place_outer_terms<2>(up, fourth),
             place_outer_terms<3>(up, fourth)},
            {place_outer_terms<0>(down, zero), place_outer_terms<1>(down, zero), place_outer_terms<2>(down, zero),
             place_outer_terms<3>(down, zero)}};
}

template <>
ZIV_INLINE uint32_t unlisted_lanes<64>(uint32_t lanes, U16<64> words, const uint16_t (&table)[32]) {
    const __m512i listed = _mm512_permutexvar_epi16(_mm512_srli_epi16((__m512i)words, 10), _mm512_loadu_si512(table));
    return _mm512_mask_cmpneq_epi16_mask(lanes, listed, (__m512i)words);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
