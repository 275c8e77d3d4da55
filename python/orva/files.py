# SPDX-License-Identifier: GPL-2.0-or-later
"""Sound files, by the package soundfile (Debian's python3-soundfile)."""
from contextlib import contextmanager
from os import PathLike
from typing import Any, Iterator, Tuple, Union

import numpy.typing as npt

from ._arrays import Samples, samples, whole

Path = Union[str, "PathLike[str]"]


@contextmanager
def _soundfile() -> Iterator[Any]:
    """The package soundfile, whose errors become those of files."""
    import soundfile
    try:
        yield soundfile
    except soundfile.SoundFileError as error:
        raise OSError(str(error)) from None


def read(path: Path) -> Tuple[Samples, int]:
    """Reads a sound file.

    Parameters
    ----------
    path : str or path
        A file of any format that libsndfile reads.

    Returns
    -------
    x : ndarray of float32
        Frames, or frames x channels if there are several; full scale is 1.0.
    fs : int
        Sampling rate in Hz.

    Raises
    ------
    OSError
        If there is no such file, or it is not a sound.
    ImportError
        Without the package soundfile.

    Examples
    --------
    >>> orva.write("tone.wav", 0.5 * np.sin(np.arange(1000) / 10), 8000)
    >>> x, fs = orva.read("tone.wav")
    >>> x.shape, fs
    ((1000,), 8000)
    """
    with _soundfile() as soundfile:
        x, fs = soundfile.read(path, dtype="float32")
    return x, int(fs)


def blocks(path: Path, frames: int) -> Iterator[Samples]:
    """Reads a sound file block by block, for one that is longer than the memory.

    Parameters
    ----------
    path : str or path
        A file of any format that libsndfile reads.
    frames : int
        Frames in a block, 1 and up; the last may be shorter.

    Yields
    ------
    ndarray of float32
        Frames, or frames x channels if there are several.

    Raises
    ------
    OSError
        If there is no such file, or it is not a sound.
    ImportError
        Without the package soundfile.

    Examples
    --------
    >>> orva.write("tone.wav", 0.5 * np.sin(np.arange(1000) / 10), 8000)
    >>> lowpass = orva.Filter("order=4; fpass=500", fs=8000)
    >>> [len(lowpass(block)) for block in orva.blocks("tone.wav", 480)]
    [480, 480, 40]
    """
    size = whole(frames, "frames", 1, 2**31 - 1)
    with _soundfile() as soundfile, soundfile.SoundFile(path) as sound:
        yield from sound.blocks(size, dtype="float32")


def write(path: Path, x: npt.ArrayLike, fs: int, subtype: str = "FLOAT") -> None:
    """Writes a sound file.

    Parameters
    ----------
    path : str or path
        The file; its ending tells the format, such as ``.wav`` or ``.flac``.
    x : array_like
        Frames, or frames x channels; full scale is 1.0.
    fs : int
        Sampling rate in Hz.
    subtype : str, optional
        How samples are stored: ``"FLOAT"`` keeps their bits; ``"PCM_16"``, ``"PCM_24"`` and others round.

    Raises
    ------
    OSError
        If the file cannot be written.
    ValueError
        For a format that has no such subtype.
    ImportError
        Without the package soundfile.

    Examples
    --------
    >>> orva.write("silence.flac", np.zeros((8000, 2)), 8000, "PCM_16")
    """
    with _soundfile() as soundfile:
        soundfile.write(path, samples(x), whole(fs, "fs", 1, 2**31 - 1), subtype=subtype)
