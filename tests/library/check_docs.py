#!/usr/bin/env python3
"""Makes the reference and looks at it: check_docs.py OUTPUT [--picture FILE]

Everything public has to be documented (scripts/docs). Then the pages in OUTPUT/html: no link between them
leads nowhere, and in a browser without a screen the start page and that of a family have what a reader
looks for. --picture keeps how the browser draws that. Prints one line per check and "N passed, N failed";
ends with 1 if any failed.
"""

import html.parser
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import urllib.parse

sys.dont_write_bytecode = True

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path += [str(ROOT / "tests" / "image"), str(ROOT / "scripts" / "reference")]
import reference  # noqa: E402
from check_image import Report  # noqa: E402

BROWSER = "chromium-headless-shell"
PATIENCE = 120  # seconds
WIDTH, HEIGHT = 1280, 1000
FAMILY = "group__the__registry.html"
CLASS = "classRegKey.html"
DRAWN = "group__encodings.html"


class Links(html.parser.HTMLParser):
    """The links and the places of a page."""

    def __init__(self, text):
        super().__init__()
        self.links, self.places = set(), set()
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name == "href" and tag == "a" and value:
                self.links.add(value)
            elif name in ("id", "name") and value:
                self.places.add(value)


def broken_links(folder):
    pages = {path.name: Links(path.read_text()) for path in folder.glob("*.html")}
    broken = []
    for name, page in pages.items():
        for link in page.links:
            file, _, place = link.partition("#")
            if ":" in file:
                continue  # another server's, or a script
            there = pages.get(urllib.parse.unquote(file) or name)
            if there is None or place and place not in there.places:
                broken.append(f"{name}: {link}")
    return len(pages), broken


def browse(page, *options):
    """What the browser writes."""
    with tempfile.TemporaryDirectory() as profile:
        call = [BROWSER, "--no-sandbox", "--disable-gpu", "--hide-scrollbars", f"--user-data-dir={profile}",
                f"--window-size={WIDTH},{HEIGHT}", "--virtual-time-budget=5000", *options, page.as_uri()]
        return subprocess.run(call, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, timeout=PATIENCE,
                              check=True).stdout


def text_of(dom, pattern):
    """The text of what the pattern finds, without its tags."""
    found = re.search(pattern, dom, re.DOTALL)
    return html.unescape(re.sub(r"<[^>]*>", "", found[1])).strip() if found else ""


def look(folder, report):
    """As their scripts have made them."""
    start = browse(folder / "index.html", "--dump-dom")
    report.check("the start page has its title", text_of(start, r'<div class="title">(.*?)</div>') == "Tessaly")
    tree = text_of(start, r'<div id="nav-tree-contents">(.*?)<div id="splitbar')
    wanted = ("Conventions", "Families", "Classes", "Headers")
    report.check("beside it is the tree of all pages", all(name in tree for name in wanted), tree)
    page = browse(folder / FAMILY, "--dump-dom")
    report.check("a family's page has its title", text_of(page, r'<div class="title">(.*?)</div>') == "The registry")
    report.check("a search box is on it", 'id="MSearchField"' in page)
    report.check("its classes are listed", f'href="{CLASS}"' in page)
    example = text_of(page, r'<div class="fragment">(.*?)</div><!-- fragment -->')
    report.check("an example of code is on it", "RegKey key(" in example, example)
    page = browse(folder / CLASS, "--dump-dom")
    for what, pattern in (("parameters", r'<dl class="params">'), ("results", r'<dl class="section return">'),
                          ("quirks", r'<dl class="section remark">')):
        report.check(f"a class's page tells of {what}", re.search(pattern, page))


def draw(folder, picture, report):
    browse(folder / DRAWN, f"--screenshot={picture}")
    data = picture.read_bytes() if picture.exists() else b""
    size = struct.unpack(">II", data[16:24]) if data.startswith(b"\x89PNG") else None
    drawn = size == (WIDTH, HEIGHT) and len(data) > WIDTH * HEIGHT // 50  # an empty page has a tenth
    report.check("the browser draws it", drawn, f"{size}, {len(data)}")


def main():
    keep = sys.argv[3] if len(sys.argv) == 4 and sys.argv[2] == "--picture" else None
    if len(sys.argv) != 2 and not keep:
        sys.exit("usage: check_docs.py OUTPUT [--picture FILE]")
    output = pathlib.Path(sys.argv[1]).resolve()
    report = Report()
    findings = reference.render(ROOT / "src", output)
    report.check("all that is public is documented", not findings, "\n".join(["", *findings]))
    if (output / "html" / "index.html").exists():
        count, broken = broken_links(output / "html")
        report.check(f"no link of {count} pages leads nowhere", count > 100 and not broken, "\n".join(["", *broken]))
        look(output / "html", report)
        draw(output / "html", pathlib.Path(keep).resolve() if keep else output / "page.png", report)
    print(f"{report.passed} passed, {report.failed} failed")
    return 1 if report.failed else 0


if __name__ == "__main__":
    sys.exit(main())
