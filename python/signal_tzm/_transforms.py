"""Transforms and spectra, convolution and correlation, products of matrices, and noise."""
from __future__ import annotations

import functools
import math
import operator
import threading
from typing import Any, Final

import numpy as np
from numpy.typing import ArrayLike, DTypeLike

from ._call import DTYPES, TYPES, constant
from ._states import Array, State, _about, _along, _do, _given, _length, _name, _same, _stack, _target, _type

# ---- Transforms ----

@_about("FFTCToC", "FFTRToC", "FFTCToR", "DFTCToC", "DFTRToC", "DFTCToR")
class FFT(State):
    """FFT(n, dtype=complex64, inverse=False, divide=2, split=False): a discrete Fourier transform of `n` points, which
    any number of threads may run at once. Complex `dtype`: complex to complex; real: n reals to n/2 + 1 complex bins,
    or back where `inverse`. `split`: real and imaginary parts in two arrays, `re, im = f(re, im)`. `divide` is a flag
    of raw.ORVA_DIVIDE_...: by default the inverse is divided by n, as NumPy has it."""

    _shared = True
    n: Final[int]
    dtype: Final[np.dtype[Any]]
    split: Final[bool]

    def __init__(self, n: int, dtype: DTypeLike = np.complex64, *, inverse: bool = False, divide: int = 2,
                 split: bool = False) -> None:
        self.n = n = operator.index(n)
        self.dtype, self.split = np.dtype(dtype), bool(split)
        self._kind = TYPES.get(self.dtype, str(self.dtype))
        real = self.dtype.kind == "f" and not split
        power = n > 1 and n & (n - 1) == 0
        self._prefix = ("FFT" if power else "DFT") + ("CToR" if real and inverse else "RToC" if real else "CToC")
        other = DTYPES[self._kind.rstrip("c") + "c"] if self._kind in DTYPES else self.dtype
        self._in, self._out = ((other, self.dtype) if inverse else (self.dtype, other)) if real else (self.dtype,) * 2
        self._lengths = ((n // 2 + 1, n) if inverse else (n, n // 2 + 1)) if real else (n, n)
        self._name = _name(self._prefix, "", self._kind)
        self._init("", _name(self._prefix, "Init", self._kind), _name(self._prefix, "Release", self._kind),
                   n.bit_length() - 1 if power else n, *([] if real else [-1 if inverse else 1]), divide)

    def __call__(self, x: ArrayLike, im: ArrayLike | None = None, *, out: Any = None, axis: int = -1) -> Any:
        sources = [_along(part, axis) for part in ((x,) if im is None else (x, im))]
        if len(sources) != 1 + self.split:
            raise TypeError(f"FFT: {1 + self.split} array{'s' * self.split} wanted, {len(sources)} given")
        _same("FFT", self._in, *sources)
        for src in sources:
            _length(src, self._lengths[0], "the array")
        lead, rows = _stack("FFT", *sources)
        if self._prefix.endswith("CToR"):  # the transform spoils its source
            sources = [sources[0].copy()]
        outs = out if isinstance(out, (tuple, list)) else [out] if out is not None else [None] * len(sources)
        if len(outs) != len(sources):
            raise TypeError(f"FFT: out must be {len(sources)} array{'s' * self.split}, not {len(outs)}")
        results = [_target(lead + (self._lengths[1],), self._out, axis, o, *sources) for o in outs]
        if self.split and all(o is not None for o in outs) and np.may_share_memory(*outs):
            raise ValueError("FFT: the arrays of out overlap")
        _do(self._name, *sources, *results, self._state(), rows=rows)
        results = [_given(result, axis, o) for result, o in zip(results, outs)]
        return tuple(results) if self.split else results[0]


@functools.lru_cache(maxsize=64)
def _spec(n: int, dtype: Any, inverse: bool) -> FFT:
    return FFT(n, dtype, inverse=inverse)


def fft(x: ArrayLike, *, axis: int = -1) -> Array:
    """The discrete Fourier transform of complex64 or complex128 samples, of real ones their half spectrum (n/2 + 1
    bins, as numpy.fft.rfft). Specs are kept and used again; FFT has all that can be chosen."""
    x = _along(x, axis)
    return _given(_spec(x.shape[-1], x.dtype, False)(x), axis)


def ifft(x: ArrayLike, *, axis: int = -1) -> Array:
    """The inverse transform of complex64 or complex128 bins, divided by their number."""
    x = _along(x, axis)
    return _given(_spec(x.shape[-1], x.dtype, True)(x), axis)


def irfft(x: ArrayLike, n: int, *, axis: int = -1) -> Array:
    """`n` real samples from n/2 + 1 complex64 or complex128 bins, divided by n."""
    x = np.asarray(x)
    return _spec(n, {np.dtype("c8"): np.dtype("f4")}.get(x.dtype, np.dtype("f8")), True)(x, axis=axis)


@_about("SetFFTNumberThreads", "GetFFTNumberThreads")
def set_fft_threads(n: int) -> None:
    """The largest number of threads a transform planned from now on may use."""
    _do("ORVAS_SetFFTNumberThreads", n)


def get_fft_threads() -> int:
    """What set_fft_threads set."""
    n = np.zeros(1, np.int32)
    _do("ORVAS_GetFFTNumberThreads", n)
    return int(n[0])


@_about("Hilbert")
class Hilbert(State):
    """Hilbert(n): the analytic signal, complex64, of `n` float32 samples; any number of threads may use it at once."""

    _shared = True
    n: Final[int]

    def __init__(self, n: int) -> None:
        self.n = n = operator.index(n)
        self._init("", _name("Hilbert", "Init", "32f32fc"), _name("Hilbert", "Release", "32f32fc"), n)

    def __call__(self, x: ArrayLike, *, out: Array | None = None, axis: int = -1) -> Array:
        src = _along(x, axis)
        name = _name("Hilbert", "", f"{_type(src)}32fc")
        _length(src, self.n, "the array")
        dst = _target(src.shape, np.dtype(np.complex64), axis, out, src)
        _do(name, src, dst, self.n, self._state(), rows=math.prod(src.shape[:-1]))
        return _given(dst, axis, out)


def hilbert(x: ArrayLike, *, axis: int = -1) -> Array:
    """The analytic signal of float32 samples: real part the signal, imaginary part its Hilbert transform."""
    x = _along(x, axis)
    with Hilbert(x.shape[-1]) as transform:
        return _given(transform(x), axis)


@_about("CZT")
def czt(x: ArrayLike, n: int, w: complex, a: complex = 1, *, axis: int = -1) -> Array:
    """The z-transform at `n` points of a spiral."""
    src = _along(x, axis)
    name, n = _name("CZT", "", _type(src)), operator.index(n)
    dst = np.empty(src.shape[:-1] + (max(n, 0),), np.result_type(src.dtype, np.complex64))
    powers = [constant(TYPES[dst.dtype], value)[0] for value in (w, a)]
    _do(name, src, src.shape[-1], dst, n, *powers, rows=math.prod(src.shape[:-1]))
    return _given(dst, axis)


@_about("Pwelch")
def pwelch(x: ArrayLike, window: ArrayLike | None = None, *, win_len: int | None = None, nfft: int = 0,
           overlap: float = 0.5, axis: int = -1) -> Array:
    """The power spectral density by Welch's method, in power per radian per sample. `window` is an array of the type
    of the parts, else all ones of `win_len` samples (256, or as many as there are)."""
    src = _along(x, axis)
    name = _name("Pwelch", "", _type(src))
    part = np.dtype(src.dtype.type(0).real.dtype)
    if window is not None:
        window = np.ascontiguousarray(window)
        if window.dtype != part or window.ndim != 1 or win_len not in (None, window.size):
            raise TypeError(f"pwelch: window must be a row of {part}" + f", {win_len} long" * (win_len is not None))
        win_len = window.size
    n, nfft = src.shape[-1], operator.index(nfft)
    win_len = min(256, n) if win_len is None else operator.index(win_len)
    points = nfft if 0 < nfft < win_len else win_len
    dst = np.empty(src.shape[:-1] + (max(points, 0) if src.dtype.kind == "c" else max(points, 0) // 2 + 1,), part)
    _do(name, src, window, dst, n, nfft, win_len, overlap, rows=math.prod(src.shape[:-1]))
    return _given(dst, axis)


# ---- Convolution and correlation ----

class _Pair(State):
    dtype: Final[np.dtype[Any]]

    def __init__(self, prefix: str, release: str, dtype: DTypeLike, *values: int) -> None:
        self.dtype = np.dtype(dtype)
        self._kind = TYPES.get(self.dtype, str(self.dtype))
        self._init("", _name(prefix, "Init", self._kind), _name(release, "Release", self._kind), *values)

    def _run(self, prefix: str, sources: list[tuple[ArrayLike, int]], size: int, axis: int,
             *values: int) -> Array:
        arrays = [_along(x, axis) for x, _ in sources]
        _same(type(self).__name__, self.dtype, *arrays)
        for a, (_, n) in zip(arrays, sources):
            _length(a, n, "the array")
        lead, rows = _stack(type(self).__name__, *arrays)
        dst = np.zeros(lead + (size,), self.dtype)
        given = [value for a in arrays for value in (a, a.shape[-1])]
        with self._lock:
            _do(_name(prefix, "", self._kind), *given, dst, *values, self._state(), rows=rows)
        return _given(dst, axis)


@_about("Conv", "Convolve")
class Convolution(_Pair):
    """Convolution(n1, n2, dtype=float32, kind=0): the full convolution of rows of n1 and n2 samples. Of stacks each row
    is convolved with its partner, or all with a single one."""

    n1: Final[int]
    n2: Final[int]

    def __init__(self, n1: int, n2: int, dtype: DTypeLike = np.float32, *, kind: int = 0) -> None:
        self.n1, self.n2 = operator.index(n1), operator.index(n2)
        super().__init__("Conv", "Conv", dtype, self.n1, self.n2, kind)

    def __call__(self, a: ArrayLike, b: ArrayLike, *, axis: int = -1) -> Array:
        return self._run("Convolve", [(a, self.n1), (b, self.n2)], self.n1 + self.n2 - 1, axis)


@_about("AutoCorr", "AutoCorrNorm", "Corr")
class AutoCorrelation(_Pair):
    """AutoCorrelation(n, lags, dtype=float32, kind=0): lags 0 to lags-1 of rows of n samples."""

    n: Final[int]
    lags: Final[int]

    def __init__(self, n: int, lags: int, dtype: DTypeLike = np.float32, *, kind: int = 0) -> None:
        self.n, self.lags = operator.index(n), operator.index(lags)
        super().__init__("AutoCorr", "Corr", dtype, self.n, self.lags, kind)

    def __call__(self, x: ArrayLike, *, normalisation: int = 0, axis: int = -1) -> Array:
        return self._run("AutoCorrNorm", [(x, self.n)], self.lags, axis, self.lags, normalisation)


@_about("CrossCorr", "CrossCorrNorm")
class CrossCorrelation(_Pair):
    """CrossCorrelation(n1, n2, lags, low_lag, dtype=float32, kind=0): `lags` lags from `low_lag` on."""

    n1: Final[int]
    n2: Final[int]
    lags: Final[int]
    low_lag: Final[int]

    def __init__(self, n1: int, n2: int, lags: int, low_lag: int, dtype: DTypeLike = np.float32, *,
                 kind: int = 0) -> None:
        self.n1, self.n2 = operator.index(n1), operator.index(n2)
        self.lags, self.low_lag = operator.index(lags), operator.index(low_lag)
        super().__init__("CrossCorr", "Corr", dtype, self.n1, self.n2, self.lags, self.low_lag, kind)

    def __call__(self, a: ArrayLike, b: ArrayLike, *, normalisation: int = 0, axis: int = -1) -> Array:
        return self._run("CrossCorrNorm", [(a, self.n1), (b, self.n2)], self.lags, axis, self.lags, self.low_lag,
                         normalisation)


def convolve(a: ArrayLike, b: ArrayLike, *, kind: int = 0, axis: int = -1) -> Array:
    """The full convolution of float32 or float64 samples along an axis."""
    a, b = _along(a, axis), _along(b, axis)
    with Convolution(a.shape[-1], b.shape[-1], a.dtype, kind=kind) as state:
        return _given(state(a, b), axis)


def autocorr(x: ArrayLike, lags: int, *, normalisation: int = 0, kind: int = 0, axis: int = -1) -> Array:
    """The autocorrelation at lags 0 to lags-1, along an axis."""
    x = _along(x, axis)
    with AutoCorrelation(x.shape[-1], lags, x.dtype, kind=kind) as state:
        return _given(state(x, normalisation=normalisation), axis)


def crosscorr(a: ArrayLike, b: ArrayLike, lags: int, low_lag: int, *, normalisation: int = 0, kind: int = 0,
              axis: int = -1) -> Array:
    """The cross-correlation at `lags` lags from `low_lag` on, along an axis: sums of conj(a[i]) * b[i + lag]."""
    a, b = _along(a, axis), _along(b, axis)
    with CrossCorrelation(a.shape[-1], b.shape[-1], lags, low_lag, a.dtype, kind=kind) as state:
        return _given(state(a, b, normalisation=normalisation), axis)


@_about("ConvBiased")
def conv_biased(a: ArrayLike, b: ArrayLike, n: int, bias: int = 0, *, axis: int = -1) -> Array:
    """`n` outputs of a partial convolution of float32 samples; what a bias reads around `b` is zeros."""
    a, b = _along(a, axis), _along(b, axis)
    _same("conv_biased", np.dtype(np.float32), a, b)
    lead, rows = _stack("conv_biased", a, b)
    dst = np.empty(lead + (max(operator.index(n), 0),), np.float32)
    bias = min(max(operator.index(bias), -dst.shape[-1]), a.shape[-1] + b.shape[-1])  # beyond them all sums are empty
    before, behind = (np.zeros(b.shape[:-1] + (max(extra, 0),), np.float32) for extra in (bias, -bias))
    wide = np.concatenate([before, b, behind], axis=-1)
    _do("ORVAS_ConvBiased_32f", a, a.shape[-1], (wide, before.shape[-1]), b.shape[-1], dst, dst.shape[-1], bias,
        rows=rows)
    return _given(dst, axis)


@_about("MMul")
def matmul(a: ArrayLike, b: ArrayLike) -> Array:
    """The product of two matrices of one type, or of stacks of them; a single matrix may go with all of a stack."""
    a, b = np.ascontiguousarray(a), np.ascontiguousarray(b)
    name = _name("MMul", "", _type(a))
    _same("matmul", a.dtype, b)
    if a.ndim < 2 or b.ndim < 2 or a.shape[-1] != b.shape[-2]:
        raise ValueError(f"matmul: shapes {a.shape} and {b.shape} do not fit")
    flat = [x.reshape(x.shape[:-2] + (-1,)) for x in (a, b)]
    lead, rows = _stack("matmul", *flat)
    c = np.empty(lead + (a.shape[-2] * b.shape[-1],), a.dtype)
    _do(name, *flat, c, a.shape[-2], b.shape[-1], a.shape[-1], rows=rows)
    return c.reshape(lead + (a.shape[-2], b.shape[-1]))


# ---- Noise ----

_drand48 = threading.RLock()  # the process has one generator


@_about("RandGauss")
class GaussianNoise(State):
    """GaussianNoise(mean, std_dev, seed, dtype=float32): `g(n)` gives `n` samples, always the same ones: a fresh stream
    is a state with another seed."""

    dtype: Final[np.dtype[Any]]

    def __init__(self, mean: float, std_dev: float, seed: int, dtype: DTypeLike = np.float32) -> None:
        self.dtype = np.dtype(dtype)
        self._kind = TYPES.get(self.dtype, str(self.dtype))
        init, release = _name("RandGauss", "Init", self._kind), _name("RandGauss", "Release", self._kind)
        self._init("", init, release, *(constant(self._kind, value)[0] for value in (mean, std_dev)), seed)

    def __call__(self, n: int) -> Array:
        dst = np.empty(max(operator.index(n), 0), self.dtype)
        with self._lock, _drand48:
            _do(_name("RandGauss", "", self._kind), dst, dst.size, self._state())
        return dst
