#!/usr/bin/python3
"""zarn-moon's calendars, read back by another library and compared with its own CSV.

    calendars.py PROGRAM

Ends with status 77, "skipped", where python3-icalendar is not installed.
"""
import csv, datetime, io, subprocess, sys, tempfile

try:
    import icalendar
except ImportError:
    print("skipped: needs icalendar")
    sys.exit(77)

NAMES = ["plain", "comma, semicolon; colon: backslash \\ quote \"", "é" * 40 + "ℵ" * 30, "x" * 300]
NIGHTS = ["--place", "42.5N 12.3E", "--date", "2026-12-28", "--nights", "12", "--min-altitude", "30"]


def run(targets, *arguments):
    return subprocess.run([sys.argv[1], *NIGHTS, "--targets", targets, *arguments], check=True,
                          stdout=subprocess.PIPE).stdout


def instant(text):
    return datetime.datetime.strptime(text, "%Y-%m-%dT%H:%MZ").replace(tzinfo=datetime.timezone.utc)


with tempfile.NamedTemporaryFile("w", suffix=".csv", encoding="utf-8") as targets:
    for ra, name in enumerate(NAMES):
        targets.write('"%s",%d,20\n' % (name.replace('"', '""'), 60 + ra))
    targets.write("plain,60,20\n")  # twice
    targets.flush()
    content = run(targets.name, "--format", "ics")
    again = run(targets.name, "--format", "ics")
    rows = list(csv.DictReader(io.StringIO(run(targets.name, "--format", "csv").decode())))

lines = content.split(b"\r\n")
assert lines[-1] == b"" and not any(b"\n" in line or b"\r" in line for line in lines), "line ends"
assert max(map(len, lines)) == 75 and b" " + b"x" * 74 in lines, "folded at 75 octets"
for line in lines:
    line.decode()  # no character is cut

calendar = icalendar.Calendar.from_ical(content)
assert calendar["VERSION"] == "2.0" and calendar["PRODID"], "version and product"
events = calendar.walk("VEVENT")
uids = [str(event["UID"]) for event in events]
assert len(set(uids)) == len(uids), "a UID for each event"
assert uids == [str(event["UID"]) for event in icalendar.Calendar.from_ical(again).walk("VEVENT")]
now = datetime.datetime.now(datetime.timezone.utc)
for event in events:
    assert abs(now - event["DTSTAMP"].dt) < datetime.timedelta(hours=1), event["DTSTAMP"].dt
    assert event["GEO"].to_ical() == "42.5;12.3", event["GEO"].to_ical()
    assert event["LOCATION"] == "the place (42.5000N 12.3000E)"

best = {(str(event["SUMMARY"]), event["DTSTART"].dt, event["DTEND"].dt) for event in events
        if not event["SUMMARY"].startswith("Dark")}
# Backslashes in names are shown as everywhere.
expected = {(row["target"].replace("\\", "\\x5C") + ": best window", instant(row["window_begin"]),
             instant(row["window_end"])) for row in rows if row["window_begin"]}
assert len(expected) == 4 * 12 and best == expected, best ^ expected
# The moon rises later each night: after that of 2 January it is dark at dusk until it rises.
dark = [event for event in events if event["SUMMARY"].startswith("Dark")]
assert len(dark) == 12, len(dark)
print("%d events" % len(events))
