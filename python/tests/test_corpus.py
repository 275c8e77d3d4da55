"""Recipes on one recording each: steps, outputs, refusals; without processes."""
import csv
import json
import os
import subprocess
import sys
import time
from pathlib import Path

import dask
import numpy as np
import pytest
import soundfile
import zarr
from clib import noise, same_bits
from speech import VOICES, hashes

import orva
from orva import corpus
from orva.corpus import inputs, source
from orva.corpus.frames import Frames
from orva.corpus.mel import Bank

VOICE = VOICES / "Front_Center.wav"


@pytest.fixture(autouse=True)
def _here_and_now():
    with dask.config.set(scheduler="synchronous"):
        yield


def recipe(*steps, **outputs):
    return {"steps": [{"do": do, **keys} for do, keys in steps], "outputs": outputs}


def made(files, *steps, folder="out", **outputs):
    """The results of the only file: its sound, its arrays and its line."""
    report = corpus.run(recipe(*steps, **outputs), files, folder)
    assert report == (1, 1, 0), (report, table("failures", folder))
    place, = {os.path.dirname(path) for path in map(str, orva_paths(folder))}
    sound = [path for path in os.listdir(place) if path.startswith("sound.")]
    return (orva.read(os.path.join(place, sound[0])) if sound else None,
            np.load(os.path.join(place, "arrays.npz")) if outputs.get("arrays") == "npz" else None,
            json.load(open(os.path.join(place, "line.json"))))


def orva_paths(folder):
    return [os.path.join(place, name) for place, _, files in os.walk(os.path.join(folder, "recordings")) for name in files]


def table(name, folder="out"):
    with open(os.path.join(folder, f"{name}.csv"), newline="") as file:
        return list(csv.DictReader(file))


EXACT = {"sound": "w64", "subtype": "FLOAT"}
CHANGES = {
    "nothing": ((), lambda x, fs: x),
    "resample": ((("resample", {"fs": 16000}),), lambda x, fs: orva.resample(x, fs, 16000)),
    "hold": ((("resample", {"fs": 16000, "kind": "hold"}),), lambda x, fs: orva.resample(x, fs, 16000, kind="hold")),
    "filter": ((("filter", {"text": "order=4; fpass=1000"}),),
               lambda x, fs: orva.Filter("order=4; fpass=1000", fs=fs, channels=x.shape[1])(x)),
    "sections": ((("filter", {"sos": [[0.5, 0, 0, 1, -0.5, 0], [1, 1, 0, 1, 0, 0]]}),),
                 lambda x, fs: orva.Filter(sos=[[0.5, 0, 0, 1, -0.5, 0], [1, 1, 0, 1, 0, 0]], channels=x.shape[1])(x)),
    "stretch": ((("stretch", {"speed": 0.7}),), lambda x, fs: orva.stretch(x, fs, 0.7)),
    "both": ((("filter", {"text": "order=2; fpass=3000"}), ("resample", {"fs": 8000}), ("stretch", {"speed": 1.5})),
             lambda x, fs: orva.stretch(orva.resample(orva.Filter("order=2; fpass=3000", fs=fs, channels=x.shape[1])(x),
                                                      fs, 8000), 8000, 1.5)),
}


@pytest.mark.parametrize("block", [1 << 15, 7001])
@pytest.mark.parametrize("channels", [1, 2])
@pytest.mark.parametrize("name", CHANGES)
def test_changes_have_the_bits_of_the_package_at_any_cut(name, channels, block, monkeypatch):
    monkeypatch.setattr(source, "BLOCK", block)
    steps, expected = CHANGES[name]
    x = noise(20000, channels, height=0.3)
    orva.write("x.wav", x, 32000)
    (y, fs), _, line = made(["x.wav"], *steps, **EXACT)
    assert same_bits(y.reshape(len(y), -1), expected(x, 32000))
    assert (line["channels"], line["frames"], line["frames_out"], line["fs_out"]) == (channels, 20000, len(y), fs)


