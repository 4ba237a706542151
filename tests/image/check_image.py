#!/usr/bin/env python3
"""Looks at the built images as files: python3 tests/image/check_image.py build/bin

Prints one line per check and "N passed, N failed"; ends with 1 if any failed. What the images may
import stands in xp64_exports.txt beside this file (list_exports.py makes it): all of it is there on
Windows XP x64.
"""

import pathlib
import re
import struct
import sys

sys.dont_write_bytecode = True

import list_exports  # noqa: E402

RT_ICON, RT_GROUP_ICON, RT_VERSION, RT_MANIFEST = 3, 14, 16, 24
SCN_EXECUTE, SCN_WRITE, SCN_READ, SCN_SHARED = 0x20000000, 0x80000000, 0x40000000, 0x10000000
DYNAMIC_BASE, NX_COMPAT, HIGH_ENTROPY_VA = 0x40, 0x100, 0x20
VERSION = (1, 1, 0, 2409)
ICON_ID = 101
# The library shows no larger picture than 64 pixels; the shell shows the program's in every size.
ICON_SIZES = {"TSDLL64.dll": [16, 20, 24, 32, 48, 64], "TSEXE64.exe": [16, 20, 24, 32, 48, 64, 128, 256]}
LIBRARY_LIMIT = 655_360 # 120,000 of them pictures of buttons
# What __stack_chk_fail begins with (src/runtime/base/stack_guard.cpp): mov ecx, 2; int 0x29; ud2.
STACK_CHECK_FAILS = bytes.fromhex("b902000000cd290f0b")
# Functions with buffers in their frames that an image has at least; half of what they were once.
GUARDED_FUNCTIONS = {"TSDLL64.dll": 150, "TSEXE64.exe": 3}
IMPORT_ADDRESSES = 12 # the directory of the addresses that the loader writes
SETTINGS_2016 = "http://schemas.microsoft.com/SMI/2016/WindowsSettings"
SUPPORTED_SYSTEMS = {
    "Vista": "e2011457-1546-43c5-a5fe-008deee3d3f0",
    "7": "35138b9a-5d96-4fbd-8e2d-a2440225f93a",
    "8": "4a2f28e3-53b9-4441-ba9c-d69d4a4a6e38",
    "8.1": "1f676c76-80e1-4239-95bb-83d0f6d0da78",
    "10 and 11": "8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a",
}


