"""loudness.py RECORDING: as loud as 16 bits can hold, in integer arithmetic alone."""
import sys

import numpy as np
import signal_tzm as tz
from support import read, write

x, rate = read(dtype=np.int16)
peak = tz.norm(x, kind="inf")
if peak == 0:
    sys.exit("silence")
scale = 2.0 ** np.floor(np.log2(peak))  # the gain 32767 / peak, as factor / scale
factor = int(32767 / peak * scale)
loud = tz.mul(x, factor, scale=scale)

rms = [tz.norm(samples) / np.sqrt(x.size) for samples in (x, loud)]
print("peak %g, gain %d/%g, root mean square %.1f before, %.1f after" % (peak, factor, scale, *rms), file=sys.stderr)
write("before,after", x, loud)
