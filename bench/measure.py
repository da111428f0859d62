"""Measures the sides of all comparisons: the names in bench/rows.csv, to lists of seconds.

    measure.py BUILD INSTALLED MEMORY DISK RESULT [--short] [--before PROGRAM]

BUILD has the programs of the comparisons, INSTALLED is the prefix of ours: the loader looks for its
libraries in a build's directories, too, before those of the system. MEMORY and DISK are empty
directories, and RESULT is the JSON file to write.
The measurements of one place in two lists belong together: they were made one after the other.
"""

import argparse
import collections
import json
import os
import random
import re
import shutil
import subprocess
import time

SOURCES = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
DURABLE_FILES = 300
BATCH_FILES = 1000
SYNCS = "fsync,fdatasync,syncfs,sync_file_range"
SERVICE = """[ingest]
pattern = {0}/in/*.hdr
output-dir = {0}/out
quiet = T
[service]
done = {0}/done
failed = {0}/failed
journal = {0}/journal
settle = 0
least-free = 0
"""

measured = collections.defaultdict(list)


def parse_arguments():
    parser = argparse.ArgumentParser()
    for name in ("build", "installed", "memory", "disk", "result"):
        parser.add_argument(name)
    parser.add_argument("--short", action="store_true")
    parser.add_argument("--before")
    return parser.parse_args()


