"""What the compiler's line counts tell of the sources: read, added up, and held against a floor.

Used by scripts/coverage; tests/structure/coverage_selftest.py tests it.
"""

import collections
import json
import pathlib

ROW = "{:<22} {:>7} {:>8} {:>7}"


class Counts:
    """How often each line ran: by file, below a folder of sources, and number."""

    def __init__(self, sources):
        self.sources = pathlib.Path(sources)
        self.files = collections.defaultdict(dict)

    def add(self, output):
        """Adds gcov's output, a JSON text in each line. A line that is compiled several times counts
        as run if it ran in one of them."""
        for text in filter(None, map(str.strip, output.splitlines())):
            document = json.loads(text)
            start = pathlib.Path(document["current_working_directory"])
            for entry in document["files"]:
                path = (start / entry["file"]).resolve()
                if not path.is_relative_to(self.sources):
                    continue
                lines = self.files[path.relative_to(self.sources)]
                for line in entry["lines"]:
                    number = line["line_number"]
                    lines[number] = lines.get(number, 0) + line["count"]

    def rooms(self):
        """(folder, room) and their lines and those that ran, in order; a file's room is the folder
        that it lies in."""
        found = collections.defaultdict(lambda: [0, 0])
        for path, lines in self.files.items():
            if lines:
                total = found[path.parts[0], str(path.parent)]
                total[0] += len(lines)
                total[1] += sum(count > 0 for count in lines.values())
        return sorted(found.items())

    def folders(self):
        found = {}
        for (folder, _), (lines, ran) in self.rooms():
            before = found.get(folder, (0, 0))
            found[folder] = (before[0] + lines, before[1] + ran)
        return found

    def uncovered(self):
        """Each file with the lines that did not run, as "3, 7-9"."""
        for path, lines in sorted(self.files.items()):
            # Only lines without code lie between two of one range.
            ranges, last = [], None
            for number in sorted(lines):
                if lines[number]:
                    last = None
                elif last is None:
                    ranges.append([number, number])
                    last = number
                else:
                    ranges[-1][1] = last = number
            if ranges:
                yield path, ", ".join(str(a) if a == b else f"{a}-{b}" for a, b in ranges)


def percent(lines, ran):
    return 100 * ran / lines


def row(name, lines, ran):
    # Cut, not rounded: 100.0 means all.
    return ROW.format(name, lines, ran, f"{int(percent(lines, ran) * 10) / 10:.1f}%")


def report(counts, floor):
    """The text to print, and what is wrong: a line for each folder below the floor."""
    text = [ROW.format("", "lines", "ran", "")]
    rooms = counts.rooms()
    for folder, total in counts.folders().items():
        text.append(row(folder, *total))
        inner = [(room, of_room) for (above, room), of_room in rooms if above == folder and room != folder]
        text += [row("  " + room, *of_room) for room, of_room in inner]
    uncovered = [f"  src/{path}: {ranges}" for path, ranges in counts.uncovered()]
    if uncovered:
        text += ["", "Lines that did not run:"] + uncovered
    faults = [
        f"src/{folder}: {percent(*total):.2f}% is below {floor}%"
        for folder, total in counts.folders().items()
        if percent(*total) < floor
    ]
    if not counts.folders():
        faults.append("no line of any source was counted")
    return "\n".join(text), faults
