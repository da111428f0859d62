#!/usr/bin/env python3
"""Gives the programs hostile names, header texts and properties: nothing gets in.

    hostile.py ZARN_INGEST ZARN_MOON [--sample N]

Each input gives exactly what it names, or is refused with a message; no other file is touched,
nothing in it is run, and a run takes bounded time and memory. --sample N takes N inputs of each
kind at random.
"""

import csv
import glob
import io
import json
import os
import re
import resource
import subprocess
import sys
import time

import inputs
from common import command_line, ended, sampled, workplace

SECONDS = 60
SOUND = inputs.PRIMARY + b"OBJECT  = 'x'\n"
BLOCK = 2880
CARD = 80


class Ran:
    """A run of a program in the present directory."""

    slowest = 0.0

    def __init__(self, program, arguments, given=b""):
        begin = time.monotonic()
        ran = subprocess.run([program, *arguments], input=given, capture_output=True, timeout=SECONDS, check=False)
        Ran.slowest = max(Ran.slowest, time.monotonic() - begin)
        self.status, self.out, self.err = ran.returncode, ran.stdout, ran.stderr

    def faults(self):
        """What no input may cause."""
        if self.status not in (0, 1, 2):
            yield f"status {self.status}: {self.err[-300:]}"
        if self.status != 0 and not (self.err + self.out).startswith((b"zarn-", b"20")):
            yield f"refused without a message: {self.err[:80]}"
        if re.search(rb"[\x00-\x08\x0b-\x1f\x7f]", self.err):
            yield f"control characters in a message: {self.err[:200]}"


given = {}  # what the present case has put where


def put(name, content=SOUND):
    given[os.path.abspath(os.fsencode(name))] = content
    with open(name, "wb") as file:
        file.write(content)


def get(name):
    with open(name, "rb") as file:
        return file.read()


def tree():
    """All files and directories."""
    return set(glob.glob(b"**", recursive=True, include_hidden=True))


def made_beside(allowed):
    return (f"made {path}" for path in tree() - allowed)


def differing(expected):
    return (f"{path} differs" for path in tree() ^ expected)


def unprintable(line):
    return re.sub(rb"\\x([0-9A-F]{2})", lambda escaped: bytes([int(escaped.group(1), 16)]), line)


