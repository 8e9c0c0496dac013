# Installs the Python package where Debian's own packages are. Elsewhere, pip installs it.
set(VEL_PYTHON_FOLDER lib/python3/dist-packages CACHE STRING "Where the Python package is installed")
set(package ${CMAKE_INSTALL_PREFIX}/${VEL_PYTHON_FOLDER}/velscrollingcapture)
file(RELATIVE_PATH libraries ${package} ${CMAKE_INSTALL_FULL_LIBDIR})
set_target_properties(vel_python PROPERTIES INSTALL_RPATH ${VEL_OWN_FOLDER}/${libraries})

install(FILES ${VEL_PYTHON_MODULES}
  DESTINATION ${VEL_PYTHON_FOLDER}/velscrollingcapture COMPONENT python)
install(TARGETS vel_python
  LIBRARY DESTINATION ${VEL_PYTHON_FOLDER}/velscrollingcapture COMPONENT python)
