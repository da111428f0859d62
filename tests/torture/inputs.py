"""Hostile inputs, made when they are needed: names, header texts, properties."""

CONTROLS = [bytes([code]) for code in (*range(1, 32), 127)]
SIGNS = [bytes([code]) for code in b" !\"#$%&'()*+,-:;<=>?@[\\]^`{|}~"]

# Each would make a file called canary, if a shell ever saw it as more than a word.
COMMANDS = [b"$(touch canary)", b"`touch canary`", b";touch canary;", b"|touch canary", b"&touch canary&",
            b"\ntouch canary\n", b">canary", b"x>canary", b"x;touch canary #", b"'$(touch canary)'",
            b'"$(touch canary)"', b"$(touch${IFS}canary)", b"<(touch canary)", b"x||touch canary",
            b"x&&touch canary", b"\\$(touch canary)", b"{touch,canary}", b"-e system('touch canary')",
            b"`system(\"touch canary\")`", b"!touch canary"]
WORDS = [b"-", b"--", b"-o", b"-rf", b"-fcanary", b"--help", b"--version", b"--output-dir=canary", b"-p", b"-0",
         b"--watch", b"--force", b"--bash-completion", b"--=", b"-\n", b"~", b"~root", b"$HOME", b"${PATH}", b"%s%n%x",
         b"%D %t", b"*", b"?", b"[a-z]", b"[!a]", b"{a,b}", b"**", b"a*", b"\\*", b"nul", b"con"]
# What CFITSIO takes for an address, a device, a filter or a command.
CFITSIO = [b"mem:", b"mem:x", b"shmem:h1", b"root:", b"stdin", b"stdout", b"stream:", b"file:x", b"ftp:x",
           b"http:x", b"https:x", b"gsiftp:x", b"rawfile:x", b"memkeep:x", b"x[1]", b"x[bin]", b"x[SIMPLE=T]",
           b"x[compress]", b"x[col a=b]", b"x(out.fits)", b"x(canary)", b"!x2", b"!canary", b"x+1", b"y.gz", b"y2.Z",
           b"y3.fits", b"y4.fz", b"@x", b"x[1:2,3:4]"]
ENCODED = [b"\xff", b"\xfe\xff", b"\x80", b"a\xc3", b"\xc0\xaf", b"\xe0\x80\xaf", b"\xed\xa0\x80", b"\xf4\x90\x80\x80",
           b"\xc2\x85", b"\xc2\x9b2J", b"\xe2\x80\xae", b"\xe2\x80\x8b", b"\xef\xbb\xbfx", b"\xe2\x80\xa8",
           "é".encode(), "e\u0301".encode(), "日本語".encode(), b"\x1b[2J", b"\x1b]0;canary\x07", b"a\rb", b"\\x41",
           b"a\\x0Ab", b"\xe9t\xe9", "😀".encode(), b"\t\t\t"]
LENGTHS = [b"n" * 250, b"p" * 251, b"q" * 255, b"m" * 246 + b".hdr", b"m" * 247 + b".hdr", b"k" * 251 + b".hdr",
           "é".encode() * 127, b"\xff" * 255, b"$" * 255, b"\n" * 254]
DOTS = [b"...", b"..x", b".x", b"x..", b"z.", b".. ", b" ..", b"..-", b".~1~", b"w.~1~", b"w.~2~", b"v.reason"]


PATHS = [b".", b"..", b"/", b"//", b"in", b"in/", b"in/.", b"in/..", b"../here/in/x.hdr", b"in/../in/x.hdr", b"./in//x.hdr",
         b"in/x.hdr/", b"in/x.hdr/..", b"in/x.hdr/x.hdr/", b"in/loop", b"in/dangling", b"in/pipe", b"/dev/null", b"/dev/zero",
         b"/dev/stdin", b"/proc/self/mem", b"/proc/self/environ", b"in/" + b"n" * 256, b"in/" + b"./" * 2500 + b"y.hdr",
         b"../" * 1500 + b"etc/passwd", b"/etc/passwd", b"~/x", b"file:in/y", b"in/*.hdr", b"in/x.hdr[1]", b"in/x.hdr+1"]


def stem_of(name):
    """What a result is called by: the name up to the last dot that is not its first character."""
    dot = name.rfind(b".")
    return name[:dot] if dot > 0 else name


