#!/usr/bin/env python3
"""Runs fuzz targets, a minute each, two at a time: those first that read what has changed.

usage: tools/fuzz_turns.py [--build FOLDER] [--base REVISION] [--minutes N] [--seconds S]
                           [--runs N] [NAME...]
  --base     the revision that tells what has changed; without it, what the last commits touched
  --minutes  stops when that time is over (5); which of the unchanged ones have their turn follows
             from the number of commits, so that every one of them has it
  --runs     so many inputs for each of all targets, the same ones in every run: a find of chance
             keeps no unrelated change out
  NAME       only these, such as "ie_index"
Inputs that reached new code are kept in $NV_CHECK_CACHE/fuzz, or in build/check/fuzz. What made a
target fail is left in build/fuzz-finds and named.
"""

import argparse
import os
import shutil
import subprocess
import sys
import time
from pathlib import Path

from common import JOBS, ROOT, Sources, git, in_parallel, project_files

FINDS = ROOT / "build" / "fuzz-finds"
RECENT_COMMITS = 5


def targets():
    return {Path(name).stem.removesuffix("_fuzz"): name
            for name in project_files("tests/fuzz", endings=("_fuzz.cpp",))}


def changed_files(base):
    if not base:
        known = int(git("rev-list", "--count", "HEAD"))
        base = f"HEAD~{min(RECENT_COMMITS, known - 1)}"
    return set(git("diff", "--name-only", "--diff-filter=d", base).split())


def is_touched(source, sources, changed):
    """A header speaks for the source of its name: that is what the target links."""
    read = set(sources.closure(source))
    read |= {name.removesuffix(".h") + ".cpp" for name in read}
    return bool(read & changed)


def in_turn(names, base):
    sources, changed = Sources(), changed_files(base)
    first = [name for name in sorted(names) if is_touched(names[name], sources, changed)]
    rest = [name for name in sorted(names) if name not in first]
    turn = int(git("rev-list", "--count", "HEAD")) % max(1, len(rest))
    return first + rest[turn:] + rest[:turn]


def seeds(name):
    """The inputs of the golden cases of that format, where there are some."""
    cases = ROOT / "tests" / "golden" / name.replace("_", "-")
    return [path for path in sorted(cases.glob("*/input*")) if path.is_file()] + \
        [path for path in sorted(cases.glob("*/input/**/*")) if path.is_file()]


def corpus_of(name, same):
    if same:
        folder = ROOT / "build" / "check" / "fuzz-same" / name
        shutil.rmtree(folder, ignore_errors=True)
    else:
        folder = Path(os.environ.get("NV_CHECK_CACHE") or ROOT / "build" / "check") / "fuzz" / name
    folder.mkdir(parents=True, exist_ok=True)
    for number, seed in enumerate(seeds(name)):
        if not (folder / f"golden-{number}").exists():
            shutil.copyfile(seed, folder / f"golden-{number}")
    return folder


def run(name, build, seconds, runs=0):
    """Whether the target found nothing."""
    FINDS.mkdir(parents=True, exist_ok=True)
    corpus = corpus_of(name, runs > 0)
    length = [f"-runs={runs}", "-seed=1"] if runs else [f"-max_total_time={seconds}"]
    done = subprocess.run(
        [str(ROOT / build / f"fuzz_{name}"), *length, "-timeout=10",
         "-rss_limit_mb=2048", "-print_final_stats=1", f"-artifact_prefix={FINDS}/{name}-",
         str(corpus)],
        capture_output=True, text=True, errors="replace", check=False,
        env={**os.environ, "ASAN_OPTIONS": "detect_leaks=0"})
    units = [line.split()[-1] for line in done.stderr.splitlines()
            if line.startswith("stat::number_of_executed_units")]
    if done.returncode == 0:
        print(f"   {name}: {units[0] if units else '?'} inputs", flush=True)
        return True
    print(f"   {name}: FAILED\n{done.stderr[-4000:]}", flush=True)
    return False


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", default="build/asan")
    parser.add_argument("--base")
    parser.add_argument("--minutes", type=float, default=5)
    parser.add_argument("--seconds", type=int, default=60)
    parser.add_argument("--runs", type=int, default=0)
    parser.add_argument("names", nargs="*")
    options = parser.parse_args()

    known = targets()
    unknown = [name for name in options.names if name not in known]
    if unknown:
        sys.exit(f"there is no fuzz target {', '.join(unknown)}; there are {', '.join(known)}")
    order = options.names or in_turn(known, options.base)
    deadline = time.monotonic() + options.minutes * 60

    def turn(name):
        if options.runs:
            return run(name, options.build, options.seconds, options.runs)
        if time.monotonic() + options.seconds > deadline and not options.names:
            return None
        return run(name, options.build, options.seconds)

    results = in_parallel(turn, order)
    ran = [result for result in results if result is not None]
    print(f"fuzz: {len(ran)} of {len(known)} targets had their turn, "
          f"{ran.count(False)} failed, {JOBS} at a time")
    return 1 if False in ran else 0


if __name__ == "__main__":
    sys.exit(main())
