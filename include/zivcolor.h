/* SPDX-License-Identifier: MIT */
/* zivcolor: pixel-format conversion for imaging software.
 *
 * Every function rewrites pixels from one layout to another in memory that the caller owns, and returns a status.
 * Nothing is allocated (but for the context of the multi-threaded front and one work buffer), nothing is logged, and nothing is
 * remembered but which kernels the CPU runs and how large its caches are, found out at the first call.
 * Samples are 8 bits; YUV is full range, chroma is centred at 128 and never filtered. U stands for Cb, V for Cr.
 *
 * Where a function works in binary floats, it rounds to the nearest, ties to even, whatever the calling thread has set its
 * floating-point unit to: direction, denormal numbers flushed, exceptions that trap. That is set as before when it returns; the
 * flags of inexact results and of invalid operations may be raised then.
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

/* Before what C++ and C99 know as an extension only: structures and unions without a name. */
#if defined(__GNUC__)
#define ZIVCOLOR_EXTENSION __extension__
#else
#define ZIVCOLOR_EXTENSION
#endif

/* ---- Version ----------------------------------------------------------------------------------------------------- */
/* The version of this header, by semantic versioning. What was compiled with version X.Y runs with the shared library of every
 * later version X.Z and gets the same bytes from it. */
#define ZIVCOLOR_VERSION_MAJOR 1 /* raised when a program must be changed or compiled anew, or when a byte changes */
#define ZIVCOLOR_VERSION_MINOR 0 /* raised when something is added */
#define ZIVCOLOR_VERSION_PATCH 0 /* raised when faults are mended */

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Images ---------------------------------------------------------------------------------------------------- */
/* What a conversion is told: format codes and descriptors; and what it answers. */

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
    zivStatus_OK = 0,             /* done, also where there was nothing to do */
    zivStatus_NullPointer = -1,   /* a required pointer is null */
    zivStatus_BadArgument = -2,   /* a format code or pair that is not converted, or a size below the kernel's least */
    zivStatus_EngineFailure = -6, /* the parallel engine failed to shut down */
    zivStatus_OutOfMemory = 4     /* a work buffer could not be had; positive, unlike the others */
};

/* The image descriptor of all conversions, turns and mirrors. The library reads it and never writes it. zivcolor_image.h fills
 * it, and knows how many bytes an image takes for each pair: odd sizes, and whatever a pair touches beyond it. */
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
    ZIVCOLOR_EXTENSION union {
        ZIVCOLOR_EXTENSION struct {
            int32_t pitch[4];  /* bytes per row of each plane */
            uint8_t* plane[4]; /* first byte of each plane */
        };
    };
} _TAG_OFFSCREEN;

/* Extension parameter of a conversion: the low 8 bits become the alpha byte of every written pixel in the kernels from YUV to
 * 32-bit RGB; all others ignore it. */
typedef struct zivColorExtParam_ALPHA_t {
    int32_t alpha; /* the alpha byte is its low 8 bits */
} zivColorExtParam_ALPHA_t;

/* ---- The dispatcher --------------------------------------------------------------------------------------------- */
/* One function for all pairs. */

/* Picks the one kernel for the pair of format codes, passes the low 8 bits of Param.alpha on where the kernel takes an alpha
 * byte, and returns the kernel's status. Reads no size, plane or pitch of its own.
 *   zivStatus_NullPointer   srcImg or dstImg is null (tested first)
 *   zivStatus_BadArgument   the pair has no conversion; dstImg is not looked at if no pair has such a source */
ZIVCOLOR_API int32_t zivColorCvt(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                 zivColorExtParam_ALPHA_t Param);

/* ---- YUV to RGB ------------------------------------------------------------------------------------------------------ */
/* Frames of cameras and decoders to pixels. */

/* Coefficient sets. All take full-range luma as it stands; u = U - 128, v = V - 128; >> floors; results are clamped to 0..255
 * unless told otherwise.
 *   fine      R = (32768 Y + 45941 v + 16384) >> 15, G = (32768 Y - 11277 u - 23401 v + 16384) >> 15,
 *             B = (32768 Y + 58065 u + 16384) >> 15: one rounding of the whole sum
 *   coarse    R = Y + (45 v >> 5), G = Y - ((11 u >> 5) + (23 v >> 5)), B = Y + (57 u >> 5): every product floored by itself
 *   rounded   R = (32 Y + 45 v + 16) >> 5, G = (32 Y - 11 u - 23 v + 16) >> 5, B = (32 Y + 57 u + 16) >> 5
 *   binary32  R = trunc(Y + 1.402 v), G = trunc(Y + (-0.714 v + -0.344 u)), B = trunc(Y + 1.772 u), every product and every sum
 *             rounded to single precision by itself
 * The weights are those of BT.601 with full-range YUV, 1.402, 0.344, 0.714 and 1.772, rounded to each set's scale. The same YUV
 * gives different low bits through different sets; which one a function uses is part of its definition. Greys (u = v = 0) give
 * R = G = B = Y in all of them.
 *
 * Chroma is never filtered: one pair serves its 2 by 2 pixels (4:2:0) or its 2 by 1 pixels (4:2:2) unchanged.
 *
 * What all of these functions share: a row is walked in blocks of 16 columns while 16 are left, and what is left of it in a
 * tail, which in some functions differs from the blocks. Width W and height H are those of dstImg unless told otherwise; the
 * source is read as if it had that size. Nothing but the bytes told is read or written. The last argument, where there is one,
 * becomes byte 3 of every written pixel and nothing else.
 *   zivStatus_NullPointer   srcImg or dstImg is null
 *   zivStatus_BadArgument   a format code is not the one in the function's name, or a width or height of either image is below
 *                           the least told for the group
 *   zivStatus_OK            otherwise, also where nothing was written */

/* -- NV12 and NV21 to 24-bit RGB -- */
/* Semi-planar 4:2:0, pairs V U (NV21) or U V (NV12), to 24-bit RGB. Least size 2 by 2. Two rows a pass, H / 2 passes; with an
 * odd H the last row is left as it was, with an odd W the last column. The tail takes 2 columns of both rows at a time. Reads
 * pitch[0] and pitch[1] of the source and pitch[0] of the destination. The offset of an upper row, row times pitch, wraps in
 * signed 32 bits; the lower row is one pitch further.
 *   NV12toBGR888, NV21toBGR888   fine set in blocks and tail
 *   NV21toRGB888                 blocks: coarse set, but 11 u >> 6 in green. Tail: coarse set, bytes B G R. It stops one pair
 *                                of columns early: of an even W that is no multiple of 16 it leaves the last two columns
 *                                as they were, and W = 2 altogether. Byte 0 is 0 if R < 0, else 255 if B > 255, else the
 *                                low 8 bits of B; byte 2 is 0 if B < 0, else 255 if R > 255, else the low 8 bits of R. */

