"""The users of the machine that setup_test.py installs on: what they start, what they have.

The first is the environment's own. A second one has the same disk, and a registry and a session of
their own: another prefix whose C: is the first one's.
"""

import contextlib
import os
import pathlib
import pwd
import re
import shutil
import subprocess
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("TESSALY_BUILD", ROOT / "build"))
BINARIES = BUILD / "bin"
DESKTOP = BUILD / "e2e" / "test_desktop.exe"
PROBE = BUILD / "setup" / "setup_probe.exe"
LIMIT = 90  # seconds, of whatever a test waits for

MAKER_KEY = r"HKCU\Software\Orvanta"
DATA_KEY = MAKER_KEY + r"\Tessaly\Data"
DISPLAYS_KEY = MAKER_KEY + r"\Tessaly\Displays"
SETUP_KEY = MAKER_KEY + r"\Tessaly\Setup"
UNINSTALL_KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Tessaly"
RUN_KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Run"
ENVIRONMENT_KEY = r"HKCU\Environment"
EXPLORER_KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Explorer"
# The platform's own; the first is its list of files to delete at its next start, on which every
# uninstaller of this kind puts its copy, though ours has gone by then.
OTHER_VALUES = ('"PendingFileRenameOperations"', '"DriverDateData"')
OTHER_KEYS = (
    "[HKEY_CURRENT_USER\\Software\\Wine\\",
    "[HKEY_CURRENT_USER\\Console]",  # comes with the first console
    "[HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Control\\Video\\",  # of each session another one
)


def wait_until(condition, limit=LIMIT):
    end = time.monotonic() + limit
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.05)
    return True


def changes(before, now):
    """{name: (before, now)} of what differs."""
    names = before.keys() | now.keys()
    return {name: (before.get(name), now.get(name)) for name in names if before.get(name) != now.get(name)}


def read_disk(folder):
    """Size and date of each file below the folder, and the folders."""
    found = {}
    for path, _, files in os.walk(folder):
        found[path] = None
        for name in files:
            with contextlib.suppress(FileNotFoundError):  # the platform's own, which come and go
                status = os.lstat(os.path.join(path, name))
                found[os.path.join(path, name)] = (status.st_size, status.st_mtime_ns)
    return found


class User:
    def __init__(self, name, prefix):
        self.name, self.prefix = name, prefix
        self.variables = {**os.environ, "WINEPREFIX": str(prefix), "USER": name, "LOGNAME": name}
        self.profile = prefix / "drive_c" / "users" / name
        self.local = self.profile / "AppData" / "Local"
        self.temp = self.profile / "Temp"
        self.menu = self.profile / "AppData" / "Roaming" / "Microsoft" / "Windows" / "Start Menu" / "Programs"
        self.started = []

    @classmethod
    def first(cls):
        name = os.environ.get("USER") or pwd.getpwuid(os.getuid()).pw_name  # as the platform has it
        return cls(name, pathlib.Path(os.environ["WINEPREFIX"]))

    def make_second(self, name):
        """To be removed by remove_second."""
        prefix = self.prefix.with_name("prefix-" + name)
        shutil.copytree(self.prefix, prefix, symlinks=True, ignore=lambda *_: ["drive_c"])
        (prefix / "drive_c").symlink_to(self.prefix / "drive_c")
        registry = prefix / "user.reg"
        text = registry.read_text("latin-1")
        registry.write_text(text.replace(rf"users\\{self.name}", rf"users\\{name}"), "latin-1")
        second = User(name, prefix)
        second.clean_up()  # of what the first one has
        return second

    def remove_second(self):
        self.clean_up()
        for option in "-k", "-w":
            subprocess.run(["wineserver", option], env=self.variables, timeout=LIMIT)
        shutil.rmtree(self.profile)
        shutil.rmtree(self.prefix)

    # What the user starts

    def wine(self, *arguments, **options):
        options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL, **options}
        self.started.append(subprocess.Popen(["wine", *map(str, arguments)], env=self.variables, **options))
        return self.started[-1]

    def run(self, *arguments):
        return self.wine(*arguments).wait(LIMIT)

    def ask(self, *arguments):
        """What the program says, or nothing if it refuses."""
        told = subprocess.run(["wine", *map(str, arguments)], capture_output=True, env=self.variables, timeout=LIMIT)
        return told.stdout.decode(errors="replace") if told.returncode == 0 else ""

    @contextlib.contextmanager
    def probe(self, *arguments):
        """The probe at work, until the end."""
        with self.wine(PROBE, *arguments, stdin=subprocess.PIPE, stdout=subprocess.PIPE) as working:
            if working.stdout.read(1) != b"\n":
                raise AssertionError(f"setup_probe {arguments} did not begin")
            yield
            working.stdin.close()
            if working.wait(LIMIT) != 0:
                raise AssertionError(f"setup_probe {arguments} failed")

    def is_running(self):
        return self.run(PROBE, "window", "TessalyWnd") == 0

    def will_run(self):
        """It runs, or begins to in time."""
        return self.run(PROBE, "until", "window", "TessalyWnd") == 0

    def start_desktop(self):
        """Over the files of the user's own desktop."""
        self.desktop = self.wine(DESKTOP, "real")
        return self.run(PROBE, "until", "desktop") == 0

    def end_desktop(self):
        """On this platform the product's library stays mapped there until then."""
        if desktop := getattr(self, "desktop", None):
            desktop.kill()
            desktop.wait()

    # What the user has

    @property
    def folder(self):
        return self.local / "Programs" / "Tessaly"

    def reg(self, *arguments):
        return self.ask("reg", *arguments)

    def read_value(self, key, name):
        told = self.reg("query", key, "/v", name)
        found = re.search(rf"^ +{re.escape(name)} +REG_[A-Z_]+ +(.*?)\r?$", told, re.MULTILINE)
        return found[1] if found else ""

    def read_registry(self, root):
        path = self.prefix.with_name("export.reg")
        command = ["wine", "regedit", "/E", path, root]
        subprocess.run(command, check=True, timeout=LIMIT, stderr=subprocess.DEVNULL, env=self.variables)
        found, key = {}, ""
        for line in path.read_text("utf-16").replace("\\\n", "").splitlines():
            if line.startswith("["):
                key = line
            if not line or key.startswith(OTHER_KEYS) or line.startswith(OTHER_VALUES):
                continue
            if line == key:
                found[key] = ""
            else:
                found[key, line.partition("=")[0]] = line
        return found

    def state(self):
        """The user's registry and the whole disk."""
        return {**self.read_registry("HKEY_CURRENT_USER"), **read_disk(self.prefix / "drive_c")}

    def own_state(self):
        """Without what other users have on the disk."""
        return {**self.read_registry("HKEY_CURRENT_USER"), **read_disk(self.profile)}

    def clean_up(self):
        """For the next test, however this one ended."""
        self.run(BINARIES / "TSEXE64.exe", "/EXIT", "/QUIET")
        self.end_desktop()
        shutil.rmtree(self.folder, ignore_errors=True)
        (self.menu / "Tessaly.lnk").unlink(missing_ok=True)
        for key in UNINSTALL_KEY, MAKER_KEY:
            self.reg("delete", key, "/f")
        self.reg("delete", RUN_KEY, "/v", "Tessaly", "/f")
        for process in self.started:
            process.kill()
            process.wait()
        self.started.clear()
