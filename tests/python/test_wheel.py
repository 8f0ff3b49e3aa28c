"""The wheel: built, installed without a network, and used without a library beside it."""

import os
import pathlib
import shutil
import subprocess
import sys

from conftest import IMAGES, SOURCE


# A host that meets a file that shrinks while it is read, and a disk that is full.
HOST = """
import os, resource, sys
import brindle
assert brindle.__file__.startswith(sys.argv[1])
def variables(**arguments):
    image = brindle.read("image.elf", **arguments)
    return [(variable.path, variable.address, image.initial_bytes(variable.address, variable.size))
            for variable in image.variables]
print(hex(brindle.read("image.elf")["motors"].address))
expected = variables()
try:
    brindle.read("shrinking.elf", progress=lambda phase, share: os.truncate("shrinking.elf", 2000))
except brindle.ReadError as error:
    print("told" if str(error) else "")
resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))
print("same" if variables(options={"mIsLogFile": 1, "mDumpDebugInfoNodes": 1}) == expected else "other")
"""


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
    shutil.copy(IMAGES / "arm-c-dwarf4-O0.elf", tmp_path / "image.elf")
    shutil.copy(IMAGES / "arm-c-dwarf4-O0.elf", tmp_path / "shrinking.elf")
    done = subprocess.run([sys.executable, "-c", HOST, installed], env=environment, cwd=tmp_path, check=True,
                          stdout=subprocess.PIPE, encoding="utf-8")
    assert done.stdout.splitlines() == ["0x20000050", "told", "same"]
    assert 0 < (tmp_path / "image.log").stat().st_size <= 1000
