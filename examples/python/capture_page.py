"""Captures a web page viewport by viewport in a headless browser, and stitches the captures.

    python3 capture_page.py ADDRESS -o page.png [--full-page FILE] [--size WxH] [--step ROWS]

The browser is driven through a pipe by the DevTools protocol, which takes nothing but Python. --full-page
writes the browser's own picture of the whole page as well, to compare it with.
"""

import argparse
import base64
import json
import os
import shutil
import subprocess
import tempfile
from pathlib import Path

import velscrollingcapture

BROWSERS = ("chromium", "chromium-browser", "google-chrome")
FLAGS = [
    "--headless", "--disable-gpu", "--no-first-run", "--disable-background-networking",
    "--disable-component-update", "--disable-sync", "--remote-debugging-pipe",
]
if os.geteuid() == 0:
    FLAGS.append("--no-sandbox")  # without which the browser refuses to work for root
# Resolves when what was scrolled to is on the screen, with the row that it really went to.
SCROLL = """new Promise(done => {
  scrollTo(0, %d);
  requestAnimationFrame(() => requestAnimationFrame(() => done(Math.round(scrollY))));
})"""


class Browser:
    """A browser with one page, which takes commands of the DevTools protocol."""

    def __init__(self, program):
        self.profile = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        commands, self.commands = os.pipe()
        self.answers, answers = os.pipe()
        self.process = self._start(program, commands, answers)
        os.close(commands)
        os.close(answers)
        self.received = b""
        self.number = 0
        self.session = None
        target = self.ask("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.ask("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]

    def _start(self, program, commands, answers):
        """The browser reads commands from file descriptor 3, and answers on 4."""
        redirection = f'exec "$@" 3<&{commands} 4>&{answers}'
        arguments = ["bash", "-c", redirection, "bash", program, *FLAGS, f"--user-data-dir={self.profile.name}"]
        return subprocess.Popen(arguments, pass_fds=(commands, answers), stdin=subprocess.DEVNULL,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.commands)
        os.close(self.answers)
        self.process.terminate()
        self.process.wait()
        self.profile.cleanup()

    def ask(self, method, **parameters):
        """Sends a command and gives its answer."""
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session is not None:
            message["sessionId"] = self.session
        rest = json.dumps(message).encode() + b"\0"
        while rest:
            rest = rest[os.write(self.commands, rest):]
        answer = self._wait_for(lambda message: message.get("id") == self.number)
        if "error" in answer:
            raise RuntimeError(f"{method}: {answer['error']['message']}")
        return answer["result"]

    def wait_for_event(self, method):
        self._wait_for(lambda message: message.get("method") == method)

    def _wait_for(self, is_wanted):
        while True:
            while b"\0" not in self.received:
                received = os.read(self.answers, 1 << 20)
                if not received:
                    raise RuntimeError("the browser has ended")
                self.received += received
            text, self.received = self.received.split(b"\0", 1)
            message = json.loads(text)
            if is_wanted(message):
                return message

    def open(self, address, width, height):
        """Shows a page in a viewport of that size, without scroll bars."""
        self.ask("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1,
                 mobile=False)
        self.ask("Emulation.setScrollbarsHidden", hidden=True)
        self.ask("Page.enable")
        answer = self.ask("Page.navigate", url=address)
        if "errorText" in answer:
            raise RuntimeError(f"{address}: {answer['errorText']}")
        self.wait_for_event("Page.loadEventFired")

    def scroll_to(self, row):
        """Scrolls, and gives the first row that is shown then."""
        answer = self.ask("Runtime.evaluate", expression=SCROLL % row, awaitPromise=True, returnByValue=True)
        return answer["result"]["value"]

    def screenshot(self, **settings):
        """A PNG file."""
        return base64.b64decode(self.ask("Page.captureScreenshot", format="png", **settings)["data"])

    def full_page(self):
        """The browser's own picture of the whole page, as a PNG file."""
        self.scroll_to(0)
        size = self.ask("Page.getLayoutMetrics")["cssContentSize"]
        clip = {"x": 0, "y": 0, "width": size["width"], "height": size["height"], "scale": 1}
        return self.screenshot(captureBeyondViewport=True, clip=clip)


def viewports(browser, step):
    """What the viewport shows, from the top of the page to its end."""
    row, asked = browser.scroll_to(0), 0
    while row == asked:
        yield browser.screenshot()
        asked += step
        row = browser.scroll_to(asked)
    yield browser.screenshot()


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("address")
    parser.add_argument("-o", "--output", required=True, help="the stitched picture to write")
    parser.add_argument("--full-page", help="also write the browser's own picture of the page, in PNG")
    parser.add_argument("--size", default="1000x600", help="of the viewport")
    parser.add_argument("--step", type=int, default=400, help="how many rows to scroll at a time")
    parser.add_argument("--browser", default=next(filter(shutil.which, BROWSERS), None))
    arguments = parser.parse_args()
    if arguments.browser is None:
        parser.error(f"there is no browser; install one of {', '.join(BROWSERS)}")
    return arguments


def main():
    arguments = parse_arguments()
    width, height = map(int, arguments.size.split("x"))
    with Browser(arguments.browser) as browser:
        browser.open(arguments.address, width, height)
        result = velscrollingcapture.stitch(viewports(browser, arguments.step), orientation="vertical")
        if arguments.full_page:
            Path(arguments.full_page).write_bytes(browser.full_page())
    for file in result.save(arguments.output):
        print(file)
    for warning in result.warnings:
        print(warning)


if __name__ == "__main__":
    main()
