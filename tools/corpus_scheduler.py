#!/usr/bin/python3
"""Prints what a run of a corpus costs Dask's scheduler, a line of docs/corpus.md: a simulation in real time.

    PYTHONPATH=python tools/corpus_scheduler.py RECORDINGS BATCH [WORKERS [SECONDS]]

Needs Debian's python3-distributed and the library. Dask's own scheduler runs in a process of its own, all workers (200 if not
told) as threads in another, and this process asks for batches of names as orva.corpus.run does. Only the work is not done:
a task sleeps for as long as it would take, SECONDS a recording (0.154 if not told), half as long or half as long again, and
sends back as many lines. 10^6 recordings on 200 workers take 13 minutes.
"""
import asyncio
import functools
import os
import random
import subprocess
import sys
import tempfile
import time

from distributed import Client, Scheduler, Worker

from orva.corpus import read_recipe
from orva.corpus.execution import by
from orva.corpus.folder import Folder
from orva.corpus.recording import Outcome

THREADS = 10              # of one worker of Dask, at most
NAME = "corpus/2026/part {:04}/recording {:07}.flac"
LINE = {"bytes": 11520044, "fs": 48000, "channels": 2, "frames": 2880000, "seconds": 60.0, "fs_out": 16000, "frames_out": 960000}
RECIPE = {"steps": [{"do": "remove_dc"}, {"do": "resample", "fs": 16000}], "outputs": {"sound": "flac"}}


async def nap(seconds, recipe, folder, batch):
    """A batch that takes no processor: as many lines come back as names went in."""
    await asyncio.sleep(seconds * len(batch) * random.uniform(0.5, 1.5))          # so that not all end at the same time
    return [Outcome(name, dict(LINE), "", True) for name, _ in batch]


async def serve(address, count):
    """A scheduler, or so many threads of workers of the one at an address."""
    if address:
        threads = [min(THREADS, count - n) for n in range(0, count, THREADS)]
        await asyncio.gather(*(Worker(address, nthreads=own, memory_limit=0, dashboard=False) for own in threads))
    else:
        scheduler = await Scheduler(dashboard=False, port=0, host="127.0.0.1")
        print(scheduler.address, flush=True)
    await asyncio.Event().wait()


def start(folder, address, count):
    return subprocess.Popen([sys.executable, __file__, "serve", address, str(count)], stdout=subprocess.PIPE, text=True, env={
        **os.environ, "DASK_TEMPORARY_DIRECTORY": folder, "DASK_LOGGING__DISTRIBUTED": "warning"})


def processor(pid):
    """Processor seconds of a process."""
    with open(f"/proc/{pid}/stat") as file:
        return sum(map(int, file.read().rsplit(")", 1)[1].split()[11:13])) / os.sysconf("SC_CLK_TCK")


def peak(pid):
    """Gigabytes that a process has held at most."""
    with open(f"/proc/{pid}/status") as file:
        return next(int(line.split()[1]) for line in file if line.startswith("VmHWM")) * 1024 / 1e9


def simulate(own, recordings, size, workers, seconds):
    """A line of the table; `own` is a folder for Dask."""
    from corpus_scheduler import nap                      # sent by its name, as the work of a run is
    scheduler = start(own, "", 0)
    address = scheduler.stdout.readline().strip()
    others = start(own, address, workers)
    try:
        with Client(address) as client:
            while sum(client.nthreads().values()) < workers:
                time.sleep(0.1)
            folder, recipe = Folder("/corpus/out"), read_recipe(RECIPE)
            for _ in by(client, functools.partial(nap, 0.1, recipe, folder), [[("a", "/a")]] * 4 * workers, folder):
                pass                                      # now each has its connections
            every = [(NAME.format(n % 1000, n), "/corpus/in/" + NAME.format(n % 1000, n)) for n in range(recordings)]
            batches = [every[n:n + size] for n in range(0, recordings, size)]
            busy, begun, found = processor(scheduler.pid), time.perf_counter(), []
            for part in by(client, functools.partial(nap, seconds, recipe, folder), batches, folder):
                found += part
            took, busy = time.perf_counter() - begun, processor(scheduler.pid) - busy
            assert len(found) == recordings
            ideal = recordings * seconds / workers
            return (f"| {recordings} | {size} | {workers} | {ideal / 60:.1f} | {took / 60:.1f} | {busy / len(batches) * 1e3:.2f} "
                    f"| {100 * busy / took:.0f} % | {peak(scheduler.pid):.2f} | {peak('self'):.2f} |")
    finally:
        for process in (others, scheduler):
            process.kill()


def main(recordings, size, workers=200, seconds=0.154):
    print("| Recordings | in a task | workers | minutes, if nobody waited | minutes | scheduler, ms a task | busy "
          "| its memory, GB | client's memory, GB |\n" + "|---" * 9 + "|")
    with tempfile.TemporaryDirectory() as own:
        print(simulate(own, int(recordings), int(size), int(workers), float(seconds)))


if __name__ == "__main__":
    if sys.argv[1:2] == ["serve"]:
        asyncio.run(serve(sys.argv[2], int(sys.argv[3])))
    else:
        main(*sys.argv[1:])
