"""What zarn-ingest does while something fails, and what must then be true on disk."""

import collections
import pathlib

HEADER = pathlib.Path(__file__).resolve().parents[2] / "examples/headers/imager.hdr"
FILES = ["a", "b", "c"]

# The properties of a service that does at once what is there, and ends.
SERVICE = """[ingest]
pattern = in/*.hdr
output-dir = out
[service]
done = done
failed = failed
journal = journal
poll = 1
settle = 0
least-free = 0
"""
LOG = SERVICE + "[log]\nfile = log\nsize = 1\ninterval = 1\nfiles = 3\n"
PROPERTIES = {
    "p.ini": SERVICE,
    "log.ini": LOG,
    "watch.ini": LOG.replace("settle = 0", "settle = 1"),
}
SCENARIOS = {
    "batch": ["-o", "out", "-f", "in/*.hdr"],
    "resume": ["-r", "-j", "journal", "-o", "out", "in/*.hdr"],
    "report": ["-c", "-f", "--report", "report", "-m", "VEK1", "-o", "out", "in/*.hdr"],
    "service": ["-p", "p.ini"],
    "log": ["-p", "log.ini"],
    # Sees the files when they have settled, in its second round; meanwhile the log rolls over.
    "watch": ["-p", "watch.ini", "--watch"],
    "roll-over": ["-p", "log.ini", "--watch"],
}
SERVICES = "service", "log", "watch", "roll-over"
STOPPED = "watch", "roll-over"


def prepare(names=FILES):
    """Fills the present directory with sources and properties."""
    pathlib.Path("in").mkdir()
    text = HEADER.read_text()
    for name in names:
        pathlib.Path("in", name + ".hdr").write_text(text.replace("Field 17", "Field " + name))
    for name, properties in PROPERTIES.items():
        pathlib.Path(name).write_text(properties)


def kept(text):
    """What a result is compared by: its cards, but for checksums, which hold the present time."""
    cards = [text[at:at + 80] for at in range(0, len(text), 80)]
    return [card for card in cards if not card.startswith((b"CHECKSUM", b"DATASUM"))]


def results():
    return {path.name: kept(path.read_bytes()) for path in pathlib.Path("out").glob("*.fits")}


def journal():
    lines = [line.split("\t") for path in sorted(pathlib.Path("journal").glob("*.journal"))
             for line in path.read_text(errors="replace").splitlines(keepends=True)]
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


def undone(scenario, expected):
    """What is left to do."""
    if results().keys() != expected.keys():
        yield "results are missing"
    if scenario in SERVICES and any(pathlib.Path("in").glob("*.hdr")):
        yield "sources are left"
    if scenario in (*SERVICES, "resume"):
        told = collections.Counter(fields[2] for fields in journal())
        wanted = collections.Counter(f"in/{name}.hdr" for name in names_of(expected))
        if told != wanted:
            wrong = {name: told[name] for name in told | wanted if told[name] != wanted[name]}
            yield f"the journal tells, how many times: {wrong}"


def judged(scenario, status, run_again, expected):
    """The faults after a run that ended with a status, and after one more, undisturbed run."""
    yield from untruths(expected)
    if status == 0 and scenario not in STOPPED:
        yield from (f"status 0, but {what}" for what in undone(scenario, expected))
    again = run_again()
    if again != 0 and not (scenario == "report" and again == 1):
        yield f"status {again} of the next run"
    for truth in (undone(scenario, expected), untruths(expected)):
        yield from (f"after the next run, {what}" for what in truth)
    if any(pathlib.Path("out").glob(".zarn-ingest-*")):
        yield "after the next run, a working directory is left"
