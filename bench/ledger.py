"""Counts what the service does in each of its stories and keeps the counts in a table under revision control.
    ledger.py [--check] DESK-PROGRAMS BENCH-PROGRAMS TABLE

Each story is played twice. On a watch of the desk strace and a monitor of the bus count what the service asks of the system
and of others. On a platform that costs nothing callgrind and dhat count its instructions and its memory. --check fails when
the table differs from what was counted; otherwise the table is renewed. What differs by less than its tolerance stays."""

import argparse
import json
import os
import re
import subprocess
import sys
import tempfile
import time
from contextlib import contextmanager
from dataclasses import dataclass
from pathlib import Path

SERVICE = "com.velmor.tesk-agent"
SAMPLES = Path("samples")
LAUNCH = ("launch", SERVICE)
STORED = ("mail", "policy", "hardened.json")
COLUMNS = ("flushes", "writes", "bytes written", "system calls", "bus messages", "launches", "wake-ups", "instructions",
           "heap peak", "private dirty")
TOLERANCES = {"instructions": 0.02, "heap peak": 0.02, "private dirty": 0.05}  # the others are exact
UNITS = {"system calls": "own files", "heap peak": "bytes", "private dirty": "KB"}
DEADLINE = 30  # seconds
HEAD = """# The ledger: what the service costs

`script/bench --ledger` writes this page, and CI (`script/bench --ledger --check`) fails when it is out of date. A commit that
changes a number changes it here too, so that the cost is reviewed with the code. Do not edit it by hand.

Each row begins with the service at rest, except in the two starts, and ends when it rests again. The first policy and the stored
one are samples/hardened.json, the update is samples/strictest.json for the same account. The device is as the stored policy wants
it; where the lock is set, none was. The service ends itself after ten seconds of the idle minute.

- On a watch of the desk, exact: for the service's own files, flushes to the disk, writes, bytes written and all system calls
  (those for memory, for the platform's files and between threads differ from run to run); calls and signals that the service
  sends to the bus, with the platform's own for settings and for the news of a wipe, and the launch requests among them; wake-ups, which
  are waits of a thread that ended because their time had passed.
- On a platform that costs nothing, where the trigger is samples/exchange-default.json for both policies: instructions of the
  trigger, or of the whole life for the two starts, and none for the idle minute (within 2 %); the peak of the heap (2 %) and the
  private dirty memory, pages of files left out (5 %), up to the end of the story. What the platform does to wipe a device is not
  counted.
"""


@dataclass(frozen=True)
class Story:
    """`stored`: whether an account's policy is stored. `trigger`: a command of the desk, or None: nothing happens until
    the service ends itself. `bench`: the trigger on the other platform; "start" counts the whole life. `lock`: what the
    watch boots with."""
    name: str
    stored: bool
    trigger: tuple[str, ...] | None
    bench: str
    lock: str = "password"


STORIES = (
    Story("start, nothing stored", False, LAUNCH, "start"),
    Story("start, one account, nothing changed", True, LAUNCH, "start"),
    Story("first policy", False, STORED, "policy"),
    Story("update", True, ("mail", "policy", "strictest.json"), "policy"),
    Story("deletion", True, ("mail", "delete", "1"), "deletion"),
    Story("lock set", True, ("lock", "password"), "lock", lock="none"),
    Story("idle minute", True, None, "none"),
    Story("wipe", True, ("mail", "wipe"), "wipe"),
)


def output_of(*command: str | Path, **options) -> str:
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **options)
    if result.returncode != 0:
        sys.exit(f"ledger: {' '.join(map(str, command))} failed:\n{result.stdout}")
    return result.stdout


def wait_until(holds, what: str) -> None:
    end = time.monotonic() + DEADLINE
    while not holds():
        if time.monotonic() > end:
            sys.exit(f"ledger: {what} did not happen within {DEADLINE} s")
        time.sleep(0.05)


