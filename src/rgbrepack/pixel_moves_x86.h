// SPDX-License-Identifier: MIT
// Whole pixels moved from one byte layout to another on x86-64, for vectors of 16, 32 and 64 bytes.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::rgbrepack {

// Where the bytes of register k of the written pixels are read: within one vector at `first`, or else the later ones within
// a second at `second`. R is the bytes of a register.
template <int pixels, int R, int k, int in, int... from>
struct MoveSource {
    static constexpr int byte(int n) {  // the source byte of written byte n, or `opaque_alpha`
        constexpr int out = sizeof...(from), place[out] = {from...};
        return place[n % out] == opaque_alpha ? opaque_alpha : n / out * in + place[n % out];
    }
    static constexpr int least() {
        int r = in * pixels;
        for (int n = R * k; n < R * (k + 1); n++) r = byte(n) != opaque_alpha && byte(n) < r ? byte(n) : r;
        return r;
    }
    static constexpr int most() {
        int r = 0;
        for (int n = R * k; n < R * (k + 1); n++) r = byte(n) > r ? byte(n) : r;
        return r;
    }
    static constexpr bool two = most() - least() >= R;
    // Two whole vectors side by side where they hold all of it: the registers beside this one load them as well.
    static constexpr bool side_by_side = two && most() / R - least() / R == 1;
    static constexpr int latest = in * pixels - R;
    static constexpr int first = side_by_side ? least() / R * R : least() < latest ? least() : latest;
    static constexpr int second = side_by_side ? first + R : two ? most() - R + 1 : first;
    static constexpr bool is_alpha(int n) { return byte(R * k + n) == opaque_alpha; }
    static constexpr bool in_first(int n) { return !is_alpha(n) && byte(R * k + n) - first < R; }
    static constexpr bool in_second(int n) { return !is_alpha(n) && !in_first(n); }
    static constexpr int index_in_first(int n) { return byte(R * k + n) - first; }
    static constexpr int index_in_second(int n) { return byte(R * k + n) - second; }
};
template <class Source>
constexpr int first_byte(int n) {
    return Source::in_first(n) ? Source::index_in_first(n) : 0x80;
}
template <class Source>
constexpr int second_byte(int n) {
    return Source::in_second(n) ? Source::index_in_second(n) : 0x80;
}
template <class Source>
ZIV_INLINE __m128i first_mask() {
    return bytes128([](int n) { return first_byte<Source>(n); });
}
template <class Source>
ZIV_INLINE __m128i second_mask() {
    return bytes128([](int n) { return second_byte<Source>(n); });
}
template <class Source>
ZIV_INLINE __m128i alpha_mask() {
    return bytes128([](int n) { return Source::is_alpha(n) ? 255 : 0; });
}

template <int in, int... from>
struct PixelMove<16, in, from...> {
    template <int k>
    ZIV_INLINE static __m128i moved(const uint8_t* src) {
        using Source = MoveSource<16, 16, k, in, from...>;
        __m128i r = _mm_shuffle_epi8(load128(src + Source::first), first_mask<Source>());
        if constexpr (Source::two) r = _mm_or_si128(r, _mm_shuffle_epi8(load128(src + Source::second), second_mask<Source>()));
        if constexpr (((from == opaque_alpha) || ...)) r = _mm_or_si128(r, alpha_mask<Source>());
        return r;
    }
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        constexpr int out = sizeof...(from);
        const __m128i r0 = moved<0>(src), r1 = moved<1>(src), r2 = moved<2>(src), r3 = moved<out - 1>(src);
        store128(dst, r0);
        keep_store_order();
        store128(dst + 16, r1);
        keep_store_order();
        store128(dst + 32, r2);
        if constexpr (out == 4) {
            keep_store_order();
            store128(dst + 48, r3);
        }
    }
};

// Four pixels of 3 bytes from byte `first` on in 32-bit lanes: the channels of the word's low end, middle and high end, and
// zero.
template <int high, int low, int first>
ZIV_INLINE __m128i mask_565() {
    return bytes128([](int n) { return n % 4 == 3 ? 0x80 : first + n / 4 * 3 + (n % 4 == 0 ? low : n % 4 == 1 ? 1 : high); });
}
// Those lanes, truncated to 5, 6 and 5 bits, to words: 8 times a word is low + 64 middle + 2048 high.
ZIV_INLINE __m128i words_565(__m128i lanes0, __m128i lanes1) {
    const __m128i kept = _mm_set1_epi32(0x00F8FCF8), bytes = _mm_set1_epi32(0x00404001), words = _mm_set1_epi32(0x00200001);
    lanes0 = _mm_madd_epi16(_mm_maddubs_epi16(_mm_and_si128(lanes0, kept), bytes), words);
    lanes1 = _mm_madd_epi16(_mm_maddubs_epi16(_mm_and_si128(lanes1, kept), bytes), words);
    return _mm_packus_epi32(_mm_srli_epi32(lanes0, 3), _mm_srli_epi32(lanes1, 3));
}
template <int high, int low>
struct PixelPack565<16, high, low> {
    ZIV_INLINE static void pack(uint8_t* dst, const uint8_t* src) {
        const __m128i p0 = _mm_shuffle_epi8(load128(src), mask_565<high, low, 0>());
        const __m128i p1 = _mm_shuffle_epi8(load128(src + 12), mask_565<high, low, 0>());
        const __m128i p2 = _mm_shuffle_epi8(load128(src + 24), mask_565<high, low, 0>());
        const __m128i p3 = _mm_shuffle_epi8(load128(src + 32), mask_565<high, low, 4>());
        store128(dst, words_565(p0, p1));
        store128(dst + 16, words_565(p2, p3));
    }
};

