# Install and export rules: find_package(ZORTexLib) and pkg-config. Three components: library (what programs run with, empty
# for the static library), development (what they are built with), tools.

include(CMakePackageConfigHelpers)

set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZORTexLib)

install(
  TARGETS ZORTexLib
  EXPORT ZORTexLibTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          COMPONENT library
          NAMELINK_COMPONENT development
  INCLUDES
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ZORTexLib)
install(
  DIRECTORY Library/Include/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ZORTexLib
  COMPONENT development
  FILES_MATCHING
  PATTERN "*.h")
install(
  DIRECTORY Examples/
  DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/libzortexlib-dev/examples
  COMPONENT development)
install(
  EXPORT ZORTexLibTargets
  NAMESPACE ZORTexLib::
  DESTINATION ${config_dir}
  COMPONENT development)
if(ZORT_BUILD_TOOLS)
  # In a file of its own, so that the library can be installed without the program.
  install(
    EXPORT ZORTexToolsTargets
    NAMESPACE ZORTexLib::
    DESTINATION ${config_dir}
    COMPONENT tools)
endif()

configure_package_config_file(cmake/ZORTexLibConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/ZORTexLibConfig.cmake
                              INSTALL_DESTINATION ${config_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/ZORTexLibConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(
  FILES ${CMAKE_CURRENT_BINARY_DIR}/ZORTexLibConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/ZORTexLibConfigVersion.cmake
        cmake/ZORTexTextures.cmake
  DESTINATION ${config_dir}
  COMPONENT development)

# Folders in the pkg-config file are relative to the file, so that the installed tree can be moved.
set(pkgconfig_dir ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH pkgconfig_prefix ${pkgconfig_dir} ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH pkgconfig_libdir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH pkgconfig_includedir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
file(RELATIVE_PATH pkgconfig_libexecdir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBEXECDIR})
configure_file(cmake/ZORTexLib.pc.in ${CMAKE_CURRENT_BINARY_DIR}/ZORTexLib.pc @ONLY)
install(
  FILES ${CMAKE_CURRENT_BINARY_DIR}/ZORTexLib.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)

# Where the packages of cmake/Packages.cmake keep their licence.
set(runtime_package libzortexlib${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
foreach(package "library ${runtime_package}" "development libzortexlib-dev" "tools zortex")
  separate_arguments(package)
  list(POP_FRONT package component folder)
  install(
    FILES LICENSE
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${folder}
    COMPONENT ${component}
    RENAME copyright)
endforeach()
