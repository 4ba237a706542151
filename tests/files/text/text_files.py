#!/usr/bin/env python3
"""Text files as another decoder sees them, for the tests of CSFile's texts.

    text_files.py make FOLDER CODEPAGE    makes 100 random files of each format, named FORMAT_N with
                                          the format's number, and beside each FORMAT_N.text, the
                                          text that it shall be read as, in UTF-16 without a mark
    text_files.py check FOLDER CODEPAGE   reads the files of such names, and compares them with the
                                          texts beside them

When it is done it writes what is wrong, or nothing, to FOLDER/result.
"""

import os
import pathlib
import random
import re
import sys
import traceback

ANSI, UTF16, UTF16_BE, UTF8, UTF8_LF, ANSI_LF, BINARY = range(1, 8)
PROBE_SIZE = 8192
FILES_OF_EACH = 100
KEPT = {9, 10, 12, 13, 26}
CONTROLS = [n for n in (*range(32), 127) if n not in KEPT]
CODECS = {UTF16: "utf-16", UTF16_BE: "utf-16", UTF8: "utf-8-sig", UTF8_LF: "utf-8-sig"}


def ansi_table(code_page):
    """What each byte is; those that the page leaves free are the control characters."""
    table = []
    for n in range(256):
        try:
            table.append(bytes([n]).decode(f"cp{code_page}"))
        except UnicodeDecodeError:
            table.append(chr(n))
    return table


def without_controls(text):
    return "".join("?" if ord(c) in CONTROLS else c for c in text)


def raw(text):
    return text.encode("utf-16-le", "surrogatepass")


def random_text(rng, alphabet, ends):
    lines = rng.choice((1, 3, 10, 40, 400))
    return "".join("".join(rng.choices(alphabet, k=rng.randrange(60))) + rng.choice(ends)
                   for _ in range(lines))


def wide_alphabet(rng):
    planes = ((0x20, 0x7E), (0xA1, 0x24F), (0x370, 0x3FF), (0x4E00, 0x9FFF), (0x1F300, 0x1F5FF),
              (0x20000, 0x2A6DF), (0xE000, 0xF8FF))
    return [chr(rng.randint(*rng.choice(planes))) for _ in range(80)] + list("abc \t")


def narrow_bytes(rng, ends):
    """Lines of printable bytes."""
    alphabet = [bytes([n]) for n in (*range(32, 127), *range(128, 256), 9, 12, 26)]
    if rng.randrange(2):
        alphabet = alphabet[:95]
    lines = rng.choice((1, 3, 10, 40, 400))
    return b"".join(b"".join(rng.choices(alphabet, k=rng.randrange(60))) + rng.choice(ends)
                    for _ in range(lines))


def has_mark(data):
    return data[:2] in (b"\xff\xfe", b"\xfe\xff") or data[:3] == b"\xef\xbb\xbf"


def last_line_feed(block):
    """The bytes that end the last line of a block; a line feed at its start is none."""
    n = block.rfind(b"\n")
    return b"" if n < 1 else b"\r\n" if block[n - 1:n] == b"\r" else b"\n"


def make_wide(rng, kind):
    text = random_text(rng, wide_alphabet(rng), ("\r\n", "\n", "\r", "\0", ""))
    codec = "utf-16-le" if kind == UTF16 else "utf-16-be"
    odd = b"x" if rng.randrange(3) == 0 else b""
    return ("\ufeff" + text).encode(codec) + odd, text


def make_utf8(rng, kind):
    alphabet = wide_alphabet(rng) + (["\1", "\x7f", "\0"] if rng.randrange(3) == 0 else [])
    if kind == UTF8:
        text = random_text(rng, alphabet, ("\r\n", "\r", ""))
        if len(text.encode()) > PROBE_SIZE:
            text += "behind the block\n"
    else:
        text = rng.choice(("\n", "a\n", "\r\n\n")) + random_text(rng, alphabet, ("\r\n", "\n"))
    shown = without_controls(text)
    if kind == UTF8_LF:
        shown = re.sub("(?<!\r)\n", "\r\n", shown)
    return text.encode("utf-8-sig"), shown


def make_narrow(rng, kind, table):
    while True:
        if kind == ANSI:
            data = narrow_bytes(rng, (b"\r\n",) if rng.randrange(2) else (b"\r\n", b"\n", b"\r", b""))
        elif kind == ANSI_LF:
            data = narrow_bytes(rng, (b"\n",) if rng.randrange(2) else (b"\r\n", b"\n"))
        else:
            data = bytearray(narrow_bytes(rng, (b"\r\n", b"\n")))
            if not data:
                continue
            for _ in range(rng.randrange(1, 20)):
                data[rng.randrange(min(len(data), PROBE_SIZE))] = rng.choice(CONTROLS)
            data = bytes(data)
        wanted = {ANSI: (b"", b"\r\n"), ANSI_LF: (b"\n",), BINARY: (b"", b"\n", b"\r\n")}[kind]
        if len(data) < 2 or has_mark(data) or last_line_feed(data[:PROBE_SIZE]) not in wanted:
            continue
        if kind == BINARY and not any(b in CONTROLS for b in data[:PROBE_SIZE]):
            continue
        break
    if kind != ANSI_LF:
        return data, without_controls("".join(table[b] for b in data))
    # Bytes are taken with their sign, and no line feed at the start is completed.
    text = "".join(chr(b if b < 128 else 0xFF00 | b) for b in data)
    return data, text[:1] + re.sub("(?<!\r)\n", "\r\n", text[1:]) if text[:1] != "\r" else \
        re.sub("(?<!\r)\n", "\r\n", text)


def make(folder, table):
    rng = random.Random(83)
    for kind in range(ANSI, BINARY + 1):
        for n in range(FILES_OF_EACH):
            if kind in (UTF16, UTF16_BE):
                data, text = make_wide(rng, kind)
            elif kind in (UTF8, UTF8_LF):
                data, text = make_utf8(rng, kind)
            else:
                data, text = make_narrow(rng, kind, table)
            (folder / f"{kind}_{n}").write_bytes(data)
            (folder / f"{kind}_{n}.text").write_bytes(raw(text))
    return []


def check(folder, table):
    faults = []
    files = 0
    for path in sorted(folder.glob("?_*.text")):
        kind = int(path.name[0])
        data = path.with_suffix("").read_bytes()
        expected = path.read_bytes().decode("utf-16-le", "surrogatepass")
        if kind in (UTF8_LF, ANSI_LF):
            expected = expected.replace("\r\n", "\n")
        if kind in CODECS:
            marks = {UTF16: b"\xff\xfe", UTF16_BE: b"\xfe\xff"}
            if not data.startswith(marks.get(kind, b"\xef\xbb\xbf")):
                faults.append(f"{path.stem} has no mark")
            text = data.decode(CODECS[kind])
        else:
            text = "".join(table[b] for b in data)
        if text != expected:
            faults.append(f"{path.stem} is another text")
        files += 1
    if files != 6 * FILES_OF_EACH:
        faults.append(f"{files} files")
    return faults


def main():
    folder = pathlib.Path(sys.argv[2])
    try:
        do = {"make": make, "check": check}[sys.argv[1]]
        faults = do(folder, ansi_table(sys.argv[3]))
    except Exception:
        faults = [traceback.format_exc()]
    (folder / "result.new").write_text("\n".join(faults[:20]))
    os.replace(folder / "result.new", folder / "result") # whole from the start


if __name__ == "__main__":
    main()
