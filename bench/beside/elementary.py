"""Elementary functions beside NumPy's and the system's scalar ones; magnitude and phase beside NumPy's."""
import ctypes

import numpy

LENGTH = 16384
FUNCTIONS = {  # member: (NumPy's function, sources)
    "Exp": (numpy.exp, 1),
    "Ln": (numpy.log, 1),
    "Log10": (numpy.log10, 1),
    "Sin": (numpy.sin, 1),
    "Cos": (numpy.cos, 1),
    "Tan": (numpy.tan, 1),
    "Arctan": (numpy.arctan, 1),
    "Arctan2": (numpy.arctan2, 2),
    "Pow": (numpy.power, 2),
}
COMPLEX = {  # member: (NumPy's function, whether its result is complex)
    "Log10": (numpy.log10, True),
    "Sin": (numpy.sin, True),
    "Cos": (numpy.cos, True),
    "Magnitude": (numpy.abs, False),
}


def cases(tzm):
    random = numpy.random.default_rng(1)
    scalars = ctypes.CDLL(tzm.folder / "libtzm_scalar.so")

    def case(member, function, dst, *sources):
        calls = {
            "tzm": tzm.prepare(member, *sources, dst, LENGTH),
            "numpy": lambda: function(*sources, out=dst),
        }
        scalar = getattr(scalars, member.removeprefix("ORVAS_"), None)
        if scalar is not None:
            addresses = [ctypes.c_void_p(array.ctypes.data) for array in (*sources, dst)]
            calls["scalar"] = lambda: scalar(*addresses, LENGTH)
        return member, LENGTH, calls

    for kind, suffix in ((numpy.float32, "32f"), (numpy.float64, "64f")):
        sources = [random.uniform(0.1, 10, LENGTH).astype(kind) for _ in range(2)]
        for name, (function, count) in FUNCTIONS.items():
            yield case(f"ORVAS_{name}_{suffix}", function, numpy.empty(LENGTH, kind), *sources[:count])
        z = (random.normal(size=LENGTH) + 1j * random.normal(size=LENGTH)).astype(numpy.result_type(kind, 1j))
        for name, (function, is_complex) in COMPLEX.items():
            dst = numpy.empty(LENGTH, z.dtype if is_complex else kind)
            yield case(f"ORVAS_{name}_{suffix}c", function, dst, z)

        angle = numpy.empty(LENGTH, kind)
        yield f"ORVAS_Phase_{suffix}c", LENGTH, {
            "tzm": tzm.prepare(f"ORVAS_Phase_{suffix}c", z, angle, LENGTH),
            "numpy": lambda z=z: numpy.angle(z),
        }
        power = numpy.empty(LENGTH, kind)
        yield f"ORVAS_PowerSpectr_{suffix}c", LENGTH, {
            "tzm": tzm.prepare(f"ORVAS_PowerSpectr_{suffix}c", z, power, LENGTH),
            "numpy": lambda z=z: z.real * z.real + z.imag * z.imag,
        }
