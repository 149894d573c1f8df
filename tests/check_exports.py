#!/usr/bin/env python3
"""Compares what the shared library exports with exports.txt: a name there is one that programs may use.

    check_exports.py LIBRARY            tells what came and what went
    check_exports.py LIBRARY --record   writes exports.txt anew
"""

import pathlib
import re
import subprocess
import sys

LIST = pathlib.Path(__file__).with_name("exports.txt")

# What headers write for what the compiler spells out.
SPELLINGS = [
    ("std::basic_string_view<char, std::char_traits<char> >", "std::string_view"),
    ("std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >", "std::string"),
    ("[abi:cxx11]", ""),
]


def exports(library):
    nm = subprocess.run(["nm", "-D", "--defined-only", "--demangle", library], check=True, capture_output=True, text=True)
    names = set(re.findall(r"^[0-9a-f]+ \w (.+)$", nm.stdout, re.MULTILINE))
    for long, short in SPELLINGS:
        names = {name.replace(long, short) for name in names}
    # Both go with "typeinfo for X"; whether the table of an interface without code is there at all is up to the optimizer.
    return {name for name in names if not name.startswith(("typeinfo name for ", "vtable for "))}


def main(library, record=False):
    found = exports(library)
    if record:
        LIST.write_text("".join(f"{name}\n" for name in sorted(found)))
    listed = set(LIST.read_text().splitlines())
    for name in sorted(found - listed):
        print(f"exported, but not in {LIST.name}: {name}")
    for name in sorted(listed - found):
        print(f"in {LIST.name}, but not exported: {name}")
    return 0 if found == listed else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2:] == ["--record"]))
