# SPDX-License-Identifier: GPL-2.0-or-later
"""Decibels in bands of the mel scale."""
import math
from functools import lru_cache
from typing import List, Tuple

import numpy as np
import numpy.typing as npt

from .._arrays import Samples
from ..fft import transforms
from ..scales import hz_to_mel, mel_to_hz
from ..spectra import power_db
from ..windows import window, window_gain


class Bank:
    """Triangles over the bins of a transform: each reaches 1 in the middle of its band and 0 in those of its neighbours.

    Frames are windowed by a periodic Hann window and filled up with zeros to a power of two. 0 dB is a sine of height 1
    in the middle of a band that is wider than a few bins.
    """

    def __init__(self, fs: float, length: int, bands: int, low: float, high: float, floor: float) -> None:
        if high > fs / 2:
            raise ValueError(f"high_hz is {high:g}, above half of {fs:g} Hz")
        edges = mel_to_hz(np.linspace(hz_to_mel(low), hz_to_mel(high), bands + 2))
        self.bands, self.hz, self._floor = bands, edges[1:-1], floor
        self._window = _window(length)
        size = max(4, 1 << (length - 1).bit_length())
        self._transform = transforms(size)
        # The sum of all powers of such a sine, by Parseval; power_db divides by the square of the number of the last of
        # what it takes for bins, which are bands here.
        self._gain = math.sqrt(size * length * window_gain(self._window, self._window)) / 2 / (bands - 1)
        hz = np.arange(self._transform.bins) * (fs / size)
        rise, fall = (hz - edges[:-2, None]) / np.diff(edges)[:-1, None], (edges[2:, None] - hz) / np.diff(edges)[1:, None]
        self._rounds = _rounds(np.minimum(rise, fall).clip(0).astype(np.float32))

    def decibels(self, plane: Samples, hop: int) -> Samples:
        """Frames x bands of the samples of one channel."""
        views = np.lib.stride_tricks.sliding_window_view(plane, len(self._window))[::hop]
        frames = np.zeros((len(views), self._transform.n), np.float32)
        with np.errstate(invalid="ignore"):               # an infinity where the window is zero
            np.multiply(views, self._window, out=frames[:, :len(self._window)])
        return power_db(np.ascontiguousarray(self._sums(self._transform.power(frames)).T), self._gain, floor=self._floor)

    def _sums(self, powers: Samples) -> Samples:
        """Bands x frames. The bins of a band are added one after the other, so that no bit depends on a processor."""
        bins = np.zeros((self._transform.bins + 1, len(powers)), np.float32)
        bins[:-1] = powers.T
        sums = np.zeros((self.bands, len(powers)), np.float32)
        with np.errstate(invalid="ignore", over="ignore"):
            for places, weights in self._rounds:
                sums += bins[places] * weights
        return sums


def _rounds(triangles: Samples) -> List[Tuple[npt.NDArray[np.intp], Samples]]:
    """The first bin of each band and its weight, then the second of each, and so on; where a band has no more, one bin
    beyond all, which is empty."""
    bands, count = triangles.shape
    own = [np.flatnonzero(triangle) for triangle in triangles]
    most = max(map(len, own))
    places = np.full((most, bands), count)
    weights = np.zeros((most, bands, 1), np.float32)
    for band, bins in enumerate(own):
        places[:len(bins), band] = bins
        weights[:len(bins), band, 0] = triangles[band, bins]
    return list(zip(places, weights))


@lru_cache(maxsize=16)
def _window(length: int) -> Samples:
    return window("Hanning-Periodic", length)
