#!/usr/bin/env python3
"""Finds types of one name in two places: no compiler and no linker tells of them, and the program
runs the members of whichever came first. Types of anonymous namespaces are each file's own.

usage: tools/check_names.py
"""

import re
import sys
from collections import defaultdict

from common import project_files, read, without_comments

OPENING = re.compile(r"(?:inline )?namespace\s*([\w:]*)\s*\{")
CLOSING = re.compile(r"\} // namespace\b")
TYPE = re.compile(r"(?:class|struct|union|enum(?: class)?)\s+(?:\[\[\w+\]\]\s*)?(\w+)(?!\w|::)[^;]*$")


def types_in(text):
    """(line, name with its namespaces) of each type that other files could meet."""
    spaces = []
    lines = zip(text.splitlines(), without_comments(text).splitlines())
    for number, (written, line) in enumerate(lines, 1):
        if opened := OPENING.match(line):
            spaces.append(opened.group(1))
        elif CLOSING.match(written) and spaces:
            spaces.pop()
        elif (found := TYPE.match(line)) and "" not in spaces:
            yield number, "::".join([*spaces, found.group(1)])


def main():
    places = defaultdict(list)
    for name in project_files("src", endings=(".h", ".cpp")):
        for line, type_name in types_in(read(name)):
            places[type_name].append(f"{name}:{line}")
    twice = {name: where for name, where in places.items() if len(where) > 1}
    for name, where in sorted(twice.items()):
        print(f"{name} is defined in {' and in '.join(where)}")
    print(f"names: {len(places)} types, {len(twice)} in more than one place")
    return 1 if twice else 0


if __name__ == "__main__":
    sys.exit(main())
