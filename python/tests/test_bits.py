"""Each function gives the bits of the C library, which is called here by another way."""
import ctypes

import clib
import numpy as np
import pytest
from clib import aligned, noise, same_bits

import orva


def zeros(*shape, dtype=np.float32):
    return aligned(np.zeros(shape, dtype))


@pytest.mark.parametrize("code, name", enumerate(orva.WINDOWS))
@pytest.mark.parametrize("n", [0, 1, 2, 3, 8, 255, 1024])
def test_window(code, name, n):
    expected = zeros(n)
    assert clib.ORVA_CreateWindow(code, expected, n)
    assert same_bits(orva.window(name, n), expected)
    assert same_bits(orva.window(name.upper(), n), expected)
    assert same_bits(orva.window(code, n), expected)


def test_window_gain():
    first, second = noise(1000), noise(1000, seed=2)
    assert orva.window_gain(first) == clib.ORVA_GetWindowNormFactor(first, 1000)
    assert orva.window_gain(first, second) == clib.ORVA_GetTwoWindowNormFactor(first, second, 1000)


def test_apply_window():
    frame, window = noise(1000), noise(1000, seed=2)
    expected = frame.copy()
    clib.ORVA_ApplyWindow(window, expected, 1000)
    assert same_bits(orva.apply_window(frame, window), expected)


