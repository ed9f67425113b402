#!/usr/bin/env python3
"""Draws each page of the made site in Chromium, live from a server and rebuilt from each cache, and
counts the points that differ.

usage: compare.py [--programs FOLDER] [--caches a,b] [--methods exact,classic] [--groups page]
                  [--pages WORD] [--out FOLDER] [--table FILE] [--strict]
  --programs  where norvelane-example and norvelane-cli are (build/dev)
  --caches    of simple, blocks, sql, cache2, internet-explorer, firefox, chrome, safari, opera
  --pages     only pages whose address or feature has the word
  --out       keeps the pictures and the rebuilt pages
  --table     writes the table there, as Markdown
  --strict    ends with 1 when a page of a cache of today isn't drawn as it was

Ends with 77 when Chromium or openssl isn't there.
"""

import argparse
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
from urllib.parse import unquote

import browser
from site_server import SiteServer, answers

TODAY = ("simple", "blocks", "sql", "cache2")
FIRST = ("internet-explorer", "firefox", "chrome", "safari", "opera")
EXPECTED = ("page", "feature", "unscripted")  # groups of pages that can be had whole
UNSEEN = 4  # points by which the controls of a sound differ from run to run, live too
BANNER_OFF = "#nv-rebuilt"
# Nobody's settings matter, and none are changed.
ENVIRONMENT = dict(os.environ)
ROOT = pathlib.Path(__file__).resolve().parents[2]


def run(*command):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True,
                          errors="replace", check=False, env=ENVIRONMENT)
    if done.returncode not in (0, 2):
        raise RuntimeError(f"{command}: {done.stdout[-500:]}{done.stderr[-500:]}")
    return done.stdout


class Rebuilt:
    """The site's pages out of one cache, by one method."""

    def __init__(self, programs, work, cache, method):
        folder = work / f"{cache}-{method}"
        cli, project = programs / "norvelane-cli", folder / "case.nvp"
        folder.mkdir(parents=True)
        # The layouts are recognised by their files, the first ones also by the folders above.
        run(programs / "norvelane-example", "--site", cache, folder / "evidence" / "Cache")
        run(cli, "import", project, folder / "evidence")
        rows = run(cli, "query", project, "SELECT URL_ID, URL FROM URLs", "--format", "jsonl")
        # In the first browsers' caches the site is one of "http:".
        self.ids = {row["URL"].replace("http://", "https://", 1): row["URL_ID"]
                     for row in map(json.loads, rows.splitlines())}
        self._cli, self._project, self._out, self._method = cli, project, folder / "pages", method

    def rebuild(self, addresses):
        ids = [str(self.ids[address]) for address in addresses if address in self.ids]
        if not ids:
            return
        run(self._cli, "rebuild", self._project, *ids, "--out", self._out, "--no-thumbnails",
            *(("--method", self._method) if self._method else ()))

    def page(self, address):
        """The file; None when there is none."""
        name = f"{self.ids.get(address, 0):07d}"
        found = sorted((self._out / f"{name}.NVR").glob(f"{name}.htm*"))
        return found[0] if found else None


def is_same(result):
    return result is not None and result["count"] <= UNSEEN and not result["outside"]


def outside(requests, folder):
    """Addresses that leave the folder."""
    inside = folder.resolve().as_uri() + "/"
    return [address for address in requests
            if not address.startswith(("data:", "about:", "blob:", inside))]


NOTES = {"lacking": "no: a marked place stands there", "scripted": "no: scripts don't run"}


def cell(page, method, columns):
    """Whether the page is drawn as it was by the method, from each cache of some."""
    same = [name for name, results in columns if is_same(results.get(page.address))]
    if len(same) == len(columns):
        return "yes"
    if not same:
        return NOTES.get(page.group, "no") if method != "classic" else "no"
    return "not from " + ", ".join(name for name, _ in columns if name not in same)


def table(pages, results):
    """`results` by method, cache and address."""
    heads, groups = [], []
    for method, caches in results.items():
        for era, names in (("caches of today", TODAY), ("first browsers' caches", FIRST)):
            columns = [(name, caches[name]) for name in names if name in caches]
            if columns:
                heads.append(f"{method or 'default'}, {era}")
                groups.append((method, columns))
    lines = ["| What the page shows | " + " | ".join(heads) + " |", "|---|" + "---|" * len(heads)]
    for page in pages:
        lines.append(f"| {page.shows} | " + " | ".join(cell(page, *each) for each in groups) + " |")
    return "\n".join(lines) + "\n"