def test_the_stream_that_removes_dc_is_the_filter_of_remove_dc():
    """In another structure of the same recursion, so within the rounding of its double sums."""
    x = noise(50000) + np.float32(0.5)
    orva.write("x.wav", x, 48000)
    (y, _), _, _ = made(["x.wav"], ("remove_dc", {}), **EXACT)
    assert np.abs(y - orva.remove_dc(x)).max() < 2e-7


@pytest.mark.parametrize("block", [1 << 15, 5003])
@pytest.mark.parametrize("frame_ms, hop_ms", [(20, 10), (10, 10), (10, 35)])
def test_measures_are_those_of_the_package(frame_ms, hop_ms, block, monkeypatch):
    monkeypatch.setattr(source, "BLOCK", block)
    x = noise(40000, 2, height=0.3)
    x[8000:16000] = 0
    orva.write("x.wav", x, 16000)
    _, arrays, line = made(["x.wav"], ("measures", {"frame_ms": frame_ms, "hop_ms": hop_ms}), arrays="npz")
    frame, hop = 16 * frame_ms, 16 * hop_ms
    energy, rate = orva.energy_db(x, frame, hop), orva.zero_cross_rate(x, frame, hop)
    assert same_bits(arrays["measures/energy_db"], energy)
    assert same_bits(arrays["measures/zero_cross_rate"], rate)
    assert (arrays["measures/times"] == (np.arange(len(energy)) * hop + frame / 2) / 16000).all()
    assert line["measures_energy_db_most"] == energy[energy != 0].max()
    assert line["measures_energy_db_mean"] == pytest.approx(energy[energy != 0].mean(), rel=1e-5)
    assert line["measures_zero_cross_rate_mean"] == pytest.approx(rate.mean(), rel=1e-5)


