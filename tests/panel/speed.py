"""Measures the page in a real browser and prints one table; script/panel runs it."""

import os
import statistics
import threading
import time

import panel_browser
from panel_browser import Page, Watch, start_browser, wait_for

CHANGES = 40
FLOOD_SECONDS = 10
LINES_A_SECOND = 1000
GOAL = 100  # milliseconds from the log line to the page

WATCHING = """
    const [selector, part] = arguments; window.seen = 0;
    const place = document.querySelector(selector);
    new MutationObserver((_, observer) => { if (place.lastElementChild.textContent.includes(part)) {
        window.seen = performance.timeOrigin + performance.now(); observer.disconnect(); } }).observe(place, {childList: true, subtree: true});"""

SWITCHING = """
    const [wanted] = arguments; window.seen = 0;
    const row = [...document.querySelectorAll('.card .member')].find((member) => member.querySelector('code').textContent === 'allowCamera');
    const look = () => { if (row.querySelector('input').checked === wanted) { window.seen = performance.timeOrigin + performance.now(); }
        else { setTimeout(look, 1); } };
    look();"""

TASKS = """
    window.tasks = []; window.frames = 0; const frame = () => { window.frames += 1; requestAnimationFrame(frame); }; frame();
    new PerformanceObserver((list) => window.tasks.push(...list.getEntries().map((task) => task.duration))).observe({type: 'longtask'});"""


class LogEnd:
    """Notes when the log of a watch grows."""

    def __init__(self, path):
        self.path, self.grown, self.is_over = path, [], False
        self.thread = threading.Thread(target=self.look)
        self.thread.start()

    def look(self):
        size = os.path.getsize(self.path)
        while not self.is_over:
            now = os.path.getsize(self.path)
            if now != size:
                size = now
                self.grown.append(time.time() * 1000)
            time.sleep(0.0005)

    def close(self):
        self.is_over = True
        self.thread.join()


def append(watch, lines):
    with open(watch.path + "/log", "a", encoding="utf-8") as log:
        log.writelines(f"W/TESK_CONSUMER(1): {line}\n" for line in lines)


def lines_to_the_page(watch, page):
    """Milliseconds from each line of the log to its row of the time line."""
    page.view("What happened")
    delays = []
    for number in range(CHANGES):
        page.script(WATCHING, ".entries", f"measured line {number}.")
        written = time.time() * 1000
        append(watch, [f"measured line {number}."])
        delays.append(wait_for(lambda: page.script("return window.seen"), "the line") - written)
    return delays


def policies_to_the_page(watch, page):
    """Milliseconds from the service's last line about a policy to the switch of the account's card."""
    page.view("Accounts")
    messages = []
    for camera in ["false", "true"]:
        path = f"{watch.folder.name}/camera-{camera}.json"
        with open(watch.sample("exchange-default.json"), encoding="utf-8") as source, open(path, "w", encoding="utf-8") as message:
            message.write(source.read().replace('"allowCamera": true', f'"allowCamera": {camera}'))
        messages.append(path)
    watch.run("mail", "policy", messages[1])
    page.find(".card .member")
    delays = []
    for number in range(CHANGES // 2):
        page.script(SWITCHING, number % 2 == 1)
        log = LogEnd(watch.path + "/log")
        watch.run("mail", "policy", messages[number % 2])
        seen = wait_for(lambda: page.script("return window.seen"), "the switch")
        log.close()
        delays.append(seen - max(grown for grown in log.grown if grown <= seen))
    return delays


def heap_of(page):
    page.browser.execute_cdp_cmd("HeapProfiler.collectGarbage", {})
    return page.browser.execute_cdp_cmd("Runtime.getHeapUsage", {})["usedSize"] / 1e6


def flood(watch, page):
    """What a flood of lines costs: {name: (value, unit)}."""
    page.view("What happened")
    page.script(TASKS)
    heaps = [heap_of(page)]
    start = time.monotonic()
    frames = 0
    for round_number in range(2):
        start = time.monotonic()
        for burst in range(FLOOD_SECONDS * 100):
            append(watch, [f"flood {round_number} {burst} {line} ".ljust(200, ".") for line in range(LINES_A_SECOND // 100)])
            time.sleep(max(0.0, start + (burst + 1) / 100 - time.monotonic()))
        seconds = time.monotonic() - start
        page.await_text(".entries", f"flood {round_number} {FLOOD_SECONDS * 100 - 1} {LINES_A_SECOND // 100 - 1} ")
        if round_number == 0:
            frames = page.script("return window.frames") / seconds
        heaps.append(heap_of(page))
    tasks = page.script("return window.tasks")
    return {
        "tasks of more than 50 ms": (len(tasks), ""),
        "longest task": (max(tasks, default=0), "ms"),
        "frames a second": (frames, ""),
        "heap before": (heaps[0], "MB"),
        f"heap after {FLOOD_SECONDS * LINES_A_SECOND:,} lines": (heaps[1], "MB"),
        f"heap after {2 * FLOOD_SECONDS * LINES_A_SECOND:,} lines": (heaps[2], "MB"),
        "rows in the page": (page.script("return document.querySelectorAll('.entries li').length"), ""),
    }


def main():
    panel_browser.DEADLINE = 60
    watch = Watch()
    browser = start_browser()
    try:
        page = Page(browser, watch.address)
        watch.send("exchange-default.json")
        print(f"{'until the page shows it':<34}{'median':>9}{'95 %':>9}{'longest':>9} unit{'goal':>8}")
        for name, measure in [("from a line of the log", lines_to_the_page), ("from the line about a policy", policies_to_the_page)]:
            delays = sorted(measure(watch, page))
            print(f"{name:<34}{statistics.median(delays):9.1f}{delays[int(len(delays) * 0.95)]:9.1f}{delays[-1]:9.1f} ms  {GOAL:8}")
        print(f"\n{LINES_A_SECOND:,} lines a second, for {FLOOD_SECONDS} s and again")
        for name, (value, unit) in flood(watch, page).items():
            print(f"{name:<34}{value:9.1f} {unit}".rstrip())
    finally:
        browser.quit()
        watch.close()


if __name__ == "__main__":
    main()
