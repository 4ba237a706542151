#!/usr/bin/env python3
"""Runs clang-tidy with the checks of .clang-tidy over the sources: check_tidy.py BUILD [SRC]

BUILD holds the build's compile_commands.json; nothing needs to be built. Prints the findings and a
line of counts; ends with 1 if there is a finding.

Most of the time that one source takes goes into the platform's headers. So many are read at once, as
one source that includes them; those that define the same name are kept apart. One that clang cannot
read in company is read alone. A tree without findings is noted in BUILD/tidy.clean and is not read
again before something changes.
"""

import collections
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True

CONFIG = pathlib.Path(__file__).resolve().parents[2] / ".clang-tidy"
TIDY = "clang-tidy"
TARGET = "x86_64-w64-mingw32"
JOBS = 2
MANY = 20  # sources, from which on it pays to read the platform's headers twice
# A definition outside of classes and functions begins in the first column; its name is the last word
# before the first of "(", "=", "{", "[", ";" or the line's end.
DEFINED = re.compile(r"^(?:#define |(?!namespace|[#/\s}])[^(={;\[\n]*?)(?<![:\w~])(\w+) ?(?=[(={;\[])", re.MULTILINE)
NO_NAMES = {"static_assert", "decltype", "__attribute__", "alignas", "noexcept"}
CONSTANT = re.compile(r"k[A-Z]\w*")  # no member or type has such a name: it can be given another one
AGAIN = "_again"  # behind a constant's name that occurred before
UNREAD = "clang-diagnostic-error"
PLACE = re.compile(r"^(/[^:]+):(\d+):(\d+: .*)$")
FINDING = re.compile(r": (?:warning|error): .* \[([\w.,-]+)\]$")
# What clang does not know or need: g++'s precompiled header, its warnings, the output.
DROPPED = re.compile(r"-fpch-preprocess|-W\w\S*")
DROPPED_WITH_NEXT = ("-include", "-o", "-c")

Batch = collections.namedtuple("Batch", "flags paths names")


def read_commands(build, folder):
    """The sources below the folder, each with the flags of its first target."""
    found = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        path = pathlib.Path(entry["file"])
        if path.suffix != ".cpp" or not path.is_relative_to(folder) or path in found:
            continue
        words = iter(w for w in shlex.split(entry["command"])[1:] if not DROPPED.fullmatch(w))
        found[path] = tuple(w for w in words if w not in DROPPED_WITH_NEXT or not next(words))
    return found


def platform_flags():
    """Leads clang to g++'s C++ library and the platform's headers; of C headers it has its own."""
    call = [f"{TARGET}-g++-posix", "-E", "-x", "c++", "-v", os.devnull]
    told = subprocess.run(call, capture_output=True, text=True, check=True).stderr
    folders = told.partition("<...> search starts here:\n")[2].partition("End of search")[0].split()
    wanted = [f for f in folders if "c++" in f or f.endswith(f"{TARGET}/include")]
    flags = [f"--target={TARGET}", "-nostdinc++", "-ferror-limit=0"]
    return flags + [word for folder in wanted for word in ("-isystem", folder)]


def defined_names(text):
    return set(DEFINED.findall(text)) - NO_NAMES


def make_batches(commands, count=JOBS):
    """Deals the sources out to few batches of like length, at least count where there are many."""
    texts = {path: path.read_text() for path in commands}
    names = {path: {n for n in defined_names(texts[path]) if not CONSTANT.fullmatch(n)} for path in commands}
    often = collections.Counter(n for path in names for n in names[path])
    clashes = {path: sum(often[n] > 1 for n in names[path]) for path in names}
    wanted = {flags: count if n > MANY else 1 for flags, n in collections.Counter(commands.values()).items()}
    batches = []

    def size(batch):
        return sum(len(texts[path]) for path in batch.paths)

    for path in sorted(commands, key=lambda p: (-clashes[p], -len(texts[p]), p)):
        same = [b for b in batches if b.flags == commands[path]]
        fitting = [b for b in same if not b.names & names[path]]
        if not fitting or len(same) < wanted[commands[path]]:
            batches.append(Batch(commands[path], [], set()))
            fitting = batches[-1:]
        batch = min(fitting, key=size)
        batch.paths.append(path)
        batch.names.update(names[path])
    return sorted(batches, key=size, reverse=True)


