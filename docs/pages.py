#!/usr/bin/python3
"""Links and anchors of the documents, which are read as plain files and as pages of the reference.

    docs/pages.py check         tells every link, anchor and image in the documents that leads nowhere
    docs/pages.py filter FILE   writes the document FILE as Doxygen takes it
    docs/pages.py files         lists the files of the project that the pages of docs/ link to, apart from headers
    docs/pages.py html FOLDER   tells every link and image in the pages of FOLDER that leads nowhere

Anchors are those that a reader of the plain files has: the heading in lower case, with hyphens for blanks and
without punctuation.
"""
import os
import re
import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote

ROOT = Path(__file__).resolve().parent.parent
DOCUMENTS = sorted(p for p in [*ROOT.glob("*.md"), *ROOT.glob("docs/*.md")])
LINK = re.compile(r"(!?)\[((?:[^\[\]]|\[[^\]]*\])*)\]\(([^()\s]*)\)")
ELSEWHERE = re.compile(r"[a-z]+:")


def lines(path):
    """Number, text and kind of each line: is it text, or does it stand in a code block?"""
    fenced = False
    for number, line in enumerate(path.read_text().splitlines(), 1):
        fence = line.startswith("```")
        yield number, line, not fenced and not fence
        fenced ^= fence


def heading(line):
    match = re.match(r"#+ +(.*)", line)
    return match and match[1].strip()


def anchors(path):
    found = {}
    for _, line, is_text in lines(path):
        if is_text and heading(line):
            anchor = re.sub(r"[^\w\- ]", "", heading(line).lower()).replace(" ", "-")
            count = found.get(anchor, 0)
            found[anchor] = count + 1
            yield f"{anchor}-{count}" if count else anchor


def links(path):
    """Line, mark ('!' for an image) and target of each link."""
    for number, line, is_text in lines(path):
        if is_text:
            for match in LINK.finditer(re.sub(r"`[^`]*`", "``", line)):
                yield number, match[1], match[3]


def fault(path, mark, target):
    """What is wrong with a link, or None."""
    if ELSEWHERE.match(target):
        return None
    place, anchor = destination(path, target)
    if not place.is_relative_to(ROOT):
        return "leads out of the project"
    if not place.exists():
        return "no such file"
    if place.is_dir() and path.parent != ROOT:
        return "a folder is no page"
    if mark and place.suffix != ".png":
        return "no image"
    if anchor and (place.suffix != ".md" or anchor not in anchors(place)):
        return "no such heading"
    return None


def check():
    good = True
    for path in DOCUMENTS:
        for number, mark, target in links(path):
            what = fault(path, mark, target)
            if what:
                print(f"{path.relative_to(ROOT)}:{number}: {target}: {what}", file=sys.stderr)
                good = False
        for number, line, is_text in lines(path):
            if is_text and re.match(r"\[[^\]]+\]:|.*<(a|img)\b", line):
                print(f"{path.relative_to(ROOT)}:{number}: write links as [text](target)", file=sys.stderr)
                good = False
    return good


def label(path, anchor):
    """The name of a heading in the reference; the first one's is the page's."""
    page = "front" if path.name == "README.md" else path.stem
    return page if anchor in ("", next(anchors(path))) else f"{page}-{anchor}"


def destination(path, target):
    """The file that a link leads to, and its anchor."""
    file, _, anchor = target.partition("#")
    return Path(os.path.normpath(path.parent / file)) if file else path, anchor


def is_page(place):
    return place.suffix == ".md" and place.parent == ROOT / "docs"


def filtered(path):
    def replaced(match):
        mark, text, target = match.groups()
        place, anchor = destination(path, target)
        if mark or ELSEWHERE.match(target):
            return match[0]
        if is_page(place):
            return f"[{text}](@ref {label(place, anchor)})"
        if place.suffix == ".h" and "include" in place.parts:
            return f"[{text}](@ref {place.name})"
        return f'<a href="sources/{place.relative_to(ROOT)}">{text}</a>'

    names = anchors(path)
    for _, line, is_text in lines(path):
        if is_text and heading(line):
            line += f" {{#{label(path, next(names))}}}"
        print(LINK.sub(replaced, line) if is_text else line)
    return True


def files():
    for path in DOCUMENTS:
        for _, mark, target in links(path) if path.parent != ROOT else ():
            place, _ = destination(path, target)
            if not ELSEWHERE.match(target) and not mark and not is_page(place) and place.suffix != ".h":
                print(place.relative_to(ROOT))
    return True


class Page(HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.names, self.targets = set(), []
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        for key, value in attributes:
            if key in ("id", "name"):
                self.names.add(value)
            if key in ("href", "src") and tag != "link":
                self.targets.append(unquote(value))


def html(folder):
    good = True
    pages = {path.name: Page(path) for path in Path(folder).glob("*.html")}
    for name, page in sorted(pages.items()):
        for target in page.targets:
            file, _, anchor = target.partition("#")
            if ELSEWHERE.match(target) or anchor == "define-members":    # Doxygen 1.9 names that one otherwise
                continue
            if not (Path(folder) / (file or name)).is_file():
                print(f"{name}: {target}: no such file", file=sys.stderr)
                good = False
            elif anchor and anchor not in pages[file or name].names:
                print(f"{name}: {target}: no such place", file=sys.stderr)
                good = False
    return good


if __name__ == "__main__":
    command, *arguments = sys.argv[1:] or [""]
    if command == "filter":
        good = filtered(Path(arguments[0]).resolve())
    else:
        good = {"check": check, "files": files, "html": html}[command](*arguments)
    sys.exit(0 if good else 1)
