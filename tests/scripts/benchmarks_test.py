#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails if a benchmark belongs to no job, a job has no benchmark of ours, or a benchmark fails, as it
does when the contenders come to different results. Runs each as briefly as it can; how fast it is
does not matter here.

usage: benchmarks_test.py BUILD-FOLDER
"""

import json
import subprocess
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "benchmarks"))
import report  # noqa: E402

# Hundreds of processes; whether they come to the right text, they are asked once below.
PROCESSES = "start a process"
PROGRAMS = ("MoneyTextOfOurs", "MoneyTextOfICU", "EmptyProgram")


def names_of(program):
    command = [program, "--benchmark_list_tests"]
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout.splitlines()


def failures_of(program):
    with tempfile.NamedTemporaryFile(suffix=".json") as file:
        subprocess.run([program, f"--benchmark_filter=-{PROCESSES}", "--benchmark_min_time=0",
                        f"--benchmark_out={file.name}", "--benchmark_out_format=json"],
                       check=True, capture_output=True)
        text = Path(file.name).read_text(encoding="utf-8")
    runs = json.loads(text)["benchmarks"] if text else []
    return [f"{run['name']}: {run['error_message']}" for run in runs if run.get("error_occurred")]


def main():
    build = Path(sys.argv[1])
    folder = build / "benchmarks"
    programs = [folder / name for name in (build / "benchmarks.txt").read_text().split()]
    names = [name for program in programs for name in names_of(program)]
    problems = report.problems_of(names, report.load_jobs())
    for program in programs:
        problems += failures_of(program)
    problems += [f"{program} fails" for program in PROGRAMS
                 if subprocess.run([folder / program], check=False).returncode != 0]
    print("\n".join([*problems, f"{len(names)} benchmarks"]))
    return 1 if problems or not names else 0


if __name__ == "__main__":
    sys.exit(main())
