#!/usr/bin/env python3
"""Does what docs/adding-a-reader.md says, in a scratch tree: test_guide is built from it.

Each fenced block of the guide that names a file becomes that file below OUT. Blocks for files that
the project has are put into a copy: an include and a line of the table in Registry.cpp, a row at the
end of the table in a document. What the cases and pages of other formats are is linked.

usage: guide_files.py GUIDE PROJECT OUT
"""

import pathlib
import re
import shutil
import sys

BLOCK = re.compile(r"^```(\w+) (\S+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
TABLES = {"README.md": "| Browser and versions |", "docs/guide/artefacts.md": "| Key |"}


def with_format(registry, lines):
    """The table of formats with the include and the line of another one."""
    include, row = lines
    last = registry.rindex('#include "readers/')
    end = registry.index("\n", last) + 1
    registry = registry[:end] + include + "\n" + registry[end:]
    head = "constexpr std::array kFormats = {\n"
    if head not in registry:
        sys.exit("Registry.cpp: no table kFormats")
    return registry.replace(head, head + row + "\n")


def with_row(page, head, row):
    """The page with a row at the end of the table that begins so."""
    lines = page.split("\n")
    at = next(n for n, line in enumerate(lines) if line.startswith(head))
    while lines[at].startswith("|"):
        at += 1
    return "\n".join(lines[:at] + [row] + lines[at:])


def content_of(kind, name, text, project):
    if kind == "hex":
        return bytes.fromhex(text)
    if name.endswith("/Registry.cpp"):
        text = with_format((project / name).read_text(), text.rstrip("\n").split("\n"))
    elif name in TABLES:
        text = with_row((project / name).read_text(), TABLES[name], text.rstrip("\n"))
    return text.encode()


def link_others(folder, project, out):
    """Everything else that the project has in a folder."""
    (out / folder).mkdir(parents=True, exist_ok=True)
    for path in (project / folder).iterdir():
        if not (out / folder / path.name).exists():
            (out / folder / path.name).symlink_to(path)


def main():
    guide, project, out = map(pathlib.Path, sys.argv[1:])
    shutil.rmtree(out, ignore_errors=True)
    for kind, name, text in BLOCK.findall(guide.read_text()):
        (out / name).parent.mkdir(parents=True, exist_ok=True)
        (out / name).write_bytes(content_of(kind, name, text, project))
    link_others("tests/golden", project, out)
    link_others("docs/formats", project, out)


main()
