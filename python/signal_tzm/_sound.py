"""Sound files as arrays, by libsndfile. A mono file is a row of samples, any other one a row for each channel."""
from __future__ import annotations

import ctypes
import errno
import functools
import os
import re
import secrets
import shutil
import warnings
from typing import Any, Iterator

import numpy as np
from numpy.typing import ArrayLike, DTypeLike, NDArray

_CONTAINERS = {".wav": 0x10000, ".aiff": 0x20000, ".aif": 0x20000, ".au": 0x30000, ".w64": 0xB0000, ".flac": 0x170000,
               ".caf": 0x180000, ".rf64": 0x220000}
_BITS = {1: 8, 2: 16, 3: 24, 4: 32, 5: 8}  # of integers
_WIDTHS = {code: bits // 8 for code, bits in _BITS.items()} | {6: 4, 7: 8, 0x10: 1, 0x11: 1}  # bytes of a sample
_FORMATS = {"PCM_S8": 1, "PCM_16": 2, "PCM_24": 3, "PCM_32": 4, "PCM_U8": 5, "FLOAT": 6, "DOUBLE": 7}
_NATURAL = {"i2": "PCM_16", "i4": "PCM_32", "f4": "FLOAT", "f8": "DOUBLE"}
_CALLS = {"i2": "short", "i4": "int", "f4": "float", "f8": "double"}
_READ, _WRITE = 0x10, 0x20


class _Info(ctypes.Structure):
    _fields_ = [("frames", ctypes.c_int64), ("rate", ctypes.c_int), ("channels", ctypes.c_int),
                ("format", ctypes.c_int), ("sections", ctypes.c_int), ("seekable", ctypes.c_int)]


@functools.lru_cache(maxsize=None)
def _library() -> ctypes.CDLL:
    try:
        library = ctypes.CDLL("libsndfile.so.1")
    except OSError:
        raise ImportError("sound files need libsndfile: install the package libsndfile1") from None
    library.sf_open.restype = ctypes.c_void_p
    library.sf_strerror.restype = ctypes.c_char_p
    library.sf_seek.restype = ctypes.c_int64
    for way in ("readf", "writef"):
        for name in _CALLS.values():
            getattr(library, f"sf_{way}_{name}").restype = ctypes.c_int64
    return library


def _kind(dtype: DTypeLike) -> str:
    kind = np.dtype(dtype).str[1:]
    if kind not in _CALLS or not np.dtype(dtype).isnative:
        raise TypeError(f"samples of sound files are int16, int32, float32 or float64, not {np.dtype(dtype)}")
    return kind


class _File:
    def __init__(self, path: Any, mode: int, info: _Info) -> None:
        self.info = info
        self._handle = _library().sf_open(os.fsencode(path), mode, ctypes.byref(info))
        if not self._handle:
            reason = _library().sf_strerror(None).decode(errors="replace").rstrip(".\n ")
            if mode == _READ:  # a missing file, a folder, no right to read: in Python's own words
                open(path, "rb").close()
            raise OSError(f"{os.fspath(path)}: {reason}")

    def __enter__(self) -> _File:
        return self

    def __exit__(self, *_: Any) -> None:
        _library().sf_close(ctypes.c_void_p(self._handle))

    def call(self, name: str, *values: Any) -> int:
        return int(getattr(_library(), f"sf_{name}")(ctypes.c_void_p(self._handle), *values))

    def promised(self) -> int:
        """The samples of a channel that the header tells: libsndfile counts what is there, but logs both."""
        log = ctypes.create_string_buffer(1 << 14)
        self.call("command", 0x1001, log, len(log))
        told = re.search(rb"(Data size|data|SSND|Data Size) *: (\d+)", log.value)
        width = _WIDTHS.get(self.info.format & 0xFFFF, 0) * self.info.channels
        if not told or not width:
            return self.info.frames
        size = int(told[2])
        if any(top - 4096 < size <= top for top in (2**31 - 1, 2**32 - 1, 2**63 - 1)):  # a stream has no end
            return self.info.frames
        wave64 = self.info.format & 0xFFF0000 == _CONTAINERS[".w64"]
        return (size - (8 if told[1] == b"SSND" else 24 if wave64 else 0)) // width  # less what is no samples


def _tell_cut(path: Any, there: int, promised: int) -> None:
    if there < promised:
        warnings.warn(f"{os.fspath(path)} is cut off: it holds {there} of the {promised} samples that it promises",
                      stacklevel=3)


class blocks:
    """blocks(path, size=65536, dtype=float32): the samples of a sound file in arrays of `size` samples, the last one
    shorter. Its `rate`, `channels` and `frames` tell about the file. Integers come as fractions of full scale where
    `dtype` is a floating type, and as they are where it is int16 or int32 and wide enough."""

    def __init__(self, path: str | os.PathLike[str], size: int = 65536, *, dtype: DTypeLike = np.float32) -> None:
        if size < 1:
            raise ValueError(f"blocks: size must be 1 or more, not {size}")
        self._path, self._size, self._kind = path, size, _kind(dtype)
        with _File(path, _READ, _Info()) as file:
            self.rate, self.channels, self.frames = file.info.rate, file.info.channels, file.info.frames
            bits, promised = _BITS.get(file.info.format & 0xFFFF), file.promised()
        _tell_cut(path, self.frames, promised)
        if self._kind[0] == "i" and (bits is None or bits > 8 * int(self._kind[1])):
            raise TypeError(f"{os.fspath(path)}: its samples do not fit {np.dtype(dtype)}: read them as floating ones")

    def __iter__(self) -> Iterator[NDArray[Any]]:
        return self.starting(0)

    def starting(self, frame: int) -> Iterator[NDArray[Any]]:
        """The blocks from a frame on."""
        with _File(self._path, _READ, _Info()) as file:
            if frame and file.call("seek", ctypes.c_int64(frame), 0) != frame:
                raise ValueError(f"{os.fspath(self._path)}: there is no frame {frame} to go to")
            while True:
                frames = np.empty((self._size, self.channels), self._kind)
                count = file.call(f"readf_{_CALLS[self._kind]}", ctypes.c_void_p(frames.ctypes.data),
                                  ctypes.c_int64(self._size))
                frame += count
                if count == 0:
                    return _tell_cut(self._path, frame, self.frames)
                yield np.ascontiguousarray(frames[:count].T) if self.channels > 1 else frames[:count, 0]


def read(path: str | os.PathLike[str], *, dtype: DTypeLike = np.float32) -> tuple[NDArray[Any], int]:
    """The samples of a sound file, and its rate: `x, rate = read("speech.wav")`. See blocks for the types."""
    source = blocks(path, dtype=dtype)
    parts = list(source)
    if not parts:
        raise ValueError(f"{os.fspath(path)}: no samples")
    return np.concatenate(parts, axis=-1), source.rate


def write(path: str | os.PathLike[str], x: ArrayLike, rate: int, *, format: str | None = None) -> None:
    """Writes samples, a row or a row for each channel, to a sound file; the name's ending tells its container.
    `format` (PCM_S8, PCM_U8, PCM_16, PCM_24, PCM_32, FLOAT, DOUBLE) is by default that of the samples. Floating ones
    become integers by one rounding to nearest, ties to even, and saturate beyond full scale, 1. The file appears under
    its name when it is complete."""
    x = np.asarray(x)
    kind = _kind(x.dtype)
    container = _CONTAINERS.get(os.path.splitext(path)[1].lower())
    sample = _FORMATS.get(format or ("PCM_24" if container == 0x170000 and kind[0] == "f" else _NATURAL[kind]))
    if container is None or sample is None:
        raise ValueError(f"{os.fspath(path)}: " + (f"no format {format}, but {', '.join(_FORMATS)}" if container else
                         f"the name must end in one of {', '.join(_CONTAINERS)}"))
    if x.ndim not in (1, 2) or x.size == 0:
        raise ValueError(f"{os.fspath(path)}: a row of samples, or one for each channel, not shape {x.shape}")
    bits = _BITS.get(sample)
    if kind[0] == "i" and bits != 8 * x.itemsize:
        raise TypeError(f"{os.fspath(path)}: {x.dtype} is not {format}, and no integer is cast in silence")
    if kind[0] == "f" and bits:
        if not np.isfinite(x).all():
            raise ValueError(f"{os.fspath(path)}: samples that are not finite have no integer")
        full = 2.0**(bits - 1)
        x, kind = np.rint(np.clip(x * np.float64(full), -full, full - 1)).astype("i4") << (32 - bits), "i4"
    if not 1 <= rate < 2**31:
        raise ValueError(f"{os.fspath(path)}: rate must be 1 or more, not {rate}")
    frames = np.ascontiguousarray(x.T if x.ndim == 2 else x)
    info = _Info(0, rate, 1 if x.ndim == 1 else x.shape[0], container | sample)
    if not _library().sf_format_check(ctypes.byref(info)):
        code = next(name for name, code in _FORMATS.items() if code == sample)
        raise ValueError(f"{os.fspath(path)}: such a file cannot hold {info.channels} channels of {code} at {rate} Hz")
    old = os.path.exists(path)
    target = os.path.realpath(path) if old else os.path.abspath(path)  # a link stays, and what it names is replaced
    place = os.path.join(os.path.dirname(target), secrets.token_hex(8) + ".part")
    try:
        if old and not os.access(target, os.W_OK):
            raise OSError(errno.EACCES, os.strerror(errno.EACCES))
        os.close(os.open(place, os.O_CREAT | os.O_EXCL | os.O_WRONLY, 0o666))
        if old:
            shutil.copymode(target, place)
        with _File(place, _WRITE, info) as file:
            if file.call(f"writef_{_CALLS[kind]}", ctypes.c_void_p(frames.ctypes.data),
                         ctypes.c_int64(frames.shape[0])) != frames.shape[0]:
                raise OSError(f"{os.fspath(path)}: cannot write (disk full?)")
        os.replace(place, target)
    except OSError as error:
        if error.errno is None:
            raise OSError(str(error).replace(place, os.fspath(path))) from None
        raise OSError(error.errno, error.strerror, os.fspath(path)) from None
    finally:
        if os.path.exists(place):
            os.remove(place)
