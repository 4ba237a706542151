#!/usr/bin/env python3
"""Installs, updates and removes the product: scripts/with_desktop.sh python3 tests/setup/setup_test.py

What is installed are the binaries of the build, or of the folder that TESSALY_BUILD names; the
older version is made of the same with bytes behind their end. Each test begins without the product, and
looks at the end that registry and disk are as they were.
"""

import contextlib
import dataclasses
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

sys.dont_write_bytecode = True

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "scripts"))

import release_files  # noqa: E402

BUILD = pathlib.Path(os.environ.get("TESSALY_BUILD", ROOT / "build"))
BINARIES = BUILD / "bin"
DESKTOP = BUILD / "e2e" / "test_desktop.exe"
PROBE = BUILD / "setup" / "setup_probe.exe"
LIMIT = 60  # seconds, of whatever a test waits for
OLD_MARK = b"older"
MAKER_KEY = r"HKCU\Software\Orvanta"
DATA_KEY = MAKER_KEY + r"\Tessaly\Data"
SETUP_KEY = MAKER_KEY + r"\Tessaly\Setup"
UNINSTALL_KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Tessaly"
RUN_KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Run"
EXPLORER_KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Explorer"
# The uninstaller works from a copy of itself, which the platform is asked to delete at its next start.
# The rest is the platform's own.
OTHER_VALUES = ('"PendingFileRenameOperations"', '"DriverDateData"')
OTHER_KEY = "[HKEY_CURRENT_USER\\Software\\Wine\\"


def wine(*arguments, **options):
    options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL, **options}
    return subprocess.Popen(["wine", *map(str, arguments)], **options)


def run(*arguments):
    return wine(*arguments).wait(LIMIT)


def reg(*arguments):
    """What reg.exe says, or nothing if it refuses."""
    told = subprocess.run(["wine", "reg", *arguments], capture_output=True, timeout=LIMIT)
    return told.stdout.decode(errors="replace") if told.returncode == 0 else ""


def read_value(key, name):
    found = re.search(rf"^ +{re.escape(name)} +REG_[A-Z_]+ +(.*?)\r?$", reg("query", key, "/v", name), re.MULTILINE)
    return found[1] if found else ""


def wait_until(condition):
    end = time.monotonic() + LIMIT
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.05)
    return True


def read_registry(root, folder):
    path = folder / "export.reg"
    subprocess.run(["wine", "regedit", "/E", path, root], check=True, timeout=LIMIT, stderr=subprocess.DEVNULL)
    found, key = {}, ""
    for line in path.read_text("utf-16").replace("\\\n", "").splitlines():
        if line.startswith("["):
            key = line
        if not line or key.startswith(OTHER_KEY) or line.startswith(OTHER_VALUES):
            continue
        if line == key:
            found[key] = ""
        else:
            found[key, line.partition("=")[0]] = line
    return found


def read_disk():
    """Size and date of each file, and the folders; not what lies in folders for temporary files."""
    found = {}
    for folder, folders, files in os.walk(prefix() / "drive_c"):
        folders[:] = [name for name in folders if name != "Temp"]
        found[folder] = None
        for name in files:
            status = os.lstat(os.path.join(folder, name))
            found[os.path.join(folder, name)] = (status.st_size, status.st_mtime_ns)
    return found


def prefix():
    return pathlib.Path(os.environ["WINEPREFIX"])


def home():
    users = prefix() / "drive_c" / "users"
    return next(folder for folder in users.iterdir() if folder.name != "Public")


