#!/usr/bin/env python3
"""The n-th allocation of a command fails; once, or so do all that follow.

    failing_memory.py KVDM FAILING_MEMORY LIBRARY_HOST [--long] [--part K/N] [--case CASE]

A case is COMMAND:WAY:N, such as "area create:on:1200"; --case repeats one and prints what the
command said. What must hold is what must hold when a system call fails.
"""

import argparse
import os
import pathlib
import sys

from judge import Judge
from world import Counts, Outcome, Reference, World

STEP = 97  # of the allocations, in the short form
COMMANDS = ["area create", "area rename", "analysis create", "param set", "metadata import"]
WAYS = {"once": "", "on": " on"}


class MemoryWorld(World):
    """Disturbs a program by a library that is loaded before its own."""

    def disturbed(self, words, *options):
        pathlib.Path(self.report).unlink(missing_ok=True)
        plain = self.environment
        self.environment = {**plain, "LD_PRELOAD": self.disturb, "KVDM_MEMORY": "".join(options) or "0",
                            "KVDM_MEMORY_REPORT": self.report}
        try:
            outcome = self.run(words)
        finally:
            self.environment = plain
        if outcome.status < -1:
            return Outcome(128 - outcome.status, outcome.out, outcome.err)
        if os.path.exists(self.report):
            calls, disturbed, outcome.name = pathlib.Path(self.report).read_text().split()
            outcome.calls, outcome.disturbed = int(calls), int(disturbed)
        return outcome


def run(world, reference, way, n, counts, prints=False):
    world.restore()
    outcome = world.disturbed(reference.words, str(n), WAYS[way])
    faults = Judge(world, reference, world.state(), outcome).all(cleans_up=False)
    if outcome.status != 0 and not outcome.err:
        faults.append(("wrong", f"status {outcome.status} without a word"))
    counts.add(f"{reference.name}:{way}:{n}", faults)
    if prints:
        print(f"status {outcome.status}, failed {outcome.disturbed} of {outcome.calls}")
        print(outcome.out + outcome.err)


def cases_of(reference, index, is_long):
    """All cases of a command; in the short form one way for each n, and the ways take turns."""
    allocations = reference.outcome.calls
    if is_long:
        return [(way, n) for n in range(1, allocations + 1) for way in WAYS]
    ways = list(WAYS)
    return [(ways[(n // STEP + index) % 2], n) for n in range(1 + 7 * index, allocations + 1, STEP)]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("programs", nargs=3)
    parser.add_argument("--long", action="store_true")
    parser.add_argument("--part", default="1/1")
    parser.add_argument("--case")
    arguments = parser.parse_args()
    part, parts = map(int, arguments.part.split("/"))
    counts = Counts("failing_memory")
    with MemoryWorld(*arguments.programs) as world:
        if arguments.case:
            name, way, n = arguments.case.split(":")
            run(world, Reference(world, name), way, int(n), counts, prints=True)
            return counts.end()
        number = 0
        for index, name in enumerate(COMMANDS):
            reference = Reference(world, name)
            for way, n in cases_of(reference, index, arguments.long):
                number += 1
                if number % parts == part - 1:
                    run(world, reference, way, n, counts)
    return counts.end()


if __name__ == "__main__":
    sys.exit(main())
