# SPDX-License-Identifier: GPL-2.0-or-later
"""Audio signal processing by liborva, on NumPy arrays.

Signals are arrays of samples: frames, or frames x channels, full scale 1.0. float32 in C order is used as it is; other
real types, strides and byte orders are converted once, integers by their value. Results are float32 (spectra complex64).
Sampling rates are ``fs`` in Hz. What cannot be done raises `ValueError`, in the library's own words where it has some,
`TypeError` for what is no number, or `MemoryError`. While the library works, other threads of Python run.

Arrays are only read, unless they are given as ``out``, so that read-only ones do. Empty signals give empty results, and NaN
and infinities pass through, where a docstring does not tell otherwise. A number without a dimension is no signal, except
where one value is asked for. More than 2**31 - 1 samples at a time, the most that the library counts, are refused, except by
`Filter`, `resample`, `stretch` and `spectrogram`, which take them in parts.

A tour, with a second of a tone of 1 kHz and a hum of 50 Hz:

>>> import numpy as np, orva
>>> fs = 48000
>>> t = np.arange(fs) / fs
>>> x = np.sin(2 * np.pi * 1000 * t) + np.sin(2 * np.pi * 50 * t)

Filters come from a line of text, from sections or from coefficients, and run block by block:

>>> highpass = orva.Filter("type=highpass; order=4; fpass=200", fs=fs)
>>> y = highpass(x)
>>> orva.energy_db(x).round(1), orva.energy_db(y).round(1)
(4.8, 1.8)

Streams are objects with ``process`` and ``flush``; whole signals have functions:

>>> len(orva.resample(x, fs, 44100)), len(orva.stretch(x, fs, speed=2.0))
(44100, 24000)

Spectra:

>>> frequencies, times, decibels = orva.spectrogram(x, fs, n=4800)
>>> frequencies[decibels[0] > -1]
array([  50., 1000.])

All there is:

============  ======================================================================================================
Windows       `window`, `WINDOWS`, `window_gain`, `apply_window`
Spectra       `rfft`, `irfft`, `Fft`, `power_db`, `preemphasis_gain`, `spectrogram`
Filters       `Filter`, `remove_dc`
Rates         `resample`, `Resampler`
Time          `stretch`, `Stretcher`
Correlation   `correlate`, `find_delay`, `coefficient`
Transform     `Lapped`
Noise         `NoiseSuppressor`
Curves        `spline`, `Spline`, `interp`
Measures      `energy_db`, `zero_cross_rate`
Scales        `hz_to_mel`, `mel_to_hz`, `hz_to_bark`, `bark_to_hz`
Files         `read`, `blocks`, `write`
Version       `library_version`
Corpora       `orva.corpus`, a module of its own: recipes over folders of recordings, on Dask
============  ======================================================================================================
"""
from ._library import library_version
from ._stream import Stream
from ._version import VERSION as __version__
from .correlation import Likeness, coefficient, correlate, find_delay
from .curves import Spline, interp, spline
from .fft import Fft, irfft, rfft
from .files import blocks, read, write
from .filters import Filter
from .lapped import Lapped
from .measures import energy_db, remove_dc, zero_cross_rate
from .noise import NoiseSuppressor
from .resampling import Resampler, resample
from .scales import bark_to_hz, hz_to_bark, hz_to_mel, mel_to_hz
from .spectra import Spectrogram, power_db, preemphasis_gain, spectrogram
from .stretching import Stretcher, stretch
from .windows import WINDOWS, apply_window, window, window_gain

__all__ = [
    "Fft", "Filter", "Lapped", "Likeness", "NoiseSuppressor", "Resampler", "Spectrogram", "Spline", "Stream",
    "Stretcher", "WINDOWS", "__version__", "apply_window", "bark_to_hz", "blocks", "coefficient", "correlate",
    "energy_db", "find_delay", "hz_to_bark", "hz_to_mel", "interp", "irfft", "library_version", "mel_to_hz",
    "power_db", "preemphasis_gain", "read", "remove_dc", "resample", "rfft", "spectrogram", "spline", "stretch",
    "window", "window_gain", "write", "zero_cross_rate",
]
