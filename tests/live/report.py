#!/usr/bin/env python3
"""Opens reports of a case in Chromium: that nothing of a record runs or is fetched, that the page's
own search works, that no click leaves the report, and how long 100,000 rows take.

usage: report.py [--programs FOLDER] [--rows N] [--pictures FOLDER] [--slowest SECONDS]
  --programs  where norvelane-example and norvelane-cli are (build/dev)
  --rows      so many rows have to be opened in time (100000)
  --pictures  keeps pictures of the pages: wide, of 480 points, and on paper

Ends with 1 when something is wrong, with 77 when Chromium isn't there.
"""

import argparse
import pathlib
import shutil
import sqlite3
import sys
import tempfile
import time

import browser
import compare

HOSTILE = [
    "<script>document.title = 'ran'</script>", "\"><img src=http://out.example/a onerror=alert(1)>",
    "</style><style>@import 'http://out.example/b'</style>", "'; alert(1); '",
    "javascript:document.title='ran'", "\u202eexe.gnp\u2066", "</title><svg onload=alert(1)>",
    "<!--", "]]>", "<a href=http://out.example/>", "=1+1", "\x00\x1b[31m", "x" * 70000,
    "<base href=http://out.example/>", "<meta http-equiv=refresh content='0;url=http://out.example/'>",
]


def project(programs, work, rows):
    file, evidence = work / f"{rows}.nvp", work / "evidence"
    if not evidence.exists():
        compare.run(programs / "norvelane-example", evidence)
    compare.run(programs / "norvelane-cli", "import", file, evidence)
    with sqlite3.connect(file) as base:
        base.execute("UPDATE URLs SET Tagged = URL_ID % 3 = 0, Notes = 'Seen by the examiner' "
                     "WHERE URL_ID < 40")
        for at, text in enumerate(HOSTILE):
            base.execute("INSERT INTO URLs (URL, webPageTitle, Notes, Referrer, User, Host, CacheType, "
                         "Tagged, IsHistory, ActionDateUTC, ActionDateLocal, Status, Browser) VALUES "
                         "(?, ?, ?, ?, ?, ?, ?, 1, 1, 40000, 40000, ?, ?)",
                         (text, text, text, text, text, text, "CHROME HISTORY", text, text))
        base.execute("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?) "
                     "INSERT INTO URLs (URL, webPageTitle, Host, CacheType, IsHistory, Visits, Browser, "
                     "Profile, Person, ActionDateUTC, ActionDateLocal) SELECT "
                     "'https://www.host' || (i % 500) || '.example/a/page/' || i || '?q=tide', "
                     "'Page ' || i || ' about the tide', 'www.host' || (i % 500) || '.example', "
                     "'CHROME HISTORY', 1, i % 9, 'Chromium', 'Default', 'mara', "
                     "40500 + i * 0.003 + (i % 7) * (i % 11), "
                     "40500 + i * 0.003 + (i % 7) * (i % 11) FROM n", (max(rows, 1),))
    return file


class Watched(browser.Browser):
    def open(self, page, width=1280, height=900):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height,
                  deviceScaleFactor=1, mobile=False)
        self.call("Page.navigate", url="about:blank")
        self.requests.clear()
        began = time.monotonic()
        address = page.resolve().as_uri()
        self.call("Page.navigate", url=address)
        while self.evaluate("location.href + document.readyState") != address + "complete":
            if time.monotonic() - began > 60:
                raise RuntimeError(f"{page} doesn't open")
            time.sleep(0.01)
        self.evaluate("new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done)))")
        return time.monotonic() - began


