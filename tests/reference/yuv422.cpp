// SPDX-License-Identifier: MIT
// Planar layouts with chroma halved in one direction, to all targets.
#include "reference/reference.h"
#include "reference/steps.h"

namespace reference {

namespace {

int32_t check(const Image* src, int32_t from, const Image* dst, int32_t to) {
    if (is_null(src, dst)) return zivStatus_NullPointer;
    if (!formats_are(src, from, dst, to)) return zivStatus_BadArgument;
    if (!at_least(dst, 2, 2) || src->height < 2) return zivStatus_BadArgument;
    return zivStatus_OK;
}

// ---- Chroma halved horizontally: row by row ----

// N columns of row i.
template <int N>
struct HalvedAcross {
    static Bytes<N> luma(const Image* src, int32_t i, int64_t j) { return load<N>(row(src, 0, i) + j); }
    static Bytes<N / 2> u(const Image* src, int32_t i, int64_t j) { return load<N / 2>(row(src, 1, i) + j / 2); }
    static Bytes<N / 2> v(const Image* src, int32_t i, int64_t j) { return load<N / 2>(row(src, 2, i) + j / 2); }
};

template <int N>
void i422h_to_i420(const Image* src, const Image* dst, int32_t i, int64_t j) {
    using From = HalvedAcross<N>;
    const auto luma = From::luma(src, i, j);
    if (i % 2) return store(row(dst, 0, i) + j, luma);
    const auto u = From::u(src, i, j);
    const auto v = From::v(src, i, j);
    store(row(dst, 0, i) + j, luma);
    store(row(dst, 1, i / 2) + j / 2, u);
    store(row(dst, 2, i / 2) + j / 2, v);
}

template <int N>
void i422h_to_nv21(const Image* src, const Image* dst, int32_t i, int64_t j) {
    using From = HalvedAcross<N>;
    const auto luma = From::luma(src, i, j);
    if (i % 2) return store(row(dst, 0, i) + j, luma);
    const auto u = From::u(src, i, j);
    const auto v = From::v(src, i, j);
    store(row(dst, 0, i) + j, luma);
    // Chroma rows stand one luma pitch apart.
    store(dst->plane[1] + static_cast<int64_t>(i / 2) * dst->pitch[0] + j, interleave(v, u));
}

template <int N>
void i422h_to_nv12(const Image* src, const Image* dst, int32_t i, int64_t j) {
    using From = HalvedAcross<N>;
    const auto luma = From::luma(src, i, j);
    if (i % 2) return store(row(dst, 0, i) + j, luma);
    const auto u = From::u(src, i, j);
    const auto v = From::v(src, i, j);
    store(row(dst, 0, i) + j, luma);
    // By the full row number: chroma rows stand two chroma pitches apart.
    store(row(dst, 1, i) + j, interleave(u, v));
}

template <int N>
void i422h_to_yuyv(const Image* src, const Image* dst, int32_t i, int64_t j) {
    using From = HalvedAcross<N>;
    const auto luma = From::luma(src, i, j);
    const auto u = From::u(src, i, j);
    const auto v = From::v(src, i, j);
    store(row(dst, 0, i) + 2 * j, interleave(luma, interleave(u, v)));
}

template <int N>
void i422h_to_lpi422h(const Image* src, const Image* dst, int32_t i, int64_t j) {
    using From = HalvedAcross<N>;
    const auto luma = From::luma(src, i, j);
    const auto u = From::u(src, i, j);
    const auto v = From::v(src, i, j);
    store(row(dst, 0, i) + j, luma);
    store(row(dst, 1, i) + j, interleave(u, v));
}

using RowStep = void (*)(const Image* src, const Image* dst, int32_t i, int64_t j);

int32_t convert_i422h(const Image* src, const Image* dst, int32_t to, RowStep block, RowStep tail) {
    if (const int32_t failure = check(src, zivPixFmt_I422H, dst, to)) return failure;
    const int64_t w = dst->width;
    for (int32_t i = 0; i < dst->height; ++i) {
        int64_t j = 0;
        for (; j <= w - 16; j += 16) block(src, dst, i, j);
        for (; j < w - 1; j += 2) tail(src, dst, i, j);
    }
    return zivStatus_OK;
}

// ---- Chroma halved vertically: pairs of rows, chroma as contiguous runs ----

struct Pass {
    const uint8_t* upper;
    const uint8_t* lower;
    const uint8_t* u;
    const uint8_t* v;
    uint8_t* out_upper;
    uint8_t* out_lower;
    uint8_t* out_u;  // or the interleaved plane, or its upper row
    uint8_t* out_v;  // or the lower row of the interleaved plane
};

// N columns of two rows, and of their chroma the even columns.
template <int N>
struct HalvedDown {
    Bytes<N> upper, lower;
    Bytes<N / 2> u, v;

