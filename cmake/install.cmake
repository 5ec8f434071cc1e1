# SPDX-License-Identifier: MIT
# Package files: find_package(zivcolor), pkg-config, and an archive by cpack.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/zivcolor)
install(EXPORT zivcolor-targets NAMESPACE zivcolor:: DESTINATION ${package_folder})
configure_package_config_file(cmake/zivcolor-config.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/zivcolor-config.cmake
                              INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/zivcolor-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zivcolor-config.cmake ${CMAKE_CURRENT_BINARY_DIR}/zivcolor-config-version.cmake
        DESTINATION ${package_folder})

# pkg-config's file is written for the prefix that the files go to in the end, which may be told as late as then.
list(TRANSFORM zivcolor_cxx_libraries PREPEND -l OUTPUT_VARIABLE cxx_link_options)
list(JOIN cxx_link_options " " cxx_link_options)
set(private_libraries "${CMAKE_THREAD_LIBS_INIT} ${cxx_link_options}")
string(STRIP "${private_libraries}" private_libraries)
configure_file(cmake/install_pc.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/install_pc.cmake @ONLY)
install(SCRIPT ${CMAKE_CURRENT_BINARY_DIR}/install_pc.cmake)

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

# Debian's packages are made by scripts/deb.
if(ZIVCOLOR_FOR_X86_64)
    set(architecture x86_64)
elseif(ZIVCOLOR_FOR_AARCH64)
    set(architecture aarch64)
else()
    set(architecture ${CMAKE_SYSTEM_PROCESSOR})
endif()
string(TOLOWER ${PROJECT_NAME}-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${architecture} CPACK_PACKAGE_FILE_NAME)
set(CPACK_GENERATOR TGZ)
set(CPACK_PACKAGE_VENDOR "the zivcolor authors")
set(CPACK_STRIP_FILES ON)
include(CPack)
