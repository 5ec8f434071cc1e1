# SPDX-License-Identifier: MIT
# Shared libraries are linked by LLVM's linker, against none of the system's libraries: the C and the C++ library are left to be found
# when a program is loaded. (zig's linkers know no list of exports for macOS and refuse options of others; and zig makes a C and a
# C++ library first, which takes minutes and shows nothing of this one.)
get_filename_component(zig_folder "${ZIVCOLOR_ZIG}" DIRECTORY)
if(CMAKE_SYSTEM_NAME STREQUAL Darwin)
    set(options "apple-macos12 -dynamiclib -L${zig_folder}/lib/libc/darwin -lSystem -Wl,-undefined,dynamic_lookup")
    set(name "<SONAME_FLAG> <TARGET_INSTALLNAME_DIR><TARGET_SONAME>")
elseif(CMAKE_SYSTEM_NAME STREQUAL Windows)
    set(options "w64-windows-gnu -shared -Wl,-Xlink=-noentry,-Xlink=-force:unresolved")
    set(name "")
else()
    set(options "linux-musl -shared")
    set(name "<SONAME_FLAG><TARGET_SONAME>")
endif()
set(CMAKE_CXX_CREATE_SHARED_LIBRARY
    "clang++-19 -fuse-ld=lld -nostdlib --target=${CMAKE_SYSTEM_PROCESSOR}-${options} <LINK_FLAGS> -o <TARGET> ${name} <OBJECTS>")
