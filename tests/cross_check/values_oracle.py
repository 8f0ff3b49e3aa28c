"""Runs inside gdb: writes the values of expressions, as the file of an image has them, as JSON.

    gdb -nx -batch -iex 'set auto-load off' IMAGE -x values_oracle.py

ORACLE_QUESTIONS names a JSON list of expressions, ORACLE_ANSWERS the file to write.
"""

import json
import os

import gdb


def value_of(expression):
    value = gdb.parse_and_eval(expression)
    kind = value.type.strip_typedefs()
    if kind.code == gdb.TYPE_CODE_FLT:
        return float(value)
    return int(value.cast(gdb.lookup_type("long long")) if kind.code == gdb.TYPE_CODE_ENUM else value)


def main():
    answers = {}
    with open(os.environ["ORACLE_QUESTIONS"], encoding="utf-8") as file:
        for expression in json.load(file):
            try:
                answers[expression] = value_of(expression)
            except (gdb.error, OverflowError, ValueError) as error:
                answers[expression] = f"no answer: {error}"
    with open(os.environ["ORACLE_ANSWERS"], "w", encoding="utf-8") as file:
        json.dump(answers, file)


main()
