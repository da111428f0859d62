"""The examples in Python, each where its packages are there."""

import os
import subprocess
import sys
from pathlib import Path

import pytest

EXAMPLES = Path(__file__).resolve().parents[2] / "examples"


def run(directory, program, *arguments, path=""):
    path = os.pathsep.join([str(path), *sys.path])
    environment = dict(os.environ, PYTHONPATH=path, MPLCONFIGDIR=str(directory))
    return subprocess.run(
        [sys.executable, "-W", "ignore", EXAMPLES / program, *map(str, arguments)],
        cwd=directory,
        env=environment,
        capture_output=True,
        text=True,
    )


def test_first_lines_of_the_page():
    page = (EXAMPLES.parent / "docs" / "pages" / "python.md").read_text()
    lines = page.split("```python\n")[1].split("```")[0]
    names = {}
    exec(lines, names)
    assert names["seen"].altitude.shape == (60, 2)
    assert names["good"].any() and not names["good"].all()


def test_night(tmp_path):
    image = pytest.importorskip("matplotlib.image")
    picture = tmp_path / "night.png"
    ended = run(tmp_path, "night.py", "OLAN", "2026-12-20T16:00", EXAMPLES / "targets.csv", picture)
    assert (ended.returncode, ended.stderr) == (0, "")
    pixels = image.imread(picture)[:, :, :3].reshape(-1, 3)
    assert len(pixels) == 700 * 900
    # The lines of two targets and the grey of the night.
    for colour in ("1f77b4", "ff7f0e", "666666"):
        rgb = [int(colour[i : i + 2], 16) / 255 for i in (0, 2, 4)]
        assert (abs(pixels - rgb).max(axis=1) < 0.01).sum() > 300


def test_sky_constraint(tmp_path):
    pytest.importorskip("astroplan")
    ended = run(tmp_path, "sky_constraint.py")
    # The moon, 86 % lit, sets at 03:55; before, the published model gives 18.7 to 19.0 there.
    assert ended.stdout.splitlines() == [
        "2026-12-20 20:00 too bright",
        "2026-12-20 22:00 too bright",
        "2026-12-21 00:00 too bright",
        "2026-12-21 02:00 too bright",
        "2026-12-21 04:00 dark enough",
    ]
    assert (ended.returncode, ended.stderr) == (0, "")


def test_sky_constraint_without_astroplan(tmp_path):
    (tmp_path / "astroplan.py").write_text("raise ImportError('no astroplan')")
    ended = run(tmp_path, "sky_constraint.py", path=tmp_path)
    assert (ended.returncode, ended.stdout) == (77, "needs astroplan: no astroplan\n")
