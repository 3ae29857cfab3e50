#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs the rvf tool and the storefront example as processes in a network namespace of their own.

Usage: rvf_test.py RVF STOREFRONT [unittest options]. Needs the right to make network namespaces.
"""

import gzip
import http.server
import os
import pty
import re
import signal
import socket
import ssl
import subprocess
import sys
import tempfile
import threading
import unittest

import json_output
import processes

RVF, STOREFRONT = sys.argv[1:3]
PRODUCTS = 2000
HOSTS = ["127.0.0.1 localhost both", "::1 localhost both"]


def rvf(*arguments, **options):
    options.setdefault("timeout", 60)
    return subprocess.run([RVF, *arguments], capture_output=True, text=True, **options)


def on_terminal(stream, *arguments, **environment):
    """Runs the tool with one stream, "stdout" or "stderr", on a terminal; answers what it wrote."""
    controller, terminal = pty.openpty()
    variables = {"TERM": "xterm", **os.environ, **environment}
    if "NO_COLOR" not in environment:
        variables.pop("NO_COLOR", None)
    streams = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL, stream: terminal}
    process = subprocess.Popen([RVF, *arguments], env=variables, **streams)
    os.close(terminal)
    output = b""
    while True:
        try:
            piece = os.read(controller, 4096)
        except OSError:
            break
        if not piece:
            break
        output += piece
    process.wait(timeout=20)
    os.close(controller)
    return output.decode()


class Shop:
    """A storefront process that is announced as NAME."""

    def __init__(self, directory, name, *options, authority=None):
        self.authority = os.path.join(directory, authority or name + ".pem")
        self.process = subprocess.Popen(
            [STOREFRONT, "--name", name, "--authority-file", self.authority,
             "--products", str(PRODUCTS), *options],
            stdout=subprocess.PIPE, text=True)
        line = self.process.stdout.readline()
        match = re.fullmatch(r'published "(.*)" on port (\d+)\n', line, re.DOTALL)
        if not match:
            raise RuntimeError(f"the storefront said {line!r}")
        self.name, self.port = match[1], int(match[2])

    def close(self):
        self.process.terminate()
        code = self.process.wait(timeout=20)
        self.process.stdout.close()
        return code


class AnsweringServer:
    """An HTTPS server that answers every POST with what the test sets."""

    def __init__(self, directory):
        self.status, self.body = 200, b""
        self.certificate = os.path.join(directory, "own.pem")
        key = os.path.join(directory, "own.key")
        subprocess.run(
            ["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256",
             "-nodes", "-keyout", key, "-out", self.certificate, "-days", "1", "-subj", "/CN=own",
             "-addext", "subjectAltName=IP:127.0.0.1,IP:::1"],
            check=True, capture_output=True)
        owner = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_POST(self):
                self.send_response(owner.status)
                self.send_header("Content-Length", str(len(owner.body)))
                self.end_headers()
                self.wfile.write(owner.body)

            def log_message(self, *arguments):
                pass

        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 9900), Handler)
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(self.certificate, key)
        self.server.socket = context.wrap_socket(self.server.socket, server_side=True)
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    def ask(self, body, *arguments, status=200, address="127.0.0.1:9900"):
        self.status, self.body = status, body
        return rvf("connect", "--static", address, "--ca-file", self.certificate, *arguments)

    def close(self):
        self.server.shutdown()
        self.server.server_close()


class ToolTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.directory = tempfile.TemporaryDirectory()
        cls.shop = Shop(cls.directory.name, "Till Åäö")

    @classmethod
    def tearDownClass(cls):
        code = cls.shop.close()
        cls.directory.cleanup()
        assert code == 0, f"the storefront ended with {code}"

    def assert_whole_catalogue(self, report):
        self.assertEqual(report["products"], PRODUCTS)
        self.assertEqual(report["elements"], PRODUCTS * 3 + 1)
        self.assertGreater(report["bytesInflated"], report["bytesReceived"])
        self.assertGreater(report["bytesReceived"], 1000)

    def test_connect_finds_the_server_and_reads_its_answer(self):
        result = rvf("connect", "--ca-file", self.shop.authority, "--json")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stderr, "")
        report = json_output.read("connect", result.stdout)
        self.assertEqual(report["name"], "Till Åäö")
        self.assertIs(report["demo"], True)
        self.assertIn(f"127.0.0.1:{self.shop.port}", report["addresses"])
        self.assert_whole_catalogue(report)

    def test_connect_by_typed_address(self):
        for host in ("127.0.0.1", "localhost", "[::1]"):
            address = f"{host}:{self.shop.port}"
            with self.subTest(address=address):
                result = rvf("connect", "--static", address, "--ca-file", self.shop.authority,
                             "--json")
                self.assertEqual(result.returncode, 0, result.stderr)
                report = json_output.read("connect", result.stdout)
                self.assertIsNone(report["demo"])
                self.assert_whole_catalogue(report)

    def test_connect_prints_lines_for_people(self):
        result = rvf("connect", "Till Åäö", "--ca-file", self.shop.authority)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn("server       Till Åäö\n", result.stdout)
        self.assertIn("demo         yes\n", result.stdout)
        self.assertIn(f"products     {PRODUCTS}\n", result.stdout)
        self.assertNotIn("\x1b", result.stdout + result.stderr)

    def test_resolve_prints_addresses_and_urls(self):
        result = rvf("resolve", "Till Åäö", "--json")
        self.assertEqual(result.returncode, 0, result.stderr)
        report = json_output.read("resolve", result.stdout)
        self.assertRegex(report["url"], r"^https://.*:\d+/$")
        text = rvf("resolve", "Till Åäö")
        self.assertIn(f"url          https://127.0.0.1:{self.shop.port}/\n", text.stdout)

    def test_browse_lists_added_then_changed(self):
        result = rvf("browse", "--json", "--for", "3")
        self.assertEqual(result.returncode, 0, result.stderr)
        events = json_output.read_lines("browse", result.stdout)
        own = [event for event in events if event["name"] == "Till Åäö"]
        self.assertEqual([event["event"] for event in own], ["added", "changed"])
        self.assertEqual([event["demo"] for event in own], [None, True])
        self.assertEqual(own[0]["domain"], "local.")

    def test_browse_sees_a_server_go(self):
        browse = subprocess.Popen([RVF, "browse"], stdout=subprocess.PIPE, text=True)
        guest = Shop(self.directory.name, "Guest", "--port", "9700")
        for line in browse.stdout:
            if line.startswith("= Guest"):
                break
        guest.close()
        for line in browse.stdout:
            if line.startswith("- Guest"):
                break
        browse.terminate()
        self.assertEqual(browse.wait(timeout=20), 0)
        browse.stdout.close()

    def test_a_foreign_certificate_is_refused(self):
        result = rvf("connect", "--static", f"127.0.0.1:{self.shop.port}")
        self.assertEqual(result.returncode, 76)
        self.assertRegex(result.stderr, r"^rvf: .*certificate")
        self.assertEqual(result.stdout, "")

    def test_exit_codes(self):
        rows = [
            (["connect", "Nobody", "--timeout", "1"], 68, 'no server "Nobody" was found'),
            (["resolve", "Nobody", "--timeout", "1"], 68, 'no server "Nobody" was found'),
            (["connect", "--static", ""], 68, "Quillmarsh Server"),
            (["connect", "--static", "127.0.0.1:1"], 69, "connect"),
            (["connect", "--static", f"127.0.0.1:{self.shop.port}", "--ca-file", "/nowhere"], 66,
             "/nowhere"),
            (["connect", "--static", f"127.0.0.1:{self.shop.port}", "--ca-file",
              self.shop.authority, "--command", "nothing"], 76, "404"),
            (["connect", "--timeout", "soon"], 64, "--timeout"),
            (["--backend", "none", "browse"], 64, "--backend"),
            (["dance"], 64, ""),
            ([], 64, "subcommand"),
            (["--help"], 0, ""),
            (["--version"], 0, ""),
        ]
        for arguments, code, message in rows:
            with self.subTest(arguments=arguments):
                result = rvf(*arguments)
                self.assertEqual(result.returncode, code, result.stderr)
                self.assertIn(message, result.stderr)

    def test_a_failure_is_a_json_object_too(self):
        shop = ["--static", f"127.0.0.1:{self.shop.port}"]
        rows = [
            (["connect", "Nobody", "--timeout", "1"], 68, "rvf", 68),
            (["resolve", "Nobody", "--timeout", "1"], 68, "rvf", 68),
            (["connect", "--static", "127.0.0.1:1"], 69, "libcurl", 7),
            (["connect", *shop], 76, "libcurl", 60),
            (["connect", *shop, "--ca-file", "/nowhere"], 66, "libcurl", 77),
            (["connect", *shop, "--ca-file", self.shop.authority, "--command", "nothing"], 76,
             "HTTP", 404),
        ]
        for arguments, exit_code, domain, code in rows:
            with self.subTest(arguments=arguments):
                result = rvf(*arguments, "--json")
                self.assertEqual(result.returncode, exit_code, result.stderr)
                error = json_output.read(arguments[0], result.stdout)
                self.assertEqual((error["domain"], error["code"]), (domain, code))
                self.assertEqual(result.stderr, f"rvf: {error['message']}\n")

    def test_a_full_disk_is_an_output_error(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = subprocess.run([RVF, "resolve", "Till Åäö"], stdout=full, timeout=60,
                                    check=False)
        self.assertEqual(result.returncode, 74)

    def test_every_command_reports_a_full_disk(self):
        rows = [
            ["browse", "--for", "20"],
            ["browse", "--for", "20", "--json"],
            ["resolve", "Till Åäö", "--json"],
            ["connect", "--ca-file", self.shop.authority],
            ["connect", "--ca-file", self.shop.authority, "--json"],
        ]
        for arguments in rows:
            with self.subTest(arguments=arguments), open("/dev/full", "w", encoding="utf-8") as full:
                result = subprocess.run([RVF, *arguments], stdout=full, timeout=60, check=False)
                self.assertEqual(result.returncode, 74)

    def test_durations_that_no_timer_can_wait_for_are_wrong_usage(self):
        for value in ("nan", "-1", "inf", "-inf", "1e400", "soon", "1s", ""):
            for command in (["browse", "--for"], ["resolve", "X", "--timeout"],
                            ["connect", "--timeout"]):
                with self.subTest(command=command, value=value):
                    result = rvf(*command, value)
                    self.assertEqual(result.returncode, 64, result.stderr)
                    self.assertIn(command[-1], result.stderr)
        self.assertEqual(rvf("connect", "--timeout", "0").returncode, 64)
        self.assertEqual(rvf("browse", "--for", "0").returncode, 0)

    def test_an_interrupted_search_is_temporary(self):
        for command in (["resolve", "Nobody"], ["connect", "Nobody"]):
            with self.subTest(command=command):
                process = subprocess.Popen([RVF, *command, "--timeout", "50"], text=True,
                                           stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                processes.wait_until_blocked(process, signal.SIGINT)
                process.send_signal(signal.SIGINT)
                _, errors = process.communicate(timeout=20)
                self.assertEqual(process.returncode, 75)
                self.assertEqual(errors, "rvf: interrupted\n")

    def test_colour_only_on_a_capable_terminal_and_not_with_no_color(self):
        rows = [({}, True), ({"NO_COLOR": "1"}, False), ({"NO_COLOR": ""}, True),
                ({"TERM": "dumb"}, False), ({"TERM": ""}, False)]
        for environment, coloured in rows:
            with self.subTest(environment=environment):
                output = on_terminal("stdout", "browse", "--for", "2", **environment)
                self.assertIn("Till Åäö", output)
                self.assertEqual("\x1b[" in output, coloured)

    def test_progress_only_on_a_capable_terminal(self):
        arguments = ["connect", "--ca-file", self.shop.authority]
        self.assertIn(" products, ", on_terminal("stderr", *arguments))
        self.assertTrue(on_terminal("stderr", *arguments).endswith("\r\x1b[K"))
        self.assertEqual(on_terminal("stderr", *arguments, TERM="dumb"), "")
        self.assertEqual(rvf(*arguments).stderr, "")

    def test_names_from_the_network_are_shown_without_controls(self):
        name = "Bell\x07 \x1b[31mred\x7f \u202eturned\u2066 \u0085"
        shop = Shop(self.directory.name, name, "--port", "9701", authority="controls.pem")
        try:
            shown = "Bell? ?[31mred? ?turned? ?"
            lines = rvf("browse", "--for", "3").stdout.splitlines()
            self.assertIn("+ " + shown + "  local.", lines)
            self.assertIn("= " + shown + "  demo  local.", lines)
            self.assertIn("server       " + shown + "\n", rvf("resolve", name).stdout)
        finally:
            shop.close()
        result = rvf("resolve", name + "\udcff", "--timeout", "0.1")
        self.assertIn('no server "' + shown + '?" was found', result.stderr)


class BadAnswerTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.directory = tempfile.TemporaryDirectory()
        cls.server = AnsweringServer(cls.directory.name)

    @classmethod
    def tearDownClass(cls):
        cls.server.close()
        cls.directory.cleanup()

    def test_answers_that_cannot_be_read(self):
        whole = gzip.compress(b"<a>" + b"<b/>" * 1000 + b"</a>")
        rows = [
            ("no gzip", b"<a/>", "RVFErrorDomain 307"),
            ("truncated", whole[:-9], "RVFErrorDomain 309"),
            ("corrupt", whole[:20] + b"\xff" * 8 + whole[28:], "RVFErrorDomain 307"),
            ("empty", b"", "RVFErrorDomain 308"),
            ("malformed", gzip.compress(b"<a><b></a>"), "LIBXMLErrorDomain 1"),
            ("after the end", whole + b"more" * 5000, "RVFErrorDomain 3"),
        ]
        for name, body, message in rows:
            with self.subTest(name):
                result = self.server.ask(body)
                self.assertEqual(result.returncode, 65, result.stderr)
                self.assertIn(message, result.stderr)

    def test_an_answer_that_cannot_be_read_is_a_json_object_too(self):
        result = self.server.ask(b"<a/>", "--json")
        self.assertEqual(result.returncode, 65)
        error = json_output.read("connect", result.stdout)
        self.assertEqual((error["domain"], error["code"]), ("RVFErrorDomain", 307))

    def test_every_status_but_200_is_a_protocol_error(self):
        for status, body in ((500, b"no"), (404, b""), (302, b""), (204, b""),
                             (201, gzip.compress(b"<catalogue/>"))):
            with self.subTest(status=status):
                result = self.server.ask(body, status=status)
                self.assertEqual(result.returncode, 76, result.stderr)
                self.assertEqual(result.stderr,
                                 f"rvf: the server answered with status {status}\n")
                self.assertEqual(result.stdout, "")

    def test_the_next_address_is_tried_where_one_does_not_answer(self):
        result = self.server.ask(gzip.compress(b"<catalogue/>"), address="both:9900")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn("addresses    [::1]:9900 127.0.0.1:9900\n", result.stdout)
        self.assertIn("url          https://127.0.0.1:9900/catalogue\n", result.stdout)

    def test_a_port_that_base_urls_cannot_carry_is_unavailable(self):
        for port in (32768, 40000, 65535):
            with self.subTest(port=port):
                result = self.server.ask(b"", address=f"127.0.0.1:{port}")
                self.assertEqual(result.returncode, 69)
                self.assertEqual(result.stderr, "rvf: the server's port is above 32767, which base "
                                                "URLs cannot carry\n")

    def test_the_report_for_people_has_every_line(self):
        result = self.server.ask(gzip.compress(b"<catalogue><product/><product/></catalogue>"))
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertRegex(result.stdout, r"""\Aserver       127\.0\.0\.1:9900
demo         unknown
addresses    127\.0\.0\.1:9900
url          https://127\.0\.0\.1:9900/catalogue
elements     3
products     2
received     \d+ bytes
inflated     43 bytes
time         \d+\.\d{3} s
peak memory  \d+\.\d MiB
\Z""")

    def test_a_good_answer_is_read(self):
        result = self.server.ask(gzip.compress(b"<catalogue><product/></catalogue>"))
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn("products     1\n", result.stdout)


class NoDiscoveryTest(unittest.TestCase):
    COMMANDS = (["browse"], ["browse", "--for", "0.5"], ["resolve", "Nobody"],
                ["connect", "Nobody", "--timeout", "0.5"])

    def assert_unavailable(self, backend, message, **environment):
        for command in self.COMMANDS:
            with self.subTest(command=command):
                result = rvf("--backend", backend, *command, env={**os.environ, **environment})
                self.assertEqual(result.returncode, 69, result.stderr)
                self.assertEqual(result.stderr,
                                 f"rvf: service discovery is unavailable: {message}\n")

    def test_without_a_daemon(self):
        self.assert_unavailable("daemon", "no Avahi daemon answers on the system bus",
                                DBUS_SYSTEM_BUS_ADDRESS="unix:path=/nonexistent")

    def test_what_is_unavailable_is_a_json_object_too(self):
        environment = {**os.environ, "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nonexistent"}
        for command in self.COMMANDS:
            with self.subTest(command=command):
                result = rvf("--backend", "daemon", *command, "--json", env=environment)
                error = json_output.read(command[0], result.stdout)
                self.assertEqual((result.returncode, error["domain"], error["code"]),
                                 (69, "rvf", 69))

    def test_without_the_port_of_multicast_dns(self):
        stack = ("the multicast DNS port, 5353, cannot be opened; another program may hold it for "
                 "itself")
        with socket.socket(socket.AF_INET6, socket.SOCK_DGRAM) as holder:
            holder.bind(("::", 5353))
            self.assert_unavailable("embedded", stack)
            self.assert_unavailable("automatic",
                                    f"no Avahi daemon answers on the system bus, and {stack}",
                                    DBUS_SYSTEM_BUS_ADDRESS="unix:path=/nonexistent")


if __name__ == "__main__":
    processes.enter_private_network(HOSTS)
    unittest.main(argv=[sys.argv[0]] + sys.argv[3:], verbosity=2)
