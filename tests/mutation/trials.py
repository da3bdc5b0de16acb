"""Runs tests, each in a process of its own, with none or one of the small wrong changes in force."""

import os
import re
import subprocess
import tempfile
import time
from collections import Counter, defaultdict
from collections.abc import Callable, Iterable
from concurrent.futures import ThreadPoolExecutor
from enum import Enum
from itertools import chain
from pathlib import Path
from typing import TypeVar

from schemata import Mutant

TIME_OUT = 30  # seconds, and ten times what the test takes without a change
# Whatever a test starts ends with it, also when the change keeps it from ending that itself. The shell takes leave of orphans.
ALONE = ("unshare", *(() if os.geteuid() == 0 else ("--user", "--map-current-user")),
         "--pid", "--fork", "--mount-proc", "--kill-child", "bash", "-c", '"$@"; exit', "test")
Test = tuple[Path, str]  # a program and the name of a test in it
Item = TypeVar("Item")
Result = TypeVar("Result")


class Answer(Enum):
    """What the tests say about a change."""
    NOTICED = "noticed"
    ENDLESS = "endless"  # a test ran out of time
    UNNOTICED = "not noticed"
    UNREACHED = "reached by no test"


def words_in(name: str) -> set[str]:
    """Their beginnings, so that "messages/message_table" and "MessageLint.KnowsTables" share two."""
    return {word.lower()[:5] for word in re.findall(r"[A-Z]?[a-z]{3,}", name)}


def in_parallel(work: Callable[[Item], Result], items: Iterable[Item]) -> list[Result]:
    with ThreadPoolExecutor(2 * len(os.sched_getaffinity(0))) as workers:  # a test of programs waits half of its time
        return list(workers.map(work, items))


class Trials:
    """The tests of programs in which the changes are. Their files live in `folder`."""

    def __init__(self, programs: list[Path], folder: Path, mutants: list[Mutant], most: int) -> None:
        self.folder = folder
        self.most = most  # tests that are asked about a change
        self.patience = 1  # how many times its time a test is given
        self.seconds: dict[Test, float] = defaultdict(float)
        self.noticed_by: dict[str, Counter[Test]] = defaultdict(Counter)  # how often which test, by source
        self.noticed: Counter[Test] = Counter()  # the same of all sources
        self.numbers: dict[str, set[int]] = defaultdict(set)  # of the changes, by source
        for mutant in mutants:
            self.numbers[mutant.source].add(mutant.number)
        last = max(mutant.number for mutant in mutants)
        self.tests = [(program, test) for program in programs for test in self.listed(program)]
        self.reached = dict(zip(self.tests, in_parallel(lambda test: self.reached_by(test, last), self.tests)))

    def listed(self, program: Path) -> list[str]:
        text = subprocess.run([program, "--gtest_list_tests"], capture_output=True, text=True, check=True).stdout
        tests, suite = [], ""
        for line in text.splitlines():
            name = line.split("#")[0].rstrip()
            if not line.startswith(" "):
                suite = name
            else:
                tests.append(suite + name.strip())
        return [test for test in tests if "DISABLED_" not in test]

    def passes(self, test: Test, **environment: str) -> bool:
        """Throws subprocess.TimeoutExpired."""
        command = [*ALONE, test[0], f"--gtest_filter={test[1]}"]
        return subprocess.run(command, cwd=self.folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              env={**os.environ, "TMPDIR": str(self.folder), **environment},
                              timeout=self.patience * (TIME_OUT + 10 * self.seconds[test]), check=False).returncode == 0

    def reached_by(self, test: Test, last: int) -> set[int]:
        """The changes that the test comes by while none is in force."""
        with tempfile.NamedTemporaryFile(dir=self.folder) as trace:
            trace.truncate(last + 1)
            start = time.monotonic()
            if not any(self.passes(test, LC_TESK_MUTATION_TRACE=trace.name) for _ in range(2)):
                raise SystemExit(f"mutate: {test[1]} fails without any change")
            self.seconds[test] = time.monotonic() - start
            return {number for number, reached in enumerate(trace.read()) if reached}

    def likeliest(self, mutant: Mutant) -> list[Test]:
        """The tests that come by the change: those that noticed most other changes in the source, and then by turns one
        that is about it and one of those that noticed most of all, or come by most, as whole sessions do. A test is about a
        source when their names share words, or when the greatest share of what it comes by is in there."""
        successes, numbers, words = self.noticed_by[mutant.source], self.numbers[mutant.source], words_in(mutant.source)
        all_successes = self.noticed.copy()  # others count meanwhile

        def nearness(test: Test) -> tuple[int, int, float]:
            reached = self.reached[test]
            return successes[test], len(words & words_in(test[1])), len(reached & numbers) / len(reached)

        def width(test: Test) -> tuple[int, int, int]:
            return successes[test], all_successes[test], len(self.reached[test])

        candidates = [test for test in self.tests if mutant.number in self.reached[test]]
        by_turns = chain.from_iterable(zip(sorted(candidates, key=nearness, reverse=True),
                                           sorted(candidates, key=width, reverse=True)))
        return list(dict.fromkeys(by_turns))[:self.most]

    def answer(self, mutant: Mutant) -> Answer:
        asked = self.likeliest(mutant)
        for test in asked:
            try:
                if self.passes(test, LC_TESK_MUTANT=str(mutant.number)):
                    continue
            except subprocess.TimeoutExpired:
                return Answer.ENDLESS
            self.noticed_by[mutant.source][test] += 1
            self.noticed[test] += 1
            return Answer.NOTICED
        return Answer.UNNOTICED if asked else Answer.UNREACHED

    def answers(self, mutants: list[Mutant]) -> dict[Mutant, Answer]:
        """Asks again, one at a time and with more patience, where time ran out: the machine may have been busy."""
        answers = dict(zip(mutants, in_parallel(self.answer, mutants)))
        self.patience = 2
        for mutant in mutants:
            if answers[mutant] == Answer.ENDLESS:
                answers[mutant] = self.answer(mutant)
        return answers
