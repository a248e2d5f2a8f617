"""mains.py ELECTROCARDIOGRAM: the frequency of the mains by the recorder's clock, to a thousandth of a hertz."""
import sys

import numpy as np
import signal_tzm as tz
from support import read, write

x, rate = read(dtype=np.float64)
low, step, points = 59.9, 0.0002, 1001  # of the band that the chirp-Z transform looks at, in hertz
turn = 2j * np.pi / rate
spectrum = tz.czt(tz.win_hann(x), points, w=np.exp(-turn * step), a=np.exp(turn * low))
magnitude = tz.magnitude(spectrum)

hertz = low + step * np.arange(points)
print(f"mains: {hertz[magnitude.argmax()]:.4f} Hz", file=sys.stderr)
write("hertz,magnitude", hertz, magnitude)