class Image:
    """A PE file for x86-64, read as far as the checks need it."""

    def __init__(self, path):
        self.data = path.read_bytes()
        pe = self.u32(0x3C)
        if self.data[pe : pe + 4] != b"PE\0\0":
            raise ValueError("no PE file")
        self.machine, count = struct.unpack_from("<HH", self.data, pe + 4)
        self.optional = pe + 24
        if self.u16(self.optional) != 0x20B:
            raise ValueError("no 64-bit image")
        self.os_version = struct.unpack_from("<HH", self.data, self.optional + 40)
        self.subsystem_version = struct.unpack_from("<HH", self.data, self.optional + 48)
        self.subsystem = self.u16(self.optional + 68)
        self.characteristics = self.u16(self.optional + 70)
        table = self.optional + self.u16(pe + 20)
        self.sections = []
        for i in range(count):
            raw = self.data[table + i * 40 : table + i * 40 + 40]
            name = raw[:8].rstrip(b"\0").decode("ascii", "replace")
            size, rva, raw_size, raw_at = struct.unpack_from("<IIII", raw, 8)
            self.sections.append((name, rva, max(size, raw_size), raw_at, struct.unpack_from("<I", raw, 36)[0]))

    def u16(self, at):
        return struct.unpack_from("<H", self.data, at)[0]

    def u32(self, at):
        return struct.unpack_from("<I", self.data, at)[0]

    def directory(self, index):
        return struct.unpack_from("<II", self.data, self.optional + 112 + index * 8)

    def offset(self, rva):
        for _, start, size, raw_at, _ in self.sections:
            if start <= rva < start + size:
                return rva - start + raw_at
        raise ValueError(f"address {rva:#x} lies in no section")

    def section_at(self, rva):
        """(name, address, bytes, characteristics) of the section in which the address lies."""
        for name, start, size, raw_at, flags in self.sections:
            if start <= rva < start + size:
                return name, start, self.data[raw_at : raw_at + size], flags
        raise ValueError(f"address {rva:#x} lies in no section")

    def section(self, name):
        """The same of the section of that name."""
        return self.section_at(next((s[1] for s in self.sections if s[0] == name), 0))

    def base(self):
        return struct.unpack_from("<Q", self.data, self.optional + 24)[0]

    def text(self, rva):
        at = self.offset(rva)
        return self.data[at : self.data.index(b"\0", at)].decode("ascii")

    def imports(self):
        """(module in lower case, function) of each import; an ordinal is "#n"."""
        rva, _ = self.directory(1)
        if not rva:
            return
        at = self.offset(rva)
        while self.u32(at + 12):
            module = self.text(self.u32(at + 12)).lower()
            thunk = self.offset(self.u32(at) or self.u32(at + 16))
            while value := struct.unpack_from("<Q", self.data, thunk)[0]:
                yield module, f"#{value & 0xFFFF}" if value >> 63 else self.text(value + 2)
                thunk += 8
            at += 20

    def exports(self):
        rva, _ = self.directory(0)
        if not rva:
            return []
        at = self.offset(rva)
        names = self.offset(self.u32(at + 32)) if self.u32(at + 24) else 0
        return [self.text(self.u32(names + i * 4)) for i in range(self.u32(at + 24))]

    def resources(self, kind):
        """{id: bytes of the first language} of the resources of that kind."""
        rva, _ = self.directory(2)
        if not rva:
            return {}
        root = self.offset(rva)

        def entries(at):
            named, by_id = struct.unpack_from("<HH", self.data, at + 12)
            for i in range(named + by_id):
                name, where = struct.unpack_from("<II", self.data, at + 16 + i * 8)
                yield name, root + (where & 0x7FFFFFFF)

        found = {}
        for type_id, types in entries(root):
            if type_id != kind:
                continue
            for name, languages in entries(types):
                leaf = next(where for _, where in entries(languages))
                start = self.offset(self.u32(leaf))
                found[name] = self.data[start : start + self.u32(leaf + 4)]
        return found


class Report:
    passed = failed = 0

    def check(self, what, good, detail=""):
        if good:
            self.passed += 1
        else:
            self.failed += 1
        tail = f": {detail}" if detail and not good else ""
        print(f"{'pass' if good else 'FAIL'}  {what}{tail}")


def check_header(report, name, image):
    report.check(f"{name} is for x86-64", image.machine == 0x8664)
    report.check(f"{name} asks for subsystem version 5.2", image.subsystem_version == (5, 2),
                 str(image.subsystem_version))
    report.check(f"{name} asks for system version 5.2", image.os_version == (5, 2), str(image.os_version))
    for flag, what in ((DYNAMIC_BASE, "may be moved (ASLR)"), (NX_COMPAT, "runs with NX"),
                       (HIGH_ENTROPY_VA, "may be moved to high addresses")):
        report.check(f"{name} {what}", image.characteristics & flag)
    report.check(f"{name} has its relocations", image.directory(5)[1] > 0)
    both = [s[0] for s in image.sections if s[4] & SCN_EXECUTE and s[4] & SCN_WRITE]
    report.check(f"{name} has no section to write and execute", not both, " ".join(both))


def check_imports(report, name, image, exports):
    imports = list(image.imports())
    report.check(f"{name} has imports that can be read", imports)
    foreign = [" ".join(one) for one in imports if one not in exports]
    report.check(f"{name} imports only what Windows XP x64 has", not foreign, "; ".join(foreign))


def check_read_only(report, name, image, directories):
    """What only the loader writes can be read alone once it has."""
    for what, section in [("functions for start and end", image.section(".CRT"))] + [
        (what, image.section_at(image.directory(index)[0])) for index, what in directories
    ]:
        report.check(f"{name} cannot write its {what}", not section[3] & SCN_WRITE, section[0])


