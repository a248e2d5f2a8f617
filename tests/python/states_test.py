"""The states of signal_tzm for Python against NumPy and SciPy; their streams, their locks, what they refuse."""
import concurrent.futures
import pickle

import numpy as np
import scipy.signal as sig
import signal_tzm as tz
from case import Case, same
from signal_tzm import _states, _table

random = np.random.default_rng(2)
X = random.normal(size=6000)
Z = random.normal(size=6000) + 1j * random.normal(size=6000)
TAPS = random.normal(size=37)
CHIRP = np.exp(-0.02j), np.exp(0.3j)
F4, F8 = np.float32, np.float64
TYPES = ((F4, 2e-5), (F8, 1e-12), (np.complex64, 2e-5), (np.complex128, 1e-12))


def lms(x, ref, n, mu):
    taps, line, out = np.zeros(n), np.zeros(n), []
    for sample, wanted in zip(x, ref):
        line = np.concatenate([[sample], line[:-1]])
        out.append(taps @ line)
        taps += 2 * mu * (wanted - out[-1]) * line
    return out


def biased(a, b, n, bias):
    windows = (range(max(bias + 1 + k - len(b), 0), min(bias + 1 + k, len(a))) for k in range(n))
    return [sum(a[i] * b[k - i] for i in window if 0 <= k - i < len(b)) for k, window in enumerate(windows)]


def welch(x):
    return sig.welch(x, 2 * np.pi, np.hanning(256), 256, 128, 256, detrend=False, return_onesided=True)[1]


def cuts(x, *sizes):
    return np.split(x, np.cumsum(sizes), axis=-1)


