"""Writes the sources of an area so that all chosen small wrong changes are in them at once, and one at a time in force."""

import json
import os
import re
import shlex
from collections import Counter, defaultdict, deque
from concurrent.futures import ProcessPoolExecutor
from dataclasses import dataclass
from itertools import repeat
from pathlib import Path

from clang.cindex import Cursor, Diagnostic, Index, TranslationUnit

from places import Change, Finder, Place, Source, Spot, spot_of

LEFT_OUT = ("consumer/src/TeskConsumerLog.h",  # macros, and what the compiler computes for them
            "consumer/src/main.cpp",  # which is in none of the unit tests
            "deskwatch/src/policy_files/policy_names.h",  # written by script/protocol; the test docs.protocol
            "deskwatch/src/provisioning/provisioning_elements.h")  # compares every letter of them
PROJECTS = ("consumer", "platform", "deskwatch")


@dataclass(frozen=True)
class Mutant:
    number: int  # from 1
    path: str
    line: int
    key: str  # names the change, wherever the lines around it move
    change: Change

    @property
    def source(self) -> str:
        """A header and the source of its name are one."""
        return os.path.splitext(self.path)[0]


def short(code: str, limit: int = 70) -> str:
    line = " ".join(code.split())
    return line if len(line) <= limit else line[:limit - 1] + "…"


# finding


def parsed(command: dict[str, str]) -> TranslationUnit:
    arguments = shlex.split(command["command"])[1:]
    kept = [argument for before, argument in zip([""] + arguments, arguments)
            if argument not in ("-c", "-o", command["file"]) and before != "-o"]
    unit = Index.create().parse(command["file"], kept, options=TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
    errors = [str(problem) for problem in unit.diagnostics if problem.severity >= Diagnostic.Error]
    if errors:
        raise SystemExit(f"mutate: {errors[0]}")
    return unit


def found(folder: str, command: dict[str, str]) -> tuple[list[Source], set[Spot]]:
    """What one compilation sees of the sources in a folder, and the constants that the compiler itself needs."""
    unit = parsed(command)
    declarations: dict[str, list[Cursor]] = defaultdict(list)
    for cursor in unit.cursor.get_children():
        declarations[spot_of(cursor.location)[0]].append(cursor)
    sources, needed = [], set()
    for path in declarations:
        if path.startswith(folder) and not path.endswith(LEFT_OUT):
            sources.append(Source(path, Path(path).read_text("latin-1")))
            needed |= Finder(sources[-1], declarations[path]).needed_by_compiler
    return sources, needed


def sources_of(root: Path, compile_commands: Path, area: str) -> list[Source]:
    """The sources and headers of an area, such as consumer/src, with the changes that can be made in them."""
    folder = f"{root}/{area}/"
    commands = [command for command in json.loads(compile_commands.read_text()) if command["file"].startswith(folder)]
    sources: dict[str, Source] = {}
    needed: set[Spot] = set()
    with ProcessPoolExecutor(len(os.sched_getaffinity(0))) as workers:
        for seen, needed_here in workers.map(found, repeat(folder), commands):
            sources = {source.path: source for source in seen} | sources
            needed |= needed_here
    leave_alone(sources, needed)
    return [sources[path] for path in sorted(sources)]


def leave_alone(sources: dict[str, Source], needed: set[Spot]) -> None:
    """Keeps the constants that the compiler has to know, and those that they are computed from, as they are."""
    todo = list(needed)
    while todo:
        path, offset = todo.pop()
        constant = sources[path].constants.pop(offset, None) if path in sources else None
        if constant is not None:
            places = sources[path].places
            for start, end in list(places):
                if constant.start <= start and end <= constant.end:
                    del places[start, end]
            todo += constant.uses


def numbered(root: Path, sources: list[Source]) -> list[Mutant]:
    mutants: list[Mutant] = []
    equals: Counter[str] = Counter()
    for source in sources:
        path, lines = os.path.relpath(source.path, root), source.text.split("\n")
        for place in in_order(source):
            place.first_number = len(mutants) + 1
            line = source.text.count("\n", 0, place.start)
            for number, change in enumerate(place.changes, place.first_number):
                key = (f"{os.path.basename(path)} {place.function}: {short(lines[line])} | "
                       f"{short(change.original)} → {short(change.mutated)}")
                equals[key] += 1
                nth = f" ({equals[key]})" if equals[key] > 1 else ""
                mutants.append(Mutant(number, path, line + 1, key + nth, change))
    return mutants


def in_order(source: Source) -> list[Place]:
    """What is put before a statement, then whole expressions, then what is inside."""
    return sorted(source.places.values(), key=lambda place: (place.start, place.end > place.start, -place.end))


# writing


class Writer:
    """Writes one source with the chosen of its changes. Lines keep their numbers, since the log carries them."""

    def __init__(self, source: Source, numbers: set[int]) -> None:
        self.source = source
        self.numbers = numbers
        self.rewrites = {start: (end, text) for constant in source.constants.values()
                         for start, end, text in constant.rewrites}
        self.edits = deque(sorted([*in_order(source), *self.rewrites], key=self.start_of))

    def start_of(self, edit: Place | int) -> int:
        return edit.start if isinstance(edit, Place) else edit

    def text(self, start: int, end: int) -> str:
        parts: list[str] = []
        while self.edits and self.start_of(self.edits[0]) < end:
            edit = self.edits.popleft()
            parts.append(self.source.text[start:self.start_of(edit)])
            start, replacement = self.rewrites[edit] if isinstance(edit, int) else (edit.end, self.choice(edit))
            parts.append(replacement)
        return "".join([*parts, self.source.text[start:end]])

    def choice(self, place: Place) -> str:
        chosen_changes = [(number, change) for number, change in enumerate(place.changes, place.first_number)
                          if number in self.numbers]
        if place.start == place.end:
            return "".join(change.code.format(f"teskMutant({number})") for number, change in chosen_changes)
        original = self.text(place.start, place.end)
        if not chosen_changes:
            return original
        chosen = f"bool({original})" if place.as_bool else f"({original})"
        for number, change in chosen_changes:
            chosen = f"(teskMutant({number}) ? ({on_one_line(change.code)}) : {chosen})"
        return chosen


def on_one_line(code: str) -> str:
    return re.sub(r"\s*(//[^\n]*)?\n\s*", " ", code)


def write_tree(root: Path, tree: Path, sources: list[Source], numbers: set[int]) -> None:
    """The repository by links, with sources changed. A file that would stay the same is not touched."""
    for folder, replaced in ((".", {*PROJECTS, "build", ".git"}), *((project, {"src"}) for project in PROJECTS)):
        (tree / folder).mkdir(parents=True, exist_ok=True)
        for entry in (root / folder).iterdir():
            link = tree / folder / entry.name
            if entry.name not in replaced and not link.is_symlink():
                link.symlink_to(entry)
    texts = {path: path.read_text("latin-1") for project in PROJECTS
             for path in (root / project / "src").rglob("*") if path.is_file()}
    texts |= {Path(source.path): Writer(source, numbers).text(0, len(source.text)) for source in sources}
    for path, text in texts.items():
        written = tree / path.relative_to(root)
        if not written.exists() or written.read_text("latin-1") != text:
            written.parent.mkdir(parents=True, exist_ok=True)
            written.write_text(text, "latin-1")