ZIVCOLOR_API int32_t zivColorNV12toBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV21toBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV21toRGB888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* -- NV12 and NV21 to 32-bit RGB -- */
/* Semi-planar 4:2:0 to 32-bit RGB with alpha: rows, least size, pitches and pairs as above.
 *   NV21toBGRA8888   binary32 set; the tail sums green as trunc((Y + -0.714 v) + -0.344 u), which changes 1917 of all 2^24
 *                    triples by one
 *   NV21toRGBA8888   rounded set in blocks and tail
 *   NV12toRGBA8888   coarse set. The tail stops one pair of columns early, as above, and takes the luma of its second column
 *                    crosswise: the upper pixel's from the lower row, the lower pixel's from the upper row.
 *   NV12toBGRA8888   the same, and its tail writes bytes R G B alpha: byte 0 is 0 if B < 0, else 255 if R > 255, else the low
 *                    8 bits of R; byte 2 is 0 if R < 0, else 255 if B > 255, else the low 8 bits of B. */

ZIVCOLOR_API int32_t zivColorNV21toBGRA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                              uint8_t Param);
ZIVCOLOR_API int32_t zivColorNV21toRGBA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                              uint8_t Param);
ZIVCOLOR_API int32_t zivColorNV12toRGBA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                              uint8_t Param);
ZIVCOLOR_API int32_t zivColorNV12toBGRA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                              uint8_t Param);

/* -- I420 to RGB -- */
/* I420 (planes Y, U, V) to RGB. Least size 2 by 2; rows and tail as for the semi-planar sources. Reads pitch[0], pitch[1] and
 * pitch[2] of the source and pitch[0] of the destination.
 *   I420toBGR888     fine set. The luma of the tail runs ahead: its pass k, counted from 0, writes columns T + 2 k and the next
 *                    (T the first column of the tail) from the luma of columns T + 4 k + 2 and the next. So up to W - T bytes
 *                    past the end of both luma rows are read and used, at even widths too: a tail of n pairs of columns
 *                    reads luma up to column T + 4 n, 14 past the row at most.
 *   I420toRGB888, I420toBGRA8888, I420toRGBA8888   coarse set in blocks and tail */

ZIVCOLOR_API int32_t zivColorI420toBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI420toRGB888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI420toBGRA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                              uint8_t Param);
ZIVCOLOR_API int32_t zivColorI420toRGBA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                              uint8_t Param);

/* -- YV12 to RGB -- */
/* YV12 (planes Y, V, U) to 24-bit RGB. Least size 2 by 2. Every row and every column is converted, also of odd sizes; the tail
 * takes single columns. Reads pitch[0], pitch[1] and pitch[2] of the source and pitch[0] of the destination.
 *   YV12toBGR888   blocks: coarse set. The tail never reads V: B = Y + (57 u >> 5) and G = Y - (11 u >> 5), clamped, R = Y.
 *   YV12toRGB888   coarse set in blocks and tail. All rows go to row 1 of the destination, one over the other: the last source
 *                  row is what remains there, and no other row is touched. */

ZIVCOLOR_API int32_t zivColorYV12toBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorYV12toRGB888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* -- YUYV to RGB -- */
/* YUYV (Y0 U Y1 V) to RGB. Least size 2 by 1, rows one by one. The tail takes a group of 4 bytes and writes two pixels: with an
 * odd W it reads 2 bytes and writes one pixel past the row, which the next row overwrites if it starts there. Reads pitch[0] of
 * both images.
 *   YUYVtoBGR888     fine set. Tail: bytes R G B without a lower limit, each at most 255 and truncated to 8 bits; byte 0 loses
 *                    its upper limit where B < 0, byte 2 where R < 0.
 *   YUYVtoRGB888     coarse set. Tail: the same bytes without a lower limit, each at most 255 and truncated to 8 bits.
 *   YUYVtoRGBA8888   coarse set in blocks and tail */

ZIVCOLOR_API int32_t zivColorYUYVtoBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorYUYVtoRGB888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorYUYVtoRGBA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                              uint8_t alpha);

/* -- LPI422H to RGB -- */
/* LPI422H (plane Y, plane of pairs U V, a chroma row for each luma row) to 32-bit RGB. Least size 2 by 2, rows one by one,
 * coarse set in blocks and tail. The tail takes 2 columns at a time; with an odd W the last column is left as it was.
 *   LPI422HtoBGRA8888   reads no pitch of either image: every row starts where the one before it ended, on all planes, after W
 *                       columns, or after W - 1 with an odd W
 *   LPI422HtoRGBA8888   walks the width and height of srcImg; reads pitch[0] and pitch[1] of the source and pitch[0] of the
 *                       destination */

ZIVCOLOR_API int32_t zivColorLPI422HtoBGRA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                                 uint8_t alpha);
ZIVCOLOR_API int32_t zivColorLPI422HtoRGBA8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                                                 uint8_t alpha);

/* ---- RGB to YUV ------------------------------------------------------------------------------------------------------ */
/* Pixels to frames, for encoders. */

/* Coefficient sets. All give full range with chroma centred at 128; >> floors, clamp limits to 0..255. R, G, B are 0..255.
 *   short            Y = (19 R + 38 G + 7 B) >> 6, U = clamp(((B - Y) * 9 >> 4) + 128), V = clamp(((R - Y) * 91 >> 7) + 128)
 *   fine             S = 9798 R + 19235 G + 3736 B, Y = (S + 16384) >> 15; chroma from the rounded luma:
 *                    U = clamp((((B - Y) * 18492 + 16384) >> 15) + 128), V likewise from R - Y and 23372
 *   fine fractional  the same Y; chroma from the luma with 7 fractional bits, D = S >> 8:
 *                    U = clamp((((((B << 7) - D) * 18492 >> 7) + 16384) >> 15) + 128), V likewise from R and 23372
 *   float            Y = 0.299 R + 0.587 G + 0.114 B, U = -0.1678 R - 0.3313 G + 0.5 B, V = 0.5 R - 0.4187 G - 0.0813 B, each
 *                    truncated toward 0, then 128 added to U and V and the result limited to 0..255
 *   eighths          the short Y; U = clamp(((B - Y) * 4 >> 3) + 128), V = clamp(((R - Y) * 7 >> 3) + 128)
 *   thirty-seconds   the short Y; U = clamp(((B - Y) * 18 >> 5) + 128), V = clamp(((R - Y) * 23 >> 5) + 128)
 * The weights are those of BT.601 luma, R 0.299, G 0.587, B 0.114, and of its colour differences, rounded to each set's scale.
 * The short set's luma sums to 64 and the fine set's to 32769. Greys give Y equal to the grey level and chroma 128, but for the
 * float set's blocks.
 *
 * Chroma is never averaged: it is the chroma of one pixel, the one at the even column (of the even row, in 4:2:0).
 *
 * What all of these functions share: a row is walked in blocks of columns from the left, and what is left of it in a tail.
 * Rows stand at plane + row * pitch in 64 bits, any pitch, negative ones too, unless told otherwise. Nothing but the bytes told
 * is read or written. A fourth byte of a source pixel is not looked at. Sizes of the two images are not compared.
 *   zivStatus_NullPointer   srcImg or dstImg is null
 *   zivStatus_BadArgument   a format code is not the one in the function's name, or a width or height of either image is below
 *                           the least told for the group
 *   zivStatus_OK            otherwise */

