"""spectrogram.py RECORDING: the power at every time and frequency. A line is a frame of 20 ms, its first number the
time of its middle in seconds, the others the power in steps of 50 Hz."""
import numpy as np
import signal_tzm as tz
from support import read, write

x, rate = read()
length = rate // 50
frames = np.lib.stride_tricks.sliding_window_view(x, length)[::length // 4]
power = tz.power_spectrum(tz.fft(tz.win_hann(frames)))  # row by row: windows and transforms work along the last axis

write("", (np.arange(len(frames)) * (length // 4) + length / 2) / rate, power)
