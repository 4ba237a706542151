#!/usr/bin/env python3
"""Uses the SDK as an engineer does: python3 tests/library/check_sdk.py BUILD [--all]

Installs what is built in BUILD into a folder with blanks and a letter beyond ASCII in its name, and looks
there, after it was moved: is all there; does each header compile alone, and all in both orders, with mixes
of the macros that users set, for g++ and clang; are classes as large for the user as in the library; does a
program outside of the tree find the package, compile, and run; are two packages of it the same bytes.
--all compiles with every mix, in both orders and alone by both compilers, which takes minutes. Prints one
line per check and "N passed, N failed"; ends with 1 if any failed.
"""

import concurrent.futures
import hashlib
import itertools
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import zipfile

sys.dont_write_bytecode = True

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path += [str(ROOT / "tests" / "image"), str(ROOT / "tests" / "structure")]
from check_image import Report  # noqa: E402
from check_tidy import platform_flags  # noqa: E402

JOBS = 2
PREFIX = "x86_64-w64-mingw32"
# Strict C++20, though users may allow more.
COMPILE = ["-std=c++20", "-Wall", "-Wextra", "-Wpedantic", "-Werror"]
# What a user may set or not; the last is the oldest Windows for which the library itself is compiled.
MACROS = ("UNICODE", "NOMINMAX", "WIN32_LEAN_AND_MEAN", "_WIN32_WINNT=0x0502")
# With this the platform's headers give least: what a header lacks is seen.
LEAST = ("UNICODE", "NOMINMAX", "WIN32_LEAN_AND_MEAN")
# As the library is compiled (cmake/flags.cmake).
BUILT = (*MACROS, "WINVER=0x0502", "_WIN32_IE=0x0603", "NTDDI_VERSION=0x05020000", "STRICT")
OUTER = re.compile(r"^#include <(.+?)>", re.MULTILINE)
INCLUDE = re.compile(r'^#include "(.+?)"', re.MULTILINE)
TEMPLATE = re.compile(r"^template <.*\n.*", re.MULTILINE)
CLASS = re.compile(r"^(?:class|struct)(?: TESSALY_API)? (\w+)(?: final)?(?: :[^;]*?)? \{", re.MULTILINE)


def run(call, **options):
    """Whether it ended with 0, and what it wrote."""
    done = subprocess.run([str(word) for word in call], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, errors="replace", **options)
    return done.returncode == 0, done.stdout


def closure(name):
    """The header and those that it includes, directly or not."""
    found, left = set(), [name]
    while left:
        name = left.pop()
        if name not in found:
            found.add(name)
            left += INCLUDE.findall((ROOT / "src" / name).read_text())
    return found


def macro_sets(every):
    """Every mix of the first three, with and without the last; or half of those mixes, in which each two of
    the three meet in all four ways, every second with the last."""
    number = 0
    for chosen in itertools.product((False, True), repeat=3):
        if every or sum(chosen) % 2 == 0:
            number += 1
            for old in (False, True) if every else (number % 2 == 0,):
                yield tuple(macro for macro, wanted in zip(MACROS, (*chosen, old)) if wanted)


def includes(names):
    return "".join(f"#include <{name}>\n" for name in names)


