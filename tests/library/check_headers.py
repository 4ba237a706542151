#!/usr/bin/env python3
"""Looks at what the library offers to its users: python3 tests/library/check_headers.py build/bin

Each header that exports something is in tessaly.h and on the page docs/library.md, and each function
and class that a header exports is in TSDLL64.dll. Prints one line per check and "N passed, N failed";
ends with 1 if any failed.
"""

import fnmatch
import pathlib
import re
import sys

sys.dont_write_bytecode = True

ROOT = pathlib.Path(__file__).parents[2]
sys.path.insert(0, str(ROOT / "tests" / "image"))
from check_image import Image, Report  # noqa: E402

FUNCTION = re.compile(r'^(?:extern "C" |\[\[nodiscard\]\] )*TESSALY_API\b[^;({]*?(\w+)\(', re.MULTILINE)
CLASS = re.compile(r"^(?:class|struct) TESSALY_API (\w+)", re.MULTILINE)


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: check_headers.py FOLDER")
    source = ROOT / "src"
    umbrella = re.findall(r'^#include "(.+)"$', (source / "tessaly.h").read_text(), re.MULTILINE)
    named = re.findall(r"`([\w/*]+\.h)`", (ROOT / "docs" / "library.md").read_text())
    exports = Image(pathlib.Path(sys.argv[1]) / "TSDLL64.dll").exports()
    mangled = "\n".join(exports)

    report = Report()
    report.check("tessaly.h is sorted and names nothing twice", umbrella == sorted(set(umbrella)))
    for path in sorted(source.rglob("*.h")):
        name = path.relative_to(source).as_posix()
        if name in ("tessaly.h", "runtime/base/export.h"):
            continue
        text = path.read_text()
        functions, classes = set(FUNCTION.findall(text)), set(CLASS.findall(text))
        if not functions and not classes:
            report.check(f"{name} exports nothing that this cannot read", "TESSALY_API" not in text)
            continue
        report.check(f"{name} is in tessaly.h", name in umbrella)
        report.check(f"{name} is on the page", any(fnmatch.fnmatch(name, n) for n in named))
        missing = [f for f in functions if f not in exports and f"_Z{len(f)}{f}" not in mangled]
        if path.with_suffix(".cpp").exists():  # else all of it is inline, and compiled by the user
            missing += [c for c in classes if f"{len(c)}{c}" not in mangled]
        report.check(f"{name}'s functions and classes are in the library", not missing, " ".join(missing))
    for name in named:
        report.check(f"{name} on the page exists", any(source.glob(name)))
    print(f"{report.passed} passed, {report.failed} failed")
    return 1 if report.failed else 0


if __name__ == "__main__":
    sys.exit(main())
