# Makes a framework for macOS of the library with its Objective-C front. It holds all public headers,
# in the same folders as the sources: <VelScrollingCapture/...> means the same to a host of the
# framework as to a host of the source tree.
file(GLOB_RECURSE headers RELATIVE ${PROJECT_SOURCE_DIR}/VelScrollingCapture CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/VelScrollingCapture/*.h)
list(FILTER headers EXCLUDE REGEX "(^|/)internal/")
foreach(header IN LISTS headers)
  get_filename_component(folder ${header} DIRECTORY)
  string(REGEX REPLACE "/$" "" location "Headers/${folder}")
  set(path ${PROJECT_SOURCE_DIR}/VelScrollingCapture/${header})
  target_sources(VelScrollingCapture PRIVATE ${path})
  set_source_files_properties(${path} TARGET_DIRECTORY VelScrollingCapture PROPERTIES
    MACOSX_PACKAGE_LOCATION ${location})
endforeach()

# What the framework needs is found inside of it, or beside it.
set_target_properties(VelScrollingCapture PROPERTIES
  FRAMEWORK ON
  FRAMEWORK_VERSION A
  MACOSX_FRAMEWORK_IDENTIFIER com.velscrollingcapture.VelScrollingCapture
  MACOSX_FRAMEWORK_BUNDLE_VERSION ${PROJECT_VERSION}
  MACOSX_FRAMEWORK_SHORT_VERSION_STRING ${PROJECT_VERSION}
  INSTALL_NAME_DIR "@rpath"
  INSTALL_RPATH "@loader_path/Frameworks;@loader_path/../../..")