#if ZIV_HAS_AVX2

// 16 pixels in each half.

// The masks of two registers of 16 bytes beside each other.
template <class Low, class High>
ZIV_INLINE __m256i first_masks() {
    return bytes256([](int n) { return n < 16 ? first_byte<Low>(n) : first_byte<High>(n - 16); });
}
template <class Low, class High>
ZIV_INLINE __m256i second_masks() {
    return bytes256([](int n) { return n < 16 ? second_byte<Low>(n) : second_byte<High>(n - 16); });
}
template <class Low, class High>
ZIV_INLINE __m256i alpha_masks() {
    return bytes256([](int n) { return (n < 16 ? Low::is_alpha(n) : High::is_alpha(n - 16)) ? 255 : 0; });
}

template <int in, int... from>
struct PixelMove<32, in, from...> {
    template <int low, int high>
    ZIV_INLINE static __m256i load_parts(const uint8_t* src) {
        return high == low + 16 ? load256(src + low) : load_halves(src + low, src + high);
    }
    template <int k>
    ZIV_INLINE static __m256i moved(const uint8_t* src) {
        using Low = MoveSource<32, 16, 2 * k, in, from...>;
        using High = MoveSource<32, 16, 2 * k + 1, in, from...>;
        __m256i r = _mm256_shuffle_epi8(load_parts<Low::first, High::first>(src), first_masks<Low, High>());
        if constexpr (Low::two || High::two)
            r = _mm256_or_si256(r, _mm256_shuffle_epi8(load_parts<Low::second, High::second>(src), second_masks<Low, High>()));
        if constexpr (((from == opaque_alpha) || ...)) r = _mm256_or_si256(r, alpha_masks<Low, High>());
        return r;
    }
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        constexpr int out = sizeof...(from);
        const __m256i r0 = moved<0>(src), r1 = moved<1>(src), r2 = moved<2>(src), r3 = moved<out - 1>(src);
        prefetch_writes<32 * out>(dst);
        store256(dst, r0);
        store256(dst + 32, r1);
        store256(dst + 64, r2);
        if constexpr (out == 4) store256(dst + 96, r3);
    }
};

// From 4 bytes to 3: eight pixels come to 24 bytes, which a permutation of 32-bit lanes puts where their parts of the three
// stored vectors lie.
template <int first, int second, int third>
struct PixelMove<32, 4, first, second, third> {
    template <int k>
    ZIV_INLINE static __m256i placed(const uint8_t* src) {
        const __m256i kept = both_halves(bytes128([](int n) {
            constexpr int place[3] = {first, second, third};
            return n < 12 ? n / 3 * 4 + place[n % 3] : 0x80;
        }));
        constexpr auto from = [](int lane) {
            const int at = (lane + 8 * 3 - 6 * k) % 8;  // the lane among the 24 bytes
            return at < 3 ? at : at < 6 ? at + 1 : 3;
        };
        const __m256i lanes = _mm256_setr_epi32(from(0), from(1), from(2), from(3), from(4), from(5), from(6), from(7));
        return _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(load256(src + 32 * k), kept), lanes);
    }
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        const __m256i p0 = placed<0>(src), p1 = placed<1>(src), p2 = placed<2>(src), p3 = placed<3>(src);
        prefetch_writes<96>(dst);
        store256(dst, _mm256_blend_epi32(p0, p1, 0xC0));
        store256(dst + 32, _mm256_blend_epi32(p1, p2, 0xF0));
        store256(dst + 64, _mm256_blend_epi32(p2, p3, 0xFC));
    }
};

