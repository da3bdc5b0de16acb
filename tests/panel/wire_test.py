"""What passes between page and panel, and what must not."""

import http.server
import json
import threading
import unittest
import urllib.parse
import urllib.request

import jsonschema

from panel_browser import SOURCES, Page, PanelTest, Watch, wait_for


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
        watch.send("three-accounts.json", check=False)
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
