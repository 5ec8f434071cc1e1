// SPDX-License-Identifier: MIT
// Y0 U Y1 V from luma and two planes of chroma on Advanced SIMD.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

// All zips before the stores: in-order cores wait for what a compiler would put between them.
template <>
ZIV_INLINE void store_yuyv<16>(uint8_t* p, const Channels<16, 4>& parts) {
    uint8_t* second;
    asm("add %1, %2, #32\n\t"
        "zip1 v20.16b, %3.16b, %4.16b\n\t"
        "zip2 v21.16b, %3.16b, %4.16b\n\t"
        "zip1 v22.16b, %5.16b, %6.16b\n\t"
        "zip2 v23.16b, %5.16b, %6.16b\n\t"
        "st1 {v20.16b, v21.16b}, [%2]\n\t"
        "st1 {v22.16b, v23.16b}, [%1]"
        : "=m"(*reinterpret_cast<uint8_t(*)[64]>(p)), "=&r"(second)
        : "r"(p), "w"(parts.c[0]), "w"(parts.c[2]), "w"(parts.c[1]), "w"(parts.c[3])
        : "v20", "v21", "v22", "v23");
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
