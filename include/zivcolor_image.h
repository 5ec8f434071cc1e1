/* SPDX-License-Identifier: MIT */
/* zivcolor_image: the memory of images without arithmetic. Names of layouts, the pairs that are converted, the bytes that an
 * image needs for a pair, and descriptors filled from one buffer, from planes or from a camera frame.
 *
 * All of it is inline and stands beside the library: nothing here is exported, allocated or remembered. In short:
 *   zivcolor_room from, to;
 *   status = zivcolor_room_of_pair(zivPixFmt_NV21, zivPixFmt_BGR888, width, height, 1, &from, &to);
 *   source = zivcolor_image_in(&from, a buffer of from.size bytes);
 *   destination = zivcolor_image_in(&to, a buffer of to.size bytes);
 *   status = zivColorCvt(&source, &destination, alpha);
 */
#ifndef ZIVCOLOR_IMAGE_H
#define ZIVCOLOR_IMAGE_H

#include "zivcolor.h"

/* For functions that stand in a header. */
#define ZIVCOLOR_INLINE static inline

/* ---- Layouts and pairs ------------------------------------------------------------------------------------------- */
/* What there is: names, planes and sizes of layouts, and the pairs that zivColorCvt converts. */

/* The image descriptor under a name of its own. */
typedef __tag_KOBR_OFFSCREEN zivcolor_image;

/* A layout: a plane of W columns has rows of ceil(W / columns) * bytes bytes, and for H rows of pixels ceil(H / rows). */
typedef struct zivcolor_layout {
    uint32_t format;        /* zivPixFmt_... */
    const char* name;       /* what follows zivPixFmt_ */
    int32_t planes;         /* 1 to 3 */
    int32_t bytes;          /* plane 0: so many bytes */
    int32_t columns;        /* hold so many columns */
    int32_t chroma_bytes;   /* each of the others: so many bytes */
    int32_t chroma_columns; /* hold so many columns */
    int32_t chroma_rows;    /* of so many rows of pixels */
} zivcolor_layout;

/* What becomes of an odd width or height. */
enum {
    zivOdd_LeftOut, /* the last column or row is neither read nor written */
    zivOdd_Short,   /* the same, and of an even width that is no multiple of 16 the last two columns are not written */
    zivOdd_Ahead,   /* left out; beyond whole blocks of 16 columns, luma is read up to twice as far as there are columns */
    zivOdd_Exact,   /* converted */
    zivOdd_Past,    /* converted, with one column or row more read and written */
    zivOdd_Twice,   /* beyond whole blocks of 16 columns, twice as many are read and written as there are */
    zivOdd_RowOne,  /* converted; all rows go to row 1 */
    zivOdd_Fours    /* sizes ought to be multiples of 4 */
};

/* How a pair finds the rows of an image. */
enum {
    zivRows_Pitch,       /* each plane by its own pitch */
    zivRows_Wrapped,     /* the same, by offsets of 32 bits: rows times pitch must stay below 2^31 */
    zivRows_LumaPitch,   /* chroma by pitch[0] */
    zivRows_TwicePitch,  /* chroma by twice pitch[1] */
    zivRows_Tight,       /* one after the other, without a gap; no pitch is read */
    zivRows_TightChroma, /* luma by pitch[0], chroma one after the other */
    zivRows_HalfPitch,   /* luma by pitch[0]; two rows of chroma are the even part of the width and a pitch apart */
    zivRows_WidthApart,  /* the second of two luma rows stands the width behind the first; chroma by pitches */
    zivRows_Copied       /* luma of both images by the destination's pitch[0], chroma by pitch[1] */
};

/* A pair that zivColorCvt converts. */
typedef struct zivcolor_pair {
    uint32_t source;           /* zivPixFmt_... */
    uint32_t destination;      /* zivPixFmt_... */
    uint8_t takes_alpha;       /* 1: Param.alpha becomes the alpha byte of every written pixel */
    int8_t band_task;          /* what zivColorCvtFunc returns; -1: no conversion on several threads */
    uint8_t least_width;       /* images below it are refused */
    uint8_t least_height;      /* images below it are refused */
    uint8_t columns_of_source; /* 1: the source's width is walked; 0: the destination's */
    uint8_t rows_of_source;    /* the same of the height */
    uint8_t odd_width;         /* zivOdd_... */
    uint8_t odd_height;        /* zivOdd_... */
    uint8_t source_rows;       /* zivRows_... */
    uint8_t destination_rows;  /* zivRows_... */
} zivcolor_pair;

