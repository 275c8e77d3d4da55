"""A corpus on many workers, which are killed, interrupted and run out of disk: the results are the same bytes."""
import contextlib
import csv
import os
import re
import resource
import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

import dask
import pytest
import speech
from speech import hashes

from orva import corpus
from orva.corpus import source
from orva.corpus.execution import by

SENTENCES = 60
RECIPE = """\
steps = [
    { do = "remove_dc" },
    { do = "resample", fs = 16000 },
    { do = "filter", text = "type=highpass; order=4; fpass=80" },
    { do = "stretch", speed = 1.1 },
    { do = "measures", frame_ms = 25, hop_ms = 10 },
    { do = "mel" },
    { do = "delay" },
]
outputs = { sound = "flac", arrays = "npz" }
"""
COMPLETE = {"sound.flac", "arrays.npz", "line.json"}


@pytest.fixture(scope="module")
def place(tmp_path_factory):
    """A folder with the corpus and the recipe, and the hashes of the results, made by one process."""
    folder = tmp_path_factory.mktemp("corpus")
    speech.make(folder / "in", SENTENCES)
    shutil.copytree(speech.VOICES, folder / "in/recorded")
    (folder / "in/recorded/bad.wav").write_bytes(b"RIFF")
    (folder / "r.toml").write_text(RECIPE)
    os.chdir(folder)
    with dask.config.set(scheduler="synchronous"):
        report = corpus.run("r.toml", ["in"], "reference")
    count = SENTENCES + len(list(speech.VOICES.glob("*.wav")))
    assert report == (count, count, 1)
    return folder, hashes(folder / "reference"), count


@pytest.fixture
def out(place, monkeypatch):
    """A folder for results, beside the corpus."""
    monkeypatch.chdir(place[0])
    yield Path("out")
    shutil.rmtree("out", ignore_errors=True)


def command(*arguments, **settings):
    return subprocess.Popen([sys.executable, "-m", "orva.corpus", "r.toml", "in", "--out", "out", *map(str, arguments)],
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, start_new_session=True,
                            env={**os.environ, "PYTHONDONTWRITEBYTECODE": "1"}, **settings)


def ended(process, status, said):
    """Waits for the end, which has to be this one."""
    written, told = process.communicate(timeout=120)
    assert process.returncode == status and re.search(said, written + told), (process.returncode, written, told)


def complete(place):
    """How many recordings can be seen, each of which has to be whole and of the right bytes."""
    folder, expected, _ = place
    seen = {name: value for name, value in hashes(folder / "out").items() if name.startswith("recordings/")}
    assert seen.items() <= expected.items()
    folders = {}
    for name in seen:
        folders.setdefault(os.path.dirname(name), set()).add(os.path.basename(name))
    assert all(files == COMPLETE for files in folders.values())
    return len(folders)


def begun(place, least=8):
    """Waits until some recordings are complete."""
    recordings = place[0] / "out/recordings"
    for _ in range(6000):
        if sum(1 for _ in recordings.glob("**/line.json")) >= least:
            return
        time.sleep(0.01)
    raise AssertionError("nothing comes")


def rest(place):
    """Runs once more: only what is missing is made, and then all is as it should be."""
    kept, (folder, expected, count) = complete(place), place
    assert 0 < kept < count
    with dask.config.set(scheduler="synchronous"):
        assert corpus.run("r.toml", ["in"], "out") == (count, count - kept, 1)
    assert hashes(folder / "out") == expected


def children(process):
    """Processes of a run that work on recordings."""
    found = []
    for path in Path("/proc").glob("[0-9]*"):
        with contextlib.suppress(OSError):
            parent = int((path / "stat").read_text().rsplit(")", 1)[1].split()[1])
            if parent == process.pid and b"spawn_main" in (path / "cmdline").read_bytes():
                found.append(int(path.name))
    return found


@contextlib.contextmanager
def cluster(deaths=3):
    """A scheduler, which allows a task that many deaths of its worker, and two workers."""
    from distributed import LocalCluster
    with dask.config.set({"distributed.scheduler.allowed-failures": deaths}), \
            LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None, silence_logs=50) as made:
        yield made


def test_hundreds_of_sentences_are_the_same_bytes_by_one_process_and_by_two(tmp_path, monkeypatch):
    """One recording after the other and whole here, cut into blocks and by two workers there."""
    monkeypatch.chdir(tmp_path)
    speech.make(tmp_path / "in", len(speech.SENTENCES))
    (tmp_path / "r.toml").write_text(RECIPE)
    with dask.config.set(scheduler="synchronous"):
        with pytest.MonkeyPatch.context() as patched:
            patched.setattr(source, "BLOCK", 1 << 30)
            assert corpus.run("r.toml", ["in"], "whole") == (240, 240, 0)
    ended(command(), 0, "^240 complete, 240 of them new, 0 failed\n$")
    assert len(hashes(tmp_path / "out")) == 3 * 240 + 3 and hashes(tmp_path / "out") == hashes(tmp_path / "whole")


@pytest.mark.parametrize("workers, batch, order", [(1, 1, -1), (2, 7, 1)])
def test_workers_batches_and_order_change_no_byte(place, out, workers, batch, order):
    folder, expected, count = place
    files = sorted(str(path) for path in Path("in").rglob("*.*"))[::order]
    program = ("import sys\nfrom orva import corpus\nif __name__ == '__main__':\n"
               f"    print(corpus.run('r.toml', sys.stdin.read().splitlines(), 'out', batch={batch}))")
    run = subprocess.run([sys.executable, "-c", program], input="\n".join(files), capture_output=True, text=True,
                         env={**os.environ, "DASK_NUM_WORKERS": str(workers)})
    assert run.stdout == f"Report(complete={count}, new={count}, failed=1)\n", run.stderr
    assert hashes(out) == expected


