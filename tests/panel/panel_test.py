"""The page in a real browser, used as a tester uses it. Pictures go to the build folder for a reviewer."""

import base64
import http.server
import itertools
import json
import pathlib
import re
import threading
import unittest
import urllib.parse
import urllib.request

import jsonschema
from selenium.webdriver.common.keys import Keys

from panel_browser import PICTURES, SOURCES, Page, Watch, start_browser, wait_for
from relay import Relay

VIEWS = ["Accounts", "Why", "What happened", "Trouble", "Story"]


class PanelTest(unittest.TestCase):
    """One browser for all; a watch, its panel and a window for each test."""

    @classmethod
    def setUpClass(cls):
        cls.relay = Relay()
        cls.browser = start_browser(f"--host-resolver-rules=MAP evil.example 127.0.0.1,MAP localhost 127.0.0.1:{cls.relay.port}")

    @classmethod
    def tearDownClass(cls):
        cls.browser.quit()
        cls.relay.close()

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


class Tour(PanelTest):
    def test_the_readmes_tour_by_clicks(self):
        page = self.page
        page.script("arguments[0].value = 'hardened.json'; arguments[0].dispatchEvent(new Event('change'))", page.find("#accounts select"))
        page.await_text("#accounts .card h3", "bob@bank.example")
        page.press("Send", "#accounts")
        page.await_text(".preview", "opens com.velmor.tesk-popup")
        page.press("Send now", ".preview")
        page.await_text(".screen", "bob@bank.example")
        self.assertEqual(self.watch.status()["settings"]["quality"], 128)

        page.view("Why")
        page.await_text("#why", "score 22, enforces it")

        page.press("OK", ".screen")
        page.await_text(".screen", "Screen lock")
        page.press("PIN", ".screen")
        for digit in "12345678":
            page.press(digit, ".screen")
        page.press("Set the PIN", ".screen")
        page.await_text(".screen .why", "A PIN is not enough: an alphanumeric password of at least 4 characters is demanded")
        page.press("Password", ".screen")
        page.find(".screen input").send_keys("abcd1234")
        page.press("Set", ".screen")
        page.await_text("#command", "lock password --length 8")
        self.await_status(lambda status: status["keys"]["db/eas/password_policy_applied"] == 1, "the password")
        self.assertNotIn("abcd1234", self.watch.run("timeline", "--json").stdout)

        def open_encryption():  # it may open by itself
            page.script("document.querySelector('.screen [aria-label=Encryption]')?.click()")
            return "Encrypt the watch" in page.text(".screen")
        wait_for(open_encryption, "the encryption")
        page.press("Encrypt", ".screen")
        self.await_status(lambda status: status["keys"]["db/ode/crypto_state"] == "encrypted", "the encryption")
        page.await_text("#service", "the service ends in")
        wait_for(lambda: page.script("return document.getElementById('idle-arc').getAttribute('stroke-dasharray')") != "0 10", "the arc")

        page.press("Switch off", ".bar")
        page.await_text(".screen", "Switched off")
        page.press("Switch on", ".screen")
        page.await_text(".screen", "Locked with a password, encrypted")
        self.assertEqual(page.console(), [])

    def test_the_popups_other_answers_and_the_tutorial(self):
        page, watch = self.page, self.watch
        watch.run("tutorial", "start")
        page.await_text(".screen", "Getting to know your watch")
        page.press("End the tutorial", ".screen")
        watch.run("mail", "policy", watch.sample("hardened.json"))
        page.press("Stop sync", ".screen")
        page.press("Mail, 1 requests", ".screen")
        page.await_text(".screen", "Asked to stop synchronising")
        page.press("Back", ".screen")
        page.view("Trouble")
        page.press("Check the password")
        page.press("Later", ".screen")
        page.press("Wipe…")
        page.press("Wipe now")
        page.await_text(".screen", "Wiped")


