#!/usr/bin/env python3
"""Holds docs/guide.md to the program: check_guide.py ROOT [--texts]

Every text that the program and its installer can show stands in the guide, every switch and every exit
code has its row, every link leads somewhere and every picture is there. What counts as a text:

- in the sources of FOLDERS a wide literal with words in it, or one that a call of CALLS is given;
- a string of the string table, and what stands on a dialog;
- what the installer's message boxes, choices and last page say.

A text may stand in the guide with other line ends and with * or ` in it, and anything short may stand where
the program puts something in. Its lines and columns may stand apart. EXCEPTIONS are what nobody gets to
see, each with the reason; one that is no exception any more is a fault. Prints what is wrong and ends
with 1 if anything is.

  --texts   prints the texts that are looked for
"""

import argparse
import pathlib
import re
import sys

sys.dont_write_bytecode = True

FOLDERS = ("src/host", "src/icons", "src/app/update", "src/app/about")
CALLS = r"\b(?:Msg|MsgFmt|MessageBoxW|AppendItem|AppendSubMenu|ShowBalloon|ReportCaptureOutcome)\("
EXCEPTIONS = {
    # By their text
    "Mozilla/4.0 (Orvanta Software)": "goes to the server",
    "Content-Type: application/x-www-form-urlencoded": "goes to the server",
    "Btn3": "the arrow's picture stands there",
    "x": "the cross's picture stands there",
    "Icon": "the icon stands there",
    "<H><H><b>%s %s</b></H></H>": "the title of IDD_ABOUT",
    # By the id of the string or dialog
    "IDD_ABOUT": "for programs that use the library; this one shows IDD_SIMPLE_ABOUT",
    "IDD_CHECK_FOR_UPDATES": "this program checks without asking (EnforceCheckForUpdates)",
    "IDD_PROGRESS": "for programs that use the library: nothing takes long here",
    "IDS_PROGRESS_CANCEL": "the same",
    "IDS_BROWSE_FOLDER": "for programs that use the library: nothing is browsed for here",
    "IDS_BROWSE_FILE": "the same",
    "IDS_BROWSE_ALL_FILES": "the same",
    "IDS_FILE_OVERWRITE": "for programs that use the library's files",
    "IDS_FILE_NOT_CREATED": "the same",
    "IDS_FILE_NOT_WRITTEN": "the same",
    "IDS_OPEN_WEB_PAGE": "a question that this program does not have asked",
    "IDS_NOT_ON_THIS_EDITION": "for programs that use the library: works on all editions",
    "IDS_NO_HTML_HELP": "for programs that use the library: there is no help file",
    "IDS_HELP_FILE_MISSING": "the same",
    "IDS_ABOUT": "a row of other programs' menus",
    "IDS_COPY": "of the dialog IDD_ABOUT",
    "IDS_CHECK_DAILY": "a list of other programs' settings",
    "IDS_CHECK_WEEKLY": "the same",
    "IDS_CHECK_MONTHLY": "the same",
    "IDS_CHECK_NEVER": "the same",
    "IDS_REGISTRY_NEEDS_ADMIN": "a setting for all users, which this program does not have",
}

STRING = r'L?"(?:[^"\\\n]|\\.)*"'
TOKENS = re.compile(rf"//[^\n]*|/\*.*?\*/|'(?:[^'\\\n]|\\[^\n']*|\\')'|({STRING})|(TEXT\(\w+\))|(\s+)|(.)", re.DOTALL)
PUT_IN = "\0"  # stands where the program puts something in
FORMAT = re.compile(r"%%|%[-+0 #]*\d*(?:\.\d+)?(?:h|l|ll|I64)?[a-zA-Z]")
WORDS = re.compile(r"[^\W\d_][^\n\t]* +[^\n\t]*[^\W\d_]|[^\W\d_]{2,}\.\.\.")
ESCAPES = {"n": "\n", "t": "\t", "r": "", "0": ""}
LONGEST_PUT_IN = 80


def unescape(literal):
    """The characters between a literal's quotes."""
    inner = literal[literal.index('"') + 1 : -1]
    inner = re.sub(r"\\u([0-9A-Fa-f]{4})", lambda found: chr(int(found[1], 16)), inner)
    return re.sub(r"\\(.)", lambda found: ESCAPES.get(found[1], found[1]), inner)


