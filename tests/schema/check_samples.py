"""Validates message files against the schemas of docs/schema.

check_samples.py valid FILE...     every file must be a valid message
check_samples.py rejected FILE...  every file must be refused by its schema
check_samples.py odd FILE...       refused by the strict schema, taken by the lax one
check_samples.py lines FILE...     the first line of every file must be the head of a recording, each other one an event
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


def faults_in_lines(path):
    schema = json.loads((SCHEMAS / "recording.schema.json").read_text())
    head, event = (jsonschema.Draft202012Validator({**schema, "oneOf": [{"$ref": f"#/$defs/{name}"} for name in names]})
                   for names in (("head", "firstHead"), ("event",)))
    return [f"{path.name}:{number}: {error.message}" for number, line in enumerate(path.read_text().splitlines(), 1)
            for error in (head if number == 1 else event).iter_errors(json.loads(line))]


def main(expectation, *names):
    if not names:
        sys.exit("no files to check")
    wrong = []
    for path in map(pathlib.Path, names):
        found = faults_in_lines(path) if expectation == "lines" else faults(path)
        if expectation in ("valid", "lines"):
            wrong += found
        elif not found:
            wrong.append(f"{path.name}: was accepted")
        if expectation in ("odd", "valid"):
            wrong += faults(path, ".lax")
    print(f"{len(names)} files, {len(wrong)} wrong")
    sys.exit("\n".join(wrong) if wrong else 0)


main(*sys.argv[1:])
