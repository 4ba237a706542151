#!/usr/bin/env python3
"""The checks of this folder find what they are there for: each fault is planted in a small tree.

Runs alone: python3 tests/structure/structure_selftest.py
"""

import contextlib
import io
import json
import os
import pathlib
import re
import runpy
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True

import check_guide  # noqa: E402
import check_tidy  # noqa: E402

HERE = pathlib.Path(__file__).resolve().parent
ROOMS = """
[[room]]
path = "low"
holds = "what all stand on"
uses = []
[[room]]
path = "mid/one"
holds = "the middle"
uses = ["low"]
[[room]]
path = "later"
holds = "what is to come"
uses = ["low"]
planned = true
[[room]]
path = "top"
holds = "the top"
uses = ["low", "mid/one"]
"""
TREE = {
    "src/rooms.toml": ROOMS,
    "src/tessaly.h": '#include "low/a.h"\n#include "top/c.h"\n',
    "src/low/a.h": "#pragma once\n",
    "src/low/a.cpp": '#include "low/a.h"\n',
    "src/mid/one/b.h": '#pragma once\n#include "low/a.h"\n',
    "src/mid/one/b_more.cpp": '#include "mid/one/b.h"\n',
    "src/top/c.h": '#pragma once\n#include "mid/one/b.h"\n#include "low/a.h"\n',
    "docs/architecture.md": "<!-- rooms -->\n<!-- /rooms -->\n## Quirks\n<!-- quirks -->\n<!-- /quirks -->\n",
    "README.md": "# R\n\n## Layout\n\n`src/low` `src/mid/{one,two}` `src/later` `src/top`\n\n## Speed\n",
}
MARK = "// QUIRK: turns the\n// wrong way. Test: Turn.IsWrong, Turn.IsOdd/Row\nint Turn(int n) {\n    return -n;\n}\n"
TESTS = 'TEST(Turn, IsWrong) {}\nTEST_P(Turn, IsOdd) {}\nCase{"Row"};\n'
LAID_OUT = "int Sum(int a, int b) { return a + b; }\n"
UNKNOWN = "-fpch-preprocess -Winvalid-pch -include no.hxx"  # to clang
SOURCE = '''#include "h.h"
constexpr int kSize = {size};
static int Same() {{ return kSize; }}
int {name}() {{ return Same(); }}
'''
TIDY_SOURCES = {
    "src/a.cpp": SOURCE.format(name="A", size=1),
    "src/b.cpp": SOURCE.format(name="B", size=2),
    "src/c.cpp": '#include "h.h"\nconstexpr long kSize = 3;\nint C() { return static_cast<int>(kSize); }\n',
    "src/h.h": "#pragma once\nclass Named {};\nint A();\nint B();\nint C();\n",
}


class Tree(unittest.TestCase):
    """A small source tree without faults, anew for each test."""

    files = {}

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name).resolve()
        for name, text in self.files.items():
            self.put(name, text)

    def put(self, name, text):
        (self.root / name).parent.mkdir(parents=True, exist_ok=True)
        (self.root / name).write_text(text)

    def change(self, name, old, new):
        text = (self.root / name).read_text()
        self.assertIn(old, text)
        self.put(name, text.replace(old, new))

    def run_check(self, name, *arguments):
        """As the command does it; not as a process of its own, whose start takes longer than most checks."""
        told, given, folder, status = io.StringIO(), sys.argv, os.getcwd(), 0
        sys.argv = [name, *map(str, arguments)]
        os.chdir(self.root)
        try:
            with contextlib.redirect_stdout(told), contextlib.redirect_stderr(told):
                runpy.run_path(str(HERE / name), run_name="__main__")
        except SystemExit as end:
            status = end.code or 0
            if isinstance(status, str):
                told.write(status + "\n")
                status = 1
        finally:
            sys.argv = given
            os.chdir(folder)
        return subprocess.CompletedProcess(name, status, told.getvalue(), "")

    def expect_fault(self, result, *parts):
        self.assertEqual(1, result.returncode, result.stdout + result.stderr)
        self.assertTrue(any(all(p in line for p in parts) for line in result.stdout.splitlines()), result.stdout)


