#!/usr/bin/env python3
"""Lists what the libraries of Windows XP x64 export: tests/image/list_exports.py --write

No such Windows is at hand, so the list is what can be told without one: each function that the
platform's headers declare for that Windows (the build's own _WIN32_WINNT, WINVER and so on, of
cmake/flags.cmake) and that the import library of its module knows. An import library alone names
functions of all versions, and some headers declare newer ones without asking for the version: those
are taken out again by xp64_by_hand.txt, which was gone through name by name. It also has what no header
of the platform declares, the C runtime's.

Made with the packages mingw-w64-x86-64-dev and mingw-w64-common 10.0.0 of Debian 12. Without --write
it only tells what differs from xp64_exports.txt, and ends with 1 if something does.
"""

import functools
import pathlib
import re
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
FLAGS = HERE.parents[1] / "cmake" / "flags.cmake"
LIST = HERE / "xp64_exports.txt"
BY_HAND = HERE / "xp64_by_hand.txt"
TOOLS = "x86_64-w64-mingw32-"
HEADERS = """windows.h ole2.h oleauto.h commctrl.h commdlg.h shlobj.h shlwapi.h shellapi.h sddl.h tlhelp32.h
    wtsapi32.h""".split()
# What the two files import from, without msvcrt.dll. A module more makes the start longer.
MODULES = """kernel32.dll user32.dll gdi32.dll advapi32.dll shell32.dll ole32.dll comctl32.dll
    shlwapi.dll wtsapi32.dll""".split()
HEAD = "# Made by list_exports.py, which tells how; not to be edited. What is here may be imported.\n"


def read_definitions():
    """The versions that the product is compiled for."""
    found = re.findall(r"\b(?:_WIN32_WINNT|WINVER|_WIN32_IE|NTDDI_VERSION)=\w+", FLAGS.read_text())
    if len(found) != 4:
        raise SystemExit(f"{FLAGS}: no versions")
    return [f"-D{definition}" for definition in found]


@functools.cache
def read_declared():
    """The names of all functions that the headers declare for that Windows."""
    with tempfile.TemporaryDirectory() as folder:
        source, told = pathlib.Path(folder) / "all.c", pathlib.Path(folder) / "declared"
        source.write_text("".join(f"#include <{name}>\n" for name in HEADERS))
        options = ["-fsyntax-only", "-w", *read_definitions(), "-aux-info", told]
        subprocess.run([f"{TOOLS}gcc", *options, source], check=True)
        # "/* FILE:LINE:KIND */ extern RESULT NAME (PARAMETERS);", a NAME that gives a function in brackets
        return set(re.findall(r"^/\*.*?\*/.*?\b(\w+) \((?!\*)", told.read_text(), re.MULTILINE))


@functools.cache
def read_library(module):
    """The names that the import library of the module knows."""
    asked = subprocess.run([f"{TOOLS}gcc", f"-print-file-name=lib{module.removesuffix('.dll')}.a"],
                           check=True, capture_output=True, text=True)
    told = subprocess.run([f"{TOOLS}nm", "-g", "--defined-only", asked.stdout.strip()],
                          check=True, capture_output=True, text=True)
    return set(re.findall(r" __imp_(\w+)$", told.stdout, re.MULTILINE))


def read_list(path=LIST):
    """(module, function) of each line."""
    lines = (line.split("#", 1)[0].split() for line in path.read_text("ascii").splitlines())
    return {tuple(words) for words in lines if words}


def read_by_hand(path=BY_HAND):
    """{"+" or "-": the (module, function) pairs to add or to take out}."""
    found = {"+": set(), "-": set()}
    for line in path.read_text("ascii").splitlines():
        words = line.split("#", 1)[0].split()
        if words:
            sign, module, *names = words
            found[sign] |= {(module, name) for name in names}
    return found


def make_list(by_hand):
    declared = read_declared()
    made = {(module, name) for module in MODULES for name in declared & read_library(module)}
    # A line by hand that changes nothing is a mistake, or of another version of the headers.
    idle = (by_hand["-"] - made) | (by_hand["+"] & made)
    if idle:
        raise SystemExit(f"{BY_HAND.name} changes nothing by {sorted(idle)}")
    return (made - by_hand["-"]) | by_hand["+"]


def main():
    if sys.argv[1:] not in ([], ["--write"]):
        sys.exit("usage: list_exports.py [--write]")
    made = make_list(read_by_hand())
    if sys.argv[1:]:
        LIST.write_text(HEAD + "".join(f"{module} {name}\n" for module, name in sorted(made)))
    differing = sorted(made ^ read_list())
    for module, name in differing:
        print(f"{module} {name}: {'not in the list' if (module, name) in made else 'in the list alone'}")
    return 1 if differing else 0


if __name__ == "__main__":
    sys.exit(main())
