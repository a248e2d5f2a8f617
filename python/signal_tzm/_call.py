"""One road for every operation on arrays of one length: types choose the member, shapes are checked, the extension
checks overlap and runs it, row by row if asked to, without the global lock; the status becomes an exception or a
warning."""
from __future__ import annotations

import collections
import contextlib
import contextvars
import functools
import math
import numbers
import operator
import sys
import warnings
from typing import Any, Callable, Iterator

import numpy as np

from . import _table
from ._raw import ffi, lib

complex_int16 = np.dtype([("re", "<i2"), ("im", "<i2")])
complex_int32 = np.dtype([("re", "<i4"), ("im", "<i4")])
complex_int64 = np.dtype([("re", "<i8"), ("im", "<i8")])
decimal128 = np.dtype([("lo", "<u8"), ("hi", "<u8")])
DTYPES: dict[str, np.dtype[Any]] = {
    "8u": np.dtype("u1"), "16u": np.dtype("u2"), "32u": np.dtype("u4"), "64u": np.dtype("u8"),
    "16s": np.dtype("i2"), "32s": np.dtype("i4"), "64s": np.dtype("i8"),
    "16f": np.dtype("f2"), "32f": np.dtype("f4"), "64f": np.dtype("f8"),
    "32fc": np.dtype("c8"), "64fc": np.dtype("c16"),
    "16sc": complex_int16, "32sc": complex_int32, "64sc": complex_int64, "Decimal128": decimal128}
TYPES = {dtype: name for name, dtype in DTYPES.items()}
_POINTERS = {name: ffi.typeof({"32u": "uint32_t", "64u": "uint64_t"}.get(name, "Orva" + name) + " *")
             for name in DTYPES}


def dtype_name(dtype: np.dtype[Any]) -> str:
    """What messages call a dtype."""
    return {complex_int16: "complex_int16", complex_int32: "complex_int32", complex_int64: "complex_int64",
            decimal128: "decimal128"}.get(dtype, str(dtype))


# ---- Statuses ----

class Error(Exception):
    """An operation was refused. `status` is its number, `name` the number's name."""

    def __init__(self, message: str, status: int = 0, name: str = "") -> None:
        super().__init__(message, status, name)
        self.status, self.name = status, name

    def __str__(self) -> str:
        return str(self.args[0])


class ArgumentError(Error, ValueError):
    """A value, a length or a selector that the operation does not take."""


class DivisionByZero(ArgumentError, ZeroDivisionError):
    """A constant divisor is zero."""


class OutOfMemory(Error, MemoryError):
    """Memory or a plan was refused."""


class SizeOverflow(Error, OverflowError):
    """A size or a result beyond the numbers that hold it."""


class DataError(Error, ArithmeticError):
    """What would have been a DataWarning, under errstate("raise")."""


class DataWarning(RuntimeWarning):
    """The work is done, and something in the data is worth knowing: a zero divisor, a negative number's logarithm."""


_ERRORS = {3: DivisionByZero, 9: OutOfMemory, 202: SizeOverflow}
_errstate = contextvars.ContextVar("signal_tzm.errstate", default=("warn", {}, None))


def _short(name):
    return name.removeprefix("ORVA_STS_").removesuffix("_ERR").removesuffix("_WARN").lower()


_NAMES = {_short(name): status for status, (name, _) in _table.STATUSES.items()}


@contextlib.contextmanager
def errstate(all: str | None = None, *, call: Callable[[int, str, str], object] | None = None,
             **kinds: str) -> Iterator[None]:
    """What becomes of warnings inside a `with`, as numpy.errstate has it: "warn", "ignore", "raise" (a DataError) or
    "call" (the function `call` gets the status, its name and the operation). `all` is for every status, `div_zero=`,
    `ln_zero=`, `ln_neg=`, `singularity=`, `domain=`, `sqrt_neg=`, `inv_zero=`, `overflow=` and `underflow=` for one."""
    for mode in (all, *kinds.values()):
        if mode not in (None, "warn", "ignore", "raise", "call"):
            raise ValueError(f"errstate: {mode!r} is none of warn, ignore, raise, call")
    if unknown := [name for name in kinds if name not in _NAMES]:
        raise TypeError(f"errstate: no status {', '.join(unknown)}")
    old_all, old_kinds, old_call = _errstate.get()
    kinds = {_NAMES[name]: mode for name, mode in kinds.items()}
    state = (all or old_all, kinds if all else {**old_kinds, **kinds}, call or old_call)
    if state[2] is None and "call" in (state[0], *state[1].values()):
        raise TypeError("errstate: 'call' wants a function, call=")
    token = _errstate.set(state)
    try:
        yield
    finally:
        _errstate.reset(token)


