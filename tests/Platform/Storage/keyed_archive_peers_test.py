#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Reads keyed archives with a foreign peer, Python's plistlib, and has its archives read.

Usage: keyed_archive_peers_test.py PROBE [unittest options].
"""

import plistlib
import subprocess
import sys
import unittest
from plistlib import UID

PROBE = sys.argv[1]


def probe(argument, data=b""):
    return subprocess.run([PROBE, argument], input=data, capture_output=True, timeout=120,
                          check=False)


class Archive:
    """An archive as plistlib reads it, its form checked."""

    def __init__(self, test, name):
        result = probe(name)
        test.assertEqual(result.returncode, 0, result.stderr)
        root = plistlib.loads(result.stdout, fmt=plistlib.FMT_BINARY)
        test.assertEqual(set(root), {"$version", "$archiver", "$top", "$objects"})
        test.assertEqual((root["$version"], root["$archiver"]), (100000, "NSKeyedArchiver"))
        test.assertEqual(root["$objects"][0], "$null")
        self.objects = root["$objects"]
        self.top = root["$top"]

    def at(self, reference):
        assert isinstance(reference, UID), reference
        return self.objects[reference.data]

    @property
    def root(self):
        return self.at(self.top["root"])

    def class_of(self, archived):
        return self.at(archived["$class"])["$classname"]

    def elements(self, archived, key="NS.objects"):
        return [self.at(reference) for reference in archived[key]]


def archive_of(*objects, top=None):
    return plistlib.dumps({"$version": 100000, "$archiver": "NSKeyedArchiver",
                           "$top": {"root": UID(1)} if top is None else top,
                           "$objects": ["$null", *objects]}, fmt=plistlib.FMT_BINARY)


class PeerTest(unittest.TestCase):
    def test_texts_numbers_and_data_stand_for_themselves(self):
        archive = Archive(self, "leaves")
        leaves = archive.elements(archive.root)
        expected = ["text", "é 😀", -5, 2**64 - 1, 0.5, True, False, b"\0\xff", ""]
        self.assertEqual(leaves, expected)
        self.assertEqual([type(leaf) for leaf in leaves], [type(leaf) for leaf in expected])

    def test_collections_have_their_keys_and_classes(self):
        archive = Archive(self, "collections")
        self.assertEqual(archive.class_of(archive.root), "NSArray")
        dictionary, members, date, null, changing, empty = archive.elements(archive.root)
        self.assertEqual(set(dictionary), {"NS.keys", "NS.objects", "$class"})
        self.assertEqual(archive.elements(dictionary, "NS.keys"), ["key"])
        self.assertEqual(archive.elements(dictionary), ["value"])
        self.assertEqual(archive.elements(members), ["member"])
        self.assertEqual(date["NS.time"], 1.5)
        self.assertEqual(set(null), {"$class"})
        self.assertEqual(archive.elements(changing), ["inner"])
        self.assertEqual(empty["NS.objects"], [])
        self.assertEqual([archive.class_of(each) for each in
                          (dictionary, members, date, null, changing, empty)],
                         ["NSDictionary", "NSSet", "NSDate", "NSNull", "NSMutableArray", "NSArray"])

    def test_a_class_stands_there_once_with_its_superclasses(self):
        archive = Archive(self, "collections")
        classes = [each for each in archive.objects
                   if isinstance(each, dict) and "$classname" in each]
        self.assertEqual(len({each["$classname"] for each in classes}), len(classes))
        for each in classes:
            self.assertEqual(set(each), {"$classname", "$classes"})
            self.assertEqual((each["$classes"][0], each["$classes"][-1]),
                             (each["$classname"], "NSObject"))
        changing = next(each for each in classes if each["$classname"] == "NSMutableArray")
        self.assertEqual(changing["$classes"], ["NSMutableArray", "NSArray", "NSObject"])

    def test_the_root_comes_first(self):
        for name in ("leaves", "collections", "shared", "circle"):
            self.assertEqual(Archive(self, name).top, {"root": UID(1)})

    def test_a_shared_object_stands_there_once(self):
        archive = Archive(self, "shared")
        first, second, inner = archive.root["NS.objects"]
        self.assertEqual(first, second)
        self.assertEqual(archive.at(inner)["NS.objects"], [first])
        dictionaries = [each for each in archive.objects
                        if isinstance(each, dict) and "NS.keys" in each]
        self.assertEqual(len(dictionaries), 1)

    def test_a_circle_is_a_circle_of_references(self):
        archive = Archive(self, "circle")
        a = archive.root
        b = archive.at(a["next"])
        self.assertEqual((archive.at(a["name"]), archive.at(b["name"])), ("a", "b"))
        self.assertEqual((b["next"], b["parent"]), (UID(1), UID(1)))
        self.assertEqual(a["parent"], UID(0))
        self.assertEqual((a["count"], a["weight"], a["marked"]), (0, 0.0, False))
        self.assertEqual(archive.class_of(a), "ArchivedNode")

    def test_a_conditional_object_that_nobody_encodes_is_absent(self):
        archive = Archive(self, "lonely child")
        self.assertEqual(archive.root["parent"], UID(0))
        self.assertNotIn("parent", archive.objects)

    def test_an_absent_root_is_null(self):
        archive = Archive(self, "absent")
        self.assertEqual((archive.top, archive.objects), ({"root": UID(0)}, ["$null"]))

    def test_a_million_elements(self):
        archive = Archive(self, "million")
        self.assertEqual(archive.elements(archive.root), list(range(1_000_000)))

    def test_foreign_archives_are_read(self):
        array = {"$classname": "NSArray", "$classes": ["NSArray", "NSObject"]}
        dictionary = {"$classname": "NSDictionary", "$classes": ["NSDictionary", "NSObject"]}
        data = archive_of({"$class": UID(2), "NS.objects": [UID(3), UID(5), UID(5)]}, array,
                          {"$class": UID(4), "NS.keys": [UID(5)], "NS.objects": [UID(6)]},
                          dictionary, "key", 2.5)
        result = probe("read", data)
        self.assertEqual((result.returncode, result.stdout), (0, b"({key = 2.5;}, key, key)\n"))

    def test_truncated_and_dangling_archives_are_refused(self):
        whole = probe("collections").stdout
        for length in range(0, len(whole), 7):
            with self.subTest(length=length):
                self.assertEqual(probe("read", whole[:length]).returncode, 65)
        for data in (archive_of(), archive_of("a", top={"root": UID(2)}),
                     archive_of("a", top={"root": "a"}), archive_of({"$class": UID(1)}),
                     plistlib.dumps({}, fmt=plistlib.FMT_BINARY), plistlib.dumps({})):
            with self.subTest(data=data):
                self.assertEqual(probe("read", data).returncode, 65)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[2:], verbosity=2)
