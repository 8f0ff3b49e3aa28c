"""The wheel: built, installed without a network, and used without a library beside it."""

import os
import pathlib
import subprocess
import sys

from conftest import IMAGES, SOURCE


def test_a_wheel_is_all_that_a_user_needs(tmp_path):
    wheels = tmp_path / "wheels"
    subprocess.run([SOURCE / "scripts" / "build-wheel.sh", os.environ["BRINDLE_LIBRARY"], wheels],
                   check=True, stdout=subprocess.PIPE)
    wheel, = wheels.glob("*.whl")
    assert wheel.name.split("-", 2)[2].startswith("py3-none-linux_")
    pip, = pathlib.Path("/usr/share/python-wheels").glob("pip-*.whl")
    installed = tmp_path / "installed"
    subprocess.run([sys.executable, pip / "pip", "install", "--quiet", "--no-index", "--target",
                    installed, wheel], check=True)
    environment = {**os.environ, "PYTHONPATH": str(installed)}
    del environment["BRINDLE_LIBRARY"]
    code = f"""
import brindle
assert brindle.__file__.startswith({str(installed)!r})
print(hex(brindle.read({str(IMAGES / 'arm-c-dwarf4-O0.elf')!r})["motors"].address))
"""
    done = subprocess.run([sys.executable, "-c", code], env=environment, cwd=tmp_path, check=True,
                          stdout=subprocess.PIPE, encoding="utf-8")
    assert done.stdout == "0x20000050\n"
