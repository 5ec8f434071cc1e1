# SPDX-License-Identifier: MIT
# AArch64 Linux with clang: -DCMAKE_TOOLCHAIN_FILE=cmake/aarch64-linux-gnu-clang.cmake, and -DZIVCOLOR_CLANG=clang++-19 to name one.
set(zivcolor_triple aarch64-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/linux-clang.cmake)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L /usr/aarch64-linux-gnu)