def literals_in(text):
    """(line, literal, wide, the code before it in its statement), neighbours joined, comments left out."""
    found, before, open_literal, line = [], "", None, 1
    for token in TOKENS.finditer(text):
        literal, macro, blank, code = token.groups()
        if literal:
            if not open_literal:
                open_literal = [line, "", literal.startswith("L"), before]
                found.append(open_literal)
            open_literal[1] += unescape(literal)
        elif macro and open_literal:
            open_literal[1] += PUT_IN
        elif code or macro:
            open_literal = None
            before = "" if code in (";", "{", "}") else before + token[0]
        line += token[0].count("\n")
    return found


def sources_of(root):
    return sorted(p for folder in FOLDERS for p in (root / folder).rglob("*") if p.suffix in (".cpp", ".h"))


def source_texts(root):
    """(place, text, text) of the sources."""
    for path in sources_of(root):
        for line, text, wide, before in literals_in(path.read_text()):
            bare = FORMAT.sub(PUT_IN, text)
            if wide and (WORDS.search(bare) or (re.search(CALLS, before) and re.search(r"[^\W\d_]", bare))):
                yield f"{path.relative_to(root).as_posix()}:{line}", text, text


def table_texts(root):
    """(place, text, the id or text by which EXCEPTIONS know it) of the string table and the dialogs."""
    name = "src/resources/strings.rc"
    text = (root / name).read_text()
    for found in re.finditer(rf"^ *(IDS_\w+),? +({STRING})", text, re.MULTILINE):
        yield f"{name}:{text[: found.start()].count(chr(10)) + 1}", unescape(found[2]), found[1]
    name, dialog = "src/resources/dialogs.rc", ""
    for number, line in enumerate((root / name).read_text().splitlines(), 1):
        if found := re.match(r"(IDD_\w+) DIALOG", line):
            dialog = found[1]
        words = re.match(rf"(?:CAPTION|(?! *(?:FONT|#|//))\s+\w+) ({STRING})", line)
        if words:
            said = unescape(words[1])
            yield f"{name}:{number}", said.replace("&", ""), dialog if dialog in EXCEPTIONS else said


def setup_texts(root):
    """(place, text, text) of the installer."""
    name = "setup/setup.nsi"
    text = (root / name).read_text()
    quoted = r"(?:\s|\\\n)*\"([^\"]+)\""
    patterns = (
        rf"^[^;\n]*MessageBox \S+{quoted}",
        r'^Section (?:/o )?"(?:un\.)?([^"]*)"',
        r'^!define MUI_\w*TEXT\w* "([^"]+)"',
    )
    for found in (found for pattern in patterns for found in re.finditer(pattern, text, re.MULTILINE)):
        said = re.sub(r"\\\n\s*", "", found[1]).replace("${NAME}", "Tessaly")
        said = said.replace("$\\r", "").replace("$\\n", "\n")
        said = re.sub(r"\$\{\w+\}|\$\w+", PUT_IN, said)
        yield f"{name}:{text[: found.start(1)].count(chr(10)) + 1}", said, said


def pieces_of(text):
    """The lines and columns of a text, those that say something."""
    bare = FORMAT.sub(lambda found: "%" if found[0] == "%%" else PUT_IN, text)
    pieces = (" ".join(re.sub("[*`]", "", piece).split()) for piece in re.split(r"[\n\t]", bare))
    return [piece for piece in pieces if re.search(r"\w", piece.replace(PUT_IN, ""))]


def plain(guide):
    """The guide's words, without marks and line ends."""
    lines = (re.sub(r"^>+ ?", "", line) for line in guide.splitlines())
    return " ".join(re.sub(r"[*`\\]", "", "\n".join(lines)).split())


def pattern_of(piece):
    """What a text looks like in the guide: as a whole, not as a part of other words."""
    parts = [re.escape(part.strip()).replace(r"\ ", r" ") for part in piece.split(PUT_IN)]
    inside = f" ?.{{1,{LONGEST_PUT_IN}}}? ?".join(parts)
    return re.compile(rf"(?<!\w)(?:{inside})(?!\w)")


