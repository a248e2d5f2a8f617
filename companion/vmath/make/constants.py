#!/usr/bin/python3
"""Makes ../constants.h: the polynomials (by Sollya) and the tables (by mpmath) of the vector mathematics.

Packages: sollya python3-mpmath python3-numpy. Call: ./constants.py > ../constants.h
The bound that stands beside a polynomial is Sollya's, of the difference from its function over its interval.
"""
import struct
import subprocess

import mpmath as mp
import numpy as np

mp.mp.prec = 2000
LN2, PI = mp.log(2), mp.pi


def bits(x):
    return struct.unpack("<Q", struct.pack("<d", float(x)))[0]


def value(b):
    return struct.unpack("<d", struct.pack("<Q", b))[0]


def parts(x, count):
    """x as a sum of `count` numbers, each the rest rounded."""
    result = []
    for _ in range(count):
        result.append(float(x))
        x -= mp.mpf(result[-1])
    return result


def rounded(x, fraction_bits):
    return mp.nint(mp.ldexp(x, fraction_bits)) / mp.mpf(2) ** fraction_bits


def text(x):
    return f"0x{x:016x}" if isinstance(x, int) else x.hex() if x else "0"


def constant(name, x, comment=None):
    if comment:
        print(f"// {comment}")
    print(f"inline constexpr double {name} = {text(float(x))};")


def array(kind, name, size, values, comment):
    print(f"// {comment}")
    line = f"inline constexpr {kind} {name}{size} = {{"
    for item in (text(v) + ", " for v in values):
        if len(line) + len(item) > 118:
            print(line.rstrip())
            line = "    "
        line += item
    print(line.rstrip(", ") + "};")


def table(name, columns, comment):
    print(f"// {comment}")
    print(f"inline constexpr Table<{len(columns)}> {name} = {{{{")
    for column in columns:
        line = "    {"
        for item in (text(v) + ", " for v in column):
            if len(line) + len(item) > 118:
                print(line.rstrip())
                line = "     "
            line += item
        print(line.rstrip(", ") + "},")
    print("}};")


# name: function, first and last power of the polynomial, interval, comment
POLYNOMIALS = [
    ("kExp2Poly", "2^(x/16) - 1", 1, 6, "[-1/2 - 1b-16, 1/2 + 1b-16]", "2^(x/16) = 1 + x p(x)"),
    ("kExpPoly", "exp(x) - 1 - x", 2, 7, "[-log(2)/32 - 1b-20, log(2)/32 + 1b-20]", "e^x = 1 + x + x^2 p(x)"),
    ("kLogPoly32", "(log1p(x) - x)/x", 1, 7, "[-1/32.2, 1/32.2]", "ln(1 + x) = x + x^2 p(x), relative to x"),
    ("kLogPoly", "(log1p(x) - x)/x", 1, 9, "[-1/32.2, 1/32.2]", "ln(1 + x) = x + x^2 p(x), relative to x"),
    ("kLog10Poly32", "log1p(x)/log(10)/x - {log10e}", 0, 7, "[-1/32.2, 1/32.2]",
     "log10(1 + x) = x (kLog10E + p(x)), relative to x"),
    ("kLog10Poly", "log1p(x)/log(10)/x - {log10e}", 0, 9, "[-1/32.2, 1/32.2]",
     "log10(1 + x) = x (kLog10E + p(x)), relative to x"),
    ("kPowLogPoly", " + ".join(f"(-1)^{k + 1}*x^{k - 3}/{k}" for k in range(4, 40)), 1, 9, "[-1/32.2, 1/32.2]",
     "ln(1 + x) = x - x^2/2 + x^3/3 + x^4 p(x), relative to x^3"),
    ("kSinPoly32", "sin(sqrt(x))/sqrt(x) - 1", 1, 8, "[1b-30, (pi/2)^2*1.00001]", "sin x = x + x^3 p(x^2), |x| < pi/2"),
    ("kSinPoly", "sin(sqrt(x))/sqrt(x) - 1 + x*{sixth}", 1, 7, "[1b-30, (pi/4)^2*1.00001]",
     "sin x = x - kSixth x^3 + x^3 p(x^2), |x| < pi/4, relative to x"),
    ("kCosPoly", "cos(sqrt(x)) - 1 + x/2", 1, 7, "[1b-30, (pi/4)^2*1.00001]",
     "cos x = 1 - x^2/2 + x^2 p(x^2), |x| < pi/4"),
    ("kAtanPoly32", "atan(sqrt(x))/sqrt(x) - 1", 1, 11, "[1b-30, (sqrt(2) - 1)^2*1.0001]",
     "arctan x = x + x^3 p(x^2), |x| < sqrt(2) - 1, relative to x"),
    ("kAtanPoly", "atan(sqrt(x))/sqrt(x) - 1", 1, 5, "[1b-30, {atan_most}^2]",
     "arctan x = x + x^3 p(x^2) of the remainder, relative to x"),
]


