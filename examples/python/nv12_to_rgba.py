# SPDX-License-Identifier: MIT
"""An NV12 frame to a texture in RGBA8888, by way of NV21 in place, and beside it what numpy makes of it in floating point.

    python3 nv12_to_rgba.py [LIBRARY]    the path of the shared library; without it, the system's is taken"""
import sys
import time

import numpy

import zivcolor

WIDTH, HEIGHT, PITCH = 1080, 720, 1152  # 1080 is no multiple of 16; rows of a camera's frame are longer than the image


def frame():
    """Luma from left to right, U from top to bottom, V in waves."""
    luma, chroma = numpy.zeros((HEIGHT, PITCH), numpy.uint8), numpy.zeros((HEIGHT // 2, PITCH), numpy.uint8)
    luma[:, :WIDTH] = numpy.arange(WIDTH) * 256 // WIDTH
    chroma[:, 0:WIDTH:2] = (numpy.arange(HEIGHT // 2) * 512 // HEIGHT)[:, None]
    chroma[:, 1:WIDTH:2] = 128 + 100 * numpy.sin(numpy.arange(WIDTH // 2) / 40)
    return luma, chroma


def exact(luma, chroma):
    """BT.601, full range: each pair serves its 2 by 2 pixels."""
    y = luma[:, :WIDTH].astype(float)
    u, v = (numpy.kron(chroma[:, k:WIDTH:2].astype(float) - 128, numpy.ones((2, 2))) for k in (0, 1))
    rgb = numpy.stack([y + 1.402 * v, y - 0.344136 * u - 0.714136 * v, y + 1.772 * u], axis=-1)
    return numpy.clip(numpy.floor(rgb + 0.5), 0, 255)


def main():
    library = zivcolor.Library(*sys.argv[1:2])
    luma, chroma = frame()
    expected = exact(luma, chroma)
    texture = numpy.zeros((HEIGHT, WIDTH, 4), numpy.uint8)

    start = time.perf_counter()
    nv21 = zivcolor.Image("NV21", WIDTH, HEIGHT, luma, chroma)
    library.convert(zivcolor.Image("NV12", WIDTH, HEIGHT, luma, chroma), nv21)
    library.convert(nv21, zivcolor.Image("RGBA8888", WIDTH, HEIGHT, texture.reshape(HEIGHT, 4 * WIDTH)))
    seconds = time.perf_counter() - start

    off = numpy.abs(texture[:, :, :3] - expected).max(axis=(0, 1)).astype(int)
    print(f"{WIDTH}x{HEIGHT} in {1e3 * seconds:.2f} ms; R, G, B at most {off[0]}, {off[1]}, {off[2]} off")
    return 0 if (off <= 2).all() and (texture[:, :, 3] == 255).all() else 1


sys.exit(main())