def text_faults(root, guide):
    words = plain(guide)
    used, faults = set(), []
    for find in (source_texts, table_texts, setup_texts):
        count = 0
        for place, text, known_by in find(root):
            count += 1
            excepted = next((name for name in (known_by, text) if name in EXCEPTIONS), None)
            if excepted:
                used.add(excepted)
                continue
            faults += [
                f"{place}: the guide does not have '{piece.replace(PUT_IN, '...')}'"
                for piece in pieces_of(text)
                if not pattern_of(piece).search(words)
            ]
        if not count:
            faults.append(f"{find.__name__}: there are no texts any more where they are looked for")
    return faults + [f"check_guide.py: the exception {name} is none" for name in EXCEPTIONS if name not in used]


def section(guide, heading):
    """The text below a heading up to the next one."""
    found = re.search(rf"^#+ {re.escape(heading)}\n(.*?)(?=^#|\Z)", guide, re.MULTILINE | re.DOTALL)
    return found[1] if found else ""


def first_cells(text):
    """The first column of the tables in a text, without marks."""
    return [row.strip("| ").split("|")[0].strip(" `") for row in text.splitlines() if row.startswith("|")]


def switch_faults(root, guide):
    name = "src/host/command_line.cpp"
    switches = re.findall(r'\{L"([^"]+)",', (root / name).read_text())
    rows = first_cells(section(guide, "All switches"))
    faults = [] if switches else [f"{name}: there are no switches any more where they are looked for"]
    for switch in switches:
        told = switch.replace("=", ":")
        if not any(row in (told, "/" + told) or row.startswith(f"/{told.rstrip(':')}:") for row in rows):
            faults.append(f"{name}: the guide's table has no switch {switch}")
    return faults


def exit_code_faults(root, guide):
    codes = {}
    for path in sources_of(root):
        for body in re.findall(r"enum (?:class )?\w*ExitCode\w*[^{;]*\{(.*?)\}", path.read_text(), re.DOTALL):
            number = -1
            for line in re.sub(r"//[^\n]*", "", body).split(","):
                if found := re.match(r"\s*(\w+)\s*(?:=\s*(\d+))?\s*$", line):
                    number = int(found[2]) if found[2] else number + 1
                    codes[found[1]] = number
    rows = first_cells(section(guide, "Exit codes"))
    faults = [] if codes else ["there are no exit codes any more where they are looked for"]
    return faults + [
        f"the guide's table has no exit code {number} ({name})"
        for name, number in codes.items()
        if str(number) not in rows
    ]


def anchors_of(text):
    """The names that headings are linked by."""
    headings = re.findall(r"^#+ (.+)$", text, re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def link_faults(path, guide):
    faults, targets = [], re.findall(r"\]\(([^)\s]+)\)", guide)
    for target in targets:
        if re.match(r"\w+://", target):
            continue
        file, _, anchor = target.partition("#")
        other = path.parent / file if file else path
        if not other.is_file():
            faults.append(f"{path.name}: there is no {file}")
        elif anchor and anchor not in anchors_of(other.read_text()):
            faults.append(f"{path.name}: there is no heading for {target}")
    chapters = anchors_of("\n".join(re.findall(r"^## .+$", guide, re.MULTILINE)))
    return faults + [f"{path.name}: the list of chapters has no {c}" for c in chapters if f"#{c}" not in targets]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("root", type=pathlib.Path, metavar="ROOT")
    parser.add_argument("--texts", action="store_true")
    given = parser.parse_args()
    root = given.root.resolve()
    if given.texts:
        for find in (source_texts, table_texts, setup_texts):
            for place, text, known_by in find(root):
                print(f"{place}: {known_by if known_by in EXCEPTIONS else ''} {text!r}")
        return 0
    path = root / "docs" / "guide.md"
    guide = path.read_text()
    faults = text_faults(root, guide) + switch_faults(root, guide)
    faults += exit_code_faults(root, guide) + link_faults(path, guide)
    print("\n".join([*faults, f"{len(faults)} faults"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
