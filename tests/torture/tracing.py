"""What the torture of zarn-ingest needs in each of its programs."""

import os
import subprocess

SKIPPED = 77  # exit status

# The properties of a service that does at once what is there, and ends.
SERVICE = """[ingest]
pattern = in/*.hdr
output-dir = out
[service]
done = done
failed = failed
journal = journal
poll = 1
settle = 0
least-free = 0
"""


def can_trace():
    """Whether programs can be traced here; if not, says so."""
    # The leak sanitizer does not work in a process that is traced.
    os.environ["ASAN_OPTIONS"] = os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0"
    if subprocess.run(["strace", "-o", "/dev/null", "true"], capture_output=True).returncode == 0:
        return True
    print("skipped: needs strace, and a kernel that lets it trace")
    return False
