"""The gateway as a person sees it, in Chromium. Usage: ARXGATE=PROGRAM python3 browser_test.py [SCREENSHOT.png]"""

import base64
import io
import json
import os
import re
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.request
import wave

from gate import PASSWORD, Gate, Site

SCREENSHOT = sys.argv.pop(1) if len(sys.argv) > 1 else "gateway.png"
FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--window-size=1100,760",
         "--disable-background-networking", "--disable-component-update", "--disable-sync"]


class Browser:
    """Chromium, driven by chromedriver."""

    def __init__(self):
        self._driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, text=True)
        while not (port := re.search(r"on port (\d+)\.", self._driver.stdout.readline())):
            pass
        self._url = f"http://127.0.0.1:{port[1]}/session"
        self._profile = tempfile.TemporaryDirectory()
        options = {"args": FLAGS + [f"--user-data-dir={self._profile.name}"]}
        opened = self.call("", {"capabilities": {"alwaysMatch": {"goog:chromeOptions": options}}})
        self._url += "/" + opened["sessionId"]
        self.call("/timeouts", {"implicit": 20000})  # a click returns before the next page is there

    def call(self, command, parameters=None):
        data = None if parameters is None else json.dumps(parameters).encode()
        with urllib.request.urlopen(urllib.request.Request(self._url + command, data), timeout=60) as reply:
            return json.load(reply)["value"]

    def find(self, selector):
        found = self.call("/element", {"using": "css selector", "value": selector})
        return "/element/" + next(iter(found.values()))

    def type(self, selector, text):
        self.call(self.find(selector) + "/value", {"text": text})

    def click(self, selector):
        self.call(self.find(selector) + "/click", {})

    def run(self, script):
        return self.call("/execute/async", {"script": script, "args": []})

    def close(self):
        urllib.request.urlopen(urllib.request.Request(self._url, method="DELETE"), timeout=60).close()
        self._driver.terminate()
        self._driver.wait()
        self._driver.stdout.close()
        self._profile.cleanup()


class BrowserTest(unittest.TestCase):
    def setUp(self):
        self.site = Site()
        self.addCleanup(self.site.close)
        sound = io.BytesIO()
        with wave.open(sound, "wb") as file:
            file.setparams((2, 2, 44100, 0, "NONE", ""))
            file.writeframes(bytes(4 * 44100 * 600))  # ten minutes, 106 MB
        self.sound = self.site.store("concert.wav", sound.getvalue())
        self.site.store("minutes.txt", b"First, second, third.\n")
        os.mkdir(os.path.join(self.site.root, "drawings"))
        self.gate = Gate(self.site)
        self.addCleanup(self.gate.stop)
        self.gate.log_in()
        self.gate.upload("concert.wav", os.path.join(self.site.root, "concert.wav"), "sealed")
        self.browser = Browser()
        self.addCleanup(self.browser.close)

    def test_log_in_upload_seek(self):
        browser = self.browser
        browser.call("/url", {"url": self.gate.url})
        browser.type("input[name=user]", "ann")
        browser.type("input[name=password]", PASSWORD)
        browser.click("button")
        browser.type("input[type=file]", os.path.join(self.site.root, "minutes.txt"))
        browser.click("button")  # sealed over plain: the page offers that first
        self.assertIn("22 bytes stored sealed", browser.call(browser.find("[role=status]") + "/text"))
        with open(SCREENSHOT, "wb") as file:
            file.write(base64.b64decode(browser.call("/screenshot")))

        browser.click("a[href^='/gateway']")
        position = browser.run("""
            const media = document.querySelector('video, audio'), done = arguments[0];
            media.addEventListener('seeked', () => done(media.currentTime));
            media.addEventListener('error', () => done(media.error.message));
            media.currentTime = 590;""")
        self.assertAlmostEqual(position, 590, delta=0.1)
        time.sleep(0.5)
        sent = [int(size) for size in re.findall(r'GET /gateway\S* HTTP/1\.1" 206 (\d+)', self.gate.read_log())]
        self.assertTrue(sent and max(sent) < len(self.sound) / 2, sent)  # it did not read all that lies before
        browser.call("/back", {})
        browser.click("td a[href*='bWludXRlcy50eHQ&']")
        self.assertEqual(browser.call(browser.find("pre") + "/text"), "First, second, third.")


if __name__ == "__main__":
    unittest.main()
