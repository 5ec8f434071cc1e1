// SPDX-License-Identifier: MIT
// The kernel list: every kernel of the library, once. The exported entries, the function table of each target, the dispatcher's
// rows, the slots of the band tasks, the tests, the benchmarks and the format tables in the docs are derived from it.
// Adding a kernel is one line here and one function in a file of its family.
#pragma once

// clang-format off

// Kernels over a pair of image descriptors.
//   KERNEL(name, source layout, destination layout, Alpha: takes an alpha byte | Opaque,
//          Dispatched: zivColorCvt picks it for the pair | Direct: only by its name, slot of its band task | NoTask,
//          AnyTile | TightTile | NoTile: which tiles of an image may be converted by themselves, see core/streaming.h)
// A slot is the task's place in the context's record and what zivColorCvtFunc returns: a new task takes the next free number.
#define ZIVCOLOR_YUV2RGB_CONVERSIONS(KERNEL)                                                    \
    KERNEL(zivColorNV12toBGR888u8,      NV12,    BGR888,   Opaque, Dispatched, 8,      AnyTile) \
    KERNEL(zivColorNV21toBGR888u8,      NV21,    BGR888,   Opaque, Dispatched, 2,      AnyTile) \
    KERNEL(zivColorNV21toRGB888u8,      NV21,    RGB888,   Opaque, Dispatched, 1,      AnyTile) \
    KERNEL(zivColorNV21toBGRA8888u8,    NV21,    BGRA8888, Alpha,  Dispatched, 4,      AnyTile) \
    KERNEL(zivColorNV21toRGBA8888u8,    NV21,    RGBA8888, Alpha,  Dispatched, 0,      AnyTile) \
    KERNEL(zivColorNV12toRGBA8888u8,    NV12,    RGBA8888, Alpha,  Dispatched, 6,      AnyTile) \
    KERNEL(zivColorNV12toBGRA8888u8,    NV12,    BGRA8888, Alpha,  Dispatched, 7,      AnyTile) \
    KERNEL(zivColorI420toBGR888u8,      I420,    BGR888,   Opaque, Dispatched, 14,     AnyTile) \
    KERNEL(zivColorI420toRGB888u8,      I420,    RGB888,   Opaque, Dispatched, 10,     AnyTile) \
    KERNEL(zivColorI420toBGRA8888u8,    I420,    BGRA8888, Alpha,  Dispatched, 13,     AnyTile) \
    KERNEL(zivColorI420toRGBA8888u8,    I420,    RGBA8888, Alpha,  Dispatched, 9,      AnyTile) \
    KERNEL(zivColorYV12toBGR888u8,      YV12,    BGR888,   Opaque, Dispatched, NoTask, AnyTile) \
    KERNEL(zivColorYV12toRGB888u8,      YV12,    RGB888,   Opaque, Dispatched, NoTask, NoTile)  \
    KERNEL(zivColorYUYVtoBGR888u8,      YUYV,    BGR888,   Opaque, Dispatched, 44,     AnyTile) \
    KERNEL(zivColorYUYVtoRGB888u8,      YUYV,    RGB888,   Opaque, Dispatched, NoTask, AnyTile) \
    KERNEL(zivColorYUYVtoRGBA8888u8,    YUYV,    RGBA8888, Alpha,  Dispatched, NoTask, AnyTile) \
    KERNEL(zivColorLPI422HtoBGRA8888u8, LPI422H, BGRA8888, Alpha,  Dispatched, 41,     NoTile)  \
    KERNEL(zivColorLPI422HtoRGBA8888u8, LPI422H, RGBA8888, Alpha,  Dispatched, 43,     AnyTile)

