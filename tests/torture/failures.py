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
import typing

from common import SECONDS, SKIPPED, can_trace, command_line, ended, sampled, workplace
from scenarios import FILES, PROPERTIES, SCENARIOS, STOPPED, judged, prepare, results

# The calls that can plausibly fail with each error. Others do nothing to a file, or end the process.
FAILING = {
    "EACCES": "execve lstat mkdir newfstatat open openat stat",
    "EAGAIN": "clone clone3 vfork",
    "EBUSY": "rmdir unlink unlinkat",
    "EDQUOT": "fsync mkdir openat rename renameat renameat2 syncfs write writev",
    "EINTR": "flock poll pselect6 read wait4 write",
    "EINVAL": "renameat2",
    "EIO": """close fchmod fstat fsync ftruncate getdents64 lseek lstat newfstatat openat pread64 read rename
              renameat renameat2 stat statfs statx syncfs write writev""",
    "EMFILE": "dup dup2 eventfd2 memfd_create open openat",
    "ENOLCK": "flock",
    "ENOMEM": "execve memfd_create poll",
    "ENOSPC": "fsync mkdir openat rename renameat renameat2 syncfs write writev",
    "EPERM": "fchmod",
    "EROFS": "mkdir openat rename renameat renameat2 unlink unlinkat",
    "ESTALE": """close fstat fsync mkdir newfstatat open openat read rename renameat renameat2 syncfs unlink
                 unlinkat write writev""",
}
LOADER = 127  # the exit status when it fails
OWN = 3       # the exit status of operations.cpp where not the library, but itself lacks memory

TARGETS = "name,ra,dec\na,83.82,-5.39\nb,10.68,41.27\n"
CARDS = ["SIMPLE  =                    T", "BITPIX  =                    8",
         "NAXIS   =                    0", "OBJECT  = 'Field 17'".ljust(80), "END"]
GIVEN = {
    **PROPERTIES,
    "old": "before\n",
    "old.fits": "".join(card.ljust(80) for card in CARDS).ljust(2880),
    "old.hdr": "\n".join(CARDS) + "\n",
    "sites.ini": "[hill]\nlatitude = 42.5N\nlongitude = 12.3E\n",
    "targets": TARGETS,
}


class Tracing(typing.NamedTuple):
    """How a program is traced, and which calls are tried."""

    options: tuple = ()
    own: str = ".*"   # the part of a trace
    calls: str = ".*"

    def command(self, trace):
        return "strace", *self.options, "-o", trace


class Program:
    """What a program does in the present directory, and what must then be true."""

    scenarios = {}       # arguments of each
    tracing = Tracing()
    tracings = {}        # of scenarios of which another one shows all the rest

    def __init__(self, path):
        self.path = path

    def begin(self, scenario):
        """Brings about what a scenario goes on from."""

    def traced(self, scenario):
        return self.tracings.get(scenario, self.tracing)

    def run(self, scenario, *launcher):
        if scenario in self.tracings and not launcher:  # which ends it
            launcher = self.traced(scenario).command("/dev/null")
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
        return {path.name: re.sub("DTSTAMP.*", "", path.read_text(errors="replace"))
                for path in pathlib.Path(".").iterdir() if path.is_file() and path.name not in ("trace", "told")}


class Ingest(Program):
    scenarios = SCENARIOS
    tracing = Tracing(["-f"], r"^\d+ +eventfd2\(.*")  # what comes before is the loader's, and ACE's
    tracings = {
        "watch": Tracing(["-f", "-e", "inject=poll:signal=TERM:when=2"],
                         r" poll\(.*rename\(\"log\", .*", "(?!poll$).*"),
        "roll-over": Tracing(["-f", "-P", "log", "-P", "log.1", "-e", "inject=rename:signal=TERM:when=1"],
                             r" rename\(\"log\", .*", "(?!rename$).*"),
    }

    def begin(self, scenario):
        if scenario in STOPPED:
            pathlib.Path("log").write_text("2026-11-25 12:00:00.000000 INFO  [ 1 ] long enough to roll over\n" * 20)
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
        said = ran.stderr + "".join(log.read_text() for log in pathlib.Path(".").glob("log*"))
        if ran.returncode != 0 and "zarn" not in said:
            yield f"status {ran.returncode} without a message"
        again = "log" if scenario in STOPPED else scenario
        yield from judged(scenario, ran.returncode, lambda: self.run(again).returncode, undisturbed.files)


NIGHT = ["-T", "OLAN", "-d", "2026-12-20"]
TARGET = [*NIGHT, "-t", "83.82 -5.39"]
SEMESTER = [*TARGET, "--nights", "3", "--max-airmass", "2", "-o", "new"]


class Moon(Program):
    scenarios = {
        "table": TARGET,
        "file": [*NIGHT, "-o", "old"],
        "new file": [*NIGHT, "-o", "new"],
        "csv": [*NIGHT, "--targets", "targets", "--format", "csv", "-o", "old"],
        "json": [*NIGHT, "--targets", "-", "--format", "json"],
        "nights": [*NIGHT, "--nights", "3"],
        "semester": SEMESTER,
        "semester csv": [*SEMESTER, "--format", "csv"],
        "semester json": [*SEMESTER, "--format", "json"],
        "semester plot": [*SEMESTER, "--plot", "new.png"],
        "calendar": [*TARGET, "--format", "ics", "-o", "new"],
        "site": ["-d", "2026-12-20", "--site", "hill", "--sites", "sites.ini"],
        "sites": ["--list-sites", "--sites", "sites.ini"],
        "local": [*NIGHT, "--local"],
        "plot": [*NIGHT, "--plot", "new.svg", "-o", "old"],
        "gnuplot": [*NIGHT, "--plot", "new.svg", "-o", "old"],
        "help": ["--help"],
    }
    tracings = {"gnuplot": Tracing(["-f"], calls="clone3?|vfork|execve|dup2|wait4")}  # its start

    def faults(self, scenario, _, ran, undisturbed):
        """The result is as ever, or a message says why there is none, and nothing has changed."""
        yield from self.untruths(scenario, ran, undisturbed)
        again = self.run(scenario, *self.tracing.command("/dev/null"))
        if (again.stdout, again.files) != (undisturbed.stdout, undisturbed.files):
            yield "another result of the next run"

    @staticmethod
    def untruths(scenario, ran, undisturbed):
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
            first = "--plot" in Moon.scenarios[scenario] and found == undisturbed.files.get(name)
            if found != GIVEN.get(name) and not first:
                yield f"{name} is not what it was"


