# Installs the Objective-C front where it is a library of its own.
# Apart from the rest, so that the C++ library's packages do not depend on GNUstep:
# cmake --install <build folder> --component appkit
install(TARGETS VelScrollingCaptureAppKit
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT appkit EXCLUDE_FROM_ALL
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT appkit EXCLUDE_FROM_ALL
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT appkit EXCLUDE_FROM_ALL)
install(FILES NSImage_OpenCV.h ScrollingProgressDelegate.h VelScrollingCapture.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/VelScrollingCapture/frontend/appkit
  COMPONENT appkit EXCLUDE_FROM_ALL)