def polynomials(**constants):
    program = "prec = 400!;\n"
    for name, function, first, last, interval, _ in POLYNOMIALS:
        function, interval = function.format(**constants), interval.format(**constants)
        powers = "[|" + ", ".join(map(str, range(first, last + 1))) + "|]"
        program += f"""
f = {function}; monomials = {powers}; interval = {interval};
formats = [||]; for i from {first} to {last} do formats = formats :. D;
p = fpminimax(f, monomials, formats, interval, absolute);
display = decimal!; print(round(log2(dirtyinfnorm(p - f, interval)), 12, RN)); display = hexadecimal!;
for i from {first} to {last} do {{ print(coeff(p, i)); }};
"""
    lines = subprocess.run(["sollya"], input=program + "quit;", capture_output=True, text=True, check=True).stdout
    lines = iter(lines.split())
    for name, _, first, last, _, comment in POLYNOMIALS:
        bound = float(next(lines))
        coefficients = [float.fromhex(next(lines)) for _ in range(first, last + 1)]
        array("double", name, "[]", coefficients, f"{comment}: within 2^{bound:.1f}")


def log_table(unit, fraction_bits):
    """Sixteen intervals of [kLogStart, 2 kLogStart): 1/c of 30 bits, and log c, so near to so many fraction bits
    that the rest does not count beside binary64's last bit; for the one around 1, 1/c = 1. The rest stands behind."""
    inverse, logs, rests = [], [], []
    for i in range(16):
        low, high = value(LOG_START + (i << 48)), value(LOG_START + ((i + 1) << 48))
        if low < 1 < high:
            best = mp.mpf(1)
        else:
            middle = round(2 / (low + high) * 2**30) / 2**30
            candidates = np.longdouble(middle) + np.arange(-2**20, 2**20, dtype=np.longdouble) * np.longdouble(2.0**-30)
            scaled = -np.log(candidates) / np.longdouble(mp.nstr(mp.log(unit), 30)) * np.longdouble(2.0**fraction_bits)
            best = mp.mpf(float(candidates[np.argmin(np.abs(scaled - np.rint(scaled)))]))
        exact = -mp.log(best) / mp.log(unit)
        inverse.append(float(best))
        logs.append(float(rounded(exact, fraction_bits)))
        rests.append(float(exact - rounded(exact, fraction_bits)))
    return inverse, logs, rests


