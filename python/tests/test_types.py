"""Types and docstrings are complete."""
import inspect
import os
import re
import subprocess
import sys
from pathlib import Path

import pytest

import orva
from orva import corpus

FOLDER = Path(orva.__file__).parent
SOURCE = Path(__file__).resolve().parents[1]


def public():
    """Every public function, class and method, with its name."""
    for module, name in [(module, name) for module in (orva, corpus) for name in sorted(module.__all__)]:
        value = getattr(module, name)
        if inspect.isfunction(value) or inspect.isclass(value):
            yield name, value
        if inspect.isclass(value) and not issubclass(value, tuple):
            for key, method in vars(value).items():
                if not key.startswith("_") or key == "__call__":
                    yield f"{name}.{key}", method


EVERY = dict(public())
FUNCTIONS = {name: value for name, value in EVERY.items()
             if inspect.isfunction(value) and not name.endswith((".close", ".reset", ".flush", ".copy"))}


def test_mypy_is_content_with_the_package(tmp_path):
    run = subprocess.run([sys.executable, "-m", "mypy", "--config-file", SOURCE / "pyproject.toml",
                          "--cache-dir", tmp_path], cwd=SOURCE, capture_output=True, text=True)
    assert run.returncode == 0, run.stdout + run.stderr


def test_mypy_knows_the_types_of_a_caller(tmp_path):
    program = tmp_path / "program.py"
    program.write_text("import numpy as np\nimport orva\n\n"
                       "f: orva.Filter = orva.Filter('order=2; fpass=0.1').copy()\n"
                       "y: np.ndarray[object, np.dtype[np.float32]] = f([1.0, 2.0])\n"
                       "value, lag = orva.coefficient(y, y)\nreveal_type(lag)\norva.resample(y, '8000', 16000)\n")
    run = subprocess.run([sys.executable, "-m", "mypy", "--strict", "--cache-dir", tmp_path, program], cwd=tmp_path,
                         capture_output=True, text=True, env={**os.environ, "MYPYPATH": str(FOLDER.parent), "PYTHONPATH": ""})
    told = [line for line in run.stdout.splitlines() if line.startswith(("program.py", str(program)))]
    assert len(told) == 2, run.stdout
    assert 'Revealed type is "builtins.int"' in told[0] and 'Argument 2 to "resample"' in told[1]


def test_the_package_says_that_it_has_types():
    assert (FOLDER / "py.typed").read_text() == ""


def test_the_tour_names_everything():
    for name in orva.__all__:
        if name not in ("__version__", "Likeness", "Spectrogram", "Stream"):
            assert f"`{name}`" in orva.__doc__, name


@pytest.mark.parametrize("name", EVERY)
def test_everything_has_a_docstring(name):
    value = EVERY[name]
    assert inspect.getdoc(value.fget if isinstance(value, property) else value), name


@pytest.mark.parametrize("name", FUNCTIONS)
def test_functions_tell_parameters_results_and_refusals(name):
    value = FUNCTIONS[name]
    text, parameters = inspect.getdoc(value), [p for p in inspect.signature(value).parameters if p != "self"]
    if name == "Lapped.process":                              # one line that names the two calls that it makes
        return
    sections = re.findall(r"^(\w+)\n-+$", text, re.MULTILINE)
    if parameters:
        told = text[text.index("Parameters\n"):].split("\n\n")[0]
        named = [word for line in re.findall(r"^([\w, ]+) : ", told, re.MULTILINE) for word in line.split(", ")]
        assert named == parameters
    result = inspect.signature(value).return_annotation
    assert {"Returns", "Yields"} & set(sections) or result in (None, "None")
    order = ["Parameters", "Returns", "Yields", "Raises", "Notes", "Examples"]
    assert sections == sorted(sections, key=order.index)


@pytest.mark.parametrize("name", [name for name in FUNCTIONS if name not in ("Lapped.process", "Recipe.text")] +
                         ["Fft", "Filter", "Lapped", "NoiseSuppressor", "Resampler", "Spline", "Stream", "Stretcher"])
def test_functions_methods_and_classes_have_an_example(name):
    assert ">>> " in inspect.getdoc(EVERY[name])


@pytest.mark.parametrize("name", ["Fft", "Filter", "Lapped", "NoiseSuppressor", "Resampler", "Spline", "Stretcher"])
def test_classes_tell_how_they_are_made(name):
    value = getattr(orva, name)
    told = inspect.getdoc(value)
    named = [word for line in re.findall(r"^([\w, ]+) : ", told, re.MULTILINE) for word in line.split(", ")]
    assert named == list(inspect.signature(value).parameters)


def test_help_is_a_tour():
    run = subprocess.run([sys.executable, "-c", "import orva; help(orva)"], capture_output=True, text=True,
                         env={**os.environ, "PYTHONPATH": str(FOLDER.parent)})
    assert run.returncode == 0 and "A tour" in run.stdout and "orva.Filter(" in run.stdout
