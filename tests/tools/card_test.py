#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs "rvf swipe" and "rvf expiry" as their users do.

Usage: card_test.py RVF [unittest options].
"""

import os
import subprocess
import sys
import termios
import time
import unittest

import json_output

RVF = sys.argv[1]
BOTH_TRACKS = "%B4111111111111111^DOE/JOHN^1512101?;4111111111111111=1512101?\n"
ENCRYPTED = "|st|1|0A1B2C|3|4|db|6|7|62994901|9|10|11?\n"
NO_SWIPE = "+4111111111111111?\n"
FAULT = "%B4111111111111111^DOE/JOHN?\n"


def rvf(*arguments, swipes=""):
    environment = dict(os.environ, LC_ALL="C")
    return subprocess.run([RVF, *arguments], input=swipes, capture_output=True, text=True,
                          encoding="utf-8", timeout=60, env=environment, check=False)


class SwipeTest(unittest.TestCase):
    def test_prints_the_fields_with_the_number_masked(self):
        result = rvf("swipe", swipes=BOTH_TRACKS)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stdout,
                         "tracks       1, 2\n"
                         "account      411111******1111\n"
                         "network      Visa\n"
                         "name         JOHN DOE\n"
                         "expires      12/2015\n")
        self.assertEqual(result.stderr, "")

    def test_prints_one_json_object_a_line(self):
        result = rvf("swipe", "--json", swipes=BOTH_TRACKS + ENCRYPTED)
        self.assertEqual(result.returncode, 0, result.stderr)
        clear, encrypted = json_output.read_lines("swipe", result.stdout)
        self.assertEqual(clear, {
            "line": 1, "trackInfo": 3, "accountNumber": "411111******1111", "network": "Visa",
            "cardholderName": "DOE/JOHN", "displayCardholderName": "JOHN DOE",
            "expirationYear": 2015, "expirationMonth": 12, "encryptedTrackData": None})
        self.assertEqual(encrypted["line"], 2)
        self.assertEqual(encrypted["trackInfo"], 4)
        self.assertIsNone(encrypted["accountNumber"])
        self.assertIsNone(encrypted["expirationYear"])
        self.assertEqual(encrypted["encryptedTrackData"], {
            "statusBlock": "st", "trackData": "0A1B2C", "dataBlock": "db",
            "keySerial": "62994901"})

    def test_shows_whole_numbers_only_when_told(self):
        for arguments in ([], ["--json"]):
            with self.subTest(arguments):
                self.assertNotIn("4111111111111111", rvf("swipe", *arguments,
                                                         swipes=BOTH_TRACKS).stdout)
                self.assertIn("4111111111111111", rvf("swipe", "--reveal", *arguments,
                                                      swipes=BOTH_TRACKS).stdout)

    def test_masks_all_of_a_short_number(self):
        rows = [("", ""), ("4111", "****"), ("4111111111", "**********"),
                ("41111122222", "411111*2222"), ("ÄÖÜ4567890123", "ÄÖÜ456***0123")]
        for number, masked in rows:
            with self.subTest(number):
                result = rvf("swipe", "--json", swipes=f"%B{number}^DOE/JOHN^1512?\n")
                self.assertEqual(json_output.read("swipe", result.stdout)["accountNumber"], masked)

    def test_a_malformed_swipe_is_told_without_its_text_and_the_next_is_read(self):
        result = rvf("swipe", swipes=NO_SWIPE + FAULT + BOTH_TRACKS)
        self.assertEqual(result.returncode, 65)
        self.assertEqual(result.stderr,
                         "rvf: line 1: no card swipe\n"
                         "rvf: line 2: NSRangeException: index 2 beyond bounds [0 .. 1]\n")
        self.assertIn("JOHN DOE", result.stdout)

    def test_a_malformed_swipe_is_a_json_object_too(self):
        result = rvf("swipe", "--json", swipes=NO_SWIPE + FAULT)
        self.assertEqual(result.returncode, 65)
        self.assertEqual(json_output.read_lines("swipe", result.stdout), [
            {"line": 1, "error": "no card swipe"},
            {"line": 2, "error": "NSRangeException: index 2 beyond bounds [0 .. 1]"}])

    def test_a_credit_card_has_a_name_and_its_number_on_track_1(self):
        other = BOTH_TRACKS.replace(";4111", ";5511")
        result = rvf("swipe", "--credit-card", swipes=other)
        self.assertIn("account      411111******1111\n", result.stdout)
        self.assertIn("account      551111******1111\n", rvf("swipe", swipes=other).stdout)
        for swipe in ("%B4111111111111111^X^1512?\n", "\n"):
            with self.subTest(swipe):
                self.assertEqual(rvf("swipe", "--credit-card", swipes=swipe).returncode, 65)
                self.assertEqual(rvf("swipe", swipes=swipe).returncode, 0)

    def test_a_name_may_be_required(self):
        swipe = "%B4111111111111111^X^1512?\n"
        self.assertEqual(rvf("swipe", "--require-name", swipes=swipe).returncode, 65)
        self.assertEqual(rvf("swipe", "--require-name", swipes=BOTH_TRACKS).returncode, 0)
        self.assertEqual(rvf("swipe", "--require-name", "--credit-card").returncode, 64)

    def test_lines_may_end_as_on_other_systems_or_not_at_all(self):
        for swipes in (BOTH_TRACKS.replace("\n", "\r\n"), BOTH_TRACKS.rstrip("\n")):
            with self.subTest(swipes):
                self.assertIn("tracks       1, 2\n", rvf("swipe", swipes=swipes).stdout)

    def test_no_swipes_are_no_error(self):
        result = rvf("swipe")
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))

    def test_controls_do_not_reach_the_terminal(self):
        result = rvf("swipe", swipes="%B4111111111111111^DOE\x1b[2J/JOHN^1512?\n")
        self.assertIn("JOHN DOE?[2J\n", result.stdout)

    def test_input_and_output_that_fail(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            done = subprocess.run([RVF, "swipe"], input=BOTH_TRACKS, stdout=full, text=True,
                                  timeout=60, check=False)
        self.assertEqual(done.returncode, 74)
        directory = os.open("/", os.O_RDONLY)
        done = subprocess.run([RVF, "swipe"], stdin=directory, capture_output=True, timeout=60,
                              check=False)
        os.close(directory)
        self.assertEqual(done.returncode, 66)


class TerminalTest(unittest.TestCase):
    def test_what_a_reader_types_is_not_shown(self):
        master, terminal = os.openpty()
        with subprocess.Popen([RVF, "swipe"], stdin=terminal, stdout=terminal,
                              stderr=terminal) as program:
            deadline = time.monotonic() + 60
            while termios.tcgetattr(terminal)[3] & termios.ECHO:
                self.assertLess(time.monotonic(), deadline)
                time.sleep(0.01)
            os.write(master, BOTH_TRACKS.encode() + b"\x04")
            self.assertEqual(program.wait(60), 0)
        self.assertTrue(termios.tcgetattr(terminal)[3] & termios.ECHO)
        os.close(terminal)
        shown = b""
        try:
            while data := os.read(master, 4096):
                shown += data
        except OSError:  # how the last reader of a pseudo-terminal learns of its end
            pass
        os.close(master)
        self.assertIn(b"411111******1111", shown)
        self.assertNotIn(b"4111111111111111", shown)


class ExpiryTest(unittest.TestCase):
    def test_prints_month_and_year(self):
        for text in ("12/2031", "12/ 2031x"):
            with self.subTest(text):
                result = rvf("expiry", text)
                self.assertEqual(result.returncode, 0, result.stderr)
                self.assertEqual(result.stdout, "month        12\nyear         2031\n")
        self.assertEqual(json_output.read("expiry", rvf("expiry", "1/2031", "--json").stdout),
                         {"month": 1, "year": 2031})

    def test_prints_message_and_suggestion_as_they_stand(self):
        formats = "Enter an expiry date using one of these formats: 'MMYY', 'MM/YY' or 'MM/YYYY'."
        rows = [
            ("122", "Could not read expiry date '122'.", formats),
            ("", "Could not read expiry date ''.", formats),
            ("1325", "Invalid expiry month value '13'.", "Enter a number between 1 and 12."),
            ("/", "Invalid expiry month value.", "Enter a number between 1 and 12."),
            ("12/", "Invalid expiry year value.", "Enter a number between 2000 and 9999."),
            ("12/1999", "Invalid expiry year value '1999'.",
             "Enter a number between 2000 and 9999."),
        ]
        for text, message, suggestion in rows:
            with self.subTest(text):
                result = rvf("expiry", text)
                self.assertEqual((result.returncode, result.stdout), (65, ""))
                self.assertEqual(result.stderr, f"{message}\n{suggestion}\n")

    def test_an_error_is_a_json_object_too(self):
        result = rvf("expiry", "--json", "13/25")
        self.assertEqual((result.returncode, result.stderr), (65, ""))
        self.assertEqual(json_output.read("expiry", result.stdout), {
            "domain": "RVFErrorDomain", "code": 304,
            "message": "Invalid expiry month value '13'.",
            "suggestion": "Enter a number between 1 and 12."})

    def test_needs_a_text(self):
        self.assertEqual(rvf("expiry").returncode, 64)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[2:], verbosity=2)
