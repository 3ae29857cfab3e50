#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows that scripts/coverage counts the lines that ran and names those that did not, on a small
tree of its own.
"""

import subprocess
import tempfile
import unittest
from pathlib import Path

COVERAGE = Path(__file__).resolve().parents[2] / "scripts" / "coverage"

PLATFORM = """__attribute__((visibility("default"))) int whole(bool isNegative) {
  if (isNegative)
    return -1;
  return 1;
}
"""
LIBRARY = """int whole(bool isNegative);
int rounded(bool isHuge) {
  if (isHuge)
    return whole(true);
  return whole(false);
}
"""
MAIN = "int rounded(bool isHuge);\nint main() { return rounded(false) == 1 ? 0 : 1; }\n"


class Coverage(unittest.TestCase):
    def coverage_of(self, library=LIBRARY, headers=None):
        """What the script prints of a program that runs `rounded(false)`, and its status."""
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder).resolve()
            build = root / "build"
            for path, text in {"Platform/Numbers/Whole.cpp": PLATFORM,
                               "RVFoundation/Text/Rounded.cpp": library, "main.cpp": MAIN,
                               **(headers or {})}.items():
                Path(root, path).parent.mkdir(parents=True, exist_ok=True)
                Path(root, path).write_text(text, encoding="utf-8")
            flags = ["-fcoverage-mapping", f"-fprofile-instr-generate={build}/profiles/%m.profraw"]
            for source, binary in (("Platform/Numbers/Whole.cpp", "Platform/libRVFPlatform.so"),
                                   ("RVFoundation/Text/Rounded.cpp",
                                    "RVFoundation/libRVFoundation.so")):
                Path(build, binary).parent.mkdir(parents=True)
                self.compile("-shared", "-fPIC", f"-I{root}", *flags, root / source, "-o", build / binary)
            self.compile(root / "main.cpp", build / "Platform/libRVFPlatform.so",
                         build / "RVFoundation/libRVFoundation.so", "-o", build / "main")
            subprocess.run([build / "main"], check=True)
            done = subprocess.run([COVERAGE, build, root], capture_output=True, text=True,
                                  check=False)
        self.assertEqual(done.stderr, "")
        return done.stdout, done.returncode

    def compile(self, *arguments):
        subprocess.run(["clang++", *arguments], check=True)

    def test_names_the_line_that_no_test_ran(self):
        printed, status = self.coverage_of()
        self.assertIn("RVFoundation/Text/Rounded.cpp:4: no test runs this: return whole(true);\n",
                      printed)
        self.assertNotIn("Rounded.cpp:5", printed)
        self.assertEqual(status, 1)

    def test_counts_the_lines_of_each_room(self):
        printed, _ = self.coverage_of()
        self.assertRegex(printed, r"Platform/Numbers +4 of +5 lines,  80\.0 %")
        self.assertRegex(printed, r"RVFoundation/Text +4 of +5 lines,  80\.0 %")

    def test_takes_a_reason_at_the_end_of_the_line(self):
        printed, status = self.coverage_of(
            LIBRARY.replace("whole(true);", "whole(true);  // uncovered: no huge amount is made"))
        self.assertNotIn("no test runs this", printed)
        self.assertEqual(status, 0)

    def test_takes_a_reason_on_the_line_above_for_all_lines_below(self):
        _, status = self.coverage_of(LIBRARY.replace(
            "    return whole(true);",
            "  {  // uncovered: no huge amount is made\n    int all = 1;\n    return all;\n  }"))
        self.assertEqual(status, 0)

    def test_takes_no_comment_without_a_reason(self):
        _, status = self.coverage_of(
            LIBRARY.replace("whole(true);", "whole(true);  // uncovered: "))
        self.assertEqual(status, 1)

    def test_leaves_inline_functions_of_headers_alone(self):
        header = "inline int halved(int value) {\n  return value / 2;\n}\n"
        library = LIBRARY.replace("    return whole(true);",
                                  "    return whole(true);  // uncovered: no huge amount is made")
        printed, status = self.coverage_of('#include "RVFoundation/Text/Halved.h"\n' + library,
                                           {"RVFoundation/Text/Halved.h": header})
        self.assertRegex(printed, r"RVFoundation/Text +4 of +8 lines,  50\.0 %")
        self.assertEqual(status, 0)

    def test_needs_profiles(self):
        with tempfile.TemporaryDirectory() as build:
            done = subprocess.run([COVERAGE, build], capture_output=True, text=True, check=False)
        self.assertIn("build with RVF_COVERAGE", done.stderr)
        self.assertEqual(done.returncode, 1)


if __name__ == "__main__":
    unittest.main()
