# SPDX-License-Identifier: MIT
# Package files: find_package(zivcolor), pkg-config, and archives by cpack.
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

set(CPACK_GENERATOR TGZ DEB)
set(CPACK_PACKAGE_NAME zivcolor)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_CONTACT "The zivcolor developers")
set(CPACK_PACKAGE_VENDOR "zivcolor")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_STRIP_FILES ON)
include(CPack)
