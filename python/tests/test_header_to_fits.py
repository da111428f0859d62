"""FITS files from header texts."""

from pathlib import Path

import pytest
from astropy.io import fits

import zarnsys

HEADER = """\
SIMPLE  =                    T
BITPIX  =                   16
NAXIS   =                    2
NAXIS1  =                 2048
NAXIS2  =                 1024
OBJECT  = 'Field 17'           / target
"""


@pytest.mark.parametrize("as_file", [False, True])
def test_header(tmp_path, as_file):
    text = HEADER
    if as_file:
        text = tmp_path / "x.hdr"
        text.write_text(HEADER)
    zarnsys.header_to_fits(text, tmp_path / "x.fits")
    with fits.open(tmp_path / "x.fits") as file:
        assert len(file) == 1
        cards = [(card.keyword, card.value) for card in file[0].header.cards]
    assert cards == [("SIMPLE", True), ("BITPIX", 16), ("NAXIS", 0), ("OBJECT", "Field 17")]


# Texts, and what CFITSIO's words for their failures have in them.
REFUSED = {
    "no SIMPLE": ("OBJECT  = 'Field 17'\n", "OBJECT  = 'Field 17'"),
    "a keyword": (HEADER + "OB*ECT  = 1\n", r"OB\*ECT"),
}


@pytest.mark.parametrize("text, words", REFUSED.values(), ids=REFUSED)
def test_refused_header(tmp_path, text, words, capfd):
    with pytest.raises(zarnsys.FitsError, match=f"x.fits: .+{words}") as caught:
        zarnsys.header_to_fits(text, str(tmp_path / "x.fits"))
    assert caught.value.status > 0
    assert list(tmp_path.iterdir()) == []
    assert capfd.readouterr() == ("", "")


def test_what_is_there_stays(tmp_path):
    (tmp_path / "x.fits").write_text("old")
    with pytest.raises(FileExistsError):
        zarnsys.header_to_fits(HEADER, tmp_path / "x.fits")
    assert (tmp_path / "x.fits").read_text() == "old"


def test_names_of_files(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    (tmp_path / "e.fits").write_text("old")
    for name in ("!e.fits", "-", "\udcff.fits"):
        zarnsys.header_to_fits(HEADER, name)
        assert fits.getheader(tmp_path / name)["OBJECT"] == "Field 17"
    assert (tmp_path / "e.fits").read_text() == "old"
    with pytest.raises(ValueError, match="null character"):
        zarnsys.header_to_fits(HEADER, "k\0.fits")
    with pytest.raises(zarnsys.FitsError, match=r"pathlib.Path\('e.fits'\)"):
        zarnsys.header_to_fits("e.fits", "x.fits")
    assert len(list(tmp_path.iterdir())) == 4


def test_missing_file_and_directory(tmp_path):
    with pytest.raises(FileNotFoundError):
        zarnsys.header_to_fits(Path(tmp_path / "none.hdr"), tmp_path / "x.fits")
    with pytest.raises(zarnsys.FitsError):
        zarnsys.header_to_fits(HEADER, tmp_path / "none" / "x.fits")
    assert list(tmp_path.iterdir()) == []
