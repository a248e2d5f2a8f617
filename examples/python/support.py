"""What the examples share: reading the recordings that a program is given, writing columns of numbers."""
import sys

import numpy as np
import signal_tzm as tz


def read(index=1, dtype=np.float32):
    """The samples of a recording of one channel, the program's argument `index`, and its rate."""
    if index >= len(sys.argv):
        sys.exit(f"usage: {sys.argv[0]} RECORDING ...")
    try:
        samples, rate = tz.read(sys.argv[index], dtype=dtype)
    except (OSError, ValueError, TypeError) as error:
        sys.exit(str(error))
    if samples.ndim != 1:
        sys.exit(f"{sys.argv[index]}: not a recording of one channel")
    return samples, rate


def write(header, *columns):
    """Comma-separated values on standard output."""
    try:
        np.savetxt(sys.stdout, np.column_stack(columns), "%.17g", ",", header=header, comments="")
    except BrokenPipeError:  # as of `| head`
        sys.stderr.close()
