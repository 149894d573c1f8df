#!/usr/bin/env python3
"""Turns the manual page that `kvdm generate man` prints, on standard input, into Markdown for the site."""

import re
import sys

CHARACTERS = {r"\-": "-", r"\(aq": "'", r"\(ti": "~", r"\&": "", r"\e": "\\"}
FONTS = {"B": "**", "I": "*", "R": ""}


def plain(text):
    return re.sub(r"\\-|\\\((?:aq|ti)|\\&|\\e", lambda code: CHARACTERS[code.group()], text)


def formatted(line):
    """The words of a line, bold or slanted; what Markdown would take for a sign is escaped."""
    line = re.sub(r"^\.IR (\S+) ", r"\\fI\1\\fR", re.sub(r"^\.([BI]) ", r"\\f\1", line))
    fonts_and_words = ["R", *re.split(r"\\f([BIR])", line)]
    return "".join(
        FONTS[font] + re.sub(r"([\\`*_<>\[\]|])", r"\\\1", plain(words)) + FONTS[font]
        for font, words in zip(fonts_and_words[::2], fonts_and_words[1::2])
        if words
    )


def markdown(lines):
    """The lines of headings, examples, terms with what they mean, and text."""
    in_example = False
    for line in lines:
        macro, _, rest = line.partition(" ")
        if macro in (".EX", ".EE"):
            in_example = macro == ".EX"
            yield "```sh" if in_example else "```"
        elif in_example:
            yield plain(line)
        elif macro == ".SH":
            yield f"\n## {rest.capitalize()}\n"
        elif macro == ".SS":
            yield f"\n### {formatted(rest)}\n"
        elif macro == ".TP":
            yield f"\n{formatted(next(lines))}\n: {formatted(next(lines))}"
        elif macro == ".PP":
            yield ""
        elif macro != ".TH":
            yield formatted(line)


print("\n".join(["# Every command", *markdown(iter(sys.stdin.read().splitlines()))]))
