#!/usr/bin/python3
"""make_sound.py FILE CHANNELS SAMPLES FREQUENCY AMPLITUDE NOISE: a WAV file of binary32 samples at 48 kHz. The last
channel holds the sine with uniform noise of the given amplitude added, the others are silent. FREQUENCY nan makes
samples that are not numbers."""
import struct
import sys

import numpy

RATE = 48000
channels, samples = int(sys.argv[2]), int(sys.argv[3])
frequency, amplitude, noise = map(float, sys.argv[4:])
frames = numpy.zeros((samples, channels), numpy.float32)
phase = 2 * numpy.pi * numpy.fmod(frequency * numpy.arange(samples) / RATE, 1)
frames[:, -1] = amplitude * numpy.sin(phase) + numpy.random.default_rng(1).uniform(-noise, noise, samples)
with open(sys.argv[1], "wb") as file:
    file.write(struct.pack("<4sI4s4sIHHIIHH4sI", b"RIFF", 36 + frames.nbytes, b"WAVE", b"fmt ", 16, 3, channels, RATE,
                           4 * channels * RATE, 4 * channels, 32, b"data", frames.nbytes))
    file.write(frames.tobytes())
