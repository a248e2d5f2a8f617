#!/usr/bin/env python3
"""Turns the JSON of tzm_bench into a table: nanoseconds a call and an element, and the time as a multiple of
copying the same number of bytes at the same size.   report.py FILE.json"""
import json
import sys

NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def read_runs(path):
    """The single runs in the JSON of tzm_bench, without means and the like."""
    try:
        with open(path) as file:
            runs = json.load(file)["benchmarks"]
    except (OSError, ValueError, KeyError) as error:
        sys.exit(f"{path} is not the output of tzm_bench: {error}")
    return [run for run in runs if run.get("run_type") != "aggregate"]


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: report.py FILE.json  (made by tzm_bench --benchmark_out=FILE.json)")
    runs = read_runs(sys.argv[1])
    copy = {run["name"].split("/")[1]: run["bytes_per_second"] for run in runs if run["name"].startswith("memcpy/")}
    width = max((len(run["name"]) for run in runs), default=0)
    print(f"{'operation':{width}} {'ns/call':>12} {'ns/element':>10} {'GB/s':>8} {'copies':>7}")
    for run in runs:
        items, rate = run.get("items_per_second"), run.get("bytes_per_second")
        yardstick = rate and copy.get(run["name"].split("/")[1])
        columns = [f"{run['cpu_time'] * NANOSECONDS[run['time_unit']]:12.1f}",
                   f"{1e9 / items:10.4f}" if items else f"{'-':>10}",
                   f"{rate / 1e9:8.2f}" if rate else f"{'-':>8}",
                   f"{yardstick / rate:7.2f}" if yardstick else f"{'-':>7}"]
        print(f"{run['name']:{width}}", *columns)


if __name__ == "__main__":
    main()
