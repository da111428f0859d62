"""Hostile inputs: the lists of tests/data/hostile.txt, and what is made more easily than written."""

import os
import re

DATA = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../data/hostile.txt")
CONTROLS = [bytes([code]) for code in (*range(1, 32), 127)]
SIGNS = [bytes([code]) for code in b" !\"#$%&'()*+,-:;<=>?@[\\]^`{|}~"]
HUGE = [b"-1", b"999", b"2147483648", b"9223372036854775807", b"1E308", b"NaN"]
ODD = [b"\0", b"\r", b"\x1b[2J", b"\x7f", b"\xff", b"\xc2\x85", b"\xe2\x80\xae", "é".encode()]


def card(keyword, value):
    return b"%-8s= %20s\n" % (keyword, value)


PRIMARY = card(b"SIMPLE", b"T") + card(b"BITPIX", b"8") + card(b"NAXIS", b"0")
TABLE = b"XTENSION= 'BINTABLE'\n" + card(b"BITPIX", b"8") + card(b"NAXIS", b"2") + card(b"NAXIS1", b"8")
WORDS = {
    b"PRIMARY": PRIMARY,
    b"IMAGE": b"XTENSION= 'IMAGE   '\n" + card(b"BITPIX", b"-64") + card(b"NAXIS", b"0"),
    b"TABLE": TABLE,
    b"ROWS": TABLE + card(b"NAXIS2", b"1000000") + card(b"PCOUNT", b"0") + card(b"GCOUNT", b"1"),
    b"FORMS": b"".join(b"TFORM%-3d= '2147483647D'\n" % n for n in range(1, 1000)),
    b"KEYWORDS": b"".join(b"K%-7d= %d\n" % (n, n) for n in range(90_000)),
    b"DETECTORS": b"".join(b"HIERARCH CAM DET %d NAME = 'x'\n" % n for n in range(50_000)),
    b"SIGNS": b"".join(b"KEY%d = %s\n" % (n, bytes([n + 33]) * 3) for n in range(94)),
    b"BYTES": bytes(range(256)),
    b"SOUND": b"[service]\nsettle = 0\n[ingest]\npattern = in/*.hdr\noutput-dir = out\n",
    b"SECTIONS": b"".join(b"[s%d]\nk = v\n" % n for n in range(3000)),
}


def meant(text, words):
    """What a text without repetition stands for."""
    def part(found):
        if found[0] == b"\\n":
            return b"\n"
        return bytes([int(found[1], 16)]) if found[1] else words.get(found[2], found[0])
    return re.sub(rb"\\n|\\x([0-9A-F]{2})|<(\w+)>", part, text)


def inputs_of(line):
    """The inputs that a line stands for: one, or one for each huge number or odd byte."""
    parts = re.split(rb"\{(\d+)\*([^}]*)\}", line)
    for value in HUGE if b"<huge>" in line.lower() else ODD if b"<BYTE>" in line else [b""]:
        words = {**WORDS, b"HUGE": b"%20s" % value, b"huge": value, b"BYTE": value}
        yield meant(parts[0], words) + b"".join(
            int(count) * meant(repeated, words) + meant(rest, words)
            for count, repeated, rest in zip(parts[1::3], parts[2::3], parts[3::3]))


def section(name):
    with open(DATA, "rb") as file:
        lines = file.read().split(b"\n== " + name.encode() + b"\n")[1].split(b"\n== ")[0].split(b"\n")
    return [text for line in lines if line and not line.startswith(b"# ") for text in inputs_of(line)]


def stem_of(name):
    """What a result is called by: the name up to the last dot that is not its first character."""
    dot = name.rfind(b".")
    return name[:dot] if dot > 0 else name


def names():
    """Legal names of files, as bytes, each with a result of another name."""
    around = [b"a" + c + b"b" for c in CONTROLS + SIGNS] + [c + b"front" for c in SIGNS] + [b"back" + c for c in SIGNS]
    found = {}
    for name in around + section("names"):
        found.setdefault(stem_of(name), name)
    return list(found.values())


def properties():
    """Pairs of a properties file, and whether it is one that can be used."""
    for setting, values in ((b"[service]\npoll", "no numbers"), (b"[log]\nfile = log\nsize", "no numbers"),
                            (b"checksum", "no flags"), (b"[log]\nfile = log\npriorities", "no words")):
        yield from ((WORDS[b"SOUND"] + setting + b" = " + value + b"\n", False) for value in section(values))
    yield from ((text, False) for text in section("properties that are refused"))
    yield from ((text, True) for text in section("properties that are used"))
