# SPDX-License-Identifier: GPL-2.0-or-later
"""Finds and opens liborva.

A call through ``lib`` gives up the interpreter's lock until it returns.
"""
import os
from pathlib import Path
from typing import Any, Tuple

from ._interface import ffi as _ffi

ffi: Any = _ffi

LIBRARY, FOUNDATION = "liborva.so.3", "libkett.so.1"
NEEDED = (3, 7)
NEEDS = "orva needs liborva 3.7 or a later 3"

# Unloading is left to the end of the process: whoever collects what is left there may still destroy handles.
FLAGS = ffi.RTLD_NOW | ffi.RTLD_NODELETE


def place() -> str:
    """The file to open: beside the package, else as ``ORVA_LIBRARY`` says, else as the system's loader finds it."""
    beside = Path(__file__).with_name(LIBRARY)
    return str(beside) if beside.exists() else os.environ.get("ORVA_LIBRARY") or LIBRARY


def version(library: Any) -> Tuple[int, int, int, int]:
    """The four numbers of a library's version."""
    numbers = ffi.new("int32_t[4]")
    library.ORVAVERSION_Number(numbers, numbers + 1, numbers + 2, numbers + 3)
    return numbers[0], numbers[1], numbers[2], numbers[3]


def load(path: str) -> Any:
    """Opens the library and, where it stands beside it, its foundation, which the loader may not find there."""
    foundation = Path(path).with_name(FOUNDATION)
    try:
        if os.sep in path and foundation.exists():
            ffi.dlopen(str(foundation), FLAGS)
        library = ffi.dlopen(path, FLAGS)
    except OSError as error:
        raise ImportError(f"{NEEDS}: {error}") from None
    try:
        found = version(library)
    except ffi.error:
        raise ImportError(f"{NEEDS}: {path} is another library") from None
    if found[0] != NEEDED[0] or found < NEEDED:
        raise ImportError(f"{NEEDS}: {path} is {'.'.join(map(str, found))}")
    return library


lib: Any = load(place())


def library_version() -> str:
    """The version of the library in use, as one line with the day on which it was built.

    Returns
    -------
    str
        Such as ``"liborva version 3.7.18.0 (built in Jun  3 2020)"``.

    Examples
    --------
    >>> orva.library_version()
    'liborva version 3...'
    """
    return str(ffi.string(lib.ORVAVERSION_String()).decode("ascii"))
