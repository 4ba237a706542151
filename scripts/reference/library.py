"""What the docstrings of all headers tell of a declaration: its own, those that it shares, inherits or
names, the remarks around it, and the glossary."""

import re

import prose
from docstrings import Header

# "As Create", "otherwise as Create", "Create with other arguments": parameters and results stand there too.
LIKE = re.compile(r"\b(?:[Aa]s|[Ll]ike|[Ss]ee|(?:those|that) of) (?:in |those of |that of |the )?((?:\w+::)?[A-Z]\w+)|"
                  r"^((?:\w+::)?~?[A-Z]\w+)(?:\(\w*\))?(?:,| of| for| with| under| and| at|\.|$| into| in)")
ACTS = re.compile(r"(?:Only |Also |Then )?[A-Z][a-z]+(?:s|es)\b(?! of\b)")  # a docstring that tells what is done
ASKS = re.compile(r"(?:Get|Is|Has|Can|Find|Was|Were|Are|Count|Calc|Needs|Should)(?![a-z])")
TESTS = re.compile(r"(?:Is|Has|Can|Was|Were|Are)(?![a-z])")
MOST = 8  # docstrings that are looked at for one function
EVERYWHERE = "everywhere"


class Library:
    """All headers, and what is found through them."""

    def __init__(self, texts, families, glossary, titles):
        self.headers = {name: Header(name, text) for name, text in texts.items()}
        self.families = families  # header -> family's id
        self.glossary = glossary
        self.titles = titles  # of the families, by their ids
        self.used = set()  # entries of the glossary
        self.by_path, self.classes = {}, {}
        for header in self.headers.values():
            for one in header.found:
                if one.access == "private":
                    continue
                self.by_path.setdefault(one.path, []).append((header, one))
                if one.kind == "class":
                    self.classes[one.path] = (header, one)

    def undocumented_values(self):
        """The values of enumerations that have no docstring, which Doxygen does not mind."""
        return [(header.name, one) for header in self.headers.values() for one in header.found
                if one.kind == "enumerator" and one.access == "public" and not header.docs[id(one)].text]

    def bases(self, scope):
        """The class and those that it is derived from, the nearest first."""
        found, left = [], [scope]
        while left:
            name = re.sub(r"<.*", "", left.pop(0))
            if name in self.classes and name not in found:
                found.append(name)
                left += self.classes[name][1].bases
        return found

    def all_inherited(self, one):
        """The docstrings of what the function overrides, the nearest first."""
        found = []
        for base in self.bases(one.scope)[1:]:
            for header, other in self.by_path.get(f"{base}::{one.name}", []):
                if len(other.parameters) == len(one.parameters) and header.docs[id(other)].text:
                    found.append(header.docs[id(other)])
        return found

    def inherited(self, one):
        """The nearest of them, or none."""
        return next(iter(self.all_inherited(one)), None)

    def named(self, word, one):
        """The documented function or class that a word of a docstring names."""
        if not re.search(r"[a-z]", word):
            return None
        for scope in [*self.bases(one.path if one.kind == "class" else one.scope), ""]:
            path = f"{scope}::{word}" if scope else word
            for header, other in self.by_path.get(path, []):
                if other is not one and header.docs[id(other)].text:
                    return header.docs[id(other)], other
        return None

    def sources(self, header, one):
        """The texts in which a function's parameters and results may be told: its own first."""
        doc = header.docs[id(one)]
        found, left = [], [doc if doc.text else self.inherited(one) if one.has("override") else None]
        while left and len(found) < MOST:
            doc = left.pop(0)
            if doc is None or not doc.text or doc.text in found:
                continue
            found.append(doc.text)
            left.append(doc.shared)
            for match in LIKE.finditer(doc.text):
                other = self.named(match[1] or match[2], doc.of or one)
                if other and other[1].kind == "function":
                    left.append(other[0])
        if one.has("override"):
            found += [doc.text for doc in self.all_inherited(one) if doc.text not in found]
        return found

    def around(self, header, one):
        """What is said above the function for all of a part, or of the class or its base."""
        found = [header.local[id(one)].text, header.headings[id(one)].text, header.head]
        for scope in self.bases(one.scope):
            outer, of = self.classes[scope]
            found.append(outer.docs[id(of)].text)
        return [text for text in found if text]

    def parameter(self, header, one, parameter):
        """What the parameter is; empty if nobody says so."""
        name = parameter.name
        own, *others = self.sources(header, one) or [""]
        told = prose.of_parameter(name, own)
        meant = self.meaning(header, one, parameter)
        about = [s for s in told if re.match(rf"(?:With |Without |A (?:null|negative|positive) |\*)?{name}\b", s)]
        if meant:
            return " ".join([f"{meant}.", *about])
        if told:
            return " ".join(told)
        for text in [*others, *self.around(header, one)]:
            if told := prose.of_parameter(name, text):
                return " ".join(told)
        return ""

    def meaning(self, header, one, parameter):
        """What the glossary says of the name: in the class, its bases, the family, everywhere."""
        written = re.match(r"(wchar_t|char|LPWSTR)\b", parameter.type)
        for table in [*self.bases(one.scope), self.families.get(header.name, ""), EVERYWHERE]:
            names = self.glossary.get(table, {})
            for name in ([f"{parameter.name}*"] if written else []) + [parameter.name]:
                if name in names:
                    self.used.add((table, name))
                    return names[name]
        return ""

    def result(self, header, one):
        """What comes back, empty if nobody says so, and the sentences that this takes out of the text."""
        texts = self.sources(header, one)
        tests = bool(TESTS.match(one.name)) and one.result in ("int", "bool")
        flag = one.result in ("int", "BOOL", "bool")
        noun = not tests and not (one.result == "int" and writes(one)) and (not flag or bool(ASKS.match(one.name)))
        names = {p.name for p in one.parameters}
        acts = bool(texts) and one.result in ("int", "BOOL") and not ASKS.match(one.name) and bool(ACTS.match(texts[0]))
        around = [prose.said_for_all(text) for text in self.around(header, one)]
        around = [said for said in around if said and (flag or said != prose.SUCCESS)]
        for number, text in enumerate(texts):
            parts, whole = prose.result_parts(text, noun, names)
            if parts:
                told = " ".join(parts)
                if flag and re.match("0 ", told) and not re.search(r"\b1\b|non-?zero", told, re.IGNORECASE):
                    told = succeed(told, around[0] if around else prose.SUCCESS if acts else "")
                return told, whole if number == 0 else []
        if one.name == "operator=":
            return "This object.", []
        lead = prose.sentences(texts[0])[0] if texts else ""
        if texts and tests:
            return "1 if it is so, 0 if not." if one.result == "int" else "True if it is so.", []
        if noun and texts and ASKS.match(one.name) and not ACTS.match(lead):
            return prose.upper(lead, names), []  # a noun of another kind
        if around:
            return around[0], []
        if acts:
            return prose.SUCCESS, []  # as docs/library.md says of the whole library
        return "", []


def succeed(told, other):
    """What tells only of failure, with what a success gives."""
    if other == prose.SUCCESS and not told.startswith("0 also"):
        return f"1 for success; {told}"
    return f"{other} {told}".strip()


def writes(one):
    """Whether a parameter is a place to write to."""
    return any(re.match(r"(?!const\b)[\w:]+(?: int| char| __int64)?\s?[*&]", p.type) and
               not re.match(r"(CSList|RegKey|CSDlg|CSWnd|CSDC|DrawHTML\w*|CSComboList|WMHook|void)\b", p.type)
               for p in one.parameters)
