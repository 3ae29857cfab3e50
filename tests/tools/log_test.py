#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs "rvf log" against a real journald and a real rsyslog, started in a file system of their own.

Usage: log_test.py RVF [unittest options]. Needs the right to make mount namespaces.
"""

import json
import os
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

RVF = os.path.abspath(sys.argv[1])
JOURNALD = "/lib/systemd/systemd-journald"
JOURNAL_SOCKET = "/run/systemd/journal/socket"
SYSLOG_SOCKET = "/dev/log"
PATIENCE = 60


def enter_private_file_system():
    """Moves this process to a place where /run is empty and /dev holds no log."""
    if os.environ.get("RVF_TEST_FILES") == "private":
        return
    script = (
        'mount -t tmpfs none /run && mkdir -p /run/systemd/journal /run/log /run/dev &&'
        'mount -t tmpfs none /run/dev && mkdir /run/dev/shm &&'
        'for node in null zero full random urandom; do'
        '  touch /run/dev/$node && mount --bind /dev/$node /run/dev/$node || exit 1; done &&'
        'ln -s /proc/self/fd /run/dev/fd && mount --move /run/dev /dev && exec "$0" "$@"')
    kind = ["--mount"] if os.geteuid() == 0 else ["--user", "--map-root-user", "--mount"]
    command = ["unshare", *kind, "--", "sh", "-c", script, sys.executable] + sys.argv
    os.execvpe(command[0], command, dict(os.environ, RVF_TEST_FILES="private"))


def rvf_log(*arguments, **options):
    return subprocess.run([RVF, "log", *arguments], capture_output=True, timeout=PATIENCE,
                          check=False, **options)


def is_listening(path):
    with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as probe:
        try:
            probe.connect(path)
        except OSError:
            return False
        return True


class Server:
    """A process that listens at a socket."""

    def __init__(self, command, path):
        self.command = command
        self.path = path
        self.start()

    def start(self):
        self.process = subprocess.Popen(self.command, stdin=subprocess.DEVNULL,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        end = time.monotonic() + PATIENCE
        while not is_listening(self.path):
            if self.process.poll() is not None or time.monotonic() > end:
                raise RuntimeError(f"{self.command[0]} does not listen at {self.path}")
            time.sleep(0.01)

    def stop(self, how=signal.SIGTERM):
        self.process.send_signal(how)
        self.process.wait(PATIENCE)

    def restart(self, how=signal.SIGTERM):
        self.stop(how)
        self.start()


class LogTest(unittest.TestCase):
    def assert_taken(self, *arguments, **options):
        result = rvf_log(*arguments, **options)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, b"", b""))

    def eventually(self, read, expected):
        """Waits until read() answers what is expected."""
        end = time.monotonic() + PATIENCE
        while (found := read()) != expected and time.monotonic() < end:
            time.sleep(0.02)
        self.assertEqual(found, expected)

    def assert_outlives_restarts(self, server, texts):
        """Of one process, the first line comes before a restart and the others after one each."""
        with subprocess.Popen([RVF, "log", "-t", self.id()], stdin=subprocess.PIPE) as process:
            for count, how in enumerate([None, signal.SIGTERM, signal.SIGKILL], 1):
                if how:
                    server.restart(how)
                process.stdin.write(f"line {count}\n".encode())
                process.stdin.flush()
                self.eventually(texts, [f"line {number}" for number in range(1, count + 1)])
            process.stdin.close()
            self.assertEqual(process.wait(PATIENCE), 0)


class JournalTest(LogTest):
    def setUp(self):
        self.server = Server([JOURNALD], JOURNAL_SOCKET)
        self.addCleanup(self.server.stop)

    def entries(self):
        """What journalctl reads back under the name of this test."""
        output = subprocess.run(
            ["journalctl", "--directory=/run/log/journal", "--output=json", "--all",
             "--quiet", f"SYSLOG_IDENTIFIER={self.id()}"],
            check=False, capture_output=True, timeout=PATIENCE).stdout
        return [json.loads(line) for line in output.splitlines()]

    def values(self, field):
        return [entry.get(field) for entry in self.entries()]

    def texts(self):
        return self.values("MESSAGE")

    def test_a_message_arrives_with_its_fields(self):
        self.assert_taken("-t", self.id(), "--level", "warning", "--facility", "local3",
                          "drawer", "äußerst", "offen")
        self.eventually(self.texts, ["drawer äußerst offen"])
        entry = self.entries()[0]
        self.assertEqual(entry["PRIORITY"], "4")
        self.assertEqual(entry["SYSLOG_FACILITY"], "19")
        self.assertEqual(entry["_TRANSPORT"], "journal")
        self.assertEqual(entry["_COMM"], "rvf")

    def test_levels_have_names_and_numbers(self):
        names = ["emerg", "alert", "crit", "err", "warning", "notice", "info", "debug"]
        for number, name in enumerate(names):
            self.assert_taken("-t", self.id(), "-l", name, "x")
            self.assert_taken("-t", self.id(), "-l", str(number), "x")
        self.eventually(lambda: self.values("PRIORITY"),
                        [str(number) for number in range(8) for _ in range(2)])

    def test_the_level_is_notice_unless_told(self):
        self.assert_taken("-t", self.id(), "x")
        self.eventually(lambda: self.values("PRIORITY"), ["5"])

    def test_a_facility_of_ones_own_is_a_field(self):
        self.assert_taken("-t", self.id(), "-f", "com.example.till", "x")
        self.eventually(lambda: self.values("FACILITY"), ["com.example.till"])
        self.assertEqual(self.values("SYSLOG_FACILITY"), [None])

    def test_texts_arrive_as_they_were_given(self):
        texts = ["100% %d %% %n", "two\nlines\nPRIORITY=0", "--", "ünï©ødé 😀"]
        for text in texts:
            self.assert_taken("-t", self.id(), "--", text)
        self.eventually(self.texts, texts)

    def test_bytes_that_are_no_text_arrive(self):
        self.assert_taken("-t", self.id(), b"\xff!")
        self.eventually(self.texts, [[0xFF, ord("!")]])

    def test_a_long_message_arrives_whole(self):
        text = "0123456789" * 200_000
        self.assert_taken("-t", self.id(), input=text.encode())
        self.eventually(lambda: [len(text) for text in self.texts()], [len(text)])
        self.assertEqual(self.texts(), [text])

    def test_lines_of_standard_input_are_messages(self):
        self.assert_taken("-t", self.id(), input=b"a\n\nb")
        self.eventually(self.texts, ["a", "", "b"])

    def test_a_restarted_journal_gets_the_next_message(self):
        self.assert_outlives_restarts(self.server, self.texts)


class SyslogTest(LogTest):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.file = Path(folder.name) / "log"
        configuration = Path(folder.name) / "rsyslog.conf"
        configuration.write_text(
            'module(load="imuxsock" SysSock.Name="/dev/log" SysSock.RateLimit.Interval="0")\n'
            'template(name="line" type="string"\n'
            '         string="%syslogfacility-text%.%syslogseverity-text%|%programname%|'
            '%procid%|%msg%\\n")\n'
            f'*.* action(type="omfile" file="{self.file}" template="line")\n')
        self.server = Server(["rsyslogd", "-n", "-i", "NONE", "-f", str(configuration)],
                             SYSLOG_SOCKET)
        self.addCleanup(self.server.stop)

    def lines(self):
        """What was logged by others than the server itself."""
        text = self.file.read_text(errors="surrogateescape") if self.file.exists() else ""
        return [line for line in text.splitlines() if not line.startswith("syslog.info|rsyslogd")]

    def texts(self):
        return [line.split("|", 3)[3].lstrip() for line in self.lines()]

    def test_a_message_arrives_with_priority_name_and_process(self):
        with subprocess.Popen([RVF, "log", "-t", "till", "-l", "err", "-f", "local3",
                               "drawer open, 5% %d"]) as process:
            self.assertEqual(process.wait(PATIENCE), 0)
        self.eventually(self.lines, [f"local3.err|till|{process.pid}| drawer open, 5% %d"])

    def test_the_priority_is_user_notice_unless_told(self):
        self.assert_taken("-t", "till", "-f", "com.example.till", "x")
        self.assert_taken("-t", "till", "x")
        self.eventually(lambda: [line.split("|")[0] for line in self.lines()],
                        ["user.notice", "user.notice"])

    def test_line_ends_within_a_message_start_no_line(self):
        self.assert_taken("-t", "till", "a\n<0>b")
        self.eventually(self.texts, ["a#012<0>b"])

    def test_a_restarted_server_gets_the_next_message(self):
        self.assert_outlives_restarts(self.server, self.texts)


class WithoutLogTest(LogTest):
    def test_it_is_told_that_no_log_can_be_reached(self):
        result = rvf_log("x")
        self.assertEqual((result.returncode, result.stdout), (69, b""))
        self.assertEqual(result.stderr, b"rvf: no system log can be reached\n")

    def test_standard_error_suffices_on_request(self):
        result = rvf_log("--stderr", "-t", "till", "-l", "debug", "5% off")
        self.assertEqual((result.returncode, result.stdout), (0, b""))
        self.assertRegex(result.stderr.decode(), r"^till\[\d+\]: 5% off\n$")

    def test_a_log_that_goes_away_is_told(self):
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as server:
            server.bind(SYSLOG_SOCKET)
            self.addCleanup(os.unlink, SYSLOG_SOCKET)
            with subprocess.Popen([RVF, "log"], stdin=subprocess.PIPE,
                                  stderr=subprocess.PIPE) as process:
                process.stdin.write(b"taken\n")
                process.stdin.flush()
                self.assertIn(b"taken", server.recv(1000))
                server.close()
                _, complaint = process.communicate(b"lost\n", timeout=PATIENCE)
        self.assertEqual((process.returncode, complaint),
                         (69, b"rvf: the system log did not take the message\n"))

    def test_wrong_usage_is_told(self):
        for arguments in [("--level", "loud", "x"), ("--level", "8", "x"), ("--level", "-1", "x")]:
            self.assertEqual(rvf_log(*arguments).returncode, 64, arguments)

    def test_standard_input_that_cannot_be_read_is_told(self):
        folder = os.open("/", os.O_RDONLY)
        self.addCleanup(os.close, folder)
        self.assertEqual(rvf_log("--stderr", stdin=folder).returncode, 66)


if __name__ == "__main__":
    enter_private_file_system()
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
