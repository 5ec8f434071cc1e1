// SPDX-License-Identifier: MIT
// Planar 4:4:4 to all targets, and packed YUV from and to NV21.
#include "reference/reference.h"
#include "reference/steps.h"

namespace reference {

namespace {

int32_t check_i444(const Image* src, const Image* dst, int32_t to) {
    if (is_null(src, dst)) return zivStatus_NullPointer;
    if (!formats_are(src, zivPixFmt_I444, dst, to)) return zivStatus_BadArgument;
    if (!at_least(dst, 2, 2) || src->height < 2) return zivStatus_BadArgument;
    return zivStatus_OK;
}

// Two columns of two rows, and the chroma of the upper left pixel.
struct Square {
    Bytes<2> upper, lower;
    Bytes<1> u, v;
};

struct Output {
    uint8_t* upper;
    uint8_t* lower;
    uint8_t* chroma[2];  // run on through the whole image
};

using StoreSquare = void (*)(const Square& square, const Output& out, int64_t j);

void to_i420(const Square& s, const Output& out, int64_t j) {
    store(out.upper + j, s.upper);
    store(out.lower + j, s.lower);
    store(out.chroma[0] + j / 2, s.u);
    store(out.chroma[1] + j / 2, s.v);
}

void to_nv21(const Square& s, const Output& out, int64_t j) {
    store(out.upper + j, s.upper);
    store(out.lower + j, s.lower);
    store(out.chroma[0] + j, interleave(s.v, s.u));
}

void to_nv12(const Square& s, const Output& out, int64_t j) {
    store(out.upper + j, s.upper);
    store(out.lower + j, s.lower);
    store(out.chroma[0] + j, interleave(s.u, s.v));
}

void to_yuyv(const Square& s, const Output& out, int64_t j) {
    store(out.upper + 2 * j, interleave(s.upper, interleave(s.u, s.v)));
    store(out.lower + 2 * j, interleave(s.lower, interleave(s.u, s.v)));
}

// chroma_share is the number of chroma bytes that each destination plane takes for two columns.
int32_t convert_i444(const Image* src, const Image* dst, int32_t to, StoreSquare store_square, int chroma_share) {
    if (const int32_t failure = check_i444(src, dst, to)) return failure;
    const uint8_t* u = src->plane[1];
    const uint8_t* v = src->plane[2];
    Output out{nullptr, nullptr, {dst->plane[1], dst->plane[2]}};
    for (int32_t i = 0; i < dst->height - 1; i += 2) {
        out.upper = row(dst, 0, i);
        out.lower = row(dst, 0, i + 1);
        int64_t j = 0;
        for (; j < dst->width - 1; j += 2) {
            const Square square{load<2>(row(src, 0, i) + j), load<2>(row(src, 0, i + 1) + j), load<1>(u + j), load<1>(v + j)};
            store_square(square, out, j);
        }
        // The columns walked plus one pitch: two rows only where the plane is tight.
        u += j + src->pitch[1];
        v += j + src->pitch[2];
        for (auto& chroma : out.chroma)
            if (chroma) chroma += j / 2 * chroma_share;
    }
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorI444toI420u8(const Image* srcImg, const Image* dstImg) {
    return convert_i444(srcImg, dstImg, zivPixFmt_I420, to_i420, 1);
}
int32_t zivColorI444toNV21u8(const Image* srcImg, const Image* dstImg) {
    return convert_i444(srcImg, dstImg, zivPixFmt_NV21, to_nv21, 2);
}
int32_t zivColorI444toNV12u8(const Image* srcImg, const Image* dstImg) {
    return convert_i444(srcImg, dstImg, zivPixFmt_NV12, to_nv12, 2);
}
int32_t zivColorI444toYUYVu8(const Image* srcImg, const Image* dstImg) {
    return convert_i444(srcImg, dstImg, zivPixFmt_YUYV, to_yuyv, 0);
}

int32_t zivColorI444toLPI422Hu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t failure = check_i444(srcImg, dstImg, zivPixFmt_LPI422H)) return failure;
    const uint8_t* luma = srcImg->plane[0];
    const uint8_t* u = srcImg->plane[1];
    const uint8_t* v = srcImg->plane[2];
    uint8_t* out = dstImg->plane[0];
    uint8_t* out_chroma = dstImg->plane[1];
    for (int32_t i = 0; i < dstImg->height; ++i) {
        // All five run on from step to step, whatever the pitches.
        for (int32_t j = 0; j < dstImg->width - 1; j += 2) {
            const auto samples = load<2>(luma);
            const auto pair = interleave(load<1>(u), load<1>(v));
            store(out, samples);
            store(out_chroma, pair);
            luma += 2, u += 2, v += 2, out += 2, out_chroma += 2;
        }
    }
    return zivStatus_OK;
}

int32_t zivColorYUVtoNV21u8(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!formats_are(srcImg, zivPixFmt_YUV, dstImg, zivPixFmt_NV21)) return zivStatus_BadArgument;
    if (!at_least(srcImg, 2, 2) || !at_least(dstImg, 2, 2)) return zivStatus_BadArgument;
    const int64_t w = dstImg->width;
    for (int32_t i = 0; i < dstImg->height; i += 2) {
        const uint8_t* upper = row(srcImg, 0, i);
        const uint8_t* lower = upper + srcImg->pitch[0];
        uint8_t* out_upper = row(dstImg, 0, i);
        uint8_t* out_lower = out_upper + dstImg->pitch[0];
        uint8_t* out_chroma = row(dstImg, 1, i / 2);
        int64_t j = 0;
        for (; j <= w - 8; j += 8) {
            const auto above = load<24>(upper + 3 * j);
            const auto below = load<24>(lower + 3 * j);
            for (size_t k = 0; k < 8; ++k) put(out_upper + j + k, above[3 * k]);
            for (size_t k = 0; k < 8; ++k) put(out_lower + j + k, below[3 * k]);
            for (size_t k = 0; k < 8; k += 2) {
                put(out_chroma + j + k, above[3 * k + 2]);
                put(out_chroma + j + k + 1, above[3 * k + 1]);
            }
        }
        for (; j < w; j += 2) {
            const auto above = load<4>(upper + 3 * j);
            const int lower0 = get(lower + 3 * j);
            const int lower1 = get(lower + 3 * j + 3);
            put(out_upper + j, above[0]);
            put(out_upper + j + 1, above[3]);
            put(out_lower + j, lower0);
            put(out_lower + j + 1, lower1);
            put(out_chroma + j, above[2]);
            put(out_chroma + j + 1, above[1]);
        }
    }
    return zivStatus_OK;
}

