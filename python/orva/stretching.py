# SPDX-License-Identifier: GPL-2.0-or-later
"""Faster and slower at the same pitch."""
from typing import Any, List, Optional, Tuple

import numpy as np
import numpy.typing as npt
from numpy import empty, multiply

from ._arrays import FLOAT, MOST, Samples, pointer, rate, samples, whole
from ._library import lib
from ._messages import created
from ._stream import Stream

SCALE = np.array(32768, np.float32)    # 16 bits, at which the search is far better; a power of two, so that nothing is rounded
MOST_FRAME_MS = 220
HOPS = 4                      # to play at a time
KEPT = 1 << 12                # samples of a block whose room is kept for the next one

_feed, _play = lib.ORVA_SolafsInputData, lib.ORVA_SolafsOutputData


def _destroy(handle: Any) -> None:
    lib.ORVA_SolafsDestroy(handle)
    lib.KTMEM_DisposeDisplayed()                          # gives back the memory that the call above leaves


class Stretcher(Stream):
    """Time scaling of a stream by SOLAFS: the speed may change at each block.

    Output comes in hops of half a frame, the first as soon as 3.5 frames of input are in. After `flush` the next block
    begins a new stream. A stream takes 255 changes of speed, after which the last one stays in force, and 2**31 - 1
    frames, in or out. A NaN or an infinity spoils the splices near it.

    Parameters
    ----------
    fs : int
        Sampling rate in Hz.
    speed : float, optional
        How much faster the output runs, above 0 and up to 3.
    channels : int, optional
        Channels in a frame. Each is searched for its own splices.
    frame_ms : int, optional
        Length of a frame in milliseconds, up to 220; about 20 suits speech.

    Raises
    ------
    ValueError
        For what is out of range, and for a frame of less than 8 samples.

    Examples
    --------
    >>> slower = orva.Stretcher(8000, speed=0.5)
    >>> y = np.concatenate([slower.process(np.ones(8000)), slower.flush()])
    >>> len(y), slower.hop
    (16000, 80)
    """

    def __init__(self, fs: int, speed: float = 1.0, channels: int = 1, frame_ms: int = 20) -> None:
        fs = rate(fs)
        self._speed = _speed(speed)
        frame = whole(frame_ms, "frame_ms", 1, MOST_FRAME_MS) * fs // 1000 // 8 * 8
        if frame == 0 or frame_ms * fs > MOST:
            raise ValueError(f"a frame of {frame_ms} ms at {fs} Hz has less than 8 samples, or too many")
        self._fs, self._frame, self._frame_ms = fs, frame, frame_ms
        self._ended: Optional[List[Any]] = None           # handles of the stream before, for their positions
        count = whole(channels, "channels", 1, MOST)
        self._every = range(count)                        # channel
        self._room = HOPS * self.hop                      # frames to play at a time
        self._played = empty(self._room * count, FLOAT)
        self._place = pointer(self._played)
        self._scaled = self._room_for(empty(0, FLOAT))
        super().__init__(count, [self._handle(count) for _ in range(count)],
                         {"fs": fs, "speed": speed, "channels": count, "frame_ms": frame_ms})

    def _handle(self, channels: int) -> Any:
        return created(lib.ORVA_SolafsCreate, _destroy, self._frame_ms, self._fs, channels)

    def _room_for(self, x: Samples) -> Tuple[Samples, Any]:
        """What takes a block at 16 bits, and its place; kept for those that follow, if it is small."""
        room = empty(x.shape, FLOAT)
        both = room, pointer(room)
        if room.size <= KEPT:
            self._scaled = both
        return both

    @property
    def hop(self) -> int:
        """Frames in which the output comes."""
        return self._frame // 2

    def process(self, block: npt.ArrayLike, speed: Optional[float] = None) -> Samples:
        """Takes the next block of the stream and gives what can be played.

        Parameters
        ----------
        block : array_like
            Frames, or frames x channels, full scale 1.0; may be empty.
        speed : float, optional
            The speed from this block on.

        Returns
        -------
        ndarray of float32
            Whole hops, in as many dimensions as `block`. At a speed of 1 from the beginning on, the input itself.

        Raises
        ------
        ValueError
            For another number of channels, a speed out of range, a stream that has become too long, or after `close`.

        Examples
        --------
        >>> stretcher = orva.Stretcher(8000, speed=2.0)
        >>> len(stretcher.process(np.ones(8000))), len(stretcher.process(np.ones(8000), speed=0.5))
        (3760, 14880)
        """
        x = self._block(block)
        with self._lock:
            handles = self._handles or self._open()
            if speed is not None:
                self._speed = _speed(speed)
            scaled, place = self._scaled
            if scaled.shape != x.shape:
                scaled, place = self._room_for(x)
            multiply(x, SCALE, scaled)
            return self._push(handles, scaled, place)

    def flush(self) -> Samples:
        """The end of the stream, brought out by 3.5 frames of silence; the next block begins a new one.

        Returns
        -------
        ndarray of float32
            Whole hops: frames, or frames x channels if there are several.

        Examples
        --------
        >>> stretcher = orva.Stretcher(8000, speed=2.0)
        >>> len(stretcher.process(np.ones(8000))), len(stretcher.flush())
        (3760, 240)
        """
        tail = 7 * self._frame // 2
        with self._lock:
            silence = np.zeros((tail, self._channels) if self._channels > 1 else tail, np.float32)
            played = self._push(self._open(), silence, pointer(silence))
            self._ended, self._handles = self._open(), [self._handle(self._channels) for _ in range(self._channels)]
        return played

    def reset(self) -> None:
        """Begins a new stream and forgets the old one."""
        with self._lock:
            self._open()
            self._handles, self._ended = [self._handle(self._channels) for _ in range(self._channels)], None

    def position(self, frame: int) -> int:
        """The place in the input that is heard at a place in the output, for a cursor on the screen.

        Parameters
        ----------
        frame : int
            A frame of the output, counted from the first; after `flush`, until the next block, of the stream that has ended.

        Returns
        -------
        int
            A frame of the input. It follows from the speeds given, and is off by up to two frames of `frame_ms`. Before
            the first block, 0.

        Examples
        --------
        >>> stretcher = orva.Stretcher(8000, speed=2.0)
        >>> _ = stretcher.process(np.ones(8000))
        >>> stretcher.position(1000)
        2000
        """
        with self._lock:
            handles = self._ended or self._open()
            return int(lib.ORVA_SolafsTranslateCursorPosition(handles[0], whole(frame, "frame", -2**63, 2**63 - 1)))

    def _push(self, handles: List[Any], x: Samples, place: Any) -> Samples:
        """Offers samples, which stand at a place, until all are taken, and pulls after each offer."""
        self._ended = None
        parts: List[Samples] = []
        left, taken, written = len(x), 0, 0
        while True:
            count = left if left < MOST else MOST
            for channel in self._every:
                taken = _feed(handles[channel], channel, place, count, self._speed)
                written = _play(handles[channel], channel, self._place, self._room)
            left -= taken
            if written:
                self._keep(handles, written, parts)
            elif left and not taken:
                raise ValueError(f"the stream is too long, {MOST} frames are the most")
            if not left:
                break
            place += taken * self._channels
        y = np.concatenate(parts) / SCALE if parts else empty(0, FLOAT)
        return y if x.ndim == 1 else y.reshape(-1, self._channels)

    def _keep(self, handles: List[Any], written: int, parts: List[Samples]) -> None:
        """Adds what was played, and all that can be played after it."""
        while written:
            parts.append(self._played[:written * self._channels].copy())
            if written < self._room:                      # there was no more
                break
            for channel in self._every:
                written = _play(handles[channel], channel, self._place, self._room)


