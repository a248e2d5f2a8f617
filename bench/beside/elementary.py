"""Elementary functions beside NumPy's."""
import numpy


def cases(tzm):
    length = 4096
    for kind, suffix in ((numpy.float32, "32f"), (numpy.float64, "64f")):
        src = numpy.random.default_rng(1).uniform(0.1, 10, length).astype(kind)
        dst = numpy.empty_like(src)
        for member, function in (("Exp", numpy.exp), ("Ln", numpy.log), ("Sin", numpy.sin), ("Cos", numpy.cos)):
            name = f"ORVAS_{member}_{suffix}"
            yield name, length, {
                "tzm": tzm.prepare(name, src, dst, length),
                "numpy": lambda function=function, src=src, dst=dst: function(src, out=dst),
            }
