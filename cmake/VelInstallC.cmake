# Installs the interface for C, for which nobody needs OpenCV's headers: its library, its headers, its
# part of the CMake package and its pkg-config module.
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

file(RELATIVE_PATH VEL_PREFIX_FROM_PKGCONFIG
  "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
file(RELATIVE_PATH VEL_INCLUDES_FROM_PKGCONFIG
  "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
configure_file(
  ${PROJECT_SOURCE_DIR}/cmake/VelScrollingCaptureC.pc.in
  ${PROJECT_BINARY_DIR}/VelScrollingCaptureC.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/VelScrollingCaptureC.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT c_development)
