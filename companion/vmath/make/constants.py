#!/usr/bin/python3
"""Makes ../constants.h: the polynomials (by Sollya) and the tables (by mpmath) of the vector mathematics.

Packages: sollya python3-mpmath python3-numpy. Call: ./constants.py > ../constants.h
The bound that stands beside a polynomial is Sollya's, of the difference from its function over its interval.
"""
import math
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


def value32(b):
    return struct.unpack("<f", struct.pack("<I", b))[0]


def single(x):
    return float(np.float32(float(x)))


def parts(x, count, number=float):
    """x as a sum of `count` numbers, each the rest rounded."""
    result = []
    for _ in range(count):
        result.append(number(x))
        x -= mp.mpf(result[-1])
    return result


def rounded(x, fraction_bits):
    return mp.nint(mp.ldexp(x, fraction_bits)) / mp.mpf(2) ** fraction_bits


def text(x):
    return f"0x{x:016x}" if isinstance(x, int) else x.hex() if bits(x) else "0"


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


def table(name, columns, comment, kind="Table", size=()):
    print(f"// {comment}")
    size = f"<{', '.join(map(str, size or (len(columns), len(columns[0]))))}>"
    print(f"inline constexpr {kind}{size} {name} = {{{{")
    for column in columns:
        line = "    {"
        for item in (text(v) + ", " for v in column):
            if len(line) + len(item) > 118:
                print(line.rstrip())
                line = "     "
            line += item
        print(line.rstrip(", ") + "},")
    print("}};")


# name, type, function, first and last power of the polynomial, interval, comment
POLYNOMIALS = [
    ("kExpPoly32", "float", "(exp(x) - 1 - x)/x^2", 0, 2, "[-log(2)/32 - 1b-12, log(2)/32 + 1b-12]",
     "e^x = 1 + x + x^2 p(x)"),
    ("kExpPoly", "double", "exp(x) - 1 - x", 2, 7, "[-log(2)/32 - 1b-20, log(2)/32 + 1b-20]", "e^x = 1 + x + x^2 p(x)"),
    ("kLogPoly32", "float", " + ".join(f"(-1)^{k + 1}*x^{k - 3}/{k}" for k in range(3, 24)), 0, 5, "[-1/16, 1/16]",
     "ln(1 + x) = x - x^2/2 + x^3 p(x)"),
    ("kLogPoly", "double", "(log1p(x) - x)/x", 1, 9, "[-1/32.2, 1/32.2]", "ln(1 + x) = x + x^2 p(x), relative to x"),
    ("kLog10Poly", "double", "log1p(x)/log(10)/x - {log10e}", 0, 9, "[-1/32.2, 1/32.2]",
     "log10(1 + x) = x (kLog10E + p(x)), relative to x"),
    ("kPowLogPoly", "double", " + ".join(f"(-1)^{k + 1}*x^{k - 3}/{k}" for k in range(4, 40)), 1, 9,
     "[-1/32.2, 1/32.2]", "ln(1 + x) = x - x^2/2 + x^3/3 + x^4 p(x), relative to x^3"),
    ("kSinPoly32", "double", "sin(sqrt(x))/sqrt(x)", 0, 5, "[1b-30, (pi/2)^2*1.001]", "sin x = x p(x^2), |x| < pi/2"),
    ("kSinPoly", "double", "sin(sqrt(x))/sqrt(x) - 1", 1, 4, "[1b-30, (pi/32*1.00001)^2]",
     "sin x = x + x^3 p(x^2) of the remainder, relative to x"),
    ("kMinusCosPoly", "double", "1 - cos(sqrt(x))", 1, 4, "[1b-30, (pi/32*1.00001)^2]",
     "cos x = 1 - x^2 p(x^2) of the same"),
    ("kTanSinPoly32", "double", "sin(sqrt(x))/sqrt(x)", 0, 4, "[1b-30, (pi/4)^2*1.001]",
     "sin x = x p(x^2), |x| < pi/4"),
    ("kTanCosPoly32", "double", "cos(sqrt(x))", 0, 5, "[1b-30, (pi/4)^2*1.001]", "cos x = p(x^2), |x| < pi/4"),
    ("kTanPoly", "double", "tan(sqrt(x))/sqrt(x) - 1", 1, 5, "[1b-30, (pi/32*1.00001)^2]",
     "tan x = x + x^3 p(x^2) of the same, relative to x"),
    ("kAtanPoly32", "double", "atan(sqrt(x))/sqrt(x)", 0, 8, "[1b-30, (sqrt(2) - 1)^2*1.0001]",
     "arctan x = x p(x^2), |x| < sqrt(2) - 1, relative to x"),
    ("kAtanPoly", "double", "atan(sqrt(x))/sqrt(x) - 1", 1, 5, "[1b-30, {atan_most}^2]",
     "arctan x = x + x^3 p(x^2) of the remainder, relative to x"),
]


