#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs "rvf period", "rvf columns" and "rvf machine" as their users do.

Usage: platform_test.py RVF [unittest options].
"""

import os
import plistlib
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import json_output

RVF = os.path.abspath(sys.argv[1])


def rvf(*arguments, **environment):
    with tempfile.TemporaryDirectory() as folder:
        return subprocess.run([RVF, *arguments], capture_output=True, timeout=60, text=True,
                              env={"PATH": os.environ["PATH"], "LC_ALL": "C", "TZ": "UTC",
                                   "XDG_CONFIG_HOME": folder, **environment}, check=False)


class ToolTest(unittest.TestCase):
    def done(self, *arguments, **environment):
        result = rvf(*arguments, **environment)
        self.assertEqual((result.returncode, result.stderr), (0, ""), arguments)
        return result.stdout

    def read(self, command, *arguments, **environment):
        return json_output.read(command, self.done(command, *arguments, "--json", **environment))

    def assert_fails_in_json(self, code, command, *arguments):
        """Fails with this exit code, and the same message for programs and for people."""
        with self.subTest(arguments=arguments):
            result = rvf(command, *arguments, "--json")
            self.assertEqual(result.returncode, code)
            error = json_output.read(command, result.stdout)
            self.assertEqual(result.stderr, f"rvf: {error['message']}\n")

    def assert_fails(self, code, message, *arguments):
        with self.subTest(arguments=arguments):
            result = rvf(*arguments)
            self.assertEqual(result.returncode, code)
            self.assertEqual(result.stdout, "")
            self.assertIn(message, result.stderr)


class PeriodTest(ToolTest):
    def test_prints_the_day_of_every_period(self):
        for period, expected in [
            ("first-day-of-week", "2024-03-10T03:30:00-04:00"),
            ("first-day-of-previous-week", "2024-03-03T02:30:00-05:00"),
            ("last-day-of-previous-week", "2024-03-09T02:30:00-05:00"),
            ("first-day-of-next-week", "2024-03-17T02:30:00-04:00"),
            ("last-day-of-next-week", "2024-03-23T02:30:00-04:00"),
            ("first-day-of-current-month", "2024-03-01T02:30:00-05:00"),
            ("last-day-of-current-month", "2024-03-31T02:30:00-04:00"),
            ("last-day-of-previous-month", "2024-02-29T02:30:00-05:00"),
            ("first-day-of-previous-month", "2024-02-01T02:30:00-05:00"),
            ("first-day-of-next-month", "2024-04-01T02:30:00-04:00"),
            ("last-day-of-next-month", "2024-04-30T02:30:00-04:00"),
            ("first-day-of-year-with-delta", "2024-01-01T00:00:00-05:00"),
            ("first-day-of-current-year", "2024-01-01T00:00:00-05:00"),
            ("first-day-of-next-year", "2025-01-01T00:00:00-05:00"),
            ("last-day-of-next-year", "2025-12-31T00:00:00-05:00"),
        ]:
            with self.subTest(period=period):
                self.assertEqual(self.done("period", period, "--zone", "America/New_York",
                                           "--date", "2024-03-12T02:30"), expected + "\n")

    def test_reads_dates_of_several_forms(self):
        for date, expected in [
            ("2024-03-12", "2024-03-10T00:00:00+09:00"),
            ("2024-03-12T02:30", "2024-03-10T02:30:00+09:00"),
            ("2024-03-12T02:30:15", "2024-03-10T02:30:15+09:00"),
            ("2024-03-12T02:30:15+09:00", "2024-03-10T02:30:15+09:00"),
            ("2024-03-11T17:30:15Z", "2024-03-10T02:30:15+09:00"),
            ("2024-03-11T17:30:15+00:00", "2024-03-10T02:30:15+09:00"),
            ("2024-03-11T13:30:15-04:00", "2024-03-10T02:30:15+09:00"),
            ("2024-03-11T23:15:15+05:45", "2024-03-10T02:30:15+09:00"),
        ]:
            with self.subTest(date=date):
                self.assertEqual(self.done("period", "first-day-of-week", "--date", date,
                                           "--zone", "Asia/Tokyo"), expected + "\n")

    def test_counts_years(self):
        self.assertEqual(self.done("period", "first-day-of-year-with-delta", "--delta", "-3",
                                   "--date", "2024-03-12"), "2021-01-01T00:00:00+00:00\n")

    def test_reads_what_it_prints_of_any_age(self):
        for zone, date in [("UTC", "2024-01-01T00:00:00+00:00"),
                           ("UTC", "-0976-01-01T00:00:00+00:00"),
                           ("UTC", "0000-01-01T00:00:00+00:00"),
                           ("UTC", "12024-01-01T00:00:00+00:00"),
                           ("Europe/Berlin", "1850-01-01T00:00:00+00:53:28"),
                           ("America/New_York", "1850-01-01T00:00:00-04:56:02")]:
            with self.subTest(date=date):
                self.assertEqual(self.done("period", "first-day-of-current-year", "--zone", zone,
                                           "--date=" + date), date + "\n")

    def test_prints_years_before_the_common_era_with_their_sign(self):
        self.assertEqual(self.done("period", "first-day-of-year-with-delta", "--delta", "-3000",
                                   "--date", "2024-03-12"), "-0976-01-01T00:00:00+00:00\n")

    def test_prints_json_with_the_calendars_fields(self):
        answer = self.read("period", "first-day-of-current-month", "--date", "2024-02-20",
                           "--calendar", "hebrew", "--zone", "Asia/Jerusalem")
        self.assertEqual(answer, {"period": "first-day-of-current-month", "calendar": "hebrew",
                                  "zone": "Asia/Jerusalem", "date": "2024-02-20T00:00:00+02:00",
                                  "result": "2024-02-10T00:00:00+02:00", "year": 5784, "month": 6,
                                  "day": 1, "weekday": 7})

    def test_takes_calendar_and_zone_of_the_user(self):
        answer = self.read("period", "first-day-of-current-year", "--date", "2024-02-20",
                           LC_ALL="th_TH.UTF-8", TZ="Asia/Bangkok")
        self.assertEqual((answer["calendar"], answer["zone"], answer["year"], answer["result"]),
                         ("buddhist", "Asia/Bangkok", 2567, "2024-01-01T00:00:00+07:00"))

    def test_takes_now_without_a_date(self):
        self.assertRegex(self.done("period", "first-day-of-current-year"),
                         re.compile(r"^\d{4}-01-01T00:00:00\+00:00\n$"))

    def test_wrong_usage_is_told(self):
        self.assert_fails(64, "PERIOD", "period", "last-day-of-week")
        self.assert_fails(64, "no time zone \"Nowhere\"", "period", "first-day-of-week", "--zone",
                          "Nowhere")
        self.assert_fails(64, "no calendar \"julian\"", "period", "first-day-of-week",
                          "--calendar", "julian")
        self.assert_fails(64, "--delta goes with", "period", "first-day-of-current-year",
                          "--delta", "0")

    def test_what_is_no_date_is_a_data_error(self):
        for date in ["", "tomorrow", "2024-02-30", "2024-3-1", "2024-03-12T25:00",
                     "2024-03-12T02:30:15+24:00", "2024-03-12T02:30:15+9:00",
                     "2024-03-12T02:30:15-00:00"]:
            self.assert_fails(65, "is no date", "period", "first-day-of-week", "--date", date)
        self.assert_fails(65, "is no date", "period", "first-day-of-week", "--date",
                          "2024-03-10T02:30", "--zone", "America/New_York")
        self.assert_fails_in_json(65, "period", "first-day-of-week", "--date", "tomorrow")
        self.assert_fails_in_json(64, "period", "first-day-of-week", "--zone", "Nowhere")
        self.assert_fails(65, "reach", "period", "first-day-of-year-with-delta", "--delta",
                          "9999999", "--date", "2024-03-12")


class ColumnsTest(ToolTest):
    REGISTRY = {"orders": {"Default Column Width": 80, "Auto-Resize Width": True,
                           "Columns": {"number": {"Minimum Column Width": 12.5, "List Order": 3}}}}
    NUMBER = {"defaultWidth": 80, "minimumWidth": 12.5, "autoresize": True, "listOrder": 3}

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.file = Path(folder.name) / "columns; ü.plist"

    def test_reads_files_of_every_form(self):
        older = (b'{ orders = { "Default Column Width" = 80; "Auto-Resize Width" = YES; Columns = {'
                 b'number = { "Minimum Column Width" = "12.5"; "List Order" = 3; }; }; }; }')
        for contents in [plistlib.dumps(self.REGISTRY, fmt=plistlib.FMT_XML),
                         plistlib.dumps(self.REGISTRY, fmt=plistlib.FMT_BINARY), older]:
            self.file.write_bytes(contents)
            self.assertEqual(self.read("columns", str(self.file), "orders", "number"), self.NUMBER)

    def test_prints_lines_for_people(self):
        self.file.write_bytes(plistlib.dumps(self.REGISTRY))
        self.assertEqual(self.done("columns", str(self.file), "orders", "number"),
                         "default width   80\nminimum width   12.5\nauto-resize     yes\n"
                         "list order      3\n")
        self.assertEqual(self.done("columns", str(self.file), "unknown", "number"),
                         "default width   0\nminimum width   0\nauto-resize     no\n"
                         "list order      0\n")

    def test_prints_no_json_of_what_is_no_number_there(self):
        for width in ["inf", "-inf", "nan"]:
            self.file.write_bytes(plistlib.dumps({"orders": {"Default Column Width":
                                                             float(width)}}))
            self.done("columns", str(self.file), "orders", "number")
            self.assert_fails_in_json(65, "columns", str(self.file), "orders", "number")

    def test_tells_what_is_wrong_with_a_file(self):
        self.assert_fails(66, "No such file", "columns", str(self.file), "orders", "number")
        self.assert_fails_in_json(66, "columns", str(self.file), "orders", "number")
        for contents in [b"bplist00 damaged", b"word", b"<plist>"]:
            self.file.write_bytes(contents)
            self.assert_fails(65, str(self.file), "columns", str(self.file), "orders", "number")
        self.assert_fails(64, "COLUMN", "columns", str(self.file), "orders")


class MachineTest(ToolTest):
    def test_prints_what_the_kernel_says(self):
        answer = self.read("machine")
        limit = int(Path("/proc/sys/net/core/wmem_max").read_text(encoding="ascii"))
        memory = int(re.search(r"MemTotal: *(\d+) kB",
                               Path("/proc/meminfo").read_text(encoding="ascii"))[1])
        self.assertEqual(answer["tcpSendSpace"], limit >> 3)
        self.assertEqual(answer["ramInMegabytes"], memory >> 10)
        self.assertTrue(answer["hardwareModel"])

    def test_prints_lines_for_people(self):
        self.assertRegex(self.done("machine"), r"^model            .+\nmemory           \d+ MiB\n"
                                               r"tcp send space   \d+ bytes\n$")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