namespace {

// N pixels of a row, from their luma and half as many pairs V U.
template <int N>
void store_yuv(uint8_t* out, const Bytes<N>& luma, const Bytes<N>& vu) {
    for (size_t k = 0; k < N; ++k) {
        put(out + 3 * k, luma[k]);
        put(out + 3 * k + 1, vu[k / 2 * 2 + 1]);
        put(out + 3 * k + 2, vu[k / 2 * 2]);
    }
}

template <int N>
void nv21_to_yuv(const Image* src, const Image* dst, int32_t i, int64_t j) {
    const auto upper = load<N>(row(src, 0, i) + j);
    const auto lower = load<N>(row(src, 0, i + 1LL) + j);
    const auto vu = load<N>(row(src, 1, i / 2) + j);
    store_yuv<N>(row(dst, 0, i) + 3 * j, upper, vu);
    store_yuv<N>(row(dst, 0, i + 1LL) + 3 * j, lower, vu);
}

}  // namespace

int32_t zivColorNV21toYUVu8(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!formats_are(srcImg, zivPixFmt_NV21, dstImg, zivPixFmt_YUV)) return zivStatus_BadArgument;
    if (!at_least(srcImg, 2, 2) || !at_least(dstImg, 2, 2)) return zivStatus_BadArgument;
    const int64_t w = dstImg->width;
    for (int32_t i = 0; i < dstImg->height; i += 2) {
        int64_t j = 0;
        for (; j <= w - 16; j += 16) nv21_to_yuv<16>(srcImg, dstImg, i, j);
        for (; j < w; j += 2) nv21_to_yuv<2>(srcImg, dstImg, i, j);
    }
    return zivStatus_OK;
}

}  // namespace reference
