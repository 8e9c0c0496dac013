# Debian packages of a build:
#   cpack --config build/package/CPackConfig.cmake -B build/package
#
#   vel_add_package(<component> NAME <package> SECTION <section> SUMMARY <line> DESCRIPTION <text>
#     [DEPENDS <component>...] [NEEDS <package>] [LIBRARY])
macro(vel_add_package component)
  cmake_parse_arguments(arg "LIBRARY" "NAME;SECTION;SUMMARY;DESCRIPTION;NEEDS" "DEPENDS" ${ARGN})
  string(TOUPPER ${component} key)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  set(CPACK_COMPONENT_${key}_DEPENDS ${arg_DEPENDS})
  set(CPACK_COMPONENT_${key}_DESCRIPTION "${arg_DESCRIPTION}")
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${arg_SUMMARY}\n${arg_DESCRIPTION}")
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${arg_NAME})
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${arg_SECTION})
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${arg_NEEDS}")
  if(arg_LIBRARY)
    set(CPACK_DEBIAN_${key}_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
  endif()
endmacro()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velscrollingcapture)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # every package has its own
set(CPACK_PACKAGE_VENDOR "VelScrollingCapture maintainers")
set(CPACK_PACKAGE_CONTACT
  "VelScrollingCapture maintainers <maintainers@velscrollingcapture.example>")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/VelDebianFiles.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR}/VelScrollingCapture ${PROJECT_BINARY_DIR}/VelScrollingCapture/frontend/appkit
  ${PROJECT_BINARY_DIR}/c)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_COMPONENTS_ALL)
set(about "VelScrollingCapture finds how far a window scrolled between screen
captures, and joins them into one tall or wide image without visible joins.")
vel_add_package(runtime
  NAME libvelscrollingcapture${PROJECT_VERSION_MAJOR}
  SECTION libs
  SUMMARY "library that stitches scrolling screen captures"
  DESCRIPTION "${about}"
  LIBRARY)
vel_add_package(development
  NAME libvelscrollingcapture-dev
  SECTION libdevel
  SUMMARY "library that stitches scrolling screen captures (development files)"
  DESCRIPTION "${about}\n\nThis package has headers, CMake package and pkg-config module."
  DEPENDS runtime
  NEEDS libopencv-dev)
if(VEL_BUILD_PROGRAM)
  vel_add_package(program
    NAME velscroll
    SECTION graphics
    SUMMARY "joins the captures of a scrolling window into one image"
    DESCRIPTION "${about}\n\nThis package has the command-line program."
    DEPENDS runtime)
endif()
if(VEL_BUILD_DESKTOP)
  vel_add_package(desktop
    NAME velscroll-desktop
    SECTION graphics
    SUMMARY "captures a window while it scrolls, as one picture"
    DESCRIPTION "${about}\n\nThis package has the desktop program."
    DEPENDS runtime
    NEEDS libqt5svg5)
endif()
if(VEL_BUILD_C)
  vel_add_package(c
    NAME libvelscrollingcapturec${PROJECT_VERSION_MAJOR}
    SECTION libs
    SUMMARY "library for C that stitches scrolling screen captures"
    DESCRIPTION "${about}\n\nThis package has the library's interface for C."
    DEPENDS runtime
    LIBRARY)
  vel_add_package(c_development
    NAME libvelscrollingcapturec-dev
    SECTION libdevel
    SUMMARY "library for C that stitches scrolling captures (development files)"
    DESCRIPTION "${about}\n\nThis package has headers and pkg-config module of the interface for C."
    DEPENDS c development)
endif()
if(VEL_BUILD_PYTHON)
  math(EXPR next "${Python3_VERSION_MINOR} + 1")
  vel_add_package(python
    NAME python3-velscrollingcapture
    SECTION python
    SUMMARY "Python package that stitches scrolling screen captures"
    DESCRIPTION "${about}\n\nThis package has the library's modules for Python."
    DEPENDS runtime
    NEEDS "python3 (>= 3.${Python3_VERSION_MINOR}~), python3 (<< 3.${next}), python3-numpy")
endif()
if(VEL_BUILD_APPKIT)
  vel_add_package(appkit
    NAME libvelscrollingcaptureappkit${PROJECT_VERSION_MAJOR}
    SECTION libs
    SUMMARY "Objective-C library that stitches scrolling screen captures"
    DESCRIPTION "${about}\n\nThis package has the library's Objective-C front for GNUstep."
    DEPENDS runtime
    LIBRARY)
  vel_add_package(appkit_development
    NAME libvelscrollingcaptureappkit-dev
    SECTION libdevel
    SUMMARY "Objective-C library that stitches scrolling captures (development files)"
    DESCRIPTION "${about}\n\nThis package has the headers of the Objective-C front for GNUstep."
    DEPENDS appkit development
    NEEDS libgnustep-gui-dev)
endif()

include(CPack)
