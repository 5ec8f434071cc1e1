// SPDX-License-Identifier: MIT
// NV21 from and to NV41, whose chroma is quartered in both directions.
#include <cstdlib>
#include <vector>

#include "reference/reference.h"
#include "reference/steps.h"
#include "reference/work_buffer.h"

namespace reference {

namespace {

int32_t check(const Image* src, int32_t from, const Image* dst, int32_t to) {
    if (is_null(src, dst)) return zivStatus_NullPointer;
    if (!formats_are(src, from, dst, to)) return zivStatus_BadArgument;
    if (!at_least(dst, 2, 2) || src->height < 2) return zivStatus_BadArgument;
    return zivStatus_OK;
}

void copy(uint8_t* to, const uint8_t* from, int64_t bytes) {
    for (int64_t k = 0; k < bytes; ++k) put(to + k, get(from + k));
}

void clear(uint8_t* to, int64_t bytes) {
    for (int64_t k = 0; k < bytes; ++k) put(to + k, 0);
}

// One block of the destination's pitch, unless the two share their luma.
void copy_luma(const Image* src, const Image* dst) {
    if (src->plane[0] != dst->plane[0]) copy(dst->plane[0], src->plane[0], static_cast<int64_t>(dst->pitch[0]) * src->height);
}

int mean(int a, int b) { return (a + b + 1) >> 1; }
int mean(int a, int b, int c, int d) { return (a + b + c + d + 2) >> 2; }

// The sample at an offset and its neighbour one pair further, in two rows.
int mean_of_square(const uint8_t* upper, const uint8_t* lower, int64_t at) {
    const int a = get(upper + at), b = get(upper + at + 2);
    const int c = get(lower + at), d = get(lower + at + 2);
    return mean(a, b, c, d);
}

// One NV41 row from two NV21 rows. Returns how far the row was written, by its V side.
int64_t quarter_row(const uint8_t* upper, const uint8_t* lower, uint8_t* out, int64_t w) {
    int64_t j = 0;
    for (; j <= w - 32; j += 32) {
        const auto above = load<32>(upper + j);
        const auto below = load<32>(lower + j);
        Bytes<16> means{};
        for (size_t k = 0; k < 8; ++k)
            for (size_t c = 0; c < 2; ++c)
                means[2 * k + c] = mean(above[4 * k + c], above[4 * k + 2 + c], below[4 * k + c], below[4 * k + 2 + c]);
        store(out + j / 2, means);
    }
    // V goes on where the block stopped, U begins at the start of the row again.
    int64_t u = 0;
    for (; j < w; j += 4, u += 4) {
        const int v_mean = mean_of_square(upper, lower, j);
        const int u_mean = mean_of_square(upper, lower, u + 1);
        put(out + j / 2, v_mean);
        put(out + u / 2 + 1, u_mean);
    }
    return j / 2;
}

int32_t nv21_to_nv41(const Image* src, const Image* dst, bool clears) {
    if (const int32_t failure = check(src, zivPixFmt_NV21, dst, zivPixFmt_NV41)) return failure;
    copy_luma(src, dst);
    const int32_t w = src->width;
    const int64_t out_pitch = dst->pitch[1];
    const uint8_t* in = src->plane[1];
    uint8_t* out = dst->plane[1];
    for (int32_t i = 0; i < src->height; i += 4) {
        const int64_t stop = quarter_row(in, in + src->pitch[1], out, w);
        if (clears) clear(out + stop, out_pitch - w / 2);
        in += 2LL * src->pitch[1];
        out += out_pitch;
    }
    if (clears) clear(out, out_pitch * src->height / 4);
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorNV21toNV41(const Image* srcImg, const Image* dstImg) { return nv21_to_nv41(srcImg, dstImg, false); }

int32_t zivColorNV21toNV41_2(const Image* srcImg, const Image* dstImg) { return nv21_to_nv41(srcImg, dstImg, true); }

namespace {

// Where a pass puts its two rows: in the image, or in the work buffer, which is not the caller's memory.
struct OutRows {
    uint8_t* upper;
    uint8_t* lower;
    bool in_image;
    void put_upper(int64_t at, int value) const { in_image ? put(upper + at, value) : void(upper[at] = uint8_t(value)); }
    void put_lower(int64_t at, int value) const { in_image ? put(lower + at, value) : void(lower[at] = uint8_t(value)); }
};

// A sample of the pass's row and of the row above it, and their neighbours to the right.
struct Neighbours {
    int t, tn, b, bn;
};

void put_four(const OutRows& out, int64_t at, const Neighbours& n) {
    out.put_lower(at, n.t);
    out.put_lower(at + 2, mean(n.t, n.tn));
    out.put_upper(at, mean(n.t, n.b));
    out.put_upper(at + 2, mean(n.t, n.tn, n.b, n.bn));
}

Neighbours neighbours(const uint8_t* row, const uint8_t* above, int64_t at, bool right_edge) {
    Neighbours n{get(row + at), 0, get(above + at), 0};
    n.tn = right_edge ? n.t : get(row + at + 2);
    n.bn = right_edge ? n.b : get(above + at + 2);
    return n;
}

void spread_row(const uint8_t* row, const uint8_t* above, const OutRows& out, int64_t w) {
    int64_t j = 0;
    for (; j <= w - 32; j += 32) {
        std::array<Neighbours, 16> lanes{};  // in memory order, V and U by turns
        const bool last = j == w - 32;
        const auto t = load<16>(row + j / 2);
        const auto b = load<16>(above + j / 2);
        const auto t_right = last ? Bytes<16>{} : load<16>(row + j / 2 + 2);
        const auto b_right = last ? Bytes<16>{} : load<16>(above + j / 2 + 2);
        for (size_t k = 0; k < 16; ++k) {
            const size_t right = k < 14 ? k + 2 : k;
            lanes[k] = {t[k], last ? t[right] : t_right[k], b[k], last ? b[right] : b_right[k]};
        }
        for (size_t k = 0; k < 16; ++k) put_four(out, j + 4 * int64_t(k / 2) + int64_t(k % 2), lanes[k]);
    }
    // V goes on where the block stopped, U begins at the start of the row again.
    int64_t u = 0;
    for (; j < w; j += 4, u += 4) {
        const bool right_edge = j == w - 4;
        const Neighbours v_side = neighbours(row, above, j / 2, right_edge);
        const Neighbours u_side = neighbours(row, above, u / 2 + 1, right_edge);
        put_four(out, j, v_side);
        put_four(out, u + 1, u_side);
    }
}

}  // namespace

int32_t zivColorNV41toNV21_2(const Image* srcImg, const Image* dstImg) {
    if (const int32_t failure = check(srcImg, zivPixFmt_NV41, dstImg, zivPixFmt_NV21)) return failure;
    const int32_t h = srcImg->height;
    const int64_t in_pitch = srcImg->pitch[1];
    const int64_t out_pitch = dstImg->pitch[1];
    copy_luma(srcImg, dstImg);
    if (in_pitch < 0) return zivStatus_OutOfMemory;
    // Room for what a destination pitch above the source's, or one below 0, would make of it.
    const int64_t before = out_pitch < 0 ? -out_pitch : 0;
    const int64_t room = before + 2 * (in_pitch > out_pitch ? in_pitch : out_pitch) + srcImg->width + 64;
    std::vector<uint8_t> memory(static_cast<size_t>(room), g_work_buffer_fill);
    uint8_t* const work = memory.data() + before;

    const uint8_t* in = srcImg->plane[1] + (h / 4 - 1) * in_pitch;
    uint8_t* out = dstImg->plane[1] + (h / 2 - 1) * out_pitch;
    for (int32_t i = 0; i < h; i += 4) {
        const bool top = i == h - 4;
        OutRows rows{out - out_pitch, out, true};
        if (top) rows = {work, work + out_pitch, false};
        spread_row(in, top ? in : in - in_pitch, rows, srcImg->width);
        if (top)
            for (int64_t k = 0; k < 2 * in_pitch; ++k) put(out - out_pitch + k, work[k]);
        out -= 2 * out_pitch;
        in -= in_pitch;
    }
    return zivStatus_OK;
}

namespace {

// The four outputs of one sample column in two rows: p is the sample to the left, c the one here.
void put_first_generation(uint8_t* upper, uint8_t* lower, int64_t at, int p_top, int c_top, int p_bottom, int c_bottom) {
    put(upper + at, mean(p_top, c_top));
    put(upper + at + 2, c_top);
    put(lower + at, mean(p_top, c_top, p_bottom, c_bottom));
    put(lower + at + 2, mean(p_top, p_bottom));
}

}  // namespace

// Ends in its first pass, at the U side of the tail.
int32_t zivColorNV41toNV21(const Image* srcImg, const Image* dstImg) {
    if (const int32_t failure = check(srcImg, zivPixFmt_NV41, dstImg, zivPixFmt_NV21)) return failure;
    copy_luma(srcImg, dstImg);
    const int64_t w = srcImg->width;
    if (w <= 0) return zivStatus_OK;
    const uint8_t* in = srcImg->plane[1];  // the top row is its own upper neighbour
    uint8_t* upper = dstImg->plane[1];
    uint8_t* lower = upper + dstImg->pitch[1];
    int64_t j = 0;
    for (; j <= w - 36; j += 32) {
        const auto here = load<16>(in + j / 2);
        Bytes<16> left{};
        if (j == 0)
            for (size_t k = 0; k < 16; ++k) left[k] = here[k < 2 ? k : k - 2];
        else left = load<16>(in + j / 2 - 2);
        for (size_t k = 0; k < 16; ++k)
            put_first_generation(upper, lower, j + 4 * int64_t(k / 2) + int64_t(k % 2), left[k], here[k], left[k], here[k]);
    }
    const int here = get(in + j / 2);
    const int left = j == 0 ? here : get(in + j / 2 - 2);
    put_first_generation(upper, lower, j, left, here, left, here);
    std::abort();
}

}  // namespace reference
