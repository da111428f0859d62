#!/usr/bin/env python3
"""Lets each system call of zarn-ingest fail in turn: nothing is lost, half-written or told untruly.

    faults.py PROGRAM SAMPLES [--sample N]

Each scenario runs once undisturbed, which shows the system calls that it makes. Then it runs again
and again, every time in a directory of its own, while strace makes one of these calls fail with one
of the errors that it can plausibly have. After each run, what is on disk must be true; after one
more, undisturbed run, everything must be done. --sample N takes N of the failures at random.
"""

import argparse
import collections
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile

from tracing import SERVICE, SKIPPED, can_trace

# The errors that a call can plausibly have. Calls that are not here do nothing to a file, or end
# the process.
ERRORS = {
    "close": ["EIO"],
    "dup": ["EMFILE"],
    "eventfd2": ["EMFILE"],
    "fchmod": ["EPERM", "EIO"],
    "flock": ["EINTR", "ENOLCK"],
    "fstat": ["EIO"],
    "fsync": ["EIO", "ENOSPC"],
    "ftruncate": ["EIO"],
    "getdents64": ["EIO"],
    "lseek": ["EIO"],
    "lstat": ["EIO", "EACCES"],
    "memfd_create": ["EMFILE", "ENOMEM"],
    "mkdir": ["ENOSPC", "EACCES"],
    "newfstatat": ["EIO", "EACCES", "ESTALE"],
    "open": ["EMFILE", "EACCES"],
    "openat": ["EMFILE", "EIO", "ENOSPC", "EACCES"],
    "poll": ["EINTR", "ENOMEM"],
    "pread64": ["EIO"],
    "read": ["EIO", "EINTR"],
    "rename": ["EIO", "ENOSPC"],
    "renameat": ["EIO", "ENOSPC"],
    "renameat2": ["EIO", "ENOSPC", "EINVAL"],
    "rmdir": ["EBUSY"],
    "stat": ["EIO", "EACCES"],
    "statfs": ["EIO"],
    "statx": ["EIO"],
    "syncfs": ["EIO", "ENOSPC"],
    "unlink": ["EBUSY"],
    "unlinkat": ["EBUSY"],
    "write": ["ENOSPC", "EIO", "EINTR"],
}
FIRST_OF_PROGRAM = "eventfd2"  # what comes before is the loader's, and ACE's
SECONDS = 30  # after which a run hangs
FILES = ["a", "b", "c"]


def prepare(samples):
    """Fills the present directory with sources."""
    pathlib.Path("in").mkdir()
    text = (samples / "imager.hdr").read_text()
    for name in FILES:
        pathlib.Path("in", name + ".hdr").write_text(text.replace("Field 17", "Field " + name))
    pathlib.Path("p.ini").write_text(SERVICE)


def service(log=False):
    if log:
        with open("p.ini", "a") as properties:
            properties.write("[log]\nfile = log\nsize = 1\ninterval = 1\nfiles = 3\n")
    return ["-p", "p.ini"]


def batch():
    return ["-o", "out", "-f", "in/*.hdr"]


def journalled():
    return ["-r", "-j", "journal", "-o", "out", "in/*.hdr"]


def reported():
    return ["-c", "-f", "--report", "report", "-m", "VEK1", "-o", "out", "in/*.hdr"]


SCENARIOS = {
    "batch": batch,
    "resume": journalled,
    "report": reported,
    "service": service,
    "log": lambda: service(log=True),
}


def kept(text):
    """What a result is compared by: its cards, but for checksums, which hold the present time."""
    cards = [text[at:at + 80] for at in range(0, len(text), 80)]
    return [card for card in cards if not card.startswith((b"CHECKSUM", b"DATASUM"))]


def results(directory="."):
    return {p.name: kept(p.read_bytes()) for p in pathlib.Path(directory, "out").glob("*.fits")}


def journal():
    lines = [line.split("\t") for p in sorted(pathlib.Path("journal").glob("*.journal"))
             for line in p.read_text().splitlines(keepends=True)]
    return [fields for fields in lines if fields[-1].endswith("\n")]


def untruths(expected):
    """What of that which is on disk should not be."""
    found = results()
    for name, text in found.items():
        if text != expected.get(name):
            yield f"out/{name} is not whole"
    for name in FILES:
        source = pathlib.Path("in", name + ".hdr")
        done = pathlib.Path("done", name + ".hdr")
        if not source.exists() and not done.exists():
            yield f"{source} is lost"
        if done.exists() and name + ".fits" not in found:
            yield f"{done} has no result"
    if pathlib.Path("failed").is_dir() and any(pathlib.Path("failed").iterdir()):
        yield "a sound header failed"
    for fields in journal():
        if len(fields) != 8 or fields[4] != "converted":
            yield f"the journal says {fields}"
        elif pathlib.Path(fields[3]).name not in found:
            yield f"the journal tells of a result that is not there: {fields[3]}"


