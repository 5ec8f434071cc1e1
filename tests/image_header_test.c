/* SPDX-License-Identifier: MIT */
/* zivcolor_image.h in plain C: a frame of odd size from its room to its pixels, and one as a camera tells it. */
#include "zivcolor_image.h"

int32_t zivcolor_image_used_from_c(void) {
    static uint8_t frame[64], pixels[256];
    zivcolor_camera_plane planes[3];
    zivColorExtParam_ALPHA_t alpha = {255};
    zivcolor_room from, to;
    zivcolor_image source, destination;
    size_t at;
    int32_t status = zivcolor_room_of_pair(zivPixFmt_NV21, zivcolor_format_named("BGR888"), 5, 3, 1, &from, &to);
    if (status != zivStatus_OK || from.size > sizeof frame || to.size > sizeof pixels) return 1;
    for (at = 0; at < from.size; at++) frame[at] = at < from.offset[1] ? 50 : 128;
    source = zivcolor_image_in(&from, frame);
    destination = zivcolor_image_in(&to, pixels);
    if (zivColorCvt(&source, &destination, alpha) != zivStatus_OK) return 2;
    if (pixels[0] != 50 || pixels[to.step[0] + 3 * 3 + 2] != 50 || pixels[3 * 4] != 0) return 3;

    planes[0].first = source.plane[0];
    planes[0].row_stride = source.pitch[0];
    planes[0].pixel_stride = 1;
    planes[1].first = source.plane[1] + 1;
    planes[2].first = source.plane[1];
    planes[1].row_stride = planes[2].row_stride = source.pitch[1];
    planes[1].pixel_stride = planes[2].pixel_stride = 2;
    if (zivcolor_image_of_camera(planes, 5, 3, &source) != zivStatus_OK || source.format != zivPixFmt_NV21) return 4;
    return zivColorCvt(&source, &destination, alpha);
}
