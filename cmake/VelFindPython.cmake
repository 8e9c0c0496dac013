# Finds pybind11 and the interpreter that the Python package is for: the system's own one, beside which
# others may lie that its packages are not for.
if(NOT DEFINED Python3_EXECUTABLE AND EXISTS /usr/bin/python3)
  set(Python3_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "The interpreter that the Python package is for")
endif()
find_package(Python3 3.9 QUIET COMPONENTS Interpreter Development.Module)
if(Python3_FOUND)
  find_package(pybind11 2.10 QUIET CONFIG)
endif()
