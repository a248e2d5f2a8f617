"""pip install ./python: builds the library with CMake and puts it, its companions and what they link into the package,
which needs nothing of the machine then but the C library; with them go their licences, as Debian's packages tell them.

For another machine: CMAKE_TOOLCHAIN_FILE, and _PYTHON_HOST_PLATFORM for the wheel's name."""
import os
import pathlib
import re
import shutil
import subprocess
import sys

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py

HERE = pathlib.Path(__file__).resolve().parent
SYSTEM = re.compile(r"lib(c|m|dl|rt|pthread)\.so|ld-linux")  # what every machine has


def says(*command):
    return subprocess.run(list(map(str, command)), check=True, capture_output=True, text=True).stdout


def linked(file, ours, compiler):
    """{name: place} of the libraries that a file needs, and those need, the system's apart."""
    found, files = {}, [file]
    for each in files:
        for name in re.findall(r"NEEDED.*\[(.*)\]", says("readelf", "-d", each)):
            if name not in found and not SYSTEM.match(name):
                place = ours / name
                if not place.exists():
                    place = pathlib.Path(says(compiler, f"-print-file-name={name}").strip())
                if not place.is_absolute():
                    sys.exit(f"setup.py: {name} is not where {compiler} looks for libraries")
                found[name] = place
                files.append(place)
    return found


def licences(places, folder):
    """Copies what the packages of these files say of their licences, and the licences that they name."""
    folder.mkdir()
    for place in map(pathlib.Path.resolve, places):
        package = says("dpkg", "-S", f"*/{place.parent.name}/{place.name}").split(":")[0]
        told = pathlib.Path("/usr/share/doc", package, "copyright")
        shutil.copy(told, folder / f"{package}.txt")
        for name in re.findall(r"/usr/share/common-licenses/([\w.-]*\w)", told.read_text("utf-8")):
            shutil.copy(f"/usr/share/common-licenses/{name}", folder / f"{name}.txt")


class Build(build_py):
    def run(self):
        work = pathlib.Path(self.get_finalized_command("build").build_temp).resolve()
        run = lambda *command: subprocess.run(list(map(str, command)), check=True)
        # The old kind of run path holds for the libraries of the libraries, too.
        run("cmake", "-S", HERE.parent, "-B", work, "-DCMAKE_BUILD_TYPE=Release", "-DTZM_PYTHON=ON", "-DTZM_TESTS=OFF",
            "-DTZM_TOOL=OFF", "-DCMAKE_C_FLAGS_RELEASE=-O2 -g1", "-DCMAKE_CXX_FLAGS_RELEASE=-O2 -g1",
            "-DCMAKE_SHARED_LINKER_FLAGS=-s", "-DCMAKE_MODULE_LINKER_FLAGS=-s -Wl,--disable-new-dtags",
            f"-DTZM_PYTHON_PROGRAM={sys.executable}")
        run("cmake", "--build", work, "--target", "tzm_all", "--parallel", os.cpu_count())
        package = pathlib.Path(self.build_lib) / "signal_tzm"
        shutil.rmtree(package, ignore_errors=True)
        shutil.copytree(work / "python" / "signal_tzm", package, ignore=shutil.ignore_patterns("__pycache__"))
        about, = work.glob("CMakeFiles/*/CMakeCXXCompiler.cmake")
        compiler = re.search(r'set\(CMAKE_CXX_COMPILER "(.*?)"', about.read_text())[1]
        (package / "lib").mkdir()
        libraries = linked(package / "_raw.abi3.so", work / "lib", compiler)
        for name, place in libraries.items():
            shutil.copy(place, package / "lib" / name)
            for wider in (work / "hwcaps").glob(f"glibc-hwcaps/*/{name}"):  # the loader looks there below a run path
                folder = package / "lib" / wider.parent.relative_to(work / "hwcaps")
                folder.mkdir(parents=True, exist_ok=True)
                shutil.copy(wider, folder / name)
        shutil.copy(HERE.parent / "LICENSE", package)
        if shutil.which("dpkg"):  # elsewhere they are for whoever gives a wheel to others
            theirs = [place for place in libraries.values() if work not in place.parents]
            licences([*theirs, pathlib.Path("/usr/include/hwy/highway.h")], package / "licences")


class Binary(Distribution):
    def has_ext_modules(self):
        return True


version = re.search(r"VERSION ([\d.]+)", (HERE.parent / "CMakeLists.txt").read_text().split("project(", 1)[1])[1]
setup(version=version, packages=["signal_tzm"], cmdclass={"build_py": Build}, distclass=Binary,
      options={"bdist_wheel": {"py_limited_api": "cp39"}})
