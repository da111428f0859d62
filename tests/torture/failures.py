#!/usr/bin/env python3
"""Lets each system call of programs fail in turn: nothing is lost, half-written or told untruly.

    failures.py PROGRAM... [--memory SHIM] [--sample N]

PROGRAM is zarn-ingest, zarn-moon, or the program made of operations.cpp, which calls the library.
Each scenario of a program runs once undisturbed, which shows what can fail. Then it runs again and
again, every time in a directory of its own, while strace makes one of its system calls fail with one
of the errors that it can plausibly have. With SHIM, the library made of failing-memory.cpp, one of
its allocations fails instead. --sample N takes N of the failures at random.
"""

import collections
import contextlib
import errno
import os
import pathlib
import re
import subprocess
import sys

from common import SECONDS, SKIPPED, can_trace, command_line, ended, sampled, workplace
from scenarios import FILES, PROPERTIES, SCENARIOS, judged, prepare, results

# The calls that can plausibly fail with each error. Others do nothing to a file, or end the process.
FAILING = {
    "EACCES": "lstat mkdir newfstatat open openat stat",
    "EBUSY": "rmdir unlink unlinkat",
    "EDQUOT": "fsync mkdir openat rename renameat renameat2 syncfs write writev",
    "EINTR": "flock poll read write",
    "EINVAL": "renameat2",
    "EIO": """close fchmod fstat fsync ftruncate getdents64 lseek lstat newfstatat openat pread64 read rename
              renameat renameat2 stat statfs statx syncfs write writev""",
    "EMFILE": "dup eventfd2 memfd_create open openat",
    "ENOLCK": "flock",
    "ENOMEM": "memfd_create poll",
    "ENOSPC": "fsync mkdir openat rename renameat renameat2 syncfs write writev",
    "EPERM": "fchmod",
    "EROFS": "mkdir openat rename renameat renameat2 unlink unlinkat",
    "ESTALE": "newfstatat",
}
LOADER = 127  # the exit status when it fails

TARGETS = "name,ra,dec\na,83.82,-5.39\nb,10.68,41.27\n"
CARDS = ["SIMPLE  =                    T", "BITPIX  =                    8",
         "NAXIS   =                    0", "END"]
GIVEN = {
    **PROPERTIES,
    "old": "before\n",
    "old.fits": "".join(card.ljust(80) for card in CARDS).ljust(2880),
    "old.hdr": "\n".join(CARDS) + "\n",
    "sites.ini": "[hill]\nlatitude = 42.5N\nlongitude = 12.3E\n",
    "targets": TARGETS,
}


class Program:
    """What a program does in the present directory, and what must then be true."""

    scenarios = {}           # arguments of each
    own = ".*"               # what of a trace the program makes by itself
    untried = ()             # calls that fail in no plausible way
    tracer = ["strace"]

    def __init__(self, path):
        self.path = path

    def begin(self, scenario):
        """Brings about what a scenario goes on from."""

    def run(self, scenario, *launcher):
        command = [*launcher, self.path, *self.scenarios[scenario]]
        try:
            ran = subprocess.run(command, input=TARGETS, capture_output=True, text=True, errors="replace",
                                 timeout=SECONDS, check=False)
        except subprocess.TimeoutExpired:
            ran = subprocess.CompletedProcess(command, "of a hang", "", "")
        ran.files = self.files()
        return ran

    @staticmethod
    def files():
        """The files of the directory; calendars without the present time."""
        return {path.name: re.sub("DTSTAMP.*", "", path.read_text()) for path in pathlib.Path(".").iterdir()
                if path.is_file() and path.name not in ("trace", "told")}


