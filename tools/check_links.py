#!/usr/bin/env python3
"""Finds links and pictures in Markdown files that lead nowhere.

A file must be there under exactly that name, in upper and lower case too, as some file systems
don't tell them apart. A part after "#" must be a heading of that page. Addresses of other hosts
are not looked at: a check that needs a network fails on a bad day.

usage: tools/check_links.py [FILE...]
"""

import posixpath
import re
import sys
from urllib.parse import unquote

from common import project_files, read

CODE_BLOCK = re.compile(r"^(```|~~~).*?^\1", re.MULTILINE | re.DOTALL)
CODE = re.compile(r"(`+)(?!`).+?(?<!`)\1(?!`)", re.DOTALL)
LINK = re.compile(r"!?\[(?:[^\[\]]|\[[^\]]*\])*\]\(\s*<?([^)\s>]+)>?(?:\s+\"[^\"]*\")?\s*\)")
REFERENCE = re.compile(r"^ {0,3}\[[^\]]+\]:\s*<?(\S+?)>?\s*$", re.MULTILINE)
HTML = re.compile(r"<(?:img|a|source)\b[^>]*?\b(?:src|href|srcset)=\"([^\"]+)\"")
HEADING = re.compile(r"^#{1,6}\s+(.*?)\s*#*$", re.MULTILINE)
ELSEWHERE = re.compile(r"[a-zA-Z][a-zA-Z0-9+.-]*:|//")


def blanked(pattern, text):
    """Lines keep their numbers."""
    return pattern.sub(lambda match: re.sub(r"[^\n]", " ", match.group(0)), text)


def prose(text):
    return blanked(CODE, blanked(CODE_BLOCK, text))


def anchors(text):
    """The names that headings get: lower case, without signs, blanks as hyphens."""
    found, times = set(), {}
    for match in HEADING.finditer(blanked(CODE_BLOCK, text)):
        words = re.sub(r"!?\[([^\]]*)\]\([^)]*\)", r"\1", match.group(1)).lower()
        name = re.sub(r"[^\w\- ]", "", words).replace(" ", "-")
        count = times.get(name, 0)
        times[name] = count + 1
        found.add(f"{name}-{count}" if count else name)
    return found


def targets(text):
    """(line, target) of each link, picture and reference outside of code."""
    bare = prose(text)
    for pattern in (LINK, REFERENCE, HTML):
        for match in pattern.finditer(bare):
            yield bare.count("\n", 0, match.start()) + 1, match.group(1)


def complaint(page, target, names):
    if ELSEWHERE.match(target):
        return None
    path, _, anchor = unquote(target).partition("#")
    file = posixpath.normpath(posixpath.join(posixpath.dirname(page), path)) if path else page
    if file not in names:
        same = [name for name in names if name.lower() == file.lower()]
        return f"\"{target}\" is written \"{same[0]}\"" if same else f"\"{target}\" is not there"
    if anchor and file.endswith(".md") and anchor not in anchors(read(file)):
        return f"\"{target}\": the page has no such heading"
    return None


def main():
    files = project_files()
    folders = {posixpath.dirname(name) for name in files}
    for folder in list(folders):
        while folder := posixpath.dirname(folder):
            folders.add(folder)
    names = set(files) | folders | {"."}
    pages = sys.argv[1:] or [name for name in files if name.endswith(".md")]
    found = [f"{page}:{line}: {text}" for page in pages for line, target in targets(read(page))
             if (text := complaint(page, target, names))]
    print("\n".join(found) if found else f"links of {len(pages)} pages lead somewhere")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