class Accounts(PanelTest):
    def switch(self, key):
        return self.page.script("""return [...document.querySelectorAll('.card .member')]
            .find((row) => row.querySelector('code').innerText === arguments[0]).querySelector('input, select')""", key)

    def test_a_draft_is_counted_reset_and_follows_the_watch(self):
        page, watch = self.page, self.watch
        watch.run("mail", "policy", watch.sample("exchange-default.json"))
        page.await_text(".card h3", "account 1")
        self.switch("allowWifi").click()
        self.switch("minDevicePasswordLength").send_keys(Keys.CONTROL, "a")
        self.switch("minDevicePasswordLength").send_keys("17")
        page.await_text(".card .chip", "2 unsent")
        page.await_text(".card", "A server sends 0 to 16")
        page.press("Reset allowWifi")
        page.await_text(".card .chip", "1 unsent")

        changed = json.loads(pathlib.Path(watch.sample("exchange-default.json")).read_text())
        changed["param"][0]["policySet"]["allowCamera"] = False
        watch.run("mail", "policy", "/dev/stdin", input=json.dumps(changed))
        wait_for(lambda: not self.switch("allowCamera").is_selected(), "the watch's new value")
        page.await_text(".card .chip", "1 unsent")
        page.press("Reset all")
        page.press("Remove")
        page.await_text("#accounts .empty", "No account is on this watch")
        self.assertEqual(watch.status()["accounts"], [])

    def test_dropped_files_become_drafts(self):
        page, watch = self.page, self.watch
        self.drop(watch.sample("three-accounts.json"))
        wait_for(lambda: len(page.browser.find_elements("css selector", ".card")) == 3, "three cards")
        self.drop(watch.sample("provision-hardened.xml"))
        page.await_text("#accounts", "elements reach the watch")
        self.assertEqual(len(page.browser.find_elements("css selector", ".card")), 4)
        self.drop(watch.sample("remote-wipe.json"))
        page.await_text("#accounts", "eas-remote-wipe, which no card can show")
        page.find("#accounts input[type=search]").send_keys("wifi")
        shown = page.script("return [...document.querySelectorAll('.card:first-child .member')].filter((row) => row.checkVisibility()).length")
        self.assertEqual(shown, 1)

    def drop(self, path):
        page = self.page
        data = {"items": [], "files": [path], "dragOperationsMask": 1}
        for kind in ["dragEnter", "dragOver", "drop"]:
            page.browser.execute_cdp_cmd("Input.dispatchDragEvent", {"type": kind, "x": 640, "y": 30, "data": data})

    def test_names_are_text(self):
        page, watch = self.page, self.watch
        name = "<img src=x onerror=alert(1)><script>alert(2)</script>"
        message = json.loads(pathlib.Path(watch.sample("hardened.json")).read_text())
        message["param"][0]["accountName"] = name
        watch.run("mail", "policy", "/dev/stdin", input=json.dumps(message))
        page.await_text(".screen .name", name)
        page.await_text(".card h3", name)
        with open(watch.path + "/log", "a", encoding="utf-8") as log:
            log.write(f"W/TESK_CONSUMER(1): {name}\n")
        for view in VIEWS:
            page.view(view)
        page.view("What happened")
        page.await_text(".entries", f"W {name}")
        self.assertEqual(page.browser.find_elements("css selector", "img, body script"), [])
        self.assertEqual(page.console(), [])


class Happened(PanelTest):
    def test_entries_are_searched_opened_and_followed(self):
        page, watch = self.page, self.watch
        page.view("What happened")
        watch.run("mail", "policy", watch.sample("hardened.json"))
        page.find("#timeline input[type=search]").send_keys("minimum-length")
        page.await_text(".entries", "/dpm/password/minimum-length = 4")
        page.find(".entries button").click()
        page.await_text(".entries pre", '"out": "write"')

    def test_a_flood_is_kept_within_bounds_and_waits_for_a_reader(self):
        page, watch = self.page, self.watch
        page.view("What happened")
        for burst in range(10):
            with open(watch.path + "/log", "a", encoding="utf-8") as log:
                log.writelines(f"W/TESK_CONSUMER(1): line {burst * 1000 + line}\n" for line in range(1000))
        page.await_text(".entries", "line 9999")
        self.assertLessEqual(page.script("return document.querySelectorAll('.entries li').length"), 500)
        page.await_text("#timeline", "5000 kept")
        page.script("document.querySelector('.entries').scrollTop = 0")
        wait_for(lambda: page.script("return document.querySelector('.entries').scrollTop") == 0, "the top")
        watch.run("lock", "pin")
        page.await_text("#timeline", "Show ")
        self.assertEqual(page.script("return document.querySelector('.entries').scrollTop"), 0)

    def test_trouble_is_made_and_seen(self):
        page, watch = self.page, self.watch
        page.view("Trouble")
        page.press("Let it fail")
        page.await_text("#trouble", "dpm_password_set_quality returns -13 at every call")
        watch.run("mail", "policy", watch.sample("hardened.json"), check=False)
        page.view("Why")
        page.await_text("#why", "128 is demanded")
        page.view("Trouble")
        page.press("Let everything work")
        page.await_text("#trouble", "No function fails")
        page.press("Kill the service")
        page.await_text("#service", "the service does not run")
        page.press("Set the country")
        page.press("Set the key")
        page.await_text("#command", "key set db/eas/password_policy_applied -- 1")
        page.press("Low memory")
        page.view("What happened")
        page.await_text(".entries", "low memory")

    def test_a_story_is_recorded_replayed_and_looked_at(self):
        page, watch = self.page, self.watch
        page.view("Story")
        page.press("Record", "#story")
        page.await_text("#story", "Recording: ")
        watch.run("mail", "policy", watch.sample("hardened.json"))
        page.press("OK", ".screen")
        page.await_text(".screen", "Screen lock")
        page.press("Stop", "#story")
        page.await_text("#story", "lines are recorded.")
        story = pathlib.Path(watch.folder.name) / "story.jsonl"
        story.write_text(page.script("return fetch('story.jsonl').then((answer) => answer.text())"))
        self.assertIn("effects are equal", watch.run("replay", str(story)).stdout)

        page.press("Back", ".screen")
        page.find("#story input[type=file]").send_keys(str(story))
        page.await_text("#story", "The face shows the recording")
        for _ in range(200):
            if "Set a lock" in page.text(".screen"):
                break
            page.press("Next effect", "#story")
        page.await_text(".screen", "bob@bank.example")
        page.press("Close the recording", "#story")
        page.await_text("#announce", "The clock is shown")


