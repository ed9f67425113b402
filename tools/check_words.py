#!/usr/bin/env python3
"""Looks for the patterns of tools/words.txt in files, file names and commit messages.

usage: tools/check_words.py [--base REVISION]
  --base   reads only the messages of commits after that revision; without it, of all
"""

import argparse
import re
import sys

from common import ROOT, git, project_files

LIST = "tools/words.txt"


def patterns():
    everywhere, names = [], []
    for line in (ROOT / LIST).read_text().splitlines():
        if line.startswith("name:"):
            names.append(line.removeprefix("name:"))
        elif line and not line.startswith("#"):
            everywhere.append(line)
    return (re.compile("|".join(everywhere), re.IGNORECASE),
            re.compile("|".join(everywhere + names), re.IGNORECASE))


def faults(base):
    everywhere, names = patterns()
    for file in project_files():
        if names.search(file):
            yield f"{file}: the file's name"
        data = (ROOT / file).read_bytes()
        if file == LIST or b"\0" in data[:8192]:
            continue
        for number, line in enumerate(data.decode("utf-8", "replace").split("\n"), 1):
            if match := everywhere.search(line):
                yield f"{file}:{number}: \"{match.group(0)}\" in {line.strip()[:120]}"
    commits = git("log", "-z", "--format=%h%n%B", f"{base}..HEAD" if base else "HEAD").split("\0")
    for commit in filter(None, commits):
        if match := everywhere.search(commit):
            yield f"commit {commit.split()[0]}: \"{match.group(0)}\" in its message"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--base")
    count = 0
    for fault in faults(parser.parse_args().base):
        print(fault)
        count += 1
    print(f"words: {count} faults")
    return 1 if count else 0


if __name__ == "__main__":
    sys.exit(main())
