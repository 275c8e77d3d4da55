# SPDX-License-Identifier: GPL-2.0-or-later
"""Real Fourier transforms in single precision."""
from functools import lru_cache
from math import prod
from typing import Any, Callable, Iterable, List, Optional, Tuple

import numpy as np
import numpy.typing as npt

from ._arrays import (COMPLEX, FLOAT, MOST, Samples, Spectrum, aligned, check_out, complex_pointer, complexes,
                      is_aligned, pointer, real, rows_aligned, whole)
from ._library import ffi, lib
from ._messages import created

_direct, _back, _power = lib.ORVA_FFTProcExecute, lib.ORVA_IFFTProcExecuteEx, lib.ORVA_FFTProcExecutePSDEx

KEPT = 2**16              # samples of the longest frame whose room is kept for the next call


class Fft:
    """The transforms of one length, for as many frames as come.

    Each method takes one frame or an array with a frame in each row (of any number of dimensions), and several
    threads may call them at the same time.

    Parameters
    ----------
    n : int
        Samples in a frame, 1 and up; fast with small prime factors.

    Examples
    --------
    >>> orva.Fft(4).forward([1, 0, -1, 0])
    array([0.+0.j, 2.+0.j, 0.+0.j], dtype=complex64)
    """

    def __init__(self, n: int) -> None:
        self.n = whole(n, "n", 1, MOST - 64)
        self._bins = self.n // 2 + 1
        self._forward = created(lib.ORVA_FFTProcCreate, lib.ORVA_FFTProcDestroy, self.n)
        self._inverse = created(lib.ORVA_IFFTProcCreate, lib.ORVA_FFTProcDestroy, self.n)
        self._spare: List[Tuple[Spectrum, Any]] = []      # rooms for a spectrum, for as many calls as ran at the same time

    @property
    def bins(self) -> int:
        """Values in a spectrum, n // 2 + 1."""
        return self._bins

    def __reduce__(self) -> Tuple[Callable[..., Any], Tuple[int]]:
        return type(self), (self.n,)

    def __repr__(self) -> str:
        return f"Fft({self.n})"

    def forward(self, x: npt.ArrayLike, out: Optional[Spectrum] = None) -> Spectrum:
        """The spectrum of each frame, not scaled.

        Parameters
        ----------
        x : array_like
            Frames of `n` samples.
        out : ndarray of complex64, optional
            Takes the result; must not share memory with `x`.

        Returns
        -------
        ndarray of complex64
            Bins 0 to n // 2 of each frame, bin k at k * fs / n Hz.

        Raises
        ------
        ValueError
            For frames of another length, or an `out` that does not fit.

        Examples
        --------
        >>> orva.Fft(4).forward([[1, 2, 3, 4], [1, 1, 1, 1]])
        array([[10.+0.j, -2.+2.j, -2.+0.j],
               [ 4.+0.j,  0.+0.j,  0.+0.j]], dtype=complex64)
        """
        frames = _checked(real(x, "x"), self.n, "samples")
        spectra = _taken(out, frames, self._bins, COMPLEX)
        source, target = pointer(frames), complex_pointer(spectra)
        if not (rows_aligned(source, frames) and rows_aligned(target, spectra)):
            (frame, source), (bins, target) = aligned(self.n), aligned(self._bins, COMPLEX)
            for given, taken in _pairs(frames, spectra):
                frame[:] = given
                _direct(self._forward, source, target)
                taken[:] = bins
        elif frames.ndim == 1:
            _direct(self._forward, source, target)
        else:
            for row in range(prod(frames.shape[:-1])):
                _direct(self._forward, source + row * self.n, target + row * self._bins)
        return spectra

    def inverse(self, spectrum: npt.ArrayLike, out: Optional[Samples] = None) -> Samples:
        """The samples of each spectrum, divided by `n`, so that they are those that `forward` took.

        Parameters
        ----------
        spectrum : array_like
            Spectra of n // 2 + 1 bins. The imaginary parts of bin 0 and, for even `n`, of the last one are not used.
        out : ndarray of float32, optional
            Takes the result; must not share memory with `spectrum`.

        Returns
        -------
        ndarray of float32
            Frames of `n` samples. A NaN or an infinity among the bins spoils samples of that frame only.

        Raises
        ------
        ValueError
            For spectra of another length, or an `out` that does not fit.

        Examples
        --------
        >>> orva.Fft(4).inverse([10, -2 + 2j, -2])
        array([1., 2., 3., 4.], dtype=float32)
        """
        spectra = _checked(complexes(spectrum, "spectrum"), self._bins, "bins")
        frames = _taken(out, spectra, self.n, FLOAT)
        target = pointer(frames)
        try:
            room = self._spare.pop()
        except IndexError:
            room = aligned(self._bins, COMPLEX)
        bins, source = room                               # for a copy, since the transform overwrites what it reads
        if not rows_aligned(target, frames):
            frame, target = aligned(self.n)
            for given, taken in _pairs(spectra, frames):
                bins[:] = given
                _back(self._inverse, source, target, True)
                taken[:] = frame
        elif frames.ndim == 1:
            bins[:] = spectra
            _back(self._inverse, source, target, True)
        else:
            for row, given in enumerate(_each(spectra)):
                bins[:] = given
                _back(self._inverse, source, target + row * self.n, True)
        if self.n <= KEPT:
            self._spare.append(room)
        return frames

    def power(self, x: npt.ArrayLike, out: Optional[Samples] = None) -> Samples:
        """The power of each bin of each frame, the squared magnitude of `forward`.

        Parameters
        ----------
        x, out : array_like, ndarray of float32
            As for `forward`.

        Returns
        -------
        ndarray of float32
            Powers of bins 0 to n // 2 of each frame.

        Raises
        ------
        ValueError
            As for `forward`.

        Examples
        --------
        >>> orva.Fft(4).power([1, 0, -1, 0])
        array([0., 4., 0.], dtype=float32)
        """
        frames = _checked(real(x, "x"), self.n, "samples")
        source, room = pointer(frames), 4 * (self.n // 8 + 1)
        power, made = aligned(room)
        if out is None and frames.ndim == 1 and is_aligned(source):
            _power(self._forward, source, made, ffi.NULL)
            return power[:self._bins]
        powers = _taken(out, frames, self._bins, FLOAT)
        spare, work = aligned(max(self.n, 4), COMPLEX)
        if rows_aligned(source, frames):
            for row, taken in enumerate(_each(powers)):
                _power(self._forward, source + row * self.n, made, work)
                taken[:] = power[:self._bins]
        else:
            frame, source = aligned(self.n)
            for given, taken in _pairs(frames, powers):
                frame[:] = given
                _power(self._forward, source, made, work)
                taken[:] = power[:self._bins]
        return powers


def _checked(array: npt.NDArray[Any], length: int, what: str) -> npt.NDArray[Any]:
    if array.ndim == 0 or array.shape[-1] != length:
        raise ValueError(f"a frame must have {length} {what}, not {array.shape[-1] if array.ndim else 'none'}")
    return array


def _taken(out: Optional[npt.NDArray[Any]], source: npt.NDArray[Any], length: int,
           dtype: "np.dtype[Any]") -> npt.NDArray[Any]:
    """What takes a row of this length for each one of the source."""
    if out is None and source.ndim == 1:
        return np.empty(length, dtype)
    shape = (*source.shape[:-1], length)
    if out is None:
        return np.empty(shape, dtype)
    check_out(out, shape, dtype)
    if np.may_share_memory(out, source):
        raise ValueError("out must not share memory with what is transformed")
    return out


def _each(array: npt.NDArray[Any]) -> Iterable[npt.NDArray[Any]]:
    """The rows."""
    if array.ndim == 1:
        return (array,)
    return array.reshape(-1, array.shape[-1])


def _pairs(first: npt.NDArray[Any], second: npt.NDArray[Any]) -> Iterable[Tuple[npt.NDArray[Any], npt.NDArray[Any]]]:
    """Rows side by side."""
    return zip(_each(first), _each(second))


@lru_cache(maxsize=16)
def transforms(n: int) -> Fft:
    """The transforms of a length, kept for the next call: to make them takes longer than to run them."""
    return Fft(n)


def rfft(x: npt.ArrayLike, n: Optional[int] = None, axis: int = -1) -> Spectrum:
    """The spectrum of real samples, as ``scipy.fft.rfft`` gives it for float32.

    Parameters
    ----------
    x : array_like
        Samples; other types are converted to float32.
    n : int, optional
        Samples to transform: `x` is cut, or filled up with zeros. By default as many as there are.
    axis : int, optional
        The axis to transform.

    Returns
    -------
    ndarray of complex64
        Bins 0 to n // 2 along `axis`. A NaN among the samples makes every bin one; an infinity leaves none finite.

    Raises
    ------
    ValueError
        For `n` below 1, so also for an empty `x` without `n`.

    Examples
    --------
    >>> orva.rfft([1, 2, 3, 4])
    array([10.+0.j, -2.+2.j, -2.+0.j], dtype=complex64)
    """
    frames = real(x, "x")
    if axis != -1 or frames.ndim == 0:
        frames = _last(frames, axis)
    transform = transforms(frames.shape[-1] if n is None else n)
    spectra = transform.forward(frames if n is None else _fitted(frames, transform.n))
    return spectra if axis == -1 else np.moveaxis(spectra, -1, axis)


def irfft(spectrum: npt.ArrayLike, n: Optional[int] = None, axis: int = -1) -> Samples:
    """The samples that have a spectrum, as ``scipy.fft.irfft`` gives them for complex64.

    Parameters
    ----------
    spectrum : array_like
        Bins 0 to n // 2; other types are converted to complex64.
    n : int, optional
        Samples to make, by default the even number 2 * (bins - 1). Bins are cut, or filled up with zeros.
    axis : int, optional
        The axis to transform.

    Returns
    -------
    ndarray of float32
        `n` samples along `axis`. A NaN or an infinity among the bins spoils samples.

    Raises
    ------
    ValueError
        For `n` below 1, so also for a single bin without `n`.

    Examples
    --------
    >>> orva.irfft([10, -2 + 2j, -2])
    array([1., 2., 3., 4.], dtype=float32)
    """
    spectra = _last(complexes(spectrum, "spectrum"), axis)
    transform = transforms(2 * (spectra.shape[-1] - 1) if n is None else n)
    frames = transform.inverse(_fitted(spectra, transform.bins))
    return frames if axis == -1 else np.moveaxis(frames, -1, axis)


def _last(array: npt.NDArray[Any], axis: int) -> npt.NDArray[Any]:
    if axis == -1 and array.ndim:
        return array
    if array.ndim == 0:
        raise ValueError("x must have a dimension")
    return np.moveaxis(array, axis, -1)


def _fitted(rows: npt.NDArray[Any], length: int) -> npt.NDArray[Any]:
    """Rows cut to a length, or filled up to it with zeros."""
    if rows.shape[-1] == length:
        return rows
    fitted = np.zeros((*rows.shape[:-1], length), rows.dtype)
    kept = min(length, rows.shape[-1])
    fitted[..., :kept] = rows[..., :kept]
    return fitted
