#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The list of servers through crashes, disks that are full or gone, and other processes.

Runs itself in a mount namespace of its own, so it needs root or a system where users may make
namespaces. Usage: list_durability_test.py PROBE [unittest options].
"""

import os
import plistlib
import random
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

INSIDE = "RVF_INSIDE_MOUNT_NAMESPACE"
if INSIDE not in os.environ:
    kind = ["--mount"] if os.geteuid() == 0 else ["--user", "--map-root-user", "--mount"]
    os.execvpe("unshare", ["unshare", *kind, sys.executable, *sys.argv],
               dict(os.environ, **{INSIDE: "1"}))

PROBE = sys.argv[1]
SAVES = 500
KILLS = 20
SERVERS = 50
NO_SPACE, READ_ONLY = "640", "642"


class Probe:
    def __init__(self, path):
        self.process = subprocess.Popen([PROBE, path], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def tell(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()

    def ask(self, line):
        self.tell(line)
        return self.process.stdout.readline().split()

    def end(self):
        # communicate() would pass over the lines that readline() has taken ahead.
        with self.process as process:
            process.stdin.close()
            return process.stdout.read().split(), process.stderr.read()


class DurabilityTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.path = self.folder / "till" / "defaults.plist"

    def start(self):
        probe = Probe(self.path)
        self.addCleanup(probe.end)
        return probe

    def stored(self):
        return plistlib.loads(self.path.read_bytes())

    def addresses(self):
        return [server["serverAddress"] for server in self.stored()["static servers"]]

    def mount(self, size):
        disk = self.folder / "till"
        disk.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}", "tmpfs", disk], check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", disk], check=False)
        return disk

    def remount(self, disk, mode):
        """With this option alone: a user namespace may not repeat the others."""
        subprocess.run(["mount", "--options-source", "disable", "-o", f"remount,{mode}", disk],
                       check=True)

    def test_a_kill_at_any_moment_leaves_a_whole_list(self):
        source = random.Random(os.getpid())
        acknowledged = kills = 0
        while acknowledged < SAVES or kills < KILLS:
            probe = Probe(self.path)
            probe.tell(f"save {SAVES} {SERVERS}")
            probe.process.stdout.readline()
            time.sleep(source.uniform(0, 0.08))  # the moment of the kill, not a wait for anything
            probe.process.kill()
            kills += 1
            output, errors = probe.end()
            self.assertEqual(errors, "")
            last = int(output[-1]) if output else 1
            times = {server["serverDescription"] for server in self.stored()["static servers"]}
            self.assertEqual(len(self.stored()["static servers"]), SERVERS)
            self.assertEqual(len(times), 1, "two generations in one list")
            # What was answered is on the disk; the one behind it may be, too.
            self.assertIn(int(times.pop()), (last, last + 1))
            acknowledged += last
        self.assertGreaterEqual(kills, KILLS)
        names = {entry.name for entry in self.path.parent.iterdir()}
        self.assertLessEqual(names, {"defaults.plist", "defaults.plist.lock",
                                     "defaults.plist.new"})

    def test_a_full_disk_keeps_the_old_file_and_the_new_list(self):
        disk = self.mount("64k")
        probe = self.start()
        self.assertEqual(probe.ask("add first"), ["1"])
        before = self.path.read_bytes()
        probe.ask("fill 200000")
        self.assertEqual(probe.ask("add second"), ["0", NO_SPACE])
        self.assertEqual(probe.ask("count"), ["2"])
        self.assertEqual(self.path.read_bytes(), before)
        self.assertFalse((disk / "defaults.plist.new").exists())
        probe.ask("fill 1")
        self.assertEqual(probe.ask("sync"), ["1"])
        self.assertEqual(self.addresses(), ["first", "second"])

    def test_a_read_only_folder_keeps_the_new_list_in_memory(self):
        disk = self.mount("1m")
        probe = self.start()
        self.assertEqual(probe.ask("add first"), ["1"])
        self.remount(disk, "ro")
        answer = probe.ask("add second")
        self.assertEqual(answer, ["0", READ_ONLY])
        self.assertEqual(probe.ask("count"), ["2"])
        self.assertEqual(self.addresses(), ["first"])
        self.remount(disk, "rw")
        self.assertEqual(probe.ask("sync"), ["1"])
        self.assertEqual(self.addresses(), ["first", "second"])

    def test_damage_on_a_read_only_disk_is_told_and_left_alone(self):
        disk = self.mount("1m")
        self.path.write_bytes(b"bplist00")
        self.remount(disk, "ro")
        probe = Probe(self.path)
        self.assertEqual(probe.ask("count"), ["0"])
        self.assertEqual(probe.ask("add first"), ["0", READ_ONLY])
        self.remount(disk, "rw")
        self.assertEqual(probe.ask("sync"), ["1"])
        _, errors = probe.end()
        told = errors.splitlines()
        self.assertEqual(len(told), 2, errors)
        self.assertIn("cannot be set aside", told[0])
        self.assertIn("was set aside", told[1])
        self.assertEqual((disk / "defaults.plist.damaged-1").read_bytes(), b"bplist00")
        self.assertEqual(self.addresses(), ["first"])

    def test_a_folder_that_vanishes_and_cannot_be_made_keeps_the_list_in_memory(self):
        probe = self.start()
        self.assertEqual(probe.ask("add first"), ["1"])
        self.path.parent.rename(self.folder / "moved")
        self.path.parent.write_bytes(b"a file in its place")
        self.assertEqual(probe.ask("add second")[0], "0")
        self.assertEqual(probe.ask("count"), ["2"])
        self.path.parent.unlink()
        self.assertEqual(probe.ask("sync"), ["1"])
        self.assertEqual(self.addresses(), ["first", "second"])

    def test_a_folder_that_vanishes_is_made_again(self):
        probe = self.start()
        self.assertEqual(probe.ask("add first"), ["1"])
        self.path.parent.rename(self.folder / "moved")
        self.assertEqual(probe.ask("add second"), ["1"])
        self.assertEqual(self.addresses(), ["first", "second"])

    def test_eight_processes_adding_at_once_lose_nothing(self):
        count = 12
        probes = [Probe(self.path) for _ in range(8)]
        for number, probe in enumerate(probes):
            probe.tell(f"share p{number} {count}")
        for probe in probes:
            output, errors = probe.end()
            self.assertEqual((output, errors), (["1"] * count, ""))
        expected = {f"p{number}-{i}" for number in range(8) for i in range(1, count + 1)}
        self.assertEqual(sorted(self.addresses()), sorted(expected))
        self.assertEqual(set(self.stored()) - {"static servers"}, expected)

    def test_an_empty_list_of_others_is_read_and_their_keys_are_kept(self):
        self.path.parent.mkdir()
        self.path.write_bytes(plistlib.dumps({"static servers": [], "other": 1},
                                             fmt=plistlib.FMT_XML))
        probe = self.start()
        self.assertEqual(probe.ask("count"), ["0"])
        self.assertEqual(probe.ask("add a"), ["1"])
        self.assertEqual(self.stored()["other"], 1)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[2:], verbosity=2)
