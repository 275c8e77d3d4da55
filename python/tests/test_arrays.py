"""What each function does with arrays that are not plain: types, strides, byte orders, shapes, what is not finite."""
import mmap
import tempfile
import warnings

import numpy as np
import pytest
from clib import noise, same_bits
from hypothesis import given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as hnp

import orva

FLAT = {
    "apply_window": lambda x, **out: orva.apply_window(x, np.ones(len(x), np.float32), **out),
    "Filter": lambda x, **out: orva.Filter("order=3; fpass=0.2")(x, **out),
    "Filter of b and a": lambda x, **out: orva.Filter(b=[1, 0.5], a=[1, -0.2])(x, **out),
    "remove_dc": orva.remove_dc,
}
OTHERS = {
    "rfft": orva.rfft,
    "Fft.power": lambda x: orva.Fft(len(x)).power(x),
    "power_db": lambda x: orva.power_db(np.square(x)),
    "spectrogram": lambda x: orva.spectrogram(x, 8000, 16).decibels,
    "Resampler": lambda x: orva.Resampler(2, 3).process(x),
    "resample": lambda x: orva.resample(x, 2, 3),
    "stretch": lambda x: orva.stretch(x, 8000, 1.5),
    "correlate": lambda x: orva.correlate(x, x),
    "phat": lambda x: orva.correlate(x, x, phat=True),
    "Lapped": lambda x: orva.Lapped(4).forward(x),
    "NoiseSuppressor": lambda x: orva.NoiseSuppressor(8000).process(x),
    "energy_db": lambda x: orva.energy_db(x, 8),
    "zero_cross_rate": lambda x: orva.zero_cross_rate(x, 8),
    "spline": lambda x: orva.spline(x, np.arange(5), np.arange(5) ** 2),
    "interp": lambda x: orva.interp(x, np.arange(5), np.arange(5) ** 2),
    "window_gain": lambda x: np.float64(orva.window_gain(x)),
}
ALL = {**FLAT, **OTHERS}
N = 800


def layouts(x):
    """The same numbers, otherwise kept."""
    yield "byte-swapped", x.astype(x.dtype.newbyteorder())
    yield "double", x.astype(np.float64)
    yield "strided", np.repeat(x, 3)[::3]
    yield "reversed", x[::-1].copy()[::-1]
    frozen = x.copy()
    frozen.flags.writeable = False
    yield "read-only", frozen
    yield "not aligned", np.frombuffer(b"\0" + x.tobytes(), np.uint8)[1:].view(np.float32)
    yield "list", x.tolist()
    yield "masked", np.ma.masked_array(x)
    yield "longdouble", x.astype(np.longdouble)


@pytest.mark.parametrize("name", ALL)
def test_layout_does_not_count(name):
    x = noise(N)
    before, expected = x.copy(), ALL[name](x)
    for layout, other in layouts(x):
        assert same_bits(ALL[name](other), expected), layout
    assert same_bits(x, before), "the input has changed"


@pytest.mark.parametrize("name", ALL)
@pytest.mark.parametrize("dtype", [np.int8, np.int16, np.int32, np.int64, np.uint8, bool, np.float16])
def test_other_types_are_converted_by_value(name, dtype):
    x = np.random.default_rng(3).integers(0, 2, N).astype(dtype)
    assert same_bits(ALL[name](x), ALL[name](x.astype(np.float32)))


@pytest.mark.parametrize("name", ALL)
@pytest.mark.parametrize("values", [np.zeros(N, complex), np.array(["1"] * N), np.array([None] * N),
                                    np.zeros(N, "datetime64[s]")])
def test_what_is_no_real_number_is_refused(name, values):
    if name == "power_db":
        values = np.asarray(values)
        with pytest.raises(TypeError):
            orva.power_db(values)
    else:
        with pytest.raises(TypeError, match="must be real numbers, not"):
            ALL[name](values)


@pytest.mark.parametrize("name", [name for name in ALL if name not in ("spline", "interp", "apply_window")])
def test_a_single_number_is_refused(name):
    with pytest.raises((ValueError, TypeError)):
        ALL[name](np.float32(1))


