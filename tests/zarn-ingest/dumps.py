#!/usr/bin/python3
"""Random dumps of several headers, each kind of oddity alone and mixed, through zarn-ingest and astropy.

    dumps.py PROGRAM [NUMBER [SEED]]

Whatever was written into a dump must be read back from the result by another library, which must find
nothing to object to. Ends with status 77, "skipped", where astropy is not installed.
"""
import os, random, subprocess, sys, tempfile, warnings

try:
    from astropy.io import fits
except ImportError:
    print("skipped: needs astropy")
    sys.exit(77)

WORDS = "dark flat science guide star filter moon sky slit grating order sigma".split()


def image(axes):
    return [f"BITPIX  = {16:>20} / bits", f"NAXIS   = {axes:>20}"] + [
        f"NAXIS{n}  = {100:>20}" for n in range(1, axes + 1)]


def table(kind, rows, columns):
    return [f"XTENSION= '{kind:8}'", f"BITPIX  = {8:>20}", f"NAXIS   = {2:>20}", f"NAXIS1  = {77:>20}",
            f"NAXIS2  = {rows:>20}", f"PCOUNT  = {999:>20}", f"GCOUNT  = {1:>20}", *columns.split("; ")]


# How a primary header and an extension may begin.
GOOD = [f"SIMPLE  = {'T':>20} / ok", *image(2)]
PRIMARY = [GOOD, [], ["SIMPLE  = T", "BITPIX = -32", "NAXIS = 1", "NAXIS1 = 5"], GOOD[1:] + GOOD[:1],
           [GOOD[0], *image(3), f"GROUPS  = {'T':>20}", "PCOUNT  = 4"], ["SIMPLE  = 'T'", *GOOD[1:]],
           [*GOOD, GOOD[1], GOOD[3]]]
EXTENSION = [["XTENSION= 'IMAGE   '", *image(2), f"PCOUNT  = {0:>20}", f"GCOUNT  = {1:>20}"],
             ["XTENSION= 'IMAGE'", *image(3)],
             table("BINTABLE", 5000, "TFIELDS = 2; TTYPE1  = 'a'; TFORM1  = '3A'; TTYPE2  = 'b'; "
                                     "TFORM2  = 'PE(77)'; THEAP   = 55"),
             table("TABLE", 12, "TFIELDS = 1; TTYPE1  = 'a'; TBCOL1  = 2; TFORM1  = 'F8.3'"),
             table("BINTABLE", 5, "TFIELDS = 3; TFORM1  = 'nonsense'"),
             table("BINTABLE", 4096, "TFIELDS = 1; TTYPE1  = 'COMPRESSED_DATA'; TFORM1  = '1PB(1024)'; ZIMAGE  = T; "
                                     "ZCMPTYPE= 'RICE_1'; ZBITPIX = 16; ZNAXIS  = 2; ZNAXIS1 = 40960; ZNAXIS2 = 40960")]


def words(chance, number):
    return " ".join(chance.choice(WORDS) for _ in range(number))


def shown(value):
    if isinstance(value, bool):
        return "FT"[value]
    return "'" + value.replace("'", "''").ljust(8) + "'" if isinstance(value, str) else repr(value)