def polynomials(**constants):
    program = "prec = 400!;\n"
    for _, kind, function, first, last, interval, _ in POLYNOMIALS:
        function, interval = function.format(**constants), interval.format(**constants)
        powers = "[|" + ", ".join(map(str, range(first, last + 1))) + "|]"
        program += f"""
f = {function}; monomials = {powers}; interval = {interval};
formats = [||]; for i from {first} to {last} do formats = formats :. {'D' if kind == 'double' else 'SG'};
p = fpminimax(f, monomials, formats, interval, absolute);
display = decimal!; print(round(log2(dirtyinfnorm(p - f, interval)), 12, RN)); display = hexadecimal!;
for i from {first} to {last} do {{ print(coeff(p, i)); }};
"""
    lines = subprocess.run(["sollya"], input=program + "quit;", capture_output=True, text=True, check=True).stdout
    lines = iter(lines.split())
    for name, kind, _, first, last, _, comment in POLYNOMIALS:
        bound = float(next(lines))
        coefficients = [float.fromhex(next(lines)) for _ in range(first, last + 1)]
        array(kind, name, "[]", coefficients, f"{comment}: within 2^{bound:.1f}")


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


def log_table32():
    """Eight intervals of [kLogStart32, 2 kLogStart32): 1/c in sixteenths below 1, in 32nds above, so that the largest
    remainder, which is below 1/16, is least."""
    columns = [[], [], []]
    for i in range(8):
        low, high = (value32(LOG_START_32 + ((i + end) << 20)) for end in (0, 1))
        unit = 16 if high <= 1 else 32
        inverse = 1.0 if low < 1 < high else min(
            (max(abs(low * n / unit - 1), abs(high * n / unit - 1)), n / unit) for n in range(1, 2 * unit))[1]
        exact = -mp.log(mp.mpf(inverse))
        for column, x in zip(columns, (inverse, float(rounded(exact, 16)), single(exact - rounded(exact, 16)))):
            column.append(x)
    return columns


def turn_table():
    """The sines of k pi/16, the first one negative so that its sum with a zero keeps the sign, and what their rounding
    lost: less what that of the cosine lost times half the largest remainder, on the side of the smaller results."""
    sines, rests = [], []
    for k in range(24):
        sine, sine_rest = parts(mp.sin(k * PI / 16), 2) if k % 8 else (float(mp.nint(mp.sin(k * PI / 16))), 0.0)
        cosine, cosine_rest = parts(mp.cos(k * PI / 16), 2) if k % 8 else (1.0, 0.0)
        sines.append(sine if k else -0.0)
        rests.append(float(sine_rest - math.copysign(float(PI / 64), sine * cosine) * cosine_rest))
    return [column[first:first + 16] for column in (sines, rests) for first in (0, 8)]


def tangent_table():
    """Numbers a and b with a/b = tan(k pi/16): of the b in [1, 2) of 20 fraction bits the one whose a lies nearest to
    a number. The a of 0 is negative, so that the sum with a zero keeps its sign."""
    a, b = [-0.0], [1.0]
    candidates = 1 + np.arange(2**20, dtype=np.longdouble) * np.longdouble(2.0**-20)
    for k in range(1, 8):
        high, low = parts(mp.tan(k * PI / 16), 2)
        product, unit = candidates * np.longdouble(high), 2.0 ** (np.frexp(candidates * high)[1] - 53)
        units, rest = product / unit, candidates * low / unit
        best = float(candidates[np.argmin(np.abs((units - np.rint(units)) + rest))])
        a.append(float(best * mp.tan(k * PI / 16)))
        b.append(best)
    return a + [1.0] + [-x for x in a[:0:-1]], b + [0.0] + b[:0:-1]


def short(x):
    """x in 21 bits, so that the last 32 of binary64 are zero."""
    return float(rounded(x, 21 - mp.frexp(x)[1])) if x else 0.0


def atan_table():
    """Of ratios between 1/16 and 16 by the bits of a number near to them, the exponent and two more, which are modulo
    32 the entry's number: the tangent of the middle angle and its arctangent, the first two parts together of 42
    fraction bits. Zero for the first, a huge one for the last. And the largest remainder (q - c)/(1 + c q)."""
    columns, most = [[0.0] * 32 for _ in range(4)], 0
    first, last = bits(1 / 16) >> 50, (bits(16.0) >> 50) - 1
    for i in range(first, last + 1):
        # The number has the bits of n, less those of d, plus those of 1: the ratio n/d is furthest from it where d's
        # fraction is zero or just wrong.
        low, high = [], []
        for d in np.linspace(1, 2, 257)[:-1]:
            low.append(value((i << 50) + bits(d) - bits(1.0)) / d)
            high.append(value((i + 1 << 50) + bits(d) - bits(1.0)) / d)
        a, b = mp.atan(min(low)) if i > first else mp.mpf(0), mp.atan(max(high)) if i < last else PI / 2
        c = 0.0 if i == first else 2.0**600 if i == last else short(mp.tan((a + b) / 2))
        arc = mp.atan(c)
        most = max(most, mp.tan(b - arc), mp.tan(arc - a))
        parts_of_arc = [short(arc)]
        parts_of_arc.append(short(rounded(arc - parts_of_arc[0], 42)))
        parts_of_arc.append(short(arc - parts_of_arc[0] - parts_of_arc[1]))
        for column, x in zip(columns, [c, *parts_of_arc]):
            column[i % 32] = x
    return columns, float(most * 1.001)


