"""FIR filters beside SciPy's lfilter and upfirdn and beside liquid-dsp's filters on blocks."""
import ctypes
import sys

import numpy
from scipy import signal

TAPS = (16, 64, 256, 1024)
LENGTHS = (1024, 8192)  # a block of a stream, and one for which the route is chosen by the number of taps
OUTPUTS = 8192
RATES = ((1, 4), (4, 1), (3, 2), (160, 147))
SINGLE_RATE = (  # sample type, tap type, Init and run of ours, liquid's suffix
    (numpy.float32, numpy.float32, "_32f", "_32f", "rrrf"),
    (numpy.complex64, numpy.float32, "32f_32fc", "32f_32fc", "crcf"),
    (numpy.complex64, numpy.complex64, "_32fc", "_32fc", "cccf"),
    (numpy.float64, numpy.float64, "_64f", "_64f", None),
    (numpy.complex128, numpy.complex128, "_64fc", "_64fc", None),
)

try:
    liquid = ctypes.CDLL("libliquid.so")
except OSError:
    sys.exit("fir.py: liquid-dsp is missing: install libliquid-dev")


def address(array):
    return ctypes.c_void_p(array.ctypes.data)


def make(kind, *arguments):
    """An object of liquid's; integers are its unsigned ones."""
    create = getattr(liquid, kind + "_create")
    create.restype = ctypes.c_void_p
    values = [address(value) if isinstance(value, numpy.ndarray) else ctypes.c_uint(value) for value in arguments]
    return ctypes.c_void_p(create(*values))


def execute(kind, made, *arguments):
    function = getattr(liquid, kind)
    values = [made] + [address(value) if isinstance(value, numpy.ndarray) else ctypes.c_uint(value)
                       for value in arguments]

    def call():
        function(*values)

    call.arrays = arguments
    return call


def check(name, dst, expected):
    if not numpy.allclose(dst, expected, rtol=1e-3, atol=1e-3):
        sys.exit(f"fir.py: {name} does not filter as SciPy does")


def noise(kind, length):
    random = numpy.random.default_rng(length)
    values = random.uniform(-1, 1, length)
    if numpy.issubdtype(kind, numpy.complexfloating):
        values = values + 1j * random.uniform(-1, 1, length)
    return values.astype(kind)


def by_blocks(kind, made, src, dst, length):
    """liquid's filter by FFT takes blocks of one length."""
    calls = [execute(kind, made, src[at:at + length], dst[at:at + length]) for at in range(0, len(src), length)]

    def call():
        for each in calls:
            each()

    return call


def single_rate(tzm):
    for kind, tap_kind, init, run, suffix in SINGLE_RATE:
        for length in LENGTHS:
            for count in TAPS:
                name = "ORVAS_FIRSR" + run
                src, taps, line = noise(kind, length), noise(tap_kind, count), numpy.zeros(count, kind)

                def ours(algorithm):
                    state = ctypes.c_void_p()
                    tzm.prepare("ORVAS_FIRSRInit" + init, taps, count, length, algorithm, ctypes.byref(state))()
                    return tzm.prepare(name, src, dst, length, state, line, line)

                dst, theirs = numpy.empty_like(src), numpy.empty_like(src)
                calls = {"tzm": ours(0), "lfilter": lambda taps=taps, src=src: signal.lfilter(taps, 1, src)}
                by_fft = count > 64
                if by_fft:
                    calls["tzm_fft"] = ours(2)
                if suffix:
                    made = make("firfilt_" + suffix, taps, count)
                    calls["liquid"] = execute(f"firfilt_{suffix}_execute_block", made, src, length, theirs)
                    if by_fft:
                        block = min(length, 4 * count)
                        made = make("fftfilt_" + suffix, taps, count, block)
                        calls["liquid_fft"] = by_blocks(f"fftfilt_{suffix}_execute", made, src, theirs, block)
                expected = calls["lfilter"]()
                for who, call in calls.items():
                    if who != "lfilter":
                        line[:] = 0
                        call()
                        check(f"{name} {who}", dst if who.startswith("tzm") else theirs, expected)
                yield f"{name} {count} taps, {length}", length, calls


def multi_rate(tzm):
    kind = numpy.float32
    for up, down in RATES:
        for count in TAPS:
            taps = noise(kind, count * up)  # so many for each output
            blocks = OUTPUTS // up
            src, dst, line = noise(kind, blocks * down), numpy.empty(blocks * up, kind), numpy.zeros(count, kind)
            theirs, state = numpy.empty_like(dst), ctypes.c_void_p()
            tzm.prepare("ORVAS_FIRMRInit_32f", taps, len(taps), up, 0, down, 0, ctypes.byref(state))()
            calls = {"tzm": tzm.prepare("ORVAS_FIRMR_32f", src, dst, blocks, state, line, line),
                     "upfirdn": lambda taps=taps, src=src, up=up, down=down: signal.upfirdn(taps, src, up, down)}
            calls["tzm"]()
            check("ORVAS_FIRMR_32f", dst, calls["upfirdn"]()[:len(dst)])
            if up == 1:
                liquid_kind, made = "firdecim_rrrf", make("firdecim_rrrf", down, taps, len(taps))
            elif down == 1:
                liquid_kind, made = "firinterp_rrrf", make("firinterp_rrrf", up, taps, len(taps))
            else:
                liquid_kind, made = "rresamp_rrrf", make("rresamp_rrrf", up, down, count // 2, taps)
            calls["liquid"] = execute(liquid_kind + "_execute_block", made, src, blocks, theirs)
            yield f"ORVAS_FIRMR_32f {up}/{down} {count} taps an output", len(dst), calls


def cases(tzm):
    yield from single_rate(tzm)
    yield from multi_rate(tzm)
