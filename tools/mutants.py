#!/usr/bin/python3
"""Draws mutants of the two libraries and tells which of them the tests do not notice.

    tools/mutants.py FOLDER COUNT SEED

FOLDER has the sources in `source` and a configured build in `build`; script/mutants makes both.
"""
import random
import re
import subprocess
import sys
import time
from pathlib import Path

MOST_SECONDS = 120              # for one test; one that takes longer has noticed
ELSEWHERE = "Streams|Arguments.Edges|Bits"    # tests that every family's mutant may meet

# Pattern and what takes its place; of one line each place is a mutant of its own.
SWAPS = [
    ("sign", r" \+ ", " - "), ("sign", r" - ", " + "), ("sign", r" \+= ", " -= "), ("sign", r" -= ", " += "),
    ("comparison", r" < ", " <= "), ("comparison", r" <= ", " < "), ("comparison", r" > ", " >= "),
    ("comparison", r" >= ", " > "), ("comparison", r" == ", " != "), ("comparison", r" != ", " == "),
    ("logic", r" && ", " || "), ("logic", r" \|\| ", " && "),
    ("narrowing", r"static_cast<float>\(", "static_cast<double>("),
]
CONSTANT = re.compile(r"(?<![\w.\"'])(\d{1,9})(?![\w.'\"])")
IDLE = re.compile(r"^\s*(//|#|\*|/\*|static_assert|template|using|namespace|extern)")


def places(text):
    """Offset, end, replacement and kind of each change that the text admits."""
    at = 0
    for line in text.splitlines(keepends=True):
        code = line.split("//")[0]
        if not IDLE.match(line) and '"' not in code:
            for kind, pattern, other in SWAPS:
                for match in re.finditer(pattern, code):
                    yield at + match.start(), at + match.end(), other, kind
            for match in CONSTANT.finditer(code):
                yield at + match.start(), at + match.end(), str(int(match[1]) + 1), "constant"
        at += len(line)


def sources(folder):
    for part in ("src", "kett/src"):
        for path in sorted((folder / part).rglob("*.cpp")):
            if not {"windows", "fuzz"} & set(path.parts):
                yield path


def tests_of(path, folder):
    """The folder of the tests of a source's family."""
    parts = path.relative_to(folder).parts
    return "kett/tests" if parts[0] == "kett" else f"tests/{parts[1] if parts[1] != 'platform' else 'fft'}"


class Runner:
    def __init__(self, folder):
        self.build = folder / "build"
        self.log = open(folder / "mutants.log", "w")

    def run(self, *words):
        self.log.write(" ".join(map(str, words)) + "\n")
        self.log.flush()
        return subprocess.run(words, stdout=self.log, stderr=subprocess.STDOUT).returncode == 0

    def builds(self, *targets):
        return self.run("ninja", "-C", str(self.build), "-j2", *targets)

    def passes(self, tests, *which):
        return self.run("ctest", "--test-dir", str(self.build / tests), "-j2", "--stop-on-failure",
                        "--timeout", str(MOST_SECONDS), "--no-tests=error", *which)


def verdict(runner, path, folder):
    """'killed', 'survives', or None for what does not compile."""
    library = "kett/all" if tests_of(path, folder) == "kett/tests" else "src/all"
    if not runner.builds(library):
        return None
    tests = tests_of(path, folder)
    for targets, where, which in [((f"{tests}/all",), tests, ("-LE", "package|lint|slow")),
                                  (("streams_test", "arguments_test", "bits", "bits_test"), "tests", ("-R", ELSEWHERE))]:
        if not runner.builds(*targets) or not runner.passes(where, *which):
            return "killed"
    return "survives"


def main():
    folder, count, seed = Path(sys.argv[1]).resolve(), int(sys.argv[2]), int(sys.argv[3])
    source, runner, chance = folder / "source", Runner(folder), random.Random(int(sys.argv[3]))
    candidates = [(path, place) for path in sources(source) for place in places(path.read_text())]
    chance.shuffle(candidates)
    print(f"mutants: {len(candidates)} places in {len({path for path, _ in candidates})} files", flush=True)

    killed, survivors = 0, []
    for path, (start, end, other, kind) in candidates:
        if killed + len(survivors) == count:
            break
        text = path.read_text()
        line = text.count("\n", 0, start) + 1
        started = time.time()
        try:
            path.write_text(text[:start] + other + text[end:])
            outcome = verdict(runner, path, source)
        finally:
            path.write_text(text)
        if outcome is None:
            continue
        what = (f"{path.relative_to(source)}:{line}: {kind}, '{text[start:end].strip()}' becomes '{other.strip()}'"
                f" in: {text.splitlines()[line - 1].strip()}")
        print(f"mutants: {outcome} in {time.time() - started:.0f} s: {what}", flush=True)
        if outcome == "killed":
            killed += 1
        else:
            survivors.append(what)
    for what in survivors:
        print(f"mutants: survivor: {what}")
    all_of_them = killed + len(survivors)
    print(f"mutants: {killed} of {all_of_them} killed, {100 * killed / max(all_of_them, 1):.1f} %, seed {seed}")


main()
