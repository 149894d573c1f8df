#!/usr/bin/env python3
"""Checks with readelf how programs and libraries are built.

    check_binaries.py --options=OPTIONS BUILD-FOLDER BINARY...

No program or library anywhere in BUILD-FOLDER looks for libraries in the current folder. Each
BINARY can be loaded anywhere, has its tables read-only before it runs, and has what OPTIONS, the
compiler's options for hardening, ask for.
"""

import argparse
import pathlib
import re
import subprocess
import sys

ENDBR64 = bytes.fromhex("f30f1efa")


def readelf(option, file):
    command = ["readelf", "-W", option, str(file)]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def is_linked(file):
    """Whether a file is an ELF program or shared library: 2 and 3 in its header."""
    if file.is_symlink() or not file.is_file():
        return False
    with open(file, "rb") as source:
        header = source.read(18)
    return header[:4] == b"\x7fELF" and int.from_bytes(header[16:18], "little") in (2, 3)


def bad_search_path(file):
    """The search path of `file` if an element of it is no absolute folder; those that start with
    $ORIGIN are."""
    for path in re.findall(r"\((?:RUNPATH|RPATH)\).*\[(.*)\]", readelf("-d", file)):
        if not all(element.startswith(("/", "$ORIGIN")) for element in path.split(":")):
            return path
    return None


def functions(file):
    """The addresses of this project's functions that other files can call or hand on."""
    rows = re.findall(
        r"^ *\d+: (\w+) +\d+ FUNC +(?:GLOBAL|WEAK) +\w+ +\d+ (\S*4kvdm\S*)",
        readelf("-s", file),
        re.MULTILINE,
    )
    return {name: int(address, 16) for address, name in rows}


def unmarked_functions(file):
    """The functions that do not begin with the mark of a place that may be jumped to."""
    segments = [
        tuple(int(number, 16) for number in row)
        for row in re.findall(r"LOAD +(\w+) (\w+) \w+ (\w+)", readelf("-l", file))
    ]
    content = pathlib.Path(file).read_bytes()

    def code(address):
        start = next(o + address - a for o, a, size in segments if a <= address < a + size)
        return content[start : start + len(ENDBR64)]

    found = functions(file)
    if not found:
        return ["there are none at all"]
    return [name for name, address in found.items() if code(address) != ENDBR64]


def lacks(file, options):
    """What a binary lacks, as sentences."""
    dynamic, segments = readelf("-d", file), readelf("-l", file)
    symbols = readelf("-s", file)
    if "Type:                              DYN" not in readelf("-h", file):
        yield "is tied to one place in memory"
    if "GNU_RELRO" not in segments or not re.search(r"\(FLAGS(_1)?\).*\b(BIND_)?NOW\b", dynamic):
        yield "can have its tables overwritten while it runs"
    if not re.search(r"GNU_STACK .* RW +0x", segments):
        yield "may run code on its stack"
    if "-fstack-protector-strong" in options and "__stack_chk_fail" not in symbols:
        yield "has no stack protector"
    if "_FORTIFY_SOURCE" in options and not re.search(r"__(mem|str|read|v?s)\w*_chk", symbols):
        yield "has no checked copies"
    if "-fcf-protection=full" in options:
        unmarked = unmarked_functions(file)
        if unmarked:
            yield f"has {len(unmarked)} functions without a mark, such as {unmarked[0]}"


def main(arguments):
    parser = argparse.ArgumentParser()
    parser.add_argument("--options", default="")
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("binaries", nargs="+", type=pathlib.Path)
    asked = parser.parse_args(arguments)
    linked = [file for file in sorted(asked.folder.rglob("*")) if is_linked(file)]
    wrong = [
        f"{file}: looks for libraries in {path!r}"
        for file in linked
        if (path := bad_search_path(file)) is not None
    ]
    for file in asked.binaries:
        wrong += [f"{file}: {sentence}" for sentence in lacks(file, asked.options)]
    missing = {file.resolve() for file in asked.binaries} - {file.resolve() for file in linked}
    wrong += [f"{file}: not in {asked.folder}" for file in missing]
    print("\n".join(wrong or [f"{len(linked)} programs and libraries, all as they should be"]))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