    HalvedDown(const Pass& p, int64_t j) : upper(load<N>(p.upper + j)), lower(load<N>(p.lower + j)) {
        if constexpr (N == 16) {
            u = even(load<N>(p.u + j));
            v = even(load<N>(p.v + j));
        } else {
            // The tail does not look at the odd columns.
            u = load<1>(p.u + j);
            v = load<1>(p.v + j);
        }
    }
    void store_luma(const Pass& p, int64_t j) const {
        store(p.out_upper + j, upper);
        store(p.out_lower + j, lower);
    }
};

template <int N>
void i422v_to_i420(const Pass& p, int64_t j) {
    const HalvedDown<N> from(p, j);
    from.store_luma(p, j);
    store(p.out_u + j / 2, from.u);
    store(p.out_v + j / 2, from.v);
}

template <int N>
void i422v_to_nv21(const Pass& p, int64_t j) {
    const HalvedDown<N> from(p, j);
    from.store_luma(p, j);
    store(p.out_u + j, interleave(from.v, from.u));
}

template <int N>
void i422v_to_nv12(const Pass& p, int64_t j) {
    const HalvedDown<N> from(p, j);
    from.store_luma(p, j);
    store(p.out_u + j, interleave(from.u, from.v));
}

template <int N>
void i422v_to_yuyv(const Pass& p, int64_t j) {
    const HalvedDown<N> from(p, j);
    store(p.out_upper + 2 * j, interleave(from.upper, interleave(from.u, from.v)));
    store(p.out_lower + 2 * j, interleave(from.lower, interleave(from.u, from.v)));
}

template <int N>
void i422v_to_lpi422h(const Pass& p, int64_t j) {
    const HalvedDown<N> from(p, j);
    from.store_luma(p, j);
    store(p.out_u + j, interleave(from.u, from.v));
    store(p.out_v + j, interleave(from.u, from.v));
}

using PassStep = void (*)(const Pass& p, int64_t j);

// How far the chroma pointers of the destination move after a pair of rows, by columns walked.
enum class ChromaOut { Planes, Interleaved, None, TwoRows };

int32_t convert_i422v(const Image* src, const Image* dst, int32_t to, PassStep block, PassStep tail, int64_t tail_short,
                      ChromaOut chroma_out) {
    if (const int32_t failure = check(src, zivPixFmt_I422V, dst, to)) return failure;
    const int64_t w = dst->width;
    const uint8_t* u = src->plane[1];
    const uint8_t* v = src->plane[2];
    int64_t written = 0;  // chroma bytes in each plane so far, where they run on
    for (int32_t i = 0; i < dst->height - 1; i += 2) {
        Pass p{row(src, 0, i), row(src, 0, i + 1), u, v, row(dst, 0, i), row(dst, 0, i + 1), nullptr, nullptr};
        if (chroma_out == ChromaOut::Planes) p.out_u = dst->plane[1] + written, p.out_v = dst->plane[2] + written;
        if (chroma_out == ChromaOut::Interleaved) p.out_u = dst->plane[1] + written;
        if (chroma_out == ChromaOut::TwoRows) p.out_u = row(dst, 1, i), p.out_v = row(dst, 1, i + 1);
        int64_t j = 0;
        for (; j <= w - 16; j += 16) block(p, j);
        for (; j < w - tail_short; j += 2) tail(p, j);
        u += j;
        v += j;
        written += chroma_out == ChromaOut::Planes ? j / 2 : j;
    }
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorI422HtoI420u8(const Image* srcImg, const Image* dstImg) {
    return convert_i422h(srcImg, dstImg, zivPixFmt_I420, i422h_to_i420<16>, i422h_to_i420<2>);
}
int32_t zivColorI422HtoNV21u8(const Image* srcImg, const Image* dstImg) {
    return convert_i422h(srcImg, dstImg, zivPixFmt_NV21, i422h_to_nv21<16>, i422h_to_nv21<2>);
}
int32_t zivColorI422HtoNV12u8(const Image* srcImg, const Image* dstImg) {
    return convert_i422h(srcImg, dstImg, zivPixFmt_NV12, i422h_to_nv12<16>, i422h_to_nv12<2>);
}
int32_t zivColorI422HtoYUYVu8(const Image* srcImg, const Image* dstImg) {
    return convert_i422h(srcImg, dstImg, zivPixFmt_YUYV, i422h_to_yuyv<16>, i422h_to_yuyv<2>);
}
int32_t zivColorI422HtoLPI422Hu8(const Image* srcImg, const Image* dstImg) {
    return convert_i422h(srcImg, dstImg, zivPixFmt_LPI422H, i422h_to_lpi422h<16>, i422h_to_lpi422h<2>);
}

// To I420 an odd last column is still walked; its siblings stop one column short.
int32_t zivColorI422VtoI420u8(const Image* srcImg, const Image* dstImg) {
    return convert_i422v(srcImg, dstImg, zivPixFmt_I420, i422v_to_i420<16>, i422v_to_i420<2>, 0, ChromaOut::Planes);
}
int32_t zivColorI422VtoNV21u8(const Image* srcImg, const Image* dstImg) {
    return convert_i422v(srcImg, dstImg, zivPixFmt_NV21, i422v_to_nv21<16>, i422v_to_nv21<2>, 1, ChromaOut::Interleaved);
}
int32_t zivColorI422VtoNV12u8(const Image* srcImg, const Image* dstImg) {
    return convert_i422v(srcImg, dstImg, zivPixFmt_NV12, i422v_to_nv12<16>, i422v_to_nv12<2>, 1, ChromaOut::Interleaved);
}
int32_t zivColorI422VtoYUYVu8(const Image* srcImg, const Image* dstImg) {
    return convert_i422v(srcImg, dstImg, zivPixFmt_YUYV, i422v_to_yuyv<16>, i422v_to_yuyv<2>, 1, ChromaOut::None);
}
int32_t zivColorI422VtoLPI422Hu8(const Image* srcImg, const Image* dstImg) {
    return convert_i422v(srcImg, dstImg, zivPixFmt_LPI422H, i422v_to_lpi422h<16>, i422v_to_lpi422h<2>, 1, ChromaOut::TwoRows);
}

}  // namespace reference