class Rooms(Tree):
    files = TREE

    def setUp(self):
        super().setUp()
        self.write_table()
        self.assertEqual(0, self.check().returncode, self.check().stdout)

    def check(self):
        return self.run_check("check_rooms.py", "src")

    def write_table(self):
        self.run_check("check_rooms.py", "src", "--write", "docs/architecture.md")

    def test_missing_table(self):
        (self.root / "src/rooms.toml").unlink()
        self.expect_fault(self.check(), "has no rooms.toml")

    def test_file_in_no_room(self):
        self.put("src/other/x.cpp", "")
        self.put("src/loose.h", "")
        self.put("src/low/inner/y.h", "")
        result = self.check()
        for name in ("other/x.cpp", "loose.h", "low/inner/y.h"):
            self.expect_fault(result, f"{name}:1:", "no room")

    def test_include_that_is_no_path_of_a_file(self):
        self.put("src/low/d.cpp", '\n#include "a.h"\n#include "../low/a.h"\n')
        result = self.check()
        self.expect_fault(result, "low/d.cpp:2:", '"a.h"')
        self.expect_fault(result, "low/d.cpp:3:", '"../low/a.h"')

    def test_include_upward_names_what_is_allowed(self):
        self.put("src/mid/one/d.cpp", '// first\n  #  include "top/c.h"\n')
        self.expect_fault(self.check(), "mid/one/d.cpp:2:", "is in top", "may include mid/one, low")

    def test_include_of_the_umbrella(self):
        self.put("src/top/d.cpp", '#include "tessaly.h"\n')
        self.expect_fault(self.check(), "top/d.cpp:1:", "users")

    def test_use_of_a_room_above_or_of_none_or_of_itself(self):
        self.change("src/rooms.toml", "uses = []", 'uses = ["top", "low", "nowhere"]')
        result = self.check()
        self.expect_fault(result, "low uses top", "before")
        self.expect_fault(result, "low uses low", "before")
        self.expect_fault(result, "low uses nowhere", "no room")

    def test_room_named_twice(self):
        self.change("src/rooms.toml", '"mid/one"\nholds', '"low"\nholds')
        self.expect_fault(self.check(), "low is named twice")

    def test_misspelt_key(self):
        self.change("src/rooms.toml", "planned", "planed")
        self.assertNotEqual(0, self.check().returncode)

    def test_stale_use(self):
        self.change("src/top/c.h", '#include "low/a.h"\n', "")
        self.expect_fault(self.check(), "top uses low", "nothing")

    def test_use_by_a_planned_room_is_not_stale_but_its_file_is_wrong(self):
        self.put("src/later/e.cpp", '#include "low/a.h"\n')
        self.expect_fault(self.check(), "later/e.cpp:1:", "planned")

    def test_circle_inside_a_room(self):
        self.put("src/low/d.h", '#include "low/a.h"\n')
        self.assertEqual(0, self.check().returncode)
        self.put("src/low/a.cpp", '\n#include "low/a.h"\n#include "low/d.h"\n')
        self.expect_fault(self.check(), "circle", 'low/a.cpp:3: "low/d.h"', 'low/d.h:1: "low/a.h"')

    def test_source_without_header_is_a_unit_of_its_own(self):
        self.put("src/low/a_more.cpp", '#include "low/d.h"\n#include "low/a.h"\n')
        self.put("src/low/d.h", '#include "low/a.h"\n')
        self.assertEqual(0, self.check().returncode, self.check().stdout)

    def test_table_in_the_document(self):
        self.change("src/rooms.toml", "the middle", "the centre")
        self.expect_fault(self.check(), "architecture.md", "--write")
        self.write_table()
        self.assertEqual(0, self.check().returncode)
        self.assertIn("| `src/mid/one` | the centre | `low` |", (self.root / "docs/architecture.md").read_text())
        self.change("docs/architecture.md", "<!-- /rooms -->", "")
        self.expect_fault(self.check(), "no part")

    def test_layout_of_the_readme(self):
        self.change("README.md", "`src/later`", "")
        self.change("README.md", "{one,two}", "{two}")
        result = self.check()
        self.expect_fault(result, "README.md", "src/later")
        self.expect_fault(result, "README.md", "src/mid/one")

    def test_counts(self):
        expected = "6 files, median lines of headers 2 and of sources 1, 0.8 includes per file, "
        expected += "0 upward includes, 0 circles between rooms, 0 circles inside rooms\n"
        self.assertEqual(expected, self.run_check("check_rooms.py", "src", "--counts").stdout)
        self.put("src/low/a.cpp", '#include "top/c.h"\n')
        result = self.run_check("check_rooms.py", "src", "--counts")
        self.assertIn("1 upward includes, 1 circles between rooms", result.stdout)


