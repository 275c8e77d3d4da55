# SPDX-License-Identifier: GPL-2.0-or-later
"""Sample-rate conversion, of a stream or of a whole signal."""
from math import gcd
from typing import Any, List

import numpy as np
import numpy.typing as npt

from ._arrays import FLOAT, MOST, Samples, interleaved, planar, pointer, rate, samples, whole
from ._library import lib
from ._messages import created
from ._stream import Stream

KINDS = ("polyphase", "hold")

_resample = lib.ORVA_Resample


class Resampler(Stream):
    """A converter of a stream from one sampling rate to another.

    Blocks may have any length; a stream that is cut into other blocks gives the same bits. After `flush` the next
    block begins a new stream.

    Parameters
    ----------
    fs_in, fs_out : int
        Sampling rates in Hz.
    channels : int, optional
        Channels in a frame.
    order : int, optional
        Half the length of the filter; doubling it gains 7 to 14 dB and narrows the transition, which begins at
        0.95 - 3 / order of half the lower rate. 1 and up; the hold has none.
    kind : {"polyphase", "hold"}, optional
        A windowed-sinc filter for any two rates, or the zero-order hold for 28 pairs, good for integer ratios only.
    compensate : bool, optional
        Drop the delay of the polyphase filter, so that the output stands where the input stood, and ends with it.

    Raises
    ------
    ValueError
        For what is out of range, a pair that the hold does not have, and rates whose filter would take more than 1 GiB, or
        more memory than there is.

    Examples
    --------
    >>> converter = orva.Resampler(44100, 48000)
    >>> blocks = [converter.process(np.ones(441)) for _ in range(4)]
    >>> sum(map(len, blocks)) + len(converter.flush())
    1920
    """

    def __init__(self, fs_in: int, fs_out: int, channels: int = 1, order: int = 30, kind: str = "polyphase",
                 compensate: bool = True) -> None:
        if kind not in KINDS:
            raise ValueError(f"kind must be one of {', '.join(KINDS)}, not {kind!r}")
        self._rates = rate(fs_in, "fs_in"), rate(fs_out, "fs_out")
        common = gcd(*self._rates)
        self._up, self._down = self._rates[1] // common, self._rates[0] // common
        self._config = (f"type={'poly' if kind == 'polyphase' else 'zoh'}; order={whole(order, 'order', 1, MOST)}; "
                        f"delaycompensation={int(compensate)}").encode()
        self._ends_with_input = compensate and kind == "polyphase"
        self._taken = self._given = 0                     # frames of this stream
        count = whole(channels, "channels", 1, MOST)
        super().__init__(count, [self._handle() for _ in range(count)],
                         {"fs_in": self._rates[0], "fs_out": self._rates[1], "channels": count, "order": order,
                          "kind": kind, "compensate": compensate})

    def _handle(self) -> Any:
        return created(lib.ORVA_ResampleInit, lib.ORVA_ResampleDestroy, *self._rates, self._config)

    def process(self, block: npt.ArrayLike) -> Samples:
        """Converts the next block of the stream.

        Parameters
        ----------
        block : array_like
            Frames, or frames x channels; may be empty.

        Returns
        -------
        ndarray of float32
            The frames that are ready, in as many dimensions as `block`. A NaN or an infinity leaves the polyphase filter
            after its length, and never leaves the hold.

        Raises
        ------
        ValueError
            For another number of channels, a block whose result is too long for one call, or after `close`.

        Examples
        --------
        >>> converter = orva.Resampler(8000, 16000, channels=2)
        >>> converter.process(np.ones((100, 2))).shape
        (140, 2)
        """
        x = self._block(block)
        count = len(x)
        room = -(-count * self._up // self._down) + 1 if self._ends_with_input else count * (self._up // self._down + 1) + 1
        if room > MOST or count > MOST:
            raise ValueError(f"a block of {count} frames is too long")
        with self._lock:
            handles = self._handles or self._open()
            if x.ndim == 1:
                y = np.empty(room, FLOAT)
                written = _converted(handles[0], x, y)
                y = y[:written]
            else:
                planes, written = np.empty((self._channels, room), FLOAT), 0
                for handle, source, target in zip(handles, planar(x), planes):
                    written = _converted(handle, source, target)
                y = interleaved(planes[:, :written], x.ndim)
            self._taken += count
            self._given += written
        return y

    def flush(self) -> Samples:
        """The end of the stream; the next block begins a new one.

        Returns
        -------
        ndarray of float32
            What the filter still holds: frames, or frames x channels if there are several. With `compensate` the whole
            output has ceil(n * fs_out / fs_in) frames for n of input.

        Examples
        --------
        >>> converter = orva.Resampler(8000, 16000)
        >>> len(converter.process(np.ones(100))), len(converter.flush())
        (140, 60)
        """
        with self._lock:
            handles = self._open()
            size = lib.ORVA_ResampleFlushBufferSize(handles[0])
            if self._ends_with_input:
                size = -(-self._taken * self._up // self._down) - self._given
            planes = np.empty((self._channels, size), np.float32)
            for handle, target in zip(handles if size else (), planes):
                lib.ORVA_ResampleFlushBuffersEx(handle, pointer(target), size)
            self._handles = [self._handle() for _ in handles]
            self._taken = self._given = 0
        return interleaved(planes, 1 if self._channels == 1 else 2)

    def reset(self) -> None:
        """Begins a new stream and forgets the old one."""
        with self._lock:
            self._handles = [self._handle() for _ in self._open()]
            self._taken = self._given = 0


def _converted(handle: Any, source: Samples, target: Samples) -> int:
    written: int = _resample(handle, pointer(source), pointer(target), len(source))
    if written < 0:
        raise MemoryError("liborva has found no memory")
    return written


def resample(x: npt.ArrayLike, fs_in: int, fs_out: int, order: int = 30, kind: str = "polyphase") -> Samples:
    """Converts a whole signal to another sampling rate.

    Parameters
    ----------
    x : array_like
        Frames, or frames x channels; may be empty.
    fs_in, fs_out : int
        Sampling rates in Hz.
    order : int, optional
        Half the length of the filter, see `Resampler`.
    kind : {"polyphase", "hold"}, optional
        See `Resampler`.

    Returns
    -------
    ndarray of float32
        ceil(n * fs_out / fs_in) frames for n of input, standing where the input stood; of the hold, which lags by a few
        samples, one less at some lengths.

    Raises
    ------
    ValueError
        As for `Resampler`.

    Examples
    --------
    >>> orva.resample(np.ones(1000), 44100, 48000).shape
    (1089,)
    """
    signal = samples(x)
    with Resampler(fs_in, fs_out, signal.shape[1] if signal.ndim == 2 else 1, order, kind) as converter:
        step = max(1, 2**24 * rate(fs_in) // max(rate(fs_in), rate(fs_out)))       # frames at a time
        parts: List[Samples] = [converter.process(signal[n:n + step]) for n in range(0, len(signal), step)]
        parts.append(converter.flush().reshape(-1, *signal.shape[1:]))
    return np.concatenate(parts)
