"""Signal processing on NumPy arrays, with the bits of libsignal_tzm.

    import signal_tzm as tz

    y = tz.mul(a, b)                    # the types of the arrays choose the operation: float32 stays float32
    y = tz.mul(i, j, scale=32768.0)     # int16 by int16, as Q15
    with tz.FIR(taps) as f:             # what remembers is an object
        y = f(x)

Sample types are never changed in silence: what does not exist raises a TypeError that lists what does. `out=` takes
the result, `axis=` works along one axis of a stack, `dtype=` chooses among results of several types. Errors are
exceptions (`Error`), and what was odd in the data is a `DataWarning`, which `errstate` governs. The pages in docs/
tell more; `help(tz.mul)` says what an operation computes, to the last bit.
"""
from . import raw
from . import _families
from ._call import (ArgumentError, DataError, DataWarning, DivisionByZero, Error, OutOfMemory, SizeOverflow,
                    complex_int16, complex_int32, complex_int64, decimal128, errstate)
from ._families import *
from ._table import VERSION as __version__
from ._filters import (FIR, FIRMR, LMS, Resampler, SparseFIR, VariableResampler, fir_bandpass, fir_bandstop,
                       fir_highpass, fir_lowpass)
from ._transforms import (FFT, AutoCorrelation, Convolution, CrossCorrelation, GaussianNoise, Hilbert, autocorr,
                          conv_biased, convolve, crosscorr, czt, fft, get_fft_threads, hilbert, ifft, irfft, matmul,
                          pwelch, set_fft_threads)
from ._sound import blocks, read, write

__all__ = ["ArgumentError", "DataError", "DataWarning", "DivisionByZero", "Error", "OutOfMemory", "SizeOverflow",
           "complex_int16", "complex_int32", "complex_int64", "decimal128", "errstate", "raw",
           "blocks", "read", "write"]
__all__ += ["FFT", "FIR", "FIRMR", "LMS", "AutoCorrelation", "Convolution", "CrossCorrelation", "GaussianNoise",
            "Hilbert", "Resampler", "SparseFIR", "VariableResampler", "autocorr", "conv_biased", "convolve",
            "crosscorr", "czt", "fft", "fir_bandpass", "fir_bandstop", "fir_highpass", "fir_lowpass",
            "get_fft_threads", "hilbert", "ifft", "irfft", "matmul", "pwelch", "set_fft_threads"]
__all__ += _families.__all__
