"""Runs unit tests, each in a process of its own, with none or one of the small wrong changes in force."""

import os
import subprocess
import tempfile
import time
from collections import Counter, defaultdict
from collections.abc import Callable, Iterable
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import TypeVar

from schemata import Mutant

TIME_OUT = 20  # seconds; most tests take some hundredths of one
Item = TypeVar("Item")
Result = TypeVar("Result")


def in_parallel(work: Callable[[Item], Result], items: Iterable[Item]) -> list[Result]:
    with ThreadPoolExecutor(len(os.sched_getaffinity(0))) as workers:
        return list(workers.map(work, items))


class Trials:
    """The tests of a program in which all changes are. Their files live in `folder`."""

    def __init__(self, program: Path, folder: Path) -> None:
        self.program = program
        self.folder = folder
        self.seconds: dict[str, float] = {}
        self.endless: list[str] = []  # tests that were ended
        self.noticed_by: dict[str, Counter[str]] = defaultdict(Counter)  # how often which test, by source
        self.tests = self.listed()

    def listed(self) -> list[str]:
        text = subprocess.run([self.program, "--gtest_list_tests"], capture_output=True, text=True, check=True).stdout
        tests, suite = [], ""
        for line in text.splitlines():
            name = line.split("#")[0].rstrip()
            if not line.startswith(" "):
                suite = name
            else:
                tests.append(suite + name.strip())
        return [test for test in tests if "DISABLED_" not in test]

    def passes(self, test: str, **environment: str) -> bool:
        command = [self.program, f"--gtest_filter={test}"]
        try:
            return subprocess.run(command, cwd=self.folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                  env={**os.environ, "TMPDIR": str(self.folder), **environment}, timeout=TIME_OUT,
                                  check=False).returncode == 0
        except subprocess.TimeoutExpired:
            self.endless.append(test)
            return False

    def reached_by(self, test: str, mutants: int) -> set[int]:
        """The changes that the test comes by while none is in force."""
        with tempfile.NamedTemporaryFile(dir=self.folder) as trace:
            trace.truncate(mutants + 1)
            start = time.monotonic()
            if not self.passes(test, TESK_MUTATION_TRACE=trace.name):
                raise SystemExit(f"mutate: {test} fails without any change")
            self.seconds[test] = time.monotonic() - start
            return {number for number, reached in enumerate(trace.read()) if reached}

    def reaching_tests(self, mutants: int) -> dict[int, list[str]]:
        tests: dict[int, list[str]] = defaultdict(list)
        for test, numbers in zip(self.tests, in_parallel(lambda test: self.reached_by(test, mutants), self.tests)):
            for number in numbers:
                tests[number].append(test)
        return tests

    def is_noticed(self, mutant: Mutant, tests: list[str]) -> bool:
        """Whether one of the tests fails; those that noticed other changes in the source are asked first."""
        successes = self.noticed_by[mutant.path]
        for test in sorted(tests, key=lambda test: (-successes[test], self.seconds[test])):
            if not self.passes(test, TESK_MUTANT=str(mutant.number)):
                successes[test] += 1
                return True
        return False
