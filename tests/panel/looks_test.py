"""What the page looks like, and to whom it can be of use. Pictures go to the build folder for a reviewer."""

import base64
import itertools
import pathlib
import re
import unittest

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.keys import Keys

from panel_browser import PICTURES, SOURCES, VIEWS, PanelTest, wait_for


class Looks(PanelTest):
    def test_axe_finds_nothing_on_any_view(self):
        page, watch = self.page, self.watch
        watch.send("three-accounts.json", check=False)
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
        watch.send("hardened.json")
        page.await_text(".screen", "Set a lock")
        for width, height in [(360, 800), (1200, 800), (1280, 960), (3840, 2160)]:
            page.size(width, height)
            for view in VIEWS:
                page.view(view)
                self.assertLessEqual(page.script("return document.documentElement.scrollWidth - innerWidth"), 0, f"{view} at {width}")
                hidden = page.script("return Math.max(...[...document.querySelectorAll('.scroll')].map((box) => box.scrollWidth - box.clientWidth))")
                self.assertLessEqual(hidden, 0, f"the table of {view} at {width}")
            cut = page.script("""const face = document.querySelector('.screen').getBoundingClientRect(); const radius = face.width / 2;
                return [...document.querySelectorAll('.screen button')].filter((button) => { const box = button.getBoundingClientRect();
                    const x = Math.max(0, Math.abs(box.left + box.width / 2 - face.left - radius) + box.width / 2 - 20);
                    const y = Math.max(0, Math.abs(box.top + box.height / 2 - face.top - radius) + box.height / 2 - 20);
                    return Math.hypot(x, y) > radius; }).map((button) => button.innerText)""")
            self.assertEqual(cut, [], f"buttons beyond the face at {width}")
        page.size(1280, 960)
        page.script("[...document.querySelectorAll('.screen button')].at(-1).focus()")
        page.browser.switch_to.active_element.send_keys(Keys.ENTER)
        page.await_text(".screen", "Screen lock")

    def test_every_control_is_reached_and_seen_by_keys(self):
        page = self.page
        self.watch.send("hardened.json")
        page.await_text(".screen", "Set a lock")
        page.script("document.querySelector('#tab-accounts').focus()")
        controls = """const controls = [...document.querySelectorAll('a, button, input, select, summary, [tabindex="0"]')].filter((control) =>
            control.checkVisibility() && !control.disabled && control.tabIndex >= 0 && !control.closest('[inert]'));"""
        for view in VIEWS:
            self.assertEqual(page.script("return document.activeElement.innerText"), view)
            count = page.script(controls + """window.reached = new Set(); addEventListener('focusin', ({ target }) => {
                window.reached.add(target); if (getComputedStyle(target).outlineStyle === 'none') window.reached.add(`unseen: ${target.outerHTML}`); });
                document.querySelector('.skip').focus(); return controls.length""")
            ActionChains(page.browser, duration=0).send_keys(Keys.TAB * count).perform()
            missing = page.script(controls + """return controls.filter((control) => !window.reached.has(control)).map((control) => control.outerHTML)
                .concat([...window.reached].filter((entry) => typeof entry === 'string'))""")
            self.assertEqual(missing, [], view)
            page.script("document.querySelector('[role=tab][aria-selected=true]').focus()")
            page.browser.switch_to.active_element.send_keys(Keys.ARROW_RIGHT)

    def test_forced_colours_and_reduced_motion_are_respected(self):
        page = self.page
        self.watch.send("hardened.json")
        page.await_text(".screen", "Set a lock")
        style = "return getComputedStyle(document.querySelector(arguments[0]), arguments[1])[arguments[2]]"
        own = page.script(style, ".bezel", None, "fill")
        page.emulate(colors="active", motion="no-preference")
        self.assertNotEqual(page.script(style, ".bezel", None, "fill"), own)
        self.assertEqual(page.script(style, ".tick", None, "stroke"), page.script("return getComputedStyle(document.body).color"))
        self.assertEqual(page.script(style, "input.switch", None, "appearance"), "auto")
        self.assertEqual(page.script(style, ".screen button", None, "borderStyle"), "solid")
        tabs = [page.script(style, f"[aria-selected={chosen}]", None, "borderBottomColor") for chosen in ["true", "false"]]
        self.assertNotEqual(*tabs)
        page.picture("forced-colours.png")
        page.emulate(motion="no-preference")
        self.assertNotEqual(page.script(style, "input.switch", "::after", "transitionDuration"), "0s")
        page.emulate()
        self.assertEqual(page.script(style, "input.switch", "::after", "transitionDuration"), "0s")

    def test_pictures_for_a_reviewer(self):
        page, watch = self.page, self.watch
        page.picture("empty.png")
        watch.send("hardened.json")
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


if __name__ == "__main__":
    unittest.main()
