#!/usr/bin/python3
"""day.py [--hours H] [--workers W] [RECORDING]: the spectrum of a day of sound, a recording of one channel or a made-up
hum in noise, and the sums of a table's columns; neither is ever whole in memory. The same bits for any number of
workers."""
import argparse
import time

import dask
import dask.array as da
import numpy as np
import signal_tzm as tz
import signal_tzm.dask as tzd
from dask.diagnostics import ProgressBar
from dask.distributed import Client, LocalCluster, progress

RATE, CHUNK = 8000, 1 << 22


def chunk(kind, size, start):
    """Samples of a made-up signal or column: they depend on their place alone."""
    random = np.random.default_rng(start)
    if kind == "sound":
        phase = np.float32(2 * np.pi * (start * 50 % RATE) / RATE)
        return tz.tone(size, 0.1, 50 / RATE, phase=phase, dtype="f4") + random.standard_normal(size, dtype="f4")
    return random.integers(-1000, 1000, size)


def made_up(kind, n, dtype):
    parts = [(min(CHUNK, n - at), at) for at in range(0, n, CHUNK)]
    return da.concatenate([da.from_delayed(dask.delayed(chunk)(kind, *part), part[:1], dtype) for part in parts])


def main():
    options = argparse.ArgumentParser(description=__doc__)
    options.add_argument("--hours", type=float, default=24)
    options.add_argument("--workers", type=int, default=0, help="processes; 0 for threads of this one")
    options.add_argument("recording", nargs="?")
    options = options.parse_args()
    if not 1e-3 < options.hours < 1e6 or not 0 <= options.workers < 1000:
        raise SystemExit("day.py: --hours must lie between 0.001 and 1000000, --workers between 0 and 999")

    x = tzd.sound(options.recording) if options.recording else made_up("sound", int(3600 * RATE * options.hours), "f4")
    rate = tz.blocks(options.recording).rate if options.recording else RATE
    window = np.hanning(4096).astype("f4")
    columns = [made_up("column", x.shape[0] // 4, "i8") + k for k in range(2)]
    jobs = [tzd.pwelch(x, window, segments=2048), *map(tzd.agg_sum, columns)]
    start = time.monotonic()
    if options.workers:
        with LocalCluster(n_workers=options.workers, threads_per_worker=1, dashboard_address=None) as cluster:
            with Client(cluster):
                start = time.monotonic()  # when the workers are there
                running = dask.persist(*jobs)
                progress(running, notebook=False)
                density, *sums = dask.compute(*running)
                seconds = time.monotonic() - start
    else:
        with ProgressBar():
            density, *sums = dask.compute(*jobs)
        seconds = time.monotonic() - start
    peak = density[1:].argmax() + 1
    print(f"\n{x.nbytes / 1e9:.1f} GB of sound: strongest at {peak * rate / 4096:.1f} Hz; "
          f"columns {[total for total, _ in sums]}; "
          f"{seconds:.1f} s, bits of the peak {density[peak].tobytes().hex()}")


if __name__ == "__main__":
    main()
