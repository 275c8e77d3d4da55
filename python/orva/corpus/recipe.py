# SPDX-License-Identifier: GPL-2.0-or-later
"""What is to be done with each recording, from a file of TOML."""
import dataclasses
import json
import sys
from dataclasses import dataclass
from importlib import import_module
from os import PathLike
from pathlib import Path
from typing import Any, Dict, List, Mapping, Optional, Tuple, Type, Union

import numpy as np

from .._arrays import MOST, rate, whole
from .._library import lib, version
from ..filters import Filter
from ..resampling import KINDS
from ..stretching import Stretcher

#: Sound files that come out with the same bytes each time, and the kinds of samples that they take.
SOUNDS: Dict[str, Tuple[str, ...]] = {
    "wav": ("PCM_16", "PCM_24"), "flac": ("PCM_16", "PCM_24"), "w64": ("PCM_16", "PCM_24", "FLOAT")}
ARRAYS = ("npz", "zarr")


@dataclass(frozen=True)
class RemoveDc:
    """Takes a constant offset away, as `orva.remove_dc` does."""


@dataclass(frozen=True)
class Resample:
    """Converts to the sampling rate `fs` in Hz; the others as for `orva.Resampler`."""
    fs: int
    order: int = 30
    kind: str = "polyphase"

    def __post_init__(self) -> None:
        rate(self.fs)
        whole(self.order, "order", 1, MOST)
        if self.kind not in KINDS:
            raise ValueError(f"kind must be one of {', '.join(KINDS)}, not {self.kind!r}")


@dataclass(frozen=True)
class FilterBy:
    """Filters by a text, in which edges are in Hz, or by second-order sections, rows of six numbers."""
    text: str = ""
    sos: Tuple[Tuple[float, ...], ...] = ()

    def __post_init__(self) -> None:
        if bool(self.text) == bool(self.sos):
            raise ValueError("a filter has text or sos")
        if self.sos:
            Filter(sos=self.sos)


@dataclass(frozen=True)
class Stretch:
    """Faster, above 1, or slower at the same pitch, as by `orva.Stretcher`."""
    speed: float
    frame_ms: int = 20

    def __post_init__(self) -> None:
        Stretcher(48000, self.speed, 1, self.frame_ms)


@dataclass(frozen=True)
class Framed:
    """What is measured in frames of `frame_ms`, one each `hop_ms`, both in milliseconds."""
    frame_ms: float = 25.0
    hop_ms: float = 10.0
    name: str = ""

    def __post_init__(self) -> None:
        for key in ("frame_ms", "hop_ms"):
            if not 0 < getattr(self, key) <= 60000:
                raise ValueError(f"{key} must be above 0 and at most 60000, not {getattr(self, key)!r}")
        if not self.name.isidentifier():
            raise ValueError(f"name must be a word, not {self.name!r}")

    def length(self, fs: int) -> int:
        """Samples in a frame."""
        return max(1, round(fs * self.frame_ms / 1000))

    def hop(self, fs: int) -> int:
        """Samples from a frame to the next."""
        return max(1, round(fs * self.hop_ms / 1000))


@dataclass(frozen=True)
class Measures(Framed):
    """Energy in dB and zero-crossing rate of each channel, as of `orva.energy_db` and `orva.zero_cross_rate`."""
    name: str = "measures"


@dataclass(frozen=True)
class Mel(Framed):
    """Decibels of each channel in bands that are evenly spaced in mel, from `low_hz` to `high_hz`, 0 for half of fs."""
    name: str = "mel"
    bands: int = 40
    low_hz: float = 0.0
    high_hz: float = 0.0
    floor: float = -120.0

    def __post_init__(self) -> None:
        super().__post_init__()
        if not 2 <= self.bands <= 1024:
            raise ValueError(f"bands must be from 2 to 1024, not {self.bands}")
        if self.low_hz < 0 or self.high_hz and self.high_hz <= self.low_hz:
            raise ValueError(f"low_hz and high_hz must ascend from 0, not {self.low_hz} and {self.high_hz}")


@dataclass(frozen=True)
class Delay(Framed):
    """By how much the first channel is later than each other one, as by `orva.find_delay`, at most `most_ms`."""
    frame_ms: float = 200.0
    hop_ms: float = 100.0
    name: str = "delay"
    most_ms: float = 20.0
    phat: bool = True

    def __post_init__(self) -> None:
        super().__post_init__()
        if not 0 < self.most_ms < self.frame_ms:
            raise ValueError(f"most_ms must be above 0 and below frame_ms, not {self.most_ms}")


Change = Union[RemoveDc, Resample, FilterBy, Stretch]
Measuring = Union[Measures, Mel, Delay]
Step = Union[Change, Measuring]
STEPS: Dict[str, Type[Any]] = {"remove_dc": RemoveDc, "resample": Resample, "filter": FilterBy, "stretch": Stretch,
                               "measures": Measures, "mel": Mel, "delay": Delay}


