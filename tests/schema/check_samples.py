"""Validates message files against the schemas of docs/schema.

check_samples.py valid FILE...     every file must be a valid message
check_samples.py rejected FILE...  every file must be refused by its schema
"""

import json
import pathlib
import sys

import jsonschema

SCHEMAS = pathlib.Path(__file__).resolve().parents[2] / "docs" / "schema"


def validator(kind):
    schema = json.loads((SCHEMAS / f"{kind}.schema.json").read_text())
    policy_set = json.loads((SCHEMAS / "policy-set.schema.json").read_text())
    resolver = jsonschema.RefResolver.from_schema(schema, store={policy_set["$id"]: policy_set})
    jsonschema.Draft202012Validator.check_schema(schema)
    return jsonschema.Draft202012Validator(schema, resolver=resolver)


def faults(path):
    message = json.loads(path.read_text())
    return [f"{path.name}: {'/'.join(map(str, error.absolute_path))}: {error.message}"
            for error in validator(message["msgId"]).iter_errors(message)]


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
    print(f"{len(names)} files, {len(wrong)} wrong")
    sys.exit("\n".join(wrong) if wrong else 0)


main(*sys.argv[1:])
