"""Checks that includes go down only: between the folders of the product by the table of layers, and
between files anywhere without a loop.

    check_includes.py FILE...
"""

import pathlib
import re
import sys

# The floors of the product, top to bottom. A file includes its own folder and floors below it.
LAYERS = [
    ["host", "com"],
    ["safety"],
    ["datamanager"],
    ["studyarea"],
    ["collections"],
    ["items"],
    ["util"],
    ["platform/posix", "platform/windows", "platform/memory"],
    ["platform/portable"],
    ["platform/xml"],
    ["platform"],
    ["include"],
]
FLOOR = {folder: floor for floor, folders in enumerate(LAYERS) for folder in folders}

# What the core leaves to the adapters and to whoever chooses them.
CORE = ["util", "items", "collections", "studyarea", "datamanager"]
# What stands on the public line alone, but for its own adapters.
OUTSIDE = ["safety"]
SYSTEMS = re.compile(r"(kvdm/)?platform/(posix|windows|memory)/|(windows|unistd|fcntl)\.h$|sys/")
SWITCH = re.compile(r"^ *# *if.*_WIN32", re.MULTILINE)

INCLUDE = re.compile(r'^ *# *include ([<"])([^">]+)[">]', re.MULTILINE)


def included_file(name):
    """The file of the project that an include names, or None."""
    path = "include/" + name if name.startswith("kvdm/") else name
    return path if pathlib.Path(path).is_file() else None


def layer(path):
    """The folder of LAYERS that holds a file; None for tests, fuzzers, examples and benchmarks."""
    parts = path.split("/")
    return next((f for f in ("/".join(parts[:2]), parts[0]) if f in FLOOR and len(parts) > 1), None)


def wrong_arrow(source, target):
    here, there = layer(source), layer(target)
    if here is None or here == there:
        return None
    if there is None:
        return f"{here}/ is the product, and includes nothing of {target.split('/')[0]}/"
    if FLOOR[there] == FLOOR[here]:
        return f"{here}/ and {there}/ stand side by side, and neither includes the other"
    if FLOOR[there] < FLOOR[here]:
        return f"{there}/ stands above {here}/; includes go down only"
    return None


def file_problems(source, text, included):
    for quote, name in included:
        if source.startswith("include/") and (quote == '"' or "/" in name and not name.startswith("kvdm/")):
            yield f"includes {name}: public headers include <kvdm/...> and the standard library alone"
            continue
        if quote == '"' and name.startswith(("kvdm/", "include/")):
            yield f"includes {name}: public headers are included as <kvdm/...>"
        if layer(source) in CORE and SYSTEMS.match(name):
            yield f"includes {name}: the core knows no operating system"
        target = included_file(name)
        if layer(source) in OUTSIDE and source.count("/") == 1 and target and layer(target) not in (layer(source), "include"):
            yield f"includes {name}: {layer(source)}/ stands on the public headers alone"
        if target and (reason := wrong_arrow(source, target)):
            yield f"includes {target}: {reason}"
    if layer(source) in CORE and SWITCH.search(text):
        yield "asks for _WIN32: the core knows no operating system"


def find_loop(graph):
    state = {}

    def visit(node, trail):
        state[node] = "open"
        for target in graph.get(node, []):
            if state.get(target) == "open":
                return trail[trail.index(target):] + [target]
            if target not in state and (loop := visit(target, trail + [target])):
                return loop
        state[node] = "done"
        return None

    return next((loop for start in graph if start not in state and (loop := visit(start, [start]))), None)


def main(files):
    problems, graph = [], {}
    for source in files:
        text = pathlib.Path(source).read_text(encoding="utf-8")
        included = INCLUDE.findall(text)
        problems += [f"{source} {problem}" for problem in file_problems(source, text, included)]
        graph[source] = [target for _, name in included if (target := included_file(name))]
    if loop := find_loop(graph):
        problems.append("these files include each other in a loop: " + " -> ".join(loop))
    for problem in problems:
        print(f"check: {problem}", file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
