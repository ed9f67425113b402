#!/usr/bin/env python3
"""Checks what each file of src/ includes, where failures are caught, and how settings are read.

- "folder/..." may point to the same or a lower layer only, and two folders never to each other.
- Includes are written from src/, with quotation marks.
- Rooms of a layer have an order too.
- Qt stands in ui, platform/qt and programs only, and so do includes of them.
- A library that reads one kind of thing is included where that is read (LIBRARY_FOLDERS).
- A family of readers never includes another one, nor do windows and the command line.
- The words of kinds of records stand in the readers' folders: everybody else asks readers/RecordKind.h.
- `catch` stands in the traps, main functions, platform adapters and the database's error adapter.
- Ranges that cut a piece off are left to std's own algorithms: clang 14 can't read them.
- Settings are read and written by their rows (app/settings/Settings.h), never by section and key.
- Readers and the import ask the file system nothing and open nothing themselves: what lies in the
  evidence they ask of readers/Evidence, what they made themselves of readers/Scratch.

usage: tools/check_layers.py [FILE of src/...]
"""

import re
import sys

from common import ROOT, includes, project_files, read, resolve, without_comments

LAYERS = [
    ("base",),
    ("time", "platform", "address", "markup"),
    ("db",),
    ("readers",),
    ("import", "rebuild"),
    ("search",),
    ("views",),
    ("reports", "maintenance"),
    ("app",),
    ("cli", "ui"),
    ("programs",),
]
RANK = {folder: rank for rank, layer in enumerate(LAYERS) for folder in layer}

# Two ways into the program that know nothing of each other.
APART = {"cli", "ui"}

# Rooms of a layer, from the lowest to the highest: what a file includes lies in its own room or in a lower one.
ROOMS = {
    "app": ("messages", "settings", "program", "project", "jobs", "options", ""),
    "ui": ("views", "rebuild", "reports", "import", "maintenance", "options", "window"),
}

# Folders of readers/ that are no family but help several.
SHARED_BY_READERS = {"sqlite", "xml", "plist", "json", "leveldb", "common"}

# Layers beside each other that don't know each other in either direction: one program has no window,
# the other no command line.
STRANGERS = {("cli", "ui"), ("ui", "cli")}

# Families that may know another one: (from, to) with the reason.
FAMILIES_ALLOWED = {
    ("results", "ie"): "recovered-record files hold records of Internet Explorer's index",
}

QT = re.compile(r"Q[A-Z]\w*(/.*)?|Qt\w*/.*|q\w+\.h")
QT_FOLDERS = re.compile(r"src/(ui|platform/qt|programs)/")

# The parser of pages stands below one reading of pages, which has the limits and the places; expressions are
# those of the search.
LIBRARY_FOLDERS = {"gumbo.h": "src/markup/", "re2/re2.h": "src/search/", "re2/set.h": "src/search/",
                   "libpsl.h": "src/address/"}

CATCH_PLACES = re.compile(r"src/base/Trap\.h|src/programs/[^/]*\.cpp|src/platform/.*"
                          r"|src/db/sql/SqliteErrors\.(h|cpp)")

# Further files that may catch: each with the reason why neither trap does.
CATCH_ALLOWED = {
    # End no failure: they add which file of the evidence it is about, or tell of it, and pass it on.
    "src/readers/EvidenceFile.cpp",
    "src/readers/EvidenceGaps.h",
    # The library that parses a call's words says so when they are wrong; here it becomes an answer.
    "src/cli/Grammar.cpp",
}

# Those that read evidence, but for windows, and the files that do it for all of them.
EVIDENCE_READERS = re.compile(r"src/readers/.*|src/import/[^/]*")
EVIDENCE_DOORS = re.compile(r"src/readers/(Evidence|EvidenceFile|Scratch)\.(h|cpp)")

# Questions to the file system, and ways to open, list, change or copy what is in it. Paths
# themselves ask nothing, and `absolute` asks where the program runs.
PAST_EVIDENCE = re.compile(
    r"\b(?:fs|filesystem)::(?!path\b|absolute\b|u8path\b|filesystem_error\b)[a-z]\w*"
    r"|\b(?:FileReader|readHead|readWhole|readInBlocks|copyRange|copyToScratch|hashesOfFile"
    r"|pathFromText|wholePath|[io]?fstream|fopen|sqlite3_open\w*)\b"
    r"|(?<![\w.>)])::(?:f|l)?(?:stat|statx|open|openat|access|opendir|fopen|unlink|rename)\s*\(")


# What stands in the settings file is asked of app/settings/IniFile by these alone: the rows themselves, and
# the places of windows, which are no settings.
INI_PLACES = re.compile(r"src/app/(settings/(IniFile|Settings)|options/(SettingsTable|Options))\.(h|cpp)"
                        r"|src/cli/OptionsCommand\.cpp|src/ui/window/WindowLayout\.cpp")


def layer_of(name):
    """Layer of a file named from src/."""
    return name.split("/")[0] if "/" in name else ""


def room_of(name):
    """Room of a file within its layer: "" stands above the others."""
    parts = name.split("/")
    return parts[1] if len(parts) > 2 else ""


def family_of(name):
    parts = name.split("/")
    if len(parts) < 3 or parts[0] != "readers" or parts[1] in SHARED_BY_READERS | {"ui"}:
        return None
    return parts[1]


