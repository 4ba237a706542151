#!/usr/bin/env python3
"""Looks whether every C++ file is laid out as .clang-format says: check_format.py [ROOT]

The files are those that git knows, or may come to know, below src, tests, bench and samples. Prints where one
differs; ends with 1 then. `clang-format -i FILE` mends it.
"""

import concurrent.futures
import pathlib
import subprocess
import sys

sys.dont_write_bytecode = True

JOBS = 2
FOLDERS = ("src", "tests", "bench", "samples")


def list_files(root):
    patterns = [f"{folder}/*.{ending}" for folder in FOLDERS for ending in ("cpp", "h")]
    call = ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard", "--", *patterns]
    told = subprocess.run(call, cwd=root, capture_output=True, text=True, check=True)
    return sorted(name for name in set(told.stdout.split("\0")) if name and (root / name).exists())


def check_files(root, names):
    call = ["clang-format", "--style=file", "--fallback-style=none", "--dry-run", "-Werror", *names]
    return subprocess.run(call, cwd=root, capture_output=True, text=True)


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parents[2]).resolve()
    names = list_files(root)
    if not names:
        sys.exit(f"check_format: git knows no C++ file in {root}")
    if not (root / ".clang-format").exists():
        sys.exit(f"check_format: {root} has no .clang-format")
    with concurrent.futures.ThreadPoolExecutor(JOBS) as pool:
        results = list(pool.map(lambda share: check_files(root, share), (names[i::JOBS] for i in range(JOBS))))
    print("".join(r.stderr for r in results), end="")
    failed = any(r.returncode for r in results)
    print(f"{len(names)} files, " + ("some are laid out differently" if failed else "all laid out alike"))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