def ends_with_header(result):
    """Whether a file of whole blocks has the end of a header in its last one."""
    cards = [result[at:at + CARD] for at in range(0, len(result), CARD)]
    return len(result) % BLOCK == 0 and b"END".ljust(CARD) in cards[-BLOCK // CARD:]


class Hostile:
    def __init__(self, ingest, moon):
        self.ingest = ingest
        self.moon = moon

    def batch(self, name):
        """A name as that of a source, a directory of results, a journal and a report."""
        for folder in (b"in", b"o", b"j", b"r"):
            os.mkdir(folder)
        source = b"in/" + name
        put(source)
        result = b"o/" + name + b"/" + inputs.stem_of(name) + b".fits"
        ran = Ran(self.ingest, [b"-q", b"-o", b"o/" + name, b"-j", b"j/" + name, b"--report", b"r/" + name, source])
        journals = {b"j/" + name} | {b"j/" + name + b"/" + file for file in os.listdir(b"j/" + name)
                                    if re.fullmatch(rb"zarn-ingest-[-0-9]{10}\.journal", file)}
        allowed = {b"in", b"o", b"j", b"r", source, b"o/" + name, b"r/" + name, result} | journals
        yield from ran.faults()
        yield from made_beside(allowed)
        if ran.status == 0:
            yield from (f"did not make {path}" for path in allowed - tree())
        elif len(inputs.stem_of(name)) + len(b".fits") <= 255:
            yield f"refused: {ran.err}"
        told = json.loads(get(b"r/" + name))
        line = b"".join(get(path) for path in journals if path.endswith(b".journal"))
        if unprintable(told["source"].encode()) != source or unprintable(line.split(b"\t")[2]) != source:
            yield f"told of as {told['source']} and {line}"

    def listed(self, name):
        """A name that stands alone in a list."""
        os.mkdir("in")
        os.chdir("in")
        put(name)
        result = inputs.stem_of(name) + b".fits"
        ran = Ran(self.ingest, [b"-q", b"-o", b"../o", b"--stdin", b"-0"], name + b"\0")
        os.chdir("..")
        yield from ran.faults()
        yield from differing({b"in", b"in/" + name, b"o"} | ({b"o/" + result} if ran.status == 0 else set()))

    def path(self, name):
        """A path that leads elsewhere, or nowhere; the list takes it literally."""
        os.makedirs("here/in")
        os.chdir("here")
        put("in/x.hdr")
        os.symlink("loop", "in/loop")
        os.symlink("../../outside", "in/dangling")
        os.mkfifo("in/pipe")
        before = tree()
        ran = Ran(self.ingest, [b"-q", b"-f", b"-o", b"o", b"--stdin", b"-0"], name + b"\0")
        yield from ran.faults()
        yield from differing(before | {b"o"} | ({b"o/x.fits"} if ran.status == 0 else set()))
        if (ran.status == 0) != name.endswith(b"x.hdr"):
            yield f"status {ran.status}"
        os.chdir("..")
        yield from (f"made {path}" for path in set(os.listdir()) - {"here"})

    def service(self, names):
        """All names arrive at once."""
        os.mkdir("in")
        for name in names:
            put(b"in/" + name)
        put("p.ini", b"[ingest]\npattern = in/*\noutput-dir = out\n[service]\ndone = done\n"
                     b"failed = failed\njournal = journal\nsettle = 0\nleast-free = 0\n")
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
        if not verified.out.endswith(b"size: 0, wrong: 0, not in the journal: 0\n"):
            yield f"verified: {verified.out}"
        status = Ran(self.ingest, ["--status", "--format", "json", "-p", "p.ini"])
        if json.loads(status.out)["failed_files"] != len(failed):
            yield f"status: {status.out}"

    def header(self, text):
        put("x.hdr", text)
        ran = Ran(self.ingest, ["-q", "-m", "VEK1", "-o", "out", "x.hdr"])
        yield from ran.faults()
        yield from made_beside({b"x.hdr", b"out", b"out/x.fits"})
        if ran.status != 0:
            return
        result = get("out/x.fits")
        if not ends_with_header(result) or re.search(rb"[^ -~]", result):
            yield "the result is no file of headers"
        if len(result) > (text.count(b"\n") + len(text) // CARD + 3) * BLOCK + len(text) // 20 * CARD:
            yield f"a result of {len(result)} bytes"

    def property(self, case):
        text, usable = case
        os.mkdir("in")
        put("in/x.hdr")
        put("p.ini", text)
        ran = Ran(self.ingest, ["-p", "p.ini"])
        yield from ran.faults()
        if ran.status != (0 if usable else 2):
            yield f"status {ran.status}: {ran.err[:200]}"
        yield from differing({b"in", b"in/x.hdr", b"p.ini"} | ({b"out", b"out/x.fits"} if usable else set()))

    def targets(self, names):
        """The names of targets in each form; a picture has some at a time."""
        lines = [b'"%s",%d,-5' % (name.replace(b'"', b'""'), index) for index, name in enumerate(names)]
        put("t.csv", b"\n".join([b"name,ra,dec", *lines]))
        night = ["-T", "OLAN", "-d", "2026-12-20", "--targets", "t.csv"]
        expected = [name.decode(errors="replace") for name in names]
        forms = {form: Ran(self.moon, [*night, "--format", form]) for form in ("table", "csv", "json")}
        for form, ran in forms.items():
            yield from (f"{form}: {fault}" for fault in ran.faults())
        yield from self.compare(expected, forms)
        for begin in range(0, len(names), 6):
            put("t.csv", b"\n".join([b"name,ra,dec", *lines[begin:begin + 6]]))
            yield from Ran(self.moon, [*night, "-o", "night", "--plot", "night.svg"]).faults()
        yield from made_beside({b"t.csv", b"night", b"night.svg"})

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
        put("s.ini", b"[" + name + b"]\nlatitude = 42.5N\nlongitude = 12.3E\n")
        ran = Ran(self.moon, ["--sites", "s.ini", "--list-sites"])
        yield from ran.faults()
        if ran.status == 0 and ran.out.split(b"\t")[0] != name.strip(b"\\"):  # which divides names
            yield f"listed as {ran.out}"
        yield from made_beside({b"s.ini"})


def faults_of(action, case):
    """The faults of a case, in a new directory. What cannot be read as it should is one, too."""
    try:
        yield from action(case)
    except (LookupError, OSError, ValueError, subprocess.SubprocessError) as error:
        yield repr(error)
    yield from (f"{path} was changed" for path, text in given.items() if os.path.exists(path) and get(path) != text)
    given.clear()


def main():
    parser = command_line("ingest", "moon", sample=None)
    parser.add_argument("--memory", type=int, metavar="MIB", default=512, help="what a run may take")
    options = parser.parse_args()
    hostile = Hostile(options.ingest, options.moon)

    def some(cases):
        return sampled(list(cases), options.sample)

    names = inputs.names()
    lines = [name for name in names if not re.search(rb"[\r\n]", name) and name.strip(b" \t") == name]
    kinds = {
        "names as arguments": (hostile.batch, some(names)),
        "names in lists": (hostile.listed, some(names)),
        "paths": (hostile.path, some(inputs.section("paths"))),
        "names in a service": (hostile.service, [some(names)]),
        "headers": (hostile.header, some(inputs.section("headers"))),
        "properties": (hostile.property, some(inputs.properties())),
        "names of targets": (hostile.targets, [some(lines)]),
        "names of sites": (hostile.site, some(names)),
    }
    faults = []
    for kind, (action, cases) in kinds.items():
        for case in cases:
            with workplace():
                faults += [f"{kind}: {str(case)[:100]}: {fault}" for fault in faults_of(action, case)]
        print(f"{kind}: {len(cases)} cases")
    most = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss // 1024
    if most > options.memory:
        faults.append(f"a run took {most} MiB")
    counts = {kind: len(cases) for kind, (_, cases) in kinds.items()}
    return ended(faults, f"{counts['names in lists'] + counts['paths']} names, {counts['headers']} headers,"
                 f" {counts['properties']} properties: {Ran.slowest:.1f} s and {most} MiB at most")


if __name__ == "__main__":
    sys.exit(main())
