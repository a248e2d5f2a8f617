"""Operations that remember: filters, transforms, resamplers, correlations, noise, as objects; and the few that fit no
family. A state is given back on `close`, at the end of a `with`, or with the object; it is pickled by its arguments."""
from __future__ import annotations

import contextlib
import copy
import functools
import itertools
import math
import operator
import re
import threading
from typing import Any, Callable, Final, Iterable, Iterator, TypeVar

import numpy as np
from numpy.typing import ArrayLike, DTypeLike, NDArray

from . import _table
from ._call import DTYPES, TYPES, SizeOverflow, check, constant, dtype_name
from ._raw import ffi, lib

Array = NDArray[Any]
COVERED: set[str] = set()  # the prefixes of the operations that stand here


Thing = TypeVar("Thing")
Self = TypeVar("Self", bound="State")


def _about(*prefixes: str) -> Callable[[Thing], Thing]:
    """Adds what the headers say of these operations to a docstring."""
    def add(thing: Thing) -> Thing:
        COVERED.update(prefixes)
        notes = dict.fromkeys(_table.DOCS[prefix] for prefix in prefixes if prefix in _table.DOCS)
        thing.__doc__ = "\n\n".join([thing.__doc__ or "", *notes])
        return thing
    return add


def _name(prefix: str, role: str, types: str) -> str:
    try:
        return _table.STATES[prefix][role][types]
    except KeyError:
        there = ", ".join(map(_dtypes, sorted(_table.STATES[prefix][role])))
        raise TypeError(f"{prefix}: none for {_dtypes(types)}, but for {there}") from None


def _dtypes(types: str) -> str:
    """`32f32fc` as dtypes; what is none stays as it is."""
    names = re.findall(r"\d+(?:sc|fc|u|s|f)", types)
    return " to ".join(dtype_name(DTYPES[name]) for name in names) if names else types


def _type(x: Any) -> str:
    return TYPES.get(x.dtype, str(x.dtype))


_from_buffer, _new, _KINDS = ffi.from_buffer, ffi.new, {
    kind: kind and ffi.typeof(kind) for _, kinds in _table.OTHERS.values() for kind in kinds}


def _pointer(value: Any, kind: str) -> Any:
    if kind:
        if value is None:  # which cffi takes for zero
            raise TypeError("None is no number")
        return _new(_KINDS[kind], value)
    if type(value) is np.ndarray:
        return _from_buffer(value)
    if type(value) is tuple:
        return _from_buffer(value[0]) + value[1] * value[0].itemsize
    return ffi.NULL if value is None else value


def _step(value: Any) -> int:
    array = value[0] if type(value) is tuple else value
    return array.shape[-1] * array.itemsize if type(array) is np.ndarray and array.ndim > 1 else 0


def _do(name: str, *values: Any, rows: int = 1) -> None:
    """Runs an operation on contiguous arrays, one row after the other. Arrays of more than one dimension go on by a
    row, all rows share the rest; (array, n) is from its element n on."""
    number, kinds = _table.OTHERS[name]
    try:
        pointers = [*map(_pointer, values, kinds)]
    except OverflowError as error:
        raise SizeOverflow(f"{name}: {error}") from None
    status = lib.tzm_rows(number, rows, pointers, ffi.NULL if rows == 1 else [*map(_step, values)])
    if status:
        check(status, name)


def _is_last(x: Array, axis: int) -> bool:
    return axis == -1 or axis == x.ndim - 1


def _along(x: ArrayLike, axis: int) -> Array:
    x = np.asarray(x)
    return np.ascontiguousarray(x if _is_last(x, axis) else np.moveaxis(x, axis, -1))


def _stack(what: str, *arrays: Array) -> tuple[Any, int]:
    """The shape of a stack and the number of its rows; a single row may go with all of them."""
    lead = arrays[0].shape[:-1] if len(arrays) == 1 else max((a.shape[:-1] for a in arrays), key=len)
    if len(arrays) > 1 and any(a.shape[:-1] not in ((), lead) for a in arrays):
        raise ValueError(f"{what}: shapes {' and '.join(str(a.shape) for a in arrays)} do not fit along the axis")
    return lead, math.prod(lead)


def _target(shape: Any, dtype: Any, axis: int, out: Any, *sources: Array) -> Array:
    """Where results go: `out` itself where it lies right and apart from the sources."""
    if out is None:
        return np.empty(shape, dtype)
    if not isinstance(out, np.ndarray) or out.dtype != dtype:
        raise TypeError(f"out must be an array of {dtype_name(dtype)}")
    last = _is_last(out, axis)
    if (out if last else np.moveaxis(out, axis, -1)).shape != shape:
        raise ValueError(f"out has shape {out.shape}, the result {shape}")
    flags = out.flags
    if not flags.writeable:
        raise ValueError("out is read-only")
    if type(out) is np.ndarray and last and flags.c_contiguous and not any(
            np.may_share_memory(out, s) for s in sources):
        return out
    return np.empty(shape, dtype)


