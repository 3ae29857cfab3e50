#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows that every group of declarations that clients see begins with a comment."""

import re
import unittest

from class_comments_test import ROOT, installed_headers

# A group is what stands without an empty line or an access label between. Its first declaration has
# a comment above it or behind it: functions at the level of a namespace or of a class, as far as
# they are public or for subclasses. Nothing has to be repeated that is said elsewhere: in the
# comments of classes, which class_comments_test.py looks at, of their data and constructors; in a
# base class, of overrides; in the object model, of what every class has.
OPENS = re.compile(r"^(?:inline )?namespace\b|^extern \"C\"|^(?:class|struct|union)\s[^;(]*$")
ACCESS = re.compile(r"^(public|protected|private):$")
FUNCTION = re.compile(r"^[^={;]*\w\(")
CONSTRUCTOR = re.compile(r"^(?:constexpr |explicit )*~?\w+\(")
EXEMPT = re.compile(
    r"\boverride\b|= (?:default|delete);|\bfriend\b|\boperator\b|^virtual ~|\bclassObject\(\)"
    r"|\bisa\(\)|^(?:class|struct|union|enum|using|static_assert|namespace)\b")


class Scope:
    """What a pair of braces encloses: a namespace, a class, or, without a head of these, a body."""

    def __init__(self, head, outer):
        self.is_class = re.match(r"(?:class|struct|union)\b", head) is not None
        self.is_body = not OPENS.match(head)
        self.is_reachable = (not self.is_body and not re.match(r"namespace(?: detail)?$", head)
                             and (outer is None or outer.is_shown))
        self.is_shown = self.is_reachable and not head.startswith("class ")
        self.depth = 1

    def enter(self, access):
        self.is_shown = self.is_reachable and access != "private"

    def close(self, code):
        """Follows the braces of a body; whether the line ends it."""
        self.depth += code.count("{") - code.count("}")
        return self.depth <= 0


def code_of(line):
    """Without a comment behind it, and without texts and characters, which may hold braces."""
    line = re.sub(r'"(?:\\.|[^"\\])*"|(?<!\w)\'(?:\\.|[^\'\\])\'', "0", line)
    return line.split("//")[0].strip()


def is_complete(declaration):
    return (declaration.count("(") == declaration.count(")")
            and (declaration.endswith((";", "{", "}")) or ACCESS.match(declaration) is not None))


def needs_comment(declaration, scope):
    is_constructor = scope.is_class and CONSTRUCTOR.match(declaration) is not None
    return (FUNCTION.match(declaration) is not None and not is_constructor
            and not EXEMPT.search(declaration))


def plain(declaration):
    """Without what may stand before it."""
    return re.sub(r"^template <.*?> (?=\w)(?:requires [^;]*?[>)] )?|RVF_EXPORT |\[\[nodiscard\]\] ",
                  "", declaration)


class Reader:
    """Takes a header line by line."""

    def __init__(self):
        self.scopes = []
        self.declaration = ""
        self.line = 0  # where the declaration begins
        self.begins_group = True
        self.has_comment = False

    def take(self, number, line):
        """The declaration that ends in this line, if it should have had a comment."""
        code = code_of(line)
        if self.scopes and self.scopes[-1].is_body:
            self.follow_body(code)
            return None
        if not self.declaration:
            if self.passes_between(line, code):
                return None
            self.line = number
        self.declaration = f"{self.declaration} {code}".strip()
        self.has_comment = self.has_comment or "///" in line
        return self.finish() if is_complete(self.declaration) else None

    def follow_body(self, code):
        if self.scopes[-1].close(code):
            self.scopes.pop()
            self.begins_group = False

    def passes_between(self, line, code):
        """Whether the line is none of a declaration."""
        if code.startswith("}"):
            self.scopes.pop()
            self.begins_group = self.has_comment = False
        elif not code or code.startswith("#"):
            self.has_comment = line.startswith("//")
            self.begins_group = self.begins_group or not line
        else:
            return False
        return True

    def finish(self):
        declaration = plain(self.declaration)
        scope = self.scopes[-1] if self.scopes else None
        is_silent = (scope and scope.is_shown and self.begins_group and not self.has_comment
                     and needs_comment(declaration, scope))
        self.declaration, self.has_comment = "", False
        if ACCESS.match(declaration):
            scope.enter(declaration[:-1])
            self.begins_group = True
            return None
        self.begins_group = declaration.count("{") > declaration.count("}")
        if self.begins_group:
            self.scopes.append(Scope(declaration[:-1].strip(), scope))
        return declaration if is_silent else None


