#!/usr/bin/env python3
"""Runs the sessions that stand in pages for people, and compares what they print.

    run_pages.py [--update] PROGRAM PAGE...

The blocks of a page that begin with ```console are one session, with a home folder of its own for which
/home/ada stands: what a reader types after "$ ", and after "> " where a command goes on, and what comes
back. `kvdm` is PROGRAM. What differs from run to run, such as identifiers and times, is compared as in case
files, and "..." on a line of its own is any lines. A command that fails is followed by `echo $?`. --update
writes what comes back into the pages.
"""

import argparse
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

import run_cases

HOME = "/home/ada"
BLOCK = re.compile(r"(?<=^```console\n).*?(?=^```$)", re.MULTILINE | re.DOTALL)


def steps_of(block):
    """The commands, each with the lines that follow it."""
    steps = []
    for line in block.splitlines():
        if line.startswith("$ "):
            steps.append((line[2:], []))
        elif line.startswith("> ") and steps and not steps[-1][1]:
            steps[-1] = (f"{steps[-1][0]}\n{line[2:]}", [])
        elif steps:
            steps[-1][1].append(line)
        else:
            sys.exit(f"A session begins with a command: {line}")
    return steps


class Text(run_cases.Session):
    """What comes back in a home folder, without what differs from run to run."""

    def __init__(self, home):
        self.folder = home

    def placeholder(self, match):
        return "{GUID}"

    def comparable(self, output):
        of_log = re.compile(r"(?<=TIME  )\S+  \S+(?=  )")
        lines = [of_log.sub("PERSON  MACHINE", line) for line in super().comparable(output)]
        return [re.sub(r"\d{4}-\d\d-\d\dT\d{6}Z", "TIME", line) for line in lines]


class Reader(Text):
    """Who types the commands, and goes from folder to folder."""

    def __init__(self, program, folder):
        run_cases.Session.__init__(self, run_cases.Posix(program), folder)
        del self.environment["XDG_DATA_HOME"]
        self.place, self.status = folder, 0

    def type(self, command):
        """What comes back of the command."""
        place = os.path.join(self.folder, ".bin/place")
        script = f"(exit {self.status})\n{command}\nstatus=$?; pwd >{shlex.quote(place)}; exit $status"
        done = subprocess.run(
            ["bash", "-c", script],
            cwd=self.place,
            env=self.environment,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            timeout=120,
        )
        self.status = done.returncode
        self.place = pathlib.Path(place).read_text().rstrip("\n")
        return done.stdout.decode().replace("\r\n", "\n")

    def as_ada(self, text):
        in_component_form = self.folder.replace("/", "\\")
        of_ada = HOME.replace("/", "\\")
        for folder, home in ((in_component_form, of_ada), (self.folder, HOME)):
            text = text.replace(folder.replace("\\", "\\\\"), home.replace("\\", "\\\\")).replace(folder, home)
        return text


def same_lines(expected, actual):
    pattern = "".join("(?:.*\n)*" if line == "..." else re.escape(line.rstrip()) + " *\n" for line in expected)
    return re.fullmatch(pattern, "".join(f"{line}\n" for line in actual)) is not None


class Run:
    """A page's blocks, one after the other."""

    def __init__(self, reader):
        self.reader = reader
        self.failed = False

    def block(self, match):
        text = ""
        for command, lines in steps_of(match.group()):
            before = self.reader.status
            back = self.reader.type(command)
            if before and command != "echo $?":
                self.fail(f"the command before it ended with {before}, and 'echo $?' does not tell", command)
            if same_lines(Text(HOME).comparable("\n".join([*lines, ""]).encode()), self.reader.comparable(back.encode())):
                back = "".join(f"{line}\n" for line in lines)
            else:
                back = self.reader.as_ada(back)
                self.fail(f"it prints\n{back}", command)
            typed = command.replace("\n", "\n> ")
            text += f"$ {typed}\n{back}"
        return text

    def fail(self, why, command):
        print(f"$ {command}\n{why}")
        self.failed = True


def run_page(program, path, update):
    text = path.read_text(encoding="utf-8")
    with tempfile.TemporaryDirectory(prefix="kvdm-page-") as folder:
        run = Run(Reader(program, os.path.realpath(folder)))
        updated, blocks = BLOCK.subn(run.block, text)
        if not blocks:
            sys.exit(f"{path} has no session")
        if run.reader.status:
            run.fail(f"ended with {run.reader.status}, and 'echo $?' does not tell", "the last command")
    if run.failed:
        print(f"{path}: what readers are shown is not what they will see")
    if update:
        path.write_text(updated, encoding="utf-8")
    return not run.failed


def main(arguments):
    parser = argparse.ArgumentParser()
    parser.add_argument("--update", action="store_true")
    parser.add_argument("program")
    parser.add_argument("pages", nargs="+", type=pathlib.Path)
    asked = parser.parse_args(arguments)
    results = [run_page(os.path.abspath(asked.program), page, asked.update) for page in asked.pages]
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
