"""Parts of documents that are made from the sources: what stands between <!-- NAME --> and <!-- /NAME -->."""

import re


def part_of(name):
    return re.compile(rf"(<!-- {name} -->\n)(.*?)(<!-- /{name} -->)", re.DOTALL)


def check(document, name, text, command):
    """What is wrong with the document's part, as a list of lines."""
    found = part_of(name).search(document.read_text()) if document.exists() else None
    if not found:
        return [f"{document}: has no part between <!-- {name} --> and <!-- /{name} -->"]
    if found[2] != text:
        return [f"{document}: the part <!-- {name} --> is not what the sources give; {command} writes it"]
    return []


def write(document, name, text):
    before = document.read_text()
    after, count = part_of(name).subn(lambda found: found[1] + text + found[3], before)
    if count != 1:
        raise SystemExit(f"{document}: has no part between <!-- {name} --> and <!-- /{name} -->, or several")
    if after != before:
        document.write_text(after)