def silent_groups(text):
    """The first declarations of groups that have no comment, each with the number of its line."""
    reader = Reader()
    for number, line in enumerate(re.sub(r"\\\n", " ", text).splitlines(), 1):
        declaration = reader.take(number, line.strip())
        if declaration:
            yield reader.line, declaration


class DeclarationComments(unittest.TestCase):
    def assert_silent(self, text, *expected):
        found = [declaration for _, declaration in silent_groups(f"namespace rvf {{\n{text}\n}}")]
        self.assertEqual(found, list(expected))

    def assert_silent_in_class(self, text, *expected):
        self.assert_silent(f"class RVF_EXPORT A final : public B {{\n public:\n{text}\n}};",
                           *expected)

    def test_every_group_of_public_declarations_begins_with_a_comment(self):
        headers = installed_headers()
        self.assertGreater(len(headers), 100)
        for header in headers:
            with self.subTest(header):
                text = (ROOT / header).read_text(encoding="utf-8")
                self.assertEqual([f"{header}:{line}: {declaration}"
                                  for line, declaration in silent_groups(text)], [])

    def test_accepts_a_comment_above_and_one_behind(self):
        self.assert_silent("/// Seconds.\nRVF_EXPORT double age();\ndouble youth();")
        self.assert_silent_in_class("  int count() const;  ///< bytes")

    def test_catches_a_function_without_comment(self):
        self.assert_silent("RVF_EXPORT double age(int a,\n                      int b);",
                           "double age(int a, int b);")

    def test_catches_the_first_of_a_group_behind_an_empty_line(self):
        self.assert_silent_in_class("  /// Bytes.\n  int count() const;\n\n  int rest() const;",
                                    "int rest() const;")
        self.assert_silent("/// Bytes.\n\nint count();", "int count();")

    def test_catches_the_first_of_a_group_behind_an_access_label(self):
        self.assert_silent_in_class("  int a_;\n protected:\n  virtual void draw() = 0;",
                                    "virtual void draw() = 0;")

    def test_catches_a_template_and_a_function_with_a_body(self):
        self.assert_silent("template <class T>\nT twice(T value) {\n  return 2 * value;\n}",
                           "T twice(T value) {")

    def test_finds_its_way_behind_bodies_and_initial_values(self):
        self.assert_silent("/// Bytes.\nint count() {\n  if (a) {\n    b();\n  } else {\n  }\n}\n"
                           "enum class E {\n  a,\n};\nconst char* const kBrace = \"{\";\n\n"
                           "int f();",
                           "int f();")

    def test_asks_nothing_of_what_is_not_public(self):
        self.assert_silent_in_class(" private:\n  int count();\n  struct B {\n    int f();\n  };")
        self.assert_silent("namespace detail {\n\nint f();\n\n}  // namespace detail")
        self.assert_silent("class A {\n  int f();\n};")

    def test_asks_nothing_of_what_its_class_or_base_says(self):
        self.assert_silent_in_class("  explicit A(int a);\n  ~A() override;\n\n"
                                    "  static Class classObject();\n"
                                    "  Class isa() const override;\n\n"
                                    "  std::size_t hash() const override;")

    def test_catches_a_getter_of_one_line(self):
        self.assert_silent_in_class("  double age() const noexcept { return age_; }",
                                    "double age() const noexcept { return age_; }")


if __name__ == "__main__":
    unittest.main()
