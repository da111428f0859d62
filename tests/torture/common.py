"""What the programs of this directory have in common."""

import argparse
import contextlib
import os
import random
import subprocess
import tempfile

SKIPPED = 77  # exit status
SECONDS = 30  # after which a run hangs


def can_trace():
    """Whether programs can be traced here; if not, says so."""
    # The leak sanitizer does not work in a process that is traced.
    os.environ["ASAN_OPTIONS"] = os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0"
    if subprocess.run(["strace", "-o", "/dev/null", "true"], capture_output=True, check=False).returncode == 0:
        return True
    print("skipped: needs strace, and a kernel that lets it trace")
    return False


def command_line(*programs, **numbers):
    """A parser of paths of programs, and of options with these numbers by default."""
    parser = argparse.ArgumentParser()
    for name in programs:
        parser.add_argument(name, type=os.path.realpath)
    for name, default in numbers.items():
        parser.add_argument("--" + name, type=int, metavar="N", default=default)
    return parser


def sampled(cases, number):
    """So many of the cases at random; all, if there is no number."""
    return random.sample(cases, min(number or len(cases), len(cases)))


@contextlib.contextmanager
def workplace():
    """A new directory, the present one meanwhile, is removed afterwards."""
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as directory:
        with contextlib.chdir(directory):
            yield


def ended(faults, tried):
    """Shows the faults and the line of the result; the exit status."""
    for fault in faults:
        print("FAILED:", fault)
    print(f"{tried}, {len(faults)} faults")
    return 1 if faults else 0
