#!/usr/bin/env python3
"""Gives the programs hostile names, header texts and properties: nothing gets in.

    hostile.py ZARN_INGEST ZARN_MOON [--sample N]

Each input gives exactly what it names, or is refused with a message; no other file is touched,
nothing in it is run, and a run takes bounded time and memory. --sample N takes N inputs of each
kind at random.
"""

import argparse
import csv
import io
import json
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time

import inputs

SECONDS = 60
SOUND = inputs.PRIMARY + b"OBJECT  = 'x'\n"
BLOCK = 2880
CARD = 80


class Ran:
    """A run of a program in the present directory: what came of it, and what it took."""

    slowest = 0.0
    most = 0  # memory [MiB]

    def __init__(self, program, arguments, given=b""):
        begin = time.monotonic()
        with tempfile.TemporaryFile() as source, tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
            source.write(given)
            source.seek(0)
            process = subprocess.Popen(["timeout", str(SECONDS), program, *arguments], stdin=source, stdout=out, stderr=err)
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = self.status = os.waitstatus_to_exitcode(status)
            self.out, self.err = (self.content(file) for file in (out, err))
        Ran.slowest = max(Ran.slowest, time.monotonic() - begin)
        Ran.most = max(Ran.most, usage.ru_maxrss // 1024)

    @staticmethod
    def content(file):
        file.seek(0)
        return file.read()

    def faults(self):
        """What no input may cause."""
        if self.status not in (0, 1, 2):
            yield f"status {self.status}: {self.err[-300:]}"
        if self.status != 0 and not (self.err + self.out).startswith((b"zarn-", b"20")):
            yield f"refused without a message: {self.err[:80]}"
        if re.search(rb"[\x00-\x08\x0b-\x1f\x7f]", self.err):
            yield f"control characters in a message: {self.err[:200]}"


def tree():
    """All files and directories, but what runs begin with."""
    found = set()
    for folder, folders, files in os.walk(b"."):
        found |= {os.path.relpath(os.path.join(folder, name)) for name in folders + files}
    return found


def unprintable(line):
    return re.sub(rb"\\x([0-9A-F]{2})", lambda escaped: bytes([int(escaped.group(1), 16)]), line)


def headers_in(result):
    """The number of headers of a file of headers alone, or None."""
    count = at = 0
    while at < len(result):
        end = next((card for card in range(at, len(result), CARD) if result[card:card + CARD] == b"END".ljust(CARD)), None)
        if end is None:
            return None
        at = (end // BLOCK + 1) * BLOCK
        count += 1
    return count if at == len(result) else None


class Hostile:
    def __init__(self, ingest, moon):
        self.ingest = ingest
        self.moon = moon

    def batch(self, name):
        """A name as that of a source, a directory of results, a journal and a report."""
        for folder in (b"in", b"o", b"j", b"r"):
            os.mkdir(folder)
        source = b"in/" + name
        pathlib.Path(os.fsdecode(source)).write_bytes(SOUND)
        result = b"o/" + name + b"/" + inputs.stem_of(name) + b".fits"
        ran = Ran(self.ingest, [b"-q", b"-o", b"o/" + name, b"-j", b"j/" + name, b"--report", b"r/" + name, source])
        journals = {b"j/" + name} | {b"j/" + name + b"/" + file for file in os.listdir(b"j/" + name)
                                    if re.fullmatch(rb"zarn-ingest-[-0-9]{10}\.journal", file)}
        allowed = {b"in", b"o", b"j", b"r", source, b"o/" + name, b"r/" + name, result} | journals
        yield from ran.faults()
        yield from (f"made {path}" for path in tree() - allowed)
        if ran.status == 0:
            yield from (f"did not make {path}" for path in allowed - tree())
        elif len(inputs.stem_of(name)) + len(b".fits") <= 255:
            yield f"refused: {ran.err}"
        told = json.loads(pathlib.Path(os.fsdecode(b"r/" + name)).read_text())
        line = b"".join(pathlib.Path(os.fsdecode(path)).read_bytes() for path in journals if path.endswith(b".journal"))
        if unprintable(told["source"].encode()) != source or unprintable(line.split(b"\t")[2]) != source:
            yield f"told of as {told['source']} and {line}"

    def listed(self, name):
        """A name that stands alone in a list."""
        os.mkdir("in")
        os.chdir("in")
        pathlib.Path(os.fsdecode(name)).write_bytes(SOUND)
        result = inputs.stem_of(name) + b".fits"
        ran = Ran(self.ingest, [b"-q", b"-o", b"../o", b"--stdin", b"-0"], name + b"\0")
        os.chdir("..")
        yield from ran.faults()
        expected = {b"in", b"in/" + name, b"o"} | ({b"o/" + result} if ran.status == 0 else set())
        yield from (f"{path} differs" for path in tree() ^ expected)

    def path(self, name):
        """A path that leads elsewhere, or nowhere; the list takes it literally."""
        os.makedirs("here/in")
        os.chdir("here")
        pathlib.Path("in/x.hdr").write_bytes(SOUND)
        os.symlink("loop", "in/loop")
        os.symlink("../../outside", "in/dangling")
        os.mkfifo("in/pipe")
        before = tree()
        ran = Ran(self.ingest, [b"-q", b"-f", b"-o", b"o", b"--stdin", b"-0"], name + b"\0")
        yield from ran.faults()
        expected = before | {b"o"} | ({b"o/x.fits"} if ran.status == 0 else set())
        yield from (f"{path} differs" for path in tree() ^ expected)
        if (ran.status == 0) != name.endswith(b"x.hdr"):
            yield f"status {ran.status}"
        os.chdir("..")
        yield from (f"made {path}" for path in set(os.listdir()) - {"here"})

    def service(self, names):
        """All names arrive at once."""
        os.mkdir("in")
        for name in names:
            pathlib.Path(os.fsdecode(b"in/" + name)).write_bytes(SOUND)
        pathlib.Path("p.ini").write_text("[ingest]\npattern = in/*\noutput-dir = out\n[service]\ndone = done\n"
                                         "failed = failed\njournal = journal\nsettle = 0\nleast-free = 0\n")
        ran = Ran(self.ingest, ["-p", "p.ini"])
        yield from ran.faults()
        seen = [name for name in names if not name.startswith(b".")]
        done = {name for name in seen if len(inputs.stem_of(name)) + 5 <= 255}
        failed = set(seen) - done
        reasons = {name[-248:] + b".reason" for name in failed}
        for folder, expected in ((b"in", set(names) - set(seen)), (b"done", done), (b"failed", failed | reasons),
                                 (b"out", {inputs.stem_of(name) + b".fits" for name in done})):
            yield from (f"{folder}: {name}" for name in set(os.listdir(folder)) ^ expected)
        verified = Ran(self.ingest, ["--verify", "-p", "p.ini"])
        yield from verified.faults()
        if not verified.out.endswith(b"without source: 0, wrong: 0, not told of: 0\n"):
            yield f"verified: {verified.out}"
        status = Ran(self.ingest, ["--status", "--format", "json", "-p", "p.ini"])
        if json.loads(status.out)["failed_files"] != len(failed):
            yield f"status: {status.out}"

    def header(self, text):
        pathlib.Path("x.hdr").write_bytes(text)
        ran = Ran(self.ingest, ["-q", "-m", "VEK1", "-o", "out", "x.hdr"])
        yield from ran.faults()
        yield from (f"made {path}" for path in tree() - {b"x.hdr", b"out", b"out/x.fits"})
        if ran.status != 0:
            return
        result = pathlib.Path("out/x.fits").read_bytes()
        if headers_in(result) is None or re.search(rb"[^ -~]", result):
            yield "the result is no file of headers"
        if len(result) > (text.count(b"\n") + len(text) // CARD + 3) * BLOCK + len(text) // 20 * CARD:
            yield f"a result of {len(result)} bytes"

    def property(self, case):
        text, usable = case
        os.mkdir("in")
        pathlib.Path("in/x.hdr").write_bytes(SOUND)
        pathlib.Path("p.ini").write_bytes(text)
        ran = Ran(self.ingest, ["-p", "p.ini"])
        yield from ran.faults()
        if ran.status != (0 if usable else 2):
            yield f"status {ran.status}: {ran.err[:200]}"
        expected = {b"in", b"in/x.hdr", b"p.ini"} | ({b"out", b"out/x.fits"} if usable else set())
        yield from (f"{path} differs" for path in tree() ^ expected)

    def targets(self, names):
        """The names of targets in each form; a picture has some at a time."""
        lines = [b'"%s",%d,-5' % (name.replace(b'"', b'""'), index) for index, name in enumerate(names)]
        pathlib.Path("t.csv").write_bytes(b"name,ra,dec\n" + b"\n".join(lines) + b"\n")
        night = ["-T", "OLAN", "-d", "2026-12-20", "--targets", "t.csv"]
        expected = [name.decode(errors="replace") for name in names]
        forms = {form: Ran(self.moon, [*night, "--format", form]) for form in ("table", "csv", "json")}
        for form, ran in forms.items():
            yield from (f"{form}: {fault}" for fault in ran.faults())
        yield from self.compare(expected, forms)
        for begin in range(0, len(names), 6):
            pathlib.Path("t.csv").write_bytes(b"name,ra,dec\n" + b"\n".join(lines[begin:begin + 6]) + b"\n")
            yield from Ran(self.moon, [*night, "-o", "night", "--plot", "night.svg"]).faults()
        yield from (f"made {path}" for path in tree() - {b"t.csv", b"night", b"night.svg"})

    @staticmethod
    def compare(expected, forms):
        if any(ran.status != 0 for ran in forms.values()):
            return
        found = [target["name"] for target in json.loads(forms["json"].out)["targets"]]
        yield from (f"JSON: {ours!r} is {theirs!r}" for ours, theirs in zip(expected, found) if ours != theirs)
        rows = csv.DictReader(io.StringIO(forms["csv"].out.decode(), newline=""))
        theirs = {row["target"] for row in rows}
        yield from (f"CSV: {name!r}" for name in set(expected) ^ theirs)
        if re.search(rb"[\x00-\x08\x0b-\x1f\x7f]", forms["table"].out):
            yield "control characters in the table"

    def site(self, name):
        pathlib.Path("s.ini").write_bytes(b"[" + name + b"]\nlatitude = 42.5N\nlongitude = 12.3E\n")
        ran = Ran(self.moon, ["--sites", "s.ini", "--list-sites"])
        yield from ran.faults()
        if ran.status == 0 and ran.out.split(b"\t")[0] != name.strip(b"\\"):  # which divides names
            yield f"listed as {ran.out}"
        yield from (f"made {path}" for path in tree() - {b"s.ini"})


def within(directory, action, case):
    """The faults of a case, in a new directory. What cannot be read as it should is one, too."""
    here = os.getcwd()
    work = tempfile.mkdtemp(dir=directory)
    os.chdir(work)
    faults = []
    try:
        faults.extend(action(case))
        return faults
    except (LookupError, OSError, ValueError) as error:
        return [*faults, repr(error)]
    finally:
        os.chdir(here)
        shutil.rmtree(work)


def parse_arguments():
    parser = argparse.ArgumentParser()
    for name in "ingest", "moon":
        parser.add_argument(name, type=os.path.realpath)
    parser.add_argument("--sample", type=int, metavar="N")
    parser.add_argument("--memory", type=int, metavar="MIB", default=512, help="what a run may take")
    return parser.parse_args()


def main():
    options = parse_arguments()
    hostile = Hostile(options.ingest, options.moon)

    def sampled(cases):
        return cases if options.sample is None else random.sample(cases, min(options.sample, len(cases)))

    names = inputs.names()
    lines = [name for name in names if not re.search(rb"[\r\n]", name) and name.strip(b" \t") == name]
    kinds = {"names as arguments": (hostile.batch, sampled(names)), "names in lists": (hostile.listed, sampled(names)),
             "paths": (hostile.path, sampled(inputs.PATHS)), "names in a service": (hostile.service, [sampled(names)]),
             "headers": (hostile.header, sampled(inputs.headers())),
             "properties": (hostile.property, sampled(list(inputs.properties()))),
             "names of targets": (hostile.targets, [sampled(lines)]), "names of sites": (hostile.site, sampled(names))}
    faults = []
    with tempfile.TemporaryDirectory() as directory:
        for kind, (action, cases) in kinds.items():
            for case in cases:
                faults += [f"{kind}: {str(case)[:100]}: {fault}" for fault in within(directory, action, case)]
            print(f"{kind}: {len(cases)} cases")
    counts = {kind: len(cases) for kind, (_, cases) in kinds.items()}
    if Ran.most > options.memory:
        faults.append(f"a run took {Ran.most} MiB")
    for fault in faults:
        print("FAILED:", fault)
    print(f"{counts['names in lists'] + counts['paths']} names, {counts['headers']} headers, {counts['properties']} properties: "
          f"{Ran.slowest:.1f} s and {Ran.most} MiB at most, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