class Ingest(Program):
    scenarios = SCENARIOS
    own = r"^\d+ +eventfd2\(.*"  # what comes before is the loader's, and ACE's
    tracer = ["strace", "-f"]

    def begin(self, scenario):
        if scenario != "resume":
            return
        subprocess.run([self.path, *SCENARIOS[scenario][:-1], "in/a.hdr"], capture_output=True, check=True)
        for path in pathlib.Path("journal").iterdir():
            with path.open("a") as lines:
                lines.write("cut short by a kill")

    @staticmethod
    def files():
        return results()

    def faults(self, scenario, _, ran, undisturbed):
        if len(undisturbed.files) != len(FILES):
            yield f"{len(undisturbed.files)} results"
        if ran.returncode not in (0, 1, 2):
            yield f"status {ran.returncode}"
        log = pathlib.Path("log")
        said = ran.stderr + (log.read_text() if log.exists() else "")
        if ran.returncode != 0 and "zarn" not in said:
            yield f"status {ran.returncode} without a message"
        yield from judged(scenario, ran.returncode, lambda: self.run(scenario).returncode, undisturbed.files)


NIGHT = ["-T", "OLAN", "-d", "2026-12-20"]
TARGET = [*NIGHT, "-t", "83.82 -5.39"]


class Moon(Program):
    scenarios = {
        "table": TARGET,
        "file": [*NIGHT, "-o", "old"],
        "new file": [*NIGHT, "-o", "new"],
        "csv": [*NIGHT, "--targets", "targets", "--format", "csv", "-o", "old"],
        "json": [*NIGHT, "--targets", "-", "--format", "json"],
        "nights": [*NIGHT, "--nights", "3"],
        "semester": [*TARGET, "--nights", "3", "--max-airmass", "2", "-o", "new"],
        "calendar": [*TARGET, "--format", "ics", "-o", "new"],
        "site": ["-d", "2026-12-20", "--site", "hill", "--sites", "sites.ini"],
        "sites": ["--list-sites", "--sites", "sites.ini"],
        "local": [*NIGHT, "--local"],
        "plot": [*NIGHT, "--plot", "new.svg", "-o", "old"],
        "help": ["--help"],
    }

    def faults(self, scenario, _, ran, undisturbed):
        """The result is as ever, or a message says why there is none, and nothing has changed."""
        if ran.returncode == 0:
            if (ran.stdout, ran.files) != (undisturbed.stdout, undisturbed.files):
                yield "status 0, and another result"
            return
        if ran.returncode not in (1, 2, LOADER):
            yield f"status {ran.returncode}"
        if not re.search("zarn(-moon)?: ", ran.stderr):
            yield f"status {ran.returncode} without a message"
        for name in ran.files.keys() | GIVEN.keys():
            found = ran.files.get(name)
            # The first of two files may have been written when the second one fails.
            first = scenario == "plot" and found == undisturbed.files.get(name)
            if found != GIVEN.get(name) and not first:
                yield f"{name} is not what it was"


class Operations(Program):
    own = r'access\("/mark".*access\("/mark"'
    untried = "close"  # strace makes a call fail by leaving it out: all stays open
    scenarios = {name: [name] for name in [
        "checkCreateDir", "exists", "hdr2fits", "isFile", "load", "match", "open", "openFitsFile",
        "pathExists", "remove", "rename", "write"]}

    # What the library documents. The failure of a call means a thrown action, or nothing (a question
    # is answered by no, or the call is one of those whose failures are ignored on purpose).
    actions = {
        "Error creating path: ": ["checkCreateDir mkdir", "open mkdir"],
        "Error executing stats() on path: ": ["isFile stat"],
        "Error opening file: ": ["load openat", "open openat", "rename openat", "write openat"],
        "Error reading from file: ": ["load read"],
        "Error renaming file from: ": ["rename rename"],
        "Error writing to file: ": ["write write"],
    }
    unreported = "hdr2fits write", "remove unlink"  # and documented to be
    denials = ["gave false", "gave 0 names", "gave status of opening", "gave status of making",
               "gave status of closing"]

    def faults(self, operation, failure, ran, undisturbed):
        if ran.returncode != 0:
            yield f"status {ran.returncode}"
            return
        outcome, left = ran.stdout.removesuffix("\n").rsplit("\n", 1)
        if left != "0 left open":
            yield left
        call, error = re.match(r"(\w+):error=(\w+)", failure).groups()
        failed = f"{operation} {'stat' if 'stat' in call else call}"
        same = ran.stdout == undisturbed.stdout
        if same and ran.files != undisturbed.files and failed not in self.unreported:
            yield "another result, and no error"
        action = next((action for action, calls in self.actions.items() if failed in calls), None)
        reason = ". Error: " + os.strerror(getattr(errno, error))
        thrown = action and outcome.startswith("threw " + action) and outcome.endswith(reason)
        if action and not thrown or not action and not (same or outcome in self.denials):
            yield outcome