def exp_table32():
    """Of the numbers next to 2^(i/16) the one whose logarithm differs from ln 2 i/16 by most nearly a number of 8 bits,
    and that difference, with EXP_ERROR_32 added."""
    columns = [[], []]
    for i in range(16):
        exact = mp.mpf(2) ** (mp.mpf(i) / 16)
        candidates = []
        for units in range(-64, 65) if i else [0]:
            root = mp.mpf(single(exact)) + units * mp.mpf(2) ** -23
            difference = mp.log(exact / root) + EXP_ERROR_32
            short = rounded(difference, 8 - mp.frexp(difference)[1])
            candidates.append((abs(short - difference), float(root), float(short)))
        for column, x in zip(columns, min(candidates)[1:]):
            column.append(x)
    return columns


EXP_ERROR_32 = 1.625 * 2.0**-34
LOG_START = bits(1.0) - round((9 + 2 / 3) * 2**48)
LOG_START_32 = 0x3f800000 - round((4 + 11 / 16) * 2**20)
log10e = float(1 / mp.log(10))

print("// Made by make/constants.py, with Sollya and mpmath.")
print("#pragma once\n")
print('#include "lanes.h"\n')
print("namespace vmath {\n")

print("// ---- Exponential: x = (k + f)/16 ln 2 ----")
hi = [float(mp.mpf(2) ** (mp.mpf(i) / 16)) for i in range(16)]
lo = [float(mp.mpf(2) ** (mp.mpf(i) / 16) / mp.mpf(h) - 1) for i, h in enumerate(hi)]
roots = [value((bits(h) - (i << 48)) & (2**64 - 1)) for i, h in enumerate(hi)]
table("kExpTable", [roots, lo],
      "2^(i/16), less i in the bits that k is added to, and what its rounding lost, relative to it")
table("kExpTable32", exp_table32(),
      "numbers near to 2^(i/16), and ln 2 i/16 less their logarithms and with kExpError32, which make the result "
      "greater", "Table32")
print(f"inline constexpr float kExpError32 = {EXP_ERROR_32.hex()};")
constant("kSixteenByLn2", float(16 / LN2))
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
array("float", "kLog10E32", "[]", parts(1 / mp.log(10), 2, single), "the same of binary32, in parts")
array("float", "kLn2Of32", "[]", parts(LN2, 2, single), "ln 2 of binary32, in parts")
print(f"inline constexpr uint32_t kLogStart32 = 0x{LOG_START_32:x};  // the bits of the least x of k = 0")
array("float", "kLn2Of32Short", "[]", [float(rounded(LN2, 16)), single(LN2 - rounded(LN2, 16))],
      "its first 16 fraction bits, so that k times it is exact, and the rest")
table("kLogTable32", log_table32(), "1/c of so few bits that r is exact, ln c to 16 fraction bits, and the rest",
      "Table32")
array("double", "kThird", "[]", parts(mp.mpf(1) / 3, 2), "1/3, in parts")

print("\n// ---- Sine, cosine, tangent: x = k pi/16 + r ----")
array("double", "kPi", "[]", parts(PI, 2), "pi, in parts")
array("double", "kHalfPi", "[]", parts(PI / 2, 2), "pi/2, in parts")
pi16 = [float(PI / 16)]
pi16.append(float(rounded(PI / 16 - pi16[0], 87)))
pi16.append(float(PI / 16 - sum(map(mp.mpf, pi16))))
array("double", "kPiBy16Short", "[]", pi16, "pi/16, in parts of which the second has 29 bits")
array("double", "kPiBy16", "[]", parts(PI / 16, 3), "the same in whole parts")
constant("kByPi", 1 / PI)
table("kTurnTable", turn_table(),
      "of k pi/16 sine, cosine, and what their rounding lost, each with most of what the other's lost",
      size=(4, 16, 32))
table("kTanTable", tangent_table(), "numbers of which the first is tan(k pi/16) times the second")
digits = int(mp.floor(mp.ldexp(2 / PI, 64 * 20)))
array("uint64_t", "kTwoByPiBits", "[]", [0] + [(digits >> (64 * (19 - i))) & (2**64 - 1) for i in range(20)],
      "2/pi, 64 bits in each word, behind a word of zeros")

print("\n// ---- Arctangent ----")
atan, atan_most = atan_table()
table("kAtanTable", atan, f"c and arctan c, in three parts; remainders are below {atan_most:.5f}")
array("double", "kPiShort", "[]", [float(rounded(PI, 43)), float(PI - rounded(PI, 43))],
      "pi to 43 fraction bits, so that its sums with those are exact, and the rest")

print("\n// ---- Polynomials, the coefficient of the least power first ----")
polynomials(log10e=log10e.hex(), atan_most=atan_most)
print("\n}  // namespace vmath")
