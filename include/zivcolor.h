/* zivcolor: pixel-format conversion for imaging software.
 *
 * Every function rewrites pixels from one layout to another in memory that the caller owns, and returns a status.
 * Nothing is allocated, logged or remembered (but for the context of the multi-threaded front and one work buffer).
 * Samples are 8 bits; YUV is full range, chroma is centred at 128 and never filtered. U stands for Cb, V for Cr.
 */
#ifndef ZIVCOLOR_H
#define ZIVCOLOR_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#define ZIVCOLOR_API
#else
#define ZIVCOLOR_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Images ---------------------------------------------------------------------------------------------------- */

/* Format codes. The high byte is the family: 1 RGB in 16 bits, 2 in 24, 3 in 32; 4 packed 4:4:4, 5 packed 4:2:2, 6 planar,
 * 8 semi-planar. Bytes are told in memory order. */
enum {
    zivPixFmt_BGR565 = 0x101,   /* little-endian word: blue in bits 15 to 11, green in 10 to 5, red in 4 to 0 */
    zivPixFmt_RGB565 = 0x105,   /* little-endian word: red in bits 15 to 11, green in 10 to 5, blue in 4 to 0 */
    zivPixFmt_BGR888 = 0x201,   /* B G R */
    zivPixFmt_RGB888 = 0x204,   /* R G B */
    zivPixFmt_BGRA8888 = 0x302, /* B G R A */
    zivPixFmt_ARGB8888 = 0x304, /* A R G B */
    zivPixFmt_RGBA8888 = 0x305, /* R G B A */
    zivPixFmt_YUV = 0x401,      /* Y U V */
    zivPixFmt_YUYV = 0x501,     /* Y0 U Y1 V, for two pixels */
    zivPixFmt_YVYU = 0x502,     /* Y0 V Y1 U */
    zivPixFmt_UYVY = 0x503,     /* U Y0 V Y1 */
    zivPixFmt_VYUY = 0x504,     /* V Y0 U Y1 */
    zivPixFmt_I420 = 0x601,     /* Y; U; V; chroma planes of width/2 by height/2 */
    zivPixFmt_I422V = 0x602,    /* Y; U; V; chroma planes of width by height/2, rows contiguous */
    zivPixFmt_I422H = 0x603,    /* Y; U; V; chroma planes of width/2 by height */
    zivPixFmt_I444 = 0x604,     /* Y; U; V; all of width by height */
    zivPixFmt_YV12 = 0x605,     /* Y; V; U; chroma planes of width/2 by height/2 */
    zivPixFmt_YV24 = 0x608,     /* Y; V; U; all of width by height */
    zivPixFmt_NV12 = 0x801,     /* Y; pairs U V; one pair for 2 by 2 pixels */
    zivPixFmt_NV21 = 0x802,     /* Y; pairs V U; one pair for 2 by 2 pixels */
    zivPixFmt_LPI422H = 0x803,  /* Y; pairs U V; one pair for 2 by 1 pixels */
    zivPixFmt_NV41 = 0x805      /* Y; pairs V U; one pair for 4 by 4 pixels */
};

/* Status values. */
enum {
    zivStatus_OK = 0,
    zivStatus_NullPointer = -1,   /* a required pointer is null */
    zivStatus_BadArgument = -2,   /* a format code or pair that is not converted, or a size below the kernel's least */
    zivStatus_EngineFailure = -6, /* the parallel engine failed to shut down */
    zivStatus_OutOfMemory = 4     /* a work buffer could not be had; positive, unlike the others */
};

/* The image descriptor of all conversions, turns and mirrors. The library reads it and never writes it. */
typedef struct __tag_KOBR_OFFSCREEN {
    uint32_t format;   /* zivPixFmt_... */
    int32_t width;     /* pixels */
    int32_t height;    /* pixels */
    uint8_t* plane[4]; /* first byte of each plane; the fourth is never read */
    int32_t pitch[4];  /* bytes from one row of the plane to the next, may be negative; the fourth is never read */
} __tag_KOBR_OFFSCREEN;

/* The older descriptor, which only the skin-whitening kernels take. */
typedef struct _TAG_OFFSCREEN {
    int32_t width;  /* pixels */
    int32_t height; /* pixels */
    int32_t tag;    /* neither read nor written */
    __extension__ union {
        __extension__ struct {
            int32_t pitch[4]; /* bytes per row of each plane */
            uint8_t* plane[4];
        };
    };
} _TAG_OFFSCREEN;

/* Extension parameter of a conversion: the low 8 bits become the alpha byte of every written pixel in the kernels from YUV to
 * 32-bit RGB; all others ignore it. */
typedef struct zivColorExtParam_ALPHA_t {
    int32_t alpha;
} zivColorExtParam_ALPHA_t;

/* ---- The dispatcher --------------------------------------------------------------------------------------------- */

/* Picks the one kernel for the pair of format codes, passes the low 8 bits of Param.alpha on where the kernel takes an alpha
 * byte, and returns the kernel's status. Reads no size, plane or pitch of its own.
 *   zivStatus_NullPointer   srcImg or dstImg is null (tested first)
 *   zivStatus_BadArgument   the pair has no conversion */
