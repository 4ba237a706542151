"""Reads the declarations of a header, with the comments that belong to them.

Not a parser of C++: it knows what the formatter makes of our headers. Doxygen reads the whole header
itself, and misses the comment of what this does not recognise.
"""

import dataclasses
import re

STRING = re.compile(r'"(?:[^"\\\n]|\\.)*"|\'(?:[^\'\\\n]|\\.)*\'')
SCOPE = re.compile(r"^(?:template <.*?> )?(class|struct|union|enum)\b(?: (?:TESSALY_API|class|alignas\(\w+\)))*"
                   r" ?(\w*)(?: final)?(?: : ([^{]*))?$")
ACCESS = re.compile(r"\s*(public|protected|private):")
NAME = re.compile(r"(operator\s*[^\s(][^(]*|operator\(\)|~?\w+)\s*$")
POINTER = re.compile(r"[^(]*\(\*(\w+)\)\(")  # a variable that points to a function
LEVELS = ("public", "protected", "private")
GROUP_BEGIN, GROUP_END = GROUP_MARKS = ("///@{", "///@}")
KEYWORDS = re.compile(r"\b(TESSALY_API|static|virtual|inline|constexpr|explicit|CALLBACK|WINAPI)\b")


@dataclasses.dataclass
class Parameter:
    name: str
    type: str


@dataclasses.dataclass
class Declaration:
    kind: str  # function, class, enum, enumerator, data, alias
    name: str
    text: str  # without comments, without a body
    scope: str  # the class around it, "" outside of classes
    access: str
    first: int  # lines, from 0
    last: int
    above: range  # the lines of the comment above it
    trailing: str  # the comment behind it, with its slashes
    group: int  # of those between "///@{" and "///@}"; 0: none
    bases: tuple = ()
    result: str = ""
    parameters: tuple = ()
    unnamed: bool = False  # a member of a struct without a name, which the class around it shows

    @property
    def path(self):
        return f"{self.scope}::{self.name}" if self.scope else self.name

    def has(self, word):
        return re.search(rf"\b{word}\b", self.text) is not None

    def is_special(self):
        """A constructor, a destructor, or a conversion."""
        return self.name == self.scope.rpartition("::")[2] or self.name.startswith("~") or (
            self.name.startswith("operator ") and not self.result)


def split_top(text, separator=","):
    """The pieces of the text between separators that stand in no bracket."""
    depth, pieces = 0, [""]
    for char in text:
        depth += (char in "(<[{") - (char in ")>]}")
        if char == separator and depth == 0:
            pieces.append("")
        else:
            pieces[-1] += char
    return [piece.strip() for piece in pieces if piece.strip()]


def blank(line):
    """The line with its strings filled up, in the same length."""
    return STRING.sub(lambda m: m[0][0] + "x" * (len(m[0]) - 2) + m[0][0], line)


def read_parameter(text):
    text = text.partition("=")[0].strip()
    if pointed := re.search(r"\(\w*\s*[*&](\w+)\)", text):  # to a function or an array
        return Parameter(pointed[1], text)
    named = re.fullmatch(r"(.*[\s*&>])(\w+)((?:\[.*\])?)", text)
    if named and named[1].strip() not in ("const", "struct") and named[2] not in ("int", "char", "long", "short"):
        return Parameter(named[2], (named[1] + named[3]).strip())
    return Parameter("", text)


def read_function(one):
    """Fills in the name, the result and the parameters."""
    one.kind = "function"
    one.text = text = re.sub(r"^template <.*?> ", "", one.text)
    begin = text.find("(")
    if text[:begin].endswith("operator"):
        begin = text.find("(", begin + 1)
    depth, end = 0, begin
    for end in range(begin, len(text)):
        depth += (text[end] == "(") - (text[end] == ")")
        if depth == 0:
            break
    named = NAME.search(text[:begin])
    one.name = " ".join(named[1].split())
    one.result = " ".join(KEYWORDS.sub("", text[: named.start()]).split())
    parameters = [read_parameter(p) for p in split_top(text[begin + 1 : end])]
    one.parameters = tuple(p for p in parameters if p.name and p.type != "void")


def read_data(one):
    one.kind = "data"
    body = re.sub(r"alignas\(\w+\)", "", re.split(r" = |\{", one.text)[0])
    pointed = POINTER.match(body)
    names = re.findall(r"(\w+)(?:\[.*?\])*(?=$|,| :)", body)
    one.name = pointed[1] if pointed else names[0] if names else body


