"""The operations under their own names: `raw.ORVAS_Mul_16s_S(a, b, out, n, 4.0)` returns the status. Arrays go by
address, None is a null pointer, everything else as cffi takes it (`ffi`, `lib`). Nothing is checked here."""
from typing import Any

import numpy as _np

from ._raw import ffi, lib


def __getattr__(name: str) -> Any:
    function = getattr(lib, name)  # AttributeError for a name that is none
    if not callable(function):
        return function

    def call(*arguments: Any) -> int:
        status: int = function(*[ffi.cast("void *", ffi.from_buffer(a)) if isinstance(a, _np.ndarray) else
                                 ffi.NULL if a is None else a for a in arguments])
        return status

    call.__name__ = call.__qualname__ = name
    call.__doc__ = f"{ffi.typeof(function)}, as its header declares it"
    return call


def __dir__() -> list[str]:
    return dir(lib)
