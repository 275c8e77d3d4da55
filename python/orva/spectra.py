# SPDX-License-Identifier: GPL-2.0-or-later
"""Power in decibels, and spectrograms."""
from typing import NamedTuple, Optional, Union

import numpy as np
import numpy.typing as npt

from ._arrays import MOST, Samples, aligned, mono, pointer, real, samples, whole
from ._library import ffi, lib
from .fft import transforms
from .windows import window as make_window
from .windows import window_gain


def power_db(power: npt.ArrayLike, gain: float = 1.0, emphasis: Optional[npt.ArrayLike] = None,
             floor: float = -120.0) -> Samples:
    """Powers of a transform in decibels, relative to a sine of height 1 in the middle of a bin.

    ``max(10 log10(power / M**2 * emphasis**2 / gain**2), floor)``, M being the number of the last bin.

    Parameters
    ----------
    power : array_like
        What `Fft.power` gives: bins 0 to M in the last dimension.
    gain : float, optional
        The mean of the window that was applied, `window_gain`; not 0.
    emphasis : array_like, optional
        A gain for each bin, such as `preemphasis_gain`.
    floor : float, optional
        The least decibels; what is zero, negative or not-a-number has these.

    Returns
    -------
    ndarray of float32
        Decibels, in the shape of `power`. They are within 7e-5 dB of the exact ones; infinite power counts as 385.3 dB.

    Raises
    ------
    ValueError
        For less than two bins, an `emphasis` of another length, and a `gain` of 0.

    Examples
    --------
    >>> orva.power_db([0, 4, 1]).round(2)
    array([-120.  ,    0.  ,   -6.02], dtype=float32)
    """
    powers = real(power, "power")
    if powers.ndim == 0 or powers.shape[-1] < 2:
        raise ValueError("power must have two bins or more")
    if gain == 0:
        raise ValueError("gain must not be 0")
    bins = powers.shape[-1]
    length = 2 * (whole(bins, "the number of bins", 2, MOST // 2) - 1)
    room = -(-bins // 4) * 4
    (work, place), adjustment = aligned(room), ffi.NULL
    work[bins:] = 0
    if emphasis is not None:
        factors = mono(emphasis, "emphasis")
        if factors.size != bins:
            raise ValueError(f"emphasis must have {bins} bins, not {factors.size}")
        gains, adjustment = aligned(room)
        gains[:] = 0
        gains[:bins] = factors
    norm = float(gain)**4
    if powers.ndim == 1:
        work[:bins] = powers
        lib.ORVA_PSDtoDB(length, place, place, adjustment, norm, -floor)
        return work[:bins]
    decibels = np.empty_like(powers, order="C")
    for source, target in zip(powers.reshape(-1, bins), decibels.reshape(-1, bins)):
        work[:bins] = source
        lib.ORVA_PSDtoDB(length, place, place, adjustment, norm, -floor)
        target[:] = work[:bins]
    return decibels


def preemphasis_gain(n: int, coefficient: float = 0.97) -> Samples:
    """The gain of the pre-emphasis ``y[i] = x[i] - coefficient * x[i - 1]`` at each bin, for `power_db`.

    Parameters
    ----------
    n : int
        Samples in the transform, 2 and up.
    coefficient : float, optional
        0 gives 1 everywhere.

    Returns
    -------
    ndarray of float32
        The gain at bins 0 to n // 2.

    Raises
    ------
    ValueError
        For `n` out of range.

    Examples
    --------
    >>> orva.preemphasis_gain(4, 0.5).round(3)
    array([0.5  , 1.118, 1.5  ], dtype=float32)
    """
    length = whole(n, "n", 2, MOST)
    gains = np.empty(length // 2 + 1, np.float32)
    lib.ORVA_CreatePreEmphAdjust(pointer(gains), length, coefficient)
    return gains


class Spectrogram(NamedTuple):
    """What `spectrogram` gives."""

    frequencies: npt.NDArray[np.float64]
    """Hz, one a bin."""
    times: npt.NDArray[np.float64]
    """Seconds, the middle of each frame."""
    decibels: Samples
    """Frames x bins, or frames x bins x channels."""


def spectrogram(x: npt.ArrayLike, fs: float, n: int = 1024, hop: Optional[int] = None,
                window: Union[str, npt.ArrayLike] = "Hanning-Periodic", preemphasis: float = 0.0,
                floor: float = -120.0) -> Spectrogram:
    """Decibels by time and frequency; 0 dB is a sine of height 1.

    Parameters
    ----------
    x : array_like
        Samples: frames, or frames x channels. What is left over at the end for no whole frame is not used.
    fs : float
        Sampling rate in Hz, above 0.
    n : int, optional
        Samples in a frame and in its transform, 2 and up.
    hop : int, optional
        Samples from frame to frame, a quarter of `n` by default.
    window : str or array_like, optional
        A name for `orva.window`, or `n` factors.
    preemphasis : float, optional
        Coefficient of a pre-emphasis that is applied to the decibels, such as 0.97; 0 is none.
    floor : float, optional
        The least decibels.

    Returns
    -------
    Spectrogram
        ``frequencies``, ``times`` and ``decibels``. Without a whole frame in `x`, no times and no decibels. A frame
        with a NaN has the floor in all its bins; one with an infinity has no meaning.

    Raises
    ------
    ValueError
        For what is out of range, or a window of another length.

    Examples
    --------
    >>> fs = 8000
    >>> tone = np.sin(2 * np.pi * 1000 * np.arange(fs) / fs)
    >>> frequencies, times, decibels = orva.spectrogram(tone, fs, n=256)
    >>> decibels.shape, frequencies[decibels[10].argmax()], round(decibels[10].max())
    ((122, 129), 1000.0, 0)
    """
    signal = samples(x)
    if not fs > 0:
        raise ValueError(f"fs must be above 0, not {fs!r}")
    length = whole(n, "n", 2, MOST - 64)
    step = whole(length // 4 or 1 if hop is None else hop, "hop", 1, MOST)
    factors = make_window(window, length) if isinstance(window, str) else mono(window, "window")
    if factors.size != length:
        raise ValueError(f"window must have {length} factors, not {factors.size}")
    gain = window_gain(factors)
    emphasis = preemphasis_gain(length, preemphasis) if preemphasis else None
    transform = transforms(length)
    count = max(0, (len(signal) - length) // step + 1)
    decibels = np.empty((count, transform.bins, *signal.shape[1:]), np.float32)
    batch = max(1, 2**18 // length)                       # frames at a time, about a megabyte
    for channel in range(signal.shape[1] if signal.ndim == 2 else 1):
        plane = signal if signal.ndim == 1 else np.ascontiguousarray(signal[:, channel])
        target = decibels if signal.ndim == 1 else decibels[:, :, channel]
        for first in range(0, count, batch):
            last = min(first + batch, count)
            views = np.lib.stride_tricks.sliding_window_view(plane, length)[first * step:(last - 1) * step + 1:step]
            with np.errstate(invalid="ignore"):           # an infinity where the window is zero
                frames = views * factors
            target[first:last] = power_db(transform.power(frames), gain, emphasis, floor)
    return Spectrogram(np.arange(transform.bins) * (fs / length), (np.arange(count) * step + length / 2) / fs, decibels)