class Reader:
    def __init__(self, text):
        self.lines = text.splitlines()
        self.code, self.comments = [], []
        for line in self.lines:
            at = blank(line).find("//")
            self.code.append(blank(line)[: at if at >= 0 else None].rstrip())
            self.comments.append(line[at:] if at >= 0 else "")
        self.found = []
        self.groups = self.group = 0
        self.limits = []  # the access of the classes around
        self.unnamed = 0  # how many structs around have no name
        self.read_scope(0, 0, "", "public", "file")

    def comment_above(self, first):
        start = first
        while start and not self.code[start - 1] and self.comments[start - 1]:
            if self.comments[start - 1].startswith(GROUP_MARKS):
                break
            start -= 1
        return range(start, first)

    def add(self, text, first, last, scope, access, kind):
        text = re.sub(r"\[\[\w+\]\] ?", "", " ".join(text.split()))
        text = re.sub(r'^extern "\w*" ?', "", text)
        if not text or re.match(r"(static_assert|friend|namespace|#)\b", text):
            return
        for limit in self.limits:  # nobody sees more of a class than the class itself
            access = max(access, limit, key=LEVELS.index)
        one = Declaration(kind, "", text, scope, access, first, last, self.comment_above(first), self.comments[last],
                          self.group, unnamed=self.unnamed > 0)
        if kind == "enumerator":
            one.name = re.match(r"\w+", text)[0]
        elif kind in ("class", "enum"):
            found = SCOPE.match(text)
            one.name = found[2]
            one.bases = tuple(re.sub(r"\b(public|private|protected|virtual)\b", "", base).strip()
                              for base in split_top(found[3] or ""))
        elif text.startswith(("using ", "typedef ")):
            if re.match(r"using \w+::", text):
                return  # brings in what is documented where it comes from
            one.kind = "alias"
            one.name = re.match(r"using (\w+)", text)[1] if text.startswith("using") else NAME.search(text)[1]
        elif "(" in re.sub(r"alignas\(\w+\)|decltype\(.*?\)", "", text.partition(" = ")[0]) and not POINTER.match(text):
            read_function(one)
        elif re.match(r"(class|struct|enum)\b[^={*]*$", text) and len(text.split()) < 4:
            return  # only announced
        else:
            read_data(one)
        self.found.append(one)

    def read_scope(self, number, column, scope, access, kind):
        """From behind the scope's opening brace on; the line and the column of the closing one."""
        text, first, parens = "", None, 0
        while number < len(self.code):
            line = self.code[number]
            if column == 0:
                if self.comments[number].startswith(GROUP_BEGIN):
                    self.groups += 1
                    self.group = self.groups
                elif self.comments[number].startswith(GROUP_END):
                    self.group = 0
                if line.startswith("#"):
                    while self.code[number].endswith("\\"):
                        number += 1
                    number += 1
                    continue
                if label := ACCESS.match(line):
                    access = label[1]
                    number += 1
                    continue
            while column < len(line):
                char = line[column]
                if char == "}" and not parens and (kind == "enum" or not text.strip()):
                    if text.strip():  # the last enumerator has no comma
                        last = number if line[:column].strip() else number - 1
                        self.add(text, first, last, scope, access, "enumerator")
                    return number, column
                if first is None and not char.isspace():
                    first = number
                parens += (char == "(") - (char == ")")
                column += 1
                if parens or char not in ";{" and not (kind == "enum" and char == ","):
                    text += char
                    continue
                if char == ";" or char == ",":
                    self.add(text, first, number, scope, access, "enumerator" if kind == "enum" else "")
                    text, first = "", None
                    continue
                whole, begin = self.open_brace(text, first, number, column, scope, access)
                number, column = whole
                line = self.code[number]
                if begin is None:
                    text, first = "", None
            text += " "
            number, column = number + 1, 0
        return number, 0

    def open_brace(self, text, first, number, column, scope, access):
        """What stands in braces: the place behind them, and where the declaration began if it goes on."""
        bare = " ".join(text.split())
        opened = SCOPE.match(re.sub(r"\[\[\w+\]\] ?", "", bare))
        if re.match(r'(namespace\b|extern "x*"$)', bare):
            end, stop = self.read_scope(number, column, scope, access, "file")
            return (end, stop + 1), None
        if opened:
            kind = "enum" if opened[1] == "enum" else "class"
            self.add(bare, first, number, scope, access, kind)
            path = (f"{scope}::{opened[2]}" if scope else opened[2]) if opened[2] else scope
            hidden = kind == "class" and not opened[2]
            self.limits.append(access)
            self.unnamed += hidden
            end, stop = self.read_scope(number, column, path, "private" if opened[1] == "class" else "public", kind)
            self.limits.pop()
            self.unnamed -= hidden
            semicolon = self.code[end].find(";", stop)
            return (end, (semicolon if semicolon >= 0 else stop) + 1), None
        end, stop = self.skip_braces(number, column - 1)
        if "(" in bare and (bare.endswith(")") or self.code[number][column - 2 : column - 1].isspace()):
            # A function with its body; what stands between ":" and that is its own.
            head = re.sub(r"(\)(?: const| noexcept| override| final)*) :(?!:).*$", r"\1", bare)
            self.add(head, first, end, scope, access, "")
            return (end, stop + 1), None
        return (end, stop + 1), first  # an initialiser

    def skip_braces(self, number, column):
        depth = 0
        while True:
            line = self.code[number]
            while column < len(line):
                depth += (line[column] == "{") - (line[column] == "}")
                if depth == 0:
                    return number, column
                column += 1
            number, column = number + 1, 0


def read(text):
    """The declarations in their order, as they stand."""
    return Reader(text).found
