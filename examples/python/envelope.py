"""envelope.py RECORDING: how loud the recording is at every moment, the magnitude of the analytic signal."""
import signal_tzm as tz
from support import read, write

x, rate = read()
envelope = tz.magnitude(tz.hilbert(x))

write("envelope", envelope)
