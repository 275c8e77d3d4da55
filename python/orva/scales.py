# SPDX-License-Identifier: GPL-2.0-or-later
"""The scales of hearing.

The library converts one value a call, which takes 0.2 to 0.4 microseconds for each.
"""
from typing import Any, Callable

import numpy as np
import numpy.typing as npt

from ._arrays import doubles
from ._library import lib


def _each(function: Callable[[float], float], values: npt.ArrayLike, name: str) -> Any:
    numbers = doubles(values, name)
    if numbers.ndim == 0:
        return function(float(numbers))
    return np.array(list(map(function, numbers.ravel().tolist())), np.float64).reshape(numbers.shape)


def hz_to_mel(hz: npt.ArrayLike) -> Any:
    """Hertz to mels, ``1127.01048 ln(f / 700 + 1)``, which librosa calls ``htk=True``.

    Parameters
    ----------
    hz : array_like
        Hertz.

    Returns
    -------
    float, or ndarray of float64
        Mels in the shape of `hz`: minus infinity at -700 Hz, NaN below and for NaN.

    Notes
    -----
    One call of the library a value, 0.2 to 0.4 microseconds each.

    Examples
    --------
    >>> round(orva.hz_to_mel(1000), 3)
    1000.0
    """
    return _each(lib.ORVAUTIL_Freq2Mels, hz, "hz")


def mel_to_hz(mel: npt.ArrayLike) -> Any:
    """Mels to hertz, the inverse of `hz_to_mel`.

    Parameters
    ----------
    mel : array_like
        Mels.

    Returns
    -------
    float, or ndarray of float64
        Hertz in the shape of `mel`; NaN for NaN.

    Notes
    -----
    One call of the library a value, 0.2 to 0.4 microseconds each.

    Examples
    --------
    >>> orva.mel_to_hz([0, 1000]).round(1)
    array([   0., 1000.])
    """
    return _each(lib.ORVAUTIL_Mels2Freq, mel, "mel")


def hz_to_bark(hz: npt.ArrayLike) -> Any:
    """Hertz to Bark, by the formula of Zwicker and Terhardt.

    Parameters
    ----------
    hz : array_like
        Hertz; below 1 counts as 1.

    Returns
    -------
    float, or ndarray of float64
        Bark in the shape of `hz`; NaN for NaN.

    Notes
    -----
    One call of the library a value, 0.2 to 0.4 microseconds each.

    Examples
    --------
    >>> round(orva.hz_to_bark(1000), 2)
    8.51
    """
    return _each(lib.ORVAUTIL_Freq2Bark, hz, "hz")


def bark_to_hz(bark: npt.ArrayLike) -> Any:
    """Bark to hertz, along straight lines between the edges of the 24 critical bands; not quite the inverse of `hz_to_bark`.

    Parameters
    ----------
    bark : array_like
        Bark; beyond 0 and 24 the lines go on.

    Returns
    -------
    float, or ndarray of float64
        Hertz in the shape of `bark`; NaN for NaN.

    Notes
    -----
    One call of the library a value, 0.2 to 0.4 microseconds each.

    Examples
    --------
    >>> orva.bark_to_hz([0, 9, 24])
    array([    0.,  1000., 13500.])
    """
    return _each(lib.ORVAUTIL_Bark2Freq, bark, "bark")