// By the bytes of a pixel.
#define ZIVCOLOR_RGB24_TO_YUV_CONVERSIONS(KERNEL)                                                 \
    KERNEL(zivColorBGR888toNV21u8,      BGR888,   NV21,    Opaque, Dispatched, 23,     AnyTile)   \
    KERNEL(zivColorRGB888toNV21u8,      RGB888,   NV21,    Opaque, Dispatched, NoTask, TightTile) \
    KERNEL(zivColorBGR888toNV12u8,      BGR888,   NV12,    Opaque, Dispatched, 24,     AnyTile)   \
    KERNEL(zivColorRGB888toNV12u8,      RGB888,   NV12,    Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorBGR888toI420u8,      BGR888,   I420,    Opaque, Dispatched, 22,     AnyTile)   \
    KERNEL(zivColorRGB888toI420u8,      RGB888,   I420,    Opaque, Dispatched, 21,     AnyTile)   \
    KERNEL(zivColorRGB888toYUYVu8,      RGB888,   YUYV,    Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorBGR888toYUYVu8,      BGR888,   YUYV,    Opaque, Dispatched, 45,     AnyTile)   \
    KERNEL(zivColorRGB888toYVYUu8,      RGB888,   YVYU,    Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorBGR888toYVYUu8,      BGR888,   YVYU,    Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorRGB888toUYVYu8,      RGB888,   UYVY,    Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorBGR888toUYVYu8,      BGR888,   UYVY,    Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorRGB888toVYUYu8,      RGB888,   VYUY,    Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorBGR888toVYUYu8,      BGR888,   VYUY,    Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorRGB888toYV24u8,      RGB888,   YV24,    Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorRGB888toI422Hu8,     RGB888,   I422H,   Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorBGR888toI422Hu8,     BGR888,   I422H,   Opaque, Dispatched, NoTask, AnyTile)
#define ZIVCOLOR_RGB32_TO_YUV_CONVERSIONS(KERNEL)                                               \
    KERNEL(zivColorBGRA8888toNV21u8,    BGRA8888, NV21,    Opaque, Dispatched, 18,     NoTile)  \
    KERNEL(zivColorRGBA8888toNV21u8,    RGBA8888, NV21,    Opaque, Dispatched, 15,     NoTile)  \
    KERNEL(zivColorBGRA8888toNV12u8,    BGRA8888, NV12,    Opaque, Dispatched, 19,     AnyTile) \
    KERNEL(zivColorRGBA8888toNV12u8,    RGBA8888, NV12,    Opaque, Dispatched, 16,     AnyTile) \
    KERNEL(zivColorBGRA8888toI420u8,    BGRA8888, I420,    Opaque, Dispatched, 20,     AnyTile) \
    KERNEL(zivColorRGBA8888toI420u8,    RGBA8888, I420,    Opaque, Dispatched, 17,     AnyTile) \
    KERNEL(zivColorRGBA8888toYUYVu8,    RGBA8888, YUYV,    Opaque, Dispatched, NoTask, AnyTile) \
    KERNEL(zivColorBGRA8888toLPI422Hu8, BGRA8888, LPI422H, Opaque, Dispatched, 40,     NoTile)  \
    KERNEL(zivColorRGBA8888toLPI422Hu8, RGBA8888, LPI422H, Opaque, Dispatched, 42,     AnyTile)

