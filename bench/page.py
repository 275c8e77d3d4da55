#!/usr/bin/python3
"""Writes the numbers of docs/speed.md from the results of script/bench: page.py FOLDER

FOLDER holds what the benchmarks have written. Of each case the shortest time counts. Each part of the page between
`<!-- NAME -->` and `<!-- end -->` is replaced by what the function NAME here gives.
"""
import json
import math
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
PAGE = ROOT / "docs/speed.md"
LEVELS = ("plain", "baseline", "avx2", "avx512")
PACKAGES = ("libfftw3-single3", "libsoxr0", "libzita-resampler1", "libspeexdsp1", "libsamplerate0", "libsoundtouch1",
            "librubberband2", "libsox3", "libliquid1", "libgsl27", "libsleef3", "libkissfft-float131",
            "libwebrtc-audio-processing1", "python3-numpy", "python3-scipy")


def read(folder):
    """The shortest nanoseconds of each case, and what it has counted."""
    best, counted = {}, {}
    for file in sorted(Path(folder).glob("*.json")):
        for run in json.loads(file.read_text())["benchmarks"]:
            if run["run_type"] != "iteration":
                continue
            name, nanoseconds = run["name"].removesuffix("/iterations:1/manual_time"), 1e9 / run["items_per_second"]
            if nanoseconds < best.get(name, float("inf")):
                best[name], counted[name] = nanoseconds, run
    return best, counted


BEST, COUNTED = read(sys.argv[1])
TOP = next(level for level in reversed(LEVELS) if f"multiply and add, float/{level}" in BEST or level == "baseline")


# The limits: what a path cannot do without, and the nanoseconds of that.

def sums(count, kind="double"):
    """Multiplications that each have an addition beside them, in vectors."""
    return f"{count} products and sums in {kind}", lambda: count * BEST[f"multiply and add, {kind}/{TOP}"]


def steps(additions, kind="double", of=1):
    """Dependent steps of a recursion that `of` channels share."""
    share = "" if of == 1 else f", one for {of} samples"
    return (f"a step of 1 product and {additions} sums, one after the other{share}",
            lambda: BEST[f"chain/multiply and {additions} adds, {kind}"] / of)


def sections(count):
    return (f"{count} section{'s' * (count > 1)}, each of 5 products, 4 sums, 2 conversions",
            lambda: count * BEST[f"section/{TOP}"])


def longest(*limits):
    """Whichever takes longest."""
    def nanoseconds():
        return max(limit[1]() for limit in limits)
    return max(limits, key=lambda limit: limit[1]())[0], nanoseconds


def peer(name, words):
    return words, lambda: BEST[name]


NO_LIMIT = ("", lambda: None)


class Row:
    """A path: its title; its case; its peers, as (name, names of cases of which the fastest counts, aim with AVX2, aim with
    AVX-512), where an aim may be missing; its limit, for its unit; what its times are multiplied by to be those of its unit."""

    def __init__(self, title, case, peers, limit=NO_LIMIT, unit="sample", scale=1.0):
        self.title, self.case, self.peers, self.limit, self.unit, self.scale = title, case, peers, limit, unit, scale

    def at(self, level):
        """Nanoseconds at a level, or None."""
        return BEST.get(f"{self.case}/orva {level}")

    def ours(self):
        return self.at(TOP) or BEST.get(f"{self.case}/orva")


