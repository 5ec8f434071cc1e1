// SPDX-License-Identifier: MIT
// What every kernel file starts from. Kernel files are built once for each target, so all of this stands in the target's own
// namespace, and nothing here may come from a standard header but plain types.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "core/image.h"
#include "lanes/lanes.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// The smallest sizes that a kernel takes; unchecked where it does not look.
struct MinimumSizes {
    int32_t source_width, source_height, destination_width, destination_height;
};
inline constexpr int32_t unchecked = INT32_MIN;
inline constexpr MinimumSizes both_2x2{2, 2, 2, 2};
inline constexpr MinimumSizes both_2x1{2, 1, 2, 1};  // width 2, height 1
inline constexpr MinimumSizes both_1x1{1, 1, 1, 1};
inline constexpr MinimumSizes destination_2x2_source_height_2{unchecked, 2, 2, 2};
inline constexpr MinimumSizes destination_2x2{unchecked, unchecked, 2, 2};
inline constexpr MinimumSizes destination_1x1{unchecked, unchecked, 1, 1};

ZIV_INLINE int32_t check_sizes(const Image* srcImg, const Image* dstImg, MinimumSizes minimum) {
    if (!srcImg || !dstImg) return zivStatus_NullPointer;
    const bool fits = srcImg->width >= minimum.source_width && srcImg->height >= minimum.source_height &&
                      dstImg->width >= minimum.destination_width && dstImg->height >= minimum.destination_height;
    return fits ? zivStatus_OK : zivStatus_BadArgument;
}

ZIV_INLINE int32_t check(const Image* srcImg, const Image* dstImg, uint32_t source, uint32_t destination,
                         MinimumSizes minimum) {
    if (!srcImg || !dstImg) return zivStatus_NullPointer;
    if (srcImg->format != source || dstImg->format != destination) return zivStatus_BadArgument;
    return check_sizes(srcImg, dstImg, minimum);
}

// The row of a plane.
ZIV_INLINE uint8_t* row_at(uint8_t* plane, ptrdiff_t row, int32_t pitch) { return plane + row * ptrdiff_t{pitch}; }

// The same with the product wrapped to signed 32 bits: what the kernels that convert two rows of 4:2:0 to RGB do.
ZIV_INLINE uint8_t* row_at_wrapped(uint8_t* plane, ptrdiff_t row, int32_t pitch) {
    return plane + static_cast<int32_t>(static_cast<uint32_t>(row) * static_cast<uint32_t>(pitch));
}

// The columns that whole blocks of a row cover.
template <int block>
ZIV_INLINE ptrdiff_t blocked_columns(ptrdiff_t width) {
    return width < block ? 0 : width / block * block;
}

ZIV_INLINE int clamp_byte(int value) { return value < 0 ? 0 : value > 255 ? 255 : value; }

// A step of a pass: `value` bytes in each vector, and its hints are for `hinted` of them on behalf of the steps beside it.
template <int bytes, int hinted_bytes = bytes>
struct Step {
    static constexpr int value = bytes, hinted = hinted_bytes;
};

// A column hidden from compilers that would carry an address of its own through the loop for every row and register.
ZIV_INLINE ptrdiff_t hidden_index(ptrdiff_t j) {
    asm("" : "+r"(j));
    return j;
}

// The same of pointers that a walk steps on from row to row: compilers would keep the addresses of each row and vector. All
// at once, so that each has a register.
template <class A, class B>
ZIV_INLINE void hide_pointers(A*& a, B*& b) {
    asm("" : "+r"(a), "+r"(b));
}
template <class A, class B, class C>
ZIV_INLINE void hide_pointers(A*& a, B*& b, C*& c) {
    asm("" : "+r"(a), "+r"(b), "+r"(c));
}
template <class A, class B, class C, class D>
ZIV_INLINE void hide_pointers(A*& a, B*& b, C*& c, D*& d) {
    asm("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d));
}

// Covers columns 0 to columns - 1 with steps of the target's widest vector first and narrower ones for what is left, and
// returns the first column left over: fewer than 16 are. The body is called as body(Step<bytes>{}, column).
template <class Body>
ZIV_INLINE ptrdiff_t for_steps(ptrdiff_t columns, Body body) {
    ptrdiff_t j = 0;
    for (; j + widest <= columns; j += widest) body(Step<widest>{}, j);
    if constexpr (widest > 32)
        if (j + 32 <= columns) body(Step<32>{}, j), j += 32;
    if constexpr (widest > 16)
        if (j + 16 <= columns) body(Step<16>{}, j), j += 16;
    return j;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
