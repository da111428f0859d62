"""FITS files from header texts."""

from __future__ import annotations

import os
from pathlib import Path
from tempfile import NamedTemporaryFile
from typing import Union

from . import _core


class FitsError(OSError):
    """A FITS file could not be made; `status` is CFITSIO's."""

    def __init__(self, message: str, status: int = 0) -> None:
        super().__init__(message)
        self.status = status


def header_to_fits(
    text: Union[str, os.PathLike[str]], fits_path: Union[str, os.PathLike[str]]
) -> None:
    """Makes a FITS file without data, whose header has the lines of a text, one card per line.

    Lines are taken as they are, cut at 80 characters; NAXIS becomes 0, and NAXIS1 and NAXIS2 go.

    Parameters
    ----------
    text : str or path
        the header's text; from a file if it is a path object
    fits_path : str or path
        the new file, which must not exist. CFITSIO's rules for names hold: brackets, parentheses
        and ``.gz`` at the end have a meaning; no beginning has one.

    Raises
    ------
    ValueError
        for a name that no file can have
    FileExistsError
        when there is a file of this name
    FitsError
        when CFITSIO refuses a line or cannot write; a refused header leaves no file
    OSError
        when the text cannot be read
    """
    content = text.encode() if isinstance(text, str) else Path(text).read_bytes()
    name = os.fsdecode(fits_path)
    if "\0" in name:
        raise ValueError(f"a file's name cannot have a null character: {name!r}")
    if os.path.lexists(name):
        raise FileExistsError(f"exists already: {name}")
    # Behind a directory "!" is a character as others, and does not have a file overwritten.
    literal = os.fsencode(os.path.join(os.curdir, name))
    with NamedTemporaryFile(suffix=".hdr") as header:
        header.write(content)
        header.flush()
        status, reason = _core.header_to_fits(header.name, literal)
    if status == 0:
        return
    if isinstance(text, str) and os.path.isfile(text):
        reason += f"; the text is a file's name: pathlib.Path({text!r}) has it read"
    raise FitsError(f"{name}: {reason}", status)
