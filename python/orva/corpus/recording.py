# SPDX-License-Identifier: GPL-2.0-or-later
"""One recording from its file to its results, block by block."""
import os
from contextlib import ExitStack
from pathlib import Path
from typing import Iterator, List, NamedTuple, Optional, Protocol, Sequence, Tuple

import numpy as np

from .._arrays import Samples
from .arrays import Arrays
from .folder import Folder, Line
from .frames import Meter, meter
from .recipe import Framed, Recipe, Step
from .sound import Sound
from .source import BadRecording, Recording
from .streams import stream


class Outcome(NamedTuple):
    """What became of a recording."""

    name: str
    """Its name in the results."""
    line: Optional[Line]
    """Its line in the table, or None if it failed."""
    reason: str
    """Why it failed, or nothing."""
    new: bool
    """Whether it was made now, and not in an earlier run."""


class Link(Protocol):
    """What blocks go through: a stream or a meter."""

    def process(self, block: Samples) -> Samples:
        """The next block."""

    def flush(self) -> Samples:
        """The end of the stream."""


class Chain:
    """The steps of a recipe for one recording, one after the other; `fs` is the sampling rate at the end, in Hz."""

    def __init__(self, steps: Sequence[Step], fs: int, channels: int) -> None:
        self.links: List[Link] = []
        self.fs = fs
        for step in steps:
            if isinstance(step, Framed):
                self.links.append(meter(step, self.fs, channels))
            else:
                changed, self.fs = stream(step, self.fs, channels)
                self.links.append(changed)

    @property
    def meters(self) -> Tuple[Meter, ...]:
        """Those links that measure."""
        return tuple(link for link in self.links if isinstance(link, Meter))

    def process(self, block: Samples) -> Samples:
        """The next block through all links."""
        for link in self.links:
            block = link.process(block)
        return block

    def flush(self, none: Samples) -> Samples:
        """The ends of all links, each through those after it; `none`, of no frames, goes in."""
        for link in self.links:
            none = np.concatenate([link.process(none), link.flush()])
        return none


def _through(chain: Chain, recording: Recording) -> Iterator[Tuple[int, Samples]]:
    """What comes out of the chain, block by block, each with how many frames went in for it."""
    try:
        none = np.empty((0, recording.channels) if recording.channels > 1 else 0, np.float32)
        for block in recording.blocks():
            yield len(block), chain.process(block)
        yield 0, chain.flush(none)
    except ValueError as error:                           # in the words of the library
        raise BadRecording(str(error)) from None


def make(recipe: Recipe, path: str, part: Path) -> Line:
    """Writes the results of the recording at `path` into `part`, and gives its line in the table."""
    with ExitStack() as stack:
        recording = Recording(path)
        stack.callback(recording.close)
        fs, channels = recording.fs, recording.channels
        try:
            chain = Chain(recipe.steps, fs, channels)
        except ValueError as error:
            raise BadRecording(f"{fs} Hz of {channels} channels: {error}") from None
        made = part / "made"
        arrays = stack.enter_context(Arrays(chain.meters, part)) if recipe.arrays else None
        sound = stack.enter_context(Sound(made / f"sound.{recipe.sound}", chain.fs, channels, recipe.subtype)) \
            if recipe.sound else None
        taken = given = 0
        for frames, block in _through(chain, recording):
            taken, given = taken + frames, given + len(block)
            if sound:
                sound.write(block)
            rows = [link.taken() for link in chain.meters]
            if arrays:
                arrays.append(rows)
        if arrays:
            arrays.write(recipe.arrays, made / "arrays")
    line: Line = {"bytes": recording.bytes, "fs": fs, "channels": channels, "frames": taken, "seconds": taken / fs,
                  "fs_out": chain.fs, "frames_out": given}
    for link in chain.meters:
        line.update({f"{link.step.name}_{name}": value for name, value in link.summary().items()})
    return line


def outcome(recipe: Recipe, folder: Folder, name: str, path: str) -> Outcome:
    """Makes the results of a recording unless they are there; a bad one is told, and an error of the folder raised."""
    try:
        line = folder.line(name, os.stat(path).st_size)
        if line is not None:
            return Outcome(name, line, "", False)
    except (OSError, ValueError):
        pass                                              # opening it will tell why
    with folder.part() as part:
        try:
            line = make(recipe, path, part)
        except BadRecording as error:
            return Outcome(name, None, str(error), True)
        except MemoryError:
            return Outcome(name, None, "no memory", True)
        folder.publish(part, name, line)
    return Outcome(name, line, "", True)


def outcomes(recipe: Recipe, folder: Folder, batch: Sequence[Tuple[str, str]]) -> List[Outcome]:
    """What becomes of some recordings, one after the other, each given by name and path."""
    return [outcome(recipe, folder, name, path) for name, path in batch]
