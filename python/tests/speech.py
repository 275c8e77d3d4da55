"""A corpus of speech: Debian's recorded voices, and sentences that espeak-ng speaks; mono and stereo, of many rates and kinds."""
import hashlib
import subprocess
from pathlib import Path

import numpy as np

import orva

VOICES = Path("/usr/share/sounds/alsa")                  # of Debian's alsa-utils
RATES = (8000, 11025, 16000, 22050, 32000, 44100, 48000)
KINDS = (("wav", "PCM_16"), ("flac", "PCM_16"), ("ogg", "VORBIS"), ("wav", "FLOAT"))
SUBJECTS = ("The old engine", "A small boat", "Nobody", "The second violin", "Her neighbour", "This machine")
VERBS = ("crosses", "remembers", "repairs", "hears", "counts")
OBJECTS = ("the river at night.", "seven bells.", "what was said.", "an answer.", "every word of it.", "the hours until morning.",
           "a letter from the north.", "two clocks, one of them wrong.")
SENTENCES = [f"{subject} {verb} {what}" for subject in SUBJECTS for verb in VERBS for what in OBJECTS]


def spoken(sentence, file):
    """The samples of a sentence, and their rate."""
    subprocess.run(["espeak-ng", "-w", file, sentence], check=True)
    return orva.read(file)


def make(folder, count):
    """Writes that many sentences into a folder, each in a way of its own."""
    folder.mkdir(parents=True)
    for n in range(count):
        x, fs = spoken(SENTENCES[n % len(SENTENCES)], folder / "spoken.tmp")
        rate, (kind, subtype) = RATES[n % len(RATES)], KINDS[n % len(KINDS)]
        x = orva.resample(x, fs, rate)
        if n % 3 == 0:                                   # the second channel comes a millisecond later
            late = rate // 1000
            x = np.stack([np.pad(x, (0, late)), np.pad(x, (late, 0))], axis=1)
        place = folder / f"voice {n % 5}" / f"{n:03}.{kind}"
        place.parent.mkdir(exist_ok=True)
        orva.write(place, x, rate, subtype)
    (folder / "spoken.tmp").unlink()


def hashes(folder):
    """What is in a folder of results: each file's hash."""
    return {str(path.relative_to(folder)): hashlib.sha256(path.read_bytes()).hexdigest()
            for path in folder.rglob("*") if path.is_file() and path.name != ".lock"}
