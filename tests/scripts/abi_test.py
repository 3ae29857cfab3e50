#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows that scripts/abi passes the interface that was announced and catches every other one, on
two small libraries of its own.
"""

import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

HEADER = """
namespace rvf {
struct Hidden;
struct __attribute__((visibility("default"))) Price {
  int whole = 0;
  int cents = 0;
  Hidden* hidden = nullptr;
  int total() const;
  void round();
};
}
"""
SOURCE = """
#include "Price.h"
struct rvf::Hidden { int tax = 0; };
int rvf::Price::total() const { return whole * 100 + cents + (hidden ? hidden->tax : 0); }
void rvf::Price::round() { cents = 0; }
"""
REMOVED = {"header": HEADER.replace("void round();", ""),
           "source": SOURCE.replace("void rvf::Price::round() { cents = 0; }", "")}
ADDED = {"header": HEADER.replace("void round();", "void round(); void clear();"),
         "source": SOURCE + "void rvf::Price::clear() { whole = 0; }\n"}
INSTALL = 'file(INSTALL DESTINATION "${CMAKE_INSTALL_PREFIX}/include" TYPE FILE FILES "%s")\n'


class Abi(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        for name in ("scripts/abi", "abi/libraries.abignore"):
            Path(self.folder, name).parent.mkdir()
            shutil.copy(Path(ROOT, name), Path(self.folder, name))

    def build(self, header=HEADER, source=SOURCE, place="first", number="1"):
        """Puts both libraries, as a build tree with one header to install, below that place."""
        build = Path(self.folder, place)
        for path, text in {"Price.h": header, "Price.cpp": source,
                           "cmake_install.cmake": INSTALL % (build / "Price.h")}.items():
            build.mkdir(exist_ok=True)
            Path(build, path).write_text(text, encoding="utf-8")
        for folder, name in (("Platform", "RVFPlatform"), ("RVFoundation", "RVFoundation")):
            Path(build, folder).mkdir(exist_ok=True)
            subprocess.run(["g++", "-g2", "-fPIC", "-shared", "-fvisibility=hidden",
                            f"-Wl,-soname,lib{name}.so.{number}", build / "Price.cpp", "-o", build / folder / f"lib{name}.so"],
                           check=True)
        return build

    def run_abi(self, *arguments):
        return subprocess.run([self.folder / "scripts/abi", *arguments], capture_output=True,
                              text=True, check=False)

    def announce(self, build):
        self.assertEqual(self.run_abi("update", build).returncode, 0)

    def assert_caught(self, expected, **changes):
        self.announce(self.build())
        done = self.run_abi("check", self.build(**changes))
        self.assertIn(expected, done.stdout)
        self.assertIn("scripts/abi update", done.stderr)
        self.assertEqual(done.returncode, 1)

    def assert_passed(self, **changes):
        self.announce(self.build())
        done = self.run_abi("check", self.build(**changes))
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))

    def assert_replaced(self, build, *options):
        self.assertEqual(self.run_abi("update", *options, build).returncode, 0)
        self.assertEqual(self.run_abi("check", build).returncode, 0)

    def assert_refused(self, expected, **changes):
        before = self.build()
        self.announce(before)
        done = self.run_abi("update", self.build(place="second", **changes))
        self.assertIn(expected, done.stdout)
        self.assertIn("nothing was replaced", done.stderr)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(self.run_abi("check", before).returncode, 0)

    def test_passes_what_was_announced(self):
        self.assert_passed()

    def test_passes_other_folders_and_lines(self):
        self.assert_passed(header="\n\n" + HEADER, source="\n" + SOURCE, place="second")

    def test_passes_another_inside_of_a_hidden_type(self):
        self.assert_passed(source=SOURCE.replace("int tax = 0;", "int tax = 0; int tip = 0;"))

    def test_catches_a_function_that_is_gone(self):
        self.assert_caught("Price::round", **REMOVED)

    def test_catches_a_function_that_was_not_announced(self):
        self.assert_caught("Price::clear", **ADDED)

    def test_catches_a_member_elsewhere_in_its_type(self):
        self.assert_caught("cents", header=HEADER.replace("int whole = 0;", "long whole = 0;"))

    def test_takes_over_an_addition_under_the_same_soname(self):
        self.announce(self.build())
        self.assert_replaced(self.build(**ADDED))

    def test_refuses_to_take_over_a_removal_under_the_same_soname(self):
        self.assert_refused("Price::round", **REMOVED)

    def test_refuses_to_take_over_another_layout_under_the_same_soname(self):
        self.assert_refused("cents", header=HEADER.replace("int whole = 0;", "long whole = 0;"))

    def test_takes_over_a_removal_under_another_soname(self):
        self.announce(self.build())
        self.assert_replaced(self.build(number="2", **REMOVED))

    def test_takes_over_a_removal_under_a_soname_that_no_release_has_had(self):
        self.announce(self.build())
        self.assert_replaced(self.build(**REMOVED), "--unreleased")

    def test_catches_a_library_without_debug_information(self):
        build = self.build()
        self.announce(build)
        for library in build.glob("*/*.so"):
            subprocess.run(["strip", "--strip-debug", library], check=True)
        done = self.run_abi("check", build)
        self.assertIn("no debug information", done.stderr)
        self.assertEqual(done.returncode, 1)


if __name__ == "__main__":
    unittest.main()
