"""The rooms of the source tree: folders that may include only what SRC/rooms.toml says."""

import re
import tomllib
from dataclasses import dataclass, field

UMBRELLA = "tessaly.h"  # stands in no room, may include everything and is included by nobody
SUFFIXES = (".cpp", ".h", ".c", ".hpp", ".inl")
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*"([^"\n]*)"', re.MULTILINE)
KEYS = {"path", "holds", "uses", "planned"}


@dataclass
class Room:
    path: str
    holds: str
    uses: list
    planned: bool = False


@dataclass
class File:
    name: str  # from the source folder
    room: str  # its folder's path; "" for the source folder itself
    lines: int
    includes: list = field(default_factory=list)  # (line, name) of each include in quotes

    @property
    def unit(self):
        """A header and the source of the same name are one unit."""
        return self.name.rpartition(".")[0]


def read_rooms(source):
    """The rooms from the lowest to the highest."""
    path, rooms = source / "rooms.toml", []
    table = tomllib.loads(path.read_text()) if path.exists() else {}
    for row in table.get("room", []):
        if unknown := set(row) - KEYS:
            raise SystemExit(f"rooms.toml: {row.get('path')}: unknown {', '.join(sorted(unknown))}")
        if missing := KEYS - {"planned"} - set(row):
            raise SystemExit(f"rooms.toml: {row.get('path')}: has no {', '.join(sorted(missing))}")
        rooms.append(Room(**row))
    return rooms


def read_files(source):
    files = []
    for path in sorted(source.rglob("*")):
        if path.suffix not in SUFFIXES or not path.is_file():
            continue
        text = path.read_text()
        name = path.relative_to(source).as_posix()
        includes = [(text.count("\n", 0, m.start()) + 1, m[1]) for m in INCLUDE.finditer(text)]
        files.append(File(name, name.rpartition("/")[0], text.count("\n"), includes))
    return files


def circles(edges):
    """The groups of nodes that can reach each other; edges is {node: set of nodes}."""
    reached = {}
    for start in edges:
        reached[start], waiting = set(), [start]
        while waiting:
            for node in edges.get(waiting.pop(), ()):
                if node not in reached[start]:
                    reached[start].add(node)
                    waiting.append(node)
    groups = {tuple(sorted(n for n in reached[m] if m in reached.get(n, ()))) for m in edges if m in reached[m]}
    return sorted(group for group in groups if len(group) > 1)
