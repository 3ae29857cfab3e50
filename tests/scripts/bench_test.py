#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows what scripts/bench does before it measures, and what it says of a folder without history.
"""

import os
import subprocess
import sys
import tempfile
import unittest
from importlib.machinery import SourceFileLoader
from importlib.util import module_from_spec, spec_from_loader
from pathlib import Path
from unittest import mock

ROOT = Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
bench = module_from_spec(
    spec_from_loader("bench", SourceFileLoader("bench", str(ROOT / "scripts" / "bench"))))
bench.__loader__.exec_module(bench)


def make_repository(folder):
    for command in (["init", "-q"], ["add", "."],
                    ["-c", "user.name=A", "-c", "user.email=a@host", "commit", "-qm", "First"]):
        subprocess.run(["git", "-C", folder, *command], check=True)


class Bench(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.file = self.folder / "file"
        self.file.write_text("first", encoding="utf-8")

    def test_names_the_commit_and_says_whether_files_differ_from_it(self):
        make_repository(self.folder)
        self.assertRegex(bench.commit_of(self.folder), "^[0-9a-f]{7,}$")
        self.file.write_text("second", encoding="utf-8")
        self.assertRegex(bench.commit_of(self.folder), "^[0-9a-f]{7,} with changes$")

    def test_knows_no_commit_without_a_repository_of_the_folder_itself(self):
        inner = self.folder / "inner"
        inner.mkdir()
        self.assertIsNone(bench.commit_of(inner))
        make_repository(self.folder)
        self.assertIsNone(bench.commit_of(inner))

    def test_knows_no_commit_without_git(self):
        make_repository(self.folder)
        with mock.patch.dict(os.environ, {"PATH": str(self.folder)}):
            self.assertIsNone(bench.commit_of(self.folder))

    def test_installs_what_is_missing_before_anything_else(self):
        with mock.patch.object(bench.subprocess, "run") as run:
            run.return_value.returncode = 1
            self.assertRaises(SystemExit, bench.build)
        self.assertEqual([call.args[0] for call in run.mock_calls],
                         [["scripts/bootstrap"]])

    def test_looks_at_machine_and_commit_before_it_measures(self):
        with mock.patch.object(sys, "argv", ["bench"]), mock.patch.object(bench, "build"), \
                mock.patch.object(os, "getloadavg", return_value=(0, 0, 0)), \
                mock.patch.object(bench, "context_of", side_effect=KeyError), \
                mock.patch.object(bench, "measure") as measure:
            self.assertRaises(KeyError, bench.main)
        measure.assert_not_called()


if __name__ == "__main__":
    unittest.main()
