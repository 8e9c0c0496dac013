# Installs the interface for C, for which nobody needs OpenCV's headers: its library, its headers, its
# part of the CMake package and its pkg-config module.
include(VelInstallPkgConfig)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/c/include/VelScrollingCapture
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  COMPONENT c_development)
install(TARGETS VelScrollingCaptureC
  EXPORT VelScrollingCaptureCTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT c
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT c NAMELINK_COMPONENT c_development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT VelScrollingCaptureCTargets
  NAMESPACE VelScrollingCapture::
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/VelScrollingCapture"
  COMPONENT c_development)

vel_install_pkgconfig(VelScrollingCaptureC c_development)
