# SPDX-License-Identifier: GPL-2.0-or-later
"""Recordings, block by block, and why one is none."""
import os
import re
import stat
from typing import Any, Iterator

from .._arrays import Samples

BLOCK = 1 << 15           # frames at a time; no result depends on it

# What libsndfile tells of a file that promises more samples than it has, in WAV, AU, AIFF, RF64 and W64; the whole size of a WAV
# file, which it calls RIFF, many count in another way. Whoever writes into a pipe promises 2 GiB or more.
_SHORT = re.compile(r"^\s*(?:data|Data Size|SSND|Riff size|riff)\s*: (\d+) \(should be (\d+)\)$", re.MULTILINE)
_PIPED = 2**31 - 2**16
_UNKNOWN = 2**63 - 1


class BadRecording(Exception):
    """Why a file cannot be worked on; the run goes on with the others."""


class Recording:
    """An open sound file: its size in bytes, sampling rate in Hz, channels, and how many frames it says that it has."""

    def __init__(self, path: str) -> None:
        self._descriptor = _opened(path)
        try:
            self.bytes = os.fstat(self._descriptor).st_size
            self._sound = self._decoder()
        except BaseException:
            os.close(self._descriptor)
            raise
        self.fs, self.channels, self.frames = self._sound.samplerate, self._sound.channels, self._sound.frames

    def _decoder(self) -> Any:
        import soundfile
        if self.bytes == 0:
            raise BadRecording("an empty file")
        try:
            sound = soundfile.SoundFile(os.dup(self._descriptor), closefd=True)     # which it closes where it fails, too
        except soundfile.SoundFileError as error:
            raise BadRecording(f"no sound: {getattr(error, 'error_string', error)}") from None
        for promised, found in _SHORT.findall(sound.extra_info):
            if int(found) < int(promised) and not _PIPED <= int(promised) < 2**32:
                sound.close()
                raise BadRecording(f"truncated: {found} bytes of {promised}")
        if sound.frames == _UNKNOWN:
            sound.close()
            raise BadRecording("truncated: the end of the stream is missing")
        return sound

    def blocks(self) -> Iterator[Samples]:
        """All frames, full scale 1.0, in blocks; an error tells how far they went."""
        from soundfile import SoundFileError
        read = 0
        while True:
            try:
                block: Samples = self._sound.read(BLOCK, dtype="float32")
            except SoundFileError as error:
                reason = getattr(error, "error_string", error)
                raise BadRecording(f"damaged after {read} of {self.frames} frames: {reason}") from None
            if not len(block):
                break
            read += len(block)
            yield block
        if read < self.frames:
            raise BadRecording(f"truncated: {read} frames of {self.frames}")
        if read == 0:
            raise BadRecording("no samples")

    def close(self) -> None:
        """Closes the file."""
        self._sound.close()
        os.close(self._descriptor)


def _opened(path: str) -> int:
    try:
        descriptor = os.open(path, os.O_RDONLY | os.O_NONBLOCK | os.O_CLOEXEC)     # not to wait for a pipe
    except (OSError, ValueError) as error:
        raise BadRecording(getattr(error, "strerror", None) or str(error)) from None
    if not stat.S_ISREG(os.fstat(descriptor).st_mode):
        os.close(descriptor)
        raise BadRecording("not a file")
    return descriptor
