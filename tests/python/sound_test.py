"""Sound files to arrays and back: every format, the rounding, what is refused."""
import os
import pathlib
import tempfile
import warnings

import numpy as np
import scipy.io.wavfile
import signal_tzm as tz
from case import Case, same

TIES = np.array([0.5, 1.5, -0.5, -1.5, 2.5, 32767.5, -32768.5, 1e6, 7, -7])


class Sound(Case):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def test_there_and_back(self):
        for dtype in (np.int16, np.int32, np.float32, np.float64):
            x = np.arange(-3000, 3000).reshape(2, 3000).astype(dtype)
            for name, samples in (("mono.wav", x[0]), ("stereo.aiff", x), ("long.w64", x)):
                tz.write(self.folder / name, samples, 8000)
                back, rate = tz.read(self.folder / name, dtype=dtype)
                self.assertEqual((rate, back.dtype), (8000, dtype))
                same(back, samples)
                same(np.concatenate(list(tz.blocks(self.folder / name, 777, dtype=dtype)), axis=-1), samples)
        self.assertEqual(sorted(os.listdir(self.folder)), ["long.w64", "mono.wav", "stereo.aiff"])

    def test_rounding(self):
        """To nearest, ties to even, saturated, for both floating types; the integers are those SciPy reads."""
        for dtype in (np.float32, np.float64):
            tz.write(self.folder / "x.wav", (TIES / 32768).astype(dtype), 8000, format="PCM_16")
            expected = [0, 2, 0, -2, 2, 32767, -32768, 32767, 7, -7]
            self.assertEqual(scipy.io.wavfile.read(self.folder / "x.wav")[1].tolist(), expected)
            self.assertEqual(tz.read(self.folder / "x.wav", dtype=np.int16)[0].tolist(), expected)
            self.assertEqual((tz.read(self.folder / "x.wav")[0] * 32768).tolist(), expected)
        for format, bits in (("PCM_U8", 8), ("PCM_S8", 8), ("PCM_24", 24), ("PCM_32", 32)):
            name = self.folder / ("x.aiff" if format == "PCM_S8" else "x.wav")
            tz.write(name, TIES / 2.0**(bits - 1), 8000, format=format)
            expected = np.rint(TIES).clip(-2.0**(bits - 1), 2.0**(bits - 1) - 1)
            same(tz.read(name, dtype=np.float64)[0] * 2.0**(bits - 1), expected)

    def test_refusals(self):
        good = self.folder / "good.wav"
        tz.write(good, np.ones(9, np.float32), 8000)
        before = good.read_bytes()
        self.refuses(
            (lambda: tz.read(self.folder / "none.wav"), FileNotFoundError, "none.wav"),
            (lambda: tz.read(self.folder), IsADirectoryError, ""),
            (lambda: tz.read(__file__), OSError, "sound_test.py: "),
            (lambda: tz.read(good, dtype=np.int16), TypeError, "do not fit int16"),
            (lambda: tz.read(good, dtype=np.int8), TypeError, "not int8"),
            (lambda: tz.blocks(good, 0), ValueError, "1 or more"),
            (lambda: tz.write(good, np.ones(9, np.int16), 8000, format="FLOAT"), TypeError, "in silence"),
            (lambda: tz.write(good, np.full(9, np.nan), 8000, format="PCM_16"), ValueError, "not finite"),
            (lambda: tz.write(good, np.ones((2, 3, 4)), 8000), ValueError, r"shape \(2, 3, 4\)"),
            (lambda: tz.write(good, np.ones(9), 8000, format="MP3"), ValueError, "no format MP3"),
            (lambda: tz.write(good, np.ones(9), 0), ValueError, "rate must be 1 or more, not 0"),
            (lambda: tz.write(self.folder / "x.flac", np.ones(9), 8000, format="FLOAT"), ValueError, "of FLOAT"),
            (lambda: tz.write(self.folder / "x.mp9", np.ones(9), 8000), ValueError, "must end in"),
            (lambda: tz.write("/nowhere/x.wav", np.ones(9), 8000), FileNotFoundError, "/nowhere/x.wav"))
        self.assertEqual(good.read_bytes(), before)
        self.assertEqual(os.listdir(self.folder), ["good.wav"])

    def test_what_was_there(self):
        """A file that is replaced keeps its mode, and a link stays one."""
        private, link = self.folder / "private.wav", self.folder / "link.wav"
        private.touch(0o600)
        link.symlink_to(private)
        tz.write(link, np.ones(9), 8000)
        self.assertEqual((link.is_symlink(), private.stat().st_mode & 0o777, tz.read(private)[1]), (True, 0o600, 8000))

    def test_cut_off(self):
        """What is there is read, and how much is missing told; the size 0xffffffff of a stream promises nothing."""
        for name in ("x.wav", "x.aiff", "x.au", "x.w64", "x.rf64", "x.flac"):
            path = self.folder / name
            tz.write(path, np.sin(np.arange(20000, dtype=np.float32) / 9), 8000, format="PCM_16")
            whole, (all_of_it, _) = path.read_bytes(), tz.read(path)
            path.write_bytes(whole[:9000])
            with self.assertWarnsRegex(UserWarning, rf"{name} is cut off: it holds \d+ of the 20000 samples"):
                part, _ = tz.read(path)
            same(part, all_of_it[:part.size])
            if name == "x.wav":
                path.write_bytes(whole[:40] + b"\xff" * 4 + whole[44:9000])
                with warnings.catch_warnings(action="error"):
                    tz.read(path)
