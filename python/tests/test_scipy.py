"""The same jobs by SciPy. Each tolerance is the deviation that the guide states, with a little room."""
import numpy as np
import pytest
from clib import noise
from scipy import fft, interpolate, signal

import orva

FS = 48000


def largest(first, second):
    return float(np.abs(np.asarray(first, np.float64) - second).max())


def response(filter, points=4096):
    """Complex gain at points from 0 to half the rate, from an impulse."""
    impulse = np.zeros(1 << 16, np.float32)
    impulse[0] = 1
    return fft.rfft(filter(impulse).astype(np.float64))[::(1 << 15) // points]


def decibels(gain):
    return 20 * np.log10(np.maximum(np.abs(gain), 1e-5))


def compare(found, sos):
    """Within 1e-3 dB down to -60 dB, and within 2e-6 of full scale everywhere: float32 between the sections is heard."""
    expected = signal.sosfreqz(sos, np.linspace(0, FS / 2, 4097), fs=FS)[1]
    heard = np.abs(expected) > 1e-3
    assert largest(decibels(found[heard]), decibels(expected[heard])) < 1e-3
    assert largest(np.abs(found), np.abs(expected)) < 2e-6


DESIGNS = {
    "butter": ("approximation=butterworth; Ap=3.0102999566", dict(ftype="butter")),
    "cheby1": ("approximation=chebyshev; Ap=1", dict(ftype="cheby1", rp=1)),
}
BANDS = {
    "lowpass": ("type=lowpass; fpass=4000", 4000),
    "highpass": ("type=highpass; fpass=4000", 4000),
    "bandpass": ("type=bandpass; fpass1=2000; fpass2=6000", [2000, 6000]),
    "bandstop": ("type=bandreject; fpass1=2000; fpass2=6000", [2000, 6000]),
}


@pytest.mark.parametrize("band", BANDS)
@pytest.mark.parametrize("design", ["butter", "cheby1"])
@pytest.mark.parametrize("order", [1, 2, 5, 8])
def test_responses_are_those_of_the_design(design, band, order):
    text, settings = DESIGNS[design]
    edges, frequencies = BANDS[band]
    sos = signal.iirfilter(order, frequencies, btype=band, fs=FS, output="sos", **settings)
    compare(response(orva.Filter(f"{text}; order={order}; {edges}", fs=FS)), sos)


@pytest.mark.parametrize("band", BANDS)
def test_elliptic_response(band):
    """Order 8: the passband within 0.001 dB, and the stopband below that of the design."""
    edges, frequencies = BANDS[band]
    stops = {"lowpass": "fstop=4800", "highpass": "fstop=3300", "bandpass": "fstop1=1500; fstop2=7000",
             "bandstop": "fstop1=2500; fstop2=5200"}[band]
    found = decibels(response(orva.Filter(f"approximation=ellip; Ap=1; As=60; order=8; {edges}; {stops}", fs=FS)))
    hertz = np.linspace(0, FS / 2, 4097)
    passed = {"lowpass": hertz <= 4000, "highpass": hertz >= 4000, "bandpass": (hertz >= 2000) & (hertz <= 6000),
              "bandstop": (hertz <= 2000) | (hertz >= 6000)}[band]
    assert found[passed].max() < 1e-3 and found[passed].min() > -1 - 1e-3
    assert found.min() < -60


@pytest.mark.parametrize("order", [2, 5, 8])
@pytest.mark.parametrize("band", ["lowpass", "highpass"])
def test_inverse_chebyshev_response(order, band):
    """SciPy takes the edge of the stopband, the text that of the passband, from which the other follows."""
    found = response(orva.Filter(f"type={band}; approximation=invchebyshev; order={order}; Ap=1; As=50; fpass=4000", fs=FS))
    ratio = np.cosh(np.arccosh(np.sqrt((10**5.0 - 1) / (10**0.1 - 1))) / order)
    passed = np.tan(np.pi * 4000 / FS)
    edge = FS / np.pi * np.arctan(passed * ratio if band == "lowpass" else passed / ratio)
    sos = signal.cheby2(order, 50, edge, btype=band, fs=FS, output="sos")
    compare(found, sos)


@pytest.mark.parametrize("order", [1, 4, 10])
def test_sections(order):
    """Within 3e-7 of full scale, the rounding between sections."""
    sos = signal.butter(order, 3000, fs=FS, output="sos")
    x = noise(20000)
    assert largest(orva.Filter(sos=sos)(x), signal.sosfilt(sos, x.astype(np.float64))) < 3e-7


def test_coefficients():
    """Within 1e-6 of full scale at order 2; single precision throughout."""
    b, a = signal.butter(2, 3000, fs=FS)
    x = noise(20000)
    assert largest(orva.Filter(b=b, a=a)(x), signal.lfilter(b, a, x.astype(np.float64))) < 1e-6


@pytest.mark.parametrize("n", [64, 100, 1024, 4096])
def test_transforms(n):
    """Within 2e-6 of the largest bin."""
    x = noise(n)
    expected = fft.rfft(x.astype(np.float64))
    assert largest(np.abs(orva.rfft(x) - expected), 0) < 2e-6 * np.abs(expected).max()
    assert largest(orva.irfft(orva.rfft(x), n), x) < 1e-6


def test_transform_of_any_axis_and_length():
    x = noise(4, 30, 5)
    for axis in (0, 1, 2, -1):
        for n in (None, 7, 40):
            expected = fft.rfft(x, n, axis)
            found = orva.rfft(x, n, axis)
            assert found.shape == expected.shape and np.abs(found - expected).max() < 1e-5
            back = fft.irfft(expected, n, axis)
            assert orva.irfft(expected, n, axis).shape == back.shape
            assert largest(orva.irfft(expected, n, axis), back) < 1e-5


@pytest.mark.parametrize("name, theirs, periodic", [
    ("Rectangular", "boxcar", False), ("Hanning", "hann", False), ("Hanning-Periodic", "hann", True),
    ("Hamming", "hamming", False), ("Blackman-Harris", "blackmanharris", False)])
def test_windows(name, theirs, periodic):
    """Within 1e-6; Blackman, the two of Nuttall, Triangular and Flat-Top are other shapes than SciPy's."""
    for n in (64, 255, 1024):
        assert largest(orva.window(name, n), signal.get_window(theirs, n, fftbins=periodic)) < 1e-6


def test_spectrogram():
    """Within 1e-4 dB for what lies above -90 dB."""
    x = noise(20000)
    frequencies, times, decibels = orva.spectrogram(x, FS, 512, 128)
    f, t, power = signal.spectrogram(x.astype(np.float64), FS, "hann", 512, 384, detrend=False, mode="magnitude",
                                     scaling="spectrum")
    expected = 20 * np.log10(2 * power.T)
    expected[:, [0, -1]] = decibels[:, [0, -1]]               # which SciPy and a transform of real samples count once
    assert np.allclose(frequencies, f) and np.allclose(times, t)
    assert largest(decibels, expected) < 2e-4


@pytest.mark.parametrize("lengths", [(1000, 1000), (300, 300)])
def test_correlate(lengths):
    """L times ours, within 1e-6 of the largest."""
    x, y = noise(lengths[0]), noise(lengths[1], seed=2)
    expected = signal.correlate(x.astype(np.float64), y.astype(np.float64))
    assert largest(orva.correlate(x, y) * float(max(lengths)), expected) < 1e-6 * np.abs(expected).max()
    lags = signal.correlation_lags(*lengths)
    assert orva.find_delay(x, y, phat=False) == lags[np.abs(expected).argmax()]


@pytest.mark.parametrize("left, right, ends", [(None, None, "natural"), (1.0, -1.0, ((1, 1.0), (1, -1.0)))])
def test_spline(left, right, ends):
    """Within 2e-5 for heights of up to 1."""
    xp, fp, places = np.arange(20.0), noise(20), np.linspace(0, 19, 500)
    expected = interpolate.CubicSpline(xp, fp.astype(np.float64), bc_type=ends)(places)
    assert largest(orva.spline(places, xp, fp, left, right), expected) < 2e-5


def test_interp():
    xp, fp, places = np.arange(20.0), noise(20), np.linspace(0, 19, 500)
    assert largest(orva.interp(places, xp, fp), np.interp(places, xp, fp)) < 1e-6


def test_resample_keeps_a_tone():
    """A tone of 1 kHz from 44100 to 48000 Hz, within 0.3 % of its height, the ripple of order 30; a delay of 0.347
    samples, which is known, is taken away."""
    fs, to, n = 44100, 48000, 20000
    x = np.sin(2 * np.pi * 1000 * np.arange(n) / fs)
    y = orva.resample(x, fs, to)
    k = np.arange(len(y))[1000:-1000]
    e = 33 - 30 * to / fs
    assert largest(y[1000:-1000], np.sin(2 * np.pi * 1000 * (k + e) / to)) < 3e-3


def test_coefficient_of_a_shifted_copy():
    x = noise(1000)
    value, lag = orva.coefficient(np.concatenate([np.zeros(10), x]), np.concatenate([x, np.zeros(10)]))
    assert abs(value - 1) < 1e-6 and lag == 10


def test_measures():
    """Decibels within 1e-4, rates exact."""
    x = noise(1000)
    assert abs(orva.energy_db(x) - 10 * np.log10(x.astype(np.float64).var() / 0.32768)) < 1e-4
    assert orva.zero_cross_rate(x) == np.float32(np.count_nonzero(x[1:] * x[:-1] < 0) / 1000)


def test_remove_dc():
    b = [0.9272743463516235, -1.8544940948486328, 0.9272743463516235]
    a = [1, -1.9059464931488037, 0.9114024043083191]
    x = noise(1000)
    assert largest(orva.remove_dc(x), signal.lfilter(b, a, x.astype(np.float64))) < 1e-6
