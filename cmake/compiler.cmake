# SPDX-License-Identifier: MIT
# What the compiler builds for, and what all of our own code is built with.
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)

if(MSVC)
    message(FATAL_ERROR "zivcolor is written for GCC and clang; on Windows build it with MinGW, and use its DLL from any compiler")
endif()
if(CMAKE_CXX_BYTE_ORDER STREQUAL BIG_ENDIAN)
    message(FATAL_ERROR "zivcolor is for little-endian machines: this compiler builds for a big-endian one")
endif()
list(LENGTH CMAKE_OSX_ARCHITECTURES architectures)
if(architectures GREATER 1)
    message(FATAL_ERROR "zivcolor takes its kernels from one architecture: build once for each of ${CMAKE_OSX_ARCHITECTURES} "
                        "and join the libraries with lipo -create")
endif()

# Asked of the compiler itself: the name of the processor is the host's where only a flag tells another one.
function(zivcolor_ask_compiler result condition)
    set(CMAKE_REQUIRED_QUIET ON)
    check_cxx_source_compiles("#if !(${condition})\n#error not so\n#endif\nint main() {}" ${result})
endfunction()
zivcolor_ask_compiler(ZIVCOLOR_FOR_AARCH64 "defined(__aarch64__) && defined(__ARM_NEON)")
zivcolor_ask_compiler(ZIVCOLOR_FOR_X86_64 "defined(__x86_64__) && defined(__LP64__) || defined(_WIN64) && defined(__x86_64__)")

# Where there is no vector unit GCC makes vectors of general registers, and takes a wrong upper half of products of their lanes.
set(zivcolor_vectorizer_flags)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    zivcolor_ask_compiler(ZIVCOLOR_HAVE_VECTORS "defined(__SSE2__) || defined(__ARM_NEON) || defined(__VSX__)")
    if(NOT ZIVCOLOR_HAVE_VECTORS)
        set(zivcolor_vectorizer_flags -fno-tree-loop-vectorize -fno-tree-slp-vectorize -Wno-psabi)
    endif()
endif()

# The x87 unit computes wider than a float holds, and rounds where a value is stored.
set(zivcolor_rounding_flags)
zivcolor_ask_compiler(ZIVCOLOR_HAVE_WIDE_FLOATS "defined(__FLT_EVAL_METHOD__) && __FLT_EVAL_METHOD__ == 2")
if(ZIVCOLOR_HAVE_WIDE_FLOATS AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    set(zivcolor_rounding_flags -ffloat-store)
elseif(ZIVCOLOR_HAVE_WIDE_FLOATS)
    message(FATAL_ERROR "zivcolor needs floats that are rounded after each operation: build with -msse2, or with GCC")
endif()

function(zivcolor_own_code name)
    target_compile_features(${name} PRIVATE cxx_std_20)
    set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
    target_compile_options(${name} PRIVATE -Wall -Wextra -Wconversion -ffp-contract=off ${zivcolor_vectorizer_flags} ${zivcolor_rounding_flags}
                                           $<$<BOOL:${ZIVCOLOR_WERROR}>:-Werror>)
endfunction()
