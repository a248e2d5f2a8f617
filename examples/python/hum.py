"""hum.py ELECTROCARDIOGRAM: the recording without the 60 Hz hum of the mains."""
import signal_tzm as tz
from support import read, write

TAPS = 6  # a period of the hum at 360 samples per second

x, rate = read()
tone = tz.tone(x.size + TAPS, 1.0, 60 / rate, dtype=x.dtype)
with tz.LMS(TAPS, delay_line=tone[:TAPS]) as learner:  # its taps are zeros: it knows nothing
    hum = learner(tone[TAPS:], x, mu=0.0005)

write("recorded,cleaned", x, x - hum)