def left():
    """What the next run should have removed."""
    if any(pathlib.Path("out").glob(".zarn-ingest-*")):
        yield "a working directory is left"


def undone(scenario, expected):
    """What is left to do."""
    if results().keys() != expected.keys():
        yield "results are missing"
    if scenario in ("service", "log") and any(pathlib.Path("in").glob("*.hdr")):
        yield "sources are left"
    if scenario in ("service", "log", "resume"):
        told = collections.Counter(fields[2] for fields in journal())
        if told != {f"in/{name}.hdr": 1 for name in FILES}:
            yield f"the journal tells {dict(told)}"


class Sweep:
    """Runs of the program in the present directory."""

    def __init__(self, program):
        self.program = program

    def run(self, arguments, strace=()):
        try:
            done = subprocess.run([*strace, self.program, *arguments], stdin=subprocess.DEVNULL,
                                  capture_output=True, timeout=SECONDS)
            return done.returncode
        except subprocess.TimeoutExpired:
            return "a hang"

    def calls(self, scenario):
        """The calls that the program makes by itself: name, and number among its like."""
        arguments = SCENARIOS[scenario]()
        self.run(arguments, ["strace", "-f", "-o", "trace"])
        counts = collections.Counter()
        ours = False
        for line in pathlib.Path("trace").read_text(errors="replace").splitlines():
            call = re.match(r"\d+ +(\w+)\(", line)
            if not call:
                continue
            name = call.group(1)
            ours = ours or name == FIRST_OF_PROGRAM
            counts[name] += 1
            if ours and name in ERRORS:
                yield name, counts[name]

    def fail(self, scenario, call, number, error, expected):
        arguments = SCENARIOS[scenario]()
        inject = f"inject={call}:error={error}:when={number}"
        status = self.run(arguments, ["strace", "-f", "-o", "trace", "-e", inject])
        faults = [] if status in (0, 1, 2) else [f"status {status}"]
        faults += untruths(expected)
        if status == 0:
            faults += [f"status 0, but {what}" for what in undone(scenario, expected)]
        again = self.run(SCENARIOS[scenario]())
        if again != 0 and not (scenario == "report" and again == 1):
            faults.append(f"status {again} of the next run")
        for truth in (undone(scenario, expected), untruths(expected), left()):
            faults += [f"after the next run, {what}" for what in truth]
        return [f"{scenario}, {call} {number} {error}: {fault}" for fault in faults]


def within(directory, samples, action):
    """Runs an action in a new directory with sources, which is removed afterwards."""
    here = os.getcwd()
    work = tempfile.mkdtemp(dir=directory)
    os.chdir(work)
    try:
        prepare(samples)
        return action()
    finally:
        os.chdir(here)
        shutil.rmtree(work, ignore_errors=True)


def parse_arguments():
    parser = argparse.ArgumentParser()
    parser.add_argument("program", type=os.path.realpath)
    parser.add_argument("samples", type=lambda name: pathlib.Path(name).resolve())
    parser.add_argument("--sample", type=int, metavar="N")
    return parser.parse_args()


def main():
    options = parse_arguments()
    if not can_trace():
        return SKIPPED
    sweep = Sweep(options.program)
    failures = []
    faults = []
    with tempfile.TemporaryDirectory() as directory:
        for scenario in SCENARIOS:
            calls, expected = within(directory, options.samples,
                                     lambda: (list(sweep.calls(scenario)), results()))
            if len(expected) != len(FILES):
                faults.append(f"{scenario}: an undisturbed run gives {len(expected)} results")
            failures += [(scenario, call, number, error, expected)
                         for call, number in calls for error in ERRORS[call]]
        tried = failures
        if options.sample is not None:
            tried = random.sample(failures, min(options.sample, len(failures)))
        for failure in tried:
            faults += within(directory, options.samples, lambda: sweep.fail(*failure))
    for fault in faults:
        print("FAILED:", fault)
    for scenario, count in collections.Counter(failure[0] for failure in tried).items():
        print(f"{scenario}: {count} failures injected")
    print(f"{len(tried)} of {len(failures)} failures injected, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
