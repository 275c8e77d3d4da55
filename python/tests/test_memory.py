"""Memory does not grow with the number of objects, and comes back when they are closed."""
import gc

import numpy as np
import pytest

import orva

MAKERS = {
    "filter": lambda: orva.Filter("order=2; fpass=0.1"),
    "coefficients": lambda: orva.Filter(b=[1, 0.5], a=[1, -0.5]),
    "sections": lambda: orva.Filter(sos=[[1, 0, 0, 1, 0, 0]]),
    "resampler": lambda: orva.Resampler(2, 1, order=2),
    "stretcher": lambda: orva.Stretcher(400, frame_ms=40),
    "lapped": lambda: orva.Lapped(4),
    "suppressor": lambda: orva.NoiseSuppressor(8000),
    "transforms": lambda: orva.Fft(4),
    "spline": lambda: orva.Spline([0, 1, 2], [0, 1, 0]),
    "refused": lambda: refused(),
}
COUNT = 100000


def refused():
    with pytest.raises(ValueError):
        orva.Filter("order=2; type=comb; fpass=0.1")


def resident():
    """Bytes of this process in memory."""
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * 4096


@pytest.mark.parametrize("name", MAKERS)
def test_memory_is_flat(name):
    """The first thousands fill what is kept for use again; after them, not a byte for each object."""
    make = MAKERS[name]
    for _ in range(COUNT // 10):
        make()
    gc.collect()
    before = resident()
    for _ in range(COUNT):
        make()
    gc.collect()
    assert resident() - before < 2**19, "bytes"


def test_a_closed_stream_has_freed_its_memory():
    """What the next streams take is what the closed ones, though still there, have given back."""
    def run():
        streams = [orva.Stretcher(48000) for _ in range(200)]
        for stream in streams:
            stream.process(np.ones(48000))
        held = resident()
        for stream in streams:
            stream.close()
        return streams, held

    before = resident()
    first = run()
    second = run()
    assert first[1] - before > 200 * 4 * 48000 * 0.9
    assert second[1] - first[1] < (first[1] - before) / 10
