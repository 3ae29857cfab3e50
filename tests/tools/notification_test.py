#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs rvf post and rvf observe in a network namespace of their own.

Usage: notification_test.py RVF [unittest options]. Needs the right to make network namespaces.
"""

import contextlib
import os
import signal
import socket
import subprocess
import sys
import time
import unittest

import json_output
import processes

RVF = sys.argv[1]
MENU, PRICES = "_menu._tcp", "_prices._tcp"


def rvf(*arguments, **options):
    options.setdefault("timeout", 60)
    return subprocess.run([RVF, *arguments], capture_output=True, text=True, check=False, **options)


@contextlib.contextmanager
def only_port_taken():
    """Leaves programs of this network a single port to be given, which is taken for TCP."""
    path = "/proc/sys/net/ipv4/ip_local_port_range"
    with open(path, encoding="ascii") as setting:
        usual = setting.read()

    def choose_from(ports):
        with open(path, "w", encoding="ascii") as setting:
            setting.write(ports)

    with socket.create_server(("", 40000)):
        choose_from("40000 40000")
        try:
            yield
        finally:
            choose_from(usual)


class Running:
    """A command under way, ended with its test."""

    def __init__(self, test, *arguments):
        self.process = subprocess.Popen([RVF, *arguments], stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, text=True)
        test.addCleanup(self.close)

    def line(self):
        return self.process.stdout.readline()

    def end(self, number=None):
        """Its exit code and what it has written since."""
        if number is not None:
            processes.wait_until_blocked(self.process, number)
            self.process.send_signal(number)
        output, errors = self.process.communicate(timeout=60)
        return self.process.returncode, output, errors

    def close(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        self.process.stdout.close()
        self.process.stderr.close()


class NotificationTest(unittest.TestCase):
    def test_a_post_is_observed_by_every_process(self):
        observers = [Running(self, "observe", MENU), Running(self, "observe", "--json", MENU)]
        Running(self, "post", MENU)
        self.assertEqual(observers[0].line(), MENU + "\n")
        self.assertEqual(json_output.read("observe", observers[1].line()), {"name": MENU})

    def test_each_name_is_told_by_itself(self):
        observer = Running(self, "observe", "--json", PRICES, MENU)
        for name in (MENU, PRICES, MENU):
            Running(self, "post", name)
            self.assertEqual(json_output.read("observe", observer.line()), {"name": name})

    def test_other_names_are_not_told(self):
        Running(self, "post", PRICES)
        seen = Running(self, "observe", PRICES)
        self.assertEqual(seen.line(), PRICES + "\n")
        self.assertEqual(rvf("observe", "--for", "1", "_other._tcp").stdout, "")

    def test_a_post_goes_on_for_ten_seconds_and_says_nothing(self):
        start = time.monotonic()
        observer = Running(self, "observe", "_long._tcp")
        post = Running(self, "post", "_long._tcp")
        self.assertEqual(observer.line(), "_long._tcp\n")
        late = Running(self, "observe", "_long._tcp")
        self.assertEqual(late.line(), "_long._tcp\n")
        self.assertEqual(post.end(), (0, "", ""))
        self.assertGreaterEqual(time.monotonic() - start, 10)
        self.assertEqual(rvf("observe", "--for", "2", "_long._tcp").stdout, "")

    def test_a_post_that_gets_no_port_is_told_and_does_not_wait(self):
        with only_port_taken():
            result = rvf("post", "_dropped._tcp", timeout=10)
        self.assertEqual((result.returncode, result.stdout), (75, ""))
        self.assertEqual(result.stderr,
                         "rvf: nothing was posted: the system has no port to give\n")

    def test_observing_ends_in_time(self):
        result = rvf("observe", "--for", "1", "_quiet._tcp")
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))
        self.assertEqual(rvf("observe", "--for", "0", MENU).returncode, 0)

    def test_a_signal_ends_observing_cleanly(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            with self.subTest(signal=number):
                observer = Running(self, "observe", "_quiet._tcp")
                self.assertEqual(observer.end(number), (0, "", ""))

    def test_an_interrupted_post_is_temporary(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            with self.subTest(signal=number):
                post = Running(self, "post", "_quiet._tcp")
                self.assertEqual(post.end(number), (75, "", "rvf: interrupted\n"))

    def test_what_is_no_name_is_wrong_usage_before_anything_starts(self):
        names = ("", "menu", "menu._tcp", "_menu", "_menu._udp", "_menu.tcp", "_menu._tcp.", "._tcp",
                 "_._tcp", "_a._sub._menu._tcp", "_" + "x" * 63 + "._tcp", "_a b._tcp.local")
        for name in names:
            for command in (["post"], ["observe"], ["observe", MENU]):
                with self.subTest(command=command, name=name):
                    result = rvf("--backend", "daemon", *command, name, timeout=10)
                    self.assertEqual(result.returncode, 64, result.stderr)
                    self.assertIn(f'"{name}" is no notification name', result.stderr)
                    self.assertEqual(result.stdout, "")

    def test_wrong_usage(self):
        rows = [
            (["post"], "NAME"),
            (["observe"], "NAME"),
            (["post", MENU, PRICES], PRICES),
            (["observe", MENU, PRICES, MENU], f"rvf: the name {MENU} is given twice"),
            (["observe", MENU, "--for", "soon"], "--for"),
        ]
        for arguments, message in rows:
            with self.subTest(arguments=arguments):
                result = rvf(*arguments, timeout=10)
                self.assertEqual(result.returncode, 64, result.stderr)
                self.assertIn(message, result.stderr)

    def test_help_tells_how_long_a_post_takes(self):
        result = rvf("post", "--help")
        self.assertEqual(result.returncode, 0)
        self.assertIn("ten seconds", result.stdout)

    def test_a_full_disk_is_an_output_error(self):
        for options in ([], ["--json"]):
            with self.subTest(options=options), open("/dev/full", "w", encoding="utf-8") as full:
                observer = subprocess.Popen([RVF, "observe", "_full._tcp", *options], stdout=full)
                Running(self, "post", "_full._tcp")
                self.assertEqual(observer.wait(timeout=60), 74)

    def test_without_a_daemon_discovery_is_unavailable(self):
        environment = {**os.environ, "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nonexistent"}
        for command in (["post", MENU], ["observe", MENU], ["observe", MENU, "--for", "1"]):
            with self.subTest(command=command):
                result = rvf("--backend", "daemon", *command, env=environment)
                self.assertEqual(result.returncode, 69, result.stderr)
                self.assertEqual(result.stderr, "rvf: service discovery is unavailable: no Avahi "
                                                "daemon answers on the system bus\n")


if __name__ == "__main__":
    processes.enter_private_network()
    unittest.main(argv=[sys.argv[0]] + sys.argv[2:], verbosity=2)
