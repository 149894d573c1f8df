"""Checks that includes lead one way: no file includes, through others, something that includes it."""

import pathlib
import re
import sys

INCLUDE = re.compile(r'^#include "([^"]+)"', re.MULTILINE)


def includes(path):
    found = INCLUDE.findall(pathlib.Path(path).read_text(encoding="utf-8"))
    return [name for name in found if pathlib.Path(name).is_file()]


def find_loop(graph):
    state = {}

    def visit(node, trail):
        state[node] = "open"
        for target in graph.get(node, []):
            if state.get(target) == "open":
                return trail[trail.index(target):] + [target] if target in trail else [node, target]
            if target not in state:
                loop = visit(target, trail + [target])
                if loop:
                    return loop
        state[node] = "done"
        return None

    for start in graph:
        if start not in state:
            loop = visit(start, [start])
            if loop:
                return loop
    return None


def main():
    loop = find_loop({path: includes(path) for path in sys.argv[1:]})
    if loop:
        print("check: these files include each other in a loop: " + " -> ".join(loop), file=sys.stderr)
        return 1
    return 0


sys.exit(main())