def names():
    """Legal names of files, as bytes, each with a result of another name."""
    around = [b"a" + c + b"b" for c in CONTROLS + SIGNS] + [c + b"front" for c in SIGNS] + [b"back" + c for c in SIGNS]
    found = {}
    for name in around + COMMANDS + WORDS + CFITSIO + ENCODED + LENGTHS + DOTS:
        found.setdefault(stem_of(name), name)
    return list(found.values())


def card(keyword, value):
    return b"%-8s= %20s\n" % (keyword, value)


PRIMARY = card(b"SIMPLE", b"T") + card(b"BITPIX", b"8") + card(b"NAXIS", b"0")
IMAGE = b"XTENSION= 'IMAGE   '\n" + card(b"BITPIX", b"-64") + card(b"NAXIS", b"0")
TABLE = (b"XTENSION= 'BINTABLE'\n" + card(b"BITPIX", b"8") + card(b"NAXIS", b"2") + card(b"NAXIS1", b"8") +
         card(b"NAXIS2", b"1000000") + card(b"PCOUNT", b"0") + card(b"GCOUNT", b"1"))
HUGE = [b"-1", b"999", b"2147483648", b"9223372036854775807", b"1E308", b"NaN"]
MIB = 1 << 20


def bombs():
    """Headers that promise data, or columns, without end."""
    for value in HUGE:
        axes = b"".join(card(b"NAXIS%d" % axis, value) for axis in (1, 2, 3))
        yield card(b"SIMPLE", b"T") + card(b"BITPIX", b"-64") + card(b"NAXIS", b"3") + axes
        yield card(b"SIMPLE", b"T") + card(b"BITPIX", b"8") + card(b"NAXIS", value)
        yield card(b"SIMPLE", b"T") + card(b"BITPIX", value) + card(b"NAXIS", b"0")
        yield PRIMARY + b"END\n" + TABLE.replace(b"1000000", value) + card(b"TFIELDS", b"1") + b"TFORM1  = '1D'\n"
        yield PRIMARY + b"END\n" + TABLE + card(b"TFIELDS", value)
        yield PRIMARY + b"END\n" + IMAGE + card(b"PCOUNT", value) + card(b"GCOUNT", value)
        yield PRIMARY + b"END\n" + TABLE + card(b"TFIELDS", b"1") + b"TFORM1  = '%sD'\n" % value
        yield PRIMARY + b"END\n" + TABLE + card(b"TFIELDS", b"1") + b"TFORM1  = '1PD(%s)'\n" % value + card(b"THEAP", value)
        yield PRIMARY + card(b"GROUPS", b"T") + card(b"PCOUNT", value) + card(b"GCOUNT", value)
        yield PRIMARY + card(b"MJD-OBS", value) + card(b"RA", value) + card(b"DEC", value) + card(b"EQUINOX", value)
    yield PRIMARY + b"END\n" + TABLE + card(b"ZIMAGE", b"T") + b"ZCMPTYPE= 'RICE_1'\n" + card(b"ZNAXIS1", b"1000000")
    yield PRIMARY + b"END\n" + TABLE + card(b"TFIELDS", b"999") + b"".join(b"TFORM%-3d= '2147483647D'\n" % n for n in range(1, 1000))


def masses():
    """Very many lines, very long lines, very many headers."""
    yield PRIMARY + b"COMMENT x\n" * 1_000_000
    yield PRIMARY + b"COMMENT x\n" * 99_000
    yield PRIMARY + b"".join(b"K%-7d= %d\n" % (n, n) for n in range(90_000))
    yield PRIMARY + b"HIERARCH " + b"A B " * 1000 + b"= 1\n"
    yield PRIMARY + b"".join(b"HIERARCH CAM DET %d NAME = 'x'\n" % n for n in range(50_000))
    yield PRIMARY + b"HIERARCH " * 10_000 + b"= 1\n"
    yield PRIMARY + b"LONG    = 'a&'\n" + b"CONTINUE  'b&'\n" * 50_000
    yield PRIMARY + b"CONTINUE  'b&'\n" * 50_000
    yield PRIMARY + b"LONG    = '" + b"a" * (15 * MIB) + b"'\n"
    yield PRIMARY + b"LONG    = '" + b"'" * (15 * MIB) + b"\n"
    yield PRIMARY + b"COMMENT " + b"a" * (15 * MIB) + b"\n"
    yield PRIMARY + b"HISTORY " + b"\t" * MIB + b"\n"
    yield PRIMARY + b"LONG    = 1 / " + b"/" * (8 * MIB) + b"\n"
    yield b"A" * (15 * MIB)
    yield b"=" * (15 * MIB)
    yield b" " * (15 * MIB)
    yield b"\n" * (15 * MIB)
    yield PRIMARY + b"x" * (17 * MIB)
    yield (PRIMARY + b"END\n") * 10_000
    yield PRIMARY + b"END\n" + (IMAGE + b"END\n") * 20_000
    yield PRIMARY + b"END\n" * 90_000
    yield card(b"SIMPLE", b"T") * 50_000
    yield PRIMARY + card(b"NAXIS1", b"1") * 50_000
    yield PRIMARY + b"END\n" + b"# HDU 1 in x.fits:\n\n" * 40_000
    yield b"SIMPLE  = T" + b" " * 69 + (b"COMMENT " + b"x" * 72) * 30_000


