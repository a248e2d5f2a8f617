"""pip install ./python: builds the library with CMake and puts it, its companions and what they link into the package,
which needs nothing of the machine then but the C library. Without a net: pip install --no-build-isolation ./python"""
import os
import pathlib
import re
import shutil
import subprocess
import sys

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py

HERE = pathlib.Path(__file__).resolve().parent
SYSTEM = re.compile(r"lib(c|m|dl|rt|pthread)\.so|ld-linux|linux-vdso")  # what every machine has


class Build(build_py):
    def run(self):
        work = pathlib.Path(self.get_finalized_command("build").build_temp).resolve()
        run = lambda *command: subprocess.run(list(map(str, command)), check=True)
        # The old kind of run path holds for the libraries of the libraries, too.
        run("cmake", "-S", HERE.parent, "-B", work, "-DCMAKE_BUILD_TYPE=Release", "-DTZM_PYTHON=ON", "-DTZM_TESTS=OFF",
            "-DTZM_TOOL=OFF", f"-DTZM_PYTHON_PROGRAM={sys.executable}",
            "-DCMAKE_MODULE_LINKER_FLAGS=-Wl,--disable-new-dtags")
        run("cmake", "--build", work, "--target", "tzm_python", "--parallel", os.cpu_count())
        package = pathlib.Path(self.build_lib) / "signal_tzm"
        shutil.rmtree(package, ignore_errors=True)
        shutil.copytree(work / "python" / "signal_tzm", package, ignore=shutil.ignore_patterns("__pycache__"))
        linked = subprocess.run(["ldd", package / "_raw.abi3.so"], check=True, capture_output=True, text=True,
                                env={**os.environ, "LD_LIBRARY_PATH": str(work / "lib")}).stdout
        (package / "lib").mkdir()
        for name, place in re.findall(r"(\S+) => (/\S+)", linked):
            if not SYSTEM.match(name):
                shutil.copy(place, package / "lib" / name)
        shutil.copy(HERE.parent / "LICENSE", package)


class Binary(Distribution):
    def has_ext_modules(self):
        return True


version = re.search(r"VERSION ([\d.]+)", (HERE.parent / "CMakeLists.txt").read_text().split("project(", 1)[1])[1]
setup(version=version, packages=["signal_tzm"], cmdclass={"build_py": Build}, distclass=Binary,
      options={"bdist_wheel": {"py_limited_api": "cp39"}})