ZIVCOLOR_API int32_t zivColorCvt(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                 zivColorExtParam_ALPHA_t Param);

/* ---- YUV to RGB ------------------------------------------------------------------------------------------------------ */

ZIVCOLOR_API int32_t zivColorNV12toBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV21toBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV21toRGB888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV21toBGRA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                              uint8_t Param);
ZIVCOLOR_API int32_t zivColorNV21toRGBA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                              uint8_t Param);
ZIVCOLOR_API int32_t zivColorNV12toRGBA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                              uint8_t Param);
ZIVCOLOR_API int32_t zivColorNV12toBGRA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                              uint8_t Param);
ZIVCOLOR_API int32_t zivColorI420toBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI420toRGB888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI420toBGRA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                              uint8_t Param);
ZIVCOLOR_API int32_t zivColorI420toRGBA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                              uint8_t Param);
ZIVCOLOR_API int32_t zivColorYV12toBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorYV12toRGB888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorYUYVtoBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorYUYVtoRGB888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorYUYVtoRGBA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                              uint8_t alpha);
ZIVCOLOR_API int32_t zivColorLPI422HtoBGRA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                                 uint8_t alpha);
ZIVCOLOR_API int32_t zivColorLPI422HtoRGBA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                                 uint8_t alpha);

/* ---- RGB to YUV ------------------------------------------------------------------------------------------------------ */

ZIVCOLOR_API int32_t zivColorBGR888toNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toNV12u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toNV12u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGRA8888toNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGBA8888toNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGRA8888toNV12u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGBA8888toNV12u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGRA8888toI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGBA8888toI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGBA8888toYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toYVYUu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toYVYUu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toUYVYu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toUYVYu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toVYUYu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toVYUYu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toYV24u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toI422Hu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toI422Hu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGRA8888toLPI422Hu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGBA8888toLPI422Hu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* ---- YUV to YUV ------------------------------------------------------------------------------------------------------ */

