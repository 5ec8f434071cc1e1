// SPDX-License-Identifier: MIT
// The same program in C++.
#include <stdio.h>
#include <stdlib.h>
#include <zivcolor_image.h>

int main(void) {
    enum { width = 320, height = 240 };
    unsigned char *yuv, *bgr;
    zivcolor_image source, destination;
    zivcolor_room from, to;
    zivColorExtParam_ALPHA_t parameter = {255};
    void* context = zivColorCvtInit_MultiThreads(NULL);
    int status;
    if (zivcolor_room_of_pair(zivPixFmt_NV21, zivPixFmt_BGR888, width, height, 1, &from, &to) != zivStatus_OK) return 1;
    yuv = (unsigned char*)calloc(from.size, 1);
    bgr = (unsigned char*)malloc(to.size);
    if (!yuv || !bgr || !context) return 1;
    source = zivcolor_image_in(&from, yuv);
    destination = zivcolor_image_in(&to, bgr);
    status = zivColorCvt(&source, &destination, parameter);
    if (status == zivStatus_OK) status = zivColorCvtProcess_MultiThreads(context, &source, &destination, NULL);
    /* Luma and chroma 0: (58065 * -128 + 16384) >> 15 is below 0, green is 135. */
    if (bgr[0] != 0 || bgr[1] != 135 || bgr[2] != 0) status = 2;
    printf("zivcolor %d.%d.%d, status %d, first pixel %d %d %d\n", ZIVCOLOR_VERSION_MAJOR, ZIVCOLOR_VERSION_MINOR,
           ZIVCOLOR_VERSION_PATCH, status, bgr[0], bgr[1], bgr[2]);
    if (zivColorCvtUnInit_MultiThreads(NULL, context) != zivStatus_OK) status = 3;
    free(yuv);
    free(bgr);
    return status;
}
