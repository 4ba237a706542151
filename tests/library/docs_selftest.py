#!/usr/bin/env python3
"""scripts/docs finds what it is there for: each fault is planted in a copy of the headers.

Runs alone: python3 tests/library/docs_selftest.py
"""

import pathlib
import re
import shutil
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "scripts" / "reference"))
import declarations  # noqa: E402
import docstrings  # noqa: E402
import prose  # noqa: E402
import reference  # noqa: E402

HEADER = "runtime/base/dll_buf.h"
# Each fault, and what has to be said of it. Between them stands what is as it should be.
PLANTED = """
class TESSALY_API PlantedClass {
  public:
    int nValue = 0; // a number
};
/// A class that is documented.
class TESSALY_API PlantedBase {
  public:
    void PlantedMember();
    /// Begins.
    void Begin();
    int nPlanted = 0;
    /// Is told.
    int nTold = 0;
};
/// An enumeration.
enum PlantedEnum {
    kPlantedValue = 1,
    kToldValue = 2, // as it should be
};

TESSALY_API void PlantedFunction();

/// Does something with what it gets, and so for a text.
TESSALY_API void PlantedParameter(int nPlantedParameter, const wchar_t* pszText);

/// Grows.
TESSALY_API unsigned PlantedResult();

/// Grows by nMuch. Returns the size.
TESSALY_API unsigned AsItShouldBe(int nMuch);
"""
FAULTS = {
    "a class": "PlantedClass is not documented",
    "a member": "PlantedMember() (function) of class PlantedBase is not documented",
    "a variable": "nPlanted (variable) of class PlantedBase is not documented",
    "a value": "kPlantedValue (enumvalue) is not documented",
    "a function": "PlantedFunction() (function)",
    "a parameter": "nPlantedParameter",
    "a result": "return type of member PlantedResult",
}
FINE = ("Begin", "nTold", "kToldValue", "AsItShouldBe", "pszText")


