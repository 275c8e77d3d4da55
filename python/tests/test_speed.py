"""Threads that do not wait for each other, calls that cost little. No other test runs beside these."""
import os
import threading
import time
import timeit

import numpy as np
import pytest
from clib import noise

import orva


def work(filters, x, threads):
    """Seconds that all filters take for x, shared out among threads."""
    waiting = threading.Barrier(threads + 1)

    def run(own):
        out = np.empty_like(x)
        waiting.wait()
        for filter in own:
            filter(x, out=out)

    workers = [threading.Thread(target=run, args=(filters[n::threads],)) for n in range(threads)]
    for worker in workers:
        worker.start()
    waiting.wait()
    start = time.perf_counter()
    for worker in workers:
        worker.join()
    return time.perf_counter() - start


def test_filters_run_beside_each_other():
    """8 filters on 2 threads, on two processors where there are two. Other processes may take one away, so the best of
    some rounds counts."""
    filters, x = [orva.Filter("order=8; fpass=0.2") for _ in range(8)], noise(1 << 19)
    best = 0.0
    for _ in range(12):
        best = max(best, work(filters, x, 1) / work(filters, x, 2))
        if best > 1.6:
            break
    assert best > (1.4 if len(os.sched_getaffinity(0)) > 1 else 0.7)


def seconds(call):
    return timeit.timeit(call, timer=time.thread_time, number=1000)


def sums(call, numpys):
    """What a call takes beyond NumPy for its result, in NumPy's own additions of sixteen numbers: the least of rounds, each
    too short for the processor's clock to change."""
    return min((seconds(call) - seconds(numpys)) / seconds(lambda: np.add(x, x)) for _ in range(40))


x, out = noise(16), np.empty(16, np.float32)
filter, fft, bins = orva.Filter("order=2; fpass=0.1"), orva.Fft(16), orva.rfft(x)
resampler, lapped, stretcher = orva.Resampler(48000, 44100), orva.Lapped(16), orva.Stretcher(8000, 1.5)
CALLS = {
    "filter": (2.5, lambda: filter(x), lambda: np.empty(16, np.float32)),
    "filter in place": (3, lambda: filter(x, out=out), lambda: None),
    "window_gain": (1.5, lambda: orva.window_gain(x), lambda: None),
    "energy_db": (3, lambda: orva.energy_db(x), lambda: None),
    "remove_dc": (2, lambda: orva.remove_dc(x), lambda: np.empty(16, np.float32)),
    "forward": (3.5, lambda: fft.forward(x), lambda: np.empty(9, np.complex64)),
    "inverse": (4.5, lambda: fft.inverse(bins), lambda: np.empty(16, np.float32)),
    "power": (4, lambda: fft.power(x), lambda: np.empty(12, np.float32)),
    "rfft": (4, lambda: orva.rfft(x), lambda: np.empty(9, np.complex64)),
    "correlate": (4, lambda: orva.correlate(x, x), lambda: np.empty(31, np.float32)),
    "resampler": (4, lambda: resampler.process(x), lambda: np.empty(16, np.float32)),
    "lapped": (6, lambda: lapped.forward(x), lambda: np.empty((1, 16), np.complex64)),
    "stretcher": (8, lambda: stretcher.process(x), lambda: np.empty(16, np.float32)),
}


@pytest.mark.parametrize("name", CALLS)
def test_a_call_costs_little(name):
    """In NumPy's additions, half a microsecond each on a quick machine, with the library's own work; twice as much is left
    here to a machine that does other things as well."""
    limit, call, numpys = CALLS[name]
    assert sums(call, numpys) < 2 * limit
