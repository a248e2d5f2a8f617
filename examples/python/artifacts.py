"""artifacts.py ELECTROCARDIOGRAM: the mean of every ten seconds without the moments when the electrodes slipped."""
import numpy as np
import signal_tzm as tz
from support import read, write

LIMIT = 520  # counts of the converter, 200 to the millivolt: this heart stays below 2.6 mV

x, rate = read(dtype=np.int16)
nulls = np.zeros(x.size, bool)
for at in np.flatnonzero(np.abs(x) > LIMIT):  # a second before and a second after each value too large
    nulls[max(at - rate, 0):at + rate] = True

rows = 10 * rate
table = x.size // rows, rows
x, nulls = x[:table[0] * rows].reshape(table), nulls[:table[0] * rows].reshape(table)
kept, everything = tz.agg_mean(x, nulls, axis=1), tz.agg_mean(x, axis=1)

write("seconds,rows,mean,mean of all rows", 10 * np.arange(len(x)), kept.count, kept.sum / kept.count,
      everything.sum / everything.count)
