#!/usr/bin/env python3
"""scripts/coverage_report.py adds up counts as they are: tested on a few made ones.

Runs alone: python3 tests/structure/coverage_selftest.py
"""

import json
import pathlib
import sys
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))

from coverage_report import Counts, report  # noqa: E402


def document(files, folder="/tree/build"):
    """What gcov prints of one object: files with their (line, count) pairs."""
    entries = [
        {"file": name, "lines": [{"line_number": number, "count": count} for number, count in lines]}
        for name, lines in files.items()
    ]
    return json.dumps({"current_working_directory": folder, "files": entries}) + "\n"


class Coverage(unittest.TestCase):
    def setUp(self):
        self.counts = Counts("/tree/src")

    def test_lines_that_ran_in_one_of_several_objects_have_run(self):
        self.counts.add(document({"/tree/src/a/one/x.h": [(1, 0), (2, 3), (3, 0)]}))
        self.counts.add(document({"/tree/src/a/one/x.h": [(1, 1), (2, 0), (3, 0)]}))
        self.assertEqual([(("a", "a/one"), [3, 2])], self.counts.rooms())

    def test_line_that_one_object_has_several_times_counts_once(self):
        self.counts.add(document({"/tree/src/a/one/x.h": [(1, 0), (1, 2), (1, 0)]}))
        self.assertEqual({"a": (1, 1)}, self.counts.folders())

    def test_several_objects_in_one_output(self):
        self.counts.add(document({"/tree/src/a/x.cpp": [(1, 1)]}) + "\n" + document({"/tree/src/b/y.cpp": [(1, 0)]}))
        self.assertEqual({"a": (1, 1), "b": (1, 0)}, self.counts.folders())

    def test_only_the_sources_count_however_they_are_spelled(self):
        self.counts.add(document({"../src/a/x.cpp": [(1, 1)], "/usr/include/x.h": [(1, 0)], "x.cpp": [(1, 0)]}))
        self.counts.add(document({"/tree/src_other/x.cpp": [(1, 0)], "/tree/src/a/one/../x.cpp": [(1, 1)]}))
        self.assertEqual({"a": (1, 1)}, self.counts.folders())

    def test_folder_is_the_sum_of_its_rooms(self):
        self.counts.add(document({"/tree/src/a/one/x.cpp": [(1, 1), (2, 0)], "/tree/src/a/two/y.cpp": [(1, 1)]}))
        self.assertEqual([(("a", "a/one"), [2, 1]), (("a", "a/two"), [1, 1])], self.counts.rooms())
        self.assertEqual({"a": (3, 2)}, self.counts.folders())

    def test_uncovered_lines_are_told_as_ranges(self):
        lines = [(1, 0), (2, 1), (4, 0), (5, 0), (9, 0), (10, 2), (12, 0)]
        self.counts.add(document({"/tree/src/a/x.cpp": lines, "/tree/src/a/all.cpp": [(1, 1)]}))
        self.assertEqual([(pathlib.Path("a/x.cpp"), "1, 4-9, 12")], list(self.counts.uncovered()))

    def test_folder_below_the_floor_is_a_fault(self):
        self.counts.add(document({"/tree/src/a/x.cpp": [(n, n > 2) for n in range(1, 101)]}))
        self.counts.add(document({"/tree/src/b/y.cpp": [(n, n > 3) for n in range(1, 101)]}))
        text, faults = report(self.counts, 98)
        self.assertEqual(["src/b: 97.00% is below 98%"], faults)
        self.assertIn("src/b/y.cpp: 1-3", text)
        self.assertRegex(text, r"(?m)^a +100 +98 +98\.0%$")

    def test_nearly_all_is_not_told_as_all(self):
        self.counts.add(document({"/tree/src/a/x.cpp": [(n, n > 1) for n in range(1, 10001)]}))
        self.assertIn(" 99.9%", report(self.counts, 98)[0])

    def test_nothing_counted_is_a_fault(self):
        self.counts.add(document({"/tree/src/a/x.cpp": []}))
        self.assertEqual(["no line of any source was counted"], report(self.counts, 98)[1])


if __name__ == "__main__":
    unittest.main()
