"""spectrum.py RECORDING: how the power of a recording is spread over the frequencies."""
import numpy as np
import signal_tzm as tz
from support import read, write

x, rate = read()
window = tz.win_hann(np.ones(2048, np.float32))
density = tz.pwelch(x, window)  # in power per radian per sample
density = tz.mul(density, 2 * np.pi / rate)

write("hertz,power per hertz", np.arange(density.size) * rate / 2048, density)
