# SPDX-License-Identifier: Apache-2.0
"""The commands of a program, read from what it prints with --help."""

import re
import subprocess


class Command:
    """A command: its words behind the program's name, its help, options and subcommands."""

    def __init__(self, program, words=()):
        self.words = words
        self.help = subprocess.run([program, *words, "--help"], capture_output=True, text=True,
                                   timeout=60, check=True).stdout
        self.options = set(re.findall(r"^  ((?:-\w,)?--[\w-]+)", self._section("Options"), re.M))
        self.options = {name for names in self.options for name in names.split(",")}
        names = re.findall(r"^  ([\w-]+)", self._section("Subcommands"), re.M)
        self.subcommands = [Command(program, (*words, name)) for name in names]

    def _section(self, title):
        found = re.search(rf"^{title}:\n((?:  .*\n)+)", self.help, re.M)
        return found[1] if found else ""

    def all(self):
        """This command and all beneath it."""
        return [self] + [each for command in self.subcommands for each in command.all()]
