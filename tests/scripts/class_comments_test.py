#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows that the comment of every public class says which threads use it and how long it lives."""

import re
import unittest
from importlib.machinery import SourceFileLoader
from importlib.util import module_from_spec, spec_from_loader
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
# Public is a class, struct or union at the level of a namespace in an installed header. A
# specialization is described by its primary template, and what is in `namespace detail` is not for
# clients: neither needs a line of its own. Nothing else is exempt.
DEFINITION = re.compile(
    r"^(?:class|struct|union)\s+(?:RVF_EXPORT\s+)?(?P<name>[\w:]+)(?P<special>\s*<)?[^;{(]*\{",
    re.MULTILINE)
PROMISE = re.compile(r"\bThread: \S.* Lifetime: \S")
ABOVE_DEFINITION = re.compile(r"template\b|requires\b")


def installed_headers():
    loader = SourceFileLoader("check_layers", str(ROOT / "scripts" / "check-layers"))
    check_layers = module_from_spec(spec_from_loader(loader.name, loader))
    loader.exec_module(check_layers)
    return sorted(check_layers.Tree(ROOT).installed)


def is_detail(text, position):
    before = text[:position]
    return before.count("namespace detail {") > before.count("}  // namespace detail")


def comment_above(lines, index):
    """The text of the comment that ends just above a line, template heads left out."""
    while index > 0 and ABOVE_DEFINITION.match(lines[index - 1]):
        index -= 1
    end = index
    while index > 0 and lines[index - 1].startswith("///"):
        index -= 1
    return " ".join(line[3:].strip() for line in lines[index:end])


def silent_classes(text):
    """The public classes of a header whose comment lacks the line."""
    lines = text.splitlines()
    for match in DEFINITION.finditer(text):
        if match["special"] or "::" in match["name"] or is_detail(text, match.start()):
            continue
        if not PROMISE.search(comment_above(lines, text.count("\n", 0, match.start()))):
            yield match["name"]


class ClassComments(unittest.TestCase):
    def assert_silent(self, text, *expected):
        self.assertEqual(list(silent_classes(text)), list(expected))

    def test_every_public_class_says_who_uses_it_and_how_long_it_lives(self):
        headers = installed_headers()
        self.assertGreater(len(headers), 100)
        for header in headers:
            with self.subTest(header):
                self.assert_silent((ROOT / header).read_text(encoding="utf-8"))

    def test_accepts_a_line_that_is_broken_in_two(self):
        self.assert_silent("/// A date.\n///\n/// Thread: any;\n/// immutable. Lifetime: its own.\n"
                           "class RVF_EXPORT NSDate final : public NSObject {\n")

    def test_accepts_a_line_above_the_head_of_a_template(self):
        self.assert_silent("/// Thread: one. Lifetime: its scope.\ntemplate <class T>\n"
                           "requires std::integral<T>\nstruct Scope {\n")

    def test_catches_a_class_without_comment(self):
        self.assert_silent("struct NSRange {\n", "NSRange")

    def test_catches_half_a_line(self):
        self.assert_silent("/// Thread: any.\nclass A {\n", "A")
        self.assert_silent("/// Lifetime: its own.\nclass A {\n", "A")
        self.assert_silent("/// Thread: Lifetime: its own.\nclass A {\n", "A")

    def test_catches_a_line_that_belongs_to_another_class(self):
        self.assert_silent("/// Thread: any. Lifetime: its own.\nclass A {\n};\n\nclass B {\n", "B")

    def test_asks_nothing_of_declarations_details_and_specializations(self):
        self.assert_silent("class NSError;\nnamespace detail {\nstruct Step {\n};\n"
                           "}  // namespace detail\ntemplate <>\nstruct Kept<int> {\n};\n"
                           "template <>\nstruct std::hash<rvf::SEL> {\n};\n")


if __name__ == "__main__":
    unittest.main()
