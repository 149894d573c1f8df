#!/usr/bin/env python3
"""Random command lines, made from kvdm's own tree of commands.

    random_commands.py KVDM [--long] [--part K/N]

Each ends with a documented status, prints one JSON object when asked for it, and touches nothing
outside. What made or deleted an item has saved that, what was refused has changed nothing, and what
the project holds then can always be read.
"""

import argparse
import random
import re
import sys

from doors import Place, part_of
from hostile_names import ODD, PLAIN, SEED

SHORT, LONG = 200, 20_000
# An option takes whatever follows: as a value "--json" asks for nothing. Commands write files where
# they are told, which is not to be the root.
WORDS = [word for word in PLAIN + ODD if word not in ("--json", "/")] + [
    "Sales", "Plain", "radius", "yes", "no", "store", "customer", "input.json"]


def commands(place, path=()):
    """All commands below a path, each with its options, as their help tells."""
    text = place.run(*path, "--help").out
    found = re.search(r"^Subcommands:\n((?:  .+\n)+)", text, re.MULTILINE)
    options = re.findall(r"^  (?:-\w,)?(--[\w-]+)( TEXT| FILE)?", text, re.MULTILINE)
    places = re.findall(r"^  ([A-Z]{2,})\b", text, re.MULTILINE)
    if not found:
        return [(path, places, options)]
    names = re.findall(r"^  (\w+)", found.group(1), re.MULTILINE)
    return [command for name in names for command in commands(place, (*path, name))]


def line(source, tree):
    """One command line; every tenth is made of anything."""
    path, places, options = source.choice(tree)
    words = list(path)
    # Projects and archives are made where the command line says, which is not to be outside.
    texts = PLAIN if path[0] == "init" or path[-1] in ("pack", "unpack") else WORDS
    if source.random() < 0.1:
        source.shuffle(words)
        words = words[: source.randint(0, len(words))]
    if source.random() < 0.6:
        words.append("--json")
    for _ in range(len(places) if source.random() < 0.8 else source.randint(0, 4)):
        words.append(source.choice(texts))
    for option, value in options:
        if source.random() < 0.3 and option != "--help":
            words += [option] + ([source.choice(texts)] if value else [])
    if "delete" in path:
        words.append("--yes")
    return words


def run(place, words):
    """Runs a command; compares what is stored before and after, where its answer says which."""
    makes = len(words) > 1 and any(word in ("create", "delete") for word in words[1:3])
    if not makes or "--help" in words or "--dry-run" in words:
        place.run(*words)
        return
    before = place.project(), place.run("area", "list", "--all", "--json").out
    answer = place.run(*words)
    same = (place.project(), place.run("area", "list", "--all", "--json").out) == before
    place.require(answer.status != 0 or not same, "lost", f"done, and nothing is saved: {answer}")
    place.require(answer.status not in (2, 3, 4, 5) or same, "lost", f"refused, and saved: {answer}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("kvdm")
    parser.add_argument("--long", action="store_true")
    parser.add_argument("--part", default="1/1")
    asked = parser.parse_args()
    print(f"seed {SEED}")
    with Place(asked.kvdm, "random_commands") as place:
        (place.root / "work/P/input.json").write_text('{"Comments": "c", "radius": "5"}')
        place.run("analysis", "create", "Sales")
        # All further commands look for the project where it is.
        tree = [command for command in commands(place) if command[0] != ("project", "move")]
        place.require(len(tree) > 60, "wrong", f"only {len(tree)} commands were found")
        for number in part_of(range(LONG if asked.long else SHORT), asked.part):
            words = line(random.Random(f"{SEED} {number}"), tree)
            place.counts["tried"] += 1
            run(place, words)
            if number % 20 == 0:
                status = place.run("status", "--json")
                place.require(status.status == 0, "lost", f"after {words}: {status}")
        return place.end()


if __name__ == "__main__":
    sys.exit(main())
