"""keypad.py RECORDING: which keys of a telephone were pressed. A key sounds two tones, one for its row and one for its
column."""
import sys

import numpy as np
import signal_tzm as tz
from support import read, write

TONES = 697, 770, 852, 941, 1209, 1336, 1477, 1633
KEYS = np.array([list("123A"), list("456B"), list("789C"), list("*0#D")])

x, rate = read()
n = rate // 40  # 25 ms tell the frequencies apart
blocks = x[:x.size // n * n].reshape(-1, n)
bins = np.stack([tz.goertzel(blocks, hertz / rate, axis=1) for hertz in TONES], axis=1)
power = np.abs(bins / (n / 2)) ** 2  # of a sine of amplitude 1 it is 1

rows, columns = power[:, :4], power[:, 4:]
loud = np.minimum(rows.max(axis=1), columns.max(axis=1)) > 0.01
keys = np.where(loud, KEYS[rows.argmax(axis=1), columns.argmax(axis=1)], " ")
pressed = [key for key, last in zip(keys, [" ", *keys]) if key not in (" ", last)]

print("pressed:", "".join(pressed), file=sys.stderr)
write("seconds," + ",".join(map(str, TONES)), np.arange(len(blocks)) * n / rate, power)
