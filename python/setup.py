"""Makes a wheel: the module is built by CMake, and the library is in it."""

import pathlib
import re
import shutil
import subprocess
import sys

import setuptools
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "wheel"  # nothing is made beside the sources


def version():
    """That of the project, which CMake knows."""
    project = (ROOT / "CMakeLists.txt").read_text()
    return re.search(r"project\(\w+ VERSION ([0-9.]+)", project)[1]


class BuildByCMake(build_ext):
    """Builds the one module that there is."""

    def build_extension(self, extension):
        tree = BUILD / f"cmake-{sys.implementation.cache_tag}"
        options = {
            "CMAKE_BUILD_TYPE": "Release",
            "BUILD_TESTING": "OFF",
            "ZQ_PROGRAM": "OFF",
            "ZQ_HOST": "OFF",
            "ZQ_PYTHON": "ON",
            "ZQ_PYTHON_STATIC": "ON",
            "Python_EXECUTABLE": sys.executable,
        }
        settings = [f"-D{name}={value}" for name, value in options.items()]
        subprocess.run(["cmake", "-S", ROOT, "-B", tree, "-G", "Ninja", *settings], check=True)
        subprocess.run(["cmake", "--build", tree, "--target", "_zqpaths"], check=True)
        built = next(tree.glob("lib/**/_zqpaths*.so"))
        target = pathlib.Path(self.get_ext_fullpath(extension.name))
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(built, target)


BUILD.mkdir(parents=True, exist_ok=True)
setuptools.setup(
    version=version(),
    packages=["zqpaths"],
    package_data={"zqpaths": ["*.pyi", "py.typed"]},
    ext_modules=[setuptools.Extension("zqpaths._zqpaths", sources=[])],
    cmdclass={"build_ext": BuildByCMake},
    options={"build": {"build_base": str(BUILD)}, "egg_info": {"egg_base": str(BUILD)}},
)
