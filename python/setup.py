"""Builds the wheel by the project's CMake files, from a copy of the whole project."""

import re
import shutil
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

HERE = Path(__file__).resolve().parent
PROJECT = HERE.parent
OPTIONS = {
    "CMAKE_BUILD_TYPE": "RelWithDebInfo",
    "Python_EXECUTABLE": sys.executable,
    "ZARNSYS_BUILD_PYTHON": "ON",
    "ZARNSYS_PYTHON_WITH_LIBRARY": "ON",
    "ZARNSYS_PYTHON_DIR": ".",
    "ZARNSYS_BUILD_EXAMPLES": "OFF",
    "ZARNSYS_BUILD_PROGRAMS": "OFF",
    "ZARNSYS_BUILD_TESTS": "OFF",
}


class CMakeBuild(build_ext):
    def build_extension(self, ext):
        build = Path(self.build_temp).resolve()
        modules = Path(self.get_ext_fullpath(ext.name)).resolve().parent.parent
        options = [f"-D{name}={value}" for name, value in OPTIONS.items()]
        options += ["-G", "Ninja"] if shutil.which("ninja") else []
        for command in (
            ["-S", PROJECT, "-B", build, *options],
            ["--build", build, "--parallel", "2", "--target", "zarnsys-python"],
            ["--install", build, "--component", "Python", "--prefix", modules, "--strip"],
        ):
            subprocess.run(["cmake", *map(str, command)], check=True)


def version():
    text = (PROJECT / "CMakeLists.txt").read_text()
    return re.search(r"^project\(ZarnSysUtil VERSION ([0-9.]+)", text, re.MULTILINE)[1]


setup(
    name="zarnsys",
    version=version(),
    description="Moon, sun and sky for schedulers",
    license="BSD-3-Clause",
    python_requires=">=3.11",
    install_requires=["numpy"],
    packages=["zarnsys"],
    package_data={"zarnsys": ["*.pyi", "py.typed"]},
    ext_modules=[Extension("zarnsys._core", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
    zip_safe=False,
)
