"""signal_tzm for Python beside NumPy and SciPy, as their users call them: what a call costs, and a dozen jobs."""
import sys

import numpy as np
import scipy.fft
from scipy import signal


def cases(tzm):
    sys.path.insert(0, str(tzm.folder.parent / "python"))
    import signal_tzm as tz

    random = np.random.default_rng(1)
    for n in (16, 1024):
        a, b = random.normal(size=(2, n)).astype(np.float32)
        out = np.empty_like(a)
        yield f"a call: multiply, out=, {n}", 1, {"tzm": lambda: tz.mul(a, b, out=out),
                                                  "numpy": lambda: np.multiply(a, b, out=out)}
    short, spec = (a[:64] + 1j * b[:64]).astype(np.complex64), tz.FFT(64)
    rows = np.tile(short, (1000, 1))
    yield "a call: multiply by a number, 1024", 1, {"tzm": lambda: tz.mul(a, 2.0), "numpy": lambda: np.multiply(a, 2.0)}
    yield "a call: FFT of complex64, 64", 1, {"tzm": lambda: spec(short), "numpy": lambda: np.fft.fft(short)}
    yield "FFT of 1000 rows of 64", rows.size, {"tzm": lambda: tz.fft(rows), "numpy": lambda: np.fft.fft(rows)}

    n = 1 << 16
    x, y = random.normal(size=(2, n)).astype(np.float32)
    wide, i, j = x.astype(np.float64), *(1000 * np.stack([x, y])).astype(np.int16)
    z, out, counts = (x + 1j * y).astype(np.complex64), np.empty_like(x), np.empty_like(i)
    taps = signal.firwin(255, 0.2).astype(np.float32)
    window = np.hanning(1024).astype(np.float32)
    column, nulls = wide.copy(), x > 1
    spec, analytic, up = tz.FFT(n), tz.Hilbert(n), tz.Resampler(2, 3)
    filter, echoes = tz.FIR(taps, max_len=n), tz.Convolution(n, 4000)
    for name, ours, numpy, scipy_ in (
            ("exp", lambda: tz.exp(x, out=out), lambda: np.exp(x, out=out), None),
            ("int16 by int16 in Q15", lambda: tz.mul(i, j, scale=32768.0, out=counts), lambda: np.clip(
                np.rint(i.astype(np.float32) * j / 32768), -32768, 32767).astype(np.int16), None),
            ("magnitude of complex64", lambda: tz.magnitude(z, out=out), lambda: np.abs(z, out=out), None),
            ("maximum with a level", lambda: tz.threshold_lt(x, 0.5, out=out),
             lambda: np.maximum(x, np.float32(0.5), out=out), None),
            ("dot", lambda: tz.dot(x, y), lambda: np.dot(x, y), None),
            ("standard deviation", lambda: tz.std(wide), lambda: np.std(wide, ddof=1), None),
            ("sum of a column with nulls", lambda: tz.agg_sum(column, nulls),
             lambda: np.sum(column, where=~nulls), None),
            ("FFT of complex64", lambda: spec(z), lambda: np.fft.fft(z), lambda: scipy.fft.fft(z)),
            ("FIR, 255 taps", lambda: filter(x), None, lambda: signal.lfilter(taps, 1, x)),
            ("convolution with 4000", lambda: echoes(x, y[:4000]), None, lambda: signal.fftconvolve(x, y[:4000])),
            ("Welch, 1024", lambda: tz.pwelch(x, window), None, lambda: signal.welch(x, 2 * np.pi, window, 1024,
                                                                                      detrend=False)),
            ("analytic signal", lambda: analytic(x), None, lambda: signal.hilbert(x)),
            ("resampling 2 to 3", lambda: up(x), None, lambda: signal.resample_poly(x, 3, 2))):
        yield name, n, {"tzm": ours, **({"numpy": numpy} if numpy else {}), **({"scipy": scipy_} if scipy_ else {})}