def characters():
    """Bytes that no card has."""
    for byte in (b"\0", b"\r", b"\x1b[2J", b"\x7f", b"\xff", b"\xc2\x85", b"\xe2\x80\xae", "é".encode()):
        yield PRIMARY + b"OBJECT  = 'a" + byte + b"b'\n"
        yield PRIMARY + b"A" + byte + b"B     = 1\n"
    yield PRIMARY.replace(b"\n", b"\r")
    yield PRIMARY.replace(b"\n", b"\r\n") + b"END\r\n"
    yield "SIMPLE  = T\nBITPIX  = 8\nNAXIS   = 0\n".encode("utf-16")
    yield b"\xef\xbb\xbf" + PRIMARY
    yield bytes(range(256)) * 100
    yield PRIMARY + b"OBJECT  = '$(touch canary)'\nFILE    = '`touch canary`'\nINCLUDE = '!canary'\n"
    yield PRIMARY + b"".join(b"KEY%d = %s\n" % (n, bytes([n + 33]) * 3) for n in range(94))
    yield PRIMARY + card(b"CHECKSUM", b"'x'") * 1000 + card(b"DATASUM", b"9" * 60)


def headers():
    return [*bombs(), *masses(), *characters()]


SOUND = b"[service]\nsettle = 0\n[ingest]\npattern = in/*.hdr\noutput-dir = out\n"
NO_NUMBERS = [b"-1", b"4294967296", b"99999999999999999999", b"0x10", b"1e3", b"", b"12 34", b"+5", b"1;touch canary",
              "٣".encode(), b"NaN", b"$(echo 1)"]
NO_FLAGS = [b"t", b"TRUE", b"1", b"", b"T F", b"$(touch canary)"]
NO_WORDS = [b"$(touch canary)", b"`touch canary`", b"$HOME", b"a b", b"'x'", b"DEBUG|NONE", b"", b"DEBUG;touch canary"]


def properties():
    """Pairs of a properties file, and whether it is one that can be used."""
    for setting, values in ((b"[service]\npoll", NO_NUMBERS), (b"[log]\nfile = log\nsize", NO_NUMBERS),
                            (b"checksum", NO_FLAGS), (b"[log]\nfile = log\npriorities", NO_WORDS)):
        yield from ((SOUND + setting + b" = " + value + b"\n", False) for value in values)
    for text in (b"[", b"[ingest", b"[]", b"key", b"= = =\x00", b"x = \0", b"k = " + b"v" * 4096,
                 b"[" + b"s" * 5000 + b"]", b"\xff\xfe[\x00i\x00"):
        yield SOUND + text + b"\n", False
    for text in (b"", b"\n" * 60_000, b"key = 1\n" + SOUND, b"\0" * 4096, b"\x7fELF" + bytes(4000), SOUND + b";" * 70_000,
                 (b"[a]\n" + b"k = v\n") * 7000, SOUND.replace(b"\n", b"\r")):
        yield text, False
    for text in (b"", b"; $(touch canary)\n", b"# `touch canary`\n", b"unknown = $(touch canary)\n", b"[%s%n]\n%s = %n\n",
                 b"[a\\b\\c\\d]\nk = v\n", b"[" + b"\\".join([b"a"] * 1000) + b"]\nk = v\n",
                 b"".join(b"[s%d]\nk = v\n" % n for n in range(3000)), b"x = 1\n" * 9000, b"\xff\xfe = \x1b[2J\n",
                 b"[log]\nprogram = ;touch${IFS}canary\n".replace(b"$", b""), b"\r\n\t \r\n", b"k = \"unclosed\n"):
        yield SOUND + text, True