def find_relative(code, address, pattern):
    """(where the instruction begins, what it means) of each that matches the pattern, which ends before
    the four bytes of a distance, counted from the instruction's end."""
    # (A look-ahead: a match may begin inside of one that is none.)
    for match in re.finditer(rb"(?=(" + pattern + rb")(.{4}))", code, re.DOTALL):
        end = address + match.end(2)
        yield address + match.start(), end + struct.unpack("<i", match[2])[0]


def check_stack_guard(report, name, image):
    """Functions compare the guard and call our handler, and one that runs at the start sets the guard."""
    _, at, code, _ = image.section(".text")
    handler = code.find(STACK_CHECK_FAILS)
    calls = [to for _, to in find_relative(code, at, rb"\xe8") if handler >= 0 and to == at + handler]
    least = GUARDED_FUNCTIONS[name]
    report.check(f"{name} has {least} functions or more with a stack guard", len(calls) >= least, str(len(calls)))

    _, _, starts, _ = image.section(".CRT")
    base, guards = image.base(), {}
    for (start,) in struct.iter_unpack("<Q", starts[: len(starts) // 8 * 8]):
        if not at <= start - base < at + len(code):
            continue
        body = code[start - base - at :].split(b"\xc3\x90", 1)[0] # up to its return and the gap
        counter = b"\x0f\x31" in body # rdtsc
        for _, word in find_relative(body, start - base, rb"\x48\x89\x05"): # mov [word], rax
            guards[word] = counter
    # The other sources reach the guard through its address, which lies in a word of its own.
    constants = image.section(".rdata")
    loads = {}
    for _, slot in find_relative(code, at, rb"[\x48\x4c]\x8b[\x05\x0d\x15\x1d\x25\x2d\x35\x3d]"):
        inside = slot - constants[1]
        if 0 <= inside <= len(constants[2]) - 8:
            word = struct.unpack_from("<Q", constants[2], inside)[0] - base
            loads[word] = loads.get(word, 0) + 1
    used = max((loads.get(word, 0) for word, counter in guards.items() if counter), default=0)
    report.check(f"{name} sets at its start the guard that they compare", used >= least, str(used))


def check_version(report, name, image):
    data = image.resources(RT_VERSION).get(1, b"")
    at = data.find(struct.pack("<I", 0xFEEF04BD))
    report.check(f"{name} has a version", at >= 0)
    if at < 0:
        return
    ms, ls, product_ms, product_ls = struct.unpack_from("<IIII", data, at + 8)
    for what, high, low in (("file", ms, ls), ("product", product_ms, product_ls)):
        numbers = (high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF)
        report.check(f"{name} has {what} version 1.1.0.2409", numbers == VERSION, str(numbers))
    text = data.decode("utf-16-le", "replace")
    for word in ("Orvanta", "Tessaly", "1.1.0.2409", name):
        report.check(f"{name}'s version names {word}", word + "\0" in text)


def check_icon(report, name, image):
    group = image.resources(RT_GROUP_ICON).get(ICON_ID)
    report.check(f"{name} has icon {ICON_ID}", group)
    if not group:
        return
    parts = image.resources(RT_ICON)
    sizes = []
    for i in range(struct.unpack_from("<H", group, 4)[0]):
        width, height, _, _, _, bits, _, part = struct.unpack_from("<BBBBHHIH", group, 6 + i * 14)
        sizes.append(width or 256)
        good = width == height and bits == 32 and part in parts
        is_png = parts.get(part, b"")[:8] == b"\x89PNG\r\n\x1a\n"
        # XP reads no PNG inside an icon; of 256 pixels it asks for none.
        report.check(f"{name}'s icon of {width or 256} pixels is whole", good and is_png == (width == 0))
    report.check(f"{name}'s icon has all sizes", sorted(sizes) == ICON_SIZES[name], str(sizes))


def check_hook(report, image):
    """What SetWindowsHookEx gets (in rdx) is the first code of the library: agent.h says why."""
    _, at, code, _ = image.section(".text")
    first = struct.pack("<Q", image.base() + at)
    pointers = [image.offset(to) for _, to in find_relative(code, at, rb"\x48\x8b\x15")]  # mov rdx, [...]
    taken = any(image.data[where : where + len(first)] == first for where in pointers)
    report.check("TSDLL64.dll begins with the procedure of its hook", taken)


def check_library(report, image):
    check_hook(report, image)
    check_read_only(report, "TSDLL64.dll", image, [(IMPORT_ADDRESSES, "imports' addresses")])
    report.check(f"TSDLL64.dll has at most {LIBRARY_LIMIT:,} bytes", len(image.data) <= LIBRARY_LIMIT,
                 f"{len(image.data):,}")
    exports = image.exports()
    for function in ("DoMonitor", "CalcMD5", "SHA1_Init", "SHA1_Update", "SHA1_Final", "SHA1_Calc"):
        report.check(f"TSDLL64.dll exports {function} under its plain name", function in exports)
    shared = [s for s in image.sections if s[4] & SCN_SHARED]
    names = sorted(s[0] for s in shared)
    report.check("TSDLL64.dll shares only .SDATA and ve_share", names == [".SDATA", "ve_share"], str(names))
    for name in (".SDATA", "ve_share"):
        report.check(f"TSDLL64.dll's {name} is there to read and write",
                     any(s[0] == name and s[4] & SCN_READ and s[4] & SCN_WRITE for s in shared))


def check_program(report, image):
    # Its delayed imports are written when they are first called, and lie beside the others.
    check_read_only(report, "TSEXE64.exe", image, [])
    report.check("TSEXE64.exe is a window program", image.subsystem == 2, str(image.subsystem))
    shared = [s[0] for s in image.sections if s[4] & SCN_SHARED]
    report.check("TSEXE64.exe shares no section", not shared, str(shared))
    modules = {module for module, _ in image.imports()}
    report.check("TSEXE64.exe starts without the library", "tsdll64.dll" not in modules)
    # Each of the library's functions that the program calls stands once among the delayed imports and
    # once in the list by which it recognises the library: a call without the other ends it.
    names = re.findall(rb"(?<![\w.])_Z\w+(?=\0)", image.data)
    odd = sorted({name.decode() for name in names if names.count(name) != 2})
    report.check("TSEXE64.exe looks for every function that it calls", names and not odd, str(odd))
    manifest = image.resources(RT_MANIFEST).get(1, b"").decode("utf-8", "replace")
    report.check("TSEXE64.exe has a manifest", manifest)
    for what, text in (
        ("runs as its starter", 'level="asInvoker"'),
        ("touches no other program's windows", 'uiAccess="false"'),
        ("has common controls 6", 'name="Microsoft.Windows.Common-Controls" version="6.0.0.0"'),
        ("is DPI aware", ">true</dpiAware>"),
        # Its boxes have one scale for their life (docs/architecture.md).
        ("has one scale for all screens from Windows 10 on", f'xmlns="{SETTINGS_2016}">system</dpiAwareness>'),
        ("takes long paths", f'xmlns="{SETTINGS_2016}">true</longPathAware>'),
    ):
        report.check(f"TSEXE64.exe {what}", text in manifest)
    for system, guid in SUPPORTED_SYSTEMS.items():
        report.check(f"TSEXE64.exe supports Windows {system}", f'<supportedOS Id="{{{guid}}}"/>' in manifest)


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: check_image.py FOLDER")
    folder = pathlib.Path(sys.argv[1])
    exports = list_exports.read_list()
    report = Report()
    for name, check_own in (("TSDLL64.dll", check_library), ("TSEXE64.exe", check_program)):
        try:
            image = Image(folder / name)
            check_header(report, name, image)
            check_imports(report, name, image, exports)
            check_stack_guard(report, name, image)
            check_version(report, name, image)
            check_icon(report, name, image)
            check_own(report, image)
        except (OSError, ValueError, IndexError, struct.error) as problem:
            report.check(f"{name} can be read", False, str(problem))
    print(f"{report.passed} passed, {report.failed} failed")
    return 1 if report.failed else 0


if __name__ == "__main__":
    sys.exit(main())
