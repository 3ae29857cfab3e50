#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Exchanges property lists with two foreign peers: Python's plistlib and plistutil.

Usage: property_list_peers_test.py PROBE [unittest options].
"""

import datetime
import math
import plistlib
import random
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROBE = sys.argv[1]
FORMS = {"xml": plistlib.FMT_XML, "binary": plistlib.FMT_BINARY}

VALUES = [
    {}, [], "", "a", "é €😀", "<&>\"'", " a\n\tb ", b"", b"\0\1\xff" * 20, True, False,
    0, 1, -1, 127, 128, 255, 256, 65535, 65536, -129, -32769, 2**31, -2**31, 2**32,
    2**63 - 1, -2**63, 2**63, 2**64 - 1,
    0.0, 1.0, -1.5, 0.1, 1e300, 5e-324, 1 / 3, math.inf, -math.inf,
    datetime.datetime(2001, 1, 1), datetime.datetime(1000, 1, 1), datetime.datetime(9999, 12, 31, 23),
    datetime.datetime(1969, 12, 31, 23, 59, 59), datetime.datetime(2070, 6, 1),
    {"": "empty key", "k&<é😀": [1, "1", 1.0, True]},
    {"static servers": [{"serverAddress": "[::1]:80", "serverId": "X"}, {}]},
    [[], {}, [[{"a": [{}]}]]], ["same"] * 20, [{"a": 1}] * 3, list(range(300)),
    {str(i): i for i in range(600)},
]


def probe(form, data):
    return subprocess.run([PROBE, form], input=data, capture_output=True, timeout=60, check=False)


def written(form, data):
    result = probe(form, data)
    assert result.returncode == 0, (data, result.stderr)
    return result.stdout


def through_plistutil(form, data):
    with tempfile.TemporaryDirectory() as folder:
        source, target = Path(folder, "in"), Path(folder, "out")
        source.write_bytes(data)
        subprocess.run(["plistutil", "-i", source, "-o", target, "-f",
                        {"xml": "xml", "binary": "bin"}[form]], check=True, timeout=60)
        return target.read_bytes()


def types_of(value):
    if isinstance(value, dict):
        return {key: types_of(element) for key, element in value.items()}
    if isinstance(value, list):
        return [types_of(element) for element in value]
    return type(value)


def random_value(source, depth=0):
    kind = source.randrange(8 if depth < 4 else 6)
    if kind == 0:
        return source.randrange(-2**63, 2**64)
    if kind == 1:
        return source.uniform(-1e9, 1e9)
    if kind == 2:
        return source.random() < 0.5
    if kind == 3:
        return bytes(source.randrange(256) for _ in range(source.randrange(40)))
    if kind == 4:
        return datetime.datetime(2001, 1, 1) + datetime.timedelta(
            seconds=source.randrange(-10**10, 10**11))
    if kind == 5:
        return "".join(chr(source.choice([source.randrange(0x20, 0x7F),
                                          source.randrange(0xA0, 0xD800),
                                          source.randrange(0x10000, 0x110000)]))
                       for _ in range(source.randrange(20)))
    if kind == 6:
        return [random_value(source, depth + 1) for _ in range(source.randrange(6))]
    return {f"k{i}": random_value(source, depth + 1) for i in range(source.randrange(6))}


class PeerTest(unittest.TestCase):
    def assert_same(self, value, data):
        read = plistlib.loads(data)
        self.assertEqual(read, value)
        self.assertEqual(types_of(read), types_of(value))

    def test_reads_what_plistlib_writes_and_writes_what_it_reads(self):
        for value in VALUES:
            for source, fmt in FORMS.items():
                for target in FORMS:
                    with self.subTest(value=repr(value)[:60], source=source, target=target):
                        self.assert_same(value, written(target, plistlib.dumps(value, fmt=fmt)))

    def test_random_trees_survive(self):
        source = random.Random(1)
        for _ in range(60):
            value = random_value(source)
            for form, fmt in FORMS.items():
                with self.subTest(value=repr(value)[:60], form=form):
                    self.assert_same(value, written(form, plistlib.dumps(value, fmt=fmt)))

    def test_not_a_number_survives(self):
        for form, fmt in FORMS.items():
            data = written(form, plistlib.dumps([math.nan], fmt=fmt))
            self.assertTrue(math.isnan(plistlib.loads(data)[0]))

    def test_controls_survive_in_binary(self):
        value = ["\1", "a\1b", "\1\x1f\r", "a\r\nb"]
        self.assert_same(value, written("binary", plistlib.dumps(value, fmt=plistlib.FMT_BINARY)))

    def test_carriage_returns_survive_in_xml(self):
        data = plistlib.dumps(["a\r\nb\r"], fmt=plistlib.FMT_BINARY)
        self.assert_same(["a\r\nb\r"], written("xml", data))

    def test_controls_have_no_place_in_xml(self):
        for text in ("\0", "\1", "\x1f", "\ufffe"):
            result = probe("xml", plistlib.dumps([text], fmt=plistlib.FMT_BINARY))
            self.assertEqual((result.returncode, result.stderr[:4]), (65, b"3851"))

    def test_fractions_of_a_second_survive_in_binary(self):
        # plistlib rounds to microseconds when it reads, so the bytes are compared.
        data = plistlib.dumps(datetime.datetime(2200, 1, 1, 0, 0, 0, 123456),
                              fmt=plistlib.FMT_BINARY)
        self.assertEqual(written("binary", data)[8:17], data[8:17])

    def test_reads_other_encodings_of_xml(self):
        text = plistlib.dumps(["é"], fmt=plistlib.FMT_XML).decode()
        for encoding in ("UTF-16", "ISO-8859-1", "UTF-8"):
            with self.subTest(encoding):
                data = text.replace("UTF-8", encoding).encode(encoding)
                self.assert_same(["é"], written("binary", data))

    def test_plistutil_reads_what_we_write(self):
        for value in VALUES:
            for ours in FORMS:
                for theirs in FORMS:
                    if isinstance(value, dict) and "" in value:
                        continue  # plistutil refuses empty keys
                    with self.subTest(value=repr(value)[:60], ours=ours, theirs=theirs):
                        data = written(ours, plistlib.dumps(value, fmt=plistlib.FMT_BINARY))
                        self.assert_same(value, through_plistutil(theirs, data))

    def test_reads_what_plistutil_writes(self):
        for value in VALUES:
            if isinstance(value, dict) and "" in value:
                continue  # as above
            for theirs in FORMS:
                with self.subTest(value=repr(value)[:60], theirs=theirs):
                    data = through_plistutil(theirs, plistlib.dumps(value, fmt=plistlib.FMT_BINARY))
                    self.assert_same(value, written("binary", data))

    def test_every_truncation_is_refused(self):
        value = {"a": [1, "text", b"data", 1.5, True, datetime.datetime(2001, 1, 1)]}
        for form, fmt in FORMS.items():
            data = plistlib.dumps(value, fmt=fmt).rstrip(b"\n")
            step = 1 if form == "binary" else 7
            for length in range(6, len(data), step):  # less of "bplist00" is a bare word
                with self.subTest(form=form, length=length):
                    result = probe("xml", data[:length])
                    self.assertEqual((result.returncode, result.stderr[:4]), (65, b"3840"))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[2:], verbosity=2)
