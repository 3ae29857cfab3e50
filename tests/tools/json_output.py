# SPDX-License-Identifier: Apache-2.0
"""What commands print with --json, read and checked against their schemas in docs/schemas."""

import json
from pathlib import Path

import jsonschema

SCHEMAS = Path(__file__).resolve().parents[2] / "docs" / "schemas"


def path(command):
    """The schema of a command such as "servers add"."""
    return SCHEMAS / f"{command.replace(' ', '-')}.schema.json"


def schema(command):
    return json.loads(path(command).read_text(encoding="utf-8"))


def validator(command):
    """A validator that needs no other file: the schema of errors is put inside."""
    text = path(command).read_text(encoding="utf-8")
    described = json.loads(text.replace('"error.schema.json"', '"#/$defs/error"'))
    described.setdefault("$defs", {})["error"] = schema("error")
    return jsonschema.Draft202012Validator(described)


def read(command, text):
    """The one value in what a command printed. Fails if it is not as the schema says."""
    value = json.loads(text)
    validator(command).validate(value)
    return value


def read_lines(command, text):
    """The same for one value a line."""
    return [read(command, line) for line in text.splitlines()]
