"""What mypy must find good: a program that is typed throughout."""
import numpy as np
import signal_tzm as tz
from numpy.typing import NDArray

a: NDArray[np.float32] = np.ones(8, np.float32)
b: NDArray[np.float32] = tz.mul(a, 2, out=a)
total: float = tz.sum(b) + tz.mean_std(b, axis=0).std_dev
with tz.errstate("ignore", div_zero="raise"):
    parts = tz.cart_to_polar(a, b, dtype=np.float32)[1]
taps = tz.fir_lowpass(31, 0.1)
with tz.FIR(taps, max_len=160) as lowpass:
    blocks: list[NDArray[np.float64]] = list(lowpass.stream([taps, taps]))
