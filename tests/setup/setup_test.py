#!/usr/bin/env python3
"""Installs, updates and removes the product: scripts/with_desktop.sh python3 tests/setup/setup_test.py

What is installed are the binaries of the build, or of the folder that TESSALY_BUILD names; the
older version is made of the same with bytes behind their end. Each test begins without the product, and
looks at the end that registry and disk are as they were. Names of classes or of tests (Silent, Hands...)
as arguments run these alone.
"""

import contextlib
import dataclasses
import itertools
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

sys.dont_write_bytecode = True

import users  # noqa: E402
from users import BINARIES, DATA_KEY, DISPLAYS_KEY, LIMIT, PROBE, RUN_KEY, SETUP_KEY, UNINSTALL_KEY  # noqa: E402
from users import User, wait_until  # noqa: E402

sys.path.insert(0, str(users.ROOT / "scripts"))

import release_files  # noqa: E402

OLD_MARK = b"older"
OLD_VERSION = "1.0.0.1"
KEPT = "[HKEY_CURRENT_USER\\Software\\Orvanta"
KEPT_KEYS = {f"{KEPT}{below}]" for below in ("", r"\Tessaly", r"\Tessaly\Data", r"\Tessaly\Displays")}
NEW_FILES, OLD_FILES = "~setup-new", "~setup-old"  # folders for a while
TREE = "SysTreeView32"  # the class of the pages' choices
DONE, CANCELLED, NOTHING_CHANGED, NOT_ALL_SET = 0, 1, 2, 3  # exit codes


class Made:
    """An installer, and the files that it has, by name."""

    def __init__(self, folder, version, mark):
        self.version, product, binaries = version.number, folder / "product", folder / "binaries"
        product.mkdir(parents=True)
        binaries.mkdir()
        for name in release_files.BINARIES:
            (binaries / name).write_bytes((BINARIES / name).read_bytes() + mark)
        release_files.stage_product(version, binaries, product)
        self.setup = folder / f"Tessaly-{version.number}-setup.exe"
        release_files.write_setup(version, product, self.setup)
        self.files = {path.name: path.read_bytes() for path in product.iterdir()}


