#!/usr/bin/env python3
"""Makes the table of a page in docs/performance.   page.py BENCH.json LIBRARY OPERATION ...

BENCH.json is made by tzm_bench --benchmark_out with the operations and memcpy, LIBRARY is an AArch64 build. Each
OPERATION gives a row: its time as a multiple of copying as many bytes, in the L1 cache (the slowest of the scales) and
in memory, and the cycles an element of the slowest hot loop on an AArch64 core (cycles.py).
"""
import sys

import cycles
import report


def main():
    if len(sys.argv) < 4:
        sys.exit("usage: page.py BENCH.json LIBRARY OPERATION ...")
    rates = {}
    for run in report.read_runs(sys.argv[1]):  # the best of the repetitions
        rates[run["name"]] = max(run.get("bytes_per_second", 0), rates.get(run["name"], 0))
    if not {"memcpy/L1", "memcpy/memory"} <= rates.keys():
        sys.exit(f"page.py: {sys.argv[1]} has no runs of memcpy to compare with")
    functions = cycles.disassemble(sys.argv[2])
    print("| Operation | Copies, L1 | Copies, memory | Cycles an element |\n|---|---|---|---|")
    for operation in sys.argv[3:]:
        if operation not in functions or f"{operation}/memory" not in rates:
            sys.exit(f"page.py: {operation} is not in {sys.argv[1]} and {sys.argv[2]}")
        copies = [max(rates[f"memcpy/{size}"] / rate for name, rate in rates.items()
                      if name.startswith(f"{operation}/{size}")) for size in ("L1", "memory")]
        loops = cycles.hot_loops(functions, operation)
        turn = f"{max(turn / elements for elements, _, turn in loops):.2f}" if loops else "companion"
        print(f"| {operation.removeprefix('ORVAS_')} | {copies[0]:.1f} | {copies[1]:.1f} | {turn} |")


main()
