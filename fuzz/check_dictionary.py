#!/usr/bin/python3
"""Requires that a dictionary has every name and every fixed text of the messages' schemas.

check_dictionary.py DICTIONARY SCHEMA...
"""

import json
import pathlib
import sys


def texts(schema):
    """The names of the members that a schema describes, and the texts that it fixes."""
    if isinstance(schema, list):
        for part in schema:
            yield from texts(part)
    elif isinstance(schema, dict):
        if isinstance(schema.get("properties"), dict):
            yield from schema["properties"]
        if isinstance(schema.get("const"), str):
            yield schema["const"]
        for part in schema.values():
            yield from texts(part)


dictionary = pathlib.Path(sys.argv[1]).read_text()
found = {text for path in sys.argv[2:] for text in texts(json.loads(pathlib.Path(path).read_text()))}
missing = sorted(text for text in found if f'"\\"{text}\\""' not in dictionary)
for text in missing:
    print(f"not in {sys.argv[1]}: {text}", file=sys.stderr)
sys.exit(1 if missing or not found else 0)
