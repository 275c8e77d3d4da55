# SPDX-License-Identifier: GPL-2.0-or-later
"""The tables of a run, sorted by name: one of what is complete, one of what has failed."""
import csv
from pathlib import Path
from typing import Any, Iterable, List

from .folder import Folder
from .recording import Outcome


def write_tables(folder: Folder, outcomes: Iterable[Outcome]) -> None:
    """Writes both tables, each in one step."""
    every = sorted(outcomes, key=lambda outcome: outcome.name)
    complete = [{"file": outcome.name, **outcome.line} for outcome in every if outcome.line is not None]
    _write(folder, folder.table, list(complete[0]) if complete else ["file"], (line.values() for line in complete))
    _write(folder, folder.failures, ["file", "reason"],
           ((outcome.name, outcome.reason) for outcome in every if outcome.line is None))


def _write(folder: Folder, path: Path, head: List[str], lines: Iterable[Iterable[Any]]) -> None:
    with folder.replacing(path) as part, part.open("w", newline="", encoding="utf-8", errors="surrogateescape") as file:
        table = csv.writer(file, lineterminator="\n")
        table.writerow(head)
        table.writerows(lines)