def _speed(speed: float) -> float:
    if not 0 < speed <= 3:
        raise ValueError(f"speed must be above 0 and at most 3, not {speed!r}")
    return float(speed)


def stretch(x: npt.ArrayLike, fs: int, speed: float, frame_ms: int = 20) -> Samples:
    """A whole signal faster or slower at the same pitch.

    Parameters
    ----------
    x : array_like
        Frames, or frames x channels, full scale 1.0; may be empty.
    fs : int
        Sampling rate in Hz.
    speed : float
        How much faster, above 0 and up to 3.
    frame_ms : int, optional
        Length of a frame in milliseconds, up to 220; about 20 suits speech.

    Returns
    -------
    ndarray of float32
        Whole hops of half a frame, about n / speed frames for n of input and never less. A NaN or an infinity spoils the
        splices near it.

    Raises
    ------
    ValueError
        As for `Stretcher`.

    Examples
    --------
    >>> len(orva.stretch(np.ones(16000), fs=16000, speed=2.0))
    8000
    """
    signal = samples(x)
    with Stretcher(fs, speed, signal.shape[1] if signal.ndim == 2 else 1, frame_ms) as stretcher:
        played = stretcher.process(signal)
        return np.concatenate([played, stretcher.flush().reshape(-1, *played.shape[1:])])
