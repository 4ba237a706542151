#!/usr/bin/env python3
"""Looks at the oddities that the sources mark QUIRK: check_quirks.py ROOT [OPTION]

A mark is "QUIRK: what is odd. Test: Suite.Name" in a comment; it may go over several lines and name
several tests, "A.B, C.D and E.F/Row". Each has a text, and its tests exist. The list in
docs/architecture.md is made from the marks. Prints what is wrong and ends with 1 if anything is.

  --list        prints the document's list instead
  --write DOC   puts that list into the document
"""

import argparse
import pathlib
import re
import sys
import textwrap
from dataclasses import dataclass

sys.dont_write_bytecode = True

import generated  # noqa: E402
from rooms import SUFFIXES, read_rooms  # noqa: E402

PART = "quirks"
WRITE = "tests/structure/check_quirks.py . --write docs/architecture.md"
COMMENT = re.compile(r"^\s*//[/!]?<? ?(.*)$")
NAME = r"\w+\.\w+(?:/\w+)?"
NAMES = re.compile(rf"{NAME}(?:(?:,| and|, and) {NAME})*\.?")
TEST = re.compile(r"^\s*(?:TYPED_)?TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\s*\)", re.MULTILINE)
CLASS = re.compile(r"^\s*(?:class|struct|union)\s+(?:TESSALY_API\s+)?(\w+)(?!.*;\s*$)")
DECLARED = re.compile(r"^[^=({;\[]*?((?:\w+::)*~?\w+)\s*[=({;\[]")
NO_NAMES = {"if", "for", "while", "switch", "return", "else", "case", "namespace", "do", "alignas", "static_assert"}


@dataclass
class Mark:
    path: str  # from the root
    line: int
    place: str  # the function, class or member it stands at, or the file's name
    text: str
    tests: str


def join(lines):
    return " ".join(" ".join(lines).split())


def place_of(lines, at, name):
    """The name of what is declared at the first code line from there on, or of what that stands in."""
    while at < len(lines) and (not lines[at].strip() or COMMENT.match(lines[at]) or "template <" in lines[at]):
        at += 1
    line = lines[at] if at < len(lines) else ""
    declared = DECLARED.match(line.replace("[[nodiscard]] ", ""))
    declared = declared[1] if declared and declared[1] not in NO_NAMES else None
    if not line[:1].isspace():
        found = CLASS.match(line)
        return found[1] if found else declared or name
    for before in reversed(lines[:at]):
        if before[:1].isspace() or before.startswith(("}", "//", "#")) or not before.strip():
            continue
        if found := CLASS.match(before):
            return f"{found[1]}::{declared}" if declared else found[1]
        outer = DECLARED.match(before)
        return outer[1] if outer and outer[1] not in NO_NAMES else name
    return name


def marks_in(path, name):
    """The marks of one file, in their order."""
    lines = path.read_text().splitlines()
    marks, at = [], 0
    while at < len(lines):
        comment = COMMENT.match(lines[at]) or re.search(r"// ?(.*QUIRK.*)$", lines[at])
        if not comment or "QUIRK" not in comment[1]:
            at += 1
            continue
        first, said = at, [comment[1].partition("QUIRK")[2].removeprefix(":")]
        at += 1
        while at < len(lines) and (more := COMMENT.match(lines[at])) and more[1] and "QUIRK" not in more[1]:
            said.append(more[1])
            at += 1
        text, _, tests = re.sub(r"\bTests:", "Test:", join(said)).partition("Test:")
        marks.append(Mark(name, first + 1, place_of(lines, at, path.name), text.strip(), tests.strip()))
    return marks


def read_marks(root):
    paths = sorted(p for p in (root / "src").rglob("*") if p.suffix in SUFFIXES)
    return [mark for path in paths for mark in marks_in(path, path.relative_to(root).as_posix())]


def read_tests(root):
    """{Suite.Name: the text of the file that has the test}"""
    tests = {}
    for path in sorted((root / "tests").rglob("*.cpp")):
        text = path.read_text()
        tests.update({f"{suite}.{name}": text for suite, name in TEST.findall(text)})
    return tests


def mark_faults(mark, tests):
    where = f"{mark.path}:{mark.line}: "
    if not mark.text:
        return [where + "the mark says nothing"]
    if not NAMES.fullmatch(mark.tests):
        said = f"not '{mark.tests}'" if mark.tests else "and is missing"
        return [where + f"what stands behind the mark's text is 'Test: Suite.Name', {said}"]
    faults = []
    for found in re.findall(NAME, mark.tests):
        name, _, row = found.partition("/")
        if name not in tests:
            faults.append(where + f"there is no test {name}")
        elif row and f'"{row}"' not in tests[name]:
            faults.append(where + f"the test {name} has no row {row}")
    return faults


def make_list(marks, rooms):
    """The document's list: one bullet per mark, below a heading per room."""
    order = {f"src/{room.path}": i for i, room in enumerate(rooms)}
    groups = {}
    for mark in marks:
        groups.setdefault(mark.path.rpartition("/")[0], []).append(mark)
    lines = []
    for folder in sorted(groups, key=lambda folder: (order.get(folder, len(order)), folder)):
        lines += [f"### `{folder}`", ""]
        for mark in groups[folder]:
            text = re.sub(r"([\\<*])", r"\\\1", mark.text)
            bullet = f"- `{mark.place}`: {text}"
            lines += textwrap.wrap(bullet, 100, subsequent_indent="  ", break_long_words=False, break_on_hyphens=False)
        lines.append("")
    return "\n".join(["", *lines])


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("root", type=pathlib.Path, metavar="ROOT")
    option = parser.add_mutually_exclusive_group()
    option.add_argument("--list", action="store_true")
    option.add_argument("--write", type=pathlib.Path, metavar="DOC")
    given = parser.parse_args()
    root = given.root.resolve()
    marks = read_marks(root)
    text = make_list(marks, read_rooms(root / "src"))
    if given.list:
        print(text)
        return 0
    if given.write:
        generated.write(given.write, PART, text)
        return 0
    tests = read_tests(root)
    faults = [fault for mark in marks for fault in mark_faults(mark, tests)]
    faults += generated.check(root / "docs" / "architecture.md", PART, text, WRITE)
    print("\n".join([*faults, f"{len(marks)} marks, {len(faults)} faults"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
