#!/usr/bin/env python3
"""Runs every command that only reads on a tree of files, and compares names, bytes and times before and after.

    check_reading.py PROGRAM

A command that changes something refuses a project that is marked read-only, before it does anything: the others read.
Each is run in a project where all is well, in one whose working directory is gone, and in one whose registry is missing.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

READ_ONLY = "is marked read-only"

SETTING_UP = """
kvdm init Shops && cd Shops
kvdm area create North
kvdm area use North
kvdm analysis create Sales
kvdm analysis param set Sales Radius 500
kvdm store create Stores
kvdm customer create Members
kvdm data create Streets
kvdm metadata export Sales
kvdm alias set customer Member
mkdir KVData/KelvaroTemp/inner
"""

# What commands are called with; those that are not here get no arguments.
ARGUMENTS = {
    "area": ["North"],
    "area list": [],
    "area prop get": ["North", "TYPE"],
    "area prop set": ["North", "TYPE", "rings"],
    "area rename": ["North", "East"],
    "analysis": ["Sales"],
    "analysis list": [],
    "analysis param get": ["Sales", "Radius"],
    "analysis param set": ["Sales", "Radius", "1"],
    "analysis rename": ["Sales", "Rent"],
    "analysis properties import": ["Sales", "file.json"],
    "store": ["Stores"],
    "store list": [],
    "store dir": [],
    "store param get": ["Stores", "X"],
    "store param set": ["Stores", "X", "1"],
    "store rename": ["Stores", "Shops"],
    "customer": ["Members"],
    "customer list": [],
    "customer dir": [],
    "customer param get": ["Members", "X"],
    "customer param set": ["Members", "X", "1"],
    "customer rename": ["Members", "Clients"],
    "data": ["Streets"],
    "data list": [],
    "data dir": [],
    "data param get": ["Streets", "X"],
    "data param set": ["Streets", "X", "1"],
    "data rename": ["Streets", "Roads"],
    "metadata": ["Sales"],
    "preset path": ["Roads"],
    "catalogue import": ["areas.xml"],
    "catalogue restore": ["1"],
    "project restore": ["1"],
    "trash restore": ["1"],
    "registry area show": ["North"],
    "registry area create": ["North"],
    "registry area delete": ["North"],
    "registry customer show": ["Members"],
    "registry customer create": ["Members"],
    "registry customer delete": ["Members"],
    "registry store show": ["Stores"],
    "registry store create": ["Stores"],
    "registry store delete": ["Stores"],
    "alias set": ["customer", "Client"],
    "doctor": ["--all-safe"],
    "explain": ["guid"],
    "path split": ["Z:\\maps\\a.shp"],
}

# These make or move a project, work on what no project holds or on a project without the component, or write the file that
# they are given.
OTHERS = ["init", "catalogue renew", "analysis properties export", "adopt", "project move", "project rebase",
          "project drive set", "project drive unset", "project pack", "project unpack"]

# What is missing, for a while.
ABSENT = [None, "Shops/KVData", "data"]


def arguments_of(command):
    """Those of the command, or of the nearest group of commands that has any."""
    words = command.split()
    for end in range(len(words), 0, -1):
        if " ".join(words[:end]) in ARGUMENTS:
            return ARGUMENTS[" ".join(words[:end])]
    return []


def run(folder, command):
    environment = dict(os.environ, PATH=f"{folder}/bin:{os.environ['PATH']}", HOME=folder, LC_ALL="C.UTF-8")
    environment["XDG_DATA_HOME"] = f"{folder}/data"
    environment.pop("KVDM_REGISTRY", None)
    options = {"capture_output": True, "text": True, "stdin": subprocess.DEVNULL, "timeout": 120, "check": False}
    return subprocess.run(command, cwd=f"{folder}/Shops", env=environment, **options)


def state(folder):
    entries = {}
    for path in sorted(pathlib.Path(folder).rglob("*")):
        status = path.lstat()
        content = path.read_bytes() if path.is_file() else None
        entries[str(path.relative_to(folder))] = (status.st_mode, status.st_mtime_ns, status.st_ctime_ns, content)
    return entries


def difference(before, after):
    return ", ".join(sorted(name for name in before.keys() | after.keys() if before.get(name) != after.get(name)))


def made_world(folder, program):
    for name in ("bin", "Shops"):
        pathlib.Path(folder, name).mkdir()
    pathlib.Path(folder, "bin/kvdm").symlink_to(os.path.abspath(program))
    made = run(folder, ["bash", "-ec", f"cd ..\n{SETTING_UP}"])
    if made.returncode:
        sys.exit(made.stdout + made.stderr)


def reading_commands(folder):
    """The command lines that a read-only project does not refuse."""
    manual = run(folder, ["kvdm", "generate", "man"]).stdout
    commands = [c for c in re.findall(r"^\.SS \\fBkvdm ([a-z ]+)\\fR", manual, re.MULTILINE) if c not in OTHERS]
    project = pathlib.Path(folder, "Shops/Shops.kvdm")
    project.chmod(0o444)
    lines = [["kvdm", *command.split(), *arguments_of(command)] for command in commands]
    results = [run(folder, line) for line in lines]
    project.chmod(0o644)
    for line, result in zip(lines, results):
        if result.returncode == 2:
            sys.exit(f"{' '.join(line)} can't be called so; what does ARGUMENTS lack? {result.stderr}")
    return [line for line, result in zip(lines, results) if READ_ONLY not in result.stderr]


def problems_without(absent, folder, lines):
    place = pathlib.Path(folder, absent or "nothing")
    if absent:
        place.rename(f"{folder}/aside")
    for job in pathlib.Path(folder).glob("Shops/KVData/KelvaroTemp"):
        pathlib.Path(job, "job.tmp").write_text("of a running job")
    problems = []
    for line in lines:
        before = state(folder)
        run(folder, line)
        if changed := difference(before, state(folder)):
            problems.append(f"{' '.join(line)}, without {absent}, changed {changed}")
    if place.exists():
        shutil.rmtree(place)
    if absent:
        pathlib.Path(folder, "aside").rename(place)
    return problems


def main(program):
    with tempfile.TemporaryDirectory(prefix="kvdm-reading-") as made:
        folder = os.path.realpath(made)
        made_world(folder, program)
        lines = reading_commands(folder)
        problems = [problem for absent in ABSENT for problem in problems_without(absent, folder, lines)]
    print("\n".join(problems))
    print(f"{len(lines)} commands read")
    return 1 if problems or len(lines) < 40 else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
