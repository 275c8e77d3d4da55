"""The programs of the documents run, and write what the documents say.

Python blocks of a document are one program, with the recorded voice beside it as voice.wav, and a block of TOML as speech.toml.
A text block after one is what it writes, in which "..." stands for any text within a line.
"""
import contextlib
import io
import re
import shutil
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
RECORDING = Path("/usr/share/sounds/alsa/Front_Center.wav")       # of Debian's alsa-utils
BLOCK = re.compile(r"^```(\w+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
DOCUMENTS = [path for path in (*ROOT.glob("*.md"), *ROOT.glob("docs/*.md"), ROOT / "python/README.md")
             if "\n```python\n" in path.read_text()]


def run(document):
    """Code, what it wrote, and what the document says that it writes, of each Python block."""
    names, blocks = {"__name__": "__main__"}, BLOCK.findall(document.read_text())
    for (language, code), (following, text) in zip(blocks, [*blocks[1:], ("", "")]):
        if language == "toml":
            Path("speech.toml").write_text(code)
        if language == "python":
            said = io.StringIO()
            with contextlib.redirect_stdout(said):
                exec(compile(code, str(document), "exec"), names)
            yield code, said.getvalue(), text if following == "text" else ""


def test_there_are_documents():
    assert {path.name for path in DOCUMENTS} >= {"corpus.md", "python.md", "scipy.md", "README.md"}


@pytest.mark.parametrize("document", [path for path in DOCUMENTS if path.name != "scipy.md"],
                         ids=lambda path: str(path.relative_to(ROOT)))
def test_programs_write_what_the_document_says(document):
    shutil.copy(RECORDING, "voice.wav")
    for code, said, expected in run(document):
        pattern = ".*".join(map(re.escape, expected.split("...")))
        assert re.fullmatch(pattern, said), f"{code}\nwrote\n{said}"


def test_scipy_and_orva_are_as_far_apart_as_the_table_says():
    """Within twice the stated difference, which rounds to one digit and passes through FFTW."""
    document = ROOT / "docs/scipy.md"
    stated = re.findall(r"^\| ([\w ]+) \| (\de-\d\d) \| ", document.read_text(), re.MULTILINE)
    titles = re.findall(r"^## (.*)$", document.read_text(), re.MULTILINE)
    found = [said for _, said, _ in run(document)][1:]
    assert [title for title, _ in stated] == titles and len(found) == len(titles) > 5
    for (title, most), said in zip(stated, found):
        assert float(said) <= 2 * float(most), title
