#!/usr/bin/python3
"""Draws mutants of the two libraries and tells which of them the tests do not notice.

    tools/mutants.py FOLDER COUNT SEED [NUMBER...]

FOLDER has the sources in `source` and in `build` a build of them with all tests; script/mutants makes both. With NUMBERs, only
these of the seed's draws are tried: what has survived, say, after a test was added.
"""
import json
import os
import random
import re
import resource
import signal
import subprocess
import sys
import time
from pathlib import Path

# Tests that add nothing here: they look at sources and at what is shipped, take minutes, or run other programs.
OTHERS = re.compile(r"tests/(docs|examples|package|programs)/|/(exports|flags|format|imports|includes|instructions|msvc)_|_slow_")
# Tests that measure a time, and may fail by themselves on a busy machine.
TIMED = "-Many.*:Number.TimeGrows*:PolyphaseFlush.AnOutputCosts*:*FullPipe*:Silence.*"
MEMORY = 16 << 30               # bytes that a test may take
WAIT = 60                       # seconds beyond the usual for a test that waits; and a tenth of it for one that computes

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
        for path in sorted((folder / part).rglob("*.*")):
            if path.suffix in (".cpp", ".h") and not {"windows", "fuzz"} & set(path.parts):
                yield path


def meets(path, source, program):
    """Whether a source's mutants meet a test program: its family's, then those of the whole library and of exact results."""
    part, family = path.relative_to(source).parts[:2]
    if part == "kett":
        return program.target.startswith("kett/")
    if family == "common":
        return program.target.startswith("tests/")
    family = "fft" if family == "platform" else family
    return program.target.startswith((f"tests/{family}/", "tests/library/", "tests/bits/"))


class Program:
    """A test program, run as a whole where it passes so, else each test by itself, as ctest does."""

    def __init__(self, path, build):
        self.path, self.name, self.target = path, path.name, str(path.relative_to(build))
        self.filters, self.seconds, self.processor_seconds = ["*"], 0, 0

    def run(self, which, home):
        """Why the tests `which` do not pass, or None."""
        limits = [(resource.RLIMIT_DATA, MEMORY), (resource.RLIMIT_CORE, 0),
                  (resource.RLIMIT_CPU, int(WAIT / 10 + 5 * self.processor_seconds))]

        def limited():
            for limit, most in limits:
                resource.setrlimit(limit, (most, resource.getrlimit(limit)[1]))

        with open(home / "output", "w+", errors="replace") as output:
            process = subprocess.Popen(
                [self.path, f"--gtest_filter={which}:{TIMED}", "--gtest_fail_fast"], stdout=output, stderr=subprocess.STDOUT,
                stdin=subprocess.DEVNULL, cwd=self.path.parent, start_new_session=True, preexec_fn=limited,
                env={**os.environ, "HOME": str(home), "TMPDIR": str(home), "GLIBC_TUNABLES": "glibc.malloc.tcache_count=0"})
            try:
                status = process.wait(WAIT + 10 * self.seconds)
            except subprocess.TimeoutExpired:
                status = "waits"
            try:
                os.killpg(process.pid, signal.SIGKILL)    # whatever it has left
            except ProcessLookupError:
                pass
            process.wait()
        if status == 0:
            return None
        said = (home / "output").read_text(errors="replace")
        failed = re.search(r"\[  FAILED  \] (\S+\.[^\s,]+)", said) or re.search(r"(?s).*\[ RUN      \] (\S+)", said)
        return failed[1] if failed else which, "fails" if status == 1 else f"ends with {status}"

    def measure(self, home):
        """Learns how it is to be run; false for what does not pass without a mutant."""
        self.seconds, self.processor_seconds = 30, 60
        for attempt in range(2):
            started, used = time.time(), resource.getrusage(resource.RUSAGE_CHILDREN)
            if any(self.run(which, home) for which in self.filters):
                listed = subprocess.run([self.path, "--gtest_list_tests"], capture_output=True, text=True).stdout
                suite, self.filters = "", []
                for line in listed.splitlines():
                    if not line.startswith(" "):
                        suite = line.split()[0]
                    elif "." in suite:
                        self.filters.append(suite + line.split()[0])
                continue
            now = resource.getrusage(resource.RUSAGE_CHILDREN)
            self.seconds = time.time() - started
            self.processor_seconds = now.ru_utime + now.ru_stime - used.ru_utime - used.ru_stime
            return True
        return False


