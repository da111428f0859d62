#!/usr/bin/env python3
"""Lets each system call of zarn-moon, and of the library's operations on files, fail in turn.

    calls.py ZARN_MOON OPERATIONS SAMPLES [--sample N]

OPERATIONS is the program made of operations.cpp. zarn-moon must say what failed, or give the same
result as ever; a file that it writes is then whole, or what it was before. An operation of the
library must end as its documentation says, and leave no file open.
--sample N takes N of the failures at random.
"""

import collections
import errno
import os
import pathlib
import random
import re
import subprocess
import sys
import tempfile

from faults import ERRORS
from scenarios import SECONDS, parse_arguments, within
from tracing import SKIPPED, can_trace

NIGHT = ["-T", "OLAN", "-d", "2026-12-20"]
FORMS = {
    "table": [*NIGHT, "-t", "83.82 -5.39"],
    "file": [*NIGHT, "-o", "old"],
    "new file": [*NIGHT, "-o", "new"],
    "csv": [*NIGHT, "--targets", "targets", "--format", "csv", "-o", "old"],
    "json": [*NIGHT, "--targets", "-", "--format", "json"],
    "nights": [*NIGHT, "--nights", "3"],
    "site": ["-d", "2026-12-20", "--site", "hill", "--sites", "sites.ini"],
    "sites": ["--list-sites", "--sites", "sites.ini"],
    "local": [*NIGHT, "--local"],
    "plot": [*NIGHT, "--plot", "new.svg", "-o", "old"],
    "help": ["--help"],
}
TARGETS = "name,ra,dec\na,83.82,-5.39\nb,10.68,41.27\n"
SITES = "[hill]\nlatitude = 42.5N\nlongitude = 12.3E\n"
FITS = "".join(f"{card:80}" for card in ["SIMPLE  =                    T", "BITPIX  =                    8",
                                        "NAXIS   =                    0", "END"]).ljust(2880)
LOADER = 127  # the exit status when it fails

# What the library documents. The failure of a call means a thrown action, or nothing (a question is
# answered by no, or the call is one of those whose failures are ignored on purpose).
THROWN = {
    ("checkCreateDir", "mkdir"): "Error creating path: ",
    ("isFile", "stat"): "Error executing stats() on path: ",
    ("load", "openat"): "Error opening file: ",
    ("load", "read"): "Error reading from file: ",
    ("open", "mkdir"): "Error creating path: ",
    ("open", "openat"): "Error opening file: ",
    ("rename", "openat"): "Error opening file: ",
    ("rename", "rename"): "Error renaming file from: ",
    ("write", "openat"): "Error opening file: ",
    ("write", "write"): "Error writing to file: ",
}
UNREPORTED = {("hdr2fits", "write"), ("remove", "unlink")}  # and documented to be


class Program:
    """Runs in the present directory, with one call failing."""

    def __init__(self, path):
        self.path = path

    def run(self, arguments, strace=()):
        pathlib.Path("old").write_text("before\n")
        pathlib.Path("old.hdr").write_bytes(pathlib.Path("in/a.hdr").read_bytes())
        pathlib.Path("old.fits").write_text(FITS)
        pathlib.Path("targets").write_text(TARGETS)
        pathlib.Path("sites.ini").write_text(SITES)
        try:
            return subprocess.run([*strace, self.path, *arguments], input=TARGETS, capture_output=True,
                                  text=True, timeout=SECONDS, check=False)
        except subprocess.TimeoutExpired:
            return None

    def calls(self, arguments):
        """The calls that can fail: name, and number among its like."""
        self.run(arguments, ["strace", "-o", "trace"])
        counts = collections.Counter()
        lines = pathlib.Path("trace").read_text(errors="replace").splitlines()
        marks = [at for at, line in enumerate(lines) if 'access("/mark"' in line] or [0, len(lines)]
        for at, line in enumerate(lines):
            call = re.match(r"(\w+)\(", line)
            if not call:
                continue
            counts[call.group(1)] += 1
            if marks[0] < at < marks[-1] and call.group(1) in ERRORS:
                yield call.group(1), counts[call.group(1)]

    def fail(self, arguments, call, number, error):
        inject = f"inject={call}:error={error}:when={number}"
        return self.run(arguments, ["strace", "-o", "trace", "-e", inject])


