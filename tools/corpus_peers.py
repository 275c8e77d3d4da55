#!/usr/bin/python3
"""Prints what recipes of orva.corpus take beside the same jobs in SciPy: a table of docs/corpus.md.

    TMPDIR=/dev/shm ORVA_LIBRARY=build/release/src/liborva.so.3 PYTHONPATH=python tools/corpus_peers.py

Needs Debian's python3-cffi, python3-dask, python3-scipy, python3-soundfile, alsa-utils; takes two to three minutes and 300 MB of
the folder TMPDIR. A quarter of an hour of Debian's recorded voices, stereo at 48000 Hz in files of a minute, in processor
seconds of one process, from the open file to the results; SciPy has a whole recording in memory, orva a block. Then what a
file costs whatever its length, and, by the clock on the wall, how much faster two workers are than one.
"""
import os
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import dask
import numpy as np
import soundfile
from scipy import fft, signal

import orva
from orva import corpus

VOICES = sorted(Path("/usr/share/sounds/alsa").glob("*_*.wav"))
FS, MINUTES = 48000, 15
DC = [[0.9272743463516235, -1.8544940948486328, 0.9272743463516235, 1, -1.9059464931488037, 0.9114024043083191]]
RECIPES = {
    "archive": {"steps": [{"do": "remove_dc"}, {"do": "resample", "fs": 16000}], "outputs": {"sound": "flac"}},
    "features": {"steps": [{"do": "resample", "fs": 16000}, {"do": "measures"}, {"do": "mel"}], "outputs": {"arrays": "npz"}},
    "delays": {"steps": [{"do": "delay"}], "outputs": {"arrays": "npz"}},
}


def read(path):
    return soundfile.read(path, dtype="float32")[0]


def archive(path, place):
    x = signal.sosfilt(DC, read(path), axis=0)
    soundfile.write(place / "sound.flac", signal.resample_poly(x, 1, 3), 16000, "PCM_16")


def triangles(bins, fs, bands):
    mel = np.linspace(0, 1127.01048 * np.log(fs / 2 / 700 + 1), bands + 2)
    edges, hz = 700 * (np.exp(mel / 1127.01048) - 1), np.linspace(0, fs / 2, bins)
    return np.stack([np.clip(np.minimum((hz - a) / (b - a), (c - hz) / (c - b)), 0, None)
                     for a, b, c in zip(edges, edges[1:], edges[2:])]).T.astype(np.float32)


def features(path, place):
    x = signal.resample_poly(read(path), 1, 3).astype(np.float32).T
    frames = np.lib.stride_tricks.sliding_window_view(x, 400, axis=1)[:, ::160]
    power = np.abs(fft.rfft(frames * signal.get_window("hann", 400).astype(np.float32), 512))**2
    np.savez(place / "arrays.npz", mel=10 * np.log10(np.maximum(power @ triangles(257, 16000, 40), 1e-12)),
             energy=10 * np.log10(np.maximum(frames.var(axis=2), 1e-12)),
             crossings=(np.signbit(frames[..., 1:]) != np.signbit(frames[..., :-1])).mean(axis=2))


def delays(path, place):
    x = read(path).T
    frames = np.lib.stride_tricks.sliding_window_view(x, 9600, axis=1)[:, ::4800]
    size, lags = fft.next_fast_len(2 * 9600 - 1, real=True), []
    for first, second in zip(*frames):
        cross = fft.rfft(first, size) * np.conj(fft.rfft(second, size))
        r = np.abs(fft.irfft(cross / np.maximum(np.abs(cross), 1e-30), size))
        r = np.concatenate([r[-960:], r[:961]])
        lags.append((r.argmax() - 960) / FS)
    np.savez(place / "arrays.npz", seconds=lags)


def corpora(folder):
    """Files of a minute, two hundred of 50 ms, and an hour of the first under four names."""
    voices = np.concatenate([orva.read(path)[0] for path in VOICES])
    voice = np.resize(voices, FS * 60)
    for n in range(MINUTES):
        orva.write(folder / f"{n:02}.wav", np.stack([np.roll(voice, n * 1000), np.roll(voice, n * 1000 + 20)], axis=1), FS, "PCM_16")
    (folder / "short").mkdir()
    for n in range(200):
        orva.write(folder / f"short/{n:03}.wav", voice[n * 2400:(n + 1) * 2400], FS, "PCM_16")
    (folder / "hour").mkdir()
    for n in range(60):
        os.symlink(folder / f"{n % MINUTES:02}.wav", folder / f"hour/{n:02}.wav")


def seconds(work):
    start = time.process_time()
    work()
    return time.process_time() - start


def by_workers(recipe, place, folder, count):
    """Seconds that a run takes with so many workers."""
    program = ("import time\nfrom orva import corpus\nif __name__ == '__main__':\n    start = time.perf_counter()\n"
               f"    corpus.run({recipe!r}, [{str(place)!r}], {str(folder)!r})\n    print(time.perf_counter() - start)")
    run = subprocess.run([sys.executable, "-c", program], check=True, stdout=subprocess.PIPE, text=True,
                         env={**os.environ, "DASK_NUM_WORKERS": str(count)})
    shutil.rmtree(folder)
    return float(run.stdout)


def main():
    with tempfile.TemporaryDirectory() as temporary, dask.config.set(scheduler="synchronous"):
        folder = Path(temporary)
        corpora(folder)
        files = [str(path) for path in sorted(folder.glob("*.wav"))]
        print("| Recipe | SciPy | orva | times |\n|---|---|---|---|")
        for name, recipe in RECIPES.items():
            (folder / name).mkdir()
            theirs = min(seconds(lambda: [globals()[name](path, folder / name) for path in files]) for _ in range(2))
            mine = min(seconds(lambda: corpus.run(recipe, files, folder / f"{name} {n}")) for n in range(2))
            print(f"| `{name}` | {MINUTES / theirs:.1f} | {MINUTES / mine:.1f} | {theirs / mine:.1f} |", flush=True)
        for name, recipe in RECIPES.items():
            short = seconds(lambda: corpus.run(recipe, [str(folder / "short")], folder / f"{name} short")) / 200
            print(f"{name}: {short * 1e3:.1f} ms for a file of 50 ms")
        print("again, nothing to do: "
              f"{seconds(lambda: corpus.run(recipe, [str(folder / 'short')], folder / f'{name} short')) / 200 * 1e3:.2f} ms a file")
        one, two = (sorted(by_workers(RECIPES["features"], folder / "hour", folder / "out", count) for _ in range(3))[1]
                    for count in (1, 2))
        print(f"an hour by features: one worker {one:.1f} s, two {two:.1f} s, {one / two / 2:.2f} of twice as fast")


if __name__ == "__main__":
    main()
