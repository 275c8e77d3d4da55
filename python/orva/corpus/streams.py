# SPDX-License-Identifier: GPL-2.0-or-later
"""The steps that change the sound, as streams."""
from typing import Tuple, Union

from ..filters import Filter
from ..resampling import Resampler
from ..stretching import Stretcher
from .recipe import Change, FilterBy, Resample, Stretch

# What `orva.remove_dc` computes, whose every call starts from silence, as a section for a stream.
DC_SECTION = ((0.9272743463516235, -1.8544940948486328, 0.9272743463516235,
               1.0, -1.9059464931488037, 0.9114024043083191),)


def stream(step: Change, fs: int, channels: int) -> Tuple[Union[Filter, Resampler, Stretcher], int]:
    """The stream of a step, and the sampling rate of what comes out of it, in Hz."""
    if isinstance(step, Resample):
        return Resampler(fs, step.fs, channels, step.order, step.kind), step.fs
    if isinstance(step, Stretch):
        return Stretcher(fs, step.speed, channels, step.frame_ms), fs
    if isinstance(step, FilterBy) and step.text:
        return Filter(step.text, fs=fs, channels=channels), fs
    return Filter(sos=step.sos if isinstance(step, FilterBy) else DC_SECTION, channels=channels), fs