def cards(chance, key):
    """A card of each kind: its lines, keyword and value; commentary has no keyword."""
    value = chance.choice([chance.randint(-10**6, 10**6), round(chance.uniform(-1e3, 1e3), 4),
                           chance.random() < 0.5, words(chance, 3), "it's " + words(chance, 2)])
    comment, few, many = words(chance, 2), words(chance, 3), words(chance, chance.randint(12, 60))
    return {
        "plain": ([f"{key:8}= {shown(value):>20} / {comment}"], key, value),
        "long": ([f"{key:8}= {shown(many)} / {comment}"], key, many),
        "long comment": ([f"{key:8}= {shown(few)} / {many}"], key, few),
        "number": ([f"{key:8}= {chance.randint(0, 9)} / {many}"], key, None),
        "open": ([f"{key:8}= '{few}"], key, few),
        "equals": ([f"{key}={shown(value)} / {comment}"], key, value),
        "no blank": ([f"{key:8}={shown(value)}"], key, value),
        "indented": ([f"  {key} = {shown(value)}"], key, value),
        "tab": ([f"{key}\t= {shown(value)}\t/ {comment}"], key, value),
        "letters": ([f"{key:8}= {shown(few)} / caf\u00e9"], key, few),
        "keyword": ([f"{key}LONGER.X = {shown(value)} / {comment}"], key + "LONGER.X", value),
        "two words": ([f"{key[:4]} {key[4:]} = {shown(value)}"], f"{key[:4]} {key[4:]}", value),
        "bare": ([f"{key:8}= x {few} / {comment}"], key, "x " + few),
        "hierarch": ([f"HIERARCH ZZ {key} = {shown(many)}"], "ZZ " + key, many),
        "comment": ([f"COMMENT {many}"], None, many),
        "sentence": ([f"in this night, {few}."], None, f"in this night, {few}."),
        "lower": ([f"{key.lower():8}= {shown(value)}"], key, value),
        "continue": ([f"{key:8}= '{few}&'", f"CONTINUE  '{few}' / {comment}"], key, few + few),
    }


KINDS = [kind for kind in cards(random, "") if kind != "plain"]


def header(chance, kinds, begin):
    lines, wanted = [*begin], []
    for number in range(chance.randint(6, 25)):
        kind = chance.choice(kinds) if number else "plain"
        text, key, value = cards(chance, f"K{chance.randint(0, 9999):04}{chr(65 + number)}")[kind]
        lines += text
        wanted.append((key, value))
    return lines, wanted


def dump(number, seed):
    chance = random.Random(f"{seed} {number}")
    kinds = KINDS + ["plain"] * 6 if number % 2 else [KINDS[number // 2 % len(KINDS)], "plain", "plain"]
    headers = [header(chance, kinds, chance.choice(EXTENSION if n else PRIMARY))
               for n in range(chance.choice([1, 1, 2, 3]))]
    divider = chance.choice([["END"], ["", "# HDU 1 in file.fits:"], [], ["END", "", "--- HDU 2 ---"]])
    lines = ["Listing of a file:", ""] if chance.random() < 0.3 else []
    for n, (text, _) in enumerate(headers):
        lines += (divider if n else []) + text
    end = chance.choice(["\n", "\r\n"])
    return (end.join(lines) + end).encode(chance.choice(["utf-8", "latin-1"])), [wanted for _, wanted in headers]


def visible(text):
    return "".join(c for c in text if "!" <= c <= "~")


def differences(result, wanted):
    with fits.open(result) as hdus:
        hdus.verify("exception")
        if len(hdus) != len(wanted):
            yield f"{len(hdus)} instead of {len(wanted)} HDUs"
        everything = visible("".join(str(c.value) for hdu in hdus for c in hdu.header.cards))
        for hdu, cards in zip(hdus, wanted):
            if hdu.data is not None and len(hdu.data):
                yield "data"
            for key, value in cards:
                found = [c.value for c in hdu.header.cards if key and c.keyword.upper() == key]
                same = any(value is None or (type(v) is type(value) and v == value) for v in found)
                if not (same if key else visible(value) in everything):
                    yield f"{key} = {value!r}, found {found}"


def main(program, number=200, seed=1):
    dumps = {f"{n:04}": dump(n, seed) for n in range(int(number))}
    bad = 0
    with tempfile.TemporaryDirectory() as work, warnings.catch_warnings():
        warnings.simplefilter("ignore")
        for name, (text, _) in dumps.items():
            with open(f"{work}/{name}.hdr", "wb") as file:
                file.write(text)
        subprocess.run([program, "-q", "-o", work + "/out", work + "/*.hdr"], check=True)
        for name, (_, wanted) in dumps.items():
            for difference in differences(f"{work}/out/{name}.fits", wanted):
                print(f"dump {name}: {difference}")
                bad += 1
    print(f"{len(dumps)} dumps, {bad} differences")
    return 1 if bad or not dumps else 0


sys.exit(main(os.path.realpath(sys.argv[1]), *sys.argv[2:]))
