# SPDX-License-Identifier: GPL-2.0-or-later
"""Noise suppression, around the suppressor of the WebRTC audio processing library."""
from typing import Any, List

import numpy as np
import numpy.typing as npt

from ._arrays import Samples, interleaved, planar, pointer, whole
from ._library import lib
from ._messages import created
from ._stream import Stream

DELAYS = {8000: 48, 16000: 96, 32000: 192}


class NoiseSuppressor(Stream):
    """A noise suppressor for a stream, which works in frames of 10 ms.

    At 8000 and 16000 Hz the suppressor is never shown what is noise, so that it takes next to nothing away: the level
    of noise and of a voice changes by 0.01 dB at most. At 32000 Hz the output is silence; convert to 16000 Hz instead. When
    memory is out, the WebRTC library ends the process.

    Parameters
    ----------
    fs : {8000, 16000, 32000}
        Sampling rate in Hz.
    degree : int, optional
        0, mild, to 3, very strong.
    channels : int, optional
        Channels in a frame of samples; each is cleaned by itself.

    Raises
    ------
    ValueError
        For any other rate, and for what is out of range.

    Examples
    --------
    >>> suppressor = orva.NoiseSuppressor(8000)
    >>> len(suppressor.process(np.zeros(100))), len(suppressor.flush()), suppressor.delay
    (80, 68, 48)
    """

    def __init__(self, fs: int, degree: int = 2, channels: int = 1) -> None:
        self._fs = whole(fs, "fs", 1, 2**31 - 1)
        self._degree = whole(degree, "degree", 0, 3)
        count = whole(channels, "channels", 1, 2**31 - 1)
        handles = [self._handle() for _ in range(count)]
        self._frame = int(lib.ORVA_NoiseSupBufferSize(handles[0]))
        self._rest = np.empty((count, 0), np.float32)     # samples that wait for a whole frame
        super().__init__(count, handles, {"fs": self._fs, "degree": self._degree, "channels": count})

    def _handle(self) -> Any:
        return created(lib.ORVA_CreateNoiseSupEx, lib.ORVA_DestroyNoiseSup, self._fs, self._degree)

    @property
    def frame(self) -> int:
        """Samples in 10 ms."""
        return self._frame

    @property
    def delay(self) -> int:
        """Samples by which the output lags."""
        return DELAYS[self._fs]

    @property
    def degree(self) -> int:
        """Degree of suppression, which may change between two blocks."""
        return self._degree

    @degree.setter
    def degree(self, degree: int) -> None:
        self._degree = whole(degree, "degree", 0, 3)
        with self._lock:
            for handle in self._open():
                lib.ORVA_SetNoiseSupIntensity(handle, self._degree)
            self._recipe["degree"] = self._degree

    def process(self, block: npt.ArrayLike) -> Samples:
        """Cleans the next block of the stream.

        Parameters
        ----------
        block : array_like
            Samples: frames, or frames x channels, full scale 1.0. What is no whole 10 ms waits for the next block.

        Returns
        -------
        ndarray of float32
            What is ready, in as many dimensions as `block`. The suppressor works on 16 bits: what is beyond full scale, also
            an infinity, counts as full scale, and a NaN as 0.

        Raises
        ------
        ValueError
            For another number of channels, or after `close`.

        Examples
        --------
        >>> suppressor = orva.NoiseSuppressor(16000, channels=2)
        >>> [suppressor.process(np.zeros((n, 2))).shape for n in (160, 100, 60)]
        [(160, 2), (0, 2), (160, 2)]
        """
        x = self._block(block)
        with self._lock:
            return interleaved(self._run(self._open(), planar(x)), x.ndim)

    def flush(self) -> Samples:
        """The end of the stream, brought out by silence; the next block begins a new one.

        Returns
        -------
        ndarray of float32
            What was waiting, and `delay` samples more: in all, n + delay for n of input.
        """
        with self._lock:
            handles = self._open()
            left = self._rest.shape[1] + self.delay
            y = self._run(handles, np.zeros((self._channels, 2 * self._frame), np.float32))[:, :left]
            self._restart(handles)
        return interleaved(y, 1 if self._channels == 1 else 2)

    def reset(self) -> None:
        """Begins a new stream and forgets the old one."""
        with self._lock:
            self._restart(self._open())

    def _restart(self, handles: List[Any]) -> None:
        self._handles = [self._handle() for _ in handles]
        self._rest = np.empty((self._channels, 0), np.float32)

    def _run(self, handles: List[Any], planes: Samples) -> Samples:
        x = np.concatenate([self._rest, planes], axis=1)
        ready = x.shape[1] // self._frame * self._frame
        y = np.empty((self._channels, ready), np.float32)
        for handle, source, target in zip(handles, x, y):
            for n in range(0, ready, self._frame):
                lib.ORVA_DoNoiseSup(handle, pointer(source[n:n + self._frame]), pointer(target[n:n + self._frame]))
        self._rest = x[:, ready:].copy()
        return y
