#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs "rvf describe" as its users do. Usage: describe_test.py RVF [unittest options]."""

import os
import subprocess
import sys
import unittest

import json_output

RVF = sys.argv[1]


def rvf(*arguments, **options):
    options.setdefault("stdout", subprocess.PIPE)
    return subprocess.run([RVF, *arguments], stderr=subprocess.PIPE, text=True, timeout=60,
                          env={"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8"}, check=False,
                          **options)


def described(name):
    result = rvf("describe", name, "--json")
    assert (result.returncode, result.stderr) == (0, ""), result
    return json_output.read("describe", result.stdout)


class DescribeTest(unittest.TestCase):
    def test_prints_a_section_for_each_kind_of_member(self):
        result = rvf("describe", "RVFStaticServerList")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        lines = result.stdout.splitlines()
        self.assertEqual(lines[0], "RVFStaticServerList : NSObject")
        self.assertEqual(lines[1:3], ["properties", "  serverCount  TQ,R,N"])
        self.assertIn("methods", lines)

    def test_lists_properties_with_their_attributes_taken_apart(self):
        properties = described("RVFStaticServer")["properties"]
        self.assertEqual([p["name"] for p in properties],
                         ["serverAddress", "serverDescription", "serverId", "completion"])
        self.assertEqual(properties[2], {
            "name": "serverId", "attributes": 'T@"NSString",C,N,V_serverId',
            "type": '@"NSString"', "getter": "serverId", "setter": "setServerId:",
            "ivar": "_serverId", "readonly": False, "dynamic": False})

    def test_a_read_only_property_has_no_setter(self):
        count = described("RVFStaticServerList")["properties"][0]
        self.assertTrue(count["readonly"])
        self.assertNotIn("setter", count)
        self.assertNotIn("ivar", count)

    def test_lists_variables_and_methods_with_their_types(self):
        server = described("RVFStaticServer")
        self.assertIn({"name": "_serverAddress", "types": "@"}, server["ivars"])
        self.assertIn({"selector": "setServerAddress:", "types": "v@:@"}, server["methods"])

    def test_names_superclass_and_protocols(self):
        self.assertEqual(described("NSMutableArray")["superclass"], "NSArray")
        self.assertIn("NSCopying", described("NSString")["protocols"])
        self.assertIsNone(described("NSObject")["superclass"])
        self.assertEqual(rvf("describe", "NSString").stdout.splitlines()[0],
                         "NSString : NSObject <NSCopying>")
        self.assertEqual(rvf("describe", "NSProxy").stdout.splitlines()[0], "NSProxy <NSObject>")

    def test_knows_classes_that_nothing_has_used_yet(self):
        for name in ("RVFClassPropertyDescriptor", "NSNetService", "RVFCurrencyFormatter"):
            with self.subTest(name):
                self.assertEqual(described(name)["name"], name)

    def test_an_unknown_class_is_an_error(self):
        for name in ("NoSuchClass", "rvfstaticserver", ""):
            with self.subTest(name):
                result = rvf("describe", name)
                self.assertEqual((result.returncode, result.stdout), (65, ""))
                self.assertEqual(result.stderr, f'rvf: there is no class named "{name}"\n')

    def test_an_error_is_a_json_object_too(self):
        result = rvf("describe", "NoSuchClass", "--json")
        self.assertEqual(result.returncode, 65)
        self.assertEqual(json_output.read("describe", result.stdout),
                         {"domain": "rvf", "code": 65,
                          "message": 'there is no class named "NoSuchClass"'})

    def test_needs_a_class(self):
        self.assertEqual(rvf("describe").returncode, 64)

    def test_tells_that_output_failed(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            self.assertEqual(rvf("describe", "NSObject", stdout=full).returncode, 74)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[2:], verbosity=2)