@pytest.mark.parametrize("n", [1, 2, 3, 4, 7, 8, 15, 16, 100, 255, 480, 1024])
def test_transforms(n):
    x, bins = aligned(noise(n)), n // 2 + 1
    forward, inverse = clib.ORVA_FFTProcCreate(n), clib.ORVA_IFFTProcCreate(n)
    spectrum, power = zeros(bins, dtype=np.complex64), zeros(4 * (n // 8 + 1))
    clib.ORVA_FFTProcExecute(forward, x, spectrum)
    clib.ORVA_FFTProcExecutePSDEx(forward, x, power, None)
    assert same_bits(orva.rfft(x), spectrum)
    assert same_bits(orva.Fft(n).power(x), power[:bins])
    back = zeros(n)
    clib.ORVA_IFFTProcExecuteEx(inverse, aligned(spectrum), back, True)
    assert same_bits(orva.irfft(spectrum, n), back)
    clib.ORVA_FFTProcDestroy(forward)
    clib.ORVA_FFTProcDestroy(inverse)


def test_transforms_of_arrays_that_are_not_aligned():
    raw, transform = noise(3, 1024), orva.Fft(1024)
    shifted = np.empty(3 * 1024 + 1, np.float32)[1:].reshape(3, 1024)
    shifted[:] = raw
    out = np.empty(3 * 513 + 1, np.complex64)[1:].reshape(3, 513)
    assert transform.forward(shifted, out=out) is out
    assert same_bits(out, transform.forward(raw))
    back = np.empty(3 * 1024 + 1, np.float32)[1:].reshape(3, 1024)
    assert same_bits(transform.inverse(out, out=back), transform.inverse(out))
    assert same_bits(transform.power(shifted), transform.power(raw))


@pytest.mark.parametrize("bins", [2, 3, 5, 129, 513])
@pytest.mark.parametrize("emphasised", [False, True])
def test_power_db(bins, emphasised):
    room, n, gain = -(-bins // 4) * 4, 2 * (bins - 1), 0.4995
    power, adjustment, expected = zeros(room), zeros(room), zeros(room)
    power[:bins] = noise(bins) ** 2
    power[0] = 0
    clib.ORVA_CreatePreEmphAdjust(adjustment, n, 0.9)
    clib.ORVA_PSDtoDB(n, power, expected, adjustment.ctypes.data if emphasised else None, gain**4, 90.0)
    emphasis = orva.preemphasis_gain(n, 0.9) if emphasised else None
    assert emphasis is None or same_bits(emphasis, adjustment[:bins])
    assert same_bits(orva.power_db(power[:bins], gain, emphasis, floor=-90), expected[:bins])


@pytest.mark.parametrize("channels", [1, 2, 3])
def test_spectrogram(channels):
    x, n, hop = noise(3000, channels), 512, 200
    window = orva.window("Hanning-Periodic", n)
    gain, forward = clib.ORVA_GetWindowNormFactor(window, n), clib.ORVA_FFTProcCreate(n)
    given = x[:, 0] if channels == 1 else x
    frequencies, times, decibels = orva.spectrogram(given, 8000, n, hop)
    assert decibels.shape == ((3000 - n) // hop + 1, n // 2 + 1, *given.shape[1:])
    for c in range(channels):
        for t in range(decibels.shape[0]):
            frame, power = aligned(x[t * hop:t * hop + n, c]), zeros(4 * (n // 8 + 1))
            clib.ORVA_ApplyWindow(window, frame, n)
            clib.ORVA_FFTProcExecutePSDEx(forward, frame, power, None)
            clib.ORVA_PSDtoDB(n, power, power, None, gain**4, 120.0)
            found = decibels[t] if channels == 1 else decibels[t, :, c]
            assert same_bits(np.ascontiguousarray(found), power[:n // 2 + 1])
    clib.ORVA_FFTProcDestroy(forward)
    assert frequencies[-1] == 4000 and times[1] == (hop + n / 2) / 8000


TEXTS = [
    "order=4; fpass=0.25",
    "type=bandpass; order=4; fpass1=300; fpass2=3400; fs=16000",
    "approximation=ellip; Ap=1; As=60; fpass=0.25; fstop=0.3; gain=0.5",
    "biquads=[-0.94 0.33 0.1 0.2 0.1; -1.1 0.4 0.2 0.4 0.2]",
    "numerator=[0.5 0.25 0.1]; denominator=[1 -0.5]",
]


@pytest.mark.parametrize("text", TEXTS)
@pytest.mark.parametrize("channels", [1, 2, 6])
def test_filter_from_text(text, channels):
    x = noise(500, channels)
    expected = np.empty_like(x)
    filter = clib.ORVA_CreateFilter(f"{text}; nc={channels}".encode())
    assert clib.ORVA_Filter(filter, x, expected, x.size) == 1
    clib.ORVA_DestroyFilter(filter)
    given = x[:, 0] if channels == 1 else x
    expected = expected[:, 0] if channels == 1 else expected
    assert same_bits(orva.Filter(text, channels=channels)(given), np.ascontiguousarray(expected))


def test_filter_from_sections():
    x, sos = noise(500), np.array([[0.1, 0.2, 0.1, 1, -0.94, 0.33], [0.2, 0.4, 0.2, 1, -1.1, 0.4]])
    expected = np.empty_like(x)
    filter = clib.ORVA_CreateFilterFromBiquads(1, 2, np.ascontiguousarray(sos[:, [4, 5, 0, 1, 2]]))
    clib.ORVA_Filter(filter, x, expected, 500)
    clib.ORVA_DestroyFilter(filter)
    assert same_bits(orva.Filter(sos=sos)(x), expected)


@pytest.mark.parametrize("b, a", [([1.0], [2.0]), ([0.5, 0.2], [1.0]), ([1.0], [1.0, -0.5, 0.2]), ([2.0, 1, 1], [4.0, 1, 1])])
def test_filter_from_coefficients(b, a):
    x = noise(500, 2)
    expected = np.empty_like(x)
    filter = clib.ORVA_CreateFilterFromCoefs(2, len(b), np.array(b), len(a), np.array(a))
    clib.ORVA_Filter(filter, x, expected, 1000)
    clib.ORVA_DestroyFilter(filter)
    assert same_bits(orva.Filter(b=b, a=a, channels=2)(x), expected)


@pytest.mark.parametrize("fs_in, fs_out", [(44100, 48000), (48000, 16000), (8000, 48000), (16000, 16000), (3, 7)])
@pytest.mark.parametrize("order", [1, 30])
def test_resampler(fs_in, fs_out, order):
    x = noise(2000)
    converter = clib.ORVA_ResampleInit(fs_in, fs_out, f"order={order}".encode())
    made, tail = zeros(2000 * fs_out // fs_in + 2), zeros(clib.ORVA_ResampleFlushBufferSize(converter))
    written = clib.ORVA_Resample(converter, x, made, 2000)
    flushed = clib.ORVA_ResampleFlushBuffersEx(converter, tail, 0)
    clib.ORVA_ResampleDestroy(converter)
    expected = np.concatenate([made[:written], tail[:flushed]])
    assert len(expected) == -(-2000 * fs_out // fs_in)
    assert same_bits(orva.resample(x, fs_in, fs_out, order), expected)


def test_resampler_that_keeps_its_delay():
    x = noise(2000)
    converter = clib.ORVA_ResampleInit(44100, 48000, b"order=30; delaycompensation=0")
    made, tail = zeros(2180), zeros(clib.ORVA_ResampleFlushBufferSize(converter))
    written = clib.ORVA_Resample(converter, x, made, 2000)
    clib.ORVA_ResampleFlushBuffersEx(converter, tail, 0)
    clib.ORVA_ResampleDestroy(converter)
    mine = orva.Resampler(44100, 48000, compensate=False)
    assert same_bits(mine.process(x), made[:written])
    assert same_bits(mine.flush(), tail)


def test_hold():
    x = noise(2000)
    converter = clib.ORVA_ResampleInit(16000, 48000, b"type=zoh")
    made = zeros(8000)
    written = clib.ORVA_Resample(converter, x, made, 2000)
    clib.ORVA_ResampleDestroy(converter)
    assert same_bits(orva.resample(x, 16000, 48000, kind="hold"), made[:written])


@pytest.mark.parametrize("channels", [1, 2])
@pytest.mark.parametrize("speed", [0.5, 0.7, 1.0, 1.5, 3.0])
def test_stretcher(channels, speed):
    fs, frame = 8000, 160
    x = noise(5000, channels)
    fed = np.concatenate([x * np.float32(32768), np.zeros((7 * frame // 2, channels), np.float32)])
    columns = []
    for c in range(channels):
        record, out = clib.ORVA_SolafsCreate(20, fs, 1), zeros(20000)
        plane = np.ascontiguousarray(fed[:, c])
        assert clib.ORVA_SolafsInputData(record, 0, plane, len(plane), speed) == len(plane)
        columns.append(out[:clib.ORVA_SolafsOutputData(record, 0, out, 20000)] / np.float32(32768))
        middle = clib.ORVA_SolafsTranslateCursorPosition(record, 1000)
        clib.ORVA_SolafsDestroy(record)
    expected = columns[0] if channels == 1 else np.stack(columns, axis=1)
    given = x[:, 0] if channels == 1 else x
    assert same_bits(orva.stretch(given, fs, speed), expected)
    stretcher = orva.Stretcher(fs, speed, channels)
    stretcher.process(given)
    stretcher.flush()
    assert abs(stretcher.position(1000) - middle) <= 2        # one sample for each call of the input


@pytest.mark.parametrize("phat", [False, True])
@pytest.mark.parametrize("lengths", [(100, 100), (64, 30), (30, 64), (1, 1)])
def test_correlate(phat, lengths):
    x, y = noise(lengths[0]), noise(lengths[1], seed=2)
    expected = zeros(2 * max(lengths) - 1)
    processor = clib.ORVA_XcorrProcCreate(*lengths)
    execute = clib.ORVA_XcorrPhatProcess if phat else clib.ORVA_XcorrProcExecute
    assert execute(processor, x, y, expected) == expected.size
    clib.ORVA_XcorrProcDestroy(processor)
    assert same_bits(orva.correlate(x, y, phat), expected)
    assert orva.find_delay(x, y, phat=phat) == np.abs(expected).argmax() - max(lengths) + 1


def test_coefficient():
    x, y, lag = noise(100), noise(80, seed=2), ctypes.c_int32()
    value = clib.ORVA_XcorrCoef(x, 100, y, 80, ctypes.byref(lag))
    assert orva.coefficient(x, y) == (value, lag.value)


@pytest.mark.parametrize("m", [4, 7, 256])
def test_lapped(m):
    x, twiddles, history, overlap = noise(5 * m), zeros(2 * (m + 1)), zeros(m), zeros(m)
    processor, lapped = clib.ORVA_FMCLTProcCreate(m), orva.Lapped(m)
    clib.ORVA_FMCLTFreqWindow(twiddles, m)
    for block in np.concatenate([x, np.zeros(m, np.float32)]).reshape(-1, m):
        re, im, y = zeros(m), zeros(m), zeros(m)
        clib.ORVA_FMCLTDirect(processor, re, im, block, history, twiddles)
        found = lapped.forward(block)
        assert same_bits(found[0].real.copy(), re) and same_bits(found[0].imag.copy(), im)
        clib.ORVA_FMCLTInverse(processor, re, im, y, overlap, twiddles)
        assert same_bits(lapped.inverse(found), y)
    clib.ORVA_FMCLTProcDestroy(processor)


@pytest.mark.parametrize("fs", [8000, 16000, 32000])
def test_noise_suppressor(fs):
    frame, x = fs // 100, noise(fs // 10, height=0.1)
    suppressor, expected = clib.ORVA_CreateNoiseSupEx(fs, 3), np.empty_like(x)
    for n in range(0, x.size, frame):
        part = zeros(frame)
        clib.ORVA_DoNoiseSup(suppressor, x[n:n + frame], part)
        expected[n:n + frame] = part
    clib.ORVA_DestroyNoiseSup(suppressor)
    assert same_bits(orva.NoiseSuppressor(fs, 3).process(x), expected)


@pytest.mark.parametrize("left, right", [(None, None), (1.0, -2.0), (None, 0.0)])
def test_spline(left, right):
    xp, fp = np.cumsum(noise(20) + 1.5, dtype=np.float32), noise(20, seed=2)
    bends, places = zeros(20), np.linspace(-2, 40, 101).astype(np.float32)
    clib.ORVASPLINE_Estimate(xp, fp, 20, 1e30 if left is None else left, 1e30 if right is None else right, bends)
    expected = np.float32([clib.ORVASPLINE_Interpolate(xp, fp, bends, 20, x) for x in places])
    assert same_bits(orva.spline(places, xp, fp, left, right), expected)
    assert orva.spline(places[3], xp, fp, left, right) == expected[3]


def test_interp():
    xp, fp = np.cumsum(noise(20) + 1.5, dtype=np.float32), noise(20, seed=2)
    places = np.linspace(-2, 40, 100).astype(np.float32).reshape(10, 10)
    expected = np.float32([[clib.ORVAINTERPOLATE_Linear(xp, fp, 20, x) for x in row] for row in places])
    assert same_bits(orva.interp(places, xp, fp), expected)


def test_measures():
    x, made = noise(1000), zeros(1000)
    assert orva.energy_db(x) == np.float32(clib.ORVA_CalcEnergy(x, 1000))
    assert orva.zero_cross_rate(x) == np.float32(clib.ORVA_CalcZeroCrossRate(x, 1000))
    clib.ORVA_RemoveDC(x, made, 1000)
    assert same_bits(orva.remove_dc(x), made)


def test_measures_of_frames_and_channels():
    x = noise(1000, 2)
    for mine, theirs in ((orva.energy_db, clib.ORVA_CalcEnergy), (orva.zero_cross_rate, clib.ORVA_CalcZeroCrossRate)):
        expected = np.float32([[theirs(np.ascontiguousarray(x[n:n + 100, c]), 100) for c in (0, 1)]
                               for n in range(0, 901, 50)])
        assert same_bits(mine(x, frame=100, hop=50), expected)
    columns = [orva.remove_dc(np.ascontiguousarray(x[:, c])) for c in (0, 1)]
    assert same_bits(orva.remove_dc(x), np.stack(columns, axis=1))


@pytest.mark.parametrize("mine, theirs", [("hz_to_mel", "ORVAUTIL_Freq2Mels"), ("mel_to_hz", "ORVAUTIL_Mels2Freq"),
                                          ("hz_to_bark", "ORVAUTIL_Freq2Bark"), ("bark_to_hz", "ORVAUTIL_Bark2Freq")])
def test_scales(mine, theirs):
    values = np.array([[-800.0, -1.0, 0.0], [0.5, 24.0, np.nan], [440.0, 8000.0, 1e6]])
    expected = np.array([[getattr(clib, theirs)(value) for value in row] for row in values])
    assert same_bits(getattr(orva, mine)(values), expected)
    assert getattr(orva, mine)(440.0) == expected[2, 0]