#define ZIVCOLOR_YUVREPACK_CONVERSIONS(KERNEL)                                              \
    KERNEL(zivColorI420toNV21u8,     I420,  NV21,    Opaque, Dispatched, 11,     AnyTile)   \
    KERNEL(zivColorNV21toI420u8,     NV21,  I420,    Opaque, Dispatched, 3,      AnyTile)   \
    KERNEL(zivColorNV12toI420u8,     NV12,  I420,    Opaque, Dispatched, 5,      AnyTile)   \
    KERNEL(zivColorNV12toNV21u8,     NV12,  NV21,    Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorYV12toNV21u8_2,   YV12,  NV21,    Opaque, Dispatched, NoTask, TightTile) \
    KERNEL(zivColorNV12toYUYVu8,     NV12,  YUYV,    Opaque, Dispatched, NoTask, TightTile) \
    KERNEL(zivColorNV21toYUYVu8,     NV21,  YUYV,    Opaque, Dispatched, NoTask, TightTile) \
    KERNEL(zivColorI420toYUYVu8,     I420,  YUYV,    Opaque, Dispatched, 12,     AnyTile)   \
    KERNEL(zivColorYUYVtoNV21u8_v2,  YUYV,  NV21,    Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorYUYVtoNV12u8_v2,  YUYV,  NV12,    Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorYUYVtoI420u8_2,   YUYV,  I420,    Opaque, Dispatched, NoTask, NoTile)    \
    KERNEL(zivColorI422HtoI420u8,    I422H, I420,    Opaque, Dispatched, 25,     AnyTile)   \
    KERNEL(zivColorI422HtoNV21u8,    I422H, NV21,    Opaque, Dispatched, 26,     TightTile) \
    KERNEL(zivColorI422HtoNV12u8,    I422H, NV12,    Opaque, Dispatched, 27,     NoTile)    \
    KERNEL(zivColorI422HtoYUYVu8,    I422H, YUYV,    Opaque, Dispatched, 28,     AnyTile)   \
    KERNEL(zivColorI422HtoLPI422Hu8, I422H, LPI422H, Opaque, Dispatched, 29,     AnyTile)   \
    KERNEL(zivColorI422VtoI420u8,    I422V, I420,    Opaque, Dispatched, 30,     TightTile) \
    KERNEL(zivColorI422VtoNV21u8,    I422V, NV21,    Opaque, Dispatched, 31,     TightTile) \
    KERNEL(zivColorI422VtoNV12u8,    I422V, NV12,    Opaque, Dispatched, 32,     TightTile) \
    KERNEL(zivColorI422VtoYUYVu8,    I422V, YUYV,    Opaque, Dispatched, 33,     TightTile) \
    KERNEL(zivColorI422VtoLPI422Hu8, I422V, LPI422H, Opaque, Dispatched, 34,     TightTile) \
    KERNEL(zivColorI444toI420u8,     I444,  I420,    Opaque, Dispatched, 35,     TightTile) \
    KERNEL(zivColorI444toNV21u8,     I444,  NV21,    Opaque, Dispatched, 36,     TightTile) \
    KERNEL(zivColorI444toNV12u8,     I444,  NV12,    Opaque, Dispatched, 37,     TightTile) \
    KERNEL(zivColorI444toYUYVu8,     I444,  YUYV,    Opaque, Dispatched, 38,     TightTile) \
    KERNEL(zivColorI444toLPI422Hu8,  I444,  LPI422H, Opaque, Dispatched, 39,     NoTile)    \
    KERNEL(zivColorYUVtoNV21u8,      YUV,   NV21,    Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorNV21toYUVu8,      NV21,  YUV,     Opaque, Dispatched, NoTask, AnyTile)   \
    KERNEL(zivColorNV21toNV41,       NV21,  NV41,    Opaque, Direct, NoTask, NoTile)        \
    KERNEL(zivColorNV21toNV41_2,     NV21,  NV41,    Opaque, Dispatched, NoTask, NoTile)    \
    KERNEL(zivColorNV41toNV21,       NV41,  NV21,    Opaque, Direct, NoTask, NoTile)        \
    KERNEL(zivColorNV41toNV21_2,     NV41,  NV21,    Opaque, Dispatched, NoTask, NoTile)

#define ZIVCOLOR_RGBREPACK_CONVERSIONS(KERNEL)                                                  \
    KERNEL(zivColorRGBA8888toBGR888u8, RGBA8888, BGR888,   Opaque, Dispatched, NoTask, AnyTile) \
    KERNEL(zivColorRGB888toBGR888u8_2, RGB888,   BGR888,   Opaque, Dispatched, NoTask, AnyTile) \
    KERNEL(zivColorBGR888toARGB8888u8, BGR888,   ARGB8888, Opaque, Dispatched, NoTask, AnyTile) \
    KERNEL(zivColorRGB888toARGB8888u8, RGB888,   ARGB8888, Opaque, Dispatched, NoTask, AnyTile) \
    KERNEL(zivColorRGB888toBGR565u8,   RGB888,   BGR565,   Opaque, Dispatched, NoTask, AnyTile) \
    KERNEL(zivColorRGB888toRGB565u8,   RGB888,   RGB565,   Opaque, Dispatched, NoTask, AnyTile) \
    KERNEL(zivColorBGR888toRGB565u8,   BGR888,   RGB565,   Opaque, Dispatched, NoTask, AnyTile) \
    KERNEL(zivColorBGR888toBGR565u8,   BGR888,   BGR565,   Opaque, Dispatched, NoTask, AnyTile)

#define ZIVCOLOR_HSL_CONVERSIONS(KERNEL)
#define ZIVCOLOR_GEOMETRY_CONVERSIONS(KERNEL)
#define ZIVCOLOR_ENHANCE_CONVERSIONS(KERNEL)

// Kernels with a signature of their own.
//   KERNEL(result, name, (parameters), (arguments))
#define ZIVCOLOR_YUV2RGB_ROUTINES(KERNEL)

