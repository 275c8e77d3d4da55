# SPDX-License-Identifier: GPL-2.0-or-later
"""Curves through points: cubic splines and straight lines.

The library evaluates a curve at one place a call, which takes some 0.4 microseconds for each.
"""
from functools import partial
from typing import Any, Callable, Optional, Tuple

import numpy as np
import numpy.typing as npt

from ._arrays import MOST, Samples, mono, pointer, real, whole
from ._library import lib
from ._messages import heard

_NATURAL = 1e30           # a slope above 9.9e29 asks for a natural end


def _table(xp: npt.ArrayLike, fp: npt.ArrayLike) -> Tuple[Samples, Samples]:
    x, y = mono(xp, "xp"), mono(fp, "fp")
    whole(x.size, "the number of points", 2, MOST)
    if y.size != x.size:
        raise ValueError(f"xp has {x.size} points, fp {y.size}")
    if not (x[1:] > x[:-1]).all():
        raise ValueError("xp must ascend strictly, as float32")
    return x, y


def _at(x: npt.ArrayLike, evaluate: Callable[[float], float]) -> Any:
    """A curve at each of some points, which stay in their shape."""
    points = real(x, "x")
    if points.ndim == 0:
        return np.float32(evaluate(float(points)))
    return np.array(list(map(evaluate, points.ravel().tolist())), np.float32).reshape(points.shape)


class Spline:
    """The cubic spline through some points, to be called for any number of others.

    Parameters
    ----------
    xp : array_like
        Where the points are, strictly ascending, two at least.
    fp : array_like
        Their heights.
    left, right : float, optional
        The slope at the first and at the last point, up to 9.9e29; without it, the end is natural: not bent.

    Raises
    ------
    ValueError
        For less than two points, unequal numbers, and points out of order; NaN in `xp` is out of order.

    Notes
    -----
    Beyond the points, the first and the last piece go on. A NaN among the heights makes the whole curve one. The library
    takes one place a call, so that each costs some 0.4 microseconds.

    Examples
    --------
    >>> orva.Spline([0, 1, 2, 4], [0, 1, 4, 16])(3).round(4)
    9.3478
    """

    def __init__(self, xp: npt.ArrayLike, fp: npt.ArrayLike, left: Optional[float] = None,
                 right: Optional[float] = None) -> None:
        self._x, self._y = (points.copy() for points in _table(xp, fp))
        self._slopes = left, right
        self._bends = np.full_like(self._x, np.nan)
        with heard() as said:
            lib.ORVASPLINE_Estimate(pointer(self._x), pointer(self._y), self._x.size,
                                    _NATURAL if left is None else left, _NATURAL if right is None else right,
                                    pointer(self._bends))
        if said:
            raise ValueError(said[0])

    def __call__(self, x: npt.ArrayLike) -> Any:
        """The height of the curve.

        Parameters
        ----------
        x : array_like
            Any number of places.

        Returns
        -------
        ndarray of float32, or float32
            Heights in the shape of `x`; NaN for NaN.

        Examples
        --------
        >>> orva.Spline([0, 1, 2], [0, 1, 0])([[0, 0.5], [1, 2]])
        array([[0.    , 0.6875],
               [1.    , 0.    ]], dtype=float32)
        """
        curve = pointer(self._x), pointer(self._y), pointer(self._bends), self._x.size
        return _at(x, partial(lib.ORVASPLINE_Interpolate, *curve))

    def __reduce__(self) -> Tuple[Any, Tuple[Any, ...]]:
        return type(self), (self._x, self._y, *self._slopes)


def spline(x: npt.ArrayLike, xp: npt.ArrayLike, fp: npt.ArrayLike, left: Optional[float] = None,
           right: Optional[float] = None) -> Any:
    """The cubic spline through some points, at others: ``Spline(xp, fp, left, right)(x)``.

    Parameters
    ----------
    x : array_like
        Any number of places.
    xp, fp : array_like
        The points: where, strictly ascending, and how high.
    left, right : float, optional
        Slopes at the ends; without them natural.

    Returns
    -------
    ndarray of float32, or float32
        Heights in the shape of `x`.

    Raises
    ------
    ValueError
        As for `Spline`.

    Notes
    -----
    The library takes one place a call, so that each costs some 0.4 microseconds.

    Examples
    --------
    >>> orva.spline([0.5, 1.5], [0, 1, 2], [0, 1, 0])
    array([0.6875, 0.6875], dtype=float32)
    """
    return Spline(xp, fp, left, right)(x)


def interp(x: npt.ArrayLike, xp: npt.ArrayLike, fp: npt.ArrayLike) -> Any:
    """Straight lines through some points, in the order of arguments of ``numpy.interp``.

    Unlike ``numpy.interp``, it goes on with the first and the last line beyond the points.

    Parameters
    ----------
    x : array_like
        Any number of places.
    xp, fp : array_like
        The points: where, strictly ascending, and how high.

    Returns
    -------
    ndarray of float32, or float32
        Heights in the shape of `x`; NaN for NaN.

    Raises
    ------
    ValueError
        For less than two points, unequal numbers, and points out of order.

    Notes
    -----
    The library takes one place a call, so that each costs some 0.4 microseconds.

    Examples
    --------
    >>> orva.interp([500, 4000, 9000], [0, 1000, 8000], [0, 1, -6])
    array([ 0.5, -2. , -7. ], dtype=float32)
    """
    places, heights = _table(xp, fp)
    return _at(x, partial(lib.ORVAINTERPOLATE_Linear, pointer(places), pointer(heights), places.size))
