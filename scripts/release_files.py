"""What a release is made of: the version, and the files that users download.

Used by scripts/package; tests/setup/setup_test.py installs what comes of it. The same input gives the
same bytes, wherever and whenever it is made.
"""

import calendar
import dataclasses
import hashlib
import os
import pathlib
import re
import shutil
import subprocess
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
BINARIES = ("TSEXE64.exe", "TSDLL64.dll")
README = "Readme.txt"
SUMS = "SHA256SUMS"


@dataclasses.dataclass(frozen=True)
class Version:
    name: str
    maker: str
    copyright: str
    number: str  # "1.1.0.2409"
    time: int  # seconds since 1970 that all files are dated by


def read_version(header=ROOT / "src" / "resources" / "version.h"):
    """What the header says. SOURCE_DATE_EPOCH, if set, stands for the day of the release."""
    text = header.read_text()

    def read(name, pattern):
        found = re.search(rf"^#define TESSALY_{name} {pattern}$", text, re.MULTILINE)
        if not found:
            raise SystemExit(f"{header}: no TESSALY_{name}")
        return found[1]

    numbers = [read(name, "([0-9]+)") for name in ("VERSION_MAJOR", "VERSION_MINOR", "VERSION_BUILD", "REVISION")]
    day = time.strptime(read("RELEASE_DATE_TEXT", '"([^"]+)"'), "%Y-%m-%d")
    return Version(
        name=read("NAME_TEXT", '"([^"]+)"'),
        maker=read("MAKER_TEXT", '"([^"]+)"'),
        copyright=read("COPYRIGHT_TEXT", '"([^"]+)"'),
        number=".".join(numbers),
        time=int(os.environ.get("SOURCE_DATE_EPOCH") or calendar.timegm(day)),
    )


def stage_product(version, binaries, folder):
    """Puts what users get into the empty folder: the two binaries and the read-me."""
    for name in BINARIES:
        shutil.copyfile(binaries / name, folder / name)
    text = (ROOT / "setup" / "Readme.txt.in").read_text()
    for field in ("name", "maker", "copyright"):
        text = text.replace(f"@{field.upper()}@", getattr(version, field))
    text = text.replace("@VERSION@", version.number)
    (folder / README).write_text(text, newline="\r\n")
    for path in folder.iterdir():
        path.chmod(0o644)
        os.utime(path, (version.time, version.time))


def write_setup(version, folder, path):
    """The installer of the files in the folder."""
    defines = {
        "NAME": version.name,
        "MAKER": version.maker,
        "COPYRIGHT": version.copyright,
        "VERSION": version.number,
        "FILES": folder,
        "ICON": ROOT / "src" / "resources" / "tessaly.ico",
        "PICTURE": ROOT / "setup" / "finish.bmp",
        "OUTPUT": path,
    }
    command = ["makensis", "-V2", "-WX", "-NOCD", *(f"-D{name}={value}" for name, value in defines.items())]
    subprocess.run([*command, str(ROOT / "setup" / "setup.nsi")], check=True)


def write_sums(folder):
    """The digests of all files in the folder, as sha256sum -c reads them."""
    lines = [f"{hashlib.sha256(path.read_bytes()).hexdigest()}  {path.name}\n" for path in sorted(folder.iterdir())]
    (folder / SUMS).write_text("".join(lines))
