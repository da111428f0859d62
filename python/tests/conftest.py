from astropy.utils import iers

# What lies beyond astropy's own tables of the Earth's orientation is right to a second there.
iers.conf.auto_download = False
iers.conf.auto_max_age = None


def pytest_configure(config):
    for words in ("dubious year", "polar motion", "IERS table"):
        config.addinivalue_line("filterwarnings", f"ignore:.*{words}")
