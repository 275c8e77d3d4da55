#!/usr/bin/python3
"""Counts the words that a speech recogniser gets wrong after time scaling; the table of docs/solafs.md.

Usage: tools/solafs_words.py [SPEED...], by default 0.5 0.7 1.3 1.5.

It scales recorded and spoken sentences by the library of build/release, fed with samples within 1.0 and with the same at the
scale of 16 bits, and by SoundTouch. Beside words it compares pitch and level with those of the sentence before. It needs
Debian's alsa-utils, espeak-ng, flite, pocketsphinx, pocketsphinx-en-us, pocketsphinx-testdata, python3-numpy, soundstretch and
sox, and takes a minute of one processor for each line of the table.
"""
import ctypes
import re
import subprocess
import sys
import tempfile
import wave
from pathlib import Path

import numpy

ROOT = Path(__file__).resolve().parents[1]
BUILD = ROOT / "build/release"
SPEEDS = (0.5, 0.7, 1.3, 1.5)
RATE, FRAME_MS = 16000, 20              # what the recogniser takes; the guide's frame
ALSA = Path("/usr/share/sounds/alsa")
SPHINX = Path("/usr/share/pocketsphinx")
MODEL = SPHINX / "model/en-us"
QUICKER = ("-maxhmmpf", "3000", "-ds", "2", "-topn", "2", "-fwdflat", "no")      # by four times, for a few words more
SPOKEN = (
    "the old man walked along the river every morning",
    "please send the letter to my office before noon",
    "she bought three apples and a loaf of bread",
    "the weather will be cold and windy on the coast",
    "we could not find the key to the back door",
    "a small group of children played in the garden",
)
VOICES = ("slt", "rms", "espeak")


def read(path):
    with wave.open(str(path)) as file:
        return numpy.frombuffer(file.readframes(file.getnframes()), numpy.int16).astype(numpy.float32) / 32768


def write(path, samples):
    with wave.open(str(path), "wb") as file:
        file.setparams((1, 2, RATE, 0, "NONE", ""))
        file.writeframes(numpy.clip(numpy.round(samples * 32768), -32768, 32767).astype(numpy.int16).tobytes())


def sentences(folder):
    """The samples and the words of each, recorded ones first."""
    found = []

    def take(words, *source):
        path = Path(folder) / "sentence.wav"
        subprocess.run(["sox", *map(str, source), "-r", str(RATE), "-c", "1", "-b", "16", str(path)], check=True)
        found.append((read(path), words.split()))

    for path in sorted(ALSA.glob("*_*.wav")):
        take(path.stem.replace("_", " ").lower(), path)
    for book, texts in (("librivox", "transcription"), ("cards", "cards.transcription")):
        for line in (SPHINX / "test/data" / book / texts).read_text().splitlines():
            words, name = re.fullmatch(r"<s> (.*) </s> \((.*)\)", line).groups()
            take(words, SPHINX / "test/data" / book / (name + ".wav"))
    raw = ("-t", "raw", "-r", RATE, "-e", "signed", "-b", 16, "-c", 1)
    take("go forward ten meters", *raw, SPHINX / "test/data/goforward.raw")
    take("go somewhere and do something", *raw, SPHINX / "test/data/something.raw")
    said = Path(folder) / "said.wav"
    for voice in VOICES:
        for text in SPOKEN:
            subprocess.run(["espeak-ng", "-v", "en-us", "-w", said, text] if voice == "espeak" else
                           ["flite", "-voice", voice, "-t", text, "-o", said], check=True)
            take(text, said)
    return found


def library():
    lib = ctypes.CDLL(str(BUILD / "src/liborva.so"))
    lib.ORVA_SolafsCreate.restype = ctypes.c_void_p
    arguments = [ctypes.c_void_p, ctypes.c_int32, ctypes.c_void_p, ctypes.c_int32]
    lib.ORVA_SolafsInputData.argtypes = [*arguments, ctypes.c_float]
    lib.ORVA_SolafsOutputData.argtypes = arguments
    lib.ORVA_SolafsDestroy.argtypes = [ctypes.c_void_p]
    return lib


