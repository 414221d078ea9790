#!/usr/bin/env python3
"""Prints one table from the benchmarks' JSON files: table.py FILE...

Each benchmark runs several times. A line holds the medians of its runs, and the lowest and highest ratio.
"""

import json
import statistics
import sys

HEADINGS = ["benchmark", "time", "compared with", "its time", "ratio", "lowest to highest", "at most", "MB/s", "allocations"]


def duration(nanoseconds):
    """Nanoseconds with three digits and the unit that fits."""
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def read_runs(paths):
    """The runs of each benchmark, by name, in the order of the files. Ends the program where one has failed."""
    runs = {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            for run in json.load(file)["benchmarks"]:
                name = run["run_name"].split("/iterations:")[0]
                if run.get("error_occurred"):
                    sys.exit(f"{name} failed: {run['error_message']}")
                if run["run_type"] == "iteration":
                    runs.setdefault(name, []).append(run)
    if not runs:
        sys.exit("no benchmark has run")
    return runs


def line(name, runs):
    """One line of the table."""
    ours, baseline, ratio = (
        statistics.median(run[counter] for run in runs) for counter in ("ours_ns", "baseline_ns", "ratio")
    )
    ratios = [run["ratio"] for run in runs]
    wanted = runs[0].get("at_most")
    size = runs[0].get("bytes")
    allocations = runs[0].get("allocations")
    return [
        name,
        duration(ours),
        runs[0]["label"],
        duration(baseline),
        f"{ratio:.3g}",
        f"{min(ratios):.3g} to {max(ratios):.3g}",
        "" if wanted is None else f"{wanted:.3g}" + (" (missed)" if ratio > wanted else ""),
        "" if size is None else f"{size / ours * 1e3:.0f}",
        "" if allocations is None else f"{allocations:.0f}",
    ]


def main():
    """Reads the files that are named and prints the table."""
    if len(sys.argv) < 2:
        sys.exit("usage: table.py FILE...")
    rows = [HEADINGS] + [line(name, runs) for name, runs in read_runs(sys.argv[1:]).items()]
    widths = [max(len(row[column]) for row in rows) for column in range(len(HEADINGS))]
    rows.insert(1, ["-" * width for width in widths])
    for row in rows:
        print("| " + " | ".join(cell.ljust(width) for cell, width in zip(row, widths)) + " |")


main()
