// SPDX-License-Identifier: MIT
// What cannot be derived from the kernel list, told once for each kernel: docs/formats.md is generated from these rows and from
// src/core/kernel_list.h, and tests/facts_test.cpp proves what of them can be measured.
#pragma once

// clang-format off

// Layouts: what src/core/layout_list.h does not tell.
//   LAYOUT(name, "what the bytes of plane 0 are", "what those of the others are")
#define ZIVCOLOR_LAYOUT_FACTS(LAYOUT) \
    LAYOUT(BGR565,   "little-endian word: blue in bits 15-11, green in 10-5, red in 4-0", "") \
    LAYOUT(RGB565,   "little-endian word: red in bits 15-11, green in 10-5, blue in 4-0", "") \
    LAYOUT(BGR888,   "B G R", "") \
    LAYOUT(RGB888,   "R G B", "") \
    LAYOUT(BGRA8888, "B G R A", "") \
    LAYOUT(ARGB8888, "A R G B", "") \
    LAYOUT(RGBA8888, "R G B A", "") \
    LAYOUT(YUV,      "Y U V", "") \
    LAYOUT(YUYV,     "Y0 U Y1 V", "") \
    LAYOUT(YVYU,     "Y0 V Y1 U", "") \
    LAYOUT(UYVY,     "U Y0 V Y1", "") \
    LAYOUT(VYUY,     "V Y0 U Y1", "") \
    LAYOUT(I420,     "Y", "U; V") \
    LAYOUT(I422V,    "Y", "U; V, rows without gaps") \
    LAYOUT(I422H,    "Y", "U; V") \
    LAYOUT(I444,     "Y", "U; V") \
    LAYOUT(YV12,     "Y", "V; U") \
    LAYOUT(YV24,     "Y", "V; U") \
    LAYOUT(NV12,     "Y", "U V") \
    LAYOUT(NV21,     "Y", "V U") \
    LAYOUT(LPI422H,  "Y", "U V") \
    LAYOUT(NV41,     "Y", "V U")

// Coefficient sets.
//   SET(id, "name", "first output", "second output", "third output")
#define ZIVCOLOR_SET_FACTS(SET) \
    SET(ToRgbFine, "fine to RGB", "R = (32768 Y + 45941 v + 16384) >> 15", \
        "G = (32768 Y - 11277 u - 23401 v + 16384) >> 15", "B = (32768 Y + 58065 u + 16384) >> 15") \
    SET(ToRgbCoarse, "coarse to RGB", "R = Y + (45 v >> 5)", "G = Y - ((11 u >> 5) + (23 v >> 5))", "B = Y + (57 u >> 5)") \
    SET(ToRgbHalfGreen, "coarse to RGB, half u in green", "R = Y + (45 v >> 5)", "G = Y - ((11 u >> 6) + (23 v >> 5))", \
        "B = Y + (57 u >> 5)") \
    SET(ToRgbRounded, "rounded to RGB", "R = (32 Y + 45 v + 16) >> 5", "G = (32 Y - 11 u - 23 v + 16) >> 5", \
        "B = (32 Y + 57 u + 16) >> 5") \
    SET(ToRgbBinary32, "binary32 to RGB", "R = trunc(Y + 1.402 v)", "G = trunc(Y + (-0.714 v + -0.344 u))", \
        "B = trunc(Y + 1.772 u)") \
    SET(ToYuvShort, "short to YUV", "Y = (19 R + 38 G + 7 B) >> 6", "U = ((B - Y) * 9 >> 4) + 128", \
        "V = ((R - Y) * 91 >> 7) + 128") \
    SET(ToYuvFine, "fine to YUV", "Y = (S + 16384) >> 15 with S = 9798 R + 19235 G + 3736 B", \
        "U = (((B - Y) * 18492 + 16384) >> 15) + 128", "V = (((R - Y) * 23372 + 16384) >> 15) + 128") \
    SET(ToYuvFractional, "fine fractional to YUV", "Y = (S + 16384) >> 15 with S = 9798 R + 19235 G + 3736 B", \
        "U = (((((B << 7) - (S >> 8)) * 18492 >> 7) + 16384) >> 15) + 128", \
        "V = (((((R << 7) - (S >> 8)) * 23372 >> 7) + 16384) >> 15) + 128") \
    SET(ToYuvFloat, "float to YUV", "Y = trunc(0.299 R + 0.587 G + 0.114 B)", \
        "U = trunc(-0.1678 R - 0.3313 G + 0.5 B) + 128", "V = trunc(0.5 R - 0.4187 G - 0.0813 B) + 128") \
    SET(ToYuvEighths, "eighths to YUV", "Y = (19 R + 38 G + 7 B) >> 6", "U = ((B - Y) * 4 >> 3) + 128", \
        "V = ((R - Y) * 7 >> 3) + 128") \
    SET(ToYuvThirtySeconds, "thirty-seconds to YUV", "Y = (19 R + 38 G + 7 B) >> 6", "U = ((B - Y) * 18 >> 5) + 128", \
        "V = ((R - Y) * 23 >> 5) + 128")