/* All layouts by number, from 0 on; NULL behind the last. */
ZIVCOLOR_INLINE const zivcolor_layout* zivcolor_layout_at(int32_t index) {
    /* clang-format off */
    static const zivcolor_layout layouts[] = {
        /* Layouts: written by scripts/docs --update. */
        {zivPixFmt_BGR565, "BGR565", 1, 2, 1, 0, 1, 1},
        {zivPixFmt_RGB565, "RGB565", 1, 2, 1, 0, 1, 1},
        {zivPixFmt_BGR888, "BGR888", 1, 3, 1, 0, 1, 1},
        {zivPixFmt_RGB888, "RGB888", 1, 3, 1, 0, 1, 1},
        {zivPixFmt_BGRA8888, "BGRA8888", 1, 4, 1, 0, 1, 1},
        {zivPixFmt_ARGB8888, "ARGB8888", 1, 4, 1, 0, 1, 1},
        {zivPixFmt_RGBA8888, "RGBA8888", 1, 4, 1, 0, 1, 1},
        {zivPixFmt_YUV, "YUV", 1, 3, 1, 0, 1, 1},
        {zivPixFmt_YUYV, "YUYV", 1, 4, 2, 0, 1, 1},
        {zivPixFmt_YVYU, "YVYU", 1, 4, 2, 0, 1, 1},
        {zivPixFmt_UYVY, "UYVY", 1, 4, 2, 0, 1, 1},
        {zivPixFmt_VYUY, "VYUY", 1, 4, 2, 0, 1, 1},
        {zivPixFmt_I420, "I420", 3, 1, 1, 1, 2, 2},
        {zivPixFmt_I422V, "I422V", 3, 1, 1, 1, 1, 2},
        {zivPixFmt_I422H, "I422H", 3, 1, 1, 1, 2, 1},
        {zivPixFmt_I444, "I444", 3, 1, 1, 1, 1, 1},
        {zivPixFmt_YV12, "YV12", 3, 1, 1, 1, 2, 2},
        {zivPixFmt_YV24, "YV24", 3, 1, 1, 1, 1, 1},
        {zivPixFmt_NV12, "NV12", 2, 1, 1, 2, 2, 2},
        {zivPixFmt_NV21, "NV21", 2, 1, 1, 2, 2, 2},
        {zivPixFmt_LPI422H, "LPI422H", 2, 1, 1, 2, 2, 1},
        {zivPixFmt_NV41, "NV41", 2, 1, 1, 2, 4, 4},
        /* End. */
    };
    /* clang-format on */
    return index >= 0 && index < (int32_t)(sizeof layouts / sizeof layouts[0]) ? &layouts[index] : NULL;
}

/* The layout of a format code; NULL for any other number. */
ZIVCOLOR_INLINE const zivcolor_layout* zivcolor_layout_of(uint32_t format) {
    const zivcolor_layout* layout;
    int32_t index = 0;
    while ((layout = zivcolor_layout_at(index)) != NULL && layout->format != format) index++;
    return layout;
}

/* The name of a layout, what follows zivPixFmt_: "NV21" for zivPixFmt_NV21; NULL for any other number. */
ZIVCOLOR_INLINE const char* zivcolor_format_name(uint32_t format) {
    const zivcolor_layout* layout = zivcolor_layout_of(format);
    return layout ? layout->name : NULL;
}

/* The format code of a name as zivcolor_format_name() gives it, in the same letters; 0 if there is none, or name is null. */
ZIVCOLOR_INLINE uint32_t zivcolor_format_named(const char* name) {
    const zivcolor_layout* layout;
    int32_t index;
    for (index = 0; name && (layout = zivcolor_layout_at(index)) != NULL; index++) {
        size_t at = 0;
        while (name[at] && name[at] == layout->name[at]) at++;
        if (name[at] == layout->name[at]) return layout->format;
    }
    return 0;
}

