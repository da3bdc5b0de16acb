"""The page in a real browser, used as a tester uses it."""

import json
import pathlib
import subprocess
import unittest

from selenium.webdriver.common.keys import Keys

from panel_browser import DESKWATCH, VIEWS, Page, PanelTest, wait_for


class Tour(PanelTest):
    def test_the_readmes_tour_by_clicks(self):
        page = self.page
        page.preset("hardened.json")
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
        page.press("Wrong password", ".screen")
        page.await_text(".screen", "1 of 10 wrong")
        page.press("Unlock", ".screen")
        page.press("Lock now", ".screen")
        page.await_text("#announce", "The watch is locked")
        page.view("Trouble")
        page.press("Make it that old")
        page.press("Set another", ".screen")
        page.await_text(".screen", "Screen lock")
        self.assertEqual(page.console(), [])

    def test_the_popups_other_answers_and_the_tutorial(self):
        page, watch = self.page, self.watch
        watch.run("tutorial", "start")
        page.await_text(".screen", "Getting to know your watch")
        page.press("End the tutorial", ".screen")
        watch.send("hardened.json")
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
        self.browser.switch_to.new_window("window")
        later = Page(self.browser, watch.address)
        later.await_text(".screen", "Wiped")
        later.press("Go on", ".screen")
        later.find(".screen-clock")


class Accounts(PanelTest):
    def switch(self, key):
        return self.page.script("""return [...document.querySelectorAll('.card .member')]
            .find((row) => row.querySelector('code').innerText === arguments[0]).querySelector('input, select')""", key)

    def test_a_draft_is_counted_reset_and_follows_the_watch(self):
        page, watch = self.page, self.watch
        watch.send("exchange-default.json")
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
        page.await_text(".card", "The value is kept, and the camera stays on.")
        page.press("Reset all")
        watch.send("strictest.json", check=False)
        page.await_text(".card .group:last-child", "It gives way: 0 is merged, not enforced.")
        watch.run("mail", "delete", "4")
        page.press("Remove")
        page.await_text("#accounts .empty", "No account is on this watch")
        self.assertEqual(watch.status()["accounts"], [])

    def test_dropped_files_become_drafts(self):
        page, watch = self.page, self.watch
        self.drop(watch.sample("three-accounts.json"))
        wait_for(lambda: len(page.browser.find_elements("css selector", ".card")) == 3, "three cards")
        self.drop(watch.sample("provision-hardened.xml"))
        page.await_text("#accounts", "elements reach the watch")
        page.await_text("#accounts", "The mail application must not fetch larger attachments.")
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

    def test_what_is_refused_says_why(self):
        page, watch = self.page, self.watch
        page.preset("hardened.json")
        page.press("Send", "#accounts")
        page.find(".preview ul")
        pathlib.Path(watch.path + "/apps/com.velmor.tesk-agent/data").mkdir(parents=True, exist_ok=True)
        pathlib.Path(watch.path + "/apps/com.velmor.tesk-agent/data/dbspace").write_text("no room for a database")
        page.press("Send now", ".preview")
        page.await_text(".card .error", "the store cannot be written")
        pathlib.Path(watch.path + "/services/com.velmor.tesk-agent.service").write_text("[D-BUS Service]\nName=com.velmor.tesk-agent\nExec=/bin/false\n")
        watch.run("kill")
        page.press("Send", "#accounts")
        page.press("Send now", ".preview")
        page.await_text(".card .error", "com.velmor.tesk-agent")

    def test_an_account_is_connected_to_a_server(self):
        page, watch = self.page, self.watch
        server = subprocess.Popen([DESKWATCH, "exchange", "serve", watch.sample("provision-hardened.xml")], stdout=subprocess.PIPE, text=True)
        self.addCleanup(server.stdout.close)
        self.addCleanup(server.wait)
        self.addCleanup(server.terminate)
        address = "http" + server.stdout.readline().strip().split("http")[1]
        page.find("details summary").click()
        for field, text in zip(page.browser.find_elements("css selector", "details input"), [address, "bob", "typed by nobody"]):
            field.send_keys(text)
        page.press("Connect", "details")
        page.await_text("details li", "not acknowledged yet")
        page.await_text("#command", f"mail connect {address} --user=bob --no-wait")
        page.press("Refresh account 1", "details")
        page.await_text("details .error", "Type the password")
        page.press("Disconnect account 1", "details")
        wait_for(lambda: page.text("details li") == "", "the account to go")
        self.assertEqual(subprocess.run(["grep", "-r", "typed by nobody", watch.path], check=False).returncode, 1)
        self.assertNotIn("typed by nobody", page.script("return fetch('events').then(async (answer) => new TextDecoder().decode((await answer.body.getReader().read()).value))"))

    def test_names_are_text(self):
        page, watch = self.page, self.watch
        name = "<img src=x onerror=alert(1)><script>alert(2)</script>"
        message = json.loads(pathlib.Path(watch.sample("hardened.json")).read_text())
        message["param"][0]["accountName"] = name
        watch.run("mail", "policy", "/dev/stdin", input=json.dumps(message))
        page.await_text(".screen .name", name)
        page.await_text(".card h3", name)
        with open(watch.path + "/log", "a", encoding="utf-8") as log:
            log.writelines(f"W/TESK_CONSUMER({process:5}): {name} {process}\n" for process in [9999, 1234567])
        for view in VIEWS:
            page.view(view)
        page.view("What happened")
        for process in [9999, 1234567]:
            page.await_text(".entries", f"W {name} {process}")
        self.assertEqual(page.browser.find_elements("css selector", "img, body script"), [])
        self.assertEqual(page.console(), [])


class Happened(PanelTest):
    def test_entries_are_searched_opened_and_followed(self):
        page, watch = self.page, self.watch
        page.view("What happened")
        watch.send("hardened.json")
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
        watch.send("hardened.json", check=False)
        page.view("Why")
        page.await_text("#why", "128 is demanded")
        page.view("Trouble")
        page.press("Let everything work")
        page.await_text("#trouble", "No function fails")
        page.press("Kill the service")
        page.await_text("#service", "the service does not run")
        self.assertEqual(page.script("return [...document.querySelectorAll('option')].filter((option) => option.textContent === 'Iceland (IS)').length"), 1)
        page.press("Take it away")
        page.await_text("#trouble", "vconf_notify_key_changed returns -1")
        page.press("Let everything work")
        page.press("Set the country")
        page.await_text("#command", "key set db/rgn/country_iso --text -- US")
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
        watch.send("hardened.json")
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


if __name__ == "__main__":
    unittest.main()