def faults_of(chromium, page, folder):
    faults = []
    chromium.open(page)
    text = chromium.evaluate("document.title")
    if text == "ran":
        faults.append("a script of a record ran")
    if asked := compare.outside(chromium.requests, folder):
        faults.append(f"asks {asked[:3]}")
    links = chromium.evaluate("[...document.querySelectorAll('a')].map(a => a.href)")
    out = [link for link in links if not link.startswith(folder.resolve().as_uri())]
    if out:
        faults.append(f"leads to {out[:3]}")
    handlers = chromium.evaluate("[...document.querySelectorAll('*')].filter(e => [...e.attributes]"
                                 ".some(a => a.name.startsWith('on') || a.name === 'style')).length")
    if handlers:
        faults.append(f"{handlers} elements have handlers or styles")
    return faults


SEARCH = """(async word => {
    const field = document.querySelector('#find input');
    field.value = word;
    field.dispatchEvent(new Event('input'));
    await new Promise(done => setTimeout(done, 1500));
    const rows = [...document.querySelectorAll('[data-r]')];
    return {told: document.querySelector('#find output').textContent,
            shown: rows.filter(row => !row.hidden).length, all: rows.length,
            buttons: document.querySelectorAll('button.copy').length};
})"""


def pictures(chromium, report, folder):
    folder.mkdir(parents=True, exist_ok=True)
    for name in ("index.htm", "history-1.htm", "ticked-1.htm"):
        for width in (1280, 480):
            chromium.open(report / name, width)
            data = chromium.call("Page.captureScreenshot", format="png")["data"]
            browser.saved(data, folder / f"{name[:-4]}-{width}.png")
        chromium.call("Emulation.setEmulatedMedia", media="print")
        chromium.open(report / name, 794, 1123)  # A4 at 96 points an inch
        data = chromium.call("Page.captureScreenshot", format="png")["data"]
        browser.saved(data, folder / f"{name[:-4]}-paper.png")
        chromium.call("Emulation.setEmulatedMedia", media="")


def check(arguments, work):
    report, faults, slow = work / "report", [], 0
    file = project(arguments.programs, work, arguments.rows)
    began = time.monotonic()
    compare.run(arguments.programs / "norvelane-cli", "report", file, "--type", "case", "--out", report,
                "--title", "Harbour & tide", "--case-number", "2011-17", "--reported-by", "M. Quill",
                "--trail")
    print(f"made in {time.monotonic() - began:.1f} s")
    with Watched() as chromium:
        for page in sorted(report.glob("*.htm")):
            faults += [f"{page.name}: {fault}" for fault in faults_of(chromium, page, report)]
        for name in ("index.htm", "ticked-1.htm", "history-1.htm", "history-2.htm"):
            if (report / name).exists():
                seconds = chromium.open(report / name)
                slow = max(slow, seconds)
                print(f"{name}: {(report / name).stat().st_size / 1e6:.1f} MB, open in {seconds:.2f} s")
        chromium.open(report / "history-1.htm")
        began = time.monotonic()
        found = chromium.evaluate(f"{SEARCH}('PAGE 17 tide')")
        print(f"search in the page: {found}, {time.monotonic() - began - 1.5:.2f} s")
        if not 0 < found["shown"] < found["all"] or not found["buttons"]:
            faults.append(f"the search shows {found}")
        if arguments.pictures:
            pictures(chromium, report, arguments.pictures)
    if slow > arguments.slowest:
        faults.append(f"a page took {slow:.2f} s to open")
    print("\n".join(faults) or "nothing ran, nothing was asked for, no link leads out")
    return 1 if faults else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--programs", type=pathlib.Path, default=compare.ROOT / "build" / "dev")
    parser.add_argument("--rows", type=int, default=100000)
    parser.add_argument("--pictures", type=pathlib.Path)
    parser.add_argument("--slowest", type=float, default=3)
    arguments = parser.parse_args()
    if browser.program() is None:
        print("skipped: this takes chromium")
        return 77
    work = pathlib.Path(tempfile.mkdtemp(prefix="nv-report-"))
    try:
        compare.ENVIRONMENT["NORVELANE_HOME"] = str(work)
        return check(arguments, work)
    finally:
        shutil.rmtree(work)


if __name__ == "__main__":
    sys.exit(main())
