/* SPDX-License-Identifier: MIT */
/* A program with functions of its own by the names that the library uses inside. Both keep their own. */
#include <stdio.h>
#include <zivcolor.h>

#include "own_functions.h"

int main(void) {
    enum { width = 64, height = 64 };
    static unsigned char nv41[width * height * 3 / 2], nv21[width * height * 3 / 2], bgr[width * height * 3];
    zivColorExtParam_ALPHA_t parameter = {255};
    __tag_KOBR_OFFSCREEN quarter = {zivPixFmt_NV41, width, height, {0, 0, 0, 0}, {width, width, 0, 0}};
    __tag_KOBR_OFFSCREEN frame = {zivPixFmt_NV21, width, height, {0, 0, 0, 0}, {width, width, 0, 0}};
    __tag_KOBR_OFFSCREEN picture = {zivPixFmt_BGR888, width, height, {0, 0, 0, 0}, {3 * width, 0, 0, 0}};
    void* context = zivColorCvtInit_MultiThreads(NULL);
    int own;
    quarter.plane[0] = nv41;
    quarter.plane[1] = nv41 + width * height;
    frame.plane[0] = nv21;
    frame.plane[1] = nv21 + width * height;
    picture.plane[0] = bgr;
    nv41[0] = 77;
    if (!context) return 1;
    /* These use all that is inside: a work buffer, copies, fills, tasks. */
    if (zivColorCvt(&quarter, &frame, parameter) != zivStatus_OK || nv21[0] != 77) return 2;
    if (zivColorCvt(&frame, &quarter, parameter) != zivStatus_OK) return 3;
    if (zivColorCvtProcess_MultiThreads(context, &frame, &picture, &parameter) != zivStatus_OK) return 4;
    if (zivColorCvtUnInit_MultiThreads(NULL, context) != zivStatus_OK) return 5;
    if (calls != 0) return 6;
    MemMgrAlloc("here", 1);
    MemMgrFree("here");
    own = MemMgrCpy() + MemMgrSet() + zivAddTask() + zivWaitTask() + zivTryFireCpu() + zivTryRestoreCpu() +
          zivParallelUninit() + zivParallelEngineCores() + (zivParallelInit() ? 1 : 0);
    printf("%d calls of the program's own functions\n", calls);
    return calls == 11 && own > 0 ? 0 : 7;
}
