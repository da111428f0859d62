"""Converts header texts with astropy: astropy-loop.py DIRECTORY LIST, where LIST names the texts."""

import os
import sys

from astropy.io import fits

directory, list_name = sys.argv[1:]
os.makedirs(directory, exist_ok=True)
with open(list_name) as names:
    for name in names.read().split():
        with open(name) as text:
            header = fits.Header.fromstring(text.read(), sep="\n")
        header["NAXIS"] = 0
        for axis in ("NAXIS1", "NAXIS2"):
            header.remove(axis, ignore_missing=True)
        stem = os.path.splitext(os.path.basename(name))[0]
        fits.PrimaryHDU(header=header).writeto(f"{directory}/{stem}.fits", output_verify="ignore")
