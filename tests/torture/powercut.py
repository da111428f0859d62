#!/usr/bin/env python3
"""Cuts the power of the disk below zarn-ingest: nothing that was told is missing.

    powercut.py PROGRAM SAMPLES [--cuts N] [--files N] [--without-syncs]

A run works in a file system on a disk that records its writes and flushes. Then, N times for each
kind of run and of file system, the disk is made anew as a power cut at a random moment can leave it,
and is mounted: what is there must be true, and the next run must do the rest. --without-syncs makes
the program's own syncs do nothing, to see that this would be noticed.

Needs root, a mount name space, loop devices and FUSE.
"""

import argparse
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile

from recording import recorded
from scenarios import SECONDS, journalled, left, prepare, results, service, undone, untruths
from tracing import SKIPPED

RUNS = {"resume": journalled, "service": service}
FILE_SYSTEMS = {  # how to make one, and how to mount it
    "ext4": (["mke2fs", "-q", "-F", "-t", "ext4"], "loop,commit=1"),
    "ext4, data=writeback": (["mke2fs", "-q", "-F", "-t", "ext4"], "loop,commit=1,data=writeback"),
    "xfs": (["mkfs.xfs", "-q", "-f"], "loop"),
    "btrfs": (["mkfs.btrfs", "-q", "-f"], "loop,commit=1"),
}
DISK_BYTES = 320 << 20
WITHOUT_SYNCS = ["strace", "-f", "-o", "/dev/null", "-e", "inject=fsync,syncfs,fdatasync:retval=0"]


class Mounted:
    """The present directory is that of a mounted disk meanwhile."""

    def __init__(self, disk, options):
        self.disk, self.options = disk, options

    def __enter__(self):
        self.here = os.getcwd()
        subprocess.run(["mount", "-o", self.options, self.disk, "disk"], check=True)
        os.chdir("disk")

    def __exit__(self, *_):
        os.chdir(self.here)
        subprocess.run(["umount", "disk"], check=True)


def run(program, scenario, tracer=(), told=lambda name: None):
    """The exit status of a run; a function is told of each result as soon as the program says it."""
    with subprocess.Popen([*tracer, program, "-v", *RUNS[scenario]()], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True) as process:
        for line in process.stdout:
            gave = re.search(r"gave out/(\S+\.fits)", line)
            if gave:
                told(gave.group(1))
    return process.wait(SECONDS)


def record(options, scenario, mount):
    """A run's recording, the results, and those told of: the moment of each, and its name."""
    told = []
    with recorded("image", "device") as recording, Mounted("device", mount):
        shutil.copytree("../sources", ".", dirs_exist_ok=True)
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
    yield from untruths(expected)
    found = results()
    yield from (f"{name} was told of, and is missing"
                for name in {name for at, name in told if at <= moment} - found.keys())
    status = run(options.program, scenario)
    if status != 0:
        yield f"status {status} of the next run"
    for truth in (undone(scenario, expected), untruths(expected), left()):
        yield from (f"after the next run, {what}" for what in truth)


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
        with Mounted("image", mount):
            for fault in after_cut(options, scenario, moment, expected, told):
                yield f"{scenario} on {system}, cut at {moment} of {moments}: {fault}"


def parse_arguments():
    parser = argparse.ArgumentParser()
    parser.add_argument("program", type=os.path.realpath)
    parser.add_argument("samples", type=lambda name: pathlib.Path(name).resolve())
    parser.add_argument("--cuts", type=int, default=10)
    parser.add_argument("--files", type=int, default=300)
    parser.add_argument("--without-syncs", action="store_true")
    return parser.parse_args()


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
    options = parse_arguments()
    if not can_cut():
        return SKIPPED
    faults = []
    systems = [name for name, (make, _) in FILE_SYSTEMS.items() if shutil.which(make[0])]
    with tempfile.TemporaryDirectory() as directory:
        os.chdir(directory)
        os.mkdir("disk")
        os.mkdir("sources")
        os.chdir("sources")
        prepare(options.samples, [f"f{number}" for number in range(options.files)])
        os.chdir("..")
        for system in systems:
            for scenario in RUNS:
                faults += cut(options, scenario, system)
        os.chdir("/")
    for fault in faults:
        print("FAILED:", fault)
    print(f"{len(systems) * len(RUNS) * options.cuts} cuts of {len(systems) * len(RUNS)} runs with"
          f" {options.files} files on {'; '.join(systems)}: {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
