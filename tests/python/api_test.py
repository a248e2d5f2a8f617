"""What signal_tzm for Python gives and refuses, against NumPy and by tables of wrong calls."""
import inspect
import pathlib
import threading
import time
import warnings

import numpy as np
import signal_tzm as tz
from case import Case, same
from signal_tzm import _families, _raw

F4, F8, I2, C8 = np.float32, np.float64, np.int16, np.complex64
random = np.random.default_rng(1)
A, B = random.normal(size=(2, 3, 50)).astype(F4)
I = np.array([1000, -2000, 32767], I2)
ONE = np.ones(4, F4)
LOCKED = np.frombuffer(ONE.tobytes(), F4)  # read-only


def pairs(*values):
    return np.array(list(values), tz.complex_int16)


class Results(Case):
    def test_types_choose_the_operation(self):
        """(call, expected values, type of the result); some types are those of in-place operations only"""
        for got, expected, dtype in (
                (tz.mul(I, I), [32767] * 3, I2), (tz.mul(I, I, scale=32768.0), [31, 122, 32766], I2),
                (tz.mul(I, I, dtype=F4), I.astype(F4)**2, F4),
                (tz.mul(I, I, scale=2.0**20, dtype="i4"), [1, 4, 1024], np.int32), (tz.mul(A, 2), 2 * A, F4),
                (tz.mul(2.5, A), F4(2.5) * A, F4), (tz.mul(I, 3), [3000, -6000, 32767], I2),
                (tz.mul(np.array([5, 6]), 2.5, scale=1), [12, 15], np.int64),
                (tz.mul(np.array([5, 6]), 2, scale=1), [10, 12], np.int64), (tz.div(A, B), A / B, F4),
                (tz.div(A, 4.0), A / 4, F4), (tz.div(1.0, ONE), ONE, F4), (tz.dot(I, I), 1078676289, np.int64),
                (tz.dot(A.astype(F8), A.astype(F8), axis=1), np.sum(A.astype(F8)**2, 1), F8),
                (tz.mul(pairs((1, 2)), pairs((3, 4)), scale=1), pairs((-5, 10)), tz.complex_int16),
                (tz.mul(pairs((1, 2)), 3 + 4j, scale=1), pairs((-5, 10)), tz.complex_int16),
                (tz.convert(A), A.astype(np.float16), np.float16), (tz.convert(I, round_mode=1), I, np.float16),
                (tz.agg_sum(I, [False, True, False]).sum, 33767, np.int64),
                (tz.agg_sum(np.array([2**62] * 2), dtype=tz.decimal128).sum, np.array((2**63, 0), tz.decimal128)[()],
                 tz.decimal128),
                (tz.vector_jaehne(4, 3, dtype="u1"), [0, 1, 3, 0], np.uint8), (tz.tone(2, 2.0, 0.25), [2, 0], F8),
                (tz.norm(ONE), 2, F4), (tz.norm(ONE, kind="inf"), 1, F4),
                (tz.norm(I, kind="l1", scale=1), 35767, np.int64), (tz.powx(ONE, 3.0, kind=11), ONE, F4),
                (tz.exp(ONE, out=(ONE.copy(),)), np.exp(ONE), F4), (tz.exp(0.0), 1, F8)):
            self.assertEqual(got.dtype, dtype)
            if got.dtype.names:
                self.assertEqual(got.tolist(), expected.tolist())
            else:
                np.testing.assert_allclose(got, np.asarray(expected, got.dtype), rtol=3e-7, atol=1e-15)

    def test_page_names_all_functions(self):
        page = (pathlib.Path(__file__).parents[2] / "docs" / "python.md").read_text()
        functions = [name for name in tz.__all__ if inspect.isfunction(getattr(tz, name))]
        self.assertEqual([], [name for name in functions if f"`{name}`" not in page.replace("`tz.", "`")])

    def test_axes(self):
        """Rows of a stack are calls of their own, whichever axis they lie along."""
        rows = np.stack([tz.win_hann(row) for row in A])
        same(tz.win_hann(A), rows)
        same(tz.win_hann(np.asfortranarray(A)), rows)
        same(tz.win_hann(A.T, axis=0), rows.T)
        out = np.zeros_like(A.T)
        self.assertIs(tz.win_hann(A.T, axis=0, out=out), out)
        same(out, rows.T)
        same(tz.mul(A, B[0], axis=-1), A * B[0])
        same(tz.sum(A, axis=1), [tz.sum(row) for row in A])
        same(tz.sum(A, axis=0), [tz.sum(column) for column in A.T])
        self.assertEqual(tz.sum(A), tz.sum(A.ravel()))
        same(tz.mean_std(A, axis=1).std_dev, [tz.std(row) for row in A])
        polar = tz.cart_to_polar(A[::-1].astype(C8), axis=1)
        same(polar.mag, [tz.magnitude(row.astype(C8)) for row in A[::-1]])

    def test_in_place(self):
        for function, sources, at in ((tz.mul, (A, B), 1), (tz.mul, (A, B), 0), (tz.div, (A, B), 0), (tz.exp, (A,), 0)):
            copies = [a.copy() for a in sources]
            with tz.errstate("ignore"):
                self.assertIs(function(*copies, out=copies[at]), copies[at])
                same(copies[at], function(*sources))

    def test_long_arrays_go_in_pieces(self):
        n = 5000
        a = random.normal(size=n).astype(C8)
        whole = tz.div(a, a[::-1]), tz.normalize(a, 1j, 3.0)
        longest = _raw.lib.tzm_longest
        try:
            _raw.lib.tzm_longest = 1000
            for got, expected in zip((tz.div(a, a[::-1]), tz.normalize(a, 1j, 3.0)), whole):
                same(got, expected)
            self.refuses((lambda: tz.sum(a), OverflowError, "longer than one call"),
                         (lambda: tz.win_hann(a), OverflowError, "longer than one call"))
        finally:
            _raw.lib.tzm_longest = longest

    def test_threads_share_no_lock(self):
        """Another thread goes on while a long call runs."""
        a, done, turns = np.full(4_000_000, 1.5), threading.Event(), 0
        thread = threading.Thread(target=lambda: (tz.pow(a, a), done.set()))
        thread.start()
        while not done.is_set():
            turns += 1
            time.sleep(0.001)
        thread.join()
        self.assertGreater(turns, 3)

    def test_everything_is_told(self):
        for name in _families.__all__:
            self.assertIn("Status", getattr(tz, name).__doc__)
            self.assertIn("Operations: ", getattr(tz, name).__doc__)


