"""The library is found, opened, refused and heard."""
import os
import subprocess
import sys
from pathlib import Path

import pytest

import orva
from orva import _library

PACKAGE = Path(orva.__file__).parent
SOURCE = Path(__file__).resolve().parents[1]


def python(code, **environment):
    """Runs a program in an interpreter of its own."""
    every = {**os.environ, "PYTHONPATH": str(PACKAGE.parent), "PYTHONDONTWRITEBYTECODE": "1", **environment}
    return subprocess.run([sys.executable, "-c", code], env=every, capture_output=True, text=True)


def library(folder, text, name="liborva.so.3"):
    """A shared library of the few functions in `text`."""
    (folder / "library.c").write_text("#include <stddef.h>\n" + text)
    subprocess.run(["cc", "-shared", "-fPIC", f"-Wl,-soname,{name}", "-o", folder / name, folder / "library.c"], check=True)
    return folder / name


def version(major, minor):
    return (f"void ORVAVERSION_Number(int *a, int *b, int *c, int *d) {{ *a = {major}; *b = {minor}; *c = 1; *d = 0; }}")


def last_line(run):
    assert run.returncode == 1
    return run.stderr.strip().splitlines()[-1]


def test_declarations_are_those_of_the_headers():
    made = subprocess.run([sys.executable, "-B", SOURCE / "declarations.py"], capture_output=True, text=True, check=True)
    assert made.stdout == (SOURCE / "orva/_interface.py").read_text()


def test_every_function_of_both_libraries_is_declared():
    for exports in ("src/exports.txt", "kett/exports.txt"):
        names = [line.split()[0] for line in (SOURCE.parent / exports).read_text().splitlines()
                 if line.strip() and not line.startswith(("#", "["))]
        assert len(names) > 40
        for name in names:
            assert getattr(_library.lib, name)


def test_package_and_library_have_the_same_version():
    assert ".".join(map(str, _library.version(_library.lib)[:3])) == orva.__version__
    assert orva.library_version().startswith(f"liborva version {orva.__version__}.0 (built in ")


def test_missing_library():
    run = python("import orva", ORVA_LIBRARY="/nowhere/liborva.so.3")
    assert last_line(run).startswith("ImportError: orva needs liborva 3.7 or a later 3: cannot load library "
                                     "'/nowhere/liborva.so.3': ")


@pytest.mark.parametrize("number, told", [((3, 6), "3.6.1.0"), ((2, 9), "2.9.1.0"), ((4, 0), "4.0.1.0")])
def test_other_versions_are_refused(tmp_path, number, told):
    path = library(tmp_path, version(*number))
    run = python("import orva", ORVA_LIBRARY=str(path))
    assert last_line(run) == f"ImportError: orva needs liborva 3.7 or a later 3: {path} is {told}"


def test_what_is_no_liborva_is_refused(tmp_path):
    path = library(tmp_path, "int nothing;")
    run = python("import orva", ORVA_LIBRARY=str(path))
    assert last_line(run) == f"ImportError: orva needs liborva 3.7 or a later 3: {path} is another library"


def test_a_library_beside_the_package_goes_first(tmp_path):
    """And finds its foundation there, which the loader would not."""
    for file in PACKAGE.glob("*.py"):
        (tmp_path / "orva").mkdir(exist_ok=True)
        (tmp_path / "orva" / file.name).write_text(file.read_text())
    library(tmp_path, "int foundation(void) { return 6; }", "libkett.so.1")
    (tmp_path / "orva/libkett.so.1").write_bytes((tmp_path / "libkett.so.1").read_bytes())
    text = f"int foundation(void); {version(3, 0).replace('*b = 0', '*b = foundation()')}"
    (tmp_path / "library.c").write_text(text)
    subprocess.run(["cc", "-shared", "-fPIC", "-Wl,-soname,liborva.so.3", "-o", tmp_path / "orva/liborva.so.3",
                    tmp_path / "library.c", tmp_path / "libkett.so.1"], check=True)
    run = python("import orva", PYTHONPATH=str(tmp_path))
    beside = tmp_path / "orva/liborva.so.3"
    assert last_line(run) == f"ImportError: orva needs liborva 3.7 or a later 3: {beside} is 3.6.1.0"


def test_loading_takes_no_parser_of_c():
    run = python("import orva, sys; print('pycparser' in sys.modules, 'soundfile' in sys.modules)")
    assert run.stdout == "False False\n"


def test_messages_outside_of_a_creation_go_to_stderr():
    run = python("import orva\nfrom orva._library import ffi, lib\n"
                 "lib.KTDEBUG_Warning(-1, b'hear %s', ffi.new('char[]', b'me'))\n"
                 "try:\n    orva.Filter('order=2; type=comb; fpass=0.1')\nexcept ValueError: pass")
    assert (run.returncode, run.stdout, run.stderr) == (0, "", "hear me\n")


def test_messages_go_to_the_thread_that_asks():
    import threading
    heard = []

    def ask(word):
        for _ in range(200):
            try:
                orva.Filter(f"order=2; fpass=0.1; type={word}")
            except ValueError as error:
                heard.append(str(error) == f"ORVA_CreateFilter: Invalid filter type: {word}")

    threads = [threading.Thread(target=ask, args=(word,)) for word in ("one", "two", "three")]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(heard) == 600 and all(heard)


def test_handles_outlive_the_interpreter_in_good_order():
    run = python("import orva, builtins\n"
                 "builtins.kept = [orva.Filter('order=2; fpass=0.1'), orva.Fft(8), orva.Stretcher(8000)]")
    assert (run.returncode, run.stderr) == (0, "")


@pytest.mark.parametrize("call", [
    "orva.window('Hanning', 2**30)", "orva.Fft(2**28)", "orva.Lapped(2**28)", "orva.Stretcher(2**30, frame_ms=1)",
    "orva.correlate(x, x)", "orva.coefficient(x, x)", "orva.find_delay(x, x)", "orva.irfft(x[:2], 2**28)"])
def test_where_there_is_no_memory_the_error_says_so(call):
    run = python("import orva, numpy, resource\nx = numpy.zeros(2**24, numpy.float32)\n"
                 "room = int(open('/proc/self/statm').read().split()[0]) * resource.getpagesize() + 2**28\n"
                 "resource.setrlimit(resource.RLIMIT_AS, (room, resource.RLIM_INFINITY))\n"
                 f"try:\n    {call}\nexcept MemoryError as error:\n    print(bool(str(error)), len(orva.window('Hanning', 3)))")
    assert (run.returncode, run.stdout) == (0, "True 3\n"), run.stderr


def test_a_child_of_fork_works_on():
    run = python("""
import os, numpy, orva
filter, x = orva.Filter('order=2; fpass=0.1'), numpy.ones(100)
filter(x)
child = os.fork()
y = filter(x)
if child == 0:
    try:
        orva.Filter('order=2; type=comb; fpass=0.1')
    except ValueError as error:
        os._exit(0 if 'comb' in str(error) and numpy.isfinite(y).all() and len(orva.rfft(x)) == 51 else 2)
    os._exit(3)
print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
""")
    assert (run.stdout, run.stderr) == ("0\n", "")
