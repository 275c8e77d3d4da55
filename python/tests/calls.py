"""What one call of the package takes for a block of sixteen samples: for test_speed.py, and the table of docs/python.md.

    ORVA_LIBRARY=build/release/src/liborva.so.3 PYTHONPATH=python python3 python/tests/calls.py

prints that table, in microseconds of the processor, the least of many short rounds. What is over when the work of NumPy and of
the library is taken away is the overhead of the package. NumPy's is to make the array of the result, and to scale samples or to
take complex numbers apart where the library has them otherwise. The library's is the difference between a bare call of it and
the same one with nothing to do.
"""
import timeit
from time import thread_time
from typing import Any, Callable, NamedTuple

import numpy as np
from clib import noise

import orva
from orva._arrays import complex_pointer, pointer
from orva._library import ffi, lib

NULL = ffi.NULL
N, ROUND = 16, 500        # samples, and calls in a round


class Call(NamedTuple):
    """A call of the package; what of it is NumPy's; the calls of the library in it; the same with nothing to do."""
    package: Callable[[], Any]
    numpys: Callable[[], Any]
    work: Callable[[], Any]
    idle: Callable[[], Any]


x, out = noise(N), np.empty(N, np.float32)
filter, fft, bins = orva.Filter("order=2; fpass=0.1"), orva.Fft(N), orva.rfft(x)
resampler, lapped, stretcher = orva.Resampler(48000, 44100), orva.Lapped(N), orva.Stretcher(8000, 1.5)
coefficients, parts = lapped.forward(x), np.zeros((2, 1, N), np.float32)
scale = np.array(32768, np.float32)

# For the library alone, handles and places of its own.
own = [orva.Filter("order=2; fpass=0.1"), orva.Resampler(48000, 44100), orva.Lapped(N), orva.Stretcher(8000, 1.5)]
f, r, m, s = (stream._handles[0] for stream in own)
correlator = ffi.gc(lib.ORVA_XcorrProcCreate(N, N), lib.ORVA_XcorrProcDestroy)
rooms = [np.zeros(64, np.float32) for _ in range(6)]
here, there, re, im, history, twiddles = map(pointer, rooms)
spectrum = np.zeros(N, np.complex64)
there_bins = complex_pointer(spectrum)
hop = np.zeros(16 * stretcher.hop, np.float32)
hops = pointer(hop)


def stretched(handle):
    lib.ORVA_SolafsInputData(handle, 0, here, N, 1.5)
    lib.ORVA_SolafsOutputData(handle, 0, hops, 16 * stretcher.hop)


def complex_of_parts():
    made = np.empty((1, N), np.complex64)
    made.real, made.imag = parts


def parts_of_complex():
    parts[0], parts[1] = coefficients.real, coefficients.imag
    return np.empty(N, np.float32)


CALLS = {
    "Filter": Call(
        lambda: filter(x), lambda: np.empty(N, np.float32),
        lambda: lib.ORVA_Filter(f, here, there, N), lambda: lib.ORVA_Filter(NULL, here, there, N)),
    "Filter, in place": Call(
        lambda: filter(x, out=out), lambda: None,
        lambda: lib.ORVA_Filter(f, here, there, N), lambda: lib.ORVA_Filter(NULL, here, there, N)),
    "window_gain": Call(
        lambda: orva.window_gain(x), lambda: None,
        lambda: lib.ORVA_GetWindowNormFactor(here, N), lambda: lib.ORVA_GetWindowNormFactor(here, 0)),
    "energy_db": Call(
        lambda: orva.energy_db(x), lambda: None,
        lambda: lib.ORVA_CalcEnergy(here, N), lambda: lib.ORVA_CalcEnergy(here, 0)),
    "remove_dc": Call(
        lambda: orva.remove_dc(x), lambda: np.empty(N, np.float32),
        lambda: lib.ORVA_RemoveDC(here, there, N), lambda: lib.ORVA_RemoveDC(here, there, 0)),
    "Fft.forward": Call(
        lambda: fft.forward(x), lambda: np.empty(N // 2 + 1, np.complex64),
        lambda: lib.ORVA_FFTProcExecute(fft._forward, here, there_bins),
        lambda: lib.ORVA_FFTProcExecute(NULL, here, there_bins)),
    "Fft.inverse": Call(
        lambda: fft.inverse(bins), lambda: np.empty(N, np.float32),
        lambda: lib.ORVA_IFFTProcExecuteEx(fft._inverse, there_bins, there, True),
        lambda: lib.ORVA_IFFTProcExecuteEx(NULL, there_bins, there, True)),
    "Fft.power": Call(
        lambda: fft.power(x), lambda: np.empty(12, np.float32)[:9],
        lambda: lib.ORVA_FFTProcExecutePSDEx(fft._forward, here, there, NULL),
        lambda: lib.ORVA_FFTProcExecutePSDEx(NULL, here, there, NULL)),
    "rfft": Call(
        lambda: orva.rfft(x), lambda: np.empty(N // 2 + 1, np.complex64),
        lambda: lib.ORVA_FFTProcExecute(fft._forward, here, there_bins),
        lambda: lib.ORVA_FFTProcExecute(NULL, here, there_bins)),
    "correlate": Call(
        lambda: orva.correlate(x, x), lambda: np.empty(2 * N - 1, np.float32),
        lambda: lib.ORVA_XcorrProcExecute(correlator, here, here, there),
        lambda: lib.ORVA_XcorrProcExecute(NULL, here, here, there)),
    "Resampler": Call(
        lambda: resampler.process(x), lambda: np.empty(N, np.float32)[:15],
        lambda: lib.ORVA_Resample(r, here, there, N), lambda: lib.ORVA_Resample(r, here, there, 0)),
    "Lapped.forward": Call(
        lambda: lapped.forward(x), complex_of_parts,
        lambda: lib.ORVA_FMCLTDirect(m, re, im, here, history, twiddles),
        lambda: lib.ORVA_FMCLTDirect(NULL, re, im, here, history, twiddles)),
    "Lapped.inverse": Call(
        lambda: lapped.inverse(coefficients), parts_of_complex,
        lambda: lib.ORVA_FMCLTInverse(m, re, im, there, history, twiddles),
        lambda: lib.ORVA_FMCLTInverse(NULL, re, im, there, history, twiddles)),
    "Stretcher": Call(
        lambda: stretcher.process(x), lambda: (x * scale, np.empty(0, np.float32)),
        lambda: stretched(s), lambda: stretched(NULL)),
}


def seconds(call):
    return timeit.timeit(call, timer=thread_time, number=ROUND)


def addition():
    """What NumPy takes to add sixteen numbers: half a microsecond on a quick machine."""
    return np.add(x, x)


def main():
    least = {name: [1.0] * 4 for name in CALLS}
    for _ in range(200):                                  # spread over half a minute, in which the clock may change
        for name, call in CALLS.items():
            least[name] = [min(before, seconds(part)) for before, part in zip(least[name], call)]
    print("| Call for 16 samples | in all | NumPy's | the library's | overhead |\n|---|---|---|---|---|")
    for name, times in least.items():
        package, numpys, work, idle = (time / ROUND * 1e6 for time in times)
        print(f"| `{name}` | {package:.2f} | {numpys:.2f} | {work - idle:.2f} | {package - numpys - (work - idle):.2f} |")


if __name__ == "__main__":
    main()
