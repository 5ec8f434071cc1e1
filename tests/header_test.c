/* SPDX-License-Identifier: MIT */
/* The public header in plain C: sizes and offsets of the records that cross the boundary. */
#include "zivcolor.h"

#define SAME(name, a, b) typedef char name[(a) == (b) ? 1 : -1]
#define BY_POINTER(bytes_32, bytes_64) (sizeof(void*) == 4 ? (bytes_32) : (bytes_64))

/* Numbers that the preprocessor knows. */
#if ZIVCOLOR_VERSION_MAJOR * 1000000 + ZIVCOLOR_VERSION_MINOR * 1000 + ZIVCOLOR_VERSION_PATCH < 1000000
#error "no version"
#endif

SAME(image_size, sizeof(__tag_KOBR_OFFSCREEN), BY_POINTER(44, 64));
SAME(image_format, offsetof(__tag_KOBR_OFFSCREEN, format), 0);
SAME(image_width, offsetof(__tag_KOBR_OFFSCREEN, width), 4);
SAME(image_height, offsetof(__tag_KOBR_OFFSCREEN, height), 8);
SAME(image_plane, offsetof(__tag_KOBR_OFFSCREEN, plane), BY_POINTER(12, 16));
SAME(image_pitch, offsetof(__tag_KOBR_OFFSCREEN, pitch), BY_POINTER(28, 48));
SAME(masked_size, sizeof(_TAG_OFFSCREEN), BY_POINTER(44, 64));
SAME(masked_width, offsetof(_TAG_OFFSCREEN, width), 0);
SAME(masked_height, offsetof(_TAG_OFFSCREEN, height), 4);
SAME(masked_tag, offsetof(_TAG_OFFSCREEN, tag), 8);
SAME(masked_pitch, offsetof(_TAG_OFFSCREEN, pitch), BY_POINTER(12, 16));
SAME(masked_plane, offsetof(_TAG_OFFSCREEN, plane), BY_POINTER(28, 32));
SAME(alpha_size, sizeof(zivColorExtParam_ALPHA_t), 4);
SAME(alpha_alpha, offsetof(zivColorExtParam_ALPHA_t, alpha), 0);

int32_t zivcolor_called_from_c(void) {
    static uint8_t luma[4] = {10, 20, 30, 40}, chroma[2] = {128, 128}, pixels[12];
    zivColorExtParam_ALPHA_t parameter = {255};
    __tag_KOBR_OFFSCREEN source = {zivPixFmt_NV21, 2, 2, {0}, {2, 2, 0, 0}};
    __tag_KOBR_OFFSCREEN destination = {zivPixFmt_BGR888, 2, 2, {0}, {6, 0, 0, 0}};
    int32_t status;
    source.plane[0] = luma;
    source.plane[1] = chroma;
    destination.plane[0] = pixels;
    status = zivColorCvt(&source, &destination, parameter);
    if (status != zivStatus_OK) return status;
    return pixels[0] == 10 && pixels[3] == 20 && pixels[6] == 30 && pixels[11] == 40 ? 0 : 1;
}