// Kernels over a pair of descriptors.
//   FACTS(name, set of the blocks | Moves: no arithmetic | Means: rounded means of chroma,
//         block width, Fits: a block while so many columns are left | More: while more are left, columns of a tail step,
//         size that gives the columns, size that gives the rows,
//         what is checked, pitches read of the source, of the destination,
//         what happens with an odd width, with an odd height, Same: block and tail give the same bytes | Differ,
//         "what else there is to know")
#define ZIVCOLOR_YUV2RGB_FACTS(FACTS) \
    FACTS(zivColorNV12toBGR888u8,      ToRgbFine,      16, Fits, 2, Dst, Dst, Both2x2, P01,  P0,   LeftOut, LeftOut, Same, "") \
    FACTS(zivColorNV21toBGR888u8,      ToRgbFine,      16, Fits, 2, Dst, Dst, Both2x2, P01,  P0,   LeftOut, LeftOut, Same, "") \
    FACTS(zivColorNV21toRGB888u8,      ToRgbHalfGreen, 16, Fits, 2, Dst, Dst, Both2x2, P01,  P0,   Short,   LeftOut, Differ, \
          "Tail: coarse set, bytes B G R; byte 0 is 0 if R < 0, else 255 if B > 255, else the low 8 bits of B; byte 2 is 0 " \
          "if B < 0, else 255 if R > 255, else the low 8 bits of R. Nothing is written at W = 2.") \
    FACTS(zivColorNV21toBGRA8888u8,    ToRgbBinary32,  16, Fits, 2, Dst, Dst, Both2x2, P01,  P0,   LeftOut, LeftOut, Differ, \
          "Tail: green is summed as (Y + -0.714 v) + -0.344 u, which changes 1917 of all 2^24 triples by one.") \
    FACTS(zivColorNV21toRGBA8888u8,    ToRgbRounded,   16, Fits, 2, Dst, Dst, Both2x2, P01,  P0,   LeftOut, LeftOut, Same, "") \
    FACTS(zivColorNV12toRGBA8888u8,    ToRgbCoarse,    16, Fits, 2, Dst, Dst, Both2x2, P01,  P0,   Short,   LeftOut, Differ, \
          "Tail: the luma of the second column is taken crosswise, the upper pixel's from the lower row and the lower " \
          "pixel's from the upper row. Nothing is written at W = 2.") \
    FACTS(zivColorNV12toBGRA8888u8,    ToRgbCoarse,    16, Fits, 2, Dst, Dst, Both2x2, P01,  P0,   Short,   LeftOut, Differ, \
          "Tail: luma crosswise as in zivColorNV12toRGBA8888u8; bytes R G B alpha; byte 0 is 0 if B < 0, else 255 if R > " \
          "255, else the low 8 bits of R; byte 2 is 0 if R < 0, else 255 if B > 255, else the low 8 bits of B. Nothing is " \
          "written at W = 2.") \
    FACTS(zivColorI420toBGR888u8,      ToRgbFine,      16, Fits, 2, Dst, Dst, Both2x2, P012, P0,   Ahead,   LeftOut, Differ, \
          "Tail: from its first column T on, pass k writes columns T + 2 k and the next from the luma of columns T + 4 k + 2 " \
          "and the next; up to W - T bytes past the end of both luma rows are read.") \
    FACTS(zivColorI420toRGB888u8,      ToRgbCoarse,    16, Fits, 2, Dst, Dst, Both2x2, P012, P0,   LeftOut, LeftOut, Same, "") \
    FACTS(zivColorI420toBGRA8888u8,    ToRgbCoarse,    16, Fits, 2, Dst, Dst, Both2x2, P012, P0,   LeftOut, LeftOut, Same, "") \
    FACTS(zivColorI420toRGBA8888u8,    ToRgbCoarse,    16, Fits, 2, Dst, Dst, Both2x2, P012, P0,   LeftOut, LeftOut, Same, "") \
    FACTS(zivColorYV12toBGR888u8,      ToRgbCoarse,    16, Fits, 1, Dst, Dst, Both2x2, P012, P0,   Exact,   Exact,   Differ, \
          "Tail: V is not read; B = Y + (57 u >> 5), G = Y - (11 u >> 5), R = Y.") \
    FACTS(zivColorYV12toRGB888u8,      ToRgbCoarse,    16, Fits, 1, Dst, Dst, Both2x2, P012, P0,   Exact,   RowOne,  Same, \
          "Every row goes to row 1 of the destination, one over the other; no other row is touched.") \
    FACTS(zivColorYUYVtoBGR888u8,      ToRgbFine,      16, Fits, 2, Dst, Dst, Both2x1, P0,   P0,   Past,    Exact,   Differ, \
          "Tail: bytes R G B without a lower limit, each at most 255 and truncated to 8 bits; byte 0 loses its upper limit where " \
          "B < 0, byte 2 where R < 0.") \
    FACTS(zivColorYUYVtoRGB888u8,      ToRgbCoarse,    16, Fits, 2, Dst, Dst, Both2x1, P0,   P0,   Past,    Exact,   Differ, \
          "Tail: no lower limit; each byte at most 255 and truncated to 8 bits.") \
    FACTS(zivColorYUYVtoRGBA8888u8,    ToRgbCoarse,    16, Fits, 2, Dst, Dst, Both2x1, P0,   P0,   Past,    Exact,   Same, "") \
    FACTS(zivColorLPI422HtoBGRA8888u8, ToRgbCoarse,    16, Fits, 2, Dst, Dst, Both2x2, None, None, LeftOut, Exact,   Same, \
          "Every row starts where the one before it ended, on all planes: after W columns, or W - 1 with an odd W.") \
    FACTS(zivColorLPI422HtoRGBA8888u8, ToRgbCoarse,    16, Fits, 2, Src, Src, Both2x2, P01,  P0,   LeftOut, Exact,   Same, "")

