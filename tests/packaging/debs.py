"""The Debian packages that were built, and the machine that they are for."""

import os
import subprocess
from pathlib import Path

VERSION = os.environ["VORNIC_VERSION"]
FOLDER = Path(os.environ["VORNIC_DEBS"])
LIBRARY, DEVELOPMENT, PROGRAM = "libvornicl3shared1", "libvornicl3shared-dev", "vpagent"
PACKAGES = (LIBRARY, DEVELOPMENT, PROGRAM)


def output(*command, **options):
    """What a command prints; it must succeed."""
    result = subprocess.run(command, capture_output=True, text=True, check=False, **options)
    if result.returncode != 0:
        raise AssertionError(f"{command}: {result.returncode}: {result.stdout}{result.stderr}")
    return result.stdout


ARCHITECTURE = output("dpkg", "--print-architecture").strip()
MULTIARCH = output("dpkg-architecture", "-qDEB_HOST_MULTIARCH").strip()


def deb(package):
    """The file of a package."""
    return FOLDER / f"{package}_{VERSION}_{ARCHITECTURE}.deb"
