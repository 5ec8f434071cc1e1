// SPDX-License-Identifier: MIT
// Stands in for one function of the library, by the linker's --wrap: one byte of one width is wrong.
#include "zivcolor.h"

extern "C" {

int32_t __real_zivColorNV21toBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
int32_t __wrap_zivColorNV21toBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

int32_t __wrap_zivColorNV21toBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg) {
    const int32_t status = __real_zivColorNV21toBGR888u8(srcImg, dstImg);
    if (status == zivStatus_OK && dstImg->width == 47) dstImg->plane[0][137] ^= 1;
    return status;
}

}  // extern "C"