/* -- 24-bit RGB to NV12, NV21 and I420 -- */
/* 24-bit RGB to 4:2:0. Least size 2 by 2. Width and height are those of dstImg. Blocks of 16 columns while 16 are left, then
 * single pixels. Chroma row k comes from image row 2 k alone; H rows give (H + 1) / 2 chroma rows. A semi-planar chroma row
 * takes (W + 1) / 2 pairs, so an odd W writes the byte at index W of it; an I420 one takes (W + 1) / 2 bytes in each plane.
 * Reads source pitch[0]; writes by pitch[0] and pitch[1], I420 also pitch[2]. */

/* Plane 1 takes V, U. Fine fractional set, in the tail too. */
ZIVCOLOR_API int32_t zivColorBGR888toNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* Plane 1 takes V, U. Short set. Chroma rows step by the destination's pitch[0]; its pitch[1] is not read. The tail writes the
 * chroma of all its columns to one byte, V and then U, so that after an even row byte c of the chroma row, c being the columns
 * that the blocks covered, holds the U of the last even column; the bytes behind it keep what they held. */
ZIVCOLOR_API int32_t zivColorRGB888toNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* Plane 1 takes U, V. Fine fractional set, in the tail too. */
ZIVCOLOR_API int32_t zivColorBGR888toNV12u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* Plane 1 takes U, V. Short set; the tail shifts V by 4 where the blocks shift by 7: V = clamp(((R - Y) * 91 >> 4) + 128). */
ZIVCOLOR_API int32_t zivColorRGB888toNV12u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* Plane 1 takes U, plane 2 V. Fine set, in the tail too. */
ZIVCOLOR_API int32_t zivColorBGR888toI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* Plane 1 takes U, plane 2 V. Short set, in the tail too. */
ZIVCOLOR_API int32_t zivColorRGB888toI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* -- 32-bit RGB to NV21 -- */
/* 32-bit RGB to NV21 by the float set. Least size 2 by 2; width and height are those of dstImg; pitches, chroma rows and the
 * byte at index W as in the group above. Blocks of 8 columns from column j while j < W - 8, so that 1 to 8 columns of every row
 * are left to the tail; a width of 8 or less has no block. Blocks work in binary32, every product and every sum rounded by
 * itself, green and red added first; the tail in binary64, its luma rounded to binary32 before it is truncated. A colour may
 * come out one step apart in block and tail: the grey levels 37, 61, 74, 93, 111, 122, 148, 186, 215, 222, 233, 244 and 253
 * give a Y one lower in a block. Plane 1 takes V, U. */
ZIVCOLOR_API int32_t zivColorBGRA8888toNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGBA8888toNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* -- 32-bit RGB to NV12 and I420 -- */
/* 32-bit RGB to NV12 and I420 by the short set. Least size 2 by 2; height is that of dstImg, width too but for
 * zivColorRGBA8888toI420u8, whose width is that of srcImg. Blocks, tail, pitches, chroma rows as in 24-bit RGB to 4:2:0. */

/* Plane 1 takes U, V. In a block the luma of columns 8 to 15 takes its blue from columns 0 to 7: 7 B in the luma of the pixel
 * at column 8 + n is that of the pixel at column n. Chroma there uses this luma and the pixel's own B and R. The tail's luma
 * takes its own blue. */
ZIVCOLOR_API int32_t zivColorBGRA8888toNV12u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGBA8888toNV12u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* Plane 1 takes U, plane 2 V. */
ZIVCOLOR_API int32_t zivColorBGRA8888toI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGBA8888toI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* -- RGB to packed 4:2:2 -- */
/* RGB to packed 4:2:2, four bytes for the pixels at columns 2 n and 2 n + 1. Least size 2 by 1; width and height are those of
 * dstImg. Chroma comes from column 2 n of the same row, luma from both. Blocks of 16 columns while 16 are left, then pairs of
 * pixels: an odd W reads the pixel at column W, 3 or 4 bytes past the row (of a 4-byte pixel the first three), and writes a
 * whole group of four bytes, 2 W + 2 in a row. Reads and writes by pitch[0]. Short set, but for zivColorBGR888toYUYVu8, which
 * takes the fine set. Block and tail give the same bytes. */
ZIVCOLOR_API int32_t zivColorRGBA8888toYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toYVYUu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toYVYUu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toUYVYu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toUYVYu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toVYUYu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toVYUYu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* -- RGB to YV24 -- */
/* To planar 4:4:4 by the short set: plane 0 takes Y, plane 1 V, plane 2 U, one byte a pixel each, by their own pitches. Least
 * size 1 by 1; width and height are those of dstImg. Blocks of 8 columns, then single pixels, with the same bytes. */
ZIVCOLOR_API int32_t zivColorRGB888toYV24u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* -- RGB to I422H -- */
/* To planar 4:2:2 by the short set: plane 0 takes Y, plane 1 U and plane 2 V of the even columns, every row, by their own
 * pitches. Least size 2 by 1; height is that of dstImg, width too but for zivColorBGR888toI422Hu8, whose width is that of
 * srcImg. Blocks of 16 columns while 16 are left, then pairs of pixels: an odd W reads the pixel at column W, 3 bytes past the
 * row, and writes its luma at column W. Chroma rows take (W + 1) / 2 bytes. Block and tail give the same bytes. */
ZIVCOLOR_API int32_t zivColorRGB888toI422Hu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toI422Hu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* -- RGB to LPI422H -- */
/* To line-packed 4:2:2: plane 0 takes Y, plane 1 pairs U, V of the even columns, every row. Least size 2 by 2; width and height
 * are those of srcImg. Blocks of 16 columns while 16 are left, then single pixels, with the same bytes. An odd W writes a whole
 * pair for its last column, W + 1 bytes of chroma. */

/* Eighths set. Reads no pitch at all: every row follows the one before, 4 W bytes of source, W of luma, W of chroma (W + 1 when
 * W is odd). */
ZIVCOLOR_API int32_t zivColorBGRA8888toLPI422Hu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* Thirty-seconds set. Reads the source's pitch[0] and the destination's pitch[0] and pitch[1]. */
ZIVCOLOR_API int32_t zivColorRGBA8888toLPI422Hu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* ---- YUV to YUV ------------------------------------------------------------------------------------------------------ */
/* Frames from one layout to another. */

