# The library with its headers, the CMake package and the pkg-config file. All of it may be moved after installation.
include(CMakePackageConfigHelpers)

install(TARGETS tessolv EXPORT tessolv_targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/tessolv)
install(EXPORT tessolv_targets NAMESPACE tessolv:: FILE tessolvTargets.cmake DESTINATION ${package_folder})
configure_package_config_file(cmake/tessolvConfig.cmake.in ${PROJECT_BINARY_DIR}/tessolvConfig.cmake
  INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tessolvConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tessolvConfig.cmake ${PROJECT_BINARY_DIR}/tessolvConfigVersion.cmake
  DESTINATION ${package_folder})

# The prefix is found from the place of the .pc file, so the way back to it must be known.
set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig /prefix/${pkgconfig_folder} /prefix)
configure_file(cmake/tessolv.pc.in ${PROJECT_BINARY_DIR}/tessolv.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tessolv.pc DESTINATION ${pkgconfig_folder})
