# SPDX-License-Identifier: GPL-2.0-or-later
"""Sound files on their way to the disk, where a full one is noticed."""
from pathlib import Path
from types import TracebackType
from typing import Optional, Type

from .._arrays import Samples
from .source import BadRecording

MOST_WAV = 2**32 - 1 - 2**16      # bytes; what a WAV file counts, less its head


class _File:
    """What libsndfile writes through: it passes over errors, so the first one is kept here."""

    def __init__(self, path: Path, most: Optional[int]) -> None:
        self._file = path.open("w+b")
        self._most = most
        self.error: Optional[Exception] = None
        self.seek, self.tell, self.read, self.flush = self._file.seek, self._file.tell, self._file.read, self._file.flush

    def write(self, data: bytes) -> int:
        """Writes all, or nothing after an error."""
        try:
            if self._most is not None and self._file.tell() + len(data) > self._most:
                raise BadRecording("too long for a file of WAV; w64 has room")
            if self.error is None:
                return self._file.write(data)
        except (OSError, BadRecording) as error:
            self.error = error
        return 0

    def close(self) -> None:
        try:
            self._file.close()
        except OSError as error:
            self.error = self.error or error


class Sound:
    """A sound file that is written block by block, full scale 1.0; samples beyond it are cut off."""

    def __init__(self, path: Path, fs: int, channels: int, subtype: str) -> None:
        import soundfile
        kind = path.suffix[1:].upper()
        self._file = _File(path, MOST_WAV if kind == "WAV" else None)
        try:
            self._sound = soundfile.SoundFile(self._file, "w", fs, channels, subtype, format=kind)
        except (soundfile.SoundFileError, ValueError) as error:
            self._file.close()
            raise BadRecording(f"{fs} Hz of {channels} channels in {kind}: {error}") from None

    def write(self, block: Samples) -> None:
        """Adds frames."""
        try:
            self._sound.write(block)
        except AssertionError:                            # of soundfile: not all frames were written
            pass
        if self._file.error:
            raise self._file.error

    def close(self) -> None:
        """The end of the file; only without an error is it whole."""
        self._sound.close()
        self._file.close()
        if self._file.error:
            raise self._file.error

    def __enter__(self) -> "Sound":
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], value: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        if kind is None:
            self.close()
        else:
            self._sound.close()
            self._file.close()