ZIV_INLINE __m256i words_565(__m256i lanes0, __m256i lanes1) {
    const __m256i kept = _mm256_set1_epi32(0x00F8FCF8), bytes = _mm256_set1_epi32(0x00404001);
    const __m256i words = _mm256_set1_epi32(0x00200001);
    lanes0 = _mm256_madd_epi16(_mm256_maddubs_epi16(_mm256_and_si256(lanes0, kept), bytes), words);
    lanes1 = _mm256_madd_epi16(_mm256_maddubs_epi16(_mm256_and_si256(lanes1, kept), bytes), words);
    return _mm256_packus_epi32(_mm256_srli_epi32(lanes0, 3), _mm256_srli_epi32(lanes1, 3));
}
template <int high, int low>
struct PixelPack565<32, high, low> {
    ZIV_INLINE static void pack(uint8_t* dst, const uint8_t* src) {
        // Pixels 0 to 3 and 8 to 11 beside each other, 4 to 7 and 12 to 15, and so on: a whole vector of words in order.
        const __m256i mask = both_halves(mask_565<high, low, 0>());
        const __m256i p0 = _mm256_shuffle_epi8(load_halves(src, src + 24), mask);
        const __m256i p1 = _mm256_shuffle_epi8(load_halves(src + 12, src + 36), mask);
        const __m256i p2 = _mm256_shuffle_epi8(load_halves(src + 48, src + 72), mask);
        const __m128i late = _mm_shuffle_epi8(load128(src + 80), mask_565<high, low, 4>());
        const __m128i early = _mm_shuffle_epi8(load128(src + 60), mask_565<high, low, 0>());
        const __m256i p3 = _mm256_inserti128_si256(_mm256_castsi128_si256(early), late, 1);
        store256(dst, words_565(p0, p1));
        store256(dst + 32, words_565(p2, p3));
    }
};

#endif

#if ZIV_HAS_AVX512_VBMI

template <int in, int... from>
struct PixelMove<64, in, from...> {
    template <int k>
    ZIV_INLINE static __m512i moved(const uint8_t* src) {
        using Source = MoveSource<64, 64, k, in, from...>;
        const __m512i index = bytes512([](int n) { return Source::index_in_first(n) & 63; });
        const __m512i first = load512(src + Source::first);
        __m512i r;
        if constexpr (((from == opaque_alpha) || ...)) {
            constexpr __mmask64 is_alpha = mask512([](int n) { return Source::is_alpha(n); });
            r = _mm512_mask_permutexvar_epi8(_mm512_set1_epi8(-1), ~is_alpha, index, first);
        } else {
            r = _mm512_permutexvar_epi8(index, first);
        }
        if constexpr (Source::two) {
            constexpr __mmask64 in_second = mask512([](int n) { return Source::in_second(n); });
            const __m512i index_in_second = bytes512([](int n) { return Source::index_in_second(n) & 63; });
            r = _mm512_mask_permutexvar_epi8(r, in_second, index_in_second, load512(src + Source::second));
        }
        return r;
    }
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        constexpr int out = sizeof...(from);
        prefetch_writes<64 * out>(dst);
        const __m512i r0 = moved<0>(src), r1 = moved<1>(src), r2 = moved<2>(src), r3 = moved<out - 1>(src);
        store512(dst, r0);
        store512(dst + 64, r1);
        store512(dst + 128, r2);
        if constexpr (out == 4) store512(dst + 192, r3);
    }
};

template <int high, int low>
struct PixelPack565<64, high, low> {
    // Byte 3 n + place of the 96 bytes at src, in the even bytes of word n; the odd bytes take byte 3 n + odd_place.
    template <int place, int odd_place>
    ZIV_INLINE static __m512i pairs(__m512i first, __m512i last) {
        const __m512i index = bytes512([](int n) {
            const int at = n / 2 * 3 + (n % 2 ? odd_place : place);
            return at < 64 ? at : at - 32;
        });
        constexpr __mmask64 in_last = mask512([](int n) { return n / 2 * 3 + (n % 2 ? odd_place : place) >= 64; });
        return _mm512_mask_permutexvar_epi8(_mm512_permutexvar_epi8(index, first), in_last, index, last);
    }
    ZIV_INLINE static __m512i words(__m512i first, __m512i last) {
        const __m512i ends = pairs<low, high>(first, last), middle = pairs<1, 1>(first, last);
        // Bit by bit: the high end from `ends` as it stands, the low end from it shifted, the middle from between them.
        const __m512i both_ends = _mm512_ternarylogic_epi32(_mm512_set1_epi16(static_cast<int16_t>(0xF800 - 0x10000)), ends,
                                                            _mm512_srli_epi16(ends, 3), 0xCA);
        const __m512i shifted = _mm512_slli_epi16(_mm512_srli_epi16(middle, 10), 5);
        return _mm512_ternarylogic_epi32(_mm512_set1_epi16(0x07E0), shifted, both_ends, 0xCA);
    }
    ZIV_INLINE static void pack(uint8_t* dst, const uint8_t* src) {
        store512(dst, words(load512(src), load512(src + 32)));
        store512(dst + 64, words(load512(src + 96), load512(src + 128)));
    }
};

#endif

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgbrepack
