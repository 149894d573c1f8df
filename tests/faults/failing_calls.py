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

from world import COMMANDS, Counts, Judge, Reference, World, arguments_of

STEP = 11  # of the calls, in the short form
ERRORS = ["ENOSPC", "EIO", "EACCES", "EROFS", "EMFILE"]

# Each way with the options of disturb. A call that is always interrupted is tried again for ever.
WAYS = {
    **{error: ["--fail", str(getattr(errno, error))] for error in ERRORS},
    **{error + " on": ["--fail", str(getattr(errno, error)), "--for", "0"] for error in ERRORS},
    "EINTR": ["--fail", str(errno.EINTR)],
    "EINTR 5": ["--fail", str(errno.EINTR), "--for", "5"],
}
HALF_WAYS = {"half": ["--halve"], "half on": ["--halve", "--for", "0"]}


def options(way, n):
    kind = "transfers" if way in HALF_WAYS else "all"
    return ["--count", kind, "--no-pause", "--at", str(n), *{**WAYS, **HALF_WAYS}[way]]


def cases_of(world, reference, index, is_long):
    """All cases of a command; in the short form one way for each n, and the ways take turns."""
    calls, transfers = reference.outcome.calls, reference.calls(world, "transfers")
    if is_long:
        return [(way, n) for n in range(1, calls + 1) for way in WAYS] + [
            (way, n) for n in range(1, transfers + 1) for way in HALF_WAYS]
    ways, halves = list(WAYS), list(HALF_WAYS)
    chosen = [(ways[(n // STEP + index) % len(ways)], n)
              for n in range(1 + index % STEP, calls + 1, STEP)]
    return chosen + [(halves[(n // STEP + index) % 2], n)
                     for n in range(1 + index % STEP, transfers + 1, STEP)]


def run(world, reference, way, n, counts, prints=False):
    world.restore()
    outcome = world.disturbed(reference.words, *options(way, n))
    faults = Judge(world, reference, world.state(), outcome).all(cleans_up="on" not in way)
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
