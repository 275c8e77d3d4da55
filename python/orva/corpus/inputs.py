# SPDX-License-Identifier: GPL-2.0-or-later
"""The recordings that are asked for, and the names of their results."""
import os
from typing import Dict, Iterable, Iterator, List, Tuple

#: What a recording in a folder ends with; a file that is named itself may end with anything.
ENDINGS = (".aif", ".aifc", ".aiff", ".au", ".caf", ".flac", ".mp3", ".oga", ".ogg", ".opus", ".snd", ".sph", ".voc", ".w64",
           ".wav")


def recordings(files: Iterable[str]) -> List[Tuple[str, str]]:
    """Names and absolute paths of some files and of all recordings in some folders, sorted by name.

    The name is the path as given, without what leads out of the folder of results: ``/data/a.wav`` is ``data/a.wav``.
    """
    found: Dict[str, str] = {}
    for given in files:
        for path in _within(given) if os.path.isdir(given) else (given,):
            name = os.path.normpath(path)
            if name.startswith(".."):
                name = os.path.abspath(name)
            name, place = name.lstrip("/"), os.path.abspath(path)
            if found.setdefault(name, place) != place:
                raise ValueError(f"{found[name]} and {place} would have results of one name")
    return sorted(found.items())


def _within(folder: str) -> Iterator[str]:
    for path, folders, files in os.walk(folder):
        folders[:] = [name for name in folders if not name.startswith(".")]
        for name in files:
            if name.lower().endswith(ENDINGS) and not name.startswith("."):
                yield os.path.join(path, name)
