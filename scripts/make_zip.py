#!/usr/bin/env python3
"""Packs a folder so that the same files make the same bytes: make_zip.py FILE PARENT NAME

FILE then holds PARENT/NAME with all below it, as NAME/... Order, times and rights of the files do not
depend on the disk: each has the time SOURCE_DATE_EPOCH (seconds since 1970) if that is set, else the
first that the format knows. scripts/package calls pack itself.
"""

import os
import pathlib
import sys
import time
import zipfile

FIRST_TIME = 315532800  # 1980-01-01 00:00:00 UTC


def pack(file, folder, prefix="", seconds=FIRST_TIME):
    """All files below the folder, each by its way from there behind the prefix, in the order of names."""
    when = time.gmtime(max(FIRST_TIME, seconds))[:6]
    paths = {prefix + p.relative_to(folder).as_posix(): p for p in folder.rglob("*") if p.is_file()}
    part = file.with_name(file.name + ".part")
    with zipfile.ZipFile(part, "w") as archive:
        for inside in sorted(paths):
            entry = zipfile.ZipInfo(inside, when)
            entry.create_system = 3  # says what the rights below mean, wherever this runs
            entry.external_attr = 0o100644 << 16
            archive.writestr(entry, paths[inside].read_bytes(), zipfile.ZIP_DEFLATED, 9)
    part.replace(file)  # whoever finds the file finds all of it


def main():
    if len(sys.argv) != 4:
        sys.exit("usage: make_zip.py FILE PARENT NAME")
    file, parent, name = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3]
    pack(file, parent / name, f"{name}/", int(os.environ.get("SOURCE_DATE_EPOCH", FIRST_TIME)))


if __name__ == "__main__":
    main()
