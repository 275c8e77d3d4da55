# SPDX-License-Identifier: GPL-2.0-or-later
"""The modulated complex lapped transform of a stream, and its inverse."""
from typing import Any, List, Tuple

import numpy as np
import numpy.typing as npt

from ._arrays import COMPLEX, FLOAT, Samples, Spectrum, complexes, pointer, whole
from ._library import lib
from ._messages import created
from ._stream import Stream

_direct_call, _inverse_call = lib.ORVA_FMCLTDirect, lib.ORVA_FMCLTInverse


class Lapped(Stream):
    """Blocks of a stream as complex coefficients, and back: change a sound by its frequencies.

    Each block of m samples, with the block before it, gives m coefficients; number k stands for (k + 1/2) / (2 m) of
    the sampling rate. `inverse` gives the samples back one block later.

    Parameters
    ----------
    m : int
        Samples in a block, 1 to 2**28. Choose one that 4 divides, since only then is the way back exact.

    Raises
    ------
    ValueError
        For `m` out of range.

    Examples
    --------
    >>> lapped = orva.Lapped(4)
    >>> x = np.arange(8, dtype=np.float32)
    >>> y = np.concatenate([lapped.inverse(lapped.forward(x)), lapped.flush()])
    >>> [round(float(sample)) for sample in y]
    [0, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7]
    """

    def __init__(self, m: int) -> None:
        self.m = whole(m, "m", 1, 2**28)
        self._twiddles = np.empty(2 * (self.m + 1), np.float32)
        lib.ORVA_FMCLTFreqWindow(pointer(self._twiddles), self.m)
        handle = created(lib.ORVA_FMCLTProcCreate, lib.ORVA_FMCLTProcDestroy, self.m)
        self._history, self._overlap = np.zeros(self.m, np.float32), np.zeros(self.m, np.float32)
        # What all calls take, besides blocks and coefficients.
        twiddles = pointer(self._twiddles)
        self._direct_state = pointer(self._history), twiddles
        self._inverse_state = pointer(self._overlap), twiddles
        self._one = self._room(1)
        super().__init__(1, [handle], {"m": self.m})

    def _room(self, count: int) -> Tuple[Samples, Samples, Any, Any]:
        """The real and the imaginary parts of some blocks of coefficients, which the library keeps apart, and their places."""
        re, im = np.empty((2, count, self.m), FLOAT)
        return re, im, pointer(re), pointer(im)

    def forward(self, x: npt.ArrayLike) -> Spectrum:
        """The coefficients of the next blocks.

        Parameters
        ----------
        x : array_like
            Samples of one channel, a multiple of `m`.

        Returns
        -------
        ndarray of complex64
            Blocks x m. A NaN or an infinity spoils two blocks.

        Raises
        ------
        ValueError
            For another length, or after `close`.

        Examples
        --------
        >>> orva.Lapped(4).forward(np.ones(12)).shape
        (3, 4)
        """
        signal = self._block(x)
        with self._lock:
            return self._direct(self._handles or self._open(), signal)

    def _direct(self, handles: List[Any], signal: Samples) -> Spectrum:
        m, source, (history, twiddles) = self.m, pointer(signal), self._direct_state
        count, rest = divmod(signal.size, m)
        if rest:
            raise ValueError(f"x must be blocks of {m} samples, not {signal.size} samples")
        re, im, real, imaginary = self._one if count == 1 else self._room(count)
        for n in range(0, signal.size, m):
            _direct_call(handles[0], real + n, imaginary + n, source + n, history, twiddles)
        coefficients = np.empty((count, m), COMPLEX)
        coefficients.real, coefficients.imag = re, im
        return coefficients

    def inverse(self, coefficients: npt.ArrayLike) -> Samples:
        """The samples of the next blocks, one block later than they went in.

        Parameters
        ----------
        coefficients : array_like
            Blocks x m, or the m of one block.

        Returns
        -------
        ndarray of float32
            m samples a block; the first belong to the silence before the stream.

        Raises
        ------
        ValueError
            For another shape, or after `close`.

        Examples
        --------
        >>> lapped = orva.Lapped(4)
        >>> half = lapped.forward(np.ones(12)) / 2                # half as loud
        >>> lapped.inverse(half)[-4:].round(3)
        array([0.5, 0.5, 0.5, 0.5], dtype=float32)
        """
        blocks = complexes(coefficients, "coefficients")
        if blocks.shape[-1] != self.m:
            raise ValueError(f"a block must have {self.m} coefficients, not {blocks.shape[-1]}")
        with self._lock:
            return self._back(self._handles or self._open(), blocks.reshape(-1, self.m))

    def _back(self, handles: List[Any], blocks: Spectrum) -> Samples:
        y = np.empty(blocks.size, FLOAT)
        target, (overlap, twiddles) = pointer(y), self._inverse_state
        re, im, real, imaginary = self._one if len(blocks) == 1 else self._room(len(blocks))
        re[:], im[:] = blocks.real, blocks.imag
        for n in range(0, y.size, self.m):
            _inverse_call(handles[0], real + n, imaginary + n, target + n, overlap, twiddles)
        return y

    def process(self, block: npt.ArrayLike) -> Samples:
        """There and back, for a stream that is not changed: ``inverse(forward(block))``."""
        return self.inverse(self.forward(block))

    def flush(self) -> Samples:
        """The last block of the samples, brought out by a block of silence; the next one begins a new stream."""
        with self._lock:
            handles = self._open()
            y = self._back(handles, self._direct(handles, np.zeros(self.m, np.float32)))
            self._history[:] = 0
            self._overlap[:] = 0
        return y

    def reset(self) -> None:
        """Begins a new stream and forgets the old one."""
        with self._lock:
            self._open()
            self._history[:] = 0
            self._overlap[:] = 0