#define ZIVCOLOR_RGB2YUV_FACTS(FACTS) \
    FACTS(zivColorBGR888toNV21u8,      ToYuvFractional,    16, Fits, 1, Dst, Dst, Both2x2, P0,   P01,  Exact, Exact, Same, "") \
    FACTS(zivColorRGB888toNV21u8,      ToYuvShort,         16, Fits, 1, Dst, Dst, Both2x2, P0,   P0,   Exact, Exact, Differ, \
          "Chroma rows step by the destination's pitch[0]. Tail: V and then U of every pair go to one byte, at the column " \
          "where the blocks ended; the bytes behind it keep what they held.") \
    FACTS(zivColorBGR888toNV12u8,      ToYuvFractional,    16, Fits, 1, Dst, Dst, Both2x2, P0,   P01,  Exact, Exact, Same, "") \
    FACTS(zivColorRGB888toNV12u8,      ToYuvShort,         16, Fits, 1, Dst, Dst, Both2x2, P0,   P01,  Exact, Exact, Differ, \
          "Tail: V is shifted by 4, not 7: V = ((R - Y) * 91 >> 4) + 128, limited.") \
    FACTS(zivColorBGR888toI420u8,      ToYuvFine,          16, Fits, 1, Dst, Dst, Both2x2, P0,   P012, Exact, Exact, Same, "") \
    FACTS(zivColorRGB888toI420u8,      ToYuvShort,         16, Fits, 1, Dst, Dst, Both2x2, P0,   P012, Exact, Exact, Same, "") \
    FACTS(zivColorBGRA8888toNV21u8,    ToYuvFloat,          8, More, 1, Dst, Dst, Both2x2, P0,   P01,  Exact, Exact, Differ, \
          "Blocks in binary32, the tail in binary64 (its luma rounded to binary32 before truncation): one step apart for " \
          "some colours, 13 grey levels among them.") \
    FACTS(zivColorRGBA8888toNV21u8,    ToYuvFloat,          8, More, 1, Dst, Dst, Both2x2, P0,   P01,  Exact, Exact, Differ, \
          "As zivColorBGRA8888toNV21u8.") \
    FACTS(zivColorBGRA8888toNV12u8,    ToYuvShort,         16, Fits, 1, Dst, Dst, Both2x2, P0,   P01,  Exact, Exact, Differ, \
          "Blocks: the luma of columns 8 to 15 takes its blue from columns 0 to 7. The tail's takes its own.") \
    FACTS(zivColorRGBA8888toNV12u8,    ToYuvShort,         16, Fits, 1, Dst, Dst, Both2x2, P0,   P01,  Exact, Exact, Differ, \
          "As zivColorBGRA8888toNV12u8.") \
    FACTS(zivColorBGRA8888toI420u8,    ToYuvShort,         16, Fits, 1, Dst, Dst, Both2x2, P0,   P012, Exact, Exact, Same, "") \
    FACTS(zivColorRGBA8888toI420u8,    ToYuvShort,         16, Fits, 1, Src, Dst, Both2x2, P0,   P012, Exact, Exact, Same, "") \
    FACTS(zivColorRGBA8888toYUYVu8,    ToYuvShort,         16, Fits, 2, Dst, Dst, Both2x1, P0,   P0,   Past,  Exact, Same, "") \
    FACTS(zivColorRGB888toYUYVu8,      ToYuvShort,         16, Fits, 2, Dst, Dst, Both2x1, P0,   P0,   Past,  Exact, Same, "") \
    FACTS(zivColorBGR888toYUYVu8,      ToYuvFine,          16, Fits, 2, Dst, Dst, Both2x1, P0,   P0,   Past,  Exact, Same, "") \
    FACTS(zivColorRGB888toYVYUu8,      ToYuvShort,         16, Fits, 2, Dst, Dst, Both2x1, P0,   P0,   Past,  Exact, Same, "") \
    FACTS(zivColorBGR888toYVYUu8,      ToYuvShort,         16, Fits, 2, Dst, Dst, Both2x1, P0,   P0,   Past,  Exact, Same, "") \
    FACTS(zivColorRGB888toUYVYu8,      ToYuvShort,         16, Fits, 2, Dst, Dst, Both2x1, P0,   P0,   Past,  Exact, Same, "") \
    FACTS(zivColorBGR888toUYVYu8,      ToYuvShort,         16, Fits, 2, Dst, Dst, Both2x1, P0,   P0,   Past,  Exact, Same, "") \
    FACTS(zivColorRGB888toVYUYu8,      ToYuvShort,         16, Fits, 2, Dst, Dst, Both2x1, P0,   P0,   Past,  Exact, Same, "") \
    FACTS(zivColorBGR888toVYUYu8,      ToYuvShort,         16, Fits, 2, Dst, Dst, Both2x1, P0,   P0,   Past,  Exact, Same, "") \
    FACTS(zivColorRGB888toYV24u8,      ToYuvShort,          8, Fits, 1, Dst, Dst, Both1x1, P0,   P012, Exact, Exact, Same, "") \
    FACTS(zivColorRGB888toI422Hu8,     ToYuvShort,         16, Fits, 2, Dst, Dst, Both2x1, P0,   P012, Past,  Exact, Same, "") \
    FACTS(zivColorBGR888toI422Hu8,     ToYuvShort,         16, Fits, 2, Src, Dst, Both2x1, P0,   P012, Past,  Exact, Same, "") \
    FACTS(zivColorBGRA8888toLPI422Hu8, ToYuvEighths,       16, Fits, 1, Src, Src, Both2x2, None, None, Exact, Exact, Same, \
          "Every row follows the one before: 4 W bytes of source, W of luma, W of chroma (W + 1 when W is odd).") \
    FACTS(zivColorRGBA8888toLPI422Hu8, ToYuvThirtySeconds, 16, Fits, 1, Src, Src, Both2x2, P0,   P01,  Exact, Exact, Same, "")

