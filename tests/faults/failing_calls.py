#!/usr/bin/env python3
"""The n-th system call fails, or moves half of its bytes; once, or so do all that follow.

    failing_calls.py KVDM DISTURB LIBRARY_HOST [--long] [--part K/N] [--case CASE]

A case is COMMAND:WAY:N, such as "area create:EIO on:120"; --case repeats one and prints what the
command said. A command that ends with 0 must have done what it does undisturbed, and say so;
else each store must be what it was before or what it becomes, with all files of what is listed,
and what it says must be true.
"""

import errno
import sys

from judge import Judge
from world import COMMANDS, Counts, Reference, World, arguments_of

STEP = 11  # of the calls, in the short form
ERRORS = ["ENOSPC", "EIO", "EACCES", "EROFS", "EMFILE"]

# The ways that a call can fail, with the options of disturb: only once, and also those after it. A
# call that is always interrupted would be tried again for ever.
ONCE = {error: ["--fail", str(getattr(errno, error))] for error in [*ERRORS, "EINTR"]}
ON = {f"{error} on": ["--fail", str(getattr(errno, error)), "--for", "0"] for error in ERRORS}
ON["EINTR 5"] = ["--fail", str(errno.EINTR), "--for", "5"]
HALVES = {"half": ["--halve"], "half on": ["--halve", "--for", "0"]}

# What these do is nearly what another command does: in the long form too, the ways take turns.
LIKE_OTHERS = ["area set", "area comment", "area prop", "analysis rename", "analysis set",
               "store rename", "store delete", "customer create", "customer delete", "data rename",
               "properties export"]


def options(way, n):
    kind = "transfers" if way in HALVES else "all"
    return ["--count", kind, "--no-pause", "--at", str(n), *{**ONCE, **ON, **HALVES}[way]]


def in_turn(ways, n, index):
    return list(ways)[(n + index) % len(ways)]


def cases_of(world, reference, index, is_long):
    """Cases (way, n) of the command with this index."""
    calls, transfers = reference.outcome.calls, reference.calls(world, "transfers")
    if not is_long:
        first = 1 + index % STEP
        return [(in_turn({**ONCE, **ON}, n // STEP, index), n) for n in range(first, calls + 1, STEP)] + [
            (in_turn(HALVES, n // STEP, index), n) for n in range(first, transfers + 1, STEP)]
    cases = []
    for n in range(1, calls + 1):
        cases += [(way, n) for way in ONCE] if reference.name not in LIKE_OTHERS else [
            (in_turn(ONCE, n, index), n)]
        cases.append((in_turn(ON, n, index), n))
    return cases + [(way, n) for n in range(1, transfers + 1) for way in HALVES]


def run(world, reference, way, n, counts, prints=False):
    world.restore()
    outcome = world.disturbed(reference.words, *options(way, n))
    faults = Judge(world, reference, world.state(), outcome).all(cleans_up=way not in ON)
    counts.add(f"{reference.name}:{way}:{n}", [(kind, f"{outcome.name}: {text}") for kind, text in faults])
    if prints:
        print(f"status {outcome.status}, disturbed {outcome.disturbed} {outcome.name}")
        print(outcome.out + outcome.err)


def main():
    arguments = arguments_of("failing_calls")
    counts = Counts("failing_calls")
    with World(*arguments.programs) as world:
        if arguments.case:
            name, way, n = arguments.case.split(":")
            run(world, Reference(world, name), way, int(n), counts, prints=True)
            return counts.end()
        number = 0
        for index, name in enumerate(COMMANDS):
            reference = Reference(world, name)
            for way, n in cases_of(world, reference, index, arguments.long):
                number += 1
                if number % arguments.parts == arguments.part - 1:
                    run(world, reference, way, n, counts)
    return counts.end()


if __name__ == "__main__":
    sys.exit(main())
