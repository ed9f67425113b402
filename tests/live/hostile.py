#!/usr/bin/env python3
"""Opens rebuilt pages that reach out of their folder in Chromium, and listens for what they ask.

usage: hostile.py [--programs FOLDER]
  --programs  where norvelane-example and norvelane-cli are (build/dev)

Ends with 1 when a page asked for anything, with 77 when Chromium or openssl isn't there.
"""

import argparse
import pathlib
import shutil
import sys
import tempfile

import browser
import compare
from site_server import SiteServer


def check(programs, work):
    rebuilt = compare.Rebuilt(programs, work, "hostile", "exact")
    pages = sorted(address for address in rebuilt.ids if address.endswith(".html"))
    rebuilt.rebuild(pages)
    faults = opened = 0
    with SiteServer({}, work) as server, browser.Browser(*server.flags()) as chromium:
        for address in pages:
            if not (page := rebuilt.page(address)):
                continue
            opened += 1
            server.asked.clear()
            chromium.picture(page.resolve().as_uri())
            # Frames of other sites have processes of their own, which only the listener hears.
            asked = compare.outside(chromium.requests, page.parent)
            asked += [each for each in server.asked if ".example" in each]
            if asked:
                faults += 1
                print(f"{address} asks {', '.join(sorted(set(asked)))}", flush=True)
    print(f"{opened} of {len(pages)} pages opened, {faults} reached out")
    return 1 if faults or opened < len(pages) else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--programs", type=pathlib.Path, default=compare.ROOT / "build" / "dev")
    arguments = parser.parse_args()
    if browser.program() is None or shutil.which("openssl") is None:
        print("skipped: this takes chromium and openssl")
        return 77
    work = pathlib.Path(tempfile.mkdtemp(prefix="nv-hostile-"))
    try:
        compare.ENVIRONMENT["NORVELANE_HOME"] = str(work)
        return check(arguments.programs, work)
    finally:
        shutil.rmtree(work)


if __name__ == "__main__":
    sys.exit(main())