class Installed(unittest.TestCase):
    """What the tests below share: a user, installers of two versions, and what is looked at."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        version = release_files.read_version()
        cls.new = Made(folder / "new", version, b"")
        cls.old = Made(folder / "old", dataclasses.replace(version, number=OLD_VERSION), OLD_MARK)
        # What the first programs of a prefix leave behind.
        first = User.first()
        icon = first.profile / "Desktop" / "Note.txt"
        icon.touch()
        first.start_desktop()
        first.read_registry("HKEY_CURRENT_USER")
        first.clean_up()
        icon.unlink()
        cls.machine = User.first().read_registry("HKEY_LOCAL_MACHINE")

    @classmethod
    def tearDownClass(cls):
        changed = users.changes(cls.machine, User.first().read_registry("HKEY_LOCAL_MACHINE"))
        if changed:
            raise AssertionError(f"a test changed the machine's registry: {changed}")

    def setUp(self):
        self.user = User.first()
        self.addCleanup(self.user.clean_up)
        self.before = self.user.state()

    def expect_as_before(self, kept=()):
        """But for keys of the registry that the user kept, with their values."""
        changed = users.changes(self.before, self.user.state())
        keys = {name[0] if isinstance(name, tuple) else name for name in changed}
        self.assertEqual(set(kept), keys, changed)

    def expect_installed(self, made, user=None):
        user = user or self.user
        self.expect_files(made, user)
        self.assertFalse((user.folder / NEW_FILES).exists())
        self.assertEqual(made.version, user.read_value(UNINSTALL_KEY, "DisplayVersion"))

    def expect_files(self, made, user):
        found = {path.name: path.read_bytes() for path in user.folder.iterdir() if path.is_file()}
        self.assertIn("Uninstall.exe", found)
        found.pop("Uninstall.exe")
        self.assertEqual(made.files.keys(), found.keys())
        for name, data in found.items():
            self.assertTrue(data == made.files[name], f"{name} is of another version")

    def expect_auto_start(self, on, user=None):
        value = (user or self.user).read_value(RUN_KEY, "Tessaly")
        self.assertEqual(on, "TSDLL64.dll,StartMonitor" in value, value)

    def install(self, made, *switches, user=None):
        return (user or self.user).run(made.setup, "/S", *switches)

    def uninstall(self, *switches, user=None):
        """By a copy of the uninstaller, which does the work and is waited for."""
        user = user or self.user
        self.assertEqual(DONE, user.run(user.folder / "Uninstall.exe", "/S", *switches))
        self.assertTrue(wait_until(lambda: not (user.folder / "TSDLL64.dll").exists()))
        user.end_desktop()
        self.expect_uninstalled(user)

    def expect_uninstalled(self, user):
        self.expect_uninstaller_gone(user)
        self.assertFalse(user.folder.exists())
        self.assertFalse(user.is_running())

    def expect_uninstaller_gone(self, user):
        """It has ended, and its copy has been deleted."""
        self.assertEqual(0, user.run(PROBE, "until", "no-setup"))
        self.assertTrue(wait_until(lambda: not list(user.temp.iterdir())))

    def uninstall_in_place(self, *switches):
        """Without a copy: the exit code is that of the work."""
        folder = self.user.ask("winepath", "-w", self.user.folder).strip()
        return self.user.run(self.user.folder / "Uninstall.exe", "/S", *switches, f"_?={folder}")

    def remove_folder(self):
        """What is left of it after the uninstaller, with the folder above, which then has nothing else."""
        shutil.rmtree(self.user.folder)
        self.user.folder.parent.rmdir()

    def start(self, user=None):
        """The product, on a desktop that it watches."""
        user = user or self.user
        self.assertTrue(user.start_desktop())
        started = user.wine(user.folder / "TSEXE64.exe", "/QUIET")
        self.assertTrue(user.will_run(), f"its exit code: {started.poll()}")
        return started

    def plant_data(self, user=None):
        user = user or self.user
        for key, name, kind, data in (
            (DATA_KEY, "1", "REG_BINARY", "00"),
            (DISPLAYS_KEY + r"\1", "x", "REG_BINARY", "00"),
            (SETUP_KEY, "NextUpdate", "REG_DWORD", "0xffffffff"),
        ):
            self.assertTrue(user.reg("add", key, "/v", name, "/t", kind, "/d", data, "/f"))


class Silent(Installed):
    def test_install_run_and_remove_with_the_snapshots(self):
        self.assertEqual(DONE, self.install(self.new))
        self.expect_installed(self.new)
        self.assertTrue((self.user.menu / "Tessaly.lnk").exists())
        self.assertEqual("Tessaly", self.user.read_value(UNINSTALL_KEY, "DisplayName"))
        self.expect_auto_start(True)
        self.assertFalse(self.user.is_running())
        self.start()
        self.plant_data()
        self.uninstall("/DELETESNAPSHOTS")
        self.expect_as_before()

    def test_snapshots_and_layouts_stay_if_nothing_is_said_of_them(self):
        self.assertEqual(DONE, self.install(self.new))
        self.plant_data()
        self.uninstall()
        self.expect_as_before(kept=KEPT_KEYS | {KEPT + r"\Tessaly\Displays\1]"})

    def test_update_closes_replaces_and_starts_again(self):
        self.assertEqual(DONE, self.install(self.old, "/AUTOSTART:OFF"))
        self.expect_installed(self.old)
        started = self.start()
        self.assertEqual(DONE, self.install(self.new))
        self.assertEqual(0, started.wait(LIMIT))
        self.assertTrue(self.user.will_run())
        self.expect_installed(self.new)
        self.expect_auto_start(False)
        self.uninstall("/DELETESNAPSHOTS")
        self.expect_as_before()

    def test_update_beside_a_command_starts_no_monitor(self):
        """A command that works without a monitor has a window of its class, until it is asked to close."""
        self.assertEqual(DONE, self.install(self.old, "/AUTOSTART:OFF"))
        with self.user.probe("pose", "TessalyWnd"):
            self.assertEqual(DONE, self.install(self.new))
        self.expect_installed(self.new)
        self.assertFalse(self.user.is_running())
        self.uninstall("/DELETESNAPSHOTS")
        self.expect_as_before()

    def test_folders_of_the_user_stay(self):
        self.assertEqual(DONE, self.install(self.old))
        own = [self.user.folder / name / "layouts.txt" for name in ("new", "old", "old layouts")]
        for path in own:
            path.parent.mkdir()
            path.touch()
        self.assertEqual(DONE, self.install(self.new))
        self.assertEqual(DONE, self.user.run(self.user.folder / "Uninstall.exe", "/S"))
        self.assertTrue(wait_until(lambda: not (self.user.folder / "Uninstall.exe").exists()))
        self.expect_uninstaller_gone(self.user)
        self.assertEqual(own, [path for path in own if path.exists()])
        self.assertEqual({path.parent for path in own}, set(self.user.folder.iterdir()))
        self.remove_folder()
        self.expect_as_before()

    def test_uninstaller_that_is_told_where_it_is_can_be_waited_for(self):
        self.assertEqual(DONE, self.install(self.new))
        self.plant_data()
        self.assertEqual(DONE, self.uninstall_in_place("/DELETESNAPSHOTS"))
        self.assertEqual(["Uninstall.exe"], [path.name for path in self.user.folder.iterdir()])
        self.remove_folder()
        self.expect_as_before()

    def test_another_copys_start_with_windows_stays(self):
        other = r"RunDll32.exe C:\other\TSDLL64.dll,StartMonitor"
        self.assertEqual(DONE, self.install(self.old, "/AUTOSTART:OFF"))
        self.user.reg("add", RUN_KEY, "/v", "Tessaly", "/d", other, "/f")
        for switches in ((), ("/AUTOSTART:OFF",)):
            self.assertEqual(DONE, self.install(self.new, *switches))
            self.assertEqual(other, self.user.read_value(RUN_KEY, "Tessaly"))
        self.assertEqual(DONE, self.install(self.new, "/AUTOSTART:ON"))
        self.assertNotEqual(other, self.user.read_value(RUN_KEY, "Tessaly"))
        self.expect_auto_start(True)
        self.uninstall()
        self.expect_as_before()

    def test_user_with_blanks_and_letters_of_other_scripts_in_the_name(self):
        profile = self.user.profile.with_name("Jörg Müller 山")
        self.user.local, self.user.menu = profile / "Local Data", profile / "Programs"
        self.user.temp = profile / "Temporary 山"  # where the uninstaller's copy runs, and a batch file
        places = {"Local AppData": self.user.local, "Programs": self.user.menu}
        places |= {"TEMP": self.user.temp, "TMP": self.user.temp}
        keys = [rf"{users.EXPLORER_KEY}\{name}" for name in ("User Shell Folders", "Shell Folders")]
        values = [(key, name) for key in keys for name in ("Local AppData", "Programs")]
        values += [(users.ENVIRONMENT_KEY, name) for name in ("TEMP", "TMP")]
        before = {(key, name): self.user.read_value(key, name) for key, name in values}
        try:
            for key, name in before:
                places[name].mkdir(parents=True, exist_ok=True)
                place = f"C:\\users\\{profile.name}\\{places[name].name}"
                self.user.reg("add", key, "/v", name, "/d", place, "/f")
            self.before = self.user.state()
            self.assertEqual(DONE, self.install(self.new))
            self.expect_installed(self.new)
            self.assertTrue((self.user.menu / "Tessaly.lnk").exists())
            told = self.user.ask("cmd", "/d", "/u", "/c", "echo %TEMP%")
            self.assertIn("Temporary", told.replace("\0", ""))
            self.start()
            self.assertEqual(0, self.user.run(self.user.folder / "TSEXE64.exe", "/AUTOSTART", "/QUIET"))
            self.uninstall("/DELETESNAPSHOTS")
            self.expect_as_before()
        finally:
            shutil.rmtree(profile)
            for (key, name), place in before.items():
                put = "add", key, "/v", name, "/t", "REG_EXPAND_SZ" if "User" in key else "REG_SZ", "/d", place
                self.user.reg(*(put if place else ("delete", key, "/v", name)), "/f")


class Failing(Installed):
    """What cannot be done is told, and loses nothing."""

    def test_locked_file_leaves_the_old_version_whole(self):
        self.assertEqual(DONE, self.install(self.old))
        self.start()
        for name in "TSDLL64.dll", "Readme.txt":
            with self.subTest(name), self.user.probe("hold", self.user.folder / name):
                self.assertEqual(NOTHING_CHANGED, self.install(self.new))
                self.expect_installed(self.old)
                self.assertTrue(self.user.will_run())
        with self.user.probe("hold", self.user.folder / "Readme.txt"):
            self.assertEqual(NOTHING_CHANGED, self.uninstall_in_place())
            self.expect_installed(self.old)
            self.assertTrue(self.user.will_run())
        self.assertEqual(DONE, self.install(self.new))
        self.expect_installed(self.new)
        self.uninstall("/DELETESNAPSHOTS")
        self.expect_as_before()

    def test_file_that_cannot_be_put_in_place_leaves_the_old_version_whole(self):
        self.assertEqual(DONE, self.install(self.old))
        self.start()
        with self.user.probe("catch", self.user.folder / NEW_FILES / "Readme.txt"):
            self.assertEqual(NOTHING_CHANGED, self.install(self.new))
        self.expect_files(self.old, self.user)
        self.assertTrue(self.user.will_run())
        self.assertFalse((self.user.folder / OLD_FILES).exists())
        self.assertEqual(DONE, self.install(self.new))
        self.expect_installed(self.new)
        self.uninstall("/DELETESNAPSHOTS")
        self.expect_as_before()

    def test_old_file_that_cannot_be_put_back_is_kept(self):
        self.assertEqual(DONE, self.install(self.old))
        kept = self.user.folder / OLD_FILES
        with self.user.probe("catch", self.user.folder / NEW_FILES / "Readme.txt"):
            with self.user.probe("catch", kept / "TSEXE64.exe"):
                self.assertEqual(NOTHING_CHANGED, self.install(self.new))
        self.assertEqual(["TSEXE64.exe"], [path.name for path in kept.iterdir()])
        self.assertEqual(self.old.files["TSEXE64.exe"], (kept / "TSEXE64.exe").read_bytes())
        for name in self.old.files.keys() - {"TSEXE64.exe"}:
            self.assertEqual(self.old.files[name], (self.user.folder / name).read_bytes())
        self.assertEqual(DONE, self.install(self.new))
        self.expect_installed(self.new)
        self.assertFalse(kept.exists())
        self.uninstall()
        self.expect_as_before()

    def test_copy_of_the_uninstaller_elsewhere_changes_nothing(self):
        self.assertEqual(DONE, self.install(self.new))
        before = self.user.state()
        with tempfile.TemporaryDirectory(dir=self.user.profile) as folder:
            shutil.copy(self.user.folder / "Uninstall.exe", folder)
            where = self.user.ask("winepath", "-w", folder).strip()
            program = pathlib.Path(folder, "Uninstall.exe")
            self.assertEqual(NOTHING_CHANGED, self.user.run(program, "/S", f"_?={where}"))
            self.assertEqual(DONE, self.user.run(program, "/S"))  # by a copy of that copy
            self.expect_uninstaller_gone(self.user)
        self.assertEqual({}, users.changes(before, self.user.state()))
        self.uninstall()
        self.expect_as_before()

    def test_entry_that_cannot_be_written_is_told(self):
        with self.user.probe("block", UNINSTALL_KEY.partition("\\")[2]):
            self.assertEqual(NOT_ALL_SET, self.install(self.new))
            self.assertTrue((self.user.menu / "Tessaly.lnk").exists())
            self.expect_auto_start(True)
        self.assertEqual(DONE, self.install(self.new))
        self.expect_installed(self.new)
        self.uninstall()
        self.expect_as_before()

    def test_full_disk_leaves_the_old_version_whole(self):
        own = os.environ.get("DESKTOP_ENV_COMMON_MOUNTS")
        if not own or own == os.readlink("/proc/self/ns/mnt"):
            self.skipTest("this user may not mount a small disk")
        place = self.user.folder.parent
        place.mkdir(exist_ok=True)
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=1400k", "tessaly", place], check=True)
        try:
            self.assertEqual(DONE, self.install(self.old))
            started = self.start()
            self.assertEqual(NOTHING_CHANGED, self.install(self.new))
            self.expect_installed(self.old)
            self.assertIsNone(started.poll())  # it was not even closed
            self.uninstall("/DELETESNAPSHOTS")
        finally:
            self.user.clean_up()
            subprocess.run(["umount", "-l", place], check=True)
            place.rmdir()
        self.expect_as_before()

    def test_start_with_windows_that_cannot_be_set_is_told(self):
        self.user.reg("delete", RUN_KEY, "/f")
        with self.user.probe("block", RUN_KEY.partition("\\")[2]):
            self.assertEqual(NOT_ALL_SET, self.install(self.new))
            self.expect_installed(self.new)
        self.assertEqual(DONE, self.install(self.new, "/AUTOSTART:ON"))
        self.expect_auto_start(True)
        self.uninstall()
        self.expect_as_before()

    def test_damaged_copy_can_be_removed(self):
        # Nothing asks anybody: the host's box would never be answered.
        for name, damaged in itertools.product(release_files.BINARIES, (b"MZ", None)):
            with self.subTest(name, damaged=damaged):
                self.assertEqual(DONE, self.install(self.new))
                self.expect_auto_start(True)
                path = self.user.folder / name
                if damaged:
                    path.write_bytes(damaged)
                else:
                    path.unlink()
                self.uninstall()
                self.expect_auto_start(False)
        self.expect_as_before()

    def test_damaged_copy_stays_while_another_one_runs(self):
        self.assertEqual(DONE, self.install(self.new))
        self.user.reg("add", RUN_KEY, "/v", "Tessaly", "/d", r"RunDll32.exe C:\other\TSDLL64.dll,StartMonitor", "/f")
        (self.user.folder / "TSDLL64.dll").write_bytes(b"MZ")
        self.assertTrue(self.user.start_desktop())
        other = self.user.wine(BINARIES / "TSEXE64.exe", "/QUIET")
        self.assertTrue(self.user.will_run())
        self.assertEqual(NOTHING_CHANGED, self.uninstall_in_place())
        self.assertTrue((self.user.folder / "TSDLL64.dll").exists())
        self.assertIsNone(other.poll())
        self.assertEqual(0, self.user.run(BINARIES / "TSEXE64.exe", "/EXIT", "/QUIET"))
        self.uninstall("/DELETESNAPSHOTS")
        self.expect_auto_start(True)  # the other one's
        self.user.reg("delete", RUN_KEY, "/v", "Tessaly", "/f")
        self.expect_as_before()


class TwoUsers(Installed):
    """Of one machine, each in a session of their own."""

    def setUp(self):
        super().setUp()
        self.other = self.user.make_second("Anna")
        removal = contextlib.ExitStack()
        self.addCleanup(removal.close)
        removal.callback(self.other.remove_second)
        self.remove_other = removal.close

    def settle(self, user):
        """Runs the product for the user until it has stored what is on the desktop."""
        icon = user.profile / "Desktop" / "Note.txt"
        icon.touch()
        self.addCleanup(icon.unlink, missing_ok=True)
        self.plant_data(user)
        started = self.start(user)
        self.assertTrue(wait_until(lambda: user.reg("query", DATA_KEY).count("REG_BINARY") > 1))
        return started

    @contextlib.contextmanager
    def untouched(self, user, started):
        before = user.own_state()
        yield
        self.assertEqual({}, users.changes(before, user.own_state()))
        self.assertIsNone(started.poll())
        self.assertTrue(user.is_running())

    def test_neither_touches_what_the_other_one_has(self):
        self.assertEqual(DONE, self.install(self.old))
        with self.untouched(self.user, self.settle(self.user)):
            self.assertEqual(DONE, self.install(self.old, "/AUTOSTART:OFF", user=self.other))
            self.settle(self.other)
            self.assertEqual(DONE, self.install(self.new, user=self.other))
            self.expect_installed(self.new, user=self.other)
            self.expect_auto_start(False, user=self.other)
            self.uninstall("/DELETESNAPSHOTS", user=self.other)
            self.assertEqual("", self.other.reg("query", users.MAKER_KEY))
            self.assertEqual(DONE, self.install(self.new, user=self.other))
        with self.untouched(self.other, self.settle(self.other)):
            self.uninstall("/DELETESNAPSHOTS")
        self.uninstall("/DELETESNAPSHOTS", user=self.other)
        self.remove_other()
        (self.user.profile / "Desktop" / "Note.txt").unlink()
        self.expect_as_before()


class Hands(Installed):
    """Page by page, with the display's keyboard and mouse."""

    SETUP, UNINSTALL = "Tessaly Setup ", "Tessaly Uninstall "  # the titles; the blanks are the maker's

    def wait_for(self, title, text):
        """Where the control is, once it can be clicked."""
        place = self.user.ask(PROBE, "until", "place", title, text).split()
        self.assertEqual(2, len(place), f"{title}has no {text}")
        return place

    def press(self, title, control, key):
        """Once keys go to a control of that class."""
        waiting = ["wine", PROBE, "until", "focus", title, control]
        self.assertEqual(0, subprocess.run(waiting, env=self.user.variables, timeout=LIMIT).returncode)
        subprocess.run(["xdotool", "key", key], check=True)

    def toggle_second(self, title):
        """The second choice of the page, by the keyboard."""
        self.press(title, TREE, "Down")
        before = self.user.ask(PROBE, "until", "item", title, "1")
        self.assertTrue(before, "the second choice is not chosen")
        self.press(title, TREE, "space")
        changed = wait_until(lambda: self.user.ask(PROBE, "item", title, "1") != before)
        self.assertTrue(changed, "the second choice stays as it was")

    def click(self, title, text):
        place = self.wait_for(title, text)
        subprocess.run(["xdotool", "mousemove", *place, "click", "1"], check=True)

    def click_away(self, title, text):
        """A button that goes when it is pressed. On a busy machine the display may lose a click: again, then."""

        def has_gone():
            return self.user.run(PROBE, "place", title, text) != 0

        self.click(title, text)
        end = time.monotonic() + LIMIT
        while not wait_until(has_gone, limit=10) and time.monotonic() < end:
            self.click(title, text)

    def open_uninstaller(self):
        self.assertEqual(DONE, self.user.run(self.user.folder / "Uninstall.exe"))

    def test_keyboard_alone(self):
        self.assertTrue(self.user.start_desktop())
        setup = self.user.wine(self.new.setup)
        self.wait_for(self.SETUP, "Install")
        self.assertEqual(NOTHING_CHANGED, self.install(self.new), "beside another one")
        self.assertFalse(self.user.folder.exists())
        self.press(self.SETUP, TREE, "Escape")
        self.assertEqual(CANCELLED, setup.wait(LIMIT))
        self.expect_as_before()

        setup = self.user.wine(self.new.setup)
        self.wait_for(self.SETUP, "Install")
        self.toggle_second(self.SETUP)
        self.press(self.SETUP, TREE, "alt+i")
        self.wait_for(self.SETUP, "Finish")
        self.press(self.SETUP, "Button", "Return")
        self.assertEqual(DONE, setup.wait(LIMIT))
        self.expect_installed(self.new)
        self.expect_auto_start(False)
        self.assertTrue(self.user.will_run())  # as the last page says
        self.plant_data()

        self.open_uninstaller()
        self.wait_for(self.UNINSTALL, "Uninstall")
        self.press(self.UNINSTALL, TREE, "Escape")
        self.expect_uninstaller_gone(self.user)
        self.expect_installed(self.new)
        self.assertTrue(self.user.is_running())

        self.open_uninstaller()
        self.wait_for(self.UNINSTALL, "Uninstall")
        self.toggle_second(self.UNINSTALL)
        self.press(self.UNINSTALL, TREE, "alt+u")
        self.wait_for(self.UNINSTALL, "Close")
        self.user.end_desktop()
        self.press(self.UNINSTALL, "Button", "Return")
        self.expect_uninstaller_gone(self.user)
        shutil.rmtree(self.user.folder, ignore_errors=True)  # what the desktop had mapped
        self.expect_as_before()

    def test_mouse_alone(self):
        setup = self.user.wine(self.new.setup)
        self.click_away(self.SETUP, "Install")
        self.click(self.SETUP, "Start Tessaly now")
        self.click_away(self.SETUP, "Finish")
        self.assertEqual(DONE, setup.wait(LIMIT))
        self.expect_installed(self.new)
        self.expect_auto_start(True)
        self.assertFalse(self.user.is_running())
        self.plant_data()
        self.open_uninstaller()
        self.click_away(self.UNINSTALL, "Uninstall")
        self.click_away(self.UNINSTALL, "Close")
        self.expect_uninstalled(self.user)
        self.expect_as_before(kept=KEPT_KEYS | {KEPT + r"\Tessaly\Displays\1]"})


if __name__ == "__main__":
    unittest.main(verbosity=2)
