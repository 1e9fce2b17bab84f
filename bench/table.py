#!/usr/bin/env python3
"""Prints the table of scripts/bench from Google Benchmark's JSON results.

    table.py AIMS RESULT...

AIMS has a line for each comparison: work|our benchmark|peer's benchmark|peer|aim.
Times are medians of processor time; a comparison whose benchmarks were not run is
left out, one of which only half is there is an error.
"""
import json
import sys


def medians(paths):
    times, sizes = {}, {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            for run in json.load(file)["benchmarks"]:
                if run.get("aggregate_name") != "median":
                    continue
                scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[run["time_unit"]]
                times[run["run_name"]] = run["cpu_time"] * scale
                if "stream" in run:
                    sizes[run["run_name"]] = run["stream"]
    return times, sizes


def shown(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.2f} {unit}"
    return f"{nanoseconds:.1f} ns"


def main():
    times, sizes = medians(sys.argv[2:])
    print("| Work | Ours | Peer | Peer's | Ratio | Aim | |")
    print("|---|---|---|---|---|---|---|")
    failures = 0
    with open(sys.argv[1], encoding="utf-8") as aims:
        for line in aims:
            if line.startswith("#") or not line.strip():
                continue
            work, ours, theirs, peer, aim = line.strip().split("|")
            if ours not in times and theirs not in times:
                continue
            if ours not in times or theirs not in times:
                print(f"no result for {ours if ours not in times else theirs}", file=sys.stderr)
                failures += 1
                continue
            ratio = times[ours] / times[theirs]
            verdict = "" if aim == "-" else "met" if ratio <= float(aim) else "missed"
            print(f"| {work} | {shown(times[ours])} | {peer} | {shown(times[theirs])} "
                  f"| {ratio:.2f} | {'' if aim == '-' else '≤ ' + aim} | {verdict} |")
            if ours in sizes:
                print(f"| {work}, bytes of stream | {sizes[ours]:.0f} | {peer} "
                      f"| {sizes[theirs]:.0f} | {sizes[ours] / sizes[theirs]:.3f} | ≤ 1.03 "
                      f"| {'met' if sizes[ours] <= 1.03 * sizes[theirs] else 'missed'} |")
    return 1 if failures else 0


sys.exit(main())
