#!/usr/bin/env python3
"""Runs what README and the pages print.

    documented.py DIRECTORY_OF_PROGRAMS...
    documented.py --long    the commands that take minutes, in the project itself

A session ("$ command" and its output) must give the output that stands there, in which "..." is any
number of lines. A line for cron must write its file. Other commands need time or a system of their own: for each one the table names the
script that runs it, and what stands there.
"""

import contextlib
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

PROJECT = pathlib.Path(__file__).resolve().parent.parent
PAGES = ["README.md", "CONTRIBUTING.md", "docs/*.md", "docs/pages/*.md", "examples/*/README.md"]

# How a command begins, the script that runs it, and what of it stands there.
RUN_ELSEWHERE = """
    script/demo                         | .ci/run           | script/demo
    script/test                         | .ci/run           | script/test
    cmake --preset release -DCMAKE_TOOL | tests/cross.sh    | commands support.md 'cmake --preset'
    dpkg --add-architecture             | tests/cross.sh    | commands support.md 'dpkg --add-architecture'
    apt-get install cmake g++-aarch64   | tests/cross.sh    | commands support.md 'dpkg --add-architecture'
    cmake --preset release              | script/build      | cmake --preset "$preset"
    cmake --build --preset release      | script/build      | cmake --build --preset "$preset"
    ctest --preset release              | script/test       | ctest --preset release
    cmake --install build/release       | tests/install.sh  | cmake --install "$build" --prefix
    g++ -std=c++17 main.cpp             | tests/install.sh  | pkg-config --cflags --libs zarnsysutil
    python3 -m venv                     | script/python     | -m venv --system-site-packages
    venv/bin/pip install                | script/python     | --no-build-isolation --no-index ./python
    apt install ./libzarnsysutil0       | tests/packages.sh | page 'apt install'
    cp /usr/share/doc/zarn-tools        | tests/packages.sh | page 'cp /usr/share/doc'
    zarn-ingest --properties /etc       | tests/packages.sh | page 'cp /usr/share/doc'
    systemctl                           | tests/packages.sh | page 'systemctl stop'
    runuser -u zarn-ingest              | tests/packages.sh | page 'systemctl stop'
    find headers -name                  | examples/slurm/prove | >list
    array=$(sbatch                      | examples/slurm/prove | sbatch --parsable --array=1-
    sbatch --dependency                 | examples/slurm/prove | --dependency="afterany:$array"
"""
# Pages whose commands take minutes.
LONG = "docs/accuracy.md", "docs/performance.md"


def blocks(language):
    """Fenced blocks: page and text."""
    for pattern in PAGES:
        for page in sorted(PROJECT.glob(pattern)):
            for indent, own, text in re.findall(r"^( *)```(\w*)\n(.*?)^ *```$", page.read_text(), re.M | re.S):
                if own == language:
                    yield page.relative_to(PROJECT), re.sub(f"^{indent}", "", text, flags=re.M)


def unrun():
    """What stands in the pages and is run by nobody."""
    table = [[field.strip() for field in line.split(" | ")] for line in RUN_ELSEWHERE.strip().splitlines()]
    for page, text in blocks("sh"):
        if str(page) in LONG:
            continue
        for command in re.sub(r"\\\n\s*", "", text).splitlines():
            script, there = next((row[1:] for row in table if command.startswith(row[0])), ("", ""))
            if not script or there not in (PROJECT / script).read_text():
                yield f"{page}: run by nobody: {command}"
    yield from (f"{page}: a block without a language: {text}" for page, text in blocks(""))


def run_long():
    """Runs the commands of those pages, with a file and a program of ours where they name any."""
    with tempfile.TemporaryDirectory(prefix="zarnsys-documented-") as directory:
        given = {"FILE": f"{directory}/values", "PROGRAM": f"{PROJECT}/build/release/programs/zarn-ingest/zarn-ingest"}
        for page, text in blocks("sh"):
            if str(page) in LONG:
                commands = re.sub(r"\b(FILE|PROGRAM)\b", lambda name: given[name[0]], text)
                subprocess.run(["bash", "-exc", commands], cwd=PROJECT, check=True)


