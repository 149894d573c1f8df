#!/usr/bin/env python3
"""Commands are killed: at each of their calls, and six at a time at random calls.

    kills.py KVDM DISTURB LIBRARY_HOST [--long] [--part K/N] [--case CASE]

A case is COMMAND:KIND:N, the N-th call of all or of the changing ones, such as
"area rename:changing:12", or round:SEED. After a kill each store is what it was before or what it
becomes, what is listed has its files, and the next command runs. What was reported done is there.
"""

import os
import pathlib
import random
import re
import sys
import threading

from judge import Judge
from world import (CATALOGUE, COMMANDS, DATA, LITTER, PROJECT, Counts, Reference, World,
                   arguments_of, next_commands)

STEP = 3  # of the changing calls, in the short form
WORKERS = 6
OPERATIONS = 10  # of a worker in a round
ROUNDS = {False: 3, True: 300}  # of about 36 kills each
CALLS = 450  # about as many as a command makes
KILLED = 128 + 9


def kill_once(world, reference, kind, n, counts):
    world.restore()
    outcome = world.disturbed(reference.words, "--count", kind, "--kill", "--at", str(n))
    judge = Judge(world, reference, world.state(), outcome)
    if outcome.status != KILLED and outcome.status != 0:
        judge.fault("crashed", f"status {outcome.status}: {outcome.err}")
    counts.add(f"{reference.name}:{kind}:{n}", judge.aftermath())


def kills_of(world, reference, is_long):
    changing = reference.calls(world, "changing")
    if is_long:
        return [("changing", n) for n in range(1, changing + 1)] + [
            ("all", n) for n in range(1, reference.outcome.calls + 1)]
    return [("changing", n) for n in range(1, changing + 1, STEP)]


class Worker(threading.Thread):
    """Creates and deletes items of its own, and knows of each whether it must be there."""

    THERE, GONE, EITHER = "there", "gone", "either"

    def __init__(self, world, seed, number):
        super().__init__()
        self.world, self.number = world, number
        self.random = random.Random(seed * WORKERS + number)
        self.items = {}  # (kind, name): whether it is there
        self.kills, self.faults = 0, []

    def run(self):
        for step in range(OPERATIONS):
            there = [item for item, state in self.items.items() if state == self.THERE]
            if there and self.random.random() < 0.4:
                self.operate(self.random.choice(there), "delete", self.GONE)
            else:
                kind = self.random.choice(["area", "analysis", "store"])
                self.operate((kind, f"{kind}{self.number}x{step}"), "create", self.THERE)

    def operate(self, item, verb, becomes):
        kind, name = item
        words = [self.world.kvdm, kind, verb, name, *(["--yes"] if verb == "delete" else [])]
        at = self.random.randint(1, CALLS) if self.random.random() < 0.7 else 0
        outcome = self.world.disturbed(words, "--kill", "--at", str(at))
        if outcome.status == 0:
            self.items[item] = becomes
            if kind == "area" and becomes == self.THERE:
                self.area_file(name).write_text(name)
        elif outcome.status == KILLED and at != 0:
            self.kills += 1
            self.items[item] = self.EITHER
        else:
            self.items.setdefault(item, self.GONE)
            kind = "wrong" if 0 < outcome.status < 128 else "crashed"
            self.faults.append((kind, f"{words[1:]} ends with {outcome.status}: {outcome.err}"))

    def area_file(self, name):
        return pathlib.Path(self.world.root, DATA, "StudyAreas", name, "map.txt")

    def check(self, state):
        """Compares the stores with what is known."""
        for (kind, name), known in self.items.items():
            store = state.stores[CATALOGUE if kind == "area" else PROJECT]
            listed = re.search(rf'NAME=\\?"_{name}_\\?"', store) is not None
            if listed != (known == self.THERE) and known != self.EITHER:
                self.faults.append(("lost", f"{kind} {name} should be {known}"))
            if kind == "area" and known == self.THERE and not self.area_file(name).exists():
                self.faults.append(("lost", f"the file of {name} is gone"))


def round_of_kills(world, seed, counts):
    world.restore()
    workers = [Worker(world, seed, number) for number in range(WORKERS)]
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    _, faults = next_commands(world)
    state = world.state()
    for worker in workers:
        worker.check(state)
        faults += worker.faults
    for name in "North", "South":
        if f'NAME="_{name}_"' not in state.stores[CATALOGUE]:
            faults.append(("lost", f"{name} is not listed"))
    missing = [path for path, content in world.files.items()
               if isinstance(content, bytes) and not LITTER.search(path)
               and not os.path.exists(world.root + path)]
    if missing:
        faults.append(("lost", f"{missing} are gone"))
    counts.add(f"round:{seed}", faults, sum(worker.kills for worker in workers))


def run_case(world, case, counts):
    words = case.split(":")
    if words[0] == "round":
        round_of_kills(world, int(words[1]), counts)
    else:
        kill_once(world, Reference(world, words[0]), words[1], int(words[2]), counts)


def main():
    arguments = arguments_of("kills")
    counts = Counts("kills")
    with World(*arguments.programs) as world:
        if arguments.case:
            run_case(world, arguments.case, counts)
            return counts.end()
        number = 0
        for name in COMMANDS:
            reference = Reference(world, name)
            for kind, n in kills_of(world, reference, arguments.long):
                number += 1
                if number % arguments.parts == arguments.part - 1:
                    kill_once(world, reference, kind, n, counts)
        for seed in range(arguments.part, ROUNDS[arguments.long] + 1, arguments.parts):
            round_of_kills(world, seed, counts)
    return counts.end()


if __name__ == "__main__":
    sys.exit(main())