class SystemCalls:
    """What strace makes fail: a call, with an error, and its number among its like."""

    def failures(self, program, scenario):
        program.run(scenario, *program.tracer, "-o", "trace")
        trace = pathlib.Path("trace").read_text(errors="replace")
        own = re.search(program.own, trace, re.M | re.S)
        counts = collections.Counter()
        for line in re.finditer(r"^(?:\d+ +)?(\w+)\(", trace, re.M):
            call = line[1]
            counts[call] += 1
            if own.start() <= line.start() < own.end() and call not in program.untried:
                yield from (f"{call}:error={error}:when={counts[call]}"
                            for error, calls in FAILING.items() if call in calls.split())

    def launcher(self, program, failure):
        return *program.tracer, "-o", "trace", "-e", f"inject={failure}"

    def is_blind(self, _):
        return False


class Allocations:
    """What the shim makes fail: an allocation, by its number."""

    def __init__(self, shim):
        self.shim = shim

    def failures(self, program, scenario):
        program.run(scenario, *self.launcher(program, 0))
        made = int(pathlib.Path("told").read_text())
        return range(1, made + 1)

    def launcher(self, _, number):
        return "env", f"LD_PRELOAD={self.shim}", f"FAILING={number}", f"TOLD={os.path.abspath('told')}"

    def is_blind(self, ran):
        """ACE does not notice that it got no memory for itself: it crashes, or forgets an option or
        a property, and the C library crashes in `glob`. No caller can see that."""
        told = pathlib.Path("told")
        asker = pathlib.Path(told.read_text()).name if told.exists() else ""
        return asker.startswith("libACE") or (asker.startswith("libc.so") and ran.returncode < 0)


@contextlib.contextmanager
def prepared(program, scenario):
    """A new directory with all that programs are given."""
    with workplace():
        prepare()
        for name, text in GIVEN.items():
            pathlib.Path(name).write_text(text)
        program.begin(scenario)
        yield


def main():
    parser = command_line(sample=None)
    parser.add_argument("programs", nargs="+", type=os.path.realpath)
    parser.add_argument("--memory", type=os.path.realpath, metavar="SHIM")
    options = parser.parse_args()
    if not options.memory and not can_trace():
        return SKIPPED
    means = Allocations(options.memory) if options.memory else SystemCalls()
    kinds = {"zarn-ingest": Ingest, "zarn-moon": Moon, "operations": Operations}
    cases = []
    faults = []
    for path in options.programs:
        program = kinds[os.path.basename(path)](path)
        for scenario in program.scenarios:
            with prepared(program, scenario):
                undisturbed = program.run(scenario)
            if undisturbed.returncode != 0:
                faults.append(f"{scenario}: status {undisturbed.returncode}: {undisturbed.stderr}")
            with prepared(program, scenario):
                failures = list(means.failures(program, scenario))
            cases += [(program, scenario, failure, undisturbed) for failure in failures]
    tried = sampled(cases, options.sample)
    blind = 0
    for program, scenario, failure, undisturbed in tried:
        with prepared(program, scenario):
            ran = program.run(scenario, *means.launcher(program, failure))
            if means.is_blind(ran):
                blind += 1
                continue
            faults += [f"{scenario}, {failure}: {fault}"
                       for fault in program.faults(scenario, failure, ran, undisturbed)]
    counts = collections.Counter(scenario for _, scenario, _, _ in tried)
    print("; ".join(f"{scenario}: {count}" for scenario, count in counts.items()))
    return ended(faults, f"{len(tried)} of {len(cases)} failures, {blind} not judged")


if __name__ == "__main__":
    sys.exit(main())
