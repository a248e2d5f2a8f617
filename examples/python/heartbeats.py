"""heartbeats.py ELECTROCARDIOGRAM: when the heart beats."""
import numpy as np
import signal_tzm as tz
from support import read, write


def filtered(x, taps):
    """`x` through a filter of an odd number of symmetric taps, without the delay that it causes."""
    delay = taps.size // 2
    with tz.FIR(taps) as f:
        return f(np.pad(x, (0, delay)))[delay:]


x, rate = read(dtype=np.float64)
band = tz.fir_bandpass(rate // 2 * 2 + 1, 5 / rate, 15 / rate)  # the steep swing of a beat lies there
width = rate * 3 // 40 * 2 + 1  # about 0.15 seconds
power = filtered(tz.sqr(filtered(x, band)), np.full(width, 1 / width))
hills = tz.sqrt(tz.threshold_lt_val(power, 0.0, 0.0))  # rounding leaves less than nothing where it is quiet

# The hills above seven tenths of the mean, from the highest down; a heart takes 0.3 seconds to beat again.
middle = hills[1:-1]
tops = 1 + np.flatnonzero((middle > hills[:-2]) & (middle > hills[2:]) & (middle >= 0.7 * tz.mean(hills)))
beats = []
for top in tops[np.argsort(-hills[tops], kind="stable")]:
    if all(abs(top - beat) >= rate * 3 // 10 for beat in beats):
        beats.append(top)
beats.sort()

write("seconds,height", np.array(beats) / rate, hills[beats])
