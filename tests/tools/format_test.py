#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs "rvf format" and "rvf text" as their users do. Usage: format_test.py RVF [unittest options].
"""

import os
import subprocess
import sys
import unittest

RVF = sys.argv[1]


def rvf(*arguments, **environment):
    return subprocess.run([RVF, *arguments], capture_output=True, timeout=60,
                          env={"PATH": os.environ["PATH"], "LC_ALL": "en_US.UTF-8", **environment})


class ToolTest(unittest.TestCase):
    def assert_prints(self, expected, *arguments, **environment):
        with self.subTest(arguments=arguments, **environment):
            result = rvf(*arguments, **environment)
            self.assertEqual(result.stderr.decode(), "")
            self.assertEqual(result.stdout.decode(), expected + "\n" if expected else "")
            self.assertEqual(result.returncode, 0)

    def assert_fails(self, code, message, *arguments):
        with self.subTest(arguments=arguments):
            result = rvf(*arguments)
            self.assertEqual(result.returncode, code)
            self.assertEqual(result.stdout, b"")
            self.assertIn(message, result.stderr.decode())


class FormatTest(ToolTest):
    def test_prints_just_the_text(self):
        for kind, value, expected in [
            ("money", "1234.5", "1,234.50"),
            ("money", "-0.125", "-0.12"),
            ("money", "+7", "7.00"),
            ("currency", "-1234.5", "-$ 1,234.50"),
            ("discount", "-1234.5", "$ -1,234.5"),
            ("quantity", "2.999", "2.99"),
            ("time", "3725", "01:02"),
            ("hours", "5400", "1.5"),
            ("bytes", "1536", "1.5 KB"),
            ("bytes", "1", "1 byte"),
            ("phone", "6045551234", "(604) 555-1234"),
            ("bool", "yes", "true"),
            ("bool", "0", "false"),
        ]:
            self.assert_prints(expected, "format", kind, value)

    def test_writes_for_the_locale_of_the_option_or_of_the_environment(self):
        self.assert_prints("1.234,50", "format", "money", "1234.5", "--locale", "de_DE")
        self.assert_prints("€ 1.234,50", "format", "currency", "1234.5", LC_ALL="de_DE.UTF-8")
        self.assert_prints("1,234.50", "format", "money", "1234.5", LC_ALL="C")

    def test_reads_a_text_back(self):
        self.assert_prints("1.01", "format", "--read", "money", "1.005")
        self.assert_prints("-1234.5", "format", "--read", "currency", "--", "-$ 1,234.50")
        self.assert_prints("1234.5", "format", "--read", "money", "1.234,50 €", "--locale", "de_DE")
        self.assert_prints("0", "format", "--read", "quantity", "")

    def test_what_cannot_be_read_is_a_data_error(self):
        self.assert_fails(65, "The value “abc” is invalid.", "format", "--read", "money", "abc")
        for kind, value in [("money", "12abc"), ("money", "1,5"), ("time", "nan"), ("time", "inf"),
                            ("bytes", "-1"), ("bytes", "1.5"), ("quantity", "")]:
            self.assert_fails(65, f"is no value of the kind {kind}", "format", kind, value)

    def test_wrong_usage_is_told(self):
        self.assert_fails(64, "KIND", "format", "weight", "1")
        self.assert_fails(64, "VALUE", "format", "money")
        self.assert_fails(64, "can be read", "format", "--read", "time", "01:02")


class TextTest(ToolTest):
    def test_prints_the_result(self):
        for operation, text, expected in [
            ("escape-xml", "<a & 'b'>", "&lt;a &amp; &apos;b&apos;&gt;"),
            ("escape-url", "a b&ü", "a%20b%26%C3%BC"),
            ("decode-url", "%41+%c3%bc", "A+ü"),
            ("words", "Hello, world! don't stop", "Hello\nworld\ndon't\nstop"),
            ("words", "...", ""),
            ("md5", "", "d41d8cd98f00b204e9800998ecf8427e"),
            ("clean", "\ta\n\nb\t", "a b"),
            ("fill", "no placeholder", "no placeholder"),
        ]:
            self.assert_prints(expected, "text", operation, text)

    def test_fills_placeholders_with_the_values_given(self):
        self.assert_prints("Hello World = a=b!", "text", "fill", "Hello %@(name) = %@(x)%@(y)!",
                           "name=World", "x=a=b")

    def test_what_has_no_result_is_a_data_error(self):
        self.assert_fails(65, "not whole", "text", "decode-url", "100%")
        self.assert_fails(65, "no well-formed UTF-8", "text", "escape-url", b"\xff")
        self.assert_fails(65, "Make sure any %@( is closed with )", "text", "fill", "%@(name")
        self.assert_fails(65, "KEY=VALUE", "text", "fill", "a", "name")
        self.assert_fails(64, "takes one text", "text", "words", "a", "b")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
