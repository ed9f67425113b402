#!/usr/bin/env python3
"""Runs clang-tidy on what has changed, warnings as errors.

usage: tools/check_tidy.py [--build FOLDER] [--base REVISION] [--all] [FILE...]
  --base    files that differ from that revision; without it, from origin/main where HEAD has gone
            on from there, otherwise all sources of src/
  --all     all sources of src/ and tests/
Stops after NV_TIDY_MINUTES minutes when that is set, newest files first, and says what is left.
"""

import argparse
import os
import subprocess
import sys
import time

from common import ROOT, Memory, Sources, compile_commands, git, in_parallel, project_files, read

SOURCES = (".cpp",)


def revision(name):
    done = subprocess.run(["git", "-C", str(ROOT), "rev-parse", "--verify", "--quiet", name],
                          capture_output=True, text=True, check=False)
    return done.stdout.strip() or None


def base_of(wanted):
    """The revision to compare with, or nothing when none tells what has changed."""
    if wanted:
        return revision(wanted) or sys.exit(f"there is no revision {wanted}")
    main = revision("origin/main")
    if not main or main == revision("HEAD"):
        return None
    return git("merge-base", main, "HEAD").strip() or None


def changed(base, commands, sources):
    """Sources that differ from `base`, and those that speak for a header that does."""
    differing = set(git("diff", "--name-only", "--diff-filter=d", base).split())
    differing |= set(git("ls-files", "--others", "--exclude-standard").split())
    found = {name for name in differing if name in commands}
    for header in (name for name in differing if name.endswith(".h")):
        own = header.removesuffix(".h") + ".cpp"
        users = [own] if own in commands else \
            [name for name in sorted(commands) if header in sources.closure(name)][:1]
        found.update(users)
    return found


def newest_first(names):
    order, seen = {}, git("log", "--name-only", "--format=", "-n", "300").split()
    for name in seen:
        order.setdefault(name, len(order))
    return sorted(names, key=lambda name: (order.get(name, -1), name))


def tidy(file, build, deadline):
    """clang-tidy's findings, an empty text, or nothing when there was no time left."""
    if time.monotonic() > deadline:
        return None
    done = subprocess.run(["clang-tidy", "-p", build, "--quiet", "--warnings-as-errors=*", file],
                          capture_output=True, text=True, cwd=ROOT, check=False)
    return "" if done.returncode == 0 else (done.stdout.strip() or done.stderr.strip())


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", default="build/tidy")
    parser.add_argument("--base")
    parser.add_argument("--all", action="store_true")
    parser.add_argument("files", nargs="*")
    options = parser.parse_args()

    commands = compile_commands(options.build)
    sources, memory = Sources(), Memory("tidy")
    if options.files:
        files = set(options.files)
    elif options.all:
        files = set(project_files("src", "tests", endings=SOURCES)) & set(commands)
    elif base := base_of(options.base):
        files = changed(base, commands, sources)
    else:
        files = set(project_files("src", endings=SOURCES)) & set(commands)

    version = subprocess.run(["clang-tidy", "--version"], capture_output=True, text=True,
                             check=True).stdout
    rules = read(".clang-tidy") + read("tests/.clang-tidy")
    keys = {file: sources.key(file, version, rules, *(flag.replace(str(ROOT), "")
                                                      for flag in commands.get(file, [])))
            for file in files}
    todo = [file for file in newest_first(files) if keys[file] not in memory]

    minutes = float(os.environ.get("NV_TIDY_MINUTES") or "inf")
    deadline = time.monotonic() + 60 * minutes

    def work(file):
        found = tidy(file, options.build, deadline)
        if found == "":
            memory.add(keys[file])
        elif found:
            print(f"{file}:\n{found}", flush=True)  # a run that is cut short has told it
        return found

    results = in_parallel(work, todo)
    left = results.count(None)
    bad = sum(1 for found in results if found)
    print(f"tidy: {len(files)} files, {len(todo) - left} looked at, {bad} with faults")
    if left:
        print(f"tidy: the time is over, {left} files were not reached")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
