#!/usr/bin/env python3
"""What newer Windows have is found among the imports of an image: each fault is planted in a small one.

Runs alone: python3 tests/image/image_selftest.py
"""

import contextlib
import io
import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True

import list_exports  # noqa: E402
from check_image import Image, Report, check_imports  # noqa: E402


class Imports(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.exports = list_exports.read_list()

    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def build(self, libraries, *functions):
        """A library that calls the functions, as the linker makes it."""
        calls = "".join(f"extern void __attribute__((dllimport)) {name}(void);\n" for name in functions)
        calls += "void Start(void) {\n" + "".join(f"    {name}();\n" for name in functions) + "}\n"
        source, image = self.folder / "image.c", self.folder / "image.dll"
        source.write_text(calls)
        command = [f"{list_exports.TOOLS}gcc", "-shared", "-nostdlib", "-fno-builtin", "-Wl,-eStart", "-o", image]
        subprocess.run([*command, source, *libraries], check=True)
        return Image(image)

    def make_library(self, module, export):
        """An import library of the module with that one export."""
        told, library = self.folder / "exports.def", self.folder / "exports.a"
        told.write_text(f"LIBRARY {module}\nEXPORTS\n{export}\n")
        subprocess.run([f"{list_exports.TOOLS}dlltool", "-d", told, "-l", library], check=True)
        return library

    def check(self, image):
        """(how many checks failed, what was told)."""
        report, told = Report(), io.StringIO()
        with contextlib.redirect_stdout(told):
            check_imports(report, "image.dll", image, self.exports)
        return report.failed, told.getvalue()

    def expect_found(self, image, *imports):
        failed, told = self.check(image)
        self.assertEqual(1, failed, told)
        self.assertTrue(told.endswith(": " + "; ".join(imports) + "\n"), told)

    def test_what_that_windows_has_may_be_imported(self):
        functions = "GetTickCount", "CreateFileW", "MessageBoxW", "wcscmp"
        image = self.build(["-lkernel32", "-luser32", "-lmsvcrt"], *functions)
        self.assertEqual(sorted(functions), sorted(name for _, name in image.imports()))
        self.assertEqual(0, self.check(image)[0])

    def test_functions_that_the_headers_know_as_newer(self):
        for module, *functions in (
            ("kernel32", "CreateFile2", "GetFinalPathNameByHandleW", "GetTickCount64", "InitializeSRWLock"),
            ("advapi32", "RegDeleteTreeW"),
            ("shell32", "SHGetKnownFolderPath"),
        ):
            with self.subTest(module):
                image = self.build([f"-l{module}"], *functions)
                self.expect_found(image, *(f"{module}.dll {name}" for name in functions))

    def test_functions_that_the_headers_declare_for_every_version(self):
        image = self.build(["-lkernel32"], "GetTickCount", "GetTimeFormatEx", "SetDefaultDllDirectories")
        self.expect_found(image, "kernel32.dll GetTimeFormatEx", "kernel32.dll SetDefaultDllDirectories")

    def test_function_that_is_there_by_number_alone(self):
        self.expect_found(self.build(["-lcomctl32"], "SetWindowSubclass"), "comctl32.dll SetWindowSubclass")

    def test_function_of_another_module(self):
        library = self.make_library("user32.dll", "CreateFileW")
        self.expect_found(self.build([library], "CreateFileW"), "user32.dll CreateFileW")

    def test_module_that_is_not_listed(self):
        self.expect_found(self.build(["-lwinmm"], "timeGetTime"), "winmm.dll timeGetTime")

    def test_import_by_number(self):
        library = self.make_library("shell32.dll", "SHGetImageList @727 NONAME")
        self.expect_found(self.build([library], "SHGetImageList"), "shell32.dll #727")


class List(unittest.TestCase):
    def test_list_is_what_the_headers_and_import_libraries_make(self):
        self.assertEqual(set(), list_exports.make_list(list_exports.read_by_hand()) ^ list_exports.read_list())

    def test_line_by_hand_that_changes_nothing(self):
        by_hand = list_exports.read_by_hand()
        for sign, name in ("-", "GetTickCount64"), ("+", "GetTickCount"):
            changed = {**by_hand, sign: by_hand[sign] | {("kernel32.dll", name)}}
            with self.subTest(name), self.assertRaisesRegex(SystemExit, name):
                list_exports.make_list(changed)


if __name__ == "__main__":
    unittest.main()