class Operations(Program):
    tracing = Tracing((), r'access\("/mark".*access\("/mark"',
                      "(?!close$).*")  # strace makes a call fail by leaving it out: all stays open
    scenarios = {name: [name] for name in [
        "checkCreateDir", "exists", "grids", "hdr2fits", "isFile", "load", "match", "open", "openFitsFile",
        "options", "pathExists", "properties", "remove", "rename", "texts", "write"]}

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
    denials = ["gave false", "gave 0 names", *("gave status of " + what for what in (
        "closing", "getting", "loading", "making", "opening", "parsing"))]

    def faults(self, operation, failure, ran, undisturbed):
        if ran.returncode != 0:
            yield f"status {ran.returncode}"
            return
        outcome, left, again = self.told(ran)
        if left != "0 left open":
            yield left
        expected = {*self.told(undisturbed)}
        if isinstance(failure, int):
            expected |= {"threw std::bad_alloc", *self.denials}
            pattern = "threw Error executing a glob operation"  # whatever stopped it
            yield from (told for told in (outcome, again) if told not in expected and not told.startswith(pattern))
            if ran.stdout == undisturbed.stdout and ran.files != undisturbed.files:
                yield "another result, and no error"
            return
        call, error = re.match(r"(\w+):error=(\w+)", failure).groups()
        failed = f"{operation} {'stat' if 'stat' in call else call}"
        if again not in expected and failed != "rename openat":  # which leaves the new name
            yield f"the next time, {again}"
        same = outcome == self.told(undisturbed)[0]
        if same and ran.files != undisturbed.files and failed not in self.unreported:
            yield "another result, and no error"
        action = next((action for action, calls in self.actions.items() if failed in calls), None)
        reason = ". Error: " + os.strerror(getattr(errno, error))
        thrown = action and outcome.startswith("threw " + action) and outcome.endswith(reason)
        if action and not thrown or not action and not (same or outcome in self.denials):
            yield outcome

    @staticmethod
    def told(ran):
        return re.fullmatch(r"(.*)\n(\d+ left open)\n(.*)\n", ran.stdout, re.S).groups()


class SystemCalls:
    """What strace makes fail: a call, with an error, and its number among its like."""

    def failures(self, program, scenario):
        traced = program.traced(scenario)
        program.run(scenario, *traced.command("trace"))
        trace = pathlib.Path("trace").read_text(errors="replace")
        own = re.search(traced.own, trace, re.M | re.S)
        if not own:
            return []
        counts = collections.Counter()  # strace counts for each thread
        found = {}
        for line in re.finditer(r"^((?:\d+ +)?)(\w+)\(", trace, re.M):
            counts[line.groups()] += 1
            case = line[2], counts[line.groups()]
            if line.start() < own.start():
                found[case] = False  # another thread's call of this number cannot fail alone
            elif line.start() < own.end() and re.fullmatch(traced.calls, line[2]):
                found.setdefault(case, True)
        return [f"{call}:error={error}:when={number}" for (call, number), wanted in found.items()
                for error, calls in FAILING.items() if wanted and call in calls.split()]

    def launcher(self, program, scenario, failure):
        return *program.traced(scenario).command("trace"), "-e", f"inject={failure}"

    def is_blind(self, _):
        return False


class Allocations:
    """What the shim makes fail: an allocation, by its number."""

    def __init__(self, shim):
        self.shim = shim

    def failures(self, program, scenario):
        if scenario in program.tracings:
            return []
        program.run(scenario, *self.launcher(program, scenario, 0))
        made = int(pathlib.Path("told").read_text())
        return range(1, made + 1)

    def launcher(self, _, __, number):
        return "env", f"LD_PRELOAD={self.shim}", f"FAILING={number}", f"TOLD={os.path.abspath('told')}"

    def is_blind(self, ran):
        """ACE does not notice that it got no memory for itself: it crashes, or forgets an option or
        a property, and the C library crashes in `glob`. No caller can see that."""
        told = pathlib.Path("told")
        asker = pathlib.Path(told.read_text()).name if told.exists() else ""
        return ran.returncode == OWN or asker.startswith("libACE") or (asker.startswith("libc.so") and ran.returncode < 0)


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
            for _ in range(3):  # a slow machine may miss what a scenario waits for
                with prepared(program, scenario):
                    failures = list(means.failures(program, scenario))
                if failures:
                    break
            if not failures and scenario in program.tracings and not options.memory:
                faults.append(f"{scenario}: nothing to fail")
            cases += [(program, scenario, failure, undisturbed) for failure in failures]
    tried = sampled(cases, options.sample)
    blind = 0
    for program, scenario, failure, undisturbed in tried:
        with prepared(program, scenario):
            ran = program.run(scenario, *means.launcher(program, scenario, failure))
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