class Refusals(Case):
    def test_wrong_calls(self):
        before = A.copy()
        self.refuses(
            (lambda: tz.mul(I, A), TypeError, r"none for \(int16, float32\).*\(int16, int16\) -> int16 with a scale"),
            (lambda: tz.mul(A.astype(">f4"), A), TypeError, "none for"), (lambda: tz.exp(I), TypeError, "none for"),
            (lambda: tz.mul(A, B, out=A.astype(F8)), TypeError, "results float64"),
            (lambda: tz.mul(A, B, out=A.copy(), dtype=F8), TypeError, "out and dtype"),
            (lambda: tz.mul(A, B, out=[1, 2]), TypeError, "out must be"), (lambda: tz.exp(None), TypeError, "no src"),
            (lambda: tz.sum(A, axis=(0, 1)), TypeError, "tuple"),
            (lambda: tz.exp(np.ma.array(A, mask=True)), TypeError, "mask would be lost"),
            (lambda: tz.tone(2**31, 1.0, 0.1), OverflowError, "longer than one call"),
            (lambda: tz.norm(A, kind="l3"), TypeError, "kind 'l3'"),
            (lambda: tz.mul(A, B[:, :3]), ValueError, "differ"),
            (lambda: tz.mul(A, B[:2], axis=-1), ValueError, "do not fit"),
            (lambda: tz.sum(A, axis=2), ValueError, "axis 2"),
            (lambda: (tz.exp(A[0]), tz.exp(A[0], axis=1)), ValueError, "axis 1"),  # after a call that is remembered
            (lambda: tz.mul(A, B, out=A[0].copy()), ValueError, "out has shape"),
            (lambda: tz.exp(ONE, out=np.ones(8, F4)[::2]), ValueError, "not contiguous"),
            (lambda: tz.exp(ONE, out=LOCKED), ValueError, "read-only"),
            (lambda: tz.mul(A[0][:9], A[0][:9], out=A[0][4:13]), ValueError, "overlaps"),
            (lambda: tz.mul(I, 1.5, scale=1), TypeError, "no constant of type int16"),
            (lambda: tz.mul(I, 70000), OverflowError, "70000"),
            (lambda: tz.mul(A, "a"), TypeError, "no constant of type float32"),
            (lambda: tz.threshold_lt(A, None), TypeError, "None is no constant"),
            (lambda: tz.mul(A.astype(C8), (1, 2, 3)), TypeError, "no constant of type complex64"),
            (lambda: tz.cart_to_polar(A.astype(C8), out=A.copy()), TypeError, "out must be 2 arrays, not 1"),
            (lambda: tz.cart_to_polar(pairs((1, 2)), mag_scale=1), TypeError, "go together"),
            (lambda: tz.agg_sum(I, np.zeros(3)), TypeError, "nulls must be bool"),
            (lambda: tz.sum(A[:0]), ValueError, "begin at 1"), (lambda: tz.tone(-3, 1.0, 0.1), tz.Error, "begin at 1"),
            (lambda: tz.mul(I, I, scale=-1), ValueError, "ORVA_STS_SCALE_ERR, 20"),
            (lambda: tz.div(A, 0), ZeroDivisionError, "ORVA_STS_DIV_BY_ZERO_ERR, 3"),
            (lambda: tz.convert(I, round_mode=2), tz.ArgumentError, "ROUND_MODE"),
            (lambda: tz.threshold_lt_val_gt_val(ONE, 2, 0, 1, 0), ValueError, "THRESH_ORDER"),
            (lambda: tz.raw.ORVAS_Nothing, AttributeError, "ORVAS_Nothing"),
            (lambda: tz.errstate("loud").__enter__(), ValueError, "loud"),
            (lambda: tz.errstate(zero="warn").__enter__(), TypeError, "zero"),
            (lambda: tz.errstate("call").__enter__(), TypeError, "call="))
        same(A, before)
        same(LOCKED, 1)

    def test_warnings(self):
        zeros = np.zeros(4, F4)
        with self.assertWarnsRegex(tz.DataWarning, "DIV_ZERO_WARN") as caught:
            self.assertTrue(np.isinf(tz.div(ONE, zeros)).all())
        self.assertEqual(caught.filename, __file__)
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            with tz.errstate("ignore"):
                tz.div(ONE, zeros)
            with tz.errstate("raise"), self.assertRaises(ArithmeticError) as error:
                tz.div(ONE, zeros)
            seen = []
            with tz.errstate(call=lambda *what: seen.append(what), singularity="call"):
                tz.ln(zeros)
        self.assertEqual(error.exception.status, 300)
        self.assertEqual(seen, [(303, "ORVA_STS_SINGULARITY_ERR", "ORVAS_Ln_32f")])
