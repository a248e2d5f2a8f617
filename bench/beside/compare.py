#!/usr/bin/python3
"""Times the library beside other libraries in one run.   compare.py LIBRARY_FOLDER [ROOM ...]

Each ROOM.py in this folder has a function cases(tzm) that yields (name, elements, {who: call}): calls without
arguments that do the same job over as many elements, "tzm" first. The calls of a case take turns; each one's best turn
counts. The table gives nanoseconds an element and, in brackets, the time as a multiple of ours.
"""
import ctypes
import importlib
import pathlib
import sys
import time

sys.dont_write_bytecode = True

try:
    import numpy
except ImportError:
    sys.exit("compare.py: NumPy is missing: install python3-numpy and python3-scipy")

TURNS = 40  # many short ones: on a loaded machine some of them run undisturbed
TURN_SECONDS = 0.003


class Library:
    """tzm.prepare("ORVAS_Exp_32f", src, dst, 1024) is a call without arguments. Arrays go by address, other Python
    numbers as int32_t or double; anything else must be a ctypes object."""

    def __init__(self, folder):
        self.folder = folder = pathlib.Path(folder)
        for companion in ("core", "vmath", "fft"):
            ctypes.CDLL(folder / f"libtzm_{companion}.so", ctypes.RTLD_GLOBAL)
        ctypes.CDLL("libopenblas.so.0", ctypes.RTLD_GLOBAL)
        self.library = ctypes.CDLL(folder / "libsignal_tzm.so")

    def prepare(self, name, *values):
        function = getattr(self.library, name)
        arguments = [self._argument(value) for value in values]

        def call():
            status = function(*arguments)
            if status != 0 and not 300 <= status <= 306:
                sys.exit(f"compare.py: {name} returned status {status}")

        call.arrays = values  # keeps them alive
        return call

    @staticmethod
    def _argument(value):
        if isinstance(value, numpy.ndarray):
            return ctypes.c_void_p(value.ctypes.data)
        if isinstance(value, float):
            return ctypes.c_double(value)
        if isinstance(value, int):
            return ctypes.c_int32(value)
        return value


def seconds(call, times):
    start = time.process_time()
    for _ in range(times):
        call()
    return time.process_time() - start


def best_times(calls):
    times = {}
    for who, call in calls.items():
        call()
        times[who] = max(1, int(TURN_SECONDS / seconds(call, 1)))
    best = dict.fromkeys(calls, float("inf"))
    for _ in range(TURNS):
        for who, call in calls.items():
            best[who] = min(best[who], seconds(call, times[who]) / times[who])
    return best


def main():
    if len(sys.argv) < 2:
        sys.exit("usage: compare.py LIBRARY_FOLDER [ROOM ...]")
    here = pathlib.Path(__file__).parent
    there = sorted(file.stem for file in here.glob("*.py") if file.stem != "compare")
    rooms = sys.argv[2:] or there
    for room in rooms:
        if room not in there:
            sys.exit(f"compare.py: no room {room} to compare in, but {', '.join(there)}")
    try:
        tzm = Library(sys.argv[1])
    except OSError as error:
        sys.exit(f"compare.py: no library in {sys.argv[1]} ({error}): build it with ./run beside")
    for room in rooms:
        for name, elements, calls in importlib.import_module(room).cases(tzm):
            best = best_times(calls)
            columns = (f"{who} {1e9 * best[who] / elements:8.3f} ({best[who] / best['tzm']:5.2f})" for who in calls)
            print(f"{name:40} " + "   ".join(columns), flush=True)


main()
