#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs QuietProcess where every folder that a program may write to unasked is one empty folder.

usage: quiet_process_test.py QUIET_PROCESS [unittest options]
"""

import os
import re
import subprocess
import sys
import tempfile
import unittest

QUIET_PROCESS = os.path.abspath(sys.argv[1])
FOLDERS = ["HOME", "TMPDIR", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"]


class QuietProcessTest(unittest.TestCase):
    def run_in_an_empty_folder(self, *arguments):
        """The process gets standard input, output and error, and nothing else of this one."""
        with tempfile.TemporaryDirectory() as folder:
            result = subprocess.run(
                [QUIET_PROCESS, *arguments], cwd=folder, stdin=subprocess.DEVNULL,
                capture_output=True, text=True, timeout=100, check=False,
                env={**os.environ, **dict.fromkeys(FOLDERS, folder)})
        self.assertEqual(result.stderr, "")
        return result

    def test_nothing_is_there_that_nobody_asked_for(self):
        result = self.run_in_an_empty_folder()
        self.assertEqual((result.stdout, result.returncode), ("", 0))

    def test_what_was_asked_for_is_seen(self):
        result = self.run_in_an_empty_folder("noisy")
        self.assertEqual(result.returncode, 1)
        for pattern in [r"thread \d+ \(noise\)", r"descriptor \d+ \(anon_inode:\[eventpoll\]\)",
                        r"descriptor \d+ \(/dev/zero\)", "file noise",
                        *(f"file noise/{folder}" for folder in FOLDERS)]:
            with self.subTest(pattern):
                self.assertRegex(result.stdout, re.compile(f"^noise: {pattern}$", re.MULTILINE))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[2:], verbosity=2)