#define ZIVCOLOR_YUVREPACK_FACTS(FACTS) \
    FACTS(zivColorI420toNV21u8,     Moves, 16, Fits, 2, Dst, Dst, Both2x2,         P012, P01,  LeftOut, LeftOut, Same, "") \
    FACTS(zivColorNV21toI420u8,     Moves, 16, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P01,  P012, LeftOut, LeftOut, Same, "") \
    FACTS(zivColorNV12toI420u8,     Moves, 16, Fits, 2, Dst, Dst, Both2x2,         P01,  P012, LeftOut, LeftOut, Same, "") \
    FACTS(zivColorNV12toNV21u8,     Moves,  0, Fits, 2, Dst, Dst, Both2x2,         P01,  P01,  LeftOut, LeftOut, Same, "") \
    FACTS(zivColorYV12toNV21u8_2,   Moves, 16, Fits, 2, Dst, Dst, Dst2x2AnyFormat, P012, P0,   Past,    Exact,   Same, \
          "Chroma rows of the destination step by its pitch[0].") \
    FACTS(zivColorNV12toYUYVu8,     Moves, 16, Fits, 2, Dst, Dst, Both2x2,         P0,   P0,   Past,    Past,    Same, \
          "Chroma rows of the source step by its pitch[0].") \
    FACTS(zivColorNV21toYUYVu8,     Moves, 16, Fits, 2, Dst, Dst, Both2x2,         P0,   P0,   Past,    Exact,   Same, \
          "Chroma rows of the source step by its pitch[0].") \
    FACTS(zivColorI420toYUYVu8,     Moves, 16, Fits, 2, Dst, Dst, Both2x2,         P012, P0,   LeftOut, LeftOut, Same, "") \
    FACTS(zivColorYUYVtoNV21u8_v2,  Moves,  8, Fits, 2, Dst, Dst, Dst2x2AnyFormat, P0,   P01,  Past,    Exact,   Same, \
          "Chroma of the even rows is kept.") \
    FACTS(zivColorYUYVtoNV12u8_v2,  Moves, 16, More, 2, Dst, Dst, Both2x2,         P0,   P01,  Past,    Exact,   Same, \
          "Chroma of the even rows is kept.") \
    FACTS(zivColorYUYVtoI420u8_2,   Moves, 16, More, 2, Dst, Dst, Dst2x2AnyFormat, P0,   P012, Twice,   Past,    Same, \
          "Chroma of the even rows is kept. The lower luma row of a pair is placed W bytes below the upper one, whatever " \
          "pitch[0] says. The tail, from column T on, takes W - T steps of two columns: W - T columns beyond the row's end " \
          "are read and written, and half as many chroma samples.") \
    FACTS(zivColorI422HtoI420u8,    Moves, 16, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P012, P012, LeftOut, Exact,   Same, \
          "Chroma of the even rows is kept.") \
    FACTS(zivColorI422HtoNV21u8,    Moves, 16, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P012, P0,   LeftOut, Exact,   Same, \
          "Chroma of the even rows is kept. Chroma rows of the destination step by its pitch[0].") \
    FACTS(zivColorI422HtoNV12u8,    Moves, 16, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P012, P01,  LeftOut, Exact,   Same, \
          "Chroma of the even rows is kept. That of row i goes to row i of plane 1, not i / 2: chroma rows stand two pitches " \
          "apart. Give half the chroma pitch to get them close.") \
    FACTS(zivColorI422HtoYUYVu8,    Moves, 16, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P012, P0,   LeftOut, Exact,   Same, "") \
    FACTS(zivColorI422HtoLPI422Hu8, Moves, 16, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P012, P01,  LeftOut, Exact,   Same, "") \
    FACTS(zivColorI422VtoI420u8,    Moves, 16, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P0,   P0,   Past,    LeftOut, Same, \
          "Chroma of the even columns is kept. Chroma planes of both images are one run: W + 1 columns a row with an odd W.") \
    FACTS(zivColorI422VtoNV21u8,    Moves, 16, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P0,   P0,   LeftOut, LeftOut, Same, \
          "Chroma of the even columns is kept. Chroma planes of both images are one run: W - 1 columns a row with an odd W.") \
    FACTS(zivColorI422VtoNV12u8,    Moves, 16, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P0,   P0,   LeftOut, LeftOut, Same, \
          "As zivColorI422VtoNV21u8.") \
    FACTS(zivColorI422VtoYUYVu8,    Moves, 16, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P0,   P0,   LeftOut, LeftOut, Same, \
          "Chroma of the even columns is kept, on both rows of a pair. The source's chroma planes are one run: W - 1 columns " \
          "a row with an odd W.") \
    FACTS(zivColorI422VtoLPI422Hu8, Moves, 16, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P0,   P01,  LeftOut, LeftOut, Same, \
          "As zivColorI422VtoYUYVu8.") \
    FACTS(zivColorI444toI420u8,     Moves,  0, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P012, P0,   LeftOut, LeftOut, Same, \
          "Chroma at even rows and even columns is kept. From one pair of rows to the next the source's chroma moves by the " \
          "columns walked plus one pitch: two rows only if the pitch is an even W. Destination chroma planes are one run.") \
    FACTS(zivColorI444toNV21u8,     Moves,  0, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P012, P0,   LeftOut, LeftOut, Same, \
          "As zivColorI444toI420u8.") \
    FACTS(zivColorI444toNV12u8,     Moves,  0, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P012, P0,   LeftOut, LeftOut, Same, \
          "As zivColorI444toI420u8.") \
    FACTS(zivColorI444toYUYVu8,     Moves,  0, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  P012, P0,   LeftOut, LeftOut, Same, \
          "As zivColorI444toI420u8; both rows of a pair get the chroma of the upper one.") \
    FACTS(zivColorI444toLPI422Hu8,  Moves,  0, Fits, 2, Dst, Dst, Dst2x2SrcRows2,  None, None, LeftOut, Exact,   Same, \
          "Chroma at even columns is kept. Every row starts where the one before it ended, on all planes: after W columns, " \
          "or W - 1 with an odd W.") \
    FACTS(zivColorYUVtoNV21u8,      Moves,  8, Fits, 2, Dst, Dst, Both2x2,         P0,   P01,  Past,    Past,    Same, \
          "Chroma at even rows and even columns is kept.") \
    FACTS(zivColorNV21toYUVu8,      Moves, 16, Fits, 2, Dst, Dst, Both2x2,         P01,  P0,   Past,    Past,    Same, "") \
    FACTS(zivColorNV21toNV41,       Means, 32, Fits, 4, Src, Src, Dst2x2SrcRows2,  P1,   P01,  Fours,   Fours,   Differ, \
          "Luma is copied as one run of the destination's pitch[0] times H bytes, unless both images share it. Tail: V goes " \
          "on where the blocks stopped, U begins at the start of the row again.") \
    FACTS(zivColorNV21toNV41_2,     Means, 32, Fits, 4, Src, Src, Dst2x2SrcRows2,  P1,   P01,  Fours,   Fours,   Differ, \
          "As zivColorNV21toNV41; then clears pitch[1] - W / 2 bytes after each chroma row, and pitch[1] * H / 4 bytes after " \
          "the last: what the chroma plane of an NV21 image holds beyond.") \
    FACTS(zivColorNV41toNV21,       Means, 32, FourMore, 4, Src, Src, Dst2x2SrcRows2,  P1,   P01,  Fours,   Fours,   Differ, \
          "ENDS THE PROCESS for every W above 0: its tail, which every row reaches, ends in a trap. Use " \
          "zivColorNV41toNV21_2.") \
    FACTS(zivColorNV41toNV21_2,     Means, 32, Fits, 4, Src, Src, Dst2x2SrcRows2,  P1,   P01,  Fours,   Fours,   Differ, \
          "Luma as zivColorNV21toNV41. Both images may be the same memory. Needs a work buffer of two of the source's chroma " \
          "rows, and a destination pitch[1] not above the source's. What no step writes of the top two rows, padding among " \
          "it, takes any value. Tail: U begins at the start of the row again.")

