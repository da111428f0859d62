"""Turns measurements into bench/rows.csv's table of ratios: table.py MEASUREMENTS DIRECTORY

Prints the machine's facts and the table; the directory receives the table as ratios.csv and, for
docs/performance.md, ratios.md, the pictures ratios.png and growth.png, and what they are drawn from.
"""

import csv
import json
import math
import os
import statistics
import subprocess
import sys

FLAGS = ("fma", "avx2", "avx512f", "avx512dq")
PACKAGES = ("libace-dev", "libcfitsio-dev", "libbenchmark-dev", "libabsl-dev", "libboost-dev",
            "libcli11-dev", "libfmt-dev", "libinih-dev", "libspdlog-dev", "python3-astroplan",
            "python3-astropy", "python3-numpy", "libc6")
UNITS = ((1, "s"), (1e-3, "ms"), (1e-6, "us"), (1e-9, "ns"))
COLUMNS = ("row", "ratio", "quartiles", "aim", "met", "ours", "remark")
SCRIPTS = os.path.dirname(os.path.abspath(__file__))


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout.strip()


def facts():
    with open("/proc/cpuinfo") as file:
        processor = dict(line.split(":", 1) for line in file if ":" in line)
    processor = {name.strip(): value.strip() for name, value in processor.items()}
    flags = processor.get("flags", "").split()
    versions = output_of("dpkg-query", "-W", "-f=${Package} ${Version}\n", *PACKAGES)
    return [f"processor: {processor.get('model name', 'unknown')}, {os.cpu_count()} cores, "
            + " ".join(flag for flag in FLAGS if flag in flags),
            "load: " + " ".join(f"{load:.2f}" for load in os.getloadavg()),
            "compiler: " + output_of("g++", "--version").splitlines()[0],
            "disk: " + output_of("stat", "-f", "-c", "%T", "."),
            "packages: " + versions.replace("\n", ", ")]


def parse_aim(text):
    """A ratio, also in the form 1/N; none for an empty text."""
    parts = [float(part) for part in text.split("/") if part]
    return parts[0] / (parts[1] if len(parts) > 1 else 1) if parts else None


def show_ratio(ratio):
    if ratio >= 0.5:
        return f"{ratio:.2f}"
    return f"1/{1 / ratio:.1f}" if ratio > 0.1 else f"1/{1 / ratio:.0f}"


def show_time(seconds):
    for unit, name in UNITS:
        if seconds >= unit:
            break
    return f"{seconds / unit:.3g} {name}"


def quartiles(values):
    if len(values) == 1:
        return values * 3
    return statistics.quantiles(values, n=4, method="inclusive")


def points_of(series, measured):
    """Sizes and median times of a series."""
    prefix = series + "/"
    return sorted((int(name[len(prefix):]), statistics.median(times))
                  for name, times in measured.items() if name.startswith(prefix))


def exponent(points):
    """The slope of a straight line through the logarithms."""
    x, y = zip(*((math.log(size), math.log(seconds)) for size, seconds in points))
    return statistics.linear_regression(x, y).slope


def evaluate(row, measured):
    """The row with its ratios (lower, median, upper) and our time; none if it was not measured."""
    if row["peer"] == "size":
        points = points_of(row["ours"], measured)
        return dict(row, ratios=[exponent(points)] * 3, seconds=None) if points else None
    if row["ours"] not in measured or row["peer"] not in measured:
        return None
    ours, peer = measured[row["ours"]], measured[row["peer"]]
    ratios = quartiles([one / other for one, other in zip(ours, peer)])
    seconds = statistics.median(ours) / int(row["items"]) if row["items"] else None
    return dict(row, ratios=ratios, seconds=seconds)


def cells(row):
    lower, median, upper = row["ratios"]
    aim = parse_aim(row["aim"])
    spread = "" if lower == upper else f"{show_ratio(lower)} to {show_ratio(upper)}"
    met = "" if aim is None else "yes" if round(median, 2) <= aim else "no"
    time = "" if row["seconds"] is None else show_time(row["seconds"])
    return [row["row"], show_ratio(median), spread, row["aim"], met, time, row["remark"]]


def print_table(rows):
    table = [COLUMNS] + [cells(row) for row in rows]
    widths = [max(map(len, column)) for column in zip(*table)]
    for line in table:
        print("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip())


def write_csv(rows, name):
    with open(name, "w", newline="") as file:
        writer = csv.writer(file)
        writer.writerow(("row", "median", "lower quartile", "upper quartile", "aim", "seconds",
                         "remark"))
        for row in rows:
            lower, median, upper = row["ratios"]
            writer.writerow([row["row"], median, lower, upper, parse_aim(row["aim"]),
                             row["seconds"], row["remark"]])


def write_markdown(rows, name):
    """Without our own times, and without what was measured beside an older build."""
    left_out = (COLUMNS.index("met"), COLUMNS.index("ours"))
    table = [COLUMNS, ["---"] * len(COLUMNS)]
    table += [cells(row) for row in rows if not row["peer"].endswith("/before")]
    with open(name, "w") as file:
        for line in table:
            kept = [cell for i, cell in enumerate(line) if i not in left_out]
            file.write("| " + " | ".join(kept) + " |\n")


def write_points(rows, measured, name):
    """A block of data for each series of growth, relative to its first point."""
    with open(name, "w") as file:
        for row in rows:
            points = points_of(row["ours"], measured)
            file.write(f'"{row["row"]}: {row["ratios"][1]:.2f}"\n')
            file.writelines(f"{size / points[0][0]} {seconds / points[0][1]}\n"
                            for size, seconds in points)
            file.write("\n\n")


def write_ratios(rows, name):
    with open(name, "w") as file:
        for place, row in enumerate(rows):
            lower, median, upper = row["ratios"]
            file.write(f'"{row["row"]}" {place} {median} {lower} {upper} '
                       f'{parse_aim(row["aim"]) or "NaN"}\n')


def draw(directory, *names):
    for name in names:
        subprocess.run(["gnuplot", "--default-settings", f"{SCRIPTS}/{name}.gnuplot"],
                       cwd=directory, check=True)


def main():
    measurements, directory = sys.argv[1:]
    with open(measurements) as file:
        measured = json.load(file)
    with open(f"{SCRIPTS}/rows.csv", newline="") as file:
        rows = list(csv.DictReader(file))
    rows = [done for done in (evaluate(row, measured) for row in rows) if done]
    growth = [row for row in rows if row["peer"] == "size"]
    print("\n".join(facts()), end="\n\n")
    print_table(rows)
    write_csv(rows, f"{directory}/ratios.csv")
    write_markdown(rows, f"{directory}/ratios.md")
    write_ratios([row for row in rows if row["seconds"]], f"{directory}/ratios.dat")
    write_points(growth, measured, f"{directory}/growth.dat")
    draw(directory, "ratios", "growth")


main()
