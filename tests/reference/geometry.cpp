// SPDX-License-Identifier: MIT
// Turns and mirrors of semi-planar 4:2:0 images.
#include "reference/reference.h"
#include "reference/steps.h"

namespace reference {

namespace {

// Where the samples of one 8 by 8 block go.
struct TurnedBlock {
    uint8_t* luma;         // of the block's top left sample
    int64_t luma_right;    // one source column to the right
    int64_t luma_down;     // one source row down
    uint8_t* chroma;       // of the block's top left pair
    int64_t chroma_right;  // one pair to the right
    int64_t chroma_down;
};

void turn_block(const Image* src, int64_t by, int64_t bx, const TurnedBlock& to) {
    const int64_t sp = src->pitch[0];
    std::array<Bytes<8>, 8> rows{};
    for (size_t r = 0; r < 8; ++r) rows[r] = load<8>(src->plane[0] + (by + int64_t(r)) * sp + bx);
    for (int64_t c = 0; c < 8; ++c)
        for (int64_t r = 0; r < 8; ++r) put(to.luma + c * to.luma_right + r * to.luma_down, rows[size_t(r)][size_t(c)]);

    // Chroma rows follow the luma pitch with its lowest bit cleared, from where the block starts.
    std::array<Bytes<8>, 4> pairs{};
    for (size_t r = 0; r < 4; ++r) pairs[r] = load<8>(src->plane[1] + by / 2 * sp + bx + int64_t(r) * 2 * (sp >> 1));
    for (int64_t c = 0; c < 4; ++c)
        for (int64_t r = 0; r < 4; ++r)
            for (int64_t k = 0; k < 2; ++k)
                put(to.chroma + c * to.chroma_right + r * to.chroma_down + k, pairs[size_t(r)][size_t(2 * c + k)]);
}

void quarter_turn(const Image* src, const Image* dst, bool clockwise) {
    const int64_t w = src->width;
    const int64_t h = src->height;
    const int64_t dp = dst->pitch[0];
    if (w < 8 || h < 8) return;
    const int64_t chroma_step = 2 * (dp >> 1);
    for (int64_t by = 0; by <= h - 8; by += 8)
        for (int64_t bx = 0; bx <= w - 8; bx += 8) {
            const int64_t yc = by / 2;
            const int64_t xc = bx / 2;
            if (clockwise)
                turn_block(src, by, bx,
                           {dst->plane[0] + bx * dp + dp - 1 - by, dp, -1,  //
                            dst->plane[1] + xc * dp + dp - 2 - 2 * yc, chroma_step, -2});
            else
                turn_block(src, by, bx,
                           {dst->plane[0] + (w - 1 - bx) * dp + by, -dp, 1,  //
                            dst->plane[1] + ((dp * dst->height) >> 1) - (xc + 1) * dp + 2 * yc, -chroma_step, 2});
        }
}

void half_turn(const Image* src, const Image* dst) {
    const int64_t w = src->width;
    const int64_t h = src->height;
    const int64_t sc = src->pitch[1];
    const int64_t dp = dst->pitch[0];
    if (h <= 0 || w < 8) return;
    for (int64_t y = 0; y < h; y += 2)
        for (int64_t x = 0; x <= w - 8; x += 8) {
            const uint8_t* luma = row(src, 0, y) + x;
            const auto first = load<8>(luma);
            const auto second = load<8>(luma + w);  // a width below, not a pitch
            const auto pairs = load<8>(row(src, 1, y / 2) + x);
            uint8_t* out = dst->plane[0] + (h - y) * dp - 1 - x;
            for (int64_t c = 0; c < 8; ++c) put(out - c, first[size_t(c)]);
            for (int64_t c = 0; c < 8; ++c) put(out - w - c, second[size_t(c)]);
            uint8_t* out_pairs = dst->plane[1] + ((sc * h) >> 1) - 2 - x - y / 2 * dp;
            for (int64_t c = 0; c < 8; c += 2) {
                put(out_pairs - c, pairs[size_t(c)]);
                put(out_pairs - c + 1, pairs[size_t(c + 1)]);
            }
        }
}

}  // namespace

void zivRotate(const Image* srcImg, const Image* dstImg, int32_t lmode) {
    if (srcImg == nullptr) return;
    if (lmode == 1 || lmode == 3) quarter_turn(srcImg, dstImg, lmode == 1);
    else half_turn(srcImg, dstImg);
}

namespace {

// Eight columns while more than eight are left, then two at a time.
template <typename Step>
void mirror_columns(int64_t w, const Step& step) {
    int64_t i = 0;
    for (; i < w - 8; i += 8) step(std::integral_constant<int, 8>{}, i);
    for (; i < w; i += 2) step(std::integral_constant<int, 2>{}, i);
}

int32_t check_mirror(const Image* src) {
    if (src == nullptr) return zivStatus_NullPointer;
    if (static_cast<int32_t>(src->format) != zivPixFmt_NV21) return zivStatus_BadArgument;
    return zivStatus_OK;
}

}  // namespace

int32_t zivflip_horizontal_nv21(const Image* srcImg, const Image* dstImg) {
    if (const int32_t failure = check_mirror(srcImg)) return failure;
    const int64_t w = srcImg->width;
    if (w <= 0) return zivStatus_OK;
    const int64_t sc = srcImg->pitch[1];
    for (int64_t j = 0; j < srcImg->height; j += 2) {
        const uint8_t* luma = row(srcImg, 0, j);
        const uint8_t* chroma = row(srcImg, 1, j / 2);
        uint8_t* out = row(dstImg, 0, j + 1) - 1;                       // where column 0 goes
        uint8_t* out_chroma = dstImg->plane[1] + (j / 2 + 1) * sc - 2;  // where pair 0 goes
        mirror_columns(w, [&](auto n, int64_t i) {
            constexpr int N = decltype(n)::value;
            const auto first = load<N>(luma + i);
            const auto second = load<N>(luma + w + i);
            const auto pairs = load<N>(chroma + i);
            for (int64_t c = 0; c < N; ++c) put(out - i - c, first[size_t(c)]);
            for (int64_t c = 0; c < N; ++c) put(out + w - i - c, second[size_t(c)]);
            for (int64_t c = 0; c < N; ++c) put(out_chroma - i - c / 2 * 2 + c % 2, pairs[size_t(c)]);
        });
    }
    return zivStatus_OK;
}

int32_t zivflip_vertical_nv21(const Image* srcImg, const Image* dstImg) {
    if (const int32_t failure = check_mirror(srcImg)) return failure;
    const int64_t w = srcImg->width;
    if (w <= 0) return zivStatus_OK;
    const int64_t h = srcImg->height;
    for (int64_t j = 0; j < h; j += 2) {
        const uint8_t* luma = row(srcImg, 0, j);
        const uint8_t* chroma = row(srcImg, 1, j / 2);
        // The source's pitches step the destination too.
        uint8_t* out = dstImg->plane[0] + (h - 1 - j) * srcImg->pitch[0];
        uint8_t* out_chroma = dstImg->plane[1] + ((h >> 1) - 1 - j / 2) * srcImg->pitch[1];
        mirror_columns(w, [&](auto n, int64_t i) {
            constexpr int N = decltype(n)::value;
            const auto first = load<N>(luma + i);
            const auto second = load<N>(luma + w + i);
            const auto pairs = load<N>(chroma + i);
            store(out + i, first);
            store(out - w + i, second);
            store(out_chroma + i, pairs);
        });
    }
    return zivStatus_OK;
}

}  // namespace reference
