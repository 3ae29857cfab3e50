#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Completes commands of rvf in bash and in zsh, as their users do.

Usage: completion_test.py RVF BASH_COMPLETION ZSH_COMPLETION [unittest options].
"""

import contextlib
import os
import pty
import re
import select
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

from command_tree import Command

RVF, BASH_COMPLETION, ZSH_COMPLETION = [os.path.abspath(path) for path in sys.argv[1:4]]
PATIENCE = 60


class CompletionTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        (self.folder / "store certificate.pem").touch()
        (self.folder / "store folder").mkdir()


    def assert_offers_the_whole_tree(self, completed):
        """completed(*words) answers what may stand in place of the last word."""
        tree = Command(RVF)
        for command in tree.all():
            with self.subTest(command.words):
                above = [each for each in tree.all()
                         if each.words == command.words[:len(each.words)]]
                options = {option for each in above for option in each.options}
                self.assertEqual(sorted(completed(*command.words, "-")), sorted(options))
                names = [each.words[-1] for each in command.subcommands]
                if names:
                    self.assertEqual(completed(*command.words, ""), names)


class BashTest(CompletionTest):
    SCRIPT = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _rvf;'
              '((${#COMPREPLY[@]} == 0)) || printf "%s\\n" "${COMPREPLY[@]}"')

    def completed(self, *words):
        """What may stand in place of the last of these words."""
        result = subprocess.run(
            ["bash", "--norc", "--noprofile", "-u", "-c", self.SCRIPT, "bash", BASH_COMPLETION,
             "rvf", *words], capture_output=True, text=True, timeout=PATIENCE, check=False)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result.stdout.splitlines()

    def assert_completes(self, rows):
        for words, expected in rows:
            with self.subTest(words=words):
                self.assertEqual(self.completed(*words), expected)

    def test_every_command_offers_its_subcommands_and_options(self):
        self.assert_offers_the_whole_tree(self.completed)

    def test_the_start_of_a_word_chooses(self):
        self.assert_completes([
            (["se"], ["servers"]),
            (["servers", "re"], ["remove", "resolve"]),
            (["browse", "--j"], ["--json"]),
            (["dance", ""], self.completed("")),
            (["x", "y", "q"], []),
        ])

    def test_fixed_choices_are_offered(self):
        self.assert_completes([
            (["--backend", ""], ["automatic", "daemon", "embedded"]),
            (["connect", "--backend", "e"], ["embedded"]),
            (["format", "m"], ["money"]),
            (["format", "--locale", "de_DE", "q"], ["quantity"]),
            (["format", "money", "q"], []),
            (["text", "escape-"], ["escape-xml", "escape-url"]),
            (["period", "last-day-of-next-"],
             ["last-day-of-next-week", "last-day-of-next-month", "last-day-of-next-year"]),
            (["log", "-l", "e"], ["emerg", "err"]),
            (["log", "--level", "=", "n"], ["notice"]),
            (["log", "--level", "="],
             ["emerg", "alert", "crit", "err", "warning", "notice", "info", "debug"]),
        ])

    def test_an_option_may_stand_before_the_command_and_between_arguments(self):
        self.assert_completes([
            (["--backend", "daemon", "con"], ["connect"]),
            (["--backend", "=", "daemon", "con"], ["connect"]),
            (["servers", "--config-folder", "list", "ad"], ["add"]),
            (["browse", "--for", "5", "--js"], ["--json"]),
        ])

    def test_free_texts_are_left_alone(self):
        self.assert_completes([(["browse", "--for", ""], []), (["expiry", ""], []),
                               (["connect", "--", "-"], [])])

    def test_files_and_folders_are_offered_where_they_are_meant(self):
        start = str(self.folder / "store")
        both = [f"{start} certificate.pem", f"{start} folder"]
        self.assertEqual(sorted(self.completed("connect", "--ca-file", start)), both)
        self.assertEqual(sorted(self.completed("columns", start)), both)
        self.assertEqual(self.completed("servers", "--config-folder", start), both[1:])
        self.assertEqual(self.completed("servers", "add", "--config-folder", start), both[1:])


class ZshTest(CompletionTest):
    # The tabulator prints what would be offered, and then empties the line.
    OFFER = (
        'compadd() { (( $@[(I)-[ADO]] )) || { local -a found; builtin compadd -A found "$@";'
        ' offered+=($found) }; builtin compadd "$@" };'
        " offer() { local -a offered; _main_complete; print -r -- '<<'\"$offered\"'>>';"
        " compstate[insert]='' compstate[list]='' };"
        " zle -C offer complete-word offer; bindkey '^I' offer;")
    KILL_LINE = "\x15"
    PRINT_WORDS = "rvf() { print -r -- '<<'\"$*\"'>>' };"

    def test_every_command_offers_its_subcommands_and_options(self):
        with self.shell(self.OFFER) as controller:
            def completed(*words):
                line = self.KILL_LINE + " ".join(["rvf", *words]) + "\t"
                os.write(controller, line.encode())
                return self.read_until(controller, "<<(.*)>>")[1].split()
            self.assert_offers_the_whole_tree(completed)

    def test_the_shell_reads_it(self):
        result = subprocess.run(["zsh", "-n", ZSH_COMPLETION], capture_output=True, text=True,
                                timeout=PATIENCE, check=False)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_typed_words_are_completed(self):
        for typed, expected in [
            ("rvf brow\t", "browse"),
            ("rvf browse --js\t", "browse --json"),
            ("rvf --backend em\t bro\t", "--backend embedded browse"),
            ("rvf format mon\t 5", "format money 5"),
            ("rvf servers ins\t 0 a", "servers insert 0 a"),
            ("rvf servers insert 0 a --desc\t x", "servers insert 0 a --description x"),
            ("rvf log -l not\t x", "log -l notice x"),
            ("rvf connect --ca-file store\\ c\t", "connect --ca-file store certificate.pem"),
            ("rvf servers --config-folder sto\t list",
             "servers --config-folder store folder list"),
        ]:
            with self.subTest(typed):
                self.assertEqual(self.run_typed(typed), expected)

    def run_typed(self, typed):
        """The words that rvf gets from a line that is typed into an interactive shell."""
        with self.shell(self.PRINT_WORDS) as controller:
            os.write(controller, (typed + "\n").encode())
            return self.read_until(controller, "<<(.*)>>")[1]

    @contextlib.contextmanager
    def shell(self, commands):
        """The terminal of an interactive shell that has run the commands."""
        controller, terminal = pty.openpty()
        with subprocess.Popen(
                ["zsh", "-f", "-i"], stdin=terminal, stdout=terminal, stderr=terminal,
                cwd=self.folder, start_new_session=True,
                env={"PATH": os.environ["PATH"], "HOME": str(self.folder), "TERM": "vt100",
                     "LC_ALL": "C.UTF-8"}) as shell:
            os.close(terminal)
            try:
                os.write(controller, (
                    f"fpath=({Path(ZSH_COMPLETION).parent} $fpath); autoload -Uz compinit;"
                    f" compinit -u -D; {commands} print rea''dy\n").encode())
                self.read_until(controller, "ready")
                yield controller
            finally:
                shell.kill()
                os.close(controller)

    def read_until(self, controller, pattern):
        output, end = "", time.monotonic() + PATIENCE
        while not (found := re.search(pattern, output)):
            if not select.select([controller], [], [], max(0, end - time.monotonic()))[0]:
                self.fail(f"{pattern!r} is not in {output!r}")
            output += os.read(controller, 4096).decode(errors="replace")
        return found


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[4:], verbosity=2)
