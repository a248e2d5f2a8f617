#!/usr/bin/python3
"""Prints, for support.cpp, an operation of every name on states that hands its arguments on.   others.py SOURCE_DIR"""
import pathlib
import sys

import generate

for number, operation in enumerate(generate.read(pathlib.Path(sys.argv[1]))[2]):
    declared = ", ".join(f"{'const ' * a.const}{a.type}{'*' * a.pointer} {a.name}" for a in operation.arguments)
    given = ", ".join(f"(void*){'' if a.pointer else '&'}{a.name}" for a in operation.arguments)
    print(f"OrvaStatus {operation.name}({declared}) {{ void* p[] = {{{given}}}; return other({number}, p); }}")
