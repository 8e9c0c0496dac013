"""Builds the Python package for pip, whose compiled module CMake makes.

What the environment variable CMAKE_ARGS holds goes to CMake as well.
"""

import os
import re
import shlex
import shutil
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

SOURCE = Path(__file__).resolve().parent
CONFIGURATION = {
    "CMAKE_BUILD_TYPE": "Release",
    "CMAKE_REQUIRE_FIND_PACKAGE_Python3": "ON",
    "CMAKE_REQUIRE_FIND_PACKAGE_pybind11": "ON",
    "Python3_EXECUTABLE": sys.executable,
    # The module is to hold all of the library.
    "BUILD_SHARED_LIBS": "OFF",
    "VEL_BUILD_APPKIT": "OFF",
    "VEL_BUILD_BENCHMARKS": "OFF",
    "VEL_BUILD_C": "OFF",
    "VEL_BUILD_EXAMPLES": "OFF",
    "VEL_BUILD_TESTS": "OFF",
    "VEL_INSTALL": "OFF",
}


def version() -> str:
    return re.search(r"VERSION (\d+\.\d+\.\d+)", (SOURCE / "CMakeLists.txt").read_text())[1]


class BuildWithCMake(build_ext):
    def build_extension(self, extension: Extension) -> None:
        module = Path(self.get_ext_fullpath(extension.name))
        build = Path(self.build_temp).resolve()
        defined = [f"-D{name}={value}" for name, value in CONFIGURATION.items()]
        defined += shlex.split(os.environ.get("CMAKE_ARGS", ""))
        subprocess.run(["cmake", "-S", SOURCE, "-B", build, *defined], check=True)
        subprocess.run(["cmake", "--build", build, "--target", "vel_python", "--parallel"], check=True)
        module.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(next(build.glob("python/velscrollingcapture/_core.*.so")), module)


setup(
    version=version(),
    ext_modules=[Extension("velscrollingcapture._core", [])],
    cmdclass={"build_ext": BuildWithCMake},
)