class Quirks(Tree):
    files = {**TREE, "src/low/a.cpp": MARK, "tests/low/turn_test.cpp": TESTS}

    def setUp(self):
        super().setUp()
        self.write_list()
        self.assertEqual(0, self.check().returncode, self.check().stdout)

    def check(self):
        return self.run_check("check_quirks.py", ".")

    def write_list(self):
        self.run_check("check_quirks.py", ".", "--write", "docs/architecture.md")

    def test_list_is_made_from_the_marks(self):
        text = (self.root / "docs/architecture.md").read_text()
        self.assertIn("### `src/low`\n\n- `Turn`: turns the wrong way.\n", text)

    def test_list_that_is_not_the_marks(self):
        self.change("docs/architecture.md", "wrong way", "right way")
        self.expect_fault(self.check(), "architecture.md", "--write")

    def test_test_that_does_not_exist(self):
        self.change("tests/low/turn_test.cpp", "IsWrong", "IsRight")
        self.expect_fault(self.check(), "src/low/a.cpp:1:", "no test Turn.IsWrong")

    def test_row_that_does_not_exist(self):
        self.change("tests/low/turn_test.cpp", '"Row"', '"Line"')
        self.expect_fault(self.check(), "src/low/a.cpp:1:", "no row Row")

    def test_mark_without_text_or_test(self):
        self.put("src/low/b.cpp", "// QUIRK: Test: Turn.IsWrong\nint b;\n\n// QUIRK: odd.\nint c;\n")
        self.put("src/low/d.cpp", "// QUIRK: odd. Test: see above\nint d;\n")
        result = self.check()
        self.expect_fault(result, "src/low/b.cpp:1:", "says nothing")
        self.expect_fault(result, "src/low/b.cpp:4:", "is missing")
        self.expect_fault(result, "src/low/d.cpp:1:", "not 'see above'")

    def test_where_a_mark_stands(self):
        quirk = "// QUIRK: odd. Test: Turn.IsWrong"
        self.put("src/low/e.h", f"class TESSALY_API Wheel : public Low {{\n    {quirk}\n    int Go();\n}};\n")
        inside = f"int Wheel::Go() {{\n    int n = 0;\n    {quirk}\n    if (n) return n;\n}}\n"
        self.put("src/low/f.cpp", f"{inside}{quirk}\nconstexpr int kA = B();\n")
        self.put("src/low/g.h", f"{quirk}\nstruct Cog {{}};\n")
        text = self.run_check("check_quirks.py", ".", "--list").stdout
        self.assertEqual(["Turn", "Wheel::Go", "Wheel::Go", "kA", "Cog"], re.findall(r"- `(.+?)`", text))


