# Installs the library, its headers, its CMake package and its pkg-config module.
include(CMakePackageConfigHelpers)

set(VEL_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/VelScrollingCapture")

# A framework brings its headers along.
if(NOT VEL_FRAMEWORK_FOLDER)
  set(VEL_INSTALLED_INCLUDES INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/VelScrollingCapture
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development
    FILES_MATCHING PATTERN "*.h" PATTERN "internal" EXCLUDE PATTERN "appkit" EXCLUDE)
endif()
install(TARGETS VelScrollingCapture
  EXPORT VelScrollingCaptureTargets
  FRAMEWORK DESTINATION "${VEL_FRAMEWORK_FOLDER}" COMPONENT runtime
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  ${VEL_INSTALLED_INCLUDES})
install(EXPORT VelScrollingCaptureTargets
  NAMESPACE VelScrollingCapture::
  DESTINATION ${VEL_CMAKE_DIR}
  COMPONENT development)

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/VelScrollingCaptureConfig.cmake.in
  ${PROJECT_BINARY_DIR}/VelScrollingCaptureConfig.cmake
  INSTALL_DESTINATION ${VEL_CMAKE_DIR})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/VelScrollingCaptureConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/VelScrollingCaptureConfig.cmake
  ${PROJECT_BINARY_DIR}/VelScrollingCaptureConfigVersion.cmake
  DESTINATION ${VEL_CMAKE_DIR}
  COMPONENT development)

if(VEL_FRAMEWORK_FOLDER)
  return()
endif()

# The module gives its prefix relative to its own folder, so that the installed tree can be moved.
file(RELATIVE_PATH VEL_PREFIX_FROM_PKGCONFIG
  "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
configure_file(
  ${PROJECT_SOURCE_DIR}/cmake/VelScrollingCapture.pc.in
  ${PROJECT_BINARY_DIR}/VelScrollingCapture.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/VelScrollingCapture.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)