#define ZIVCOLOR_RGB24_TO_YUV_ROUTINES(KERNEL)
#define ZIVCOLOR_RGB32_TO_YUV_ROUTINES(KERNEL)

#define ZIVCOLOR_YUVREPACK_ROUTINES(KERNEL)                                         \
    KERNEL(int32_t, zivColorYV12toNV21u8,                                           \
           (const uint8_t* pSrc, uint8_t* pDst, int64_t width, int64_t height),     \
           (pSrc, pDst, width, height))                                             \
    KERNEL(int32_t, zivColorYUYVtoNV21u8,                                           \
           (const uint8_t* pSrc, uint8_t* pDst, int32_t lWidth, int32_t lHeight),   \
           (pSrc, pDst, lWidth, lHeight))                                           \
    KERNEL(int32_t, zivColorYUYVtoNV12u8,                                           \
           (const uint8_t* pSrc, uint8_t* pDst, int32_t lWidth, int32_t lHeight),   \
           (pSrc, pDst, lWidth, lHeight))                                           \
    KERNEL(int32_t, zivColorYUYVtoI420u8,                                           \
           (const uint8_t* yuvSrc, uint8_t* yuvDst, int32_t width, int32_t height), \
           (yuvSrc, yuvDst, width, height))

#define ZIVCOLOR_RGBREPACK_ROUTINES(KERNEL)                                     \
    KERNEL(int32_t, zivColorRGB888toBGR888u8,                                   \
           (const uint8_t* pSrc, uint8_t* pDst, int64_t width, int64_t height), \
           (pSrc, pDst, width, height))

#define ZIVCOLOR_HSL_ROUTINES(KERNEL)                                                                                                \
    KERNEL(int32_t, zivColorBGR888toHSL888u8,                                                                                        \
           (const uint8_t* bgr, uint8_t* hsl, uint32_t lHeight, uint32_t lWidth, uint32_t lineBytesBgr, uint32_t lineBytesHsl),      \
           (bgr, hsl, lHeight, lWidth, lineBytesBgr, lineBytesHsl))                                                                  \
    KERNEL(int32_t, zivColorBGR565toHSL888u8,                                                                                        \
           (const uint8_t* pBgr565, uint8_t* pHsl, uint32_t lHeight, uint32_t lWidth, uint32_t lineBytesBgr, uint32_t lineBytesHsl), \
           (pBgr565, pHsl, lHeight, lWidth, lineBytesBgr, lineBytesHsl))                                                             \
    KERNEL(int32_t, zivColorRGB565toHSL888u8,                                                                                        \
           (const uint8_t* pBgr565, uint8_t* pHsl, uint32_t lHeight, uint32_t lWidth, uint32_t lineBytesBgr, uint32_t lineBytesHsl), \
           (pBgr565, pHsl, lHeight, lWidth, lineBytesBgr, lineBytesHsl))                                                             \
    KERNEL(int32_t, zivColorI420toHSL888u8,                                                                                          \
           (const uint8_t* pY, const uint8_t* pCb, const uint8_t* pCr, uint32_t lWidth, uint32_t lHeight,                            \
            uint8_t* pHSL, uint32_t y_step1, uint32_t cbcr_step1, uint32_t hsl_step1),                                               \
           (pY, pCb, pCr, lWidth, lHeight, pHSL, y_step1, cbcr_step1, hsl_step1))

#define ZIVCOLOR_GEOMETRY_ROUTINES(KERNEL)                            \
    KERNEL(void, zivRotate,                                           \
           (const Image* srcImg, const Image* dstImg, int32_t lmode), \
           (srcImg, dstImg, lmode))                                   \
    KERNEL(int32_t, zivflip_horizontal_nv21,                          \
           (const Image* srcImg, const Image* dstImg),                \
           (srcImg, dstImg))                                          \
    KERNEL(int32_t, zivflip_vertical_nv21,                            \
           (const Image* srcImg, const Image* dstImg),                \
           (srcImg, dstImg))