@pytest.mark.parametrize("name", ["Filter", "remove_dc", "resample", "stretch", "energy_db", "spectrogram"])
def test_three_dimensions_are_refused(name):
    with pytest.raises(ValueError, match="frames x channels, not an array of 3 dimensions"):
        ALL[name](np.zeros((2, 2, 2)))


@pytest.mark.parametrize("name", FLAT)
def test_out(name):
    x, out = noise(N), np.empty(N, np.float32)
    expected = FLAT[name](x)
    assert FLAT[name](x, out=out) is out and same_bits(out, expected)
    assert FLAT[name](x, out=x) is x and same_bits(x, expected)


@pytest.mark.parametrize("name", FLAT)
@pytest.mark.parametrize("out", [np.empty(N), np.empty(N + 1, np.float32), np.empty(2 * N, np.float32)[::2],
                                 np.empty(N, ">f4"), np.empty((N, 1), np.float32), np.frombuffer(bytes(4 * N), np.float32),
                                 np.frombuffer(bytearray(4 * N + 1), np.uint8)[1:].view(np.float32)])
def test_out_that_does_not_fit_is_refused(name, out):
    with pytest.raises(ValueError, match=r"out must be a writable float32 array of shape \(800,\) in C order"):
        FLAT[name](noise(N), out=out)


def test_float32_in_order_is_used_without_a_copy():
    from orva._arrays import samples
    for x in (noise(N), noise(N, 2), np.frombuffer(bytes(4 * N), np.float32)):
        assert samples(x) is x


def test_transforms_refuse_an_out_that_they_read():
    raw = np.zeros(2 * 513, np.float32)
    with pytest.raises(ValueError, match="out must not share memory"):
        orva.Fft(1024).forward(raw[:1024], out=raw.view(np.complex64))


@pytest.mark.parametrize("value", [np.nan, np.inf, -np.inf])
def test_what_is_not_finite_passes_through(value):
    x = noise(N)
    x[400] = value
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        clean = orva.Filter("order=3; fpass=0.2")(noise(N))
        spoiled = orva.Filter("order=3; fpass=0.2")(x)
        assert same_bits(spoiled[:400], clean[:400]) and not np.isfinite(spoiled[400:]).any()
        assert not np.isfinite(orva.rfft(x)).any() and (np.isnan(orva.rfft(x)).all() or np.isinf(value))
        assert np.isnan(orva.correlate(x, x)).all() and np.isnan(orva.find_delay(x, x))
        assert np.isnan(orva.coefficient(x, x).value) or np.isinf(value) and orva.coefficient(x, x).value == 0
        assert orva.energy_db(x) == 0
        assert np.isfinite(orva.resample(x, 2, 3)[:500]).all() and not np.isfinite(orva.resample(x, 2, 3)).all()
        assert orva.stretch(x, 8000, 1.0).shape[0] >= N
        decibels = orva.spectrogram(x, 8000, 100, 100).decibels
        assert (decibels[4] == -120).all() or np.isinf(value)
        assert (np.delete(decibels, 4, axis=0) > -120).all()
        assert np.isnan(orva.interp(np.float32(value), [0, 1], [0, 1])) or np.isinf(value)
        limited = np.nan_to_num(x, nan=0, posinf=1, neginf=-1)
        assert same_bits(orva.NoiseSuppressor(8000).process(x), orva.NoiseSuppressor(8000).process(limited))
        assert np.isnan(orva.window_gain(x)) or np.isinf(orva.window_gain(x)) and np.isinf(value)
        assert orva.Lapped(4).forward(x).shape == (200, 4)


def test_scales_of_what_is_no_number():
    for scale in (orva.hz_to_mel, orva.mel_to_hz, orva.hz_to_bark, orva.bark_to_hz):
        assert np.isnan(scale(np.nan)) and np.isnan(scale([1.0, np.nan])[1])


def test_a_double_beyond_float_becomes_infinite():
    with np.errstate(over="ignore"):
        assert np.isinf(orva.Filter(b=[1], a=[1])([1e300]))[0]