/* -- NV12, NV21, I420 and YV12 to each other -- */
/* 4:2:0 between plane arrangements. Samples are moved, none is computed: luma is copied, chroma is merged, split or swapped.
 * W and H are the destination's width and height; they alone drive the walk. A row lies at plane[k] + r * pitch[k].
 * The first four walk pairs of rows and of columns: blocks of 16 columns (NV12 to NV21: none), then pairs while two columns are
 * left. An odd last row or column is neither read nor written; no byte past the even part is touched. A tail differs from a
 * block in nothing but its width.
 *   zivStatus_NullPointer   srcImg or dstImg (pSrc or pDst) is null; tested first
 *   zivStatus_BadArgument   a format code is another one, or a width or height that is tested is below 2 */

/* Y; U; V to Y; pairs V U. Formats and all four sizes are tested. */
ZIVCOLOR_API int32_t zivColorI420toNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* Y; pairs V U to Y; U; V. Formats, destination sizes and source height are tested; the source's width is not. */
ZIVCOLOR_API int32_t zivColorNV21toI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* Y; pairs U V to Y; U; V. Formats and all four sizes are tested. */
ZIVCOLOR_API int32_t zivColorNV12toI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* Y; pairs U V to Y; pairs V U. Formats and all four sizes are tested. Works in place. */
ZIVCOLOR_API int32_t zivColorNV12toNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* Y; V; U to Y; pairs V U: each pair takes plane[1] first, then plane[2]. No format code is tested, and of the sizes only the
 * destination's. Row by row, every one of H rows: an odd H carries its last chroma row too, (H + 1) / 2 in all. Blocks of 16
 * columns while they fit, then pairs while a column is left: with an odd W one luma byte past W is read and written in each
 * row, and in the even rows a chroma pair for the half-covered column.
 * Destination chroma rows step by the destination's pitch[0]; its pitch[1] is not read. */
