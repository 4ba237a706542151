"""Writes the comments of our headers as Doxygen reads them.

The code of a header stays as it is; only its comments are written anew. What is told nowhere is left out,
and Doxygen finds that it is missing: an undocumented name, parameter or result.
"""

import re

import declarations
import prose
from docstrings import COMPILERS
from library import EVERYWHERE

WORD = re.compile(r"(?:\w+::)*~?\w+(?:\.h\b)?")
CODE = re.compile(r"[A-Z][A-Z0-9]*_\w*|k[A-Z]\w+|[a-z]{1,5}[A-Z]\w*")  # constants, and our variables
CONVERSION = re.compile(r"operator ([\w:*<> ]+)")
LONGEST_TITLE = 80
INDENT = "    "


class Writer:
    def __init__(self, library):
        self.library = library

    def mark_up(self, text, one):
        """The text with the names in it as code or as links, and nothing that Doxygen takes for a command."""
        parameters = {p.name for p in one.parameters}

        def word(match):
            name = match[0]
            if name in parameters:
                return f"<em>{name}</em>"
            if name.endswith(".h") or name in self.library.classes:
                return name  # links by themselves
            if CODE.fullmatch(name):
                return f"<code>{name}</code>"
            in_front = text[: match.start()]
            if in_front.endswith('"') or not name[0].isupper() and "::" not in name:
                return name
            if re.search(r"[a-z][A-Z]|::", name) or in_front and in_front[-2:-1] not in ".:":  # else it may be a verb
                other = self.library.named(name, one)
                if other and other[1].kind == "function" and other[1].access == "public":
                    return f'@ref {other[1].path} "{name}"'
            return name

        pieces, at = [], 0
        for match in WORD.finditer(text):
            pieces.append(escape(text[at : match.start()]))
            pieces.append(word(match))
            at = match.end()
        pieces.append(escape(text[at:]))
        return "".join(pieces)

    def paragraphs(self, text, one):
        """Joined lines, but for lists, empty lines and code, which is indented."""
        out, code = [], False
        for line in [*text.split("\n"), ""]:
            if line.startswith(INDENT):
                out += [line] if code else ["@code{.cpp}", line]
                code = True
                continue
            if code:
                out.append("@endcode")
                code = False
            elif out and out[-1] and line.strip() and not line.startswith("- "):
                out[-1] += " " + line.strip()
                continue
            out.append(line.rstrip())
        marked, code = [], False
        for line in out:
            code = line.startswith("@code") or code and line != "@endcode"
            marked.append(line if code or line == "@endcode" else self.mark_up(line, one))
        return marked

    def text_of(self, header, one):
        """The docstring and the quirk, also those that are inherited or follow from what it is."""
        doc = header.docs[id(one)]
        if one.kind != "function":
            return doc.text, doc.quirk
        if not doc.text and one.has("override") and (inherited := self.library.inherited(one)):
            return inherited.text, inherited.quirk
        if doc.text and one.text.endswith("= delete"):
            return f"Not copied: {doc.text}", ""
        conversion = CONVERSION.fullmatch(one.name)
        if not doc.text and conversion and not one.parameters:
            what = conversion[1]
            return ("Whether there is one." if what == "bool" else
                    f"What it holds, where a {what} is wanted; the object keeps it."), ""
        return doc.text, doc.quirk

    def tell_function(self, header, one, text):
        """The parameters and the result, and the sentences that stand there in place of the text."""
        out, moved = [], []
        for parameter in one.parameters:
            if told := self.library.parameter(header, one, parameter):
                out.append(f"@param {parameter.name} {self.mark_up(prose.upper(told, {parameter.name}), one)}")
        if "...)" in one.text:
            self.library.used.add((EVERYWHERE, "..."))
            out.append(f"@param ... {self.library.glossary[EVERYWHERE]['...']}.")
        if CONVERSION.fullmatch(one.name) and not one.result:
            out.append(f"@return {self.mark_up(prose.upper(text), one)}")
        elif one.result and one.result != "void":
            told, moved = self.library.result(header, one)
            if told:
                out.append(f"@return {self.mark_up(told, one)}")
        return out, moved

    def comment(self, header, one):
        """The lines of the declaration's comment, or none."""
        text, quirk = self.text_of(header, one)
        if not text:
            return []
        told, moved = self.tell_function(header, one, text) if one.kind == "function" else ([], [])
        lead = prose.sentences(text.split("\n\n")[0].split("\n- ")[0])[0]
        rest = cut(text, lead)
        for sentence in moved:
            rest = cut(rest, sentence)
        brief = self.mark_up(prose.upper(lead, {p.name for p in one.parameters}), one)
        lines = [f"@brief {brief}", "", *self.paragraphs(rest, one), "", *told]
        return lines + (["", f"@remark {self.mark_up(prose.upper(quirk), one)}"] if quirk else [])

    def is_left_out(self, header, one):
        """Nothing is told of it, and nothing needs to be: what the compiler writes, and what derived
        classes alone could see."""
        if one.unnamed:
            return True
        if header.docs[id(one)].text:
            return False
        if one.access == "protected":
            return not (one.has("override") and self.library.inherited(one))
        made = one.name == one.scope.rpartition("::")[2] and not one.parameters and "(" + ")" in one.text
        return one.kind == "function" and (bool(COMPILERS.search(one.text)) or one.name.startswith("~") or made)

    def rewrite(self, name):
        """The header with other comments, and for each of its lines the line that it comes from."""
        header = self.library.headers[name]
        edit, hidden_to = Edit(header), -1
        for one in header.found:
            if one.access == "private" and one.kind != "class" or one.first <= hidden_to:
                continue
            if one.access == "private" or self.is_left_out(header, one):
                edit.put(one.first, "/** @cond */")
                hidden_to = edit.end_of(one)
                edit.close(hidden_to, "/** @endcond */")
            elif comment := self.comment(header, one):
                edit.replace_comment(one, "/** " + "\n".join(comment) + "\n*/")
        for first, last, remark in self.sections(header):
            title, text = entitle(remark)
            lines = [f"@name {escape(title)}", "", *self.paragraphs(text, header.found[0])]
            edit.put(first, "/** " + "\n".join(lines) + "\n*/\n/** @{ */", at_front=True)
            edit.close(last, "/** @} */", outermost=True)
        family = self.library.families[name]
        file = f"/** @file {name}\n@brief {self.library.titles[family]}.\n*/"
        return edit.apply(f"{file}\n/** @addtogroup {family}\n@{{ */", "/** @} */")

    def sections(self, header):
        """The runs of declarations below one heading: first and last line, and the heading. Behind a class
        its run is over."""
        found, run, seen = [], None, set()
        for one in header.found:
            heading = header.headings[id(one)]
            listed = one.kind in ("function", "data") and one.access != "private" and heading.text
            if run and (run[0] != heading.last or not listed):
                run = None
            if listed and (run or heading.last not in seen) and not self.is_left_out(header, one):
                if run is None:
                    found.append(run := [heading.last, one.first, one.last, heading.text])
                    seen.add(heading.last)
                run[2] = one.last
        return [tuple(run[1:]) for run in found]


