"""Makes small wrong changes in the sources of one area, one at a time, and tells which of them its tests notice.
    mutate.py [--every N] PLACE...     from the root of the repository, where build/debug is configured"""

import argparse
import os
import re
import resource
import subprocess
import sys
import tempfile
from collections import Counter, defaultdict
from collections.abc import Callable, Iterable
from pathlib import Path
from typing import NamedTuple, NoReturn

from schemata import Mutant, Source, numbered, sources_of, write_tree
from trials import Answer, Trials

ROOT = Path.cwd()
HERE = Path("tests/mutation")


class Area(NamedTuple):
    name: str
    programs: list[str]  # the tests that are asked about it
    most: int  # of them about one change, the likeliest first: what a change may cost that none of them notices
    goal: int  # the share of its changes in percent that they are to notice


    @property
    def work(self) -> Path:
        return ROOT / "build/mutation" / os.path.dirname(self.name)


AREAS = (
    Area("consumer/src", ["unit-tests"], 1000, 95),
    Area("platform/src", ["host-contract-test", "host-test"], 1000, 90),
    Area("deskwatch/src", ["deskwatch-device-test", "deskwatch-test"], 200, 90),
)
GIGABYTE = 1 << 30
SURVIVES = (Answer.UNNOTICED, Answer.UNREACHED)


def say(text: str) -> None:
    print(f"mutate: {text}", file=sys.stderr)


def refuse(text: str) -> NoReturn:
    say(text)
    sys.exit(2)


def run(*command: str | Path) -> subprocess.CompletedProcess[str]:
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)


def refused(output: str, tried: list[Mutant]) -> set[Mutant]:
    """The changes where the compiler has found errors: in their line, or in one of the following."""
    found = set()
    for path, line in set(re.findall(r"source/(\w+/src/[\w/.]+):(\d+):\d+: error:", output)):
        before = [mutant for mutant in tried if mutant.path == path and mutant.line <= int(line)]
        found |= {mutant for mutant in before if mutant.line == before[-1].line}
    return found


def built(sources: list[Source], tried: list[Mutant], area: Area) -> list[Mutant]:
    """Builds the tests; returns the changes in them. Not every change that looks like C++ is."""
    while True:
        write_tree(ROOT, area.work / "source", sources, {mutant.number for mutant in tried})
        result = run("cmake", "-S", area.work / "source", "-B", area.work / "build", "-G", "Ninja",
                     f"-DCMAKE_CXX_FLAGS=-w -include {ROOT / HERE / 'mutant.h'}")
        if result.returncode == 0:
            result = run("cmake", "--build", area.work / "build", "--target", *area.programs, "--", "-k", "0")
        if result.returncode == 0:
            return tried
        failing = refused(result.stdout, tried)
        if not failing:
            sys.exit(f"mutate: the changed sources cannot be built:\n{result.stdout}")
        say(f"leaving out changes that the compiler refuses: {len(failing)}")
        tried = [mutant for mutant in tried if mutant not in failing]


def answers_to(tried: list[Mutant], area: Area) -> dict[Mutant, Answer]:
    with tempfile.TemporaryDirectory(prefix="tesk-mutation.", dir="/dev/shm") as folder:
        os.chmod(folder, 0o755)  # some tests give up the rights of a superuser
        say(f"running the tests of {' and '.join(area.programs)} without a change")
        trials = Trials([area.work / "build/bin" / program for program in area.programs], Path(folder), tried, area.most)
        say(f"asking {len(trials.tests)} tests about {len(tried)} changes")
        return trials.answers(tried)


def reasons() -> dict[str, str]:
    """Why a change is not noticed, by its key: an indented line below its reason."""
    known, reason = {}, ""
    for line in (HERE / "survivors.txt").read_text("utf-8").splitlines():
        if line.startswith("    "):
            known[line.strip()] = reason
        elif line:
            reason = line
    return known


