#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Looks at the manual page rvf(1), which is made from what the tool reads.

Usage: manual_test.py RVF PAGE [unittest options].
"""

import gzip
import os
import re
import shlex
import subprocess
import sys
import unittest
from pathlib import Path

from command_tree import Command

RVF, PAGE = sys.argv[1:3]
HEADER = Path(__file__).resolve().parents[2] / "tools" / "terminal" / "ExitCode.h"


def run(*command):
    environment = dict(os.environ, LC_ALL="C.UTF-8", MANWIDTH="80", MANROFFSEQ="", MANPAGER="cat")
    return subprocess.run(command, capture_output=True, text=True, env=environment, timeout=60,
                          check=False)


def section(text, title):
    return re.search(rf"^{title}\n((?:(?: .*)?\n)+)", text, re.M)[1]


class ManualTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tree = Command(RVF)
        cls.text = re.sub(".\b", "", run("man", "-E", "ascii", "-l", PAGE).stdout)

    def test_formatters_read_it_without_a_warning(self):
        for command in (["man", "--warnings", "-E", "UTF-8", "-l", PAGE],
                        ["groff", "-man", "-ww", "-Tutf8", PAGE],
                        ["mandoc", "-T", "lint", "-W", "warning", PAGE]):
            with self.subTest(command[0]):
                result = run(*command)
                self.assertEqual((result.returncode, result.stderr), (0, ""))
                complaints = result.stdout if command[0] == "mandoc" else ""
                self.assertEqual(complaints, "")

    def test_the_packed_page_is_the_same(self):
        with gzip.open(PAGE + ".gz") as packed:
            self.assertEqual(packed.read(), Path(PAGE).read_bytes())

    def test_indexes_of_pages_find_it(self):
        self.assertEqual(run("lexgrog", PAGE).stdout,
                         f'{PAGE}: "rvf - tools of a point-of-sale client and its servers"\n')

    def test_every_command_and_option_has_a_place(self):
        commands = self.tree.all()
        self.assertGreater(len(commands), 20)
        for command in commands[1:]:
            with self.subTest(command.words):
                title = "   rvf " + " ".join(command.words)
                own = re.search(rf"^{re.escape(title)}\n((?:    .*\n|\n)+)", self.text, re.M)[1]
                for option in command.options - {"-h", "--help"}:
                    self.assertRegex(own, rf"(?m)^ +(-\w, )?{option}\b")

    def test_every_exit_code_is_told(self):
        rows = re.findall(r'\{ExitCode::\w+, "(EX_\w+)"', HEADER.read_text(encoding="utf-8"))
        self.assertGreater(len(rows), 10)
        told = re.findall(r"^ +(\d+) \((EX_\w+)\)", section(self.text, "EXIT STATUS"), re.M)
        self.assertEqual(told, [(str(getattr(os, name)), name) for name in rows])

    def test_the_examples_name_commands_and_options_that_there_are(self):
        text = re.sub(r"(?m)^ {14}.*\n", "", section(self.text, "EXAMPLES"))
        examples = re.findall(r"^ {7}(rvf .*)$", text, re.M)
        self.assertGreater(len(examples), 5)
        for example in examples:
            with self.subTest(example):
                words = shlex.split(example.partition(" < ")[0])[1:]
                command = self.tree
                while command.subcommands:
                    name = words.pop(0)
                    command = next(each for each in command.subcommands if each.words[-1] == name)
                options = {word.partition("=")[0] for word in words if word.startswith("--")}
                self.assertLessEqual(options, command.options)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[3:], verbosity=2)