/* All pairs by number, from 0 on; NULL behind the last. */
ZIVCOLOR_INLINE const zivcolor_pair* zivcolor_pair_at(int32_t index) {
    /* clang-format off */
    static const zivcolor_pair pairs[] = {
        /* Pairs: written by scripts/docs --update. */
        {zivPixFmt_NV12, zivPixFmt_BGR888, 0, 8, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_Wrapped, zivRows_Wrapped},
        {zivPixFmt_NV21, zivPixFmt_BGR888, 0, 2, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_Wrapped, zivRows_Wrapped},
        {zivPixFmt_NV21, zivPixFmt_RGB888, 0, 1, 2, 2, 0, 0, zivOdd_Short, zivOdd_LeftOut, zivRows_Wrapped, zivRows_Wrapped},
        {zivPixFmt_NV21, zivPixFmt_BGRA8888, 1, 4, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_Wrapped, zivRows_Wrapped},
        {zivPixFmt_NV21, zivPixFmt_RGBA8888, 1, 0, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_Wrapped, zivRows_Wrapped},
        {zivPixFmt_NV12, zivPixFmt_RGBA8888, 1, 6, 2, 2, 0, 0, zivOdd_Short, zivOdd_LeftOut, zivRows_Wrapped, zivRows_Wrapped},
        {zivPixFmt_NV12, zivPixFmt_BGRA8888, 1, 7, 2, 2, 0, 0, zivOdd_Short, zivOdd_LeftOut, zivRows_Wrapped, zivRows_Wrapped},
        {zivPixFmt_I420, zivPixFmt_BGR888, 0, 14, 2, 2, 0, 0, zivOdd_Ahead, zivOdd_LeftOut, zivRows_Wrapped, zivRows_Wrapped},
        {zivPixFmt_I420, zivPixFmt_RGB888, 0, 10, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_Wrapped, zivRows_Wrapped},
        {zivPixFmt_I420, zivPixFmt_BGRA8888, 1, 13, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_Wrapped, zivRows_Wrapped},
        {zivPixFmt_I420, zivPixFmt_RGBA8888, 1, 9, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_Wrapped, zivRows_Wrapped},
        {zivPixFmt_YV12, zivPixFmt_BGR888, 0, -1, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_YV12, zivPixFmt_RGB888, 0, -1, 2, 2, 0, 0, zivOdd_Exact, zivOdd_RowOne, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_YUYV, zivPixFmt_BGR888, 0, 44, 2, 1, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_YUYV, zivPixFmt_RGB888, 0, -1, 2, 1, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_YUYV, zivPixFmt_RGBA8888, 1, -1, 2, 1, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_LPI422H, zivPixFmt_BGRA8888, 1, 41, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_Exact, zivRows_Tight, zivRows_Tight},
        {zivPixFmt_LPI422H, zivPixFmt_RGBA8888, 1, 43, 2, 2, 1, 1, zivOdd_LeftOut, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_BGR888, zivPixFmt_NV21, 0, 23, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGB888, zivPixFmt_NV21, 0, -1, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_LumaPitch},
        {zivPixFmt_BGR888, zivPixFmt_NV12, 0, 24, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGB888, zivPixFmt_NV12, 0, -1, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_BGR888, zivPixFmt_I420, 0, 22, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGB888, zivPixFmt_I420, 0, 21, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGB888, zivPixFmt_YUYV, 0, -1, 2, 1, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_BGR888, zivPixFmt_YUYV, 0, 45, 2, 1, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGB888, zivPixFmt_YVYU, 0, -1, 2, 1, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_BGR888, zivPixFmt_YVYU, 0, -1, 2, 1, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGB888, zivPixFmt_UYVY, 0, -1, 2, 1, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_BGR888, zivPixFmt_UYVY, 0, -1, 2, 1, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGB888, zivPixFmt_VYUY, 0, -1, 2, 1, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_BGR888, zivPixFmt_VYUY, 0, -1, 2, 1, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGB888, zivPixFmt_YV24, 0, -1, 1, 1, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGB888, zivPixFmt_I422H, 0, -1, 2, 1, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_BGR888, zivPixFmt_I422H, 0, -1, 2, 1, 1, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_BGRA8888, zivPixFmt_NV21, 0, 18, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGBA8888, zivPixFmt_NV21, 0, 15, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_BGRA8888, zivPixFmt_NV12, 0, 19, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGBA8888, zivPixFmt_NV12, 0, 16, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_BGRA8888, zivPixFmt_I420, 0, 20, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGBA8888, zivPixFmt_I420, 0, 17, 2, 2, 1, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGBA8888, zivPixFmt_YUYV, 0, -1, 2, 1, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_BGRA8888, zivPixFmt_LPI422H, 0, 40, 2, 2, 1, 1, zivOdd_Exact, zivOdd_Exact, zivRows_Tight, zivRows_Tight},
        {zivPixFmt_RGBA8888, zivPixFmt_LPI422H, 0, 42, 2, 2, 1, 1, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_I420, zivPixFmt_NV21, 0, 11, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_NV21, zivPixFmt_I420, 0, 3, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_NV12, zivPixFmt_I420, 0, 5, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_NV12, zivPixFmt_NV21, 0, -1, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_YV12, zivPixFmt_NV21, 0, -1, 2, 2, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_LumaPitch},
        {zivPixFmt_NV12, zivPixFmt_YUYV, 0, -1, 2, 2, 0, 0, zivOdd_Past, zivOdd_Past, zivRows_LumaPitch, zivRows_Pitch},
        {zivPixFmt_NV21, zivPixFmt_YUYV, 0, -1, 2, 2, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_LumaPitch, zivRows_Pitch},
        {zivPixFmt_I420, zivPixFmt_YUYV, 0, 12, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_YUYV, zivPixFmt_NV21, 0, -1, 2, 2, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_YUYV, zivPixFmt_NV12, 0, -1, 2, 2, 0, 0, zivOdd_Past, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_YUYV, zivPixFmt_I420, 0, -1, 2, 2, 0, 0, zivOdd_Twice, zivOdd_Past, zivRows_Pitch, zivRows_WidthApart},
        {zivPixFmt_I422H, zivPixFmt_I420, 0, 25, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_I422H, zivPixFmt_NV21, 0, 26, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_Exact, zivRows_Pitch, zivRows_LumaPitch},
        {zivPixFmt_I422H, zivPixFmt_NV12, 0, 27, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_Exact, zivRows_Pitch, zivRows_TwicePitch},
        {zivPixFmt_I422H, zivPixFmt_YUYV, 0, 28, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_I422H, zivPixFmt_LPI422H, 0, 29, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_I422V, zivPixFmt_I420, 0, 30, 2, 2, 0, 0, zivOdd_Past, zivOdd_LeftOut, zivRows_TightChroma, zivRows_TightChroma},
        {zivPixFmt_I422V, zivPixFmt_NV21, 0, 31, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_TightChroma, zivRows_TightChroma},
        {zivPixFmt_I422V, zivPixFmt_NV12, 0, 32, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_TightChroma, zivRows_TightChroma},
        {zivPixFmt_I422V, zivPixFmt_YUYV, 0, 33, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_TightChroma, zivRows_Pitch},
        {zivPixFmt_I422V, zivPixFmt_LPI422H, 0, 34, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_TightChroma, zivRows_Pitch},
        {zivPixFmt_I444, zivPixFmt_I420, 0, 35, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_HalfPitch, zivRows_TightChroma},
        {zivPixFmt_I444, zivPixFmt_NV21, 0, 36, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_HalfPitch, zivRows_TightChroma},
        {zivPixFmt_I444, zivPixFmt_NV12, 0, 37, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_HalfPitch, zivRows_TightChroma},
        {zivPixFmt_I444, zivPixFmt_YUYV, 0, 38, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_LeftOut, zivRows_HalfPitch, zivRows_Pitch},
        {zivPixFmt_I444, zivPixFmt_LPI422H, 0, 39, 2, 2, 0, 0, zivOdd_LeftOut, zivOdd_Exact, zivRows_Tight, zivRows_Tight},
        {zivPixFmt_YUV, zivPixFmt_NV21, 0, -1, 2, 2, 0, 0, zivOdd_Past, zivOdd_Past, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_NV21, zivPixFmt_YUV, 0, -1, 2, 2, 0, 0, zivOdd_Past, zivOdd_Past, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_NV21, zivPixFmt_NV41, 0, -1, 2, 2, 1, 1, zivOdd_Fours, zivOdd_Fours, zivRows_Copied, zivRows_Copied},
        {zivPixFmt_NV41, zivPixFmt_NV21, 0, -1, 2, 2, 1, 1, zivOdd_Fours, zivOdd_Fours, zivRows_Copied, zivRows_Copied},
        {zivPixFmt_RGBA8888, zivPixFmt_BGR888, 0, -1, 1, 1, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGB888, zivPixFmt_BGR888, 0, -1, 1, 1, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_BGR888, zivPixFmt_ARGB8888, 0, -1, 1, 1, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGB888, zivPixFmt_ARGB8888, 0, -1, 1, 1, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGB888, zivPixFmt_BGR565, 0, -1, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_RGB888, zivPixFmt_RGB565, 0, -1, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_BGR888, zivPixFmt_RGB565, 0, -1, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        {zivPixFmt_BGR888, zivPixFmt_BGR565, 0, -1, 2, 2, 0, 0, zivOdd_Exact, zivOdd_Exact, zivRows_Pitch, zivRows_Pitch},
        /* End. */
    };
    /* clang-format on */
    return index >= 0 && index < (int32_t)(sizeof pairs / sizeof pairs[0]) ? &pairs[index] : NULL;
}

/* The pair of two format codes; NULL where zivColorCvt converts none. */
ZIVCOLOR_INLINE const zivcolor_pair* zivcolor_pair_of(uint32_t source, uint32_t destination) {
    const zivcolor_pair* pair;
    int32_t index = 0;
    while ((pair = zivcolor_pair_at(index)) != NULL && (pair->source != source || pair->destination != destination)) index++;
    return pair;
}

/* A status in words, in English: "done" for zivStatus_OK; never NULL. */
ZIVCOLOR_INLINE const char* zivcolor_status_text(int32_t status) {
    switch (status) {
        case zivStatus_OK: return "done";
        case zivStatus_NullPointer: return "a required pointer is null";
        case zivStatus_BadArgument: return "a format or pair that is not converted, or a size that is refused";
        case zivStatus_EngineFailure: return "the parallel engine failed to shut down";
        case zivStatus_OutOfMemory: return "no memory for a work buffer";
        default: return "an unknown status";
    }
}

/* ---- Room of images ---------------------------------------------------------------------------------------------- */
/* The bytes that an image needs, by itself or for a pair. */

/* The memory that an image takes. Planes beyond the layout's are 0 throughout.
 *   in planes of their own   plane k wants before[k] bytes before its first byte and after[k] from it on
 *   in one buffer            size bytes, plane k's first byte at offset[k]; zivcolor_image_in() makes the descriptor
 * Row r of plane k starts r * step[k] bytes from the plane's first byte, and row_bytes[k] bytes of it are the image's: what
 * there is to copy from and to a file. */
typedef struct zivcolor_room {
    uint32_t format;      /* zivPixFmt_... */
    int32_t width;        /* pixels */
    int32_t height;       /* pixels */
    int32_t planes;       /* 1 to 3 */
    int32_t pitch[3];     /* what the descriptor takes */
    int32_t step[3];      /* bytes from one row to the next: pitch, but where the pair finds rows otherwise */
    int32_t row_bytes[3]; /* bytes of a row */
    int32_t rows[3];      /* rows of the plane */
    size_t before[3];     /* bytes that may be touched before the plane's first byte */
    size_t after[3];      /* bytes that may be touched from the plane's first byte on */
    size_t offset[3];     /* the plane's first byte in one buffer */
    size_t size;          /* bytes of one buffer with all planes */
} zivcolor_room;

/* Inside: the bytes of a plane that are touched, from its first byte on. */
typedef struct zivcolor_detail_span {
    int64_t first, past;
} zivcolor_detail_span;

ZIVCOLOR_INLINE int64_t zivcolor_detail_row_bytes(const zivcolor_layout* layout, int32_t plane, int64_t columns) {
    const int32_t unit = plane ? layout->chroma_columns : layout->columns;
    return (columns + unit - 1) / unit * (plane ? layout->chroma_bytes : layout->bytes);
}

ZIVCOLOR_INLINE int64_t zivcolor_detail_rows(const zivcolor_layout* layout, int32_t plane, int64_t height) {
    const int32_t unit = plane ? layout->chroma_rows : 1;
    return (height + unit - 1) / unit;
}

/* So many rows of so many bytes, a step apart. */
ZIVCOLOR_INLINE void zivcolor_detail_touch(zivcolor_detail_span* span, int64_t rows, int64_t step, int64_t bytes) {
    const int64_t last = (rows - 1) * step;
    if (rows < 1) return;
    if (last < span->first) span->first = last;
    if (bytes > span->past) span->past = bytes;
    if (last + bytes > span->past) span->past = last + bytes;
}

/* A format and a size, with pitches as they are given or, without any, those of rows of so many columns, rounded up. */
ZIVCOLOR_INLINE int32_t zivcolor_detail_describe(uint32_t format, int32_t width, int32_t height, const int32_t* pitch,
                                                 int64_t columns, int32_t alignment, zivcolor_room* room) {
    const zivcolor_layout* layout = zivcolor_layout_of(format);
    int32_t k;
    if (!layout || width < 1 || height < 1 || alignment < 1) return zivStatus_BadArgument;
    room->format = format;
    room->width = width;
    room->height = height;
    room->planes = layout->planes;
    for (k = 0; k < layout->planes; k++) {
        const int64_t row = zivcolor_detail_row_bytes(layout, k, width);
        const int64_t apart = zivcolor_detail_row_bytes(layout, k, columns);
        const int64_t rounded = (apart + alignment - 1) / alignment * alignment;
        if (row > INT32_MAX || (!pitch && rounded > INT32_MAX)) return zivStatus_BadArgument;
        room->row_bytes[k] = (int32_t)row;
        room->rows[k] = (int32_t)zivcolor_detail_rows(layout, k, height);
        room->pitch[k] = room->step[k] = pitch ? pitch[k] : (int32_t)rounded;
    }
    return zivStatus_OK;
}

/* The sums, from what a pair touches and what the image itself is. */
ZIVCOLOR_INLINE int32_t zivcolor_detail_add_up(int32_t alignment, zivcolor_room* room, zivcolor_detail_span* spans) {
    const uint64_t most = (uint64_t)PTRDIFF_MAX, unit = (uint64_t)alignment;
    uint64_t size = 0;
    int32_t k;
    for (k = 0; k < room->planes; k++) {
        const uint64_t step = (uint64_t)(room->step[k] < 0 ? -(int64_t)room->step[k] : (int64_t)room->step[k]);
        const uint64_t rows = (uint64_t)room->rows[k] * step;
        uint64_t before, after, start;
        /* The image, by its pitch as well as where the pair finds its rows: bands of rows start by the pitch. */
        zivcolor_detail_touch(&spans[k], room->rows[k], room->step[k], room->row_bytes[k]);
        zivcolor_detail_touch(&spans[k], room->rows[k], room->pitch[k], room->row_bytes[k]);
        before = (uint64_t)-spans[k].first;
        after = (uint64_t)spans[k].past;
        if (before > most || after > most || rows > most) return zivStatus_BadArgument;
        room->before[k] = (size_t)before;
        room->after[k] = (size_t)after;
        /* In one buffer, whole rows with their padding, as files and other software have them. */
        if (room->step[k] > 0 && rows > after) after = rows;
        start = (size + before + unit - 1) / unit * unit;
        if (start > most || start + after > most) return zivStatus_BadArgument;
        room->offset[k] = (size_t)start;
        size = start + after;
    }
    room->size = (size_t)size;
    return zivStatus_OK;
}

/* The pitches by which a pair finds the rows of an image, where tight ones, rounded up, are not those. */
ZIVCOLOR_INLINE int32_t zivcolor_detail_suit(uint8_t rows, int32_t alignment, zivcolor_room* room) {
    int32_t* pitch = room->pitch;
    int64_t twice = pitch[1];
    int32_t k;
    switch (rows) {
        case zivRows_LumaPitch: pitch[0] = pitch[1] = pitch[1] > pitch[0] ? pitch[1] : pitch[0]; break;
        case zivRows_TwicePitch:
            twice += twice % 2 ? alignment : 0;
            if (twice > INT32_MAX) return zivStatus_BadArgument;
            pitch[1] = (int32_t)(twice / 2);
            break;
        case zivRows_Tight:
            for (k = 0; k < room->planes; k++) pitch[k] = room->row_bytes[k];
            break;
        case zivRows_TightChroma:
            for (k = 1; k < room->planes; k++) pitch[k] = room->row_bytes[k];
            break;
        case zivRows_HalfPitch:
            if (room->width == INT32_MAX) return zivStatus_BadArgument;
            pitch[1] = pitch[2] = room->width + room->width % 2;
            break;
        case zivRows_WidthApart: pitch[0] = room->width; break;
        default: break;
    }
    for (k = 0; k < room->planes; k++) room->step[k] = pitch[k];
    return zivStatus_OK;
}

/* What is touched of one image where sizes are not walked by fours; width and height are those walked. */
ZIVCOLOR_INLINE int32_t zivcolor_detail_walk(const zivcolor_pair* pair, int is_source, int64_t width, int64_t height,
                                             zivcolor_room* room, zivcolor_detail_span* spans) {
    const zivcolor_layout* layout = zivcolor_layout_of(room->format);
    const uint8_t found = is_source ? pair->source_rows : pair->destination_rows;
    const int64_t even = width - width % 2, left = (width - 1) % 16 + 1;
    int64_t columns = even, luma, rows = height;
    int32_t k;
    if (pair->odd_width == zivOdd_Exact) columns = width;
    if (pair->odd_width == zivOdd_Past) columns = width + width % 2;
    if (pair->odd_width == zivOdd_Twice) columns = width + left;
    if (pair->odd_height == zivOdd_LeftOut) rows = height - height % 2;
    if (pair->odd_height == zivOdd_Past) rows = height + height % 2;
    luma = columns;
    if (pair->odd_width == zivOdd_Ahead && is_source) luma = width - width % 16 + width % 16 / 2 * 4;

    for (k = 0; k < room->planes; k++) {
        const int64_t bytes = zivcolor_detail_row_bytes(layout, k, k ? columns : luma);
        const int64_t plane_rows = zivcolor_detail_rows(layout, k, rows);
        int64_t step = room->pitch[k];
        if (found == zivRows_Wrapped && (plane_rows - 1) * (step < 0 ? -step : step) > INT32_MAX) return zivStatus_BadArgument;
        if (found == zivRows_LumaPitch) step = room->pitch[0];
        if (found == zivRows_TwicePitch && k) step *= 2;
        if (found == zivRows_Tight || (found == zivRows_TightChroma && k)) step = bytes;
        if (found == zivRows_HalfPitch && k) {
            zivcolor_detail_touch(&spans[k], plane_rows / 2, even + step, even - 1);
            step = (even + step) / 2;
        } else if (found == zivRows_WidthApart && !k) {
            zivcolor_detail_touch(&spans[k], plane_rows / 2, 2 * step, width + bytes);
        } else {
            zivcolor_detail_touch(&spans[k], plane_rows, step, bytes);
        }
        if (step > INT32_MAX || step < -INT32_MAX) return zivStatus_BadArgument;
        room->step[k] = (int32_t)step;
    }
    return zivStatus_OK;
}

/* What is touched of both images where sizes are walked by fours: from NV21 to NV41 and back. */
ZIVCOLOR_INLINE int32_t zivcolor_detail_walk_by_fours(int64_t width, int64_t height, zivcolor_room* source,
                                                      zivcolor_room* destination, zivcolor_detail_span* spans) {
    const int64_t passes = (height + 3) / 4, columns = (width + 3) / 4 * 4;
    const int64_t from = source->pitch[1], to = destination->pitch[1], luma = destination->pitch[0];
    if (luma < 0 || to < 0) return zivStatus_BadArgument;
    source->step[0] = destination->pitch[0];
    zivcolor_detail_touch(&spans[0], 1, 0, luma * height);
    zivcolor_detail_touch(&spans[3], 1, 0, luma * height);
    if (destination->format == zivPixFmt_NV41) {
        if (to < width / 2) return zivStatus_BadArgument;
        zivcolor_detail_touch(&spans[1], 2 * passes, from, columns);
        /* The rest of each row is cleared, and a quarter of the rows' bytes behind the last. */
        zivcolor_detail_touch(&spans[4], passes, to, columns / 2 + to - width / 2);
        zivcolor_detail_touch(&spans[4], 1, 0, passes * to + to * height / 4);
    } else {
        if (to > from) return zivStatus_BadArgument;
        /* From the bottom up, with the row above; a height that is no multiple of 4 ends above the plane. */
        spans[1].first = height % 4 ? -2 * from : 0;
        spans[1].past = (height / 4 - 1) * from + columns / 2 + (width % 4 ? 2 : 0);
        spans[4].first = (height / 2 - 2 * passes) * to;
        spans[4].past = (height / 2 - 1) * to + columns;
        if (height % 4 == 0) zivcolor_detail_touch(&spans[4], 1, 0, 2 * from);
        if (spans[1].past < 0) spans[1].past = 0;
        if (spans[4].past < 0) spans[4].past = 0;
    }
    return zivStatus_OK;
}

/* Both rooms, from their formats, sizes and pitches. */
ZIVCOLOR_INLINE int32_t zivcolor_detail_both(const zivcolor_pair* pair, int32_t alignment, zivcolor_room* source,
                                             zivcolor_room* destination) {
    const int64_t width = pair->columns_of_source ? source->width : destination->width;
    const int64_t height = pair->rows_of_source ? source->height : destination->height;
    zivcolor_detail_span spans[6] = {{0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}};
    int32_t status;
    if (pair->odd_width == zivOdd_Fours) {
        status = zivcolor_detail_walk_by_fours(width, height, source, destination, spans);
    } else {
        status = zivcolor_detail_walk(pair, 1, width, height, source, spans);
        if (status == zivStatus_OK) status = zivcolor_detail_walk(pair, 0, width, height, destination, spans + 3);
    }
    if (status == zivStatus_OK) status = zivcolor_detail_add_up(alignment, source, spans);
    if (status == zivStatus_OK) status = zivcolor_detail_add_up(alignment, destination, spans + 3);
    return status;
}

ZIVCOLOR_INLINE void zivcolor_detail_clear(zivcolor_room* room) {
    static const zivcolor_room nothing = {0,         0,         0,         0,         {0, 0, 0}, {0, 0, 0},
                                          {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, 0};
    *room = nothing;
}

ZIVCOLOR_INLINE int32_t zivcolor_detail_end(int32_t status, zivcolor_room* room) {
    if (status != zivStatus_OK) zivcolor_detail_clear(room);
    return status;
}

/* Whatever they return but zivStatus_OK, these leave the rooms all 0. Sums are formed in 64 bits: nothing overflows, and what a
 * size_t or a ptrdiff_t does not hold is refused.
 *   zivStatus_NullPointer   a pointer is null
 *   zivStatus_BadArgument   the format code or the pair is unknown, a width, height or alignment is below 1, a row is above
 *                           2^31 - 1 bytes, an image above PTRDIFF_MAX; or pitches with which the pair does no good: offsets
 *                           beyond 32 bits (zivRows_Wrapped), and for NV41 a negative pitch, one below half the width, or
 *                           a destination's pitch[1] above the source's */

/* The image itself, without the room that a pair may want beyond it: what a file holds of it. Pitches are the bytes of a row,
 * rounded up to a multiple of alignment, and planes start at such multiples; 1 is tight. */
ZIVCOLOR_INLINE int32_t zivcolor_room_of_layout(uint32_t format, int32_t width, int32_t height, int32_t alignment,
                                                zivcolor_room* room) {
    zivcolor_detail_span spans[3] = {{0, 0}, {0, 0}, {0, 0}};
    int32_t status;
    if (!room) return zivStatus_NullPointer;
    zivcolor_detail_clear(room);
    status = zivcolor_detail_describe(format, width, height, NULL, width, alignment, room);
    if (status == zivStatus_OK) status = zivcolor_detail_add_up(alignment, room, spans);
    return zivcolor_detail_end(status, room);
}

/* The same of an image with its own pitches, of any sign. Its planes are not looked at. */
ZIVCOLOR_INLINE int32_t zivcolor_room_of_image(const zivcolor_image* image, zivcolor_room* room) {
    zivcolor_detail_span spans[3] = {{0, 0}, {0, 0}, {0, 0}};
    int32_t status;
    if (!room) return zivStatus_NullPointer;
    zivcolor_detail_clear(room);
    if (!image) return zivStatus_NullPointer;
    status = zivcolor_detail_describe(image->format, image->width, image->height, image->pitch, 0, 1, room);
    if (status == zivStatus_OK) status = zivcolor_detail_add_up(1, room, spans);
    return zivcolor_detail_end(status, room);
}

/* Source and destination of a conversion, by zivColorCvt or in bands by a context, both of one size: the images and whatever
 * the pair touches beyond them, reads and writes. Pitches are such that the pair finds every row and that rows do not run into
 * the next: the bytes that are touched of a row, rounded up to a multiple of alignment where the pair looks at pitches; planes
 * start at such multiples. Luma's pitch is chroma's too where rows of chroma step by pitch[0], and the pitches of NV41 are
 * those of NV21. Where rows lie otherwise, step tells. The exception is YUYV to I420, whose rows run into the next whatever the
 * pitch. */
ZIVCOLOR_INLINE int32_t zivcolor_room_of_pair(uint32_t source_format, uint32_t destination_format, int32_t width,
                                              int32_t height, int32_t alignment, zivcolor_room* source,
                                              zivcolor_room* destination) {
    const zivcolor_pair* pair = zivcolor_pair_of(source_format, destination_format);
    int64_t columns = width;
    int32_t status;
    if (!source || !destination) return zivStatus_NullPointer;
    zivcolor_detail_clear(source);
    zivcolor_detail_clear(destination);
    if (!pair) return zivStatus_BadArgument;
    if (pair->odd_width == zivOdd_Past) columns += width % 2; /* which else falls on the next row */
    status = zivcolor_detail_describe(source_format, width, height, NULL, columns, alignment, source);
    if (status == zivStatus_OK)
        status = zivcolor_detail_describe(destination_format, width, height, NULL, columns, alignment, destination);
    if (status == zivStatus_OK) status = zivcolor_detail_suit(pair->source_rows, alignment, source);
    if (status == zivStatus_OK) status = zivcolor_detail_suit(pair->destination_rows, alignment, destination);
    if (source_format == zivPixFmt_NV41) source->pitch[1] = source->step[1] = destination->pitch[1];
    if (status == zivStatus_OK) status = zivcolor_detail_both(pair, alignment, source, destination);
    zivcolor_detail_end(status, source);
    return zivcolor_detail_end(status, destination);
}

/* The same of two images with their own pitches, of any sign, and their own sizes. Their planes are not looked at. */
ZIVCOLOR_INLINE int32_t zivcolor_room_of_images(const zivcolor_image* source_image, const zivcolor_image* destination_image,
                                                zivcolor_room* source, zivcolor_room* destination) {
    const zivcolor_pair* pair;
    int32_t status;
    if (!source || !destination) return zivStatus_NullPointer;
    zivcolor_detail_clear(source);
    zivcolor_detail_clear(destination);
    if (!source_image || !destination_image) return zivStatus_NullPointer;
    pair = zivcolor_pair_of(source_image->format, destination_image->format);
    if (!pair) return zivStatus_BadArgument;
    status = zivcolor_detail_describe(source_image->format, source_image->width, source_image->height, source_image->pitch, 0,
                                      1, source);
    if (status == zivStatus_OK)
        status = zivcolor_detail_describe(destination_image->format, destination_image->width, destination_image->height,
                                          destination_image->pitch, 0, 1, destination);
    if (status == zivStatus_OK) status = zivcolor_detail_both(pair, 1, source, destination);
    zivcolor_detail_end(status, source);
    return zivcolor_detail_end(status, destination);
}

/* ---- Descriptors ------------------------------------------------------------------------------------------------- */
/* Image descriptors filled from one buffer, from planes or from a camera frame. */

/* The descriptor of an image in one buffer of room->size bytes, which the caller owns. Of a room that is all 0, and with a null
 * pointer, it is all 0 too, and every function refuses it. */
ZIVCOLOR_INLINE zivcolor_image zivcolor_image_in(const zivcolor_room* room, uint8_t* buffer) {
    zivcolor_image image = {0, 0, 0, {NULL, NULL, NULL, NULL}, {0, 0, 0, 0}};
    int32_t k;
    if (!room || !buffer) return image;
    image.format = room->format;
    image.width = room->width;
    image.height = room->height;
    for (k = 0; k < room->planes; k++) {
        image.plane[k] = buffer + room->offset[k];
        image.pitch[k] = room->pitch[k];
    }
    return image;
}

/* The descriptor of an image whose planes lie anywhere; NULL and 0 for those that the layout has not. Nothing is tested. */
ZIVCOLOR_INLINE zivcolor_image zivcolor_image_of_planes(uint32_t format, int32_t width, int32_t height, uint8_t* plane0,
                                                        int32_t pitch0, uint8_t* plane1, int32_t pitch1, uint8_t* plane2,
                                                        int32_t pitch2) {
    zivcolor_image image = {0, 0, 0, {NULL, NULL, NULL, NULL}, {0, 0, 0, 0}};
    image.format = format;
    image.width = width;
    image.height = height;
    image.plane[0] = plane0;
    image.plane[1] = plane1;
    image.plane[2] = plane2;
    image.pitch[0] = pitch0;
    image.pitch[1] = pitch1;
    image.pitch[2] = pitch2;
    return image;
}

/* A plane of a camera frame as cameras tell it. */
typedef struct zivcolor_camera_plane {
    uint8_t* first;       /* the first sample */
    int32_t row_stride;   /* bytes from one row to the next */
    int32_t pixel_stride; /* bytes from one sample to the next */
} zivcolor_camera_plane;

/* The descriptor of a camera frame, 4:2:0 in full range, that is told as three planes Y, U and V. What it is follows from their
 * strides: samples of U and V two bytes apart, one byte between the planes and equal row strides are pairs, NV12 where U is
 * the first of them and NV21 where V is; samples one byte apart are I420. On zivStatus_OK image is filled, otherwise all 0.
 *   zivStatus_NullPointer   planes, image or the first sample of a plane is null
 *   zivStatus_BadArgument   any other strides, rows that are longer than their stride, or a width or height below 1 */
ZIVCOLOR_INLINE int32_t zivcolor_image_of_camera(const zivcolor_camera_plane* planes, int32_t width, int32_t height,
                                                 zivcolor_image* image) {
    const zivcolor_camera_plane *y, *u, *v;
    const int64_t columns = ((int64_t)width + 1) / 2;
    if (!image) return zivStatus_NullPointer;
    *image = zivcolor_image_of_planes(0, 0, 0, NULL, 0, NULL, 0, NULL, 0);
    if (!planes) return zivStatus_NullPointer;
    y = &planes[0];
    u = &planes[1];
    v = &planes[2];
    if (!y->first || !u->first || !v->first) return zivStatus_NullPointer;
    if (width < 1 || height < 1 || y->pixel_stride != 1 || y->row_stride < width) return zivStatus_BadArgument;
    if (u->pixel_stride == 1 && v->pixel_stride == 1 && u->row_stride >= columns && v->row_stride >= columns) {
        *image = zivcolor_image_of_planes(zivPixFmt_I420, width, height, y->first, y->row_stride, u->first, u->row_stride,
                                          v->first, v->row_stride);
        return zivStatus_OK;
    }
    if (u->pixel_stride != 2 || v->pixel_stride != 2 || u->row_stride != v->row_stride || u->row_stride < 2 * columns)
        return zivStatus_BadArgument;
    if (v->first == u->first + 1) {
        *image =
            zivcolor_image_of_planes(zivPixFmt_NV12, width, height, y->first, y->row_stride, u->first, u->row_stride, NULL, 0);
        return zivStatus_OK;
    }
    if (u->first == v->first + 1) {
        *image =
            zivcolor_image_of_planes(zivPixFmt_NV21, width, height, y->first, y->row_stride, v->first, v->row_stride, NULL, 0);
        return zivStatus_OK;
    }
    return zivStatus_BadArgument;
}

#endif
