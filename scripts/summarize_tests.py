#!/usr/bin/env python3
"""Sums up a folder of test logs: summarize_tests.py LOGS

NAME.code holds a program's exit code and NAME.log its output. If NAME.gtest exists, the output is
GoogleTest's, and Python's unittest's, told of each test, if NAME.unittest does; any other program counts
as one test. A NAME with "@WINDOWS" in it is a program that ran on another Windows: its tests are told
with that. left-over.log names processes that outlived the run. Exits with 0 only if a test passed and
none failed.

GoogleTest's own reports are not used: making one takes a program with checked heaps as long as its
tests, and a program that is ended has none.
"""
import pathlib
import re
import sys

TAIL_LINES = 40
TIMEOUT_CODES = (124, 137)
# Wine's words for an exception that nobody handled; the exit code alone does not always tell.
HEAP = re.compile(r"^.*err:heap:.*$", re.MULTILINE)
CRASH = re.compile(r"Unhandled (exception|page fault)|^wine: Unhandled", re.MULTILINE)
# GoogleTest's lines. What a program writes without a line end may stand before them.
BEGIN = re.compile(r"\[ RUN      \] (\S+)$")
END = re.compile(r"\[  (     OK|FAILED |SKIPPED) \] (\S+?)(, where .*)? \(\d+ ms\)$")
WINDOWS = re.compile(r"@(\w+)")
COUNT = re.compile(r"^\[==========\] Running (\d+) tests? from ", re.MULTILINE)
# unittest's. After the run it tells of each fault with its text; that of a subtest is the test's, and one
# of a whole class stands there under another name. A test's description is in a line of its own.
UNIT_FAULT = re.compile(r"^={70}\n(?:FAIL|ERROR): (\w+).*\n", re.MULTILINE)
UNIT_SKIPPED = re.compile(r"^(test\w*) \(.*\)(?:\n.*)? \.\.\. skipped (['\"])(.*)\2$", re.MULTILINE)
UNIT_COUNT = re.compile(r"^Ran (\d+) tests? in ", re.MULTILINE)


class Summary:
    def __init__(self):
        self.passed = 0
        self.failed = []  # (name, text)
        self.skipped = []  # (name, reason)

    def add_program(self, logs, name):
        code = int((logs / f"{name}.code").read_text())
        output = (logs / f"{name}.log").read_text(errors="replace")
        failed_before = len(self.failed)
        if (logs / f"{name}.gtest").exists():
            windows = WINDOWS.search(name)
            missing = self.add_tests(output, f" on {windows[1]}" if windows else "")
        elif (logs / f"{name}.unittest").exists():
            missing = self.add_unit_tests(name, output)
        else:
            missing = None
            self.passed += code == 0
        explained = len(self.failed) > failed_before
        if reason := self.ending(code, output, explained) or missing:
            tail = "\n".join(output.splitlines()[-TAIL_LINES:])
            self.failed.append((f"{name} ({reason})", tail))

    @staticmethod
    def ending(code, output, explained):
        """What is wrong with how the program ended; nothing if the failed tests explain it."""
        if code in TIMEOUT_CODES:
            return "took too long"
        if CRASH.search(output):
            return "crashed"
        if found := HEAP.search(output):
            return f"heap damaged: {found.group().strip()}"
        if code != 0 and not explained:
            return f"exit code {code}"
        return None

    def add_tests(self, output, where):
        """What is missing of the results; nothing if each test that was to run has one."""
        ended, text = 0, []
        for line in output.splitlines():
            if BEGIN.search(line):
                text = []
            elif not (end := END.search(line)):
                text.append(line)
            else:
                ended += 1
                self.add_test(end[1].strip(), end[2] + where, text)
        expected = COUNT.search(output)
        if not expected:
            return "no results"
        missing = int(expected[1]) - ended
        return f"{missing} tests without a result" if missing else None

    def add_unit_tests(self, program, output):
        """What is missing of the results; nothing if the run was told to its end."""
        count = UNIT_COUNT.search(output)
        if not count:
            return "no results"
        skipped = UNIT_SKIPPED.findall(output)
        self.skipped += [(f"{program}.{name}", reason) for name, _, reason in skipped]
        _, *faults = UNIT_FAULT.split(output[: count.start()])
        failed = {}
        for name, text in zip(faults[::2], faults[1::2]):
            failed[name] = failed.get(name, "") + text
        self.failed += [(f"{program}.{name}", text) for name, text in failed.items()]
        self.passed += int(count[1]) - len(skipped) - sum(name.startswith("test") for name in failed)
        return None

    def add_test(self, result, name, text):
        if result == "FAILED":
            self.failed.append((name, "\n".join(text)))
        elif result == "SKIPPED":
            self.skipped.append((name, " ".join("\n".join(text).partition("Skipped")[2].split())))
        else:
            self.passed += 1

    def print(self):
        for name, reason in sorted(self.skipped):
            print(f"SKIPPED {name}: {reason or 'no reason given'}")
        for name, text in self.failed:
            print(f"FAILED {name}")
            print("\n".join("    " + line for line in text.splitlines()))
        print(f"{self.passed} passed, {len(self.failed)} failed, {len(self.skipped)} skipped")


def main():
    logs = pathlib.Path(sys.argv[1])
    summary = Summary()
    for path in sorted(logs.glob("*.code")):
        summary.add_program(logs, path.name[: -len(".code")])
    left_over = logs / "left-over.log"
    if left_over.exists():
        summary.failed.append(("processes were left behind", left_over.read_text()))
    summary.print()
    return 0 if summary.passed and not summary.failed else 1


if __name__ == "__main__":
    sys.exit(main())
