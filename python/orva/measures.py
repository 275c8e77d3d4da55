# SPDX-License-Identifier: GPL-2.0-or-later
"""Measures of frames, and the removal of a constant offset."""
from typing import Any, Callable, Optional

import numpy as np
import numpy.typing as npt

from ._arrays import MOST, Samples, interleaved, planar, pointer, result, samples, whole
from ._library import lib


def _measured(measure: Callable[..., float], x: npt.ArrayLike, frame: Optional[int], hop: Optional[int]) -> Any:
    """A measure of the whole signal, or of each of its frames, for each channel."""
    signal = samples(x)
    if frame is None and signal.ndim == 1:
        return np.float32(measure(pointer(signal), whole(signal.size, "the length of x", 0, MOST)))
    planes = planar(signal)
    length = whole(len(signal) if frame is None else frame, "frame", 0 if frame is None else 1, MOST)
    step = length if hop is None else whole(hop, "hop", 1, MOST)
    if frame is None:
        values = [[measure(pointer(plane), length)] for plane in planes]
    else:
        starts = range(0, len(signal) - length + 1, step)
        values = [[measure(pointer(plane[n:n + length]), length) for n in starts] for plane in planes]
    table = np.array(values, np.float32).reshape(len(planes), -1).T
    shaped = table if signal.ndim == 2 else table[:, 0]
    return np.ascontiguousarray(shaped) if frame is not None else shaped[0]


def energy_db(x: npt.ArrayLike, frame: Optional[int] = None, hop: Optional[int] = None) -> Any:
    """The variance in decibels, ``10 log10(var(x) / 0.32768)``.

    Parameters
    ----------
    x : array_like
        Frames, or frames x channels.
    frame : int, optional
        Samples to measure at a time; without it, all.
    hop : int, optional
        Samples from one such frame to the next, `frame` by default. What is left over at the end is not measured.

    Returns
    -------
    float32, or ndarray of float32
        Decibels: one a frame, and one a channel in the last dimension if `x` has channels. 0.0 where the variance is zero,
        so for silence and for no samples, and where there is a NaN or an infinity.

    Raises
    ------
    ValueError
        For a `frame` or `hop` below 1.

    Examples
    --------
    >>> orva.energy_db([1, -1, 1, -1]).round(2), orva.energy_db([1, -1, 2, -2], frame=2).round(2)
    (4.85, array([ 4.85, 10.87], dtype=float32))
    """
    return _measured(lib.ORVA_CalcEnergy, x, frame, hop)


def zero_cross_rate(x: npt.ArrayLike, frame: Optional[int] = None, hop: Optional[int] = None) -> Any:
    """Changes of sign between neighbouring samples, divided by the number of samples.

    Parameters
    ----------
    x, frame, hop : array_like, int, int
        As for `energy_db`.

    Returns
    -------
    float32, or ndarray of float32
        Crossings per sample: one a frame, and one a channel in the last dimension if `x` has channels. A change from or to
        exactly zero or a NaN does not count; no samples give NaN.

    Raises
    ------
    ValueError
        As for `energy_db`.

    Examples
    --------
    >>> orva.zero_cross_rate([1, -1, 1, -1])
    0.75
    """
    return _measured(lib.ORVA_CalcZeroCrossRate, x, frame, hop)


def remove_dc(x: npt.ArrayLike, out: Optional[Samples] = None) -> Samples:
    """Takes a constant offset away: a fixed high-pass of second order, -3 dB at 0.011 of the sampling rate.

    Parameters
    ----------
    x : array_like
        Frames, or frames x channels. Each call starts from silence; for a stream, use a `Filter`.
    out : ndarray of float32, optional
        Takes the result; may be `x` itself.

    Returns
    -------
    ndarray of float32
        In the shape of `x`; `out` if given. An offset is reduced to one hundredth. What follows a NaN or an infinity is
        not-a-number.

    Raises
    ------
    ValueError
        For more than two dimensions, or an `out` that does not fit.

    Examples
    --------
    >>> orva.remove_dc(np.ones(1000))[-1].round(2)
    0.01
    """
    signal = samples(x)
    whole(len(signal), "the length of x", 0, MOST)
    y = result(out, signal.shape)
    if out is None and signal.ndim == 1:
        lib.ORVA_RemoveDC(pointer(signal), pointer(y), signal.size)
        return y
    planes = planar(signal)
    made = np.empty_like(planes)
    for source, target in zip(planes, made):
        lib.ORVA_RemoveDC(pointer(source), pointer(target), source.size)
    y[...] = interleaved(made, signal.ndim)
    return y