def include_faults(file, name, bracket):
    """What is wrong with one include of src/<file>."""
    target = resolve(name)
    ours = target is not None and target.startswith("src/")
    if bracket == "<":
        if ours:
            yield f'<{name}> is ours: write "{name}"'
        if QT.fullmatch(name) and not QT_FOLDERS.match("src/" + file):
            yield f"<{name}>: Qt stands only in ui, platform/qt and programs"
        if not f"src/{file}".startswith(folder := LIBRARY_FOLDERS.get(name, "")):
            yield f"<{name}>: only {folder} knows it"
        return
    if name.endswith(".moc"):
        return
    if not ours:
        yield f'"{name}": includes are written from src/, and there is no src/{name}'
        return
    mine, theirs = layer_of(file), layer_of(name)
    if mine in RANK and theirs in RANK and RANK[theirs] > RANK[mine]:
        yield f'"{name}" points up: {theirs} lies above {mine}'
    if (mine, theirs) in STRANGERS:
        yield f'"{name}": {mine} must not know {theirs}'
    if {mine, theirs} == APART:
        yield f'"{name}": {mine} must not know {theirs}'
    if mine == theirs and mine in ROOMS:
        order, rooms = ROOMS[mine], (room_of(file), room_of(name))
        if set(rooms) <= set(order) and order.index(rooms[1]) > order.index(rooms[0]):
            yield f'"{name}" points up: room {rooms[1] or mine} lies above {rooms[0]}'
    if name.startswith("platform/qt/") and not QT_FOLDERS.match("src/" + file):
        yield f'"{name}": only windows and programs know platform/qt'
    families = (family_of(file), family_of(name))
    if None not in families and families[0] != families[1] and families not in FAMILIES_ALLOWED:
        yield f'"{name}": readers/{families[0]} must not know readers/{families[1]}'


def kind_words():
    """What the rows of all kinds of records are called, in upper case."""
    return {word.upper() for file in project_files("src/readers", endings=("Kinds.h",))
            for word in re.findall(r'\.(?:word|otherWord)\s*=\s*"([^"]+)"', read(file))}


def word_faults(path, text, words):
    """Texts of src/ that are the word of a kind and stand outside of the readers."""
    if path.startswith("src/readers/"):
        return
    for number, line in enumerate(without_comments(text, keep_strings=True).split("\n"), 1):
        for word in re.findall(r'"([^"]*)"', line):
            if word.upper() in words:
                yield number, f'"{word}" is a kind of record: ask readers/RecordKind.h'


def file_faults(path, words):
    text = read(path)
    yield from word_faults(path, text, words)
    file = path.removeprefix("src/")
    if layer_of(file) not in RANK:
        yield 1, f"src/{file.split('/')[0]} has no layer: name it in tools/check_layers.py"
    if room_of(file) not in ROOMS.get(layer_of(file), (room_of(file),)):
        yield 1, f"src/{layer_of(file)}/{room_of(file)} is no room: name it in tools/check_layers.py"
    for line, bracket, name in includes(text):
        for fault in include_faults(file, name, bracket):
            yield line, fault
    bare = without_comments(text)
    if EVIDENCE_READERS.fullmatch(path) and not EVIDENCE_DOORS.fullmatch(path):
        for match in PAST_EVIDENCE.finditer(bare):
            yield bare.count("\n", 0, match.start()) + 1, \
                f"{match[0]}: ask readers/Evidence, or readers/Scratch for files of our own"
    if not (CATCH_PLACES.fullmatch(path) or path in CATCH_ALLOWED):
        yield from faults_of(bare, r"\bcatch\s*\(", "catch: use the traps of base/Trap.h")
    yield from faults_of(bare, r"\branges::(unique|remove|remove_if|(stable_)?partition|rotate)\b",
                         "clang 14, which the sanitizers need, can't read that: take std's own")
    if not INI_PLACES.fullmatch(path):
        yield from faults_of(bare, r"\b(Read|Write)IniValue\s*\(",
                             "a setting has a row: use app/settings/Settings.h")


def faults_of(bare, pattern, fault):
    for match in re.finditer(pattern, bare):
        yield bare.count("\n", 0, match.start()) + 1, fault


def circles(files):
    """Pairs of folders of one layer that include each other: (folder, folder)."""
    edges = set()
    for path in files:
        mine = layer_of(path.removeprefix("src/"))
        edges |= {(mine, layer_of(name)) for _, bracket, name in includes(read(path))
                  if bracket == '"' and "/" in name}
    return sorted((a, b) for a, b in edges if a < b and (b, a) in edges)


def main():
    every = project_files("src", endings=(".h", ".cpp"))
    files = [file for file in sys.argv[1:]] or every
    words = kind_words()
    if not words:
        print("tools/check_layers.py: no kind of record is found: are their rows still in Kinds.h?")
    count = 0 if words else 1
    for path in files:
        for line, fault in file_faults(path, words):
            print(f"{path}:{line}: {fault}")
            count += 1
    for a, b in circles(every):
        if RANK.get(a) == RANK.get(b):
            print(f"src/{a} and src/{b} include each other: one of them has to be the lower one")
            count += 1
    for path in CATCH_ALLOWED:
        if not (ROOT / path).is_file() or "catch" not in without_comments(read(path)):
            print(f"tools/check_layers.py: {path} catches nothing: take it off the list")
            count += 1
    print(f"layers: {len(files)} files, {count} faults")
    return 1 if count else 0


if __name__ == "__main__":
    sys.exit(main())
