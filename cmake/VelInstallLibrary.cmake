# Installs the library, its headers, its CMake package and its pkg-config module.
include(CMakePackageConfigHelpers)
include(VelInstallPkgConfig)

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

# A component of its own: a Debian package has its licence elsewhere.
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents)

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

# OpenCV's own module would link all of its libraries, so it only tells where the headers are.
set(VEL_OPENCV_LINKS "-lopencv_imgproc -lopencv_core")
get_target_property(VEL_OPENCV_FOLDER opencv_core LOCATION)
get_filename_component(VEL_OPENCV_FOLDER "${VEL_OPENCV_FOLDER}" DIRECTORY)
if(NOT VEL_OPENCV_FOLDER IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
  string(PREPEND VEL_OPENCV_LINKS "-L${VEL_OPENCV_FOLDER} ")
endif()
vel_install_pkgconfig(VelScrollingCapture development)
