// SPDX-License-Identifier: MIT
// The public header in C++: the same layout as in C, the codes and statuses as numbers, and a call made from C.
#include "zivcolor.h"

#include <gtest/gtest.h>

extern "C" int32_t zivcolor_called_from_c(void);

namespace {

constexpr size_t by_pointer(size_t of_4_bytes, size_t of_8_bytes) { return sizeof(void*) == 4 ? of_4_bytes : of_8_bytes; }

static_assert(ZIVCOLOR_VERSION_MAJOR == 1 && ZIVCOLOR_VERSION_MINOR >= 0 && ZIVCOLOR_VERSION_PATCH >= 0);
static_assert(sizeof(__tag_KOBR_OFFSCREEN) == by_pointer(44, 64) &&
              offsetof(__tag_KOBR_OFFSCREEN, plane) == by_pointer(12, 16) &&
              offsetof(__tag_KOBR_OFFSCREEN, pitch) == by_pointer(28, 48));
static_assert(offsetof(__tag_KOBR_OFFSCREEN, format) == 0 && offsetof(__tag_KOBR_OFFSCREEN, width) == 4 &&
              offsetof(__tag_KOBR_OFFSCREEN, height) == 8);
static_assert(sizeof(_TAG_OFFSCREEN) == by_pointer(44, 64) && offsetof(_TAG_OFFSCREEN, pitch) == by_pointer(12, 16) &&
              offsetof(_TAG_OFFSCREEN, plane) == by_pointer(28, 32));
static_assert(offsetof(_TAG_OFFSCREEN, width) == 0 && offsetof(_TAG_OFFSCREEN, height) == 4 &&
              offsetof(_TAG_OFFSCREEN, tag) == 8);
static_assert(sizeof(zivColorExtParam_ALPHA_t) == 4 && offsetof(zivColorExtParam_ALPHA_t, alpha) == 0);

TEST(Header, CodesAreTheNumbersThatFilesAndCallersHold) {
    EXPECT_EQ(zivPixFmt_BGR565, 0x101);
    EXPECT_EQ(zivPixFmt_RGB565, 0x105);
    EXPECT_EQ(zivPixFmt_BGR888, 0x201);
    EXPECT_EQ(zivPixFmt_RGB888, 0x204);
    EXPECT_EQ(zivPixFmt_BGRA8888, 0x302);
    EXPECT_EQ(zivPixFmt_ARGB8888, 0x304);
    EXPECT_EQ(zivPixFmt_RGBA8888, 0x305);
    EXPECT_EQ(zivPixFmt_YUV, 0x401);
    EXPECT_EQ(zivPixFmt_YUYV, 0x501);
    EXPECT_EQ(zivPixFmt_YVYU, 0x502);
    EXPECT_EQ(zivPixFmt_UYVY, 0x503);
    EXPECT_EQ(zivPixFmt_VYUY, 0x504);
    EXPECT_EQ(zivPixFmt_I420, 0x601);
    EXPECT_EQ(zivPixFmt_I422V, 0x602);
    EXPECT_EQ(zivPixFmt_I422H, 0x603);
    EXPECT_EQ(zivPixFmt_I444, 0x604);
    EXPECT_EQ(zivPixFmt_YV12, 0x605);
    EXPECT_EQ(zivPixFmt_YV24, 0x608);
    EXPECT_EQ(zivPixFmt_NV12, 0x801);
    EXPECT_EQ(zivPixFmt_NV21, 0x802);
    EXPECT_EQ(zivPixFmt_LPI422H, 0x803);
    EXPECT_EQ(zivPixFmt_NV41, 0x805);
    EXPECT_EQ(zivStatus_OK, 0);
    EXPECT_EQ(zivStatus_NullPointer, -1);
    EXPECT_EQ(zivStatus_BadArgument, -2);
    EXPECT_EQ(zivStatus_EngineFailure, -6);
    EXPECT_EQ(zivStatus_OutOfMemory, 4);
}

TEST(Header, AConversionCalledFromC) { EXPECT_EQ(zivcolor_called_from_c(), 0); }

}  // namespace
