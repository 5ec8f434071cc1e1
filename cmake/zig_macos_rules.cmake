# zig's own linker exports hidden functions as well and knows no list of exports, so that LLVM's links for macOS. The C++ library is
# left to be found when a program is loaded.
get_filename_component(zig_folder "${ZIVCOLOR_ZIG}" DIRECTORY)
set(CMAKE_CXX_CREATE_SHARED_LIBRARY
    "clang++-19 --target=${CMAKE_SYSTEM_PROCESSOR}-apple-macos12 -fuse-ld=lld -nostdlib -dynamiclib -L${zig_folder}/lib/libc/darwin \
-lSystem -Wl,-undefined,dynamic_lookup <LINK_FLAGS> -o <TARGET> <SONAME_FLAG> <TARGET_INSTALLNAME_DIR><TARGET_SONAME> <OBJECTS>")
