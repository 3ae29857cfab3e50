#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Provokes every exit code that the table in tools/terminal/ExitCode.h has.

Usage: exit_code_test.py RVF [unittest options]. Needs the right to make network namespaces.
"""

import os
import re
import signal
import socket
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import processes

RVF = os.path.abspath(sys.argv[1])
HEADER = Path(__file__).resolve().parents[2] / "tools" / "terminal" / "ExitCode.h"
TEXT = HEADER.read_text(encoding="utf-8")
ENUMERATORS = re.findall(r"^  (\w+) = (EX_\w+),$", TEXT, re.M)
ROWS = re.findall(r'\{ExitCode::(\w+), "(EX_\w+)"', TEXT)


class ExitCodeTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def assert_ends_with(self, name, *arguments, text="", **options):
        """The tool ends with the code of that name, and says why unless it is done."""
        options.setdefault("stdout", subprocess.PIPE)
        result = subprocess.run([RVF, *arguments], input=text, stderr=subprocess.PIPE, text=True,
                                timeout=60, check=False, **options)
        self.assertEqual(result.returncode, getattr(os, name), result.stderr)

    def provoke_EX_OK(self):
        self.assert_ends_with("EX_OK", "expiry", "12/2031")

    def provoke_EX_USAGE(self):
        self.assert_ends_with("EX_USAGE", "dance")

    def provoke_EX_DATAERR(self):
        self.assert_ends_with("EX_DATAERR", "expiry", "13/2031")

    def provoke_EX_NOINPUT(self):
        self.assert_ends_with("EX_NOINPUT", "columns", str(self.folder / "none"), "table", "column")

    def provoke_EX_NOHOST(self):
        self.assert_ends_with("EX_NOHOST", "servers", "--config-folder", str(self.folder),
                              "resolve", "0")

    def provoke_EX_UNAVAILABLE(self):
        self.assert_ends_with("EX_UNAVAILABLE", "connect", "--static", "127.0.0.1:1")

    def provoke_EX_SOFTWARE(self):
        gone = self.folder / "gone"
        gone.mkdir()
        command = f'rmdir "$PWD" && exec {RVF} servers --config-folder relative list'
        result = subprocess.run(["sh", "-c", command], cwd=gone, capture_output=True, text=True,
                                timeout=60, check=False)
        self.assertEqual(result.returncode, os.EX_SOFTWARE, result.stderr)

    def provoke_EX_CANTCREAT(self):
        (self.folder / "rvf").write_text("a file in its place", encoding="utf-8")
        self.assert_ends_with("EX_CANTCREAT", "servers", "--config-folder", str(self.folder),
                              "add", "a")

    def provoke_EX_IOERR(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            self.assert_ends_with("EX_IOERR", "machine", stdout=full)

    def provoke_EX_TEMPFAIL(self):
        process = subprocess.Popen([RVF, "resolve", "Nobody", "--timeout", "50"],
                                   stderr=subprocess.PIPE)
        processes.wait_until_blocked(process, signal.SIGINT)
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=20)
        self.assertEqual(process.returncode, os.EX_TEMPFAIL)

    def provoke_EX_PROTOCOL(self):
        with socket.create_server(("127.0.0.1", 9900)) as server:
            process = subprocess.Popen(
                [RVF, "connect", "--static", "127.0.0.1:9900"],
                stderr=subprocess.PIPE)
            with server.accept()[0] as connection:
                connection.sendall(b"no TLS\r\n" * 100)
                process.communicate(timeout=60)
        self.assertEqual(process.returncode, os.EX_PROTOCOL)

    def test_every_code_of_the_table_can_be_provoked(self):
        for _, name in ROWS:
            with self.subTest(name):
                getattr(self, "provoke_" + name)()

    def test_every_code_is_in_the_table(self):
        self.assertGreater(len(ENUMERATORS), 10)
        self.assertEqual(ENUMERATORS, ROWS)

    def test_the_help_names_every_code(self):
        result = subprocess.run([RVF, "--help"], capture_output=True, text=True, timeout=60,
                                check=True)
        told = re.findall(r"^ +(\d+)  \w", result.stdout.partition("Exit codes:\n")[2], re.M)
        self.assertEqual([int(code) for code in told], [getattr(os, name) for _, name in ROWS])


if __name__ == "__main__":
    processes.enter_private_network()
    unittest.main(argv=[sys.argv[0]] + sys.argv[2:], verbosity=2)
