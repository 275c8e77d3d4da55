# SPDX-License-Identifier: GPL-2.0-or-later
"""Filters on any number of channels, from a line of text or from numbers."""
from typing import Any, Optional, Tuple, TypeVar

import numpy as np
import numpy.typing as npt

from ._arrays import Doubles, MOST, Samples, double_pointer, doubles, pointer, rate, result, whole
from ._library import ffi, lib
from ._messages import created
from ._stream import Stream

Self = TypeVar("Self", bound="Filter")

_destroy, _run = lib.ORVA_DestroyFilter, lib.ORVA_Filter


class Filter(Stream):
    """A filter for a stream, made from one line of text, from second-order sections, or from b and a.

    Called with a block, it filters the block and keeps what the next one needs; a stream that is cut into blocks
    anywhere gives the same bits as one long block. Text and sections run in double precision with float32 between two
    sections, `b` and `a` in single precision throughout, which serves up to an order of about four.

    Parameters
    ----------
    text : str, optional
        ``"type=bandpass; order=4; fpass1=300; fpass2=3400"``. ``type``: lowpass, highpass, bandpass, bandreject;
        ``approximation``: butterworth, chebyshev, invchebyshev, ellip; ``order``, or ``Ap`` and ``As`` in dB with the
        stop edges ``fstop1`` and ``fstop2``; ``gain``.
    fs : int, optional
        Sampling rate in Hz. With it, here or in the text, edges are in Hz; without, 1.0 is half the rate.
    sos : array_like, optional
        Sections x 6, as SciPy designs them: b0, b1, b2, 1, a1, a2.
    b, a : array_like, optional
        Numerator and denominator, as ``scipy.signal.lfilter`` takes them; ``a[0]`` divides all others.
    channels : int, optional
        Channels in a frame, 1 by default.

    Raises
    ------
    ValueError
        If no filter comes of it, in the library's own words where it has some.

    Notes
    -----
    Infinities and NaN in the input stay in the filter until `reset`. `flush` has nothing to give.

    No edge is compared with half of `fs`, as in the library: one above it is mirrored there, so that a low-pass of 5000 Hz
    at 8000 Hz is one of 3000 Hz, and one at exactly half the rate, or a multiple of that, gives a filter of no use.

    Examples
    --------
    >>> lowpass = orva.Filter("order=4; fpass=1000", fs=48000)
    >>> lowpass(np.ones(3)).round(6)
    array([1.60e-05, 1.35e-04, 5.87e-04], dtype=float32)
    >>> orva.Filter(b=[0.5, 0.5], a=[1])([1, 1, 1])
    array([0.5, 1. , 1. ], dtype=float32)
    """

    def __init__(self, text: Optional[str] = None, *, fs: Optional[int] = None, sos: Optional[npt.ArrayLike] = None,
                 b: Optional[npt.ArrayLike] = None, a: Optional[npt.ArrayLike] = None,
                 channels: Optional[int] = None) -> None:
        if (text is not None) + (sos is not None) + (b is not None or a is not None) != 1:
            raise ValueError("a filter is made from text, from sos, or from b and a")
        if text is None and fs is not None:
            raise ValueError("fs belongs to a text; sos, b and a have it in them")
        if channels is not None:
            channels = whole(channels, "channels", 1, MOST)
        self._order: Optional[int] = None         # of a direct form
        self._position = 0                        # of its frames, how many beyond whole rounds of its memory
        if text is not None:
            handle, channels = self._from_text(text, fs, channels)
        elif sos is not None:
            channels = channels or 1
            handle = _from_sos(sos, channels)
        else:
            channels = channels or 1
            handle = self._from_coefs(_vector(b, "b"), _vector(a, "a"), channels)
        super().__init__(channels, [handle], {"text": text, "fs": fs, "sos": _kept(sos, "sos"), "b": _kept(b, "b"),
                                              "a": _kept(a, "a"), "channels": channels})

    def _from_text(self, text: str, fs: Optional[int], channels: Optional[int]) -> Tuple[Any, int]:
        if "\0" in text:
            raise ValueError("a text has no null character in it")
        line = text
        if fs is not None:
            line += f"; fs={rate(fs)}"
        if channels is not None:
            line += f"; num_channels={channels}"
        encoded = ffi.new("char[]", line.encode())

        def number(key: bytes, default: float) -> float:
            return float(lib.KTSTRING_GetFloatValueFromString(encoded, key, default))

        # What is asked for stands at the end of the line, which an open quote or bracket in the text would hide. A
        # filter of no channels would never come back from a block.
        found = int(number(b"num_channels", int(number(b"nc", 1))))
        if found < 1 or channels is not None and found != channels:
            raise ValueError(f"no {channels or 'number of'} channels, but {found}, in {line!r}")
        if fs is not None and number(b"fs", -1) != fs:
            raise ValueError(f"no {fs} Hz in {line!r}")
        direct = _direct_form(encoded)
        if direct is not None:
            return self._from_coefs(*direct, found), found
        return created(lib.ORVA_CreateFilter, _destroy, ffi.new("char[]", b"%s"), encoded,
                       refused=f"no filter comes of {line!r}: edges, orders or attenuations are missing, "
                               "out of order or out of range, or memory is out"), found

    def _from_coefs(self, b: Doubles, a: Doubles, channels: int) -> Any:
        self._order = max(b.size, a.size) - 1
        return _from_vectors(b, a, channels)

    def __call__(self, block: npt.ArrayLike, out: Optional[Samples] = None) -> Samples:
        """Filters the next block of the stream.

        Parameters
        ----------
        block : array_like
            Frames, or frames x channels; may be empty.
        out : ndarray of float32, optional
            Takes the result; may be `block` itself, or overlap it.

        Returns
        -------
        ndarray of float32
            As many frames; `out` if given.

        Raises
        ------
        ValueError
            For another number of channels, an `out` that does not fit, or after `close`.

        Examples
        --------
        >>> echo = orva.Filter(b=[1, 0, 0, 0.5], a=[1])
        >>> echo([1, 0]), echo([0, 0])
        (array([1., 0.], dtype=float32), array([0. , 0.5], dtype=float32))
        """
        x = self._block(block)
        y = result(out, x.shape)
        size = x.size
        with self._lock:
            handle, = self._handles or self._open()
            if size <= MOST:
                _run(handle, pointer(x), pointer(y), size)
            else:
                self._run_in_parts(handle, x, y)
            if self._order is not None:
                self._position = (self._position + len(x)) % (self._order + 1)
        return y

    process = __call__

    def _run_in_parts(self, handle: Any, x: Samples, y: Samples) -> None:
        frames = MOST // self._channels
        for first in range(0, len(x), frames):
            part, target = x[first:first + frames], y[first:first + frames]
            lib.ORVA_Filter(handle, pointer(part), pointer(target), part.size)

    def flush(self) -> Samples:
        """The end of the stream, which holds nothing back: no frames."""
        return self._block(np.empty((0, self._channels) if self._channels > 1 else 0, np.float32))

    def reset(self) -> None:
        """Goes on as if the input so far had been silence.

        Examples
        --------
        >>> echo = orva.Filter(b=[1, 0, 0, 0.5], a=[1])
        >>> _ = echo([1, 0])
        >>> echo.reset()
        >>> echo([0, 0])
        array([0., 0.], dtype=float32)
        """
        with self._lock:
            handle, = self._open()
            lib.ORVA_ResetFilter(handle)

    def copy(self: Self) -> Self:
        """A filter that goes on exactly where this one stands, independent of it.

        Returns
        -------
        Filter
            With the same coefficients and history.

        Examples
        --------
        >>> a = orva.Filter("order=2; fpass=0.1")
        >>> _ = a(np.ones(100))
        >>> b = a.copy()
        >>> bool((a(np.ones(10)) == b(np.ones(10))).all())
        True
        """
        twin = type(self)(**self._recipe)
        with self._lock:
            source, = self._open()
            target, = twin._open()
            if not self._order:
                lib.ORVA_CopyFilterMemories(target, source)
            else:
                _copy_direct_form(target, source, self._order, self._position, self._channels)
                twin._position = 1
        return twin

    __copy__ = copy

    def __deepcopy__(self: Self, memo: object) -> Self:
        return self.copy()