#define ZIVCOLOR_ENHANCE_ROUTINES(KERNEL)                                                                     \
    KERNEL(int64_t, _SkinWhitenByMask_YUV420_VUVU,                                                            \
           (const MaskedImage* pImg, const uint8_t* pMskData, int64_t lMskLine, const int32_t* plBrightenTab, \
            int64_t lRedLevel, const int32_t* plYContrastTable),                                              \
           (pImg, pMskData, lMskLine, plBrightenTab, lRedLevel, plYContrastTable))                            \
    KERNEL(int64_t, _SkinWhitenByMask_YUV420_VUVU_neon,                                                       \
           (const MaskedImage* pImg, const uint8_t* pMskData, int64_t lMskLine, const int32_t* plBrightenTab, \
            int64_t lRedLevel, const int32_t* plYContrastTable),                                              \
           (pImg, pMskData, lMskLine, plBrightenTab, lRedLevel, plYContrastTable))                            \
    KERNEL(void, CalcMergeWeightMap_neon,                                                                     \
           (const int64_t* pSumW, uint8_t* pWtMap, int64_t lW, int64_t lImgNum),                              \
           (pSumW, pWtMap, lW, lImgNum))

// Kernels with binary floats inside, which are called to the nearest-even rounding whatever the caller's thread is set to: see
// core/rounding.h.
#define ZIVCOLOR_KERNELS_WITH_FLOATS(KERNEL) \
    KERNEL(zivColorNV21toBGRA8888u8)         \
    KERNEL(zivColorBGRA8888toNV21u8)         \
    KERNEL(zivColorRGBA8888toNV21u8)         \
    KERNEL(zivColorBGR888toHSL888u8)         \
    KERNEL(zivColorBGR565toHSL888u8)         \
    KERNEL(zivColorRGB565toHSL888u8)         \
    KERNEL(zivColorI420toHSL888u8)           \
    KERNEL(CalcMergeWeightMap_neon)

// All parts: the families, or what a target may rebuild of one.
//   PART(name, namespace of its family, name of its lists)
#define ZIVCOLOR_PARTS(PART)                     \
    PART(yuv2rgb,      yuv2rgb,   YUV2RGB)       \
    PART(rgb24_to_yuv, rgb2yuv,   RGB24_TO_YUV)  \
    PART(rgb32_to_yuv, rgb2yuv,   RGB32_TO_YUV)  \
    PART(yuvrepack,    yuvrepack, YUVREPACK)     \
    PART(rgbrepack,    rgbrepack, RGBREPACK)     \
    PART(hsl,          hsl,       HSL)           \
    PART(geometry,     geometry,  GEOMETRY)      \
    PART(enhance,      enhance,   ENHANCE)

#define ZIVCOLOR_RGB2YUV_CONVERSIONS(KERNEL)   \
    ZIVCOLOR_RGB24_TO_YUV_CONVERSIONS(KERNEL)  \
    ZIVCOLOR_RGB32_TO_YUV_CONVERSIONS(KERNEL)
#define ZIVCOLOR_RGB2YUV_ROUTINES(KERNEL)      \
    ZIVCOLOR_RGB24_TO_YUV_ROUTINES(KERNEL)     \
    ZIVCOLOR_RGB32_TO_YUV_ROUTINES(KERNEL)

#define ZIVCOLOR_CONVERSIONS(KERNEL)       \
    ZIVCOLOR_YUV2RGB_CONVERSIONS(KERNEL)   \
    ZIVCOLOR_RGB2YUV_CONVERSIONS(KERNEL)   \
    ZIVCOLOR_YUVREPACK_CONVERSIONS(KERNEL) \
    ZIVCOLOR_RGBREPACK_CONVERSIONS(KERNEL) \
    ZIVCOLOR_HSL_CONVERSIONS(KERNEL)       \
    ZIVCOLOR_GEOMETRY_CONVERSIONS(KERNEL)  \
    ZIVCOLOR_ENHANCE_CONVERSIONS(KERNEL)
#define ZIVCOLOR_ROUTINES(KERNEL)       \
    ZIVCOLOR_YUV2RGB_ROUTINES(KERNEL)   \
    ZIVCOLOR_RGB2YUV_ROUTINES(KERNEL)   \
    ZIVCOLOR_YUVREPACK_ROUTINES(KERNEL) \
    ZIVCOLOR_RGBREPACK_ROUTINES(KERNEL) \
    ZIVCOLOR_HSL_ROUTINES(KERNEL)       \
    ZIVCOLOR_GEOMETRY_ROUTINES(KERNEL)  \
    ZIVCOLOR_ENHANCE_ROUTINES(KERNEL)

// clang-format on
