"""Convolution and correlation beside NumPy's and SciPy's, by the route of the lengths, on one thread."""
import ctypes
import functools

import numpy
import scipy.signal

AUTOMATIC = 0
MOST_PRODUCTS = 10**8  # of a direct sum


def state_of(tzm, init, *arguments):
    state = ctypes.c_void_p()
    tzm.prepare(init, *arguments, ctypes.byref(state))()
    return state


def cases(tzm):
    tzm.prepare("ORVAS_SetFFTNumberThreads", 1)()
    random = numpy.random.default_rng(1)
    for len1, len2 in ((16, 16), (64, 64), (256, 256), (257, 256), (1000, 16), (496, 17), (4096, 128), (4096, 4096),
                       (65536, 1024), (65536, 65536), (1000000, 1000)):
        for kind, suffix in ((numpy.float32, "32f"), (numpy.float64, "64f")):
            src1, src2 = random.uniform(-1, 1, len1).astype(kind), random.uniform(-1, 1, len2).astype(kind)
            count = len1 + len2 - 1
            dst = numpy.empty(count, kind)
            small = len1 * len2 <= MOST_PRODUCTS
            state = state_of(tzm, f"ORVAS_ConvInit_{suffix}", len1, len2, AUTOMATIC)
            calls = {"tzm": tzm.prepare(f"ORVAS_Convolve_{suffix}", src1, len1, src2, len2, dst, state)}
            if small:
                calls["numpy"] = functools.partial(numpy.convolve, src1, src2)
            calls["scipy"] = functools.partial(scipy.signal.convolve, src1, src2)
            calls["fftconvolve"] = functools.partial(scipy.signal.fftconvolve, src1, src2)
            calls["oaconvolve"] = functools.partial(scipy.signal.oaconvolve, src1, src2)
            yield f"convolution {suffix} {len1} x {len2}", count, calls
            low = 1 - len2  # the lags of the shorter sequence over the longer one
            state = state_of(tzm, f"ORVAS_CrossCorrInit_{suffix}", len2, len1, count, low, AUTOMATIC)
            run = tzm.prepare(f"ORVAS_CrossCorrNorm_{suffix}", src2, len2, src1, len1, dst, count, low, 0, state)
            calls = {"tzm": run}
            if small:
                calls["numpy"] = functools.partial(numpy.correlate, src1, src2, "full")
            calls["scipy"] = functools.partial(scipy.signal.correlate, src1, src2)
            yield f"cross-correlation {suffix} {len2} x {len1}", count, calls
