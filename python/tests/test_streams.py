"""Streams: blocks of any length, ends, copies, pickles, closing, threads."""
import copy
import pickle
import threading
import time

import numpy as np
import pytest
from clib import noise, same_bits
from hypothesis import given, settings
from hypothesis import strategies as st

import orva

SOS = [[0.1, 0.2, 0.1, 1, -0.94, 0.33], [0.2, 0.4, 0.2, 1, -1.1, 0.4]]
STREAMS = {
    "filter from text": lambda channels=1: orva.Filter("order=3; fpass=1000", fs=8000, channels=channels),
    "filter from sections": lambda channels=1: orva.Filter(sos=SOS, channels=channels),
    "filter from coefficients": lambda channels=1: orva.Filter(b=[1, 0.5, 0.2], a=[1, -0.5, 0.1, 0.05], channels=channels),
    "filter from vectors in a text": lambda channels=1: orva.Filter("numerator=[1 0.5]; denominator=[1 -0.3]",
                                                                    channels=channels),
    "resampler up": lambda channels=1: orva.Resampler(8000, 11025, channels),
    "resampler down": lambda channels=1: orva.Resampler(8000, 3000, channels, order=5),
    "resampler with delay": lambda channels=1: orva.Resampler(8000, 11025, channels, compensate=False),
    "hold": lambda channels=1: orva.Resampler(8000, 16000, channels, kind="hold"),
    "stretcher": lambda channels=1: orva.Stretcher(8000, 0.7, channels),
    "suppressor": lambda channels=1: orva.NoiseSuppressor(8000, 1, channels),
    "lapped": lambda channels=1: orva.Lapped(4),
}
MANY = [name for name in STREAMS if name != "lapped"]


def run(stream, x, cuts=()):
    parts = [stream.process(part) for part in np.split(x, cuts)]
    parts.append(stream.flush().reshape(-1, *x.shape[1:]))
    return np.concatenate(parts)


@pytest.mark.parametrize("name", STREAMS)
@settings(max_examples=15)
@given(cuts=st.lists(st.integers(0, 750), max_size=5))
def test_any_cut_gives_the_same_bits(name, cuts):
    x = noise(3000)
    cuts = [4 * cut for cut in sorted(cuts)]                  # blocks that the lapped transform takes as well
    assert same_bits(run(STREAMS[name](), x, cuts), run(STREAMS[name](), x))


@pytest.mark.parametrize("name", MANY)
@pytest.mark.parametrize("channels", [2, 3])
def test_channels_are_separate(name, channels):
    x = noise(2000, channels)
    found = run(STREAMS[name](channels), x, [700])
    for c in range(channels):
        assert same_bits(found[:, c].copy(), run(STREAMS[name](), x[:, c].copy()))


@pytest.mark.parametrize("name", MANY)
def test_one_channel_may_have_a_dimension(name):
    x = noise(2000)
    assert same_bits(STREAMS[name]().process(x[:, None])[:, 0].copy(), STREAMS[name]().process(x))


@pytest.mark.parametrize("name", STREAMS)
def test_another_number_of_channels_is_refused(name):
    with pytest.raises(ValueError, match="block must have 1 channels, not 2"):
        STREAMS[name]().process(np.zeros((8, 2)))


@pytest.mark.parametrize("name", STREAMS)
def test_reset_begins_a_new_stream(name):
    x, stream = noise(2000), STREAMS[name]()
    expected = run(STREAMS[name](), x)
    stream.process(x)
    stream.reset()
    assert same_bits(run(stream, x), expected)


@pytest.mark.parametrize("name", [name for name in STREAMS if not name.startswith("filter")])
def test_after_its_end_a_new_stream_begins(name):
    x, stream = noise(2000), STREAMS[name]()
    assert same_bits(run(stream, x), run(stream, x))


