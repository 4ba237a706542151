#!/usr/bin/env python3
"""Sums up a folder of test logs: summarize_tests.py LOGS

NAME.code holds a program's exit code and NAME.log its output. If NAME.gtest exists, NAME.json is
GoogleTest's report; any other program counts as one test. left-over.log names processes that
outlived the run. Exits with 0 only if a test passed and none failed.
"""
import json
import pathlib
import re
import sys

TAIL_LINES = 40
TIMEOUT_CODES = (124, 137)
# Wine's words for an exception that nobody handled; the exit code alone does not always tell.
HEAP = re.compile(r"^.*err:heap:.*$", re.MULTILINE)
CRASH = re.compile(r"Unhandled (exception|page fault)|^wine: Unhandled", re.MULTILINE)


class Summary:
    def __init__(self):
        self.passed = 0
        self.failed = []  # (name, text)
        self.skipped = []  # (name, reason)

    def add_program(self, logs, name):
        code = int((logs / f"{name}.code").read_text())
        output = (logs / f"{name}.log").read_text(errors="replace")
        failed_before = len(self.failed)
        missing_report = False
        if (logs / f"{name}.gtest").exists():
            missing_report = not self.add_report(logs / f"{name}.json", output)
        elif code == 0:
            self.passed += 1
        explained = len(self.failed) > failed_before
        reason = self.ending(code, output, explained)
        if missing_report and not reason:
            reason = "no report"
        if reason:
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

    def add_report(self, path, output):
        """False if there is none."""
        if not path.exists():
            return False
        for suite in json.loads(path.read_text(errors="replace"))["testsuites"]:
            for test in suite["testsuite"]:
                self.add_test(f"{suite['name']}.{test['name']}", test, output)
        return True

    def add_test(self, name, test, output):
        if test.get("status") == "NOTRUN":
            return
        if test.get("failures"):
            self.failed.append((name, "\n".join(f["failure"] for f in test["failures"])))
        elif test.get("result") == "SKIPPED":
            # The report has no reasons; the output has each behind the test's beginning.
            own = output.partition(f"[ RUN      ] {name}")[2].partition("[  SKIPPED ]")[0]
            self.skipped.append((name, " ".join(own.partition("Skipped")[2].split())))
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
