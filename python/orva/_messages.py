# SPDX-License-Identifier: GPL-2.0-or-later
"""What the library says: exceptions carry its own words, which it writes into the log of libkett.

The log has one sink, called on the thread that logs. It keeps what a creation says for the exception; all else goes to
``sys.stderr``.
"""
import atexit
import sys
import threading
from types import TracebackType
from typing import Any, Callable, List, Optional, Type

from ._library import ffi, lib

_ERROR = lib.KTDEBUG_LEVEL_ERROR


class _Thread(threading.local):
    heard: Optional[List[str]] = None


_thread = _Thread()


def _hear(context: Any, level: int, code: int, text: Any) -> None:
    said = ffi.string(text).decode("utf-8", "replace")
    if level >= _ERROR and _thread.heard is not None:
        _thread.heard.append(said.strip())
    elif sys.stderr is not None:
        sys.stderr.write(said if said.endswith("\n") else said + "\n")


_sink = ffi.callback("void(void *, int32_t, int32_t, const char *)", _hear)     # as long as the interpreter runs
lib.KTDEBUG_SetSink(_sink, ffi.NULL)
atexit.register(lib.KTDEBUG_SetSink, ffi.NULL, ffi.NULL)


class heard:
    """Keeps the errors that this thread logs inside a ``with``, in order."""

    def __enter__(self) -> List[str]:
        self.before = _thread.heard
        said: List[str] = []
        _thread.heard = said
        return said

    def __exit__(self, kind: Optional[Type[BaseException]], value: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        _thread.heard = self.before


def created(make: Callable[..., Any], destroy: Callable[..., Any], *arguments: Any, refused: str = "") -> Any:
    """A handle that is destroyed when nobody holds it any more.

    A handle about which the library has logged an error is of no use, so it counts as refused as well. `refused` is
    what to say where the library refuses without a word; where it then can only be short of memory, leave it empty.
    """
    with heard() as said:
        handle = make(*arguments)
    if said:
        if handle:
            destroy(handle)
        raise ValueError(said[0])
    if not handle:
        raise ValueError(refused) if refused else MemoryError("liborva has found no memory")
    return ffi.gc(handle, destroy)
