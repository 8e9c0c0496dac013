# Installs the Objective-C front where it is a library of its own: apart from the rest, so that who
# installs the C++ library does not need GNUstep.
#   cmake --install <build folder> --component appkit
#   cmake --install <build folder> --component appkit_development
install(TARGETS VelScrollingCaptureAppKit
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT appkit EXCLUDE_FROM_ALL
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT appkit EXCLUDE_FROM_ALL
    NAMELINK_COMPONENT appkit_development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT appkit_development EXCLUDE_FROM_ALL)
install(FILES
  ${PROJECT_SOURCE_DIR}/VelScrollingCapture/frontend/appkit/NSImage_OpenCV.h
  ${PROJECT_SOURCE_DIR}/VelScrollingCapture/frontend/appkit/ScrollingProgressDelegate.h
  ${PROJECT_SOURCE_DIR}/VelScrollingCapture/frontend/appkit/VelScrollingCapture.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/VelScrollingCapture/frontend/appkit
  COMPONENT appkit_development EXCLUDE_FROM_ALL)
