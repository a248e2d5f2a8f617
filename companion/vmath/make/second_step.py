#!/usr/bin/python3
"""Bounds of the second step of binary32's power and angle (../second_step.h): how far the exact result may be from a
middle, relative to it, for the sign of the computed difference to be wrong. Call: ./second_step.py

Errors are counted in u^2 = 2^-106, as bounds of relative errors of the operations on numbers in two parts (Joldes,
Muller, Popescu: Tight and rigorous error bounds for basic building blocks of double-word arithmetic, 2017): 2 for the
product with a number, 5 for that of two, 3 for the quotient by a number. A sum a + b rounds a low part twice: within
2 |a + b| + |a| + |b|. Terms of higher order in u are covered by a hundredth more.
"""
import math

FP, DW, QUOTIENT, MORE = 2, 5, 3, 1.01


def added(a, b, total):
    return 2 * total + a + b


def logarithm():
    """The relative error of LogOf: of the series, then of its sum with k ln 2."""
    s = (math.sqrt(2) - 1) / (math.sqrt(2) + 1)
    of_s = 5  # of its low part: the product rounds u^2, the difference of two as large 2 u^2, the quotient 2 u^2
    of_square = DW + 2 * of_s
    most, error = 0.0, 0.0  # of the sum so far
    for i in range(43, 0, -2):
        product = most * s * s
        error = error * s * s + product * (DW + of_square) + (QUOTIENT / i if i > 1 else 0)
        most = product + 1 / i
        error += added(product, 1 / i, most)
    omitted = s**44 / 45 * 2**106
    series = error + omitted + DW + of_s  # of 2 artanh s, relative to it: the sum is above 1
    # With k: |k ln 2| is at most twice the result, the series at most as large as it.
    return MORE * (2 * (FP + 1) + series + added(2, 1, 1))


def angle():
    """The absolute errors of the cosine and of sine/m, m below pi. No partial sum from the last term on is above 1."""
    bounds = []
    for more in (-1, 1):
        error = math.pi**46 / math.factorial(46 + (more > 0)) * 2**106  # the first term that is left out
        for i in range(44, 0, -2):
            factor = math.pi**2 / (i * (i + more))
            error = error * factor + factor * (DW + QUOTIENT) + added(factor, 1, 1)
        bounds.append(MORE * error)
    return bounds


log = logarithm()
most = 104  # |y ln x| and |ln m| of results that are numbers of binary32
power = most * (2 * log + FP) + MORE * added(most, most, 0)
print(f"ln x: {log:.1f} u^2 of it; a power is decided beyond 2^{math.log2(power) - 106:.1f} of it")
cosine, sine = angle()
# y cos m - x sin m is R sin(angle - m), and y, |x| are at most R; where the angle is below 1, y and m |x| are at most
# it times R.
large = cosine + math.pi * sine + 2 * (FP + FP) + added(1, 1, 0)
print(f"cos m, sin m/m: {cosine:.1f}, {sine:.1f} u^2; an angle is decided beyond 2^{math.log2(large) - 106:.1f} of it")
