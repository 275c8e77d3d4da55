#!/usr/bin/python3
"""What NumPy and SciPy take, in the form of the benchmarks' own results: scipy_bench.py [RESULTS.json]

Each case has the name of the one in a *_bench.cpp that it stands beside. A line a case, and all of them into RESULTS.json;
times are the shortest of all repetitions, which go round the cases in turn.
"""
import json
import sys
import time

import numpy
from scipy import signal

REPETITIONS, SHORTEST = 9, 0.02         # seconds that a repetition takes at least
LONG = 1 << 16                          # samples, so that a filter's time is not that of its call

random = numpy.random.default_rng(1)


def noise(*shape):
    return random.uniform(-1, 1, shape).astype(numpy.float32)


def cases():
    """Name, function without arguments, samples of a call."""
    for sections in (1, 4, 10):
        sos = numpy.tile(numpy.float32([0.3, 0.2, 0.1, 1, -0.94, 0.33]), (sections, 1))
        yield (f"biquads, sections {sections}, channels 1, frames 1024/sosfilt",
               lambda x=noise(LONG), sos=sos: signal.sosfilt(sos, x), LONG)
    for channels in (1, 2, 6):
        b, a = numpy.full(9, 0.3, numpy.float32), numpy.float32([1] + [0.3 / 9] * 8)
        yield (f"direct form, order 8, channels {channels}, frames 1024/lfilter",
               lambda x=noise(LONG, channels), b=b, a=a: signal.lfilter(b, a, x, axis=0), LONG * channels)
    for bins in (513, 4097):
        power = noise(bins) ** 2
        yield (f"decibels, N {2 * bins - 2}/numpy",
               lambda power=power, bins=bins: numpy.maximum(10 * numpy.log10(power * numpy.float32(1 / bins)), -120),
               2 * bins - 2)
    for name, window in (("Hanning", "hann"), ("Flat-Top", "flattop")):
        yield f"{name}/scipy", lambda window=window: signal.get_window(window, 4096, fftbins=False), 4096
    yield ("one design, elliptic of order 8/scipy",
           lambda: signal.iirfilter(8, 6000, 1, 60, fs=48000, btype="lowpass", ftype="ellip", output="sos"), 1)


def seconds(run, count):
    start = time.perf_counter()
    for _ in range(count):
        run()
    return time.perf_counter() - start


def main():
    counts, best = {}, {}
    every = list(cases())
    for name, run, _ in every:
        counts[name] = max(1, round(SHORTEST / max(seconds(run, 3) / 3, 1e-9)))
    for _ in range(REPETITIONS):
        for name, run, samples in every:
            taken = seconds(run, counts[name]) / counts[name] / samples
            best[name] = min(taken, best.get(name, taken))
    for name, taken in best.items():
        print(f"{name:40}  {1e9 * taken:.3g} ns")
    if len(sys.argv) > 1:
        results = [{"name": name, "run_type": "iteration", "items_per_second": 1 / taken} for name, taken in best.items()]
        with open(sys.argv[1], "w") as file:
            json.dump({"benchmarks": results}, file)


main()
