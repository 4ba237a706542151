#!/usr/bin/env python3
"""scripts/summarize_tests.py counts what Python's unittest tells: tested on runs of its own.

Runs alone: python3 tests/structure/summary_selftest.py
"""

import pathlib
import subprocess
import sys
import tempfile
import textwrap
import unittest

sys.dont_write_bytecode = True

SUMMARIZE = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "summarize_tests.py"


class UnitTests(unittest.TestCase):
    def summarize(self, body, seconds=30):
        """What is said of a program "made" with a class of that body."""
        folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        program = folder / "made.py"
        made = "class Made(unittest.TestCase):\n" + textwrap.indent(textwrap.dedent(body), "    ")
        program.write_text(f"import os, unittest\n\n{made}\n\nunittest.main(verbosity=2)\n")
        with open(folder / "made.log", "w") as log:
            ran = subprocess.run([sys.executable, program], stdout=log, stderr=log, timeout=seconds)
        (folder / "made.code").write_text(f"{ran.returncode}\n")
        (folder / "made.unittest").touch()
        return subprocess.run([sys.executable, SUMMARIZE, folder], capture_output=True, text=True)

    def expect(self, told, *parts, code=1):
        self.assertEqual(code, told.returncode, told.stdout + told.stderr)
        for part in parts:
            self.assertIn(part, told.stdout)

    def test_each_test_counts(self):
        told = self.summarize("def test_a(self): pass\ndef test_b(self): print('... FAIL')\n")
        self.expect(told, "2 passed, 0 failed, 0 skipped", code=0)

    def test_failures_are_told_with_their_text(self):
        told = self.summarize('''
            def test_good(self): pass
            def test_bad(self):
                """In words."""
                self.assertEqual(1, 2)
            def test_worse(self): raise ValueError("why")
        ''')
        self.expect(told, "FAILED made.test_bad\n", "1 != 2", "FAILED made.test_worse\n", "why", "1 passed, 2 failed")

    def test_faults_of_a_test_are_one(self):
        told = self.summarize('''
            def test_good(self): pass
            def test_parts(self):
                for i in range(3):
                    with self.subTest(i=i): self.assertEqual(1, i)
        ''')
        self.expect(told, "1 != 0", "1 != 2", "1 passed, 1 failed, 0 skipped")

    def test_skipped_tests_have_their_reasons(self):
        told = self.summarize('''
            def test_good(self): pass
            def test_plain(self): self.skipTest("no 'disk'")
            def test_described(self):
                """In words."""
                self.skipTest("no net")
        ''')
        self.expect(told, "SKIPPED made.test_plain: no 'disk'", "SKIPPED made.test_described: no net",
                    "1 passed, 0 failed, 2 skipped", code=0)

    def test_fault_of_the_class_fails_beside_its_tests(self):
        told = self.summarize('''
            def test_good(self): pass
            @classmethod
            def tearDownClass(cls): raise AssertionError("left over")
        ''')
        self.expect(told, "left over", "1 passed, 1 failed")

    def test_run_that_ends_early_has_no_results(self):
        told = self.summarize("def test_a(self): pass\ndef test_b(self): os._exit(0)\n")
        self.expect(told, "FAILED made (no results)", "0 passed, 1 failed")


if __name__ == "__main__":
    unittest.main()
