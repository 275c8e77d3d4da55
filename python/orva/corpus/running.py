# SPDX-License-Identifier: GPL-2.0-or-later
"""A run of a recipe over a corpus."""
import os
from functools import partial
from importlib import import_module
from os import PathLike
from typing import Any, Iterable, List, Mapping, NamedTuple, Optional, Union

from .._arrays import whole
from .execution import by, locally
from .folder import Folder
from .inputs import recordings
from .recipe import Recipe, read_recipe
from .recording import Outcome, outcomes
from .tables import write_tables

Path = Union[str, "PathLike[str]"]

MOST_BATCH = 100          # recordings in a task; docs/corpus.md tells what it costs a scheduler
TASKS_A_WORKER = 16       # at least, so that all come to an end at about the same time


class Report(NamedTuple):
    """What `run` gives, in numbers of recordings."""

    complete: int
    """Those whose results are in the folder."""
    new: int
    """Those of them that were made in this run."""
    failed: int
    """Those that stand in ``failures.csv``."""


def run(recipe: Union[Path, Mapping[str, Any], Recipe], files: Iterable[Path], folder: Path,
        client: Optional[Any] = None, batch: Optional[int] = None) -> Report:
    """Makes a recipe of all recordings.

    Results are the same bytes whatever the number of workers, the order and the batches. A run that was cut off is
    taken up by the same call: what is complete stays, and only the rest is made. Whatever is not complete is not seen.

    Parameters
    ----------
    recipe : str, path, mapping or Recipe
        A file of TOML, or what `read_recipe` takes.
    files : iterable of str or path
        Sound files, and folders in which all are meant. On a cluster its workers need to find them, and `folder`, by
        the same absolute paths.
    folder : str or path
        Takes ``recordings/NAME/`` with the results of each, ``table.csv`` with a line for each, and ``failures.csv`` with
        each bad one and the reason.
    client : distributed.Client, optional
        A cluster of Dask. Without it, Dask's local scheduler: processes, as many as there are processors, unless Dask's
        configuration says otherwise.
    batch : int, optional
        Recordings in a task; without it 100, and fewer where they are few.

    Returns
    -------
    Report
        How many are ``complete``, how many of these are ``new``, and how many ``failed``.

    Raises
    ------
    ValueError
        For what is no recipe, a folder that was made by another, and one into which another run works.
    OSError
        If the recipe cannot be read or the folder not be written, for example because the disk is full.
    ImportError
        Without the packages soundfile and dask, and zarr for its arrays.
    CutOff
        If a local worker process or the scheduler dies.

    Examples
    --------
    >>> from orva import corpus
    >>> orva.write("a.wav", 0.5 * np.sin(np.arange(48000) / 10), 48000, "PCM_16")
    >>> import dask
    >>> with dask.config.set(scheduler="synchronous"):    # here and now, without processes
    ...     corpus.run({"steps": [{"do": "resample", "fs": 16000}], "outputs": {"sound": "flac"}}, ["a.wav"], "out")
    Report(complete=1, new=1, failed=0)
    >>> orva.read("out/recordings/a.wav/sound.flac")[0].shape
    (16000,)
    """
    wanted = read_recipe(recipe)
    for package in ("soundfile", "dask", *(("zarr",) if wanted.arrays == "zarr" else ())):
        import_module(package)                            # or tell at once that it is missing
    every = recordings([os.fspath(file) for file in files])
    place = Folder(os.path.abspath(folder))
    size = _batch(len(every), client) if batch is None else whole(batch, "batch", 1, 2**31 - 1)
    batches = [every[n:n + size] for n in range(0, len(every), size)]
    work = partial(outcomes, wanted, place)
    with place.claimed(wanted):
        found: List[Outcome] = []
        for part in locally(work, batches) if client is None else by(client, work, batches, place):
            found += part
        write_tables(place, found)
    complete = [outcome for outcome in found if outcome.line is not None]
    return Report(len(complete), sum(outcome.new for outcome in complete), len(found) - len(complete))


def _batch(count: int, client: Optional[Any]) -> int:
    workers = len(os.sched_getaffinity(0)) if client is None else sum(client.nthreads().values())
    return max(1, min(MOST_BATCH, count // (TASKS_A_WORKER * max(1, workers))))