def run_sides(program, memory, short):
    """Runs the benchmark program row by row."""
    names = subprocess.run([program, memory, "--benchmark_list_tests"], check=True,
                           capture_output=True, text=True).stdout.split()
    for row in dict.fromkeys(name.split("/")[0] for name in names):
        output = f"{memory}/sides.json"
        subprocess.run(
            [program, memory, f"--benchmark_filter=^{row}/", f"--benchmark_out={output}",
             "--benchmark_enable_random_interleaving=true",
             f"--benchmark_min_time={0.01 if short else 0.05}",
             f"--benchmark_repetitions={7 if short else 21}"],
            check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        with open(output) as file:
            runs = [run for run in json.load(file)["benchmarks"] if run["run_type"] == "iteration"]
        for run in sorted(runs, key=lambda run: run["repetition_index"]):
            measured[run["run_name"]].append(run["cpu_time"] * 1e-9)


def time_program(command):
    """Seconds of processor and of the clock that a program takes."""
    start = time.monotonic()
    null = [(os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0)]
    child = os.posix_spawnp(command[0], command, os.environ, file_actions=null)
    _, status, usage = os.wait4(child, 0)
    if status != 0:
        raise RuntimeError(f"failed: {' '.join(command)}")
    return usage.ru_utime + usage.ru_stime, time.monotonic() - start


def convert(command, out, files):
    """The same for a program that makes as many files in a directory."""
    seconds = time_program(command)
    if len(os.listdir(out)) != files:
        raise RuntimeError(f"not all files are there: {' '.join(command)}")
    return seconds


def empty(directory):
    shutil.rmtree(directory, ignore_errors=True)
    os.makedirs(directory)


def write_headers(directory, files, lines):
    """Writes header texts and the list of their names, and returns the list's."""
    with open(f"{SOURCES}/examples/headers/imager.hdr") as file:
        text = file.read().splitlines()
    more = [f"KEY{i:<5}= {i + 10000:20} / a value" for i in range(lines - len(text))]
    text[-3:-3] = more
    os.makedirs(directory, exist_ok=True)
    names = [f"{directory}/{i}.hdr" for i in range(files)]
    for i, name in enumerate(names):
        with open(name, "w") as file:
            file.write("\n".join(text).replace("Field 17", f"Field {i}") + "\n")
    with open(f"{directory}/list", "w") as file:
        file.writelines(f"{name}\n" for name in names)
    return f"{directory}/list"


def run_batches(programs, bare, memory, rounds):
    """Whole runs over files in memory, by processor time."""
    out = f"{memory}/out"
    for lines in (19, 153):
        names = write_headers(f"{memory}/{lines}", BATCH_FILES, lines)
        sides = {side: [program, "-q", "-o", out, "-l", names]
                 for side, program in programs.items()}
        sides["bare"] = [bare, out, names]
        sides["astropy"] = ["/usr/bin/python3", f"{SOURCES}/bench/programs/astropy-loop.py", out,
                            names]
        for _ in range(rounds):
            for side, command in random.sample(list(sides.items()), len(sides)):
                empty(out)
                measured[f"ingest-{lines}/{side}"].append(convert(command, out, BATCH_FILES)[0])


def run_growth(program, memory, rounds):
    out = f"{memory}/out"
    for files in (100, 300, 1000, 3000):
        names = write_headers(f"{memory}/growth", files, 19)
        for _ in range(rounds):
            empty(out)
            used, _ = convert([program, "-q", "-o", out, "-l", names], out, files)
            measured[f"growth-files/{files}"].append(used)


def durable_runs(program, directory):
    """Name and command of each way to convert durably, in the order in which they run. All begin
    with an empty directory but "again", which finds what the one before it left."""
    out, names = f"{directory}/out", f"{directory}/list"
    if program.endswith("bare-loop"):
        return {"loop": [program, out, names, "sync"]}
    resume = [program, "-q", "--resume", "-o", out, "-l", names]
    return {
        "journal": [program, "-q", "--journal", f"{directory}/journal", "-o", out, "-l", names],
        "service": [program, "-p", f"{directory}/service.ini"],
        "resume": resume,
        "again": resume,
    }


def prepare(directory):
    empty(directory)
    shutil.copy(write_headers(f"{directory}/in", DURABLE_FILES, 19), directory)
    with open(f"{directory}/service.ini", "w") as file:
        file.write(SERVICE.format(directory))
    os.sync()


def run_durable(sides, disk, rounds):
    """Durable runs on the disk, by the clock."""
    directory = f"{disk}/durable"
    for _ in range(rounds):
        for side, program in random.sample(list(sides.items()), len(sides)):
            for way, command in durable_runs(program, directory).items():
                if way != "again":
                    prepare(directory)
                _, seconds = convert(command, f"{directory}/out", DURABLE_FILES)
                measured[f"durable-{way}/{side}"].append(seconds)


def count_syncs(command, log):
    subprocess.run(["strace", "-f", "-qq", "-e", f"trace={SYNCS}", "-o", log] + command, check=True,
                   stdout=subprocess.DEVNULL)
    with open(log) as file:
        return len(re.findall(r"(?:sync|sync_file_range)\(", file.read())) / DURABLE_FILES


def run_syncs(sides, disk):
    """Syncs a file, where the kernel lets strace count them."""
    directory, log = f"{disk}/durable", f"{disk}/strace"
    if not shutil.which("strace") or subprocess.run(["strace", "-o", log, "true"],
                                                    stderr=subprocess.DEVNULL).returncode != 0:
        return
    for side, program in sides.items():
        for way, command in durable_runs(program, directory).items():
            if way != "again":
                prepare(directory)
            measured[f"syncs-{way}/{side}"].append(count_syncs(command, log))


def run_starts(program, bare, starts):
    """Starts, ten to a measurement."""
    for _ in range(starts // 10):
        used = collections.Counter()
        for _ in range(10):
            for side, command in {"ours": [program, "--version"], "bare": [bare]}.items():
                used[side] += time_program(command)[0] / 10
        for side, seconds in used.items():
            measured[f"start/{side}"].append(seconds)


def run_python(build, rounds):
    """The Python module beside others, in one process."""
    output = subprocess.run(
        ["/usr/bin/python3", f"{SOURCES}/bench/programs/python-sky.py", str(rounds)], check=True,
        capture_output=True, text=True, env=dict(os.environ, PYTHONPATH=f"{build}/python")).stdout
    measured.update(json.loads(output))


def main():
    arguments = parse_arguments()
    build, memory, disk = arguments.build, arguments.memory, arguments.disk
    short = arguments.short
    ours = os.path.abspath(f"{arguments.installed}/bin/zarn-ingest")
    programs = {"ours": ours}
    if arguments.before:
        programs["before"] = os.path.abspath(arguments.before)
    bare = f"{build}/bench/bare-loop"
    run_sides(f"{build}/bench/side-by-side", memory, short)
    run_batches(programs, bare, memory, 3 if short else 7)
    run_growth(ours, memory, 3 if short else 5)
    run_durable(dict(programs, bare=bare), disk, 3 if short else 9)
    run_syncs(dict(programs, bare=bare), disk)
    run_starts(ours, f"{build}/bench/bare-start", 100 if short else 400)
    run_python(build, 3 if short else 9)
    with open(arguments.result, "w") as file:
        json.dump(measured, file, indent=1)


main()
