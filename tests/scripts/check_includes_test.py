#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows that scripts/check-includes passes a sound tree, and names needless and missing includes."""

import subprocess
import tempfile
import unittest
from pathlib import Path

CHECK_INCLUDES = Path(__file__).resolve().parents[2] / "scripts" / "check-includes"

SOUND_TREE = {
    "Platform/Values/Price.h":
        "#include <string>\n#include <vector>\nclass Tax;\nclass RVF_EXPORT Price final {\n"
        " public:\n  int cents() const;\n  std::vector<int> parts_;\n};\n",
    "Platform/Values/Price.cpp":
        '#include "Platform/Values/Price.h"\nint Price::cents() const { return 0; }\n',
    "Platform/Values/Offer.h":
        '#include "Platform/Values/Price.h"\nclass Offer : public Price {\n  int days();\n};\n',
    "Platform/Values/Rounding.h": "enum Rounding { kUp, kDown };\nconstexpr int kSteps = 5;\n",
}
PRICE = '#include "Platform/Values/Price.h"\n'
ROUNDING = '#include "Platform/Values/Rounding.h"\n'


class CheckIncludes(unittest.TestCase):
    def problems_of(self, text):
        """What the check prints about the sound tree with a file of this text beside it."""
        with tempfile.TemporaryDirectory() as root:
            for path, content in {**SOUND_TREE, "Platform/Values/A.cpp": text}.items():
                file = Path(root, path)
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_text(content, encoding="utf-8")
            done = subprocess.run([CHECK_INCLUDES, root], capture_output=True, text=True,
                                  check=False)
        self.assertEqual(done.stderr, "")
        lines = done.stdout.splitlines()
        self.assertEqual(done.returncode, 0 if lines[0].startswith("check-includes:") else 1)
        return lines

    def assert_passed(self, text):
        self.assertEqual(self.problems_of(text),
                         ["check-includes: 5 files include what they use"])

    def assert_caught(self, text, *expected):
        self.assertEqual(self.problems_of(text),
                         [f"Platform/Values/A.cpp{problem}" for problem in expected])

    def test_passes_a_header_of_which_anything_is_used(self):
        for use in ("Price price;", "auto all = total()->cents();", "Price* price = nullptr;"):
            with self.subTest(use):
                self.assert_passed(PRICE + use)

    def test_passes_a_header_of_which_an_enumerator_or_a_constant_is_used(self):
        for use in ("auto rounding = kDown;", "int steps = kSteps;"):
            with self.subTest(use):
                self.assert_passed(ROUNDING + use)

    def test_passes_a_header_of_which_only_the_base_is_used(self):
        self.assert_passed('#include "Platform/Values/Offer.h"\nauto all = total()->cents();')

    def test_catches_a_header_of_which_nothing_is_used(self):
        self.assert_caught("\n" + ROUNDING + PRICE + "Price price;",
                           ":2: uses nothing of Platform/Values/Rounding.h")

    def test_takes_no_comment_and_no_text_for_a_use(self):
        for text in ('auto text = "the Price";', "// a Price", "/* Price\n */",
                     'auto text = R"(Price)";'):
            with self.subTest(text):
                self.assert_caught(PRICE + text, ":1: uses nothing of Platform/Values/Price.h")

    def test_takes_no_forward_declaration_for_what_the_header_declares(self):
        self.assert_caught(PRICE + "Tax* tax();", ":1: uses nothing of Platform/Values/Price.h")

    def test_keeps_what_is_marked(self):
        self.assert_passed(PRICE.rstrip() + "  // IWYU pragma: keep\n")

    def test_catches_a_standard_header_of_which_nothing_is_used(self):
        self.assert_caught("#include <set>\n#include <map>\nstd::map<int, int> prices;",
                           ":1: uses nothing of set")

    def test_leaves_standard_headers_alone_that_it_does_not_know(self):
        self.assert_passed("#include <utility>\n")

    def test_catches_a_standard_name_without_its_header(self):
        self.assert_caught("std::map<int, int> prices;", ": uses <map> without including it")

    def test_passes_a_standard_name_whose_header_comes_with_another(self):
        self.assert_passed(PRICE + "Price price;\nstd::vector<int> parts;")


if __name__ == "__main__":
    unittest.main()
