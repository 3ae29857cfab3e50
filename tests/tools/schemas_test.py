#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Looks at the schemas of what rvf prints with --json. That the output keeps to them is tested
wherever the tests of the tool read it.

Usage: schemas_test.py RVF [unittest options].
"""

import json
import sys
import unittest

import json_output
from command_tree import Command
from jsonschema import Draft202012Validator

RVF = sys.argv[1]
NAMES = sorted(path.name.removesuffix(".schema.json")
               for path in json_output.SCHEMAS.glob("*.schema.json"))
ERROR = {"domain": "rvf", "code": 65, "message": "something is wrong"}


def objects(schema):
    """Every schema of an object within a schema."""
    if isinstance(schema, list):
        return [found for part in schema for found in objects(part)]
    if not isinstance(schema, dict):
        return []
    own = [schema] if isinstance(schema.get("required"), list) else []
    return own + [found for part in schema.values() for found in objects(part)]


class SchemasTest(unittest.TestCase):
    def assert_of_each(self, check):
        self.assertGreater(len(NAMES), 10)
        for name in NAMES:
            with self.subTest(schema=name):
                check(name)

    def test_every_command_with_json_has_one_and_no_other(self):
        commands = [" ".join(command.words) for command in Command(RVF).all()
                    if "--json" in command.options]
        self.assertGreater(len(commands), 10)
        self.assertEqual(sorted([json_output.path(command).name for command in commands] +
                                ["error.schema.json"]),
                         [name + ".schema.json" for name in NAMES])

    def test_they_are_schemas_with_title_and_description(self):
        def check(name):
            schema = json_output.schema(name)
            Draft202012Validator.check_schema(schema)
            self.assertTrue(schema["title"] and schema["description"])

        self.assert_of_each(check)

    def test_every_member_is_described_and_no_other_is_allowed(self):
        def check(name):
            described = objects(json_output.schema(name))
            self.assertTrue(described)
            for schema in described:
                self.assertIs(schema["additionalProperties"], False)
                self.assertLessEqual(set(schema["required"]), set(schema["properties"]))
                for member, rule in schema["properties"].items():
                    self.assertTrue(rule.get("description"), member)

        self.assert_of_each(check)

    def test_a_failure_is_one_of_the_forms_everywhere(self):
        self.assert_of_each(
            lambda name: self.assertEqual(json_output.read(name, json.dumps(ERROR)), ERROR))

    def test_what_is_not_described_is_refused(self):
        def check(name):
            for value in ({}, 1, [{}], {**ERROR, "more": 1}, {"domain": "rvf"}):
                self.assertFalse(json_output.validator(name).is_valid(value), value)

        self.assert_of_each(check)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[2:], verbosity=2)
