"""Examples in docstrings know NumPy and the package, and write into a folder of their own."""
import hypothesis
import numpy
import pytest

import orva

hypothesis.settings.register_profile("orva", database=None, deadline=None, print_blob=True)
hypothesis.settings.load_profile("orva")


@pytest.fixture(autouse=True)
def _place(doctest_namespace, tmp_path, monkeypatch):
    doctest_namespace.update(np=numpy, orva=orva)
    monkeypatch.chdir(tmp_path)
