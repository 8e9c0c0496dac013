# Whether the Objective-C front is built, and the target vel_appkit that carries what compiling
# against AppKit takes: the frameworks on macOS, GNUstep elsewhere.
include(CheckLanguage)

# Only a project of its own builds it unasked: a host that has this as a subproject does not get
# another language along with it.
set(VEL_APPKIT_FOUND OFF)
if(VEL_BUILD_APPKIT OR (PROJECT_IS_TOP_LEVEL AND NOT DEFINED VEL_BUILD_APPKIT))
  if(NOT APPLE)
    find_program(VEL_GNUSTEP_CONFIG gnustep-config)
    mark_as_advanced(VEL_GNUSTEP_CONFIG)
  endif()
  # C++ and Objective-C++ meet in one library, so one compiler makes both unless told otherwise.
  if(NOT DEFINED ENV{OBJCXX})
    set(ENV{OBJCXX} "${CMAKE_CXX_COMPILER}")
  endif()
  check_language(OBJCXX)
  if(CMAKE_OBJCXX_COMPILER AND (APPLE OR VEL_GNUSTEP_CONFIG))
    set(VEL_APPKIT_FOUND ON)
  elseif(VEL_BUILD_APPKIT)
    message(FATAL_ERROR "The Objective-C front needs an Objective-C++ compiler, and AppKit or GNUstep")
  else()
    message(STATUS "No GNUstep or no Objective-C++ compiler: the Objective-C front is left out")
  endif()
endif()
option(VEL_BUILD_APPKIT "Build the Objective-C front" ${VEL_APPKIT_FOUND})
option(VEL_COREGRAPHICS "Convert images by CoreGraphics, not by NSBitmapImageRep" ${APPLE})

if(NOT VEL_BUILD_APPKIT)
  return()
endif()

# On macOS everything is in one framework; see VelFramework.
if(APPLE)
  set(VEL_FRAMEWORK_FOLDER Library/Frameworks)
  list(APPEND CMAKE_INSTALL_RPATH "@loader_path/../${VEL_FRAMEWORK_FOLDER}")
endif()

enable_language(OBJCXX)
set(CMAKE_OBJCXX_STANDARD 17)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)

add_library(vel_appkit INTERFACE)
if(APPLE)
  set(VEL_APPKIT_FRAMEWORKS "-framework AppKit" "-framework ApplicationServices")
  target_link_libraries(vel_appkit INTERFACE ${VEL_APPKIT_FRAMEWORKS})
else()
  # gnustep-config mixes what the library needs with choices of its own, such as the optimisation.
  function(vel_gnustep_flags result question pattern)
    execute_process(COMMAND ${VEL_GNUSTEP_CONFIG} ${question}
      OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    separate_arguments(flags UNIX_COMMAND "${flags}")
    list(FILTER flags INCLUDE REGEX "${pattern}")
    list(REMOVE_DUPLICATES flags)
    set(${result} ${flags} PARENT_SCOPE)
  endfunction()
  vel_gnustep_flags(VEL_GNUSTEP_OPTIONS --objc-flags "^(-D|-f|-pthread)")
  vel_gnustep_flags(VEL_GNUSTEP_INCLUDES --objc-flags "^-I/")
  vel_gnustep_flags(VEL_GNUSTEP_LIBRARIES --gui-libs "^-[lL]")
  list(REMOVE_ITEM VEL_GNUSTEP_LIBRARIES -lm)
  list(TRANSFORM VEL_GNUSTEP_INCLUDES REPLACE "^-I" "")
  target_compile_options(vel_appkit INTERFACE
    "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:${VEL_GNUSTEP_OPTIONS}>"
    $<$<COMPILE_LANG_AND_ID:OBJCXX,GNU>:-Wno-subobject-linkage>)
  target_include_directories(vel_appkit SYSTEM INTERFACE ${VEL_GNUSTEP_INCLUDES})
  target_link_libraries(vel_appkit INTERFACE ${VEL_GNUSTEP_LIBRARIES})
endif()
if(VEL_COREGRAPHICS)
  target_compile_definitions(vel_appkit INTERFACE VEL_COREGRAPHICS=1)
else()
  target_compile_definitions(vel_appkit INTERFACE VEL_COREGRAPHICS=0)
endif()