def bands(x, fs, length, hop, count, low, high):
    """Mel decibels by their definition, in double precision: one triangle after the other."""
    size = 1 << (length - 1).bit_length()
    window = 0.5 - 0.5 * np.cos(2 * np.pi * np.arange(length) / length)
    mel = np.linspace(1127.01048 * np.log(low / 700 + 1), 1127.01048 * np.log(high / 700 + 1), count + 2)
    edges = 700 * (np.exp(mel / 1127.01048) - 1)
    hz = np.arange(size // 2 + 1) * fs / size
    rows = []
    for n in range(0, len(x) - length + 1, hop):
        power = np.abs(np.fft.rfft(x[n:n + length] * window, size))**2 / (size * (window**2).sum() / 4)
        rows.append([10 * np.log10(max(1e-12, (power * np.clip(np.minimum(
            (hz - left) / (middle - left), (right - hz) / (right - middle)), 0, None)).sum()))
            for left, middle, right in zip(edges, edges[1:], edges[2:])])
    return np.array(rows)


@pytest.mark.parametrize("block", [1 << 15, 5003])
def test_mel_bands_are_triangles_over_the_power_spectrum(block, monkeypatch):
    monkeypatch.setattr(source, "BLOCK", block)
    x = noise(16000, 2, height=0.3)
    orva.write("x.wav", x, 16000)
    _, arrays, line = made(["x.wav"], ("mel", {"bands": 20, "low_hz": 100, "high_hz": 7000}), arrays="npz")
    found = arrays["mel/decibels"]
    assert found.shape == (98, 20, 2) and line["mel_frames"] == 98
    for channel in (0, 1):
        assert np.abs(found[:, :, channel] - bands(x[:, channel].astype(float), 16000, 400, 160, 20, 100, 7000)).max() < 1e-3


def test_a_sine_in_the_middle_of_a_band_has_0_db():
    bank = Bank(16000, 1024, 20, 0, 8000, -120)
    k = round(bank.hz[9] * 1024 / 16000)
    x = np.sin(2 * np.pi * k * np.arange(1024) / 1024).astype(np.float32)
    assert bank.decibels(x, 1024)[0].max() == pytest.approx(0, abs=0.5)
    assert (bank.decibels(np.zeros(1024, np.float32), 1024) == -120).all()


@pytest.mark.parametrize("late", [-40, 0, 25])
def test_delays_between_channels(late):
    x = noise(32000)
    pair = np.stack([np.roll(x, late), x, np.roll(x, -7)], axis=1)
    orva.write("x.wav", pair, 16000)
    _, arrays, line = made(["x.wav"], ("delay", {"frame_ms": 500, "hop_ms": 500}), arrays="npz")
    assert (arrays["delay/seconds"] == np.float32([late / 16000, (late + 7) / 16000])).all()
    assert (arrays["delay/peak"] > 0.8).all() and arrays["delay/times"].tolist() == [0.25, 0.75, 1.25, 1.75]
    assert [float(value) for value in line["delay_seconds"].split()] == pytest.approx([late / 16000, (late + 7) / 16000])


def test_delays_of_one_channel_are_none():
    orva.write("x.wav", noise(32000), 16000)
    _, arrays, line = made(["x.wav"], ("delay", {}), arrays="npz")
    assert arrays["delay/seconds"].shape == (19, 0) and line["delay_seconds"] == line["delay_peak"] == ""


def test_silence_has_no_level_and_no_delay():
    orva.write("x.wav", np.zeros((16000, 2)), 16000)
    _, arrays, line = made(["x.wav"], ("measures", {}), ("delay", {}), arrays="npz")
    assert np.isnan(arrays["delay/seconds"]).all()
    assert line["measures_energy_db_mean"] == line["measures_energy_db_most"] == line["delay_seconds"] == ""


@pytest.mark.parametrize("length, hop", [(10, 3), (10, 10), (4, 11), (1, 1)])
def test_frames_are_the_same_at_any_cut(length, hop):
    x, rng = np.arange(1000, dtype=np.float32), np.random.default_rng(length)
    expected = [x[n:n + length] for n in range(0, 1000 - length + 1, hop)]
    frames, found, at = Frames(length, hop), [], 0
    while at < 1000:
        size = int(rng.integers(0, 30))
        piece = frames.take(x[at:at + size])
        found += [piece[n:n + length] for n in range(0, len(piece) - length + 1, hop)]
        at += size
    assert len(found) == frames.count == len(expected) and all(map(np.array_equal, found, expected))


def test_zarr_holds_what_npz_holds():
    steps = ("measures", {}), ("mel", {}), ("delay", {})
    corpus.run(recipe(*steps, arrays="npz"), [VOICE], "n")
    corpus.run(recipe(*steps, arrays="zarr"), [VOICE], "z")
    name = f"recordings{VOICE}/arrays"
    npz, stored = np.load(f"n/{name}.npz"), zarr.open(f"z/{name}.zarr", "r")
    assert len(npz.files) == 9
    for key in npz.files:
        assert same_bits(stored[key][:], npz[key])


def test_results_have_no_time_in_them():
    for folder in ("one", "two"):
        for kind, subtype in (("wav", "PCM_24"), ("flac", "PCM_16"), ("w64", "FLOAT")):
            for arrays in ("npz", "zarr"):
                corpus.run(recipe(("mel", {}), sound=kind, subtype=subtype, arrays=arrays), [VOICE],
                           f"{folder}/{kind}{arrays}")
        time.sleep(1.1)
    assert len(hashes(Path("one"))) > 20 and hashes(Path("one")) == hashes(Path("two"))


def damaged(kind, subtype, share):
    orva.write(f"whole.{kind}", noise(30000, height=0.5), 16000, subtype)
    data = open(f"whole.{kind}", "rb").read()
    return data[:int(len(data) * share)]


BAD = {
    "empty.wav": (lambda: b"", "an empty file"),
    "text.wav": (lambda: b"To whom it may concern, " * 10, "no sound: Format not recognised."),
    "short.wav": (lambda: damaged("wav", "PCM_16", 0.5), "truncated: 29978 bytes of 60000"),
    "short.au": (lambda: damaged("au", "PCM_16", 0.5), "truncated: "),
    "short.aiff": (lambda: damaged("aiff", "PCM_16", 0.5), "truncated: "),
    "short.w64": (lambda: damaged("w64", "PCM_16", 0.5), "truncated: 30052 bytes of 60104"),
    "short.flac": (lambda: damaged("flac", "PCM_16", 0.5), "damaged after 0 of 30000 frames: Error : flac decoder lost sync."),
    "short.ogg": (lambda: damaged("ogg", "VORBIS", 0.5), "truncated: the end of the stream is missing"),
    "head.wav": (lambda: damaged("wav", "PCM_16", 0.0003), "no sound: "),
    "none.wav": (lambda: damaged("wav", "PCM_16", 0) or (orva.write("n.wav", np.zeros(0), 8000), open("n.wav", "rb").read())[1],
                 "no samples"),
    "slow.wav": (lambda: (orva.write("s.wav", noise(800), 100), open("s.wav", "rb").read())[1],
                 "100 Hz of 1 channels: a frame of 20 ms at 100 Hz has less than 8 samples, or too many"),
}


def test_bad_files_are_told_and_the_others_made():
    os.mkdir("in")
    for name, (make, _) in BAD.items():
        with open(f"in/{name}", "wb") as file:
            file.write(make())
    os.mkfifo("in/pipe.wav")
    os.mkdir("in/folder.wav")
    os.symlink("nowhere", "in/dangling.wav")
    orva.write("in/good.wav", noise(8000), 16000)
    report = corpus.run(recipe(("stretch", {"speed": 2}), sound="flac"), ["in", "in/gone.wav", "in/text.wav/x"], "out")
    told = {os.path.basename(line["file"]): line["reason"] for line in table("failures")}
    assert report == (1, 1, len(BAD) + 4) and [line["file"] for line in table("table")] == ["in/good.wav"]
    for name, (_, reason) in BAD.items():
        assert told[name].startswith(reason), (name, told[name])
    assert told["pipe.wav"] == "not a file" and told["x"] == "Not a directory"
    assert told["dangling.wav"] == told["gone.wav"] == "No such file or directory"
    assert sorted(os.listdir("out/recordings/in")) == ["good.wav"] and ".parts" not in os.listdir("out")


def test_a_file_that_may_not_be_read_is_told():
    """Root may read all, so it gives that right away before."""
    orva.write("x.wav", noise(800), 8000)
    os.chmod("x.wav", 0)
    Path("r.toml").write_text('steps = [{do = "remove_dc"}]\noutputs = {sound = "flac"}')
    less = ["setpriv", "--bounding-set=-dac_override,-dac_read_search"] if os.geteuid() == 0 else []
    run = subprocess.run([*less, sys.executable, "-m", "orva.corpus", "r.toml", "x.wav", "--out", "out"], text=True,
                         capture_output=True, env={**os.environ, "DASK_SCHEDULER": "synchronous"})
    assert (run.returncode, run.stdout) == (1, "0 complete, 0 of them new, 1 failed\n"), run.stderr
    assert table("failures") == [{"file": "x.wav", "reason": "Permission denied"}]


def test_a_file_that_was_written_into_a_pipe_is_whole():
    """Its head promises 4 GiB, since nobody could go back to it."""
    orva.write("x.wav", noise(8000), 16000, "PCM_16")
    data = bytearray(open("x.wav", "rb").read())
    data[4:8] = data[40:44] = b"\xff" * 4
    open("x.wav", "wb").write(data)
    _, _, line = made(["x.wav"], ("measures", {}))
    assert line["frames"] == 8000


def test_a_head_that_counts_itself_is_no_reason():
    """Some writers put the size of the whole file where that of the rest belongs."""
    orva.write("x.wav", noise(8000), 16000, "PCM_16")
    data = bytearray(open("x.wav", "rb").read())
    data[4:8] = len(data).to_bytes(4, "little")
    open("x.wav", "wb").write(data)
    _, _, line = made(["x.wav"], ("measures", {}))
    assert line["frames"] == 8000


def test_what_a_kind_of_file_cannot_hold_is_told():
    orva.write("x.wav", noise(800, 9), 16000)
    assert corpus.run(recipe(sound="flac"), ["x.wav"], "out") == (0, 0, 1)
    assert table("failures")[0]["reason"].startswith("16000 Hz of 9 channels in FLAC: ")


REFUSED = {
    "a recipe has steps, a list, and outputs, not wanted": {"steps": [], "wanted": 1},
    "step 1 must do one of remove_dc, resample, filter, stretch, measures, mel, delay, not 'sing'": recipe(("sing", {})),
    "step 2, resample: fs is missing": recipe(("remove_dc", {}), ("resample", {})),
    "step 1, resample: fs must be int, not '8000'": recipe(("resample", {"fs": "8000"})),
    "step 1, resample: fs must be a whole number from 1 to 2147483647, not 0": recipe(("resample", {"fs": 0})),
    "step 1, resample: has fs, order, kind, but no rate": recipe(("resample", {"rate": 1})),
    "step 1, remove_dc: has no keys, but no fs": recipe(("remove_dc", {"fs": 1})),
    "step 1, filter: a filter has text or sos": recipe(("filter", {})),
    "step 1, filter: sos must be rows of numbers, not [1, 2]": recipe(("filter", {"sos": [1, 2]})),
    "step 1, filter: sos must be an array of sections x 6": recipe(("filter", {"sos": [[1, 2]]})),
    "step 1, stretch: speed must be above 0 and at most 3, not 4.0": recipe(("stretch", {"speed": 4})),
    "step 1, measures: hop_ms must be above 0 and at most 60000, not 0.0": recipe(("measures", {"hop_ms": 0})),
    "step 1, measures: name must be a word, not 'a/b'": recipe(("measures", {"name": "a/b"})),
    "step 1, mel: bands must be from 2 to 1024, not 1": recipe(("mel", {"bands": 1})),
    "step 1, mel: low_hz and high_hz must ascend from 0, not 50.0 and 40.0": recipe(("mel", {"low_hz": 50, "high_hz": 40})),
    "step 1, delay: most_ms must be above 0 and below frame_ms, not 300.0": recipe(("delay", {"most_ms": 300})),
    "two steps have one name; give one of them another": recipe(("mel", {}), ("mel", {"bands": 20})),
    "there are arrays to be kept, but no step that measures": recipe(arrays="npz"),
    "there are no arrays 'hdf', but npz, zarr": recipe(("mel", {}), arrays="hdf"),
    "there is no sound ogg of PCM_16, but wav of PCM_16, PCM_24; flac of PCM_16, PCM_24; w64 of PCM_16, PCM_24, FLOAT":
        recipe(sound="ogg"),
    "there is no sound wav of FLOAT, but wav of PCM_16, PCM_24; flac of PCM_16, PCM_24; w64 of PCM_16, PCM_24, FLOAT":
        recipe(sound="wav", subtype="FLOAT"),
    "outputs: has sound, subtype, arrays, but no table": recipe(table=1),
}


@pytest.mark.parametrize("message", REFUSED)
def test_what_is_no_recipe_is_refused(message):
    with pytest.raises(ValueError) as told:
        corpus.run(REFUSED[message], [VOICE], "out")
    assert str(told.value) == message and not os.path.exists("out")


@pytest.mark.parametrize("package, kind", [("soundfile", "npz"), ("dask", "npz"), ("zarr", "zarr")])
def test_a_missing_package_is_told_before_anything_is_written(package, kind):
    Path("r.toml").write_text('steps = [{do = "measures"}]\noutputs = {arrays = "%s"}' % kind)
    Path("none").mkdir()
    Path(f"none/{package}.py").write_text(f"raise ModuleNotFoundError('there is no {package}')")
    path = os.pathsep.join(["none", str(Path(orva.__file__).parents[1])])
    run = subprocess.run([sys.executable, "-m", "orva.corpus", "r.toml", VOICE, "--out", "out"], text=True,
                         capture_output=True, env={**os.environ, "PYTHONPATH": path})
    assert run.returncode == 2 and run.stderr.startswith(f"orva.corpus: there is no {package}; needed are "), run.stderr
    assert not os.path.exists("out")


def test_a_file_that_is_no_toml_is_refused():
    open("r.toml", "w").write("steps = [")
    with pytest.raises(ValueError, match="^r.toml is no TOML: "):
        corpus.run("r.toml", [VOICE], "out")


def test_a_folder_belongs_to_one_recipe_and_one_run():
    corpus.run(recipe(sound="wav"), [VOICE], "out")
    before = hashes(Path("out"))
    with pytest.raises(ValueError, match="was made by another recipe or version"):
        corpus.run(recipe(sound="flac"), [VOICE], "out")
    place = corpus.running.Folder("out")
    with place.claimed(corpus.read_recipe(recipe(sound="wav"))):
        with pytest.raises(ValueError, match="another run works into .*out$"):
            corpus.run(recipe(sound="wav"), [VOICE], "out")
    assert hashes(place.path) == before


def test_a_recording_that_has_changed_is_made_again():
    orva.write("x.wav", noise(1000), 8000)
    assert corpus.run(recipe(sound="wav"), ["x.wav"], "out") == (1, 1, 0)
    assert corpus.run(recipe(sound="wav"), ["x.wav"], "out") == (1, 0, 0)
    orva.write("x.wav", noise(1001), 8000)
    assert corpus.run(recipe(sound="wav"), ["x.wav"], "out") == (1, 1, 0)
    assert soundfile.info("out/recordings/x.wav/sound.wav").frames == 1001 == int(table("table")[0]["frames"])


def test_names_of_recordings():
    os.makedirs("in/deep/.hidden")
    for name in ("in/b.WAV", "in/deep/a.flac", "in/deep/note.txt", "in/.c.wav", "in/deep/.hidden/d.wav"):
        open(name, "w").close()
    here = os.getcwd()
    assert inputs.recordings(["in/", "in/deep/a.flac", "./in/../in/b.WAV"]) == [
        ("in/b.WAV", f"{here}/in/b.WAV"), ("in/deep/a.flac", f"{here}/in/deep/a.flac")]
    assert inputs.recordings(["/data/x.wav", "../y"]) == sorted([
        ("data/x.wav", "/data/x.wav"), (f"{os.path.dirname(here)}/y"[1:], f"{os.path.dirname(here)}/y")])
    with pytest.raises(ValueError, match="would have results of one name"):
        inputs.recordings(["/data/x.wav", "data/x.wav"])


def peak(seconds):
    """Megabytes that a process of its own holds at most for a recording of that length, by the peak since its start."""
    code = ("import dask, re, sys\nfrom orva import corpus\n"
            "dask.config.set(scheduler='synchronous')\n"
            "assert corpus.run('r.toml', [sys.argv[1]], 'out' + sys.argv[1])[0] == 1\n"
            "print(int(re.search(r'VmHWM:\\s+(\\d+) kB', open('/proc/self/status').read())[1]) / 1024)")
    run = subprocess.run([sys.executable, "-c", code, f"{seconds}.wav"], capture_output=True, text=True, check=True)
    return float(run.stdout)


def test_memory_does_not_grow_with_the_length():
    """Nor with that of the arrays, which take four times of what is left here to the longer recording."""
    open("r.toml", "w").write('steps = [{do = "resample", fs = 16000}, {do = "measures", frame_ms = 4, hop_ms = 1},'
                              ' {do = "mel", hop_ms = 4}]\noutputs = {sound = "flac", arrays = "npz"}')
    for seconds in (20, 200):
        orva.write(f"{seconds}.wav", np.tile(noise(8000 * 20, height=0.3), seconds // 20), 8000, "PCM_16")
    short, long = peak(20), peak(200)
    size = os.stat("out200.wav/recordings/200.wav/arrays.npz").st_size / 2**20
    assert size > 10 and long - short < 3, (short, long, size)

