"""A watch, its panel and a browser, for the tests of the page. One browser serves a file of tests."""

import atexit
import json
import os
import pathlib
import subprocess
import tempfile
import time
import unittest

from selenium import webdriver
from selenium.webdriver.common.by import By

from relay import Relay

DESKWATCH = os.environ["DESKWATCH_PROGRAM"]
SOURCES = pathlib.Path(os.environ["SOURCE_FOLDER"])
PICTURES = pathlib.Path(os.environ["PICTURE_FOLDER"])
DEADLINE = 20
VIEWS = ["Accounts", "Why", "What happened", "Trouble", "Story"]


def wait_for(condition, what):
    """Waits until the condition holds; returns what it found."""
    end = time.monotonic() + DEADLINE
    while True:
        found = condition()
        if found:
            return found
        if time.monotonic() > end:
            raise AssertionError(f"still waiting for {what() if callable(what) else what}")
        time.sleep(0.02)


class Watch:
    """A watch with its panel; the panel boots it and switches it off."""

    def __init__(self):
        self.folder = tempfile.TemporaryDirectory(prefix="panel.")
        os.environ["XDG_STATE_HOME"] = self.folder.name + "/state"
        self.path = self.folder.name + "/watch"
        self.start()

    def start(self, *options):
        self.panel = subprocess.Popen([DESKWATCH, "panel", self.path, "--no-browser", *options], stdout=subprocess.PIPE, text=True)
        self.address = self.panel.stdout.readline().strip()
        self.port = int(self.address.split(":")[2].split("/")[0])

    def run(self, *arguments, check=True, **options):
        return subprocess.run([DESKWATCH, "--device", self.path, *arguments], check=check, capture_output=True, text=True, **options)

    def status(self):
        return json.loads(self.run("status", "--json").stdout)

    def send(self, sample, check=True):
        """Sends a sample as the mail application would."""
        self.run("mail", "policy", self.sample(sample), check=check)

    def sample(self, name):
        return str(SOURCES / "samples" / name)

    def end(self):
        self.panel.terminate()
        self.panel.wait(DEADLINE)
        self.panel.stdout.close()

    def close(self):
        self.end()
        self.folder.cleanup()


def start_browser(*arguments):
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ["--headless=new", "--window-size=1280,960", "--hide-scrollbars", *arguments]:
        options.add_argument(argument)
    if os.geteuid() == 0:
        options.add_argument("--no-sandbox")
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(options=options, service=webdriver.chrome.service.Service("/usr/bin/chromedriver"))


class Page:
    """The page in a window of the browser, used as a person uses it."""

    def __init__(self, browser, address):
        self.browser = browser
        browser.get(address)
        wait_for(lambda: self.script("return document.body && document.body.dataset.connection") == "open", "the connection")
        self.find(".screen")

    def script(self, text, *arguments):
        return self.browser.execute_script(text, *arguments)

    def find(self, selector):
        return wait_for(lambda: next(iter(self.browser.find_elements(By.CSS_SELECTOR, selector)), None), selector)

    def text(self, selector):
        return self.script("return document.querySelector(arguments[0])?.innerText ?? ''", selector)

    def await_text(self, selector, part):
        wait_for(lambda: part in self.text(selector), lambda: f"{part!r} in {selector}, which has {self.text(selector)!r}")

    def press(self, name, inside="body"):
        """Presses the button of that name, as soon as it is there and can be pressed."""
        found = """
            const [name, inside] = arguments;
            return [...document.querySelectorAll(inside + ' button')].find((button) => !button.disabled
                && button.checkVisibility() && (button.getAttribute('aria-label') ?? button.innerText) === name)"""

        def press_once():
            button = self.script(found, name, inside)
            if button is None:
                return False
            try:
                button.click()
                return True
            except Exception:  # drawn anew meanwhile
                return False

        wait_for(press_once, f"the button {name}")

    def view(self, name):
        self.press(name, "[role=tablist]")

    def preset(self, name):
        self.script("arguments[0].value = arguments[1]; arguments[0].dispatchEvent(new Event('change'))", self.find("#accounts select"), name)

    def emulate(self, scheme="light", motion="reduce", colors="none"):
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [
            {"name": "prefers-color-scheme", "value": scheme}, {"name": "prefers-reduced-motion", "value": motion},
            {"name": "forced-colors", "value": colors}]})

    def size(self, width, height, scale=1):
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {"width": width, "height": height, "deviceScaleFactor": scale, "mobile": False})

    def picture(self, name):
        PICTURES.mkdir(parents=True, exist_ok=True)
        self.browser.save_screenshot(str(PICTURES / name))

    def console(self):
        return [entry for entry in self.browser.get_log("browser") if entry["source"] != "recommendation"]


class PanelTest(unittest.TestCase):
    """One browser for a process; a watch, its panel and a window for each test."""

    browser = relay = None

    @classmethod
    def setUpClass(cls):
        if PanelTest.browser is None:
            PanelTest.relay = Relay()
            rules = f"MAP evil.example 127.0.0.1,MAP localhost 127.0.0.1:{cls.relay.port}"
            PanelTest.browser = start_browser(f"--host-resolver-rules={rules}")
            atexit.register(PanelTest.relay.close)
            atexit.register(PanelTest.browser.quit)

    def setUp(self):
        self.watch = Watch()
        self.addCleanup(self.watch.close)
        self.browser.switch_to.new_window("window")
        self.addCleanup(self.leave_window)
        self.page = Page(self.browser, self.watch.address)
        self.page.emulate()
        self.page.console()

    def leave_window(self):
        first, *others = self.browser.window_handles
        for window in others:
            self.browser.switch_to.window(window)
            self.browser.close()
        self.browser.switch_to.window(first)

    def await_status(self, condition, what):
        return wait_for(lambda: next((found for found in [self.watch.status()] if condition(found)), None), what)
