# Language level, warnings, hardening and sanitizers for every target of this project.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_library(vel_compiler_settings INTERFACE)
target_compile_options(vel_compiler_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion
  "$<$<COMPILE_LANGUAGE:CXX,OBJCXX>:-Wnon-virtual-dtor;-Woverloaded-virtual>"
  $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>
  $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wno-sign-conversion>
  $<$<BOOL:${VEL_WARNINGS_AS_ERRORS}>:-Werror>)

# Failed checks tell their source file, by its path in the project wherever that was built.
target_compile_options(vel_compiler_settings INTERFACE
  -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)

if(VEL_SANITIZERS)
  target_compile_options(vel_compiler_settings INTERFACE
    -fsanitize=${VEL_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(vel_compiler_settings INTERFACE -fsanitize=${VEL_SANITIZERS})
endif()
if(VEL_BUILD_FUZZERS)
  target_compile_options(vel_compiler_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()

# What distributions build their packages with.
option(VEL_HARDENING "Harden optimised builds: PIE, RELRO, stack protector, FORTIFY" ON)
include(CheckPIESupported)
check_pie_supported()
if(VEL_HARDENING AND NOT VEL_SANITIZERS)
  target_compile_options(vel_compiler_settings INTERFACE
    $<$<NOT:$<CONFIG:Debug>>:-fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
  if(NOT APPLE)
    target_link_options(vel_compiler_settings INTERFACE LINKER:-z,relro LINKER:-z,now)
  endif()
endif()

# Builds from nothing spend much of their time on the same headers. What a source forgets to include is
# found by builds without this.
option(VEL_PRECOMPILE_HEADERS "Parse the headers of OpenCV and GoogleTest once for many sources" OFF)
function(vel_precompile_headers target)
  if(VEL_PRECOMPILE_HEADERS)
    list(TRANSFORM ARGN REPLACE "(.+)" "$<$<COMPILE_LANGUAGE:CXX>:<\\1$<ANGLE-R>>")
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()
