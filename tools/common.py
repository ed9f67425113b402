"""What the check tools share: the files of the project, their text without comments, compile
commands, and a memory of what was found in order before."""

import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
JOBS = 2


def git(*arguments):
    return subprocess.run(["git", "-C", str(ROOT), *arguments], check=True, capture_output=True,
                          text=True, errors="replace").stdout


def project_files(*folders, endings=()):
    """Tracked and not yet ignored files below the folders, as paths relative to the project."""
    names = git("ls-files", "-z", "--cached", "--others", "--exclude-standard", "--", *folders)
    found = sorted({name for name in names.split("\0") if name})
    return [name for name in found
            if (ROOT / name).is_file() and (not endings or name.endswith(tuple(endings)))]


def read(name):
    return (ROOT / name).read_text(encoding="utf-8", errors="replace")


_TOKENS = re.compile(
    r'//[^\n]*|/\*.*?\*/'
    r'|R"(?P<mark>[^()\\\s]{0,16})\(.*?\)(?P=mark)"'
    r'|"(?:\\.|[^"\\\n])*"'
    r"|(?<![0-9a-zA-Z_])(?:u8|[uUL])?'(?:\\.|[^'\\\n])*'", re.DOTALL)


def without_comments(text, keep_strings=False):
    """Comments, and texts too unless they are kept, become blanks; lines stay where they are."""
    def blank(match):
        token = match.group(0)
        if keep_strings and token[0] != "/":
            return token
        return re.sub(r"[^\n]", " ", token)
    return _TOKENS.sub(blank, text)


_INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"\n]+)[>"]', re.MULTILINE)


def includes(text):
    """(line, '<' or '"', name) of each include that is no comment."""
    bare = without_comments(text, keep_strings=True)
    return [(bare.count("\n", 0, match.start()) + 1, match.group(1), match.group(2))
            for match in _INCLUDE.finditer(bare)]


def resolve(include):
    """The project's file behind an include, or nothing for a file of somebody else."""
    for folder in ("src", "tests"):
        if (ROOT / folder / include).is_file():
            return f"{folder}/{include}"
    return None


class Sources:
    """Hashes of files with all that they include from the project."""

    def __init__(self):
        self._includes = {}
        self._hashes = {}

    def closure(self, name):
        seen, todo = set(), [name]
        while todo:
            here = todo.pop()
            if here in seen:
                continue
            seen.add(here)
            todo.extend(self._included(here))
        return sorted(seen)

    def key(self, name, *more):
        digest = hashlib.sha256("\0".join(more).encode())
        for file in self.closure(name):
            digest.update(file.encode())
            digest.update(self._hashes[file])
        return digest.hexdigest()

    def _included(self, name):
        if name not in self._includes:
            data = (ROOT / name).read_bytes()
            self._hashes[name] = hashlib.sha256(data).digest()
            found = (resolve(include) for _, _, include in includes(data.decode("utf-8", "replace")))
            self._includes[name] = [file for file in found if file]
        return self._includes[name]


class Memory:
    """Keys of what was in order at an earlier run. Failures are never remembered."""

    def __init__(self, name):
        folder = Path(os.environ.get("NV_CHECK_CACHE") or ROOT / "build" / "check")
        folder.mkdir(parents=True, exist_ok=True)
        self._file = folder / f"{name}.txt"
        self._keys = set(self._file.read_text().split()) if self._file.is_file() else set()

    def __contains__(self, key):
        return key in self._keys

    def add(self, key):
        self._keys.add(key)
        with self._file.open("a") as out:
            out.write(key + "\n")


def compile_commands(build):
    """File relative to the project -> its flags, without compiler, output, input and PCH."""
    path = ROOT / build / "compile_commands.json"
    if not path.is_file():
        sys.exit(f"{path} is missing: configure {build} first")
    flags = {}
    for entry in json.loads(path.read_text()):
        file = Path(entry["directory"], entry["file"]).resolve()
        if file.is_relative_to(ROOT) and not file.is_relative_to(ROOT / "build"):
            flags[str(file.relative_to(ROOT))] = _flags(shlex.split(entry["command"]))
    return flags


def _flags(words):
    """Keeps defines, include folders, language version and warnings."""
    kept, taken = [], False
    for word in words:
        if taken:
            kept.append(word)
            taken = False
        elif word in ("-isystem", "-I", "-D"):
            kept.append(word)
            taken = True
        elif word.startswith(("-D", "-I", "-std=", "-W", "-f", "-isystem")):
            kept.append(word)
    return [word for word in kept if word not in ("-Winvalid-pch",)]


def in_parallel(work, items):
    """Results in the order of the items."""
    with ThreadPoolExecutor(JOBS) as pool:
        return list(pool.map(work, items))
