#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs "rvf filter" as its users do. Usage: filter_test.py RVF [unittest options]."""

import json
import subprocess
import sys
import unittest

RVF = sys.argv[1]

PRODUCTS = [
    {"name": "Red shoe", "price": 40, "tags": ["sale", "new"], "maker": {"name": "Ada"}},
    {"name": "Shoe, RÉD", "price": 9.5, "tags": [], "maker": None},
    {"name": "Green shoe", "price": 40, "sold": True},
    {"name": "Café", "price": -1, "code": "C-1"},
]


def rvf(*arguments, text):
    return subprocess.run([RVF, "filter", *arguments], input=text.encode(), capture_output=True,
                          timeout=60)


def lines(records):
    return "".join(json.dumps(record, ensure_ascii=False) + "\n" for record in records)


class FilterTest(unittest.TestCase):
    def found(self, *arguments, records=PRODUCTS):
        """The names of what is found; both forms of input must agree."""
        from_lines = rvf(*arguments, text=lines(records))
        self.assertEqual((from_lines.returncode, from_lines.stderr), (0, b""))
        from_array = rvf(*arguments, text=json.dumps(records))
        self.assertEqual((from_array.returncode, from_array.stderr), (0, b""))
        found = [json.loads(line) for line in from_lines.stdout.decode().splitlines()]
        self.assertEqual(json.loads(from_array.stdout), found)
        return [record["name"] for record in found]

    def assert_fails(self, code, message, *arguments, text="[]"):
        with self.subTest(arguments=arguments, text=text):
            result = rvf(*arguments, text=text)
            self.assertEqual(result.returncode, code)
            self.assertEqual(result.stdout, b"")
            self.assertIn(message, result.stderr.decode())
            self.assertEqual(result.stderr.count(b"\n"), 1)

    def test_keeps_the_records_that_match(self):
        for predicate, names in [
            ("price > 10", ["Red shoe", "Green shoe"]),
            ("name CONTAINS[cd] 'red'", ["Red shoe", "Shoe, RÉD"]),
            ("maker.name == 'Ada'", ["Red shoe"]),
            ("ANY tags == 'sale'", ["Red shoe"]),
            ("sold == YES", ["Green shoe"]),
            ("code != nil", ["Café"]),
            ("maker == nil", ["Shoe, RÉD", "Green shoe", "Café"]),
            ("price BETWEEN {-1, 9.5} AND NOT name LIKE 'C*'", ["Shoe, RÉD"]),
            ("TRUEPREDICATE", [product["name"] for product in PRODUCTS]),
            ("FALSEPREDICATE", []),
        ]:
            with self.subTest(predicate=predicate):
                self.assertEqual(self.found(predicate), names)

    def test_searches_for_every_word(self):
        search = "name CONTAINS[cd] $S"
        self.assertEqual(self.found(search, "--set", "S=red shoe"), ["Red shoe", "Shoe, RÉD"])
        self.assertEqual(self.found(search, "--set", "S=SHOE  red "), ["Red shoe", "Shoe, RÉD"])
        self.assertEqual(self.found(search, "--set", "S=cafe"), ["Café"])
        self.assertEqual(self.found(search, "--set", "S="), [p["name"] for p in PRODUCTS])
        self.assertEqual(self.found(search + " AND price > 10", "--set", "S=red shoe"),
                         ["Red shoe"])
        self.assertEqual(self.found("name CONTAINS[c] $S OR code == $C", "--set", "S=green shoe",
                                    "--set", "C=C-1"), ["Green shoe", "Café"])

    def test_a_set_text_is_no_predicate(self):
        self.assertEqual(self.found("name == $S", "--set", "S=x' OR 'a' == 'a"), [])
        self.assertEqual(self.found("name == $S OR name == 'Café'", "--set", "S=a=b"), ["Café"])

    def test_fills_variables_in_braces(self):
        self.assertEqual(self.found("name IN {$A, 'Café'}", "--set", "A=Red shoe"),
                         ["Red shoe", "Café"])

    def test_lines_stay_as_they_were_written(self):
        text = '{"price":1.10,  "name":"x"}\n\n  {"price":2}\n{"price": 1.1}'
        result = rvf("price == 1.1", text=text)
        self.assertEqual(result.stdout.decode(), '{"price":1.10,  "name":"x"}\n{"price": 1.1}\n')

    def test_the_first_line_stays_as_it_was_written_too(self):
        for start in ["  ", "\t", "\n", " \n\n  ", "\r\n \t"]:
            with self.subTest(start=start):
                result = rvf("a == 1", text=start + '{"a":1}\n {"a":1}\n')
                self.assertEqual(result.stdout.decode(),
                                 start.rpartition("\n")[2] + '{"a":1}\n {"a":1}\n')

    def test_empty_lines_count_as_lines(self):
        self.assert_fails(65, "line 3 is no JSON", "a == 1", text='\n \n {"a":\n')
        self.assert_fails(65, "line 4 is no JSON", "a == 1", text='\n{"a":2}\n\n{"a":\n')
        self.assert_fails(65, "line 3, column 4", "a == 1", text='\n\n [{]')
        self.assert_fails(65, "record 2 ", "a == 1", text='\n\n{"a":2}\n\n1\n')

    def test_an_object_is_one_line_and_a_line_one_object(self):
        self.assert_fails(65, "line 1 is no JSON", "a == 1", text='{"a":1} {"a":1}\n')
        self.assert_fails(65, "line 1 is no JSON", "a == 1", text='{\n  "a": 1\n}\n')
        result = rvf("a == 1", text='[{\n  "a": 1\n}, {"a":1}]\n')
        self.assertEqual(result.stdout.decode(), '[{"a":1},{"a":1}]\n')

    def test_an_array_keeps_the_order_of_keys(self):
        result = rvf("z == 1", text='[{"z": 1, "a": {"y": null, "b": 2.5}}, {"z": 2}]')
        self.assertEqual(result.stdout.decode(), '[{"z":1,"a":{"y":null,"b":2.5}}]\n')

    def test_nothing_in_is_nothing_out(self):
        for text, expected in [("", b""), ("\n \n", b""), ("[]", b"[]\n"), (" [ ] ", b"[]\n")]:
            self.assertEqual(rvf("a == 1", text=text).stdout, expected)

    def test_says_where_a_predicate_is_wrong(self):
        self.assert_fails(64, "at character 6: a value is missing", "a == ")
        self.assert_fails(64, "at character 8: the text in quotes does not end", "name = \"x")
        self.assert_fails(64, "at character 1: a value is missing", "")
        self.assert_fails(64, "at character 6: an argument is missing", "a == %@")
        self.assert_fails(64, "nests deeper than 250 levels", "(" * 100_000)

    def test_variables_need_a_text(self):
        self.assert_fails(64, "$S has no text", "name == $S")
        self.assert_fails(64, "$R has no text", "$L == $R", "--set", "L=x")
        self.assert_fails(64, "$B has no text", "a IN {1, $B}")
        self.assert_fails(64, "NAME=TEXT", "name == $S", "--set", "S")
        self.assert_fails(64, "NAME=TEXT", "name == $S", "--set", "=x")

    def test_constants_do_not_go_with_several_words(self):
        for predicate in ["a == $S AND TRUEPREDICATE", "NOT (FALSEPREDICATE OR $S IN b)"]:
            self.assert_fails(64, "TRUEPREDICATE and FALSEPREDICATE cannot be joined with texts of "
                              "several words", predicate, "--set", "S=x y")
            self.assertEqual(rvf(predicate, "--set", "S=x", text="").returncode, 0)
        self.assertEqual(rvf("TRUEPREDICATE", "--set", "S=x y", text="{}").stdout, b"{}\n")

    def test_the_deepest_predicate_takes_several_words(self):
        deep = "$S == $S OR b == 1 AND (" * 250 + "NONE c == $S" + ")" * 250
        result = rvf(deep, "--set", "S=x y", text='{"b":1}\n')
        self.assertEqual((result.returncode, result.stdout), (0, b'{"b":1}\n'))

    def test_bad_json_is_a_data_error(self):
        self.assert_fails(65, "standard input is no JSON", "a == 1", text="[{]")
        self.assert_fails(65, "line 2 is no JSON", "a == 1", text='{"a":2}\n{"a":\n')
        self.assert_fails(65, "record 2 is no JSON object", "a == 1", text="[{}, 1]")
        self.assert_fails(65, "record 1 is no JSON object", "a == 1", text='"text"')
        self.assert_fails(65, "nests deeper than", "a == 1",
                          text='{"a":' * 5_000 + "1" + "}" * 5_000)

    def test_a_record_that_cannot_be_compared_is_a_data_error(self):
        self.assert_fails(65, "record 2: ", "name CONTAINS 'x'",
                          text='{"name":"y"}\n{"name":5}\n')
        self.assert_fails(65, "record 1: ", "name MATCHES '('", text='[{"name":"y"}]')

    def test_what_was_found_before_an_error_is_written(self):
        result = rvf("a == 1", text='{"a":1}\n{"a"')
        self.assertEqual((result.returncode, result.stdout), (65, b'{"a":1}\n'))

    def test_failing_output_is_an_error(self):
        with open("/dev/full", "wb") as full:
            result = subprocess.run([RVF, "filter", "TRUEPREDICATE"], input=b'{"a":1}\n',
                                    stdout=full, stderr=subprocess.PIPE, timeout=60, check=False)
        self.assertEqual(result.returncode, 74)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