class Suite:
    def __init__(self, folder):
        self.build, self.home, self.source = folder / "build", folder / "home", folder / "source"
        self.log = open(folder / "mutants.log", "a")
        self.home.mkdir(exist_ok=True)
        self.libraries = ["kett/libkett.so", "src/liborva.so"]
        if not self.builds("tests", *self.libraries):
            sys.exit(f"mutants: the sources do not build; see {folder}/mutants.log")
        self.plain = self.code()
        everything = [Program(path, self.build) for part in ("tests", "kett/tests")
                      for path in sorted((self.build / part).rglob("*_test")) if path.is_file()]
        known = folder / "programs"                       # measured once for a build
        measured = json.loads(known.read_text()) if known.exists() else {}
        self.programs = []
        for program in everything:
            if program.name in measured:
                program.filters, program.seconds, program.processor_seconds = measured[program.name]
            elif OTHERS.search(program.target) or not program.measure(self.home):
                continue
            self.programs.append(program)
        known.write_text(json.dumps({p.name: (p.filters, p.seconds, p.processor_seconds) for p in self.programs}))
        left_out = [program.name for program in everything if program not in self.programs]
        print(f"mutants: {len(self.programs)} test programs, {sum(p.processor_seconds for p in self.programs):.0f} processor"
              f" seconds; left out: {' '.join(left_out)}", flush=True)

    def builds(self, *targets):
        words = ["ninja", "-C", str(self.build), "-j1", *targets]
        return subprocess.run(words, stdout=self.log, stderr=subprocess.STDOUT).returncode == 0

    def code(self):
        return [(self.build / library).read_bytes() for library in self.libraries]

    def killer(self, path):
        """The program and the test of it that fails, and how; None when all pass."""
        def turn(program):
            return program.target.startswith(("tests/library/", "tests/bits/")), program.processor_seconds
        for program in sorted(self.programs, key=turn):
            if not meets(path, self.source, program):
                continue
            if not self.builds(program.target):
                return program, "*", "does not compile"
            for which in program.filters:
                found = program.run(which, self.home)
                if found:
                    return program, *found
        return None

    def verdict(self, path):
        """What becomes of the mutant that the sources are at the moment, and its killer."""
        if not self.builds(*self.libraries):
            return "does not compile", None
        if self.code() == self.plain:
            return "is the same code", None
        killer = self.killer(path)
        return ("is killed" if killer else "survives"), killer


def main():
    folder, count, seed = Path(sys.argv[1]).resolve(), int(sys.argv[2]), int(sys.argv[3])
    suite, chance = Suite(folder), random.Random(seed)
    candidates = [(path, place) for path in sources(suite.source) for place in places(path.read_text())]
    chance.shuffle(candidates)
    print(f"mutants: {len(candidates)} places in {len({path for path, _ in candidates})} files, seed {seed}", flush=True)

    outcomes = {"is killed": [], "survives": [], "is the same code": [], "does not compile": []}
    killers = {}
    for number in map(int, sys.argv[4:]) if sys.argv[4:] else range(len(candidates)):
        if len(outcomes["is killed"]) + len(outcomes["survives"]) == count:
            break
        path, (start, end, other, kind) = candidates[number]
        text = path.read_text()
        line = text.count("\n", 0, start) + 1
        what = (f"{number}: {path.relative_to(suite.source)}:{line}: {kind}, '{text[start:end].strip()}' becomes"
                f" '{other.strip()}' in: {text.splitlines()[line - 1].strip()}")
        started = time.time()
        try:
            path.write_text(text[:start] + other + text[end:])
            outcome, killer = suite.verdict(path)
        finally:
            path.write_text(text)
        outcomes[outcome].append(what)
        by = ""
        if killer:
            killers.setdefault(killer[:2], []).append(number)
            by = f" by {killer[1]} of {killer[0].name}, which {killer[2]}"
        print(f"mutants: {outcome}{by}, {time.time() - started:.0f} s: {what}", flush=True)

    # A test that fails by itself, on a busy machine say, has not noticed anything.
    suite.builds("tests", *suite.libraries)
    for (program, test), numbers in killers.items():
        if program.run(test, suite.home):
            print(f"mutants: {test} of {program.name} fails without a mutant, too: {numbers}")
    for what in outcomes["survives"]:
        print(f"mutants: survivor: {what}")
    killed, survived = len(outcomes["is killed"]), len(outcomes["survives"])
    print(f"mutants: {killed} of {killed + survived} killed, {100 * killed / max(killed + survived, 1):.1f} %, seed {seed};"
          f" beside them {len(outcomes['is the same code'])} gave the same code,"
          f" {len(outcomes['does not compile'])} did not compile")


main()
