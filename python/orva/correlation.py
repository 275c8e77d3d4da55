# SPDX-License-Identifier: GPL-2.0-or-later
"""Cross-correlation, delays and likeness."""
import threading
from functools import lru_cache
from typing import NamedTuple, Optional

import numpy as np
import numpy.typing as npt

from ._arrays import FLOAT, Samples, mono, pointer, result, whole
from ._library import ffi, lib
from ._messages import created, heard

LONGEST = 2**30 - 1

_plain, _phat = lib.ORVA_XcorrProcExecute, lib.ORVA_XcorrPhatProcess


class _Processor:
    """The processor of one pair of lengths, for one thread at a time."""

    def __init__(self, first: int, second: int) -> None:
        _check_lengths(first, second)
        self.lock = threading.Lock()
        try:
            self.handle = created(lib.ORVA_XcorrProcCreate, lib.ORVA_XcorrProcDestroy, first, second)
        except ValueError as error:                       # all that the library has to say here is that of memory
            raise MemoryError(str(error)) from None
        self.size = int(lib.ORVA_XcorrVectorLength(self.handle))


@lru_cache(maxsize=8)
def _processor(first: int, second: int) -> _Processor:
    return _Processor(first, second)


def _check_lengths(first: int, second: int) -> None:
    whole(first, "the length of x", 1, LONGEST)
    whole(second, "the length of y", 1, LONGEST)


def correlate(x: npt.ArrayLike, y: npt.ArrayLike, phat: bool = False, out: Optional[Samples] = None) -> Samples:
    """The cross-correlation of two vectors at all lags, plain or with the phase transform.

    With L the larger length, ``r[L - 1 + t]`` belongs to lag t, and is the mean ``sum(x[n + t] * y[n]) / L``. So a peak
    at a positive lag means that `x` is the later one.

    Parameters
    ----------
    x, y : array_like
        One channel each, of 1 to 2**30 - 1 samples.
    phat : bool, optional
        Give every bin of the cross-spectrum the same magnitude: a delay of a broad-band signal then stands out as a
        sharp peak of up to 1, whatever the levels.
    out : ndarray of float32, optional
        Takes the result.

    Returns
    -------
    ndarray of float32
        2 L - 1 values, lags -(L - 1) to L - 1. ``scipy.signal.correlate`` gives L times these, for equal lengths. A NaN
        or an infinity makes all of them not-a-number.

    Raises
    ------
    ValueError
        For an empty vector, several channels, or an `out` that does not fit.

    Examples
    --------
    >>> r = orva.correlate([0, 0, 1, 0], [1, 0, 0, 0])
    >>> r.size, r.argmax() - 3, round(float(r.max()), 6)
    (7, 2, 0.25)
    """
    first, second = mono(x, "x"), mono(y, "y")
    processor = _processor(first.size, second.size)
    r = np.empty(processor.size, FLOAT) if out is None else result(out, (processor.size,))
    execute = _phat if phat else _plain
    with processor.lock:
        if execute(processor.handle, pointer(first), pointer(second), pointer(r)) < 0:
            _processor.cache_clear()
            raise MemoryError("liborva has found no memory for its transforms")
    return r


def find_delay(x: npt.ArrayLike, y: npt.ArrayLike, fs: float = 1.0, phat: bool = True) -> float:
    """By how much `x` is later than `y`: the lag of the largest absolute correlation.

    Parameters
    ----------
    x, y : array_like
        One channel each, of 1 to 2**30 - 1 samples.
    fs : float, optional
        Sampling rate in Hz; without it the delay is in samples.
    phat : bool, optional
        With the phase transform, which suits broad-band signals; without it for narrow-band ones.

    Returns
    -------
    float
        Seconds, or samples without `fs`: a whole number of samples, negative where `x` is the earlier one. NaN if
        there is a NaN or an infinity in `x` or `y`.

    Raises
    ------
    ValueError
        For an empty vector, several channels, or an `fs` that is not above 0.

    Examples
    --------
    >>> click = np.zeros(100)
    >>> click[20] = 1
    >>> orva.find_delay(np.roll(click, 16), click, fs=8000)
    0.002
    """
    if not fs > 0:
        raise ValueError(f"fs must be above 0, not {fs!r}")
    r = np.abs(correlate(x, y, phat))
    if np.isnan(r).any():
        return float("nan")
    return float((int(r.argmax()) - r.size // 2) / fs)


class Likeness(NamedTuple):
    """What `coefficient` gives."""

    value: float
    """0 to 1, but for rounding; NaN where one of the two is silent or has a NaN, 0 where one has an infinity."""
    lag: int
    """Samples by which the first is later."""


def coefficient(x: npt.ArrayLike, y: npt.ArrayLike) -> Likeness:
    """How alike two vectors are, allowing for a shift.

    The largest absolute correlation over all lags, divided by the square root of the product of both powers.

    Parameters
    ----------
    x, y : array_like
        One channel each, of 1 to 2**30 - 1 samples.

    Returns
    -------
    Likeness
        ``value`` is 1 for equal vectors, and for a vector and its negation; for unequal lengths it is multiplied by
        ``sqrt(len(x) * len(y)) / max(len(x), len(y))``. ``lag`` is that of the peak.

    Raises
    ------
    ValueError
        For an empty vector or several channels.

    Examples
    --------
    >>> value, lag = orva.coefficient([0, 0, 1, -2], [1, -2, 0, 0])
    >>> round(value, 6), lag
    (1.0, 2)
    """
    first, second = mono(x, "x"), mono(y, "y")
    _check_lengths(first.size, second.size)
    lag = ffi.new("int32_t *")
    with heard() as said:
        value = lib.ORVA_XcorrCoef(pointer(first), first.size, pointer(second), second.size, lag)
    if value == -1.0 or said:
        raise MemoryError(said[0] if said else "liborva has found no memory for its transforms")
    return Likeness(value, lag[0])