def polyphase(rate_in, rate_out, block=None):
    """The name of a pair, and the limit of order 30: a group of eight outputs takes all samples that one of them takes. A
    short block reads the coefficients of its groups from the second cache."""
    common = math.gcd(rate_in, rate_out)
    up, down = rate_out // common, rate_in // common
    taps = -(-(2 * 30 * max(up, down) + 1) // up)
    taken = taps + -(-7 * down // up)
    words = f"{taken} products and sums in double, {taps} of them the filter's"
    if block:
        size = taken * 8
        return (f"{rate_in} to {rate_out}", (f"{size} bytes of coefficients from the second cache",
                                             lambda: size * BEST[f"read of a byte/{TOP}"]))
    return f"{rate_in} to {rate_out}", (words, lambda: taken * BEST[f"multiply and add, double/{TOP}"])


def rows():
    for rates, aims in (((44100, 48000), ((1.5, 2.5), (3.5, 6), (20, 20))),
                        ((48000, 44100), ((1.5, 2.5), (3.5, 6), (20, 20))),
                        ((16000, 48000), ((0.85, 1.3),)), ((48000, 16000), ((0.8, 1.25),))):
        pair, limit = polyphase(*rates)
        case = f"{pair}, polyphase"
        peers = [(name, [f"{case}/{key}"], *(aims[i] if i < len(aims) else (None, None)))
                 for i, (name, key) in enumerate((("soxr HQ", "soxr"), ("zita 32", "zita"), ("Speex 5", "speex 5"),
                                                  ("libsamplerate fast", "samplerate_fast")))]
        yield Row(f"Resampling {pair}, order 30", case, peers, limit)
    pair, limit = polyphase(44100, 48000, block=64)
    case = f"{pair}, polyphase, blocks of 64"
    yield Row(f"The same {pair}, blocks of 64", case,
              [("soxr HQ", [f"{case}/soxr"], 1.0, 1.0), ("zita 32", [f"{case}/zita"], 2.5, 2.5)], limit)
    case = "44100 to 48000, hold"
    yield Row("Zero-order hold, 44100 to 48000", case, [("bare loop", [f"{case}/bare"], 0.5, 0.5)], steps(2))
    for channels, counts in ((1, (1, 4, 10)), (2, (4, 10)), (6, (4, 10))):
        for count in counts:
            case = f"biquads, sections {count}, channels {channels}, frames 1024"
            loops = [f"{case}/textbook", f"{case}/transposed"]
            if channels == 1:
                aims = {1: (1.0, 1.0), 4: (2.0, 2.3), 10: (2.5, 3.3)}[count]
                peers = [("best of textbook, SoX, sosfilt", [*loops, f"{case}/SoX", f"{case}/sosfilt"], *aims)]
            else:
                aims = {2: (2, 3), 6: (3, 5)}[channels]
                peers = [("textbook", loops, *aims)]
            yield Row(f"Biquads, {count} section{'s' * (count > 1)}, {channels} channel{'s' * (channels > 1)}", case,
                      peers, longest(sections(count), steps(2, of=channels)))
    for channels, aim in ((1, 1.2), (2, 1.8), (6, 4)):
        case = f"direct form, order 8, channels {channels}, frames 1024"
        names = [f"{case}/{key}" for key in ("textbook", "transposed", "liquid", "lfilter")]
        yield Row(f"Direct form, order 8, {channels} channel{'s' * (channels > 1)}", case,
                  [("best of textbook, liquid-dsp, lfilter", names, aim, aim)],
                  longest(sums(17, "float"), steps(8, "float", channels)))
    for title, case, aim in (("FFT of 1024", "forward, N 1024", 0.98), ("FFT of 4096", "forward, N 4096", 0.98),
                             ("Power spectrum of 1024", "power, N 1024", 0.95),
                             ("Power spectrum of 4096", "power, N 4096", 0.95)):
        peers = [("bare FFTW", [f"{case}/bare"], aim, aim)]
        if f"{case}/kiss" in BEST:
            peers.append(("KISS FFT", [f"{case}/kiss"], None, None))
        yield Row(title, case, peers, peer(f"{case}/bare", "the bare transform"))
    for bins in (513, 4097):
        N = 2 * bins - 2
        case = f"decibels, N {N}"
        yield Row(f"Decibels, {bins} bins", case, [("NumPy", [f"{case}/numpy"], 3, 3),
                                                   ("SLEEF, logarithm alone", [f"{case}/sleef {TOP}"], 0.55, 0.55)],
                  sums(18, "float"), "bin", N / bins)
    yield Row("Complex products", "products, 2048", [("copy", ["products, 2048/copy"], 0.5, 0.5)],
              peer("products, 2048/traffic", "two arrays read and one written, more than the nearest cache holds"), "product")
    yield Row("Window application", "apply", [("copy", ["apply/copy"], 0.5, 0.5)],
              peer("apply/copy", "the copy of as many bytes"))
    for form, key, aim in (("Correlation", "plain", 0.9), ("Phase transform", "phase transform", 0.8)):
        for L in (1024, 1000, 48000):
            case = f"{key}, L {L}"
            yield Row(f"{form}, L {L}", case, [("three bare FFTs", [f"{case}/bare"], aim, aim)],
                      peer(f"{case}/bare", "the bare transforms"))
    for speed, aims in (("1.5", (5, 8)), ("0.7", (2.5, 5))):
        case = f"speed {speed}"
        yield Row(f"Time scaling, {speed}", case,
                  [("SoundTouch, quick seek", [f"{case}/soundtouch quick"], *aims),
                   ("SoundTouch", [f"{case}/soundtouch"], None, None),
                   ("Rubber Band", [f"{case}/rubberband"], None, None)], sums(55, "float"))
    for M in (256, 1024):
        yield Row(f"Lapped transform, M {M}, there and back", f"pair, M {M}",
                  [("bare FFTW pair", [f"pair, M {M}/bare"], 0.8, 0.8)], peer(f"pair, M {M}/bare", "the bare transforms"))
    for title, key in (("Spline", "spline"), ("Straight line", "line")):
        yield Row(f"{title}, queries in no order", f"{key}, no order", [("GSL", [f"{key}, no order/gsl"], 2.7, 2.7)],
                  unit="query")
        yield Row(f"{title}, queries ascending", f"{key}, ascending",
                  [("GSL", [f"{key}, ascending/gsl"], 1.0, 1.0),
                   ("GSL with its accelerator", [f"{key}, ascending/gsl accelerated"], 0.55, 0.55)], unit="query")
    yield Row("Spline estimate", "estimate", [("GSL", ["estimate/gsl"], 2, 2)], unit="point")
    for window, title in (("Hanning", "Window of 4096, Hann"), ("Flat-Top", "Window of 4096, flat top")):
        yield Row(title, window, [("SciPy", [f"{window}/scipy"], 1.5, 1.5)])
    design = "one design, elliptic of order 8"
    yield Row("Elliptic design of order 8, from text", design,
              [("SciPy", [f"{design}/scipy"], 20, 20), ("liquid-dsp", [f"{design}/liquid"], None, None)], unit="design")
    for form in ("float", "16 bits"):
        case = f"16000 Hz, {form}"
        yield Row(f"Noise suppressor, 16000 Hz, {form}", case, [("bare WebRTC", [f"{case}/bare"], 0.97, 0.97)],
                  peer(f"{case}/bare", "the bare functions"))


def number(value):
    """Three digits at least, or an empty cell."""
    if value is None:
        return ""
    return f"{value:.0f}" if value >= 100 else f"{value:.3g}"


def sentence(text):
    return text[0].upper() + text[1:]


def table(heads, lines):
    yield "| " + " | ".join(heads) + " |"
    yield "|---" + "|---:" * (len(heads) - 1) + "|"
    for line in lines:
        yield "| " + " | ".join(line) + " |"


def measured():
    """The rows whose case has run, and the peers of each that have."""
    for row in rows():
        if row.ours() is None:
            print(f"page: nothing measured for {row.title}", file=sys.stderr)
            continue
        for name, cases, *aims in row.peers:
            ran = [BEST[case] for case in cases if case in BEST]
            if ran:
                yield row, name, min(ran), aims
            elif aims[0] or aims[1]:
                print(f"page: no peer {name} for {row.title}", file=sys.stderr)


def processor():
    model = re.search(r"^model name\s*: (.*)", Path("/proc/cpuinfo").read_text(), re.M)[1]
    fields = dict(re.findall(r"^(cpu family|model|stepping)\s*: (.*)", Path("/proc/cpuinfo").read_text(), re.M))
    compiler = subprocess.run(["c++", "--version"], capture_output=True, text=True, check=True).stdout.splitlines()[0]
    lacks = [name for name in ("avx2", "avx512") if LEVELS.index(name) > LEVELS.index(TOP)]
    yield (f"Processor: {model}, family {fields['cpu family']}, model {fields['model']}, "
           f"stepping {fields['stepping']}. Compiler: {compiler}. Best level: {TOP}"
           + (f"; not run, since the processor lacks it: {', '.join(lacks)}." if lacks else "."))
    yield ""
    versions = subprocess.run(["dpkg-query", "-W", "-f", "${Package} ${Version}\n", *PACKAGES], capture_output=True,
                              text=True).stdout.splitlines()
    yield "Peers, as Debian packs them: " + ", ".join(versions) + "."


def targets():
    def lines():
        for row, name, theirs, (avx2, avx512) in measured():
            ratio, aim = theirs / row.ours(), avx512 if TOP == "avx512" else avx2
            reached = "" if aim is None else "yes" if ratio >= aim else "no"
            yield (row.title, number(row.ours() * row.scale), name, number(theirs * row.scale), number(ratio),
                   number(avx2), number(avx512), reached)
    return table(("Path", "Ours, ns", "Beside", "Theirs, ns", "Ratio", "Aim, AVX2", "Aim, AVX-512", "Reached"), lines())


def levels():
    def lines():
        for row in rows():
            if row.ours() is None:
                continue
            cells = [number(row.at(level) and row.at(level) * row.scale) or
                     ("not run" if LEVELS.index(level) > LEVELS.index(TOP) else "") for level in LEVELS]
            if row.at(TOP) is None:                     # the same at every level
                cells[LEVELS.index(TOP)] = number(row.ours() * row.scale)
            words, limit = row.limit[0], row.limit[1]()
            share = "" if limit is None else f"{100 * limit / (row.ours() * row.scale):.0f} %"
            yield (row.title, row.unit, *cells, number(limit), share, words)
    return table(("Path", "ns for each", "plain", "baseline", "AVX2", "AVX-512", "Limit", "Share", "The limit is"), lines())


def linear():
    paths = ("44100 to 48000 Hz, order 30", "4 sections", "time scaling, 1.5")
    powers = range(4, 9)

    def lines(kind, powers):
        for path in paths:
            yield sentence(path), *(number(BEST.get(f"{path}, {kind} of 10^{power}/orva")) for power in powers)
    yield from table(("A stream of", *(f"10^{power}" for power in powers)), lines("stream", powers))
    yield ""
    powers = range(7)
    yield from table(("Blocks of", *(f"10^{power}" for power in powers)), lines("blocks", powers))


def silence():
    inputs = ("silence", "decaying", "subnormal")

    def lines():
        names = [name for name in BEST if name.startswith("silence, ") and name.endswith("/normal")]
        for name in sorted(names, key=lambda name: COUNTED[name]["family_index"]):
            path, normal = name.removesuffix("/normal"), BEST[name]
            ratios = (BEST[f"{path}/{kind} {second}"] / normal for kind in inputs for second in (1, 60))
            yield (sentence(path.removeprefix("silence, ")), number(normal), *(f"{ratio:.2f}" for ratio in ratios))
    return table(("Path", "Normal, ns", *(f"{sentence(kind)}, {second}" for kind in inputs for second in ("1st", "60th"))),
                 lines())


def handles():
    def lines():
        ours = [(run["family_index"], name, run) for name, run in COUNTED.items()
                if "bytes" in run and name.endswith("/orva")]
        for _, name, run in sorted(ours):
            case = name[:-len("/orva")]
            peers = [(key, other) for key, other in (("bare FFTW", "bare"), ("soxr HQ", "soxr"))
                     if f"{case}/{other}" in BEST]
            key, other = peers[0] if peers else ("", "")
            theirs = COUNTED.get(f"{case}/{other}")
            yield (sentence(case), f"{run['bytes']:.0f}", number(BEST[name] / 1000), key,
                   f"{theirs['bytes']:.0f}" if theirs else "", number(BEST[f"{case}/{other}"] / 1000) if theirs else "")
    return table(("Handle", "Bytes", "us", "Beside", "Bytes", "us"), lines())


def main():
    page = PAGE.read_text()
    for part in (processor, targets, levels, linear, silence, handles):
        text = "\n".join(part())
        page, count = re.subn(rf"(<!-- {part.__name__} -->\n).*?(<!-- end -->)", lambda m: f"{m[1]}\n{text}\n\n{m[2]}",
                              page, flags=re.S)
        if count != 1:
            sys.exit(f"page: docs/speed.md has {count} parts {part.__name__}")
    PAGE.write_text(page)
    print(f"page: wrote {PAGE.relative_to(ROOT)}")


main()
