# SPDX-License-Identifier: GPL-2.0-or-later
"""The steps that measure the sound in frames, where they stand in the stream."""
import math
from typing import Any, Dict, List, Tuple, Union

import numpy as np
import numpy.typing as npt

from .._arrays import Samples
from ..correlation import correlate
from ..measures import energy_db, zero_cross_rate
from .mel import Bank
from .recipe import Delay, Measures, Measuring, Mel

Value = Union[int, float, str]
Rows = Dict[str, npt.NDArray[Any]]

_NO_LEVEL = 0.0           # what energy_db gives for silence


class Frames:
    """Cuts a stream into frames that overlap or have gaps between them; the rest of a frame waits for the next block."""

    def __init__(self, length: int, hop: int) -> None:
        self.length, self.hop = length, hop
        self.count = 0                                    # frames so far
        self._rest = np.empty(0, np.float32)
        self._gap = 0                                     # samples before the next frame that belong to none

    def take(self, block: Samples) -> Samples:
        """The samples of as many whole frames as there are now, as one piece in which each begins a hop after the last."""
        x: Samples = np.concatenate([self._rest.reshape(-1, *block.shape[1:]), block])
        skipped = min(self._gap, len(x))
        x, self._gap = x[skipped:], self._gap - skipped
        count = max(0, (len(x) - self.length) // self.hop + 1)
        self.count += count
        self._rest = x[count * self.hop:]
        self._gap += max(0, count * self.hop - len(x))
        return x[:(count - 1) * self.hop + self.length] if count else x[:0]


class Meter:
    """A measuring step at its place in the stream: passes the sound on as it is, and keeps rows of arrays."""

    def __init__(self, step: Measuring, fs: int, channels: int) -> None:
        self.step, self.fs, self.channels = step, fs, channels
        self._frames = Frames(step.length(fs), step.hop(fs))
        self._rows: List[Rows] = []

    def process(self, block: Samples) -> Samples:
        """Measures the next frames."""
        first = self._frames.count
        piece = self._frames.take(block)
        if len(piece):
            starts = np.arange(first, self._frames.count) * self._frames.hop
            self._rows.append({"times": (starts + self._frames.length / 2) / self.fs, **self.measure(piece)})
        return block

    def taken(self) -> List[Rows]:
        """What has been measured since this was last asked for."""
        rows, self._rows = self._rows, []
        return rows

    def flush(self) -> Samples:
        """The end of the stream; what is no whole frame is not measured."""
        return np.empty((0, self.channels) if self.channels > 1 else 0, np.float32)

    def columns(self) -> Dict[str, Tuple[int, ...]]:
        """The arrays besides the times, all of float32, and what follows the frames in their shapes."""
        raise NotImplementedError

    def constants(self) -> Rows:
        """What is the same for all frames."""
        return {}

    def measure(self, piece: Samples) -> Rows:
        """The rows of the frames of a piece."""
        raise NotImplementedError

    def summary(self) -> Dict[str, Value]:
        """What the line of the recording in the table says of all frames."""
        return {"frames": self._frames.count}


class MeasuresMeter(Meter):
    """Energy and zero crossings."""

    def __init__(self, step: Measures, fs: int, channels: int) -> None:
        super().__init__(step, fs, channels)
        self._levels = self._crossings = 0.0
        self._loud, self._most = 0, -math.inf             # frames that have a level, and the highest

    def columns(self) -> Dict[str, Tuple[int, ...]]:
        return {"energy_db": (self.channels,), "zero_cross_rate": (self.channels,)}

    def measure(self, piece: Samples) -> Rows:
        both = piece.reshape(-1, self.channels)
        energy, rate = (measure(both, self._frames.length, self._frames.hop) for measure in (energy_db, zero_cross_rate))
        levels = energy[energy != _NO_LEVEL].tolist()
        self._loud += len(levels)
        self._levels += math.fsum(levels)
        self._most = max(self._most, *levels) if levels else self._most
        self._crossings += math.fsum(rate.ravel().tolist())
        return {"energy_db": energy, "zero_cross_rate": rate}

    def summary(self) -> Dict[str, Value]:
        count = self._frames.count * self.channels
        return {**super().summary(), "energy_db_mean": self._levels / self._loud if self._loud else "",
                "energy_db_most": self._most if self._loud else "",
                "zero_cross_rate_mean": self._crossings / count if count else ""}


class MelMeter(Meter):
    """Bands of the mel scale."""

    def __init__(self, step: Mel, fs: int, channels: int) -> None:
        super().__init__(step, fs, channels)
        self._bank = Bank(fs, self._frames.length, step.bands, step.low_hz, step.high_hz or fs / 2, step.floor)

    def columns(self) -> Dict[str, Tuple[int, ...]]:
        return {"decibels": (self._bank.bands, self.channels)}

    def constants(self) -> Rows:
        return {"hz": self._bank.hz}

    def measure(self, piece: Samples) -> Rows:
        planes = piece.reshape(-1, self.channels).T
        return {"decibels": np.stack([self._bank.decibels(plane, self._frames.hop) for plane in planes], axis=-1)}


class DelayMeter(Meter):
    """Delays between the first channel and each other one."""

    def __init__(self, step: Delay, fs: int, channels: int) -> None:
        super().__init__(step, fs, channels)
        self._phat, self._most = step.phat, max(1, round(fs * step.most_ms / 1000))
        self._peak, self._seconds = -1.0, [math.nan] * (channels - 1)

    def columns(self) -> Dict[str, Tuple[int, ...]]:
        return {"seconds": (self.channels - 1,), "peak": (self.channels - 1,)}

    def measure(self, piece: Samples) -> Rows:
        length, hop, others = self._frames.length, self._frames.hop, self.channels - 1
        planes = np.ascontiguousarray(piece.reshape(-1, self.channels).T)
        count = (len(piece) - length) // hop + 1
        seconds, peaks = np.empty((count, others), np.float32), np.empty((count, others), np.float32)
        for frame in range(count):
            part = planes[:, frame * hop:frame * hop + length]
            for other in range(others):
                r = np.abs(correlate(part[0], part[other + 1], self._phat)[length - 1 - self._most:length + self._most])
                lag = int(r.argmax())                     # of the first not-a-number, where there is one
                peaks[frame, other] = r[lag]
                seconds[frame, other] = (lag - self._most) / self.fs if r[lag] > 0 else math.nan
            self._note(seconds[frame], peaks[frame])
        return {"seconds": seconds, "peak": peaks}

    def _note(self, seconds: Samples, peaks: Samples) -> None:
        """Keeps the delays of the frame whose peaks are the clearest."""
        least = float(peaks.min()) if peaks.size else math.nan
        if least > max(self._peak, 0.0):
            self._peak, self._seconds = least, seconds.tolist()

    def summary(self) -> Dict[str, Value]:
        told = "" if self._peak < 0 else " ".join(map(repr, self._seconds))
        return {**super().summary(), "seconds": told, "peak": self._peak if self._peak >= 0 else ""}


def meter(step: Measuring, fs: int, channels: int) -> Meter:
    """The meter of a step."""
    if isinstance(step, Measures):
        return MeasuresMeter(step, fs, channels)
    return MelMeter(step, fs, channels) if isinstance(step, Mel) else DelayMeter(step, fs, channels)