ZIVCOLOR_API int32_t zivColorYV12toNV21u8_2(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* The same on two tight buffers: Y of width * height bytes, V and U of a quarter of that (rounded down) to Y and pairs V U.
 * With an odd width every luma row and every row of pairs is a byte longer than the image's, so the rows that follow begin a
 * byte later, in source and destination; the source's chroma rows stay width / 2 (rounded down) apart, and a row reads one
 * sample past that. width and height must be 2 or more. */
ZIVCOLOR_API int32_t zivColorYV12toNV21u8(const uint8_t* pSrc, uint8_t* pDst, int64_t width, int64_t height);

/* -- NV12, NV21 and I420 to YUYV -- */
/* 4:2:0 to packed Y0 U Y1 V. A chroma row serves two rows of the destination, whose W and H drive the walk. Blocks of 16
 * columns while they fit, then pairs of columns. Formats and all four sizes are tested.
 *   zivStatus_NullPointer   srcImg or dstImg is null; tested first
 *   zivStatus_BadArgument   a format code is another one, or a width or height is below 2 */

/* From Y; pairs U V, two rows at a time. An odd H reads a luma row past the image and writes a destination row past it; an odd
 * W reads and writes one pixel past the end of each row. Where that falls on the start of the next row of the pair, the later
 * store stays: column by column over both rows, upper row first. Source chroma rows step by the source's pitch[0]; its
 * pitch[1] is not read. */
ZIVCOLOR_API int32_t zivColorNV12toYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* From Y; pairs V U, row by row: an odd H is exact; an odd W reads and writes one pixel past the end of each row. Source chroma
 * rows step by the source's pitch[0]; its pitch[1] is not read. */
ZIVCOLOR_API int32_t zivColorNV21toYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* From Y; U; V, two rows at a time, every plane by its own pitch. An odd last row or column stays unwritten. */
ZIVCOLOR_API int32_t zivColorI420toYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* -- YUYV to NV12, NV21 and I420 -- */
/* Packed Y0 U Y1 V to 4:2:0. The chroma of the even rows stays, that of the odd rows is dropped. W and H are the destination's.
 *   zivStatus_NullPointer   srcImg or dstImg (pSrc, pDst, yuvSrc, yuvDst) is null; tested first
 *   zivStatus_BadArgument   a format code that is tested is another one, or a size that is tested is below 2 */

/* To Y; pairs V U, row by row: an odd H writes (H + 1) / 2 chroma rows. Blocks of 8 columns while they fit, then pairs while a
 * column is left: an odd W reads one pixel past the row, and writes one luma byte past W and a whole chroma pair. No format
 * code is tested, and of the sizes only the destination's. */
ZIVCOLOR_API int32_t zivColorYUYVtoNV21u8_v2(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* To Y; pairs U V, likewise by blocks of 16 columns while more than 16 are left. Formats and all four sizes are tested. */
ZIVCOLOR_API int32_t zivColorYUYVtoNV12u8_v2(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* To Y; U; V, two rows at a time, an odd H rounded up. The lower luma row of a pair is written W bytes, not one pitch, below
 * the upper one. Blocks of 16 columns while more than 16 are left; then one step for each of the n = 1 to 16 columns left over,
 * of two columns each: both rows are read and written n columns past W, at even sizes too, and U and V get n samples past those
 * of the blocks.
 * What runs over stays where no later step of the walk writes: column by column; upper luma, lower luma, U, V in each step.
 * No format code is tested, and of the sizes only the destination's. */
ZIVCOLOR_API int32_t zivColorYUYVtoI420u8_2(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* The three on two tight buffers of lWidth * lHeight pixels: Y, then the chroma at lWidth * lHeight, V of I420 a quarter of
 * that, rounded down, further on. Sizes below 2 are refused. They walk by running pointers, so an odd width shows:
 *   NV21  whole pairs, a column past the width in every row: each next row begins a column later, in source and destination
 *   NV12  single columns, exact: the last pair of each chroma row has no V
 *   I420  the last column is not written; a pass of two rows begins a column earlier than the one before should end, U and V
 *         rows are width / 2 (rounded down) bytes; an odd last row is not written */
ZIVCOLOR_API int32_t zivColorYUYVtoNV21u8(const uint8_t* pSrc, uint8_t* pDst, int32_t lWidth, int32_t lHeight);
ZIVCOLOR_API int32_t zivColorYUYVtoNV12u8(const uint8_t* pSrc, uint8_t* pDst, int32_t lWidth, int32_t lHeight);
ZIVCOLOR_API int32_t zivColorYUYVtoI420u8(const uint8_t* yuvSrc, uint8_t* yuvDst, int32_t width, int32_t height);

/* -- From I422H -- */
/* Planar 4:2:2, chroma halved horizontally. Samples are moved, none is computed. W and H are the destination's. Row by row,
 * each plane of the source by its own pitch: blocks of 16 columns while they fit, then pairs while two columns are left; an
 * odd last column stays unwritten. To 4:2:0, the chroma of the even rows stays and that of the odd rows is dropped; an odd
 * H has (H + 1) / 2 chroma rows. Formats, destination sizes and the source's height are tested; the source's width is not.
 *   zivStatus_NullPointer   srcImg or dstImg is null; tested first
 *   zivStatus_BadArgument   a format code is another one, or a size that is tested is below 2 */

/* To Y; U; V, every plane by its own pitch. */
ZIVCOLOR_API int32_t zivColorI422HtoI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* To Y; pairs V U. Destination chroma rows step by its pitch[0]; its pitch[1] is not read. */
ZIVCOLOR_API int32_t zivColorI422HtoNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* To Y; pairs U V. The chroma of row i, which is even, goes to plane[1] + i * pitch[1], not i / 2: chroma rows stand two
 * pitches apart, and plane 1 takes ((H + 1) / 2 - 1) * 2 * pitch[1] + W bytes. For a plain NV12 image, give half its chroma
 * pitch. */
ZIVCOLOR_API int32_t zivColorI422HtoNV12u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* To packed Y0 U Y1 V, every row with its own chroma. */
ZIVCOLOR_API int32_t zivColorI422HtoYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* To Y; pairs U V with a chroma row for each row, both by their pitches. */
ZIVCOLOR_API int32_t zivColorI422HtoLPI422Hu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* -- From I422V -- */
/* Planar, chroma halved vertically. Samples are moved, none is computed; the chroma of the even columns stays and that of
 * the odd columns is dropped, whatever the destination. W and H are the destination's. Rows go in pairs while two are left:
 * an odd last row stays unwritten. Blocks of 16 columns while they fit, then pairs. Luma steps by pitch[0] on both sides;
 * the source's chroma planes are one run each, their pitches are not read: rows of W samples, but of W - 1 with an odd W (W
 * + 1 to I420). Tests and statuses as above. */

/* To Y; U; V. Pairs while one column is left: an odd W reads and writes one luma byte past each row, and a chroma sample
 * for the half-covered column. Destination chroma rows follow each other; its pitch[1] and pitch[2] are not read. */
ZIVCOLOR_API int32_t zivColorI422VtoI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* To Y; pairs V U, and Y; pairs U V. An odd last column stays unwritten. Destination chroma rows follow each other; its
 * pitch[1] is not read. */
ZIVCOLOR_API int32_t zivColorI422VtoNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI422VtoNV12u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* To packed Y0 U Y1 V. Both rows of a pair take the same chroma. An odd last column stays unwritten. */
ZIVCOLOR_API int32_t zivColorI422VtoYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* To Y; pairs U V with a chroma row for each row, by pitch[0] and pitch[1]. Otherwise as to YUYV. */
ZIVCOLOR_API int32_t zivColorI422VtoLPI422Hu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* -- From I444 -- */
/* Planar 4:4:4, subsampled. The chroma of the even columns stays and that of the odd columns is dropped; but for LPI422H, that
 * of the odd rows too. W and H are the destination's; whole pairs of rows and columns are converted, so an odd last row or
 * column stays unwritten, and chroma behind the last even column is not read. There are no blocks. Formats, destination sizes
 * and the source's height are tested; the source's width is not.
 * After a pair of rows each source chroma pointer moves on by W rounded down to even plus its pitch[1] or pitch[2]: two rows
 * only where the pitch is W and W is even, so chroma planes must be tight. Luma steps by pitch[0] on both sides.
 *   zivStatus_NullPointer   srcImg or dstImg is null; tested first
 *   zivStatus_BadArgument   a format code is another one, or a size that is tested is below 2 */

/* To Y; U; V. Destination chroma rows of W / 2 bytes follow each other; its pitch[1] and pitch[2] are not read. */
ZIVCOLOR_API int32_t zivColorI444toI420u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* To Y; pairs V U, and Y; pairs U V. Destination chroma rows follow each other; its pitch[1] is not read. */
ZIVCOLOR_API int32_t zivColorI444toNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorI444toNV12u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* To packed Y0 U Y1 V. Both rows of a pair take the chroma of the upper one. */
ZIVCOLOR_API int32_t zivColorI444toYUYVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* To Y; pairs U V with a chroma row for each row, every one of H rows. No pitch is read: rows of W rounded down to even follow
 * each other on both sides, so with an odd W every row begins a byte earlier than the image's. */
ZIVCOLOR_API int32_t zivColorI444toLPI422Hu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* -- YUV and NV21 -- */
/* Packed Y U V (3 bytes a pixel) and semi-planar Y; pairs V U. Two rows at a time, pairs of columns, W and H from the
 * destination; odd sizes are rounded up: an odd H reads and writes a row past the image, an odd W a pixel past each row. Where
 * that falls on the start of another row of the pair, the later store stays: column by column; upper row, lower row, chroma.
 * Every plane steps by its own pitch. Formats and all four sizes are tested.
 *   zivStatus_NullPointer   srcImg or dstImg is null; tested first
 *   zivStatus_BadArgument   a format code is another one, or a width or height is below 2 */

/* Keeps the chroma of even rows and columns. Blocks of 8 columns read both rows whole; the tail reads the first four bytes of
 * a pair in the upper row and bytes 0 and 3 in the lower one. */
ZIVCOLOR_API int32_t zivColorYUVtoNV21u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* Repeats each chroma pair in the 2 by 2 pixels that it serves. Blocks of 16 columns. */
ZIVCOLOR_API int32_t zivColorNV21toYUVu8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* -- NV41 and NV21 -- */
/* Semi-planar Y; pairs V U with chroma quartered in both directions (NV41), from and to NV21. W and H are the source's;
 * they ought to be multiples of 4. Luma is copied as one run of the destination's pitch[0] times H bytes, unless both
 * images share plane[0]; the source's pitch[0] is not read. Chroma rows step by their own pitch[1]. Formats, destination
 * sizes and the source's height are tested; the source's width is not.
 *   zivStatus_NullPointer   srcImg or dstImg is null; tested first
 *   zivStatus_BadArgument   a format code is another one, or a size that is tested is below 2 */

/* Down: each sample is (a + b + c + d + 2) >> 2 over 2 by 2 samples of NV21. Blocks of 32 luma columns while they fit, then
 * steps of 4, whose V goes on where the blocks stopped and whose U begins at the start of the row again: behind blocks, the
 * U of the tail's own columns stays unwritten. zivColorNV21toNV41_2, which zivColorCvt takes, also clears what NV41 leaves
 * of a chroma plane of NV21's size, by the destination's pitch[1]: pitch[1] - W / 2 bytes behind each row, and
 * (pitch[1] * H) / 4 bytes behind the last: plane 1 must have pitch[1] * ((H + 3) / 4) + pitch[1] * H / 4 bytes, twice what
 * an NV41 image has. There are (H + 3) / 4 passes, of two rows read and one written: an H that is no multiple of 4 may read
 * past the plane. A W that is no multiple of 4 reads a pair further and writes one past W / 2. */
ZIVCOLOR_API int32_t zivColorNV21toNV41(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorNV21toNV41_2(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* Up, first generation: ENDS THE PROCESS abnormally for every source width above 0, after luma, the blocks of the first two
 * chroma rows and the V of one step behind them have been written. It returns only for a width of 0 or less. Use
 * zivColorNV41toNV21_2. */
ZIVCOLOR_API int32_t zivColorNV41toNV21(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* Up. With T the sample of NV41 row r and column k, B the one above it (row 0: itself), Tn and Bn their right neighbours
 * (at the right edge: themselves), the NV21 samples of columns 2 k and 2 k + 1 are
 *   row 2 r       (T + B + 1) >> 1 and (T + Tn + B + Bn + 2) >> 2
 *   row 2 r + 1   T and (T + Tn + 1) >> 1
 * Walks from the bottom up, so that both images may be the same memory (equal pitches, H a multiple of 4). Blocks of 32
 * luma columns while they fit, then steps of 4, whose U begins at the start of the row again, as on the way down; its last
 * step takes T and B for their own neighbours there too, which changes a byte that the blocks have written. The top
 * two rows pass through a work buffer of two of the source's chroma rows, all of which is copied at the end: the
 * destination's pitch[1] must not be above the source's. The buffer is not cleared, so that in these two rows what no step
 * writes, padding and the U of a tail behind blocks, takes any value. With an H that is no multiple of 4 there is no such
 * pass, and the walk runs above the start of the chroma planes, by two rows of the source and one or two of the destination;
 * below an H of 4 it starts there. A W that is no multiple of 4 reads a pair behind each row, and writes rows of W rounded up
 * to such a multiple.
 *   zivStatus_OutOfMemory   no memory for the work buffer, or the source's pitch[1] is negative; luma has been written by
 *                           then, chroma has not */
ZIVCOLOR_API int32_t zivColorNV41toNV21_2(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* ---- RGB to RGB ------------------------------------------------------------------------------------------------------ */
/* Pixels in another order of channels, with alpha or without, or in 16 bits. */

/* Channels reordered, alpha dropped or added, or pixels packed into 16-bit words: no arithmetic beyond shifts and masks.
 * Blocks and tail give the same bytes. Every kernel walks the size of dstImg and uses plane[0] and pitch[0] of both
 * descriptors; it reads and writes exactly the pixels of its rows. Pitches, plane pointers and overlap are not tested; the
 * pixels of images that overlap are undetermined, but for the exchange in place.
 *   zivStatus_NullPointer   srcImg or dstImg is null
 *   zivStatus_BadArgument   a format code is not the kernel's own, or a size below its least
 *   zivStatus_OK            otherwise */

/* R G B A to B G R; alpha is dropped. Blocks of 8 pixels. dstImg at least 1 by 1; the size of srcImg is not looked at. */
ZIVCOLOR_API int32_t zivColorRGBA8888toBGR888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* Exchanges the first and the third byte of 3-byte pixels. Blocks of 8 pixels. No format code is tested; dstImg at least 1 by
 * 1; the size of srcImg is not looked at. Harmless in place, where both planes and both pitches are the same. */
ZIVCOLOR_API int32_t zivColorRGB888toBGR888u8_2(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* 3-byte pixels to A R G B with an alpha of 255. Blocks of 16 pixels. Both images at least 1 by 1. */
ZIVCOLOR_API int32_t zivColorBGR888toARGB8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toARGB8888u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* 3-byte pixels to little-endian 16-bit words, laid out as the destination's format code tells: the top 5, 6 and 5 bits of the
 * channels; their low bits are dropped, without rounding or dither. Both images at least 2 by 2. Blocks of 8 pixels. */
ZIVCOLOR_API int32_t zivColorRGB888toBGR565u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorRGB888toRGB565u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
/* The same in blocks of 16 pixels. */
ZIVCOLOR_API int32_t zivColorBGR888toRGB565u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivColorBGR888toBGR565u8(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* The exchange of zivColorRGB888toBGR888u8_2 on packed images: rows of 3 times width bytes without gaps, in pSrc as in pDst,
 * which may be the same. width and height in pixels; width at most 2^31 - 1.
 *   zivStatus_NullPointer   pSrc or pDst is null
 *   zivStatus_BadArgument   width or height is below 1 */
ZIVCOLOR_API int32_t zivColorRGB888toBGR888u8(const uint8_t* pSrc, uint8_t* pDst, int64_t width, int64_t height);

/* ---- HSL ------------------------------------------------------------------------------------------------------------- */
/* Pixels to hue, saturation and lightness. */

/* To HSL888: three bytes a pixel, hue, saturation, lightness.
 *   lightness    0 to 255: the rounded mean of the largest and the smallest channel
 *   saturation   0 to 255: 0 exactly for grey
 *   hue          0 to 212: three thirds based at 0 (red), 85 (green) and 170 (blue), up to 42 steps to either side. The arc
 *                from magenta back to red is flattened to 0. Grey, black and white have the hue 170.
 * On a tie of the largest channels green dominates, but for red and blue, where red does. Division is by a table of truncated
 * reciprocals with 16 fractional bits (65536 / n; 65535 for 1): saturation is (table[D] * (255 d + D/2)) >> 16 and hue is
 * base - ((table[d] * (42 n + d/2)) >> 16), where d is the largest less the smallest channel, D the sum of both, or 510 less
 * the sum from a lightness of 128 on, and n blue - green, red - blue or green - red for red, green or blue dominating. Both
 * are clamped to 0 and 255.
 *
 * Sizes are pixels, strides bytes; all are unsigned 32-bit, and a stride is zero-extended: rows go down memory only. Mind the
 * order of the arguments. No test is made of strides and overlap. Converting BGR888 in place with equal strides is harmless.
 *   zivStatus_NullPointer   a pointer is null (tested first)
 *   zivStatus_BadArgument   width or height is below 3
 *   zivStatus_OK            otherwise
 *
 * WIDTHS FROM 3 TO 7 MUST NOT BE USED. They pass the check, but blocks of 8 pixels run while their first column is below
 * width - 8, an unsigned bound that wraps there to nearly 2^32: the kernels run on beyond the image, and no status tells.
 * From a width of 8 on, blocks leave the last one to eight pixels of a row to single steps with the same results. */

/* B G R in memory order to HSL888. Reads and writes exactly the rows' pixels. From the end of a row the next one is reached
 * by the stride less 3 times lWidth, as an unsigned 32-bit number: a stride below the row's bytes goes forward by nearly
 * 2^32. */
ZIVCOLOR_API int32_t zivColorBGR888toHSL888u8(const uint8_t* bgr, uint8_t* hsl, uint32_t lHeight, uint32_t lWidth,
                                              uint32_t lineBytesBgr, uint32_t lineBytesHsl);

/* 16-bit little-endian words to HSL888. The 5-bit fields count 8 times their value, the 6-bit field 4 times; the low bits stay
 * zero, so that a word of all ones is not white. Source rows step by lineBytesBgr from their start, destination rows as above.
 * The two read the words the other way about from the format codes of the same names:
 *   zivColorBGR565toHSL888u8   red in bits 15 to 11, green in 10 to 5, blue in 4 to 0
 *   zivColorRGB565toHSL888u8   blue in bits 15 to 11, green in 10 to 5, red in 4 to 0 */
ZIVCOLOR_API int32_t zivColorBGR565toHSL888u8(const uint8_t* pBgr565, uint8_t* pHsl, uint32_t lHeight, uint32_t lWidth,
                                              uint32_t lineBytesBgr, uint32_t lineBytesHsl);
ZIVCOLOR_API int32_t zivColorRGB565toHSL888u8(const uint8_t* pBgr565, uint8_t* pHsl, uint32_t lHeight, uint32_t lWidth,
                                              uint32_t lineBytesBgr, uint32_t lineBytesHsl);

/* I420 to HSL888 by way of B, G, R; the four pixels of a 2 by 2 square share their chroma. Full range, scale 2^14, u and v
 * centred: B = (16384 Y + 29049 u + 8192) >> 14, G = (16384 Y - 5636 u - 11698 v + 8192) >> 14, R = (16384 Y + 22987 v +
 * 8192) >> 14, each clamped. y_step1 and hsl_step1 are bytes per luma and HSL row, cbcr_step1 bytes per row of either chroma
 * plane; a small hsl_step1 does not wrap as it does above, rows then overlap. Works on two rows and two columns at
 * a time: an odd lHeight reads and writes the row after the last, an odd lWidth one pixel beyond each row, and the chroma
 * sample that goes with it. */
ZIVCOLOR_API int32_t zivColorI420toHSL888u8(const uint8_t* pY, const uint8_t* pCb, const uint8_t* pCr, uint32_t lWidth,
                                            uint32_t lHeight, uint8_t* pHSL, uint32_t y_step1, uint32_t cbcr_step1,
                                            uint32_t hsl_step1);

/* ---- Geometry -------------------------------------------------------------------------------------------------------- */
/* Turns and mirrors of semi-planar frames. */

/* Turns a tight image of the NV21 shape (Y; chroma pairs, in either order) into a second one: lmode 1 by 90 degrees
 * clockwise, 3 by 90 degrees counter-clockwise, any other value by 180 degrees. W, H and sp are the source's width, height
 * and pitch[0], dp is the destination's pitch[0]; of the destination only planes and pitch[0] are read, and height in mode
 * 3. No format code is tested. Images must not overlap, and neither pointer may be null.
 *
 * Only whole blocks are moved; the rest of the destination stays as it was, all of it if the source holds no block. Two
 * bytes of a pair keep their order.
 *   quarter turns   blocks of 8 by 8 luma samples and the 4 by 4 pairs under them. No pitch[1] is read: the pairs of the
 *                   block at row y start at (y / 2) * sp. Within a block, rows of pairs are 2 * (sp >> 1) bytes apart in
 *                   the source and 2 * (dp >> 1) in the destination, so that odd pitches depart from the places below
 *     lmode 1       luma of row y, column x goes to plane[0] + x * dp + (dp - 1 - y), pair xc of chroma row yc to
 *                   plane[1] + xc * dp + (dp - 2 - 2 yc): the right edge stands at byte dp of a row
 *     lmode 3       to plane[0] + (W - 1 - x) * dp + y and plane[1] + ((dp * height) >> 1) - (xc + 1) * dp + 2 yc, with the
 *                   destination's height, which ought to be W
 *   half turn       blocks of 8 columns of two rows, the second W bytes below the first; pairs at the source's pitch[1].
 *                   Luma of row y (even), column x goes to plane[0] + (H - y) * dp - 1 - x, that of row y + 1 to W bytes
 *                   before, pair xc of row y / 2 to plane[1] + ((pitch[1] * H) >> 1) - 2 - 2 xc - (y / 2) * dp with the
 *                   source's pitch[1]. An odd H reads and writes one row more.
 * With sp, dp, the source's pitch[1] and W all equal and sizes that are multiples of 8 (half turn: an even height), these
 * are the plain turns of the whole image. */
ZIVCOLOR_API void zivRotate(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg, int32_t lmode);

/* Mirrors an NV21 image into a second one: left and right exchanged, or top and bottom. W, H, sp and sc are the source's
 * width, height, pitch[0] and pitch[1]; dp is the destination's pitch[0]. Rows go in pairs whose second row is W bytes
 * behind the first in the source, whatever sp says; chroma rows step by sc in both images. Two bytes of a pair keep their
 * order. Columns go in twos: an odd W touches one column more, an odd H one row more. Nothing of dstImg is tested, not even
 * for null; where W or H is 0 or less, it is not looked at.
 *   horizontal   luma of row j (even), column x goes to plane[0] + (j + 1) * dp - 1 - x, that of row j + 1 to W bytes behind;
 *                the pair xc of row j / 2 to plane[1] + (j / 2 + 1) * sc - 2 - 2 xc
 *   vertical     luma of row j (even), column x goes to plane[0] + (H - 1 - j) * sp + x, that of row j + 1 to W bytes before;
 *                byte x of chroma row j / 2 to plane[1] + ((H >> 1) - 1 - j / 2) * sc + x. No pitch of the destination is
 *                read.
 * With W, sp, sc and dp all equal and even sizes, these are the plain mirrors.
 *   zivStatus_NullPointer   srcImg is null
 *   zivStatus_BadArgument   the source is not NV21
 *   zivStatus_OK            otherwise, also for sizes of 0 or less, which do nothing */
ZIVCOLOR_API int32_t zivflip_horizontal_nv21(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);
ZIVCOLOR_API int32_t zivflip_vertical_nv21(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg);

/* ---- Enhancement ----------------------------------------------------------------------------------------------------- */
/* Skin whitening, and weights for merging images. */

/* -- Skin whitening -- */
/* Skin whitening: brightens the luma of a 4:2:0 image with chroma pairs V U and lifts its chroma, in place, as far as a mask
 * allows. Always returns 0; nothing is tested.
 *   pImg               width, height, pitch[0], pitch[1] and plane[0] are read. plane[1] is not: chroma starts width times
 *                      height bytes after plane[0], whatever pitch[0] says, and its rows step by pitch[1]
 *   pMskData           the mask: two rows of one byte for each luma column, lMskLine bytes apart. They weigh every pair
 *                      of rows of the image; nothing beyond them is read
 *   plBrightenTab      256 entries: the fully brightened value of each luma value
 *   lRedLevel          strength of the chroma lift
 *   plYContrastTable   not used
 * The image is taken in cells of 2 by 2 luma samples and one chroma pair. With s the sum of a cell's four mask bytes and
 * a = s >> 2, luma becomes the low 8 bits of (a * table[Y] + (256 - a) * Y) >> 8. With r = (s * lRedLevel) >> 10, U below 128
 * grows by (r * tU) >> 8 limited to 0 and 9, and V above 128 by (r * tV) >> 8 limited to 0 and 4, stored as the low 8 bits (V
 * may wrap); other chroma stays untouched. An odd last row or column stays as it is, as do images of fewer than two rows or
 * columns. */

/* One cell at a time, tU = (128 - U) + ((102 * (U - 128)) >> 8), tV = (128 - V) + ((332 * (V - 128)) >> 8), in 64 bits. */
ZIVCOLOR_API int64_t _SkinWhitenByMask_YUV420_VUVU(const _TAG_OFFSCREEN* pImg, const uint8_t* pMskData, int64_t lMskLine,
                                                   const int32_t* plBrightenTab, int64_t lRedLevel,
                                                   const int32_t* plYContrastTable);

/* Blocks of 16 columns in wrapping 16-bit lanes: only the low 16 bits of lRedLevel and of the table's entries count, r is
 * unsigned and truncated to 16 bits, V may grow by 9, and from V = 227 on 332 * (V - 128) reads as negative. The columns after
 * the blocks (all of them below a width of 16) go one cell at a time in 64 bits, with tU = 127 - U and tV = 128 - V: there V
 * stays under a positive lRedLevel. */
ZIVCOLOR_API int64_t _SkinWhitenByMask_YUV420_VUVU_neon(const _TAG_OFFSCREEN* pImg, const uint8_t* pMskData, int64_t lMskLine,
                                                        const int32_t* plBrightenTab, int64_t lRedLevel,
                                                        const int32_t* plYContrastTable);

/* -- Weights for merging -- */
/* From sums over several images. */

/* A row of 8-bit weights from sums over lImgNum images: column i comes from entry 20 i of pSumW, less 256, divided by
 * lImgNum - 1. Does nothing if lImgNum is below 2. lW is the number of columns.
 * Blocks of 8 columns take the low 32 bits of an entry, multiply by the binary32 reciprocal, truncate, and clamp to 0 and 255.
 * The columns after them take whole entries, divide as integers truncating toward zero, and store 255 for more than 255, else
 * the low 8 bits: a negative result is not clamped. They go in pairs: an odd lW reads entry 20 lW and writes byte lW. */
ZIVCOLOR_API void CalcMergeWeightMap_neon(const int64_t* pSumW, uint8_t* pWtMap, int64_t lW, int64_t lImgNum);

/* ---- Conversion on several threads ----------------------------------------------------------------------------------- */
/* One image on all cores, by bands of rows. */

/* A context holds worker threads and runs one conversion on all of them: the destination's rows are split into bands, four for
 * each core, and every band is converted by the kernel that zivColorCvt picks for the pair. A context knows nothing of images:
 * one serves any number of conversions, of any formats and sizes. Idle workers sleep. A process may hold any number of
 * contexts, and threads may share one.
 *
 * A conversion on a context takes no longer than zivColorCvt, but for a microsecond: the calling thread starts by itself, and
 * workers are woken for what is left where that pays, by how long bands took lately. Threads begin to pay at about 50
 * microseconds of work, within a stream of images at less.
 *
 * Workers take no signals, and are named "zivcolor" where the system shows names. As long as one lives, the library stays
 * loaded: closing it with dlclose takes effect when the last context has ended. A context is no use in the child of a fork,
 * which has no workers: there it can only be ended, by zivColorCvtUnInit_MultiThreads. */

/* Starts a context: a worker for each CPU that the calling thread may run on, 8 at most, fewer if the system grants no more
 * threads. Cores and bands stay fixed for the life of the context.
 *   hMemMgr   where the context's record comes from; null is the C heap, else the address of a record of three pointers:
 *             void* (*allocate)(void* user, int64_t size), void (*release)(void* user, void* pointer), void* user.
 *             allocate gives memory aligned for any scalar type, or null if it has none; release is never given null.
 * Returns the context's handle, or null if there is no worker (as where a program cannot have threads), no memory for the
 * workers or none for the record; in the last case the workers stay behind, and keep the library loaded. */
ZIVCOLOR_API void* zivColorCvtInit_MultiThreads(void* hMemMgr);

/* Converts srcImg to dstImg on the context and returns when all is done; the calling thread lends a hand. Allocates nothing.
 *
 * Bands: contiguous runs of rows of the destination, whose height alone is read. Each begins at an even row. Bands differ by
 * one pair of rows at most, the higher ones come last, and the last also takes the odd row; with few rows the first bands are
 * empty. A band is converted as an image of its own: same formats, widths and pitches, the band's height for both, and planes
 * that begin at the band's first row by the pitches of the descriptors: pitch[k] times the row, or half the row for chroma
 * that is halved vertically.
 *
 * The result is that of zivColorCvt if both images have the same height, if no kernel writes past the end of its rows (an even
 * width is enough), if destination rows do not overlap, if no row offset wraps, and if the pitches agree with what
 * the kernel assumes where it does not read them:
 *   BGRA8888 to LPI422H, LPI422H to BGRA8888, I444 to LPI422H   every pitch is the tight row of its plane
 *   I422V and I444 to all                                       the source's chroma pitches are its width
 *   I422V and I444 to I420, NV21 and NV12                       the destination's chroma pitches are the tight rows
 *   I422H to NV21                                               the destination's pitch[1] equals its pitch[0]
 * I422H to NV12 is no match: its kernel spreads chroma rows two pitches apart from the start of each band, bands overlap, and
 * which of them stays is not determined.
 *
 *   extParam   the low 8 bits of alpha become the alpha byte where RGBA8888 or BGRA8888 is made from YUV; null is alpha 0
 *
 *   zivStatus_NullPointer   the handle, srcImg or dstImg is null; nothing is touched
 *   zivStatus_BadArgument   zivColorCvtFunc knows no task for the pair (zivColorCvt converts 36 pairs more); nothing is
 *                           touched
 *   zivStatus_OK            in all other cases, even if the kernel refused: a size below its least leaves the rows of the
 *                           band as they were and is not reported */
ZIVCOLOR_API int32_t zivColorCvtProcess_MultiThreads(void* zivColorCvtHandle, const __tag_KOBR_OFFSCREEN* srcImg,
                                                     const __tag_KOBR_OFFSCREEN* dstImg,
                                                     const zivColorExtParam_ALPHA_t* extParam);

/* Ends the context: when it returns zivStatus_OK, its threads have ended and its memory is given back. No conversion may be
 * running on it. hMemMgr must be the one given to zivColorCvtInit_MultiThreads. In the child of a fork, it ends the child's
 * copy of a context: the record is given back, what the workers used stays allocated, and the parent's context is as it was.
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