class Guide(Tree):
    """Of what the real tree shows nothing is changed; each fault is something new."""

    def setUp(self):
        super().setUp()
        for name in (*check_guide.FOLDERS, "src/resources", "setup", "docs"):
            shutil.copytree(HERE.parents[1] / name, self.root / name)
        self.assertEqual(0, self.check().returncode, self.check().stdout)

    def check(self):
        return self.run_check("check_guide.py", ".")

    def say(self, *lines):
        with (self.root / "docs/guide.md").open("a") as guide:
            guide.write("\n".join(["", *lines, ""]))

    def test_text_of_a_source(self):
        text = 'L"The mill has "\n         L"%.20s wheels.\\nBye, mill"'
        self.put("src/icons/tray/new.cpp", f"void F() {{\n    Tell({text});\n}}\n")
        result = self.check()
        self.expect_fault(result, "src/icons/tray/new.cpp:2:", "'The mill has ... wheels.'")
        self.expect_fault(result, "src/icons/tray/new.cpp:2:", "'Bye, mill'")
        self.say("> The mill", '> has *NUMBER* `wheels`. It says "Bye, mill".')
        self.assertEqual(0, self.check().returncode, self.check().stdout)

    def test_text_that_is_there_as_a_part_of_another_alone(self):
        self.put("src/host/new.cpp", 'auto k = L"the mill turns";\n')
        self.say("bathe mill turns. the mill turnstile")
        self.expect_fault(self.check(), "'the mill turns'")

    def test_single_word_counts_where_it_is_shown(self):
        self.put("src/icons/new.cpp", 'F(L"Millword");\nmenu.AppendItem(7,\n                L"Millrow");\n')
        result = self.check()
        self.expect_fault(result, "src/icons/new.cpp:3:", "'Millrow'")
        self.assertNotIn("Millword", result.stdout)

    def test_comments_and_narrow_texts_do_not_count(self):
        comments = '// L"a mill"\n/* L"a mill" */\n'
        self.put("src/app/update/new.h", comments + "static_assert(k, \"a mill\");\nint c = '\"';\n")
        self.assertEqual(0, self.check().returncode, self.check().stdout)

    def test_string_dialog_and_installer(self):
        def add(name, line):
            self.put(name, (self.root / name).read_text() + line)

        add("src/resources/strings.rc", '    IDS_MILL L"Millstring"\n')
        add("src/resources/dialogs.rc", 'IDD_MILL DIALOGEX 0, 0, 1, 1\nCAPTION "Mill&box"\n    LTEXT "Millstone", 1\n')
        add("setup/setup.nsi", '    MessageBox MB_OK|MB_ICONSTOP \\\n  "${NAME} mills \\\n in $INSTDIR." /SD IDOK\n')
        result = self.check()
        for text in ("Millstring", "Millbox", "Millstone", "Tessaly mills in ...."):
            self.expect_fault(result, f"'{text}'")

    def test_switch_and_exit_code(self):
        self.put("src/host/new.h", "enum class ExitCode {\n    kA, // first\n    kMilled = 77,\n    kNext,\n};\n")
        self.put("src/host/command_line.cpp", '{L"QUIET", f}, {L"MILL=ON", f}, {L"GRIND", f}, {L"mill", f}')
        result = self.check()
        for part in ("exit code 77 (kMilled)", "exit code 78", "switch MILL=ON", "switch GRIND", "switch mill"):
            self.expect_fault(result, part)
        self.assertNotIn("QUIET", result.stdout)
        rows = "| `/MILL:ON` | |\n| `/GRIND:FILE` | |\n| `mill` | |\n"
        self.change("docs/guide.md", "| `/QUIET` |", f"{rows}| `/QUIET` |")
        self.change("docs/guide.md", "| 0 | done", "| 77 | |\n| 78 | |\n| 0 | done")
        self.assertEqual(0, self.check().returncode, self.check().stdout)

    def test_links_and_chapters(self):
        self.say("## Mills & more", "![M](images/mill.png) [a](#wheels) [b](library.md#mills) [c](http://a.example/x)")
        result = self.check()
        for part in ("images/mill.png", "#wheels", "library.md#mills", "chapters has no mills--more"):
            self.expect_fault(result, part)
        self.assertIn("4 faults", result.stdout)

    def test_exception_that_is_none_any_more(self):
        self.change("src/resources/dialogs.rc", '"Btn3"', '""')
        self.expect_fault(self.check(), "exception Btn3")

    def test_nothing_to_look_for(self):
        self.put("src/host/command_line.cpp", "")
        self.put("setup/setup.nsi", "")
        result = self.check()
        self.expect_fault(result, "no switches")
        self.expect_fault(result, "setup_texts", "no texts")


