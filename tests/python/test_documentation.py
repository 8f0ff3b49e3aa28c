"""The examples of the documentation, run as they stand."""

import doctest
import re
import shutil

from conftest import IMAGES, SOURCE


def test_the_tutorial(tmp_path, monkeypatch):
    shutil.copy(IMAGES / "arm-c-dwarf4-O0.elf", tmp_path / "firmware.elf")
    monkeypatch.chdir(tmp_path)
    text = (SOURCE / "docs" / "python.md").read_text()
    blocks = re.findall(r"^```pycon\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)
    test = doctest.DocTestParser().get_doctest("".join(blocks), {}, "python.md", None, 0)
    problems = []
    results = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS).run(test, out=problems.append)
    assert results.attempted > 20
    assert not results.failed, "".join(problems)
