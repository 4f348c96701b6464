# Install and export rules: find_package(ZORTexLib) and pkg-config.

include(CMakePackageConfigHelpers)

set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZORTexLib)

install(
  TARGETS ZORTexLib
  EXPORT ZORTexLibTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ZORTexLib)
install(DIRECTORY Library/Include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ZORTexLib FILES_MATCHING PATTERN "*.h")
install(EXPORT ZORTexLibTargets NAMESPACE ZORTexLib:: DESTINATION ${config_dir})

configure_package_config_file(cmake/ZORTexLibConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/ZORTexLibConfig.cmake
                              INSTALL_DESTINATION ${config_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/ZORTexLibConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ZORTexLibConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/ZORTexLibConfigVersion.cmake
        DESTINATION ${config_dir})

configure_file(cmake/ZORTexLib.pc.in ${CMAKE_CURRENT_BINARY_DIR}/ZORTexLib.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ZORTexLib.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