def join(paths):
    """One text of the sources, and the path and line that each of its lines comes from."""
    lines, origins, seen = [], [None], set()
    for number, path in enumerate(sorted(paths)):
        text = path.read_text()
        names = defined_names(text)
        for name in sorted(names & seen):
            text = re.sub(rf"(?<![\w:.>]){name}\b", f"{name}{AGAIN}{number}", text)
        seen |= names
        for i, line in enumerate(text.splitlines(), 1):
            lines.append(line + "\n")
            origins.append((path, i))
    return "".join(lines), origins


def run_tidy(paths, flags, folder):
    """What is found in the sources and in their headers below the folder: {(path, line, check): text}"""
    text, origins = join(paths)
    with tempfile.TemporaryDirectory() as scratch:
        together = pathlib.Path(scratch) / "together.cpp"
        together.write_text(text)
        call = [TIDY, "--quiet", f"--config-file={CONFIG}", f"--header-filter=^{re.escape(str(folder))}/.*"]
        told = subprocess.run([*call, str(together), "--", *flags], capture_output=True, text=True)
    findings, key = {}, None
    for line in re.sub(AGAIN + r"\d+", "", told.stdout).splitlines():
        if place := PLACE.match(line):
            path, number = pathlib.Path(place[1]), int(place[2])
            if path == together:
                path, number = origins[number]
            line = f"{path}:{number}:{place[3]}"
            if found := FINDING.search(line):
                key = (path, number, found[1])
                findings[key] = []
        if key:
            findings[key].append(line)
    if told.returncode and not findings:
        findings[(folder, 0, TIDY)] = [told.stdout + told.stderr]
    return findings


def check_batch(batch, flags, folder):
    """run_tidy of the batch; the sources that clang could not read in company are read alone."""
    findings = run_tidy(batch.paths, [*flags, *batch.flags], folder)
    if len(batch.paths) == 1:
        return findings
    unread = {path for path, _, check in findings if check == UNREAD}
    findings = {key: text for key, text in findings.items() if key[0] not in unread}
    for path in sorted(unread):
        alone = [path] if path in batch.paths else batch.paths[:1]  # a header's error is the same in each
        findings.update(run_tidy(alone, [*flags, *batch.flags], folder))
    return findings


def digest_of(commands, folder):
    """Of everything that the result depends on."""
    digest = hashlib.sha256(subprocess.run([TIDY, "--version"], capture_output=True, check=True).stdout)
    for path in [CONFIG, pathlib.Path(__file__), *sorted(folder.rglob("*.cpp")), *sorted(folder.rglob("*.h"))]:
        digest.update(f"{path} {commands.get(path)}\0".encode() + path.read_bytes())
    return digest.hexdigest()


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit("usage: check_tidy.py BUILD [SRC]")
    build = pathlib.Path(sys.argv[1]).resolve()
    folder = pathlib.Path(sys.argv[2] if len(sys.argv) == 3 else CONFIG.with_name("src")).resolve()
    commands = read_commands(build, folder)
    if not commands:
        sys.exit(f"check_tidy: {build} compiles nothing of {folder}")
    clean, digest = build / "tidy.clean", digest_of(commands, folder)
    if clean.exists() and clean.read_text() == digest:
        print(f"{len(commands)} sources, unchanged since nothing was found in them")
        return 0
    flags, findings = platform_flags(), {}
    with concurrent.futures.ThreadPoolExecutor(JOBS) as pool:
        for found in pool.map(lambda batch: check_batch(batch, flags, folder), make_batches(commands)):
            findings.update(found)
    for key in sorted(findings, key=str):
        print("\n".join(findings[key]))
    print(f"{len(commands)} sources, {len(findings)} findings")
    if not findings:
        clean.write_text(digest)
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
