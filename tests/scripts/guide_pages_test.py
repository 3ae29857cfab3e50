#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows that every page of the guide is in its list, has a program, and has that program tested."""

import re
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
GUIDE = ROOT / "docs" / "guide"
PROGRAMS = ROOT / "examples" / "guide"


def words_of(path):
    text = re.sub(r"#.*", "", path.read_text(encoding="utf-8"))
    return set(re.findall(r"[\w-]+", text))


class GuidePages(unittest.TestCase):
    def setUp(self):
        self.pages = {page.stem for page in GUIDE.glob("*.md")} - {"README"}

    def test_the_list_names_every_page_once_and_nothing_else(self):
        listed = re.findall(r"^- \[.+\]\((.+)\.md\)$", (GUIDE / "README.md").read_text("utf-8"),
                            re.MULTILINE)
        self.assertEqual(sorted(listed), sorted(self.pages))

    def test_every_page_has_a_program_and_every_program_a_page(self):
        self.assertEqual({program.stem for program in PROGRAMS.glob("*.cpp")}, self.pages)

    def test_every_program_is_built_and_tested(self):
        for path in (PROGRAMS / "CMakeLists.txt", ROOT / "tests" / "examples" / "CMakeLists.txt"):
            with self.subTest(path):
                self.assertLessEqual(self.pages, words_of(path))


if __name__ == "__main__":
    unittest.main()
