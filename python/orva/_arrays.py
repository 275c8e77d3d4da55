# SPDX-License-Identifier: GPL-2.0-or-later
"""Arrays on their way into the library and out of it."""
from typing import Any, Optional, Tuple

import numpy as np
import numpy.typing as npt
from numpy import ndarray

from ._library import ffi

Samples = npt.NDArray[np.float32]
Spectrum = npt.NDArray[np.complex64]
Doubles = npt.NDArray[np.float64]

FLOAT = np.dtype(np.float32)
COMPLEX = np.dtype(np.complex64)
MOST = 2**31 - 1          # what a count of the library holds
ALIGNMENT = 16            # bytes, as transforms need it
IN_ORDER = 0x101          # of an array's flags: in C order, and aligned to its values

_FLOATS = ffi.typeof("float[]")
_COMPLEXES = ffi.typeof("ORVA_COMPLEX[]")
_DOUBLES = ffi.typeof("double[]")
_ADDRESS = ffi.typeof("uintptr_t")
_from_buffer, _cast = ffi.from_buffer, ffi.cast


def pointer(array: Samples) -> Any:
    """The floats of an array that lies in C order."""
    return _from_buffer(_FLOATS, array)


def complex_pointer(array: Spectrum) -> Any:
    """The complex values of an array that lies in C order."""
    return _from_buffer(_COMPLEXES, array)


def double_pointer(array: Doubles) -> Any:
    """The doubles of an array that lies in C order."""
    return _from_buffer(_DOUBLES, array)


def real(data: npt.ArrayLike, name: str) -> Samples:
    """Real numbers as float32 in C order: the array itself where it is that, otherwise one converted copy."""
    if type(data) is ndarray and data.dtype is FLOAT and data.flags.num & IN_ORDER == IN_ORDER:
        return data
    array = np.asarray(data)
    if array.dtype.kind not in "fiub":
        raise TypeError(f"{name} must be real numbers, not {array.dtype}")
    return np.require(array, FLOAT, ["C", "A"]) if array.ndim else array.astype(FLOAT)


def samples(data: npt.ArrayLike, name: str = "x") -> Samples:
    """The samples of a signal: frames, or frames x channels."""
    array = real(data, name)
    if array.ndim == 1 or array.ndim == 2:
        return array
    raise ValueError(f"{name} must be frames, or frames x channels, not an array of {array.ndim} dimensions")


def mono(data: npt.ArrayLike, name: str = "x") -> Samples:
    """The samples of a signal of one channel."""
    array = real(data, name)
    if array.ndim != 1:
        raise ValueError(f"{name} must be the samples of one channel, not an array of {array.ndim} dimensions")
    return array


def complexes(data: npt.ArrayLike, name: str) -> Spectrum:
    """Complex numbers as complex64 in C order, at least one dimension."""
    if type(data) is ndarray and data.dtype is COMPLEX and data.flags.num & IN_ORDER == IN_ORDER and data.ndim:
        return data
    array = np.asarray(data)
    if array.dtype.kind not in "cfiub":
        raise TypeError(f"{name} must be numbers, not {array.dtype}")
    if array.ndim == 0:
        raise ValueError(f"{name} must have a dimension")
    return np.require(array, COMPLEX, ["C", "A"])


def doubles(data: npt.ArrayLike, name: str) -> Doubles:
    """Real numbers as float64 in C order."""
    array = np.asarray(data)
    if array.dtype.kind not in "fiub":
        raise TypeError(f"{name} must be real numbers, not {array.dtype}")
    return np.require(array, np.float64, ["C", "A"]) if array.ndim else array.astype(np.float64)


def check_out(out: npt.NDArray[Any], shape: Tuple[int, ...], dtype: "np.dtype[Any]" = FLOAT) -> None:
    """Refuses what cannot take a result in place."""
    flags = out.flags
    if out.shape != shape or out.dtype != dtype or not (flags.c_contiguous and flags.aligned and flags.writeable):
        raise ValueError(f"out must be a writable {dtype} array of shape {shape} in C order")


def result(out: Optional[Samples], shape: Tuple[int, ...]) -> Samples:
    """What a result is written into: `out`, or a new array."""
    if out is None:
        return np.empty(shape, FLOAT)
    check_out(out, shape)
    return out


def is_aligned(address: Any) -> bool:
    """Whether a pointer stands where transforms want it."""
    return int(_cast(_ADDRESS, address)) % ALIGNMENT == 0


def rows_aligned(address: Any, rows: npt.NDArray[Any]) -> bool:
    """Whether all rows of an array that begins there stand where transforms want them."""
    return int(_cast(_ADDRESS, address)) % ALIGNMENT == 0 and (rows.ndim == 1 or rows.strides[-2] % ALIGNMENT == 0)


def aligned(count: int, dtype: "np.dtype[Any]" = FLOAT) -> Tuple[npt.NDArray[Any], Any]:
    """`count` uninitialised values, aligned as transforms want them, which NumPy's own mostly are, and their place."""
    values, kind = np.empty(count, dtype), _FLOATS if dtype is FLOAT else _COMPLEXES
    place = _from_buffer(kind, values)
    if int(_cast(_ADDRESS, place)) % ALIGNMENT == 0:
        return values, place
    raw = np.empty(count * dtype.itemsize + ALIGNMENT, np.uint8)
    start = -int(_cast(_ADDRESS, _from_buffer(raw))) % ALIGNMENT
    values = raw[start:start + count * dtype.itemsize].view(dtype)
    return values, _from_buffer(kind, values)


def planar(block: Samples) -> Samples:
    """Channels x frames, each channel in one piece."""
    return block[np.newaxis] if block.ndim == 1 else np.ascontiguousarray(block.T)


def interleaved(planes: Samples, dimensions: int) -> Samples:
    """Back from channels x frames to frames x channels, or to frames alone."""
    return np.ascontiguousarray(planes[0] if dimensions == 1 else planes.T)


def whole(value: float, name: str, least: int, most: int) -> int:
    """A whole number in a range."""
    if type(value) is int and least <= value <= most:
        return value
    if not least <= value <= most or value != int(value):
        raise ValueError(f"{name} must be a whole number from {least} to {most}, not {value!r}")
    return int(value)


def rate(fs: float, name: str = "fs") -> int:
    """A sampling rate in Hz, which the library counts in whole numbers."""
    return whole(fs, name, 1, MOST)
