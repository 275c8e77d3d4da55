# SPDX-License-Identifier: GPL-2.0-or-later
"""The folder of results.

    recipe.json               what all of it was made by
    table.csv, failures.csv   a line a recording
    recordings/NAME/          of one recording: sound.*, arrays.*, and line.json
    .parts/                   what is not complete

The folder of a recording comes into its place in one step and whole, so what can be seen there is complete.
"""
import fcntl
import json
import os
import shutil
import tempfile
from contextlib import contextmanager
from pathlib import Path
from typing import Any, Dict, Iterator, Optional

from .recipe import Recipe

Line = Dict[str, Any]


class Folder:
    """Where results go."""

    def __init__(self, path: str) -> None:
        self.path = Path(path)
        self.table, self.failures = self.path / "table.csv", self.path / "failures.csv"
        self._parts = self.path / ".parts"

    def recording(self, name: str) -> Path:
        """The folder of a recording."""
        return self.path / "recordings" / name

    def line(self, name: str, size: int) -> Optional[Line]:
        """The line of a recording of `size` bytes that is complete, if it is."""
        try:
            line: Line = json.loads((self.recording(name) / "line.json").read_text("utf-8"))
        except FileNotFoundError:
            return None
        return line if line["bytes"] == size else None

    @contextmanager
    def claimed(self, recipe: Recipe) -> Iterator[None]:
        """Makes the folder, for one run at a time, and clears away what earlier ones have left half-done."""
        self.path.mkdir(parents=True, exist_ok=True)
        with (self.path / ".lock").open("w") as lock:
            try:
                fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
            except BlockingIOError:
                raise ValueError(f"another run works into {self.path}") from None
            self._check(recipe)
            shutil.rmtree(self._parts, ignore_errors=True)
            self._parts.mkdir()
            try:
                yield
            finally:
                shutil.rmtree(self._parts, ignore_errors=True)

    def _check(self, recipe: Recipe) -> None:
        path, text = self.path / "recipe.json", recipe.text()
        try:
            if path.read_text("utf-8") != text:
                raise ValueError(f"{self.path} was made by another recipe or version, see {path}; take another folder")
        except FileNotFoundError:
            with self.replacing(path) as part:
                part.write_text(text, "utf-8")

    @contextmanager
    def replacing(self, path: Path) -> Iterator[Path]:
        """A name to write a file by, which then takes the place of `path` in one step."""
        part = path.with_name(f".{path.name}.part")
        try:
            yield part
            os.replace(part, path)
        finally:
            part.unlink(missing_ok=True)

    @contextmanager
    def part(self) -> Iterator[Path]:
        """A folder to work in that nobody sees, gone at the end; in it, `made`, for what is to be published."""
        part = Path(tempfile.mkdtemp(dir=self._parts))
        try:
            (part / "made").mkdir()
            yield part
        finally:
            shutil.rmtree(part, ignore_errors=True)

    def publish(self, part: Path, name: str, line: Line) -> None:
        """Puts what has been made, and the line, in the place of a recording."""
        made, place = part / "made", self.recording(name)
        (made / "line.json").write_text(json.dumps(line, indent=1) + "\n", "utf-8")
        place.parent.mkdir(parents=True, exist_ok=True)
        try:
            made.rename(place)
        except OSError:
            if not (place / "line.json").exists():
                raise
            # A recording that has changed since, or one that was made twice, after a worker was thought to be lost.
            place.rename(part / "old")
            made.rename(place)
