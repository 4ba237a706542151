"""Finds the docstring that each declaration of a header has, also where several share one.

A docstring stands above its declaration or behind it; "///@{" and "///@}" hold together what shares one.
Without them it is told for those that follow in the next lines, without one of their own, if they are
other forms of its function (AddHead, AddTail). Comments with two slashes are remarks about all of a file
or a part of it; one right above a run of declarations is told for those in it that have no docstring.
"""

import dataclasses
import re

import declarations

COMPILERS = re.compile(r"= (delete|default)$")  # what the compiler writes
# A docstring that goes on from that of the declaration before.
GOES_ON = re.compile(r"(likewise|the same|writes the same|as above|and |with |without |or )", re.IGNORECASE)
PRIVATE_REMARK = re.compile(r"// ?(?:QUIRK|NOLINT|clang-format)")
QUIRKS = re.compile(r"\n*^QUIRK.*?(?=\n\n|\Z)", re.MULTILINE | re.DOTALL)
WORDS = re.compile(r"[A-Z]+[0-9]*(?![a-z])|[A-Z]?[a-z]+[0-9]*|[0-9]+")


@dataclasses.dataclass
class Doc:
    text: str = ""
    quirk: str = ""
    shared: "Doc | None" = None  # where parameters and results may stand as well
    of: "declarations.Declaration | None" = None


@dataclasses.dataclass
class Remark:
    text: str = ""
    last: int = -1  # its last line
    indent: int = 0
    heads: bool = False  # a part of the file or the class, and not only the lines right behind it


class Header:
    def __init__(self, name, text):
        self.name = name
        self.lines = text.splitlines()
        self.found = declarations.read(text)
        self.group_lines = set()  # the docstrings of groups
        self.remarks = self.read_remarks()
        self.head = self.remarks[0].text if self.remarks else ""  # mostly about all of the file
        self.local, self.headings, self.docs = {}, {}, {}  # by the declaration's id
        self.place_remarks()
        self.read_docs()

    def block(self, lines):
        """What the docstring in these lines says, and the quirk."""
        text, quirk, into = [], [], None  # into: what the next plain comment goes on with
        for number in lines:
            line = self.lines[number].strip()
            if line.startswith("///"):
                if not line.startswith("///@"):
                    text.append(line[4:])
                into = None
            elif re.match(r"// ?QUIRK", line):
                quirk.append(re.sub(r"// ?QUIRK:? ?", "", line))
                into = quirk
            elif into is quirk:
                quirk.append(line[3:])
        return "\n".join(text).strip(), re.sub(r"\s*Tests?: [^.]*$", "", " ".join(quirk)).strip()

    def read_remarks(self):
        """The comments with two slashes alone."""
        found, number = [], 0
        while number < len(self.lines):
            start = number
            while number < len(self.lines) and self.lines[number].strip().startswith("//"):
                number += 1
            block = [line.strip() for line in self.lines[start:number]]
            if block and not any(line.startswith("///") for line in block) and not PRIVATE_REMARK.match(block[0]):
                text = QUIRKS.sub("", "\n".join(line[3:] for line in block))
                found.append(Remark(text, number - 1, self.indent_of(start), self.is_blank(number)))
            number = max(number, start + 1)
        return found

    def indent_of(self, number):
        return len(self.lines[number]) - len(self.lines[number].lstrip())

    def is_blank(self, number):
        return number >= len(self.lines) or not self.lines[number].strip()

    def place_remarks(self):
        """A heading reaches as far as its part of the class or of the file; any other remark up to the next
        empty line."""
        for one in self.found:
            begin = -1
            for outer in self.found:  # its class, and there the last "public:" or its like
                if outer.kind == "class" and outer.path == one.scope and outer.first < one.first:
                    labels = [n for n in range(outer.first, one.first) if declarations.ACCESS.match(self.lines[n])]
                    begin = max([outer.first, *labels])
            above = [r for r in self.remarks if begin < r.last < one.first and r.indent == self.indent_of(one.first)]
            self.headings[id(one)] = next((r for r in reversed(above) if r.heads), Remark())
            near = [r for r in above if not r.heads and not any(map(self.is_blank, range(r.last + 1, one.first)))]
            self.local[id(one)] = near[-1] if near else Remark()

    def is_sister(self, before, one):
        """Whether the docstring of the function before is told for this one as well."""
        if before.scope != one.scope or not self.docs[id(before)].text:
            return False
        if before.name == one.name:
            return True
        return before.last + 1 == one.first and are_sisters(before.name, one.name)

    def group_text(self, number):
        for one in self.found:
            if one.group == number:
                line = one.first
                while not self.lines[line].strip().startswith(declarations.GROUP_BEGIN):
                    line -= 1
                start = line
                while self.lines[start - 1].strip().startswith("//"):
                    start -= 1
                self.group_lines |= set(range(start, line))
                return Doc(*self.block(range(start, line)))
        return Doc()

    def read_docs(self):
        before = None
        groups = {}
        for one in self.found:
            text, quirk = self.block(one.above)
            if one.trailing.startswith("///<"):
                text = "\n".join([text, one.trailing[4:].strip()]).strip()
            elif one.trailing and (one.kind != "function" or COMPILERS.search(one.text)):
                text = text or one.trailing[2:].strip()
            doc = Doc(text, quirk, of=one)
            if one.group:
                shared = groups.setdefault(one.group, self.group_text(one.group))
                doc.shared = shared
                doc.text = doc.text or shared.text
                doc.quirk = doc.quirk or shared.quirk
            elif not text and one.kind == "function":
                if before and self.is_sister(before, one):
                    last = self.docs[id(before)]
                    doc.text, doc.quirk, doc.shared, doc.of = last.text, last.quirk, last.shared, last.of
                if not doc.text and not COMPILERS.search(one.text) and not one.has("override"):
                    doc.text = self.local[id(one)].text
            if before and GOES_ON.match(doc.text) and before.scope == one.scope:
                doc.shared = doc.shared or self.docs[id(before)]
            self.docs[id(one)] = doc
            if one.kind == "function":
                before = one


def are_sisters(name, other):
    """Whether the names differ in one word, or in two of many."""
    a, b = (WORDS.findall(word) for word in (name, other))
    same = 0
    while same < min(len(a), len(b)) and a[same] == b[same]:
        same += 1
    tail = 0
    while tail < min(len(a), len(b)) - same and a[-1 - tail] == b[-1 - tail]:
        tail += 1
    differ = max(len(a), len(b)) - same - tail
    return differ == 1 and same + tail >= 1 and len(a) == len(b) or differ == 2 and same + tail >= 3
