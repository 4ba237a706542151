"""Renders the reference: the public headers and the chapters of docs/library.md, by Doxygen."""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import tomllib

TOOLS = pathlib.Path(__file__).resolve().parent
ROOT = TOOLS.parents[1]
sys.path += [str(TOOLS), str(ROOT / "scripts")]
import chapters  # noqa: E402
import comments  # noqa: E402
import release_files  # noqa: E402
from library import EVERYWHERE, Library  # noqa: E402

CONVENTIONS = "conventions"
UMBRELLA = "tessaly.h"
PLACE = re.compile(r"(.*?):(\d+): (.*)")
NO_PLACE = re.compile(r"<.*?>:\d+: (.* of member (\S+) .*)")


def lay_out(source, folder):
    """The public headers, by their names, as `cmake --install` lays them out."""
    call = ["cmake", f"-DCMAKE_INSTALL_PREFIX={folder}", f"-Dsource_folder={source}", "-Dheader_folder=include",
            "-P", ROOT / "cmake" / "install_headers.cmake"]
    subprocess.run(call, check=True, stdout=subprocess.DEVNULL)
    headers = folder / "include"
    texts = {p.relative_to(headers).as_posix(): p.read_text() for p in sorted(headers.rglob("*.h"))}
    texts.pop(UMBRELLA)  # it includes, and has nothing of its own
    return texts


def write_layout(path):
    """Doxygen's own, with what a page tells in words before its lists."""
    subprocess.run(["doxygen", "-l", path], check=True, stdout=subprocess.DEVNULL)
    text = path.read_text()
    words = '    <detaileddescription title=""/>\n'
    for kind in ("class", "group"):
        head, tag, rest = text.partition(f"  <{kind}>\n")
        part, end, tail = rest.partition(f"  </{kind}>\n")
        part = part.replace(words, "").replace(
            "    <memberdecl>\n", words.replace('""', '"Overview"') + "    <memberdecl>\n", 1)
        text = head + tag + part + end + tail
    for tab, title in (("modules", "Families"), ("classes", "Classes"), ("files", "Headers")):
        head = f'<tab type="{tab}" visible="yes" title="'
        text = text.replace(f'{head}"', f'{head}{title}"')
    text = text.replace('<tab type="pages" visible="yes" title="" intro=""/>',
                        f'<tab type="user" url="@ref {CONVENTIONS}" title="Conventions"/>')
    path.write_text(text)


def write_pages(intro, families, glossary, path):
    """The start page, a group for each family, and the conventions."""
    out = ["/** @mainpage Tessaly", chapters.convert(intro), "", "<h2>Families</h2>", "<ul>"]
    out += [f'<li>@ref {family.id} "{family.title}"</li>' for family in families]
    out += ["</ul>", "*/"]
    for family in families:
        out += [f"/** @defgroup {family.id} {family.title}", chapters.convert(family.text), "*/"]
    titles = {family.id: family.title for family in families} | {EVERYWHERE: "Everywhere"}
    out += [f"/** @page {CONVENTIONS} Conventions", glossary["about"]["text"]]
    for table, names in glossary.items():
        if table in ("about", "headers"):
            continue
        out += [f"<h2>{titles.get(table, table)}</h2>", '<table class="doxtable">',
                "<tr><th>Parameter</th><th>What it is</th></tr>"]
        out += [f"<tr><td><code>{comments.escape(name.rstrip('*'))}</code></td><td>{comments.escape(text)}</td></tr>"
                for name, text in names.items()]
        out += ["</table>"]
    path.write_text("\n".join([*out, "*/", ""]))


def unused(glossary, used):
    tables = (table for table in glossary if table not in ("about", "headers"))
    return [f"glossary.toml: no parameter asks for {name} of {table}"
            for table in tables for name in glossary[table] if (table, name) not in used]


def run_doxygen(inputs, layout, output):
    version = release_files.read_version()
    config = (TOOLS / "Doxyfile").read_text() + "\n".join([
        f"PROJECT_NUMBER = {version.number}", f'INPUT = "{inputs}"', f'STRIP_FROM_PATH = "{inputs}"',
        f'STRIP_FROM_INC_PATH = "{inputs}"', f'OUTPUT_DIRECTORY = "{output}"', f'LAYOUT_FILE = "{layout}"',
        f'HTML_EXTRA_STYLESHEET = "{TOOLS / "reference.css"}"', ""])
    return subprocess.run(["doxygen", "-"], input=config, text=True, capture_output=True)


def translate(line, inputs, origins, library):
    """One of Doxygen's lines, with the place in the header itself."""
    if (place := PLACE.match(line)) and place[1] in origins:
        name = pathlib.Path(place[1]).relative_to(inputs)
        return f"src/{name}:{origins[place[1]][int(place[2]) - 1] + 1}: {place[3]}"
    if (place := NO_PLACE.match(line)) and place[2] in library.by_path:
        header, one = library.by_path[place[2]][0]
        return f"src/{header.name}:{one.first + 1}: {place[1]}"
    return line


def render(source, output):
    """Makes output/html of the headers below source. What is missing in them, a line each."""
    shutil.rmtree(output / "html", ignore_errors=True)
    output.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory() as temporary:
        scratch = pathlib.Path(temporary).resolve()
        texts = lay_out(source, scratch)
        glossary = tomllib.loads((TOOLS / "glossary.toml").read_text())
        intro, families = chapters.read((ROOT / "docs" / "library.md").read_text(), list(texts))
        of_header = glossary["headers"] | {name: family.id for family in families for name in family.headers}
        if strangers := [name for name in texts if name not in of_header]:
            return [f"src/{name}: no chapter of docs/library.md names it" for name in strangers]
        library = Library(texts, of_header, glossary, {family.id: family.title for family in families})
        writer, inputs, origins = comments.Writer(library), scratch / "input", {}
        for name in texts:
            path = inputs / name
            path.parent.mkdir(parents=True, exist_ok=True)
            text, origins[str(path)] = writer.rewrite(name)
            path.write_text(text)
        write_pages(intro, families, glossary, inputs / "pages.dox")
        write_layout(scratch / "layout.xml")
        done = run_doxygen(inputs, scratch / "layout.xml", output)
        findings = unused(glossary, library.used)
        findings += [f"src/{name}:{one.first + 1}: error: Member {one.name} (enumvalue) is not documented."
                     for name, one in library.undocumented_values()]
        findings += [translate(line, inputs, origins, library) for line in done.stderr.splitlines()]
        if done.returncode and not findings:
            findings.append(f"doxygen ended with {done.returncode}")
        return list(dict.fromkeys(findings))  # a derived class repeats what its base lacks