class Connection(PanelTest):
    def test_pages_keep_in_step(self):
        first = self.browser.current_window_handle
        self.browser.switch_to.new_window("window")
        second = Page(self.browser, self.watch.address)
        second.view("Trouble")
        second.press("Start the tutorial")
        second.await_text(".screen", "Getting to know")
        self.browser.switch_to.window(first)
        self.page.await_text(".screen", "Getting to know")
        self.page.view("What happened")
        self.page.await_text(".entries", "tutorial start")

    def test_the_oldest_of_five_pages_waits(self):
        first = self.browser.current_window_handle
        for _ in range(4):
            self.browser.switch_to.new_window("window")
            Page(self.browser, self.watch.address)
        self.browser.switch_to.window(first)
        self.page.await_text("#connection", "Paused here")
        self.page.press("Go on here")
        wait_for(lambda: self.page.script("return document.body.dataset.connection") == "open", "the connection")

    def test_a_cut_connection_comes_back_with_what_was_missed(self):
        # the browser takes the name to the relay, which listens elsewhere; the panel hears its own port
        self.relay.target = self.watch.port
        page = Page(self.browser, self.watch.address.replace("127.0.0.1", "localhost"))
        self.relay.cut()
        page.await_text("#connection", "is lost")
        self.watch.run("event", "low-battery")
        self.relay.heal()
        page.view("What happened")
        page.await_text(".entries", "low battery")
        wait_for(lambda: not page.find("#connection").is_displayed(), "the notice to go")

    def test_a_panel_that_ends_says_goodbye(self):
        self.watch.panel.terminate()
        self.page.await_text("#connection", "The panel has ended")


class Foreign(PanelTest):
    def test_a_page_from_elsewhere_can_neither_read_nor_act(self):
        folder = urllib.parse.urlparse(self.browser.current_url).path
        target = f"http://127.0.0.1:{self.watch.port}{folder}"
        page = f"""<!DOCTYPE html><title>evil</title><iframe src="{target}"></iframe><script>
            const target = "{target}"; const seen = []; window.seen = seen;
            const done = (name) => (value) => seen.push([name, value]);
            fetch(target + 'app.js', {{credentials: 'include'}}).then(done('fetch read'), done('refused'));
            fetch(target + 'act', {{method: 'POST', mode: 'no-cors', credentials: 'include', body: '{{"action":"off"}}'}}).then(done('sent'), done('refused'));
            fetch(target + 'act', {{method: 'POST', headers: {{'Content-Type': 'application/json'}}, credentials: 'include', body: '{{"action":"off"}}'}}).then(done('fetch acted'), done('refused'));
            const events = new EventSource(target + 'events', {{withCredentials: true}});
            events.onopen = () => done('stream read')(); events.onerror = () => done('refused')();
            const socket = new WebSocket(target.replace('http', 'ws') + 'events'); socket.onopen = () => done('socket read')(); socket.onerror = () => done('refused')();
            const image = new Image(); image.onload = () => done('image read')(); image.onerror = () => done('refused')(); image.src = target + 'icon.svg';
            const script = document.createElement('script'); script.onload = () => done('script read')(); script.onerror = () => done('refused')(); script.src = target + 'dom.js'; document.body?.append(script) ?? document.documentElement.append(script);
            </script>"""
        server = start_page_server(page)
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        for name in ["evil.example", "127.0.0.1"]:
            self.browser.get(f"http://{name}:{server.server_port}/")
            seen = wait_for(lambda: self.page.script("return window.seen.length >= 7 && window.seen"), "seven refusals")
            read = [what for what in (entry[0] for entry in seen) if what not in ("refused", "sent")]
            self.assertEqual(read, [], name)
            self.browser.switch_to.frame(0)
            self.assertNotIn("deskwatch", self.page.text("body"), "the panel is in a frame")
            self.browser.switch_to.default_content()
        self.assertFalse(self.watch.status()["serviceRunning"])  # it is on, and nobody sent it anything

    def test_a_name_that_resolves_here_is_refused(self):
        self.browser.get(self.watch.address.replace("127.0.0.1", "evil.example"))
        self.assertIn("the Host must be", self.page.text("body"))