@pytest.mark.parametrize("name", STREAMS)
def test_pickles_keep_the_recipe_and_not_the_history(name):
    x, stream = noise(2000), STREAMS[name]()
    expected = run(STREAMS[name](), x)
    stream.process(x)
    twin = pickle.loads(pickle.dumps(stream))
    assert type(twin) is type(stream) and same_bits(run(twin, x), expected)
    assert repr(twin) == repr(stream)


@pytest.mark.parametrize("name", STREAMS)
def test_a_closed_stream_takes_no_more(name):
    with STREAMS[name]() as stream:
        stream.process(np.zeros(8))
        assert not stream.closed
    assert stream.closed
    stream.close()
    for call in (lambda: stream.process(np.zeros(8)), stream.reset):
        with pytest.raises(ValueError, match="has been closed"):
            call()


@pytest.mark.parametrize("name", [name for name in STREAMS if name.startswith("filter")])
@pytest.mark.parametrize("channels", [1, 2])
@pytest.mark.parametrize("frames", range(10))
def test_a_copy_of_a_filter_goes_on_where_it_stands(name, channels, frames):
    x, filter = noise(500, channels), STREAMS[name](channels)
    filter(x[:frames])
    for twin in (filter.copy(), copy.copy(filter), copy.deepcopy(filter), filter.copy().copy()):
        straight = STREAMS[name](channels)
        straight(x[:frames])
        assert same_bits(twin(x[frames:]), straight(x[frames:]))
    assert same_bits(filter(x[frames:]), straight_on(name, channels, x, frames))


def straight_on(name, channels, x, frames):
    return STREAMS[name](channels)(x)[frames:].copy()


@settings(max_examples=60)
@given(st.integers(1, 7), st.integers(0, 40), st.integers(0, 10), st.booleans())
def test_a_copy_of_any_direct_form_goes_on(order, frames, more, reset):
    generator = np.random.default_rng(order)
    a = np.concatenate([[1], generator.uniform(-0.1, 0.1, order)])
    filter = orva.Filter(b=generator.uniform(-1, 1, order), a=a)
    x = noise(100)
    filter(x[:frames])
    if reset:
        filter.reset()
    twin = filter.copy()
    twin(x[:more])
    third = twin.copy()
    filter(x[:more])
    expected = filter(x)
    assert same_bits(twin(x), expected) and same_bits(third(x), expected)


def test_filter_text_decides_on_channels_unless_told():
    assert orva.Filter("order=2; fpass=0.2; nc=3").channels == 3
    assert orva.Filter("order=2; fpass=0.2; nc=3; num_channels=2").channels == 2
    assert orva.Filter("order=2; fpass=0.2; nc=3", channels=5).channels == 5
    assert orva.Filter("order=2; fpass=0.2").channels == 1


@pytest.mark.parametrize("text", ["order=2; fpass=0.2; nc=0", "order=2; fpass=0.2; num_channels=-3",
                                  'order=2; fpass=0.2; num_channels=0; x="', "order=2; fpass=0.2; nc=0; x=["])
def test_filters_without_channels_are_refused(text):
    for channels in (None, 2):
        if channels and not text.endswith(('"', "[")):
            continue
        with pytest.raises(ValueError, match="channels"):
            orva.Filter(text, channels=channels)


@pytest.mark.parametrize("arguments, message", [
    (dict(text="fpass=0.2"), "ORVA_CreateFilter: you must specify As or order"),
    (dict(text="order=2; fpass=1000"), "ORVA_CreateFilter: If you want to specify frequencies in Hz, you must specify a "
                                       "sampling frequency."),
    (dict(text="order=2; type=comb; fpass=0.2"), "ORVA_CreateFilter: Invalid filter type: comb"),
    (dict(text="order=2; approximation=elliptic; fpass=0.2"), "ORVA_CreateFilter: Invalid approximation (elliptic)"),
    (dict(text="order=2; fpass=%s%n%d"), "ORVA_CreateFilter: You must specify a cutoff frequency (fpass)"),
    (dict(sos=np.ones((65537, 6))), "ORVA_CreateFilterFromBiquads: Too many biquads (65537)"),
])
def test_refusals_carry_the_words_of_the_library(arguments, message):
    with pytest.raises(ValueError) as caught:
        orva.Filter(**arguments)
    assert str(caught.value) == message


