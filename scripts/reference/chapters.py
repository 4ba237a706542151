"""The chapters of docs/library.md: each is a family of headers, and the overview of its page."""

import fnmatch
import re

from comments import escape

LANGUAGES = {"cpp": "{.cpp}"}
CODE_OR_LINK = re.compile(r"`([^`]+)`|\[([^]]*)\]\([^)]*\)")


class Chapter:
    def __init__(self, title, text, headers):
        self.title, self.text = title, text
        self.id = re.sub(r"\W+", "_", title.lower())
        patterns = re.findall(r"`([\w/*]+\.h)`", text)
        self.headers = [name for name in headers if any(fnmatch.fnmatch(name, p) for p in patterns)]


def read(text, headers):
    """What stands before the first chapter, and the chapters. A header is of the first that names it."""
    intro, *pieces = re.split(r"^## ", text, flags=re.MULTILINE)
    chapters, left = [], list(headers)
    for piece in pieces:
        title, _, body = piece.partition("\n")
        chapters.append(Chapter(title.strip(), body.strip(), left))
        left = [name for name in left if name not in chapters[-1].headers]
    return intro.partition("\n")[2].strip(), chapters


def convert_words(text):
    """Code and links of a paragraph; the pages that links lead to are not part of the reference."""
    out, at = [], 0
    for found in CODE_OR_LINK.finditer(text):
        out.append(escape(text[at : found.start()]))
        if found[2]:
            out.append(escape(found[2]))
        elif found[1].endswith(".h") and "*" not in found[1]:
            out.append(escape(found[1]))  # becomes a link by itself
        else:
            out.append(f"<code>{escape(found[1])}</code>")
        at = found.end()
    return "".join([*out, escape(text[at:])])


def convert(markdown):
    """Paragraphs, lists, code and links, as Doxygen has them without Markdown."""
    out = []
    for number, piece in enumerate(re.split(r"^```(.*)$", markdown, flags=re.MULTILINE)):
        # Text, the language, code, an empty one behind it, and so on.
        if number % 4 == 0:
            out.append(convert_words(piece))
        elif number % 4 == 1:
            out.append(f"@code{LANGUAGES.get(piece, '{.unparsed}')}")
        elif number % 4 == 2:
            out += [piece.strip("\n"), "@endcode"]
    return "\n".join(out)
