"""delay.py NEAR FAR: how much later the far microphone hears what the near one hears."""
import sys

import numpy as np
import signal_tzm as tz
from support import read, write

(near, rate), (far, _) = read(1), read(2)
lags = np.arange(-2400, 2401)
correlation = tz.crosscorr(near, far, lags.size, lags[0], normalisation=tz.raw.ORVA_NORMALISATION_BIASED)
delay = lags[correlation.argmax()] / rate

print(f"{1e3 * delay:.2f} ms: {343 * delay:.2f} m farther away", file=sys.stderr)
write("seconds,correlation", lags / rate, correlation)
