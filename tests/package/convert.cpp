// SPDX-License-Identifier: MIT
// The same program in C++.
#include <stdio.h>
#include <stdlib.h>
#include <zivcolor.h>

int main(void) {
    enum { width = 320, height = 240 };
    unsigned char* yuv = (unsigned char*)calloc(width * height * 3 / 2, 1);
    unsigned char* bgr = (unsigned char*)malloc(width * height * 3);
    zivColorExtParam_ALPHA_t parameter = {255};
    __tag_KOBR_OFFSCREEN source = {zivPixFmt_NV21, width, height, {0, 0, 0, 0}, {width, width, 0, 0}};
    __tag_KOBR_OFFSCREEN destination = {zivPixFmt_BGR888, width, height, {0, 0, 0, 0}, {3 * width, 0, 0, 0}};
    void* context = zivColorCvtInit_MultiThreads(NULL);
    int status;
    if (!yuv || !bgr || !context) return 1;
    source.plane[0] = yuv;
    source.plane[1] = yuv + width * height;
    destination.plane[0] = bgr;
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
