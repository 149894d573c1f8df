#!/usr/bin/env python3
"""The names with which the loops try all that takes one.

    hostile_names.py FILE    writes the first 1,000, one a line, their bytes in hexadecimal
"""

import itertools
import os
import pathlib
import random
import sys

COUNT = 1000
SEED = 20260815

PLAIN = ["North", "Größe 大", "a b", "x" * 50, "O'Neill", "a&b(c)",
         "100%", "-x", "{x}", "a.b.c", "ends.", "tab\tbed", "é" * 60, "e\u0301", "\U0001F600 shop",
         "\u202eright", "a\u200bb", "\u009b31m", "CON", "nul.txt", ".hidden", "~", "$HOME", "`x`", "[1]",
         "_x_", "__", "a;b", "#1", "@x", "=1+1", "\ufffd", "\u00a0", "İstanbul", "ß", "ﬁ", "\ufeffx",
         "\u2028line", "\u0085next", "\U0010ffff", "x ", " x", "Default", "{00000000-0000-0000-0000-000000000000}"]
ODD = ["", "x\uffffy", 'a"b', "x" * 241, "\ufffe", "\x01", b"\xff", "../../outside", "a/b", "x" * 255,
       ".", "..", "...", " ", " . ", "/", "\\", "..\\..\\outside", "a\\b", "C:", "C:\\x",
       "\\\\server\\share", "\\\\?\\C:\\x", "a:b", "a*", "a?", '"', "a<b", "a>b", "a|b", "a\nb", "a\rb",
       "x\x1by", "\x7f", "x" * 256, "ü" * 121, "ü" * 250, "x" * 5000, b"a\xc3", b"\xed\xa0\x80", "'",
       "a'\"b", "]", "['x']", "/*[@NAME]", "-", "--", "--json", "-p", "--yes"]
RANGES = [(0x20, 0x7e), (0xa0, 0x24f), (0x300, 0x36f), (0x590, 0x6ff), (0x2000, 0x206f), (0x4e00, 0x4e80),
          (0xe000, 0xe010), (0xfff0, 0xffff), (0x1f600, 0x1f64f), (0x01, 0x1f)]


def names(count=COUNT):
    """A list of different names of every kind; the first are the same for every count."""
    chosen = []
    for pair in itertools.zip_longest(ODD, PLAIN):
        chosen += [name for name in pair if name is not None]
    source = random.Random(SEED)
    while len(chosen) < count:
        name = "".join(chr(source.randint(*source.choice(RANGES))) for _ in range(source.randint(1, 12)))
        if name not in chosen:
            chosen.append(name)
    return chosen[:count]


if __name__ == "__main__":
    pathlib.Path(sys.argv[1]).write_text(
        "".join(os.fsencode(name).hex() + "\n" for name in names()))