def stretch(lib, samples, speed, scale):
    frame = FRAME_MS * RATE // 1000
    source = numpy.concatenate([samples, numpy.zeros(7 * frame // 2, numpy.float32)]) * numpy.float32(scale)
    room = numpy.zeros(RATE * 10, numpy.float32)
    record, done, parts = lib.ORVA_SolafsCreate(FRAME_MS, RATE, 1), 0, []
    while done < len(source):
        count = min(RATE // 10, len(source) - done)
        block = numpy.ascontiguousarray(source[done:done + count])
        done += lib.ORVA_SolafsInputData(record, 0, block.ctypes.data, count, speed)
        given = lib.ORVA_SolafsOutputData(record, 0, room.ctypes.data, len(room))
        parts.append(room[:given] / numpy.float32(scale))
    lib.ORVA_SolafsDestroy(record)
    return numpy.concatenate(parts)


def soundtouch(folder, samples, speed):
    given, made = Path(folder) / "given.wav", Path(folder) / "made.wav"
    write(given, samples)
    subprocess.run(["soundstretch", given, made, f"-tempo={100 * speed - 100:g}", "-speech"], check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return read(made)


def wrong(heard, said):
    """Words put in, left out and exchanged."""
    row = list(range(len(said) + 1))
    for i, word in enumerate(heard, 1):
        last, row[0] = row[0], i
        for j, other in enumerate(said, 1):
            last, row[j] = row[j], min(row[j] + 1, row[j - 1] + 1, last + (word != other))
    return row[-1]


def words_wrong(sounds, said):
    with tempfile.TemporaryDirectory() as folder:
        names = [f"{i:03d}" for i in range(len(sounds))]
        for name, samples in zip(names, sounds):
            write(Path(folder) / (name + ".wav"), samples)
        (Path(folder) / "list").write_text("\n".join(names) + "\n")
        subprocess.run(["pocketsphinx_batch", "-hmm", MODEL / "en-us", "-lm", MODEL / "en-us.lm.bin",
                        "-dict", MODEL / "cmudict-en-us.dict", "-adcin", "yes", "-adchdr", "44", "-cepdir", folder,
                        "-cepext", ".wav", *QUICKER, "-ctl", Path(folder) / "list", "-hyp", Path(folder) / "heard"],
                       check=True, stderr=subprocess.DEVNULL)
        lines = (Path(folder) / "heard").read_text().splitlines()
    heard = [re.sub(r" *\(\S+ -?\d+\)$", "", line).split() for line in lines]
    return 100 * sum(map(wrong, heard, said)) / sum(map(len, said))


def pitch(samples, at):
    """In Hz around a sample, by autocorrelation; 0 where there is none."""
    half = 320
    frame = samples[max(at - half, 0):at + half]
    if len(frame) < 2 * half or numpy.sqrt(numpy.mean(frame ** 2)) < 0.01:
        return 0
    frame = frame - numpy.mean(frame)
    spectrum = numpy.fft.rfft(frame, 4 * half)
    likeness = numpy.fft.irfft(abs(spectrum) ** 2)[:2 * half]
    likeness = likeness[40:268] / (likeness[0] * (1 - numpy.arange(40, 268) / (2 * half)))     # 400 to 60 Hz
    best = int(numpy.argmax(likeness > 0.9 * likeness.max()))
    while best + 1 < len(likeness) and likeness[best + 1] > likeness[best]:
        best += 1
    return RATE / (40 + best) if likeness[best] > 0.7 else 0


def pitches_wrong(before, after, speed):
    """Off by a fifth or more: how many of the voiced places of all sentences, in percent."""
    off = places = 0
    for old, new in zip(before, after):
        for at in range(0, len(old), 160):
            there, here = pitch(old, at), pitch(new, round(at / speed))
            if there and here:
                places += 1
                off += abs(here / there - 1) > 0.2
    return 100 * off / places


def level(samples):
    return 10 * numpy.log10(numpy.mean(samples.astype(float) ** 2))


def main():
    with tempfile.TemporaryDirectory() as folder:
        sounds, said = zip(*sentences(folder))
        print(f"{len(said)} sentences, {sum(map(len, said))} words, {words_wrong(sounds, said):.1f} % wrong as they are\n", flush=True)
        lib = library()
        methods = {"samples within 1.0": lambda x, speed: stretch(lib, x, speed, 1),
                   "the same times 32768 and back": lambda x, speed: stretch(lib, x, speed, 32768),
                   "SoundTouch": lambda x, speed: soundtouch(folder, x, speed)}
        print("| Fed with | Speed | Words wrong | Pitches wrong | Change of the level |")
        print("|---|---|---|---|---|")
        for name, scaled in methods.items():
            for speed in [float(word) for word in sys.argv[1:]] or SPEEDS:
                made = [scaled(samples, speed) for samples in sounds]
                change = numpy.mean([abs(level(new) + 10 * numpy.log10(speed * len(new) / len(old)) - level(old))
                                     for old, new in zip(sounds, made)])
                print(f"| {name} | {speed} | {words_wrong(made, said):.1f} % | "
                      f"{pitches_wrong(sounds, made, speed):.1f} % | {change:.2f} dB |", flush=True)


if __name__ == "__main__":
    main()
