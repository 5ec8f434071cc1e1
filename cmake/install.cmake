# Package files: find_package(zivcolor), pkg-config, and archives by cpack.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/zivcolor)
install(EXPORT zivcolor-targets NAMESPACE zivcolor:: DESTINATION ${package_folder})
configure_package_config_file(cmake/zivcolor-config.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/zivcolor-config.cmake
                              INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/zivcolor-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zivcolor-config.cmake ${CMAKE_CURRENT_BINARY_DIR}/zivcolor-config-version.cmake
        DESTINATION ${package_folder})

# The prefix is told from the place of the file itself, so that an installation can be moved.
file(RELATIVE_PATH pc_to_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/zivcolor.pc.in ${CMAKE_CURRENT_BINARY_DIR}/zivcolor.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zivcolor.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

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
