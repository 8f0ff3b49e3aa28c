"""The package as it lies in the sources, over the library that BRINDLE_LIBRARY names, and the sample
images."""

import os
import pathlib
import sys

import pytest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
IMAGES = SOURCE / "tests" / "samples" / "images"
sys.path.insert(0, str(SOURCE / "python"))
sys.path.insert(0, str(SOURCE / "tests" / "program"))

import brindle  # noqa: E402


@pytest.fixture
def images():
    return IMAGES


@pytest.fixture(scope="session")
def image():
    """Read once for all tests that only ask."""
    with brindle.read(IMAGES / "arm-c-dwarf4-O0.elf", full=True) as opened:
        yield opened