#define ZIVCOLOR_RGBREPACK_FACTS(FACTS) \
    FACTS(zivColorRGBA8888toBGR888u8, Moves,  8, Fits, 1, Dst, Dst, Dst1x1,          P0, P0, Exact, Exact, Same, "") \
    FACTS(zivColorRGB888toBGR888u8_2, Moves,  8, Fits, 1, Dst, Dst, Dst1x1AnyFormat, P0, P0, Exact, Exact, Same, \
          "Harmless in place.") \
    FACTS(zivColorBGR888toARGB8888u8, Moves, 16, Fits, 1, Dst, Dst, Both1x1,         P0, P0, Exact, Exact, Same, \
          "Alpha is 255.") \
    FACTS(zivColorRGB888toARGB8888u8, Moves, 16, Fits, 1, Dst, Dst, Both1x1,         P0, P0, Exact, Exact, Same, \
          "Alpha is 255.") \
    FACTS(zivColorRGB888toBGR565u8,   Moves,  8, Fits, 1, Dst, Dst, Both2x2,         P0, P0, Exact, Exact, Same, "") \
    FACTS(zivColorRGB888toRGB565u8,   Moves,  8, Fits, 1, Dst, Dst, Both2x2,         P0, P0, Exact, Exact, Same, "") \
    FACTS(zivColorBGR888toRGB565u8,   Moves, 16, Fits, 1, Dst, Dst, Both2x2,         P0, P0, Exact, Exact, Same, "") \
    FACTS(zivColorBGR888toBGR565u8,   Moves, 16, Fits, 1, Dst, Dst, Both2x2,         P0, P0, Exact, Exact, Same, "")