class Planted(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as name:
            source = pathlib.Path(name) / "src"
            shutil.copytree(ROOT / "src", source, ignore=lambda folder, names: [
                n for n in names if "." in n and not n.endswith(".h")])
            with (source / HEADER).open("a") as header:
                header.write(PLANTED)
            cls.lines = (source / HEADER).read_text().split("\n")
            cls.findings = reference.render(source, pathlib.Path(name) / "docs")

    def test_each_fault_is_found_and_nothing_else(self):
        for what, said in FAULTS.items():
            with self.subTest(what):
                self.assertTrue(any(said in finding for finding in self.findings), self.findings)
        for name in FINE:
            with self.subTest(name):
                self.assertFalse([f for f in self.findings if re.search(rf"\b{name}\b", f) and "Planted" not in f])
        for finding in self.findings:
            self.assertRegex(finding, "Planted")

    def test_a_finding_names_the_line_of_the_header(self):
        place = next(f for f in self.findings if "return type of member PlantedResult" in f)
        path, line = place.split(":")[:2]
        self.assertEqual(path, f"src/{HEADER}")
        self.assertIn("PlantedResult", self.lines[int(line) - 1])


class Unknown(unittest.TestCase):
    def test_a_header_that_no_chapter_names_is_found(self):
        with tempfile.TemporaryDirectory() as name:
            source = pathlib.Path(name) / "src"
            source.mkdir()
            (source / "tessaly.h").write_text('#pragma once\n#include "stranger.h"\n')
            (source / "stranger.h").write_text("#pragma once\n")
            findings = reference.render(source, pathlib.Path(name) / "docs")
        self.assertEqual(findings, ["src/stranger.h: no chapter of docs/library.md names it"])

    def test_an_entry_of_the_glossary_that_nobody_needs_is_found(self):
        glossary = {"about": {"text": ""}, "headers": {"a.h": "b"}, "everywhere": {"cch": "The room", "n": "How many"}}
        self.assertEqual(reference.unused(glossary, {("everywhere", "n")}),
                         ["glossary.toml: no parameter asks for cch of everywhere"])


class Reading(unittest.TestCase):
    CLASS = """
/// A class.
class TESSALY_API A final : public B, private C<int> {
  public:
    explicit A(int n) noexcept : p{n}, q(1) { Go(); }
    A(const A&) = delete; // owns it
    [[nodiscard]] static const wchar_t* Get(const wchar_t (&szName)[4], int (*pfn)(int), unsigned, ...) {
        return L"} // no end";
    }
    operator HWND() const;
    struct {
        int nInner;
    } bytes;
    enum Kind { kOne, kTwo = 2 } nKind = kOne;
    using Base::Hidden;

  private:
    int p, q = 2; // two of them
};
class Announced;
"""

    def test_all_declarations_of_a_class(self):
        found = [(d.kind, d.path, d.access) for d in declarations.read(self.CLASS)]
        self.assertEqual(found, [
            ("class", "A", "public"), ("function", "A::A", "public"), ("function", "A::A", "public"),
            ("function", "A::Get", "public"), ("function", "A::operator HWND", "public"), ("class", "A::", "public"),
            ("data", "A::nInner", "public"), ("enum", "A::Kind", "public"), ("enumerator", "A::Kind::kOne", "public"),
            ("enumerator", "A::Kind::kTwo", "public"), ("data", "A::p", "private")])

    def test_bases_results_and_parameters(self):
        found = declarations.read(self.CLASS)
        function = next(d for d in found if d.name == "Get")
        self.assertEqual(found[0].bases, ("B", "C<int>"))
        self.assertEqual(function.result, "const wchar_t*")
        self.assertEqual([p.name for p in function.parameters], ["szName", "pfn"])

    def test_docstrings_are_told_for_those_that_they_are_meant_for(self):
        header = docstrings.Header("a.h", "\n".join([
            "/// Adds.", "void AddHead(int n);", "void AddTail(int n);", "void Clear();",
            "// All of them", "", "void Far();", "// Right above", "void Near();", "void Other();", "",
            "/// Shared.", "///@{", "void One();", "void Else();", "///@}", "int nBehind; // a number"]))
        told = {d.name: header.docs[id(d)].text for d in header.found}
        self.assertEqual(told, {
            "AddHead": "Adds.", "AddTail": "Adds.", "Clear": "", "Far": "", "Near": "Right above",
            "Other": "Right above",
            "One": "Shared.", "Else": "Shared.", "nBehind": "a number"})

    def test_a_remark_heads_its_part_alone(self):
        header = docstrings.Header("a.h", "\n".join([
            "class A {", "  public:", "    // Asking", "", "    int Get() {", "        // within", "        return 1;", "    }",
            "    void Next();", "", "    // Near", "    void Own();", "", "    void Later();", "", "  protected:",
            "    void Inner();", "};", "void Free();"]))
        headings = {d.name: header.headings[id(d)].text for d in header.found}
        self.assertEqual(headings, {"A": "", "Get": "Asking", "Next": "Asking", "Own": "Asking", "Later": "Asking",
                                    "Inner": "", "Free": ""})
        self.assertEqual([d.name for d in header.found if header.local[id(d)].text], ["Own"])

    def test_results_in_prose(self):
        for text, wanted in (
                ("Deletes it. 1; 0 if it stays.", "1; 0 if it stays."),
                ("Makes one. Returns the first, or null. It is not owned.", "The first, or null."),
                ("Sends it; non-zero: it was taken.", "Non-zero: it was taken."),
                ("Looks for it, by its name. Null if there is none.", "Null if there is none."),
                ("Takes the other's. Null does nothing.", ""),
                ("Begins. 0 means that none is asked.", ""),
                ("Copies \"a. 1 b\" there.", "")):
            with self.subTest(text):
                self.assertEqual(" ".join(prose.result_parts(text, False)[0]), wanted)
        self.assertEqual(prose.result_parts("The number of them. It grows.", True), (["The number of them."], []))


if __name__ == "__main__":
    unittest.main()
