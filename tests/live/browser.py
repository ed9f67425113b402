"""Drives a headless Chromium over two pipes, with nothing but Python's own library."""

import base64
import json
import os
import shutil
import subprocess
import tempfile
import threading
import time

WIDTH, HEIGHT, TALLEST = 1100, 800, 6000
COMPARED = """(async (one, other) => {
    const read = async text => {
        const bytes = Uint8Array.from(atob(text), c => c.charCodeAt(0));
        const picture = await createImageBitmap(new Blob([bytes], {type: 'image/png'}));
        const canvas = new OffscreenCanvas(picture.width, picture.height);
        const context = canvas.getContext('2d');
        context.drawImage(picture, 0, 0);
        return context.getImageData(0, 0, picture.width, picture.height);
    };
    const a = await read(one), b = await read(other);
    const wide = Math.min(a.width, b.width), high = Math.min(a.height, b.height);
    let count = Math.max(a.width * a.height, b.width * b.height) - wide * high;
    let left = wide, top = high, right = 0, bottom = 0;
    for (let y = 0; y < high; ++y)
        for (let x = 0; x < wide; ++x) {
            const i = (y * a.width + x) * 4, j = (y * b.width + x) * 4;
            if ([0, 1, 2].some(c => a.data[i + c] != b.data[j + c])) {
                ++count;
                left = Math.min(left, x); right = Math.max(right, x + 1);
                top = Math.min(top, y); bottom = Math.max(bottom, y + 1);
            }
        }
    return {count, box: count ? [left, top, right, bottom] : []};
})"""


def program():
    """Where Chromium is; None for nowhere."""
    for name in ("chromium", "chromium-browser"):
        if found := shutil.which(name):
            return found
    return None


class Browser:
    """One browser with a profile of its own, which goes with it."""

    def __init__(self, *flags):
        self.profile = tempfile.mkdtemp(prefix="nv-live-")
        commands, self._write = os.pipe()
        self._read, answers = os.pipe()
        self.requests = []  # addresses that were asked for, in order
        self._number = 0
        self._session = None
        self._kept = b""
        self._events = []

        def pipes():
            # The browser reads from 3 and writes to 4; they are copied away first, as these two
            # numbers may be the pipes' own.
            read, write = os.dup(commands), os.dup(answers)
            os.dup2(read, 3)
            os.dup2(write, 4)

        self._process = subprocess.Popen(
            [program(), "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
             "--no-first-run", "--disable-background-networking", "--disable-component-update",
             "--disable-sync", "--hide-scrollbars", "--force-color-profile=srgb",
             "--disable-dev-shm-usage", "--remote-debugging-pipe",
             f"--user-data-dir={self.profile}", *flags, "about:blank"],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            close_fds=False, preexec_fn=pipes)
        os.close(commands)
        os.close(answers)
        self._watch = threading.Timer(1800, self._process.kill)
        self._watch.daemon = True
        self._watch.start()
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self._session = self.call("Target.attachToTarget", targetId=target,
                                  flatten=True)["sessionId"]
        for part in ("Page", "Network", "Runtime"):
            self.call(f"{part}.enable")
        self.call("Network.setCacheDisabled", cacheDisabled=True)
        self._size(HEIGHT)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._watch.cancel()
        self._process.kill()
        self._process.wait()
        os.close(self._write)
        os.close(self._read)
        shutil.rmtree(self.profile, ignore_errors=True)

    def _message(self):
        while b"\0" not in self._kept:
            block = os.read(self._read, 1 << 20)
            if not block:
                raise RuntimeError("the browser has ended")
            self._kept += block
        text, self._kept = self._kept.split(b"\0", 1)
        message = json.loads(text)
        if message.get("method") == "Network.requestWillBeSent":
            self.requests.append(message["params"]["request"]["url"])
        return message

    def call(self, method, **parameters):
        self._number += 1
        message = {"id": self._number, "method": method, "params": parameters}
        if self._session:
            message["sessionId"] = self._session
        os.write(self._write, json.dumps(message).encode() + b"\0")
        while True:
            answer = self._message()
            if answer.get("id") == self._number:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']['message']}")
                return answer["result"]
            self._events.append(answer)

    def evaluate(self, script):
        result = self.call("Runtime.evaluate", expression=script, awaitPromise=True,
                           returnByValue=True)
        if "exceptionDetails" in result:
            raise RuntimeError(str(result["exceptionDetails"])[:300])
        return result["result"].get("value")

    def _await(self, event, seconds):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            for message in self._events:
                if message.get("method") == event:
                    return
            self._events = [self._message()]

    def _size(self, height):
        self.call("Emulation.setDeviceMetricsOverride", width=WIDTH, height=height,
                  deviceScaleFactor=1, mobile=False)

    def picture(self, address, scripts=True):
        """The whole page as a PNG in base64."""
        self._size(HEIGHT)
        self.call("Page.navigate", url="about:blank")
        self.call("Emulation.setScriptExecutionDisabled", value=not scripts)
        self.requests.clear()
        self._events = []
        self.call("Page.navigate", url=address)
        self._await("Page.loadEventFired", 20)
        high = min(self.evaluate("Math.max(document.documentElement.scrollHeight, innerHeight)"),
                   TALLEST)
        self._settle()
        for at in range(0, high, 600):  # lazy parts load when they come near the view
            self.evaluate(f"scrollTo(0, {at})")
            time.sleep(0.03)
        self.evaluate("scrollTo(0, 0)")
        self._size(high)
        self._settle()
        return self.call("Page.captureScreenshot", format="png")["data"]

    def _settle(self):
        """Waits from here: timers of the page may be off with its scripts."""
        ready = ("document.fonts.status == 'loaded' && "
                 "[...document.images].every(image => image.complete || image.loading == 'lazy')")
        for _ in range(40):
            time.sleep(0.05)
            if self.evaluate(ready):
                break
        time.sleep(0.1)

    def difference(self, one, other):
        """How many points differ, and the box around them."""
        if one == other:
            return {"count": 0, "box": []}
        self.call("Page.navigate", url="about:blank")
        self.call("Emulation.setScriptExecutionDisabled", value=False)
        return self.evaluate(f"{COMPARED}({json.dumps(one)}, {json.dumps(other)})")


def saved(picture, path):
    with open(path, "wb") as file:
        file.write(base64.b64decode(picture))
