#!/usr/bin/env python3
"""Holds comments to what they promise.

- A comment ends within 100 columns: clang-format leaves them as they stand.
- Where a comment of src/ says "documented", it names the page of docs/ that says it.
- Pages of docs/ that comments name are there, and so are the sources that documents name in
  backticks, but for those of the made-up reader "foo" and command "count", and PAGE.

- What a list of the code offers to examiners stands in the page of the guide (LISTED).

usage: tools/check_comments.py
"""

import posixpath
import re
import sys

from common import project_files, read

LONGEST = 100
COMMENT = re.compile(r"(?:^[ \t]*//[^\n]*\n)+|//[^\n]*|/\*.*?\*/", re.MULTILINE | re.DOTALL)
PAGE = re.compile(r"\bdocs/[\w/-]+\.md")
CODE_BLOCK = re.compile(r"^(```|~~~).*?^\1", re.MULTILINE | re.DOTALL)
NAMED = re.compile(r"`([\w./-]+\.(?:h|cpp|py)|(?:src|tests|tools|scripts|docs)/[\w./-]+)`")
MADE_UP = re.compile(r"foo[-_A-Z/]|Foo[A-Z]|CountCommand|count_cli|/PAGE\b")

# (where the list stands, its keys, the page that tells what each is).
LISTED = [("src/views/rows/UrlColumns.cpp", re.compile(r'"(COL_URL_\w+)"'), "docs/guide/table.md"),
          ("src/views/rows/FieldNames.cpp", re.compile(r'\{C::\w+, "(\w+)"\}'), "docs/guide/table.md")]


def list_faults(names):
    for source, key, page in LISTED:
        if source not in names:
            yield f"tools/check_comments.py: {source} is not there: name the file that has the list"
            continue
        told = read(page)
        for match in key.finditer(text := read(source)):
            if f"`{match.group(1)}`" not in told:
                line = text.count("\n", 0, match.start()) + 1
                yield f"{source}:{line}: {page} doesn't tell what {match.group(1)} is"


def code_faults(path, text, names):
    for number, line in enumerate(text.split("\n"), 1):
        if len(line) > LONGEST and re.match(r"\s*//", line):
            yield number, f"a comment of more than {LONGEST} columns"
    for match in COMMENT.finditer(text):
        number, comment = text.count("\n", 0, match.start()) + 1, match.group(0)
        pages = PAGE.findall(comment)
        if path.startswith("src/") and "documented" in comment and not pages:
            yield number, "\"documented\": name the page of docs/, or say why"
        for page in pages:
            if page not in names and not MADE_UP.search(page):
                yield number, f"{page} is not there"


def page_faults(text, names):
    bare = CODE_BLOCK.sub(lambda block: "\n" * block.group(0).count("\n"), text)
    for match in NAMED.finditer(bare):
        name = match.group(1).rstrip("/")
        stems = {name, posixpath.splitext(name)[0]}
        if MADE_UP.search(name) or any(each in names or f"src/{each}" in names for each in stems):
            continue
        if not any(each.endswith(f"/{name}") for each in names):
            yield bare.count("\n", 0, match.start()) + 1, f"`{match.group(1)}` is not there"


def main():
    files = project_files()
    names = set(files) | {posixpath.splitext(name)[0] for name in files}
    for name in files:
        while name := posixpath.dirname(name):
            names.add(name)
    faults = list(list_faults(names))
    for path in files:
        if path.startswith(("src/", "tests/")) and path.endswith((".h", ".cpp")):
            found = code_faults(path, read(path), names)
        elif path.endswith(".md") and not path.startswith("tests/golden/"):
            found = page_faults(read(path), names)
        else:
            continue
        faults += [f"{path}:{line}: {text}" for line, text in found]
    print("\n".join(faults + [f"comments: {len(faults)} faults"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
