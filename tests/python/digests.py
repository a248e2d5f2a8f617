#!/usr/bin/python3
"""tests/digests.txt through signal_tzm for Python.   digests.py SOURCE_DIR SUPPORT_LIBRARY

The C++ table makes the arrays, guarded, and takes the digests; every call in between is one of a function of the
package, on NumPy arrays that lie over the table's own, or one by the road that all states take.
"""
import ctypes
import math
import pathlib
import sys

import generate
import numpy as np
import signal_tzm as tz
from signal_tzm import _call, _states, _table
from signal_tzm._raw import ffi

TRIED = set()
VALUE = 16  # bytes of an argument in the table
OTHERS = [(name, kinds) for name, (_, kinds) in _table.OTHERS.items()]


def caller(member, arguments):
    """A call of the table, (addresses and values) -> status, by way of the package's function."""
    function = getattr(tz, member.family)
    kept = [(i, a) for i, a in enumerate(arguments) if a.role != "length"]
    at_length = [a.role for a in arguments].index("length")
    types = [_call.DTYPES[a.type] for _, a in kept]

    def call(values):
        read = lambda i, dtype: np.frombuffer(ctypes.string_at(values + VALUE * i, VALUE), dtype, 1)[0]
        n = int(read(at_length, np.int32))

        def array(place):
            size = n if kept[place][1].role in ("source", "mask", "dst", "both") else 1
            memory = (ctypes.c_char * (size * types[place].itemsize)).from_address(int(read(kept[place][0], np.int64)))
            return np.frombuffer(memory, types[place])

        arrays = {place: array(place) for place, (_, a) in enumerate(kept) if a.pointer}
        given = [arrays[place] for place in member.sources + member.masks] or [n]
        optional = {}
        for place in member.constants + member.scales:
            value = arrays[place][0] if place in arrays else read(kept[place][0], types[place])
            optional[member.names[place]] = value if types[place].kind in "fcV" else int(value)
        outputs = [arrays[place] for place in member.outputs]
        if not member.reduces:
            optional["out"] = outputs[0] if len(outputs) == 1 else outputs
        if member.kind:
            optional["kind"] = member.kind
        seen = [0]
        with tz.errstate("call", call=lambda status, *_: seen.append(status)):
            results = function(*given, **optional, dtype=member.output_types)
        if member.reduces:
            for output, result in zip(outputs, results if len(outputs) > 1 else [results]):
                output[0] = result
        return seen[-1]

    return call


def call_other(number, arguments):
    """A call on a state: its number among those and the addresses of its arguments."""
    name, kinds = OTHERS[number]
    TRIED.add(name)
    values = [ffi.cast(kind or "void *", arguments[i] or 0) for i, kind in enumerate(kinds)]
    seen = [0]
    try:
        with tz.errstate("call", call=lambda status, *_: seen.append(status)):
            _states._do(name, *[value[0] if kind else value for value, kind in zip(values, kinds)])
    except tz.Error as error:
        seen.append(error.status)
    return seen[-1]


def main(source, library):
    expected = dict(line.split() for line in pathlib.Path(source, "tests/digests.txt").read_text().splitlines())
    through = ctypes.CDLL(library).DigestThrough
    through.restype = ctypes.c_char_p
    callback = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p)
    other = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_int32, ctypes.POINTER(ctypes.c_void_p))(call_other)
    members = {m.name: m for family in _call.FAMILIES.values() for m in family.members}
    members |= {m.twin.name: m.twin for m in members.values() if m.twin}
    calls = {row.name: callback(caller(members[row.name], row.arguments))
             for row in generate.read(pathlib.Path(source))[1]}
    digests = {name: through(name.encode(), calls.get(name), other).decode() for name in expected}
    different = [name for name, digest in digests.items() if digest not in ("", expected[name])]
    # The bits of a matrix product are the CBLAS's own, two names release all resamplers, and the operations of
    # companion.h have no functions here.
    companion = pathlib.Path(source, "include/signal_tzm/companion.h").read_text()
    untried = {name for name, _ in OTHERS if "MMul" not in name and "Release" not in name} - TRIED
    untried |= {name for name, digest in digests.items() if not digest and f" {name}(" not in companion}
    print(f"{sum(map(bool, digests.values()))} digests, different: {' '.join(different) or 'none'}; "
          f"not called: {' '.join(untried) or 'none'}")
    return bool(different or untried)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
