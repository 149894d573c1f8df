#!/usr/bin/env python3
"""Names of every kind through kvdm: create, show, list, rename, parameter, delete.

    names.py KVDM [--long] [--part K/N]

A name is refused and nothing changes, or it is found again, exactly, and deleted again.
"""

import argparse
import os
import sys

from doors import Place, part_of
from hostile_names import COUNT, names

KINDS = ["area", "analysis", "store", "customer", "data"]


def listed(place, kind):
    answer = place.run(kind, "list", "--json")
    return [item["name"] for item in getattr(answer, "json", {}).get("items", [])]


def text_of(name):
    return name if isinstance(name, str) else os.fsdecode(name)


def refused(place, before, kind, answer):
    """Whether a command was refused; then all must be as before."""
    if answer.status == 0:
        return False
    place.require(answer.status == 2, "wrong", f"refused otherwise: {answer}")
    now = (place.project(), place.folders(), listed(place, kind))
    place.require(now == before, "lost", f"refused, and something changed: {answer}")
    return True


def state(place, kind):
    return place.project(), place.folders(), listed(place, kind)


def create(place, kind, name):
    """Whether the name was taken, and is found again."""
    before = state(place, kind)
    if refused(place, before, kind, place.run(kind, "create", "--force", "--json", "--", name)):
        return False
    text = text_of(name)
    place.require(text in listed(place, kind), "lost", f"{kind} {text!r} is not listed")
    shown = place.run(kind, "show", "--json", "--", name)
    place.require(getattr(shown, "json", {}).get("name") == text, "lost", f"not shown: {shown}")
    return True


def rename(place, kind, name):
    place.run(kind, "create", "Plain")
    before = state(place, kind)
    if not refused(place, before, kind, place.run(kind, "rename", "--force", "--json", "--", "Plain", name)):
        place.require(text_of(name) in listed(place, kind), "lost", f"{kind} {name!r}: rename is lost")
        back = place.run(kind, "rename", "--", name, "Plain")
        place.require(back.status == 0, "lost", f"not found by its new name: {back}")
    place.run(kind, "delete", "--yes", "Plain")


def key(place, kind, name):
    """The name as a parameter's, or a property's, and as its value."""
    group = "prop" if kind == "area" else "param"
    place.run(kind, "create", "Keyed")
    for words in ((name, "value"), ("key", name)):
        before = state(place, kind)
        done = place.run(kind, group, "set", "--json", "--", "Keyed", *words)
        if refused(place, before, kind, done):
            continue
        got = place.run(kind, group, "get", "--json", "--", "Keyed", words[0])
        value = getattr(got, "json", {}).get("value")
        place.require(value == text_of(words[1]), "lost", f"{words}: {got}")
    place.run(kind, "delete", "--yes", "Keyed")


def delete(place, kind, name):
    gone = place.run(kind, "delete", "--yes", "--json", "--", name)
    place.require(gone.status == 0 and text_of(name) not in listed(place, kind), "lost",
                  f"not deleted: {gone}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("kvdm")
    parser.add_argument("--long", action="store_true")
    parser.add_argument("--part", default="1/1")
    asked = parser.parse_args()
    chosen = list(enumerate(names(COUNT if asked.long else 50)))
    with Place(asked.kvdm, "names") as place:
        for index, name in part_of(chosen, asked.part):
            kinds = KINDS if asked.long else [KINDS[index % len(KINDS)]]
            for kind in kinds:
                place.counts["tried"] += 1
                if create(place, kind, name):
                    delete(place, kind, name)
                rename(place, kind, name)
                key(place, kind, name)
        return place.end()


if __name__ == "__main__":
    sys.exit(main())