class Headers:
    """Compiles the headers of an SDK, from nothing but its own folder."""

    def __init__(self, folder, scratch, report):
        self.folder, self.scratch, self.report = folder, scratch, report
        self.names = sorted(closure("tessaly.h"))
        self.orders = {"forward": includes(self.names), "in reverse": includes(reversed(self.names))}
        # mingw-w64 has the platform's min and max for C alone, other headers bring them to C++ as well.
        texts = [(folder / name).read_text() for name in self.names]
        self.minmax = includes(["windows.h", *sorted({name for text in texts for name in OUTER.findall(text)})])
        self.minmax += "#define min(a, b) (((a) < (b)) ? (a) : (b))\n#define max(a, b) (((a) > (b)) ? (a) : (b))\n"
        self.compilers = {"g++": [f"{PREFIX}-g++-posix"], "clang": ["clang++", *platform_flags()]}

    def digest(self):
        """Of everything that the results depend on."""
        digest = hashlib.sha256(pathlib.Path(__file__).read_bytes())
        for compiler in self.compilers.values():
            digest.update(run([compiler[0], "--version"])[1].encode())
        for name in self.names:
            digest.update(name.encode() + (self.folder / name).read_bytes())
        return digest.hexdigest()

    def compile(self, compiler, macros, text, *more):
        flags = [*COMPILE, "-I", self.folder, *(f"-D{macro}" for macro in macros), *more]
        return run([*self.compilers[compiler], *flags, "-x", "c++", "-"], input=text)

    def compile_many(self, jobs):
        """Each job: what it is, and what compile wants."""
        with concurrent.futures.ThreadPoolExecutor(JOBS) as pool:
            for job, (passed, told) in zip(jobs, pool.map(lambda job: self.compile(*job[1:]), jobs)):
                self.report.check(f"{job[0]}, {job[1]}, {' '.join(job[2]) or 'no macro'}", passed, told)

    def check_orders(self, every):
        """All in one source. Quickly: by clang, every second set of macros the other way round."""
        jobs = []
        for number, macros in enumerate(macro_sets(every)):
            for order in self.orders if every else list(self.orders)[number % 2 :][:1]:
                text = ("" if "NOMINMAX" in macros else self.minmax) + self.orders[order]
                for compiler in self.compilers if every else ("clang",):
                    jobs.append((f"all headers {order}", compiler, macros, text, "-fsyntax-only"))
        self.compile_many(jobs)

    def check_alone(self, every):
        """Quickly: by clang, and who includes the platform's header, directly or not, gets it as it was read
        once, as most of the time goes into it. (What uses it before it is there fails where it is alone.)"""
        kinds = itertools.product(self.compilers, ((), LEAST)) if every else [("clang", LEAST)]
        ready = self.scratch / "platform.pch"
        if not every:
            call = [*self.compilers["clang"], *COMPILE, *(f"-D{macro}" for macro in LEAST)]
            passed, told = run([*call, "-x", "c++-header", "-", "-o", ready], input="#include <windows.h>\n")
            self.report.check("the platform's header is read", passed, told)

        def given(name):
            used = "".join((self.folder / other).read_text() for other in closure(name))
            return () if every or "#include <windows.h>" not in used else ("-include-pch", ready)

        self.compile_many([(f"{name} alone", compiler, macros, includes([name]), "-fsyntax-only", *given(name))
                           for compiler, macros in kinds for name in self.names])

    def check_sizes(self):
        """For a user with the compiler's own settings, and as the library is compiled; g++'s opinion on all."""
        texts = [TEMPLATE.sub("", (self.folder / name).read_text()) for name in self.names]
        classes = sorted({name for text in texts for name in CLASS.findall(text)})
        table = "extern const unsigned long long sizes[];\nconst unsigned long long sizes[] = {"
        table += ", ".join(f"sizeof({name})" for name in classes) + "};\n"
        sizes = []
        for macros, text in zip(((), BUILT), self.orders.values()):
            passed, told = self.compile("g++", macros, text + table, "-S", "-o", "-")
            what = f"all headers and their classes' sizes, g++, {' '.join(macros) or 'no macro'}"
            self.report.check(what, passed, told)
            written = re.search(r"^sizes:\n((?:\s*\.quad\s+\d+\n)+)", told, re.MULTILINE)
            sizes.append(re.findall(r"\d+", written[1]) if written else [])
        self.report.check("the sizes of many classes are known", len(sizes[0]) == len(classes) > 50, len(classes))
        wrong = [name for name, *both in zip(classes, *sizes) if both[0] != both[1]]
        self.report.check("classes are as large for users as in the library", not wrong, " ".join(wrong))

    def check(self, build, every):
        """What was found right is noted in the build, and not looked at again before something changes."""
        clean, digest = build / "sdk_headers.clean", self.digest()
        if not every and clean.exists() and clean.read_text() == digest:
            self.report.check(f"{len(self.names)} headers, unchanged since they were found right", True)
            return
        failed = self.report.failed
        self.check_sizes()
        self.check_orders(every)
        self.check_alone(every)
        if self.report.failed == failed:
            clean.write_text(digest)


def install(build, sdk, report):
    first = sdk.with_name("elsewhere")
    passed, told = run(["cmake", "--install", build, "--prefix", first])
    report.check("cmake --install", passed, told)
    first.rename(sdk)  # whatever names another place is not found any more
    there = {path.relative_to(sdk).as_posix() for path in sdk.rglob("*") if path.is_file()}
    package = "lib/cmake/Tessaly"
    wanted = {"bin/TSDLL64.dll", "bin/TSEXE64.exe", "lib/libTSDLL64.dll.a", f"{package}/TessalyConfig.cmake",
              f"{package}/TessalyConfigVersion.cmake", f"{package}/TessalyTargets.cmake",
              f"{package}/TessalyTargets-release.cmake"}
    wanted |= {f"include/tessaly/{name}" for name in closure("tessaly.h")}
    documents = ROOT / "docs"
    wanted |= {f"share/doc/Tessaly/{p.relative_to(documents).as_posix()}" for p in documents.rglob("*") if p.is_file()}
    report.check("the SDK holds what it should and nothing else", there == wanted, " ".join(sorted(there ^ wanted)))
    texts = [p for p in (sdk / "lib" / "cmake").rglob("*") if p.is_file()]
    named = [p.name for p in texts if str(ROOT) in p.read_text() or str(first) in p.read_text()]
    report.check("the package names no folder of the build", not named, " ".join(named))


