"""What the operations that remember share, and the few that fit no family. A state is given back on `close`, at the end
of a `with`, or with the object; it is pickled by its arguments."""
from __future__ import annotations

import contextlib
import copy
import functools
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
COVERED: dict[str, str] = {}  # for the operations of each prefix: the class or function that has them


Thing = TypeVar("Thing")
Self = TypeVar("Self", bound="State")


def _about(*prefixes: str) -> Callable[[Thing], Thing]:
    """Adds what the headers say of these operations to a docstring."""
    def add(thing: Thing) -> Thing:
        COVERED.update(dict.fromkeys(prefixes, getattr(thing, "__name__")))
        notes = dict.fromkeys(_table.DOCS[prefix] for prefix in prefixes if prefix in _table.DOCS)
        thing.__doc__ = "\n\n".join([thing.__doc__ or "", *notes])
        return thing
    return add


def _name(prefix: str, role: str, types: str) -> str:
    try:
        return _table.STATES[prefix][role][types]
    except KeyError:
        there = ", ".join(map(_dtypes, sorted(_table.STATES[prefix][role])))
        raise TypeError(f"{COVERED[prefix]}: none for {_dtypes(types)}, but for {there}") from None


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
