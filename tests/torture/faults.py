#!/usr/bin/env python3
"""Lets each system call of zarn-ingest fail in turn: nothing is lost, half-written or told untruly.

    faults.py PROGRAM SAMPLES [--sample N]

Each scenario runs once undisturbed, which shows the system calls that it makes. Then it runs again
and again, every time in a directory of its own, while strace makes one of these calls fail with one
of the errors that it can plausibly have. After each run, what is on disk must be true; after one
more, undisturbed run, everything must be done. --sample N takes N of the failures at random.
"""

import collections
import pathlib
import random
import re
import subprocess
import sys
import tempfile

from scenarios import FILES, SCENARIOS, SECONDS, judged, parse_arguments, results, within
from tracing import SKIPPED, can_trace

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
        faults = judged(scenario, status, lambda: self.run(SCENARIOS[scenario]()), expected)
        return [f"{scenario}, {call} {number} {error}: {fault}" for fault in faults]


def main():
    options = parse_arguments("program")
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
