// SPDX-License-Identifier: MIT
// RGB to 4:2:0: a row at a time, blocks and then single columns. The pixel at the even row and even column gives the chroma.
#include "reference/reference.h"
#include "reference/rgb2yuv.h"

namespace reference {
namespace {

// What single members do differently.
struct Traits {
    int block = 16;
    bool leaves_a_tail = false;  // blocks run while j < W - block, not j <= W - block
    bool shared_blue = false;    // the second half of a block takes the first half's blue for its luma
    bool width_of_source = false;
    bool chroma_steps_by_luma = false;     // chroma rows step by the luma pitch
    bool tail_chroma_on_one_byte = false;  // the tail's V and U all land where the blocks left off
};

template <class Set, uint32_t source, uint32_t destination, Traits traits = Traits{}>
int32_t convert(const Image* srcImg, const Image* dstImg) {
    const int32_t status = check(srcImg, dstImg, source, destination, 2, 2);
    if (status != zivStatus_OK) return status;
    constexpr Layout layout = layout_of(source);
    constexpr bool planar = destination == zivPixFmt_I420;
    constexpr bool v_first = destination == zivPixFmt_NV21;
    constexpr int chroma_step = planar ? 1 : 2;
    const int64_t width = traits.width_of_source ? srcImg->width : dstImg->width, height = dstImg->height;
    const auto put_chroma = [](uint8_t* first, uint8_t* second, Chroma chroma) {
        put(first, v_first ? chroma.v : chroma.u);
        put(second, v_first ? chroma.u : chroma.v);
    };

    for (int64_t i = 0; i < height; i++) {
        const uint8_t* src = row_of(*srcImg, 0, i);
        uint8_t* luma = row_of(*dstImg, 0, i);
        uint8_t* first =
            traits.chroma_steps_by_luma ? dstImg->plane[1] + (i >> 1) * int64_t{dstImg->pitch[0]} : row_of(*dstImg, 1, i >> 1);
        uint8_t* second = planar ? row_of(*dstImg, 2, i >> 1) : first + 1;
        const bool even_row = i % 2 == 0;

        int64_t j = 0;
        for (; traits.leaves_a_tail ? j < width - traits.block : j <= width - traits.block; j += traits.block) {
            Pixel pixel[traits.block];
            int y[traits.block];
            for (int n = 0; n < traits.block; n++) pixel[n] = load_in_block(src + (j + n) * layout.size, layout);
            for (int n = 0; n < traits.block; n++) {
                Pixel lit = pixel[n];
                if (traits.shared_blue && n >= 8) lit.blue = pixel[n - 8].blue;
                y[n] = Set::block_luma(lit);
                put(luma + j + n, y[n]);
            }
            if (even_row) {
                Chroma chroma[traits.block / 2];
                for (int n = 0; n < traits.block / 2; n++) chroma[n] = Set::block_chroma(pixel[2 * n], y[2 * n]);
                if (planar) {
                    for (int n = 0; n < traits.block / 2; n++) put(first + n, chroma[n].u);
                    for (int n = 0; n < traits.block / 2; n++) put(second + n, chroma[n].v);
                } else {
                    for (int n = 0; n < traits.block / 2; n++) put_chroma(first + 2 * n, second + 2 * n, chroma[n]);
                }
                first += traits.block / 2 * chroma_step, second += traits.block / 2 * chroma_step;
            }
        }
        for (; j < width; j++) {
            const Pixel pixel = load_in_tail(src + j * layout.size, layout);
            const int y = Set::tail_luma(pixel);
            put(luma + j, y);
            if (even_row && j % 2 == 0) {
                const Chroma chroma = Set::tail_chroma(pixel, y);
                if (traits.tail_chroma_on_one_byte) {
                    put_chroma(first, first, chroma);
                } else {
                    put_chroma(first, second, chroma);
                    first += chroma_step, second += chroma_step;
                }
            }
        }
    }
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorBGR888toNV21u8(const Image* srcImg, const Image* dstImg) {
    return convert<FineSetFractional, zivPixFmt_BGR888, zivPixFmt_NV21>(srcImg, dstImg);
}

int32_t zivColorRGB888toNV21u8(const Image* srcImg, const Image* dstImg) {
    return convert<ShortSet, zivPixFmt_RGB888, zivPixFmt_NV21,
                   Traits{.chroma_steps_by_luma = true, .tail_chroma_on_one_byte = true}>(srcImg, dstImg);
}

int32_t zivColorBGR888toNV12u8(const Image* srcImg, const Image* dstImg) {
    return convert<FineSetFractional, zivPixFmt_BGR888, zivPixFmt_NV12>(srcImg, dstImg);
}

int32_t zivColorRGB888toNV12u8(const Image* srcImg, const Image* dstImg) {
    return convert<ShortSetSteepV, zivPixFmt_RGB888, zivPixFmt_NV12>(srcImg, dstImg);
}

int32_t zivColorBGR888toI420u8(const Image* srcImg, const Image* dstImg) {
    return convert<FineSetRounded, zivPixFmt_BGR888, zivPixFmt_I420>(srcImg, dstImg);
}

int32_t zivColorRGB888toI420u8(const Image* srcImg, const Image* dstImg) {
    return convert<ShortSet, zivPixFmt_RGB888, zivPixFmt_I420>(srcImg, dstImg);
}

int32_t zivColorBGRA8888toNV21u8(const Image* srcImg, const Image* dstImg) {
    return convert<FloatSet, zivPixFmt_BGRA8888, zivPixFmt_NV21, Traits{.block = 8, .leaves_a_tail = true}>(srcImg, dstImg);
}

int32_t zivColorRGBA8888toNV21u8(const Image* srcImg, const Image* dstImg) {
    return convert<FloatSet, zivPixFmt_RGBA8888, zivPixFmt_NV21, Traits{.block = 8, .leaves_a_tail = true}>(srcImg, dstImg);
}

int32_t zivColorBGRA8888toNV12u8(const Image* srcImg, const Image* dstImg) {
    return convert<ShortSet, zivPixFmt_BGRA8888, zivPixFmt_NV12, Traits{.shared_blue = true}>(srcImg, dstImg);
}

int32_t zivColorRGBA8888toNV12u8(const Image* srcImg, const Image* dstImg) {
    return convert<ShortSet, zivPixFmt_RGBA8888, zivPixFmt_NV12, Traits{.shared_blue = true}>(srcImg, dstImg);
}

int32_t zivColorBGRA8888toI420u8(const Image* srcImg, const Image* dstImg) {
    return convert<ShortSet, zivPixFmt_BGRA8888, zivPixFmt_I420>(srcImg, dstImg);
}

int32_t zivColorRGBA8888toI420u8(const Image* srcImg, const Image* dstImg) {
    return convert<ShortSet, zivPixFmt_RGBA8888, zivPixFmt_I420, Traits{.width_of_source = true}>(srcImg, dstImg);
}

}  // namespace reference
