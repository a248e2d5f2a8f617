#!/usr/bin/python3
"""Runs the examples on recordings, holds their results against SciPy's and draws them.   gallery.py PROGRAMS OUT

PROGRAMS is the folder of the built examples, or that of the Python scripts; what they read, what they write and the
pictures go to OUT. A function below is an example: it runs the program, does the same with SciPy, draws, and returns
the largest difference, what is allowed and why.
"""
import io
import pathlib
import subprocess
import sys

try:
    import matplotlib
    import numpy as np
    import scipy.io.wavfile
    import scipy.misc
    import scipy.signal as sig
except ImportError as error:
    sys.exit(f"gallery.py: {error.name} is missing: install python3-numpy, python3-scipy and python3-matplotlib")
matplotlib.use("agg")
import matplotlib.pyplot as plt

SPEECH = pathlib.Path("/usr/share/sounds/alsa/Front_Center.wav")  # a woman says "front, center"
KEYS = "1234567890*#"
DISTANCE = 617  # samples between the two microphones


class Gallery:
    def __init__(self, programs, out):
        self.programs, self.out = pathlib.Path(programs), pathlib.Path(out)
        self.out.mkdir(parents=True, exist_ok=True)
        if not SPEECH.is_file():
            sys.exit(f"gallery.py: no recording at {SPEECH}: install the package alsa-utils")
        self.rate, counts = scipy.io.wavfile.read(SPEECH)
        self.speech = counts / 32768
        # Five minutes of a heart, 360 samples a second, 200 counts of the converter to the millivolt.
        self.heart = np.load(pathlib.Path(scipy.misc.__file__).with_name("ecg.dat"))["ecg"].astype(np.int16) - 1024
        self.make_recordings()

    def make_recordings(self):
        random = np.random.default_rng(1)
        self.write("heart", 360, self.heart)

        t = np.arange(640) / 8000
        rows, columns = (697, 770, 852, 941), (1209, 1336, 1477)
        keypad = []
        for key in KEYS:
            place = "123456789*0#".index(key)
            tones = sum(0.4 * np.sin(2 * np.pi * f * t) for f in (rows[place // 3], columns[place % 3]))
            keypad += [np.zeros(480), tones]
        keypad = np.concatenate(keypad)
        self.keypad = self.write("keypad", 8000, 32768 * (keypad + random.normal(0, 0.02, len(keypad))))

        far = np.concatenate([np.zeros(DISTANCE), 0.3 * self.speech])
        self.far = self.write("far", self.rate, 32768 * (far + random.normal(0, 0.01, len(far))))

        t = np.arange(self.rate // 2) / self.rate  # noise that is 60 dB down after half a second
        echoes = random.normal(0, 0.03, len(t)) * np.exp(-t * np.log(1000) / 0.5)
        echoes[0] = 0.8
        self.room = self.write("room", self.rate, 32768 * echoes)

    def write(self, name, rate, counts):
        counts = np.rint(counts).astype(np.int16)
        scipy.io.wavfile.write(self.out / f"{name}.wav", rate, counts)
        return counts / 32768

    def run(self, name, *recordings, header=1):
        """What the program writes, as columns, and what it says."""
        files = [file if isinstance(file, pathlib.Path) else self.out / f"{file}.wav" for file in recordings]
        script = self.programs / f"{name}.py"
        program = [sys.executable, script] if script.exists() else [self.programs / name]
        done = subprocess.run([*program, *files], capture_output=True, text=True)
        require(done.returncode == 0, done.stderr.strip() or f"ended with {done.returncode}")
        (self.out / f"{name}.csv").write_text(done.stdout)
        return np.loadtxt(io.StringIO(done.stdout), delimiter=",", skiprows=header, ndmin=2).T, done.stderr.strip()


class Failure(Exception):
    """What is wrong with an example's result."""


def require(condition, otherwise):
    if not condition:
        raise Failure(otherwise)


def largest(ours, theirs):
    require(np.shape(ours) == np.shape(theirs), f"the shapes differ: {np.shape(ours)} and {np.shape(theirs)}")
    return float(np.max(np.abs(np.subtract(ours, theirs))))


def times(values, rate):
    return np.arange(len(values)) / rate


def spectrum(gallery, axes):
    (hertz, density), _ = gallery.run("spectrum", SPEECH)
    expected_hertz, expected = sig.welch(gallery.speech, gallery.rate, sig.windows.hann(2048), detrend=False)
    axes.semilogx(hertz[1:], 10 * np.log10(density[1:]))
    axes.set(xlim=(20, gallery.rate / 2), xlabel="Hz", ylabel="dB per Hz")
    require(largest(hertz, expected_hertz) < 1e-4, "the frequencies differ")
    return largest(density, expected) / max(expected), 1e-6, "of the peak; transforms in binary32"


def spectrogram(gallery, axes):
    columns, _ = gallery.run("spectrogram", SPEECH, header=0)
    moments, power = columns[0], columns[1:]
    frame = gallery.rate // 50
    window = sig.windows.hann(frame)
    hertz, expected_moments, expected = sig.spectrogram(gallery.speech, gallery.rate, window, detrend=False,
                                                        noverlap=frame - frame // 4, scaling="spectrum", mode="complex")
    expected = np.abs(expected * np.sum(window)) ** 2  # SciPy divides by the sum of the window
    require(largest(moments, expected_moments) < 1e-6, "the times differ")
    axes.pcolormesh(moments, hertz, 10 * np.log10(power + 1e-9), vmin=-50, shading="nearest", cmap="magma")
    axes.set(ylim=(0, 10000), xlabel="s", ylabel="Hz")
    return largest(power, expected) / expected.max(), 1e-6, "of the peak; transforms in binary32"


def telephone(gallery, axes):
    (said, heard), _ = gallery.run("telephone", SPEECH)
    taps = sig.firwin(513, [300, 3400], pass_zero=False, fs=gallery.rate)
    expected = sig.lfilter(taps, 1, said)
    for samples, label in ((said, "said"), (heard, "heard")):
        axes.magnitude_spectrum(samples / 32768, gallery.rate, scale="dB", label=label, linewidth=0.5)
    axes.set(xscale="log", xlim=(50, 20000), ylim=(-140, -30), xlabel="Hz", ylabel="dB")
    axes.legend()
    return largest(heard, expected), 0.505, "counts of 16 bits; half of one is the rounding to integers"


def resample(gallery, axes):
    (samples,), _ = gallery.run("resample", SPEECH)
    taps = sig.firwin(193, 0.9 / 3, window=("kaiser", 9.0))[:-1]  # Kaiser's filter without its last tap
    expected = sig.upfirdn(taps / sum(taps), gallery.speech, 1, 3)[32:][:-(-len(gallery.speech) // 3)]
    axes.plot(times(gallery.speech, gallery.rate), gallery.speech, ".", label="48000 Hz", markersize=3)
    axes.plot(times(samples, 16000), samples, "o", fillstyle="none", label="16000 Hz", markersize=6)
    axes.set(xlim=(0.95, 0.953), xlabel="s")
    axes.legend()
    return largest(samples, expected), 3e-7, "of full scale; filter and sums in binary32"


def loudness(gallery, axes):
    (before, after), _ = gallery.run("loudness", SPEECH)
    peak = np.max(np.abs(before))
    scale = 2 ** np.floor(np.log2(peak))
    expected = before * np.floor(32767 / peak * scale) / scale
    t = times(before, gallery.rate)
    axes.plot(t, after, label="after", linewidth=0.5)
    axes.plot(t, before, label="before", linewidth=0.5)
    axes.set(xlabel="s", ylabel="counts")
    axes.legend()
    return largest(after, expected), 0.505, "counts of 16 bits; half of one is the rounding to integers"


def envelope(gallery, axes):
    (values,), _ = gallery.run("envelope", SPEECH)
    expected = np.abs(sig.hilbert(gallery.speech))
    t = times(values, gallery.rate)
    axes.plot(t, gallery.speech, label="recording", linewidth=0.5)
    axes.plot(t, values, label="envelope", linewidth=1)
    axes.set(xlim=(0.95, 0.98), xlabel="s")
    axes.legend()
    return largest(values, expected), 1e-6, "of full scale; transforms in binary32"


def delay(gallery, axes):
    (lag, correlation), said = gallery.run("delay", SPEECH, "far")
    lags = sig.correlation_lags(len(gallery.far), len(gallery.speech))
    chosen = np.abs(lags) <= 2400
    expected = sig.correlate(gallery.far, gallery.speech)[chosen] / len(gallery.speech)
    require(lags[chosen][np.argmax(correlation)] == DISTANCE, f"a wrong delay: {said}")
    require(largest(lag, lags[chosen] / gallery.rate) < 1e-8, "the lags differ")
    axes.plot(1e3 * lag, correlation, linewidth=0.8)
    axes.set(title=said, xlabel="ms", ylabel="correlation")
    return largest(correlation, expected) / max(expected), 1e-6, "of the peak; transforms in binary32"


def room(gallery, axes):
    (samples,), _ = gallery.run("room", SPEECH, "room")
    expected = sig.fftconvolve(gallery.speech, gallery.room)
    axes.plot(times(samples, gallery.rate), samples, label="in the room", linewidth=0.5)
    axes.plot(times(gallery.speech, gallery.rate), gallery.speech, label="recording", linewidth=0.5)
    axes.set(xlabel="s")
    axes.legend()
    return largest(samples, expected), 1e-6, "of full scale; transforms in binary32"


def keypad(gallery, axes):
    columns, said = gallery.run("keypad", "keypad")
    require(said == f"pressed: {KEYS}", f"{KEYS} was pressed; {said}")
    tones = (697, 770, 852, 941, 1209, 1336, 1477, 1633)
    blocks = gallery.keypad[:len(gallery.keypad) // 200 * 200].reshape(-1, 200)
    expected = [np.abs(sig.czt(blocks, 1, a=np.exp(2j * np.pi * hertz / 8000))[:, 0] / 100) ** 2 for hertz in tones]
    axes.pcolormesh(columns[0], np.arange(len(tones)), np.sqrt(columns[1:]), shading="nearest", cmap="magma")
    axes.set(yticks=np.arange(len(tones)), yticklabels=tones, title=said, xlabel="s", ylabel="Hz")
    return largest(columns[1:], expected), 1e-6, "of the power of a full sine; sums in binary32"


def heartbeats(gallery, axes):
    (beats, height), _ = gallery.run("heartbeats", "heart")
    heart = gallery.heart / 32768
    swing = sig.oaconvolve(heart, sig.firwin(361, [5, 15], pass_zero=False, fs=360), "same")
    hills = np.sqrt(np.maximum(sig.oaconvolve(swing ** 2, np.ones(55) / 55, "same"), 0))
    tops, _ = sig.find_peaks(hills, height=0.7 * np.mean(hills), distance=108)
    require(largest(beats, tops / 360) < 1e-6, "other beats")
    t = times(heart, 360)
    axes.plot(t, gallery.heart / 200, linewidth=0.8)
    axes.plot(beats, gallery.heart[tops] / 200, "v")
    axes.set(xlim=(20, 35), ylim=(-1.5, 2.7), xlabel="s", ylabel="mV",
             title=f"{len(tops)} beats in {len(t) / 360:.0f} s: {60 * len(tops) * 360 / len(t):.0f} a minute")
    return largest(height, hills[tops]) / max(height), 1e-12, "of the highest; binary64"


def hum(gallery, axes):
    (recorded, cleaned), _ = gallery.run("hum", "heart")
    # Fed a tone over whole periods, an LMS filter is a notch: the same filter in closed form.
    turn, pull = np.cos(2 * np.pi * 60 / 360), 0.0005 * 6
    expected = sig.lfilter([1, -2 * turn, 1], [1, -(2 - pull) * turn, 1 - pull], recorded)
    for samples, label in ((recorded, "recorded"), (cleaned, "cleaned")):
        hertz, density = sig.welch(samples * 32768 / 200, 360, nperseg=3600)
        axes.semilogy(hertz, density, label=label, linewidth=0.8)
    axes.set(xlim=(40, 80), ylim=(1e-7, 1e-3), xlabel="Hz", ylabel="mV² per Hz")
    axes.legend()
    return largest(cleaned, expected) / max(np.abs(recorded)), 1e-6, "of the peak; taps that learn in binary32"


def mains(gallery, axes):
    (hertz, magnitude), said = gallery.run("mains", "heart")
    heart = gallery.heart / 32768
    expected = np.abs(sig.zoom_fft(heart * sig.windows.hann(len(heart)), [59.9, 60.1], 1001, fs=360, endpoint=True))
    require(largest(hertz, np.linspace(59.9, 60.1, 1001)) < 1e-6, "the frequencies differ")
    axes.plot(hertz, magnitude)
    axes.set(title=said, xlabel="Hz")
    return largest(magnitude, expected) / max(expected), 1e-10, "of the peak; powers by recurrence over 108000 samples"


def artifacts(gallery, axes):
    (start, rows, mean, plain), _ = gallery.run("artifacts", "heart")
    slipped = np.convolve(np.abs(gallery.heart) > 520, np.ones(720))[360:][:len(gallery.heart)] > 0
    expected = np.ma.array(gallery.heart, mask=slipped).reshape(-1, 3600)
    require(np.array_equal(rows, expected.count(axis=1)), "other rows are null")
    axes.plot(times(gallery.heart, 360), gallery.heart / 200, color="lightgray", linewidth=0.5, label="recording")
    axes.step(start, plain / 200, where="post", label="mean of all")
    axes.step(start, mean / 200, where="post", label="without artifacts")
    axes.set(xlim=(0, 290), xlabel="s", ylabel="mV")
    axes.legend(loc="upper right")
    difference = largest([mean, plain], [expected.mean(axis=1), expected.data.mean(axis=1)])
    return difference, 0, "since sums of integers are exact"


EXAMPLES = (spectrum, spectrogram, telephone, resample, loudness, envelope, delay, room, keypad, heartbeats, hum, mains,
            artifacts)


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: gallery.py PROGRAMS OUT")
    gallery = Gallery(*sys.argv[1:])
    failed = []
    for example in EXAMPLES:
        name = example.__name__
        figure, axes = plt.subplots(figsize=(8, 3), layout="constrained")
        try:
            difference, allowed, reason = example(gallery, axes)
            print(f"{name}: largest difference {difference:.3g} (allowed {allowed:g} {reason})")
            require(difference <= allowed, "too far from SciPy")
            figure.savefig(gallery.out / f"{name}.png", dpi=100, metadata={"Software": None})
        except (Failure, OSError) as failure:
            failed.append(f"{name}: {failure}")
        plt.close(figure)
    if failed:
        sys.exit("\n".join(f"gallery.py: {line}" for line in failed))


main()
