#!/usr/bin/python3
"""Measures the resampler at several orders beside other libraries, and prints the table of docs/resample.md.

It compiles resample_peers.cpp against the libraries of build/release and Debian's libsamplerate0-dev, libsoxr-dev,
libspeexdsp-dev and libzita-resampler-dev; besides, it needs python3-numpy.

A converter of the ratio L / M answers an impulse at input n, in output m, with the tap h(m M - n L) of a filter at L times
the input rate. Impulses far apart, at places that fall on all residues of M, give all taps, whatever the converter computes
them from, and the transform of h tells everything: its passband, and what it leaves of images and aliases.
"""
import subprocess
import tempfile
from math import gcd
from pathlib import Path

import numpy

ROOT = Path(__file__).resolve().parents[1]
BUILD = ROOT / "build/release"
PAIRS = ((44100, 48000), (48000, 44100), (48000, 16000))
CONVERTERS = (
    *(("liborva", f"order={order}", f"order {order}") for order in (10, 20, 30, 50, 64, 100)),
    ("libsamplerate", "2", "fastest sinc"), ("libsamplerate", "1", "medium sinc"), ("libsamplerate", "0", "best sinc"),
    ("soxr", "1", "low"), ("soxr", "4", "high"), ("soxr", "6", "very high"),
    ("zita-resampler", "16", "16"), ("zita-resampler", "32", "32"), ("zita-resampler", "96", "96"),
    ("Speex", "3", "3"), ("Speex", "5", "5"), ("Speex", "10", "10"),
)
REACH = 4096                            # the longest filter and delay, in samples of input, to either side


def compile_program(folder):
    libraries = [f"-L{BUILD / 'src'}", f"-L{BUILD / 'kett'}", f"-Wl,-rpath,{BUILD / 'src'}:{BUILD / 'kett'}",
                 "-lorva", "-lkett", "-lsamplerate", "-lsoxr", "-lspeexdsp", "-lzita-resampler"]
    program = Path(folder) / "resample_peers"
    subprocess.run(["g++", "-std=c++20", "-O2", f"-I{ROOT / 'include'}", f"-I{ROOT / 'kett/include'}",
                    ROOT / "tools/resample_peers.cpp", "-o", program, *libraries], check=True)
    return program


def convert(program, converter, rates, samples):
    """The output, and how many samples of it there were after each sample of input."""
    done = subprocess.run([program, *converter[:2], *map(str, rates)], input=samples.astype("<f4").tobytes(),
                          capture_output=True, check=True)
    return numpy.frombuffer(done.stdout, "<f4").astype(float), numpy.frombuffer(done.stderr, "<i4").cumsum()


def taps(output, up, down, places):
    """h at all k = m M - n L from -REACH L to REACH L, by the impulses at the inputs `places`."""
    h = numpy.zeros(2 * REACH * up + 1)
    for n in places:
        m = numpy.arange(-(-(n - REACH) * up // down), (n + REACH) * up // down + 1)
        m = m[(m >= 0) & (m < len(output))]
        h[m * down - n * up + REACH * up] = output[m]
    return h


def measure(program, converter, rates):
    """One line of the table. 1.0 is half the lower rate; the ripple is that up to 0.9 of where -0.1 dB is reached."""
    up, down = rates[1] // gcd(*rates), rates[0] // gcd(*rates)
    step = (2 * REACH // down + 1) * down + 1           # 1 more than a multiple of M: all residues in turn
    places = REACH + step * numpy.arange(down)
    samples = numpy.zeros(places[-1] + 2 * REACH)
    samples[places] = 1
    output, counts = convert(program, converter, rates, samples)
    h = taps(output, up, down, places)

    k = numpy.arange(len(h)) - REACH * up
    centre = (k * h).sum() / h.sum() / (up * rates[0])  # seconds that the output is late
    times = numpy.arange(len(samples)) / rates[0]
    latest = (counts - 1) / rates[1] - centre           # the moment of the input that the newest output shows
    delay = (times - latest)[places[0]:].max()

    length = 1 << len(h).bit_length()
    gain = 20 * numpy.log10(numpy.maximum(abs(numpy.fft.rfft(h, length)) / up, 1e-12))
    hertz = numpy.arange(len(gain)) * up * rates[0] / length
    nyquist = min(rates) / 2
    relative = gain - gain[0]
    edges = [hertz[numpy.argmax(relative < -drop)] / nyquist for drop in (0.1, 3)]
    flat = gain[hertz < 0.9 * edges[0] * nyquist]
    attenuation = [-relative[hertz >= edge * nyquist].max() for edge in (1.0, 1.1)]
    return (*(f"{edge:.3f}" for edge in edges), f"{flat.max() - flat.min():.4f}",
            *(f"{figure:.0f}" for figure in attenuation), f"{1000 * delay:.2f}")


def main():
    with tempfile.TemporaryDirectory() as folder:
        program = compile_program(folder)
        for rates in PAIRS:
            print(f"\n{rates[0]} to {rates[1]} Hz:\n")
            print("| Library | Setting | -0.1 dB at | -3 dB at | Ripple (dB) | From 1.0 on (dB) | From 1.1 on (dB) | "
                  "Delay (ms) |")
            print("|---|---|--:|--:|--:|--:|--:|--:|")
            for converter in CONVERTERS:
                print(f"| {converter[0]} | {converter[2]} |", " | ".join(measure(program, converter, rates)), "|",
                      flush=True)


main()