def draw_live(site, pages, work, keep):
    with SiteServer(site, work) as server, browser.Browser(*server.flags()) as chromium:
        pictures = {page.address: chromium.picture(page.address, page.group != "unscripted")
                    for page in pages}
        # Browsers ask for "/favicon.ico" of their own, and for what is none of the site's.
        for address in sorted(server.unknown):
            if ".example/" in address and not address.endswith("/favicon.ico"):
                print(f"the site has no {address}", file=sys.stderr)
    for number, page in enumerate(pages):
        if keep:
            browser.saved(pictures[page.address], keep / f"{number:02}-live.png")
    return pictures


def draw_rebuilt(pages, live, rebuilt, column, keep):
    results = {}
    with browser.Browser("--host-resolver-rules=MAP * ~NOTFOUND") as chromium:
        for number, page in enumerate(pages):
            file = rebuilt.page(page.address)
            if file is None:
                results[page.address] = None
                print(f"{column}: {unquote(page.address)} was not rebuilt", flush=True)
                continue
            picture = chromium.picture(file.resolve().as_uri() + BANNER_OFF)
            asked = outside(chromium.requests, file.parent)
            if keep:
                browser.saved(picture, keep / f"{number:02}-{column.replace(' ', '-')}.png")
            result = chromium.difference(live[page.address], picture)
            results[page.address] = result | {"outside": asked}
            if not is_same(results[page.address]):
                print(f"{column}: {unquote(page.address)}: {result['count']} points differ, "
                      f"{result['box']}" + "".join(f"\n    asks {address}" for address in asked),
                      flush=True)
    return results


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--programs", type=pathlib.Path, default=ROOT / "build" / "dev")
    parser.add_argument("--caches", default=",".join(TODAY + FIRST))
    parser.add_argument("--methods", default="exact")
    parser.add_argument("--groups", default="")
    parser.add_argument("--pages", default="")
    parser.add_argument("--out", type=pathlib.Path)
    parser.add_argument("--table", type=pathlib.Path)
    parser.add_argument("--strict", action="store_true")
    arguments = parser.parse_args()
    if browser.program() is None or shutil.which("openssl") is None:
        print("skipped: this takes chromium and openssl")
        return 77
    if arguments.out:
        arguments.out.mkdir(parents=True)
    work = pathlib.Path(tempfile.mkdtemp(prefix="nv-compare-"))
    ENVIRONMENT["NORVELANE_HOME"] = str(work / "home")
    (work / "home").mkdir()
    try:
        return compare(arguments, arguments.out or work)
    finally:
        shutil.rmtree(work)


def compare(arguments, work):
    run(arguments.programs / "norvelane-example", "--site", "server", work / "site")
    site = answers(work / "site")
    groups = arguments.groups.split(",") if arguments.groups else []
    pages = [answer for answer in site.values()
             if answer.group and (not groups or answer.group in groups)
             and (arguments.pages in answer.address or arguments.pages in answer.shows)]
    live = draw_live(site, pages, work, arguments.out)
    results, missed = {}, 0
    expected = [page for page in pages if page.group in EXPECTED]
    for method in arguments.methods.split(","):
        results[method] = {}
        for cache in arguments.caches.split(","):
            rebuilt = Rebuilt(arguments.programs, work, cache, method)
            rebuilt.rebuild([page.address for page in pages])
            drawn = draw_rebuilt(pages, live, rebuilt, f"{cache} {method}".strip(), arguments.out)
            results[method][cache] = drawn
            same = sum(is_same(drawn[page.address]) for page in expected)
            print(f"{cache} {method}: {same} of {len(expected)} pages as they were", flush=True)
            if method == "exact" and cache in TODAY:
                missed += len(expected) - same
    text = table(pages, results)
    if arguments.table:
        arguments.table.write_text(text, encoding="utf-8")
    else:
        print(text)
    return 1 if arguments.strict and missed else 0


if __name__ == "__main__":
    sys.exit(main())
