# SPDX-License-Identifier: Apache-2.0
"""Makes one table of what the benchmark programs measured.

A benchmark is named JOB/ROLE or JOB/ROLE/ARGUMENT, where ROLE is "ours", "limit: WHAT" or
"peer: WHO"; its job is JOB or JOB/ARGUMENT. jobs.json has the jobs in the order of the table, each
with its title, the peers that it expects, and the ratios that it should not exceed.
"""

import json
import re
import statistics
from pathlib import Path

JOBS = Path(__file__).with_name("jobs.json")
SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}
ROLE = re.compile(r"(ours|(limit|peer): (.+))")
# What Google Benchmark appends to a name, which is no argument of ours.
SETTING = re.compile(r"/(iterations:\d+|repeats:\d+|real_time|manual_time)(?=/|$)")
HEADER = ["Job", "Ours", "Limit", "Best peer", "Of limit", "Of best peer"]


def load_jobs(path=JOBS):
    return json.loads(path.read_text(encoding="utf-8"))


def split_name(name):
    """(job, role, who) of a benchmark's name, or None of a name that is made otherwise."""
    parts = SETTING.sub("", name).split("/")
    role = ROLE.fullmatch(parts[1]) if len(parts) > 1 else None
    if not role:
        return None
    return "/".join([parts[0], *parts[2:]]), role.group(2) or "ours", role.group(3) or ""


def filter_of(names):
    """The extended regular expression of exactly these names; of it, only these have a meaning."""
    return "^(" + "|".join(re.sub(r"[][.^$*+?(){}|\\]", r"\\\g<0>", name) for name in names) + ")$"


def problems_of(names, jobs):
    """What is wrong with the names of all benchmarks that are built; missing peers are not."""
    by_name = {job["name"]: job for job in jobs}
    problems, with_ours = [], set()
    for name in names:
        job, role, who = split_name(name) or (None, None, None)
        if job not in by_name:
            problems.append(f"{name} belongs to no job")
        elif role == "peer" and who not in by_name[job].get("peers", []):
            problems.append(f"{name} is a peer that its job does not expect")
        elif role == "ours":
            with_ours.add(job)
    problems += [f"{name} has no benchmark of ours" for name in by_name if name not in with_ours]
    return problems


def seconds_of(run):
    """The time of one item, or of one iteration where no items are counted."""
    if run.get("items_per_second"):
        return 1 / run["items_per_second"]
    return run["real_time"] * SECONDS[run["time_unit"]]


def results_of(runs):
    """Results by (job, role, who) from the "benchmarks" of Google Benchmark's JSON."""
    results = {}
    for run in runs:
        key = split_name(run["run_name"])
        if key is None or run.get("run_type") != "iteration":
            continue
        result = results.setdefault(key, {"role": key[1], "who": key[2], "repetitions": []})
        if run.get("error_occurred"):
            result["error"] = run["error_message"]
        else:
            result["repetitions"].append(seconds_of(run))
    for result in results.values():
        times = result["repetitions"]
        if times:
            result["seconds"] = statistics.median(times)
            result["deviation"] = statistics.pstdev(times) / result["seconds"]
    return results


def report_of(runs, jobs):
    """The jobs that were measured, in the order of `jobs`, with all figures and what they say."""
    results = results_of(runs)
    rows = []
    for job in jobs:
        of_job = [result for (name, _, _), result in results.items() if name == job["name"]]
        if of_job:
            rows.append(row_of(job, of_job))
    return rows


def row_of(job, results):
    measured = [result for result in results if "seconds" in result and "error" not in result]
    in_role = {role: [result for result in measured if result["role"] == role]
               for role in ("ours", "limit", "peer")}
    row = {**job, "results": results, "ratios": {}, "missed": {}}
    present = {result["who"] for result in results if result["role"] == "peer"}
    row["missing_peers"] = [peer for peer in job.get("peers", []) if peer not in present]
    row["errors"] = [f"{result['role']} {result['who']}".strip() + ": " + result["error"]
                     for result in results if "error" in result]
    for role in ("limit", "peer"):
        if not in_role[role]:
            continue
        best = min(in_role[role], key=lambda result: result["seconds"])
        row[role] = best["who"]
        if not in_role["ours"]:
            continue
        row["ratios"][role] = in_role["ours"][0]["seconds"] / best["seconds"]
        target = job.get("targets", {}).get(role)
        if target is not None and round(row["ratios"][role], 2) > target:
            row["missed"][role] = target
    return row


def duration(seconds):
    for unit, size in (("s", 1.0), ("ms", 1e-3), ("µs", 1e-6)):
        if seconds >= 0.9995 * size:
            return f"{seconds / size:#.3g}".rstrip(".") + f" {unit}"
    return f"{seconds * 1e9:#.3g}".rstrip(".") + " ns"


def cells_of(row):
    def time_of(role, who):
        found = [result for result in row["results"]
                 if (result["role"], result["who"]) == (role, who) and "seconds" in result]
        return duration(found[0]["seconds"]) if found else "–"

    def named_time_of(role):
        return f"{row[role]}: {time_of(role, row[role])}" if role in row else "–"

    def ratio_of(role):
        if role not in row["ratios"]:
            return "–"
        ratio = f"{row['ratios'][role]:.2f}"
        return f"{ratio} (over {row['missed'][role]})" if role in row["missed"] else ratio

    ours = "failed" if row["errors"] else time_of("ours", "")
    peer = named_time_of("peer")
    if row["missing_peers"]:
        peer += f" (missing: {'; '.join(row['missing_peers'])})"
    return [row["title"], ours, named_time_of("limit"), peer, ratio_of("limit"), ratio_of("peer")]


def table_of(rows, aligned=False):
    """A Markdown table; an aligned one is for eyes that see the text itself."""
    lines = [HEADER, *(cells_of(row) for row in rows)]
    widths = [max(len(line[i]) for line in lines) if aligned else 3 for i in range(len(HEADER))]
    lines.insert(1, ["-" * width for width in widths])
    return "".join("| " + " | ".join(cell.ljust(width if aligned else 0)
                                     for cell, width in zip(line, widths)) + " |\n"
                   for line in lines)


def notes_of(rows):
    """A line for each thing that the reader of the table must not overlook."""
    notes = []
    for row in rows:
        for role, target in row["missed"].items():
            notes.append(f"missed: {row['title']}: {row['ratios'][role]:.2f} of the {role}'s time, "
                         f"target {target}")
        notes += [f"missing peer: {row['title']}: {peer}" for peer in row["missing_peers"]]
        notes += [f"failed: {row['title']}: {error}" for error in row["errors"]]
    return notes


def described(context):
    """One sentence about where and when."""
    machine = context["machine"]
    commit = f"commit {context['commit']}" if context["commit"] else "unknown commit"
    sentence = (f"{context['date']}, {machine['cores']} cores of {machine['cpu']}, "
                f"{machine['system']}, {context['compiler']}, {commit}, "
                f"{'short repetitions, ' if context['quick'] else ''}"
                f"load {context['load']:.2f} at the start")
    return sentence + (", so other work went on." if context["load"] > context["quiet_load"]
                       else ".")


def put_between(text, name, block):
    """`text` with `block` instead of what stands between the two comments that have this name."""
    begin, end = f"<!-- {name}: begin -->\n", f"<!-- {name}: end -->\n"
    head, found, rest = text.partition(begin)
    _, closed, tail = rest.partition(end)
    if not found or not closed:
        raise ValueError(f"no place for {name}")
    return head + begin + "\n" + block + "\n" + end + tail
