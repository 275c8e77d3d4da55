#!/usr/bin/python3
"""Makes orva/_interface.py, the declarations of both libraries, from their public headers.

    python/declarations.py > python/orva/_interface.py

rebuilds it, with Debian's python3-cffi; the package itself needs neither the headers nor this script.
"""
import re
import sys
import tempfile
from contextlib import redirect_stdout
from pathlib import Path

from cffi import FFI

ROOT = Path(__file__).resolve().parents[1]
FOLDERS = (ROOT / "kett/include", ROOT / "include")
UMBRELLAS = ("kett/kett.h", "orva/orva.h")
INCLUDE = re.compile(r"#include <((?:kett|orva)/\w+\.h)>")
DIRECTIVE = re.compile(r"^[ \t]*#(?:.*\\\n)*.*$", re.MULTILINE)
COMMENT = re.compile(r"/\*.*?\*/", re.DOTALL)

FIRST_LINES = """\
# Made from the public headers by declarations.py, which tells how to rebuild it.
# SPDX-License-Identifier: GPL-2.0-or-later
"""


def headers(name, known):
    """The texts of a header and of all that it includes, each once and after those that it needs."""
    if name in known:
        return
    known.add(name)
    text = COMMENT.sub("", next(folder / name for folder in FOLDERS if (folder / name).exists()).read_text())
    for included in INCLUDE.findall(text):
        yield from headers(included, known)
    yield text


def declarations():
    """What all headers declare, as a compiler would see it to whom every macro is empty."""
    known = set()
    text = "\n".join(part for umbrella in UMBRELLAS for part in headers(umbrella, known))
    macros = sorted(set(re.findall(r"#define (\w+)", text)))
    return re.sub(rf"\b(?:{'|'.join(macros)})\b", "", DIRECTIVE.sub("", text))


def interface():
    """The text of orva/_interface.py."""
    ffi = FFI()
    ffi.cdef(declarations())
    ffi.set_source("orva._interface", None)
    with tempfile.TemporaryDirectory() as folder:
        made = Path(folder) / "_interface.py"
        with redirect_stdout(sys.stderr):                 # where cffi tells what it does
            ffi.emit_python_code(str(made))
        return FIRST_LINES + made.read_text().split("\n", 1)[1]


if __name__ == "__main__":
    sys.stdout.write(interface())