class Watch:
    """A watch of the desk whose service runs under strace. Its files are in `folder`."""

    def __init__(self, programs: Path, folder: Path) -> None:
        self.programs, self.folder = programs, folder
        self.traced = folder / "service"
        self.traced.write_text(f'#!/bin/sh\nexec strace -ff -y -qq -s 0 -o "{folder}/calls" "{programs}/tesk-agent"\n')
        self.traced.chmod(0o755)
        for sample in ("hardened.json", "strictest.json"):
            message = json.loads((SAMPLES / sample).read_text("utf-8"))
            message["param"][0]["accountId"] = 1
            (folder / sample).write_text(json.dumps(message), "utf-8")

    def desk(self, *arguments: str) -> None:
        output_of(self.programs / "deskwatch", "--device", self.folder / "watch", *arguments, cwd=self.folder)

    @contextmanager
    def booted(self, lock: str):
        self.desk("boot", "--encrypted", "--lock", lock, "--service", str(self.traced))
        try:
            yield
        finally:
            self.desk("off")

    @contextmanager
    def monitored(self):
        """The bus's messages, in a file that is being written."""
        path = self.folder / "messages"
        with path.open("w") as file, subprocess.Popen(["dbus-monitor", "--profile", "--address", self.address()],
                                                      stdout=file) as monitor:
            try:
                wait_until(lambda: "NameLost" in path.read_text(), "the monitor of the bus")
                yield path
            finally:
                monitor.terminate()

    def address(self) -> str:
        return f"unix:path={self.folder}/watch/bus"

    def ask_bus(self, method: str, argument: str) -> str:
        """What the bus daemon answers, without its brackets."""
        answer = subprocess.run(["gdbus", "call", "--address", self.address(), "--dest", "org.freedesktop.DBus",
                                 "--object-path", "/", "--method", f"org.freedesktop.DBus.{method}", argument],
                                capture_output=True, text=True, check=False).stdout
        return answer.strip("(),'\n").removeprefix("uint32 ")

    def names_of_service(self, messages: str) -> set[str]:
        process = self.ask_bus("GetConnectionUnixProcessID", SERVICE)
        senders = set(re.findall(r"^\w+\t\S+\t\S+\t(:1\.\d+)\t", messages, re.MULTILINE))
        return {sender for sender in senders if self.ask_bus("GetConnectionUnixProcessID", sender) == process}

    def calls(self) -> dict[Path, str]:
        return {path: path.read_text("latin-1") for path in self.folder.glob("calls.*")}

    def settle(self) -> None:
        """Until nothing is written to the traces any more."""
        seen: list[int] = []
        def quiet() -> bool:
            seen.append(sum(len(text) for text in self.calls().values()))
            return len(seen) > 8 and len(set(seen[-8:])) == 1
        wait_until(quiet, "rest")


def is_counted(call: str) -> bool:
    """Calls for files of the service. Others differ from machine to machine, or with the thread that comes first. SQLite gives
    its files to their owner only where a superuser runs it."""
    return "/watch/apps/" in call and not call.startswith("fchown(")


def is_write(call: str) -> bool:
    return re.match(r"p?writev?(64)?\(", call) is not None


def counts_of(calls: list[str]) -> dict[str, int]:
    own = [call for call in calls if is_counted(call)]
    writes = [call for call in own if is_write(call)]
    return {"flushes": sum(call.startswith(("fsync(", "fdatasync(")) for call in own),
            "writes": len(writes),
            "bytes written": sum(int(call.rsplit("= ", 1)[1]) for call in writes),
            "system calls": len(own),
            "wake-ups": sum(re.search(r"(?<!, 0)\) += \S+ \(Timeout\)$", call) is not None for call in calls)}


def new_lines(before: dict[Path, str], after: dict[Path, str]) -> list[str]:
    return [line for path, text in after.items() for line in text[len(before.get(path, "")):].splitlines()]


def is_sent_by(names: set[str], line: str) -> bool:
    """Calls and signals; answers go to whoever asked, and dconf's Init is asked for by the desk's own waiting."""
    kind, _, _, sender, *rest = line.split("\t")
    return kind in ("mc", "sig") and sender in names and rest[-1] != "Init"


def prepare(watch: Watch, story: Story) -> None:
    if story.stored:
        with watch.booted(story.lock):
            watch.desk(*STORED)
    for path in watch.calls():
        path.unlink()


def counts_on_desk(programs: Path, story: Story) -> dict[str, int]:
    with tempfile.TemporaryDirectory(prefix="tesk-ledger.") as folder:
        watch = Watch(programs, Path(folder))
        prepare(watch, story)
        with watch.booted(story.lock), watch.monitored() as messages:
            if story.trigger != LAUNCH:
                watch.desk(*LAUNCH)
                watch.settle()
            before, heard = watch.calls(), len(messages.read_text())
            if story.trigger is not None:
                watch.desk(*story.trigger)
            names = watch.names_of_service(messages.read_text())
            if story.trigger is None:
                wait_until(lambda: watch.ask_bus("GetNameOwner", SERVICE) == "", "the end of the service")
            watch.settle()
            sent = [line for line in messages.read_text()[heard:].splitlines() if is_sent_by(names, line)]
            return counts_of(new_lines(before, watch.calls())) | {
                "bus messages": len(sent), "launches": sum(line.endswith("\tLaunch") for line in sent)}