@dataclass(frozen=True)
class Recipe:
    """Steps in their order, and what is kept of each recording.

    Parameters
    ----------
    steps : tuple of steps
        Those that change the sound, and those that measure it where they stand.
    sound : {"", "wav", "flac", "w64"}, optional
        The kind of sound file to write the changed sound to; none by default.
    subtype : {"PCM_16", "PCM_24", "FLOAT"}, optional
        How its samples are stored; FLOAT, which keeps their bits, in w64.
    arrays : {"", "npz", "zarr"}, optional
        The kind of file for what is measured in frames; none by default.
    """
    steps: Tuple[Step, ...]
    sound: str = ""
    subtype: str = "PCM_16"
    arrays: str = ""

    def __post_init__(self) -> None:
        if self.sound and self.subtype not in SOUNDS.get(self.sound, ()):
            kinds = "; ".join(f"{sound} of {', '.join(subtypes)}" for sound, subtypes in SOUNDS.items())
            raise ValueError(f"there is no sound {self.sound} of {self.subtype}, but {kinds}")
        if self.arrays and self.arrays not in ARRAYS:
            raise ValueError(f"there are no arrays {self.arrays!r}, but {', '.join(ARRAYS)}")
        names = [step.name for step in self.steps if isinstance(step, Framed)]
        if len(set(names)) != len(names):
            raise ValueError("two steps have one name; give one of them another")
        if self.arrays and not names:
            raise ValueError("there are arrays to be kept, but no step that measures")

    def text(self) -> str:
        """The recipe and the version of the library.

        Returns
        -------
        str
            JSON, the same for whatever gives the same results.
        """
        steps = [{"do": word, **dataclasses.asdict(step)} for step in self.steps
                 for word, kind in STEPS.items() if type(step) is kind]
        return json.dumps({"liborva": version(lib), "steps": steps, "sound": self.sound, "subtype": self.subtype,
                           "arrays": self.arrays}, indent=1) + "\n"


def read_recipe(source: Union[str, "PathLike[str]", Mapping[str, Any], Recipe]) -> Recipe:
    """A recipe from a file of TOML, or from what such a file holds.

    Parameters
    ----------
    source : str, path, mapping or Recipe
        The file's name, or its content as `tomllib` gives it.

    Returns
    -------
    Recipe
        Checked as far as it can be without a recording.

    Raises
    ------
    ValueError
        For what is no recipe, with the step and the key at fault.
    OSError
        If the file cannot be read.

    Examples
    --------
    >>> from orva.corpus import read_recipe
    >>> read_recipe({"steps": [{"do": "resample", "fs": 16000}], "outputs": {"sound": "flac"}}).steps
    (Resample(fs=16000, order=30, kind='polyphase'),)
    """
    if isinstance(source, Recipe):
        return source
    content = source if isinstance(source, Mapping) else _toml(Path(source))
    unknown = set(content) - {"steps", "outputs"}
    if unknown or not isinstance(content.get("steps"), list):
        raise ValueError(f"a recipe has steps, a list, and outputs, not {', '.join(sorted(unknown)) or 'these'}")
    outputs = _values(Recipe, content.get("outputs", {}), "outputs", left_out="steps")
    return Recipe(tuple(_step(n, step) for n, step in enumerate(content["steps"], 1)), **outputs)


def _toml(path: Path) -> Dict[str, Any]:
    toml: Any = import_module("tomllib" if sys.version_info >= (3, 11) else "tomli")
    with path.open("rb") as file:
        try:
            content: Dict[str, Any] = toml.load(file)
        except ValueError as error:
            raise ValueError(f"{path} is no TOML: {error}") from None
    return content


def _step(number: int, table: Any) -> Step:
    word = table.get("do") if isinstance(table, Mapping) else None
    if word not in STEPS:
        raise ValueError(f"step {number} must do one of {', '.join(STEPS)}, not {word!r}")
    where = f"step {number}, {word}"
    values = _values(STEPS[word], {key: value for key, value in table.items() if key != "do"}, where)
    try:
        step: Step = STEPS[word](**values)
    except ValueError as error:
        raise ValueError(f"{where}: {error}") from None
    return step


def _values(kind: Type[Any], table: Any, where: str, left_out: str = "") -> Dict[str, Any]:
    """The entries of a table as the fields of a record want them."""
    if not isinstance(table, Mapping):
        raise ValueError(f"{where}: must be a table")
    fields = {field.name: field for field in dataclasses.fields(kind) if field.name != left_out}
    for key in table:
        if key not in fields:
            raise ValueError(f"{where}: has {', '.join(fields) or 'no keys'}, but no {key}")
    for name, field in fields.items():
        if field.default is dataclasses.MISSING and name not in table:
            raise ValueError(f"{where}: {name} is missing")
    return {key: _value(fields[key].type, value, f"{where}: {key}") for key, value in table.items()}


def _value(kind: Any, value: Any, where: str) -> Any:
    if kind is float and type(value) in (int, float) and np.isfinite(value):
        return float(value)
    if kind in (int, str, bool) and type(value) is kind:
        return value
    if kind not in (int, float, str, bool) and (rows := _rows(value)) is not None:
        return rows
    raise ValueError(f"{where} must be {kind.__name__ if isinstance(kind, type) else 'rows of numbers'}, not {value!r}")


def _rows(value: Any) -> Optional[Tuple[Tuple[float, ...], ...]]:
    try:
        rows: List[List[float]] = np.asarray(value, np.float64).tolist()
        return tuple(tuple(row) for row in rows)
    except (TypeError, ValueError):
        return None
