# SPDX-License-Identifier: MIT
# The library, static and shared, made of the same objects.

# The C++ library that the compiler links by itself: a program that is linked as C has to be told of it.
set(zivcolor_cxx_libraries ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(FILTER zivcolor_cxx_libraries INCLUDE REGEX "^(stdc|c)[+][+]")
list(REMOVE_DUPLICATES zivcolor_cxx_libraries)

# The list of exports as the linker takes it.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.txt)
file(STRINGS ${PROJECT_SOURCE_DIR}/cmake/exports.txt exports)
if(APPLE)
    list(TRANSFORM exports PREPEND _)
    list(JOIN exports "\n" export_lines)
    set(zivcolor_export_file ${PROJECT_BINARY_DIR}/zivcolor.exports)
    file(CONFIGURE OUTPUT ${zivcolor_export_file} CONTENT "@export_lines@\n" @ONLY)
    set(zivcolor_export_options -Wl,-exported_symbols_list,${zivcolor_export_file})
elseif(WIN32)
    list(JOIN exports "\n    " export_lines)
    set(zivcolor_export_file ${PROJECT_BINARY_DIR}/zivcolor.def)
    file(CONFIGURE OUTPUT ${zivcolor_export_file} CONTENT "EXPORTS\n    @export_lines@\n" @ONLY)
    set(zivcolor_export_options ${zivcolor_export_file})
else()
    list(JOIN exports ";\n        " export_lines)
    set(zivcolor_export_file ${PROJECT_BINARY_DIR}/zivcolor.map)
    file(CONFIGURE OUTPUT ${zivcolor_export_file}
         CONTENT "ZIVCOLOR_${ZIVCOLOR_ABI_VERSION} {\n    global:\n        @export_lines@;\n    local:\n        *;\n};\n" @ONLY)
    # Calls from inside stay inside, whatever a program calls its own functions.
    set(zivcolor_export_options -Wl,--version-script=${zivcolor_export_file} -Wl,-Bsymbolic-functions)
endif()

# zivcolor_library(NAME KIND OBJECTS...): also known as zivcolor::static or zivcolor::shared.
function(zivcolor_library name kind)
    string(TOLOWER ${kind} kind_name)
    add_library(${name} ${kind} ${ARGN})
    add_library(zivcolor::${kind_name} ALIAS ${name})
    target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)
    set_target_properties(${name} PROPERTIES
        OUTPUT_NAME zivcolor EXPORT_NAME ${kind_name}
        VERSION ${PROJECT_VERSION} SOVERSION ${ZIVCOLOR_ABI_VERSION}
        PUBLIC_HEADER "${PROJECT_SOURCE_DIR}/include/zivcolor.h;${PROJECT_SOURCE_DIR}/include/zivcolor_image.h")
    if(kind STREQUAL STATIC)
        target_link_libraries(${name} PUBLIC Threads::Threads)
        foreach(library IN LISTS zivcolor_cxx_libraries)
            target_link_libraries(${name} INTERFACE $<$<LINK_LANGUAGE:C>:${library}>)
        endforeach()
        return()
    endif()
    target_link_libraries(${name} PRIVATE Threads::Threads)
    set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX LINK_DEPENDS ${zivcolor_export_file})
    target_link_options(${name} PRIVATE ${zivcolor_export_options})
    # Pages of 16 KB: what AArch64 may have, and Android on x86-64 asks for.
    if(NOT APPLE AND NOT WIN32 AND (ZIVCOLOR_FOR_AARCH64 OR (ZIVCOLOR_FOR_X86_64 AND ANDROID)))
        target_link_options(${name} PRIVATE -Wl,-z,max-page-size=16384)
    endif()
endfunction()
