"""Makes small wrong changes in the service, one at a time, and tells which of them its unit tests notice.
    mutate.py [FILE...]     from the root of the repository, where build/debug is configured"""

import os
import resource
import subprocess
import sys
import tempfile
from collections import defaultdict
from collections.abc import Callable
from pathlib import Path

from schemata import Mutant, numbered, sources_of, write_tree
from trials import Trials, in_parallel

ROOT = Path.cwd()
WORK = ROOT / "build/mutation"
HERE = Path("tests/mutation")
GOAL = 95  # percent
GIGABYTE = 1 << 30


def run(*command: str | Path) -> None:
    result = subprocess.run(command, capture_output=True, text=True, check=False)
    if result.returncode != 0:
        sys.exit(f"mutate: {' '.join(map(str, command))} failed:\n{result.stdout}{result.stderr}")


def built(mutants: list[Mutant]) -> Path:
    print(f"mutate: building the unit tests with {len(mutants)} changes", file=sys.stderr)
    run("cmake", "-S", WORK / "source", "-B", WORK / "build", "-G", "Ninja",
        f"-DCMAKE_CXX_FLAGS=-w -include {ROOT / HERE / 'mutant.h'}")
    run("cmake", "--build", WORK / "build", "--target", "unit-tests")
    return WORK / "build/bin/unit-tests"


def unnoticed_of(mutants: list[Mutant], tried: list[Mutant], program: Path) -> set[Mutant]:
    with tempfile.TemporaryDirectory(prefix="tesk-mutation.", dir="/dev/shm") as folder:
        os.chmod(folder, 0o755)  # some tests give up the rights of a superuser
        trials = Trials(program, Path(folder))
        print(f"mutate: asking {len(trials.tests)} tests about {len(tried)} changes", file=sys.stderr)
        reaching = trials.reaching_tests(len(mutants))
        noticed = in_parallel(lambda mutant: trials.is_noticed(mutant, reaching.get(mutant.number, [])), tried)
    print(f"mutate: {len(trials.endless)} of them were noticed by a test that did not end", file=sys.stderr)
    return {mutant for mutant, seen in zip(tried, noticed) if not seen}


def reasons() -> dict[str, str]:
    """Why a change is not noticed, by its key: an indented line below its reason."""
    known, reason = {}, ""
    for line in (HERE / "survivors.txt").read_text("utf-8").splitlines():
        if line.startswith("    "):
            known[line.strip()] = reason
        elif line:
            reason = line
    return known


def table(title: str, tried: list[Mutant], unnoticed: set[Mutant], group: Callable[[Mutant], str]) -> None:
    groups: dict[str, list[Mutant]] = defaultdict(list)
    for mutant in tried:
        groups[group(mutant)].append(mutant)
    print(f"{title:<52}{'changes':>8}{'noticed':>8}{'share':>9}")
    for name, members in sorted(groups.items()):
        row(name, members, unnoticed)
    print()


def row(name: str, mutants: list[Mutant], unnoticed: set[Mutant]) -> float:
    noticed = sum(mutant not in unnoticed for mutant in mutants)
    share = 100 * noticed / len(mutants)
    print(f"{name:<52}{len(mutants):>8}{noticed:>8}{share:>7.1f} %")
    return share


def report(tried: list[Mutant], unnoticed: set[Mutant]) -> float:
    """Prints the tables and the changes that nobody has explained; returns the share that is noticed."""
    known = reasons()
    table("source", tried, unnoticed, lambda mutant: mutant.path.removeprefix("consumer/src/"))
    table("kind of change", tried, unnoticed, lambda mutant: mutant.change.kind)
    unexplained = [mutant for mutant in tried if mutant in unnoticed and mutant.key not in known]
    for mutant in unexplained:
        print(f"{mutant.path}:{mutant.line}: not noticed\n    {mutant.key}")
    for key in sorted(known.keys() & {mutant.key for mutant in tried} - {mutant.key for mutant in unnoticed}):
        print(f"{HERE}/survivors.txt: is noticed\n    {key}")
    print(f"not noticed: {len(unnoticed)}, {len(unnoticed) - len(unexplained)} of them with a stated reason")
    return row("all", tried, unnoticed)


def main(files: list[str]) -> int:
    # a wrong change may allocate or write without end
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_FSIZE, (GIGABYTE, GIGABYTE))
    sources = sources_of(ROOT, ROOT / "build/debug/compile_commands.json")
    mutants = numbered(ROOT, sources)
    tried = [mutant for mutant in mutants if not files or mutant.path in files]
    if not tried:
        sys.exit("mutate: nothing in these files can be changed")
    write_tree(ROOT, WORK / "source", sources)
    return 0 if report(tried, unnoticed_of(mutants, tried, built(mutants))) >= GOAL else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
