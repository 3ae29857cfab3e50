#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs rvf on a machine that has no descriptors left.

Usage: descriptors_test.py RVF [unittest options].
"""

import subprocess
import sys
import unittest

RVF = sys.argv[1]


class DescriptorsTest(unittest.TestCase):
    def test_a_machine_without_descriptors_is_an_internal_error(self):
        for command in (["browse"], ["resolve", "Nobody"], ["connect"]):
            with self.subTest(command=command):
                result = subprocess.run(
                    ["sh", "-c", 'ulimit -n 4 && exec "$0" "$@"', RVF, *command],
                    capture_output=True, text=True, timeout=60, check=False)
                self.assertEqual(result.returncode, 70, result.stderr)
                self.assertRegex(result.stderr, r"^rvf: .+: Too many open files\n$")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[2:], verbosity=2)