class Format(Tree):
    files = {"src/a.cpp": LAID_OUT, ".clang-format": (HERE.parents[1] / ".clang-format").read_text()}

    def setUp(self):
        super().setUp()
        subprocess.run(["git", "init", "-q"], cwd=self.root, check=True)

    def check(self):
        return self.run_check("check_format.py", self.root)

    def test_file_that_is_laid_out_otherwise(self):
        self.assertEqual(0, self.check().returncode)
        self.put("tests/deep/b.h", LAID_OUT.replace("{ ", "\n{"))
        result = self.check()
        self.expect_fault(result, "differently")

    def test_tree_without_files_or_style(self):
        (self.root / ".clang-format").unlink()
        self.assertEqual(1, self.check().returncode)
        (self.root / "src/a.cpp").unlink()
        self.assertEqual(1, self.check().returncode)


class Tidy(Tree):
    files = TIDY_SOURCES

    def check(self):
        rows = [
            {"file": str(path), "command": f"g++ -I{self.root}/src -std=gnu++20 {UNKNOWN} -o x -c {path}"}
            for path in sorted((self.root / "src").glob("*.cpp"))
        ]
        self.put("build/compile_commands.json", json.dumps(rows))
        return self.run_check("check_tidy.py", "build", "src")

    def test_findings_of_sources_and_headers(self):
        self.assertEqual(0, self.check().returncode, self.check().stdout)
        self.assertIn("unchanged", self.check().stdout)
        self.change("src/b.cpp", "return Same()", "int* p = 0;\n    return p ? 1 : Same()")
        derived = "struct Base { virtual void F(); };\nstruct Sub : Base { virtual void F(); };"
        self.change("src/h.h", "class Named {};", derived)
        result = self.check()
        self.expect_fault(result, "src/b.cpp:4:", "modernize-use-nullptr")
        self.expect_fault(result, "src/h.h:3:", "modernize-use-override")

    def test_source_that_cannot_be_read_in_company_is_read_alone(self):
        self.put("src/d.cpp", "namespace {\nclass Named {};\n} // namespace\nNamed n;\nint* p = 0;\n")
        result = self.check()
        self.expect_fault(result, "src/d.cpp:5:", "modernize-use-nullptr")
        self.assertNotIn("clang-diagnostic-error", result.stdout)

    def test_source_that_cannot_be_read_at_all(self):
        self.put("src/d.cpp", "int D() { return nothing; }\n")
        self.expect_fault(self.check(), "src/d.cpp:1:", "clang-diagnostic-error")

    def test_sources_with_a_name_in_common_are_kept_apart(self):
        paths = {self.root / name: ("-O2",) for name in TIDY_SOURCES if name.endswith(".cpp")}
        batches = check_tidy.make_batches(paths)
        self.assertEqual([1, 2], sorted(len(batch.paths) for batch in batches))

    def test_constant_that_occurs_again_gets_another_name(self):
        text, origins = check_tidy.join([self.root / "src/a.cpp", self.root / "src/c.cpp"])
        self.assertIn("return kSize;", text)
        self.assertRegex(text, r"kSize_again\d+ = 3.*\n.*cast<int>\(kSize_again\d+\)")
        self.assertEqual((self.root / "src/c.cpp", 2), origins[text[: text.index(" = 3")].count("\n") + 1])

    def test_each_check_that_is_off_has_its_reason(self):
        text = (HERE.parents[1] / ".clang-tidy").read_text()
        off = re.findall(r"^  -([a-z][\w-]+-[\w-]+)", text, re.MULTILINE)
        self.assertGreater(len(off), 5)
        self.assertEqual(off, re.findall(r"^# ([a-z]+-[\w-]+): \S", text, re.MULTILINE))


if __name__ == "__main__":
    unittest.main()
