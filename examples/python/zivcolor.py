# SPDX-License-Identifier: MIT
"""zivcolor from Python by ctypes: planes are numpy arrays of bytes, rows of any pitch, and the library works in their memory."""
import ctypes

import numpy

FORMATS = {
    "BGR565": 0x101, "RGB565": 0x105, "BGR888": 0x201, "RGB888": 0x204, "BGRA8888": 0x302, "ARGB8888": 0x304, "RGBA8888": 0x305,
    "YUV": 0x401, "YUYV": 0x501, "YVYU": 0x502, "UYVY": 0x503, "VYUY": 0x504, "I420": 0x601, "I422V": 0x602, "I422H": 0x603,
    "I444": 0x604, "YV12": 0x605, "YV24": 0x608, "NV12": 0x801, "NV21": 0x802, "LPI422H": 0x803, "NV41": 0x805,
}  # fmt: skip


class _Image(ctypes.Structure):
    _fields_ = [
        ("format", ctypes.c_uint32),
        ("width", ctypes.c_int32),
        ("height", ctypes.c_int32),
        ("plane", ctypes.POINTER(ctypes.c_uint8) * 4),
        ("pitch", ctypes.c_int32 * 4),
    ]


class _Alpha(ctypes.Structure):
    _fields_ = [("alpha", ctypes.c_int32)]


class Image:
    """A format's name, a size in pixels, and one array of uint8 for each plane: rows by bytes, each row without gaps."""

    def __init__(self, format, width, height, *planes):
        self.planes = planes  # the record has their addresses: they live as long as it
        self.record = _Image(FORMATS[format], width, height)
        for k, plane in enumerate(planes):
            if plane.dtype != numpy.uint8 or plane.ndim != 2 or plane.strides[1] != 1:
                raise ValueError("a plane is an array of uint8, rows by bytes")
            self.record.plane[k] = plane.ctypes.data_as(ctypes.POINTER(ctypes.c_uint8))
            self.record.pitch[k] = plane.strides[0]


class Library:
    def __init__(self, path="libzivcolor.so.1"):
        self._library = ctypes.CDLL(path)
        image = ctypes.POINTER(_Image)
        self._library.zivColorCvt.argtypes = [image, image, _Alpha]
        self._library.zivColorCvt.restype = ctypes.c_int32

    def convert(self, source, destination, alpha=255):
        """Converts, without Python's lock: other threads run meanwhile. Sizes of arrays are the caller's to get right."""
        status = self._library.zivColorCvt(source.record, destination.record, _Alpha(alpha))
        if status != 0:
            raise ValueError(f"zivColorCvt: status {status}")
