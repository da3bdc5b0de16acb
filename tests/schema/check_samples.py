"""Validates message files against the schemas of docs/schema.

check_samples.py valid FILE...     every file must be a valid message
check_samples.py rejected FILE...  every file must be refused by its schema
check_samples.py odd FILE...       refused by the strict schema, taken by the lax one
"""

import json
import pathlib
import sys

import jsonschema

SCHEMAS = pathlib.Path(__file__).resolve().parents[2] / "docs" / "schema"


def validator(name):
    schema = json.loads((SCHEMAS / f"{name}.schema.json").read_text())
    jsonschema.Draft202012Validator.check_schema(schema)
    return jsonschema.Draft202012Validator(schema)


def faults(path, suffix=""):
    message = json.loads(path.read_text())
    return [f"{path.name}: {'/'.join(map(str, error.absolute_path))}: {error.message}"
            for error in validator(message["msgId"] + suffix).iter_errors(message)]


def main(expectation, *names):
    if not names:
        sys.exit("no files to check")
    wrong = []
    for path in map(pathlib.Path, names):
        found = faults(path)
        if expectation == "valid":
            wrong += found
        elif not found:
            wrong.append(f"{path.name}: was accepted")
        if expectation in ("odd", "valid"):
            wrong += faults(path, ".lax")
    print(f"{len(names)} files, {len(wrong)} wrong")
    sys.exit("\n".join(wrong) if wrong else 0)


main(*sys.argv[1:])