def number_in(text: str, pattern: str) -> int:
    found = re.search(pattern, text)
    if found is None:
        sys.exit(f"ledger: nothing like {pattern} in:\n{text}")
    return int(found.group(1).replace(",", ""))


def costs_alone(programs: Path, story: Story) -> dict[str, int]:
    trigger = "none" if story.bench == "start" else story.bench
    life = (programs / "bench-story", str(int(story.stored)), trigger)
    quiet = ("valgrind", "--child-silent-after-fork=yes")
    function = "main" if story.bench == "start" else "bench::pullTrigger*"
    counted = output_of(*quiet, "--tool=callgrind", "--callgrind-out-file=/dev/null", f"--toggle-collect={function}", *life)
    kept = output_of(*quiet, "--tool=dhat", "--dhat-out-file=/dev/null", *life)
    dirty = [int(output_of("setarch", "-R", *life, "memory", env={})) for _ in range(5)]
    return {"instructions": number_in(counted, r"refs: +([\d,]+)"), "heap peak": number_in(kept, r"t-gmax: ([\d,]+)"),
            "private dirty": min(dirty)}


Counts = dict[str, dict[str, int]]  # by story and column


def may_trace() -> bool:
    """Some machines forbid one process to look at another."""
    return subprocess.run(["strace", "-qq", "-o", "/dev/null", "true"], capture_output=True, check=False).returncode == 0


def counted(desk: Path, bench: Path, is_traced: bool) -> Counts:
    counts = {}
    for story in STORIES:
        print(f"ledger: {story.name}", file=sys.stderr, flush=True)
        counts[story.name] = (counts_on_desk(desk, story) if is_traced else {}) | costs_alone(bench, story)
    return counts


def kept_counts(table: Path) -> Counts:
    """What the table says; nothing when there is none."""
    rows = [line.strip("| ").split("|") for line in table.read_text("utf-8").splitlines()] if table.exists() else []
    return {name.strip(): {column: int(cell.replace(",", "")) for column, cell in zip(COLUMNS, cells)}
            for name, *cells in rows if name.strip() in {story.name for story in STORIES}}


def is_as_kept(column: str, now: int, kept: int | None) -> bool:
    return kept is not None and abs(now - kept) <= kept * TOLERANCES.get(column, 0)


def text_of(counts: Counts) -> str:
    rows = [" | ".join([name, *(f"{values[column]:,}" for column in COLUMNS)]) for name, values in counts.items()]
    titles = [f"{column} ({UNITS[column]})" if column in UNITS else column for column in COLUMNS]
    return "\n".join([HEAD, f"| story | {' | '.join(titles)} |", "|---|" + "---:|" * len(COLUMNS),
                      *(f"| {row} |" for row in rows)]) + "\n"


def main() -> int:
    parser = argparse.ArgumentParser()
    parser.add_argument("--check", action="store_true")
    for name in ("desk", "bench", "table"):
        parser.add_argument(name, type=Path)
    arguments = parser.parse_args()
    is_traced = may_trace()
    if not is_traced and not arguments.check:
        sys.exit("ledger: strace may not trace processes here")
    if not is_traced:
        print("ledger: strace may not trace processes here: the counts on the desk are left out", file=sys.stderr)
    now, kept = counted(arguments.desk.resolve(), arguments.bench.resolve(), is_traced), kept_counts(arguments.table)
    changes = [(name, column) for name in now for column in now[name]
               if not is_as_kept(column, now[name][column], kept.get(name, {}).get(column))]
    for name, column in changes:
        before = kept.get(name, {}).get(column)
        print(f"{arguments.table}: {name}: {column}: {'-' if before is None else format(before, ',')} -> {now[name][column]:,}")
        kept.setdefault(name, {})[column] = now[name][column]
    if not arguments.check:
        arguments.table.write_text(text_of({name: kept[name] for name in now}), "utf-8")
        return 0
    if changes:
        print("What the service costs has changed. script/bench --ledger writes it; commit the table with the change.")
    return 1 if changes else 0


if __name__ == "__main__":
    sys.exit(main())
