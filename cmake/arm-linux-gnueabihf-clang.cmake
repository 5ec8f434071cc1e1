# SPDX-License-Identifier: MIT
# 32-bit ARM Linux with clang and NEON, as Android's armeabi-v7a is built; -DZIVCOLOR_CLANG=clang++-19 names one.
set(zivcolor_triple arm-linux-gnueabihf)
include(${CMAKE_CURRENT_LIST_DIR}/linux-clang.cmake)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_C_FLAGS_INIT "-march=armv7-a -mfpu=neon")
set(CMAKE_CXX_FLAGS_INIT "-march=armv7-a -mfpu=neon")
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L /usr/arm-linux-gnueabihf)
