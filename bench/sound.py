#!/usr/bin/python3
"""sound.py TZM [MINUTES]: tzm beside SoX and SciPy on a recording of two channels in 16 bits (an hour of it), and the
quality of its resampling beside SoX's. Every turn reads a file and writes one; the programs take turns, and each one's
better one of two counts. Needs the packages sox and python3-scipy."""
import pathlib
import resource
import subprocess
import sys
import tempfile
import time

import numpy as np

SCIPY = """
import sys, numpy as np, scipy.io.wavfile, scipy.signal as sig
rate, sound = scipy.io.wavfile.read(sys.argv[1])
def done(x):
    if sys.argv[3] == "filter":
        return sig.oaconvolve(x, sig.firwin(255, 3000, fs=rate).astype(np.float32), "same")
    return sig.resample_poly(x, 147, 160).astype(np.float32)
made = np.stack([np.rint(done(c.astype(np.float32))).clip(-32768, 32767).astype(np.int16) for c in sound.T], 1)
scipy.io.wavfile.write(sys.argv[2], rate if sys.argv[3] == "filter" else 44100, made)
"""


def jobs(tzm, source, target):
    scipy = [sys.executable, "-c", SCIPY, source, target]
    return {
        "255 taps": {
            "tzm": [tzm, "filter", "-f", "3000", "-t", "255", source, target],
            "SoX": ["sox", source, target, "sinc", "-n", "255", "-3000"],
            "SciPy": [*scipy, "filter"],
        },
        "48 to 44.1 kHz": {
            "tzm": [tzm, "resample", "-r", "44100", source, target],
            "SoX": ["sox", source, target, "rate", "-h", "44100"],
            "SciPy": [*scipy, "resample"],
        },
    }


def timed(command):
    before, begin = resource.getrusage(resource.RUSAGE_CHILDREN), time.perf_counter()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    wall, after = time.perf_counter() - begin, resource.getrusage(resource.RUSAGE_CHILDREN)
    return wall, after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime


def times(tzm, folder, minutes):
    source, target = str(folder / "long.wav"), str(folder / "made.wav")
    subprocess.run(["sox", "-n", "-r", "48000", "-b", "16", "-c", "2", source, "synth", str(60 * minutes), "pinknoise",
                    "vol", "0.3"], check=True)
    print(f"{minutes} minutes of two channels; seconds by the clock, of the processors\n")
    print("| Job | tzm | SoX | SciPy |\n|---|---|---|---|")
    for job, programs in jobs(tzm, source, target).items():
        best = {name: (np.inf, np.inf) for name in programs}
        for _ in range(2):
            for name, command in programs.items():
                best[name] = min(best[name], timed(command))
        print(f"| {job} |", " | ".join(f"{wall:.1f}, {work:.1f}" for wall, work in best.values()), "|")


def decibels(amplitude):
    return 20 * np.log10(max(amplitude / 0.5, 1e-8))


def resampled(command, rate, new, hertz, folder):
    """What becomes of 2 s of a sine of amplitude 1/2: its gain, and the rest of the output against it, in dB."""
    t = np.arange(2 * rate) / rate
    (0.5 * np.sin(2 * np.pi * hertz * t)).astype(np.float32).tofile(folder / "in.raw")
    subprocess.run([str(word) for word in command], check=True, stdout=subprocess.DEVNULL)
    made = np.fromfile(folder / "out.raw", np.float32).astype(float)[new // 2:new + new // 2]
    phase = 2 * np.pi * hertz * (np.arange(len(made)) + new // 2) / new
    base = np.stack([np.sin(phase), np.cos(phase)], 1)
    if hertz >= new / 2:
        return -np.inf, decibels(np.sqrt(2 * np.mean(made ** 2)))
    fit = np.linalg.lstsq(base, made, rcond=None)[0]
    rest = np.sqrt(2 * np.mean((made - base @ fit) ** 2))
    return decibels(np.hypot(*fit)), decibels(rest)


def quality(tzm, folder):
    print("\nResampling, in dB: worst gain up to nine tenths of the lower Nyquist frequency; images of tones there; "
          "aliases of tones above it\n")
    print("| Rates | Program | gain | images | aliases |\n|---|---|---|---|---|")
    for rate, new in (48000, 44100), (44100, 48000), (48000, 16000), (44100, 199999):
        low = min(rate, new) / 2
        raw = ["-t", "raw", "-e", "floating-point", "-b", "32", "-c", "1"]
        programs = {
            "tzm": [tzm, "resample", "--raw", "--raw-rate", rate, "--format", "float", "-r", new, folder / "in.raw",
                    folder / "out.raw"],
            "SoX -h": ["sox", *raw, "-r", rate, folder / "in.raw", *raw, folder / "out.raw", "rate", "-h", new],
            "SoX -v": ["sox", *raw, "-r", rate, folder / "in.raw", *raw, folder / "out.raw", "rate", "-v", new],
        }
        for name, command in programs.items():
            inside = [resampled(command, rate, new, low * part, folder) for part in (0.01, 0.21, 0.5, 0.7, 0.85, 0.9)]
            gain = max((gain for gain, _ in inside), key=abs)
            images = max(rest for _, rest in inside)
            above = [low * part for part in (1.001, 1.01, 1.05, 1.2, 2, 2.7) if low * part < rate / 2]
            aliases = [f"{max(resampled(command, rate, new, h, folder)[1] for h in above):.0f}"] if above else ["-"]
            print(f"| {rate} to {new} | {name} | {gain:.4f} | {images:.0f} | {aliases[0]} |")


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    with tempfile.TemporaryDirectory() as name:
        times(sys.argv[1], pathlib.Path(name), int(sys.argv[2]) if len(sys.argv) > 2 else 60)
        quality(sys.argv[1], pathlib.Path(name))


main()
