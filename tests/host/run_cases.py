#!/usr/bin/env python3
"""Runs the command lines of case files and compares what they print.

    run_cases.py [--update] [--wine PREFIX] PROGRAM CASE...

A case file is a session in a folder of its own:

    # a comment
    @ posix                  the next command is for this kind of system only; the other is windows
    $ kvdm area list         a shell command; `kvdm` is PROGRAM
    > NAME  GUID             the lines it prints on standard output,
    ! kvdm: ...              those on standard error,
    = 3                      and its exit status, if it is not 0

In place of what differs from run to run stand TMP (the folder), Z:\\TMP (the folder as the
component writes it), REGISTRY, {GUID1} {GUID2} ... (identifiers, also in commands), TIME, CHECKSUM
and <N> (a number, in expectations). Of several blanks between columns two are left. Commands may
also use what is in the folder tools. --update writes what the commands print into the case files.

With --wine PROGRAM is one for Windows, and Wine with that prefix runs it. The folder then is
Z:\\TMP for PROGRAM too: that is what an expected TMP/North/North.kvdm stands for.
"""

import argparse
import contextlib
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).absolute().parent

GUID = re.compile(r"\{[0-9A-F]{8}(?:-[0-9A-F]{4}){3}-[0-9A-F]{12}\}")
TIMES = re.compile(
    r"\d{1,2}/\d{1,2}/\d{4} \d{1,2}:\d\d:\d\d [AP]M|\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ?"
)
REGISTRY = re.compile(
    r"TMP/\.data/kvdm/registry\.db|HKEY_LOCAL_MACHINE(\\\\?)Software\1Velk\1Kelvaro"
)
CHECKSUM = re.compile(r"crc32:[0-9a-f]{8}")


class Step:
    def __init__(self, command):
        self.command = command
        self.out, self.err, self.status = [], [], 0
        self.remarks = []
        self.only_on = None


def read_case(path):
    steps, remarks, only_on = [], [], None
    for number, line in enumerate(path.read_text().splitlines(), 1):
        mark, text = line[:1], line[2:]
        if mark == "$":
            steps.append(Step(text))
            steps[-1].remarks, remarks = remarks, []
            steps[-1].only_on, only_on = only_on, None
        elif mark == "@" and text in ("posix", "windows"):
            only_on = text
        elif mark in ("#", ""):
            remarks.append(line)
        elif mark == ">":
            steps[-1].out.append(text)
        elif mark == "!":
            steps[-1].err.append(text)
        elif mark == "=":
            steps[-1].status = int(text)
        else:
            sys.exit(f"{path}:{number}: a line starts with none of # @ $ > ! =")
    return steps


def case_text(steps):
    lines = []
    for step in steps:
        lines += step.remarks
        lines += [f"@ {step.only_on}"] if step.only_on else []
        lines.append(f"$ {step.command}")
        lines += [f"> {line}".rstrip() for line in step.out]
        lines += [f"! {line}".rstrip() for line in step.err]
        if step.status:
            lines.append(f"= {step.status}")
    return "\n".join(lines) + "\n"


class Posix:
    name = "posix"
    environment = {}

    def __init__(self, program):
        self.program = program

    def make_command(self, path):
        path.symlink_to(self.program)

    def running(self):
        return contextlib.nullcontext()

    def expected(self, line):
        return line


class Windows:
    name = "windows"

    def __init__(self, program, prefix):
        self.program = program
        self.wine = [str(HERE.parent.parent / "scripts/run-wine"), os.path.abspath(prefix)]
        self.environment = {"KVDM_WINE": shlex.join(self.wine), "KVDM_EXE": program}

    def make_command(self, path):
        command = shlex.join([*self.wine, self.program])
        path.write_text(f'#!/bin/sh\nexec {command} "$@"\n')
        path.chmod(0o755)

    @contextlib.contextmanager
    def running(self):
        """Keeps Wine up, whose start takes longer than a command, with an empty registry."""
        pipes = {"stdin": subprocess.PIPE, "stdout": subprocess.PIPE, "stderr": subprocess.DEVNULL}
        with subprocess.Popen([*self.wine, "cmd.exe"], **pipes) as waiting:
            waiting.stdout.readline()  # Wine is there now; two programs may not start it at once
            self.run_quietly("reg.exe", "delete", r"HKLM\Software\Velk", "/f")
            # Starts what stays as long as Wine does, and would keep the pipes of a command open.
            self.run_quietly(self.program, "version")
            yield

    def run_quietly(self, *command):
        quiet = {name: subprocess.DEVNULL for name in ("stdin", "stdout", "stderr")}
        subprocess.run([*self.wine, *command], check=False, **quiet)

    def expected(self, line):
        if not re.search(r"(?<!:)TMP/", line):
            return line
        in_json = line.lstrip().startswith('"')
        return line.replace("TMP/", "Z:/TMP/").replace("/", "\\\\" if in_json else "\\")


class Session:
    def __init__(self, system, folder):
        self.system = system
        self.folder = folder
        self.guids = []
        bin_folder = pathlib.Path(folder, ".bin")
        bin_folder.mkdir()
        system.make_command(bin_folder / "kvdm")
        self.environment = dict(
            os.environ,
            **system.environment,
            PATH=os.pathsep.join([str(bin_folder), str(HERE / "tools"), os.environ["PATH"]]),
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
        text = REGISTRY.sub("REGISTRY", text)
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


def run_step(session, step, update):
    """Whether the step's command prints what it should; with `update`, then it does."""
    result = session.run(step.command)
    out, err = ([session.system.expected(line) for line in lines] for lines in (step.out, step.err))
    if same_lines(out, result.out) and same_lines(err, result.err) and step.status == result.status:
        return True
    if update:
        step.out, step.err, step.status = result.out, result.err, result.status
        return True
    result.command = step.command
    print(f"expected\n{case_text([step])}but got\n{case_text([result])}")
    return False


def run_case(system, path, update):
    steps = read_case(path)
    with tempfile.TemporaryDirectory(prefix="kvdm-case-") as folder, system.running():
        session = Session(system, os.path.realpath(folder))
        wanted = [step for step in steps if step.only_on in (None, system.name)]
        passed = all([run_step(session, step, update) for step in wanted])
    if update:
        path.write_text(case_text(steps))
    return passed


def main(arguments):
    parser = argparse.ArgumentParser()
    parser.add_argument("--update", action="store_true")
    parser.add_argument("--wine", metavar="PREFIX")
    parser.add_argument("program")
    parser.add_argument("cases", nargs="+", type=pathlib.Path)
    asked = parser.parse_args(arguments)
    program = os.path.abspath(asked.program)
    system = Windows(program, asked.wine) if asked.wine else Posix(program)
    results = [run_case(system, case, asked.update) for case in asked.cases]
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