def check(status: int, operation: str, no_memory: int = 9) -> None:
    """Raises or warns as a status says; `no_memory` is what the operation answers when memory is refused."""
    if status == 0:
        return
    name, meaning = _table.STATUSES.get(status, (f"status {status}", ""))
    message = f"{operation}: {meaning} ({name}, {status})"
    if not (300 <= status <= 306 or status in (202, 203) and operation.startswith("ORVAS_Exp_")):
        raise _ERRORS.get(9 if status == no_memory else status, ArgumentError)(message, status, name)
    everywhere, kinds, function = _errstate.get()
    mode = kinds.get(status, everywhere)
    if mode == "raise":
        raise DataError(message, status, name)
    if mode == "call":
        function(status, name, operation)
    elif mode == "warn":
        frame, level = sys._getframe(), 1
        while frame.f_back and frame.f_globals.get("__package__") == __package__:
            frame, level = frame.f_back, level + 1
        warnings.warn(message, DataWarning, stacklevel=level)


# ---- Dispatch ----

class Member:
    """One operation: `roles`, `types` and `names` of its pointers in the order of the call."""

    def __init__(self, number, name, family, kind, no_memory, placed, arguments):
        self.number, self.name, self.family, self.kind = number, name, family, kind
        self.no_memory, self.placed = no_memory or 9, placed
        self.roles, self.types, self.names = zip(*(argument.split(":") for argument in arguments.split()))
        self.in_place, self.reduces, self.scaled = ("both" in self.roles, "result" in self.roles, "scale" in self.roles)
        sources = self.places("source", "both")
        self.sources = sources[::-1] if family in ("div", "div_round") else sources
        self.outputs = sorted(self.places("dst", "both", "result"), key=lambda i: self.names[i] == "overflow")
        self.masks, self.constants = self.places("mask"), self.places("constant", "input")
        self.scales = self.places("scale")
        self.source_types = tuple(DTYPES[self.types[i]] for i in self.sources)
        self.output_types = tuple(DTYPES[self.types[i]] for i in self.outputs)
        self.twin = None  # the in-place member of the same types
        self.last = self.sources.index(self.outputs[0]) if self.in_place else None  # the source that is the output
        self.output_type = self.output_types[0]

    def places(self, *roles):
        return [i for i, role in enumerate(self.roles) if role in roles]

    def given(self, sources):
        """Those of the sources that the call takes beside the result."""
        return [*sources[:self.last], *sources[self.last + 1:]] if self.in_place else sources


@functools.lru_cache(256)
def _integer(kind, value):
    return _constant(kind, value)


def _whole(number):
    return int(number) if isinstance(number, float) and number.is_integer() else operator.index(number)


def constant(kind: str, value: Any) -> Any:
    """A pointer to a value of a sample type. A float never becomes an integer here, and no integer wraps."""
    return _integer(kind, value) if type(value) is int else _constant(kind, value)


def _constant(kind, value):
    dtype = DTYPES[kind]
    try:
        if dtype.kind in "cV":
            convert = _whole if dtype.names else float
            re, im = value if isinstance(value, (tuple, np.void)) else (value.real, value.imag)
            value = (convert(re), convert(im))
        elif dtype.kind != "f" or value is None:  # which cffi takes for zero
            value = operator.index(value)
        return ffi.new(_POINTERS[kind], value)
    except (TypeError, ValueError, AttributeError):
        raise TypeError(f"{value!r} is no constant of type {dtype_name(dtype)}") from None


