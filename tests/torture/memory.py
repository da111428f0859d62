#!/usr/bin/env python3
"""Lets each allocation of the programs fail in turn: nothing is lost, half-written or told untruly.

    memory.py SHIM ZARN_INGEST ZARN_MOON SAMPLES [--sample N]

SHIM is the library made of failing-memory.cpp. A program must end with a message and a status, and
what is on disk must be true. ACE does not notice that it got no memory for itself: it crashes, or
forgets an option or a property, and the C library crashes in `glob`; these cases are counted and not
judged, as no caller can see them.
--sample N takes N of the allocations at random.
"""

import collections
import os
import pathlib
import random
import subprocess
import sys
import tempfile

from scenarios import FILES, SCENARIOS, SECONDS, judged, parse_arguments, results, within

# What zarn-moon is asked for; the result goes to a file, which must be whole or absent.
NIGHT = ["-T", "OLAN", "-d", "2026-12-20", "-t", "83.82 -5.39", "-o", "night"]
NIGHTS = {
    "table": NIGHT,
    "csv": [*NIGHT, "--format", "csv"],
    "json": [*NIGHT, "--format", "json"],
    "nights": ["-T", "OLAN", "-d", "2026-12-20", "--nights", "3", "-o", "night"],
    "semester": [*NIGHT, "--nights", "3", "--max-airmass", "2"],
    "calendar": [*NIGHT, "--format", "ics"],
}


class Sweep:
    """Runs of a program in the present directory, with one allocation failing."""

    def __init__(self, shim, program):
        self.shim = shim
        self.program = program
        self.blind = 0  # allocations whose failure no caller can see

    def run(self, arguments, failing=0):
        """The exit status, and what was told: who asked for the allocation, or how many there were."""
        told = pathlib.Path("told").resolve()
        told.unlink(missing_ok=True)
        environment = dict(os.environ, LD_PRELOAD=self.shim, FAILING=str(failing), TOLD=str(told))
        try:
            done = subprocess.run([self.program, *arguments], stdin=subprocess.DEVNULL, env=environment,
                                  capture_output=True, timeout=SECONDS, check=False)
        except subprocess.TimeoutExpired:
            return "a hang", ""
        asker = told.read_text().strip() if told.exists() else ""
        told.unlink(missing_ok=True)
        asker = pathlib.Path(asker).name
        if asker.startswith("libACE") or (asker.startswith("libc.so") and done.returncode < 0):
            self.blind += 1
            return None, asker
        log = pathlib.Path("log")
        said = done.stderr + (log.read_bytes() if log.exists() else b"")
        if done.returncode in (1, 2) and b"zarn" not in said:
            return f"{done.returncode} without a message", asker
        return done.returncode, asker

    def ingest(self, scenario, number, expected):
        status, asker = self.run(SCENARIOS[scenario](), number)
        if status is None:
            return []
        again = lambda: self.run(SCENARIOS[scenario]())[0]
        return [f"{scenario}, allocation {number} of {asker}: {fault}"
                for fault in judged(scenario, status, again, expected)]

    def moon(self, form, number, expected):
        status, asker = self.run(NIGHTS[form], number)
        if status is None:
            return []
        night = pathlib.Path("night")
        faults = []
        if status not in (0, 1, 2):
            faults.append(f"status {status}")
        if night.exists() != (status == 0):
            faults.append(f"status {status}, and the result is {'there' if night.exists() else 'missing'}")
        if night.exists() and night.read_text() != expected:
            faults.append("the result is another one")
        if {path.name for path in pathlib.Path(".").iterdir()} - {"in", "p.ini", "night"}:
            faults.append("files are left")
        return [f"zarn-moon, {form}, allocation {number} of {asker}: {fault}" for fault in faults]


def main():
    options = parse_arguments("shim", "ingest", "moon")
    ingest = Sweep(options.shim, options.ingest)
    moon = Sweep(options.shim, options.moon)
    cases = []
    faults = []
    with tempfile.TemporaryDirectory() as directory:
        for scenario in SCENARIOS:
            (_, made), expected = within(directory, options.samples,
                                         lambda: (ingest.run(SCENARIOS[scenario]()), results()))
            if len(expected) != len(FILES):
                faults.append(f"{scenario}: an undisturbed run gives {len(expected)} results")
            cases += [(scenario, ingest.ingest, number, expected) for number in range(1, int(made) + 1)]
        for form in NIGHTS:
            (_, made), expected = within(directory, options.samples,
                                         lambda: (moon.run(NIGHTS[form]), pathlib.Path("night").read_text()))
            cases += [(form, moon.moon, number, expected) for number in range(1, int(made) + 1)]
        tried = cases
        if options.sample is not None:
            tried = random.sample(cases, min(options.sample, len(cases)))
        for name, fail, number, expected in tried:
            faults += within(directory, options.samples, lambda: fail(name, number, expected))
    for fault in faults:
        print("FAILED:", fault)
    for name, count in collections.Counter(case[0] for case in tried).items():
        print(f"{name}: {count} allocations failed")
    print(f"{len(tried)} of {len(cases)} allocations failed, {len(faults)} faults, {ingest.blind + moon.blind} not judged")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
