# Where things are installed, and how they find each other there: relative to themselves, so that an
# installed tree starts from wherever it is put.

# Debian names the folder of libraries after the machine, below /usr/local as below /usr.
if(NOT DEFINED CMAKE_INSTALL_LIBDIR AND PROJECT_IS_TOP_LEVEL
    AND EXISTS /etc/debian_version AND CMAKE_LIBRARY_ARCHITECTURE)
  set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Libraries")
endif()
include(GNUInstallDirs)

set(VEL_OWN_FOLDER $<IF:$<PLATFORM_ID:Darwin>,@loader_path,$ORIGIN>)
file(RELATIVE_PATH VEL_LIBRARIES_FROM_PROGRAMS ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set(CMAKE_INSTALL_RPATH ${VEL_OWN_FOLDER}/${VEL_LIBRARIES_FROM_PROGRAMS})