ZIVCOLOR_API int32_t zivColorI420toNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV21toI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV12toI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV12toNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorYV12toNV21u8_2(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorYV12toNV21u8(const uint8_t* pSrc, uint8_t* pDst, int64_t width, int64_t height);
ZIVCOLOR_API int32_t zivColorNV12toYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV21toYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI420toYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorYUYVtoNV21u8_v2(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorYUYVtoNV12u8_v2(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorYUYVtoI420u8_2(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorYUYVtoNV21u8(const uint8_t* pSrc, uint8_t* pDst, int32_t lWidth, int32_t lHeight);
ZIVCOLOR_API int32_t zivColorYUYVtoNV12u8(const uint8_t* pSrc, uint8_t* pDst, int32_t lWidth, int32_t lHeight);
ZIVCOLOR_API int32_t zivColorYUYVtoI420u8(const uint8_t* yuvSrc, uint8_t* yuvDst, int32_t width, int32_t height);
ZIVCOLOR_API int32_t zivColorI422HtoI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI422HtoNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI422HtoNV12u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI422HtoYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI422HtoLPI422Hu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI422VtoI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI422VtoNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI422VtoNV12u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI422VtoYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI422VtoLPI422Hu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI444toI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI444toNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI444toNV12u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI444toYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI444toLPI422Hu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorYUVtoNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV21toYUVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV21toNV41(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV21toNV41_2(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV41toNV21(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV41toNV21_2(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* ---- RGB to RGB ------------------------------------------------------------------------------------------------------ */

ZIVCOLOR_API int32_t zivColorRGBA8888toBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toBGR888u8_2(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toARGB8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toARGB8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toBGR565u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toRGB565u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toRGB565u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toBGR565u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toBGR888u8(const uint8_t* pSrc, uint8_t* pDst, int64_t width, int64_t height);

/* ---- HSL ------------------------------------------------------------------------------------------------------------- */

ZIVCOLOR_API int32_t zivColorBGR888toHSL888u8(const uint8_t* bgr, uint8_t* hsl, uint32_t lHeight, uint32_t lWidth,
                                              uint32_t lineBytesBgr, uint32_t lineBytesHsl);
ZIVCOLOR_API int32_t zivColorBGR565toHSL888u8(const uint8_t* pBgr565, uint8_t* pHsl, uint32_t lHeight, uint32_t lWidth,
                                              uint32_t lineBytesBgr, uint32_t lineBytesHsl);
ZIVCOLOR_API int32_t zivColorRGB565toHSL888u8(const uint8_t* pBgr565, uint8_t* pHsl, uint32_t lHeight, uint32_t lWidth,
                                              uint32_t lineBytesBgr, uint32_t lineBytesHsl);
ZIVCOLOR_API int32_t zivColorI420toHSL888u8(const uint8_t* pY, const uint8_t* pCb, const uint8_t* pCr, uint32_t lWidth,
                                            uint32_t lHeight, uint8_t* pHSL, uint32_t y_step1, uint32_t cbcr_step1,
                                            uint32_t hsl_step1);

/* ---- Geometry -------------------------------------------------------------------------------------------------------- */

ZIVCOLOR_API void zivRotate(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg, int32_t lmode);
ZIVCOLOR_API int32_t zivflip_horizontal_nv21(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivflip_vertical_nv21(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* ---- Enhancement ----------------------------------------------------------------------------------------------------- */

ZIVCOLOR_API int64_t _SkinWhitenByMask_YUV420_VUVU(const _TAG_OFFSCREEN* pImg, const uint8_t* pMskData, int64_t lMskLine,
                                                   const int32_t* plBrightenTab, int64_t lRedLevel,
                                                   const int32_t* plYContrastTable);
ZIVCOLOR_API int64_t _SkinWhitenByMask_YUV420_VUVU_neon(const _TAG_OFFSCREEN* pImg, const uint8_t* pMskData, int64_t lMskLine,
                                                        const int32_t* plBrightenTab, int64_t lRedLevel,
                                                        const int32_t* plYContrastTable);
ZIVCOLOR_API void CalcMergeWeightMap_neon(const int64_t* pSumW, uint8_t* pWtMap, int64_t lW, int64_t lImgNum);

/* ---- Conversion on several threads ----------------------------------------------------------------------------------- */

/* A context holds worker threads and runs one conversion on all of them: the destination's rows are cut into bands, four for
 * each core, and every band is converted by the kernel that zivColorCvt picks for the pair. A context knows nothing of images:
 * one serves any number of conversions, of any formats and sizes. Idle workers sleep. A process may hold any number of
 * contexts, and threads may share one.
 *
 * Threads pay from about 1000 by 500 pixels on; below that, zivColorCvt is as fast or faster. */

/* Starts a context: a worker for each CPU that the calling thread may run on, 8 at most, fewer if the system grants no more
 * threads. Cores and bands stay fixed for the life of the context.
 *   hMemMgr   where the context's record comes from; null is the C heap
 * Returns the context's handle, or null if there is no worker or no memory for the record; in the latter case the workers
 * stay behind. */
ZIVCOLOR_API void* zivColorCvtInit_MultiThreads(void* hMemMgr);

/* Converts srcImg to dstImg on the context and returns when all is done; the calling thread lends a hand. Allocates nothing.
 *
 * Bands: contiguous runs of rows of the destination, whose height alone is read. Each begins at an even row. Bands differ by
 * one pair of rows at most, the higher ones come last, and the last also takes the odd row; with few rows the first bands are
 * empty. A band is converted as an image of its own: same formats, widths and pitches, the band's height for both, and planes
 * that begin at the band's first row by the pitches of the descriptors: pitch[k] times the row, or half the row for chroma
 * that is halved vertically.
 *
 * The result is that of zivColorCvt if no kernel writes past the end of its rows (an even width is enough) and if the pitches
 * agree with what the kernel assumes where it does not read them:
 *   BGRA8888 to LPI422H, LPI422H to BGRA8888, I444 to LPI422H   every pitch is the tight row of its plane
 *   I422V to all                                                the source's chroma pitches are its width
 *   I422V and I444 to I420, NV21 and NV12                       the destination's chroma pitches are the tight rows
 *   I422H to NV21                                               the destination's pitch[1] equals its pitch[0]
 * I422H to NV12 is no match: its kernel spreads chroma rows two pitches apart from the start of each band, bands overlap, and
 * which of them stays is not determined.
 *
 *   extParam   the low 8 bits of alpha become the alpha byte where RGBA8888 or BGRA8888 is made from YUV; null is alpha 0
 *
 *   zivStatus_NullPointer   the handle, srcImg or dstImg is null; nothing is touched
 *   zivStatus_BadArgument   zivColorCvtFunc knows no task for the pair (zivColorCvt converts 36 pairs more); nothing is touched
 *   zivStatus_OK            in all other cases, even if the kernel refused: a size below its least leaves the rows of the band
 *                           as they were and is not reported */
ZIVCOLOR_API int32_t zivColorCvtProcess_MultiThreads(void* zivColorCvtHandle, const __tag_KOBR_OFFSCREEN* srcImg,
                                                     const __tag_KOBR_OFFSCREEN* dstImg,
                                                     const zivColorExtParam_ALPHA_t* extParam);

/* Ends the context: when it returns zivStatus_OK, its threads have ended and its memory is given back. No conversion may be
 * running on it. hMemMgr must be the one given to zivColorCvtInit_MultiThreads.
 *   zivStatus_NullPointer     the handle is null
 *   zivStatus_EngineFailure   the workers could not be shut down; the context's record stays allocated */
ZIVCOLOR_API int32_t zivColorCvtUnInit_MultiThreads(void* hMemMgr, void* zivColorCvtHandle);

/* The index, 0 to 45, of the band task for the pair of format codes, or -1 if the pair has none. Reads the two codes and
 * nothing else; the pointers are not tested for null. */
ZIVCOLOR_API int32_t zivColorCvtFunc(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

#ifdef __cplusplus
}
#endif

#endif
