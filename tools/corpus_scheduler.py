#!/usr/bin/python3
"""Prints what a run of a corpus costs Dask's scheduler: a table of docs/corpus.md.

    PYTHONPATH=python tools/corpus_scheduler.py [TASKS]

Needs Debian's python3-distributed. A scheduler runs in a process of its own, 20 workers of 10 threads in another; a task is a
batch of names, as orva.corpus sends it, and sleeps. What counts is the scheduler's processor time and memory for each task, which
do not depend on how busy the machine is; from these follows how many recordings a second it can hand out.
"""
import asyncio
import os
import subprocess
import sys
import time

from distributed import Client, Scheduler, Worker

WORKERS, THREADS = 200, 10
RECORDINGS = 10**6
BATCHES = (1, 10, 100)
SECONDS = 0.5             # that a task sleeps
NAME = "corpus/2026/part {:04}/recording {:07}.flac"
LINE = {"bytes": 1, "fs": 48000, "channels": 1, "frames": 1, "seconds": 1.0, "fs_out": 16000, "frames_out": 1}


async def nap(batch):
    """A batch that takes no processor: as many lines come back as names went in."""
    await asyncio.sleep(SECONDS)
    return [(name, dict(LINE), "", True) for name, _ in batch]


async def serve(address):
    """A scheduler, or 200 workers of the one at an address."""
    if address:
        workers = [Worker(address, nthreads=THREADS, memory_limit=0, dashboard=False) for _ in range(WORKERS // THREADS)]
        await asyncio.gather(*workers)
    else:
        scheduler = await Scheduler(dashboard=False, port=0, host="127.0.0.1")
        print(scheduler.address, flush=True)
    await asyncio.Event().wait()


def used():
    """Processor seconds and bytes of the scheduler."""
    with open("/proc/self/statm") as file:
        return time.process_time(), int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def measure(tasks):
    """Lines of the table."""
    start = lambda *words: subprocess.Popen([sys.executable, __file__, *words], stdout=subprocess.PIPE, text=True)
    scheduler = start("serve", "")
    address = scheduler.stdout.readline().strip()
    workers = start("serve", address)
    try:
        with Client(address) as client:
            client.wait_for_workers(WORKERS // THREADS)
            client.gather(client.map(nap, [[("a", "/a")]] * WORKERS, pure=False))         # each has its connections
            for size in BATCHES:
                batches = [[(NAME.format(n % 1000, n * size + k), "/data/" + NAME.format(n % 1000, n * size + k))
                            for k in range(size)] for n in range(tasks)]
                before = client.run_on_scheduler(used)
                futures = client.map(nap, batches, pure=False)
                held = client.run_on_scheduler(used)[1] - before[1]
                for future in futures:
                    future.result()
                seconds = (client.run_on_scheduler(used)[0] - before[0]) / tasks
                client.cancel(futures)
                yield size, seconds, held / tasks
    finally:
        for process in (workers, scheduler):
            process.kill()


def main():
    tasks = int(sys.argv[1]) if len(sys.argv) > 1 else 4000
    print("| Recordings in a task | Scheduler, ms a task | Recordings a second at most | 200 workers wait for it below "
          "| 10^6 recordings, minutes of the scheduler | its memory, GB |")
    print("|---|---|---|---|---|---|")
    for size, seconds, held in measure(tasks):
        print(f"| {size} | {seconds * 1e3:.2f} | {size / seconds:.0f} | {seconds * WORKERS / size:.3f} s a recording "
              f"| {RECORDINGS / size * seconds / 60:.1f} | {RECORDINGS / size * held / 1e9:.2f} |", flush=True)


if __name__ == "__main__":
    if sys.argv[1:2] == ["serve"]:
        asyncio.run(serve(sys.argv[2]))
    else:
        main()