class Results(Case):
    def close(self, got, expected, tolerance, dtype):
        self.assertEqual(got.dtype, dtype)
        self.assertLess(np.max(np.abs(got - expected)) / np.max(np.abs(expected)), tolerance)

    def test_against_scipy(self):
        x4, tone = X.astype(F4), np.sin(np.arange(999, dtype=F4) / 9)
        for got, expected, tolerance, dtype in (
                (tz.hilbert(x4), sig.hilbert(X), 1e-6, np.complex64),
                (tz.pwelch(X, np.hanning(256)), welch(X), 1e-12, F8),
                (tz.pwelch(x4, np.hanning(256).astype(F4)), welch(X), 1e-5, F4),
                (tz.czt(X[:100], 50, *CHIRP), sig.czt(X[:100], 50, *CHIRP), 1e-11, np.complex128),
                (tz.convolve(X, TAPS), np.convolve(X, TAPS), 1e-12, F8),
                (tz.conv_biased(x4, TAPS.astype(F4), 500), np.convolve(X, TAPS)[:500], 1e-5, F4),
                (tz.autocorr(X, 50), np.correlate(X, X, "full")[5999:6049], 1e-12, F8),
                (tz.crosscorr(Z, X + 0j, 21, -10), np.correlate(X + 0j, Z, "full")[5989:6010], 1e-11, np.complex128),
                (tz.matmul(X.reshape(60, 100), X.reshape(100, 60)), X.reshape(60, 100) @ X.reshape(100, 60), 1e-12, F8),
                (tz.fir_lowpass(31, 0.1), sig.firwin(31, 0.2, window="hamming"), 1e-12, F8),
                (tz.LMS(8)(x4[:999], x4[1:1000], 0.01), lms(X, X[1:1000], 8, 0.01), 1e-4, F4),
                (tz.SparseFIR([1, 2], [5, 700])(x4), sig.lfilter(np.bincount([5, 700], [1, 2]), 1, X), 1e-6, F4),
                (tz.FIRMR(TAPS, up=3, down=2)(X), sig.upfirdn(TAPS, X, 3, 2)[:9000], 1e-12, F8),
                (tz.Resampler(3, 2)(tone)[50:600], np.sin(np.arange(666) / 6)[50:600], 1e-3, F4),
                (tz.VariableResampler()(tone, 0.75)[50:700], np.sin(np.arange(749) / 6.75)[50:700], 1e-3, F4),
                (tz.irfft(tz.fft(X), 6000), X, 1e-12, F8), (tz.ifft(tz.fft(Z)), Z, 1e-12, np.complex128)):
            self.close(got, expected, tolerance, dtype)

    def test_types(self):
        """Each sample type of filters and transforms, of powers of two and others."""
        for dtype, tolerance in TYPES:
            real, bins, taps = np.dtype(dtype).kind == "f", np.result_type(dtype, np.complex64), TAPS.astype(dtype)
            x = (X if real else Z).astype(dtype).reshape(3, 2000)
            for n in (2000, 1024):
                self.close(tz.fft(x[:, :n]), (np.fft.rfft if real else np.fft.fft)(x[:, :n]), tolerance, bins)
                if real:
                    re, im = tz.FFT(n, dtype, split=True)(x[0, :n], x[1, :n])
                    self.close(re + 1j * im, np.fft.fft(x[0, :n] + 1j * x[1, :n]), tolerance, bins)
            for kind in (1, 2):
                self.close(tz.FIR(taps, kind=kind)(x), sig.lfilter(taps, 1, x), tolerance, dtype)
        counts = (1000 * X).astype(np.int16)
        expected = np.rint(sig.lfilter(TAPS.astype(F4), 1, counts)).clip(-32768, 32767)
        self.assertLessEqual(np.max(np.abs(tz.FIR(TAPS.astype(F4))(counts) - expected)), 1)

    def test_stacks(self):
        """Each row of a stack gives what it gives alone, whichever axis the rows lie along."""
        x, one = X.astype("f4").reshape(2, 3, 1000), X[:1000].astype("f4")
        for f in (lambda x, **axis: tz.FIR(one[:9], max_len=160)(x, **axis), tz.fft, tz.hilbert, tz.pwelch,
                  lambda x, **axis: tz.FIRMR(one[:9], up=3, down=2)(x, **axis), tz.Resampler(3, 2), tz.FFT(1000, "f4"),
                  lambda x, **axis: tz.VariableResampler()(x, 0.75, **axis),
                  lambda x, **axis: tz.czt(x, 20, 0.9 - 0.1j, **axis), lambda x, **axis: tz.convolve(x, x, **axis),
                  lambda x, **axis: tz.convolve(one, x, **axis), lambda x, **axis: tz.autocorr(x, 9, **axis),
                  lambda x, **axis: tz.crosscorr(x, one, 9, -4, **axis),
                  lambda x, **axis: tz.conv_biased(x, x, 500, 7, **axis)):
            whole = f(x)
            same(whole, [[f(row) for row in rows] for rows in x])
            same(f(np.moveaxis(x, -1, 0), axis=0), np.moveaxis(whole, -1, 0))
        square = X[:3600].reshape(4, 30, 30)
        same(tz.matmul(square, square[0]), [tz.matmul(each, square[0]) for each in square])

    def test_streams(self):
        """The same bits wherever the signal is cut."""
        x4 = X.astype(F4)
        for state, x in ((tz.FIR(TAPS, max_len=1024), X), (tz.FIR(TAPS, max_len=1024, kind=2), np.stack([X, -X])),
                         (tz.FIRMR(TAPS, up=2, down=3), X), (tz.Resampler(48, 31), x4),
                         (tz.Resampler(31, 48, dtype=np.int16), (1000 * X).astype(np.int16)),
                         (tz.SparseFIR([1, -2], [3, 9]), x4)):
            whole = state(x)
            for sizes, line in (((1, 7, 2000, 2, 16), None), ((3000,), np.zeros(9, F4))):
                if isinstance(state, tz.SparseFIR):
                    state.delay_line = line
                same(np.concatenate(list(state.stream(cuts(x, *sizes))), axis=-1), whole)
        with tz.FIR(TAPS) as f:
            together = np.concatenate([f(part) for part in cuts(X, 160, 1600)])
        same(together, tz.FIR(TAPS)(X))

    def test_states(self):
        for state, arguments in ((tz.FIR(TAPS, kind=1), (X,)), (tz.FFT(64), (Z[:64].astype("c8"),)),
                                 (tz.GaussianNoise(1.0, 2.0, 7), (1000,)),
                                 (tz.Convolution(10, 5), (np.ones(10, "f4"), np.ones(5, "f4")))):
            same(pickle.loads(pickle.dumps(state))(*arguments), state(*arguments))
            state.close()
            state.close()
            self.refuses((lambda: state(*arguments), ValueError, "closed"))
        own = np.empty(64, "c8").view(np.recarray)
        same(tz.FFT(64)(Z[:64].astype("c8"), out=own), tz.fft(Z[:64].astype("c8")))
        filter = tz.LMS(3, delay_line=[1, 2, 3])
        self.assertEqual(filter.delay_line[0].tolist(), [1, 2, 3])
        filter.delay_line = [4, 5, 6], 1
        self.assertEqual(filter.delay_line[1], 1)
        self.assertEqual(filter.taps.tolist(), [0, 0, 0])
        resampler = tz.Resampler(2, 3)
        resampler.taps = 2 * resampler.taps
        self.assertEqual(tz.SparseFIR([1], [2]).delay_line.size, 2)
        tz.set_fft_threads(tz.get_fft_threads())

    def test_what_is_made_stays(self):
        """Sizes of arrays hang on it: it is not set, not made anew, and no array of the caller's."""
        for kind, arguments, names in (
                (tz.FIR, (TAPS,), "taps"), (tz.FIRMR, (TAPS,), "taps"), (tz.LMS, (3,), "size dtype"),
                (tz.SparseFIR, ([1], [2]), "reach"), (tz.Resampler, (1, 2), "in_rate out_rate reach dtype"),
                (tz.VariableResampler, (), "window n_step dtype"), (tz.FFT, (8,), "n dtype split"),
                (tz.Hilbert, (8,), "n"), (tz.Convolution, (3, 4), "n1 n2 dtype"),
                (tz.AutoCorrelation, (3, 2), "n lags dtype"), (tz.GaussianNoise, (0, 1, 1), "dtype"),
                (tz.CrossCorrelation, (3, 4, 2, 0), "n1 n2 lags low_lag dtype")):
            state = kind(*arguments)
            for name in names.split():
                self.refuses((lambda: setattr(state, name, getattr(state, name)), AttributeError, name))
            self.refuses((lambda: state.__init__(*arguments), AttributeError, f"make another {kind.__name__}"))
        taps = TAPS.astype(F4)
        fir = tz.FIR(taps)
        taps[:] = fir.taps[:] = 0
        same(fir(Z.astype("c8")), tz.FIR(TAPS.astype(F4))(Z.astype("c8")))
        same(pickle.loads(pickle.dumps(fir))(X.astype(F4)), tz.FIR(TAPS.astype(F4))(X.astype(F4)))

    def test_bias(self):
        a, b = np.arange(1, 8, dtype=F4), np.arange(3, 6, dtype=F4)
        for bias in (*range(-30, 30), 2**31 - 1, -2**31):
            same(tz.conv_biased(a, b, 20, bias), biased(a, b, 20, bias))

    def test_calls_meet_their_own_state(self):
        class Closing:
            def __array__(self, dtype=None):
                state.close()
                return X

            def __float__(self):
                state.close()
                return 0.5

        for state in (tz.FIR(TAPS), tz.FIRMR(TAPS)):
            self.refuses((lambda: state(Closing()), ValueError, "closed"))
        state = tz.LMS(3)
        same(state(np.zeros(9, F4), np.ones(9, F4), Closing()), 0)
        self.refuses((lambda: state.taps, ValueError, "closed"))

    def test_threads(self):
        """Eight threads run one shared spec and give what one gives; calls on one filter take turns."""
        spec, x = tz.FFT(1 << 14), Z[:1].astype("c8").repeat(1 << 14) * np.arange(1 << 14, dtype="f4")
        expected = spec(x)
        filter, ones = tz.FIR(np.ones(1)), np.ones(1000)
        with concurrent.futures.ThreadPoolExecutor(8) as pool:
            for result in pool.map(spec, [x] * 64):
                same(result, expected)
            for result in pool.map(filter, [ones] * 64):
                same(result, ones)

    def test_everything_has_a_class(self):
        self.assertEqual(set(_table.STATES), set(_states.COVERED))

    def test_wrong_calls(self):
        fir, x4 = tz.FIR(TAPS), X.astype("f4")
        fir(X)
        self.refuses(
            (lambda: tz.FIR(TAPS.astype("i4")), TypeError, "no taps of int32"),
            (lambda: tz.FIR(TAPS)(x4), TypeError, "no taps of float64 with samples of float32"),
            (lambda: tz.FIR([TAPS, TAPS]), ValueError, "one row"),
            (lambda: tz.fft(Z, axis=1), ValueError, "out of bounds"),
            (lambda: list(tz.FIR(TAPS).stream([X, x4])), TypeError, "began with samples of float64"),
            (lambda: tz.FIR(TAPS, kind=7), ValueError, "FIR_ALG"), (lambda: tz.FIR([]), ValueError, "begin at 1"),
            (lambda: tz.FIR(TAPS, max_len=100), ValueError, "multiple of 16"),
            (lambda: fir(X.reshape(2, 3000)), ValueError, "reset"), (lambda: fir(X[:0]), ValueError, "positive"),
            (lambda: fir(X, out=x4), TypeError, "out must be"),
            (lambda: fir(X, out=X[1:]), ValueError, "out has shape"),
            (lambda: tz.FIRMR(TAPS, up=0), ValueError, "FACTOR"),
            (lambda: tz.FIRMR(TAPS, down=7)(X), ValueError, "multiple of 7"),
            (lambda: tz.LMS(0), ValueError, "LMS_TAPS"), (lambda: tz.LMS(3, dtype="f8"), TypeError, "but for float32"),
            (lambda: tz.LMS(3)(X, X, 1), TypeError, "float32"),
            (lambda: tz.LMS(3)(x4, x4[1:], 1), ValueError, "one length"),
            (lambda: tz.SparseFIR([1, 2], [3, 3]), ValueError, "SPARSE_DELAY"),
            (lambda: tz.Resampler(0, 1), ValueError, "begin at 1"),
            (lambda: tz.SparseFIR([1, 2], [0.5, 3]), TypeError, "whole"),
            (lambda: tz.LMS(TAPS), TypeError, "taps must be float32, not float64"),
            (lambda: tz.LMS([1, "a"]), TypeError, "'a' is no constant of type float32"),
            (lambda: tz.LMS([[1, 2]]), TypeError, "no constant"), (lambda: tz.LMS(x4[None]), ValueError, "one row"),
            (lambda: tz.LMS(2, dtype="i2", delay_line=[0.7, 1]), TypeError, "0.7 is no constant of type int16"),
            (lambda: tz.LMS(2, dtype="i2", delay_line=[1, 40000]), OverflowError, "40000"),
            (lambda: setattr(tz.LMS(2), "delay_line", (X[:2], 0)), TypeError, "delay_line must be float32"),
            (lambda: tz.SparseFIR(TAPS[:1], [2]), TypeError, "taps must be float32, not float64"),
            (lambda: tz.SparseFIR([1], [2], delay_line=X[:2]), TypeError, "delay_line must be float32"),
            (lambda: setattr(tz.Resampler(1, 2), "taps", X), TypeError, "taps must be float32"),
            (lambda: tz.LMS(8.0), TypeError, "integer"), (lambda: tz.LMS(4)(x4, x4, None), TypeError, "None"),
            (lambda: tz.Resampler(1, 2)(X), TypeError, "float32"),
            (lambda: tz.Resampler(1, 2).between(X, 1, 200), TypeError, "float32"),
            (lambda: tz.Resampler(1, 2)(x4[:0]), ValueError, "no samples"),
            (lambda: tz.VariableResampler()(x4, 0), ValueError, "above 0"),
            (lambda: tz.VariableResampler()(x4, np.inf), ValueError, "finite"),
            (lambda: tz.FFT(8)(Z[:8]), TypeError, "complex64"),
            (lambda: tz.FFT(8)(Z[:9].astype("c8")), ValueError, "9 samples"),
            (lambda: tz.FFT(8, "i2"), TypeError, "FFT: none for"), (lambda: tz.FFT(0), ValueError, "begin at 1"),
            (lambda: tz.FFT(8, "f4", split=True)(x4[:8]), TypeError, "2 arrays"),
            (lambda: tz.FFT(8)(Z[:8].astype("c8"), out=()), TypeError, "out must be 1 array, not 0"),
            (lambda: tz.FFT(8, "f4", split=True)(x4[:8], x4[:8], out=x4[8:16]), TypeError, "2 arrays, not 1"),
            (lambda: tz.FFT(8, "f4", split=True)(x4[:8], x4[:8], out=(x4[8:16],) * 2), ValueError, "overlap"),
            (lambda: tz.FFT(8.0), TypeError, "integer"),
            (lambda: tz.FFT(8, divide=9), ValueError, "FLAG"), (lambda: tz.hilbert(X), TypeError, "none for"),
            (lambda: tz.FFT((1 << 27) + 1), MemoryError, "allocation"),
            (lambda: tz.pwelch(X, np.ones(8, "f4")), TypeError, "row of float64"),
            (lambda: tz.pwelch(X, overlap=1), ValueError, "SIZE"),
            (lambda: tz.pwelch(X, win_len=0), ValueError, "SIZE"),
            (lambda: tz.convolve(X, x4), TypeError, "float64"),
            (lambda: tz.matmul(X, X), ValueError, "do not fit"), (lambda: tz.fir_lowpass(31, 0.7), ValueError, "SIZE"),
            (lambda: tz.fir_lowpass(3, 0.1), ValueError, "begin at 1"),
            (lambda: tz.fir_lowpass(2**40, 0.1), OverflowError, "fit"),
            (lambda: tz.Convolution(5, 5)(x4, x4), ValueError, "the state is for 5"),
            (lambda: tz.GaussianNoise(0, 1, 2**33), OverflowError, "does not fit"))
