"""What zarn-ingest does while something fails, and what must then be true on disk."""

import argparse
import collections
import os
import pathlib
import shutil
import tempfile

from tracing import SERVICE

SECONDS = 30  # after which a run hangs
FILES = ["a", "b", "c"]


def prepare(samples, names=FILES):
    """Fills the present directory with sources."""
    pathlib.Path("in").mkdir()
    text = (samples / "imager.hdr").read_text()
    for name in names:
        pathlib.Path("in", name + ".hdr").write_text(text.replace("Field 17", "Field " + name))
    pathlib.Path("p.ini").write_text(SERVICE)


def service(log=False):
    if log:
        with open("p.ini", "a") as properties:
            properties.write("[log]\nfile = log\nsize = 1\ninterval = 1\nfiles = 3\n")
    return ["-p", "p.ini"]


def batch():
    return ["-o", "out", "-f", "in/*.hdr"]


def journalled():
    return ["-r", "-j", "journal", "-o", "out", "in/*.hdr"]


def reported():
    return ["-c", "-f", "--report", "report", "-m", "VEK1", "-o", "out", "in/*.hdr"]


SCENARIOS = {
    "batch": batch,
    "resume": journalled,
    "report": reported,
    "service": service,
    "log": lambda: service(log=True),
}


def kept(text):
    """What a result is compared by: its cards, but for checksums, which hold the present time."""
    cards = [text[at:at + 80] for at in range(0, len(text), 80)]
    return [card for card in cards if not card.startswith((b"CHECKSUM", b"DATASUM"))]


def results(directory="."):
    return {p.name: kept(p.read_bytes()) for p in pathlib.Path(directory, "out").glob("*.fits")}


def journal():
    lines = [line.split("\t") for p in sorted(pathlib.Path("journal").glob("*.journal"))
             for line in p.read_text(errors="replace").splitlines(keepends=True)]
    return [fields for fields in lines if fields[-1].endswith("\n")]


def names_of(results):
    return [pathlib.Path(result).stem for result in results]


def untruths(expected):
    """What of that which is on disk should not be."""
    found = results()
    for name, text in found.items():
        if text != expected.get(name):
            yield f"out/{name} is not whole"
    for name in names_of(expected):
        source = pathlib.Path("in", name + ".hdr")
        done = pathlib.Path("done", name + ".hdr")
        if not source.exists() and not done.exists():
            yield f"{source} is lost"
        if done.exists() and name + ".fits" not in found:
            yield f"{done} has no result"
    if pathlib.Path("failed").is_dir() and any(pathlib.Path("failed").iterdir()):
        yield "a sound header failed"
    for fields in journal():
        if len(fields) != 8 or fields[4] != "converted":
            yield f"the journal says {fields}"
        elif pathlib.Path(fields[3]).name not in found:
            yield f"the journal tells of a result that is not there: {fields[3]}"


def left():
    """What the next run should have removed."""
    if any(pathlib.Path("out").glob(".zarn-ingest-*")):
        yield "a working directory is left"


def undone(scenario, expected):
    """What is left to do."""
    if results().keys() != expected.keys():
        yield "results are missing"
    if scenario in ("service", "log") and any(pathlib.Path("in").glob("*.hdr")):
        yield "sources are left"
    if scenario in ("service", "log", "resume"):
        told = collections.Counter(fields[2] for fields in journal())
        wanted = collections.Counter(f"in/{name}.hdr" for name in names_of(expected))
        if told != wanted:
            wrong = {name: told[name] for name in told | wanted if told[name] != wanted[name]}
            yield f"the journal tells, how many times: {wrong}"


def judged(scenario, status, run_again, expected):
    """The faults after a run that ended with a status, and after one more, undisturbed run."""
    if status not in (0, 1, 2):
        yield f"status {status}"
    yield from untruths(expected)
    if status == 0:
        yield from (f"status 0, but {what}" for what in undone(scenario, expected))
    again = run_again()
    if again != 0 and not (scenario == "report" and again == 1):
        yield f"status {again} of the next run"
    for truth in (undone(scenario, expected), untruths(expected), left()):
        yield from (f"after the next run, {what}" for what in truth)


def parse_arguments(*programs):
    """The command line of a sweep: programs or libraries, samples, and how many failures to take."""
    parser = argparse.ArgumentParser()
    for name in programs:
        parser.add_argument(name, type=os.path.realpath)
    parser.add_argument("samples", type=lambda name: pathlib.Path(name).resolve())
    parser.add_argument("--sample", type=int, metavar="N")
    return parser.parse_args()


def within(directory, samples, action):
    """Runs an action in a new directory with sources, which is removed afterwards."""
    here = os.getcwd()
    work = tempfile.mkdtemp(dir=directory)
    os.chdir(work)
    try:
        prepare(samples)
        return action()
    finally:
        os.chdir(here)
        shutil.rmtree(work, ignore_errors=True)
