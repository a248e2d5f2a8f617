"""signal_tzm.dask: the bits of one call, in one process and in a cluster of two."""
import pathlib
import tempfile

import dask
import dask.array as da
import numpy as np
import signal_tzm as tz
import signal_tzm.dask as tzd
from case import Case, same
from dask.distributed import Client, LocalCluster

SIZE = 9600
random = np.random.default_rng(3)
X = random.normal(size=50_123)
X4, C4, COUNTS = X.astype("f4"), (X + 1j * X[::-1]).astype("c8"), (1e6 * X).astype("i8")
TAPS = random.normal(size=201)
NULLS = X > 1


def jobs(folder):
    """(job, what one call gives; None where the order of a sum is another)"""
    lazy = lambda x: da.from_array(x, chunks=7001)
    tz.write(folder / "x.wav", X4, 8000)
    yield tzd.elementwise(tz.div, lazy(C4), lazy(C4[::-1].copy()), size=SIZE), tz.div(C4, C4[::-1].copy())
    yield tzd.elementwise(tz.normalize, lazy(C4), 1j, 3.0, size=SIZE), tz.normalize(C4, 1j, 3.0)
    yield tzd.elementwise(tz.exp, lazy(X), size=SIZE), tz.exp(X)
    yield from zip(tzd.elementwise(tz.cart_to_polar, lazy(C4), size=SIZE), tz.cart_to_polar(C4))
    yield tzd.fir(TAPS, lazy(X), size=SIZE), tz.FIR(TAPS, kind=1)(X)
    yield tzd.fir(TAPS.astype("f4"), lazy(C4), size=SIZE), tz.FIR(TAPS.astype("f4"), kind=1)(C4)
    for rates in ((3, 2), (160, 441), (441, 160)):
        yield tzd.resample(lazy(X4), *rates, size=SIZE), tz.Resampler(*rates)(X4)
    yield tzd.ordered_sum(lazy(X), size=SIZE), tz.sum(X)
    yield tzd.agg_sum(lazy(COUNTS), lazy(NULLS), size=SIZE), (tz.agg_sum(COUNTS, NULLS).sum, False)
    yield tzd.agg_sum(lazy(COUNTS + 2**60), size=SIZE)[1], True
    yield tzd.sound(folder / "x.wav", size=SIZE), X4
    for job, near in ((tzd.sum(lazy(X), size=SIZE), tz.sum(X)), (tzd.mean(lazy(X), size=SIZE), tz.mean(X)),
                      (tzd.norm(lazy(X), size=SIZE), tz.norm(X)),
                      (tzd.norm(lazy(X), kind="inf", size=SIZE), tz.norm(X, kind="inf")),
                      (tzd.pwelch(lazy(X), win_len=512, segments=16), tz.pwelch(X, win_len=512))):
        np.testing.assert_allclose(job.compute(), near, rtol=1e-10)
        yield job, None


class Dask(Case):
    def test_one_process_and_two(self):
        with tempfile.TemporaryDirectory() as folder, tz.errstate("ignore"):
            calls, expected = zip(*jobs(pathlib.Path(folder)))
            alone = dask.compute(*calls, scheduler="synchronous")
            for got, wanted in zip(alone, expected):
                if wanted is not None:
                    same(got, wanted)
            with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster, Client(cluster):
                for got, wanted in zip(dask.compute(*calls), alone):
                    same(got, wanted)

    def test_refusals(self):
        row = da.ones(10)
        self.refuses((lambda: tzd.elementwise(tz.win_hann, row), TypeError, "by its place"),
                     (lambda: tzd.elementwise(tz.sum, row), TypeError, "no element-wise"),
                     (lambda: tzd.cut(da.ones((2, 2))), ValueError, "one row"),
                     (lambda: tzd.sum(np.ones(9)), TypeError, "a dask array wanted, not ndarray"),
                     (lambda: tzd.elementwise(tz.exp, np.ones(9)), TypeError, "must be dask's"),
                     (lambda: tzd.cut(row, 0), ValueError, "1 or more"),
                     (lambda: tzd.ordered_sum(row.astype("f4")), TypeError, "float64"),
                     (lambda: tzd.pwelch(row, win_len=11), ValueError, "in 10"),
                     (lambda: tzd.pwelch(row, segments=0), ValueError, "segments must be"),
                     (lambda: tzd.ordered_sum(row[:0]).compute(), ValueError, "begin at 1"))