@pytest.mark.parametrize("arguments", [
    dict(), dict(text="order=2; fpass=0.2", sos=SOS), dict(b=[1]), dict(a=[1]), dict(b=[], a=[1]), dict(b=[1], a=[0, 1]),
    dict(sos=[[1, 2, 3]]), dict(sos=[[1, 0, 0, 2, 0, 0]]), dict(sos=SOS, fs=8000), dict(text="order=2; fpass=0"),
    dict(text="order=2; fpass=0.2", channels=0), dict(text="order=2; fpass=0.2", fs=8000.5), dict(text="a\0b"),
    dict(text="order=2; fpass=0.2; x=[", fs=8000)])
def test_filters_that_cannot_be_made(arguments):
    with pytest.raises(ValueError):
        orva.Filter(**arguments)


@pytest.mark.parametrize("edge, mirrored", [(5000, 3000), (7000, 1000), (9000, 1000), (12500, 3500)])
@pytest.mark.parametrize("kind", ["lowpass", "highpass"])
def test_an_edge_above_half_the_rate_is_mirrored(kind, edge, mirrored):
    """In coefficients, which are computed in double precision from other numbers then."""
    impulse = np.eye(1, 64, dtype=np.float32)[0]
    found, expected = (orva.Filter(f"type={kind}; order=4; fpass={hertz}", fs=8000)(impulse) for hertz in (edge, mirrored))
    assert np.abs(found - expected).max() < 1e-6


@pytest.mark.parametrize("make, message", [
    (lambda: orva.Resampler(8000, 8001, kind="hold"),
     "ORVA_ZOHResampleInit: Unsuported sample rate convertion: 8000 to 8001"),
    (lambda: orva.Resampler(1, 2147483647), "ORVA_ResampleInit: Parametros invalidos"),
    (lambda: orva.NoiseSuppressor(44100), "ORVA_CreateNoiseSup: Invalid sample rate."),
])
def test_other_refusals_carry_the_words_of_the_library(make, message):
    with pytest.raises(ValueError) as caught:
        make()
    assert str(caught.value) == message


@pytest.mark.parametrize("make", [
    lambda: orva.Resampler(0, 8000), lambda: orva.Resampler(8000, 8000, 0), lambda: orva.Resampler(8000, 8000, order=0),
    lambda: orva.Resampler(8000, 8000, kind="sinc"), lambda: orva.Resampler(44100.5, 8000),
    lambda: orva.Stretcher(8000, 0), lambda: orva.Stretcher(8000, 3.1), lambda: orva.Stretcher(8000, float("nan")),
    lambda: orva.Stretcher(300), lambda: orva.Stretcher(8000, frame_ms=221), lambda: orva.NoiseSuppressor(8000, 4),
    lambda: orva.Lapped(0), lambda: orva.Lapped(8).forward(np.zeros(9)), lambda: orva.Lapped(8).inverse(np.zeros(9)),
    lambda: orva.Fft(0), lambda: orva.Fft(8).forward(np.zeros(9)), lambda: orva.window("Hann", 8),
    lambda: orva.window(11, 8), lambda: orva.window(-1, 8), lambda: orva.window("Hanning", -1),
    lambda: orva.window_gain([1], [1, 2]), lambda: orva.apply_window([1, 2], [1]), lambda: orva.power_db([1.0]),
    lambda: orva.power_db([1.0, 2], gain=0), lambda: orva.power_db([1.0, 2], emphasis=[1]),
    lambda: orva.spectrogram([0.0], 0), lambda: orva.spectrogram([0.0], 8000, 16, 0),
    lambda: orva.spectrogram([0.0], 8000, 16, window=[1, 2]), lambda: orva.correlate([], [1]),
    lambda: orva.correlate([[1, 2]], [1]), lambda: orva.find_delay([1], [1], fs=-1), lambda: orva.coefficient([], []),
    lambda: orva.spline(0, [1], [1]), lambda: orva.spline(0, [1, 1], [1, 2]), lambda: orva.spline(0, [1, 2], [1]),
    lambda: orva.interp(0, [2, 1], [1, 2]), lambda: orva.interp(0, [0, np.nan], [1, 2]),
    lambda: orva.energy_db([1], frame=0), lambda: orva.energy_db([1], frame=1, hop=0)])
