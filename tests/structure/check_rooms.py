#!/usr/bin/env python3
"""Looks whether the sources keep to their rooms, which SRC/rooms.toml names: check_rooms.py SRC [OPTION]

The table lists the rooms from the lowest to the highest; a room may include its own headers and those
of the rooms that it uses, which all stand before it. Nothing stands outside of a room but the
umbrella. Prints what is wrong and ends with 1 if anything is.

  --counts      prints a line of counts instead
  --table       prints the rooms as a Markdown table instead
  --write DOC   puts that table into the document
"""

import argparse
import pathlib
import re
import statistics
import sys

sys.dont_write_bytecode = True

import generated  # noqa: E402
from rooms import UMBRELLA, circles, read_files, read_rooms  # noqa: E402

PART = "rooms"
WRITE = "tests/structure/check_rooms.py src --write docs/architecture.md"
NAMED = re.compile(r"`src/([^`{}]*)(?:\{([^`{}]*)\})?`")


def table_faults(rooms):
    """What is wrong with the table itself."""
    faults, below = [], []
    names = [room.path for room in rooms]
    for room in rooms:
        if room.path in below:
            faults.append(f"rooms.toml: {room.path} is named twice")
        for used in room.uses:
            if used not in names:
                faults.append(f"rooms.toml: {room.path} uses {used}, which is no room")
            elif used not in below:
                faults.append(f"rooms.toml: {room.path} uses {used}, which does not stand before it")
            elif room.uses.count(used) > 1:
                faults.append(f"rooms.toml: {room.path} uses {used} twice")
        below.append(room.path)
    return faults


def file_faults(rooms, files):
    """Files outside of the rooms, and includes that are not allowed."""
    faults = []
    known = {room.path: room for room in rooms}
    room_of = {file.name: file.room for file in files}
    for file in files:
        room = known.get(file.room)
        if not room and file.name != UMBRELLA:
            faults.append(f"{file.name}:1: stands in no room; those are in rooms.toml")
        elif room and room.planned:
            faults.append(f"{file.name}:1: stands in {room.path}, which rooms.toml calls planned")
        for line, name in file.includes:
            if name not in room_of:
                faults.append(f'{file.name}:{line}: "{name}" is not the path of a file from the source folder')
            elif name == UMBRELLA:
                faults.append(f'{file.name}:{line}: "{name}" is for users of the library only')
            elif room and room_of[name] not in (room.path, *room.uses):
                allowed = ", ".join((room.path, *room.uses))
                faults.append(f'{file.name}:{line}: "{name}" is in {room_of[name]}; {room.path} may include {allowed}')
    return faults


def room_edges(files):
    """{room: rooms that its files include}, without itself."""
    room_of = {file.name: file.room for file in files}
    edges = {}
    for file in files:
        if file.name != UMBRELLA:
            reached = {room_of[name] for _, name in file.includes if name in room_of}
            edges.setdefault(file.room, set()).update(reached - {file.room, ""})
    return edges


def stale_faults(rooms, files):
    """Allowed includes that nobody makes use of."""
    edges = room_edges(files)
    planned = {room.path for room in rooms if room.planned}
    return [
        f"rooms.toml: {room.path} uses {used}, but includes nothing of it"
        for room in rooms
        for used in room.uses
        if not planned & {room.path, used} and used not in edges.get(room.path, ())
    ]


def unit_circles(files):
    """The circles inside of the rooms, each as a list of its includes."""
    by_name = {file.name: file for file in files}
    edges, places = {}, {}
    for file in files:
        edges.setdefault(file.unit, set())
        for line, name in file.includes:
            into = by_name.get(name)
            if into and file.room and into.room == file.room and into.unit != file.unit:
                edges[file.unit].add(into.unit)
                places.setdefault((file.unit, into.unit), f'{file.name}:{line}: "{name}"')
    found = circles(edges)
    return [[text for (out, into), text in places.items() if out in circle and into in circle] for circle in found]


def make_table(rooms):
    rows = ["| Room | What it holds | What it may include |", "| --- | --- | --- |"]
    for room in rooms:
        holds = room.holds + (" (planned)" if room.planned else "")
        rows.append(f"| `src/{room.path}` | {holds} | {', '.join(f'`{u}`' for u in room.uses) or 'nothing of ours'} |")
    return "\n".join(rows) + "\n"


def layout_faults(readme, rooms):
    """The rooms that README's layout does not name, as `src/a/b` or in `src/a/{b,c}`."""
    text = readme.read_text() if readme.exists() else ""
    layout = text.partition("\n## Layout\n")[2].partition("\n## ")[0]
    named = {front + end.strip() for front, ends in NAMED.findall(layout) for end in ends.split(",")}
    return [f"{readme}: the layout does not name src/{room.path}" for room in rooms if room.path not in named]


def counts(rooms, files):
    order = {room.path: i for i, room in enumerate(rooms)}
    headers = [f.lines for f in files if f.name.endswith(".h") and f.name != UMBRELLA]
    sources = [f.lines for f in files if not f.name.endswith(".h")]
    room_of = {file.name: file.room for file in files}
    includes = [(f.room, room_of[n]) for f in files if f.name != UMBRELLA for _, n in f.includes if n in room_of]
    upward = sum(order.get(into, 0) > order.get(out, 0) for out, into in includes)
    return (
        f"{len(files)} files, median lines of headers {statistics.median(headers or [0]):g} and of sources "
        f"{statistics.median(sources or [0]):g}, {len(includes) / max(len(files), 1):.1f} includes per file, "
        f"{upward} upward includes, {len(circles(room_edges(files)))} circles between rooms, "
        f"{len(unit_circles(files))} circles inside rooms"
    )


def check(source):
    if not (source / "rooms.toml").exists():
        return [f"{source}: has no rooms.toml"]
    rooms, files = read_rooms(source), read_files(source)
    faults = table_faults(rooms) + file_faults(rooms, files) + stale_faults(rooms, files)
    faults += [f"{'; '.join(circle)}: a circle inside a room" for circle in unit_circles(files)]
    faults += generated.check(source.parent / "docs" / "architecture.md", PART, make_table(rooms), WRITE)
    return faults + layout_faults(source.parent / "README.md", rooms)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("source", type=pathlib.Path, metavar="SRC")
    option = parser.add_mutually_exclusive_group()
    option.add_argument("--counts", action="store_true")
    option.add_argument("--table", action="store_true")
    option.add_argument("--write", type=pathlib.Path, metavar="DOC")
    given = parser.parse_args()
    source = given.source.resolve()
    if given.counts:
        print(counts(read_rooms(source), read_files(source)))
    elif given.table:
        print(make_table(read_rooms(source)), end="")
    elif given.write:
        generated.write(given.write, PART, make_table(read_rooms(source)))
    else:
        faults = check(source)
        print("\n".join([*faults, f"{len(faults)} faults"]))
        return 1 if faults else 0
    return 0


if __name__ == "__main__":
    sys.exit(main())