def _given(result: Array, axis: int, out: Any = None) -> Array:
    if result is not out and not _is_last(result, axis):
        result = np.moveaxis(result, -1, axis)
    if out is None or out is result:
        return result
    out[...] = result
    return out


def _same(what: str, dtype: Any, *arrays: Array) -> None:
    if any(a.dtype != dtype for a in arrays):
        raise TypeError(f"{what}: samples must be {dtype}, not {' and '.join(str(a.dtype) for a in arrays)}")


def _length(x: Array, n: int, what: str) -> None:
    if x.shape[-1] != n:
        raise ValueError(f"{what} has {x.shape[-1]} samples, the state is for {n}")


def _row(what: str, value: ArrayLike, dtype: DTypeLike | None = None) -> Array:
    """A copy of a row. Where a type is given, numbers in a list become it as constants do; an array must have it."""
    if dtype is not None and isinstance(value, (list, tuple)):
        value = np.array([constant(TYPES[np.dtype(dtype)], number)[0] for number in value], dtype)
    row = np.array(value, order="C")
    if dtype is not None and row.dtype != dtype:
        raise TypeError(f"{what} must be {np.dtype(dtype)}, not {dtype_name(row.dtype)}")
    if row.ndim != 1:
        raise ValueError(f"{what} must be one row, not of shape {row.shape}")
    return row


def recut(blocks: Iterable[ArrayLike], size: int) -> Iterator[Array]:
    """The same samples in arrays of `size`, the last one shorter: results no longer depend on the first cuts."""
    rest = None
    for block in map(np.asarray, blocks):
        if rest is not None and block.dtype != rest.dtype:
            raise TypeError(f"the stream began with samples of {dtype_name(rest.dtype)}, not {dtype_name(block.dtype)}")
        rest = block if rest is None else np.concatenate([rest, block], axis=-1)
        while rest.shape[-1] >= size:
            yield rest[..., :size]
            rest = rest[..., size:]
    if rest is not None and rest.shape[-1]:
        yield rest


def _kept(value: Any) -> Any:
    return copy.copy(value) if isinstance(value, (list, np.ndarray)) else value


def _set_once(name: str, kind: str) -> property:
    """What `Final` promises, at run time."""
    hidden = "_" + name

    def put(self: State, value: Any) -> None:
        if hasattr(self, hidden):
            this = type(self).__name__
            raise AttributeError(f"{this}.{name.lstrip('_')} cannot be set: make another {this}")
        setattr(self, hidden, value)

    return property(operator.attrgetter(hidden), put, doc=kind)


class State:
    """What all states share. Sizes of arrays hang on attributes that are `Final`: they are set once, which ends a
    second __init__, too."""

    _shared = False  # whether any number of calls may use it at once
    _arguments: tuple[tuple[Any, ...], dict[str, Any]]
    _pointers: dict[str, Any]  # each gives its state back when neither this nor a call in another thread holds it
    _lock: Any  # which a thread may take twice: in a call, a number's __float__ or a finalizer may use the state again

    def __init_subclass__(cls) -> None:
        for name, kind in cls.__annotations__.items():
            if str(kind).startswith("Final[") and name not in vars(cls):
                setattr(cls, name, _set_once(name, kind))

    def __new__(cls: type[Self], *arguments: Any, **options: Any) -> Self:
        self = super().__new__(cls)
        self._arguments = (*map(_kept, arguments),), {name: _kept(value) for name, value in options.items()}
        self._pointers = {}
        self._closed = False
        self._lock = contextlib.nullcontext() if cls._shared else threading.RLock()
        return self

    def _init(self, key: str, init: str, release: str, *values: Any) -> None:
        """Makes the state `key`; its pointer goes where Init has one to a pointer."""
        if self._closed:
            raise ValueError(f"this {type(self).__name__} is closed")
        kinds = ffi.typeof(getattr(lib, init)).args
        at = [kind.kind == "pointer" and kind.item.kind == "pointer" for kind in kinds].index(True)
        made = ffi.new(kinds[at])
        _do(init, *values[:at], made, *values[at:])
        self._pointers[key] = ffi.gc(made[0], getattr(lib, release))

    def _state(self, key: str = "") -> Any:
        try:
            return self._pointers[key]
        except KeyError:
            raise ValueError(f"this {type(self).__name__} is closed") from None

    def close(self) -> None:
        """Gives the state back; a second time does nothing."""
        with self._lock:
            self._closed = True
            self._pointers.clear()

    def __enter__(self: Self) -> Self:
        return self

    def __exit__(self, *_: Any) -> None:
        self.close()

    def __repr__(self) -> str:
        arguments, options = self._arguments
        given = [*map(repr, arguments), *(f"{name}={value!r}" for name, value in options.items())]
        return f"{type(self).__name__}({', '.join(given)})"

    def __reduce__(self) -> Any:
        arguments, options = self._arguments
        return functools.partial(type(self), *arguments, **options), ()


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