class Family:
    def __init__(self, name):
        self.name = name
        self.sources, self.masks, self.constants, self.scales, self.outputs = _table.FAMILIES[name]
        self.members, self.plans = [], {}
        self.result = collections.namedtuple(f"{name}_result", self.outputs)
        self.by_second, self.by_first = FAMILIES.get(f"{name}_c"), FAMILIES.get(f"{name}_c_rev")
        if name == "mul":
            self.by_first = self.by_second

    def add(self, member):
        self.members.append(member)
        # (type, place in the family's constants, or in its scales behind them)
        member.values = [(member.types[i], self.constants.index(member.names[i])) for i in member.constants]
        member.values += [("64f", len(self.constants) + i) for i in range(len(member.scales))]

    def pair(self):
        """Joins each in-place member to the other one of its types; those without one stay by themselves."""
        for member in [m for m in self.members if m.in_place]:
            for other in self.members:
                if not other.in_place and all(
                        getattr(other, of) == getattr(member, of)
                        for of in ("kind", "scaled", "source_types", "output_types")) and [
                            other.types[i] for i in other.constants] == [member.types[i] for i in member.constants]:
                    other.twin = member
                    self.members.remove(member)

    def describe(self, member):
        sources = ", ".join(map(dtype_name, member.source_types)) or "n"
        results = ", ".join(map(dtype_name, member.output_types))
        return f"({sources}) -> {results}" + " with a scale" * member.scaled + (
            f", kind {member.kind!r}" if member.kind else "")

    def choose(self, types, scaled, dtypes, kind, constants):
        """The member for these types. Of several: the one with the results asked for, else with results of the
        sources' type, else with the widest."""
        fitting = [m for m in self.members if m.source_types == types and m.scaled == scaled
                   and (kind is None or m.kind == kind) and (dtypes is None or dtypes == m.output_types[:len(dtypes)])]
        if len(fitting) > 1 and constants:  # an array of integers takes a constant of either sort
            whole = all(isinstance(value, numbers.Integral) for value in constants)
            fitting = [m for m in fitting if whole == all(DTYPES[m.types[i]].kind in "iu" for i in m.constants)]
        if not fitting:
            given = ", ".join(map(dtype_name, types)) or "n"
            asked = " with a scale" * scaled + (f", kind {kind!r}" if kind else "")
            asked += f", results {', '.join(map(dtype_name, dtypes))}" if dtypes else ""
            there = "; ".join(dict.fromkeys(map(self.describe, self.members)))
            raise TypeError(f"{self.name}: there is none for ({given}){asked}, but {there}")
        return max(fitting, key=lambda m: (m.output_types[0] in types[-1:], m.output_types[0] != decimal128,
                                           m.output_types[0].itemsize, m.kind if isinstance(m.kind, int) else 0))


FAMILIES: dict[str, Family] = {}
for _name in sorted(_table.FAMILIES, key=len, reverse=True):  # mul_c is there before mul
    FAMILIES[_name] = Family(_name)
for _number, (_name, _family, *_rest) in enumerate(_table.OPERATIONS):
    FAMILIES[_family].add(Member(_number, _name, _family, *_rest))
for _each in FAMILIES.values():
    _each.pair()

_run, _from_buffer, _empty = lib.tzm_run, ffi.from_buffer, np.empty
_BYTES = ffi.typeof("char[]")
_REST = [(ffi.NULL,) * (6 - given) for given in range(7)]  # behind the pointers that are given
_NUMBERS = frozenset((int, float, complex))
_Array = np.ndarray


def call(f, sources, constants, out, scales, dtype, axis, kind=None):
    """Runs the member of family `f` that the arguments ask for."""
    if f.by_second and type(sources[1]) in _NUMBERS:
        return call(f.by_second, sources[:1], sources[1:], out, scales, dtype, axis)
    # The quick road: arrays as they must be, one result, types that were there before.
    try:
        first, last = sources[0], sources[-1]  # there are never more than two
        shape = first.shape
        scaled = scales != () and scales[0] is not None
        member = f.plans[kind, dtype, scaled, out is None or out.dtype, first.dtype, last.dtype]
        if (last.shape != shape or axis is not None and (len(shape) != 1 or axis not in (0, -1))
                or type(first) is not _Array or type(last) is not _Array):
            raise ValueError
        result = out
        if out is None:
            result = _empty(() if member.reduces else shape, member.output_type)
        elif out.shape != shape:
            raise ValueError
        elif member.twin and out is sources[member.twin.last]:
            member = member.twin
            sources = member.given(sources)
        pointers = [*map(_from_buffer, sources), _from_buffer(_BYTES, result, True)]
        if member.values:
            values = constants + scales
            pointers += [constant(of, values[place]) for of, place in member.values]
        status = _run(member.number, first.size, 1, 0, *pointers, *_REST[len(pointers)])
    except (KeyError, AttributeError, TypeError, ValueError, BufferError):
        member = None
    if member is None:  # the long road knows how, or what is wrong
        return _call_any(f, sources, constants, out, scales, dtype, axis, kind)
    if status:
        _finish(f, member, status)
    return result[()] if member.reduces or out is None and not shape else result


def _finish(f, member, status):
    if status == -1:
        raise ValueError(f"{f.name}: out overlaps an array of the call as {member.name} does not allow")
    if status == -2:
        raise SizeOverflow(f"{f.name}: longer than one call of {member.name} can be, and a split would change its bits")
    check(status, member.name, member.no_memory)


def _rows(f, arrays, axis):
    """Each array with its axis last, contiguous; the shape of the stack, the length of a row."""
    if axis is None:
        if any(a.shape != arrays[0].shape for a in arrays):
            shapes = ", ".join(str(a.shape) for a in arrays)
            raise ValueError(f"{f.name}: shapes {shapes} differ; with axis= a row may go with all rows of a stack")
        return [np.ascontiguousarray(a) for a in arrays], (), arrays[0].size
    arrays = [np.ascontiguousarray(np.moveaxis(a, operator.index(axis), -1)) for a in arrays]
    stack = max((a.shape[:-1] for a in arrays), key=len)
    if any(a.shape[-1] != arrays[0].shape[-1] or a.shape[:-1] not in ((), stack) for a in arrays):
        raise ValueError(f"{f.name}: shapes {', '.join(str(a.shape) for a in arrays)} do not fit along the axis")
    return arrays, stack, arrays[0].shape[-1]


