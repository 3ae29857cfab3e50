#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs "rvf servers" as its users do.

Usage: servers_test.py RVF [unittest options].
"""

import os
import plistlib
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import json_output

RVF = os.path.abspath(sys.argv[1])


class ServersTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.file = self.folder / "rvf" / "defaults.plist"

    def command(self, *arguments):
        environment = dict(os.environ, LC_ALL="C", HOME="/nonexistent",
                           XDG_CONFIG_HOME=str(self.folder))
        return [RVF, "servers", *arguments], environment

    def run_tool(self, *arguments, **options):
        command, environment = self.command(*arguments)
        options.setdefault("stdout", subprocess.PIPE)
        return subprocess.run(command, stderr=subprocess.PIPE, text=True, timeout=60,
                              env=environment, check=False, **options)

    def done(self, *arguments):
        result = self.run_tool(*arguments)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result.stdout

    def read(self, command, *arguments):
        return json_output.read(f"servers {command}", self.done(command, *arguments, "--json"))

    def stored(self):
        return plistlib.loads(self.file.read_bytes())["static servers"]

    def test_an_empty_list_prints_nothing_and_makes_nothing(self):
        self.assertEqual(self.done("list"), "")
        self.assertEqual(self.read("list"), [])
        self.assertFalse(self.file.exists())

    def test_adds_with_a_description_or_the_next_untitled_name(self):
        self.assertEqual(self.done("add", "10.0.0.5"), "0\t10.0.0.5\tUntitled Server\n")
        self.assertEqual(self.done("add", "[::1]:80", "--description", "Till 3"),
                         "1\t[::1]:80\tTill 3\n")
        self.assertEqual(self.done("add", "b"), "2\tb\tUntitled Server 2\n")
        self.assertEqual(self.done("add", "c", "--description", ""), "3\tc\tc\n")
        self.assertEqual(self.done("list"),
                         "0\t10.0.0.5\tUntitled Server\n1\t[::1]:80\tTill 3\n"
                         "2\tb\tUntitled Server 2\n3\tc\tc\n")

    def test_inserts_and_removes_by_index(self):
        for arguments in (["add", "b"], ["insert", "0", "a"], ["insert", "2", "c"]):
            self.done(*arguments)
        self.assertEqual([server["serverAddress"] for server in self.stored()], ["a", "b", "c"])
        self.assertEqual(self.done("remove", "1"), "1\tb\tUntitled Server\n")
        self.assertEqual([server["serverAddress"] for server in self.stored()], ["a", "c"])

    def test_the_last_removal_leaves_an_empty_array_in_the_file(self):
        self.done("add", "a")
        self.done("remove", "0")
        self.assertEqual(plistlib.loads(self.file.read_bytes()), {"static servers": []})
        self.assertEqual(self.done("list"), "")

    def test_prints_json(self):
        added = self.read("add", "a", "--description", "é")
        self.assertEqual(added, {"index": 0, "address": "a", "description": "é",
                                 "displayName": "é", "id": self.stored()[0]["serverId"]})
        self.assertEqual(self.read("list"), [added])
        inserted = self.read("insert", "0", "b", "--description", "Bar")
        self.assertEqual(inserted, {"index": 0, "address": "b", "description": "Bar",
                                    "displayName": "Bar", "id": self.stored()[0]["serverId"]})
        added["index"] = 1
        self.assertEqual(self.read("remove", "1"), added)

    def test_an_index_without_server_is_68_and_changes_nothing(self):
        self.done("add", "a")
        before = self.stored()
        for arguments in (["remove", "1"], ["insert", "2", "b"], ["resolve", "1"]):
            with self.subTest(arguments):
                result = self.run_tool(*arguments)
                self.assertEqual((result.returncode, result.stdout), (68, ""))
                self.assertEqual(result.stderr, f"rvf: there is no server {arguments[1]}\n")
        self.assertEqual(self.stored(), before)

    def test_a_failure_is_a_json_object_too(self):
        for arguments in (["remove", "1"], ["insert", "2", "b"], ["resolve", "1"]):
            with self.subTest(arguments):
                result = self.run_tool(*arguments, "--json")
                self.assertEqual(result.returncode, 68)
                self.assertEqual(json_output.read(f"servers {arguments[0]}", result.stdout),
                                 {"domain": "rvf", "code": 68,
                                  "message": f"there is no server {arguments[1]}"})
        self.file.mkdir(parents=True)
        for arguments, code in ((["list"], 66), (["add", "a"], 73)):
            with self.subTest(arguments):
                result = self.run_tool(*arguments, "--json")
                self.assertEqual(result.returncode, code)
                error = json_output.read(f"servers {arguments[0]}", result.stdout)
                self.assertEqual(result.stderr, f"rvf: {error['message']}\n")

    def test_wrong_usage_is_64(self):
        for arguments in ([], ["add"], ["remove"], ["remove", "x"], ["remove", "-1"],
                          ["insert", "0"], ["list", "x"], ["nothing"],
                          ["resolve", "0", "--timeout", "0"], [b"add", b"\xff"]):
            with self.subTest(arguments):
                self.assertEqual(self.run_tool(*arguments).returncode, 64)
        self.assertFalse(self.file.exists())

    def test_resolves_a_server(self):
        self.done("add", "127.0.0.1:8080", "--description", "Here")
        self.assertEqual(self.done("resolve", "0"),
                         "server       Here\ndemo         unknown\n"
                         "addresses    127.0.0.1:8080\n"
                         "url          https://127.0.0.1:8080/\n")
        self.assertEqual(self.read("resolve", "0"),
                         {"name": "Here", "demo": None, "addresses": ["127.0.0.1:8080"],
                          "url": "https://127.0.0.1:8080/"})

    def test_an_address_that_does_not_resolve_is_68(self):
        self.done("add", "127.0.0.1:no-such-service")
        result = self.run_tool("resolve", "0")
        self.assertEqual((result.returncode, result.stdout), (68, ""))
        self.assertTrue(result.stderr.startswith("rvf: "))

    def test_the_configuration_folder_can_be_named(self):
        other = self.folder / "other"
        result = self.run_tool("--config-folder", str(other), "add", "a")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertTrue((other / "rvf" / "defaults.plist").exists())
        self.assertEqual(self.done("list"), "")
        result = self.run_tool("--config-folder", "other", "list", cwd=self.folder)
        self.assertEqual(result.stdout, "0\ta\tUntitled Server\n")

    def test_a_list_that_cannot_be_saved_is_73(self):
        (self.folder / "rvf").write_text("a file in its place", encoding="utf-8")
        result = self.run_tool("add", "a")
        self.assertEqual((result.returncode, result.stdout), (73, ""))
        self.assertIn(str(self.folder / "rvf"), result.stderr)

    def test_a_list_that_cannot_be_read_is_66_and_stays(self):
        self.file.mkdir(parents=True)
        result = self.run_tool("list")
        self.assertEqual((result.returncode, result.stdout), (66, ""))
        self.assertEqual(self.run_tool("add", "a").returncode, 73)
        self.assertTrue(self.file.is_dir())

    def test_a_damaged_list_is_set_aside_with_one_line(self):
        self.file.parent.mkdir()
        self.file.write_bytes(b"bplist00 and no more")
        result = self.run_tool("list")
        self.assertEqual((result.returncode, result.stdout), (0, ""))
        self.assertEqual(result.stderr.count("\n"), 1)
        aside = self.file.with_name("defaults.plist.damaged-1")
        self.assertIn(str(aside), result.stderr)
        self.assertEqual(aside.read_bytes(), b"bplist00 and no more")

    def test_a_file_in_which_nothing_has_room_any_more_is_73_and_stays(self):
        # Lists of lists that are shared, which come to 64 MB for whoever walks them all.
        trees = [[]]
        for _ in range(20):
            trees.append([trees[-1], trees[-1]])
        room = 64 * 2**20 - 24 - 25 - 24
        content = []
        for depth in reversed(range(21)):
            if (cost := 24 * (2**(depth + 1) - 1)) <= room:
                content.append(trees[depth])
                room -= cost
        self.file.parent.mkdir()
        before = plistlib.dumps({"x": content}, fmt=plistlib.FMT_BINARY)
        self.file.write_bytes(before)
        self.assertEqual(self.done("list"), "")
        result = self.run_tool("add", "a" * 1000)
        self.assertEqual((result.returncode, result.stdout), (73, ""))
        self.assertEqual(result.stderr,
                         f"rvf: {self.file}: the values of all keys together: unfolds too far\n")
        self.assertEqual(self.file.read_bytes(), before)

    def test_eight_at_once_lose_nothing(self):
        processes = []
        for number in range(8):
            command, environment = self.command("add", f"a{number}")
            processes.append(subprocess.Popen(command, env=environment, stdout=subprocess.PIPE))
        for process in processes:
            process.communicate(timeout=60)
            self.assertEqual(process.returncode, 0)
        self.assertEqual(sorted(server["serverAddress"] for server in self.stored()),
                         [f"a{number}" for number in range(8)])
        names = {server["serverDescription"] for server in self.stored()}
        self.assertEqual(len(names), 8, "every one has an untitled name of its own")

    def test_controls_do_not_reach_the_terminal(self):
        self.done("add", "a\x1b[2J", "--description", "b\nc")
        self.assertEqual(self.done("list"), "0\ta?[2J\tb?c\n")

    def test_output_that_fails_is_74(self):
        self.done("add", "a")
        with open("/dev/full", "w", encoding="utf-8") as full:
            self.assertEqual(self.run_tool("list", stdout=full).returncode, 74)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[2:], verbosity=2)
