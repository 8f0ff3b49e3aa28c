"""Runs a script of this folder inside gdb, with the queries that make gdb read all units of an image."""

import collections
import json
import os
import pathlib
import re
import subprocess
import tempfile

SCOPES = ("DW_TAG_namespace", "DW_TAG_structure_type", "DW_TAG_class_type", "DW_TAG_module")
CODE_OWNERS = ("DW_TAG_compile_unit", "DW_TAG_subprogram")
LOW_ADDRESS = re.compile(r"(?:\(index: \S+\): )?(?:0x)?([0-9a-f]+)$")


def ask(image, tree, script):
    """The document that a script writes for an image, whose entries are given."""
    with tempfile.TemporaryDirectory(prefix="brindle-oracle-") as folder:
        questions, answers = pathlib.Path(folder, "questions"), pathlib.Path(folder, "answers")
        questions.write_text(json.dumps(_questions(tree)), encoding="utf-8", errors="surrogateescape")
        done = subprocess.run(
            ["gdb-multiarch", "-nx", "-batch", "-iex", "set auto-load off", str(image), "-x", str(script)],
            env={**os.environ, "ORACLE_QUESTIONS": str(questions), "ORACLE_ANSWERS": str(answers)},
            capture_output=True, text=True, errors="replace", timeout=300)
        if not answers.exists():
            raise AssertionError(f"gdb failed on {image.name}: {done.stdout}{done.stderr}")
        return json.loads(answers.read_text(encoding="utf-8", errors="surrogateescape"))


def _questions(tree):
    units, names = [], collections.defaultdict(set)
    for entry in tree.entries:
        if entry.parent is None:
            units.append((entry.name() or "", []))
        if entry.tag in CODE_OWNERS and (found := LOW_ADDRESS.match(entry.attributes.get("DW_AT_low_pc", ""))):
            units[-1][1].append(int(found[1], 16))
        if entry.tag == "DW_TAG_variable" and "DW_AT_location" in entry.attributes:
            name = _qualified_name(tree.origin(entry))
            if name:
                names[name].add(units[-1][0])
    units = [(name, [address for address in addresses if address]) for name, addresses in units]
    return {"units": units,
            "names": [(name, next(iter(owners)) if len(owners) == 1 else None) for name, owners in names.items()]}


def _qualified_name(entry):
    """The name under which gdb finds a variable; None for variables of functions, which it doesn't find."""
    scopes, owner = [entry.name()], entry.parent
    while owner is not None and owner.tag in SCOPES:
        scopes.append(owner.name() or "(anonymous namespace)")
        owner = owner.parent
    is_outside = owner is None or owner.tag in ("DW_TAG_compile_unit", "DW_TAG_partial_unit")
    return "::".join(reversed(scopes)) if entry.name() and is_outside else None