def _kept(values: Optional[npt.ArrayLike], name: str) -> Optional[Doubles]:
    return None if values is None else doubles(values, name).copy()


def _vector(values: Optional[npt.ArrayLike], name: str) -> Doubles:
    if values is None:
        raise ValueError(f"{name} is missing: a filter takes both b and a")
    vector = doubles(values, name)
    if vector.ndim != 1 or not 1 <= vector.size <= MOST:
        raise ValueError(f"{name} must be a vector of coefficients")
    return vector


def _from_vectors(b: Doubles, a: Doubles, channels: int) -> Any:
    if a[0] == 0:
        raise ValueError("a[0], which divides all coefficients, must not be 0")
    return created(lib.ORVA_CreateFilterFromCoefs, _destroy, channels, b.size, double_pointer(b), a.size,
                   double_pointer(a))


def _from_sos(sos: npt.ArrayLike, channels: int) -> Any:
    sections = doubles(sos, "sos")
    if sections.ndim != 2 or sections.shape[1] != 6:
        raise ValueError("sos must be an array of sections x 6")
    if not (sections[:, 3] == 1).all():
        raise ValueError("sos[:, 3], the a0 of each section, must be 1")
    records = np.ascontiguousarray(sections[:, [4, 5, 0, 1, 2]])
    return created(lib.ORVA_CreateFilterFromBiquads, _destroy, channels, min(len(records), 2**32 - 1),
                   double_pointer(records.reshape(-1)))