def atan_table():
    """Where log2 of the ratio, taken as the difference of two numbers' bits, lies in [(i - 16)/4, (i - 15)/4): the
    middle of the interval's ends and its arctangent; for i = 0, which holds all below, zero. And the largest
    remainder (q - c)/(1 + c q)."""
    middle, arcs, ends = [0.0], [mp.mpf(0)], []
    for i in range(16):
        # pseudo-logarithms of q = n/d for all d: the extremes are at d = 1 and where d's fraction is just wrong
        low, high = [], []
        for d in np.linspace(1, 2, 257)[:-1]:
            low.append(value(bits(d) + ((i - 16) << 50)) / d)
            high.append(value(bits(d) + ((i - 15) << 50)) / d)
        ends.append((min(low), min(max(high), 1.0)))
    most = ends[0][1]
    for low, high in ends[1:]:
        a, b = mp.atan(low), mp.atan(high)
        c = float(rounded(mp.tan((a + b) / 2), 12))
        middle.append(c)
        most = max(most, float(mp.tan(b - mp.atan(c))), float(mp.tan(mp.atan(c) - a)))
        arcs.append(mp.atan(c))
    return [middle, [float(a) for a in arcs], [float(a - mp.mpf(float(a))) for a in arcs]], most * 1.001


LOG_START = bits(1.0) - round((9 + 2 / 3) * 2**48)
log10e = float(1 / mp.log(10))
sixth = 1 / 6

print("// Made by make/constants.py, with Sollya and mpmath.")
print("#pragma once\n")
print('#include "lanes.h"\n')
print("namespace vmath {\n")

print("// ---- Exponential: x = (k + f)/16 ln 2 ----")
hi = [float(mp.mpf(2) ** (mp.mpf(i) / 16)) for i in range(16)]
lo = [float(mp.mpf(2) ** (mp.mpf(i) / 16) / mp.mpf(h) - 1) for i, h in enumerate(hi)]
roots = [value((bits(h) - (i << 48)) & (2**64 - 1)) for i, h in enumerate(hi)]
table("kExpRoots", [roots], "2^(i/16), less i in the bits that k is added to")
table("kExpTable", [roots, lo], "the same, and what its rounding lost, relative to it")
array("double", "kSixteenByLn2", "[]", parts(16 / LN2, 2), "16/ln 2, in parts")
array("double", "kLn2By16", "[]", parts(LN2 / 16, 2), "ln 2/16, in parts")

print("\n// ---- Logarithm: x = 2^k c (1 + r) ----")
print(f"inline constexpr uint64_t kLogStart = 0x{LOG_START:x};  // the bits of the least x of k = 0")
inverse, logs, rests = log_table(mp.e, 43)
table("kLogTable", [inverse, logs], "1/c and ln c")
table("kLogRest", [rests], "ln c, less its part in kLogTable")
table("kLog10Table", list(log_table(10, 44)[:2]), "1/c and log10 c")
for name, exact, fraction_bits in (("kLn2", LN2, 43), ("kLog10Of2", mp.log(2) / mp.log(10), 44)):
    high = rounded(exact, fraction_bits)
    array("double", name, "[]", [float(high), float(exact - high)],
          f"its first {fraction_bits} fraction bits, so that k times it is exact, and the rest")
array("double", "kLn2InTwo", "[]", parts(LN2, 2), "ln 2, in parts")
constant("kLog10E", log10e)
array("double", "kThird", "[]", parts(mp.mpf(1) / 3, 2), "1/3, in parts")

print("\n// ---- Sine, cosine, tangent: x = k pi/2 + r ----")
array("double", "kPi", "[]", parts(PI, 3), "pi, in parts")
array("double", "kHalfPi", "[]", parts(PI / 2, 3), "pi/2, in parts")
constant("kByPi", 1 / PI)
constant("kTwoByPi", 2 / PI)
constant("kSixth", sixth)
digits = int(mp.floor(mp.ldexp(2 / PI, 64 * 20)))
array("uint64_t", "kTwoByPiBits", "[]", [0] + [(digits >> (64 * (19 - i))) & (2**64 - 1) for i in range(20)],
      "2/pi, 64 bits in each word, behind a word of zeros")

print("\n// ---- Arctangent ----")
atan, atan_most = atan_table()
table("kAtanTable", atan, f"c, arctan c and what its rounding lost; remainders are below {atan_most:.5f}")

print("\n// ---- Polynomials, the coefficient of the least power first ----")
polynomials(log10e=log10e.hex(), sixth=sixth.hex(), atan_most=atan_most)
print("\n}  // namespace vmath")
