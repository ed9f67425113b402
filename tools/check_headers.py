#!/usr/bin/env python3
"""Compiles each header of src/ and tests/support/ alone, with the flags of its own source or one beside it.

usage: tools/check_headers.py [--build FOLDER] [HEADER...]
"""

import argparse
import os
import subprocess
import sys

from common import ROOT, Memory, Sources, compile_commands, in_parallel, project_files

COMPILER = os.environ.get("CXX", "g++")


def likeness(header, source):
    """How much two paths share from the left; of one folder, a header's own source is next."""
    shared = len(os.path.commonpath([header, source])) if header[0] == source[0] else 0
    return shared, os.path.splitext(header)[0] == os.path.splitext(source)[0]


def flags_for(header, commands):
    nearest = max(sorted(commands), key=lambda source: likeness(header, source), default=None)
    return commands[nearest] if nearest else ["-std=c++20", f"-I{ROOT}/src"]


def compile_alone(header, flags):
    """The compiler's complaint, or an empty text. A unit of its own includes the header, so that
    `#pragma once` is at home."""
    unit = f'#include "{ROOT / header}"\n'
    done = subprocess.run([COMPILER, *flags, "-fsyntax-only", "-x", "c++", "-"], input=unit,
                          capture_output=True, text=True, cwd=ROOT, check=False)
    return "" if done.returncode == 0 else done.stderr.strip() or "the compiler failed"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", default="build/dev")
    parser.add_argument("headers", nargs="*")
    options = parser.parse_args()

    commands = compile_commands(options.build)
    version = subprocess.run([COMPILER, "--version"], capture_output=True, text=True,
                             check=True).stdout
    headers = options.headers or project_files("src", "tests/support", endings=(".h",))
    sources, memory = Sources(), Memory("headers")

    todo = []
    for header in headers:
        flags = flags_for(header, commands)
        # The place of the project is no part of the key: a clone elsewhere profits too.
        key = sources.key(header, version, *(flag.replace(str(ROOT), "") for flag in flags))
        if key not in memory:
            todo.append((header, flags, key))

    faults = in_parallel(lambda item: compile_alone(item[0], item[1]), todo)
    for (header, _, key), fault in zip(todo, faults):
        if fault:
            print(f"{header}: doesn't compile alone\n{fault}")
        else:
            memory.add(key)
    bad = sum(1 for fault in faults if fault)
    print(f"headers: {len(headers)} headers, {len(todo)} compiled, {bad} faults")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