def table(title: str, answers: dict[Mutant, Answer], group: Callable[[Mutant], str]) -> None:
    groups: dict[str, list[Answer]] = defaultdict(list)
    for mutant, answer in answers.items():
        groups[group(mutant)].append(answer)
    print(f"{title:<44}{'changes':>8}{'noticed':>8}{'endless':>8}{'share':>9}")
    for name, members in sorted(groups.items()):
        row(name, members)
    print()


def row(name: str, answers: Iterable[Answer]) -> float:
    """A change that keeps a test from ending counts as noticed, and is counted apart too."""
    counts = Counter(answers)
    noticed = counts.total() - sum(counts[answer] for answer in SURVIVES)
    share = 100 * noticed / counts.total()
    print(f"{name:<44}{counts.total():>8}{noticed:>8}{counts[Answer.ENDLESS]:>8}{share:>7.1f} %")
    return share


def name_survivors(answers: dict[Mutant, Answer], mutants: list[Mutant]) -> None:
    """Names the changes that nobody has explained, and the explanations that are out of date."""
    known = reasons()
    unnoticed = [mutant for mutant, answer in answers.items() if answer in SURVIVES]
    unexplained = [mutant for mutant in unnoticed if mutant.key not in known]
    for mutant in unexplained:
        print(f"{mutant.path}:{mutant.line}: {answers[mutant].value}\n    {mutant.key}", file=sys.stderr)
    keys, names = {mutant.key for mutant in mutants}, {os.path.basename(mutant.path) for mutant in mutants}
    stale = {key for key in known if key.split(" ")[0] in names and key not in keys}
    for key in sorted(stale | known.keys() & {mutant.key for mutant in answers.keys() - set(unnoticed)}):
        print(f"{HERE}/survivors.txt: {'is no change' if key in stale else 'is noticed'}\n    {key}", file=sys.stderr)
    print(f"not noticed: {len(unnoticed)}, {len(unnoticed) - len(unexplained)} of them with a stated reason")


def report(area: str, answers: dict[Mutant, Answer], mutants: list[Mutant]) -> float:
    """Prints what the answers are; returns the share that is noticed."""
    table("folder", answers, lambda mutant: os.path.relpath(os.path.dirname(mutant.path), area))
    table("kind of change", answers, lambda mutant: mutant.change.kind)
    name_survivors(answers, mutants)
    return row("all", answers.values())


def is_in(path: str, place: str) -> bool:
    return Path(place) in (Path(path), *Path(path).parents)


def area_of(places: list[str]) -> Area:
    areas = set()
    for place in places:
        inside = [area for area in AREAS if is_in(place, area.name)]
        if not inside or not Path(place).exists():
            refuse(f"{place} is not in {', '.join(area.name for area in AREAS)}")
        areas.add(inside[0].name)
    if len(areas) > 1:
        refuse(f"{' and '.join(places)} are of different areas; name one")
    return next(area for area in AREAS if area.name in areas)


def chosen(mutants: list[Mutant], places: list[str], every: int) -> list[Mutant]:
    """The changes in these files or folders, and of those each so many-th."""
    inside = [mutant for mutant in mutants if any(is_in(mutant.path, place) for place in places)]
    if not inside:
        refuse(f"nothing in {' and '.join(places)} can be changed")
    return inside[::every]


def arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(prog="mutate", add_help=False)
    parser.add_argument("--every", type=int, default=1)
    parser.add_argument("places", nargs="*", default=["consumer/src"])
    given = parser.parse_args()
    if given.every < 1:
        refuse(f"--every {given.every}: N is at least 1")
    return given


def main() -> int:
    # a wrong change may allocate or write without end
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_FSIZE, (GIGABYTE, GIGABYTE))
    given = arguments()
    area = area_of(given.places)
    sources = sources_of(ROOT, ROOT / "build/debug/compile_commands.json", area.name)
    mutants = numbered(ROOT, sources)
    tried = chosen(mutants, given.places, given.every)
    say(f"building {' and '.join(area.programs)} with {len(tried)} of {len(mutants)} changes")
    answers = answers_to(built(sources, tried, area), area)
    return 0 if report(area.name, answers, mutants) >= area.goal else 1


if __name__ == "__main__":
    sys.exit(main())
