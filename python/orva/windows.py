# SPDX-License-Identifier: GPL-2.0-or-later
"""Analysis windows by name, and their gain."""
from typing import List, Optional, Tuple, Union

import numpy.typing as npt

from ._arrays import MOST, Samples, mono, pointer, result, samples, whole
from ._library import ffi, lib


def _names() -> Tuple[str, ...]:
    names: List[str] = []
    while lib.ORVA_GetWindowName(len(names)):
        names.append(ffi.string(lib.ORVA_GetWindowName(len(names))).decode("ascii"))
    return tuple(names)


#: The names of the windows in the order of their codes.
WINDOWS: Tuple[str, ...] = _names()
_CODES = {name.lower(): code for code, name in enumerate(WINDOWS)}


def window(name: Union[str, int], n: int) -> Samples:
    """An analysis window.

    Parameters
    ----------
    name : str or int
        One of `WINDOWS`, in any case of letters, or its code, the index there. ``"Hanning-Periodic"`` is what SciPy
        calls ``get_window("hann", n)``, ``"Hanning"`` is ``windows.hann(n)``; they are the only two that come in
        both kinds.
    n : int
        Length in samples, 0 to 4294967295.

    Returns
    -------
    ndarray of float32
        `n` factors. Shapes of a peak of 1, but for ``"Flat-Top"``, which peaks at 4.636. At lengths of 1 to 3 some
        shapes hold not-a-number.

    Raises
    ------
    ValueError
        For an unknown name or code, or a length out of range.

    Examples
    --------
    >>> orva.window("Hanning", 5)
    array([0. , 0.5, 1. , 0.5, 0. ], dtype=float32)
    """
    code = _CODES.get(name.lower(), -1) if isinstance(name, str) else whole(name, "name", 0, len(WINDOWS) - 1)
    if code < 0:
        raise ValueError(f"there is no window {name!r}; there are {', '.join(WINDOWS)}")
    factors = result(None, (whole(n, "n", 0, 2**32 - 1),))
    lib.ORVA_CreateWindow(code, pointer(factors), factors.size)
    return factors


def window_gain(window: npt.ArrayLike, second: Optional[npt.ArrayLike] = None) -> float:
    """The gain of a window for a sine in the middle of a bin, which is the mean of the window.

    Parameters
    ----------
    window : array_like
        Factors, one dimension.
    second : array_like, optional
        A second window of the same length that is applied as well.

    Returns
    -------
    float
        The mean of the window, or of the products of both; not-a-number for an empty one, and where there is one in it.

    Raises
    ------
    ValueError
        For another number of dimensions, and for windows of different lengths.

    Examples
    --------
    >>> round(orva.window_gain(orva.window("Hanning-Periodic", 1024)), 6)
    0.5
    """
    first = mono(window, "window")
    whole(first.size, "the length of window", 0, MOST)
    if second is None:
        return float(lib.ORVA_GetWindowNormFactor(pointer(first), first.size))
    other = mono(second, "second")
    if other.size != first.size:
        raise ValueError(f"the windows have {first.size} and {other.size} samples")
    return float(lib.ORVA_GetTwoWindowNormFactor(pointer(first), pointer(other), first.size))


def apply_window(x: npt.ArrayLike, window: npt.ArrayLike, out: Optional[Samples] = None) -> Samples:
    """Multiplies a frame by a window, in float32.

    Parameters
    ----------
    x : array_like
        One frame, or one a row.
    window : array_like
        As many factors as a frame has samples.
    out : ndarray of float32, optional
        Takes the result; may be `x` itself.

    Returns
    -------
    ndarray of float32
        The products, in the shape of `x`; `out` if given.

    Raises
    ------
    ValueError
        If frame and window differ in length, or `out` does not fit.

    Examples
    --------
    >>> orva.apply_window([2, 2, 2], [0, 0.5, 1])
    array([0., 1., 2.], dtype=float32)
    """
    frames, factors = samples(x), mono(window, "window")
    if frames.shape[-1] != factors.size:
        raise ValueError(f"a frame of {frames.shape[-1]} samples and a window of {factors.size}")
    whole(factors.size, "the length of window", 0, MOST)
    y = result(out, frames.shape)
    if y is not frames:
        y[...] = frames
    if y.size:
        for row in y.reshape(-1, factors.size):
            lib.ORVA_ApplyWindow(pointer(factors), pointer(row), factors.size)
    return y