def pattern_of(printed):
    """What may be told instead of what is printed: another time, age or room, and anything for "..."."""
    varying = "|".join((r"(?<=\[ )\d+(?= \])", r"\d{4}-\d\d-\d\d(?= \d\d:)", r"\d\d:\d\d:\d\d\.\d{6}",
                        r"\d{4}-\d\d-\d\dT[\d:]+", r"(?<=in )\d+\.\d(?= s)", r"(?<=for )\d+(?= s)", r"\d{5,}(?=,)"))
    lines = []
    for line in printed.splitlines():
        told = r"\S+".join(re.escape(text) for text in re.split(varying, line))
        lines.append("(?:.*\n)*?" if line.strip() == "..." else told + "\n")
    return "".join(lines)


def differing(text, root, environment):
    """Runs a session in a directory that stands for "/" and for the project's. Yields what is wrong."""
    command, printed = text.removeprefix("$ ").split("\n", 1)
    ran = subprocess.run(command.replace(" /", f" {root}/"), shell=True, cwd=root, env=environment, timeout=60,
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    if not re.fullmatch(pattern_of(printed), ran.stdout.replace(f"{root}/", "/")):
        yield f"$ {command}\nprinted:\n{printed}told:\n{ran.stdout}"


def without_file(text, root, environment):
    """Runs a line for cron in such a directory. Yields what is wrong with the file that it writes last."""
    command = text.split(maxsplit=6)[6].replace(" /", f" {root}/")
    directory, name = re.search(r"^cd (\S+) .* (\S+)$", command).groups()
    os.makedirs(directory)
    subprocess.run(["/bin/sh", "-c", command], env=environment, timeout=60, check=False)
    if not re.search(r"^zarn_ingest_problems\{.*\} 1$", pathlib.Path(directory, name).read_text(), re.M):
        yield f"$ {command}"


@contextlib.contextmanager
def operated(root, environment):
    """The service of docs/operating.md: two sources are converted, one failed, two wait for it."""
    etc, data, log = root / "etc", root / "var/lib/zarn-ingest", root / "var/log/zarn-ingest"
    incoming = data / "incoming"
    for directory in etc, incoming, log:
        directory.mkdir(parents=True)
    sample = (PROJECT / "programs/zarn-ingest/deploy/zarn-ingest.ini").read_text()
    settings = etc / "zarn-ingest.ini"
    settings.write_text(sample.replace("= /var", f"= {root}/var"))
    call = ["zarn-ingest", "--properties", str(settings)]

    def arrive(header, name):
        shutil.copy(PROJECT / "examples/headers" / header, incoming / name)

    def runs():
        status = subprocess.run([*call, "--status"], env=environment, stdout=subprocess.PIPE, text=True, check=False)
        return "service           runs" in status.stdout

    for header, name in ("imager.hdr", "x.hdr"), ("imager.hdr", "y.hdr"), ("broken.hdr", "z.hdr"):
        arrive(header, name)
    subprocess.run(call, env=environment, stderr=subprocess.DEVNULL, check=False)
    with subprocess.Popen([*call, "--watch"], env=environment, stderr=subprocess.DEVNULL) as service:
        try:
            while not runs() and service.poll() is None:
                time.sleep(0.05)
            service.send_signal(signal.SIGSTOP)  # it still runs, and what arrives waits
            arrive("imager.hdr", "a.hdr")
            arrive("imager.hdr", "b.hdr")
            (data / "fits/x.fits").unlink()      # for the verification
            yield
        finally:
            service.kill()


def main():
    if sys.argv[1:] == ["--long"]:
        return run_long()
    programs = [os.path.abspath(directory) for directory in sys.argv[1:]]
    environment = {**os.environ, "LC_ALL": "C", "PATH": os.pathsep.join([*programs, os.environ["PATH"]])}
    faults = list(unrun())
    sessions = list(blocks("console"))
    with tempfile.TemporaryDirectory(prefix="zarnsys-documented-") as directory:
        root = pathlib.Path(directory).resolve()
        (root / "examples").symlink_to(PROJECT / "examples")
        (root / "headers").symlink_to(PROJECT / "examples/headers")
        with operated(root, environment):
            for page, text in sessions:
                faults += [f"{page}: {fault}" for fault in differing(text, root, environment)]
            for page, text in blocks("crontab"):
                faults += [f"{page}: {fault}" for fault in without_file(text, root, environment)]
    print("\n".join(faults) or f"{len(sessions)} sessions as printed")
    return 1 if faults or not sessions else 0


if __name__ == "__main__":
    sys.exit(main())