def build_program(sdk, folder, report):
    """As docs/library.md tells, by the CMake lines that stand there."""
    folder.mkdir()
    page = (ROOT / "docs" / "library.md").read_text()
    (folder / "CMakeLists.txt").write_text(re.search(r"^```cmake\n(.*?)^```$", page, re.DOTALL | re.MULTILINE)[1])
    shutil.copyfile(ROOT / "tests" / "library" / "sdk_program.cpp", folder / "program.cpp")
    toolchain = ROOT / "cmake" / "mingw-w64-x86_64.cmake"
    call = ["cmake", "-G", "Ninja", "-S", folder, "-B", folder / "build", f"-DCMAKE_PREFIX_PATH={sdk}"]
    passed, told = run([*call, f"-DCMAKE_TOOLCHAIN_FILE={toolchain}", "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Wpedantic"])
    report.check("a program finds the package", passed, told)
    passed, told = run(["cmake", "--build", folder / "build"])
    report.check("a program compiles, without a warning", passed and "warning" not in told, told)
    passed, told = run([ROOT / "scripts" / "with_desktop.sh", "wine", folder / "build" / "program.exe"])
    report.check("a program runs", passed and "the program runs" in told, told)

    # Who compiles for another platform gets an answer instead of errors in headers.
    (folder / "CMakeLists.txt").write_text("cmake_minimum_required(VERSION 3.21)\nproject(Other LANGUAGES NONE)\n"
                                           "find_package(Tessaly REQUIRED)\n")
    passed, told = run(["cmake", "-S", folder, "-B", folder / "other", f"-DCMAKE_PREFIX_PATH={sdk}"])
    report.check("another compiler is refused", not passed and "compiler of mingw-w64" in told, told)


def pack(build, sdk, scratch, report):
    """Twice, under circumstances that could show."""
    contents = []
    for name, zone, mask in (("one", "UTC", 0o022), ("two", "Asia/Tokyo", 0o077)):
        environment = {**os.environ, "TZ": zone}
        passed, told = run([ROOT / "scripts" / "package_sdk", build, scratch / name], env=environment, umask=mask)
        made = list((scratch / name).glob("Tessaly-*-sdk.zip"))
        report.check(f"package {name} is made", passed and len(made) == 1, told)
        contents += [(path.name, path.read_bytes()) for path in made]
    if len(contents) != 2:
        return
    report.check("both packages are the same bytes", contents[0] == contents[1])
    with zipfile.ZipFile(made[0]) as archive:
        packed = {name: archive.read(name) for name in archive.namelist()}
    there = {f"{made[0].stem}/{p.relative_to(sdk).as_posix()}": p.read_bytes() for p in sdk.rglob("*") if p.is_file()}
    pages = {name for name in packed if name.startswith(f"{made[0].stem}/share/doc/Tessaly/reference/")}
    report.check("the package holds the reference", f"{made[0].stem}/share/doc/Tessaly/reference/index.html" in pages)
    rest = {name: data for name, data in packed.items() if name not in pages}
    report.check("the package holds what is installed, and no more", rest == there)


def main():
    every = sys.argv[2:] == ["--all"]
    if len(sys.argv) != 2 and not every:
        sys.exit("usage: check_sdk.py BUILD [--all]")
    build = pathlib.Path(sys.argv[1]).resolve()
    report = Report()
    with tempfile.TemporaryDirectory() as temporary:
        scratch = pathlib.Path(temporary)
        sdk = scratch / "sdk für alle"
        install(build, sdk, report)
        build_program(sdk, scratch / "program", report)
        Headers(sdk / "include" / "tessaly", scratch, report).check(build, every)
        pack(build, sdk, scratch, report)
    print(f"{report.passed} passed, {report.failed} failed")
    return 1 if report.failed else 0


if __name__ == "__main__":
    sys.exit(main())
