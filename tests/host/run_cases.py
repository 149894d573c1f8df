#!/usr/bin/env python3
"""Runs the command lines of case files and compares what they print.

    run_cases.py [--update] PROGRAM CASE...

A case file is a session in a folder of its own:

    # a comment
    $ kvdm area list         a shell command; `kvdm` is PROGRAM
    > NAME  GUID             the lines it prints on standard output,
    ! kvdm: ...              those on standard error,
    = 3                      and its exit status, if it is not 0

In place of what differs from run to run stand TMP (the folder), Z:\\TMP (the folder as the
component writes it), {GUID1} {GUID2} ... (identifiers, also in commands), TIME, CHECKSUM and <N>
(a number, in expectations). Of several blanks between columns two are left. --update writes what the commands print into the case files.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

GUID = re.compile(r"\{[0-9A-F]{8}(?:-[0-9A-F]{4}){3}-[0-9A-F]{12}\}")
TIMES = re.compile(
    r"\d{1,2}/\d{1,2}/\d{4} \d{1,2}:\d\d:\d\d [AP]M|\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ"
)
CHECKSUM = re.compile(r"crc32:[0-9a-f]{8}")


class Step:
    def __init__(self, command):
        self.command = command
        self.out, self.err, self.status = [], [], 0
        self.remarks = []


def read_case(path):
    steps, remarks = [], []
    for number, line in enumerate(path.read_text().splitlines(), 1):
        mark, text = line[:1], line[2:]
        if mark == "$":
            steps.append(Step(text))
            steps[-1].remarks, remarks = remarks, []
        elif mark in ("#", ""):
            remarks.append(line)
        elif mark == ">":
            steps[-1].out.append(text)
        elif mark == "!":
            steps[-1].err.append(text)
        elif mark == "=":
            steps[-1].status = int(text)
        else:
            sys.exit(f"{path}:{number}: a line starts with none of # $ > ! =")
    return steps


def case_text(steps):
    lines = []
    for step in steps:
        lines += step.remarks + [f"$ {step.command}"]
        lines += [f"> {line}".rstrip() for line in step.out]
        lines += [f"! {line}".rstrip() for line in step.err]
        if step.status:
            lines.append(f"= {step.status}")
    return "\n".join(lines) + "\n"


class Session:
    def __init__(self, program, folder):
        self.folder = folder
        self.guids = []
        bin_folder = os.path.join(folder, ".bin")
        os.mkdir(bin_folder)
        os.symlink(os.path.abspath(program), os.path.join(bin_folder, "kvdm"))
        self.environment = dict(
            os.environ,
            PATH=bin_folder + os.pathsep + os.environ["PATH"],
            HOME=folder,
            XDG_DATA_HOME=os.path.join(folder, ".data"),
            LC_ALL="C.UTF-8",
            TZ="UTC",
        )
        self.environment.pop("KVDM_REGISTRY", None)

    def run(self, command):
        for number, guid in enumerate(self.guids, 1):
            command = command.replace("{GUID%d}" % number, guid)
        done = subprocess.run(
            ["bash", "-c", command],
            cwd=self.folder,
            env=self.environment,
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=120,
        )
        result = Step(command)
        result.status = done.returncode
        result.out = self.comparable(done.stdout)
        result.err = self.comparable(done.stderr)
        return result

    def comparable(self, output):
        text = output.decode("utf-8", "backslashreplace")
        in_component_form = self.folder.replace("/", "\\")
        text = text.replace(in_component_form.replace("\\", "\\\\"), r"\\TMP")
        text = text.replace(in_component_form, "\\TMP").replace(self.folder, "TMP")
        text = GUID.sub(self.placeholder, text)
        text = CHECKSUM.sub("CHECKSUM", TIMES.sub("TIME", text))
        text = re.sub(r"(?<=\S) {3,}", "  ", text)
        return text.split("\n")[:-1] if text.endswith("\n") else text.split("\n") if text else []

    def placeholder(self, match):
        if match.group() not in self.guids:
            self.guids.append(match.group())
        return "{GUID%d}" % (self.guids.index(match.group()) + 1)


def same_lines(expected, actual):
    def pattern(line):
        return re.escape(line.rstrip()).replace(re.escape("<N>"), r"\d+")

    return len(expected) == len(actual) and all(
        re.fullmatch(pattern(want), have.rstrip()) for want, have in zip(expected, actual)
    )


def run_case(program, path, update):
    steps = read_case(path)
    passed = True
    with tempfile.TemporaryDirectory(prefix="kvdm-case-") as folder:
        session = Session(program, os.path.realpath(folder))
        for step in steps:
            result = session.run(step.command)
            same = (
                same_lines(step.out, result.out)
                and same_lines(step.err, result.err)
                and step.status == result.status
            )
            if same:
                continue
            if update:
                step.out, step.err, step.status = result.out, result.err, result.status
                continue
            passed = False
            result.command = step.command
            print(f"{path}: expected\n{case_text([step])}but got\n{case_text([result])}")
    if update:
        path.write_text(case_text(steps))
    return passed


def main(arguments):
    update = arguments[:1] == ["--update"]
    program, *cases = arguments[1:] if update else arguments
    results = [run_case(program, pathlib.Path(case), update) for case in cases]
    return 0 if cases and all(results) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
