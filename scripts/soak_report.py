#!/usr/bin/env python3
"""Adds up what the parts of the loops counted: soak_report.py FOLDER"""

import datetime
import pathlib
import re
import subprocess
import sys

COUNTS = re.compile(r"^loop (\S+): (.*)$", re.MULTILINE)


def counts_of(path):
    """The loop's name and its counts, from the last such line; None when it never came to it."""
    found = COUNTS.findall(path.read_text(errors="replace"))
    if not found:
        return None
    name, counts = found[-1]
    return name, {key: int(value) for key, value in (word.split("=") for word in counts.split())}


def main(folder):
    sums, parts, failed = {}, {}, {}
    for path in sorted(pathlib.Path(folder).glob("*-of-*.*")):
        loop, _, part = path.stem.rpartition(".")
        done = path.suffix == ".done"
        parts.setdefault(loop, [0, int(part.rpartition("-")[2])])[0] += done
        failed[loop] = failed.get(loop, 0) + (path.suffix == ".failed")
        counted = counts_of(path)
        total = sums.setdefault(loop, {})
        for key, value in counted[1].items() if counted else ():
            total[key] = total.get(key, 0) + value
    commit = subprocess.run(
        ["git", "rev-parse", "--short", "HEAD"], capture_output=True, text=True, check=False
    ).stdout.strip()
    print(f"Long run of {datetime.date.today()}, commit {commit}")
    for loop, total in sums.items():
        counts = "  ".join(f"{key} {value:,}" for key, value in total.items())
        print(f"{loop:<14} parts {parts[loop][0]}/{parts[loop][1]}, failed {failed[loop]}:  {counts}")


if __name__ == "__main__":
    main(sys.argv[1])