class Setup(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.made = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        version = release_files.read_version()
        cls.new = cls.make(version, b"")
        cls.old = cls.make(dataclasses.replace(version, number="1.0.0.1"), OLD_MARK)
        # What the first programs of a prefix leave behind.
        run(PROBE, "window", "none")
        read_registry("HKEY_CURRENT_USER", cls.made)

    @classmethod
    def make(cls, version, mark):
        """The installer of a version, and its files by name."""
        folder = cls.made / version.number
        product, binaries = folder / "product", folder / "binaries"
        product.mkdir(parents=True)
        binaries.mkdir()
        for name in release_files.BINARIES:
            (binaries / name).write_bytes((BINARIES / name).read_bytes() + mark)
        release_files.stage_product(version, binaries, product)
        setup = folder / f"Tessaly-{version.number}-setup.exe"
        release_files.write_setup(version, product, setup)
        return setup, {path.name: path.read_bytes() for path in product.iterdir()}

    def setUp(self):
        self.local = home() / "AppData" / "Local"
        self.menu = home() / "AppData" / "Roaming" / "Microsoft" / "Windows" / "Start Menu" / "Programs"
        self.before = self.state()
        self.desktop = None
        self.addCleanup(self.clean_up)

    def state(self):
        """Registry and disk."""
        return {
            **read_registry("HKEY_CURRENT_USER", self.made),
            **read_registry("HKEY_LOCAL_MACHINE", self.made),
            **read_disk(),
        }

    def clean_up(self):
        """For the next test, however this one ended."""
        run(BINARIES / "TSEXE64.exe", "/EXIT", "/QUIET")
        self.end_desktop()
        shutil.rmtree(self.folder, ignore_errors=True)
        (self.menu / "Tessaly.lnk").unlink(missing_ok=True)
        for key in UNINSTALL_KEY, MAKER_KEY:
            reg("delete", key, "/f")
        reg("delete", RUN_KEY, "/v", "Tessaly", "/f")

    def expect_as_before(self, *kept):
        """But for keys of the registry that the user kept."""
        now = self.state()
        changed = {
            name: (self.before.get(name), now.get(name))
            for name in self.before.keys() | now.keys()
            if self.before.get(name) != now.get(name)
        }
        self.assertEqual(set(kept), set(changed), changed)

    @property
    def folder(self):
        return self.local / "Programs" / "Tessaly"

    def install(self, made, *switches):
        return run(made[0], "/S", *switches)

    def uninstall(self, *switches):
        """By a copy of itself, which does the work and is waited for."""
        self.assertEqual(0, run(self.folder / "Uninstall.exe", "/S", *switches))
        self.assertTrue(wait_until(lambda: not (self.folder / "TSDLL64.dll").exists()))
        self.end_desktop()
        self.assertTrue(wait_until(lambda: run(PROBE, "setup") == 1))
        self.assertFalse(self.folder.exists())
        self.assertFalse(self.is_running())

    def start(self):
        """The product, on a desktop that it watches."""
        self.desktop = wine(DESKTOP, "plain")
        self.assertTrue(wait_until(lambda: self.has_window("Progman")))
        started = wine(self.folder / "TSEXE64.exe", "/QUIET")
        self.assertTrue(wait_until(self.is_running))
        return started

    def end_desktop(self):
        """On this platform the product's library stays mapped there until then."""
        if self.desktop:
            self.desktop.kill()
            self.desktop.wait()
            self.desktop = None

    def has_window(self, name):
        return run(PROBE, "window", name) == 0

    def is_running(self):
        return self.has_window("TessalyWnd")

    def expect_files(self, made):
        found = {path.name: path.read_bytes() for path in self.folder.iterdir() if path.is_file()}
        self.assertIn("Uninstall.exe", found)
        found.pop("Uninstall.exe")
        self.assertEqual(made[1].keys(), found.keys())
        for name, data in found.items():
            self.assertTrue(data == made[1][name], f"{name} is of another version")
        self.assertFalse((self.folder / "new").exists())

    @contextlib.contextmanager
    def held(self, name):
        """Another program has the file open, and shares it with readers only."""
        holder = wine(PROBE, "hold", self.folder / name, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        with holder:
            self.assertEqual(b"\n", holder.stdout.read(1))
            yield
            holder.stdin.close()
            self.assertEqual(0, holder.wait(LIMIT))

    def plant_data(self):
        self.assertTrue(reg("add", DATA_KEY, "/v", "1", "/t", "REG_BINARY", "/d", "00", "/f"))
        self.assertTrue(reg("add", SETUP_KEY, "/v", "NextUpdate", "/t", "REG_DWORD", "/d", "0xffffffff", "/f"))

    def test_install_run_and_remove_with_the_snapshots(self):
        self.assertEqual(0, self.install(self.new))
        self.expect_files(self.new)
        self.assertTrue((self.menu / "Tessaly.lnk").exists())
        self.assertEqual("Tessaly", read_value(UNINSTALL_KEY, "DisplayName"))
        self.assertEqual(release_files.read_version().number, read_value(UNINSTALL_KEY, "DisplayVersion"))
        self.assertIn("TSDLL64.dll,StartMonitor", read_value(RUN_KEY, "Tessaly"))
        self.assertFalse(self.is_running())
        self.start()
        self.plant_data()
        self.uninstall("/DELETESNAPSHOTS")
        self.expect_as_before()

    def test_snapshots_stay_if_nothing_is_said_of_them(self):
        self.assertEqual(0, self.install(self.new))
        self.plant_data()
        self.uninstall()
        key = "[HKEY_CURRENT_USER\\Software\\Orvanta"
        self.expect_as_before(
            f"{key}]", f"{key}\\Tessaly]", f"{key}\\Tessaly\\Data]", (f"{key}\\Tessaly\\Data]", '"1"')
        )

    def test_update_closes_replaces_and_starts_again(self):
        self.assertEqual(0, self.install(self.old, "/AUTOSTART:OFF"))
        self.expect_files(self.old)
        started = self.start()
        self.assertEqual(0, self.install(self.new))
        self.assertEqual(0, started.wait(LIMIT))
        self.assertTrue(wait_until(self.is_running))
        self.expect_files(self.new)
        self.assertEqual("", read_value(RUN_KEY, "Tessaly"))
        self.assertEqual(release_files.read_version().number, read_value(UNINSTALL_KEY, "DisplayVersion"))
        self.uninstall("/DELETESNAPSHOTS")
        self.expect_as_before()

    def test_locked_file_leaves_the_old_version_whole(self):
        self.assertEqual(0, self.install(self.old))
        self.start()
        for name in "TSDLL64.dll", "Readme.txt":
            with self.subTest(name), self.held(name):
                self.assertEqual(2, self.install(self.new))
                self.expect_files(self.old)
                self.assertEqual("1.0.0.1", read_value(UNINSTALL_KEY, "DisplayVersion"))
                self.assertTrue(wait_until(self.is_running))
        with self.held("Readme.txt"):
            place = subprocess.run(["winepath", "-w", self.folder], capture_output=True, text=True).stdout.strip()
            self.assertEqual(2, run(self.folder / "Uninstall.exe", "/S", f"_?={place}"))
            self.expect_files(self.old)
            self.assertTrue(wait_until(self.is_running))
        self.assertEqual(0, self.install(self.new))
        self.expect_files(self.new)
        self.uninstall("/DELETESNAPSHOTS")
        self.expect_as_before()

    def test_full_disk_leaves_the_old_version_whole(self):
        own = os.environ.get("DESKTOP_ENV_COMMON_MOUNTS")
        if not own or own == os.readlink("/proc/self/ns/mnt"):
            self.skipTest("this user may not mount a small disk")
        self.folder.parent.mkdir(exist_ok=True)
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=1400k", "tessaly", self.folder.parent], check=True)
        try:
            self.assertEqual(0, self.install(self.old))
            started = self.start()
            self.assertEqual(2, self.install(self.new))
            self.expect_files(self.old)
            self.assertIsNone(started.poll())  # it was not even closed
            self.uninstall("/DELETESNAPSHOTS")
        finally:
            run(BINARIES / "TSEXE64.exe", "/EXIT", "/QUIET")
            self.end_desktop()
            subprocess.run(["umount", "-l", self.folder.parent], check=True)
            self.folder.parent.rmdir()
        self.expect_as_before()

    def test_user_with_blanks_and_letters_of_other_scripts_in_the_name(self):
        profile = prefix() / "drive_c" / "users" / "Jörg Müller 山"
        self.local, self.menu = profile / "Local Data", profile / "Programs"
        places = {"Local AppData": self.local, "Programs": self.menu}
        keys = [rf"{EXPLORER_KEY}\{name}" for name in ("User Shell Folders", "Shell Folders")]
        before = {(key, name): read_value(key, name) for key in keys for name in places}
        try:
            for key, name in before:
                places[name].mkdir(parents=True, exist_ok=True)
                reg("add", key, "/v", name, "/d", f"C:\\users\\{profile.name}\\{places[name].name}", "/f")
            self.before = self.state()
            self.assertEqual(0, self.install(self.new))
            self.expect_files(self.new)
            self.assertTrue((self.menu / "Tessaly.lnk").exists())
            self.start()
            self.assertEqual(0, run(self.folder / "TSEXE64.exe", "/AUTOSTART", "/QUIET"))
            self.uninstall("/DELETESNAPSHOTS")
            self.expect_as_before()
        finally:
            shutil.rmtree(profile)
            for (key, name), place in before.items():
                reg(*(("add", key, "/v", name, "/d", place) if place else ("delete", key, "/v", name)), "/f")


if __name__ == "__main__":
    unittest.main(verbosity=2)
