"""Runs the measurements and prints one table: the cost of the service, the limit, and the ratio of the two.
    report.py FOLDER IDLE-SECONDS     with the folder of the built programs"""

import json
import os
import re
import subprocess
import sys
import tempfile

PROGRAMS, IDLE_SECONDS = os.path.abspath(sys.argv[1]), sys.argv[2]

# work, stored accounts, rounds over which instructions are counted
WORKS = [("update", 1, 40), ("merge", 1, 40), ("merge", 10, 40), ("merge", 100, 20), ("merge", 1000, 8),
         ("merge", 10000, 2), ("decide", 1, 10000)]
COMPILED = {"update", "merge"}  # works that use the database
GOALS = {("limit", "merge", 100): 2.0, ("compiled", "update", 1): 1.15, "start-up": 1.25, "Anonymous": 1.15}


def output_of(*command):
    result = subprocess.run(command, capture_output=True, text=True, check=False)
    if result.returncode != 0:
        sys.exit(f"bench: {' '.join(command)} failed:\n{result.stdout}{result.stderr}")
    return result.stdout + result.stderr


def instructions_of_run(side, work, accounts, rounds):
    text = output_of("valgrind", "--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=/dev/null",
                     f"{PROGRAMS}/bench-count", side, work, str(accounts), str(rounds))
    return int(re.search(r"I +refs: +([\d,]+)", text).group(1).replace(",", ""))


def instructions(side, work, accounts, rounds):
    """Of one round. The first round, which opens and warms up, cancels out, as do the start and end of the process."""
    first = instructions_of_run(side, work, accounts, 1)
    return (instructions_of_run(side, work, accounts, 1 + rounds) - first) / rounds


def times(work, accounts):
    """Medians in microseconds, of the service and of the limit."""
    text = output_of(f"{PROGRAMS}/bench-times", work, str(accounts), "--benchmark_format=json",
                     "--benchmark_repetitions=5", "--benchmark_min_time=0.1", "--benchmark_report_aggregates_only=true")
    results = json.loads(text[text.index("{"):text.rindex("}") + 1])["benchmarks"]
    return [next(result["real_time"] for result in results if result["name"] == f"{side}_median")
            for side in ("service", "limit")]


def row(name, service, limit, unit, goal=None, form="{:,.0f}"):
    ratio = f"{service / limit:.2f}" if limit else "-"
    wanted = "" if goal is None else f"{goal:.2f}"
    print(f"{name:<34}{form.format(service):>14}{form.format(limit):>14} {unit:<13}{ratio:>7}{wanted:>7}", flush=True)


def header(*titles):
    print("{:<34}{:>14}{:>14} {:<13}{:>7}{:>7}".format(*titles))


def report_works():
    header("work", "service", "limit", "unit", "ratio", "goal")
    for work, accounts, rounds in WORKS:
        name = work if work != "merge" else f"merge of {accounts:,} accounts"
        cost, limit = (instructions(side, work, accounts, rounds) for side in ("service", "limit"))
        row(name, cost, limit, "instructions", GOALS.get(("limit", work, accounts)))
        if work in COMPILED:
            row("  beside compiled statements", cost, instructions("compiled", work, accounts, rounds), "instructions",
                GOALS.get(("compiled", work, accounts)))
        row("", *times(work, accounts), "µs", form="{:,.2f}")


def report_processes():
    with tempfile.TemporaryDirectory(prefix="tesk-bench.") as folder:
        lines = output_of(f"{PROGRAMS}/bench-processes", PROGRAMS, folder, IDLE_SECONDS).splitlines()
    values = {tuple(line.split()[:2]): float(line.split()[2]) for line in lines if line.count(" ") == 2}
    for limit, title in (("bare", "bare process"), ("platform", "host platform")):
        print()
        header("process", "service", title, "unit", "ratio", "goal")
        goals = GOALS if limit == "bare" else {}
        for name, label, unit in (("start-up", "start-up to a registered port", "ms"),
                                  ("Rss", "resident memory", "KB"), ("Pss", "proportional memory", "KB"),
                                  ("Anonymous", "private dirty memory", "KB"), ("threads", "threads", ""),
                                  ("wake-ups", f"wake-ups in {IDLE_SECONDS} s of idling", ""),
                                  ("system-calls", f"system calls in {IDLE_SECONDS} s of idling", "")):
            form = "{:,.1f}" if unit == "ms" else "{:,.0f}"
            row(label, values[name, "service"], values[name, limit], unit, goals.get(name), form)


def report_size():
    with tempfile.TemporaryDirectory() as folder:
        stripped = f"{folder}/stripped"
        output_of("strip", "-o", stripped, f"{PROGRAMS}/tesk-agent")
        print(f"\nstripped executable: {os.path.getsize(stripped):,} bytes (goal: 150,000)")


report_works()
report_processes()
report_size()