def _direct_form(line: Any) -> Optional[Tuple[Doubles, Doubles]]:
    """The vectors of a text that gives them and no sections."""
    rows, columns, size = ffi.new("int32_t *"), ffi.new("int32_t *"), ffi.new("int32_t *")
    if lib.KTSTRING_GetMatrixSizeFromString(line, b"biquads", rows, columns) and columns[0] == 5:
        return None
    vectors = []
    for key in (b"numerator", b"denominator"):
        if not lib.KTSTRING_GetVectorSizeFromString(line, key, size):
            return None
        vectors.append(np.empty(size[0]))
        lib.KTSTRING_GetDoubleVectorValuesFromString(line, key, double_pointer(vectors[-1]), size[0])
    return vectors[0], vectors[1]


def _copy_direct_form(target: Any, source: Any, order: int, position: int, channels: int) -> None:
    """Takes over the history of a direct form, the last `order` values w[n-1], w[n-2] ... of its recursion.

    They lie in a ring of order + 1 rows, w[n-k] in row (k - position) mod (order + 1). The library copies rows under
    their numbers and then lets the copy begin at its own last row, which turns the history. So a filter that is one
    order higher takes all the rows and gives them out, and one that changes nothing, w[n] = x[n], runs them in as many
    frames that its copy is not turned.
    """
    def passing(length: int, tap: int) -> Any:
        b, a = np.zeros(length + 1), np.zeros(length + 1)
        b[tap] = a[0] = 1
        return _from_vectors(b, a, channels)

    def run(handle: Any, frames: Samples) -> Samples:
        y = np.empty_like(frames)
        lib.ORVA_Filter(handle, pointer(frames), pointer(y), frames.size)
        return y

    reader = passing(order + 1, order + 1)
    lib.ORVA_CopyFilterMemories(reader, source)
    rows = run(reader, np.zeros((order + 1, channels), np.float32))[::-1]
    oldest_first = [(k - position) % (order + 1) for k in range(order, 0, -1)]
    writer = passing(order, 0)
    run(writer, np.concatenate([np.zeros((2, channels), np.float32), rows[oldest_first]]))
    lib.ORVA_CopyFilterMemories(target, writer)