@pytest.mark.parametrize("name, shape", [("Filter", (0,)), ("remove_dc", (0,)), ("apply_window", (0,)), ("resample", (0,)),
                                         ("Resampler", (0,)), ("spline", (0,)), ("interp", (0,)),
                                         ("Lapped", (0, 4)), ("NoiseSuppressor", (0,)), ("energy_db", (0,)),
                                         ("spectrogram", (0, 9))])
def test_nothing_gives_nothing(name, shape):
    assert ALL[name](np.empty(0)).shape == shape


@pytest.mark.parametrize("name", ["rfft", "Fft.power", "correlate", "power_db"])
def test_nothing_is_refused_where_there_must_be_something(name):
    with pytest.raises(ValueError):
        ALL[name](np.empty(0))


def test_nothing_is_measured_as_the_library_does():
    assert orva.energy_db([]) == 0 and np.isnan(orva.zero_cross_rate([])) and np.isnan(orva.window_gain([]))
    assert orva.stretch([], 8000, 2.0).size == 0


def test_lengths_beyond_a_count_are_refused():
    huge = np.lib.stride_tricks.as_strided(np.zeros(1, np.float32), (2**31 + 10,), (0,))
    for refused in (lambda: orva.window("Hanning", 2**32), lambda: orva.Fft(2**31), lambda: orva.Lapped(2**28 + 1),
                    lambda: orva.Resampler(2**31, 8000), lambda: orva.Stretcher(2**31),
                    lambda: orva.rfft([1.0], 2**40), lambda: orva.spectrogram([0.0], 8000, hop=2**31),
                    lambda: orva.preemphasis_gain(2**31), lambda: orva.energy_db(huge[:10], frame=2**31)):
        with pytest.raises(ValueError, match="must be a whole number from"):
            refused()


def test_more_samples_than_the_library_counts_are_refused():
    """Before anything is read or made: these eight gigabytes are a file with nothing in it."""
    with tempfile.TemporaryFile() as file:
        file.truncate(4 * (2**31 + 8))
        x = np.frombuffer(mmap.mmap(file.fileno(), 0, prot=mmap.PROT_READ), np.float32)
        for refused in (lambda: orva.energy_db(x), lambda: orva.zero_cross_rate(x), lambda: orva.window_gain(x),
                        lambda: orva.apply_window(x, x), lambda: orva.remove_dc(x), lambda: orva.correlate(x, x[:4]),
                        lambda: orva.correlate(x[:4], x[:2**30]), lambda: orva.coefficient(x, x[:4]), lambda: orva.rfft(x),
                        lambda: orva.power_db(x), lambda: orva.spline(0, x, x), lambda: orva.interp(0, x, x),
                        lambda: orva.Resampler(2, 1).process(x), lambda: orva.Resampler(1, 3).process(x[:2**30])):
            with pytest.raises(ValueError, match="must be a whole number from|frames is too long"):
                refused()


def test_a_filter_takes_long_blocks_in_parts(monkeypatch):
    from orva import filters
    x = noise(1000, 3)
    expected = orva.Filter("order=3; fpass=0.2", channels=3)(x)
    monkeypatch.setattr(filters, "MOST", 100)
    assert same_bits(orva.Filter("order=3; fpass=0.2", channels=3)(x), expected)


@settings(max_examples=60)
@given(hnp.arrays(st.sampled_from([np.float32, np.float64, np.int16, ">f4"]),
                  hnp.array_shapes(min_dims=1, max_dims=2, min_side=0, max_side=40),
                  elements=st.integers(-100, 100)), st.booleans())
def test_any_array_is_filtered_like_its_float32(x, transposed):
    x = x.T if transposed else x
    channels = x.shape[1] if x.ndim == 2 else 1
    if channels == 0:
        with pytest.raises(ValueError):
            orva.Filter("order=2; fpass=0.2")(x)
        return
    plain = np.array(x, np.float32, order="C")
    found = orva.Filter("order=2; fpass=0.2", channels=channels)(x)
    assert found.shape == x.shape
    for c in range(channels):
        column = plain if x.ndim == 1 else plain[:, c].copy()
        assert same_bits(found if x.ndim == 1 else found[:, c].copy(), orva.Filter("order=2; fpass=0.2")(column))
