# SPDX-License-Identifier: GPL-2.0-or-later
"""What all objects that work through a stream share."""
import threading
from functools import partial
from types import TracebackType
from typing import Any, Callable, Dict, List, Optional, Tuple, Type, TypeVar

import numpy.typing as npt
from numpy import ndarray

from ._arrays import FLOAT, IN_ORDER, Samples, samples
from ._library import ffi

Self = TypeVar("Self", bound="Stream")


class Stream:
    """A stream of blocks: handles of the library, and what they were made from.

    Every stream object is a context manager, which closes it at the end. Closing frees its memory at once instead of
    when the object is collected; a closed stream takes no more blocks. Several threads may use one object: their
    calls come one after the other. Pickling keeps the recipe, that is the arguments of the constructor, and not the
    history: what comes back stands at the beginning of a new stream.

    Examples
    --------
    >>> with orva.Resampler(44100, 48000) as converter:
    ...     y = converter.process(np.ones(441))
    >>> converter.closed, len(y)
    (True, 447)
    >>> import pickle
    >>> pickle.loads(pickle.dumps(orva.Lapped(256)))
    Lapped(m=256)
    """

    def __init__(self, channels: int, handles: List[Any], recipe: Dict[str, Any]) -> None:
        self._channels = channels
        self._handles: Optional[List[Any]] = handles
        self._recipe = recipe
        self._lock = threading.Lock()

    @property
    def channels(self) -> int:
        """Channels in a frame."""
        return self._channels

    @property
    def closed(self) -> bool:
        """Whether the stream has been closed."""
        return self._handles is None

    def close(self) -> None:
        """Frees what the stream holds; a second call does nothing."""
        with self._lock:
            handles, self._handles = self._handles, None
            for handle in handles or ():
                ffi.release(handle)

    def __enter__(self: Self) -> Self:
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], value: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def __reduce__(self) -> Tuple[Callable[..., Any], Tuple[()]]:
        return partial(type(self), **self._recipe), ()

    def __repr__(self) -> str:
        arguments = ", ".join(f"{name}={value!r}" for name, value in self._recipe.items() if value is not None)
        return f"{type(self).__name__}({arguments})"

    def _open(self) -> List[Any]:
        """The handles, for whoever holds the lock."""
        if self._handles is None:
            raise ValueError(f"this {type(self).__name__} has been closed")
        return self._handles

    def _block(self, block: npt.ArrayLike) -> Samples:
        """The frames of a block, as many channels in each as the stream has."""
        if type(block) is ndarray and block.dtype is FLOAT and block.flags.num & IN_ORDER == IN_ORDER \
                and block.ndim == self._channels == 1:
            return block
        x = samples(block, "block")
        channels = 1 if x.ndim == 1 else x.shape[1]
        if channels != self._channels:
            raise ValueError(f"block must have {self._channels} channels, not {channels}")
        return x
