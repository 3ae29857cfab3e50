#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails unless docs/object-model.md shows examples/dynamic-properties.cpp, and it prints what it says.

Usage: dynamic_properties_example_test.py PROGRAM [unittest options].
"""

import re
import subprocess
import sys
import textwrap
import unittest
from pathlib import Path

PROGRAM = sys.argv[1]
ROOT = Path(__file__).resolve().parents[2]
SOURCE = Path(ROOT, "examples", "dynamic-properties.cpp").read_text(encoding="utf-8")
PAGE = Path(ROOT, "docs", "object-model.md").read_text(encoding="utf-8")
SHOWN = re.findall(r"^```cpp\n(.*?)^```$", PAGE, re.DOTALL | re.MULTILINE)


class ExampleTest(unittest.TestCase):
    maxDiff = None

    def test_the_page_shows_the_class(self):
        note = re.search(r"^class Note.*?^\};\n", SOURCE, re.DOTALL | re.MULTILINE).group()
        self.assertIn(note, SHOWN)
        self.assertLess(len(note.splitlines()), 25)

    def test_the_page_shows_the_use_of_the_class(self):
        body = re.search(r"^int main\(\) \{\n(.*?)^\}$", SOURCE, re.DOTALL | re.MULTILINE).group(1)
        self.assertIn(textwrap.dedent(body), SHOWN)

    def test_the_program_prints_what_its_comments_say(self):
        output = subprocess.run([PROGRAM], capture_output=True, text=True, timeout=60, check=True)
        self.assertEqual(output.stdout, "Milk 5\n-[Note setCount:] got a value of type double "
                                        "where q is expected\n")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[2:], verbosity=2)
