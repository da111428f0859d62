#!/usr/bin/env python3
"""Cuts the power of the disk below zarn-ingest: nothing that was told is missing.

    powercut.py PROGRAM [--cuts N] [--files N] [--without-syncs]

A run works in a file system on a disk that records its writes and flushes. Then, N times for each
kind of run and of file system, the disk is made anew as a power cut at a random moment can leave it,
and is mounted: what is there must be true, and the next run must do the rest. --without-syncs makes
the program's own syncs do nothing, to see that this would be noticed.

Needs root, a mount name space, loop devices and FUSE.
"""

import contextlib
import os
import random
import re
import shutil
import subprocess
import sys

from common import SECONDS, SKIPPED, command_line, ended, workplace
from recording import recorded
from scenarios import SCENARIOS, judged, prepare, results

RUNS = "resume", "service"
FILE_SYSTEMS = {  # how to make one, and how to mount it
    "ext4": (["mke2fs", "-q", "-F", "-t", "ext4"], "loop,commit=1"),
    "ext4, data=writeback": (["mke2fs", "-q", "-F", "-t", "ext4"], "loop,commit=1,data=writeback"),
    "xfs": (["mkfs.xfs", "-q", "-f"], "loop"),
    "btrfs": (["mkfs.btrfs", "-q", "-f"], "loop,commit=1"),
}
DISK_BYTES = 320 << 20
WITHOUT_SYNCS = ["strace", "-f", "-o", "/dev/null", "-e", "inject=fsync,syncfs,fdatasync:retval=0"]


@contextlib.contextmanager
def mounted(disk, options):
    """The present directory is that of a mounted disk meanwhile."""
    subprocess.run(["mount", "-o", options, disk, "disk"], check=True)
    try:
        with contextlib.chdir("disk"):
            yield
    finally:
        subprocess.run(["umount", "disk"], check=True)


def run(program, scenario, tracer=(), told=lambda name: None):
    """The exit status of a run; a function is told of each result as soon as the program says it."""
    with subprocess.Popen([*tracer, program, "-v", *SCENARIOS[scenario]], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True) as process:
        for line in process.stdout:
            gave = re.search(r"gave out/(\S+\.fits)", line)
            if gave:
                told(gave.group(1))
    return process.wait(SECONDS)


def record(options, scenario, mount):
    """A run's recording, the results, and those told of: the moment of each, and its name."""
    told = []
    with recorded("image", "device") as recording, mounted("device", mount):
        prepare([f"f{number}" for number in range(options.files)])
        os.sync()
        start = len(recording.events)
        tracer = WITHOUT_SYNCS if options.without_syncs else []
        status = run(options.program, scenario, tracer,
                     lambda name: told.append((len(recording.events), name)))
        end = len(recording.events)
        expected = results()
        if status != 0 or len(expected) != options.files:
            raise RuntimeError(f"{scenario}: status {status}, {len(expected)} results")
        told += [(end, name) for name in expected]
        os.sync()  # later moments are as good as the end
    return recording, range(start, len(recording.events) + 1), expected, told


def after_cut(options, scenario, moment, expected, told):
    """The faults in the present directory."""
    missing = {name for at, name in told if at <= moment} - results().keys()
    yield from (f"{name} was told of, and is missing" for name in missing)
    yield from judged(scenario, "cut", lambda: run(options.program, scenario), expected)


def cut(options, scenario, system):
    """The faults after power cuts during one run."""
    make, mount = FILE_SYSTEMS[system]
    with open("blank", "wb") as image:
        image.truncate(DISK_BYTES)
    subprocess.run([*make, "blank"], check=True)
    subprocess.run(["cp", "--sparse=always", "blank", "image"], check=True)
    recording, moments, expected, told = record(options, scenario, mount)
    for _ in range(options.cuts):
        moment = random.choice(moments)
        subprocess.run(["cp", "--sparse=always", "blank", "image"], check=True)
        recording.cut("image", moment)
        with mounted("image", mount):
            for fault in after_cut(options, scenario, moment, expected, told):
                yield f"{scenario} on {system}, cut at {moment} of {moments}: {fault}"


def can_cut():
    """Whether disks can be recorded here, for root in a mount name space that this process enters."""
    if os.environ.get("ZARNSYS_MOUNTS") == "1":
        return True
    mount = ["unshare", "-m", "sh", "-c", "test -c /dev/fuse -a -c /dev/loop-control && mount -t tmpfs none /mnt"]
    if subprocess.run(mount, capture_output=True, check=False).returncode == 0:
        os.environ["ZARNSYS_MOUNTS"] = "1"
        os.execvp("unshare", ["unshare", "-m", sys.executable, *sys.argv])
    print("skipped: needs root, a mount name space, loop devices and FUSE")
    return False


def main():
    parser = command_line("program", cuts=10, files=300)
    parser.add_argument("--without-syncs", action="store_true")
    options = parser.parse_args()
    if not can_cut():
        return SKIPPED
    faults = []
    systems = [name for name, (make, _) in FILE_SYSTEMS.items() if shutil.which(make[0])]
    runs = len(systems) * len(RUNS)
    with workplace():
        os.mkdir("disk")
        for system in systems:
            for scenario in RUNS:
                faults += cut(options, scenario, system)
    return ended(faults, f"{runs * options.cuts} cuts of {runs} runs with {options.files} files on"
                 f" {'; '.join(systems)}")


if __name__ == "__main__":
    sys.exit(main())