def test_what_is_out_of_range_is_refused(make, capfd):
    with pytest.raises(ValueError):
        make()
    assert capfd.readouterr().err == ""


def test_stretcher_changes_its_speed():
    x = noise(40000)
    stretcher = orva.Stretcher(8000, 1.0)
    parts = [stretcher.process(x[:20000]), stretcher.process(x[20000:], speed=2.0), stretcher.flush()]
    assert abs(sum(map(len, parts)) - 30000) < 1000
    assert same_bits(parts[0], x[:len(parts[0])])
    assert abs(stretcher.position(25000) - 30000) < 400
    assert stretcher.position(0) == 0


@pytest.mark.parametrize("channels", [1, 2])
@pytest.mark.parametrize("speed", [0.3, 1.0, 2.5])
def test_stretcher_takes_a_block_that_is_longer_than_its_record(speed, channels):
    x = noise(100000, channels)
    assert same_bits(run(orva.Stretcher(8000, speed, channels), x),
                     run(orva.Stretcher(8000, speed, channels), x, range(1000, 100000, 1000)))


def test_stretcher_before_its_first_block():
    assert orva.Stretcher(8000).position(100) == 0


def test_suppressor_degree():
    suppressor = orva.NoiseSuppressor(8000, 0)
    suppressor.degree = 3
    assert suppressor.degree == pickle.loads(pickle.dumps(suppressor)).degree == 3
    with pytest.raises(ValueError):
        suppressor.degree = 4


def test_lapped_comes_back_exactly():
    x = noise(64 * 20)
    y = run(orva.Lapped(64), x)
    assert np.abs(y[64:] - x).max() < 1e-6


def test_threads_may_share_a_stream():
    """Calls come one after the other, so that nothing is lost and nothing breaks."""
    converter, given, threads = orva.Resampler(8000, 11025), [], []
    blocks = np.split(noise(40000), 100)
    for n in range(4):
        threads.append(threading.Thread(target=lambda n=n: given.extend(len(converter.process(b)) for b in blocks[n::4])))
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert sum(given) + len(converter.flush()) == 40000 * 11025 // 8000


def test_threads_may_share_transforms():
    transform, frames = orva.Fft(256), noise(50, 256)
    spectra = transform.forward(frames)
    back = transform.inverse(spectra)
    wrong = []

    def work():
        for _ in range(20):
            for frame, spectrum, samples in zip(frames, spectra, back):
                if not same_bits(transform.forward(frame), spectrum) or not same_bits(transform.inverse(spectrum), samples):
                    wrong.append(frame)

    threads = [threading.Thread(target=work) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not wrong


def test_a_long_call_lets_other_threads_run():
    """While one thread filters, another counts; in a library that kept the interpreter's lock, it would stand still."""
    x, filter = np.zeros(1 << 24, np.float32), orva.Filter("order=20; fpass=0.2")
    worker = threading.Thread(target=filter, args=(x,), kwargs={"out": x})
    worker.start()
    ticks, last = 0, time.perf_counter()
    longest = 0.0
    while worker.is_alive():
        time.sleep(0.001)
        now = time.perf_counter()
        longest, last, ticks = max(longest, now - last), now, ticks + 1
    assert ticks > 20 and longest < 0.1