def files():
    """What a run left, without what it was given."""
    given = {"in", "p.ini", "targets", "sites.ini", "trace", "old.hdr", "old.fits"}
    return {path.name: path.read_bytes() for path in pathlib.Path(".").iterdir()
            if path.is_file() and path.name not in given}


def moon_faults(done, found, undisturbed):
    expected, expected_files = undisturbed
    if done is None:
        yield "a hang"
        return
    if done.returncode not in (0, 1, 2, LOADER):
        yield f"status {done.returncode}"
    if done.returncode == 0 and (done.stdout, found) != (expected.stdout, expected_files):
        yield "status 0, and another result"
    if done.returncode != 0:
        if "zarn-moon: " not in done.stderr:
            yield f"status {done.returncode} without a message"
        if found.get("old") not in (b"before\n", expected_files.get("old")):
            yield "a file is not what it was"
        for name in found.keys() - {"old"}:
            if found[name] != expected_files.get(name):
                yield f"{name} is left"


def library_faults(operation, call, error, done, found, undisturbed):
    expected, expected_files = undisturbed
    if done is None or done.returncode != 0:
        yield "a hang" if done is None else f"status {done.returncode}"
        return
    *outcome, left = done.stdout.splitlines()
    outcome = "\n".join(outcome)
    if left != "0 left open":
        yield left
    action = THROWN.get((operation, "stat" if "stat" in call else call))
    reason = ". Error: " + os.strerror(getattr(errno, error))
    thrown = action and outcome.startswith("threw " + action) and outcome.endswith(reason)
    denied = outcome in ("gave false", "gave 0 names", "gave status of opening", "gave status of making",
                         "gave status of closing")
    same = done.stdout == expected.stdout
    if same and found != expected_files and (operation, call) not in UNREPORTED:
        yield "another result, and no error"
    if action and not thrown or not action and not (denied or same):
        yield outcome


def main():
    options = parse_arguments("moon", "operations")
    if not can_trace():
        return SKIPPED
    moon, library = Program(options.moon), Program(options.operations)
    operations = ["checkCreateDir", "exists", "hdr2fits", "isFile", "load", "match", "open", "openFitsFile",
                  "pathExists", "remove", "rename", "write"]
    runs = [(moon, form, arguments) for form, arguments in FORMS.items()]
    runs += [(library, operation, [operation]) for operation in operations]
    cases = []
    faults = []
    with tempfile.TemporaryDirectory() as directory:
        def anew(action):
            return within(directory, options.samples, action)
        for program, name, arguments in runs:
            undisturbed = anew(lambda: (program.run(arguments), files()))
            if undisturbed[0].returncode != 0:
                faults.append(f"{name}: {undisturbed[0].stderr}")
            calls = anew(lambda: list(program.calls(arguments)))
            if program is library:  # strace makes a call fail by leaving it out: all stays open
                calls = [call for call in calls if call[0] != "close"]
            cases += [(program, name, arguments, undisturbed, call, number, error) for call, number in calls
                      for error in ERRORS[call]]
        tried = random.sample(cases, min(options.sample or len(cases), len(cases)))
        for program, name, arguments, undisturbed, call, number, error in tried:
            done, found = anew(lambda: (program.fail(arguments, call, number, error), files()))
            found_faults = moon_faults(done, found, undisturbed) if program is moon else \
                library_faults(name, call, error, done, found, undisturbed)
            faults += [f"{name}, {call} {number} {error}: {fault}" for fault in found_faults]
    for fault in faults:
        print("FAILED:", fault)
    counts = collections.Counter(case[1] for case in tried)
    print("; ".join(f"{name}: {count}" for name, count in counts.items()))
    print(f"{len(tried)} of {len(cases)} failures injected, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