def start_page_server(page):
    """Serves one page on the loopback interface, as somebody else's server."""
    class Handler(http.server.BaseHTTPRequestHandler):
        def do_GET(self):
            self.send_response(200)
            self.send_header("Content-Type", "text/html")
            self.end_headers()
            self.wfile.write(page.encode())

        def log_message(self, *_):
            pass

    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server


class Looks(PanelTest):
    def test_axe_finds_nothing_on_any_view(self):
        page, watch = self.page, self.watch
        watch.run("mail", "policy", watch.sample("three-accounts.json"), check=False)
        page.await_text(".screen", "Set a lock")
        source = (pathlib.Path(PICTURES).parent / "axe.min.js").read_text()
        page.script(source)
        rules = {"runOnly": {"type": "tag", "values": ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "wcag22aa", "best-practice"]}}
        for scheme, view in itertools.product(["light", "dark"], VIEWS):
            page.emulate(scheme)
            page.view(view)
            found = page.browser.execute_async_script(
                "const done = arguments[arguments.length - 1]; axe.run(arguments[0]).then((result) => done(result.violations), (error) => done([String(error)]))", rules)
            self.assertEqual([(rule["id"], [node["html"][:120] for node in rule["nodes"]]) if isinstance(rule, dict) else rule for rule in found], [], f"{view}, {scheme}")
        self.assertEqual([entry for entry in page.console() if "axe" not in entry["message"]], [])

    def test_every_pair_of_the_palette_can_be_read(self):
        text = (SOURCES / "deskwatch/page/palette.css").read_text()
        light = dict(re.findall(r"--([\w-]+): (#[0-9a-f]{6})", text.split("@media")[0]))
        dark = {**light, **dict(re.findall(r"--([\w-]+): (#[0-9a-f]{6})", text.split("@media")[1]))}
        grounds = [name for name in light if not name.startswith("on-")]
        for scheme, colours in [("light", light), ("dark", dark)]:
            for name in (name for name in colours if name.startswith("on-")):
                ground = max((ground for ground in grounds if f"{name}-".startswith(f"on-{ground}-")), key=len)
                least = 3 if name.endswith("-edge") else 4.5
                self.assertGreaterEqual(contrast(colours[name], colours[ground]), least, f"{scheme}: {name} on {ground}")
        for sheet in ["layout.css", "parts.css"]:
            self.assertEqual(re.findall(r"#[0-9a-f]{3,8}\b|rgb|hsl", (SOURCES / "deskwatch/page" / sheet).read_text()), [], sheet)

    def test_nothing_is_cut_off_and_everything_is_reached_by_keys(self):
        page, watch = self.page, self.watch
        watch.run("mail", "policy", watch.sample("hardened.json"))
        page.await_text(".screen", "Set a lock")
        for width, height in [(360, 800), (1280, 960), (3840, 2160)]:
            page.size(width, height)
            for view in VIEWS:
                page.view(view)
                self.assertLessEqual(page.script("return document.documentElement.scrollWidth - innerWidth"), 0, f"{view} at {width}")
            cut = page.script("""const face = document.querySelector('.screen').getBoundingClientRect(); const radius = face.width / 2;
                return [...document.querySelectorAll('.screen button')].filter((button) => { const box = button.getBoundingClientRect();
                    const x = Math.max(0, Math.abs(box.left + box.width / 2 - face.left - radius) + box.width / 2 - 20);
                    const y = Math.max(0, Math.abs(box.top + box.height / 2 - face.top - radius) + box.height / 2 - 20);
                    return Math.hypot(x, y) > radius; }).map((button) => button.innerText)""")
            self.assertEqual(cut, [], f"buttons beyond the face at {width}")
        page.size(1280, 960)
        page.script("document.querySelector('#tab-accounts').focus()")
        page.browser.switch_to.active_element.send_keys(Keys.ARROW_RIGHT)
        self.assertEqual(page.script("return document.activeElement.id"), "tab-why")
        self.assertTrue(page.script("return getComputedStyle(document.activeElement).outlineStyle !== 'none'"))
        page.script("[...document.querySelectorAll('.screen button')].at(-1).focus()")
        page.browser.switch_to.active_element.send_keys(Keys.ENTER)
        page.await_text(".screen", "Screen lock")

    def test_pictures_for_a_reviewer(self):
        page, watch = self.page, self.watch
        page.picture("empty.png")
        watch.run("mail", "policy", watch.sample("hardened.json"))
        page.await_text(".screen", "Set a lock")
        page.script("document.querySelector('#folder').textContent = '/tmp/watch'")
        page.picture("panel.png")
        for view in VIEWS:
            page.view(view)
            for name, scheme, width, height in [("light", "light", 1280, 960), ("dark", "dark", 1280, 960), ("narrow", "light", 360, 800), ("wide", "light", 3840, 2160)]:
                page.emulate(scheme)
                page.size(width, height)
                page.picture(f"{view.lower().replace(' ', '-')}-{name}.png")
        self.assertLess(self.difference("panel.png"), 12, "docs/panel.png is of another page; copy the new picture there")

    def difference(self, name):
        """The mean difference, of 255, between the picture in docs/ and the new one, both made small and grey."""
        pictures = [base64.b64encode(path.read_bytes()).decode() for path in (SOURCES / "docs" / name, PICTURES / name)]
        self.browser.get("about:blank")
        return self.browser.execute_async_script("""
            const [first, second, done] = arguments;
            const grey = async (data) => {
                const image = new Image(); image.src = 'data:image/png;base64,' + data; await image.decode();
                const canvas = new OffscreenCanvas(64, 48); const context = canvas.getContext('2d');
                context.filter = 'grayscale(1)'; context.drawImage(image, 0, 0, 64, 48);
                return context.getImageData(0, 0, 64, 48).data;
            };
            Promise.all([grey(first), grey(second)]).then(([one, other]) =>
                done(one.reduce((sum, value, index) => sum + Math.abs(value - other[index]), 0) / one.length))""", *pictures)


