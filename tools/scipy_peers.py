#!/usr/bin/python3
"""Prints the table of docs/scipy.md: runs the page's own code and measures it.

    ORVA_LIBRARY=build/release/src/liborva.so.3 PYTHONPATH=python tools/scipy_peers.py

Needs Debian's python3-cffi, python3-numpy and python3-scipy. Each job of the page defines `theirs`, `mine` and prints how
far they are apart; times are the least of the rounds, in time of the processor for one thread.
"""
import contextlib
import io
import re
import time
from pathlib import Path

PAGE = Path(__file__).resolve().parents[1] / "docs/scipy.md"
ROUNDS, SHORTEST = 7, 0.05          # seconds that a round takes at least


def milliseconds(job):
    """The least time that a job takes, after a first run."""
    job()
    start = time.thread_time()
    job()
    count = max(1, round(SHORTEST / max(time.thread_time() - start, 1e-7)))
    times = []
    for _ in range(ROUNDS):
        start = time.thread_time()
        for _ in range(count):
            job()
        times.append((time.thread_time() - start) / count)
    return 1000 * min(times)


def main():
    names, title = {}, ""
    for heading, code in re.findall(r"^## ([^\n]*)$|^```python\n(.*?)^```$", PAGE.read_text(), re.MULTILINE | re.DOTALL):
        if heading:
            title = heading
            continue
        said = io.StringIO()
        with contextlib.redirect_stdout(said):
            exec(code, names)                                 # the page is our own
        if title:
            print(f"| {title} | {said.getvalue().strip()} | {milliseconds(names['theirs']):.3g} "
                  f"| {milliseconds(names['mine']):.3g} |", flush=True)


main()
