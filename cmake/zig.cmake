# SPDX-License-Identifier: MIT
# Cross build with zig's compiler, a clang with the headers and libraries of many systems:
#   -DCMAKE_TOOLCHAIN_FILE=cmake/zig.cmake -DZIVCOLOR_ZIG=/path/to/zig -DZIVCOLOR_ZIG_TARGET=aarch64-macos
# LLVM's tools for archives and the like are taken from version 19.
set(ZIVCOLOR_ZIG zig CACHE STRING "The zig to compile with")
set(ZIVCOLOR_ZIG_TARGET "" CACHE STRING "Machine and system, as in aarch64-macos, x86_64-windows-gnu, aarch64-linux-musl")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZIVCOLOR_ZIG ZIVCOLOR_ZIG_TARGET)
# What is asked of the compiler needs no link, and so no C++ library to be made first.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
foreach(language C CXX)
    set(CMAKE_${language}_COMPILER_ID_RUN ON)
    set(CMAKE_${language}_COMPILER_ID Clang)
    set(CMAKE_${language}_COMPILER_VERSION 17.0)
    set(CMAKE_${language}_COMPILER_FRONTEND_VARIANT GNU)
endforeach()
set(CMAKE_C_STANDARD_COMPUTED_DEFAULT 17)
set(CMAKE_CXX_STANDARD_COMPUTED_DEFAULT 17)
string(REGEX MATCH "^[^-]+" CMAKE_SYSTEM_PROCESSOR "${ZIVCOLOR_ZIG_TARGET}")
if(ZIVCOLOR_ZIG_TARGET MATCHES macos)
    set(CMAKE_SYSTEM_NAME Darwin)
elseif(ZIVCOLOR_ZIG_TARGET MATCHES windows)
    set(CMAKE_SYSTEM_NAME Windows)
    set(CMAKE_RC_COMPILER llvm-windres-19)
    set(CMAKE_HAVE_LIBC_PTHREAD ON)  # its C++ library takes threads from the system, which need no library of their own
else()
    set(CMAKE_SYSTEM_NAME Linux)
endif()
set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)  # its driver does not know the language of headers
set(CMAKE_C_COMPILER ${ZIVCOLOR_ZIG} cc -target ${ZIVCOLOR_ZIG_TARGET})
set(CMAKE_CXX_COMPILER ${ZIVCOLOR_ZIG} c++ -target ${ZIVCOLOR_ZIG_TARGET})
set(CMAKE_USER_MAKE_RULES_OVERRIDE_CXX ${CMAKE_CURRENT_LIST_DIR}/zig_link_rules.cmake)
set(CMAKE_AR /usr/bin/llvm-ar-19 CACHE FILEPATH "")
set(CMAKE_RANLIB /usr/bin/llvm-ranlib-19 CACHE FILEPATH "")
set(CMAKE_INSTALL_NAME_TOOL /usr/bin/llvm-install-name-tool-19 CACHE FILEPATH "")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_FIND_ROOT_PATH /nonexistent)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${CMAKE_SYSTEM_PROCESSOR})