def _call_any(f, sources, constants, out, scales, dtype, axis, kind):
    masks = [np.asarray(mask) for mask in sources[len(f.sources):] if f.sources and mask is not None]
    given = [a for a in sources[:len(f.sources)] if a is not None]
    for at, other in ((1, f.by_second), (0, f.by_first)):
        if other and len(given) == 2 and (type(given[at]) is tuple or np.ndim(given[at]) == 0):
            return call(other, (given[1 - at],), (given[at],), out, scales, dtype, axis)
    if f.sources and not given:
        raise TypeError(f"{f.name}: no {f.sources[0]}")
    if any(isinstance(a, np.ma.MaskedArray) for a in given):
        raise TypeError(f"{f.name}: a mask would be lost: give the array's .data or .filled()")
    given = [np.asarray(a) for a in given]
    outs = () if out is None else tuple(out) if isinstance(out, (tuple, list)) else (out,)
    if other := [type(a).__name__ for a in outs if type(a) is not np.ndarray]:
        raise TypeError(f"{f.name}: out must be a numpy.ndarray itself, not {other[0]}")
    scaled = any(scale is not None for scale in scales)
    if scaled and None in scales:
        raise TypeError(f"{f.name}: {' and '.join(f.scales)} go together")
    wanted = tuple(a.dtype for a in outs) or None
    if dtype is not None:
        asked = tuple(map(np.dtype, dtype if isinstance(dtype, tuple) else (dtype,)))
        if wanted and wanted[:len(asked)] != asked:
            raise TypeError(f"{f.name}: out and dtype differ")
        wanted = asked
    elif not given and not wanted:
        wanted = (np.dtype(float),)
    member = f.choose(tuple(a.dtype for a in given), scaled, wanted, kind, constants)
    if given and len(member.outputs) == 1 and not member.in_place and not member.masks:
        f.plans[kind, dtype, scaled, not outs or outs[0].dtype, given[0].dtype, given[-1].dtype] = member

    # Shapes: `shape` is that of an element-wise result, `stack` that of the rows' single results.
    if given:
        shape = max((a.shape for a in given), key=len)
        arrays, stack, n = _rows(f, given + masks, axis)
        arrays, masks = arrays[:len(given)], arrays[len(given):]
        if any(mask.dtype not in (np.bool_, np.uint8) for mask in masks):
            raise TypeError(f"{f.name}: {f.masks[0]} must be bool or uint8")
    else:
        arrays, stack, n = [], (), max(operator.index(sources[0]), 0)
        shape = (n,)
        if n > lib.tzm_longest:
            _finish(f, member, -2)
    moved = axis is not None and given and range(len(shape))[axis] != len(shape) - 1
    if outs and len(outs) != len(member.outputs):
        raise TypeError(f"{f.name}: out must be {len(member.outputs)} arrays, not {len(outs)}")
    for a in outs:
        if a.shape != shape:
            raise ValueError(f"{f.name}: out has shape {a.shape}, the result {shape}")
        if not a.flags.writeable or not (a.flags.c_contiguous or moved):
            raise ValueError(f"{f.name}: out is {'not contiguous' if a.flags.writeable else 'read-only'}")
    results = outs
    if moved or not outs:
        size = stack if member.reduces else stack + (n,) if moved else shape
        results = tuple(np.empty(size, result_type) for result_type in member.output_types)
    if member.in_place:
        if results[0] is not given[member.last]:
            np.copyto(results[0], arrays[member.last].reshape(results[0].shape))
    elif member.twin and results[0] is given[member.twin.last]:
        member = member.twin

    rows, values = [*member.given(arrays), *masks], constants + scales
    pointers = [*map(_from_buffer, rows), *[ffi.NULL] * (len(member.masks) - len(masks)),
                *[_from_buffer(_BYTES, a, True) for a in results],
                *[constant(of, values[place]) for of, place in member.values]]
    shared = sum((stack != a.shape[:-1]) << i for i, a in enumerate(rows)) if stack else 0
    status = _run(member.number, n, math.prod(stack), shared, *pointers, *_REST[len(pointers)])
    if status:
        _finish(f, member, status)
    if moved and not member.reduces:
        results = tuple(np.moveaxis(a, -1, axis) for a in results)
        for a, result in zip(outs, results):
            a[...] = result
    results = [result[()] for result in outs or results] if member.reduces or not (outs or shape) else outs or results
    return results[0] if len(results) == 1 else f.result(*results)
