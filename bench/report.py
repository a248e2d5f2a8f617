#!/usr/bin/env python3
"""Turns the JSON of tzm_bench into a table: nanoseconds an element, and the time as a multiple of
copying the same number of bytes at the same size.   report.py FILE.json"""
import json
import sys


def read_runs(path):
    """The single runs in the JSON of tzm_bench, without means and the like."""
    try:
        with open(path) as file:
            runs = json.load(file)["benchmarks"]
    except (OSError, ValueError, KeyError) as error:
        sys.exit(f"{path} is not the output of tzm_bench: {error}")
    return [run for run in runs if run.get("run_type") != "aggregate" and "items_per_second" in run]


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: report.py FILE.json  (made by tzm_bench --benchmark_out=FILE.json)")
    runs = read_runs(sys.argv[1])
    copy = {run["name"].split("/")[1]: run["bytes_per_second"] for run in runs if run["name"].startswith("memcpy/")}
    print(f"{'operation':44} {'ns/element':>10} {'GB/s':>8} {'copies':>7}")
    for run in runs:
        yardstick = copy.get(run["name"].split("/")[1])
        ratio = f"{yardstick / run['bytes_per_second']:7.2f}" if yardstick else f"{'-':>7}"
        print(f"{run['name']:44} {1e9 / run['items_per_second']:10.4f} {run['bytes_per_second'] / 1e9:8.2f} {ratio}")


if __name__ == "__main__":
    main()
