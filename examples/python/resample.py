"""resample.py RECORDING: the recording at 16000 samples per second, as speech recognisers want it."""
import signal_tzm as tz
from support import read, write

x, rate = read()
with tz.Resampler(rate, 16000, window=64, rollf=0.9, alpha=9) as resampler:
    y = resampler(x)

write("sample", y)
