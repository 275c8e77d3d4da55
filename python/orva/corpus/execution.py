# SPDX-License-Identifier: GPL-2.0-or-later
"""Batches of recordings on Dask: its local processes, or a cluster."""
import os
import signal
import sys
import threading
from concurrent.futures.process import BrokenProcessPool
from contextlib import nullcontext
from multiprocessing import parent_process
from typing import Any, Callable, Iterator, List, Sequence, Tuple

from .folder import Folder
from .recording import Outcome

Batch = Sequence[Tuple[str, str]]
Work = Callable[[Batch], List[Outcome]]


class CutOff(RuntimeError):
    """The run has come to an end before its time. What is complete is kept; another run does the rest."""


def locally(work: Work, batches: Sequence[Batch]) -> Iterator[List[Outcome]]:
    """By Dask's own processes on this machine, or the scheduler and number of workers that its configuration names."""
    import dask
    from dask.diagnostics import ProgressBar
    task: Any = dask.delayed(work, pure=False)
    scheduler = dask.config.get("scheduler", None) or "processes"
    settings = {"chunksize": 1, "initializer": _begin_worker} if scheduler == "processes" else {}
    bar: Any = ProgressBar(out=sys.stderr) if sys.stderr is not None and sys.stderr.isatty() else nullcontext()
    with bar:
        try:
            yield from dask.compute([task(batch) for batch in batches], scheduler=scheduler, **settings)[0]
        except BrokenProcessPool:
            raise CutOff("a worker process has died") from None


def _begin_worker() -> None:
    """Lets an interrupt or the end of the parent end a worker at once: what it leaves is cleared away."""
    signal.signal(signal.SIGINT, signal.SIG_DFL)
    parent = parent_process()

    def follow() -> None:
        if parent is not None:
            parent.join()
            os._exit(1)

    threading.Thread(target=follow, daemon=True).start()


def by(client: Any, work: Work, batches: Sequence[Batch], folder: Folder) -> Iterator[List[Outcome]]:
    """By the workers of a cluster of dask.distributed."""
    from distributed import as_completed
    from distributed.scheduler import KilledWorker
    if client.dashboard_link:
        print(f"dashboard: {client.dashboard_link}", file=sys.stderr)
    futures = client.map(work, batches, pure=False)
    asked = dict(zip(futures, batches))
    for future, result in as_completed(futures, with_results=True, raise_errors=False):
        if isinstance(result, list):
            yield result
        elif not isinstance(result, tuple):               # of an exception, it would be type, value and trace
            raise CutOff("the scheduler has gone or was restarted")
        elif isinstance(result[1], KilledWorker):
            yield [_after_death(folder, name, path) for name, path in asked[future]]
        else:
            raise result[1].with_traceback(result[2])
        future.release()


def _after_death(folder: Folder, name: str, path: str) -> Outcome:
    """What a batch has come to that has killed its workers: some may be complete."""
    try:
        line = folder.line(name, os.stat(path).st_size)
    except (OSError, ValueError):
        line = None
    return Outcome(name, line, "" if line else "its worker died, or that of another in its batch", True)