def contrast(first, second):
    def luminance(colour):
        parts = [int(colour[index:index + 2], 16) / 255 for index in (1, 3, 5)]
        red, green, blue = [part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4 for part in parts]
        return 0.2126 * red + 0.7152 * green + 0.0722 * blue
    light, dark = sorted((luminance(first), luminance(second)), reverse=True)
    return (light + 0.05) / (dark + 0.05)


class Weight(PanelTest):
    def test_the_first_screen_is_light_and_comes_from_here_alone(self):
        self.browser.get_log("performance")
        self.page = Page(self.browser, self.watch.address)
        total, hosts = 0, set()
        for entry in self.browser.get_log("performance"):
            message = json.loads(entry["message"])["message"]
            if message["method"] == "Network.requestWillBeSent":
                hosts.add(urllib.parse.urlparse(message["params"]["request"]["url"]).netloc)
            if message["method"] == "Network.loadingFinished":
                total += message["params"]["encodedDataLength"]
        self.assertEqual(hosts, {f"127.0.0.1:{self.watch.port}"})
        self.assertLess(total, 200_000)


class Schema(unittest.TestCase):
    def test_events_and_results_are_as_documented(self):
        schema = json.loads((SOURCES / "docs/schema/panel.schema.json").read_text())
        jsonschema.Draft202012Validator.check_schema(schema)
        watch = Watch()
        self.addCleanup(watch.close)
        opener = urllib.request.build_opener(urllib.request.HTTPCookieProcessor())
        page = opener.open(watch.address).geturl()
        request = urllib.request.Request(page + "act", b'{"action":"fault","function":"vconf_get_int","code":-1}', {"Content-Type": "application/json"})
        results = {"result": json.load(opener.open(request))}
        watch.run("mail", "policy", watch.sample("three-accounts.json"), check=False)
        seen = {"result"}
        with opener.open(page + "events") as stream:
            name = ""
            while not {"watch", "panel", "recording", "status", "explanation", "entry"} <= seen or '"action"' not in str(results):
                line = stream.readline().decode().rstrip("\n")
                if line.startswith("event: "):
                    name = line[7:]
                elif line.startswith("data: "):
                    results = {name: json.loads(line[6:])}
                    jsonschema.Draft202012Validator(schema).validate(results)
                    seen.add(name)
                    if name == "entry" and results["entry"]["kind"] == "launch":
                        break
        self.assertLessEqual({"watch", "panel", "recording", "status", "explanation", "entry"}, seen)


if __name__ == "__main__":
    unittest.main()
