"""telephone.py RECORDING: what a telephone lets through, 300 to 3400 Hz, of 16-bit samples in blocks, as they come from
a microphone."""
import sys

import numpy as np
import signal_tzm as tz
from support import read, write

said, rate = read(dtype=np.int16)
taps = tz.fir_bandpass(513, 300 / rate, 3400 / rate).astype(np.float32)
with tz.FIR(taps, kind=tz.raw.ORVA_ROUTE_DIRECT) as telephone:  # remembers what it needs from block to block
    heard = np.concatenate([telephone(block) for block in tz.blocks(sys.argv[1], 480, dtype=np.int16)])

write("said,heard", said, heard)
