"""Filters, their design, and resampling."""
from __future__ import annotations

import itertools
import math
import operator
from typing import Any, Final, Iterable, Iterator

import numpy as np
from numpy.typing import ArrayLike, DTypeLike

from ._call import DTYPES, TYPES, constant, dtype_name
from ._states import Array, State, _about, _along, _do, _given, _length, _name, _row, _same, _target, _type, recut

# ---- Filters ----

# (types of taps, of samples): (types of Init, of the run)
_FILTERS = {("32f", "32f"): ("32f", "32f"), ("32f", "16s"): ("32f", "16s"), ("32f", "32fc"): ("32f_32fc", "32f_32fc"),
            ("64f", "64f"): ("64f", "64f"), ("32fc", "32fc"): ("32fc", "32fc"), ("32fc", "16sc"): ("32fc", "16sc"),
            ("64fc", "64fc"): ("64fc", "64fc")}


class _Filter(State):
    """FIR and FIRMR: taps, and a delay line for each row that goes on from call to call."""

    _prefix: str
    _taps: Final[Array]

    def __init__(self, taps: Array, line: int, piece: int, up: int, down: int, *values: int) -> None:
        self._taps = taps
        self._values, self._line_length, self._piece, self._up, self._down = values, line, piece, up, down
        self._line: Array | None = None
        self._runs: dict[Any, tuple[str, str]] = {}  # for samples of a type: the key of the state, the operation
        self._open(taps.dtype)

    @property
    def taps(self) -> Array:
        """A copy of the taps."""
        return self._taps.copy()

    def _open(self, dtype: Any) -> tuple[Any, str]:
        if dtype not in self._runs:
            pair = TYPES.get(self._taps.dtype, ""), TYPES.get(dtype, "")
            if pair not in _FILTERS:
                there = ", ".join(f"{DTYPES[t]} with {dtype_name(DTYPES[x])}" for t, x in _FILTERS)
                raise TypeError(f"{type(self).__name__}: no taps of {dtype_name(self._taps.dtype)} with samples of "
                                f"{dtype_name(dtype)}, but {there}")
            init, run = _FILTERS[pair]
            if init not in self._pointers:
                self._init(init, _name(self._prefix, "Init", init), _name(self._prefix, "Release", init), self._taps,
                           self._taps.size, *self._values)
            self._runs[dtype] = init, _name(self._prefix, "", run)
        key, name = self._runs[dtype]
        return self._state(key), name

    def reset(self, before: ArrayLike | None = None) -> None:
        """Begins anew; `before` are the samples before the first one, oldest first, else zeros."""
        line = None if before is None else _along(before, -1).copy()
        if line is not None:
            _length(line, self._line_length, "before")
        with self._lock:
            self._line = line

    def __call__(self, x: ArrayLike, *, out: Array | None = None, axis: int = -1) -> Array:
        """Filters `x`, each row of a stack with a delay line of its own, and remembers its end for the next call."""
        src = _along(x, axis)
        n, lead = src.shape[-1], src.shape[:-1]
        if n == 0 or n % self._down:
            raise ValueError(f"{n} samples are no positive multiple of {self._down}")
        with self._lock:
            state, name = self._open(src.dtype)
            dst = _target(lead + (n // self._down * self._up,), src.dtype, axis, out, src)
            line = self._line
            if line is None:
                self._line = line = np.zeros(lead + (max(self._line_length, 1),), src.dtype)
            if (line.shape[:-1], line.dtype) != (lead, src.dtype):
                raise ValueError("the stream began with another shape or type: reset() first")
            for at in range(0, n // self._down, self._piece):
                _do(name, (src, at * self._down), (dst, at * self._up), min(self._piece, n // self._down - at), state,
                    line, line, rows=math.prod(lead))
        return _given(dst, axis, out)

    def stream(self, blocks: Iterable[ArrayLike]) -> Iterator[Array]:
        """Filters a signal that comes in blocks, along the last axis, from zeros on. The results are those of one
        call over the whole signal, wherever it was cut."""
        self.reset()
        for piece in recut(blocks, self._piece * self._down):
            spare = np.zeros(piece.shape[:-1] + (-piece.shape[-1] % self._down,), piece.dtype)  # at the very end only
            yield self(np.concatenate([piece, spare], axis=-1))


@_about("FIRSR")
class FIR(_Filter):
    """FIR(taps, max_len=65536, kind=0): a finite impulse response filter. `f(x)` goes on where the last call ended.
    Longer arrays than `max_len`, a multiple of 16, are filtered in pieces of that length."""

    _prefix = "FIRSR"

    def __init__(self, taps: ArrayLike, *, max_len: int = 65536, kind: int = 0) -> None:
        taps, max_len = _row("FIR: taps", taps), operator.index(max_len)
        if max_len % 16:
            raise ValueError("max_len must be a multiple of 16")
        super().__init__(taps, taps.size - 1, max_len, 1, 1, max_len, kind)


@_about("FIRMR")
class FIRMR(_Filter):
    """FIRMR(taps, up=1, down=1, up_phase=0, down_phase=0): filter between raising the rate by `up` and lowering it by
    `down`. `f(x)` takes a multiple of `down` samples and goes on where the last call ended."""

    _prefix = "FIRMR"

    def __init__(self, taps: ArrayLike, *, up: int = 1, down: int = 1, up_phase: int = 0, down_phase: int = 0) -> None:
        taps, up, down = _row("FIRMR: taps", taps), operator.index(up), operator.index(down)
        super().__init__(taps, -(-taps.size // max(up, 1)), 1 << 14, up, down, up, up_phase, down, down_phase)


@_about("FIRLMS")
class LMS(State):
    """LMS(taps, dtype=float32): an adaptive filter of float32 or int16 samples; `taps` are the first ones, or their
    number. `y = f(x, ref, mu)` adapts them, `f.taps` are those of now, `f.delay_line` its (samples, index)."""

    dtype: Final[np.dtype[Any]]
    size: Final[int]

    def __init__(self, taps: ArrayLike | int, *, dtype: DTypeLike = np.float32, delay_line: ArrayLike | None = None,
                 index: int = 0) -> None:
        self.dtype = np.dtype(dtype)
        kind = TYPES.get(self.dtype, str(self.dtype))
        self._kind = "32f" if kind == "32f" else f"32f_{kind}"
        init, release = _name("FIRLMS", "Init", self._kind), _name("FIRLMS", "Release", self._kind)
        first = _row("LMS: taps", taps if np.ndim(taps) else np.zeros(operator.index(taps), np.float32), np.float32)
        self.size = first.size
        self._init("", init, release, first, first.size, None if delay_line is None else self._line(delay_line), index)

    def _line(self, value: ArrayLike) -> Array:
        line = _row("LMS: delay_line", value, self.dtype)
        _length(line, self.size, "delay_line")
        return line

    def __call__(self, x: ArrayLike, ref: ArrayLike, mu: float) -> Array:
        src, ref = np.ascontiguousarray(x), np.ascontiguousarray(ref)
        _same("LMS", self.dtype, src, ref)
        if src.shape != ref.shape or src.ndim != 1:
            raise ValueError(f"LMS: x and ref must be two rows of one length, not {src.shape} and {ref.shape}")
        dst = np.empty_like(src)
        with self._lock:
            _do(_name("FIRLMS", "", self._kind), self._state(), src, ref, dst, src.size, mu)
        return dst

    @property
    def taps(self) -> Array:
        taps = np.empty(self.size, np.float32)
        with self._lock:
            _do(_name("FIRLMS", "GetTaps", self._kind), self._state(), taps)
        return taps

    @property
    def delay_line(self) -> tuple[Array, int]:
        line, index = np.empty(self.size, self.dtype), np.zeros(1, np.int32)
        with self._lock:
            _do(_name("FIRLMS", "GetDlyLine", self._kind), self._state(), line, index)
        return line, int(index[0])

    @delay_line.setter
    def delay_line(self, value: tuple[ArrayLike, int]) -> None:
        line, index = self._line(value[0]), value[1]
        with self._lock:
            _do(_name("FIRLMS", "SetDlyLine", self._kind), self._state(), line, index)


@_about("FIRSparse")
class SparseFIR(State):
    """SparseFIR(taps, positions): a filter of float32 samples with few taps at ascending delays. Blocks of any sizes
    give what one call gives; `f.delay_line` is settable, the most recent sample first."""

    reach: Final[int]

    def __init__(self, taps: ArrayLike, positions: ArrayLike, *, delay_line: ArrayLike | None = None) -> None:
        taps, positions = _row("SparseFIR: taps", taps, np.float32), _row("SparseFIR: positions", positions)
        places = positions.astype(np.int32)
        if not np.array_equal(places, positions):
            raise TypeError("SparseFIR: positions must be whole numbers below 2**31")
        if taps.size != places.size:
            raise ValueError("SparseFIR: there must be one position for each tap")
        self.reach = int(places[-1]) if places.size else 0
        self._init("", _name("FIRSparse", "Init", "32f"), _name("FIRSparse", "Release", "32f"), taps, places, taps.size,
                   self._line(delay_line))

    def _line(self, value: ArrayLike | None) -> Array | None:
        if value is None:
            return None
        line = _row("SparseFIR: delay_line", value, np.float32)
        _length(line, self.reach, "delay_line")
        return line

    def __call__(self, x: ArrayLike) -> Array:
        src = np.ascontiguousarray(x)
        if src.ndim != 1:
            raise ValueError("SparseFIR: one row of samples at a time")
        dst = np.empty_like(src)
        with self._lock:
            _do(_name("FIRSparse", "", _type(src)), src, dst, src.size, self._state())
        return dst

    def stream(self, blocks: Iterable[ArrayLike]) -> Iterator[Array]:
        """Filters a signal that comes in blocks; it goes on where the last call ended."""
        return map(self, blocks)

    @property
    def delay_line(self) -> Array:
        line = np.empty(self.reach, np.float32)
        with self._lock:
            _do(_name("FIRSparse", "GetDlyLine", "32f"), self._state(), line)
        return line

    @delay_line.setter
    def delay_line(self, value: ArrayLike | None) -> None:
        line = self._line(value)
        with self._lock:
            _do(_name("FIRSparse", "SetDlyLine", "32f"), self._state(), line)


class _Design(State):
    def __init__(self, n: int) -> None:
        self._init("", _name("FIRGen", "Init", "64f"), _name("FIRGen", "Release", ""), n)


def _design(kind: str, n: int, win_type: int, normal: bool, *frequencies: float) -> Array:
    n = operator.index(n)
    with _Design(n) as work:
        taps = np.empty(max(n, 0))
        _do(_name("FIRGen" + kind, "", "64f"), *frequencies, taps, n, win_type, normal, work._state())
    return taps


@_about("FIRGen", "FIRGenLowpass")
def fir_lowpass(n: int, rel_freq: float, *, win_type: int = 2, normal: bool = True) -> Array:
    """`n` float64 taps of a lowpass that ends at `rel_freq`, a fraction of the sampling rate."""
    return _design("Lowpass", n, win_type, normal, rel_freq)


@_about("FIRGenHighpass")
def fir_highpass(n: int, rel_freq: float, *, win_type: int = 2, normal: bool = True) -> Array:
    """`n` float64 taps of a highpass that begins at `rel_freq`, a fraction of the sampling rate."""
    return _design("Highpass", n, win_type, normal, rel_freq)


@_about("FIRGenBandpass")
def fir_bandpass(n: int, low: float, high: float, *, win_type: int = 2, normal: bool = True) -> Array:
    """`n` float64 taps of a bandpass from `low` to `high`, fractions of the sampling rate."""
    return _design("Bandpass", n, win_type, normal, low, high)


@_about("FIRGenBandstop")
def fir_bandstop(n: int, low: float, high: float, *, win_type: int = 2, normal: bool = True) -> Array:
    """`n` float64 taps of a bandstop from `low` to `high`, fractions of the sampling rate."""
    return _design("Bandstop", n, win_type, normal, low, high)


# ---- Resampling ----

@_about("ResamplePolyphaseFixed")
class Resampler(State):
    """Resampler(in_rate, out_rate, window=64, rollf=0.9, alpha=9, dtype=float32): from one integer rate to another, of
    float32 or int16 samples. `r(x)` takes whole signals, `r.stream(blocks)` one that comes in blocks."""

    _shared = True
    in_rate: Final[int]
    out_rate: Final[int]
    dtype: Final[np.dtype[Any]]
    reach: Final[int]

    def __init__(self, in_rate: int, out_rate: int, *, window: float = 64, rollf: float = 0.9, alpha: float = 9,
                 dtype: DTypeLike = np.float32) -> None:
        self.in_rate = in_rate = operator.index(in_rate)
        self.out_rate = out_rate = operator.index(out_rate)
        self.dtype = np.dtype(dtype)
        self._kind = TYPES.get(self.dtype, str(self.dtype))
        self._init("", _name("ResamplePolyphaseFixed", "Init", self._kind),
                   _name("ResamplePolyphaseFixed", "Release", self._kind), in_rate, out_rate, window, rollf, alpha)
        self.reach = self._filter_length() * math.gcd(in_rate, out_rate) // (2 * out_rate)

    def _filter_length(self, taps: Array | None = None) -> int:
        length = np.zeros(1, np.int32)
        _do(_name("ResamplePolyphaseFixed", "GetFilter", self._kind), self._state(), taps, length)
        return int(length[0])

    @property
    def taps(self) -> Array:
        taps = np.empty(self._filter_length(), np.float32)
        self._filter_length(taps)
        return taps

    @taps.setter
    def taps(self, value: ArrayLike) -> None:
        taps = _row("Resampler: taps", value, np.float32)
        _do(_name("ResamplePolyphaseFixed", "SetFilter", self._kind), self._state(), taps, taps.size)

    def __call__(self, x: ArrayLike, *, norm: float = 1, axis: int = -1) -> Array:
        parts = list(self.stream([_along(x, axis)], norm=norm))
        if not parts:
            raise ValueError("Resampler: no samples")
        return _given(np.concatenate(parts, axis=-1), axis)

    def between(self, x: ArrayLike, n: int, time: int, *, norm: float = 1) -> tuple[Array, int]:
        """The outputs from `time` on, in 1/out_rate of a sample of `x`, up to `n` samples past the one there, and the
        time of the next; `x` has `reach - 1` samples before and `reach` behind."""
        x, n, time = np.ascontiguousarray(x), operator.index(n), operator.index(time)
        name, lead = _name("ResamplePolyphaseFixed", "", self._kind), x.shape[:-1]
        _same("Resampler", self.dtype, x)
        if not self.reach - 1 <= time // self.out_rate <= x.shape[-1] - self.reach - n:
            raise ValueError(f"Resampler: {self.reach} samples are needed on both sides")
        dst = np.empty(lead + (n * self.out_rate // self.in_rate + 1,), self.dtype)
        count, now = np.empty(lead + (1,), np.int32), np.full(lead + (1,), time, np.int64)
        _do(name, x, n, dst, norm, now, count, self._state(), rows=math.prod(lead))
        return dst[..., :int(count.max(initial=0))], int(now.max(initial=time))

    def stream(self, blocks: Iterable[ArrayLike], *, norm: float = 1) -> Iterator[Array]:
        """Resamples a signal that comes in blocks, along the last axis: the same bits wherever it was cut."""
        held: Array | None = None
        time = (self.reach - 1) * self.out_rate
        for block in itertools.chain(blocks, [None]):
            if block is not None:
                more = np.asarray(block)
            elif held is not None:
                more = np.zeros(held.shape[:-1] + (self.reach,), self.dtype)
            else:
                raise ValueError("Resampler: no samples")
            _same("Resampler", self.dtype, more)
            before = np.zeros(more.shape[:-1] + (self.reach - 1,), self.dtype) if held is None else held
            held = np.concatenate([before, more], axis=-1)
            n = held.shape[-1] - self.reach - time // self.out_rate
            if n <= 0:
                continue
            dst, now = self.between(held, n, time, norm=norm)
            yield dst
            drop = max(now // self.out_rate - (self.reach - 1), 0)
            held, time = held[..., drop:], now - drop * self.out_rate


@_about("ResamplePolyphase")
class VariableResampler(State):
    """VariableResampler(window=64, n_step=1024, rollf=0.9, alpha=9, hint=0, dtype=float32): by any factor, given with
    the call. `r(x, factor)` takes whole signals of float32 or int16 samples."""

    _shared = True
    window: Final[float]
    n_step: Final[int]
    dtype: Final[np.dtype[Any]]

    def __init__(self, *, window: float = 64, n_step: int = 1024, rollf: float = 0.9, alpha: float = 9, hint: int = 0,
                 dtype: DTypeLike = np.float32) -> None:
        self.window = window = constant("32f", window)[0]
        self.n_step = n_step = operator.index(n_step)
        self.dtype = np.dtype(dtype)
        self._kind = TYPES.get(self.dtype, str(self.dtype))
        self._init("", _name("ResamplePolyphase", "Init", self._kind),
                   _name("ResamplePolyphase", "Release", self._kind), window, n_step, rollf, alpha, hint)

    def __call__(self, x: ArrayLike, factor: float, *, norm: float = 1, axis: int = -1) -> Array:
        src = _along(x, axis)
        _same("VariableResampler", self.dtype, src)
        factor = constant("64f", factor)[0]
        if not 0 < factor < math.inf:
            raise ValueError("VariableResampler: factor must be above 0 and finite")
        n, lead = src.shape[-1], src.shape[:-1]
        reach = math.ceil((self.window / 2 + 1 / self.n_step) / min(1, factor)) + 1
        silence = np.zeros(lead + (reach,), src.dtype)
        src = np.concatenate([silence, src, silence], axis=-1)
        room = math.ceil(n * factor) + 1
        dst, count, time = np.empty(lead + (room,), src.dtype), np.empty(lead + (1,), np.int32), np.full(lead + (1,),
                                                                                                         float(reach))
        _do(_name("ResamplePolyphase", "", self._kind), src, n, dst, factor, norm, time, count, self._state(),
            rows=math.prod(lead))
        return _given(dst[..., :int(count.max(initial=0))], axis)