class Edit:
    """What becomes of a header's lines."""

    def __init__(self, header):
        self.lines = header.lines
        self.before, self.behind = {}, {}  # by line: what is put there
        self.dropped, self.without_comment = set(header.group_lines), set()

    def put(self, line, text, at_front=False):
        texts = self.before.setdefault(line, [])
        texts.insert(0 if at_front else len(texts), text)

    def close(self, line, text, outermost=False):
        texts = self.behind.setdefault(line, [])
        texts.insert(len(texts) if outermost else 0, text)

    def end_of(self, one):
        """The last line of all that stands in its braces."""
        if one.kind not in ("class", "enum"):
            return one.last
        indent, last = re.match(" *", self.lines[one.first])[0], one.last
        while not re.match(indent + "}|.*};$", self.lines[last]):
            last += 1
        return last

    def replace_comment(self, one, comment):
        self.dropped |= {n for n in one.above if self.lines[n].strip().startswith("///")}
        if one.trailing:
            self.without_comment.add(one.last)
        self.put(one.first, comment)
        pieces = declarations.split_top(one.text)
        if one.kind == "data" and len(pieces) > 1 and one.first == one.last:
            # Doxygen would give the comment to the first of the names alone.
            kind = pieces[0][: re.search(rf"\b{one.name}\b", pieces[0]).start()]
            self.put(one.first, f"\n{comment}\n".join([f"{pieces[0]};", *(f"{kind}{piece};" for piece in pieces[1:])]))
            self.dropped.add(one.first)

    def apply(self, head, tail):
        """The lines as one text, and the line that each comes from."""
        out, origins = [], []

        def put(text, number):
            lines = text.split("\n")
            out.extend(lines)
            origins.extend([number] * len(lines))

        put(head, 0)
        for number, line in enumerate(self.lines):
            for text in self.before.get(number, []):
                put(text, number)
            if number in self.without_comment:
                line = line[: declarations.blank(line).find("//")].rstrip()
            if number not in self.dropped and not line.strip().startswith(declarations.GROUP_MARKS):
                put(line, number)
            for text in self.behind.get(number, []):
                put(text, number)
        put(tail, len(self.lines) - 1)
        return "\n".join(out) + "\n", origins


def entitle(remark):
    """A remark's beginning as the title of what stands below it, and its text if that says more."""
    lead = re.split(r"\.(?:\s|$)", " ".join(remark.split()), maxsplit=1)[0]
    if len(lead) > LONGEST_TITLE:
        return re.split(r"[,:;] ", lead)[0], remark
    return lead, cut(remark, lead).lstrip(". \n")


def escape(text):
    """Nothing in it is a command or a tag."""
    text = text.replace("\\", "\\\\").replace("@", "\\@").replace("&", "&amp;")
    text = text.replace("<", "&lt;").replace(">", "&gt;")
    text = text.replace('"', "&quot;")  # between real ones Doxygen shows all as it stands
    return text.replace("#", "\\#").replace("%", "\\%").replace("*/", "*&zwj;/").replace("--", "-\\-")


def cut(text, sentence):
    """The text without the sentence, whose words may stand on two lines."""
    pattern = r"\s+".join(re.escape(word) for word in sentence.split())
    return re.sub(pattern, "", text, count=1).strip(" ")
