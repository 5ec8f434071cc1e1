# SPDX-License-Identifier: MIT
# What the toolchain files of clang for another Linux machine share: they set zivcolor_triple, whose GCC packages are installed.
set(CMAKE_SYSTEM_NAME Linux)
set(ZIVCOLOR_CLANG clang++ CACHE STRING "The clang++ to cross-compile with")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZIVCOLOR_CLANG)
string(REPLACE "clang++" "clang" ZIVCOLOR_CLANG_C "${ZIVCOLOR_CLANG}")
set(CMAKE_C_COMPILER ${ZIVCOLOR_CLANG_C})
set(CMAKE_CXX_COMPILER ${ZIVCOLOR_CLANG})
set(CMAKE_C_COMPILER_TARGET ${zivcolor_triple})
set(CMAKE_CXX_COMPILER_TARGET ${zivcolor_triple})
set(CMAKE_FIND_ROOT_PATH /usr/${zivcolor_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