// How the rows of an image are found; every kernel that is not named steps each plane by its own pitch.
//   ROWS(name, rows of the source, rows of the destination)
//     Pitch: by the plane's own | Wrapped: the same, by offsets of 32 bits | LumaPitch: chroma by pitch[0] |
//     TwicePitch: chroma by twice pitch[1] | Tight: one row after the other on all planes | TightChroma: luma by pitch[0],
//     chroma one row after the other | HalfPitch: luma by pitch[0], two rows of chroma the even part of the width and a pitch
//     apart | WidthApart: the second of two luma rows the width behind the first | Copied: luma as one run of the
//     destination's pitch[0] times the height, chroma by pitch[1]
#define ZIVCOLOR_ROWS_FACTS(ROWS) \
    ROWS(zivColorNV12toBGR888u8,      Wrapped,     Wrapped) \
    ROWS(zivColorNV21toBGR888u8,      Wrapped,     Wrapped) \
    ROWS(zivColorNV21toRGB888u8,      Wrapped,     Wrapped) \
    ROWS(zivColorNV21toBGRA8888u8,    Wrapped,     Wrapped) \
    ROWS(zivColorNV21toRGBA8888u8,    Wrapped,     Wrapped) \
    ROWS(zivColorNV12toRGBA8888u8,    Wrapped,     Wrapped) \
    ROWS(zivColorNV12toBGRA8888u8,    Wrapped,     Wrapped) \
    ROWS(zivColorI420toBGR888u8,      Wrapped,     Wrapped) \
    ROWS(zivColorI420toRGB888u8,      Wrapped,     Wrapped) \
    ROWS(zivColorI420toBGRA8888u8,    Wrapped,     Wrapped) \
    ROWS(zivColorI420toRGBA8888u8,    Wrapped,     Wrapped) \
    ROWS(zivColorLPI422HtoBGRA8888u8, Tight,       Tight) \
    ROWS(zivColorRGB888toNV21u8,      Pitch,       LumaPitch) \
    ROWS(zivColorBGRA8888toLPI422Hu8, Tight,       Tight) \
    ROWS(zivColorYV12toNV21u8_2,      Pitch,       LumaPitch) \
    ROWS(zivColorNV12toYUYVu8,        LumaPitch,   Pitch) \
    ROWS(zivColorNV21toYUYVu8,        LumaPitch,   Pitch) \
    ROWS(zivColorYUYVtoI420u8_2,      Pitch,       WidthApart) \
    ROWS(zivColorI422HtoNV21u8,       Pitch,       LumaPitch) \
    ROWS(zivColorI422HtoNV12u8,       Pitch,       TwicePitch) \
    ROWS(zivColorI422VtoI420u8,       TightChroma, TightChroma) \
    ROWS(zivColorI422VtoNV21u8,       TightChroma, TightChroma) \
    ROWS(zivColorI422VtoNV12u8,       TightChroma, TightChroma) \
    ROWS(zivColorI422VtoYUYVu8,       TightChroma, Pitch) \
    ROWS(zivColorI422VtoLPI422Hu8,    TightChroma, Pitch) \
    ROWS(zivColorI444toI420u8,        HalfPitch,   TightChroma) \
    ROWS(zivColorI444toNV21u8,        HalfPitch,   TightChroma) \
    ROWS(zivColorI444toNV12u8,        HalfPitch,   TightChroma) \
    ROWS(zivColorI444toYUYVu8,        HalfPitch,   Pitch) \
    ROWS(zivColorI444toLPI422Hu8,     Tight,       Tight) \
    ROWS(zivColorNV21toNV41,          Copied,      Copied) \
    ROWS(zivColorNV21toNV41_2,        Copied,      Copied) \
    ROWS(zivColorNV41toNV21,          Copied,      Copied) \
    ROWS(zivColorNV41toNV21_2,        Copied,      Copied)