def test_a_cluster_makes_the_same_bytes_and_a_killed_worker_changes_none(place, out):
    """Of a batch whose worker was killed, another one makes the rest."""
    from distributed import Client
    folder, expected, count = place
    with cluster() as made:
        process = command("--scheduler", made.scheduler_address, "--batch", "20")
        begun(place)
        with Client(made) as client:
            os.kill(next(iter(client.run(os.getpid).values())), signal.SIGKILL)
        ended(process, 1, rf"{count} complete, \d+ of them new, 1 failed\n(.|\n)*dashboard: http")
    assert hashes(out) == expected


def test_a_scheduler_that_goes_away_cuts_the_run_off(place, out):
    with cluster() as made:
        process = command("--scheduler", made.scheduler_address, "--batch", "5")
        begun(place)
    ended(process, 3, "what is complete stays, the same call makes the rest")
    rest(place)


def test_a_batch_that_kills_its_worker_is_told_and_the_others_go_on(out):
    from distributed import Client
    def work(batch):
        import os
        import signal
        if batch[0][0] == "b":
            os.kill(os.getpid(), signal.SIGKILL)
        return [name for name, _ in batch]

    with cluster(deaths=0) as made, Client(made) as client:
        found = list(by(client, work, [[("a", "/a")], [("b", "/b"), ("c", "/c")], [("d", "/d")]], corpus.running.Folder("out")))
    died = [part for part in found if isinstance(part[0], tuple)]
    assert ["a"] in found and ["d"] in found and len(found) == 3
    assert [(o.name, o.line, o.reason) for o in died[0]] == [
        (name, None, "its worker died, or that of another in its batch") for name in "bc"]


def test_a_local_worker_that_is_killed_cuts_the_run_off(place, out):
    process = command()
    begun(place)
    os.kill(children(process)[0], signal.SIGKILL)
    ended(process, 3, "a worker process has died; what is complete stays")
    rest(place)


def test_an_interrupt_ends_the_run_at_once(place, out):
    """As by the keyboard: for all processes of the run. One that was still starting tells what it was about."""
    process = command()
    begun(place)
    os.killpg(process.pid, signal.SIGINT)
    ended(process, 130, r"orva.corpus: interrupted; what is complete stays\n$")
    assert not (out / ".parts").exists() and not (out / "table.csv").exists()
    rest(place)


def test_a_killed_run_leaves_no_process_behind(place, out):
    process = command()
    begun(place)
    workers = children(process)
    process.kill()
    process.communicate()
    for _ in range(1000):
        if not any(Path(f"/proc/{worker}/cmdline").exists() for worker in workers):
            break
        time.sleep(0.01)
    else:
        raise AssertionError("workers live on")
    rest(place)


def test_a_full_disk_ends_the_run(place, out):
    """Here, a limit on the size of a file, which writing meets in the same way, below what the largest recordings need."""
    largest = max((place[0] / "reference").rglob("sound.flac"), key=lambda path: path.stat().st_size).stat().st_size
    process = command("--batch", 1, preexec_fn=lambda: resource.setrlimit(
        resource.RLIMIT_FSIZE, (largest - 1000, resource.RLIM_INFINITY)))
    ended(process, 3, "File too large.*; what is complete stays, the same call makes the rest")
    assert not (out / "table.csv").exists()
    rest(place)


def test_a_disk_that_is_full_at_any_place_is_noticed(place, tmp_path):
    """At whichever byte of the sound or the arrays it is full, nothing is published."""
    source = place[0] / "in/recorded/Front_Center.wav"
    whole = max(path.stat().st_size for path in (place[0] / "reference/recordings/in/recorded/Front_Center.wav").iterdir())
    program = f"""
import dask, resource
from orva import corpus
dask.config.set(scheduler="synchronous")
recipe = corpus.read_recipe({str(place[0] / "r.toml")!r})
for limit in range(500, {whole}, {whole // 25}):
    resource.setrlimit(resource.RLIMIT_FSIZE, (limit, resource.RLIM_INFINITY))
    try:
        corpus.run(recipe, [{str(source)!r}], "out")
    except OSError as error:
        print(error.strerror)
"""
    run = subprocess.run([sys.executable, "-c", program], cwd=tmp_path, capture_output=True, text=True)
    assert run.stdout.splitlines() == ["File too large"] * 25, run.stderr
    assert not list(tmp_path.rglob("recordings/*"))


def test_a_terminal_sees_how_far_it_is(place, out):
    seen, terminal = os.openpty()
    process = subprocess.Popen([sys.executable, "-m", "orva.corpus", "r.toml", "in/recorded", "--out", "out"],
                               stdout=subprocess.PIPE, stderr=terminal, text=True)
    written, _ = process.communicate()
    os.close(terminal)
    assert written == "9 complete, 9 of them new, 1 failed\n"
    assert "100% Completed" in os.read(seen, 1 << 16).decode()
    os.close(seen)


def test_the_command_tells_what_is_wrong(place, out):
    ended(command("--batch", 0), 2, "batch must be a whole number")
    (place[0] / "in/recorded/empty.wav").touch()
    try:
        process = subprocess.Popen([sys.executable, "-m", "orva.corpus", "r.toml", "in/recorded", "--out", "out"],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        ended(process, 1, r"^9 complete, 9 of them new, 2 failed\n$")
        with open(out / "failures.csv", newline="") as file:
            assert list(csv.reader(file)) == [["file", "reason"], ["in/recorded/bad.wav", "no sound: Format not recognised."],
                                              ["in/recorded/empty.wav", "an empty file"]]
    finally:
        (place[0] / "in/recorded/empty.wav").unlink()
