#!/usr/bin/env python3
"""Checks from traces of zarn-ingest that no power cut could make its journal untrue.

    order.py PROGRAM

A model of a disk follows the system calls: what was written or renamed counts as lost until a sync
of the file, of its directory or of everything. At each journal line, the result that it tells of
must be safe; at each move of a source, so must its journal line; at the end, everything. The runs
are of one file, and of enough for several groups.
"""

import codecs
import os
import pathlib
import re
import subprocess
import sys

from common import SKIPPED, can_trace, ended, workplace
from scenarios import SCENARIOS, prepare

CALLS = "write,writev,openat,mkdir,unlink,unlinkat,rename,renameat,renameat2,link,linkat,fsync,syncfs"
RUNS = {  # arguments
    "a batch with a journal": ["-j", "journal", "-o", "out", "in/*.hdr"],
    "a batch that goes on": SCENARIOS["resume"],
    "the service": SCENARIOS["service"],
}


class Disk:
    """What a power cut would take."""

    def __init__(self, known):
        self.known = known    # files and directories that are there
        self.written = set()  # files whose content is not safe
        self.named = set()    # what has a name that is not safe
        self.told = {}        # sources in the journal, and the journal
        self.faults = []
        self.moves = 0

    def write(self, path, text):
        self.written.add(path)
        if path.endswith(".journal"):
            for line in text.splitlines():
                self.tell(path, line.split("\t"))

    def tell(self, journal, fields):
        source, result = (os.path.abspath(name) for name in fields[2:4])
        self.told[source] = journal
        if fields[4] == "converted" and not self.is_safe(result):
            self.faults.append(f"{fields[3]} is told of and not safe")

    def make(self, path):
        if path not in self.known:
            self.known.add(path)
            self.named.add(path)

    def remove(self, path):
        for paths in self.known, self.written, self.named:
            paths.discard(path)

    def rename(self, old, new):
        if old.endswith(".hdr"):
            self.moves += 1
            if not self.is_safe(self.told.get(old)):
                self.faults.append(f"{old} moves, and its journal line is not safe")
        if old in self.written:
            self.written.add(new)
        self.remove(old)
        self.known.add(new)
        self.named.add(new)

    def sync(self, path):
        self.written.discard(path)
        self.named = {name for name in self.named if os.path.dirname(name) != path}

    def sync_all(self):
        self.written.clear()
        self.named.clear()

    def is_safe(self, path):
        return (path is not None and os.path.exists(path) and path not in self.written
                and not any(path == name or path.startswith(name + "/") for name in self.named))


def follow(trace, disk):
    """Plays the calls of a trace that succeeded."""
    quoted = r'"((?:[^"\\]|\\.)*)"(?:\.\.\.)?'
    place = r"(?:\w+<([^>]*)>, )?"
    for line in trace.splitlines():
        call = re.match(r"\d+ +(\w+)\((.*)\) += \d+(?:<.*>)?$", line)
        if not call:
            continue
        name, arguments = call.groups()
        paths = [os.path.abspath(os.path.join(folder, file))
                 for folder, file in re.findall(place + quoted, arguments)]
        if name.startswith("write"):
            written = re.match(rf"\d+<(/[^>]*)>, .*?{quoted}", arguments)  # not files in memory
            if written:
                disk.write(written.group(1), codecs.decode(written.group(2), "unicode_escape"))
        elif name == "fsync":
            disk.sync(re.match(r"\d+<([^>]*)>", arguments).group(1))
        elif name == "syncfs":
            disk.sync_all()
        elif name.startswith(("rename", "link")):
            disk.rename(*paths)
        elif name.startswith("unlink"):
            disk.remove(*paths)
        elif name == "mkdir" or "O_CREAT" in arguments:
            disk.make(*paths)


def run(program, arguments, files):
    """Faults of one run in the present directory."""
    prepare([str(number) for number in range(files)])
    if "-r" in arguments and files > 1:
        subprocess.run([program, "-q", *arguments[:-1], "in/*1.hdr"], check=True)
    left = files - len(list(pathlib.Path("out").glob("*.fits")))
    disk = Disk({str(path.absolute()) for path in pathlib.Path().rglob("*")})
    subprocess.run(["strace", "-f", "-y", "-s", "100000", "-o", "trace", "-e", f"trace={CALLS}",
                    program, "-q", *arguments], check=True)
    follow(pathlib.Path("trace").read_text(errors="replace"), disk)
    yield from disk.faults
    if len(disk.told) != left:
        yield f"{len(disk.told)} of {left} files are in the journal"
    if arguments[0] == "-p" and disk.moves != files:
        yield f"{disk.moves} of {files} files were moved"
    yield from (f"{path} is not safe at the end" for path in sorted(disk.written | disk.named)
                if path.startswith(os.getcwd()) and os.path.exists(path))


def main():
    program = os.path.realpath(sys.argv[1])
    if not can_trace():
        return SKIPPED
    faults = []
    for name, arguments in RUNS.items():
        for files in 1, 100:
            with workplace():
                faults += [f"{name}, {files} files: {fault}" for fault in run(program, arguments, files)]
    return ended(faults, f"{2 * len(RUNS)} runs, of one file and of 100")


if __name__ == "__main__":
    sys.exit(main())