// Kernels with a signature of their own.
//   FACTS(name, "from", "to", "blocks", "memory: sizes, pitches and reach", "what else there is to know")
#define ZIVCOLOR_ROUTINE_FACTS(FACTS) \
    FACTS(zivColorYV12toNV21u8, "YV12, one block of memory", "NV21, one block of memory", "16 columns while 16 are left", \
          "Tight rows; V at W * H of the source, U W * H / 4 further; chroma rows of W / 2 bytes. With an odd W every row " \
          "takes a column more, so that rows drift.", "Sizes at least 2 by 2.") \
    FACTS(zivColorYUYVtoNV21u8, "YUYV, one block of memory", "NV21, one block of memory", "8 columns while 8 are left", \
          "Tight rows. With an odd W every row takes a column more, so that rows drift.", \
          "Sizes at least 2 by 2. Chroma of the even rows is kept.") \
    FACTS(zivColorYUYVtoNV12u8, "YUYV, one block of memory", "NV12, one block of memory", "8 columns while 8 are left", \
          "Tight rows; the tail takes single columns, so that an odd W does not drift.", \
          "Sizes at least 2 by 2. Chroma of the even rows is kept.") \
    FACTS(zivColorYUYVtoI420u8, "YUYV, one block of memory", "I420, one block of memory", "16 columns while more than 16 are left",\
          "Tight rows. An odd W leaves the last column, an odd H the last row unwritten. With an odd W every pair of rows " \
          "starts a column early, so that rows drift back.", \
          "Sizes at least 2 by 2. Chroma of the even rows is kept.") \
    FACTS(zivColorRGB888toBGR888u8, "RGB888, tight rows", "BGR888, tight rows", "8 columns while 8 are left", \
          "Exactly 3 * W * H bytes are read and written.", "Sizes at least 1 by 1. Harmless in place.") \
    FACTS(zivColorBGR888toHSL888u8, "BGR888", "HSL888", "8 columns while more than 8 are left", \
          "Strides as arguments, unsigned. Exactly the rows' pixels are read and written.", \
          "Sizes at least 3 by 3; widths from 3 to 7 run on beyond the image and must not be used. Block and tail agree.") \
    FACTS(zivColorBGR565toHSL888u8, "words with red on top", "HSL888", "8 columns while more than 8 are left", \
          "Strides as arguments, unsigned. Exactly the rows' pixels are read and written.", \
          "As zivColorBGR888toHSL888u8. Fields are shifted up, their low bits stay 0.") \
    FACTS(zivColorRGB565toHSL888u8, "words with blue on top", "HSL888", "8 columns while more than 8 are left", \
          "Strides as arguments, unsigned. Exactly the rows' pixels are read and written.", "As zivColorBGR565toHSL888u8.") \
    FACTS(zivColorI420toHSL888u8, "I420", "HSL888", "8 columns of two rows while more than 8 are left",\
          "Strides as arguments, unsigned. With an odd W one column beyond each row, with an odd H one row beyond the last " \
          "is read and written.", "Sizes as zivColorBGR888toHSL888u8. By way of B G R in 14 fractional bits.") \
    FACTS(zivRotate, "NV21 or NV12", "the same, turned", "8 by 8 luma and 4 by 4 pairs; no tail", \
          "Sizes of the source. What does not fill a block is not moved. Quarter turns step chroma by pitch[0] on both " \
          "sides; the half turn reads the source's pitch[1].", \
          "Mode 1 turns clockwise, 3 counter-clockwise, any other by half. No status, no format is tested.") \
    FACTS(zivflip_horizontal_nv21, "NV21", "NV21, left and right exchanged", "8 columns of two rows while more than 8 are left",\
          "Sizes of the source. The second row of a pair lies W bytes below the first on both sides; the source's pitch[1] " \
          "steps both chroma planes. Odd sizes touch one column or row more.", "The destination's record is not tested.") \
    FACTS(zivflip_vertical_nv21, "NV21", "NV21, top and bottom exchanged", "8 columns of two rows while more than 8 are left",\
          "Sizes of the source. The second row of a pair lies W bytes from the first; the source's pitches step both images. " \
          "Odd sizes touch one column or row more.", "The destination's record is not tested.") \
    FACTS(_SkinWhitenByMask_YUV420_VUVU, "NV21-like, in place", "itself", "none; cells of 2 by 2", \
          "Chroma starts W * H bytes after plane[0]; reads pitch[0] and pitch[1]; two mask rows serve all rows.", \
          "Nothing is tested. An odd last row or column stays as it is.") \
    FACTS(_SkinWhitenByMask_YUV420_VUVU_neon, "NV21-like, in place", "itself", "16 columns of two rows while 16 are left", \
          "As _SkinWhitenByMask_YUV420_VUVU.", \
          "Not the same results: blocks work in wrapping 16 bits and lift V by up to 9, the tail leaves V as it is under a " \
          "positive level.") \
    FACTS(CalcMergeWeightMap_neon, "every 20th of a run of 64-bit sums", "bytes", "8 columns while 8 are left", \
          "With an odd lW one entry and one byte more.", \
          "Blocks multiply by the reciprocal in binary32 and clamp; the tail divides and does not clamp below 0.")

// clang-format on
