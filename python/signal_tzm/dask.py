"""The operations on arrays that are larger than memory, or spread over processes, on top of dask.array.

    import signal_tzm.dask as tzd
    x = tzd.sound("day.wav")
    spectrum = tzd.pwelch(x, win_len=4096).compute()

Whatever the number of workers, results are the same bits: blocks are cut at places that do not move the border between
body and tail, filters get the true samples before their block, and partial results are merged in one fixed tree.
"""
from __future__ import annotations

import math
import operator
import os
from typing import Any, Callable

import dask.array as da
import numpy as np
from dask import delayed
from numpy.typing import ArrayLike, DTypeLike, NDArray

import signal_tzm as tz

from ._call import FAMILIES

BLOCK = 96  # a multiple of the blocks of every element-wise operation
SHORTEST = 128  # normalisation takes another form for shorter arrays


def cut(x: Any, size: int = 1 << 20) -> Any:
    """A row in chunks of `size` samples, a multiple of 96; the last one is longer than the others, so that no chunk is
    short: the same cuts for every chunking that the row came with."""
    if not isinstance(x, da.Array):
        raise TypeError(f"cut: a dask array wanted, not {type(x).__name__}: dask.array.from_array(x) makes one")
    if size < 1:
        raise ValueError(f"cut: size must be 1 or more, not {size}")
    if x.ndim != 1:
        raise ValueError(f"cut: one row wanted, not shape {x.shape}")
    size = max(size // BLOCK, 2) * BLOCK
    n = x.shape[0]
    whole = max((n - SHORTEST) // size, 0)
    return x.rechunk(((size,) * (whole - 1) + (n - size * (whole - 1),) if whole else (n,),))


def elementwise(function: Callable[..., Any], *arrays: Any, dtype: DTypeLike | None = None, size: int = 1 << 20,
                **options: Any) -> Any:
    """`elementwise(tz.mul, x, y, scale=4.0)`: an element-wise operation by chunks, with the bits of one call over the
    whole row. The statuses of operations that only look at one end of an array (exp, ln, pow ...) are those of the
    chunks. Of several results each is a row, worked out by itself."""
    family = FAMILIES.get(function.__name__)
    if family is None or any(m.reduces or m.placed or not m.sources for m in family.members):
        raise TypeError(f"{function.__name__} is no element-wise operation: an element's value goes by its place")
    if not any(isinstance(a, da.Array) for a in arrays):
        raise TypeError(f"elementwise: one of the arrays must be dask's: tz.{function.__name__} is for NumPy's")
    rows = [cut(a, size) if isinstance(a, da.Array) else a for a in arrays]
    samples = [np.ones(2, a.dtype) if isinstance(a, da.Array) else a for a in rows]
    if dtype is not None:
        options["dtype"] = dtype
    with tz.errstate("ignore"):
        meta = function(*samples, **options)

    def row(pick: Callable[[Any], Any]) -> Any:
        return da.map_blocks(lambda *blocks: pick(function(*blocks, **options)), *rows, dtype=pick(meta).dtype,
                             meta=pick(meta)[:0])

    if isinstance(meta, tuple):
        return type(meta)(*[row(operator.itemgetter(place)) for place in range(len(meta))])
    return row(lambda result: result)


def fir(taps: ArrayLike, x: Any, *, size: int = 1 << 20) -> Any:
    """A row through a FIR filter, from zeros on, with the bits of `tz.FIR(taps, kind=1)(x)`: each chunk begins with the
    samples before it in the delay line, on the direct route."""
    taps, x = np.ascontiguousarray(taps), cut(x, size)
    before = max(taps.size - 1, 0)

    def run(block: NDArray[Any]) -> NDArray[Any]:
        with tz.FIR(taps, kind=1) as state:
            state.reset(block[:before])
            return state(block[before:])

    padded = da.concatenate([da.zeros(before, dtype=x.dtype, chunks=max(before, 1)), x])
    return _overlapped(x.chunks[0], x.dtype, [run] * len(x.chunks[0]), padded, before, x.chunks[0])


def _overlapped(chunks: Any, dtype: Any, runs: Any, padded: Any, extra: int, sizes: Any) -> Any:
    """A row of what each function makes of its chunk with `extra` samples beside it: so many samples as `sizes` has."""
    starts = np.concatenate([[0], np.cumsum(chunks)])
    return da.concatenate([
        da.from_delayed(delayed(run)(padded[a:a + n + extra].rechunk(-1).to_delayed()[0]), (size,), dtype=dtype)
        for run, a, n, size in zip(runs, starts, chunks, sizes)])


def resample(x: Any, in_rate: int, out_rate: int, *, size: int = 1 << 20, **options: Any) -> Any:
    """A row at another rate, with the bits of `tz.Resampler(in_rate, out_rate, **options)(x)`: time is exact, and each
    chunk has the samples around it."""
    x = cut(x, size)
    state = tz.Resampler(in_rate, out_rate, dtype=x.dtype, **options)
    reach = state.reach
    silence = da.zeros(reach, dtype=x.dtype, chunks=reach)
    starts = [int(a) for a in np.concatenate([[0], np.cumsum(x.chunks[0])])]
    first = [-(-a * out_rate // in_rate) for a in starts]  # the number of the first output at each start or after it

    def runs(a: int, n: int, output: int) -> Callable[[NDArray[Any]], NDArray[Any]]:
        time = output * in_rate - a * out_rate
        whole = time // out_rate  # with rates that rise little, the first output may lie samples behind the start
        return lambda block: state.between(block, n - whole, time + reach * out_rate)[0]

    return _overlapped(x.chunks[0], x.dtype, [runs(*each) for each in zip(starts, x.chunks[0], first)],
                       da.concatenate([silence, x, silence]), 2 * reach, np.diff(first))


# ---- Partial results ----

def _tree(parts: list[Any], merge: Callable[[Any, Any], Any]) -> Any:
    """Neighbours are merged, then neighbours of those: a tree that only the number of parts shapes."""
    while len(parts) > 1:
        parts = [delayed(merge)(*parts[i:i + 2]) if i + 1 < len(parts) else parts[i] for i in range(0, len(parts), 2)]
    return parts[0]


def _parts(x: Any, partial: Callable[..., Any], *more: Any) -> list[Any]:
    rows = [row.to_delayed() for row in (x, *more)]
    return [delayed(partial)(*blocks) for blocks in zip(*rows)]


def _add(a: Any, b: Any) -> Any:
    return a + b


def sum(x: Any, *, size: int = 1 << 20) -> Any:  # noqa: A001
    """The sum of a row, delayed: `tz.sum` of each chunk, added in the tree. A long ordered sum rounds otherwise in its
    last bits; `ordered_sum` has its bits."""
    return _tree(_parts(cut(x, size), tz.sum), _add)


def mean(x: Any, *, size: int = 1 << 20) -> Any:
    """The mean of a row, delayed, from `sum`."""
    return delayed(lambda total: total / x.shape[0])(sum(x, size=size))


def norm(x: Any, *, kind: str = "l2", size: int = 1 << 20) -> Any:
    """A norm of a row, delayed; squares of float chunks are added in float64."""
    merge = max if kind == "inf" else _add
    part = (lambda b: float(tz.norm(b))**2) if kind == "l2" else (lambda b: tz.norm(b, kind=kind))
    total = _tree(_parts(cut(x, size), part), merge)
    return delayed(math.sqrt)(total) if kind == "l2" else total


def agg_sum(x: Any, nulls: Any = None, *, size: int = 1 << 20) -> Any:
    """The sum of a column and whether it overflowed, delayed; of integers the exact one, whatever the cuts."""
    rows = (x,) if nulls is None else (x, nulls)
    whole = x.dtype.kind == "i"

    def part(*blocks: NDArray[Any]) -> tuple[Any, bool]:
        result = tz.agg_sum(*blocks)
        return (int(result.sum) if whole else result.sum), bool(result.overflow)

    def merge(a: Any, b: Any) -> Any:
        total = a[0] + b[0]
        return total, a[1] or b[1] or whole and not -2**63 <= total < 2**63

    return _tree(_parts(cut(x, size), part, *[cut(row, size) for row in rows[1:]]), merge)


def ordered_sum(x: Any, *, size: int = 1 << 20) -> Any:
    """The float64 sum of a row in the order of `tz.sum(x)`, delayed, to the bit: each chunk goes on from the two lanes
    that the chunk before left. One chunk after the other, in whatever process: not faster for more workers."""
    if x.dtype != np.float64:
        raise TypeError(f"ordered_sum: float64 wanted, not {x.dtype}")
    lanes = None
    x = cut(x, size)
    blocks = list(x.to_delayed())
    for at, block in enumerate(blocks):
        lanes = delayed(_go_on)(lanes, block, at == len(blocks) - 1)
    return lanes


def _go_on(lanes: Any, block: NDArray[Any], last: bool) -> Any:
    body = block.size // 2 * 2
    if body == 0:
        return tz.sum(block)
    pairs = block[:body].reshape(-1, 2)
    lanes = np.add.accumulate(pairs if lanes is None else np.concatenate([[lanes], pairs]), axis=0)[-1]
    if not last:
        return lanes
    total = lanes[0] + lanes[1]
    return total + block[body] if body < block.size else total


def pwelch(x: Any, window: ArrayLike | None = None, *, win_len: int | None = None, segments: int = 256,
           overlap: float = 0.5) -> Any:
    """The power spectral density of a row by Welch's method: `tz.pwelch` of every `segments` segments, averaged in the
    tree by their numbers. The differences from one call over the whole row are those of the order of a sum."""
    if segments < 1:
        raise ValueError(f"pwelch: segments must be 1 or more, not {segments}")
    if window is not None:
        win_len = len(np.asarray(window))
    elif win_len is None:
        win_len = min(256, x.shape[0])
    step = win_len - math.ceil(win_len * overlap)
    if step < 1 or x.shape[0] < win_len:
        raise ValueError(f"pwelch: no segments of {win_len} samples, {step} apart, in {x.shape[0]}")
    count = (x.shape[0] - win_len) // step + 1
    parts = []
    for first in range(0, count, segments):
        number = min(segments, count - first)
        piece = x[first * step:(first + number - 1) * step + win_len].rechunk(-1).to_delayed()[0]
        parts.append(delayed(lambda block, number=number: tz.pwelch(block, window, win_len=win_len,
                                                                    overlap=overlap) * number)(piece))
    total = _tree(parts, _add)
    real = x.dtype.kind != "c"
    return da.from_delayed(delayed(lambda sum: sum / count)(total), (win_len // 2 + 1 if real else win_len,),
                           dtype=np.zeros(0, x.dtype).real.dtype)


def sound(path: str | os.PathLike[str], *, size: int = 1 << 20, dtype: DTypeLike = np.float32) -> Any:
    """A sound file of one channel as a row that is read when it is needed."""
    source = tz.blocks(path, size, dtype=dtype)
    if source.channels != 1:
        raise ValueError(f"{os.fspath(path)}: one channel wanted, it has {source.channels}")
    parts = [(first, min(size, source.frames - first)) for first in range(0, source.frames, size)]
    return da.concatenate([da.from_delayed(delayed(_sound_part)(path, *part, dtype), part[1:], dtype=dtype)
                           for part in parts])


def _sound_part(path: Any, first: int, count: int, dtype: Any) -> NDArray[Any]:
    return next(tz.blocks(path, count, dtype=dtype).starting(first))
