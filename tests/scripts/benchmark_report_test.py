#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows what the report of the benchmarks makes of stored measurements."""

import json
import sys
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(HERE.parents[1] / "benchmarks"))
import report  # noqa: E402

JOBS = [
    {"name": "post", "title": "Post a block", "targets": {"limit": 1.1, "peer": 1},
     "peers": ["Fast", "Slow", "Gone"]},
    {"name": "post/cores:2", "title": "The same, two cores", "targets": {"limit": 1.1}},
    {"name": "not measured", "title": "Not measured"},
    {"name": "wait", "title": "Wait"},
    {"name": "broken", "title": "Broken", "peers": ["Slow"]},
]
TABLE = """\
| Job | Ours | Limit | Best peer | Of limit | Of best peer |
| --- | --- | --- | --- | --- | --- |
| Post a block | 12.0 ns | by hand: 10.0 ns | Fast: 24.0 ns (missing: Gone) | 1.20 (over 1.1) | 0.50 |
| The same, two cores | 1.00 µs | by hand: 2.00 µs | – | 0.50 | – |
| Wait | 1.25 ms | – | – | – | – |
| Broken | failed | – | Slow: 3.00 s | – | – |
"""
ALIGNED = """\
| Job                 | Ours    | Limit            | Best peer                     | Of limit        | Of best peer |
| ------------------- | ------- | ---------------- | ----------------------------- | --------------- | ------------ |
| Post a block        | 12.0 ns | by hand: 10.0 ns | Fast: 24.0 ns (missing: Gone) | 1.20 (over 1.1) | 0.50         |
| The same, two cores | 1.00 µs | by hand: 2.00 µs | –                             | 0.50            | –            |
| Wait                | 1.25 ms | –                | –                             | –               | –            |
| Broken              | failed  | –                | Slow: 3.00 s                  | –               | –            |
"""


def sample():
    runs = json.loads((HERE / "benchmark_sample.json").read_text(encoding="utf-8"))["benchmarks"]
    return report.report_of(runs, JOBS)


class Report(unittest.TestCase):
    maxDiff = None

    def test_makes_the_table_of_documents(self):
        self.assertEqual(report.table_of(sample()), TABLE)

    def test_makes_the_table_of_terminals(self):
        self.assertEqual(report.table_of(sample(), aligned=True), ALIGNED)

    def test_says_missed_targets_missing_peers_and_failures(self):
        self.assertEqual(report.notes_of(sample()), [
            "missed: Post a block: 1.20 of the limit's time, target 1.1",
            "missing peer: Post a block: Gone",
            "failed: Broken: ours: the results differ",
        ])

    def test_takes_the_median_of_the_repetitions_and_keeps_them(self):
        ours = sample()[0]["results"][0]
        self.assertEqual([round(seconds * 1e9, 6) for seconds in ours["repetitions"]], [12, 11, 40])
        self.assertAlmostEqual(ours["seconds"], 12e-9)
        self.assertAlmostEqual(ours["deviation"], 1.12010, places=5)

    def test_says_where_and_when(self):
        context = {"machine": {"cpu": "a processor", "cores": 2, "system": "a system"},
                   "date": "2026-11-21", "compiler": "g++ 12", "commit": "abc", "load": 0.1,
                   "quick": False, "quiet_load": 0.5}
        sentence = "2026-11-21, 2 cores of a processor, a system, g++ 12, commit abc, "
        self.assertEqual(report.described(context), sentence + "load 0.10 at the start.")
        self.assertEqual(report.described({**context, "load": 0.6}),
                         sentence + "load 0.60 at the start, so other work went on.")
        self.assertEqual(report.described({**context, "quick": True}),
                         sentence + "short repetitions, load 0.10 at the start.")
        self.assertIn(", g++ 12, unknown commit, load", report.described({**context, "commit": None}))

    def test_writes_durations_with_three_figures_and_a_fitting_unit(self):
        for seconds, text in ((4.2e-10, "0.420 ns"), (9.9e-7, "990 ns"), (9.996e-7, "1.00 µs"),
                              (0.0123, "12.3 ms"), (0.1234, "123 ms"), (61, "61.0 s")):
            with self.subTest(seconds):
                self.assertEqual(report.duration(seconds), text)


class Names(unittest.TestCase):
    def test_have_a_job_a_role_and_arguments(self):
        for name, parts in (("post/ours", ("post", "ours", "")),
                            ("post/ours/real_time", ("post", "ours", "")),
                            ("post/limit: by hand/cores:2/iterations:40/manual_time",
                             ("post/cores:2", "limit", "by hand")),
                            ("post/peer: Fast: really/1000", ("post/1000", "peer", "Fast: really")),
                            ("post", None), ("post/theirs", None)):
            with self.subTest(name):
                self.assertEqual(report.split_name(name), parts)

    def test_make_a_filter_that_finds_just_them(self):
        self.assertEqual(report.filter_of(["a b/ours", "a.b/peer: C++"]),
                         r"^(a b/ours|a\.b/peer: C\+\+)$")

    def test_without_a_job_and_jobs_without_ours_are_found(self):
        names = ["post/ours", "post/peer: Unknown", "post/cores:2/ours", "wait/limit: hand"]
        self.assertEqual(report.problems_of(names, JOBS[:2] + JOBS[3:4]), [
            "post/peer: Unknown is a peer that its job does not expect",
            "post/cores:2/ours belongs to no job",
            "post/cores:2 has no benchmark of ours",
            "wait has no benchmark of ours",
        ])


class Documents(unittest.TestCase):
    def test_get_the_table_between_their_comments(self):
        text = "a\n<!-- figures: begin -->\nold\n<!-- figures: end -->\nz\n"
        self.assertEqual(report.put_between(text, "figures", "new\n"),
                         "a\n<!-- figures: begin -->\n\nnew\n\n<!-- figures: end -->\nz\n")

    def test_without_the_comments_are_refused(self):
        with self.assertRaises(ValueError):
            report.put_between("a\n", "figures", "new\n")


if __name__ == "__main__":
    unittest.main()
